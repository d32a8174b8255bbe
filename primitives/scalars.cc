// The scalar primitives: one value, one unit of four bytes, one text.

#include "direction.h"

#include <quorvapixdr/walk.h>

#include <charconv>
#include <cmath>

using namespace quorva;

namespace {

// Where to code: the caller's value, or four zero bytes of our own for a null, whatever the value's width.
void* valueAt(Xdr* xdrs, void* value)
{
    return value ? value : walk::newRoot(xdrs, 4);
}

// `Unit` is the 32-bit type that a value widens to on the wire; its sign decides how it widens.
template <class Unit>
int transferUnit(Xdr* xdrs, Unit& unit)
{
    static_assert(sizeof(Unit) == 4);
    return xdrs->Transfer(reinterpret_cast<unsigned char*>(&unit), 4);
}

void addScalar(Xdr* xdrs, const char* text)
{
    xdrs->addString2(text);
    xdrs->setLineFeed(false);
}

// `Shown` is the type that the number is printed as. The unit is stored back into the value in every direction and also
// after a refusal, when it still is what the value was.
template <class Value, class Unit, class Shown = Unit>
int codeNumber(Xdr* xdrs, void* value)
{
    if (directionOf(xdrs) == Direction::release) return 1;
    if (!(value = valueAt(xdrs, value))) return 0;

    Value held;
    std::memcpy(&held, value, sizeof held);
    Unit unit = held;
    const int moved = transferUnit(xdrs, unit);
    held = static_cast<Value>(unit);
    std::memcpy(value, &held, sizeof held);

    if (walk::traced(xdrs)) addScalar(xdrs, walk::Decimal(static_cast<Shown>(unit)).text());
    return moved;
}

// What printf makes of "%4.6f", without its decimal comma in some locales.
class FloatText {
public:
    explicit FloatText(float number)
    {
        if (std::isfinite(number)) {
            *std::to_chars(digits, digits + sizeof digits - 1, static_cast<double>(number), std::chars_format::fixed, 6).ptr = '\0';
        } else {
            digits[0] = std::signbit(number) ? '-' : ' ';
            std::memcpy(digits + 1, std::isnan(number) ? "nan" : "inf", 4);
        }
    }
    const char* text() const { return digits; }

private:
    char digits[64] = {};  // at most 39 of them before the point; cleared for checkers that cannot see into to_chars
};

}  // namespace

int XdrLongInteger(Xdr* xdrs, void* value) { return codeNumber<std::int32_t, std::int32_t>(xdrs, value); }
int XdrLongNatural(Xdr* xdrs, void* value) { return codeNumber<std::uint32_t, std::uint32_t>(xdrs, value); }
int XdrUINT(Xdr* xdrs, void* value) { return codeNumber<std::uint32_t, std::uint32_t, std::int32_t>(xdrs, value); }
int XdrInteger(Xdr* xdrs, void* value) { return codeNumber<std::int16_t, std::int32_t>(xdrs, value); }
int XdrNatural(Xdr* xdrs, void* value) { return codeNumber<std::uint16_t, std::uint32_t>(xdrs, value); }
int XdrShortNatural(Xdr* xdrs, void* value) { return codeNumber<std::uint8_t, std::uint32_t>(xdrs, value); }

// Eight bits travel and show without their sign: receivers have always read them so. Hence the unsigned type here.
int XdrShortInteger(Xdr* xdrs, void* value) { return codeNumber<std::uint8_t, std::uint32_t, std::int32_t>(xdrs, value); }

int XdrBoolean(Xdr* xdrs, void* value)
{
    if (directionOf(xdrs) == Direction::release) return 1;
    if (!(value = valueAt(xdrs, value))) return 0;

    auto* const held = static_cast<unsigned char*>(value);
    std::uint32_t unit = *held;
    const int moved = transferUnit(xdrs, unit);
    *held = static_cast<unsigned char>(unit);

    if (walk::traced(xdrs)) addScalar(xdrs, *held ? "true" : "false");
    return moved;
}

int XdrFloat(Xdr* xdrs, void* value)
{
    TRACE("In XdrFloat\n");
    if (directionOf(xdrs) == Direction::release) return 1;
    if (!(value = valueAt(xdrs, value))) return 0;

    const int moved = xdrs->Transfer(static_cast<unsigned char*>(value), 4);
    if (walk::traced(xdrs)) {
        float held;
        std::memcpy(&held, value, sizeof held);
        addScalar(xdrs, FloatText(held).text());
    }
    return moved;
}

int XdrLongNatural2(Xdr* xdrs, void* value)
{
    if (directionOf(xdrs) == Direction::release) return 1;
    if (!(value = valueAt(xdrs, value))) return 0;
    return xdrs->Transfer(static_cast<unsigned char*>(value), 4);
}

int XdrEnum(Xdr* xdrs, void* value)
{
    const int moved = XdrLongNatural2(xdrs, value);
    if (walk::traced(xdrs) && directionOf(xdrs) != Direction::release) xdrs->setLineFeed(false);
    return moved;
}

int XdrVoid(Xdr*, void*)
{
    return 1;
}

int XdrLongFloat(Xdr*, void*)
{
    return 0;
}
