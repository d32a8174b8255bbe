// Writes the schema document and JSON Schemas.

#include "schema.h"

#include "describe.h"
#include "documentation.h"
#include "explain/layout.h"

#include <quorvapixdr/codec.h>

#include <algorithm>
#include <map>
#include <string_view>
#include <unordered_set>

namespace quorva::inspect {

namespace {

constexpr const char* dialect = "https://json-schema.org/draft/2020-12/schema";

// Pairs of digits; of a string, which cannot hold a zero byte, without 00.
constexpr const char* hexPattern = "^([0-9a-fA-F]{2})*$";
constexpr const char* hexWithoutZeroPattern = "^(0[1-9a-fA-F]|[1-9a-fA-F][0-9a-fA-F])*$";

// Doubles from here on round to an infinite float: 2^128 - 2^103.
constexpr double beyondFloat = 3.4028235677973366e38;

std::string referenceTo(std::string_view definition)
{
    return "#/$defs/" + std::string(definition);
}

// An object that has exactly this member.
Json wrapped(const char* name, Json contents)
{
    return {{"type", "object"},
            {"properties", {{name, std::move(contents)}}},
            {"required", {name}},
            {"additionalProperties", false}};
}

// The spellings of a discriminant's value: its enumerators or its truth, and the number.
void addSpellings(Json& list, const Type& discriminant, std::int64_t value)
{
    const auto enumerators = enumeratorsOf(discriminant);
    if (const Enumerator* named = enumeratorOf(discriminant, value))
        for (; named != enumerators.data() + enumerators.size() && named->value == value; ++named)
            list.push_back(named->name);
    if (discriminant.builtin == Builtin::Boolean && (value == 0 || value == 1)) list.push_back(value == 1);
    list.push_back(value);
}

// Collects definitions: each type that is referred to gets one.
class Definitions {
public:
    Json referTo(const Type& type)
    {
        if (seen.insert(&type).second) waiting.push_back(&type);
        return {{"$ref", referenceTo(type.name)}};
    }

    Json take()
    {
        for (std::size_t i = 0; i < waiting.size(); ++i) definitions[waiting[i]->name] = described(*waiting[i]);
        return std::move(definitions);
    }

private:
    Json described(const Type& type)
    {
        if (type.kind == TypeKind::foreign) return false;  // its values cannot be written as JSON
        Json schema = Json::object();
        if (const char* const text = documentationOf(type).text; *text) schema["description"] = text;
        schema.update(schemaOf(type));
        return schema;
    }

    Json schemaOf(const Type& type)
    {
        switch (type.kind) {
        case TypeKind::builtin: return builtinSchema(type);
        case TypeKind::enumeration: return enumerationSchema(type);
        case TypeKind::structure: return structSchema(type);
        case TypeKind::discriminatedUnion: return unionSchema(type);
        case TypeKind::typeDefinition: return schemaOf(targetOf(type));
        case TypeKind::foreign: break;
        }
        return Json::object();
    }

    static Json numbers(const Type& type)
    {
        const Range range = rangeOf(type);
        return {{"type", "integer"}, {"minimum", range.least}, {"maximum", range.most}};
    }

    static Json builtinSchema(const Type& type)
    {
        if (type.builtin == Builtin::Float) {
            Json bits = wrapped("bits", {{"type", "string"}, {"pattern", "^[0-9a-fA-F]{8}$"}});
            Json number = {{"type", "number"}, {"exclusiveMinimum", -beyondFloat}, {"exclusiveMaximum", beyondFloat}};
            return {{"anyOf", {std::move(number), std::move(bits)}}};
        }
        Json schema = numbers(type);
        if (type.builtin == Builtin::Boolean) schema["type"] = {"boolean", "integer"};
        return schema;
    }

    static Json enumerationSchema(const Type& type)
    {
        Json names = Json::array();
        for (const Enumerator& e : enumeratorsOf(type)) names.push_back(e.name);
        return {{"anyOf", {{{"enum", std::move(names)}}, numbers(type)}}};
    }

    Json structSchema(const Type& type)
    {
        Json properties = Json::object(), required = Json::array();
        for (const Member& field : type.members) {
            properties[field.name] = memberSchema(type, field);
            required.push_back(field.name);
        }
        return {{"type", "object"},
                {"properties", std::move(properties)},
                {"required", std::move(required)},
                {"additionalProperties", false}};
    }

    // One condition for each arm with a member, and one for all other values of the discriminant.
    Json unionSchema(const Type& type)
    {
        const Member& discriminant = type.members.front();
        const auto arms = armsOf(type);
        const auto cases = casesByArm(type);
        Json all = Json::array(), withMember = Json::array(), conditions = Json::array();
        for (std::size_t i = 0; i < arms.size(); ++i) {
            Json spellings = Json::array();
            for (const std::int64_t value : cases[i]) addSpellings(spellings, discriminantOf(type), value);
            all.insert(all.end(), spellings.begin(), spellings.end());
            if (arms[i].use.form == Form::none) continue;
            withMember.insert(withMember.end(), spellings.begin(), spellings.end());
            conditions.push_back(
                {{"if", isAmong(discriminant, {{"enum", std::move(spellings)}})},
                 {"then",
                  {{"properties", {{discriminant.name, true}, {arms[i].name, memberSchema(type, arms[i])}}},
                   {"required", {arms[i].name}},
                   {"additionalProperties", false}}}});
        }
        conditions.push_back(
            {{"if", isAmong(discriminant, {{"not", {{"enum", std::move(withMember)}}}})},
             {"then", {{"properties", {{discriminant.name, true}}}, {"additionalProperties", false}}}});
        Json chosen = type.hasDefault ? referTo(*discriminant.use.type) : Json{{"enum", std::move(all)}};
        return {{"type", "object"},
                {"properties", {{discriminant.name, std::move(chosen)}}},
                {"required", {discriminant.name}},
                {"allOf", std::move(conditions)}};
    }

    static Json isAmong(const Member& discriminant, Json values)
    {
        return {{"properties", {{discriminant.name, std::move(values)}}}, {"required", {discriminant.name}}};
    }

    Json memberSchema(const Type& type, const Member& member)
    {
        Json schema = schemaOf(member.use);
        if (const char* const text = documentationOf(type, member).text; *text) schema["description"] = text;
        return schema;
    }

    Json schemaOf(const Use& use)
    {
        switch (use.form) {
        case Form::single: return referTo(*use.type);
        case Form::fixedArray:
            return {{"type", "array"}, {"items", referTo(*use.type)}, {"minItems", use.bound}, {"maxItems", use.bound}};
        case Form::variableArray: return {{"type", "array"}, {"items", referTo(*use.type)}, {"maxItems", use.bound}};
        case Form::optional: return {{"anyOf", {{{"type", "null"}}, referTo(*use.type)}}};
        case Form::string: return bytes("string-", stringSchema, use.bound);
        case Form::variableOpaque: return bytes("opaque-up-to-", variableOpaqueSchema, use.bound);
        case Form::fixedOpaque: return bytes("opaque-", fixedOpaqueSchema, use.bound);
        case Form::none: break;
        }
        return Json::object();
    }

    // Refers to the definition of this length, whose name has a hyphen, which names of types have not.
    Json bytes(const char* prefix, Json (*schema)(std::uint32_t), std::uint32_t bound)
    {
        const std::string name = prefix + std::to_string(bound);
        if (lengths.insert(name).second) definitions[name] = schema(bound);
        return {{"$ref", referenceTo(name)}};
    }

    static Json stringSchema(std::uint32_t bound)
    {
        const Json text = {{"type", "string"}, {"maxLength", bound}, {"not", {{"pattern", "\\u0000"}}}};
        Json hex = {{"type", "string"}, {"pattern", hexWithoutZeroPattern}, {"maxLength", std::uint64_t{2} * bound}};
        return {{"anyOf", {{{"type", "null"}}, text, wrapped("hex", std::move(hex)), wrapped("text", text)}}};
    }

    static Json variableOpaqueSchema(std::uint32_t bound) { return opaqueSchema(0, bound); }
    static Json fixedOpaqueSchema(std::uint32_t bound) { return opaqueSchema(bound, bound); }

    static Json opaqueSchema(std::uint64_t least, std::uint64_t most)
    {
        Json hex = {{"type", "string"}, {"pattern", hexPattern}, {"minLength", 2 * least}, {"maxLength", 2 * most}};
        // A character has up to four bytes, but one in ASCII.
        Json text = {{"type", "string"}, {"minLength", (least + 3) / 4}, {"maxLength", most}};
        if (least > 0) text.update({{"if", {{"pattern", "^[\\u0000-\\u007f]*$"}}}, {"then", {{"minLength", least}}}});
        return {{"anyOf", {wrapped("hex", std::move(hex)), wrapped("text", std::move(text))}}};
    }

    std::unordered_set<const Type*> seen;
    std::vector<const Type*> waiting;
    std::unordered_set<std::string> lengths;
    Json definitions = Json::object();
};

template <class Remote>
Json remoteJson(const Remote& remote)
{
    Json json = {{"name", remote.name}, {"number", remote.number}};
    if (*remote.text) json["doc"] = remote.text;
    return json;
}

Json programJson(const RemoteProgram& program)
{
    Json json = remoteJson(program);
    json["line"] = program.line;
    for (const RemoteVersion& version : program.versions) {
        Json entry = remoteJson(version);
        for (const RemoteProcedure& procedure : version.procedures) {
            Json last = remoteJson(procedure);
            last["argument"] = procedure.argument ? Json(procedure.argument->name) : Json();
            last["result"] = procedure.result ? Json(procedure.result->name) : Json();
            entry["procedures"].push_back(std::move(last));
        }
        json["versions"].push_back(std::move(entry));
    }
    return json;
}

}  // namespace

Json schemaJson(const Catalogue& catalogue)
{
    const TypeFacts facts(catalogue);
    Json types = Json::array();
    for (const Type* type : catalogue.types()) types.push_back(descriptionJson(*type, facts));
    std::map<std::string_view, const Module*> modules;
    for (const Module* module : knownModules()) modules.emplace(module->name, module);
    Json listed = Json::array();
    for (const auto& [name, module] : modules) {
        Json entry = {{"name", name}, {"file", module->file}};
        if (*module->text) entry["doc"] = module->text;
        for (const RemoteProgram& program : module->programs) entry["programs"].push_back(programJson(program));
        listed.push_back(std::move(entry));
    }
    return {{"format", 1},
            {"longestMessage", longestMessage},
            {"pointerSize", sizeof(void*)},
            {"modules", std::move(listed)},
            {"types", std::move(types)}};
}

Json jsonSchemaOf(const Type& type)
{
    Definitions definitions;
    Json schema = {{"$schema", dialect}, {"title", type.name}};
    schema.update(definitions.referTo(type));
    schema["$defs"] = definitions.take();
    return schema;
}

Json jsonSchemaOf(std::span<const Type* const> types)
{
    Definitions definitions;
    for (const Type* type : types) definitions.referTo(*type);
    return {{"$schema", dialect}, {"$defs", definitions.take()}};
}

}  // namespace quorva::inspect
