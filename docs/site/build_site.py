#!/usr/bin/env python3
"""Builds the site: build_site.py --source FOLDER --out FOLDER [--version TEXT] [--doxygen PROGRAM]

FOLDER/html is the result, which needs nothing from anywhere else. Each warning of doxygen, dead link and reference to
another site is told, and makes the exit status 1.
"""
import argparse
import os
import pathlib
import shutil
import subprocess
import sys

sys.dont_write_bytecode = True  # the source stays as it is
import finish  # noqa: E402
import headers  # noqa: E402
import pages  # noqa: E402


def run_doxygen(arguments):
    """True when doxygen had nothing to say."""
    environment = {**os.environ, 'ZQXML_SOURCE': str(arguments.source), 'ZQXML_SITE': str(arguments.out),
                   'ZQXML_VERSION': arguments.version}
    done = subprocess.run([arguments.doxygen, str(arguments.source / 'docs/site/Doxyfile')], env=environment,
                          capture_output=True, text=True, check=False)
    said = (done.stdout + done.stderr).strip()
    if said:
        print(said.replace(f'{arguments.out}/headers/', '').replace(f'{arguments.out}/pages/', ''), file=sys.stderr)
    return done.returncode == 0 and not said


def empty(folder):
    """Takes away the site that was built there before, and nothing else."""
    if folder.exists() and any(folder.iterdir()) and not (folder / 'frame').is_dir():
        raise pages.SiteError(f'{folder} holds something other than a site: name another folder')
    shutil.rmtree(folder, ignore_errors=True)


def build(arguments):
    empty(arguments.out)
    guide = pages.Guide(arguments.source)
    frame = arguments.out / 'frame'
    frame.mkdir(parents=True)
    guide.write(arguments.out / 'pages')
    headers.write(arguments.source, arguments.out / 'headers')
    for name in ('header.html', 'footer.html'):
        text = (arguments.source / 'docs/site' / name).read_text(encoding='utf-8')
        text = text.replace('@VERSION@', arguments.version).replace('@PAGES@', pages.navigation(guide))
        (frame / name).write_text(text, encoding='utf-8')
    if not run_doxygen(arguments):
        return False
    folder = arguments.out / 'html'
    addresses, entries = finish.symbols(arguments.out / 'tags.xml')
    for path in folder.glob('*.html'):
        finish.finish_page(path, addresses, path.name == 'index.html' or path.name.startswith('guide_'))
    sections, names = finish.write_search_index(folder, guide, entries)
    count = finish.remove_unused(folder)
    problems = finish.check(folder)
    for problem in problems:
        print(problem, file=sys.stderr)
    print(f'{count} pages; the search knows {sections} sections of the guide and {names} names: {folder}/index.html')
    return not problems


def main():
    parser = argparse.ArgumentParser(description='Builds the site of the reference and the guide.')
    parser.add_argument('--source', required=True, type=lambda text: pathlib.Path(text).resolve())
    parser.add_argument('--out', required=True, type=lambda text: pathlib.Path(text).resolve())
    parser.add_argument('--version', default='')
    parser.add_argument('--doxygen', default='doxygen')
    try:
        sys.exit(0 if build(parser.parse_args()) else 1)
    except (pages.SiteError, OSError) as error:
        sys.exit(f'build_site: {error}')


if __name__ == '__main__':
    main()
