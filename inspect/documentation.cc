// Finds documentation by the description of a type.

#include "documentation.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string_view>
#include <unordered_map>
#include <unordered_set>

namespace quorva::inspect {

namespace {

constexpr Documentation builtinTexts[] = {
    {.type = &types::Boolean, .text = "True or false, in one byte of memory."},
    {.type = &types::ShortInteger, .text = "8 bits, signed. On the wire and in the trace it has no sign."},
    {.type = &types::ShortNatural, .text = "8 bits, unsigned."},
    {.type = &types::Integer, .text = "16 bits, signed."},
    {.type = &types::Natural, .text = "16 bits, unsigned."},
    {.type = &types::LongInteger, .text = "32 bits, signed."},
    {.type = &types::LongNatural, .text = "32 bits, unsigned."},
    {.type = &types::UINT, .text = "32 bits, unsigned. The trace shows it as if signed."},
    {.type = &types::Float, .text = "32 bits, IEEE 754 single precision."},
};

struct Entry {
    const Module* module;
    const Documentation* documentation;
};
using Entries = std::unordered_map<const Type*, Entry>;

void add(Entries& entries, std::span<const Module* const> modules)
{
    for (const Module* module : modules)
        for (const Documentation& each : module->types) entries.emplace(each.type, Entry{module, &each});
}

Entries& known()
{
    static Entries entries = [] {
        Entries all;
        for (const Documentation& each : builtinTexts) all.emplace(each.type, Entry{nullptr, &each});
        add(all, modules());
        return all;
    }();
    return entries;
}

std::vector<const Module*>& addedModules()
{
    static std::vector<const Module*> added;
    return added;
}

Entry entryOf(const Type& type)
{
    static constexpr Documentation none;
    const auto found = known().find(&type);
    return found == known().end() ? Entry{nullptr, &none} : found->second;
}

}  // namespace

std::vector<const Type*> typesOf(std::span<const Module* const> modules)
{
    std::vector<const Type*> types;
    for (const Module* module : modules)
        for (const Documentation& each : module->types) types.push_back(each.type);
    return types;
}

void addModules(std::span<const Module* const> further)
{
    add(known(), further);
    addedModules().insert(addedModules().end(), further.begin(), further.end());
}

void removeModules(std::span<const Module* const> added)
{
    for (const Module* module : added) {
        std::erase(addedModules(), module);
        for (const Documentation& each : module->types) known().erase(each.type);
    }
}

std::vector<const Module*> knownModules()
{
    std::vector<const Module*> all(modules().begin(), modules().end());
    all.insert(all.end(), addedModules().begin(), addedModules().end());
    std::unordered_set<std::string_view> names;
    std::vector<const Module*> known;
    std::copy_if(all.rbegin(), all.rend(), std::back_inserter(known),
                 [&](const Module* module) { return names.insert(module->name).second; });
    std::ranges::reverse(known);
    return known;
}

const Documentation& documentationOf(const Type& type)
{
    return *entryOf(type).documentation;
}

const Module* moduleOf(const Type& type)
{
    return entryOf(type).module;
}

const char* moduleName(const Type& type)
{
    const Module* const module = moduleOf(type);
    return module ? module->name : "";
}

const MemberDocumentation& documentationOf(const Type& type, const Member& member)
{
    static constexpr MemberDocumentation none;
    const auto members = documentationOf(type).members;
    return members.empty() ? none : members[static_cast<std::size_t>(&member - type.members.data())];
}

std::span<const Enumerator> enumeratorsOf(const Type& type)
{
    if (type.kind != TypeKind::enumeration) return {};
    return documentationOf(type).enumerators;
}

const Enumerator* enumeratorOf(const Type& enumeration, std::int64_t value)
{
    const auto enumerators = enumeratorsOf(enumeration);
    const auto found =
        std::ranges::lower_bound(enumerators, value, {}, [](const Enumerator& e) { return std::int64_t{e.value}; });
    return found != enumerators.end() && found->value == value ? &*found : nullptr;
}

std::vector<const Member*> provisionalMembersOf(const Type& type)
{
    std::vector<const Member*> provisional;
    for (const Member& member : type.members)
        if (documentationOf(type, member).provisional) provisional.push_back(&member);
    return provisional;
}

bool isProvisional(const Type& type)
{
    return documentationOf(type).provisional || !provisionalMembersOf(type).empty();
}

}  // namespace quorva::inspect

std::span<const quorva::Type* const> quorva::builtinTypes()
{
    static constexpr auto all = [] {
        std::array<const Type*, std::size(inspect::builtinTexts)> types{};
        for (std::size_t i = 0; i < types.size(); ++i) types[i] = inspect::builtinTexts[i].type;
        return types;
    }();
    return all;
}
