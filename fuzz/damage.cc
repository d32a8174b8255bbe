// Damage by pseudo-random choice.

#include "damage.h"

#include "inspect/tree.h"

#include <algorithm>

namespace quorva::fuzz {

namespace {

// Counts, lengths and numbers at the edges of what is accepted.
constexpr std::uint32_t edgeUnits[] = {0,          1,          2,          3,          0xFF,
                                       0x100,      0xFFFF,     0x10000,    0x10001,    0x7FFFFFFF,
                                       0x80000000, 0xFFFFFFFC, 0xFFFFFFFD, 0xFFFFFFFE, 0xFFFFFFFF};
constexpr std::size_t longestGrown = 4096;  // a longer message grows no further, in bytes

std::uint32_t unitAt(std::span<const unsigned char> bytes, std::size_t at)
{
    return static_cast<std::uint32_t>(bytes[at]) << 24 | static_cast<std::uint32_t>(bytes[at + 1]) << 16 |
           static_cast<std::uint32_t>(bytes[at + 2]) << 8 | bytes[at + 3];
}

void setUnit(Bytes& bytes, std::size_t at, std::uint32_t unit)
{
    for (std::size_t i = 4; i-- > 0; unit >>= 8) bytes[at + i] = static_cast<unsigned char>(unit);
}

// A number to replace `unit` by: at an edge, close to the old one, small, or taken from `other`.
std::uint32_t changed(std::uint32_t unit, std::span<const unsigned char> other, Chance& chance)
{
    switch (chance.below(6)) {
    case 0:
    case 1: return edgeUnits[chance.below(std::size(edgeUnits))];
    case 2: return unit + static_cast<std::uint32_t>(chance.below(8)) - 4;
    case 3: return unit ^ std::uint32_t{1} << chance.below(32);
    case 4: return static_cast<std::uint32_t>(chance.below(64));
    default:
        return other.size() < 4 ? static_cast<std::uint32_t>(chance.next())
                                : unitAt(other, 4 * chance.below(other.size() / 4));
    }
}

std::ptrdiff_t offset(std::size_t at)
{
    return static_cast<std::ptrdiff_t>(at);
}

}  // namespace

Generated generate(inspect::Sampler& sampler, const Type& type, Chance& chance)
{
    constexpr std::size_t budgets[] = {60, 120, 120, 240, 240, 480, 1024};
    inspect::Recipe recipe{inspect::Extent::random, chance.next(), budgets[chance.below(std::size(budgets))]};
    if (chance.oneIn(32)) recipe.extent = chance.oneIn(2) ? inspect::Extent::least : inspect::Extent::most;
    Generated generated{sampler.sample(type, recipe), {}};
    generated.control = controlUnits(type, generated.message);
    return generated;
}

std::vector<std::size_t> controlUnits(const Type& type, std::span<const unsigned char> message)
{
    std::vector<std::size_t> units;
    const inspect::Tree tree(type, message);
    for (const inspect::Node& node : tree.nodes()) {
        const bool isFixed = node.use && (node.use->form == Form::fixedArray || node.use->form == Form::fixedOpaque);
        const bool isOutermostNumber = node.type && tree.nodes().size() == 1;
        if (node.size > 0 && ((node.use && !isFixed) || isOutermostNumber)) units.push_back(node.offset);
    }
    return units;
}

void damage(Bytes& message, std::span<const std::size_t> control, std::span<const unsigned char> other, Chance& chance)
{
    const std::size_t units = message.size() / 4;
    const auto someUnit = [&] { return 4 * chance.below(units); };
    const auto run = [&](std::size_t from) {
        return 4 * (1 + chance.below(std::min<std::size_t>(8, (message.size() - from) / 4)));
    };
    switch (units == 0 ? 11 : chance.below(12)) {
    default: {  // change a unit
        std::size_t at = someUnit();
        if (!control.empty() && !chance.oneIn(3)) at = control[chance.below(control.size())];
        if (at + 4 <= message.size()) setUnit(message, at, changed(unitAt(message, at), other, chance));
        return;
    }
    case 7:  // change a byte
        message[chance.below(message.size())] = static_cast<unsigned char>(chance.next());
        return;
    case 8: {  // repeat some units
        if (message.size() > longestGrown) return;
        const std::size_t from = someUnit();
        const Bytes part(message.begin() + offset(from), message.begin() + offset(from + run(from)));
        message.insert(message.begin() + offset(from), part.begin(), part.end());
        return;
    }
    case 9: {  // remove some units
        const std::size_t from = someUnit();
        const std::size_t size = run(from);
        message.erase(message.begin() + offset(from), message.begin() + offset(from + size));
        return;
    }
    case 10:  // cut the end
        message.resize(chance.below(message.size()));
        return;
    case 11: {  // replace the end, or append to it
        const std::size_t from = units == 0 ? 0 : someUnit();
        const std::size_t otherFrom = other.size() < 4 ? 0 : 4 * chance.below(other.size() / 4);
        message.resize(chance.oneIn(4) ? message.size() : from);
        if (message.size() <= longestGrown)
            message.insert(message.end(), other.begin() + offset(otherFrom), other.end());
        return;
    }
    }
}

}  // namespace quorva::fuzz
