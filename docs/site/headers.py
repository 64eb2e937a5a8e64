"""The public headers as doxygen takes them: the comment that opens a group without a name, between @{ and @}, stands
before each declaration in it. Doxygen would put such groups behind all other declarations."""
import re

OPEN = re.compile(r'^\s*/// @\{\s*$')
CLOSE = re.compile(r'^\s*/// @\}\s*$')
COMMENT = re.compile(r'^\s*///(?!<)')
QUOTED = re.compile(r'"(?:\\.|[^"\\])*"|\'(?:\\.|[^\'\\])\'')


def statements(lines):
    """The declarations among the lines, each with the comment before it."""
    current, depth = [], 0
    for line in lines:
        current.append(line)
        code = re.sub(r'//.*', '', QUOTED.sub('', line))
        depth += sum(code.count(c) for c in '{(') - sum(code.count(c) for c in '})')
        if depth == 0 and re.search(r'[;}]\s*$', code):
            yield current
            current = []
    if current:
        yield current


def expand(lines):
    out, i = [], 0
    while i < len(lines):
        is_named = any('@name' in line for line in out[-8:] if COMMENT.match(line))
        if not OPEN.match(lines[i]) or is_named:
            out.append(lines[i])
            i += 1
            continue
        end = next(k for k in range(i, len(lines)) if CLOSE.match(lines[k]))
        first = next(k for k in range(i + 1, end + 1) if not COMMENT.match(lines[k]) or k == end)
        comment = lines[i + 1:first]
        for statement in statements(lines[first:end]):
            has_own = any(COMMENT.match(line) or '///<' in line for line in statement)
            out += statement if has_own or not ''.join(statement).strip() else comment + statement
        i = end + 1
    return out


def escape_code(line):
    """Keeps the per cent signs in `code`, which doxygen takes for marks of its own."""
    return re.sub(r'`[^`]*`', lambda code: re.sub(r'%(?=[\w#*.-])', '%%', code[0]), line)


def with_file_comment(lines):
    """Doxygen has a page for a file only when a comment says @file."""
    if '/// @file' in lines:
        return lines
    top = next(i for i, line in enumerate(lines) if not line.startswith('//'))
    return ['/// @file', *('/' + line for line in lines[:top]), *lines[top:]]


def write(source, folder):
    """Writes every public header of the source into the folder."""
    for path in (source / 'zqxml').rglob('*.h'):
        if 'internal' in path.parts:
            continue
        lines = expand(with_file_comment(path.read_text(encoding='utf-8').split('\n')))
        target = folder / path.relative_to(source)
        target.parent.mkdir(parents=True, exist_ok=True)
        target.write_text('\n'.join(escape_code(x) if COMMENT.match(x) else x for x in lines), encoding='utf-8')
