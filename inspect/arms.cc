// Finds ways through the type graph.

#include "arms.h"

#include "catalogue.h"
#include "documentation.h"
#include "explain/layout.h"

#include <algorithm>
#include <charconv>
#include <set>
#include <utility>

namespace quorva::inspect {

namespace {

constexpr std::size_t noWay = SIZE_MAX;
constexpr std::size_t mostBytes = std::size_t{1} << 20;  // that a choice may need; more is a mistaken index

// The decimal number that is the whole text.
template <class Number>
std::optional<Number> numberIn(std::string_view text)
{
    Number number{};
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || error != std::errc() || end != text.data() + text.size()) return std::nullopt;
    return number;
}

// The reference tokens of a JSON Pointer.
std::vector<std::string> tokensOf(std::string_view pointer)
{
    std::vector<std::string> tokens;
    for (std::size_t i = 0; i < pointer.size(); ++i) {
        if (pointer[i] == '/') {
            tokens.emplace_back();
        } else if (pointer[i] == '~' && i + 1 < pointer.size() && (pointer[i + 1] == '0' || pointer[i + 1] == '1')) {
            tokens.back() += pointer[++i] == '0' ? '~' : '/';
        } else {
            tokens.back() += pointer[i];
        }
    }
    return tokens;
}

std::string quoted(std::string_view text)
{
    return '"' + std::string(text) + '"';
}

// Appends what a choice can have as its value in this union.
void addValues(const Type& type, std::vector<std::string_view>& names)
{
    const auto enumerators = enumeratorsOf(discriminantOf(type));
    for (const Enumerator& enumerator : enumerators)
        if (type.hasDefault || armOf(type, enumerator.value)) names.push_back(enumerator.name);
    for (const Member& arm : armsOf(type))
        if (*arm.name) names.push_back(arm.name);
}

}  // namespace

std::vector<const Type*> reachableFrom(const Type& root)
{
    std::vector<const Type*> found = {&root};
    std::set<const Type*> known = {&root};
    for (std::size_t i = 0; i < found.size(); ++i)
        for (const Member& member : found[i]->members)
            if (member.use.type && known.insert(member.use.type).second) found.push_back(member.use.type);
    return found;
}

ArmGoal::ArmGoal(std::span<const Type* const> ofMessage, const ArmChoice& wanted, LeastSizes& leastSizes)
    : types(ofMessage), choice(wanted), sizes(leastSizes)
{
    if (isPlace()) {
        steps = tokensOf(choice.name);
        return;
    }
    const std::string root = types.front()->name;
    const Type* named = nullptr;
    std::vector<std::string_view> names;
    for (const Type* type : types) {
        const Type& canonical = canonicalType(*type);
        if (canonical.kind != TypeKind::discriminatedUnion) continue;
        if (choice.name == type->name) named = &canonical;
        names.push_back(type->name);
        if (type == &canonical) names.push_back(type->members.front().name);
    }
    for (const Type* type : types)
        if (type->kind == TypeKind::discriminatedUnion && (type == named || choice.name == type->members.front().name))
            candidates.push_back(type);
    for (const Type* type : candidates)
        if (const auto value = parsed(*type)) values[type] = *value;
    std::ranges::sort(names);
    names.erase(std::unique(names.begin(), names.end()), names.end());
    if (names.empty()) throw ArmError(text() + ": " + root + " contains no union");
    if (candidates.empty())
        throw ArmError(text() + ": no union or discriminant in " + root + " is called " + quoted(choice.name) +
                       didYouMean(choice.name, names));
}

void ArmGoal::findWay()
{
    if (isPlace()) {
        findPlace();
    } else {
        // Types come after those that contain them, so most ways are found in one turn from the back.
        for (bool changed = true; changed;) {
            changed = false;
            for (auto type = types.rbegin(); type != types.rend(); ++type) changed |= shorten(**type);
        }
        needed = ways.at(types.front());
        if (needed == noWay) refuseValue(candidates);
    }
    if (needed > mostBytes)
        throw ArmError(text() + " needs a message of more than " + std::to_string(mostBytes) + " bytes");
}

std::optional<std::int64_t> ArmGoal::valueFor(const Type& type) const
{
    const auto found = values.find(&type);
    return found == values.end() ? std::nullopt : std::optional(found->second);
}

std::optional<std::int64_t> ArmGoal::valueAt(const Type& type, std::size_t step) const
{
    if (!isPlace()) return valueFor(type);
    const bool ends = step == steps.size() || (step + 1 == steps.size() && steps[step] == type.members.front().name);
    return ends ? parsed(type) : std::nullopt;
}

const Member* ArmGoal::next(const Type& type, std::size_t step) const
{
    const bool isUnion = type.kind == TypeKind::discriminatedUnion;
    const auto members = isUnion ? armsOf(type) : type.members;
    if (isPlace()) {
        const auto found = step < steps.size() ? std::ranges::find(members, steps[step], &Member::name) : members.end();
        return found == members.end() ? nullptr : &*found;
    }
    const Member* best = nullptr;
    std::size_t bestCost = noWay;
    for (const Member& member : members) {
        std::size_t bytes = cost(member.use);
        if (bytes == noWay) continue;
        if (isUnion) bytes += sizes.extra(type, &member);
        if (bytes < bestCost) {
            best = &member;
            bestCost = bytes;
        }
    }
    return best;
}

std::optional<std::uint32_t> ArmGoal::element(std::size_t step) const
{
    if (!isPlace() || step >= steps.size()) return std::nullopt;
    if (steps[step].size() > 1 && steps[step].front() == '0') return std::nullopt;  // RFC 6901 has no leading zeros
    return numberIn<std::uint32_t>(steps[step]);
}

std::optional<std::int64_t> ArmGoal::parsed(const Type& type) const
{
    const Type& discriminant = discriminantOf(type);
    const auto accepted = [&](std::int64_t value) {
        const Range range = rangeOf(discriminant);
        return armOf(type, value) || (type.hasDefault && value >= range.least && value <= range.most);
    };
    if (const auto number = numberIn<std::int64_t>(choice.value)) return accepted(*number) ? number : std::nullopt;
    if (discriminant.builtin == Builtin::Boolean && (choice.value == "true" || choice.value == "false"))
        return accepted(choice.value == "true") ? std::optional<std::int64_t>(choice.value == "true") : std::nullopt;
    for (const Enumerator& enumerator : enumeratorsOf(discriminant))
        if (choice.value == enumerator.name && accepted(enumerator.value)) return enumerator.value;
    for (const Member& arm : armsOf(type))
        if (*arm.name && choice.value == arm.name) return casesOf(type, arm).front();
    return std::nullopt;
}

void ArmGoal::refuseValue(const std::vector<const Type*>& unions) const
{
    std::vector<std::string_view> values;
    for (const Type* type : unions) addValues(*type, values);
    std::ranges::sort(values);
    values.erase(std::unique(values.begin(), values.end()), values.end());
    const std::string where = unions.size() == 1 ? std::string(unions.front()->name) + " has no arm "
                                                 : "no union with the discriminant " + choice.name + " has an arm ";
    throw ArmError(text() + ": " + where + quoted(choice.value) + didYouMean(choice.value, values));
}

// Follows the pointer by the descriptions, and adds up what its steps need.
void ArmGoal::findPlace()
{
    if (steps.size() > deepestNesting / 4) throw ArmError(choice.name.substr(0, 40) + "... nests too deeply");
    std::string path;
    const auto refuse = [&](const std::string& reason) {
        throw ArmError(text() + ": " + (path.empty() ? "the message" : path) + ' ' + reason);
    };
    Use use{types.front(), 0, Form::single};
    for (std::size_t step = 0;; ++step) {
        const Type* type = nullptr;
        // One element or optional at most comes before each step; typedefs lead to further ones.
        while (!type) {
            if (use.form == Form::fixedArray || use.form == Form::variableArray) break;
            if (use.form == Form::optional) needed += sizes.of(*use.type);
            if (!use.type) break;
            if (use.type->kind == TypeKind::typeDefinition)
                use = targetOf(*use.type);
            else
                type = use.type;
        }
        if (type && type->kind == TypeKind::discriminatedUnion) {
            if (step == steps.size() || (step + 1 == steps.size() && steps[step] == type->members.front().name)) {
                const auto value = parsed(*type);
                if (!value) refuseValue({type});
                needed += sizes.extra(*type, armOf(*type, *value));
                return;
            }
            if (const Member* arm = next(*type, step)) needed += sizes.extra(*type, arm);
        }
        if (step == steps.size()) refuse("is not a union");
        if (type && (type->kind == TypeKind::structure || type->kind == TypeKind::discriminatedUnion)) {
            const Member* member = next(*type, step);
            if (!member || !*member->name) {
                std::vector<std::string_view> names;
                for (const Member& other : type->members)
                    if (*other.name) names.push_back(other.name);
                refuse(std::string("is a ") + type->name + ", which has no member " + quoted(steps[step]) +
                       didYouMean(steps[step], names));
            }
            use = member->use;
        } else if (!type && use.type) {
            const auto index = element(step);
            if (!index || *index >= use.bound)
                refuse("is an array of at most " + std::to_string(use.bound) + " elements, without an element " +
                       quoted(steps[step]));
            if (use.form == Form::variableArray) needed += (std::size_t{*index} + 1) * sizes.of(*use.type);
            use = {use.type, 0, Form::single};
        } else {
            refuse("has no members");
        }
        path += '/' + steps[step];
    }
}

std::size_t ArmGoal::cost(const Use& use) const
{
    const auto way = use.type ? ways.find(use.type) : ways.end();
    if (way == ways.end() || way->second == noWay) return noWay;
    switch (use.form) {
    case Form::single: return way->second;
    case Form::fixedArray: return use.bound > 0 ? way->second : noWay;
    case Form::variableArray: return use.bound > 0 ? way->second + sizes.of(*use.type) : noWay;
    case Form::optional: return way->second + sizes.of(*use.type);
    default: return noWay;
    }
}

// Takes a shorter way from the type, if there is one by now.
bool ArmGoal::shorten(const Type& type)
{
    std::size_t best = noWay;
    if (type.kind == TypeKind::discriminatedUnion) {
        const auto consider = [&](const Member* arm, std::size_t further) {
            if (further != noWay) best = std::min(best, sizes.extra(type, arm) + further);
        };
        if (const auto value = valueFor(type))
            consider(armOf(type, *value), 0);
        else
            for (const Member& arm : armsOf(type)) consider(&arm, cost(arm.use));
    } else {
        for (const Member& member : type.members) best = std::min(best, cost(member.use));
    }
    std::size_t& way = ways.try_emplace(&type, noWay).first->second;
    if (best >= way) return false;
    way = best;
    return true;
}

std::vector<ArmGoal> goalsOf(std::span<const Type* const> types, const std::vector<ArmChoice>& choices,
                             LeastSizes& sizes)
{
    std::vector<ArmGoal> goals;
    std::set<std::pair<std::string_view, std::string_view>> different;
    for (const ArmChoice& choice : choices)
        if (different.emplace(choice.name, choice.value).second) goals.emplace_back(types, choice, sizes);
    for (const Type* type : types)
        for (auto goal = goals.rbegin(); goal != goals.rend(); ++goal)  // the first one is fixed last
            if (const auto value = goal->valueFor(*type)) sizes.fix(*type, armOf(*type, *value));
    for (ArmGoal& goal : goals) goal.findWay();
    return goals;
}

}  // namespace quorva::inspect
