"""The guide's Markdown as doxygen takes it: links between pages and to their headings, and the order of reading."""
import re

import headers

LINK = re.compile(r'(!?)\[((?:[^\[\]`]|`[^`]*`)*)\]\(([^)\s]+)\)')
HEADING = re.compile(r'^(#{1,4})\s+(.*?)\s*$')


class SiteError(Exception):
    """What is wrong with the guide, in a line that names the place."""


def name_of(stem):
    """The name of a page of the site by that of its file, without the extension."""
    return 'guide_' + stem.lower().replace('-', '_')


def slug(heading):
    """The anchor that git hosts give to a heading."""
    return re.sub(r'\s', '-', re.sub(r'[^\w\s-]', '', heading.lower()))


def outside_fences(text):
    """The lines with whether each stands outside of a fenced block."""
    fence = None
    for line in text.split('\n'):
        mark = re.match(r'\s*(`{3,}|~{3,})', line)
        if mark and fence is None:
            fence = mark[1]
            yield line, False
        elif mark and line.strip() == fence:
            fence = None
            yield line, False
        else:
            yield line, fence is None


class Page:
    """One Markdown file of the guide."""

    def __init__(self, root, path):
        self.root, self.path = root, path
        self.name = 'index' if path.name == 'README.md' else name_of(path.stem)
        self.text = path.read_text(encoding='utf-8')
        self.headings = {}
        self.title = None
        for line, is_text in outside_fences(self.text):
            match = HEADING.match(line) if is_text else None
            if not match:
                continue
            if match[1] == '#' and self.title is None:
                self.title = match[2]
            self.headings[slug(match[2])] = match[2]
        if self.title is None:
            raise SiteError(f'{self.where()}: there is no title')

    def where(self):
        return str(self.path.relative_to(self.root))

    def label(self, anchor):
        return f'{self.name}_{anchor}'


class Guide:
    """All pages in the order of reading, which is that of the links in README.md; what it does not name comes last."""

    def __init__(self, root):
        self.root = root
        paths = [root / 'README.md', *sorted(root.glob('docs/*.md')), root / 'CONTRIBUTING.md', root / 'SECURITY.md']
        self.pages = {path: Page(root, path) for path in paths}
        self.sources = {}
        front = self.pages[root / 'README.md']
        named = []
        for line, is_text in outside_fences(front.text):
            for match in LINK.finditer(line) if is_text else ():
                target = (root / match[3].split('#')[0]).resolve()
                if target in self.pages and target != front.path and target not in named:
                    named.append(target)
        rest = [path for path in paths if path not in named and path != front.path]
        self.order = [self.pages[path] for path in named + rest]
        self.front = front

    def write(self, folder):
        """Writes what doxygen reads, and one page for each source file that a page links to."""
        folder.mkdir(parents=True, exist_ok=True)
        for page in self.pages.values():
            (folder / page.path.name).write_text(self.convert(page), encoding='utf-8')
        for path, name in self.sources.items():
            kind = {'.cc': 'cpp', '.h': 'cpp', '.xml': 'xml', '.xsd': 'xml'}.get(path.suffix, 'txt')
            text = path.read_text(encoding='utf-8')
            (folder / f'{name}.md').write_text(
                f'# {path.relative_to(self.root)} {{#{name}}}\n\n~~~~~~~~{{.{kind}}}\n{text}\n~~~~~~~~\n', encoding='utf-8')

    def convert(self, page):
        out = []
        chapters = sum(1 for line, is_text in outside_fences(page.text) if is_text and line.startswith('## '))
        for line, is_text in outside_fences(page.text):
            match = HEADING.match(line) if is_text else None
            if match and match[2] == page.title and match[1] == '#':
                label = 'mainpage' if page is self.front else page.name
                out.append(f'# {page.title} {{#{label}}}')
                if chapters >= 3 and page is not self.front:
                    out.append('\n[TOC]\n')
            elif match:
                out.append(f'{match[1]} {match[2]} {{#{page.label(slug(match[2]))}}}')
            elif is_text:
                line = re.sub(r'\*\*(`[^`]*`)\*\*', r'<b>\1</b>', headers.escape_code(line))
                out.append(LINK.sub(lambda link: self.convert_link(page, link), line))
            else:
                out.append(line)
        return '\n'.join(out)

    def convert_link(self, page, link):
        image, text, target = link[1], link[2], link[3]
        if re.match(r'[a-z]+:', target):
            return link[0]
        file, _, anchor = target.partition('#')
        path = (page.path.parent / file).resolve() if file else page.path
        if not path.is_file():
            raise SiteError(f'{page.where()}: the link to {target} leads nowhere')
        if image:
            return f'![{text}]({path.name})'
        other = self.pages.get(path)
        if other is None:
            if path.suffix == '.h' and path.is_relative_to(self.root / 'zqxml'):
                return f'<a href="header:{path.relative_to(self.root)}">{text}</a>'
            name = 'source_' + re.sub(r'\W', '_', str(path.relative_to(self.root)))
            self.sources[path] = name
            return f'[{text}](@ref {name})'
        if text in (file, target):
            text = other.title
        if anchor and anchor not in other.headings:
            raise SiteError(f'{page.where()}: {other.where()} has no heading for #{anchor}')
        if not anchor:
            return f'[{text}](@ref {"mainpage" if other is self.front else other.name})'
        return f'[{text}](@ref {other.label(anchor)})'


def navigation(guide):
    """The list of the guide's pages for the frame of every page."""
    items = [('index.html', 'Start'), *((page.name + '.html', page.title) for page in guide.order)]
    return '\n'.join(f'<li><a href="$relpath^{file}">{title}</a></li>' for file, title in items)
