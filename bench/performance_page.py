#!/usr/bin/env python3
"""Writes the page of measurements: performance_page.py FOLDER

FOLDER has machine.json, what the figures depend on beside the programs ({"name": "text", ...}), and NAME_bench.json of each
program, as its option --json writes it. The page goes to standard output.
"""
import json
import pathlib
import sys
import textwrap

sys.dont_write_bytecode = True  # the source stays as it is
import instruction_record  # noqa: E402

# What comes first; other programs follow by their names.
ORDER = ('codec', 'object', 'scale', 'thread', 'heap', 'catalogue', 'render', 'walk', 'xpath', 'log', 'object_file')

TIMES = ((1e9, 's'), (1e6, 'ms'), (1e3, 'µs'), (1, 'ns'))

INTRODUCTION = """\
# Performance

What the roads of a message cost beside other programs' ways of doing the same, and beside what they were made to reach.
`script/bench` builds what is shipped, measures it, and writes this page; `script/bench --help` tells the rest.

The contenders of a table run in one process and take turns at random, so that they meet the same disturbances. A figure
is the 10th percentile of its samples: on a machine that does other things too, the low end is what the code needs. Beside
it stand the median, and the spread: how far the 90th percentile lies above the 10th, as a part of the median. A ratio is
how many times as fast as the peer ours is (reach ≥), or how many times the peer's time or space it takes (reach ≤); where
there is a reach, the last column says whether it is met. Times are those of one run on the machine below; of another
machine they tell little, and ratios more.
"""


def significant(value):
    """Three digits, and no more than are there."""
    if value >= 100:
        return f'{value:,.0f}'
    if value >= 10:
        return f'{value:.1f}'
    return f'{value:.2f}'


def quantity(value, unit):
    if unit != 'ns':
        return f'{value:,.0f} {unit}' if value == int(value) else f'{significant(value)} {unit}'
    for factor, name in TIMES:
        if value >= factor or name == 'ns':
            return f'{significant(value / factor)} {name}'
    return ''


def paragraph(text):
    return textwrap.fill(text, 120, break_long_words=False, break_on_hyphens=False)


def line(cells):
    return '| ' + ' | '.join(cells) + ' |'


def figure_cells(figure, unit, sampled):
    if figure is None:
        return [''] * (3 if sampled else 1)
    cells = [quantity(figure['low'], unit)]
    if sampled:
        cells += [quantity(figure['median'], unit), f'{figure["spread"] * 100:.0f} %']
    return cells


def reach_text(row):
    return row.get('reach', '').replace('>=', '≥').replace('<=', '≤')


def met_text(row):
    return {True: 'yes', False: '**no**', None: ''}[row.get('met')]


def table_text(table):
    rows, unit = table['rows'], table['unit']
    contested = any('peer' in row for row in rows)
    # A count has one sample.
    sampled = any(row['ours']['spread'] for row in rows)
    heads = ['', table['ours']] + (['median', 'spread'] if sampled else [])
    if contested:
        heads += [table['peer']] + (['median', 'spread'] if sampled else []) + ['ratio']
    heads += ['reach', 'met'] if any('reach' in row for row in rows) else []
    lines = [f'## {table["title"]}', '']
    if table['note']:
        lines += [paragraph(table['note']), '']
    lines += [line(heads), '|---' + '|--:' * (len(heads) - 1) + '|']
    for row in rows:
        cells = [row['what']] + figure_cells(row['ours'], unit, sampled)
        if contested:
            cells += figure_cells(row.get('peer'), unit, sampled)
            cells += [significant(row['ratio']) if 'ratio' in row else '']
        if len(cells) < len(heads):
            cells += [reach_text(row), met_text(row)]
        lines.append(line(cells))
    return '\n'.join(lines) + '\n'


def summary_text(tables):
    claims = [(table, row) for table in tables for row in table['rows'] if 'met' in row]
    missed = [(table, row) for table, row in claims if not row['met']]
    lines = ['## In short', '', f'{len(claims) - len(missed)} of {len(claims)} reaches are met.']
    if missed:
        lines += ['These are not:', '']
        for table, row in missed:
            got = significant(row['ratio']) if 'ratio' in row else quantity(row['ours']['low'], table['unit'])
            lines.append(f'- {table["title"]}, {row["what"]}: {got}, of {reach_text(row)}')
    return '\n'.join(lines) + '\n'


def facts_text(facts):
    lines = ['## Machine and versions', '', '| | |', '|---|---|']
    return '\n'.join(lines + [line(fact) for fact in facts.items()]) + '\n'


def instructions_text(record):
    about = ('What Callgrind counts on each road of the medium message. These figures do not depend on what else the machine '
             f'does, but on the compiler and the libraries: {record.versions}. `script/bench --instructions` counts anew, '
             'and tells what a change costs.')
    lines = ['## Instructions', '', paragraph(about), '', '| | instructions |', '|---|--:|']
    return '\n'.join(lines + [line([road, f'{count:,}']) for road, count in record.counts.items()]) + '\n'


def place(program):
    name = program.removesuffix('_bench')
    return (ORDER.index(name) if name in ORDER else len(ORDER), name)


def page(machine, results, record=None):
    """The page's text. `results` has what each program wrote, by its name; `record` the counts of instructions."""
    facts, tables = dict(machine), []
    for program in sorted(results, key=place):
        facts.update(results[program]['facts'])
        tables += results[program]['tables']
    parts = [INTRODUCTION, summary_text(tables), facts_text(facts)] + [table_text(table) for table in tables]
    if record:
        parts.append(instructions_text(record))
    return '\n'.join(parts)


def main(arguments):
    if len(arguments) != 1 or arguments[0].startswith('-'):
        print(__doc__.strip().split('\n', maxsplit=1)[0], file=sys.stderr)
        return 2
    folder = pathlib.Path(arguments[0])
    machine = json.loads((folder / 'machine.json').read_text(encoding='utf-8'))
    results = {path.stem: json.loads(path.read_text(encoding='utf-8')) for path in folder.glob('*_bench.json')}
    record = folder / 'instructions.txt'
    print(page(machine, results, instruction_record.read(record) if record.exists() else None), end='')
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
