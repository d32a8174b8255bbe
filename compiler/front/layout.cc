// The rules of the C++ ABI for structs of numbers, pointers, arrays and unions.
#include "layout.h"

#include "structure.h"

#include <algorithm>

namespace quorva::compiler {

namespace {

std::uint64_t padded(std::uint64_t size, std::uint64_t alignment)
{
    return (size + alignment - 1) / alignment * alignment;
}

Layout asMember(Layout layout)
{
    ++layout.members;
    return layout;
}

void append(Layout& layout, const Layout& member)
{
    layout.alignment = std::max(layout.alignment, member.alignment);
    layout.size = padded(layout.size, member.alignment) + member.size;
    layout.members += member.members;
}

}  // namespace

Layout Layouts::add(const Definition& type)
{
    const Layout layout = of(type);
    known.emplace(&type, Layout{std::min(layout.size, mostBytes + 1), layout.alignment,
                                std::min(layout.members, mostMembers + 1)});
    return layout;
}

Layout Layouts::of(const TypeRef& type) const
{
    switch (type.builtin) {
    case Builtin::Boolean:
    case Builtin::ShortInteger:
    case Builtin::ShortNatural: return {1, 1};
    case Builtin::Integer:
    case Builtin::Natural: return {2, 2};
    case Builtin::LongInteger:
    case Builtin::LongNatural:
    case Builtin::UINT:
    case Builtin::Float: return {4, 4};
    case Builtin::none: break;
    }
    if (const auto found = known.find(type.definition); found != known.end()) return found->second;
    const bool isTypedef = type.definition && type.definition->kind == DefinitionKind::typeDefinition;
    return isTypedef ? of(type.definition->target) : Layout{};
}

Layout Layouts::of(const Declaration& declaration) const
{
    switch (declaration.form) {
    case Form::single: return of(declaration.type);
    case Form::fixedArray: {
        const Layout element = of(declaration.type);
        return {element.size * declaration.bound, element.alignment, element.members};
    }
    case Form::variableArray:
    case Form::variableOpaque: return {2 * address, address};
    case Form::optional:
    case Form::string: return {address, address};
    case Form::fixedOpaque: return {declaration.bound, 1};
    case Form::none: break;
    }
    return {};
}

Layout Layouts::ofArms(const Definition& discriminatedUnion) const
{
    Layout arms;
    for (const Arm& arm : discriminatedUnion.arms) {
        if (arm.declaration.form == Form::none) continue;
        const Layout held = asMember(of(arm.declaration));
        arms = {std::max(arms.size, held.size), std::max(arms.alignment, held.alignment), arms.members + held.members};
    }
    arms.size = padded(arms.size, arms.alignment);
    return arms;
}

Layout Layouts::of(const Definition& definition) const
{
    Layout layout;
    switch (definition.kind) {
    case DefinitionKind::constant: break;
    case DefinitionKind::enumeration: return {4, 4};
    case DefinitionKind::typeDefinition: return of(definition.target);
    case DefinitionKind::structure:
        for (const Declaration& field : definition.fields) append(layout, asMember(of(field)));
        break;
    case DefinitionKind::discriminatedUnion:
        append(layout, asMember(of(definition.discriminant)));
        append(layout, ofArms(definition));
        break;
    }
    layout.size = padded(layout.size, layout.alignment);
    return layout;
}

std::vector<std::uint64_t> Layouts::offsetsIn(const Definition& type) const
{
    std::vector<std::uint64_t> offsets;
    Layout before;
    for (const Declaration& field : type.fields) {
        append(before, of(field));
        offsets.push_back(before.size - of(field).size);
    }
    if (type.kind == DefinitionKind::typeDefinition) offsets.push_back(0);
    if (type.kind == DefinitionKind::discriminatedUnion) {
        const std::uint64_t armsAt = padded(of(type.discriminant).size, ofArms(type).alignment);
        offsets.push_back(0);
        for (const Arm& arm : type.arms) offsets.push_back(arm.declaration.form == Form::none ? 0 : armsAt);
    }
    return offsets;
}

Layouts layoutsOf(const std::vector<const Definition*>& types, std::uint64_t bytes)
{
    Layouts layouts(bytes);
    for (const Definition* type : declarationOrder(types))  // where a typedef may precede its target
        if (type->kind != DefinitionKind::typeDefinition) layouts.add(*type);
    return layouts;
}

}  // namespace quorva::compiler
