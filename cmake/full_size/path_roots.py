"""Classes whose values have paths, as many as are asked for."""
from schema_model import Field, INSTRUCTIONS, INSTRUCTIONS_CLASS

STEPS = ('object', 'list_object')
WITHOUT_PATH = ('list_ulonglong', 'list_bstring', 'reserved_29')
LEAVES = ('int', 'string', 'bool', 'uint', 'longlong', 'list_string', 'list_int')
CLOSING = 24  # leaves of a class that is made to come out even, at most


class PathTree:
    """Walks the fields below a class, as the catalogue compiler does."""

    def __init__(self, subsystems):
        self.classes = {record.full_name: record for subsystem in subsystems for record in subsystem.classes()}

    def paths(self, record, prefix='', opened=()):
        """The texts of the paths below a root, whose own values have none."""
        if record in opened:
            return
        for field in record.fields:
            if not field.has_hash:
                continue
            if field.type in STEPS:
                reference = field.references()[0]
                target = self.classes[reference if '.' in reference else f'{record.subsystem.name}.{reference}']
                yield from self.paths(target, f'{prefix}{field.name}[1]/', (*opened, record))
            elif opened and field.type not in WITHOUT_PATH and not field.type.startswith('map_'):
                is_list = field.type.startswith('list_')
                yield prefix + ('' if is_list else '@') + field.name

    def below(self, record):
        """How many paths an object of the class adds where it is a field."""
        return sum(1 for _ in self.paths(record, opened=(None,)))


def path_id(text):
    value = 0
    for byte in text.encode():
        value = (value * 31 + byte) & 0xffffffff
    return min(value, (1 << 32) - value)


class RootMaker:
    """Fills empty classes of one subsystem so that it gets `count` paths more."""

    def __init__(self, tree, subsystem, classes, names, random):
        self.tree, self.subsystem, self.names, self.random = tree, subsystem, names, random
        self.free = list(classes)
        self.made = []
        self.root_names = {field.name for record in subsystem.given if record.is_root for field in record.fields}
        self.root_hashes = set()

    def run(self, count):
        room = len(self.free)
        leaves = [self._class(self.random.randint(3, 20), []) for _ in range(min(room // 10, count // 40))]
        middles = [self._class(self.random.randint(2, 12), self._some(leaves, 2, 4))
                   for _ in range(min(room // 16, count // 120))]
        tops = [self._class(self.random.randint(2, 8), self._some(middles, 3, 6)) for _ in range(min(room // 24, count // 500))]
        sizes = {record: self.tree.below(record) for record in leaves + middles + tops}
        held = []
        for layer in (tops, middles, leaves):
            while layer and count >= max(sizes[record] for record in layer):
                held.append(self.random.choice(layer))
                count -= sizes[held[-1]]
        while count > 0:
            held.append(self._class(min(count, CLOSING), []))
            count -= len(held[-1].fields)
        while held:
            root = self._class(0, [])
            root.is_root = True
            for record in held[:25]:
                self._hold(root, record, self.root_names, self.root_hashes).annotations.append('<GenPath/>')
            held = held[25:]
        return self.made

    def _some(self, classes, least, most):
        return [self.random.choice(classes) for _ in range(self.random.randint(least, most))] if classes else []

    def _class(self, leaves, held):
        record = self.free.pop()
        self.made.append(record)
        if held:
            record.fields.append(instructions())
        taken, hashes = record.names(), set()
        for _ in range(leaves):
            field = Field({'name': self.names.of_field(taken, hashes), 'type': self.random.choice(LEAVES)})
            if self.random.random() < 0.1:
                field.annotations.append('<SingleInstanced/>')
            record.fields.append(field)
        for inner in held:
            self._hold(record, inner, taken, hashes)
        return record

    def _hold(self, record, inner, taken, hashes):
        field = Field({'name': self.names.of_field(taken, hashes), 'type': 'object', 'class': inner.name})
        record.fields.append(field)
        return field


def instructions():
    return Field({'name': INSTRUCTIONS, 'type': 'object', 'class': INSTRUCTIONS_CLASS})


def add_paths(subsystems, subsystem, classes, whole, part, names, random):
    """Makes roots of classes without fields until the subsystem has its share of `whole` paths; returns the classes it used."""
    tree = PathTree(subsystems)
    given = {path for record in subsystem.given if record.is_root for path in tree.paths(record)}
    missing = (whole - len(given)) // part
    while True:
        maker = RootMaker(tree, subsystem, classes, names, random)
        made = maker.run(missing)
        paths = [path for record in made if record.is_root for path in tree.paths(record)]
        assert len(paths) == missing, (len(paths), missing)
        if len({path_id(path) for path in paths} | {path_id(path) for path in given}) == len(paths) + len(given):
            return made
        for record in made:  # two paths have one id: the same once more, with other names
            record.fields.clear()
            record.is_root = False
