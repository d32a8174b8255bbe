"""Units and contents of messages, and the errors in them."""

from __future__ import annotations

from typing import NoReturn


class CodingError(ValueError):
    """A message that cannot be decoded, or a value that cannot be encoded."""

    def __init__(self, verb: str, type_name: str, path: str, offset: int, total: int, reason: str) -> None:
        place = f"{path}, byte {offset} of {total}" if path else f"byte {offset} of {total}"
        super().__init__(f"cannot {verb} {type_name} at {place}: {reason}")
        self.type_name = type_name
        self.path = path
        """A JSON Pointer (RFC 6901) into the JSON form: "/aValues/2/value/jobName"; empty for the whole value."""
        self.offset = offset
        """Bytes of the message before the refused number or contents."""
        self.reason = reason


class JsonError(ValueError):
    """JSON that is not the JSON form of a type."""

    def __init__(self, type_name: str, path: str, reason: str) -> None:
        super().__init__(f"{path or type_name}: {reason}")
        self.type_name = type_name
        self.path = path
        """A JSON Pointer (RFC 6901); empty for the whole value."""
        self.reason = reason


class Refusal(Exception):
    """Ends a pass. On its way out, each struct, union and array adds the step that leads to the refused part."""

    def __init__(self, reason: str, offset: int = 0) -> None:
        super().__init__(reason)
        self.reason = reason
        self.offset = offset
        self.steps: list[str | int] = []

    def path(self) -> str:
        """As a JSON Pointer. Names of members need no escapes."""
        return "".join(f"/{step}" for step in reversed(self.steps))


def byte_count(count: int) -> str:
    return "no byte" if count == 0 else "1 byte" if count == 1 else f"{count} bytes"


def beyond(what: str, number: int, most: int) -> str:
    return f"{what} {number} is beyond the maximum {most}"


def described(value: object) -> str:
    """A value for a message, shortened to 40 characters."""
    if isinstance(value, dict):
        return "an object"
    if isinstance(value, list):
        return "an array"
    if isinstance(value, int) and value.bit_length() > 64:
        return "a number of more than 64 bits"
    if value is None or isinstance(value, (int, float, str)):
        import json  # used for errors alone

        text = json.dumps(value[:40] if isinstance(value, str) else value, ensure_ascii=False)
        text = text.encode("utf-8", "backslashreplace").decode("utf-8")  # single surrogates cannot be printed
        return text if len(text) <= 40 else text[:40] + "..."
    return f"a value of the type {type(value).__name__}"


def expect(wanted: str, found: object, offset: int = 0) -> NoReturn:
    raise Refusal(f"expected {wanted}, found {described(found)}", offset)


class Reader:
    """Takes units and contents from a message."""

    def __init__(self, message: bytes) -> None:
        self.message = message
        self.offset = 0

    def unit(self) -> int:
        begin = self.offset
        end = begin + 4
        if end > len(self.message):
            left = len(self.message) - begin
            raise Refusal(f"{byte_count(left)} left where a unit of 4 is needed", begin)
        self.offset = end
        return int.from_bytes(self.message[begin:end], "big")

    def contents(self, size: int) -> bytes:
        """The next `size` bytes. Their padding is passed; it may have any value."""
        begin = self.offset
        left = len(self.message) - begin
        if left < size:
            raise Refusal(f"{byte_count(left)} left where {size} are needed", begin)
        if left < size + -size % 4:
            raise Refusal(f"the message ends within the padding of {byte_count(size)}", begin)
        self.offset = begin + size + -size % 4
        return self.message[begin : begin + size]

    def count(self, most: int) -> int:
        """The count of an array or an opaque: the low 16 bits of a unit."""
        begin = self.offset
        unit = self.unit()
        count = unit & 0xFFFF
        if count > most:
            cut = f" (the low 16 bits of {unit})" if count != unit else ""
            raise Refusal(beyond("count", count, most) + cut, begin)
        return count


class Writer:
    """Appends units and contents to a message of limited length."""

    def __init__(self, limit: int) -> None:
        self.message = bytearray()
        self.limit = limit

    @property
    def offset(self) -> int:
        return len(self.message)

    def unit(self, unit: int) -> None:
        self._append(unit.to_bytes(4, "big"))

    def contents(self, contents: bytes) -> None:
        self._append(contents + bytes(-len(contents) % 4))

    def count(self, what: str, count: int, most: int) -> None:
        begin = self.offset
        self.unit(min(count, 0xFFFFFFFF))
        if count > most:
            raise Refusal(beyond(what, count, most), begin)

    def _append(self, piece: bytes) -> None:
        if len(self.message) + len(piece) > self.limit:
            raise Refusal(f"the message is longer than the limit of {byte_count(self.limit)}", self.offset)
        self.message += piece
