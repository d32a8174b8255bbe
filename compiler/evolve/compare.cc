// Pairs the definitions of two programs by name, then fields, enumerators and arms within each pair. A change is
// reported where it is written down, not at every type that holds the changed one.
#include "compare.h"

#include "front/diagnostics.h"
#include "front/structure.h"
#include "matching.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <map>
#include <optional>
#include <ostream>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace quorva::compiler {

namespace {

// The worst consequence of a change, the worst first; the last two are none.
enum class Weight { wire, source, trace, addition, provisional };

constexpr std::array<std::string_view, 5> headings = {"Breaks the wire", "Breaks source", "Breaks only the trace",
                                                      "New", "Provisional"};
constexpr std::array<std::string_view, 5> countedAs = {"wire", "source", "trace", "new", "provisional"};

struct Finding {
    Weight weight = Weight::wire;
    Span before;  // without a source where there is nothing to point at
    Span after;
    std::string sentence;
};

Weight weightOf(const Difference& difference)
{
    if (difference.provisional) return Weight::provisional;
    if (difference.wire) return Weight::wire;
    return difference.source ? Weight::source : Weight::trace;
}

// Words

std::string called(const Definition& definition)
{
    constexpr std::array<std::string_view, 5> words = {"const ", "enum ", "struct ", "union ", "typedef "};
    return std::string(words[static_cast<std::size_t>(definition.kind)]) + inQuotes(definition.name);
}

bool hasMaximum(Form form)
{
    return form == Form::list || form == Form::string || form == Form::bytes;
}

std::string typeText(const Declaration& declaration)
{
    const std::string number = std::to_string(declaration.bound);
    const std::string maximum = "<" + (declaration.bound == 65535 ? "" : number) + ">";
    switch (declaration.form) {
    case Form::single: return declaration.type.name;
    case Form::vector: return declaration.type.name + "[" + number + "]";
    case Form::list: return declaration.type.name + maximum;
    case Form::optional: return declaration.type.name + "*";
    case Form::string: return "string" + maximum;
    case Form::bytes: return "opaque" + maximum;
    case Form::opaque: return "opaque[" + number + "]";
    case Form::nothing: break;
    }
    return "void";
}

std::string list(const std::vector<std::string_view>& names)
{
    constexpr std::size_t shown = 5;
    std::string out;
    for (std::size_t i = 0; i < std::min(names.size(), shown); ++i) out += (i == 0 ? "" : ", ") + inQuotes(names[i]);
    return names.size() > shown ? out + ", ..." : out;
}

// Definitions

class Comparison {
public:
    Comparison(const State& before, const State& after)
        : before_(before.program, before.isFolder),
          after_(after.program, after.isFolder),
          pairs_(before_, after_),
          types_(pairs_)
    {
    }

    void run();
    std::size_t print(std::ostream& out) const;

private:
    void add(Weight weight, const Span& before, const Span& after, std::string sentence);
    void change(Weight weight, const Span& before, const Span& after, const std::string& what);
    void change(Weight weight, const Declaration& before, const Span& after, const std::string& what);
    void mark(const std::string& subject, const Declaration& before, const Declaration& after, bool isChanged);
    void modules();
    void gone(const Definition& before);
    void fresh(const Definition& after);
    void definition(const Definition& before, const Definition& after);
    void nameAndHome(const Definition& before, const Definition& after);
    void content(const Definition& before, const Definition& after);
    void type(const std::string& subject, const Declaration& before, const Declaration& after);

    void record(const Definition& before, const Definition& after);
    void order(const std::vector<const Declaration*>& before, const std::vector<const Declaration*>& after,
               const std::vector<bool>& stays);
    void exchanged(const std::vector<const Declaration*>& before, const std::vector<const Declaration*>& after);

    void enumeration(const Definition& before, const Definition& after);

    struct Label {
        const Value* value = nullptr;
        const Declaration* declaration = nullptr;
    };
    void discriminated(const Definition& before, const Definition& after);
    void arms(const Definition& before, const Definition& after);
    void arm(const Label& before, const Label& after);
    void armGone(const Label& before);
    void armNew(const Label& after);

    Library before_;
    Library after_;
    Pairs pairs_;
    Types types_;
    std::vector<Finding> findings_;
    const Definition* was_ = nullptr;  // at hand
    const Definition* is_ = nullptr;
    std::optional<std::size_t> holders_;  // of it, once counted
};

void Comparison::add(Weight weight, const Span& before, const Span& after, std::string sentence)
{
    findings_.push_back({weight, before, after, std::move(sentence)});
}

// A change within the definition at hand.
void Comparison::change(Weight weight, const Span& before, const Span& after, const std::string& what)
{
    std::string holders;
    if (weight != Weight::addition) {
        if (!holders_) holders_ = before_.holdersOf(*was_);
        const bool isMore = *holders_ == Library::mostHolders;
        if (*holders_ == 1) holders = " (1 type holds it)";
        if (*holders_ > 1) holders = (isMore ? " (at least " : " (") + std::to_string(*holders_) + " types hold it)";
    }
    add(was_->provisional ? Weight::provisional : weight, before, after, called(*was_) + ": " + what + holders);
}

// A change of a member. It breaks nothing if the old member was provisional.
void Comparison::change(Weight weight, const Declaration& before, const Span& after, const std::string& what)
{
    change(before.provisional ? Weight::provisional : weight, before.at, after, what);
}

// Reports that a member lost its mark and is otherwise the same, or that it got one. The marks within a type that is
// provisional as a whole say nothing.
void Comparison::mark(const std::string& subject, const Declaration& before, const Declaration& after, bool isChanged)
{
    if (was_->provisional || is_->provisional) return;
    if (before.provisional && !after.provisional && !isChanged) {
        change(Weight::provisional, before, after.at, subject + " is settled as it was");
    } else if (!before.provisional && after.provisional) {
        change(Weight::provisional, before, after.at, subject + " was settled and is marked provisional");
    }
}

// Names

void Comparison::modules()
{
    if (!before_.knowsModules() || !after_.knowsModules()) return;
    const auto isOpen = [](const Definition* definition) { return definition->provisional.has_value(); };
    for (const auto& [name, definitions] : before_.contents()) {
        if (after_.contents().contains(name)) continue;
        const bool open = !definitions.empty() && std::all_of(definitions.begin(), definitions.end(), isOpen);
        add(open ? Weight::provisional : Weight::source, before_.place(name), {},
            "module " + inQuotes(name) + " is gone, and with it its header");
    }
    for (const auto& [name, definitions] : after_.contents()) {
        if (before_.contents().contains(name)) continue;
        const auto count = std::count_if(definitions.begin(), definitions.end(),
                                         [&](const Definition* each) { return !pairs_.isPaired(each); });
        add(Weight::addition, {}, after_.place(name),
            "module " + inQuotes(name) + ", new definitions in it: " + std::to_string(count));
    }
}

void Comparison::gone(const Definition& before)
{
    add(before.provisional ? Weight::provisional : Weight::source, before.at, {}, called(before) + " is gone");
}

void Comparison::fresh(const Definition& after)
{
    const bool listed = after_.knowsModules() && before_.knowsModules() &&
                        !before_.contents().contains(after_.homeOf(after));  // with its module
    if (!listed) add(Weight::addition, {}, after.at, called(after));
}

void Comparison::nameAndHome(const Definition& before, const Definition& after)
{
    if (before.name != after.name) {
        const bool inTrace = before.kind == Kind::discriminated;
        change(Weight::source, before.at, after.at,
               "is named " + inQuotes(after.name) + (inTrace ? ", in the trace, too" : ""));
    }
    if (!before_.knowsModules() || !after_.knowsModules()) return;
    const std::string& from = before_.homeOf(before);
    const std::string& to = after_.homeOf(after);
    if (from == to || after_.reaches(from, to)) return;
    change(Weight::source, before.at, after.at,
           "moved from module " + inQuotes(from) + " to " + inQuotes(to) + ", which the former does not import");
}

void Comparison::definition(const Definition& before, const Definition& after)
{
    was_ = &before;
    is_ = &after;
    holders_.reset();
    nameAndHome(before, after);
    const std::size_t first = findings_.size();
    content(before, after);
    if (before.provisional && !after.provisional) {
        const bool same = findings_.size() == first;
        findings_.erase(findings_.begin() + static_cast<std::ptrdiff_t>(first), findings_.end());
        change(Weight::provisional, before.at, after.at,
               same ? "the provisional layout is settled as it was"
                    : "the provisional layout is replaced by a settled one");
    } else if (!before.provisional && after.provisional) {
        change(Weight::provisional, before.at, after.at, "was settled and is marked provisional");
    }
}

void Comparison::content(const Definition& before, const Definition& after)
{
    if (before.kind == after.kind) {
        switch (before.kind) {
        case Kind::constant:
            if (before.constant.number == after.constant.number) return;
            change(Weight::source, before.at, after.at,
                   "was " + std::to_string(before.constant.number) + ", is " + std::to_string(after.constant.number));
            return;
        case Kind::enumeration: enumeration(before, after); return;
        case Kind::record: record(before, after); return;
        case Kind::discriminated: discriminated(before, after); return;
        case Kind::definedAs: type("", before.target, after.target); return;
        }
    }
    const std::string what = "is a definition of another kind: " + called(after);
    if (before.kind == Kind::constant || after.kind == Kind::constant) {
        change(Weight::source, before.at, after.at, what);
        return;
    }
    const bool aliased = before.kind == Kind::definedAs || after.kind == Kind::definedAs;
    const auto declarationOf = [](const Definition& definition) {
        return definition.kind == Kind::definedAs ? definition.target : singleOf(definition);
    };
    const bool wire = !aliased || types_.difference(declarationOf(before), declarationOf(after)).wire;
    change(wire ? Weight::wire : Weight::source, before.at, after.at, what);
}

// Reports what `subject`, a field or an arm, or else the typedef at hand, became where that is something else.
void Comparison::type(const std::string& subject, const Declaration& before, const Declaration& after)
{
    const Difference found = types_.difference(before, after);
    mark(subject, before, after, found.any());
    if (!found.any()) return;
    const bool onlyMaximum = before.form == after.form && hasMaximum(before.form) && before.bound != after.bound &&
                             !types_.difference(singleOf(before.type), singleOf(after.type)).any();
    const std::string what =
        onlyMaximum ? "the maximum" + (subject.empty() ? "" : " of " + subject) + " was " +
                          std::to_string(before.bound) + ", is " + std::to_string(after.bound)
                    : subject + (subject.empty() ? "" : " ") + "was " + typeText(before) + ", is " + typeText(after);
    change(weightOf(found), before, after.at, what);
}

// Structures

// Which of the distinct numbers form the longest ascending run, with gaps.
std::vector<bool> ascending(const std::vector<std::size_t>& numbers)
{
    constexpr auto none = std::numeric_limits<std::size_t>::max();
    std::vector<std::size_t> ends;  // ends[n]: where the run of n + 1 numbers with the smallest last one ends
    std::vector<std::size_t> previous(numbers.size(), none);
    for (std::size_t at = 0; at < numbers.size(); ++at) {
        const auto place = std::lower_bound(ends.begin(), ends.end(), numbers[at],
                                            [&](std::size_t end, std::size_t number) { return numbers[end] < number; });
        if (place != ends.begin()) previous[at] = *(place - 1);
        if (place == ends.end()) {
            ends.push_back(at);
        } else {
            *place = at;
        }
    }
    std::vector<bool> chosen(numbers.size(), false);
    for (std::size_t at = ends.empty() ? none : ends.back(); at != none; at = previous[at]) chosen[at] = true;
    return chosen;
}

// The fields that both have, in the order of each. `stays` tells which of them moved in relation to others.
void Comparison::order(const std::vector<const Declaration*>& before, const std::vector<const Declaration*>& after,
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
    const Weight weight = settled(before) == settled(after) ? Weight::provisional : Weight::wire;
    const std::size_t first = elsewhere.front();
    if (elsewhere.size() == 2) {
        change(weight, before[first]->at, after[first]->at,
               "fields " + inQuotes(before[first]->name) + " and " + inQuotes(after[first]->name) +
                   " have changed places");
        return;
    }
    std::vector<std::string_view> moved;
    for (std::size_t at = 0; at < before.size(); ++at) {
        if (!stays[at]) moved.emplace_back(before[at]->name);
    }
    change(weight, before[first]->at, after[first]->at, "fields have moved to another place: " + list(moved));
}

// Fields that stand between the same neighbours and have no namesakes on the other side.
void Comparison::exchanged(const std::vector<const Declaration*>& before, const std::vector<const Declaration*>& after)
{
    if (before.size() != after.size()) {
        for (const Declaration* field : before) {
            change(Weight::wire, *field, is_->at, "field " + inQuotes(field->name) + " is gone");
        }
        for (const Declaration* field : after) {
            change(Weight::wire, was_->at, field->at, "field " + inQuotes(field->name) + " is new");
        }
        return;
    }
    for (std::size_t at = 0; at < before.size(); ++at) {
        const Declaration& was = *before[at];
        const Declaration& is = *after[at];
        const Difference found = types_.difference(was, is);
        if (found.wire) {
            change(weightOf(found), was, is.at,
                   "field " + inQuotes(was.name) + " of type " + typeText(was) + " gave way to " + inQuotes(is.name) +
                       " of type " + typeText(is));
        } else {
            change(Weight::source, was, is.at,
                   "field " + inQuotes(was.name) + " is named " + inQuotes(is.name) + ", in the trace, too");
        }
    }
}

void Comparison::record(const Definition& before, const Definition& after)
{
    std::unordered_map<std::string_view, std::size_t> places;
    for (std::size_t at = 0; at < after.fields.size(); ++at) places.emplace(after.fields[at].name, at);

    std::vector<const Declaration*> kept;
    std::vector<std::size_t> keptAt;
    std::vector<bool> isKept(after.fields.size(), false);
    for (const Declaration& field : before.fields) {
        const auto same = places.find(field.name);
        if (same == places.end()) continue;
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
    order(kept, keptAfter, stays);

    // From one field that stays to the next.
    std::size_t was = 0;
    std::size_t is = 0;
    for (std::size_t at = 0; at <= kept.size(); ++at) {
        if (at < kept.size() && !stays[at]) continue;
        const bool end = at == kept.size();
        std::vector<const Declaration*> gone;
        std::vector<const Declaration*> fresh;
        for (; was < before.fields.size() && (end || &before.fields[was] != kept[at]); ++was) {
            if (!places.contains(before.fields[was].name)) gone.push_back(&before.fields[was]);
        }
        for (; is < after.fields.size() && (end || is != keptAt[at]); ++is) {
            if (!isKept[is]) fresh.push_back(&after.fields[is]);
        }
        exchanged(gone, fresh);
    }
}

// Enumerations

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
            change(Weight::wire, was.at, is.at,
                   what + " was " + std::to_string(was.value.number) + ", is " + std::to_string(is.value.number));
            continue;
        }
        const auto heir = values.find(was.value.number);
        if (heir != values.end() && !known.contains(heir->second->name)) {
            renamed.insert(heir->second);
            change(Weight::source, was.at, heir->second->at,
                   what + " is named " + inQuotes(heir->second->name) + ", in the trace, too");
        } else {
            change(Weight::source, was.at, after.at, what + " is gone, from the trace, too");
        }
    }
    for (const Enumerator& each : after.enumerators) {
        if (known.contains(each.name) || renamed.contains(&each)) continue;
        change(Weight::addition, before.at, each.at,
               "enumerator " + inQuotes(each.name) + " = " + std::to_string(each.value.number));
    }
}

// Unions

std::string armText(const Value& value, const Declaration& declaration)
{
    const std::string label = "case " + value.text;
    return declaration.form == Form::nothing ? label : "arm " + inQuotes(declaration.name) + " (" + label + ")";
}

void Comparison::armGone(const Label& before)
{
    const std::string what = armText(*before.value, *before.declaration) + " is gone";
    if (is_->defaultArm && before.declaration->form == Form::nothing) {
        change(Weight::trace, *before.declaration, is_->at, what + "; its value shows as 'default'");
    } else {
        change(Weight::wire, *before.declaration, is_->at, what);
    }
}

// A value that a default arm took has travelled already, with nothing behind it.
void Comparison::armNew(const Label& after)
{
    const std::string what = armText(*after.value, *after.declaration) + " is new";
    if (!was_->defaultArm) {
        change(Weight::addition, was_->at, after.declaration->at, what);
    } else if (was_->defaultArm->declaration.provisional) {
        change(Weight::provisional, was_->at, after.declaration->at, what);
    } else if (after.declaration->form == Form::nothing) {
        change(Weight::trace, was_->at, after.declaration->at, what + "; its value showed as 'default'");
    } else {
        change(Weight::wire, was_->at, after.declaration->at, what + "; its value carried nothing, as 'default'");
    }
}

void Comparison::arm(const Label& before, const Label& after)
{
    const Declaration& was = *before.declaration;
    const Declaration& is = *after.declaration;
    const std::string what = armText(*before.value, was);
    if (was.name == is.name || was.form == Form::nothing || is.form == Form::nothing) {
        type(what, was, is);
        return;
    }
    const Difference found = types_.difference(was, is);
    if (found.wire) {
        change(weightOf(found), was, is.at,
               what + " of type " + typeText(was) + " gave way to " + inQuotes(is.name) + " of type " + typeText(is));
    } else {
        change(Weight::source, was, is.at, what + " is named " + inQuotes(is.name) + ", in the trace, too");
    }
}

// Values of an enumeration that got other numbers are followed: the enumeration itself is where that is reported.
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

// Arms that kept number and name first, then those that took their name to another number; what is left of a number
// then is another arm, or none.
void Comparison::arms(const Definition& before, const Definition& after)
{
    std::map<std::int64_t, Label> left;  // of the new arms
    struct Numbers {
        std::vector<std::int64_t> all;
        std::size_t next = 0;  // those before it are not left
    };
    std::unordered_map<std::string_view, Numbers> named;
    for (const Arm& each : after.arms) {
        for (const Value& value : each.cases) {
            left.emplace(value.number, Label{&value, &each.declaration});
            named[each.declaration.name].all.push_back(value.number);
        }
    }
    const auto numbers = renumbered(discriminantOf(before).enumeration, discriminantOf(after).enumeration);
    const auto withNumber = [&](const Label& was) {
        const auto followed = numbers.find(was.value->number);
        return left.find(followed == numbers.end() ? was.value->number : followed->second);
    };
    const auto withName = [&](const Label& was) {
        Numbers& known = named[was.declaration->name];
        while (known.next < known.all.size() && !left.contains(known.all[known.next])) ++known.next;
        return known.next < known.all.size() ? left.find(known.all[known.next]) : left.end();
    };

    std::vector<Label> otherName;
    std::set<std::pair<const Declaration*, const Declaration*>> reported;  // of several cases the first
    for (const Arm& each : before.arms) {
        for (const Value& value : each.cases) {
            const Label was{&value, &each.declaration};
            const auto same = withNumber(was);
            if (same == left.end() || same->second.declaration->name != each.declaration.name) {
                otherName.push_back(was);
                continue;
            }
            if (reported.emplace(was.declaration, same->second.declaration).second) arm(was, same->second);
            left.erase(same);
        }
    }
    std::vector<Label> otherNumber;
    for (const Label& was : otherName) {
        const auto moved = was.declaration->form == Form::nothing ? left.end() : withName(was);
        if (moved == left.end() || types_.difference(*was.declaration, *moved->second.declaration).wire) {
            otherNumber.push_back(was);
            continue;
        }
        change(Weight::wire, *was.declaration, moved->second.declaration->at,
               armText(*was.value, *was.declaration) + " is under case " + moved->second.value->text);
        left.erase(moved);
    }
    for (const Label& was : otherNumber) {
        const auto same = withNumber(was);
        if (same == left.end()) {
            armGone(was);
            continue;
        }
        if (reported.emplace(was.declaration, same->second.declaration).second) arm(was, same->second);
        left.erase(same);
    }
    for (const auto& [number, label] : left) armNew(label);
}

void Comparison::discriminated(const Definition& before, const Definition& after)
{
    const Declaration& selector = before.discriminant;
    type("the discriminant", selector, after.discriminant);
    if (selector.name != after.discriminant.name) {
        change(Weight::source, selector, after.discriminant.at,
               "the discriminant " + inQuotes(selector.name) + " is named " + inQuotes(after.discriminant.name) +
                   ", in the trace, too");
    }

    arms(before, after);
    if (before.defaultArm && after.defaultArm) {
        type("the default arm", before.defaultArm->declaration, after.defaultArm->declaration);
    } else if (before.defaultArm) {
        change(Weight::wire, before.defaultArm->declaration, after.at, "the default arm is gone");
    } else if (after.defaultArm) {
        change(Weight::wire, before.at, after.defaultArm->declaration.at, "the default arm is new");
    }
}

void Comparison::run()
{
    modules();
    for (const auto& [module, definitions] : before_.contents()) {
        for (const Definition* before : definitions) {
            if (const Definition* after = pairs_.of(before)) {
                definition(*before, *after);
            } else {
                gone(*before);
            }
        }
    }
    for (const auto& [module, definitions] : after_.contents()) {
        for (const Definition* after : definitions) {
            if (!pairs_.isPaired(after)) fresh(*after);
        }
    }
}

std::string placeText(const Span& span)
{
    return span.source ? span.source->path + ":" + std::to_string(span.line) : "-";
}

std::size_t Comparison::print(std::ostream& out) const
{
    std::array<std::size_t, headings.size()> counts{};
    for (const Finding& finding : findings_) ++counts[static_cast<std::size_t>(finding.weight)];
    for (std::size_t weight = 0; weight < headings.size(); ++weight) {
        if (counts[weight] == 0) continue;
        out << headings[weight] << '\n';
        for (const Finding& finding : findings_) {
            if (static_cast<std::size_t>(finding.weight) != weight) continue;
            out << "  " << placeText(finding.before) << " -> " << placeText(finding.after) << ": " << finding.sentence
                << '\n';
        }
        out << '\n';
    }
    for (std::size_t weight = 0; weight < headings.size(); ++weight) {
        out << (weight == 0 ? "" : ", ") << countedAs[weight] << ": " << counts[weight];
    }
    out << '\n';
    return counts[0] + counts[1] + counts[2];
}

}  // namespace

std::size_t compare(const State& before, const State& after, std::ostream& out)
{
    Comparison comparison(before, after);
    comparison.run();
    return comparison.print(out);
}

}  // namespace quorva::compiler
