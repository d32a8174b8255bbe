// Derives the plan of each type from the plans of the types that it contains.
#include "plan.h"

#include "front/resolve.h"
#include "front/structure.h"

#include <utility>

namespace quorva::compiler {

namespace {

constexpr std::uint64_t unit = 4;           // bytes
constexpr std::uint64_t mostBytes = 65535;  // of a message; a larger type cannot be one run
constexpr std::size_t mostInlineRuns = 3;
constexpr std::uint64_t mostInlineBytes = 16 * unit;

// True if a generated loop can code the elements one by one.
bool isLoopable(const ValuePlan& element)
{
    switch (element.coding) {
    case Coding::function:
    case Coding::foreign:
    case Coding::string: return true;
    default: return element.size != 0;
    }
}

}  // namespace

bool hasFunctions(const Definition& definition)
{
    return definition.kind == DefinitionKind::structure || definition.kind == DefinitionKind::discriminatedUnion ||
           isCountedStruct(definition);
}

Plans::Plans(const Module& module)
{
    std::unordered_set<const Module*> seen;
    add(module, module, seen);
}

void Plans::add(const Module& module, const Module& user, std::unordered_set<const Module*>& seen)
{
    if (!seen.insert(&module).second) return;
    for (const Import& import : module.imports)
        if (import.module) add(*import.module, user, seen);
    if (&module != &user && !module.requested) foreign.insert(&module.source);
    for (const Definition* definition : declarationOrder(typesOf(module)))
        if (hasFunctions(*definition)) of(*definition);
}

TypePlan Plans::of(const Definition& definition)
{
    if (const auto known = typePlans.find(&definition); known != typePlans.end()) return known->second;
    const TypePlan plan = definition.kind == DefinitionKind::structure
                              ? structure(definition)
                              : TypePlan{.hasFunctions = true, .owns = true, .isInline = isCountedStruct(definition)};
    typePlans.emplace(&definition, plan);
    return plan;
}

// Types are planned after the types that they refer to. A pointee without a plan therefore refers back to the type that
// is being planned, also through typedefs of arrays and optionals, so its size varies and it owns memory.
ValuePlan Plans::pointee(const TypeRef& type)
{
    const Definition* named = type.definition;
    while (named && named->kind == DefinitionKind::typeDefinition && !hasFunctions(*named))
        named = named->target.type.definition;
    if (!named || !hasFunctions(*named)) return valuePlan(type);
    const bool isBack = typePlans.try_emplace(named, TypePlan{.hasFunctions = true, .owns = true}).second;
    ValuePlan plan = valuePlan(type);
    if (isBack) typePlans.erase(named);
    return plan;
}

ValuePlan Plans::valuePlan(const TypeRef& type)
{
    if (!type.definition) {
        const bool isFloat = type.builtin == Builtin::Float;
        const bool fillsUnit = type.builtin == Builtin::LongInteger || type.builtin == Builtin::LongNatural ||
                               type.builtin == Builtin::UINT;
        return {.coding = Coding::number, .size = unit, .owns = isFloat, .fillsUnit = fillsUnit, .isFloat = isFloat};
    }
    const Definition& definition = *type.definition;
    if (definition.kind == DefinitionKind::enumeration)
        return {.coding = Coding::number, .size = unit, .fillsUnit = true};
    if (!hasFunctions(definition)) return valuePlan(definition.target);
    if (isForeign(definition)) return {.coding = Coding::foreign, .type = &definition, .owns = true};
    const TypePlan plan = of(definition);
    return {.coding = plan.size != 0 ? Coding::fixedStruct : Coding::function,
            .type = &definition,
            .size = plan.size,
            .owns = plan.owns};
}

ValuePlan Plans::array(ValuePlan element, std::uint32_t count) const
{
    if (!isLoopable(element)) return {.coding = Coding::interpreted, .owns = true};
    ValuePlan all = {.coding = Coding::fixedArray, .size = element.size * count, .owns = element.owns, .bound = count};
    if (all.size > mostBytes) return {.coding = Coding::interpreted, .owns = true};
    all.element.push_back(std::move(element));
    return all;
}

ValuePlan Plans::valuePlan(const Declaration& declaration)
{
    const std::uint32_t bound = declaration.bound;
    switch (declaration.form) {
    case Form::single: return valuePlan(declaration.type);
    case Form::fixedArray: return array(valuePlan(declaration.type), bound);
    case Form::fixedOpaque: {
        const std::uint64_t size = (std::uint64_t{bound} + 3) / unit * unit;
        if (size > mostBytes) return {.coding = Coding::interpreted};
        return {.coding = Coding::fixedOpaque, .size = size, .bound = bound};
    }
    case Form::string: return {.coding = Coding::string, .owns = true, .bound = bound};
    case Form::variableOpaque: return {.coding = Coding::variableOpaque, .owns = true, .bound = bound};
    case Form::variableArray:
    case Form::optional: {
        ValuePlan element = pointee(declaration.type);
        if (!isLoopable(element)) return {.coding = Coding::interpreted, .owns = true};
        const Coding coding = declaration.form == Form::variableArray ? Coding::variableArray : Coding::optional;
        ValuePlan all = {.coding = coding, .owns = true, .bound = bound};
        all.element.push_back(std::move(element));
        return all;
    }
    case Form::none: break;
    }
    return {};
}

TypePlan Plans::structure(const Definition& definition)
{
    TypePlan plan = {.hasFunctions = true};
    bool varies = false;
    for (const Declaration& field : definition.fields) {
        const ValuePlan each = valuePlan(field);
        plan.size += each.size;
        plan.owns = plan.owns || each.owns;
        varies = varies || each.size == 0;
    }
    if (varies || plan.size > mostBytes) plan.size = 0;
    plan.isInline = plan.size != 0 ? plan.size <= mostInlineBytes : runsOf(definition).size() <= mostInlineRuns;
    return plan;
}

std::vector<Run> Plans::runsOf(const Definition& structure)
{
    std::vector<Run> runs;
    for (std::size_t at = 0; at < structure.fields.size(); ++at) {
        const std::uint64_t size = valuePlan(structure.fields[at]).size;
        const bool joins = size != 0 && !runs.empty() && runs.back().size != 0 && runs.back().size + size <= mostBytes;
        if (joins) {
            ++runs.back().count;
            runs.back().size += size;
        } else {
            runs.push_back({at, 1, size});
        }
    }
    return runs;
}

}  // namespace quorva::compiler
