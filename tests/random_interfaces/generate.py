#!/usr/bin/env python3
"""Writes random interface files that are valid except for their names: generate.py SEED --out DIR [--names CLASSES]

A seed gives a library: some modules that import each other. Definitions have every form of the language, in any order,
and names that collide with each other and with names in generated code. wire.py invents and judges messages by the same
model that is printed here.
"""

import argparse
import pathlib
import random

from names import MODULES, Names

CLASSES = ("words", "library", "keywords", "macros", "echo", "modules")

# By spelling: the built-in type.
BUILTINS = {"LongInteger": "LongInteger", "int": "LongInteger", "LongNatural": "LongNatural", "unsigned": "LongNatural",
            "unsigned int": "LongNatural", "UINT": "UINT", "Integer": "Integer", "Natural": "Natural",
            "ShortInteger": "ShortInteger", "ShortNatural": "ShortNatural", "Boolean": "Boolean", "bool": "Boolean",
            "Float": "Float", "float": "Float"}
EXTREMES = (0x7FFFFFFF, 0xFFFFFFFF, -0x80000000)
MOST_UNITS = 2000  # of the shortest value of a type, so that messages stay short
REMARKS = ("what it holds", "", "ends in \\", "??/", "// strokes /* and stars", "@ no mark", "ä ࠀ € 𐀀",
           "a\ttab", "\"quoted\" 'too' %s \\n \\x41", "R\"(raw)\" #define x", "words " * 30, "<v> &amp; ]]>",
           "case 1: return;")


class Named:
    """Anything with a name. Where the compiler refuses the name, `name` is replaced."""

    def __init__(self, name):
        self.name = name
        self.remark = None


class Enumerator(Named):
    def __init__(self, name, value):
        super().__init__(name)
        self.value = value


class Declaration(Named):
    """A field, an arm, or the target of a typedef. `type` is a Definition or a key of BUILTINS."""

    def __init__(self, name, form, type=None, bound=None, written=None, tagged=False):
        super().__init__(name)
        self.form, self.type, self.bound, self.written, self.tagged = form, type, bound, written, tagged

    def units(self):
        """The units of its shortest value, at most."""
        if self.form == "fixedOpaque":
            return (self.bound + 3) // 4
        if self.form in ("single", "fixedArray"):
            each = self.type.units if isinstance(self.type, Definition) else 1
            return each * (self.bound if self.form == "fixedArray" else 1)
        return 0 if self.form == "void" else 1


class Definition(Named):
    def __init__(self, name, kind, module):
        super().__init__(name)
        self.kind, self.module = kind, module  # const, enum, struct, union, typedef
        self.members = []   # enumerators or fields
        self.arms = []      # (cases, declaration); a case is a number and how it is written
        self.discriminant = self.target = self.value = self.written = None
        self.hasDefault = self.lastIsDefault = self.typedefForm = False
        self.units = 1

    def held(self):
        """The members of an object of the type."""
        if self.kind == "struct":
            return self.members
        return [self.discriminant, *(arm for _, arm in self.arms if arm.form != "void")] if self.kind == "union" else []

    def reached(self):
        """The definitions that this one refers to, directly or not."""
        found, waiting = set(), [self]
        while waiting:
            made = waiting.pop()
            for each in [*made.held(), *filter(None, [made.target])]:
                if isinstance(each.type, Definition) and each.type not in found:
                    found.add(each.type)
                    waiting.append(each.type)
        return found

    def canonical(self):
        """The type after all typedefs that only rename."""
        at = self
        while isinstance(at, Definition) and at.kind == "typedef" and at.target.form == "single":
            at = at.target.type
        return at


class Remote(Named):
    """A remote program, version or procedure. The type of an argument or a result is None for void."""

    def __init__(self, name, number, members=(), argument=None, result=None):
        super().__init__(name)
        self.number, self.members, self.argument, self.result = number, members, argument, result

    def all(self):
        return [self, *(each for member in self.members for each in member.all())]


class Module(Named):
    def __init__(self, name):
        super().__init__(name)
        self.imports, self.definitions, self.programs = [], [], []

    def visible(self):
        seen = [self]
        for module in seen:
            seen.extend(each for each in module.imports if each not in seen)
        return seen


class Library:
    """The modules of a seed."""

    def __init__(self, seed, classes=CLASSES):
        self.rng = random.Random(seed)
        self.names = Names(self.rng, classes)
        self.globals = set()
        self.hasPeer = True  # false if C cannot declare all types
        self.modules = []
        count = self.rng.choice((1, 2, 3, 6, 9, 12, 15))
        moduleNames = self.rng.sample(MODULES, count) if "modules" in classes else [f"m{i}/n" for i in range(count)]
        for name in moduleNames:
            self.modules.append(self.module(name))
        fixedArrays = [each for each in self.types() if each.kind == "typedef" and each.target.form == "fixedArray"]
        if any(each in each.reached() for each in fixedArrays):
            self.hasPeer = False  # C has no arrays of incomplete types
        # rpcgen makes macros of these names, and functions of procedures' names in small letters and versions' numbers.
        taken = {each.name for made in self.definitions() for each in [made, *(made.members * (made.kind == "enum"))]}
        macros = [each.name for each in self.remotes()]
        functions = [(each.name.lower(), version.number) for version in self.remotes() for each in version.members]
        if taken.intersection(macros) or any(len(set(each)) < len(each) for each in (macros, functions)):
            self.hasPeer = False

    def definitions(self):
        return [each for module in self.modules for each in module.definitions]

    def types(self):
        return [each for each in self.definitions() if each.kind != "const"]

    def remotes(self):
        return [each for module in self.modules for program in module.programs for each in program.all()]

    def named(self, name):
        """What has the name, with its role: definitions, else enumerators, else members."""
        definitions = self.definitions()
        enumerators = [each for made in definitions if made.kind == "enum" for each in made.members]
        members = [each for made in definitions for each in made.held()]
        for every in ([(each, each.kind) for each in definitions], [(each, "enumerator") for each in enumerators],
                      [(each, "remote name") for each in self.remotes()], [(each, "member") for each in members]):
            if found := [(each, role) for each, role in every if each.name == name]:
                return found
        return []

    # ---- Modules and definitions ----

    def module(self, name):
        rng = self.rng
        module = Module(name)
        # A part of a path that begins with a digit is not a word of the language, so it cannot be imported.
        importable = [each for each in self.modules if not any(part[0].isdigit() for part in each.name.split("/"))]
        module.imports = rng.sample(importable, min(len(importable), rng.choice((0, 0, 1, 1, 2, 4))))
        module.remark = rng.choice((None, "the module's own words\n// in two lines"))

        self.ready = [each for other in module.visible() for each in other.definitions]
        count = rng.choice((1, 3, 8, 15, 25, 40))
        kinds = rng.choices(("const", "enum", "struct", "union", "typedef"), (2, 3, 6, 5, 6), k=count)
        kinds.sort(key=lambda kind: kind not in ("const", "enum"))
        made = [Definition(self.names.draw(self.globals), kind, module) for kind in kinds]
        self.ahead = [each for each in made if each.kind in ("struct", "union", "typedef")]
        for each in made:
            self.owner = each
            getattr(self, each.kind)(each)
            each.remark = rng.choice((None, None, "what it stands for", "@provisional until it is settled", *REMARKS))
            self.ready.append(each)
        if rng.random() < 0.03:
            made.extend(self.ring(module))
        rng.shuffle(made)
        module.definitions = made
        module.programs = [self.program() for _ in range(rng.choice((0, 0, 0, 1, 2)))]
        return module

    def program(self):
        """A program with some versions, which may have any of the ready types as arguments and results."""
        rng = self.rng
        types = [None, *BUILTINS, *(each for each in self.ready if each.kind != "const")]

        def some(make, least, most):
            taken, count = set(), rng.choice((1, 1, 2, 3))
            return [make(self.names.draw(taken), number) for number in rng.sample(range(least, most), count)]

        def procedure(name, number):
            return Remote(name, number, argument=rng.choice(types), result=rng.choice(types))

        self.programCount = getattr(self, "programCount", 0) + 1
        versions = some(lambda name, number: Remote(name, number, some(procedure, 1, 1 << 32)), 0, 1 << 32)
        made = Remote(self.names.draw(self.globals), 0x20000000 + self.programCount, versions)
        for each in made.all():
            each.remark = self.remark()
        return made

    def const(self, made):
        rng = self.rng
        made.value = rng.choice((1, 2, 3, 4, 5, 7, 8, 64, 255, 0, -1, 40000, 65535, 65536, *EXTREMES))
        earlier = [each for each in self.ready if each.kind == "const"]
        if earlier and rng.random() < 0.2:
            made.written = rng.choice(earlier)
            made.value = made.written.value
        else:
            made.written = self.number(made.value)

    def enum(self, made):
        rng = self.rng
        count = rng.choice((1, 2, 3, 3, 4, 5, 9, 30, 150))
        pool = rng.choice((range(count), range(rng.choice((1, 7, 1000)), 5000), range(0x7FFFFFFF)))
        values = rng.sample(pool, count)
        if rng.random() < 0.2:
            values[-1] = 0x7FFFFFFF
        if rng.random() < 0.7:
            values.sort()
        made.members = [Enumerator(self.names.draw(self.globals), value) for value in values]
        for each in made.members:
            each.written = self.constantOr(each.value)
            each.remark = self.remark()
        made.typedefForm = rng.random() < 0.1

    def struct(self, made):
        rng = self.rng
        taken = set()
        made.units = 0
        content = rng.choice(("any",) * 8 + ("sequences", "floats", "flat"))
        for _ in range(rng.choice((1, 1, 2, 2, 3, 4, 5, 7, 9, 12, 60))):
            field = self.declaration(taken, content, MOST_UNITS - made.units)
            made.members.append(field)
            made.units += field.units()
        made.typedefForm = rng.random() < 0.1

    def union(self, made):
        rng = self.rng
        taken = set()
        enumerations = [each for each in self.ready if isinstance(base(each), Definition) and base(each).kind == "enum"]
        numbers = [each for each in self.ready if each.kind == "typedef" and
                   base(each) in ("LongInteger", "LongNatural", "UINT", "Boolean")]
        written = rng.choice(("int", "unsigned", "LongInteger", "UINT", "unsigned int", "bool", "Boolean"))
        pools = [each for each in (enumerations, enumerations, numbers) if each]
        type = rng.choice(rng.choice(pools)) if pools and rng.random() < 0.7 else written
        made.discriminant = Declaration(self.names.draw(taken), "single", type, tagged=rng.random() < 0.2)
        cases = self.cases(base(type))
        made.hasDefault = rng.random() < 0.3
        held = []
        while cases:
            some, cases = cases[:(several := rng.choice((1, 1, 1, 1, 2, 3)))], cases[several:]
            if rng.random() < 0.15:
                arm = Declaration("", "void")
            elif held and rng.random() < 0.15:
                arm = rng.choice(held)  # a member that several arms share
            else:
                arm = self.declaration(taken, "any", MOST_UNITS - 1)
                held.append(arm)
            made.arms.append((some, arm))
        made.units = 1 + max(arm.units() for _, arm in made.arms)
        covered = {number for some, _ in made.arms for number, _ in some}
        made.lastIsDefault = arm.form != "void" and not made.hasDefault and covered == self.values(base(type))
        made.typedefForm = rng.random() < 0.1

    @staticmethod
    def values(type):
        """All values of an enumeration or of `bool`; None for a number."""
        if isinstance(type, Definition):
            return {each.value for each in type.members}
        return {0, 1} if type == "Boolean" else None

    def cases(self, type):
        """Numbers for cases, and how each is written."""
        rng = self.rng
        if isinstance(type, Definition):
            some = rng.sample(type.members, rng.randint(1, len(type.members)))
            return [(each.value, each if rng.random() < 0.8 else self.constantOr(each.value)) for each in some]
        if type == "Boolean":
            some = rng.sample((0, 1), rng.choice((1, 2, 2)))
            return [(each, rng.choice((("FALSE", "TRUE")[each], str(each)))) for each in some]
        least, most = (-0x80000000, 0x7FFFFFFF) if type == "LongInteger" else (0, 0xFFFFFFFF)
        count = rng.choice((1, 2, 3, 5, 8, 100))
        pool = rng.choice((range(max(least, -3), 200), range(least, most + 1), range(500, 5000)))
        some = set(rng.sample(pool, count))
        if rng.random() < 0.2:
            some |= {least, most}
        return [(each, self.constantOr(each)) for each in rng.sample(sorted(some), len(some))]

    def typedef(self, made):
        rng = self.rng
        aliases = [each for each in self.ready if each.kind == "typedef"]
        if aliases and rng.random() < 0.35:
            target = Declaration("", "single", rng.choice(aliases[-3:]))  # makes chains, sometimes long ones
        else:
            target = self.declaration(set(), "any", MOST_UNITS, ofTypedef=True)
        made.target = target
        made.units = max(target.units(), 1)

    def ring(self, module):
        """Typedefs that refer to each other through arrays, which C cannot declare."""
        self.hasPeer = False
        ring = [Definition(self.names.draw(self.globals), "typedef", module) for _ in range(self.rng.choice((1, 2, 3)))]
        for each, other in zip(ring, ring[1:] + ring[:1]):
            each.target = Declaration("", "variableArray", other, *self.bound(65535))
        if len(ring) > 1:
            ring[0].target.form, ring[0].target.bound = "fixedArray", 3
            ring[0].target.written, ring[0].units = "3", 3
        return ring

    # ---- Declarations ----

    FORMS = {"single": 40, "fixedArray": 10, "variableArray": 14, "optional": 10, "string": 8, "variableOpaque": 7,
             "fixedOpaque": 7}

    def declaration(self, taken, content, room, ofTypedef=False):
        """A member, or the target of a typedef, of at most `room` units."""
        rng = self.rng
        form = rng.choices(list(self.FORMS), self.FORMS.values())[0]
        if content == "sequences":
            form = rng.choice(("variableArray", "variableOpaque", "string"))
        if content in ("floats", "flat"):
            form = rng.choice(("single", "single", "fixedArray"))
        made = Declaration("", form, tagged=rng.random() < 0.1)
        made.remark = self.remark()
        if form in ("single", "fixedArray", "variableArray", "optional"):
            made.type = self.type(content, form, ofTypedef, room)
        if form in ("variableArray", "string", "variableOpaque"):
            made.bound, made.written = self.bound(65535)
        if form == "fixedArray":
            each = made.type.units if isinstance(made.type, Definition) else 1
            made.bound, made.written = self.bound(max(1, room // each), fixed=True)
        if form == "fixedOpaque":
            made.bound, made.written = self.bound(max(1, room * 4), fixed=True)
        if made.units() > max(room, 1):
            made = Declaration("", "single", "int")
        if not ofTypedef:
            near = [each.name for each in (self.owner, made.type) if isinstance(each, Definition)]
            made.name = self.names.draw(taken, near)
        return made

    def type(self, content, form, ofTypedef, room):
        rng = self.rng
        if content == "floats":
            return rng.choice(("Float", "float"))
        known = [each for each in self.ready if each.kind != "const" and each.units <= room]
        ahead = []
        if form in ("variableArray", "optional"):
            ahead = [each for each in self.ahead if not ofTypedef or each.kind != "typedef"]
        if content == "flat" or not known + ahead or rng.random() < 0.4:
            return rng.choice(list(BUILTINS))
        if ahead and (not known or rng.random() < 0.3):
            return rng.choice(ahead)
        return rng.choice(known[-12:] if rng.random() < 0.6 else known)

    def bound(self, most, fixed=False):
        """A number of elements and how it is written."""
        rng = self.rng
        if not fixed and rng.random() < 0.25:
            return 65535, ""
        constants = [each for each in self.ready if each.kind == "const" and int(fixed) <= each.value <= most]
        if constants and rng.random() < 0.3:
            made = rng.choice(constants)
            return made.value, made
        number = rng.choice((1, 2, 3, 4, 5, 6, 7, 9, 10, 13, 16, 33, 255, 65535, 0))
        number = min(number, most, 40 if fixed else most)
        number = max(number, 1) if fixed else number
        return number, self.number(number)

    def number(self, value):
        """A literal: decimal, hexadecimal or octal."""
        sign, size = "-" * (value < 0), abs(value)
        return sign + self.rng.choice((str(size), str(size), str(size), f"0x{size:x}", f"0X{size:04X}", f"0{size:o}"))

    def constantOr(self, value):
        constants = [each for each in self.ready if each.kind == "const" and each.value == value]
        return self.rng.choice(constants) if constants and self.rng.random() < 0.5 else self.number(value)

    def remark(self):
        return self.rng.choice(REMARKS) if self.rng.random() < 0.15 else None


def base(type):
    return BUILTINS.get(type) if isinstance(type, str) else BUILTINS.get(type.canonical(), type.canonical())


# ---- Printing ----

class Printer:
    """The text of a module, and what each line declares."""

    def __init__(self, module):
        self.lines, self.declared = [], {}
        if module.remark:
            self.put("// " + module.remark)
            self.put("")
        for each in module.imports:
            self.put(f"import {each.name};")
        for each in module.definitions:
            self.put("")
            getattr(self, each.kind)(each)
        for each in module.programs:
            self.remote(each, "program", "")

    def text(self):
        return "\n".join(self.lines) + "\n"

    def put(self, text, *declared):
        for each in declared[:1]:
            if each.remark is not None:
                indent = text[:len(text) - len(text.lstrip())]
                self.put(f"{indent}// {each.remark}" if "*" in each.remark or len(each.remark) % 2 else
                         f"{indent}/* {each.remark} */")
        self.lines.extend(text.split("\n"))
        self.declared.setdefault(len(self.lines), []).extend(declared)

    def const(self, made):
        self.put(f"const {made.name} = {spelled(made.written)};", made)

    def enum(self, made):
        def body():
            for each in made.members:
                self.put(f"    {each.name} = {spelled(each.written)}" + "," * (each is not made.members[-1]), each)
        self.block(made, "", body)

    def struct(self, made):
        def body():
            for each in made.members:
                self.put(f"    {declared(each, each.name)};", each)
        self.block(made, "", body)

    def union(self, made):
        def body():
            for cases, arm in made.arms:
                if made.lastIsDefault and cases is made.arms[-1][0]:
                    self.put("    default:")
                    cases = []
                for _, written in cases:
                    self.put(f"    case {spelled(written)}:")
                self.put(f"        {declared(arm, arm.name)};", arm)
            if made.hasDefault:
                self.put("    default: void;")
        self.block(made, f" switch ({declared(made.discriminant, made.discriminant.name)})", body, made.discriminant)

    def remote(self, made, word, indent):
        if word == "procedure":
            result, argument = ("void" if type is None else spelled(type) for type in (made.result, made.argument))
            self.put(f"{indent}{result} {made.name}({argument}) = {made.number};", made)
            return
        self.put(f"{indent}{word} {made.name} {{", made)
        for each in made.members:
            self.remote(each, {"program": "version", "version": "procedure"}[word], indent + "    ")
        self.put(f"{indent}}} = {made.number};")

    def typedef(self, made):
        self.put(f"typedef {declared(made.target, made.name)};", made)

    def block(self, made, head, body, *more):
        if made.typedefForm:
            self.put(f"typedef {made.kind}{head} {{", *more)
        else:
            self.put(f"{made.kind} {made.name}{head} {{", made, *more)
        body()
        self.put("}" + f" {made.name}" * made.typedefForm + ";", *[made] * made.typedefForm)


def spelled(written):
    return written if isinstance(written, str) else written.name


def declared(made, name):
    if made.form == "void":
        return "void"
    words = {"string": "string", "variableOpaque": "opaque", "fixedOpaque": "opaque"}
    type = words.get(made.form) or spelled(made.type)
    if isinstance(made.type, Definition) and made.tagged and made.type.kind != "typedef":
        type = f"{made.type.kind} {type}"
    if made.form == "optional":
        return f"{type} *{name}"
    if made.form in ("fixedArray", "fixedOpaque"):
        return f"{type} {name}[{spelled(made.written)}]"
    if made.form in ("variableArray", "string", "variableOpaque"):
        return f"{type} {name}<{spelled(made.written)}>"
    return f"{type} {name}"


def write(library, folder):
    """Writes every module into the folder. Returns its printer by file."""
    printers = {}
    for module in library.modules:
        path = folder / (module.name + ".x")
        path.parent.mkdir(parents=True, exist_ok=True)
        printers[str(path)] = printer = Printer(module)
        path.write_text(printer.text(), encoding="utf-8")
    return printers


def main():
    arguments = argparse.ArgumentParser(description=__doc__.split("\n")[0])
    arguments.add_argument("seed", type=int)
    arguments.add_argument("--out", type=pathlib.Path, required=True)
    arguments.add_argument("--names", default=",".join(CLASSES), help="of " + ",".join(CLASSES) + "; may be empty")
    given = arguments.parse_args()
    for path in write(Library(given.seed, given.names.split(",")), given.out):
        print(path)


if __name__ == "__main__":
    main()
