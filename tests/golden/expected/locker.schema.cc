// The schema table of locker.x, made from it by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/locker.h>
#include <quorvapixdr/schema.h>

#include <cstddef>
#include <cstdint>

namespace quorva::schema {

namespace types {
extern const schema::Type DoorState, AccessKind, AttributeNumber, LockerId, LockerIdSeq, DoorLabel, Row, Key, Picture,
                          Neighbour, Locker, AccessUnion, StationUnion, Drive, EventUnion, Integer32, SignUnion, Visit;

// Of other modules.
extern const schema::Type LampColour, ColourValue;
}  // namespace types

// The values that select an arm.
template <std::int64_t... numbers>
static constexpr std::int64_t cases[] = {numbers...};

constexpr Enumerator DoorStateEnumerators[] = {
    {"DSopen", 0},
    {"DSclosed", 1},
    {"DSjammed", 3, "neither sensor switch is pressed"},
    {"DSunknown", 255},
};

constinit const Type types::DoorState = {
    .name = "DoorState",
    .kind = Kind::enumeration,
    .module = "locker",
    .file = "locker.x",
    .line = 13,
    .doc = "What the station's sensor says about one door.\n"
           "Sparse: 2 was withdrawn and stays unused; 255 means that no sensor answered.",
    .routine = XdrDoorState,
    .nameOf = DoorStateString,
    .size = sizeof(::DoorState),
    .alignment = alignof(::DoorState),
    .enumerators = DoorStateEnumerators,
};

constexpr Enumerator AccessKindEnumerators[] = {
    {"AKnobody", 0},
    {"AKowner", 1},
    {"AKgroup", 2},
    {"AKshift", 3},
};

constinit const Type types::AccessKind = {
    .name = "AccessKind",
    .kind = Kind::enumeration,
    .module = "locker",
    .file = "locker.x",
    .line = 21,
    .doc = "How a door is shared.",
    .routine = XdrAccessKind,
    .nameOf = AccessKindString,
    .size = sizeof(::AccessKind),
    .alignment = alignof(::AccessKind),
    .enumerators = AccessKindEnumerators,
};

constinit const Type types::AttributeNumber = {
    .name = "AttributeNumber",
    .kind = Kind::definedAs,
    .module = "locker",
    .file = "locker.x",
    .line = 23,
    .routine = XdrAttributeNumber,
    .size = sizeof(::AttributeNumber),
    .alignment = alignof(::AttributeNumber),
    .target = {Form::single, &types::LongNatural},
};

constinit const Type types::LockerId = {
    .name = "LockerId",
    .kind = Kind::definedAs,
    .module = "locker",
    .file = "locker.x",
    .line = 24,
    .doc = "number of one door within its station",
    .routine = XdrLockerId,
    .size = sizeof(::LockerId),
    .alignment = alignof(::LockerId),
    .target = {Form::single, &types::LongNatural},
};

constinit const Type types::LockerIdSeq = {
    .name = "LockerIdSeq",
    .kind = Kind::definedAs,
    .module = "locker",
    .file = "locker.x",
    .line = 25,
    .routine = XdrLockerIdSeq,
    .size = sizeof(::LockerIdSeq),
    .alignment = alignof(::LockerIdSeq),
    .target = {Form::list, &types::LockerId, 6},
};

constinit const Type types::DoorLabel = {
    .name = "DoorLabel",
    .kind = Kind::definedAs,
    .module = "locker",
    .file = "locker.x",
    .line = 26,
    .doc = "as engraved",
    .routine = XdrDoorLabel,
    .size = sizeof(::DoorLabel),
    .alignment = alignof(::DoorLabel),
    .target = {Form::string, nullptr, 40},
};

constinit const Type types::Row = {
    .name = "Row",
    .kind = Kind::definedAs,
    .module = "locker",
    .file = "locker.x",
    .line = 27,
    .doc = "doors side by side",
    .routine = XdrRow,
    .size = sizeof(::Row),
    .alignment = alignof(::Row),
    .target = {Form::vector, &types::DoorState, 6},
};

constinit const Type types::Key = {
    .name = "Key",
    .kind = Kind::definedAs,
    .module = "locker",
    .file = "locker.x",
    .line = 28,
    .routine = XdrKey,
    .size = sizeof(::Key),
    .alignment = alignof(::Key),
    .target = {Form::opaque, nullptr, 16},
};

constinit const Type types::Picture = {
    .name = "Picture",
    .kind = Kind::definedAs,
    .module = "locker",
    .file = "locker.x",
    .line = 29,
    .doc = "of the door's last visitor",
    .routine = XdrPicture,
    .size = sizeof(::Picture),
    .alignment = alignof(::Picture),
    .target = {Form::bytes, nullptr, 65535},
};

constinit const Type types::Neighbour = {
    .name = "Neighbour",
    .kind = Kind::definedAs,
    .module = "locker",
    .file = "locker.x",
    .line = 30,
    .doc = "none at the end of a row",
    .routine = XdrNeighbour,
    .size = sizeof(::Neighbour),
    .alignment = alignof(::Neighbour),
    .target = {Form::optional, &types::Locker},
};

constexpr Member LockerFields[] = {
    {"id", {Form::single, &types::LockerId}, offsetof(::Locker, id)},
    {"code", {Form::vector, &types::ShortNatural, 10}, offsetof(::Locker, code)},
    {"label", {Form::single, &types::DoorLabel}, offsetof(::Locker, label)},
    {"owner", {Form::string, nullptr, 40}, offsetof(::Locker, owner), "\"\" while the door is free"},
    {"DoorState", {Form::single, &types::DoorState}, offsetof(::Locker, DoorState), "named like its type"},
    {"above", {Form::single, &types::Row}, offsetof(::Locker, above)},
    {"nested", {Form::list, &types::Locker, 65535}, offsetof(::Locker, nested), "smaller doors inside this one"},
    {"picture", {Form::single, &types::Picture}, offsetof(::Locker, picture)},
    {"signature", {Form::bytes, nullptr, 64}, offsetof(::Locker, signature)},
    {"seal", {Form::opaque, nullptr, 8}, offsetof(::Locker, seal)},
    {"left", {Form::single, &types::Neighbour}, offsetof(::Locker, left)},
    {"right", {Form::optional, &types::Locker}, offsetof(::Locker, right)},
    {"lamp", {Form::single, &types::LampColour}, offsetof(::Locker, lamp)},
    {"paint", {Form::vector, &types::ColourValue, 6}, offsetof(::Locker, paint)},
};

constinit const Type types::Locker = {
    .name = "Locker",
    .kind = Kind::record,
    .module = "locker",
    .file = "locker.x",
    .line = 34,
    .doc = "One door and the code that opens it.\n"
           "All ten bytes of the code are always sent; the owner pads short codes with zeros.",
    .routine = XdrLocker,
    .size = sizeof(::Locker),
    .alignment = alignof(::Locker),
    .fields = LockerFields,
};

constexpr Member AccessUnionFields[] = {
    {"kind", {Form::single, &types::AccessKind}, offsetof(::AccessUnion, kind)},
};

constexpr Arm AccessUnionArms[] = {
    {cases<0>, {}},
    {cases<1>, {"owner", {Form::string, nullptr, 40}, offsetof(::AccessUnion, owner)}},
    {cases<2, 3>, {"members", {Form::single, &types::LockerIdSeq}, offsetof(::AccessUnion, members)}},
};

constinit const Type types::AccessUnion = {
    .name = "AccessUnion",
    .kind = Kind::discriminated,
    .module = "locker",
    .file = "locker.x",
    .line = 52,
    .doc = "Who may open a door. A value without an arm is refused, so void arms are written out.",
    .routine = XdrAccessUnion,
    .size = sizeof(::AccessUnion),
    .alignment = alignof(::AccessUnion),
    .fields = AccessUnionFields,
    .arms = AccessUnionArms,
};

constexpr Member StationUnionFields[] = {
    {"attribute", {Form::single, &types::AttributeNumber}, offsetof(::StationUnion, attribute)},
};

constexpr Arm StationUnionArms[] = {
    {cases<8>, {"doors", {Form::list, &types::Locker, 6}, offsetof(::StationUnion, doors)}},
    {cases<22>, {"frontLamp", {Form::single, &types::LampColour}, offsetof(::StationUnion, frontLamp)}},
    {cases<23>, {"doors", {Form::list, &types::Locker, 6}, offsetof(::StationUnion, doors), "of the second panel"}},
    {cases<31>, {"temperature", {Form::single, &types::Float}, offsetof(::StationUnion, temperature),
                 "degrees Celsius"}},
    {cases<32>, {"key", {Form::single, &types::Key}, offsetof(::StationUnion, key)}},
    {cases<40>, {"counters", {Form::vector, &types::UINT, 3}, offsetof(::StationUnion, counters)}},
    {cases<41>, {"master", {Form::optional, &types::Locker}, offsetof(::StationUnion, master)}},
    {cases<485>, {"raw", {Form::bytes, nullptr, 65535}, offsetof(::StationUnion, raw)}},
};

constinit const Type types::StationUnion = {
    .name = "StationUnion",
    .kind = Kind::discriminated,
    .module = "locker",
    .file = "locker.x",
    .line = 61,
    .doc = "What can be read of a station, by attribute number.\n"
           "The doors stand under two numbers since the second panel came.",
    .routine = XdrStationUnion,
    .size = sizeof(::StationUnion),
    .alignment = alignof(::StationUnion),
    .fields = StationUnionFields,
    .arms = StationUnionArms,
};

constexpr Member DriveFields[] = {
    {"powered", {Form::single, &types::Boolean}, offsetof(::Drive, powered)},
};

constexpr Arm DriveArms[] = {
    {cases<1>, {"openingTime", {Form::single, &types::Natural}, offsetof(::Drive, openingTime), "milliseconds"}},
    {cases<0>, {}},
};

constinit const Type types::Drive = {
    .name = "Drive",
    .kind = Kind::discriminated,
    .module = "locker",
    .file = "locker.x",
    .line = 73,
    .doc = "Whether a door opens by itself.",
    .routine = XdrDrive,
    .size = sizeof(::Drive),
    .alignment = alignof(::Drive),
    .fields = DriveFields,
    .arms = DriveArms,
};

constexpr Member EventUnionFields[] = {
    {"number", {Form::single, &types::Integer32}, offsetof(::EventUnion, number)},
};

constexpr Arm EventUnionArms[] = {
    {cases<-1>, {"reason", {Form::string, nullptr, 65535}, offsetof(::EventUnion, reason)}},
    {cases<7>, {"access", {Form::single, &types::AccessUnion}, offsetof(::EventUnion, access)}},
};

constinit const Type types::EventUnion = {
    .name = "EventUnion",
    .kind = Kind::discriminated,
    .module = "locker",
    .file = "locker.x",
    .line = 80,
    .doc = "What happened at the station. Most events say all there is to say.",
    .provisional = "numbers until the station's makers agree on them",
    .routine = XdrEventUnion,
    .size = sizeof(::EventUnion),
    .alignment = alignof(::EventUnion),
    .fields = EventUnionFields,
    .arms = EventUnionArms,
    .hasDefault = true,
};

constinit const Type types::Integer32 = {
    .name = "Integer32",
    .kind = Kind::definedAs,
    .module = "locker",
    .file = "locker.x",
    .line = 86,
    .routine = XdrInteger32,
    .size = sizeof(::Integer32),
    .alignment = alignof(::Integer32),
    .target = {Form::single, &types::LongInteger},
};

constexpr Member SignUnionFields[] = {
    {"colour", {Form::single, &types::LampColour}, offsetof(::SignUnion, colour)},
};

constexpr Arm SignUnionArms[] = {
    {cases<0>, {}},
    {cases<1>, {"", {}, 0, "free"}},
    {cases<2>, {}},
};

constinit const Type types::SignUnion = {
    .name = "SignUnion",
    .kind = Kind::discriminated,
    .module = "locker",
    .file = "locker.x",
    .line = 89,
    .doc = "Signs on the doors, without any arm that carries data.",
    .routine = XdrSignUnion,
    .size = sizeof(::SignUnion),
    .alignment = alignof(::SignUnion),
    .fields = SignUnionFields,
    .arms = SignUnionArms,
};

constexpr Member VisitFields[] = {
    {"minutes", {Form::single, &types::Integer}, offsetof(::Visit, minutes)},
    {"offset", {Form::single, &types::ShortInteger}, offsetof(::Visit, offset), "hours from the station's time zone"},
    {"paid", {Form::single, &types::Boolean}, offsetof(::Visit, paid)},
    {"sign", {Form::single, &types::SignUnion}, offsetof(::Visit, sign)},
    {"drive", {Form::single, &types::Drive}, offsetof(::Visit, drive)},
    {"last", {Form::single, &types::EventUnion}, offsetof(::Visit, last)},
    {"changes", {Form::list, &types::StationUnion, 12}, offsetof(::Visit, changes)},
    {"before", {Form::optional, &types::AccessUnion}, offsetof(::Visit, before)},
    {"rest", {Form::single, &types::Natural}, offsetof(::Visit, rest)},
};

constinit const Type types::Visit = {
    .name = "Visit",
    .kind = Kind::record,
    .module = "locker",
    .file = "locker.x",
    .line = 96,
    .provisional = "",
    .routine = XdrVisit,
    .size = sizeof(::Visit),
    .alignment = alignof(::Visit),
    .fields = VisitFields,
};

namespace tables {
extern const schema::Module of_locker;
}

constexpr const Type* definitions[] = {
    &types::DoorState,
    &types::AccessKind,
    &types::AttributeNumber,
    &types::LockerId,
    &types::LockerIdSeq,
    &types::DoorLabel,
    &types::Row,
    &types::Key,
    &types::Picture,
    &types::Neighbour,
    &types::Locker,
    &types::AccessUnion,
    &types::StationUnion,
    &types::Drive,
    &types::EventUnion,
    &types::Integer32,
    &types::SignUnion,
    &types::Visit,
};

constinit const Module tables::of_locker = {
    .name = "locker",
    .file = "locker.x",
    .doc = "The doors of a pick-up station and who may open them: every form of the interface language once.",
    .types = definitions,
};

}  // namespace quorva::schema
