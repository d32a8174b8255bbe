"""Holds the generated package `everything` against the codec: compare.py < LINES

Reads what the program `python_messages` prints. Decodes each message, encodes the result, converts it to JSON and back,
and expects what the codec and the inspector do: the same answer, length, bytes and JSON, and the same place and reason
of a refusal.
"""

from __future__ import annotations

import json
import re
import sys
import time
from collections.abc import Iterator
from typing import Any

import everything

MOST_DIFFERENCES = 20


def class_of(name: str, package: Any) -> Any:
    """The class of the type, which has a `_` at its end if Python or the package uses the name itself."""
    return next(found for end in ("__", "_", "") if isinstance(found := getattr(package, name + end, None), type))


def differences(line: dict[str, Any], package: Any, errors: type[Any]) -> Iterator[str]:
    """What the package does otherwise than the codec."""
    coded = class_of(line["type"], package)

    def place_differs(error: Any, place: list[Any]) -> Iterator[str]:
        if [error.path, error.offset, error.reason] != place:
            yield f"{error}, expected {place}"

    try:
        value, length = coded.decode_prefix(bytes.fromhex(line["message"]))
    except errors as error:
        if "refused" not in line:
            yield f"refused: {error}"
        else:
            yield from place_differs(error, line["refused"])
        return
    if "refused" in line:
        yield f"accepted, expected {line['refused']}"
        return
    if length != line["length"]:
        yield f"read {length} bytes, expected {line['length']}"
    encoded = coded.encode(value, 65535)
    if encoded.hex() != line["encoded"]:
        yield f"encoded {encoded.hex()}, expected {line['encoded']}"
    converted = coded.to_json(value)
    if converted != line["json"]:
        yield f"JSON {converted}, expected {line['json']}"
    if coded.encode(coded.from_json(line["json"]), 65535) != encoded:
        yield "other bytes from JSON"
    yield from json_differences(coded, package, line["otherJson"], line["otherEncoded"])
    if "limit" in line:
        try:
            coded.encode(value, line["limit"])
            yield f"encoded into {line['limit']} bytes"
        except errors as error:
            yield from place_differs(error, line["beyond"])


def json_differences(coded: Any, package: Any, value: Any, expected: Any) -> Iterator[str]:
    """What the package makes otherwise of JSON than the inspector: bytes, or path and reason."""
    try:
        found = coded.encode(coded.from_json(value), 65535).hex()
    except (package.JsonError, package.CodingError) as error:
        found = [error.path, error.reason]
        if isinstance(expected, list):
            # The package makes no suggestions, and has no null strings.
            path, reason = expected
            reason = reason.partition("; did you mean")[0].replace(', {"hex": "..."} or null', ' or {"hex": "..."}')
            if reason == "the string is a null pointer":
                reason = 'expected a string or {"hex": "..."}, found null'
            # An alias of a class is that class.
            element = re.compile(r"(?<=expected an array of )(at most|exactly) \d+ \w+")
            expected = [path, element.sub("", reason)]
            found = [error.path, element.sub("", error.reason)]
    if found != expected:
        yield f"{found} from JSON {json.dumps(value)}, expected {expected}"


def main() -> int:
    package = everything
    errors = package.CodingError
    accepted = refused = different = 0
    types = set()
    begin = time.monotonic()
    for text in sys.stdin:
        line = json.loads(text)
        types.add(line["type"])
        if "refused" in line:
            refused += 1
        else:
            accepted += 1
        for difference in differences(line, package, errors):
            different += 1
            if different <= MOST_DIFFERENCES:
                print(f"{line['type']} {line['message'][:400]}: {difference[:600]}")
    seconds = time.monotonic() - begin
    messages = f"{accepted} messages accepted, {refused} refused"
    print(f"{len(types)} types, {messages}, {different} differences, {seconds:.0f} s")
    return 0 if accepted > 0 and refused > 0 and different == 0 else 1


sys.exit(main())
