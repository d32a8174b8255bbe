// The scalar primitives: each codes one value as one unit and adds one text to the trace.

#include "numbers.h"

#include <charconv>
#include <cmath>
#include <cstring>

using namespace quorva;

namespace {

// `value`, or four zero bytes allocated for a null, whatever the width of the value.
void* valueAt(Xdr* xdrs, void* value)
{
    return value ? value : newRoot(xdrs, 4);
}

// Codes an integer and adds its text.
int codeNumber(Xdr* xdrs, Builtin type, void* value)
{
    if (modeOf(xdrs) == Mode::release) return 1;
    if (!(value = valueAt(xdrs, value))) return 0;
    const MovedNumber number = moveNumber(xdrs, type, value);
    if (isTraced(xdrs)) {
        showNumber(xdrs, number.shown);
        xdrs->setLineFeed(false);
    }
    return number.moved;
}

// The text that printf makes of "%4.6f", but with a decimal point in every locale.
class FloatText {
public:
    explicit FloatText(float number)
    {
        if (std::isfinite(number)) {
            *std::to_chars(digits, digits + sizeof digits - 1, static_cast<double>(number), std::chars_format::fixed, 6)
                 .ptr = '\0';
        } else {
            digits[0] = std::signbit(number) ? '-' : ' ';
            std::memcpy(digits + 1, std::isnan(number) ? "nan" : "inf", 4);
        }
    }
    const char* text() const { return digits; }

private:
    char digits[64] = {};  // at most 39 before the point; cleared, as MemorySanitizer cannot see that to_chars writes
};

}  // namespace

int XdrLongInteger(Xdr* xdrs, void* value)
{
    return codeNumber(xdrs, Builtin::LongInteger, value);
}
int XdrLongNatural(Xdr* xdrs, void* value)
{
    return codeNumber(xdrs, Builtin::LongNatural, value);
}
int XdrUINT(Xdr* xdrs, void* value)
{
    return codeNumber(xdrs, Builtin::UINT, value);
}
int XdrInteger(Xdr* xdrs, void* value)
{
    return codeNumber(xdrs, Builtin::Integer, value);
}
int XdrNatural(Xdr* xdrs, void* value)
{
    return codeNumber(xdrs, Builtin::Natural, value);
}
int XdrShortInteger(Xdr* xdrs, void* value)
{
    return codeNumber(xdrs, Builtin::ShortInteger, value);
}
int XdrShortNatural(Xdr* xdrs, void* value)
{
    return codeNumber(xdrs, Builtin::ShortNatural, value);
}

int XdrBoolean(Xdr* xdrs, void* value)
{
    if (modeOf(xdrs) == Mode::release) return 1;
    if (!(value = valueAt(xdrs, value))) return 0;

    auto* const held = static_cast<unsigned char*>(value);
    const bool moved = moveNumber<std::uint8_t, std::uint32_t>(xdrs, held).moved;
    if (isTraced(xdrs)) {
        xdrs->addString2(*held ? "true" : "false");
        xdrs->setLineFeed(false);
    }
    return moved;
}

int XdrFloat(Xdr* xdrs, void* value)
{
    TRACE("In XdrFloat\n");
    if (modeOf(xdrs) == Mode::release) return 1;
    if (!(value = valueAt(xdrs, value))) return 0;

    const int moved = xdrs->Transfer(static_cast<unsigned char*>(value), 4);
    if (isTraced(xdrs)) {
        float held;
        std::memcpy(&held, value, sizeof held);
        xdrs->addString2(FloatText(held).text());
        xdrs->setLineFeed(false);
    }
    return moved;
}

int XdrLongNatural2(Xdr* xdrs, void* value)
{
    if (modeOf(xdrs) == Mode::release) return 1;
    if (!(value = valueAt(xdrs, value))) return 0;
    return xdrs->Transfer(static_cast<unsigned char*>(value), 4);
}

int XdrEnum(Xdr* xdrs, void* value)
{
    const int moved = XdrLongNatural2(xdrs, value);
    if (isTraced(xdrs) && modeOf(xdrs) != Mode::release) xdrs->setLineFeed(false);
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
