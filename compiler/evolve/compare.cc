// Compares modules and definitions.
#include "compare.h"

#include "comparison.h"
#include "front/diagnostics.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace quorva::compiler {

namespace {

// Keyword and name, as the interface file has them: "struct 'Locker'".
std::string withKeyword(const Definition& definition)
{
    constexpr std::array<std::string_view, 5> keywords = {"const ", "enum ", "struct ", "union ", "typedef "};
    return std::string(keywords[static_cast<std::size_t>(definition.kind)]) + inQuotes(definition.name);
}

bool hasMaximum(Form form)
{
    return form == Form::variableArray || form == Form::string || form == Form::variableOpaque;
}

}  // namespace

Impact impactOf(const Difference& difference)
{
    if (difference.provisional) return Impact::provisional;
    if (difference.wire) return Impact::wire;
    return difference.source ? Impact::source : Impact::trace;
}

std::string typeText(const Declaration& declaration)
{
    const std::string number = std::to_string(declaration.bound);
    const std::string maximum = "<" + (declaration.bound == mostElements ? "" : number) + ">";
    switch (declaration.form) {
    case Form::single: return declaration.type.name;
    case Form::fixedArray: return declaration.type.name + "[" + number + "]";
    case Form::variableArray: return declaration.type.name + maximum;
    case Form::optional: return declaration.type.name + "*";
    case Form::string: return "string" + maximum;
    case Form::variableOpaque: return "opaque" + maximum;
    case Form::fixedOpaque: return "opaque[" + number + "]";
    case Form::none: break;
    }
    return "void";
}

void Comparison::add(Impact impact, const Span& before, const Span& after, std::string sentence)
{
    findings.push_back({impact, before, after, std::move(sentence)});
}

void Comparison::change(Impact impact, const Span& before, const Span& after, const std::string& what)
{
    std::string holders;
    if (impact != Impact::addition) {
        if (!holderCount) holderCount = oldIndex.holdersOf(*oldDefinition);
        const bool isMore = *holderCount == InterfaceIndex::mostHolders;
        if (*holderCount == 1) holders = " (1 type holds it)";
        if (*holderCount > 1)
            holders = (isMore ? " (at least " : " (") + std::to_string(*holderCount) + " types hold it)";
    }
    add(oldDefinition->provisional ? Impact::provisional : impact, before, after,
        withKeyword(*oldDefinition) + ": " + what + holders);
}

void Comparison::change(Impact impact, const Declaration& before, const Span& after, const std::string& what)
{
    change(before.provisional ? Impact::provisional : impact, before.at, after, what);
}

void Comparison::mark(const std::string& subject, const Declaration& before, const Declaration& after, bool isChanged)
{
    if (oldDefinition->provisional || newDefinition->provisional) return;
    if (before.provisional && !after.provisional && !isChanged) {
        change(Impact::provisional, before, after.at, subject + " is settled as it was");
    } else if (!before.provisional && after.provisional) {
        change(Impact::provisional, before, after.at, subject + " was settled and is marked provisional");
    }
}

void Comparison::modules()
{
    if (!oldIndex.knowsModules() || !newIndex.knowsModules()) return;
    const auto isOpen = [](const Definition* definition) { return definition->provisional.has_value(); };
    for (const auto& [name, definitions] : oldIndex.contents()) {
        if (newIndex.contents().contains(name)) continue;
        const bool open = !definitions.empty() && std::all_of(definitions.begin(), definitions.end(), isOpen);
        add(open ? Impact::provisional : Impact::source, oldIndex.startOf(name), {},
            "module " + inQuotes(name) + " is gone, and with it its header");
    }
    for (const auto& [name, definitions] : newIndex.contents()) {
        if (oldIndex.contents().contains(name)) continue;
        const auto count = std::count_if(definitions.begin(), definitions.end(),
                                         [&](const Definition* each) { return !pairs.isPaired(each); });
        add(Impact::addition, {}, newIndex.startOf(name),
            "module " + inQuotes(name) + ", new definitions in it: " + std::to_string(count));
    }
}

void Comparison::removed(const Definition& before)
{
    add(before.provisional ? Impact::provisional : Impact::source, before.at, {}, withKeyword(before) + " is gone");
}

void Comparison::added(const Definition& after)
{
    const bool isInNewModule =
        newIndex.knowsModules() && oldIndex.knowsModules() && !oldIndex.contents().contains(newIndex.moduleOf(after));
    if (!isInNewModule) add(Impact::addition, {}, after.at, withKeyword(after));
}

void Comparison::nameAndModule(const Definition& before, const Definition& after)
{
    if (before.name != after.name) {
        const bool inTrace = before.kind == DefinitionKind::discriminatedUnion;
        change(Impact::source, before.at, after.at,
               "is named " + inQuotes(after.name) + (inTrace ? ", in the trace, too" : ""));
    }
    if (!oldIndex.knowsModules() || !newIndex.knowsModules()) return;
    const std::string& from = oldIndex.moduleOf(before);
    const std::string& to = newIndex.moduleOf(after);
    if (from == to || newIndex.reaches(from, to)) return;
    change(Impact::source, before.at, after.at,
           "moved from module " + inQuotes(from) + " to " + inQuotes(to) + ", which the former does not import");
}

void Comparison::definition(const Definition& before, const Definition& after)
{
    oldDefinition = &before;
    newDefinition = &after;
    holderCount.reset();
    nameAndModule(before, after);
    const std::size_t first = findings.size();
    content(before, after);
    if (before.provisional && !after.provisional) {
        const bool same = findings.size() == first;
        findings.erase(findings.begin() + static_cast<std::ptrdiff_t>(first), findings.end());
        change(Impact::provisional, before.at, after.at,
               same ? "the provisional layout is settled as it was"
                    : "the provisional layout is replaced by a settled one");
    } else if (!before.provisional && after.provisional) {
        change(Impact::provisional, before.at, after.at, "was settled and is marked provisional");
    }
}

void Comparison::content(const Definition& before, const Definition& after)
{
    if (before.kind == after.kind) {
        switch (before.kind) {
        case DefinitionKind::constant:
            if (before.constant.number == after.constant.number) return;
            change(Impact::source, before.at, after.at,
                   "was " + std::to_string(before.constant.number) + ", is " + std::to_string(after.constant.number));
            return;
        case DefinitionKind::enumeration: enumeration(before, after); return;
        case DefinitionKind::structure: structure(before, after); return;
        case DefinitionKind::discriminatedUnion: discriminatedUnion(before, after); return;
        case DefinitionKind::typeDefinition: type("", before.target, after.target); return;
        }
    }
    const std::string what = "is a definition of another kind: " + withKeyword(after);
    if (before.kind == DefinitionKind::constant || after.kind == DefinitionKind::constant) {
        change(Impact::source, before.at, after.at, what);
        return;
    }
    const bool aliased = before.kind == DefinitionKind::typeDefinition || after.kind == DefinitionKind::typeDefinition;
    const auto declarationOf = [](const Definition& definition) {
        return definition.kind == DefinitionKind::typeDefinition ? definition.target : singleOf(definition);
    };
    const bool wire = !aliased || types.difference(declarationOf(before), declarationOf(after)).wire;
    change(wire ? Impact::wire : Impact::source, before.at, after.at, what);
}

void Comparison::type(const std::string& subject, const Declaration& before, const Declaration& after)
{
    const Difference found = types.difference(before, after);
    mark(subject, before, after, found.any());
    if (!found.any()) return;
    const bool onlyMaximum = before.form == after.form && hasMaximum(before.form) && before.bound != after.bound &&
                             !types.difference(singleOf(before.type), singleOf(after.type)).any();
    const std::string what =
        onlyMaximum ? "the maximum" + (subject.empty() ? "" : " of " + subject) + " was " +
                          std::to_string(before.bound) + ", is " + std::to_string(after.bound)
                    : subject + (subject.empty() ? "" : " ") + "was " + typeText(before) + ", is " + typeText(after);
    change(impactOf(found), before, after.at, what);
}

std::vector<Finding> Comparison::run()
{
    modules();
    for (const auto& [module, definitions] : oldIndex.contents()) {
        for (const Definition* before : definitions) {
            if (const Definition* after = pairs.of(before)) {
                definition(*before, *after);
            } else {
                removed(*before);
            }
        }
    }
    for (const auto& [module, definitions] : newIndex.contents()) {
        for (const Definition* after : definitions) {
            if (!pairs.isPaired(after)) added(*after);
        }
    }
    remotePrograms();
    return std::move(findings);
}

std::size_t compare(const InterfaceVersion& before, const InterfaceVersion& after, std::ostream& out)
{
    return print(Comparison(before, after).run(), out);
}

}  // namespace quorva::compiler
