"""The bases of the generated classes, and the built-in types."""

from __future__ import annotations

import enum
from functools import cache
from typing import Any, Generic, Self, TypeAlias, TypeVar

from .objects import Arms, EnumerationCodec, Member, StructCodec, UnionCodec
from .scalars import BooleanCodec, Codec, FloatCodec, IntegerCodec
from .wire import CodingError, JsonError, Reader, Refusal, Writer, byte_count

# What json.load returns and json.dump takes.
Json: TypeAlias = "None | bool | int | float | str | list[Json] | dict[str, Json]"

T = TypeVar("T")

# The longest message, and the default limit of `encode`.
LONGEST_MESSAGE = 65535
DEFAULT_LIMIT = 1024

TOO_DEEP = "values are nested deeper than Python's recursion limit allows"


def decode_message(coded: type[Coded], message: bytes | bytearray | memoryview, *, whole: bool) -> tuple[Any, int]:
    reader = Reader(bytes(message))
    total = len(reader.message)
    try:
        if total > LONGEST_MESSAGE:
            raise Refusal(f"a message has at most {LONGEST_MESSAGE} bytes", LONGEST_MESSAGE)
        value = coded.codec().read(reader)
        if whole and reader.offset != total:
            left = total - reader.offset
            raise Refusal(f"{byte_count(left)} {'is' if left == 1 else 'are'} left over", reader.offset)
        return value, reader.offset
    except Refusal as refusal:
        error = CodingError("decode", coded.__name__, refusal.path(), refusal.offset, total, refusal.reason)
    except RecursionError:
        error = CodingError("decode", coded.__name__, "", reader.offset, total, TOO_DEEP)
    raise error


def encode_value(coded: type[Coded], value: object, limit: int) -> bytes:
    writer = Writer(min(limit, LONGEST_MESSAGE))
    try:
        coded.codec().write(writer, value)
        return bytes(writer.message)
    except Refusal as refusal:
        error = CodingError("encode", coded.__name__, refusal.path(), refusal.offset, writer.limit, refusal.reason)
    except RecursionError:
        error = CodingError("encode", coded.__name__, "", writer.offset, writer.limit, TOO_DEEP)
    raise error


def value_from_json(coded: type[Coded], json: object) -> Any:
    try:
        return coded.codec().from_json(json)
    except Refusal as refusal:
        error = JsonError(coded.__name__, refusal.path(), refusal.reason)
    except RecursionError:
        error = JsonError(coded.__name__, "", TOO_DEEP)
    raise error


class Coded:
    """Any type of an interface."""

    @classmethod
    def codec(cls) -> Codec:
        """How values of the type are coded. Always the same object."""
        raise NotImplementedError


class Object(Coded):
    """A struct or a union."""

    @classmethod
    def decode(cls, message: bytes | bytearray | memoryview) -> Self:
        """The object in a message; raises CodingError, also if bytes are left over."""
        value: Self = decode_message(cls, message, whole=True)[0]
        return value

    @classmethod
    def decode_prefix(cls, message: bytes | bytearray | memoryview) -> tuple[Self, int]:
        """The object at the start of a message, and its length in bytes; raises CodingError."""
        return decode_message(cls, message, whole=False)

    def encode(self, limit: int = DEFAULT_LIMIT) -> bytes:
        """The message, at most `limit` bytes, of which 65535 are the most; raises CodingError."""
        return encode_value(type(self), self, limit)

    def to_json(self) -> dict[str, Json]:
        """The JSON form, as json.dump takes it. The object must be one that can be encoded."""
        json: dict[str, Json] = self.codec().to_json(self)
        return json

    @classmethod
    def from_json(cls, json: Json) -> Self:
        """The object with this JSON form, as json.load returns it; raises JsonError."""
        value: Self = value_from_json(cls, json)
        return value


class Struct(Object):
    """The base of all structs: dataclasses with the fields of the interface."""

    @classmethod
    @cache
    def codec(cls) -> Codec:
        return StructCodec(cls)

    @classmethod
    def _fields(cls) -> tuple[Member, ...]:
        raise NotImplementedError


class Union(Object):
    """The base of all unions: dataclasses of the discriminant and the value of the arm that it selects."""

    value: Any

    @classmethod
    @cache
    def codec(cls) -> Codec:
        return UnionCodec(cls)

    @classmethod
    def _arms(cls) -> Arms:
        raise NotImplementedError

    @property
    def arm(self) -> str | None:
        """The name of the arm that holds the value; None if the arm is void or there is no such arm."""
        codec = self.codec()
        assert isinstance(codec, UnionCodec)
        arm = codec.arms.by_number.get(getattr(self, codec.arms.discriminant.attribute))
        return None if arm is None else arm.name


class Enumeration(Coded, enum.IntEnum):
    """The base of all enumerations. A number without an enumerator stays an int."""

    @classmethod
    @cache
    def codec(cls) -> Codec:
        return EnumerationCodec(cls)

    @classmethod
    def _renamed(cls) -> dict[str, str]:
        """The names in the interface of those enumerators that Python cannot name so."""
        return {}

    @classmethod
    def decode(cls, message: bytes | bytearray | memoryview) -> Self | int:
        """The number in a message; raises CodingError, also if bytes are left over."""
        value: Self | int = decode_message(cls, message, whole=True)[0]
        return value

    @classmethod
    def decode_prefix(cls, message: bytes | bytearray | memoryview) -> tuple[Self | int, int]:
        """The number at the start of a message, and its length in bytes; raises CodingError."""
        return decode_message(cls, message, whole=False)

    @classmethod
    def encode(cls, value: int, limit: int = DEFAULT_LIMIT) -> bytes:
        """The message, at most `limit` bytes; raises CodingError."""
        return encode_value(cls, value, limit)

    @classmethod
    def to_json(cls, value: int) -> str | int:
        """The name of the enumerator, or the number if it has none."""
        json: str | int = cls.codec().to_json(value)
        return json

    @classmethod
    def from_json(cls, json: Json) -> Self | int:
        """The enumerator with this name or number; raises JsonError."""
        value: Self | int = value_from_json(cls, json)
        return value


class Typedef(Coded, Generic[T]):
    """The base of all other types. They have no objects of their own: `T` is the Python type of their values."""

    @classmethod
    @cache
    def codec(cls) -> Codec:
        return cls._declaration()

    @classmethod
    def _declaration(cls) -> Codec:
        raise NotImplementedError

    @classmethod
    def decode(cls, message: bytes | bytearray | memoryview) -> T:
        """The value in a message; raises CodingError, also if bytes are left over."""
        value: T = decode_message(cls, message, whole=True)[0]
        return value

    @classmethod
    def decode_prefix(cls, message: bytes | bytearray | memoryview) -> tuple[T, int]:
        """The value at the start of a message, and its length in bytes; raises CodingError."""
        return decode_message(cls, message, whole=False)

    @classmethod
    def encode(cls, value: T, limit: int = DEFAULT_LIMIT) -> bytes:
        """The message, at most `limit` bytes, of which 65535 are the most; raises CodingError."""
        return encode_value(cls, value, limit)

    @classmethod
    def to_json(cls, value: T) -> Json:
        """The JSON form, as json.dump takes it. The value must be one that can be encoded."""
        json: Json = cls.codec().to_json(value)
        return json

    @classmethod
    def from_json(cls, json: Json) -> T:
        """The value with this JSON form, as json.load returns it; raises JsonError."""
        value: T = value_from_json(cls, json)
        return value


class LongInteger(Typedef[int]):
    """-2147483648 to 2147483647"""

    @classmethod
    def _declaration(cls) -> Codec:
        return IntegerCodec(32, signed=True)


class LongNatural(Typedef[int]):
    """0 to 4294967295"""

    @classmethod
    def _declaration(cls) -> Codec:
        return IntegerCodec(32)


class UINT(LongNatural):
    """0 to 4294967295"""


class Integer(Typedef[int]):
    """-32768 to 32767"""

    @classmethod
    def _declaration(cls) -> Codec:
        return IntegerCodec(16, signed=True)


class Natural(Typedef[int]):
    """0 to 65535"""

    @classmethod
    def _declaration(cls) -> Codec:
        return IntegerCodec(16)


class ShortInteger(Typedef[int]):
    """-128 to 127; on the wire 0 to 255"""

    @classmethod
    def _declaration(cls) -> Codec:
        return IntegerCodec(8, signed=True, unit_bits=8)


class ShortNatural(Typedef[int]):
    """0 to 255"""

    @classmethod
    def _declaration(cls) -> Codec:
        return IntegerCodec(8)


class Boolean(Typedef["bool | int"]):
    """False, True, and as numbers the values 2 to 255 of a peer that sends others"""

    @classmethod
    def _declaration(cls) -> Codec:
        return BooleanCodec()


class Float(Typedef[float]):
    """Single precision"""

    @classmethod
    def _declaration(cls) -> Codec:
        return FloatCodec()
