// Invents messages.

#include "sample.h"

#include "arms.h"
#include "chance.h"
#include "documentation.h"
#include "explain/layout.h"

#include <algorithm>
#include <optional>
#include <set>
#include <utility>

namespace quorva::inspect {

namespace {

// Elements that nest deeper hold as little as possible, so that the message stays within `deepestNesting`.
constexpr std::size_t deepestGrowth = deepestNesting / 4;

// The union that is a field of the struct, or null.
const Type* unionField(const Type& structure)
{
    for (const Member& field : structure.members)
        if (field.use.form == Form::single && canonicalType(*field.use.type).kind == TypeKind::discriminatedUnion)
            return &canonicalType(*field.use.type);
    return nullptr;
}

// The union that tells one element of an array from another, as in a list of attributes: the element itself, or a
// field of it. Null if there is none.
const Type* keyOf(const Type& element)
{
    const Type& type = canonicalType(element);
    const Type* const keyed = type.kind == TypeKind::structure ? unionField(type) : &type;
    return keyed && !armsOf(*keyed).empty() ? keyed : nullptr;
}

// The enumerators of an encoding that the bytes beside it can have: UTF-8 and ASCII. `utf8` is null if the type is not
// an encoding.
struct Encodings {
    const Enumerator* utf8 = nullptr;
    const Enumerator* ascii = nullptr;
};

Encodings encodingsOf(const Use& use)
{
    Encodings found;
    if (use.form != Form::single) return found;
    for (const Enumerator& each : enumeratorsOf(canonicalType(*use.type))) {
        std::string name = each.name;
        std::ranges::transform(name, name.begin(),
                               [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; });
        std::erase_if(name, [](char c) { return c == '_' || c == '-'; });
        if (name.ends_with("utf8")) found.utf8 = &each;
        if (name.ends_with("ascii")) found.ascii = &each;
    }
    return found;
}

// Invents one message. The bytes of the shortest message are reserved from the start. Each choice that makes the
// message longer is paid from the spare bytes, so the message keeps to its budget.
class Inventor {
public:
    // Throws ArmError.
    Inventor(LeastSizes& leastSizes, KnownNumbers& numbers, const Type& root, const Recipe& wanted)
        : sizes(leastSizes), known(numbers), recipe(wanted), chance(wanted.seed), plausible(chance)
    {
        if (!recipe.arms.empty()) types = reachableFrom(root);
        goals = goalsOf(types, recipe.arms, sizes);
        std::size_t least = sizes.of(root);
        for (const ArmGoal& goal : goals) least += goal.bytes();
        if (recipe.extent != Extent::least && recipe.budget > least) spare = recipe.budget - least;
    }

    Bytes message(const Type& root)
    {
        Errands errands;
        for (ArmGoal& goal : goals) errands.push_back({&goal, 0});
        value(root, errands);
        for (const ArmGoal& goal : goals)
            if (!goal.applied) throw ArmError(goal.text() + " never applies: the other choices exclude it");
        return std::move(bytes);
    }

private:
    // A goal on its way, after so many parts of its pointer.
    struct Errand {
        ArmGoal* goal;
        std::size_t step;
    };
    using Errands = std::vector<Errand>;

    // A number that a discriminant of the same type repeats.
    struct Twin {
        const Type* type;
        std::size_t offset;
    };

    bool isRandom() const { return recipe.extent == Extent::random; }
    bool isCareful() const { return isUsual() || recipe.extent == Extent::most; }
    bool isUsual() const { return recipe.extent == Extent::usual; }

    // The spare bytes that a choice at this depth may take.
    std::size_t available() const { return depth < deepestGrowth ? spare : 0; }

    // Takes up to so many of the spare bytes.
    void pay(std::size_t cost) { spare -= std::min(spare, cost); }

    void append(std::uint32_t unit)
    {
        for (int shift = 24; shift >= 0; shift -= 8) bytes.push_back(static_cast<unsigned char>(unit >> shift));
    }

    // ---- Values --------------------------------------------------------------------------------------------------

    void value(const Type& type, const Errands& errands)
    {
        switch (type.kind) {
        case TypeKind::enumeration: twins.push_back({&type, bytes.size()}); [[fallthrough]];
        case TypeKind::builtin: append(toUnit(type, invented(type))); return;
        case TypeKind::structure: structure(type, errands); return;
        case TypeKind::discriminatedUnion: discriminatedUnion(type, errands); return;
        case TypeKind::typeDefinition: typeDefinition(type, errands); return;
        case TypeKind::foreign:
            throw std::logic_error(std::string(type.name) + ": a type of another library cannot be invented");
        }
    }

    void typeDefinition(const Type& type, const Errands& errands)
    {
        if (targetOf(type).form == Form::single) twins.push_back({&type, bytes.size()});
        if (const auto numbers = known.of(type); isUsual() && !numbers.empty()) {
            append(toUnit(canonicalType(type), numbers[chance.below(numbers.size())]));
            return;
        }
        const bool isRoot = places.empty();  // the typedef's own name is the only hint
        if (isRoot) places.push_back({&type, &type.members.front()});
        use(targetOf(type), errands);
        if (isRoot) places.pop_back();
    }

    void member(const Type& owner, const Member& member, const Errands& errands)
    {
        places.push_back({&owner, &member});
        ++depth;
        use(member.use, errands);
        --depth;
        places.pop_back();
    }

    void structure(const Type& type, const Errands& errands)
    {
        Encodings encodings;
        for (const Member& field : type.members) {
            if (isCareful() && !encodings.utf8 && (encodings = encodingsOf(field.use)).utf8) {
                isPlain = encodings.ascii && isUsual() && chance.oneIn(4);
                append(static_cast<std::uint32_t>((isPlain ? encodings.ascii : encodings.utf8)->value));
                continue;
            }
            isText = encodings.utf8 != nullptr;
            Errands further;
            for (const Errand& errand : errands)
                if (errand.goal->next(type, errand.step) == &field) further.push_back({errand.goal, errand.step + 1});
            member(type, field, further);
        }
        isText = false;
    }

    void use(const Use& use, const Errands& errands)
    {
        switch (use.form) {
        case Form::single: value(*use.type, errands); return;
        case Form::fixedArray:
        case Form::variableArray: array(use, errands); return;
        case Form::optional: {
            const bool follows = present(use, !errands.empty());
            append(follows);
            if (follows) value(*use.type, errands);
            return;
        }
        case Form::string:
        case Form::variableOpaque: text(use); return;
        case Form::fixedOpaque: contents(use, use.bound); return;
        case Form::none: return;
        }
    }

    bool present(const Use& use, bool isWanted)
    {
        if (isWanted) return true;  // and paid
        const std::size_t cost = sizes.of(*use.type);
        const bool follows = cost <= available() && (recipe.extent == Extent::most || !chance.oneIn(isUsual() ? 8 : 3));
        if (follows) spare -= cost;
        return follows;
    }

    std::int64_t invented(const Type& scalar)
    {
        if (isUsual()) return plausible.number(scalar, places);
        const Range range = scalar.builtin == Builtin::Boolean ? Range{0, 1} : rangeOf(scalar);
        const auto enumerators = enumeratorsOf(scalar);
        if (recipe.extent == Extent::least) return enumerators.empty() ? 0 : enumerators.front().value;
        if (recipe.extent == Extent::most) {
            if (scalar.builtin == Builtin::Float) return 0x7F7FFFFF;  // the largest finite one
            return enumerators.empty() ? range.most : enumerators.back().value;
        }
        if (!enumerators.empty() && !chance.oneIn(16)) return enumerators[chance.below(enumerators.size())].value;
        const auto any = static_cast<std::uint32_t>(chance.next());
        if (scalar.builtin == Builtin::Boolean) return any & 1;
        return fromUnit(scalar, chance.oneIn(2) ? any : any & 0x7F);
    }

    // ---- Strings, opaques and arrays -----------------------------------------------------------------------------

    // The most elements of at least `each` bytes that a declaration may have: half of the available bytes, so that
    // later members get a share; but one element if it fits. `each` is 1 for bytes, which fill whole units.
    std::size_t fairQuantity(std::uint32_t bound, std::size_t each) const
    {
        const std::size_t affordable = each == 1 ? available() / 4 * 4 : available() / each;
        const std::size_t fair = std::max(affordable / 2, std::min<std::size_t>(affordable, each == 1 ? 4 : 1));
        return std::min<std::size_t>(bound, fair);
    }

    std::size_t quantity(std::uint32_t bound, std::size_t each)
    {
        const std::size_t most = fairQuantity(bound, each);
        if (isUsual()) return std::min<std::size_t>(most, 1 + chance.below(3));
        if (!isRandom() || chance.oneIn(8)) return most;
        const std::size_t few = std::min<std::size_t>(most, std::size_t{1} << chance.below(8));
        return chance.below(few + 1);
    }

    void text(const Use& use)
    {
        if (isUsual()) {
            const std::size_t most = fairQuantity(use.bound, 1);
            const std::string text = use.form == Form::string || isText
                                         ? plausible.text(most, isText && isPlain, places)
                                         : plausible.octets(most);
            pay(padded(text.size()));
            append(static_cast<std::uint32_t>(text.size()));
            bytes.insert(bytes.end(), text.begin(), text.end());
            bytes.resize(padded(bytes.size()), 0);
            return;
        }
        const std::size_t size = quantity(use.bound, 1);
        pay(padded(size));
        append(static_cast<std::uint32_t>(size));
        if (use.form == Form::string || size > 0) contents(use, static_cast<std::uint32_t>(size));
    }

    void contents(const Use& use, std::uint32_t size)
    {
        const unsigned lowest = use.form == Form::string ? 1 : 0;
        const bool readable = !isRandom() || !chance.oneIn(4);
        for (std::uint32_t i = 0; i < size; ++i) {
            const std::size_t byte = recipe.extent == Extent::least ? lowest
                                     : readable                     ? 'a' + i % 26
                                                                    : lowest + chance.below(256 - lowest);
            bytes.push_back(static_cast<unsigned char>(byte));
        }
        bytes.resize(padded(bytes.size()), 0);
    }

    // The discriminant that a union of this type is to have.
    struct Key {
        const Type* type;
        std::int64_t value;
    };

    // One element of an array to come.
    struct Element {
        Errands errands;
        std::optional<std::int64_t> key;
    };

    // The first elements of an array, one for each errand without an index, as far as there are so many.
    static std::vector<Element> elementsFor(const Use& use, const Errands& errands)
    {
        std::vector<Element> elements;
        std::uint32_t next = 0;
        for (const Errand& errand : errands) {
            const auto index = errand.goal->element(errand.step);
            const std::uint32_t at = index ? *index : next++ % use.bound;
            if (elements.size() <= at) elements.resize(at + 1);
            elements[at].errands.push_back({errand.goal, errand.step + 1});
        }
        return elements;
    }

    void array(const Use& use, const Errands& errands)
    {
        std::vector<Element> elements = elementsFor(use, errands);
        if (use.form == Form::variableArray) {
            if (isUsual() && errands.empty() && appendSet(use)) return;
            const Type* const keyed = isUsual() ? keyOf(*use.type) : nullptr;
            if (keyed) {
                addKeyed(use, *keyed, elements);
            } else {
                // The goals have paid for the elements that they need.
                const std::size_t each = sizes.of(*use.type), count = quantity(use.bound, each);
                pay((count - std::min(count, elements.size())) * each);
                elements.resize(std::max(count, elements.size()));
            }
            append(static_cast<std::uint32_t>(elements.size()));
        } else {
            elements.resize(use.bound);
        }
        ++depth;
        for (const Element& element : elements) {
            std::vector<Twin> outerTwins = std::exchange(twins, {});
            const auto outerKey = std::exchange(key, std::nullopt);
            if (element.key) key = Key{keyOf(*use.type), *element.key};
            value(*use.type, element.errands);
            key = outerKey;
            twins = std::move(outerTwins);
        }
        --depth;
    }

    // Appends a list of different known numbers or enumerators; false if the elements are something else.
    bool appendSet(const Use& use)
    {
        const Type& scalar = canonicalType(*use.type);
        std::vector<std::int64_t> values;
        for (const Enumerator& each : enumeratorsOf(scalar)) values.push_back(each.value);
        if (values.empty()) values.assign(known.of(*use.type).begin(), known.of(*use.type).end());
        if (values.empty()) return false;
        const std::size_t count = std::min(quantity(use.bound, 4), values.size());
        pay(4 * count);
        append(static_cast<std::uint32_t>(count));
        for (std::size_t i = 0; i < count; ++i) std::swap(values[i], values[i + chance.below(values.size() - i)]);
        std::sort(values.begin(), values.begin() + static_cast<std::ptrdiff_t>(count));
        for (std::size_t i = 0; i < count; ++i) append(toUnit(scalar, values[i]));
        return true;
    }

    // Gives the elements different keys and adds elements. The keys ascend, unless pointers name places among them.
    void addKeyed(const Use& use, const Type& keyed, std::vector<Element>& elements)
    {
        const std::size_t needed = elements.size(), each = sizes.of(*use.type);
        const bool isPlaced = std::ranges::any_of(elements, [](const Element& element) {
            return std::ranges::any_of(element.errands, [](const Errand& errand) { return errand.goal->isPlace(); });
        });
        std::set<std::int64_t> taken;
        for (Element& element : elements)
            if (!element.errands.empty()) element.key = keyFor(element.errands.front(), *use.type, keyed);
        for (const Element& element : elements)
            if (element.key) taken.insert(*element.key);

        // Each goal that fits gets an element; without such a goal there are up to three elements, or those needed.
        std::vector<std::int64_t> proposals;
        for (const ArmGoal& goal : goals)
            if (const auto value = goal.valueFor(keyed)) proposals.push_back(*value);
        const std::size_t most = proposals.empty() ? std::max(needed, 1 + chance.below(3)) : use.bound;
        if (proposals.empty()) proposals = someCases(keyed, 4 * std::min<std::size_t>(most, 16));
        std::size_t at = 0;  // the next of the needed elements, which the goals have paid
        for (const std::int64_t value : proposals) {
            while (at < needed && (elements[at].key || !elements[at].errands.empty())) ++at;
            const bool isNew = at >= needed;
            const std::size_t cost = (isNew ? each : 0) + sizes.extra(keyed, armOf(keyed, value));
            const bool isFair = cost <= (elements.empty() ? available() : available() / 2);
            if ((isNew && elements.size() >= std::min<std::size_t>(most, use.bound)) || !isFair) continue;
            if (!taken.insert(value).second) continue;
            pay(cost);
            if (isNew)
                elements.push_back({{}, value});
            else
                elements[at].key = value;
        }
        if (!isPlaced)
            std::ranges::sort(elements, {}, [](const Element& element) { return element.key.value_or(INT64_MAX); });
    }

    // So many discriminants that select arms, in any order; the first union of the message begins with its turn.
    std::vector<std::int64_t> someCases(const Type& type, std::size_t number)
    {
        const auto arms = armsOf(type);
        std::vector<std::int64_t> values;
        for (std::size_t i = 0; i < number; ++i) {
            const bool isTurn = std::exchange(firstUnion, false);
            const auto cases = casesOf(
                type, arms[isTurn ? static_cast<std::size_t>(recipe.seed % arms.size()) : chance.below(arms.size())]);
            values.push_back(cases[chance.below(cases.size())]);
        }
        return values;
    }

    // The discriminant that an element of the type needs for the errand; nullopt if the errand leaves it open.
    static std::optional<std::int64_t> keyFor(Errand errand, const Type& use, const Type& keyed)
    {
        const Type& element = canonicalType(use);
        if (element.kind == TypeKind::structure) {
            const Member* const field = errand.goal->next(element, errand.step++);
            if (!field || field->use.form != Form::single || &canonicalType(*field->use.type) != &keyed)
                return std::nullopt;
        }
        return discriminantFor(errand, keyed);
    }

    // ---- Unions --------------------------------------------------------------------------------------------------

    static std::optional<std::int64_t> discriminantFor(const Errand& errand, const Type& type)
    {
        if (const auto value = errand.goal->valueAt(type, errand.step)) return value;
        const Member* const arm = errand.goal->next(type, errand.step);
        return arm ? std::optional(casesOf(type, *arm).front()) : std::nullopt;
    }

    // The discriminant that a key, an errand or a goal demands.
    std::optional<std::int64_t> demanded(const Type& type, const Errands& errands)
    {
        if (key && key->type == &type) return std::exchange(key, std::nullopt)->value;
        for (const Errand& errand : errands)
            if (const auto value = discriminantFor(errand, type)) return value;
        for (const ArmGoal& goal : goals) {
            const auto value = goal.valueFor(type);
            if (!value) continue;
            return value;
        }
        return std::nullopt;
    }

    void discriminatedUnion(const Type& type, const Errands& errands)
    {
        ++depth;
        const auto demand = demanded(type, errands);
        const std::int64_t value = demand ? *demand : choice(type);
        const std::uint32_t unit = toUnit(discriminantOf(type), value);
        setTwin(*type.members.front().use.type, unit);
        append(unit);

        const Member* const arm = armOf(type, value);
        for (ArmGoal& goal : goals) goal.applied = goal.applied || goal.valueFor(type) == value;
        Errands further;
        for (const Errand& errand : errands) {
            if (errand.goal->valueAt(type, errand.step))
                errand.goal->applied = errand.goal->applied || errand.goal->valueAt(type, errand.step) == value;
            else if (arm && errand.goal->next(type, errand.step) == arm)
                further.push_back({errand.goal, errand.step + 1});
        }
        if (arm && arm->use.form != Form::none) member(type, *arm, further);
        --depth;
    }

    // Repeats a discriminant in the nearest number of its type before it.
    void setTwin(const Type& type, std::uint32_t unit)
    {
        const auto twin =
            std::find_if(twins.rbegin(), twins.rend(), [&](const Twin& each) { return each.type == &type; });
        if (twin == twins.rend() || isRandom()) return;
        for (unsigned i = 0; i < 4; ++i) bytes[twin->offset + i] = static_cast<unsigned char>(unit >> (24 - 8 * i));
        twins.erase(std::next(twin).base());
    }

    // Invents a discriminant.
    std::int64_t choice(const Type& type)
    {
        const bool isExtreme = !isUsual() && !isRandom();
        const auto arms = armsOf(type);
        const std::size_t choices = arms.size() + type.hasDefault;
        const std::size_t turn = isExtreme    ? extremeArm(type)
                                 : firstUnion ? static_cast<std::size_t>(recipe.seed % choices)
                                              : chance.below(choices);
        firstUnion = false;
        if (turn == arms.size())
            if (const auto value = withoutArm(type)) return *value;

        const Member* arm = &arms[turn % arms.size()];
        if (sizes.extra(type, arm) > available())
            arm = &*std::ranges::min_element(arms, {}, [&](auto& a) { return sizes.of(a.use); });
        // A union with a default arm reserves nothing, so each arm can cost more than the spare bytes.
        if (sizes.extra(type, arm) > spare)
            if (const auto value = withoutArm(type)) return *value;
        pay(sizes.extra(type, arm));
        const auto cases = casesOf(type, *arm);
        return cases[isExtreme ? 0 : chance.below(cases.size())];
    }

    // The index of the arm with the fewest bytes or, for `most`, with the most bytes that the budget allows.
    std::size_t extremeArm(const Type& type)
    {
        const auto arms = armsOf(type);
        std::size_t best = 0;
        for (std::size_t i = 0; i < arms.size(); ++i) {
            const std::size_t cost = sizes.of(arms[i].use), bestCost = sizes.of(arms[best].use);
            if (recipe.extent == Extent::least ? cost < bestCost
                                               : cost > bestCost && sizes.extra(type, &arms[i]) <= available())
                best = i;
        }
        return best;
    }

    // A discriminant that no case has; nullopt if the union has no default arm or no such value is found.
    std::optional<std::int64_t> withoutArm(const Type& type)
    {
        if (!type.hasDefault) return std::nullopt;
        const Type& discriminant = discriminantOf(type);
        for (int attempt = 0; attempt < 32 && isRandom(); ++attempt)
            if (const std::int64_t value = invented(discriminant); !armOf(type, value)) return value;
        for (const Enumerator& each : enumeratorsOf(discriminant))
            if (!isRandom() && !armOf(type, each.value)) return each.value;
        const std::int64_t candidates = discriminant.builtin == Builtin::Boolean ? 2 : 1000;
        for (std::int64_t value = 0; value < candidates; ++value)
            if (!armOf(type, value)) return value;
        return std::nullopt;
    }

    LeastSizes& sizes;
    KnownNumbers& known;
    const Recipe& recipe;
    Chance chance;
    Plausible plausible;
    std::vector<const Type*> types;  // of the goals
    std::vector<ArmGoal> goals;
    std::optional<Key> key;  // of the array element to come
    std::vector<Place> places;
    std::vector<Twin> twins;
    Bytes bytes;
    std::size_t spare = 0;
    std::size_t depth = 0;
    bool isText = false, isPlain = false;
    bool firstUnion = true;
};

}  // namespace

Bytes Sampler::sample(const Type& type, const Recipe& recipe)
{
    LeastSizes ownSizes;  // depend on the arms
    return Inventor(recipe.arms.empty() ? sizes : ownSizes, numbers, type, recipe).message(type);
}

}  // namespace quorva::inspect
