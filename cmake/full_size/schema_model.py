"""The classes of a schema, as far as filling it up needs to know them: read from its files, and written as extensions."""
import collections
import dataclasses
import xml.etree.ElementTree as ElementTree
from xml.sax.saxutils import quoteattr

INSTRUCTIONS = 'processinginstructioninfo'
INSTRUCTIONS_CLASS = 'ZqEntities.ProcessingInstructionInfo'
REFERENCES = ('class', 'key', 'value')


def name_hash(text):
    """The 24-bit name hash of the system."""
    value = 0
    for byte in text.encode():
        value = (value * 31 + byte) & 0xffffff
    return value


@dataclasses.dataclass(eq=False)
class Field:
    """A field, or an enumerator: its attributes as the schema has them, and its annotations as elements."""
    attributes: dict
    annotations: list = dataclasses.field(default_factory=list)

    @property
    def name(self):
        return self.attributes['name']

    @property
    def type(self):
        return self.attributes.get('type')

    @property
    def has_hash(self):
        return 'hash' not in self.attributes

    def references(self):
        return [self.attributes[key] for key in REFERENCES if self.type and key in self.attributes]


@dataclasses.dataclass(eq=False)
class Class:
    """A class or an enumeration."""
    subsystem: 'Subsystem'
    name: str
    index: int
    is_enumeration: bool
    class_id: int = None
    is_root: bool = False
    fields: list = dataclasses.field(default_factory=list)
    self_annotation: str = None

    @property
    def full_name(self):
        return f'{self.subsystem.name}.{self.name}'

    def names(self):
        return {field.name for field in self.fields}

    def counts(self):
        """How much of what a catalogue is measured by the class has."""
        has_self = self.self_annotation is not None
        counts = collections.Counter(
            described=1, fields=len(self.fields) + has_self, selves=int(has_self), assigned=int(self.class_id is not None),
            annotations=sum(bool(field.annotations) for field in self.fields) + has_self,
            defaults=sum('default' in field.attributes for field in self.fields),
            references=sum(len(field.references()) for field in self.fields),
            hashless=sum(not field.has_hash for field in self.fields))
        if self.is_enumeration:
            counts.update(enumerations=1, enumerators=len(self.fields))
        elif not self.fields:
            counts.update(fieldless=1)
        elif self.fields[0].name == INSTRUCTIONS:
            counts.update(instructed=1)
        return counts

    def xml(self):
        kind = 'enum' if self.is_enumeration else 'class'
        head = f'  <{kind} name="{self.name}" index="{self.index}"'
        if self.class_id is not None:
            head += f' id="0x{self.class_id:x}"'
        if self.is_root:
            head += ' paths="true"'
        if not self.fields and self.self_annotation is None:
            return head + '/>\n'
        text = head + '>\n'
        for field in self.fields:
            attributes = ''.join(f' {key}={quoteattr(value)}' for key, value in field.attributes.items())
            tag = 'value' if self.is_enumeration else 'field'
            inner = ''.join(field.annotations)
            text += f'    <{tag}{attributes}' + (f'>{inner}</{tag}>\n' if inner else '/>\n')
        if self.self_annotation is not None:
            text += f'    <self>{self.self_annotation}</self>\n'
        return text + f'  </{kind}>\n'


class Subsystem:
    """A subsystem with what its own file describes, and what is added."""

    def __init__(self, path):
        root = ElementTree.parse(path).getroot()
        self.name = root.get('name')
        self.slot = int(root.get('slot'), 0)
        self.records = int(root.get('records'), 0)
        self.is_old = root.get('old') == 'true'
        self.given = [self._read(element) for element in root if element.tag in ('class', 'enum')]
        self.added = []
        # C++ has the class in a namespace of the subsystem's name, beside one function.
        self.class_names = {record.name for record in self.given} | {self.name, 'RegisterSubsystem'}
        self.ids = {name_hash(record.name) if record.class_id is None else record.class_id for record in self.given}

    def _read(self, element):
        record = Class(self, element.get('name'), int(element.get('index'), 0), element.tag == 'enum',
                       None if element.get('id') is None else int(element.get('id'), 0), element.get('paths') == 'true')
        for child in element:
            if child.tag in ('field', 'value'):
                annotations = [inner.tag for inner in child if inner.tag != 'doc']
                record.fields.append(Field(dict(child.attrib), annotations))
            elif child.tag == 'self':
                record.self_annotation = ''
        return record

    def free_indices(self):
        taken = {record.index for record in self.given}
        return [index for index in range(self.records) if index not in taken]

    def classes(self):
        return self.given + self.added

    def write_extension(self, path):
        records = ''.join(record.xml() for record in sorted(self.added, key=lambda record: record.index))
        path.write_text(f'<?xml version="1.0" encoding="UTF-8"?>\n<extension subsystem="{self.name}">\n{records}</extension>\n',
                        encoding='utf-8')


def read_schema(folder):
    """The subsystems of a folder of schema files, ascending by slot."""
    return sorted((Subsystem(path) for path in folder.glob('*.xml')), key=lambda subsystem: subsystem.slot)
