// locker.h: made from locker.x by quorvaxdrc. Change the interface file, not this one.
//
// The doors of a pick-up station and who may open them: every form of the interface language once.
#pragma once

#include <quorvapixdr/colours.h>
#include <quorvapixdr/primitives.h>

#include <cstdint>

inline constexpr std::int32_t PanelDoors = 6;  // what the panel can show at a time
inline constexpr std::int32_t KeyLength = 0x10;
inline constexpr std::int32_t StaffPin = 0755;
inline constexpr std::uint32_t Forever = 0xFFFFFFFF;  // seconds
inline constexpr std::int32_t DoorsPerRow = 6;

// What the station's sensor says about one door.
// Sparse: 2 was withdrawn and stays unused; 255 means that no sensor answered.
enum class DoorState : std::int32_t {
    DSopen = 0,
    DSclosed = 1,
    DSjammed = 3,  // neither sensor switch is pressed
    DSunknown = 255,
};

// How a door is shared.
enum class AccessKind : std::int32_t {
    AKnobody = 0,
    AKowner = 1,
    AKgroup = 2,
    AKshift = 3,
};

using AttributeNumber = LongNatural;
using LockerId = LongNatural;  // number of one door within its station

struct LockerIdSeq {
    std::uint16_t count;  // at most PanelDoors
    LockerId* elements;
};

using DoorLabel = char*;             // at most 40 characters; as engraved
using Row = DoorState[DoorsPerRow];  // doors side by side
using Key = unsigned char[KeyLength];

// of the door's last visitor
struct Picture {
    std::uint16_t count;
    unsigned char* elements;
};

struct Locker;

using Neighbour = Locker*;  // null when absent; none at the end of a row

// One door and the code that opens it.
// All ten bytes of the code are always sent; the owner pads short codes with zeros.
struct Locker {
    LockerId id;
    ShortNatural code[10];
    DoorLabel label;
    char* owner;            // at most 40 characters; "" while the door is free
    ::DoorState DoorState;  // named like its type
    Row above;
    quorva::Counted<Locker> nested;  // smaller doors inside this one
    Picture picture;
    quorva::Counted<unsigned char> signature;  // at most 64 bytes
    unsigned char seal[8];
    Neighbour left;
    Locker* right;  // null when absent
    LampColour lamp;
    ColourValue paint[PanelDoors];
};

// Who may open a door. A value without an arm is refused, so void arms are written out.
struct AccessUnion {
    AccessKind kind;
    union {
        char* owner;          // case AKowner: at most 40 characters
        LockerIdSeq members;  // cases AKgroup, AKshift
        // case AKnobody: nothing
    };
};

// What can be read of a station, by attribute number.
// The doors stand under two numbers since the second panel came.
struct StationUnion {
    AttributeNumber attribute;
    union {
        quorva::Counted<Locker> doors;       // cases 8, 23: at most PanelDoors elements; of the second panel
        LampColour frontLamp;                // case 22
        Float temperature;                   // case 31; degrees Celsius
        Key key;                             // case 32
        UINT counters[3];                    // case 40
        Locker* master;                      // case 41: null when absent
        quorva::Counted<unsigned char> raw;  // case 485
    };
};

// Whether a door opens by itself.
struct Drive {
    Boolean powered;
    union {
        Natural openingTime;  // case TRUE; milliseconds
        // case FALSE: nothing
    };
};

using Integer32 = LongInteger;

// What happened at the station. Most events say all there is to say.
// Provisional: numbers until the station's makers agree on them
struct EventUnion {
    Integer32 number;
    union {
        char* reason;        // case -1: at most 65535 characters
        AccessUnion access;  // case 7
        // any other value: nothing
    };
};

// Signs on the doors, without any arm that carries data.
struct SignUnion {
    LampColour colour;
    // case LCgreen: nothing; free
    // cases LCoff, LCred: nothing
};

// Provisional.
struct Visit {
    Integer minutes;
    ShortInteger offset;  // hours from the station's time zone
    Boolean paid;
    SignUnion sign;
    Drive drive;
    EventUnion last;
    quorva::Counted<StationUnion> changes;  // at most 12 elements
    AccessUnion* before;                    // null when absent
    Natural rest;
};

// The name of the enumerator that has the value, else "Error_in_Function".
QUORVA_EXPORT const char* DoorStateString(int value);
QUORVA_EXPORT const char* AccessKindString(int value);

extern "C" {

// The coding routines, each over one object of its type.
QUORVA_EXPORT int XdrDoorState(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrAccessKind(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrAttributeNumber(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrLockerId(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrLockerIdSeq(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrDoorLabel(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrRow(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrKey(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrPicture(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrNeighbour(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrLocker(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrAccessUnion(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrStationUnion(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrDrive(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrEventUnion(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrInteger32(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrSignUnion(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrVisit(Xdr* xdrs, void* object);

}  // extern "C"

namespace quorva::coder {
inline constexpr quorva::Shaped<::DoorState, quorva::shape::Enumeration<DoorStateString>>
    DoorState = {{XdrDoorState, "DoorState"}};
inline constexpr quorva::Shaped<::AccessKind, quorva::shape::Enumeration<AccessKindString>>
    AccessKind = {{XdrAccessKind, "AccessKind"}};
inline constexpr quorva::Shaped<::AttributeNumber, decltype(LongNatural)::Shape>
    AttributeNumber = {{XdrAttributeNumber, "AttributeNumber"}};
inline constexpr quorva::Shaped<::LockerId, decltype(LongNatural)::Shape> LockerId = {{XdrLockerId, "LockerId"}};
inline constexpr quorva::Shaped<::LockerIdSeq, quorva::shape::Body<true>>
    LockerIdSeq = {{XdrLockerIdSeq, "LockerIdSeq"}};
inline constexpr quorva::Shaped<::DoorLabel, quorva::shape::Text<40>> DoorLabel = {{XdrDoorLabel, "DoorLabel"}};
inline constexpr quorva::Shaped<::Row, quorva::shape::Routine> Row = {{XdrRow, "Row"}};
inline constexpr quorva::Shaped<::Key, quorva::shape::Routine> Key = {{XdrKey, "Key"}};
inline constexpr quorva::Shaped<::Picture, quorva::shape::Body<true>> Picture = {{XdrPicture, "Picture"}};
inline constexpr quorva::Shaped<::Neighbour, quorva::shape::Routine> Neighbour = {{XdrNeighbour, "Neighbour"}};
inline constexpr quorva::Shaped<::Locker, quorva::shape::Body<true>> Locker = {{XdrLocker, "Locker"}};
inline constexpr quorva::Shaped<::AccessUnion, quorva::shape::Body<true>>
    AccessUnion = {{XdrAccessUnion, "AccessUnion"}};
inline constexpr quorva::Shaped<::StationUnion, quorva::shape::Body<true>>
    StationUnion = {{XdrStationUnion, "StationUnion"}};
inline constexpr quorva::Shaped<::Drive, quorva::shape::Body<true>> Drive = {{XdrDrive, "Drive"}};
inline constexpr quorva::Shaped<::EventUnion, quorva::shape::Body<true>> EventUnion = {{XdrEventUnion, "EventUnion"}};
inline constexpr quorva::Shaped<::Integer32, decltype(LongInteger)::Shape> Integer32 = {{XdrInteger32, "Integer32"}};
inline constexpr quorva::Shaped<::SignUnion, quorva::shape::Body<true>> SignUnion = {{XdrSignUnion, "SignUnion"}};
inline constexpr quorva::Shaped<::Visit, quorva::shape::Body<true>> Visit = {{XdrVisit, "Visit"}};
}  // namespace quorva::coder

namespace quorva {
template <>
inline constexpr Coder<::DoorState> coderOf<::DoorState> = coder::DoorState;
template <>
inline constexpr Coder<::AccessKind> coderOf<::AccessKind> = coder::AccessKind;
template <>
inline constexpr Coder<::LockerIdSeq> coderOf<::LockerIdSeq> = coder::LockerIdSeq;
template <>
inline constexpr Coder<::Picture> coderOf<::Picture> = coder::Picture;
template <>
inline constexpr Coder<::Locker> coderOf<::Locker> = coder::Locker;
template <>
inline constexpr Coder<::AccessUnion> coderOf<::AccessUnion> = coder::AccessUnion;
template <>
inline constexpr Coder<::StationUnion> coderOf<::StationUnion> = coder::StationUnion;
template <>
inline constexpr Coder<::Drive> coderOf<::Drive> = coder::Drive;
template <>
inline constexpr Coder<::EventUnion> coderOf<::EventUnion> = coder::EventUnion;
template <>
inline constexpr Coder<::SignUnion> coderOf<::SignUnion> = coder::SignUnion;
template <>
inline constexpr Coder<::Visit> coderOf<::Visit> = coder::Visit;
}  // namespace quorva
