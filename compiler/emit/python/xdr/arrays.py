"""Codecs of arrays and optionals."""

from __future__ import annotations

from functools import cached_property
from typing import TYPE_CHECKING, Any

from .contents import amount
from .scalars import Codec
from .wire import Reader, Refusal, Writer, expect

if TYPE_CHECKING:
    from .classes import Coded


class Elements(Codec):
    """What arrays of fixed and of variable length share."""

    def __init__(self, element: type[Coded], least: int, most: int) -> None:
        self.element_type = element
        self.least = least
        self.most = most

    @cached_property
    def element(self) -> Codec:
        """Found on first use, because types may hold each other."""
        return self.element_type.codec()

    def wanted(self) -> str:
        return f"an array of {amount(self.least, self.most)} {self.element_type.__name__}"

    def read_elements(self, reader: Reader, count: int) -> list[Any]:
        values: list[Any] = []
        read = self.element.read
        try:
            for _ in range(count):
                values.append(read(reader))
        except Refusal as refusal:
            refusal.steps.append(len(values))
            raise
        return values

    def write_elements(self, writer: Writer, values: Any) -> None:
        index = 0
        write = self.element.write
        try:
            for index, value in enumerate(values):
                write(writer, value)
        except Refusal as refusal:
            refusal.steps.append(index)
            raise

    def checked(self, value: object, offset: int) -> Any:
        if not isinstance(value, (list, tuple)):
            expect(self.wanted(), value, offset)
        return value

    def to_json(self, value: Any) -> Any:
        return [self.element.to_json(each) for each in value]

    def from_json(self, json: Any) -> Any:
        if not isinstance(json, list):
            expect(self.wanted(), json)
        if not self.least <= len(json) <= self.most:
            raise Refusal(f"expected {self.wanted()}, found {len(json)}")
        values: list[Any] = []
        try:
            for each in json:
                values.append(self.element.from_json(each))
        except Refusal as refusal:
            refusal.steps.append(len(values))
            raise
        return values


class FixedArray(Elements):
    """Exactly `count` elements."""

    def __init__(self, element: type[Coded], count: int) -> None:
        super().__init__(element, count, count)

    def read(self, reader: Reader) -> Any:
        return self.read_elements(reader, self.most)

    def write(self, writer: Writer, value: Any) -> None:
        values = self.checked(value, writer.offset)
        if len(values) != self.most:
            raise Refusal(f"expected {self.wanted()}, found {len(values)}", writer.offset)
        self.write_elements(writer, values)


class Array(Elements):
    """At most `most` elements."""

    def __init__(self, element: type[Coded], most: int) -> None:
        super().__init__(element, 0, most)

    def read(self, reader: Reader) -> Any:
        return self.read_elements(reader, reader.count(self.most))

    def write(self, writer: Writer, value: Any) -> None:
        values = self.checked(value, writer.offset)
        writer.count("count", len(values), self.most)
        self.write_elements(writer, values)


class Optional(Codec):
    """A value or None."""

    def __init__(self, target: type[Coded]) -> None:
        self.target_type = target

    @cached_property
    def target(self) -> Codec:
        """Found on first use, because types may hold each other."""
        return self.target_type.codec()

    def read(self, reader: Reader) -> Any:
        return self.target.read(reader) if reader.unit() & 0xFF == 1 else None

    def write(self, writer: Writer, value: Any) -> None:
        writer.unit(value is not None)
        if value is not None:
            self.target.write(writer, value)

    def to_json(self, value: Any) -> Any:
        return None if value is None else self.target.to_json(value)

    def from_json(self, json: Any) -> Any:
        return None if json is None else self.target.from_json(json)
