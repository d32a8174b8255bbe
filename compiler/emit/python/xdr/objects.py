"""Codecs of enumerations, structs and unions."""

from __future__ import annotations

from collections.abc import Callable
from functools import cached_property
from typing import TYPE_CHECKING, Any, NamedTuple

from .scalars import Codec, IntegerCodec
from .wire import Reader, Refusal, Writer, described, expect

if TYPE_CHECKING:
    from .classes import Coded, Enumeration


class EnumerationCodec(IntegerCodec):
    """An enumeration. A number without an enumerator is kept as an int: the peer may be newer."""

    def __init__(self, enumeration: type[Enumeration]) -> None:
        super().__init__(32, signed=True)
        self.name = enumeration.__name__
        self.by_number = {int(each): each for each in enumeration}
        renamed = enumeration._renamed()
        self.names = {int(each): renamed.get(each.name, each.name) for each in enumeration}
        self.by_name = {name: self.by_number[number] for number, name in self.names.items()}

    def wanted(self) -> str:
        return f"an enumerator of {self.name} or its number"

    def read(self, reader: Reader) -> Any:
        number = super().read(reader)
        return self.by_number.get(number, number)

    def to_json(self, value: Any) -> Any:
        return self.names.get(value, int(value))

    def from_json(self, json: Any) -> Any:
        if isinstance(json, str):
            if json in self.by_name:
                return self.by_name[json]
            raise Refusal(f"{described(json)} is not an enumerator of {self.name}")
        number = super().from_json(json)
        return self.by_number.get(number, number)

    def text(self, value: Any) -> str:
        return f"{self.names[value]} ({int(value)})" if value in self.names else str(int(value))


class Member:
    """A field, a discriminant or an arm: its name in the interface, its declaration, and the attribute that holds it.

    The value of an arm is in the attribute `value` of the union.
    """

    def __init__(self, name: str, declared: type[Coded] | Codec, attribute: str = "") -> None:
        self.name = name
        self.declared = declared
        self.attribute = attribute or name

    @cached_property
    def codec(self) -> Codec:
        """Found on first use, because types may hold each other."""
        return self.declared if isinstance(self.declared, Codec) else self.declared.codec()

    def from_json(self, json: Any) -> Any:
        try:
            return self.codec.from_json(json)
        except Refusal as refusal:
            refusal.steps.append(self.name)
            raise


class ObjectCodec(Codec):
    """What structs and unions share."""

    def __init__(self, class_: type[Any]) -> None:
        self.class_ = class_
        self.name = class_.__name__

    def check(self, value: object, offset: int) -> None:
        if not isinstance(value, self.class_):
            expect(f"an object of {self.name}", value, offset)

    def missing(self, member: Member) -> Refusal:
        return Refusal(f'the field "{member.name}" of {self.name} is missing')

    def members_from_json(
        self, json: dict[str, Any], members: tuple[Member, ...], unknown: Callable[[str], str]
    ) -> list[Any]:
        """The values of the members, all of which must be there. `unknown` makes the reason to refuse another name."""
        by_name = {member.name: member for member in members}
        values: dict[str, Any] = {}
        for name, value in json.items():
            if name not in by_name:
                raise Refusal(unknown(described(name)))
            values[name] = by_name[name].from_json(value)
        for member in members:
            if member.name not in values:
                raise self.missing(member)
        return [values[member.name] for member in members]


class StructCodec(ObjectCodec):
    """The fields of a struct, in order."""

    @cached_property
    def members(self) -> tuple[Member, ...]:
        members: tuple[Member, ...] = self.class_._fields()
        return members

    def read(self, reader: Reader) -> Any:
        values: list[Any] = []
        try:
            for member in self.members:
                values.append(member.codec.read(reader))
        except Refusal as refusal:
            refusal.steps.append(self.members[len(values)].name)
            raise
        return self.class_(*values)

    def write(self, writer: Writer, value: Any) -> None:
        self.check(value, writer.offset)
        name = ""
        try:
            for member in self.members:
                name = member.name
                member.codec.write(writer, getattr(value, member.attribute))
        except Refusal as refusal:
            refusal.steps.append(name)
            raise

    def to_json(self, value: Any) -> Any:
        return {member.name: member.codec.to_json(getattr(value, member.attribute)) for member in self.members}

    def from_json(self, json: Any) -> Any:
        if not isinstance(json, dict):
            expect(f"an object with the fields of {self.name}", json)
        return self.class_(*self.members_from_json(json, self.members, lambda name: f"{self.name} has no field {name}"))


class Arms(NamedTuple):
    """How a union is coded: its discriminant, and the arm of each of its values, None for a void one."""

    discriminant: Member
    by_number: dict[int, Member | None]
    has_default: bool = False


class UnionCodec(ObjectCodec):
    """The discriminant of a union and its arms."""

    @cached_property
    def arms(self) -> Arms:
        arms: Arms = self.class_._arms()
        return arms

    def choice(self, number: Any) -> str:
        discriminant = self.arms.discriminant
        return f"{discriminant.name} {discriminant.codec.text(number)}"

    def arm_of(self, number: Any, offset: int = 0) -> Member | None:
        """The arm with data that the discriminant selects, or None."""
        if number not in self.arms.by_number and not self.arms.has_default:
            raise Refusal(f"{self.choice(number)} has no arm in {self.name}", offset)
        return self.arms.by_number.get(number)

    def read(self, reader: Reader) -> Any:
        begin = reader.offset
        step = self.arms.discriminant.name
        try:
            number = self.arms.discriminant.codec.read(reader)
            arm = self.arm_of(number, begin)
            if arm is None:
                return self.class_(number, None)
            step = arm.name
            return self.class_(number, arm.codec.read(reader))
        except Refusal as refusal:
            refusal.steps.append(step)
            raise

    def write(self, writer: Writer, value: Any) -> None:
        begin = writer.offset
        self.check(value, begin)
        step = self.arms.discriminant.name
        try:
            number = getattr(value, self.arms.discriminant.attribute)
            self.arms.discriminant.codec.write(writer, number)
            arm = self.arm_of(number, begin)
            if arm is not None:
                step = arm.name
                arm.codec.write(writer, value.value)
            elif value.value is not None:
                raise Refusal(f"{self.choice(number)} has no contents", begin)
        except Refusal as refusal:
            refusal.steps.append(step)
            raise

    def to_json(self, value: Any) -> Any:
        discriminant = self.arms.discriminant
        number = getattr(value, discriminant.attribute)
        json = {discriminant.name: discriminant.codec.to_json(number)}
        arm = self.arms.by_number.get(number)
        if arm is not None:
            json[arm.name] = arm.codec.to_json(value.value)
        return json

    def from_json(self, json: Any) -> Any:
        discriminant = self.arms.discriminant
        if not isinstance(json, dict):
            expect(f'an object with the field "{discriminant.name}" and its arm of {self.name}', json)
        if discriminant.name not in json:
            raise self.missing(discriminant)
        number = discriminant.from_json(json[discriminant.name])
        try:
            arm = self.arm_of(number)
        except Refusal as refusal:
            refusal.steps.append(discriminant.name)
            raise
        choice = self.choice(number)
        if arm is None:
            self.members_from_json(json, (discriminant,), lambda name: f"{choice} has no contents, but {name} is given")
            return self.class_(number, None)
        wanted = f'{choice} goes with the arm "{arm.name}"'
        values = self.members_from_json(json, (discriminant, arm), lambda name: f"{wanted}, not with {name}")
        return self.class_(*values)
