// Lookup tables, matching by name and by content, and comparison of declared types.
#include "matching.h"

#include "front/structure.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <set>

namespace quorva::compiler {

namespace {

// A declaration with its typedefs resolved.
struct ResolvedType {
    Form form = Form::none;
    const TypeRef* type = nullptr;  // of the value or the elements
    std::uint32_t bound = 0;
    const Definition* counted = nullptr;  // the typedef, if C++ declares a counted struct for it
    bool provisional = false;             // one of the typedefs is provisional
};

ResolvedType resolvedTypeOf(const Declaration& declaration)
{
    ResolvedType resolved{declaration.form, &declaration.type, declaration.bound, nullptr, false};
    while (resolved.form == Form::single && resolved.type->definition &&
           resolved.type->definition->kind == DefinitionKind::typeDefinition) {
        const Definition& alias = *resolved.type->definition;
        if (isCountedStruct(alias)) resolved.counted = &alias;
        resolved.provisional = resolved.provisional || alias.provisional;
        resolved.form = alias.target.form;
        resolved.bound = alias.target.bound;
        resolved.type = &alias.target.type;
    }
    return resolved;
}

// The values that a number type accepts from a unit.
struct UnitRange {
    std::int64_t least = 0;
    std::int64_t most = 0;
    bool isFloat = false;

    bool operator==(const UnitRange&) const = default;
};

UnitRange unitRangeOf(Builtin builtin)
{
    switch (builtin) {
    case Builtin::Boolean:
    case Builtin::ShortInteger:
    case Builtin::ShortNatural: return {0, 255, false};  // ShortInteger, too, is zero-extended
    case Builtin::Integer: return {-32768, 32767, false};
    case Builtin::Natural: return {0, 65535, false};
    case Builtin::LongInteger:
    case Builtin::LongNatural:
    case Builtin::UINT: return {0, std::numeric_limits<std::uint32_t>::max(), false};
    case Builtin::Float: return {0, 0, true};
    case Builtin::none: break;
    }
    return {};
}

// One built-in type for all that are the same type in C++.
Builtin cppType(Builtin builtin)
{
    if (builtin == Builtin::UINT) return Builtin::LongNatural;
    return builtin == Builtin::Boolean ? Builtin::ShortNatural : builtin;
}

bool isEnumeration(const TypeRef& type)
{
    return type.definition && type.definition->kind == DefinitionKind::enumeration;
}

std::set<std::int64_t> valuesOf(const Definition& enumeration)
{
    std::set<std::int64_t> values;
    for (const Enumerator& each : enumeration.enumerators) values.insert(each.value.number);
    return values;
}

}  // namespace

InterfaceIndex::InterfaceIndex(const Program& indexed, bool isFolder)
    : program(indexed), byModule(definitionsByModule(indexed))
{
    const auto& modules = program.modules;
    hasModules = isFolder || std::any_of(modules.begin(), modules.end(),
                                         [](const auto& module) { return isFlattened(module->source); });
    for (const auto& [name, definitions] : byModule) {
        for (const Definition* definition : definitions) {
            byName.emplace(definition->name, definition);
            moduleNames.emplace(definition, &name);
            for (const Declaration* declaration : declarationsOf(*definition)) {
                if (declaration->type.definition) usersOf[declaration->type.definition].push_back(definition);
            }
        }
    }
}

const Definition* InterfaceIndex::find(const std::string& name) const
{
    const auto found = byName.find(name);
    return found == byName.end() ? nullptr : found->second;
}

Span InterfaceIndex::startOf(const std::string& module) const
{
    const auto found = byModule.find(module);
    if (found != byModule.end() && !found->second.empty()) return found->second.front()->at;
    for (const auto& each : program.modules) {
        if (each->source.module == module || isFlattened(each->source)) return {&each->source, 1, 1, 1};
    }
    return {};
}

bool InterfaceIndex::reaches(const std::string& from, const std::string& to) const
{
    for (const auto& module : program.modules) {
        if (module->source.module != from) continue;
        for (const Module* reached : importClosure(*module))
            if (reached->source.module == to) return true;
    }
    return false;
}

std::size_t InterfaceIndex::holdersOf(const Definition& type) const
{
    std::unordered_set<const Definition*> seen = {&type};
    std::vector<const Definition*> waiting = {&type};
    while (!waiting.empty() && seen.size() <= mostHolders) {
        const auto users = usersOf.find(waiting.back());
        waiting.pop_back();
        if (users == usersOf.end()) continue;
        for (const Definition* user : users->second) {
            if (seen.insert(user).second) waiting.push_back(user);
        }
    }
    return std::min(seen.size() - 1, mostHolders);
}

Pairs::Pairs(const InterfaceIndex& before, const InterfaceIndex& after)
{
    for (const auto& [module, definitions] : before.contents()) {
        for (const Definition* definition : definitions) {
            if (const Definition* same = after.find(definition->name)) pair(*definition, *same);
        }
    }
    // A renamed type whose field has a renamed type is found in the round after that type.
    constexpr int mostRounds = 16;
    for (int round = 0; round < mostRounds && pairRenamed(before, after); ++round) {}
}

const Definition* Pairs::of(const Definition* before) const
{
    const auto found = partners.find(before);
    return found == partners.end() ? nullptr : found->second;
}

void Pairs::pair(const Definition& before, const Definition& after)
{
    partners.emplace(&before, &after);
    paired.insert(&after);
}

std::string Pairs::typeName(const TypeRef& type, const Definition& within, bool isBefore) const
{
    if (type.definition == &within) return "itself";
    const Definition* other = isBefore ? of(type.definition) : nullptr;
    return other ? other->name : type.name;
}

// A text of everything in a definition but its name, equal for equal content.
std::string Pairs::content(const Definition& definition, bool isBefore) const
{
    const auto text = [&](const Declaration& declaration) {
        return std::to_string(static_cast<int>(declaration.form)) + ' ' +
               typeName(declaration.type, definition, isBefore) + ' ' +
               (definition.kind == DefinitionKind::typeDefinition ? "" : declaration.name) + ' ' +
               std::to_string(declaration.bound) + ';';
    };
    std::string out = std::to_string(static_cast<int>(definition.kind)) + ':';
    if (definition.kind == DefinitionKind::constant) return out + std::to_string(definition.constant.number);
    for (const Enumerator& each : definition.enumerators)
        out += each.name + '=' + std::to_string(each.value.number) + ';';
    for (const Declaration& field : definition.fields) out += text(field);
    if (definition.kind == DefinitionKind::typeDefinition) out += text(definition.target);
    if (definition.kind != DefinitionKind::discriminatedUnion) return out;
    out += text(definition.discriminant);
    for (const Arm& arm : definition.arms) {
        for (const Value& value : arm.cases) out += std::to_string(value.number) + ':';
        out += text(arm.declaration);
    }
    return out + (definition.defaultArm ? "default" : "");
}

// Pairs definitions without a partner whose content is unique within a module. Returns true if it found any.
bool Pairs::pairRenamed(const InterfaceIndex& before, const InterfaceIndex& after)
{
    const bool comparesModules = before.knowsModules() && after.knowsModules();
    using Candidates = std::map<std::string, std::vector<const Definition*>>;
    const auto collect = [&](const InterfaceIndex& library, bool isBefore) {
        Candidates candidates;
        for (const auto& [module, definitions] : library.contents()) {
            for (const Definition* definition : definitions) {
                if (isBefore ? of(definition) != nullptr : isPaired(definition)) continue;
                candidates[(comparesModules ? module : "") + ' ' + content(*definition, isBefore)].push_back(
                    definition);
            }
        }
        return candidates;
    };
    const Candidates removed = collect(before, true);
    const Candidates added = collect(after, false);
    bool found = false;
    for (const auto& [key, definitions] : removed) {
        const auto same = added.find(key);
        if (definitions.size() != 1 || same == added.end() || same->second.size() != 1) continue;
        pair(*definitions.front(), *same->second.front());
        found = true;
    }
    return found;
}

Declaration singleOf(const TypeRef& type)
{
    Declaration declaration;
    declaration.form = Form::single;
    declaration.type = type;
    return declaration;
}

Declaration singleOf(const Definition& definition)
{
    TypeRef type;
    type.name = definition.name;
    type.definition = &definition;
    return singleOf(type);
}

bool TypeComparison::isSame(const TypeRef& before, const TypeRef& after) const
{
    return before.builtin == after.builtin && pairs.of(before.definition) == after.definition &&
           (before.definition == nullptr) == (after.definition == nullptr);
}

// Compares built-in types, enumerations, structs and unions.
Difference TypeComparison::values(const TypeRef& before, const TypeRef& after, PendingPairs& pending) const
{
    Difference found;
    if (isSame(before, after)) return found;
    found.provisional = before.definition && before.definition->provisional;
    found.trace = true;
    const bool numbers = (!before.definition || isEnumeration(before)) && (!after.definition || isEnumeration(after));
    if (numbers && before.definition && after.definition) {
        found.source = true;
        found.wire = valuesOf(*before.definition) != valuesOf(*after.definition);
    } else if (numbers) {
        const Builtin was = before.definition ? Builtin::LongInteger : before.builtin;
        const Builtin is = after.definition ? Builtin::LongInteger : after.builtin;
        found.wire = unitRangeOf(was) != unitRangeOf(is);
        found.source = before.definition || after.definition || cppType(was) != cppType(is);
    } else {
        found.source = true;
        found.wire = !before.definition || !after.definition || before.definition->kind != after.definition->kind;
        if (!found.wire) pending.emplace_back(before.definition, after.definition);
    }
    return found;
}

// Follows arrays of arrays as long as both sides have the same form.
Difference TypeComparison::declared(Declaration before, Declaration after, PendingPairs& pending) const
{
    constexpr int deepest = 64;
    Difference found;
    for (int depth = 0; depth < deepest; ++depth) {
        if (before.form == Form::single && after.form == Form::single && isSame(before.type, after.type)) return found;
        const ResolvedType was = resolvedTypeOf(before);
        const ResolvedType is = resolvedTypeOf(after);
        found.provisional = found.provisional || was.provisional;
        if (was.form != is.form || was.bound != is.bound) {
            found.wire = true;
            return found;
        }
        if (pairs.of(was.counted) != is.counted || (was.counted == nullptr) != (is.counted == nullptr)) {
            found.source = true;
        }
        switch (was.form) {
        case Form::string:
        case Form::variableOpaque:
        case Form::fixedOpaque:
        case Form::none: return found;
        case Form::single: {
            const Difference deeper = values(*was.type, *is.type, pending);
            return {found.wire || deeper.wire, found.source || deeper.source, found.trace || deeper.trace,
                    found.provisional || deeper.provisional};
        }
        case Form::fixedArray:
        case Form::variableArray:
        case Form::optional: break;
        }
        before = singleOf(*was.type);
        after = singleOf(*is.type);
    }
    found.wire = true;  // deeper types count as different
    return found;
}

bool TypeComparison::haveSameWire(const Definition& before, const Definition& after, PendingPairs& pending) const
{
    const auto same = [&](const Declaration& a, const Declaration& b) { return !declared(a, b, pending).wire; };
    if (before.kind == DefinitionKind::structure) {
        return std::equal(before.fields.begin(), before.fields.end(), after.fields.begin(), after.fields.end(), same);
    }
    const auto armsOf = [](const Definition& definition) {
        std::map<std::int64_t, const Declaration*> arms;
        for (const Arm& arm : definition.arms) {
            for (const Value& value : arm.cases) arms.emplace(value.number, &arm.declaration);
        }
        return arms;
    };
    const auto was = armsOf(before);
    const auto is = armsOf(after);
    return same(before.discriminant, after.discriminant) &&
           before.defaultArm.has_value() == after.defaultArm.has_value() &&
           std::equal(was.begin(), was.end(), is.begin(), is.end(),
                      [&](const auto& a, const auto& b) { return a.first == b.first && same(*a.second, *b.second); });
}

bool TypeComparison::haveSameWire(PendingPairs& pending) const
{
    constexpr std::size_t mostPairs = 10000;  // beyond, types count as different
    std::set<std::pair<const Definition*, const Definition*>> seen;
    while (!pending.empty()) {
        const auto [before, after] = pending.back();
        pending.pop_back();
        if (!seen.emplace(before, after).second) continue;
        if (seen.size() > mostPairs || !haveSameWire(*before, *after, pending)) return false;
    }
    return true;
}

Difference TypeComparison::difference(const Declaration& before, const Declaration& after) const
{
    PendingPairs pending;
    Difference found = declared(before, after, pending);
    if (!found.wire) found.wire = !haveSameWire(pending);
    return found;
}

}  // namespace quorva::compiler
