// The tables, and the way from declared types to what they are on the wire and in memory.
#include "matching.h"

#include "front/structure.h"

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <set>

namespace quorva::compiler {

namespace {

// A declaration behind the typedefs that it names.
struct Shape {
    Form form = Form::nothing;
    const TypeRef* type = nullptr;  // of the value or the elements
    std::uint32_t bound = 0;
    const Definition* counted = nullptr;  // the typedef that makes a list or counted bytes a type of its own
    bool provisional = false;             // such a typedef was provisional
};

Shape shapeOf(const Declaration& declaration)
{
    Shape shape{declaration.form, &declaration.type, declaration.bound, nullptr, false};
    while (shape.form == Form::single && shape.type->definition && shape.type->definition->kind == Kind::definedAs) {
        const Definition& alias = *shape.type->definition;
        if (isCounted(alias)) shape.counted = &alias;
        shape.provisional = shape.provisional || alias.provisional;
        shape.form = alias.target.form;
        shape.bound = alias.target.bound;
        shape.type = &alias.target.type;
    }
    return shape;
}

// What of a unit a number type takes and gives.
struct Units {
    std::int64_t least = 0;
    std::int64_t most = 0;
    bool isFloat = false;

    bool operator==(const Units&) const = default;
};

Units unitsOf(Builtin builtin)
{
    switch (builtin) {
    case Builtin::Boolean:
    case Builtin::ShortInteger:
    case Builtin::ShortNatural: return {0, 255, false};  // also the signed one: it is zero-extended
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

// Built-in types that are one in C++.
Builtin inMemory(Builtin builtin)
{
    if (builtin == Builtin::UINT) return Builtin::LongNatural;
    return builtin == Builtin::Boolean ? Builtin::ShortNatural : builtin;
}

bool isEnumeration(const TypeRef& type)
{
    return type.definition && type.definition->kind == Kind::enumeration;
}

std::set<std::int64_t> valuesOf(const Definition& enumeration)
{
    std::set<std::int64_t> values;
    for (const Enumerator& each : enumeration.enumerators) values.insert(each.value.number);
    return values;
}

}  // namespace

Library::Library(const Program& program, bool isFolder) : program_(program), contents_(contentsOf(program))
{
    const auto& modules = program_.modules;
    knowsModules_ = isFolder || std::any_of(modules.begin(), modules.end(),
                                            [](const auto& module) { return isFlattened(module->source); });
    for (const auto& [name, definitions] : contents_) {
        for (const Definition* definition : definitions) {
            byName_.emplace(definition->name, definition);
            homes_.emplace(definition, &name);
            for (const Declaration* declaration : declarationsOf(*definition)) {
                if (declaration->type.definition) users_[declaration->type.definition].push_back(definition);
            }
        }
    }
}

const Definition* Library::find(const std::string& name) const
{
    const auto found = byName_.find(name);
    return found == byName_.end() ? nullptr : found->second;
}

Span Library::place(const std::string& module) const
{
    const auto found = contents_.find(module);
    if (found != contents_.end() && !found->second.empty()) return found->second.front()->at;
    for (const auto& each : program_.modules) {
        if (each->source.module == module || isFlattened(each->source)) return {&each->source, 1, 1, 1};
    }
    return {};
}

bool Library::reaches(const std::string& from, const std::string& to) const
{
    std::vector<const Module*> waiting;
    for (const auto& module : program_.modules) {
        if (module->source.module == from) waiting.push_back(module.get());
    }
    std::unordered_set<const Module*> seen(waiting.begin(), waiting.end());
    while (!waiting.empty()) {
        const Module* next = waiting.back();
        waiting.pop_back();
        if (next->source.module == to) return true;
        for (const Import& import : next->imports) {
            if (seen.insert(import.module).second) waiting.push_back(import.module);
        }
    }
    return false;
}

std::size_t Library::holdersOf(const Definition& type) const
{
    std::unordered_set<const Definition*> seen = {&type};
    std::vector<const Definition*> waiting = {&type};
    while (!waiting.empty() && seen.size() <= mostHolders) {
        const auto users = users_.find(waiting.back());
        waiting.pop_back();
        if (users == users_.end()) continue;
        for (const Definition* user : users->second) {
            if (seen.insert(user).second) waiting.push_back(user);
        }
    }
    return std::min(seen.size() - 1, mostHolders);
}

Pairs::Pairs(const Library& before, const Library& after)
{
    for (const auto& [module, definitions] : before.contents()) {
        for (const Definition* definition : definitions) {
            if (const Definition* same = after.find(definition->name)) pair(*definition, *same);
        }
    }
    // A type with a renamed field type is recognised once that type is.
    constexpr int mostRounds = 16;
    for (int round = 0; round < mostRounds && pairRenamed(before, after); ++round) {}
}

const Definition* Pairs::of(const Definition* before) const
{
    const auto found = pairs_.find(before);
    return found == pairs_.end() ? nullptr : found->second;
}

void Pairs::pair(const Definition& before, const Definition& after)
{
    pairs_.emplace(&before, &after);
    taken_.insert(&after);
}

std::string Pairs::typeName(const TypeRef& type, const Definition& within, bool isBefore) const
{
    if (type.definition == &within) return "itself";
    const Definition* other = isBefore ? of(type.definition) : nullptr;
    return other ? other->name : type.name;
}

// Everything of a definition but its name, in words that are equal where the content is.
std::string Pairs::content(const Definition& definition, bool isBefore) const
{
    const auto text = [&](const Declaration& declaration) {
        return std::to_string(static_cast<int>(declaration.form)) + ' ' +
               typeName(declaration.type, definition, isBefore) + ' ' +
               (definition.kind == Kind::definedAs ? "" : declaration.name) + ' ' + std::to_string(declaration.bound) +
               ';';
    };
    std::string out = std::to_string(static_cast<int>(definition.kind)) + ':';
    if (definition.kind == Kind::constant) return out + std::to_string(definition.constant.number);
    for (const Enumerator& each : definition.enumerators)
        out += each.name + '=' + std::to_string(each.value.number) + ';';
    for (const Declaration& field : definition.fields) out += text(field);
    if (definition.kind == Kind::definedAs) out += text(definition.target);
    if (definition.kind != Kind::discriminated) return out;
    out += text(definition.discriminant);
    for (const Arm& arm : definition.arms) {
        for (const Value& value : arm.cases) out += std::to_string(value.number) + ':';
        out += text(arm.declaration);
    }
    return out + (definition.defaultArm ? "default" : "");
}

// Pairs what has no partner yet, where the content leaves one choice within a module.
bool Pairs::pairRenamed(const Library& before, const Library& after)
{
    const bool comparesModules = before.knowsModules() && after.knowsModules();
    using Candidates = std::map<std::string, std::vector<const Definition*>>;
    const auto collect = [&](const Library& library, bool isBefore) {
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
    const Candidates gone = collect(before, true);
    const Candidates fresh = collect(after, false);
    bool found = false;
    for (const auto& [key, definitions] : gone) {
        const auto same = fresh.find(key);
        if (definitions.size() != 1 || same == fresh.end() || same->second.size() != 1) continue;
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

bool Types::isSame(const TypeRef& before, const TypeRef& after) const
{
    return before.builtin == after.builtin && pairs_.of(before.definition) == after.definition &&
           (before.definition == nullptr) == (after.definition == nullptr);
}

// Both are built-in types, enumerations or structures.
Difference Types::values(const TypeRef& before, const TypeRef& after, Open& open) const
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
        found.wire = unitsOf(was) != unitsOf(is);
        found.source = before.definition || after.definition || inMemory(was) != inMemory(is);
    } else {
        found.source = true;
        found.wire = !before.definition || !after.definition || before.definition->kind != after.definition->kind;
        if (!found.wire) open.emplace_back(before.definition, after.definition);
    }
    return found;
}

// Goes down through lists of lists, as long as both sides do.
Difference Types::surface(Declaration before, Declaration after, Open& open) const
{
    constexpr int deepest = 64;
    Difference found;
    for (int depth = 0; depth < deepest; ++depth) {
        if (before.form == Form::single && after.form == Form::single && isSame(before.type, after.type)) return found;
        const Shape was = shapeOf(before);
        const Shape is = shapeOf(after);
        found.provisional = found.provisional || was.provisional;
        if (was.form != is.form || was.bound != is.bound) {
            found.wire = true;
            return found;
        }
        if (pairs_.of(was.counted) != is.counted || (was.counted == nullptr) != (is.counted == nullptr)) {
            found.source = true;
        }
        switch (was.form) {
        case Form::string:
        case Form::bytes:
        case Form::opaque:
        case Form::nothing: return found;
        case Form::single: {
            const Difference deeper = values(*was.type, *is.type, open);
            return {found.wire || deeper.wire, found.source || deeper.source, found.trace || deeper.trace,
                    found.provisional || deeper.provisional};
        }
        case Form::vector:
        case Form::list:
        case Form::optional: break;
        }
        before = singleOf(*was.type);
        after = singleOf(*is.type);
    }
    found.wire = true;  // nobody looks deeper
    return found;
}

bool Types::sameUnits(const Definition& before, const Definition& after, Open& open) const
{
    const auto same = [&](const Declaration& a, const Declaration& b) { return !surface(a, b, open).wire; };
    if (before.kind == Kind::record) {
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

bool Types::sameUnits(Open& open) const
{
    constexpr std::size_t mostPairs = 10000;  // beyond, types count as different
    std::set<std::pair<const Definition*, const Definition*>> seen;
    while (!open.empty()) {
        const auto [before, after] = open.back();
        open.pop_back();
        if (!seen.emplace(before, after).second) continue;
        if (seen.size() > mostPairs || !sameUnits(*before, *after, open)) return false;
    }
    return true;
}

Difference Types::difference(const Declaration& before, const Declaration& after) const
{
    Open open;
    Difference found = surface(before, after, open);
    if (!found.wire) found.wire = !sameUnits(open);
    return found;
}

}  // namespace quorva::compiler
