"""Codes messages in XDR (RFC 4506) and converts objects to JSON: what the generated modules share.

Every type of an interface is a class with these functions:

    T.decode(message)       the value that the bytes hold; raises CodingError
    T.decode_prefix(bytes)  the same, and the number of bytes read: others may follow
    T.encode(value)         the bytes of a value; raises CodingError
    T.to_json(value)        what json.dump takes
    T.from_json(json)       the value that json.load has read; raises JsonError

Structs and unions are dataclasses, and `value.encode()` and `value.to_json()` do the same. Enumerations are IntEnums.
All other types stand for values of Python: int, bool, float, str, bytes, list, or None for an absent optional.

A string of other bytes than UTF-8 has them as surrogates, as the error handler "surrogateescape" makes them.
"""

from .arrays import Array, FixedArray, Optional
from .classes import (
    Boolean,
    Coded,
    Enumeration,
    Float,
    Integer,
    Json,
    LongInteger,
    LongNatural,
    Natural,
    ShortInteger,
    ShortNatural,
    Struct,
    Typedef,
    UINT,
    Union,
)
from .contents import FixedOpaque, Opaque, String
from .objects import Arms, Member
from .scalars import Codec
from .wire import CodingError, JsonError

__all__ = [
    "Arms",
    "Array",
    "Boolean",
    "Codec",
    "Coded",
    "CodingError",
    "Enumeration",
    "FixedArray",
    "FixedOpaque",
    "Float",
    "Integer",
    "Json",
    "JsonError",
    "LongInteger",
    "LongNatural",
    "Member",
    "Natural",
    "Opaque",
    "Optional",
    "ShortInteger",
    "ShortNatural",
    "String",
    "Struct",
    "Typedef",
    "UINT",
    "Union",
]
