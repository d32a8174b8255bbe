// Hashes all definitions in rounds. Each round uses the previous hashes of the types that a definition names, so it
// adds one level of nesting, and types that contain each other need no special care.
#include "fingerprint.h"

#include "front/structure.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quorva::compiler {

namespace {

enum class View { wire, source, trace };

constexpr std::array<View, 3> views = {View::wire, View::source, View::trace};

// The number of rounds. A change that is nested deeper shows only in the lines of the types that are nearer to it.
constexpr int levels = 32;

// FNV-1a of 64 bits.
class Hash {
public:
    Hash& add(std::string_view text)
    {
        for (const char c : text) addByte(static_cast<unsigned char>(c));
        addByte(0);
        return *this;
    }

    Hash& add(std::uint64_t number)
    {
        for (unsigned shift = 0; shift < 64; shift += 8) addByte(static_cast<unsigned char>(number >> shift));
        return *this;
    }

    std::uint64_t value() const { return state; }

private:
    void addByte(unsigned char byte) { state = (state ^ byte) * 0x100000001B3U; }

    std::uint64_t state = 0xCBF29CE484222325U;
};

// What one unit of the type holds on the wire.
std::string_view unitText(Builtin builtin)
{
    switch (builtin) {
    case Builtin::Boolean:
    case Builtin::ShortInteger:
    case Builtin::ShortNatural: return "8 bits";
    case Builtin::Integer: return "16 bits with sign";
    case Builtin::Natural: return "16 bits";
    case Builtin::LongInteger:
    case Builtin::LongNatural:
    case Builtin::UINT: return "32 bits";
    case Builtin::Float: return "float";
    case Builtin::none: break;
    }
    return "";
}

std::string_view formText(Form form)
{
    switch (form) {
    case Form::single:
    case Form::none: break;
    case Form::fixedArray: return "[]";
    case Form::variableArray: return "<>";
    case Form::optional: return "*";
    case Form::string: return "string";
    case Form::variableOpaque: return "opaque<>";
    case Form::fixedOpaque: return "opaque[]";
    }
    return "";
}

std::uint64_t number(std::int64_t value)
{
    return static_cast<std::uint64_t>(value);
}

class Fingerprints {
public:
    explicit Fingerprints(const Program& program);

    std::string lines() const;

private:
    using Hashes = std::unordered_map<const Definition*, std::uint64_t>;

    Hashes hashesOf(View view) const;
    static std::uint64_t ofType(View view, const TypeRef& type, const Hashes& previous);
    static std::uint64_t ofDeclaration(View view, const Declaration& declaration, const Hashes& previous);
    static std::uint64_t ofDefinition(View view, const Definition& definition, const Hashes& previous);
    static void addEnumerators(Hash& hash, View view, const Definition& enumeration);
    static void addFields(Hash& hash, View view, const Definition& structure, const Hashes& previous);
    static void addArms(Hash& hash, View view, const Definition& discriminatedUnion, const Hashes& previous);

    std::vector<const Definition*> types;
};

Fingerprints::Fingerprints(const Program& program)
{
    for (const auto& module : program.modules) {
        const std::vector<const Definition*> added = typesOf(*module);
        types.insert(types.end(), added.begin(), added.end());
    }
    std::sort(types.begin(), types.end(), [](const auto* a, const auto* b) { return a->name < b->name; });
}

std::uint64_t Fingerprints::ofType(View view, const TypeRef& type, const Hashes& previous)
{
    const Definition* definition = type.definition;
    if (!definition) return Hash().add(view == View::wire ? unitText(type.builtin) : type.name).value();
    if (definition->provisional) return Hash().add("provisional").value();
    if (view == View::source && isDistinctType(*definition)) return Hash().add(definition->name).value();
    return previous.at(definition);
}

std::uint64_t Fingerprints::ofDeclaration(View view, const Declaration& declaration, const Hashes& previous)
{
    if (declaration.provisional) return Hash().add("provisional").value();
    if (declaration.form == Form::single) return ofType(view, declaration.type, previous);
    Hash hash;
    hash.add(formText(declaration.form));
    if (view != View::trace) hash.add(declaration.bound);
    const bool hasElements = declaration.form == Form::fixedArray || declaration.form == Form::variableArray ||
                             declaration.form == Form::optional;
    if (hasElements) hash.add(ofType(view, declaration.type, previous));
    return hash.value();
}

void Fingerprints::addEnumerators(Hash& hash, View view, const Definition& enumeration)
{
    std::map<std::int64_t, std::string_view> names;
    for (const Enumerator& each : enumeration.enumerators) names.emplace(each.value.number, each.name);
    for (const auto& [value, name] : names) hash.add(number(value)).add(view == View::wire ? "" : name);
}

void Fingerprints::addFields(Hash& hash, View view, const Definition& structure, const Hashes& previous)
{
    std::uint64_t provisional = 0;
    for (const Declaration& field : structure.fields) {
        if (field.provisional) {
            ++provisional;
        } else {
            hash.add(view == View::wire ? "" : field.name).add(ofDeclaration(view, field, previous));
        }
    }
    hash.add(provisional);
}

void Fingerprints::addArms(Hash& hash, View view, const Definition& discriminatedUnion, const Hashes& previous)
{
    std::uint64_t provisional = 0;
    std::map<std::int64_t, const Declaration*> arms;
    for (const Arm& arm : discriminatedUnion.arms) {
        if (arm.declaration.provisional) ++provisional;
        for (const Value& value : arm.cases) {
            if (!arm.declaration.provisional) arms.emplace(value.number, &arm.declaration);
        }
    }
    const auto add = [&](const Declaration& member) {
        hash.add(view == View::wire || member.provisional ? "" : member.name);
        hash.add(ofDeclaration(view, member, previous));
    };
    if (view == View::trace) hash.add(discriminatedUnion.name);
    add(discriminatedUnion.discriminant);
    for (const auto& [value, member] : arms) {
        hash.add(number(value));
        add(*member);
    }
    hash.add(provisional);
    if (discriminatedUnion.defaultArm) add(discriminatedUnion.defaultArm->declaration);
}

std::uint64_t Fingerprints::ofDefinition(View view, const Definition& definition, const Hashes& previous)
{
    Hash hash;
    switch (definition.kind) {
    case DefinitionKind::constant: break;
    case DefinitionKind::typeDefinition: return ofDeclaration(view, definition.target, previous);
    case DefinitionKind::enumeration: addEnumerators(hash.add("enum"), view, definition); break;
    case DefinitionKind::structure: addFields(hash.add("struct"), view, definition, previous); break;
    case DefinitionKind::discriminatedUnion: addArms(hash.add("union"), view, definition, previous); break;
    }
    return hash.value();
}

Fingerprints::Hashes Fingerprints::hashesOf(View view) const
{
    Hashes hashes;
    for (const Definition* type : types) hashes[type] = 0;
    for (int level = 0; level < levels; ++level) {
        const Hashes previous = hashes;
        for (auto& [type, hash] : hashes) hash = ofDefinition(view, *type, previous);
    }
    return hashes;
}

std::string hexadecimal(std::uint64_t number)
{
    std::string digits;
    for (unsigned shift = 64; shift > 0; shift -= 4) digits += "0123456789abcdef"[(number >> (shift - 4)) & 15];
    return digits;
}

std::string Fingerprints::lines() const
{
    std::vector<Hashes> hashes;
    for (const View view : views) hashes.push_back(hashesOf(view));
    std::string out;
    for (const Definition* type : types) {
        if (type->provisional) continue;
        out += type->name;
        for (const Hashes& each : hashes) out += " " + hexadecimal(each.at(type));
        out += "\n";
    }
    return out;
}

}  // namespace

std::string fingerprint(const Program& program)
{
    return Fingerprints(program).lines();
}

}  // namespace quorva::compiler
