"""Codecs of numbers, and what all codecs share."""

from __future__ import annotations

import binascii
import math
import struct
from typing import Any

from .wire import Reader, Refusal, Writer, described, expect


class Codec:
    """Codes the values of one declaration. All functions raise Refusal."""

    def read(self, reader: Reader) -> Any:
        raise NotImplementedError

    def write(self, writer: Writer, value: Any) -> None:
        raise NotImplementedError

    def to_json(self, value: Any) -> Any:
        raise NotImplementedError

    def from_json(self, json: Any) -> Any:
        raise NotImplementedError

    def text(self, value: Any) -> str:
        """A number for people."""
        return str(value)


class IntegerCodec(Codec):
    """Whole numbers of 8, 16 or 32 bits. A decode ignores the other bits of the unit."""

    def __init__(self, bits: int, *, signed: bool = False, unit_bits: int = 32) -> None:
        self.mask = (1 << bits) - 1
        self.sign = 1 << bits - 1 if signed else 0
        self.unit_mask = (1 << unit_bits) - 1
        self.least = -self.sign
        self.most = self.least + self.mask

    def wanted(self) -> str:
        return f"a whole number from {self.least} to {self.most}"

    def read(self, reader: Reader) -> Any:
        return ((reader.unit() & self.mask) ^ self.sign) - self.sign

    def write(self, writer: Writer, value: Any) -> None:
        if not isinstance(value, int) or not self.least <= value <= self.most:
            expect(self.wanted(), value, writer.offset)
        writer.unit(value & self.unit_mask)

    def to_json(self, value: Any) -> Any:
        return value

    def from_json(self, json: Any) -> Any:
        if not isinstance(json, int) or isinstance(json, bool) or not self.least <= json <= self.most:
            expect(self.wanted(), json)
        return json


class BooleanCodec(IntegerCodec):
    """False, True, and the numbers 2 to 255."""

    def __init__(self) -> None:
        super().__init__(8)

    def wanted(self) -> str:
        return f"true, false or a number from {self.least} to {self.most}"

    def read(self, reader: Reader) -> Any:
        return self.to_json(super().read(reader))

    def to_json(self, value: Any) -> Any:
        return value == 1 if value in (0, 1) else value

    def from_json(self, json: Any) -> Any:
        return json if isinstance(json, bool) else self.to_json(super().from_json(json))

    def text(self, value: Any) -> str:
        return ("false", "true")[value] if value in (0, 1) else str(value)


class FloatCodec(Codec):
    """Single precision. The bits of a NaN are kept."""

    def read(self, reader: Reader) -> Any:
        return float_of(reader.unit())

    def write(self, writer: Writer, value: Any) -> None:
        if not isinstance(value, (int, float)):
            expect("a number", value, writer.offset)
        try:
            unit = bits_of(value)
        except OverflowError:
            raise Refusal(beyond_float(value), writer.offset) from None
        writer.unit(unit)

    def to_json(self, value: Any) -> Any:
        if not math.isfinite(value):
            return {"bits": f"{bits_of(value):08x}"}
        return shortest(value)

    def from_json(self, json: Any) -> Any:
        if isinstance(json, (int, float)) and not isinstance(json, bool):
            try:
                bits = bits_of(json)
            except OverflowError:
                bits = 0x7F800000
            if not math.isfinite(float_of(bits)):
                raise Refusal(beyond_float(json))
            return float_of(bits)
        bytes_of_bits = bytes_under("bits", json)
        if bytes_of_bits is None or len(bytes_of_bits) != 4:
            expect('a number or {"bits": "7fc00001"} with eight hexadecimal digits', json)
        return float_of(int.from_bytes(bytes_of_bits, "big"))


def float_of(bits: int) -> float:
    """The float of 32 bits. A conversion by `struct` may change the bits of a NaN, so they are moved into a double."""
    value: float
    if bits & 0x7F800000 == 0x7F800000:
        wide = (bits & 0x80000000) << 32 | 0x7FF << 52 | (bits & 0x7FFFFF) << 29
        (value,) = struct.unpack(">d", wide.to_bytes(8, "big"))
    else:
        (value,) = struct.unpack(">f", bits.to_bytes(4, "big"))
    return value


def bits_of(value: float) -> int:
    """The 32 bits of a float. Raises OverflowError for a finite number beyond the largest float."""
    if math.isfinite(value):
        return int.from_bytes(struct.pack(">f", value), "big")
    wide = int.from_bytes(struct.pack(">d", value), "big")
    fraction = wide >> 29 & 0x7FFFFF
    if math.isnan(value) and fraction == 0:
        fraction = 0x400000  # a NaN of Python whose bits a float has no place for
    return wide >> 32 & 0x80000000 | 0x7F800000 | fraction


def shortest(value: float) -> float:
    """The same float with the fewest digits; a whole number keeps all its digits where that is no longer."""
    bits = bits_of(value)
    for digits in range(9):
        mantissa, _, exponent = f"{value:.{digits}e}".replace(".", "").partition("e")
        for step in (0, 1, -1):
            candidate = float(f"{int(mantissa) + step}e{int(exponent) - digits}")
            try:
                if bits_of(candidate) == bits:
                    return value if value.is_integer() and int(exponent) < digits + 6 else candidate
            except OverflowError:
                continue
    return value


def beyond_float(value: object) -> str:
    return f"the number {described(value)} is beyond the largest Float"


def bytes_under(key: str, json: object) -> bytes | None:
    """The bytes of {key: hexadecimal digits}; None if the value does not have this form."""
    if not isinstance(json, dict) or len(json) != 1 or not isinstance(json.get(key), str):
        return None
    try:
        return binascii.unhexlify(json[key])
    except ValueError:
        return None
