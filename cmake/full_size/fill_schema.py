#!/usr/bin/env python3
"""Fills a schema up to the catalogue of a whole product: the same rows, and as many classes, fields, references and paths.

  fill_schema.py SCHEMA OUT [--part N]

SCHEMA is the folder of the library's own schema files, which stay as they are. OUT gets a NAME.extension.xml for each of them;
both together are one catalogue. With --part N an Nth of what is missing is added. The same SCHEMA gives the same files on every
machine.
"""
import argparse
import collections
import pathlib
import random
import sys

sys.dont_write_bytecode = True  # the source stays as it is

from names import Names
from path_roots import add_paths, instructions
from schema_model import Class, Field, INSTRUCTIONS, name_hash, read_schema

# What a whole catalogue holds, over all subsystems. Described records are classes and enumerations; fields are enumerators
# and the records that classes have of themselves, too; instructed classes begin with processinginstructioninfo; an assigned
# id is none that follows from the name.
WHOLE = collections.Counter(
    described=17_999, enumerations=2_178, enumerators=15_347, fieldless=23, instructed=15_604, selves=216, assigned=2_735,
    fields=118_584, hashless=2_259, references=42_572, defaults=3_811, annotations=16_111)
PATHS = {'TMMsg': 24_988, 'ZqEntities': 352, 'Ida': 150, 'databrowse': 872}

# Types of fields, with how many of a thousand have them.
VALUES = {'int': 330, 'string': 310, 'bool': 120, 'uint': 55, 'longlong': 55, 'long': 8, 'ulong': 6, 'ulonglong': 2, 'double': 12,
          'float': 5, 'wstring': 20, 'bstring': 6, 'pstring': 12, 'time32': 4, 'time64': 3, 'list_int': 20, 'list_string': 24,
          'list_uint': 3, 'list_long': 1, 'list_longlong': 3, 'list_wstring': 2, 'list_double': 1, 'map_string_string': 2,
          'map_int64_int64': 1, 'map_int64_string': 1, 'map_string_int64': 1}
REFERENCES = {'object': 440, 'list_object': 330, 'enum': 190, 'list_enum': 30, 'map_int64_object': 4, 'map_string_object': 6}
PAIRS = 12  # maps from object to object
DEFAULTS = {'int': ('0', '1', '-1', '25'), 'uint': ('0', '1'), 'longlong': ('0', '-1'), 'bool': ('true', 'false'),
            'string': ('', 'default', 'none'), 'double': ('0', '1.5'), 'long': ('0',), 'ulong': ('0',), 'enum': ('0', '1')}
DATES = ('int', 'uint', 'longlong', 'time32', 'time64')


def spread(chance, number, places, least):
    """`number` things over `places`: `least` for each, and a long tail."""
    shares = [least] * places
    weights = [min(chance.paretovariate(1.3), 60) for _ in range(places)]
    for place in chance.choices(range(places), weights, k=number - least * places):
        shares[place] += 1
    return shares


class Filler:
    """Adds to subsystems what they lack, once."""

    def __init__(self, subsystems, part):
        self.subsystems, self.part = subsystems, part
        self.chance = random.Random(18_482)
        self.names = Names(self.chance)
        self.quota = collections.Counter({key: number // part for key, number in (WHOLE - self.counted('given')).items()})

    def counted(self, which):
        total = collections.Counter()
        for subsystem in self.subsystems:
            for record in getattr(subsystem, which):
                total.update(record.counts())
        return total

    def missing(self, key):
        """How much is still to be added."""
        return self.quota[key] - self.counted('added')[key]

    def run(self):
        enumerations, classes = self.records()
        for record, share in zip(enumerations, spread(self.chance, self.quota['enumerators'], len(enumerations), 1)):
            self.add_enumerators(record, share)
        classes = classes[self.quota['fieldless']:]
        for subsystem in self.subsystems:
            if subsystem.name in PATHS:
                own = [record for record in classes if record.subsystem is subsystem]
                add_paths(self.subsystems, subsystem, own, PATHS[subsystem.name], self.part, self.names, self.chance)
        classes = [record for record in classes if not record.fields]
        for record in classes[:self.missing('instructed')]:
            record.fields.append(instructions())
        for record in self.chance.sample(classes, self.missing('selves')):
            record.self_annotation = f'<StoredProcedure name="Zq{record.name}"/>'
        self.add_fields(classes)

    def records(self):
        """Enumerations and classes at free indices of all subsystems; no fields yet."""
        free = [(subsystem, index) for subsystem in self.subsystems for index in subsystem.free_indices()]
        self.chance.shuffle(free)
        assigned = set(self.chance.sample(range(self.quota['described']), self.quota['assigned']))
        made = []
        for position, (subsystem, index) in enumerate(free[:self.quota['described']]):
            is_enumeration = position < self.quota['enumerations']
            name = self.names.of_class(subsystem, is_enumeration, position not in assigned)
            made.append(Class(subsystem, name, index, is_enumeration))
            subsystem.added.append(made[-1])
        for position in sorted(assigned):
            record = made[position]
            record.class_id = next(number for number in range(record.index + 1, 1 << 24) if number not in record.subsystem.ids)
            record.subsystem.ids.add(record.class_id)
        return made[:self.quota['enumerations']], made[self.quota['enumerations']:]

    def add_enumerators(self, record, share):
        is_set_of_flags = share < 20 and self.chance.random() < 0.2
        for position, name in enumerate(self.names.of_enumerators(share)):
            record.fields.append(Field({'name': name, 'value': hex(1 << position) if is_set_of_flags else str(position)}))

    def add_fields(self, classes):
        """Fields of all sorts, until nothing is missing."""
        shares = spread(self.chance, self.missing('fields') - len(classes), len(classes), 0)
        places = [record for record, share in zip(classes, shares) for _ in range(share + 1)]
        self.chance.shuffle(places)
        references = self.missing('references')
        pairs = min(PAIRS, references // 2)
        types = ['map_object_object'] * pairs
        types += self.chance.choices(list(REFERENCES), REFERENCES.values(), k=references - 2 * pairs)
        types += self.chance.choices(list(VALUES), VALUES.values(), k=len(places) - len(types))
        self.targets()
        added = []
        names = {}
        for record, kind in zip(places, types):
            taken, hashes = names.setdefault(record, (record.names(), {name_hash(name) for name in record.names()}))
            field = Field({'name': self.names.of_field(taken, hashes), 'type': kind})
            for key in ('key', 'value') if kind == 'map_object_object' else ('class',) if kind in REFERENCES else ():
                field.attributes[key] = self.target(record, kind)
            record.fields.append(field)
            added.append(field)
        for record in classes:
            first = 1 if record.fields[0].name == INSTRUCTIONS else 0
            rest = record.fields[first:]
            self.chance.shuffle(rest)
            record.fields[first:] = rest
        self.decorate(added)

    def targets(self):
        self.known = {(subsystem, kind): [record for record in subsystem.classes() if record.is_enumeration == kind]
                      for subsystem in self.subsystems for kind in (False, True)}
        # Objects of old-way classes are built whole: classes of one half hold objects of the other half alone.
        self.holders = {record for (subsystem, _), records in self.known.items() if subsystem.is_old
                        for record in records if record in subsystem.given or self.chance.random() < 0.5}
        self.plain = [subsystem for subsystem in self.subsystems if not subsystem.is_old and subsystem.records > 20]

    def target(self, record, kind):
        """The name of a class that a field may lead to: most often a neighbour."""
        wants_enumeration = kind in ('enum', 'list_enum')
        may_be_own = kind != 'object' or not record.subsystem.is_old or record in self.holders
        subsystem = record.subsystem if may_be_own and self.chance.random() < 0.8 else self.chance.choice(self.plain)
        known = self.known[subsystem, wants_enumeration]
        if kind == 'object' and subsystem.is_old:
            known = [other for other in known if other not in self.holders]
        if not known:
            known = self.known[next(other for other in self.subsystems if other.name == 'ZqEntities'), wants_enumeration]
        found = self.chance.choice(known)
        return found.name if found.subsystem is record.subsystem else found.full_name

    def decorate(self, added):
        """Hashes of 0, labels, defaults and annotations."""
        for field in self.chance.sample(added, self.missing('hashless')):
            field.attributes['hash'] = '0'
        for field in added:
            if field.has_hash and self.chance.random() < 0.3:
                field.attributes['label'] = hex(0x75000000 + self.chance.randrange(1 << 16))
        for field in self.chance.sample([field for field in added if field.type in DEFAULTS], self.missing('defaults')):
            field.attributes['default'] = self.chance.choice(DEFAULTS[field.type])
        for field in added:
            if field.type == 'pstring':
                field.annotations.append('<Password encType="%d"/>' % self.chance.choice((1, 3, 5, 9)))
        bare = [field for subsystem in self.subsystems for record in subsystem.added if record.is_enumeration
                for field in record.fields] + [field for field in added if not field.annotations]
        for field in self.chance.sample(bare, self.missing('annotations')):
            field.annotations += self.annotations(field)

    def annotations(self, field):
        text = ' '.join(self.names.of_enumerators(1)[0].split('_')).capitalize()
        choice = self.chance.random()
        if field.type is None or choice < 0.35:
            return [f'<Text text="{text}"/>']
        if field.type in DATES and choice < 0.5:
            return ['<XDate type="1"/>']
        if choice < 0.65:
            return [f'<Text text="{text}"/>', f'<CommandParam name="{field.name[:4].lower()}"/>']
        if choice < 0.7:
            return ['<SearchCriteriaDef type="1" And="true" text="%s"/>' % field.name]
        return ['<%s/>' % self.chance.choice(('HideInReports', 'Sensitive', 'SingleInstanced', 'Suppress', 'GenPath'))]


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('schema', type=pathlib.Path)
    parser.add_argument('out', type=pathlib.Path)
    parser.add_argument('--part', type=int, default=1)
    arguments = parser.parse_args()
    subsystems = read_schema(arguments.schema)
    filler = Filler(subsystems, arguments.part)
    filler.run()
    if arguments.part == 1:
        counted = filler.counted('given') + filler.counted('added')
        assert all(counted[key] == number for key, number in WHOLE.items()), counted
    arguments.out.mkdir(parents=True, exist_ok=True)
    for subsystem in subsystems:
        subsystem.write_extension(arguments.out / f'{subsystem.name}.extension.xml')


if __name__ == '__main__':
    main()
