// Prints descriptions of types.

#include "describe.h"

#include "documentation.h"
#include "explain/layout.h"
#include "support/text.h"
#include "table.h"

#include <quorvapixdr/codec.h>

#include <map>
#include <set>

namespace quorva::inspect {

namespace {

// "provisional: REASON", or "provisional" if the mark has no reason; empty for a settled member.
std::string markOf(const MemberDocumentation& member)
{
    if (!member.provisional) return "";
    return *member.provisional ? std::string("provisional: ") + member.provisional : "provisional";
}

std::string indented(std::string_view text)
{
    std::string lines;
    for (const std::string_view line : support::linesOf(text)) lines.append("  ").append(line) += '\n';
    return lines;
}

std::vector<std::string> namesOf(const std::vector<const Type*>& types)
{
    std::vector<std::string> names;
    for (const Type* type : types) names.emplace_back(type->name);
    return names;
}

std::string caseText(const Type& type, std::int64_t value)
{
    const Enumerator* named = enumeratorOf(discriminantOf(type), value);
    return std::to_string(value) + (named ? std::string(" ") + named->name : "");
}

// "65,535"
std::string grouped(std::uint64_t number)
{
    std::string digits = std::to_string(number);
    for (std::size_t i = digits.size(); i > 3; i -= 3) digits.insert(i - 3, 1, ',');
    return digits;
}

// "4", "4 to 44", or "4 or more" where the maximum exceeds every message.
std::string rangeText(const WireSize& size)
{
    if (size.isFixed()) return grouped(size.least);
    return grouped(size.least) + (size.most > longestMessage ? " or more" : " to " + grouped(size.most));
}

// "8..11"; empty for no bytes.
std::string bytesText(std::uint64_t first, std::uint64_t size)
{
    if (size == 0) return "";
    return std::to_string(first) + (size == 1 ? "" : ".." + std::to_string(first + size - 1));
}

std::string enumeratorsText(const Type& type)
{
    Table table("    ");
    for (const Enumerator& e : enumeratorsOf(type)) table.add({std::to_string(e.value), e.name, e.text});
    return "\n  enumerators\n" + table.text();
}

std::string fieldsText(const Type& type, const TypeFacts& facts)
{
    const auto offsets = facts.sizes.offsetsIn(type);
    Table table("  ");
    table.add({"fields", "offset", "bytes", "in memory"});
    for (std::size_t i = 0; i < type.members.size(); ++i) {
        const Member& field = type.members[i];
        const MemberDocumentation& documentation = documentationOf(type, field);
        table.add({"  " + declaration(field.use, field.name), offsets[i] ? std::to_string(*offsets[i]) : "",
                   rangeText(facts.sizes.of(field.use)), bytesText(field.offset, memorySize(field.use)),
                   documentation.text, markOf(documentation)});
    }
    return '\n' + table.text();
}

std::string armsText(const Type& type, const TypeFacts& facts)
{
    const Member& discriminant = type.members.front();
    Table table("  ");
    table.add({"arms", "by " + declaration(discriminant.use, discriminant.name), "bytes", "in memory", "",
               markOf(documentationOf(type, discriminant))});
    const auto arms = armsOf(type);
    const auto cases = casesByArm(type);
    for (std::size_t i = 0; i < arms.size(); ++i) {
        const Member& arm = arms[i];
        const MemberDocumentation& documentation = documentationOf(type, arm);
        for (const std::int64_t value : cases[i])
            table.add({"  " + caseText(type, value), declaration(arm.use, arm.name),
                       arm.use.form == Form::none ? "" : rangeText(facts.sizes.of(arm.use)),
                       bytesText(arm.offset, memorySize(arm.use)), documentation.text, markOf(documentation)});
    }
    if (type.hasDefault) table.add({"  default", "void"});
    return '\n' + table.text();
}

// "A, B, C and 9 more (--all)", in lines of up to 100 columns; `of` says what is listed.
std::string namesText(const std::string& of, const std::vector<std::string>& names, std::size_t most)
{
    if (names.empty()) return "";
    std::string text = "\n  " + of + ' ' + grouped(names.size()) + "\n", line = "   ";
    const std::size_t shown = std::min(most, names.size());
    for (std::size_t i = 0; i < shown; ++i) {
        std::string item = " ";
        item.append(names[i]).append(i + 1 < shown ? "," : "");
        if (line.size() + item.size() > 100 && line.size() > 3) {
            text += line + '\n';
            line = "   ";
        }
        line += item;
    }
    text += line;
    if (shown < names.size()) text += " and " + grouped(names.size() - shown) + " more (--all)";
    return text + '\n';
}

Json useJson(const Use& use)
{
    Json json = {{"form", formName(use.form)}};
    if (use.type) json["type"] = use.type->name;
    if (use.form == Form::fixedArray || use.form == Form::fixedOpaque) json["number"] = use.bound;
    if (use.form == Form::variableArray || use.form == Form::string || use.form == Form::variableOpaque)
        json["maximum"] = use.bound;
    return json;
}

Json mostJson(const WireSize& size)
{
    return size.most > longestMessage ? Json(nullptr) : Json(size.most);
}

// A void arm has neither name nor sizes.
Json memberJson(const Type& type, const Member& member, const TypeFacts& facts)
{
    const MemberDocumentation& documentation = documentationOf(type, member);
    const bool isVoid = member.use.form == Form::none;
    Json json = Json::object();
    if (!isVoid) json["name"] = member.name;
    json.update(useJson(member.use));
    if (!isVoid) {
        const WireSize size = facts.sizes.of(member.use);
        json["offset"] = member.offset;
        json["size"] = memorySize(member.use);
        json["leastOnWire"] = size.least;
        json["mostOnWire"] = mostJson(size);
    }
    if (*documentation.text) json["doc"] = documentation.text;
    if (documentation.provisional) json["provisional"] = documentation.provisional;
    return json;
}

Json summaryJson(const Type& type)
{
    Json json = {{"name", type.name}, {"kind", kindName(type)}};
    if (const Module* const module = moduleOf(type)) json["module"] = module->name;
    if (const char* const reason = documentationOf(type).provisional) json["provisional"] = reason;
    for (const Member* member : provisionalMembersOf(type)) json["provisionalMembers"].push_back(member->name);
    return json;
}

}  // namespace

std::string typesText(std::span<const Type* const> types)
{
    Table table("");
    for (const Type* type : types) {
        const std::size_t members = provisionalMembersOf(*type).size();
        table.add({type->name, kindName(*type), moduleName(*type),
                   documentationOf(*type).provisional ? "provisional"
                   : members > 0
                       ? std::to_string(members) + (members == 1 ? " provisional member" : " provisional members")
                       : ""});
    }
    return table.text();
}

Json typesJson(std::span<const Type* const> types)
{
    Json json = Json::array();
    for (const Type* type : types) json.push_back(summaryJson(*type));
    return json;
}

std::string descriptionText(const Type& type, const TypeFacts& facts, std::size_t mostUsers)
{
    const Documentation& documentation = documentationOf(type);
    std::string text = std::string(type.name) + "  " + kindName(type) + "  " + placeOf(type) + '\n';
    if (*documentation.text) text += indented(documentation.text);
    if (documentation.provisional)
        text += indented(std::string("Provisional: ") +
                         (*documentation.provisional ? documentation.provisional : "not agreed yet"));
    text += '\n';
    if (type.kind == TypeKind::typeDefinition) {
        const std::string mark = markOf(documentationOf(type, type.members.front()));
        text += "  is " + declaration(targetOf(type), "") + (mark.empty() ? "" : "  " + mark) + '\n';
    }
    text += "  " + rangeText(facts.sizes.of(type)) + " bytes on the wire, " + grouped(type.size) + " in memory\n";

    if (type.kind == TypeKind::enumeration) text += enumeratorsText(type);
    if (type.kind == TypeKind::structure) text += fieldsText(type, facts);
    if (type.kind == TypeKind::discriminatedUnion) text += armsText(type, facts);

    return text + namesText("used by", facts.users.direct(type), mostUsers) +
           namesText("used indirectly by", namesOf(facts.users.indirect(type)), mostUsers);
}

Json descriptionJson(const Type& type, const TypeFacts& facts)
{
    Json json = summaryJson(type);
    const Documentation& documentation = documentationOf(type);
    const WireSize size = facts.sizes.of(type);
    if (const Module* const module = moduleOf(type)) {
        json["file"] = module->file;
        json["line"] = documentation.line;
    }
    if (*documentation.text) json["doc"] = documentation.text;
    json["size"] = type.size;
    json["alignment"] = type.alignment;
    json["leastOnWire"] = size.least;
    json["mostOnWire"] = mostJson(size);
    if (type.kind == TypeKind::typeDefinition) json["target"] = useJson(targetOf(type));
    for (const Enumerator& e : enumeratorsOf(type)) {
        Json entry = {{"name", e.name}, {"value", e.value}};
        if (*e.text) entry["doc"] = e.text;
        json["enumerators"].push_back(std::move(entry));
    }
    if (type.kind == TypeKind::structure) {
        const auto offsets = facts.sizes.offsetsIn(type);
        for (std::size_t i = 0; i < type.members.size(); ++i) {
            Json field = memberJson(type, type.members[i], facts);
            if (offsets[i]) field["wireOffset"] = *offsets[i];
            json["fields"].push_back(std::move(field));
        }
    }
    if (type.kind == TypeKind::discriminatedUnion) {
        const auto arms = armsOf(type);
        const auto cases = casesByArm(type);
        json["discriminant"] = memberJson(type, type.members.front(), facts);
        for (std::size_t i = 0; i < arms.size(); ++i) {
            Json entry = {{"cases", cases[i]}};
            entry.update(memberJson(type, arms[i], facts));
            json["arms"].push_back(std::move(entry));
        }
        json["hasDefault"] = type.hasDefault;
    }
    json["usedBy"] = facts.users.direct(type);
    json["usedIndirectlyBy"] = namesOf(facts.users.indirect(type));
    return json;
}

std::span<const char* const> otherPrimitives()
{
    static constexpr const char* names[] = {"XdrEnum",   "XdrLongNatural2", "XdrVoid",   "XdrLongFloat",
                                            "XdrOpaque", "XdrOpaque2",      "XdrString", "XdrWrapString",
                                            "XdrBytes",  "XdrVector",       "XdrArray",  "XdrPointer"};
    return names;
}

std::string summaryText(std::span<const Type* const> types, std::size_t primitives)
{
    std::set<const Module*> modules;
    std::map<std::string_view, std::size_t> ofKind;
    std::size_t defined = 0, builtin = 0, nameFunctions = 0, provisional = 0, provisionalMembers = 0;
    for (const Type* type : types) {
        if (type->kind == TypeKind::builtin) {
            ++builtin;
            continue;
        }
        ++defined;
        ++ofKind[kindName(*type)];
        if (const Module* const module = moduleOf(*type)) modules.insert(module);
        nameFunctions += type->nameOf != nullptr;
        const bool isProvisional = documentationOf(*type).provisional != nullptr;
        provisional += isProvisional;
        if (!isProvisional) provisionalMembers += provisionalMembersOf(*type).size();
    }

    std::string kinds;
    for (const char* kind : kindNames)
        if (const auto found = ofKind.find(kind); found != ofKind.end())
            kinds += (kinds.empty() ? ": " : ", ") + std::to_string(found->second) + ' ' + kind;
    const auto number = [](std::size_t value) { return std::to_string(value); };
    const auto some = [](std::size_t count, const char* what) {
        return count > 0 ? ", " + std::to_string(count) + what : "";
    };
    Table table("");
    table.add({"modules", number(modules.size())});
    table.add({"types", number(defined) + kinds});
    table.add({"routines", number(defined) + " of these types" + some(builtin, " of built-in types") +
                               some(primitives, " other primitives")});
    table.add({"name functions", number(nameFunctions)});
    table.add({"layouts", number(defined - provisional) + " settled, " + number(provisional) + " provisional"});
    table.add({"members", number(provisionalMembers) + " provisional in settled types"});
    return table.text();
}

}  // namespace quorva::inspect
