// Objects in memory as the schema describes them.

#include "layout.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <limits>

namespace quorva::inspect {

using schema::Builtin;
using schema::Form;
using schema::Kind;
using schema::Type;

const Type& resolved(const Type& type)
{
    const Type* behind = &type;
    while (behind->kind == Kind::definedAs && behind->target.form == Form::single) behind = behind->target.type;
    return *behind;
}

namespace {

// Calls `action` with a value-initialised object of the C++ type that holds the scalar.
template <class Action>
auto withHolder(const Type& scalar, Action action)
{
    switch (scalar.builtin) {
    case Builtin::Boolean:
    case Builtin::ShortNatural: return action(std::uint8_t{});
    case Builtin::ShortInteger: return action(std::int8_t{});
    case Builtin::Integer: return action(std::int16_t{});
    case Builtin::Natural: return action(std::uint16_t{});
    case Builtin::LongNatural:
    case Builtin::UINT:
    case Builtin::Float: return action(std::uint32_t{});
    case Builtin::LongInteger:
    case Builtin::none: break;
    }
    return action(std::int32_t{});
}

}  // namespace

std::int64_t loadNumber(const Type& scalar, const void* at)
{
    return withHolder(scalar, [at](auto holder) { return std::int64_t{load<decltype(holder)>(at)}; });
}

void storeNumber(const Type& scalar, void* at, std::int64_t number)
{
    withHolder(scalar, [=](auto holder) { store(at, static_cast<decltype(holder)>(number)); });
}

std::uint32_t toUnit(const Type& scalar, std::int64_t number)
{
    return scalar.builtin == Builtin::ShortInteger ? static_cast<std::uint8_t>(number)
                                                   : static_cast<std::uint32_t>(number);
}

std::int64_t fromUnit(const Type& scalar, std::uint32_t unit)
{
    return withHolder(scalar, [unit](auto holder) { return std::int64_t{static_cast<decltype(holder)>(unit)}; });
}

Range rangeOf(const Type& scalar)
{
    return withHolder(scalar, [](auto holder) {
        using Limits = std::numeric_limits<decltype(holder)>;
        return Range{Limits::min(), Limits::max()};
    });
}

const schema::Enumerator* enumeratorOf(const Type& enumeration, std::int64_t value)
{
    const auto found = std::ranges::lower_bound(enumeration.enumerators, value, {},
                                                [](const schema::Enumerator& e) { return std::int64_t{e.value}; });
    return found != enumeration.enumerators.end() && found->value == value ? &*found : nullptr;
}

const schema::Arm* armOf(const Type& discriminated, std::int64_t value)
{
    for (const schema::Arm& arm : discriminated.arms)
        if (std::ranges::find(arm.cases, value) != arm.cases.end()) return &arm;
    return nullptr;
}

const Type& discriminantOf(const Type& discriminated)
{
    return resolved(*discriminated.fields.front().use.type);
}

std::string floatText(float number)
{
    char digits[64];
    return {digits, std::to_chars(digits, digits + sizeof digits, number).ptr};
}

std::string numberText(const Type& scalar, std::int64_t number)
{
    if (scalar.builtin == Builtin::Boolean && (number == 0 || number == 1)) return number ? "true" : "false";
    if (scalar.builtin == Builtin::Float) return floatText(std::bit_cast<float>(static_cast<std::uint32_t>(number)));
    const std::string digits = std::to_string(number);
    const schema::Enumerator* named = enumeratorOf(scalar, number);
    return named ? std::string(named->name) + " (" + digits + ")" : digits;
}

}  // namespace quorva::inspect
