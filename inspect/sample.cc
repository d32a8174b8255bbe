// Invents messages.

#include "sample.h"

#include "chance.h"
#include "documentation.h"
#include "explain/traverse.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

namespace quorva::inspect {

namespace {

// Elements that nest deeper hold as little as possible, so that the message stays within `deepestNesting`.
constexpr std::size_t deepestGrowth = deepestNesting / 4;

}  // namespace

// The source of a traversal that invents what it is asked for. The bytes of the shortest message are reserved from the
// start. Each choice that makes the message longer is paid from the spare bytes, so the message keeps to its budget.
class Inventor : public WithoutStructure {
public:
    Inventor(Sampler& from, const Type& type, const Recipe& wanted, const Path& where)
        : sampler(from), recipe(wanted), path(where), chance(wanted.seed)
    {
        const std::size_t least = sampler.leastSize(type);
        if (recipe.extent != Extent::least && recipe.budget > least) spare = recipe.budget - least;
    }

    Bytes bytes;

    std::size_t offset() const { return bytes.size(); }

    Refused refused;

    bool number(const Type& scalar, const std::byte*, std::int64_t& value)
    {
        value = invented(scalar);
        append(toUnit(scalar, value));
        return true;
    }

    bool discriminant(const Type& type, const std::byte*, std::int64_t& value)
    {
        value = choice(type);
        append(toUnit(discriminantOf(type), value));
        return true;
    }

    bool length(const Use& use, const std::byte*, std::uint32_t& value)
    {
        value = quantity(use.bound, 1);
        return true;
    }

    bool count(const Use& use, const std::byte*, std::uint32_t& value)
    {
        value = quantity(use.bound, use.form == Form::variableArray ? sampler.leastSize(*use.type) : 1);
        return true;
    }

    bool present(const Use& use, const std::byte*, bool& follows)
    {
        const std::size_t cost = sampler.leastSize(*use.type);
        follows = cost <= available() && (recipe.extent == Extent::fullest || !chance.oneIn(3));
        if (follows) spare -= cost;
        append(follows);
        return true;
    }

    bool contents(const Use& use, const std::byte*, std::uint32_t size)
    {
        const unsigned lowest = use.form == Form::string ? 1 : 0;
        const bool readable = recipe.extent != Extent::random || !chance.oneIn(4);
        for (std::uint32_t i = 0; i < size; ++i) {
            const std::size_t byte = recipe.extent == Extent::least ? lowest
                                     : readable                     ? 'a' + i % 26
                                                                    : lowest + chance.below(256 - lowest);
            bytes.push_back(static_cast<unsigned char>(byte));
        }
        bytes.resize(padded(bytes.size()), 0);
        return true;
    }

private:
    // The spare bytes that a choice at this depth may take.
    std::size_t available() const { return path.depth() < deepestGrowth ? spare : 0; }

    void append(std::uint32_t unit)
    {
        for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<unsigned char>(unit >> shift));
    }

    std::int64_t invented(const Type& scalar)
    {
        const Range range = scalar.builtin == Builtin::Boolean ? Range{0, 1} : rangeOf(scalar);
        const auto enumerators = enumeratorsOf(scalar);
        switch (recipe.extent) {
        case Extent::least: return enumerators.empty() ? 0 : enumerators.front().value;
        case Extent::fullest:
            if (scalar.builtin == Builtin::Float) return 0x7F7FFFFF;  // the largest finite one
            return enumerators.empty() ? range.most : enumerators.back().value;
        case Extent::random: break;
        }
        if (!enumerators.empty() && !chance.oneIn(16)) return enumerators[chance.below(enumerators.size())].value;
        const auto any = static_cast<std::uint32_t>(chance.next());
        if (scalar.builtin == Builtin::Boolean) return any & 1;
        return fromUnit(scalar, chance.oneIn(2) ? any : any & 0x7F);
    }

    // Invents a count or a length. Each element needs at least `each` bytes; 1 stands for bytes, which fill whole
    // units.
    std::uint32_t quantity(std::uint32_t bound, std::size_t each)
    {
        const std::size_t affordable = each == 1 ? available() / 4 * 4 : available() / each;
        // At most half of the available bytes, so that later members get a share; but one element if it fits.
        const std::size_t fair = std::max(affordable / 2, std::min<std::size_t>(affordable, each == 1 ? 4 : 1));
        const std::size_t most = std::min<std::size_t>(bound, fair);
        std::size_t chosen = most;
        if (recipe.extent == Extent::random && !chance.oneIn(8)) {
            const std::size_t usual = std::min<std::size_t>(most, std::size_t{1} << chance.below(8));
            chosen = chance.below(usual + 1);
        }
        spare -= each == 1 ? padded(chosen) : chosen * each;
        append(static_cast<std::uint32_t>(chosen));
        return static_cast<std::uint32_t>(chosen);
    }

    std::size_t costOf(const Member& arm) { return sampler.leastSize(arm.use); }

    // Invents a discriminant.
    std::int64_t choice(const Type& type)
    {
        const std::size_t reserved = sampler.leastSize(type) - 4;  // reserved for the arm
        const auto arms = armsOf(type);
        const std::size_t choices = arms.size() + type.hasDefault;
        const std::size_t turn = recipe.extent != Extent::random ? extremeArm(type, reserved)
                                 : firstUnion                    ? static_cast<std::size_t>(recipe.seed % choices)
                                                                 : chance.below(choices);
        firstUnion = false;
        if (turn == arms.size())
            if (const auto value = withoutArm(type)) return *value;

        const Member* arm = &arms[turn % arms.size()];
        if (costOf(*arm) > reserved + available())
            arm = &*std::ranges::min_element(arms, {}, [&](auto& a) { return costOf(a); });
        // A union with a default arm reserves nothing, so each arm can cost more than the spare bytes.
        const std::size_t cost = costOf(*arm);
        if (cost > reserved + spare)
            if (const auto value = withoutArm(type)) return *value;
        spare -= std::min(spare, cost - std::min(cost, reserved));
        const auto cases = casesOf(type, *arm);
        return cases[recipe.extent == Extent::random ? chance.below(cases.size()) : 0];
    }

    // The index of the arm with the fewest bytes or, for `fullest`, with the most bytes that the budget allows.
    std::size_t extremeArm(const Type& type, std::size_t reserved)
    {
        const auto arms = armsOf(type);
        std::size_t best = 0;
        for (std::size_t i = 0; i < arms.size(); ++i) {
            const std::size_t cost = costOf(arms[i]), bestCost = costOf(arms[best]);
            if (recipe.extent == Extent::least ? cost < bestCost : cost > bestCost && cost <= reserved + available())
                best = i;
        }
        return best;
    }

    // A discriminant that no case has; nullopt if the union has no default arm or no such value is found.
    std::optional<std::int64_t> withoutArm(const Type& type)
    {
        if (!type.hasDefault) return std::nullopt;
        const Type& discriminant = discriminantOf(type);
        for (int attempt = 0; attempt < 32 && recipe.extent == Extent::random; ++attempt)
            if (const std::int64_t value = invented(discriminant); !armOf(type, value)) return value;
        const std::int64_t candidates = discriminant.builtin == Builtin::Boolean ? 2 : 1000;
        for (std::int64_t value = 0; value < candidates; ++value)
            if (!armOf(type, value)) return value;
        return std::nullopt;
    }

    Sampler& sampler;
    const Recipe& recipe;
    const Path& path;
    Chance chance;
    std::size_t spare = 0;
    bool firstUnion = true;
};

Bytes Sampler::sample(const Type& type, const Recipe& recipe)
{
    Path path;
    Inventor inventor(*this, type, recipe, path);
    if (Traversal traversal(inventor, path); !traversal.run(type))
        throw std::logic_error(std::string(type.name) + ": " + traversal.refused().sentence());
    return std::move(inventor.bytes);
}

std::size_t Sampler::leastSize(const Type& type)
{
    // The recursion ends: a type refers to itself through variable-length arrays and optionals only, which can be
    // empty and are not followed.
    if (const auto found = known.find(&type); found != known.end()) return found->second;
    std::size_t size = 4;
    switch (type.kind) {
    case TypeKind::builtin:
    case TypeKind::enumeration: break;
    case TypeKind::structure:
        size = 0;
        for (const Member& field : type.members) size += leastSize(field.use);
        break;
    case TypeKind::discriminatedUnion:
        if (!type.hasDefault) {
            std::size_t least = SIZE_MAX;
            for (const Member& arm : armsOf(type)) least = std::min(least, leastSize(arm.use));
            size += least;
        }
        break;
    case TypeKind::typeDefinition: size = leastSize(targetOf(type)); break;
    case TypeKind::foreign: size = 0; break;
    }
    return known[&type] = size;
}

std::size_t Sampler::leastSize(const Use& use)
{
    switch (use.form) {
    case Form::single: return leastSize(*use.type);
    case Form::fixedArray: return use.bound * leastSize(*use.type);
    case Form::fixedOpaque: return padded(use.bound);
    case Form::none: return 0;
    case Form::variableArray:
    case Form::optional:
    case Form::string:
    case Form::variableOpaque: break;
    }
    return 4;
}

}  // namespace quorva::inspect
