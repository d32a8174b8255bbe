"""Tries one random library: compiles the generated code, runs its routines over messages, and compares their results
with wire.py and with the routines of rpcgen."""

import contextlib
import os
import pathlib
import random
import re
import shlex
import shutil
import subprocess
import xml.etree.ElementTree as xml

import generate
import wire

HERE = pathlib.Path(__file__).resolve().parent
SOURCE = HERE.parents[1]
SUPPORT = SOURCE / "tests/support"
WARNINGS = "-std=c++20 -O0 -Wall -Wextra -Wpedantic -Wconversion -Werror".split()
SHOWN = 4     # lines of a finding's details; all of them are in findings.txt
WIDTH = 300   # of these lines
ROUNDS = 100  # that a library is tried in

# Headers that callers may include too, in several orders.
STANDARD = """algorithm any array atomic barrier bit bitset charconv chrono cmath compare complex concepts coroutine
    condition_variable cstring deque exception filesystem forward_list fstream functional future initializer_list
    iomanip iostream iterator limits list locale map memory memory_resource mutex new numbers numeric optional queue
    random ranges ratio regex scoped_allocator set shared_mutex sstream stack stdexcept string string_view system_error
    thread tuple typeindex unordered_map utility valarray variant vector version""".split()
POSIX = """aio.h arpa/inet.h assert.h cpio.h ctype.h dirent.h dlfcn.h errno.h fcntl.h fenv.h float.h fnmatch.h ftw.h
    glob.h grp.h iconv.h inttypes.h langinfo.h libgen.h limits.h locale.h math.h mqueue.h net/if.h netdb.h netinet/in.h
    netinet/tcp.h poll.h pthread.h pwd.h regex.h sched.h semaphore.h setjmp.h signal.h spawn.h stdio.h stdlib.h string.h
    strings.h sys/ipc.h sys/mman.h sys/resource.h sys/select.h sys/shm.h sys/socket.h sys/stat.h sys/time.h sys/times.h
    sys/types.h sys/uio.h sys/un.h sys/utsname.h sys/wait.h syslog.h termios.h time.h unistd.h utime.h wchar.h
    wordexp.h""".split()
PRELUDES = [STANDARD + POSIX, POSIX[::-1] + STANDARD[::-1]]
OWN = [f"#include <{each}>" for each in ("Xdr.h", "quorvapixdr/codec.h", "quorvapixdr/drivers.h")]


class Finding(Exception):
    """An error: a headline and the details."""

    def __str__(self):
        headline, details = self.args
        lines = details.split("\n")
        telling = [line for line in lines if re.search(r"\berror:|multiple definition|undefined", line)]
        return "\n    ".join(each[:WIDTH] for each in [headline, *[*dict.fromkeys(telling or lines)][:SHOWN]])

    def error(self):
        """The first error of a C++ compiler as a match: file, line, column, message."""
        return re.search(r"^(\S+?):(\d+):(\d+): (?:fatal )?error: (.*)$", self.args[1], re.MULTILINE)


class Suspicion(Exception):
    """A C++ compiler refused names; they are replaced now."""


def command(words, where=None, check=None):
    """Runs a command. If `check` is given, a failure is a finding with that headline."""
    words = [str(each) for each in words]
    done = subprocess.run(words, cwd=where, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, errors="replace")
    if check and done.returncode != 0:
        raise Finding(f"{check}, status {done.returncode}", done.stdout + "\n" + shlex.join(words))
    return done


class Generated:
    """The output of `quorvaxdrc generate --out`."""

    def __init__(self, out, modules):
        self.folders = [out / "include", out / "private"]
        self.headers = [f"#include <quorvapixdr/types/{module.name}.h>" for module in modules]
        self.descriptions = sorted((out / "descriptions").rglob("*.cc"))
        self.units = sorted([*(out / "src").rglob("*.cc"), *self.descriptions])
        self.ofTools = sorted((out / "documentation").rglob("*.cc"))


class Trial:
    def __init__(self, seed, given):
        self.seed, self.given = seed, given
        self.library = generate.Library(seed, given.names)
        self.folder = given.work / str(seed)
        self.made = self.folder / "made"  # removed before each round
        self.prelude = given.work / f"prelude{seed // 2 % len(PRELUDES)}.h"  # each with each compiler
        self.findings, self.suspects = [], {}  # by suspect: the message of the C++ compiler
        self.messages = self.renamed = self.refused = 0
        self.accepted, self.refusal = False, ""

    def run(self):
        """Tries all, and again without names that a C++ compiler refuses, so that they do not hide other findings."""
        shutil.rmtree(self.folder, ignore_errors=True)
        for _ in range(ROUNDS):
            self.findings = []
            with contextlib.suppress(Suspicion):
                if self.accept():
                    self.tryAll()
                break
        if not self.findings and not self.suspects:
            shutil.rmtree(self.folder)

    def tryAll(self):
        """One compiler, another for each seed, makes the program that is run; the other one sees the headers before the
        prelude; and every one sees all that was generated after it."""
        first = self.seed % len(self.given.compilers)
        compilers = self.given.compilers[first:] + self.given.compilers[:first]
        with self.collecting():
            self.generate()
            for compiler in compilers:
                with self.collecting():
                    self.compileHeaders(compiler)
                    self.compileTogether(compiler)
            with self.collecting():
                self.compileBeforePrelude(compilers[-1])
                self.compileForC(compilers[0])
            if not self.findings:
                self.tryOut(self.build(compilers[0]))

    @contextlib.contextmanager
    def collecting(self):
        try:
            yield
        except Finding as finding:
            with (self.folder / "findings.txt").open("a") as log:
                log.write("\n".join(finding.args) + "\n\n")
            self.suspect(finding)
            self.findings.append(finding)

    # ---- Names ----

    def suspect(self, finding):
        """If an error points to strange names, replaces them and starts again."""
        if not (error := finding.error()):
            return
        named = [each for name in self.suspected(*error.groups()) for each in self.library.named(name)]
        if named:
            known = " or ".join(sorted({f"{role} {each.name}" for each, role in named}))
            self.suspects[known] = f"{finding.args[0]}: {error[4]}"
            for each, _ in named:
                self.rename(each)
            raise Suspicion()

    def suspected(self, file, line, column, sentence):
        """The strange name at the place of an error; else those in the quotes of its message; else those of its line,
        unless it is a warning, as names do not cause warnings."""
        path, at = pathlib.Path(file), int(column) - 1
        text = path.read_text(errors="replace").split("\n")[int(line) - 1:][:1] if path.exists() else []
        text = "".join(text)
        pointed = re.search(r"\w*$", text[:at])[0] + re.match(r"\w*", text[at:])[0]
        quoted = " ".join(re.findall(r"[‘'](.*?)[’']", sentence))
        for words in (pointed, quoted, "" if "[-W" in sentence else text):
            strange = self.library.names.strange.intersection(re.findall(r"\w+", words))
            if some := sorted(word for word in strange if self.library.named(word)):
                return some
        return []

    def rename(self, named):
        self.renamed += 1
        named.name = f"renamed{self.renamed}"

    def accept(self):
        """Writes the files and replaces the names that the compiler refuses. False if that does not help."""
        for _ in range(200):
            shutil.rmtree(self.made, ignore_errors=True)
            self.printers = generate.write(self.library, self.made / "types")
            self.inputs = ["-I", self.made / "types", *self.printers]
            done = command([self.given.compiler, "check", *self.inputs])
            if done.returncode == 0:
                self.accepted = True
                return True
            errors = re.findall(r"^(.+?):(\d+):(\d+)[-\d]*: error: (.*)$", done.stdout, re.MULTILINE)
            culprits = dict.fromkeys(each for error in errors for each in self.culprits(*error))
            if not culprits:
                self.refusal = done.stdout
                return False
            for each in culprits:
                self.rename(each)
                self.refused += 1
        return False

    def culprits(self, file, line, column, sentence):
        """What the line of an error of the compiler declares under the name at the place of the error."""
        if "module" in sentence and line == "1":
            return [each for each in self.library.modules if file.endswith(f"/types/{each.name}.x")]
        printer = self.printers[file]
        rest = printer.lines[int(line) - 1].encode()[int(column) - 1:].decode(errors="replace")
        word = re.match(r"\w*", rest)[0]
        return [each for each in printer.declared.get(int(line), []) if each.name == word][:1]

    # ---- Compilation ----

    def generate(self):
        out = self.made / "out"
        search, *files = self.inputs[1:]
        half = len(files) // 2 if self.seed % 3 == 0 else 0  # whose types are foreign for the other half
        self.hasForeignTypes = half > 0
        for some in filter(None, (files[:half], files[half:])):
            command([self.given.compiler, "generate", "--out", out, "-I", search, *some], check="generate fails")
        self.generated = Generated(out, self.library.modules)
        self.includes = [f"-I{each}" for each in [*self.generated.folders, *self.given.include, HERE]]

    def compile(self, compiler, what, flags, files, where=None):
        command([compiler, *WARNINGS, *self.given.flags, *self.includes, *flags, *files], where,
                f"{what} does not compile with {compiler}")

    def compileHeaders(self, compiler):
        """Every header alone."""
        alone = [self.write(f"alone{at}.cc", [header]) for at, header in enumerate(self.generated.headers)]
        self.compile(compiler, "a header alone", ["-fsyntax-only"], alone)

    def compileTogether(self, compiler):
        """All headers, what callers do with them, and the units, after the prelude. They are one file, since a file for
        each unit would read the headers of the runtime again and take most of the time."""
        generated = self.generated
        # Each of these describes foreign types again.
        separate = [*generated.descriptions, *generated.ofTools] if self.hasForeignTypes else []
        units = [f'#include "{each}"' for each in [*generated.units, *generated.ofTools] if each not in separate]
        together = self.write("together.cc", [*OWN, *generated.headers, *self.assertions(), *units])
        prelude = ["-include", self.prelude]
        if "clang" in compiler:
            prelude = ["-include-pch", f"{self.prelude}.{compiler}.pch"]
        self.compile(compiler, "a header or unit after the prelude", [*prelude, "-fsyntax-only"], [together, *separate])

    def compileBeforePrelude(self, compiler):
        before = self.write("before.cc", [*self.generated.headers[::-1], *OWN, f'#include "{self.prelude}"',
                                          *self.assertions()])
        self.compile(compiler, "a header before the prelude", ["-fsyntax-only"], [before])

    def compileForC(self, compiler):
        """The headers for C, of those libraries whose types and names C can declare."""
        folder = self.made / "for_c"
        words = [self.given.compiler, "generate", "--c", "--out", folder, *self.inputs]
        if command(words).returncode == 1:
            return
        command(words, check="generate --c fails")
        headers = (folder / "include/quorvapixdr/c").rglob("*.h")
        every = self.write("for_c.c", [f'#include "{each}"' for each in headers])
        flags = "-x c -std=c11 -Wall -Wextra -Wpedantic -Wconversion -Werror -fsyntax-only".split()
        includes = [f"-I{each}" for each in [folder / "include", *self.given.include]]
        command([compiler, *flags, *includes, every], check="the headers for C do not compile")

    def write(self, name, lines):
        path = self.made / name
        path.write_text("\n".join(lines) + "\n")
        return path

    def assertions(self):
        """Assertions that the headers declare what the files say."""
        assertions = []
        for made in self.library.definitions():
            if made.kind == "const":
                assertions.append(f"static_cast<long long>(::{made.name}) == {made.value}")
            for each in made.members if made.kind == "enum" else []:
                assertions.append(f"static_cast<long long>(::{made.name}::{each.name}) == {each.value}")
            for each in made.held():
                assertions.append(f"sizeof(::{made.name}::{each.name}) > 0")
        for program in (each for module in self.library.modules for each in module.programs):
            for version in program.members:
                names = f"::quorva::procedure::{program.name}::{version.name}"
                assertions += [f"{names}::{each.name}.number == {each.number}U" for each in version.members]
        return [f"static_assert({each});" for each in assertions]

    def build(self, compiler):
        """The program that runs the routines."""
        objects = self.made / "objects"
        objects.mkdir()
        # Named by number, as files of several folders have the same name.
        files = [objects / f"{number}.cc" for number in range(len(self.generated.units))]
        for file, unit in zip(files, self.generated.units):
            file.symlink_to(unit)
        entries = [f'    {{"{each.name}", ::Xdr{each.name}, sizeof(::{each.name})}},' for each in self.library.types()]
        files.append(self.write("objects/table.cc", [
            *self.generated.headers, '#include "table.h"', "namespace random_interfaces {", "const Entry table[] = {",
            *entries, "    {nullptr, nullptr, 0},", "};", "}"]))
        self.compile(compiler, "a unit", ["-c", "-fvisibility=hidden"], files, objects)
        linked = [*objects.glob("*.o"), self.given.work / "driver.o", self.given.work / "memory.o",
                  *(self.peer() if self.hasPeer() else []), *self.given.library,
                  *[f"-Wl,-rpath,{os.path.dirname(each)}" for each in self.given.library]]
        program = self.made / "program"
        command([compiler, *self.given.flags, "-o", program, *linked, *["-ltirpc"] * self.hasPeer()],
                check=f"linking with {compiler} fails")
        return program

    def hasPeer(self):
        return self.given.peer and self.library.hasPeer

    def peer(self):
        """The objects of the other implementation."""
        folder = self.made / "peer"
        folder.mkdir()
        plain = command([self.given.compiler, "plain", "--prefix", "plain_", *self.inputs], check="plain fails").stdout
        self.write("peer/plain.x", [plain])
        table = self.write("peer/table.inc", [f"TYPE({each.name})" for each in self.library.types()])
        command(["rpcgen", "-h", "-o", "plain.h", "plain.x"], folder, "rpcgen does not take the plain file")
        command(["rpcgen", "-c", "-o", "plain.c", "plain.x"], folder, "rpcgen does not take the plain file")
        differential = SOURCE / "tests/differential"
        command(["gcc", "-w", "-Dbool=bool_t",  # rpcgen writes bool in loops over a fixed-length array
                 "-c", "-I.", "-I/usr/include/tirpc", f"-I{differential}", f'-DPEER_TABLE="{table}"', "plain.c",
                 differential / "peer.c"], folder, "what rpcgen makes of the plain file does not compile")
        return [folder / "plain.o", folder / "peer.o"]

    # ---- Messages ----

    def cases(self):
        """Messages of every type: index of the type, type, message, expected line; the pass over a valid message."""
        for number, type in enumerate(self.library.types()):
            rng = random.Random(self.seed * 10007 + number)
            for _ in range(max(3, min(len(type.arms), 40))):
                message, invention = wire.invented(type, rng.random())
                if len(message) > wire.LONGEST_MESSAGE:
                    continue
                yield number, type, message, wire.expected(type, message), invention
                for _ in range(2):
                    other = damaged(message, rng)
                    yield number, type, other, wire.expected(type, other), None

    def tryOut(self, program):
        cases = list(self.cases())
        self.messages = len(cases)
        messages = self.write("messages", [f"{number} {'v' if valid else 'd'} x{message.hex()}"
                                           for number, _, message, _, valid in cases])
        checked = self.given.valgrind and self.seed % self.given.valgrind == 0
        done = command([*["valgrind", "-q", "--error-exitcode=9"] * bool(checked), program, messages])
        lines = done.stdout.split("\n")[:-1]
        for line, (_, type, message, wanted, valid) in zip(lines, cases):
            outcome, *traces = line.split("\t")
            place = f"{type.kind} {type.name} of {type.module.name}, message {message.hex()}"
            peers = f" {message.hex()}" if valid and self.hasPeer() else ""
            if outcome != wanted + peers:
                raise Finding(place, f"wanted {wanted}{peers}\ngot    {line}")
            if valid:
                judgeTraces(place, type, valid, traces)
        if done.returncode != 0 or len(lines) < len(cases):
            _, type, message, *_ = cases[min(len(lines), len(cases) - 1)]
            raise Finding(f"the program ends at {type.name}, message {message.hex()}, status {done.returncode}",
                          done.stdout[-500:])


def judgeTraces(place, type, valid, traces):
    decoding = [type.name] + [name for name, _ in valid.elements]
    encoding = [type.name] + [name for name, isElementTag in valid.elements if not isElementTag]
    for trace, wanted in zip(traces, (decoding, encoding), strict=True):
        try:
            elements = [each.tag for each in xml.fromstring(trace).iter()]
        except xml.ParseError as error:
            raise Finding(f"{place}: the trace is not XML", f"{error}: {trace}") from error
        if elements != wanted:
            raise Finding(f"{place}: elements of the trace", f"wanted {wanted}\ngot    {elements}")


def damaged(message, rng):
    """The message cut, or with a changed unit and often with more bytes after it."""
    if rng.random() < 0.4:
        return message[:rng.randrange(len(message))]
    at = rng.randrange(len(message) // 4) * 4
    old = int.from_bytes(message[at:at + 4], "big")
    unit = rng.choice((old + 1, old - 1, 0, 1, 2, 0x100, 0x1FF, 0x10000, 0x10001, 0x7FFF8000, 0x80000001)) & 0xFFFFFFFF
    made = message[:at] + unit.to_bytes(4, "big") + message[at + 4:] + rng.randbytes(rng.choice((0, 64)))
    return made[:wire.LONGEST_MESSAGE]


# ---- Shared by all trials ----

def prepare(given):
    """Compiles the preludes and the driver."""
    flags = [*WARNINGS, *given.flags]
    for at, headers in enumerate(PRELUDES):
        prelude = given.work / f"prelude{at}.h"
        prelude.write_text("".join(f"#include <{each}>\n" for each in headers))
        for compiler in given.compilers:
            out = f"{prelude}.{compiler}.pch" if "clang" in compiler else f"{prelude}.gch"
            command([compiler, *flags, "-x", "c++-header", prelude, "-o", out], check="the prelude does not compile")
    folders = [*given.include, SUPPORT]
    command([given.compilers[0], *flags, *[f"-I{each}" for each in folders], "-c", HERE / "driver.cc",
             SUPPORT / "memory.cc"], given.work, "the driver does not compile")
