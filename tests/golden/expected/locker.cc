// Made from locker.x by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/locker.bodies.h>

using namespace quorva::walk;
namespace coder = quorva::coder;

// What the station's sensor says about one door.   locker.x:13
const char* DoorStateString(int value)
{
    switch (value) {
    case 0: return &"\006\022" "DSopen\0" "<DSopen>0</DSopen>"[2];
    case 1: return &"\010\026" "DSclosed\0" "<DSclosed>1</DSclosed>"[2];
    case 3: return &"\010\026" "DSjammed\0" "<DSjammed>3</DSjammed>"[2];
    case 255: return &"\011\032" "DSunknown\0" "<DSunknown>255</DSunknown>"[2];
    default: return &"\021\000" "Error_in_Function\0"[2];
    }
}

int XdrDoorState(Xdr* xdrs, void* object)
{
    return enumeration<DoorState>(xdrs, object, DoorStateString);
}

// How a door is shared.   locker.x:21
const char* AccessKindString(int value)
{
    switch (value) {
    case 0: return &"\010\026" "AKnobody\0" "<AKnobody>0</AKnobody>"[2];
    case 1: return &"\007\024" "AKowner\0" "<AKowner>1</AKowner>"[2];
    case 2: return &"\007\024" "AKgroup\0" "<AKgroup>2</AKgroup>"[2];
    case 3: return &"\007\024" "AKshift\0" "<AKshift>3</AKshift>"[2];
    default: return &"\021\000" "Error_in_Function\0"[2];
    }
}

int XdrAccessKind(Xdr* xdrs, void* object)
{
    return enumeration<AccessKind>(xdrs, object, AccessKindString);
}

// locker.x:23
int XdrAttributeNumber(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<AttributeNumber>(xdrs, object);
    return obj && XdrLongNatural(xdrs, obj);
}

// number of one door within its station   locker.x:24
int XdrLockerId(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<LockerId>(xdrs, object);
    return obj && XdrLongNatural(xdrs, obj);
}

// locker.x:25
QUORVA_IN_PLACE(LockerIdSeq)

int XdrLockerIdSeq(Xdr* xdrs, void* object)
{
    return run<LockerIdSeq>(xdrs, object);
}

// as engraved   locker.x:26
int XdrDoorLabel(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<DoorLabel>(xdrs, object);
    return obj && text(untagged, *obj, 40).call(xdrs);
}

// doors side by side   locker.x:27
int XdrRow(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Row>(xdrs, object);
    return obj && vector(untagged, *obj, coder::DoorState).call(xdrs);
}

// locker.x:28
int XdrKey(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Key>(xdrs, object);
    return obj && opaque(untagged, *obj).call(xdrs);
}

// of the door's last visitor   locker.x:29
QUORVA_IN_PLACE(Picture)

int XdrPicture(Xdr* xdrs, void* object)
{
    return run<Picture>(xdrs, object);
}

// none at the end of a row   locker.x:30
int XdrNeighbour(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Neighbour>(xdrs, object);
    return obj && optional(untagged, *obj, coder::Locker).call(xdrs);
}

// One door and the code that opens it.   locker.x:34
template <class Pass>
At code(Pass& pass, At at, Locker& obj)
{
    return parts(pass, at,
            field("id", obj.id, coder::LockerId),
            vector("code", obj.code, coder::ShortNatural),
            field("label", obj.label, coder::DoorLabel),
            text("owner", obj.owner, 40),
            field("DoorState", obj.DoorState, coder::DoorState),
            field("above", obj.above, coder::Row),
            list("nested", obj.nested, 65535, coder::Locker),
            field("picture", obj.picture, coder::Picture),
            bytes("signature", obj.signature, 64),
            opaque("seal", obj.seal),
            field("left", obj.left, coder::Neighbour),
            optional("right", obj.right, coder::Locker),
            field("lamp", obj.lamp, coder::LampColour),
            vector("paint", obj.paint, coder::ColourValue));
}
QUORVA_BODY(Locker)

int XdrLocker(Xdr* xdrs, void* object)
{
    return run<Locker>(xdrs, object);
}

// Who may open a door. A value without an arm is refused, so void arms are written out.   locker.x:52
template <class Pass>
At code(Pass& pass, At at, AccessUnion& obj)
{
    at = parts(pass, at, field("kind", obj.kind, coder::AccessKind));
    if (!at) return at;

    at = open(pass, at, "AccessUnionUnion");
    switch (obj.kind) {
    case AccessKind::AKnobody:
        break;
    case AccessKind::AKowner:
        at = armOf(pass, at, text("owner", obj.owner, 40));
        break;
    case AccessKind::AKgroup:
    case AccessKind::AKshift:
        at = armOf(pass, at, field("members", obj.members, coder::LockerIdSeq));
        break;
    default:
        return refuse(pass, at, obj.kind);
    }
    return close(pass, at, "AccessUnionUnion");
}
QUORVA_BODY(AccessUnion)

int XdrAccessUnion(Xdr* xdrs, void* object)
{
    return run<AccessUnion>(xdrs, object);
}

// What can be read of a station, by attribute number.   locker.x:61
template <class Pass>
At code(Pass& pass, At at, StationUnion& obj)
{
    at = parts(pass, at, field("attribute", obj.attribute, coder::AttributeNumber));
    if (!at) return at;

    at = open(pass, at, "StationUnionUnion");
    switch (obj.attribute) {
    case 8:
        at = armOf(pass, at, list("doors", obj.doors, PanelDoors, coder::Locker));
        break;
    case 22:
        at = armOf(pass, at, field("frontLamp", obj.frontLamp, coder::LampColour));
        break;
    case 23:
        at = armOf(pass, at, list("doors", obj.doors, PanelDoors, coder::Locker));
        break;
    case 31:
        at = armOf(pass, at, field("temperature", obj.temperature, coder::Float));
        break;
    case 32:
        at = armOf(pass, at, field("key", obj.key, coder::Key));
        break;
    case 40:
        at = armOf(pass, at, vector("counters", obj.counters, coder::UINT));
        break;
    case 41:
        at = armOf(pass, at, optional("master", obj.master, coder::Locker));
        break;
    case 485:
        at = armOf(pass, at, bytes("raw", obj.raw, 65535));
        break;
    default:
        return refuse(pass, at, obj.attribute);
    }
    return close(pass, at, "StationUnionUnion");
}
QUORVA_BODY(StationUnion)

int XdrStationUnion(Xdr* xdrs, void* object)
{
    return run<StationUnion>(xdrs, object);
}

// Whether a door opens by itself.   locker.x:73
template <class Pass>
At code(Pass& pass, At at, Drive& obj)
{
    at = parts(pass, at, field("powered", obj.powered, coder::Boolean));
    if (!at) return at;

    at = open(pass, at, "DriveUnion");
    switch (obj.powered) {
    case 1:
        at = armOf(pass, at, field("openingTime", obj.openingTime, coder::Natural));
        break;
    case 0:
        break;
    default:
        return refuse(pass, at, obj.powered);
    }
    return close(pass, at, "DriveUnion");
}
QUORVA_BODY(Drive)

int XdrDrive(Xdr* xdrs, void* object)
{
    return run<Drive>(xdrs, object);
}

// What happened at the station. Most events say all there is to say.   locker.x:80
template <class Pass>
At code(Pass& pass, At at, EventUnion& obj)
{
    at = parts(pass, at, field("number", obj.number, coder::Integer32));
    if (!at) return at;

    at = open(pass, at, "EventUnionUnion");
    switch (obj.number) {
    case -1:
        at = armOf(pass, at, text("reason", obj.reason, 65535));
        break;
    case 7:
        at = armOf(pass, at, field("access", obj.access, coder::AccessUnion));
        break;
    default:
        at = open(pass, at, "default");
        at = close(pass, at, "default");
        break;
    }
    return close(pass, at, "EventUnionUnion");
}
QUORVA_BODY(EventUnion)

int XdrEventUnion(Xdr* xdrs, void* object)
{
    return run<EventUnion>(xdrs, object);
}

// locker.x:86
int XdrInteger32(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Integer32>(xdrs, object);
    return obj && XdrLongInteger(xdrs, obj);
}

// Signs on the doors, without any arm that carries data.   locker.x:89
template <class Pass>
At code(Pass& pass, At at, SignUnion& obj)
{
    at = parts(pass, at, field("colour", obj.colour, coder::LampColour));
    if (!at) return at;

    at = open(pass, at, "SignUnionUnion");
    switch (obj.colour) {
    case LampColour::LCoff:
        break;
    case LampColour::LCgreen:
        break;
    case LampColour::LCred:
        break;
    default:
        return refuse(pass, at, obj.colour);
    }
    return close(pass, at, "SignUnionUnion");
}
QUORVA_BODY(SignUnion)

int XdrSignUnion(Xdr* xdrs, void* object)
{
    return run<SignUnion>(xdrs, object);
}

// locker.x:96
template <class Pass>
At code(Pass& pass, At at, Visit& obj)
{
    return parts(pass, at,
            field("minutes", obj.minutes, coder::Integer),
            field("offset", obj.offset, coder::ShortInteger),
            field("paid", obj.paid, coder::Boolean),
            field("sign", obj.sign, coder::SignUnion),
            field("drive", obj.drive, coder::Drive),
            field("last", obj.last, coder::EventUnion),
            list("changes", obj.changes, 12, coder::StationUnion),
            optional("before", obj.before, coder::AccessUnion),
            field("rest", obj.rest, coder::Natural));
}
QUORVA_BODY(Visit)

int XdrVisit(Xdr* xdrs, void* object)
{
    return run<Visit>(xdrs, object);
}
