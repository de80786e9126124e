"""DXF files as groups and records, for tests: a plain reader of ASCII files that knows no more than the file's structure.

    drawing = read("plan.dxf")
    for ray in drawing.entities("RAY"):
        print(ray.point(10), ray.text(8))
"""

import collections
import pathlib

Group = collections.namedtuple("Group", "code value")  # the value as it stands, without its line end


def pairs(data):
    """The groups of an ASCII file's bytes. A binary file is one group, so that it is compared as bytes."""
    if data[18:22] == b"\r\n\x1a\0":
        return [Group(-1, data)]
    lines = data.decode("utf-8", "surrogateescape").replace("\r\n", "\n").split("\n")
    return [Group(int(lines[i]), lines[i + 1]) for i in range(0, len(lines) - 1, 2)]


def is_real(code):
    return 10 <= code <= 59 or 110 <= code <= 149 or 210 <= code <= 239 or 460 <= code <= 469 or 1010 <= code <= 1059


class Record:
    """The groups from a 0 group to the next. `attributes` of an INSERT are its ATTRIB records."""

    def __init__(self, groups):
        self.groups = groups
        self.attributes = []

    @property
    def type(self):
        return self.groups[0].value

    def all(self, code):
        return [group.value for group in self.groups if group.code == code]

    def text(self, code, default=None):
        """The first value with that code."""
        return next((group.value for group in self.groups if group.code == code), default)

    def real(self, code, default=None):
        value = self.text(code)
        return default if value is None else float(value)

    def integer(self, code, default=None):
        value = self.text(code)
        return default if value is None else int(value)

    def point(self, code):
        """The point whose x has that code."""
        return tuple(self.real(code + step, 0.0) for step in (0, 10, 20))

    @property
    def handle(self):
        return self.text(105 if self.type == "DIMSTYLE" else 5)

    @property
    def owner(self):
        """Group 330 outside of 102 groups."""
        inside = False
        for group in self.groups:
            if group.code == 102:
                inside = group.value.startswith("{")
            elif group.code == 330 and not inside:
                return group.value
        return None

    def section(self, marker):
        """The groups behind a subclass marker (100), up to the next."""
        found = []
        inside = False
        for group in self.groups:
            if group.code == 100:
                inside = group.value == marker
            elif inside:
                found.append(group)
        return Record([Group(0, self.type)] + found)

    def __repr__(self):
        return f"<{self.type} {self.handle}>"


class Drawing:
    def __init__(self, data):
        self.groups = pairs(data)
        self.header = {}
        self.sections = collections.defaultdict(list)  # section name: records
        self._read()

    def _read(self):
        section, record, variable, reference = None, None, None, None
        for group in self.groups:
            if group.code == 0:
                if group.value in ("SECTION", "ENDSEC", "EOF"):
                    section, record, variable, reference = None, None, None, None
                    continue
                record = Record([group])
                if group.value == "ATTRIB" and reference:
                    reference.attributes.append(record)
                else:
                    reference = record if group.value == "INSERT" else None
                self.sections[section].append(record)
            elif section is None and group.code == 2:
                section = group.value
            elif section == "HEADER" and group.code == 9:
                variable = self.header[group.value] = []
            elif variable is not None:
                variable.append(group)
            elif record is not None:
                record.groups.append(group)

    def entities(self, kind=None):
        """The records of the ENTITIES section, all or of one type."""
        return [r for r in self.sections["ENTITIES"] if kind is None or r.type == kind]

    def block(self, name):
        """The records between BLOCK and ENDBLK."""
        found, inside = [], False
        for record in self.sections["BLOCKS"]:
            if record.type == "BLOCK":
                inside = record.text(2) == name
            elif record.type == "ENDBLK":
                inside = False
            elif inside:
                found.append(record)
        return found

    def table(self, kind):
        return [r for r in self.sections["TABLES"] if r.type == kind]

    def objects(self, kind=None):
        return [r for r in self.sections["OBJECTS"] if kind is None or r.type == kind]

    def by_handle(self, handle):
        for records in self.sections.values():
            for record in records:
                if record.handle == handle:
                    return record
        return None

    def variable(self, name):
        """The values of a header variable."""
        return [group.value for group in self.header.get(name, [])]


def read(path):
    return Drawing(pathlib.Path(path).read_bytes())
