// Made from locker.x by quorvaxdrc. Change the interface file, not this one.
#include <quorvapixdr/locker.h>
#include <quorvapixdr/walk.h>

using namespace quorva::walk;
namespace coder = quorva::coder;

// What the station's sensor says about one door.   locker.x:13
const char* DoorStateString(int value)
{
    switch (value) {
    case 0: return "DSopen";
    case 1: return "DSclosed";
    case 3: return "DSjammed";
    case 255: return "DSunknown";
    default: return "Error_in_Function";
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
    case 0: return "AKnobody";
    case 1: return "AKowner";
    case 2: return "AKgroup";
    case 3: return "AKshift";
    default: return "Error_in_Function";
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
int XdrLockerIdSeq(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<LockerIdSeq>(xdrs, object);
    return obj && list(xdrs, *obj, PanelDoors, coder::LockerId);
}

// as engraved   locker.x:26
int XdrDoorLabel(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<DoorLabel>(xdrs, object);
    return obj && text(xdrs, *obj, 40);
}

// doors side by side   locker.x:27
int XdrRow(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Row>(xdrs, object);
    return obj && vector(xdrs, *obj, coder::DoorState);
}

// locker.x:28
int XdrKey(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Key>(xdrs, object);
    return obj && opaque(xdrs, *obj);
}

// of the door's last visitor   locker.x:29
int XdrPicture(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Picture>(xdrs, object);
    return obj && bytes(xdrs, *obj, 65535);
}

// none at the end of a row   locker.x:30
int XdrNeighbour(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Neighbour>(xdrs, object);
    return obj && optional(xdrs, *obj, coder::Locker);
}

// One door and the code that opens it.   locker.x:34
int XdrLocker(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Locker>(xdrs, object);
    return obj
        && member(xdrs, "id", obj->id, coder::LockerId)
        && vector(xdrs, "code", obj->code, coder::ShortNatural)
        && member(xdrs, "label", obj->label, coder::DoorLabel)
        && text(xdrs, "owner", obj->owner, 40)
        && member(xdrs, "DoorState", obj->DoorState, coder::DoorState)
        && member(xdrs, "above", obj->above, coder::Row)
        && list(xdrs, "nested", obj->nested, 65535, coder::Locker)
        && member(xdrs, "picture", obj->picture, coder::Picture)
        && bytes(xdrs, "signature", obj->signature, 64)
        && opaque(xdrs, "seal", obj->seal)
        && member(xdrs, "left", obj->left, coder::Neighbour)
        && optional(xdrs, "right", obj->right, coder::Locker)
        && member(xdrs, "lamp", obj->lamp, coder::LampColour)
        && vector(xdrs, "paint", obj->paint, coder::ColourValue);
}

// Who may open a door. A value without an arm is refused, so void arms are written out.   locker.x:52
int XdrAccessUnion(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<AccessUnion>(xdrs, object);
    if (!obj || !member(xdrs, "kind", obj->kind, coder::AccessKind)) return 0;

    open(xdrs, "AccessUnionUnion");
    switch (obj->kind) {
    case AccessKind::AKnobody:
        break;
    case AccessKind::AKowner:
        if (!text(xdrs, "owner", obj->owner, 40)) return 0;
        break;
    case AccessKind::AKgroup:
    case AccessKind::AKshift:
        if (!member(xdrs, "members", obj->members, coder::LockerIdSeq)) return 0;
        break;
    default:
        return 0;
    }
    return close(xdrs, "AccessUnionUnion");
}

// What can be read of a station, by attribute number.   locker.x:61
int XdrStationUnion(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<StationUnion>(xdrs, object);
    if (!obj || !member(xdrs, "attribute", obj->attribute, coder::AttributeNumber)) return 0;

    open(xdrs, "StationUnionUnion");
    switch (obj->attribute) {
    case 8:
        if (!list(xdrs, "doors", obj->doors, PanelDoors, coder::Locker)) return 0;
        break;
    case 22:
        if (!member(xdrs, "frontLamp", obj->frontLamp, coder::LampColour)) return 0;
        break;
    case 23:
        if (!list(xdrs, "doors", obj->doors, PanelDoors, coder::Locker)) return 0;
        break;
    case 31:
        if (!member(xdrs, "temperature", obj->temperature, coder::Float)) return 0;
        break;
    case 32:
        if (!member(xdrs, "key", obj->key, coder::Key)) return 0;
        break;
    case 40:
        if (!vector(xdrs, "counters", obj->counters, coder::UINT)) return 0;
        break;
    case 41:
        if (!optional(xdrs, "master", obj->master, coder::Locker)) return 0;
        break;
    case 485:
        if (!bytes(xdrs, "raw", obj->raw, 65535)) return 0;
        break;
    default:
        return 0;
    }
    return close(xdrs, "StationUnionUnion");
}

// Whether a door opens by itself.   locker.x:73
int XdrDrive(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Drive>(xdrs, object);
    if (!obj || !member(xdrs, "powered", obj->powered, coder::Boolean)) return 0;

    open(xdrs, "DriveUnion");
    switch (obj->powered) {
    case 1:
        if (!member(xdrs, "openingTime", obj->openingTime, coder::Natural)) return 0;
        break;
    case 0:
        break;
    default:
        return 0;
    }
    return close(xdrs, "DriveUnion");
}

// What happened at the station. Most events say all there is to say.   locker.x:80
int XdrEventUnion(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<EventUnion>(xdrs, object);
    if (!obj || !member(xdrs, "number", obj->number, coder::Integer32)) return 0;

    open(xdrs, "EventUnionUnion");
    switch (obj->number) {
    case -1:
        if (!text(xdrs, "reason", obj->reason, 65535)) return 0;
        break;
    case 7:
        if (!member(xdrs, "access", obj->access, coder::AccessUnion)) return 0;
        break;
    default:
        open(xdrs, "default");
        close(xdrs, "default");
        break;
    }
    return close(xdrs, "EventUnionUnion");
}

// locker.x:86
int XdrInteger32(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Integer32>(xdrs, object);
    return obj && XdrLongInteger(xdrs, obj);
}

// Signs on the doors, without any arm that carries data.   locker.x:89
int XdrSignUnion(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<SignUnion>(xdrs, object);
    if (!obj || !member(xdrs, "colour", obj->colour, coder::LampColour)) return 0;

    open(xdrs, "SignUnionUnion");
    switch (obj->colour) {
    case LampColour::LCoff:
        break;
    case LampColour::LCgreen:
        break;
    case LampColour::LCred:
        break;
    default:
        return 0;
    }
    return close(xdrs, "SignUnionUnion");
}

// locker.x:96
int XdrVisit(Xdr* xdrs, void* object)
{
    auto* obj = objectAt<Visit>(xdrs, object);
    return obj
        && member(xdrs, "minutes", obj->minutes, coder::Integer)
        && member(xdrs, "offset", obj->offset, coder::ShortInteger)
        && member(xdrs, "paid", obj->paid, coder::Boolean)
        && member(xdrs, "sign", obj->sign, coder::SignUnion)
        && member(xdrs, "drive", obj->drive, coder::Drive)
        && member(xdrs, "last", obj->last, coder::EventUnion)
        && list(xdrs, "changes", obj->changes, 12, coder::StationUnion)
        && optional(xdrs, "before", obj->before, coder::AccessUnion)
        && member(xdrs, "rest", obj->rest, coder::Natural);
}
