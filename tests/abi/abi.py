#!/usr/bin/env python3
"""The binary interface of the shared library, as its callers are compiled against it, compared with what the tree says of it.

  abi.py symbols FILE LIBRARY [--renew]         the names that LIBRARY exports
  abi.py layouts FILE INCLUDE... [--renew]      sizes, members and virtual functions of the public classes

With --renew FILE is written. Both lists hold for every compiler and level of optimization: what the library exports is marked
in its headers and defined in its sources, and no inline function, instantiation or name of another library goes out
(cmake/exports.map). Layouts are those of the Itanium ABI, told by clang for whoever compiles.

A result type is no part of a function's name; only that of a virtual function is seen here.
"""
import argparse
import difflib
import pathlib
import re
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parents[2]
RENEW = 'cmake --build --preset dev --target renew_abi'
OWN = re.compile(r'(typeinfo for |typeinfo name for |vtable for |VTT for |.* thunk to )?zqxml::')
CLASS = re.compile(r'(?:class|struct)(?: ZQXML_EXPORT| \[\[nodiscard\]\])* (\w+)(?: final)?(?: : [^{]*)? \{')


def output_of(*command):
    return subprocess.run(command, check=True, stdout=subprocess.PIPE, text=True).stdout


def symbols(library):
    """The SONAME, and each exported name once: variants of a constructor share theirs."""
    soname = re.search(r'SONAME\s+(\S+)', output_of('objdump', '-p', library))[1]
    lines = [line.split(' ', 2)[1:] for line in output_of('nm', '-D', '-C', '--defined-only', library).splitlines()]
    # Weak functions are instantiations of the standard library's templates for our types, those that a compiler did not
    # inline; whoever needs one has one.
    names = {name for kind, name in lines if kind != 'W'}
    # UndefinedBehaviorSanitizer has types of functions described; callers ask for those of classes alone.
    names = {name for name in names if not re.match(r'typeinfo (name )?for (?![\w:]+$)', name)}
    foreign = sorted(name for name in names if not OWN.match(name))
    if foreign:
        sys.exit('\n'.join(['exported, but not of this library:', *foreign]))
    return [soname, *sorted(names)]


def public_headers():
    return sorted(path.relative_to(ROOT) for path in (ROOT / 'zqxml').rglob('*.h') if 'internal' not in path.parts)


def classes_of(header):
    """The classes that a header defines, with their namespaces. Our headers indent nothing in a namespace."""
    opened, previous = [], ''
    for line in (ROOT / header).read_text().splitlines():
        found = CLASS.match(line)
        if found and not previous.startswith('template') and 'internal' not in opened:
            yield '::'.join([*opened, found[1]])
        if re.match(r'[^ }#/].*\{$', line):
            namespace = re.match(r'(?:inline )?namespace (\S+) \{', line)
            opened.append(namespace[1] if namespace else '')
        elif line.startswith('}'):
            opened.pop()
        previous = line


def layouts(includes):
    headers = public_headers()
    names = sorted({name for header in headers for name in classes_of(header)})
    # A call of the destructor makes the compiler lay out the class and its table of virtual functions.
    aliases = ''.join(f'using T{i} = {name};\n' for i, name in enumerate(names))
    uses = ''.join(f'  static_cast<T{i}*>(p)->~T{i}();\n' for i in range(len(names)))
    source = ''.join(f'#include <{header}>\n' for header in headers) + f'{aliases}void use(void* p) {{\n{uses}}}\n'
    dump = subprocess.run(
        ['clang++-14', '-std=c++20', '-fno-access-control', *(f'-I{folder}' for folder in includes), '-x', 'c++',
         '-Xclang', '-fdump-record-layouts', '-Xclang', '-fdump-vtable-layouts', '-S', '-emit-llvm', '-o', '/dev/null', '-'],
        input=source, check=True, stdout=subprocess.PIPE, text=True).stdout
    records, tables = {}, {}
    for name, block in re.findall(r"^ +0 \| (?:class|struct) (\S+)(?: \(empty\))?\n((?:.+\n)+)", dump, re.M):
        records.setdefault(name, members_of(block))
    for name, block in re.findall(r"^Vtable for '(\S+)' \(\d+ entries\)\.\n((?:.+\n)+)", dump, re.M):
        tables[name] = re.findall(r'^ +\d+ \| (.*)$', block, re.M)
    missing = [name for name in names if name not in records]
    if missing:
        sys.exit('no layout was told of: ' + ', '.join(missing))
    lines = []
    for name in names:
        lines += [name, *('  ' + line for line in records[name])]
        lines += ['  virtual: ' + entry for entry in tables.get(name, [])]
    return lines


def members_of(block):
    """Size, bases and members; what members of other classes consist of is told with those."""
    block = re.sub(r'\((anonymous) at [^)]*\)', r'(\1)', block)
    size = re.search(r'\[sizeof=(\d+), .*align=(\d+)', block)
    return [f'{size[1]} bytes, aligned to {size[2]}',
            *(f'{offset:>4}: {text}' for offset, text in re.findall(r'^ +(\S+) \|   (\S.*)$', block, re.M))]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('what', choices=['symbols', 'layouts'])
    parser.add_argument('file', type=pathlib.Path)
    parser.add_argument('of', nargs='+')
    parser.add_argument('--renew', action='store_true')
    arguments = parser.parse_args()
    now = symbols(arguments.of[0]) if arguments.what == 'symbols' else layouts(arguments.of)
    if arguments.renew:
        arguments.file.write_text('\n'.join(now) + '\n')
        return
    then = arguments.file.read_text().splitlines()
    changes = list(difflib.unified_diff(then, now, f'{arguments.file.name} (promised)', 'built', lineterm='', n=2))
    if changes:
        sys.exit('\n'.join([*changes, '',
                            'The binary interface has changed. What only adds names is safe for programs that exist; anything',
                            'else breaks them, and asks for a new SOVERSION (zqxml/CMakeLists.txt). When it is meant:', RENEW]))
    print(f'{len(now)} lines are as promised')


if __name__ == '__main__':
    main()
