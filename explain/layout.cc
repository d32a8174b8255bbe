// Members, numbers, arms and enumerators of objects in memory.

#include "layout.h"

#include <algorithm>
#include <bit>
#include <charconv>
#include <limits>

namespace quorva::inspect {

const Type& canonicalType(const Type& type)
{
    const Type* target = &type;
    for (;;) {
        if (target->kind == TypeKind::typeDefinition && targetOf(*target).form == Form::single)
            target = targetOf(*target).type;
        else if (target->described)
            target = &target->described();
        else
            return *target;
    }
}

namespace {

// Calls `action` with a zero of the C++ type that holds the scalar. Enumerations have 32 bits, signed.
template <class Action>
auto withZero(const Type& scalar, Action action)
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
    return withZero(scalar, [at](auto zero) { return std::int64_t{load<decltype(zero)>(at)}; });
}

void storeNumber(const Type& scalar, void* at, std::int64_t number)
{
    withZero(scalar, [=](auto zero) { store(at, static_cast<decltype(zero)>(number)); });
}

std::uint32_t toUnit(const Type& scalar, std::int64_t number)
{
    return scalar.builtin == Builtin::ShortInteger ? static_cast<std::uint8_t>(number)
                                                   : static_cast<std::uint32_t>(number);
}

std::int64_t fromUnit(const Type& scalar, std::uint32_t unit)
{
    return withZero(scalar, [unit](auto zero) { return std::int64_t{static_cast<decltype(zero)>(unit)}; });
}

Range rangeOf(const Type& scalar)
{
    return withZero(scalar, [](auto zero) {
        using Limits = std::numeric_limits<decltype(zero)>;
        return Range{Limits::min(), Limits::max()};
    });
}

const char* enumeratorName(const Type& type, std::int64_t value)
{
    if (type.kind == TypeKind::enumeration && !type.nameOf) {
        const auto unit = static_cast<std::uint32_t>(value);
        const auto found = std::ranges::lower_bound(type.cases, unit, {}, &Case::value);
        return found != type.cases.end() && found->value == unit ? type.members[found->member].name : nullptr;
    }
    if (!type.nameOf) return nullptr;
    const char* const name = type.nameOf(static_cast<int>(value));
    return std::strcmp(name, "Error_in_Function") == 0 ? nullptr : name;
}

const Member* armOf(const Type& discriminatedUnion, std::int64_t value)
{
    const std::uint32_t unit = toUnit(discriminantOf(discriminatedUnion), value);
    const auto found = std::ranges::lower_bound(discriminatedUnion.cases, unit, {}, &Case::value);
    if (found == discriminatedUnion.cases.end() || found->value != unit) return nullptr;
    return &discriminatedUnion.members[found->member];
}

std::vector<std::int64_t> casesOf(const Type& discriminatedUnion, const Member& arm)
{
    const Type& discriminant = discriminantOf(discriminatedUnion);
    std::vector<std::int64_t> values;
    for (const Case& each : discriminatedUnion.cases)
        if (&discriminatedUnion.members[each.member] == &arm) values.push_back(fromUnit(discriminant, each.value));
    std::ranges::sort(values);
    return values;
}

const Type& discriminantOf(const Type& discriminatedUnion)
{
    return canonicalType(*discriminatedUnion.members.front().use.type);
}

Attribute attributeOf(const Type& structure)
{
    if (structure.kind != TypeKind::structure) return {};
    for (std::size_t i = 0; i + 1 < structure.members.size(); ++i) {
        const Use& id = structure.members[i].use;
        const Use& value = structure.members[i + 1].use;
        if (id.form != Form::single || value.form != Form::single) continue;
        const Type& valueType = canonicalType(*value.type);
        if (valueType.kind == TypeKind::discriminatedUnion && valueType.members[0].use.type == id.type)
            return {&structure.members[i], &structure.members[i + 1]};
    }
    return {};
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
    const char* const name = enumeratorName(scalar, number);
    return name ? std::string(name) + " (" + digits + ")" : digits;
}

}  // namespace quorva::inspect
