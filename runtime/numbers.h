// Codes numbers: between an object and a unit of the wire.
#pragma once

#include <quorvaruntime/stream.h>

#include <quorvapixdr/description.h>

#include <cstdint>
#include <cstring>

namespace quorva {

// The result of coding one number: `moved` is false if the stream refused the unit; the trace shows `shown`.
struct MovedNumber {
    bool moved;
    std::int64_t shown;
};

// Codes the number at `value` in encode or decode mode. `Unit` is the 32-bit type that it widens to on the wire; the
// signedness of `Unit` decides how. The trace shows the number as a `Shown`. What the stream leaves in the unit is
// stored into the value, in both modes and after a refusal, but only if it differs: an encode does not write to the
// object.
template <class Value, class Unit, class Shown = Unit>
MovedNumber moveNumber(Xdr* xdrs, void* value)
{
    static_assert(sizeof(Unit) == 4);
    Unit unit;
    if constexpr (sizeof(Value) == 4) {
        const bool moved = xdrs->Transfer(static_cast<unsigned char*>(value), 4);
        std::memcpy(&unit, value, sizeof unit);
        return {moved, static_cast<Shown>(unit)};
    }
    Value held;
    std::memcpy(&held, value, sizeof held);
    unit = held;
    const bool moved = xdrs->Transfer(reinterpret_cast<unsigned char*>(&unit), 4);
    if (const auto left = static_cast<Value>(unit); left != held) std::memcpy(value, &left, sizeof left);
    return {moved, static_cast<Shown>(unit)};
}

// The same for a built-in type other than Boolean and Float, which the trace does not show as integers. Numbers of
// eight bits are sent and shown without their sign: receivers expect that.
inline MovedNumber moveNumber(Xdr* xdrs, Builtin type, void* value)
{
    switch (type) {
    case Builtin::ShortInteger: return moveNumber<std::uint8_t, std::uint32_t, std::int32_t>(xdrs, value);
    case Builtin::ShortNatural: return moveNumber<std::uint8_t, std::uint32_t>(xdrs, value);
    case Builtin::Integer: return moveNumber<std::int16_t, std::int32_t>(xdrs, value);
    case Builtin::Natural: return moveNumber<std::uint16_t, std::uint32_t>(xdrs, value);
    case Builtin::LongNatural: return moveNumber<std::uint32_t, std::uint32_t>(xdrs, value);
    case Builtin::UINT: return moveNumber<std::uint32_t, std::uint32_t, std::int32_t>(xdrs, value);
    default: return moveNumber<std::int32_t, std::int32_t>(xdrs, value);
    }
}

}  // namespace quorva
