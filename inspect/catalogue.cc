// Finds, suggests and names types.

#include "catalogue.h"

#include "documentation.h"
#include "explain/layout.h"
#include "support/text.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace quorva::inspect {

namespace {

// Matches a whole name. A mismatch only makes the last `*` longer: a longer earlier one would not match more.
bool matchesWhole(std::string_view pattern, std::string_view name)
{
    std::size_t p = 0, n = 0;
    std::optional<std::pair<std::size_t, std::size_t>> star;
    while (n < name.size()) {
        if (p < pattern.size() && pattern[p] == '*') {
            star = {p++, n};
        } else if (p < pattern.size() && (pattern[p] == '?' || pattern[p] == name[n])) {
            ++p, ++n;
        } else if (star) {
            p = star->first + 1;
            n = ++star->second;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', p) == std::string_view::npos;
}

}  // namespace

const char* kindName(const Type& type)
{
    switch (type.kind) {
    case TypeKind::builtin: return "built-in";
    case TypeKind::enumeration: return "enum";
    case TypeKind::structure: return "struct";
    case TypeKind::discriminatedUnion: return "union";
    case TypeKind::foreign: return "foreign";
    case TypeKind::typeDefinition: break;
    }
    const Form form = targetOf(type).form;
    return form == Form::single ? "typedef" : formName(form);
}

std::string placeOf(const Type& type)
{
    const Module* const module = moduleOf(type);
    return module ? std::string(module->file) + ':' + std::to_string(documentationOf(type).line) : "built in";
}

const char* formName(Form form)
{
    switch (form) {
    case Form::single: return "single";
    case Form::fixedArray: return "fixed-length-array";
    case Form::variableArray: return "variable-length-array";
    case Form::optional: return "optional";
    case Form::string: return "string";
    case Form::variableOpaque: return "variable-length-opaque";
    case Form::fixedOpaque: return "fixed-length-opaque";
    case Form::none: break;
    }
    return "void";
}

std::string declaration(const Use& use, std::string_view name)
{
    const std::string bound = std::to_string(use.bound);
    std::string text = use.type                   ? use.type->name
                       : use.form == Form::string ? "string"
                       : use.form == Form::none   ? "void"
                                                  : "opaque";
    if (!name.empty() || use.form == Form::optional) text += ' ';
    if (use.form == Form::optional) text += '*';
    text += name;
    switch (use.form) {
    case Form::fixedArray:
    case Form::fixedOpaque: return text + '[' + bound + ']';
    case Form::variableArray:
    case Form::string:
    case Form::variableOpaque: return text + '<' + bound + '>';
    default: return text;
    }
}

std::vector<std::vector<std::int64_t>> casesByArm(const Type& discriminatedUnion)
{
    const Type& discriminant = discriminantOf(discriminatedUnion);
    std::vector<std::vector<std::int64_t>> values(armsOf(discriminatedUnion).size());
    for (const Case& each : discriminatedUnion.cases)
        values[each.member - 1].push_back(fromUnit(discriminant, each.value));
    for (auto& ofArm : values) std::ranges::sort(ofArm);
    return values;
}

bool matches(std::string_view pattern, std::string_view name)
{
    const std::string wanted = support::lowerCase(pattern), given = support::lowerCase(name);
    return wanted.find_first_of("*?") == std::string::npos ? given.find(wanted) != std::string::npos
                                                           : matchesWhole(wanted, given);
}

std::string didYouMean(std::string_view word, std::span<const std::string_view> candidates)
{
    const std::string wanted = support::lowerCase(word);
    if (wanted.empty() || wanted.size() > 200) return {};
    std::vector<std::pair<std::size_t, std::string_view>> similar, containing;
    for (const std::string_view candidate : candidates) {
        const std::string name = support::lowerCase(candidate);
        const std::size_t edits = support::editDistance(wanted, name);
        if (edits <= std::max<std::size_t>(1, std::min(wanted.size(), name.size()) / 3))
            similar.emplace_back(edits, candidate);
        else if (wanted.size() >= 3 && name.find(wanted) != std::string::npos)
            containing.emplace_back(name.size(), candidate);
    }
    auto& ranked = similar.empty() ? containing : similar;
    if (ranked.empty()) return {};
    std::ranges::sort(ranked);
    std::string text = "; did you mean ";
    const std::size_t shown = std::min<std::size_t>(3, ranked.size());
    for (std::size_t i = 0; i < shown; ++i) {
        if (i > 0) text += i + 1 == shown ? " or " : ", ";
        text += ranked[i].second;
    }
    return text + '?';
}

Catalogue::Catalogue()
{
    for (const Type* type : builtinTypes()) byName.emplace(type->name, type);
    for (const Type* type : typesOf(knownModules())) byName.insert_or_assign(type->name, type);
    for (const auto& [name, type] : byName) ordered.push_back(type);
    std::ranges::sort(ordered, {}, [](const Type* type) { return std::string_view(type->name); });
}

const Type* Catalogue::find(std::string_view name) const
{
    const auto found = byName.find(name);
    return found == byName.end() ? nullptr : found->second;
}

std::string Catalogue::didYouMean(std::string_view name) const
{
    std::vector<std::string_view> names;
    for (const Type* type : ordered) names.emplace_back(type->name);
    return inspect::didYouMean(name, names);
}

}  // namespace quorva::inspect
