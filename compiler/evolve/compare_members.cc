// Compares the members of structs, enumerations and unions.
#include "comparison.h"
#include "front/diagnostics.h"
#include "front/structure.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <set>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace quorva::compiler {

namespace {

// The first names, in quotes.
std::string quotedList(const std::vector<std::string_view>& names)
{
    constexpr std::size_t shown = 5;
    std::string out;
    for (std::size_t i = 0; i < std::min(names.size(), shown); ++i) out += (i == 0 ? "" : ", ") + inQuotes(names[i]);
    return names.size() > shown ? out + ", ..." : out;
}

// Marks the longest ascending subsequence of distinct numbers.
std::vector<bool> ascending(const std::vector<std::size_t>& numbers)
{
    constexpr auto none = std::numeric_limits<std::size_t>::max();
    std::vector<std::size_t> ends;  // ends[n]: index of the smallest number that ends a subsequence of n + 1
    std::vector<std::size_t> previous(numbers.size(), none);
    for (std::size_t at = 0; at < numbers.size(); ++at) {
        const auto position =
            std::lower_bound(ends.begin(), ends.end(), numbers[at],
                             [&](std::size_t end, std::size_t number) { return numbers[end] < number; });
        if (position != ends.begin()) previous[at] = *(position - 1);
        if (position == ends.end()) {
            ends.push_back(at);
        } else {
            *position = at;
        }
    }
    std::vector<bool> chosen(numbers.size(), false);
    for (std::size_t at = ends.empty() ? none : ends.back(); at != none; at = previous[at]) chosen[at] = true;
    return chosen;
}

// The case, with the name of its arm: "arm 'owner' (case AKowner)".
std::string armText(const Value& value, const Declaration& declaration)
{
    const std::string label = "case " + value.text;
    return declaration.form == Form::none ? label : "arm " + inQuotes(declaration.name) + " (" + label + ")";
}

// The new numbers of the enumerators that both have. A changed number is reported at the enumeration, not at cases.
std::map<std::int64_t, std::int64_t> renumbered(const Definition* before, const Definition* after)
{
    std::map<std::int64_t, std::int64_t> numbers;
    if (!before || !after) return numbers;
    std::unordered_map<std::string_view, std::int64_t> names;
    for (const Enumerator& each : after->enumerators) names.emplace(each.name, each.value.number);
    for (const Enumerator& each : before->enumerators) {
        if (const auto same = names.find(each.name); same != names.end()) {
            numbers.emplace(each.value.number, same->second);
        }
    }
    return numbers;
}

}  // namespace

// ---- Structs -------------------------------------------------------------------------------------------------------

// Compares the order of the fields that both have. `stays` marks the fields of `before` that did not move.
void Comparison::fieldOrder(const std::vector<const Declaration*>& before, const std::vector<const Declaration*>& after,
                            const std::vector<bool>& stays)
{
    std::vector<std::size_t> elsewhere;
    for (std::size_t at = 0; at < before.size(); ++at) {
        if (before[at]->name != after[at]->name) elsewhere.push_back(at);
    }
    if (elsewhere.empty()) return;
    std::unordered_set<std::string_view> provisional;
    for (const Declaration* field : before) {
        if (field->provisional) provisional.insert(field->name);
    }
    const auto settled = [&](const std::vector<const Declaration*>& fields) {
        std::vector<std::string_view> names;
        for (const Declaration* field : fields) {
            if (!provisional.contains(field->name)) names.emplace_back(field->name);
        }
        return names;
    };
    const Impact impact = settled(before) == settled(after) ? Impact::provisional : Impact::wire;
    const std::size_t first = elsewhere.front();
    if (elsewhere.size() == 2) {
        change(impact, before[first]->at, after[first]->at,
               "fields " + inQuotes(before[first]->name) + " and " + inQuotes(after[first]->name) +
                   " have changed places");
        return;
    }
    std::vector<std::string_view> moved;
    for (std::size_t at = 0; at < before.size(); ++at) {
        if (!stays[at]) moved.emplace_back(before[at]->name);
    }
    change(impact, before[first]->at, after[first]->at, "fields have moved to another place: " + quotedList(moved));
}

// Compares fields without namesakes between the same two fields that stayed.
void Comparison::replacedFields(const std::vector<const Declaration*>& before,
                                const std::vector<const Declaration*>& after)
{
    if (before.size() != after.size()) {
        for (const Declaration* field : before) {
            change(Impact::wire, *field, newDefinition->at, "field " + inQuotes(field->name) + " is gone");
        }
        for (const Declaration* field : after) {
            change(Impact::wire, oldDefinition->at, field->at, "field " + inQuotes(field->name) + " is new");
        }
        return;
    }
    for (std::size_t at = 0; at < before.size(); ++at) {
        const Declaration& was = *before[at];
        const Declaration& is = *after[at];
        const Difference found = types.difference(was, is);
        if (found.wire) {
            change(impactOf(found), was, is.at,
                   "field " + inQuotes(was.name) + " of type " + typeText(was) + " gave way to " + inQuotes(is.name) +
                       " of type " + typeText(is));
        } else {
            change(Impact::source, was, is.at,
                   "field " + inQuotes(was.name) + " is named " + inQuotes(is.name) + ", in the trace, too");
        }
    }
}

void Comparison::structure(const Definition& before, const Definition& after)
{
    std::unordered_map<std::string_view, std::size_t> indexOf;
    for (std::size_t at = 0; at < after.fields.size(); ++at) indexOf.emplace(after.fields[at].name, at);

    std::vector<const Declaration*> kept;
    std::vector<std::size_t> keptAt;
    std::vector<bool> isKept(after.fields.size(), false);
    for (const Declaration& field : before.fields) {
        const auto same = indexOf.find(field.name);
        if (same == indexOf.end()) continue;
        kept.push_back(&field);
        keptAt.push_back(same->second);
        isKept[same->second] = true;
        type("field " + inQuotes(field.name), field, after.fields[same->second]);
    }
    const std::vector<bool> stays = ascending(keptAt);

    std::vector<const Declaration*> keptAfter;
    for (std::size_t at = 0; at < after.fields.size(); ++at) {
        if (isKept[at]) keptAfter.push_back(&after.fields[at]);
    }
    fieldOrder(kept, keptAfter, stays);

    // Compares the fields between each two that stayed.
    std::size_t was = 0;
    std::size_t is = 0;
    for (std::size_t at = 0; at <= kept.size(); ++at) {
        if (at < kept.size() && !stays[at]) continue;
        const bool end = at == kept.size();
        std::vector<const Declaration*> removedFields;
        std::vector<const Declaration*> addedFields;
        for (; was < before.fields.size() && (end || &before.fields[was] != kept[at]); ++was) {
            if (!indexOf.contains(before.fields[was].name)) removedFields.push_back(&before.fields[was]);
        }
        for (; is < after.fields.size() && (end || is != keptAt[at]); ++is) {
            if (!isKept[is]) addedFields.push_back(&after.fields[is]);
        }
        replacedFields(removedFields, addedFields);
    }
}

// ---- Enumerations --------------------------------------------------------------------------------------------------

void Comparison::enumeration(const Definition& before, const Definition& after)
{
    std::unordered_map<std::string_view, const Enumerator*> names;
    std::unordered_map<std::int64_t, const Enumerator*> values;
    for (const Enumerator& each : after.enumerators) {
        names.emplace(each.name, &each);
        values.emplace(each.value.number, &each);
    }
    std::unordered_set<std::string_view> known;
    for (const Enumerator& each : before.enumerators) known.insert(each.name);

    std::unordered_set<const Enumerator*> renamed;
    for (const Enumerator& was : before.enumerators) {
        const std::string what = "enumerator " + inQuotes(was.name);
        if (const auto same = names.find(was.name); same != names.end()) {
            const Enumerator& is = *same->second;
            if (was.value.number == is.value.number) continue;
            change(Impact::wire, was.at, is.at,
                   what + " was " + std::to_string(was.value.number) + ", is " + std::to_string(is.value.number));
            continue;
        }
        const auto renamedTo = values.find(was.value.number);
        if (renamedTo != values.end() && !known.contains(renamedTo->second->name)) {
            renamed.insert(renamedTo->second);
            change(Impact::source, was.at, renamedTo->second->at,
                   what + " is named " + inQuotes(renamedTo->second->name) + ", in the trace, too");
        } else {
            change(Impact::source, was.at, after.at, what + " is gone, from the trace, too");
        }
    }
    for (const Enumerator& each : after.enumerators) {
        if (known.contains(each.name) || renamed.contains(&each)) continue;
        change(Impact::addition, before.at, each.at,
               "enumerator " + inQuotes(each.name) + " = " + std::to_string(each.value.number));
    }
}

// ---- Unions --------------------------------------------------------------------------------------------------------

void Comparison::removedArm(const ArmCase& before)
{
    const std::string what = armText(*before.value, *before.declaration) + " is gone";
    if (newDefinition->defaultArm && before.declaration->form == Form::none) {
        change(Impact::trace, *before.declaration, newDefinition->at, what + "; its value shows as 'default'");
    } else {
        change(Impact::wire, *before.declaration, newDefinition->at, what);
    }
}

// The default arm already coded the value, with no data after the discriminant.
void Comparison::addedArm(const ArmCase& after)
{
    const std::string what = armText(*after.value, *after.declaration) + " is new";
    if (!oldDefinition->defaultArm) {
        change(Impact::addition, oldDefinition->at, after.declaration->at, what);
    } else if (oldDefinition->defaultArm->declaration.provisional) {
        change(Impact::provisional, oldDefinition->at, after.declaration->at, what);
    } else if (after.declaration->form == Form::none) {
        change(Impact::trace, oldDefinition->at, after.declaration->at, what + "; its value showed as 'default'");
    } else {
        change(Impact::wire, oldDefinition->at, after.declaration->at, what + "; its value had no data, as 'default'");
    }
}

void Comparison::arm(const ArmCase& before, const ArmCase& after)
{
    const Declaration& was = *before.declaration;
    const Declaration& is = *after.declaration;
    const std::string what = armText(*before.value, was);
    if (was.name == is.name || was.form == Form::none || is.form == Form::none) {
        type(what, was, is);
        return;
    }
    const Difference found = types.difference(was, is);
    if (found.wire) {
        change(impactOf(found), was, is.at,
               what + " of type " + typeText(was) + " gave way to " + inQuotes(is.name) + " of type " + typeText(is));
    } else {
        change(Impact::source, was, is.at, what + " is named " + inQuotes(is.name) + ", in the trace, too");
    }
}

// Matches cases in three steps: by number and arm name, then by arm name alone, then by number alone.
void Comparison::arms(const Definition& before, const Definition& after)
{
    std::map<std::int64_t, ArmCase> left;  // new cases without a match
    struct Numbers {
        std::vector<std::int64_t> all;
        std::size_t next = 0;  // those before it are matched
    };
    std::unordered_map<std::string_view, Numbers> named;
    for (const Arm& each : after.arms) {
        for (const Value& value : each.cases) {
            left.emplace(value.number, ArmCase{&value, &each.declaration});
            named[each.declaration.name].all.push_back(value.number);
        }
    }
    const auto numbers = renumbered(discriminantOf(before).enumeration, discriminantOf(after).enumeration);
    const auto withNumber = [&](const ArmCase& was) {
        const auto followed = numbers.find(was.value->number);
        return left.find(followed == numbers.end() ? was.value->number : followed->second);
    };
    const auto withName = [&](const ArmCase& was) {
        Numbers& known = named[was.declaration->name];
        while (known.next < known.all.size() && !left.contains(known.all[known.next])) ++known.next;
        return known.next < known.all.size() ? left.find(known.all[known.next]) : left.end();
    };

    std::vector<ArmCase> otherName;
    std::set<std::pair<const Declaration*, const Declaration*>> reported;  // one finding for several cases
    for (const Arm& each : before.arms) {
        for (const Value& value : each.cases) {
            const ArmCase was{&value, &each.declaration};
            const auto same = withNumber(was);
            if (same == left.end() || same->second.declaration->name != each.declaration.name) {
                otherName.push_back(was);
                continue;
            }
            if (reported.emplace(was.declaration, same->second.declaration).second) arm(was, same->second);
            left.erase(same);
        }
    }
    std::vector<ArmCase> otherNumber;
    for (const ArmCase& was : otherName) {
        const auto moved = was.declaration->form == Form::none ? left.end() : withName(was);
        if (moved == left.end() || types.difference(*was.declaration, *moved->second.declaration).wire) {
            otherNumber.push_back(was);
            continue;
        }
        change(Impact::wire, *was.declaration, moved->second.declaration->at,
               armText(*was.value, *was.declaration) + " is under case " + moved->second.value->text);
        left.erase(moved);
    }
    for (const ArmCase& was : otherNumber) {
        const auto same = withNumber(was);
        if (same == left.end()) {
            removedArm(was);
            continue;
        }
        if (reported.emplace(was.declaration, same->second.declaration).second) arm(was, same->second);
        left.erase(same);
    }
    for (const auto& [number, label] : left) addedArm(label);
}

void Comparison::discriminatedUnion(const Definition& before, const Definition& after)
{
    const Declaration& discriminant = before.discriminant;
    type("the discriminant", discriminant, after.discriminant);
    if (discriminant.name != after.discriminant.name) {
        change(Impact::source, discriminant, after.discriminant.at,
               "the discriminant " + inQuotes(discriminant.name) + " is named " + inQuotes(after.discriminant.name) +
                   ", in the trace, too");
    }

    arms(before, after);
    if (before.defaultArm && after.defaultArm) {
        type("the default arm", before.defaultArm->declaration, after.defaultArm->declaration);
    } else if (before.defaultArm) {
        change(Impact::wire, before.defaultArm->declaration, after.at, "the default arm is gone");
    } else if (after.defaultArm) {
        change(Impact::wire, before.at, after.defaultArm->declaration.at, "the default arm is new");
    }
}

}  // namespace quorva::compiler
