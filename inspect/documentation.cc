// Finds documentation by the description of a type.

#include "documentation.h"

#include "explain/layout.h"

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
struct Known {
    std::unordered_map<const Type*, Entry> types;
    std::unordered_multimap<std::string_view, const Documentation*> enumerations;  // by name

    void add(const Module& module)
    {
        for (const Documentation& each : module.types) {
            types.emplace(each.type, Entry{&module, &each});
            if (each.type->kind == TypeKind::enumeration) enumerations.emplace(each.type->name, &each);
        }
    }

    void remove(const Module& module)
    {
        for (const Documentation& each : module.types) {
            types.erase(each.type);
            const auto [first, last] = enumerations.equal_range(each.type->name);
            const auto found = std::find_if(first, last, [&](const auto& named) { return named.second == &each; });
            if (found != last) enumerations.erase(found);
        }
    }
};

Known& known()
{
    static Known all = [] {
        Known made;
        for (const Documentation& each : builtinTexts) made.types.emplace(each.type, Entry{nullptr, &each});
        for (const Module* module : modules()) made.add(*module);
        return made;
    }();
    return all;
}

std::vector<const Module*>& addedModules()
{
    static std::vector<const Module*> added;
    return added;
}

Entry entryOf(const Type& type)
{
    static constexpr Documentation none;
    const auto found = known().types.find(&type);
    return found == known().types.end() ? Entry{nullptr, &none} : found->second;
}

// True if the enumeration gives each of the enumerators its name.
bool hasNames(const Type& enumeration, std::span<const Enumerator> enumerators)
{
    return std::ranges::all_of(enumerators, [&](const Enumerator& each) {
        const char* const name = enumeratorName(enumeration, each.value);
        return name && std::string_view(name) == each.name;
    });
}

}  // namespace

std::vector<const Type*> typesOf(std::span<const Module* const> modules)
{
    std::vector<const Type*> types;
    for (const Module* module : modules)
        for (const Documentation& each : module->types) types.push_back(each.type);
    return types;
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
    if (const Documentation& documentation = documentationOf(type); documentation.type)
        return documentation.enumerators;
    const auto [first, last] = known().enumerations.equal_range(type.name);
    const auto found =
        std::find_if(first, last, [&](const auto& named) { return hasNames(type, named.second->enumerators); });
    return found == last ? std::span<const Enumerator>() : found->second->enumerators;
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

void quorva::addModules(std::span<const Module* const> further)
{
    for (const Module* module : further) inspect::known().add(*module);
    inspect::addedModules().insert(inspect::addedModules().end(), further.begin(), further.end());
}

void quorva::removeModules(std::span<const Module* const> added)
{
    for (const Module* module : added) {
        std::erase(inspect::addedModules(), module);
        inspect::known().remove(*module);
    }
}

std::span<const quorva::Type* const> quorva::builtinTypes()
{
    static constexpr auto all = [] {
        std::array<const Type*, std::size(inspect::builtinTexts)> types{};
        for (std::size_t i = 0; i < types.size(); ++i) types[i] = inspect::builtinTexts[i].type;
        return types;
    }();
    return all;
}
