#!/usr/bin/env python3
"""The record of instruction counts: instruction_record.py COUNTED RECORDED

Both are records: lines "# ..." that tell what the counts depend on, and a line "COUNT  ROAD" for each road. Prints the
counts of the first with their change against the second.
"""
import dataclasses
import pathlib
import re
import sys

HEAD = """\
# Instructions for the medium message on each road, counted by Callgrind (script/bench --instructions).
# Counted with: """


@dataclasses.dataclass
class Record:
    versions: str
    counts: dict


def read(path):
    versions, counts = '', {}
    for text in pathlib.Path(path).read_text(encoding='utf-8').splitlines():
        if text.startswith('# Counted with: '):
            versions = text.removeprefix('# Counted with: ')
        elif text and not text.startswith('#'):
            count, road = text.split(maxsplit=1)
            counts[road] = int(count)
    return Record(versions, counts)


def write(path, record):
    lines = [f'{count:>12}  {road}\n' for road, count in record.counts.items()]
    pathlib.Path(path).write_text(HEAD + record.versions + '\n' + ''.join(lines), encoding='utf-8')


def of_dumps(folder, runs):
    """The counts of Callgrind's dumps in a folder, each named after its road, for one of so many runs."""
    counts = {}
    # callgrind.out, .1, .2 ...: in the order of the dumps.
    paths = [path for path in pathlib.Path(folder).glob('callgrind.out.*') if path.suffix[1:].isdigit()]
    for path in sorted(paths, key=lambda path: int(path.suffix[1:])):
        text = path.read_text(encoding='utf-8', errors='replace')
        road = re.search(r'^desc: Trigger: Client Request: (.+)$', text, re.MULTILINE)
        total = re.search(r'^(?:summary|totals): (\d+)', text, re.MULTILINE)
        if road and total:
            counts[road[1]] = round(int(total[1]) / runs)
    return counts


def change(count, before):
    if before is None:
        return 'new'
    return f'{(count - before) / before * 100:+.2f} %'


def comparison(counted, recorded):
    """Lines that tell what changed."""
    lines = [f'{count:>12}  {change(count, recorded.counts.get(road)):>9}  {road}' for road, count in counted.counts.items()]
    lines += [f'{"":>12}  {"gone":>9}  {road}' for road in recorded.counts if road not in counted.counts]
    if recorded.counts and recorded.versions != counted.versions:
        lines += ['', f'The record was made with {recorded.versions}: not every change is the code\'s.']
    return lines


def main(arguments):
    if len(arguments) != 2:
        print(__doc__.strip().split('\n', maxsplit=1)[0], file=sys.stderr)
        return 2
    print('\n'.join(comparison(read(arguments[0]), read(arguments[1]))))
    return 0


if __name__ == '__main__':
    sys.exit(main(sys.argv[1:]))
