// Computes sizes.

#include "sizes.h"

#include "explain/layout.h"

#include <algorithm>

namespace quorva::inspect {

namespace {

constexpr std::uint64_t unit = 4;
constexpr std::uint32_t largestCount = 0xFFFF;  // a count has 16 bits

std::uint64_t sum(std::uint64_t a, std::uint64_t b)
{
    return a > WireSizes::unbounded - b ? WireSizes::unbounded : a + b;
}

std::uint64_t product(std::uint64_t number, std::uint64_t size)
{
    return number > 0 && size > WireSizes::unbounded / number ? WireSizes::unbounded : number * size;
}

// True if each value holds the type's value: not in an optional or a variable-length array, which can be empty.
bool alwaysHolds(const Use& use)
{
    return use.form == Form::single || use.form == Form::fixedArray;
}

}  // namespace

WireSize WireSizes::of(const Type& type) const
{
    return {sizeOf(type, least), sizeOf(type, most)};
}

WireSize WireSizes::of(const Use& use) const
{
    if (use.type) of(*use.type);
    return {knownOf(use, least), knownOf(use, most)};
}

// Types are computed after the types of their members, from a stack of its own: the depth of an interface file is not
// bounded. A type that is still waiting for its members contains the one that asks for it, so there is no maximum.
std::uint64_t WireSizes::sizeOf(const Type& type, End end) const
{
    if (const auto found = known[end].find(&type); found != known[end].end() && found->second) return *found->second;
    std::vector<const Type*> open{&type};
    while (!open.empty()) {
        const Type& next = *open.back();
        const auto [entry, isNew] = known[end].emplace(&next, std::nullopt);
        if (isNew) {
            for (const Member& member : next.members)
                if (member.use.type && (end == most || alwaysHolds(member.use)) &&
                    !known[end].contains(member.use.type))
                    open.push_back(member.use.type);
            continue;
        }
        if (!entry->second) entry->second = sumOf(next, end);
        open.pop_back();
    }
    return *known[end].at(&type);
}

std::uint64_t WireSizes::sumOf(const Type& type, End end) const
{
    switch (type.kind) {
    case TypeKind::builtin:
    case TypeKind::enumeration: break;
    case TypeKind::foreign: return end == least ? 0 : unbounded;
    case TypeKind::typeDefinition: return knownOf(targetOf(type), end);
    case TypeKind::structure: {
        std::uint64_t size = 0;
        for (const Member& field : type.members) size = sum(size, knownOf(field.use, end));
        return size;
    }
    case TypeKind::discriminatedUnion: {
        std::uint64_t arm = end == least && !type.hasDefault ? unbounded : 0;
        for (const Member& each : armsOf(type)) {
            const std::uint64_t size = knownOf(each.use, end);
            arm = end == least ? std::min(arm, size) : std::max(arm, size);
        }
        return sum(unit, arm);
    }
    }
    return unit;
}

std::uint64_t WireSizes::knownOf(const Type& type, End end) const
{
    return known[end].at(&type).value_or(unbounded);
}

std::uint64_t WireSizes::knownOf(const Use& use, End end) const
{
    const std::uint64_t count = end == least ? 0 : std::min(use.bound, largestCount);
    switch (use.form) {
    case Form::single: return knownOf(*use.type, end);
    case Form::fixedArray: return product(use.bound, knownOf(*use.type, end));
    case Form::variableArray: return count == 0 ? unit : sum(unit, product(count, knownOf(*use.type, end)));
    case Form::optional: return end == least ? unit : sum(unit, knownOf(*use.type, end));
    case Form::string: return end == least ? unit : unit + padded(use.bound);
    case Form::variableOpaque: return unit + padded(static_cast<std::size_t>(count));
    case Form::fixedOpaque: return padded(use.bound);
    case Form::none: break;
    }
    return 0;
}

std::vector<std::optional<std::uint64_t>> WireSizes::offsetsIn(const Type& type) const
{
    std::vector<std::optional<std::uint64_t>> offsets;
    std::optional<std::uint64_t> next = 0;
    for (const Member& member : type.members) {
        offsets.push_back(next);
        const WireSize size = of(member.use);
        if (type.kind == TypeKind::discriminatedUnion)
            next = unit;
        else if (next && size.isFixed())
            *next = sum(*next, size.most);
        else
            next.reset();
    }
    return offsets;
}

}  // namespace quorva::inspect
