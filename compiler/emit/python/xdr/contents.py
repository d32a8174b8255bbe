"""Codecs of strings and opaque data."""

from __future__ import annotations

from typing import Any

from .scalars import Codec, bytes_under
from .wire import Reader, Refusal, Writer, beyond, expect


class String(Codec):
    """A string of at most `most` bytes, without zero bytes."""

    def __init__(self, most: int) -> None:
        self.most = most

    def read(self, reader: Reader) -> Any:
        begin = reader.offset
        length = reader.unit()
        if length > self.most:
            raise Refusal(beyond("length", length, self.most), begin)
        contents = reader.contents(length)
        return contents.partition(b"\0")[0].decode("utf-8", "surrogateescape")

    def write(self, writer: Writer, value: Any) -> None:
        if not isinstance(value, str):
            expect("a string", value, writer.offset)
        try:
            contents = value.encode("utf-8", "surrogateescape")
        except UnicodeEncodeError:
            raise Refusal("the string is not Unicode: it has a single surrogate", writer.offset) from None
        if 0 in contents:
            raise Refusal("a string cannot hold a zero byte", writer.offset)
        writer.count("length", len(contents), self.most)
        writer.contents(contents)

    def to_json(self, value: Any) -> Any:
        contents = value.encode("utf-8", "surrogateescape")
        return value if is_utf8(contents) else {"hex": contents.hex()}

    def from_json(self, json: Any) -> Any:
        contents = wrapped_bytes({"text": json} if isinstance(json, str) else json)
        if contents is None:
            expect('a string or {"hex": "..."}', json)
        if len(contents) > self.most:
            raise Refusal(f"expected a string of at most {self.most} bytes, found {len(contents)}")
        if 0 in contents:
            raise Refusal("a string cannot hold a zero byte")
        return contents.decode("utf-8", "surrogateescape")


class FixedOpaque(Codec):
    """Exactly `size` bytes."""

    def __init__(self, size: int) -> None:
        self.size = size

    def read(self, reader: Reader) -> Any:
        return reader.contents(self.size)

    def write(self, writer: Writer, value: Any) -> None:
        contents = bytes_of(value, writer.offset)
        if len(contents) != self.size:
            raise Refusal(f"expected exactly {self.size} bytes, found {len(contents)}", writer.offset)
        writer.contents(contents)

    def to_json(self, value: Any) -> Any:
        return opaque_json(value)

    def from_json(self, json: Any) -> Any:
        return opaque_from_json(json, self.size, self.size)


class Opaque(Codec):
    """At most `most` bytes."""

    def __init__(self, most: int) -> None:
        self.most = most

    def read(self, reader: Reader) -> Any:
        return reader.contents(reader.count(self.most))

    def write(self, writer: Writer, value: Any) -> None:
        contents = bytes_of(value, writer.offset)
        writer.count("count", len(contents), self.most)
        writer.contents(contents)

    def to_json(self, value: Any) -> Any:
        return opaque_json(value)

    def from_json(self, json: Any) -> Any:
        return opaque_from_json(json, 0, self.most)


def bytes_of(value: object, offset: int) -> bytes:
    if not isinstance(value, (bytes, bytearray)):
        expect("bytes", value, offset)
    return bytes(value)


def opaque_json(value: bytes) -> Any:
    if value and all(0x20 <= byte < 0x7F for byte in value):
        return {"text": value.decode("ascii")}
    return {"hex": value.hex()}


def opaque_from_json(json: object, least: int, most: int) -> bytes:
    contents = wrapped_bytes(json)
    if contents is None:
        expect('{"hex": "..."} or {"text": "..."}', json)
    if not least <= len(contents) <= most:
        raise Refusal(f"expected {amount(least, most)} bytes, found {len(contents)}")
    return contents


def amount(least: int, most: int) -> str:
    return f"exactly {most}" if least == most else f"at most {most}"


def is_utf8(contents: bytes) -> bool:
    try:
        contents.decode("utf-8")
    except UnicodeDecodeError:
        return False
    return True


def wrapped_bytes(json: object) -> bytes | None:
    """The bytes of {"hex": "..."} or {"text": "..."}; None if the value has neither form."""
    if isinstance(json, dict) and len(json) == 1 and isinstance(json.get("text"), str):
        text: str = json["text"]
        try:
            return text.encode("utf-8")
        except UnicodeEncodeError:
            return None
    return bytes_under("hex", json)
