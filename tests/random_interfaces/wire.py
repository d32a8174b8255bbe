"""An implementation of the wire form of its own, over the model of generate.py: it invents messages, and tells of any
message how far a decoding pass comes, what an encoding pass then writes, and which elements the trace has.

One walk over a type does all of it: its units are read from a message, or invented.
"""

import random
import struct

from generate import BUILTINS, base

LONGEST_MESSAGE = 65535


class Refused(Exception):
    """A pass that fails. The tape stands where it stopped."""


class Reading:
    """A tape that holds a message."""

    def __init__(self, message):
        self.message, self.at = message, 0

    def unit(self, _):
        return struct.unpack(">I", self.bytes(4, None))[0]

    def bytes(self, size, _):
        if len(self.message) - self.at < size:
            raise Refused()
        self.at += size
        return self.message[self.at - size:self.at]


class Inventing:
    """A tape that makes its units up, and makes an end after a while."""

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
    return lambda tape: tape.rng.choice((0, 1, (1 << count) - 1, 1 << (count - 1), tape.rng.randrange(1 << count)))


def signed16(tape):
    return tape.rng.choice((0, 1, -1, 32767, -32768, tape.rng.randrange(-32768, 32768)))


def real(tape):
    number = tape.rng.choice((0.0, -1.5, 3e38, 1e-40, float("-inf"), tape.rng.uniform(-1e6, 1e6)))
    return struct.unpack(">I", struct.pack(">f", number))[0]


def everything(unit):
    return unit


# What a unit of a built-in type may be, and what of any unit is kept and travels again.
UNITS = {
    "LongInteger": (bits(32), everything), "LongNatural": (bits(32), everything), "UINT": (bits(32), everything),
    "Integer": (signed16, lambda unit: unit & 0xFFFF | (0xFFFF0000 if unit & 0x8000 else 0)),
    "Natural": (bits(16), lambda unit: unit & 0xFFFF),
    "ShortInteger": (bits(8), lambda unit: unit & 0xFF), "ShortNatural": (bits(8), lambda unit: unit & 0xFF),
    "Boolean": (lambda tape: tape.rng.randrange(2), lambda unit: unit & 0xFF), "Float": (real, everything),
}


def characters(tape, size):
    return bytes(tape.rng.choice(b"aZ09 <>&\\\"'\n\x01\x7f\xc3\xa4\xff") for _ in range(size))


def anyBytes(tape, size):
    return tape.rng.randbytes(size)


def zeros(_, size):
    return bytes(size)


class Walk:
    """A pass over a type. `out` is what comes of the message; `elements` are those of the trace: the name of each, and
    whether it frames a value of a collection, which decoding alone shows."""

    def __init__(self, type, tape):
        self.tape, self.out, self.elements = tape, bytearray(), []
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

    def element(self, name, frames=False):
        self.elements.append((name, frames))

    def scalar(self, type, choices=None):
        """A built-in type or an enumeration; of `choices`, where these are made."""
        if isinstance(type, str):
            usual, kept = UNITS[BUILTINS[type]]
            return self.put(kept(self.tape.unit((lambda tape: tape.rng.choice(choices)) if choices else usual)))
        names = {each.value: each.name for each in type.members}
        choices = choices or [*names] * 9 + [0x12345678]
        unit = self.put(self.tape.unit(lambda tape: tape.rng.choice(choices)))
        self.element(names.get(unit, "Error_in_Function"))
        return unit

    def struct(self, type):
        for each in type.members:
            self.element(each.name)
            self.declaration(each)

    def union(self, type):
        arms = {number & 0xFFFFFFFF: arm for cases, arm in type.arms for number, _ in cases}
        behind = base(type.discriminant.type)
        others = (0, 1) if behind == "Boolean" else (77777, 0x7FFFFFF0)
        choices = [*arms] + [each for each in others if type.hasDefault and each not in arms]
        self.element(type.discriminant.name)
        number = self.scalar(behind, choices)
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

    def collection(self, made, count):
        for _ in range(count):
            self.element("value", frames=True)
            self.type(made.type)

    def vector(self, made):
        self.collection(made, made.bound)

    def count(self, made, usual):
        unit = self.tape.unit(lambda tape: tape.count(made.bound, usual))
        count = self.put(unit & 0xFFFF)
        if count > made.bound:
            raise Refused()
        return count

    def list(self, made):
        self.collection(made, self.count(made, (0, 1, 1, 2, 3, 7)))

    def optional(self, made):
        present = self.tape.unit(lambda tape: tape.count(1, (0, 1))) & 0xFF
        if self.put(int(present == 1)):
            self.type(made.type)

    def run(self, size, invent):
        run = self.tape.bytes(size, invent)
        self.tape.bytes(-size % 4, zeros)
        return run

    def padded(self, run):
        self.out += run + bytes(-len(run) % 4)

    def bytes(self, made):
        self.padded(self.run(self.count(made, (0, 1, 2, 3, 4, 5, 17, 40)), anyBytes))

    def opaque(self, made):
        self.padded(self.run(made.bound, anyBytes))

    def string(self, made):
        size = self.tape.unit(lambda tape: tape.count(made.bound, (0, 1, 2, 3, 4, 5, 30)))
        if size > made.bound:
            raise Refused()
        text = self.run(size, characters).split(b"\0")[0]  # in memory it ends there
        self.put(len(text))
        self.padded(text)


def invented(type, seed):
    """A message that holds a value of the type, and the walk over it. It may be longer than messages can be."""
    walk = Walk(type, Inventing(seed))
    return bytes(walk.out), walk


def expected(type, message):
    """What the driver has to say of a message: see driver.cc."""
    read = Reading(message)
    try:
        walk = Walk(type, read)
    except Refused:
        return f"0 {read.at}"
    out = bytes(walk.out)
    cuts = []
    for room in (len(out) // 2, len(out) - 1):
        cut = Reading(out[:max(room, 0)])
        try:
            Walk(type, cut)
        except Refused:
            pass
        cuts.append(str(cut.at))
    return f"1 {read.at} {len(out)} {out.hex()} {' '.join(cuts)}"
