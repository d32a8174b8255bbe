"""The wire format of random interface files, written again in Python: what the routines of a type must make of a
message, and which elements their traces must have.

One pass does all of it. Its units come from a message, or are invented.
"""

import random
import struct

from generate import BUILTINS, base

LONGEST_MESSAGE = 65535


class Refused(Exception):
    """A message that the type does not accept. The source is at the place of the refusal."""


class Message:
    """A source of units: a message."""

    def __init__(self, message):
        self.message, self.at = message, 0

    def unit(self, _):
        return struct.unpack(">I", self.bytes(4, None))[0]

    def bytes(self, size, _):
        if len(self.message) - self.at < size:
            raise Refused()
        self.at += size
        return self.message[self.at - size:self.at]


class Inventor:
    """A source of units: it invents them, and invents counts of zero after `budget` bytes."""

    def __init__(self, seed, budget=1200):
        self.rng, self.budget = random.Random(seed), budget

    def unit(self, invent):
        self.budget -= 4
        return invent(self) & 0xFFFFFFFF

    def bytes(self, size, invent):
        self.budget -= size
        return invent(self, size)

    def count(self, maximum, usual):
        return 0 if self.budget < 0 else min(maximum, self.rng.choice(usual))


def bits(count):
    limit = 1 << count
    return lambda source: source.rng.choice((0, 1, limit - 1, limit // 2, source.rng.randrange(limit)))


def signed16(source):
    return source.rng.choice((0, 1, -1, 32767, -32768, source.rng.randrange(-32768, 32768)))


def real(source):
    number = source.rng.choice((0.0, -1.5, 3e38, 1e-40, float("-inf"), source.rng.uniform(-1e6, 1e6)))
    return struct.unpack(">I", struct.pack(">f", number))[0]


def unchanged(unit):
    return unit


# By built-in type: how to invent a unit, and the unit that is encoded after any unit was decoded.
UNITS = {
    "LongInteger": (bits(32), unchanged), "LongNatural": (bits(32), unchanged), "UINT": (bits(32), unchanged),
    "Integer": (signed16, lambda unit: unit & 0xFFFF | (0xFFFF0000 if unit & 0x8000 else 0)),
    "Natural": (bits(16), lambda unit: unit & 0xFFFF),
    "ShortInteger": (bits(8), lambda unit: unit & 0xFF), "ShortNatural": (bits(8), lambda unit: unit & 0xFF),
    "Boolean": (lambda source: source.rng.randrange(2), lambda unit: unit & 0xFF), "Float": (real, unchanged),
}


def characters(source, size):
    return bytes(source.rng.choice(b"aZ09 <>&\\\"'\n\x01\x7f\xc3\xa4\xff") for _ in range(size))


def anyBytes(source, size):
    return source.rng.randbytes(size)


def zeros(_, size):
    return bytes(size)


class Pass:
    """One pass over a type. `out` is what an encode makes of the decoded object. `elements` are those of the trace: the
    name of each, and true for the tag around an array element, which only the trace of a decode has."""

    def __init__(self, type, source):
        self.source, self.out, self.elements = source, bytearray(), []
        self.type(type)

    def type(self, type):
        if isinstance(type, str):
            self.scalar(type)
        elif type.kind == "typedef":
            self.declaration(type.target)
        else:
            {"enum": self.scalar, "struct": self.struct, "union": self.union}[type.kind](type)

    def put(self, unit):
        self.out += struct.pack(">I", unit)
        return unit

    def element(self, name, isElementTag=False):
        self.elements.append((name, isElementTag))

    def scalar(self, type, choices=None):
        """A built-in type or an enumeration; `choices` are what to invent, if given."""
        if isinstance(type, str):
            invent, kept = UNITS[BUILTINS[type]]
            return self.put(kept(self.source.unit((lambda source: source.rng.choice(choices)) if choices else invent)))
        names = {each.value: each.name for each in type.members}
        choices = choices or [*names] * 9 + [0x12345678]
        unit = self.put(self.source.unit(lambda source: source.rng.choice(choices)))
        self.element(names.get(unit, "Error_in_Function"))
        return unit

    def struct(self, type):
        for each in type.members:
            self.element(each.name)
            self.declaration(each)

    def union(self, type):
        arms = {number & 0xFFFFFFFF: arm for cases, arm in type.arms for number, _ in cases}
        discriminant = base(type.discriminant.type)
        others = (0, 1) if discriminant == "Boolean" else (77777, 0x7FFFFFF0)
        choices = [*arms] + [each for each in others if type.hasDefault and each not in arms]
        self.element(type.discriminant.name)
        number = self.scalar(discriminant, choices)
        if number not in arms and not type.hasDefault:
            raise Refused()
        self.element(type.name + "Union")
        if number not in arms:
            self.element("default")
        elif arms[number].form != "void":
            self.element(arms[number].name)
            self.declaration(arms[number])

    def declaration(self, made):
        getattr(self, made.form)(made)

    def single(self, made):
        self.type(made.type)

    def array(self, made, count):
        for _ in range(count):
            self.element("value", isElementTag=True)
            self.type(made.type)

    def fixedArray(self, made):
        self.array(made, made.bound)

    def count(self, made, usual):
        unit = self.source.unit(lambda source: source.count(made.bound, usual))
        count = self.put(unit & 0xFFFF)
        if count > made.bound:
            raise Refused()
        return count

    def variableArray(self, made):
        self.array(made, self.count(made, (0, 1, 1, 2, 3, 7)))

    def optional(self, made):
        present = self.source.unit(lambda source: source.count(1, (0, 1))) & 0xFF
        if self.put(int(present == 1)):
            self.type(made.type)

    def take(self, size, invent):
        """Bytes and their padding."""
        taken = self.source.bytes(size, invent)
        self.source.bytes(-size % 4, zeros)
        return taken

    def putPadded(self, content):
        self.out += content + bytes(-len(content) % 4)

    def variableOpaque(self, made):
        self.putPadded(self.take(self.count(made, (0, 1, 2, 3, 4, 5, 17, 40)), anyBytes))

    def fixedOpaque(self, made):
        self.putPadded(self.take(made.bound, anyBytes))

    def string(self, made):
        size = self.source.unit(lambda source: source.count(made.bound, (0, 1, 2, 3, 4, 5, 30)))
        if size > made.bound:
            raise Refused()
        text = self.take(size, characters).split(b"\0")[0]  # a zero byte ends it in memory
        self.put(len(text))
        self.putPadded(text)


def invented(type, seed):
    """A valid message of the type and the pass over it. It may be longer than LONGEST_MESSAGE."""
    invention = Pass(type, Inventor(seed))
    return bytes(invention.out), invention


def expected(type, message):
    """The line that the driver has to print for a message: see driver.cc."""
    read = Message(message)
    try:
        decoded = Pass(type, read)
    except Refused:
        return f"0 {read.at}"
    out = bytes(decoded.out)
    cuts = []
    for room in (len(out) // 2, len(out) - 1):
        cut = Message(out[:max(room, 0)])
        try:
            Pass(type, cut)
        except Refused:
            pass
        cuts.append(str(cut.at))
    return f"1 {read.at} {len(out)} {out.hex()} {' '.join(cuts)}"
