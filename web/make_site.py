"""Makes the reference pages of all types, which need no server: make_site.py QUORVAXDR --out DIR

The pages show what `QUORVAXDR schema` prints (docs/schema.md), a sample of each type as `annotate` prints it, and the
interface files. The folder may be moved; nothing in it is loaded from elsewhere.
"""

from __future__ import annotations

import argparse
import base64
import collections
import json
import os
import pathlib
import shutil
import subprocess
import sys
from collections.abc import Iterable
from concurrent.futures import ThreadPoolExecutor
from typing import Any

import jinja2

HERE = pathlib.Path(__file__).resolve().parent
SCRIPTS = ["reader.js", "inputs.js", "guess.js", "capture_file.js", "packets.js", "records.js", "streams.js",
           "calls.js", "capture_list.js", "viewer.js"]  # of the viewer, in their order
ASSETS = ["style.css", "search.js", *SCRIPTS]
ENVELOPES = HERE.parent / "rpc" / "onc_rpc.x"  # of the calls and replies in captures
BUILT_IN = "built-in"  # the module of the page with the built-in types
LONGEST_COUNT = 65535  # a maximum that says nothing
UNNEEDED = ["usedBy", "usedIndirectlyBy", "size", "alignment", "offset", "wireOffset", "file", "line"]

Entry = dict[str, Any]


class Pages:
    """Names the pages and anchors. All pages are one folder below the start page or beside it."""

    def __init__(self, schema: Entry, sources: dict[str, pathlib.Path]) -> None:
        self.types: dict[str, Entry] = {each["name"]: each for each in schema["types"]}
        self.sources = sources

    def of_module(self, module: str) -> str:
        return f"modules/{module.replace('/', '.')}.html"

    def of_type(self, name: str) -> str:
        return f"{self.of_module(self.types[name].get('module', BUILT_IN))}#{name}"

    def of_source(self, file: str) -> str | None:
        """None if the file was not found."""
        return f"sources/{file.replace('/', '.')}.html" if file in self.sources else None

    def of_user(self, user: str) -> str:
        """A member, a typedef, or a procedure: "JobAVP.value", "JobAVPSeq", "SPOOLER.FIRST.createJob(argument)"."""
        if is_procedure(user):
            return f"index.html#{user.partition('(')[0]}"
        owner, _, member = user.partition(".")
        return self.of_type(owner) + (f".{member}" if member else "")

    def linked(self, users: Iterable[str]) -> list[tuple[str, str]]:
        return [(user, self.of_user(user)) for user in users]

    def repetition(self, use: Entry) -> str:
        """How often a value is there: "0 or 1", "10 times", "at most 6"; empty for once. Typedefs are followed."""
        while use["form"] == "single" and "target" in self.types[use["type"]]:
            use = self.types[use["type"]]["target"]
        match use["form"]:
            case "optional":
                return "0 or 1"
            case "fixed-length-array":
                return f"{grouped(use['number'])} times"
            case "variable-length-array":
                return f"at most {grouped(use['maximum'])}" if use["maximum"] < LONGEST_COUNT else "any number"
        return ""

    @staticmethod
    def have_notes(entries: list[Entry]) -> bool:
        """True if one of them has a documentation or is provisional. A table without notes has no column for them."""
        return any("doc" in each or "provisional" in each for each in entries)

    def enumeration_of(self, name: str | None) -> dict[int, str]:
        """The enumerators of the enumeration at the end of a chain of typedefs, by value."""
        while name and (target := self.types[name].get("target")) and target["form"] == "single":
            name = target["type"]
        names: dict[int, str] = {}
        for each in self.types[name].get("enumerators", []) if name else []:
            names.setdefault(each["value"], each["name"])
        return names

    def messages_with(self, described: Entry) -> list[str]:
        """The types that contain this one and that no other type contains."""
        owners = {user.partition(".")[0] for user in described["usedBy"] if not is_procedure(user)}
        owners.update(described["usedIndirectlyBy"])
        return sorted(name for name in owners if all(map(is_procedure, self.types[name]["usedBy"])))


def is_procedure(user: str) -> bool:
    return user.endswith(")")


def grouped(number: int) -> str:
    return f"{number:,}"


def extent(entry: Entry, unit: int = 1) -> str:
    """Bytes on the wire, or units of them: "4", "4 to 44", "4 or more"."""
    least, most = entry["leastOnWire"] // unit, entry["mostOnWire"]
    if most is None:
        return f"{grouped(least)} or more"
    return grouped(least) if least == most // unit else f"{grouped(least)} to {grouped(most // unit)}"


def content(use: Entry) -> str:
    """What a form without a type holds: "string, at most 40 bytes"."""
    word = "string" if use["form"] == "string" else "opaque"
    if "number" in use:
        return f"{word}, {grouped(use['number'])} bytes"
    return f"{word}, at most {grouped(use['maximum'])} bytes" if use["maximum"] < LONGEST_COUNT else word


def base64_of(digits: str) -> str:
    """Bytes as the links to the viewer hold them."""
    return base64.urlsafe_b64encode(bytes.fromhex(digits)).decode().rstrip("=")


def without(entry: Any, keys: list[str]) -> Any:
    if isinstance(entry, list):
        return [without(each, keys) for each in entry]
    if isinstance(entry, dict):
        return {key: without(value, keys) for key, value in entry.items() if key not in keys}
    return entry


class Inspector:
    def __init__(self, program: str, options: list[str]) -> None:
        self.program, self.options = program, options

    def run(self, *arguments: str, message: bytes = b"") -> subprocess.CompletedProcess[bytes]:
        return subprocess.run([self.program, *arguments, *self.options], input=message, capture_output=True)

    def schema(self) -> Entry:
        done = self.run("schema")
        if done.returncode != 0:
            sys.exit(done.stderr.decode("utf-8", "replace").rstrip())
        schema: Entry = json.loads(done.stdout)
        return schema

    def sample(self, name: str) -> tuple[str, str] | None:
        """The digits and the annotation of a message of the type; None if no message is short enough."""
        made = self.run("sample", name, "--seed", "1", "--to", "hex")
        if made.returncode != 0:
            return None
        shown = self.run("annotate", name, "--from", "hex", message=made.stdout)
        if shown.returncode != 0:
            sys.exit(f"{name}: {shown.stderr.decode('utf-8', 'replace').rstrip()}")
        return "".join(made.stdout.decode().split()), shown.stdout.decode("utf-8", "replace").rstrip("\n")


def envelope_schema(program: str) -> Entry:
    """The schema document of the envelopes alone, and of the built-in types."""
    schema = Inspector(program, [f"--interface={ENVELOPES}"]).schema()
    schema["types"] = [each for each in schema["types"] if each.get("file", "").endswith(ENVELOPES.name)
                       or "module" not in each]
    schema["modules"] = []
    return schema


def sources_of(schema: Entry, folders: list[str]) -> dict[str, pathlib.Path]:
    """The interface files of the modules, as far as the folders have them; by the name of the file."""
    found = {}
    for module in schema["modules"]:
        paths = [pathlib.Path(folder, module["file"]) for folder in folders]
        if path := next(filter(pathlib.Path.is_file, paths), None):
            found[module["file"]] = path
    return found


def make(schema: Entry, envelopes: Entry, samples: dict[str, tuple[str, str] | None], folders: list[str],
         out: pathlib.Path) -> None:
    pages = Pages(schema, sources_of(schema, folders))
    environment = jinja2.Environment(
        loader=jinja2.FileSystemLoader(HERE / "templates"),
        autoescape=True,
        undefined=jinja2.StrictUndefined,
        trim_blocks=True,
        lstrip_blocks=True,
    )
    environment.globals.update(pages=pages, samples=samples, extent=extent, content=content, base64=base64_of)
    environment.filters.update(grouped=grouped)
    environment.tests.update(procedure=is_procedure)

    def write(name: str, template: str, **values: Any) -> None:
        path = out / name
        path.parent.mkdir(parents=True, exist_ok=True)
        root = "../" * name.count("/")
        path.write_text(environment.get_template(template).render(root=root, **values), encoding="utf-8")

    types_of: dict[str, list[Entry]] = collections.defaultdict(list)
    for each in sorted(schema["types"], key=lambda each: (each.get("line", 0), each["name"])):
        types_of[each.get("module", BUILT_IN)].append(each)
    modules = [*schema["modules"], {"name": BUILT_IN, "doc": "The types that every module knows."}]
    write("index.html", "index.html", schema=schema, modules=modules, types_of=types_of)
    write("viewer.html", "viewer.html", scripts=["types.js", *SCRIPTS])
    for module in modules:
        write(pages.of_module(module["name"]), "module.html", module=module, types=types_of[module["name"]])
    for file, path in pages.sources.items():
        write(str(pages.of_source(file)), "source.html", file=file, lines=path.read_text("utf-8").splitlines())

    lines = ['"use strict";']
    for name, value in {"quorvaSchema": schema, "quorvaEnvelopes": envelopes}.items():
        text = json.dumps(without(value, UNNEEDED), separators=(",", ":"), ensure_ascii=False)
        lines.append(f"const {name} = {text};")
    (out / "types.js").write_text("\n".join(lines) + "\n", encoding="utf-8")
    for asset in ASSETS:
        shutil.copyfile(HERE / asset, out / asset)


def main() -> int:
    parser = argparse.ArgumentParser(description="Makes the reference pages of all types.")
    parser.add_argument("program", metavar="QUORVAXDR", help="the inspector")
    parser.add_argument("--out", required=True, type=pathlib.Path, help="folder of the pages, which is made")
    parser.add_argument("--interface", action="append", default=[], metavar="FILE.x",
                        help="an interface file of one's own; can be repeated")
    parser.add_argument("-I", action="append", default=[], dest="folders", metavar="DIR",
                        help="a folder that imports are searched for in; can be repeated")
    arguments = parser.parse_args()
    options = [f"--interface={file}" for file in arguments.interface]
    for folder in arguments.folders:
        options += ["-I", folder]
    inspector = Inspector(arguments.program, options)
    schema = inspector.schema()
    envelopes = envelope_schema(arguments.program)
    names = [each["name"] for each in schema["types"]]
    with ThreadPoolExecutor(os.cpu_count()) as threads:
        samples = dict(zip(names, threads.map(inspector.sample, names)))
    make(schema, envelopes, samples, [*arguments.folders, str(HERE.parent / "types")], arguments.out)
    return 0


if __name__ == "__main__":
    sys.exit(main())
