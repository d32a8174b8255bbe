// Prints descriptions of types.

#include "describe.h"

#include "documentation.h"
#include "explain/layout.h"
#include "sample.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <map>

namespace quorva::inspect {

namespace {

// Rows of cells in columns. A column is as wide as its widest cell; a column of empty cells is left out.
class Table {
public:
    using Row = std::array<std::string, 4>;

    explicit Table(std::string lineStart) : margin(std::move(lineStart)) {}
    void add(Row row) { rows.push_back(std::move(row)); }

    std::string text() const
    {
        std::array<std::size_t, 4> widths{};
        for (const Row& row : rows)
            for (std::size_t i = 0; i < row.size(); ++i) widths[i] = std::max(widths[i], row[i].size());
        std::string all;
        for (const Row& row : rows) {
            std::string line = margin;
            for (std::size_t i = 0; i < row.size(); ++i)
                if (widths[i] > 0) line += row[i] + std::string(widths[i] - row[i].size() + 2, ' ');
            line.erase(line.find_last_not_of(' ') + 1);
            all += line + '\n';
        }
        return all;
    }

private:
    std::string margin;
    std::vector<Row> rows;
};

// Line breaks become blanks, so that a cell stays on its line.
std::string oneLine(std::string text)
{
    std::ranges::replace(text, '\n', ' ');
    return text;
}

// "provisional: REASON", or "provisional" if the mark has no reason; empty for a settled member.
std::string markOf(const MemberDocumentation& member)
{
    if (!member.provisional) return "";
    return *member.provisional ? "provisional: " + oneLine(member.provisional) : "provisional";
}

std::string indented(std::string_view text)
{
    std::string lines;
    for (const std::string_view line : support::linesOf(text)) lines.append("  ").append(line) += '\n';
    return lines;
}

std::string origin(const Type& type)
{
    const Module* const module = moduleOf(type);
    return module ? std::string(module->file) + ':' + std::to_string(documentationOf(type).line) : "built in";
}

std::string caseText(const Type& type, std::int64_t value)
{
    const Enumerator* named = enumeratorOf(discriminantOf(type), value);
    return std::to_string(value) + (named ? std::string(" ") + named->name : "");
}

std::string enumeratorsText(const Type& type)
{
    Table table("    ");
    for (const Enumerator& e : enumeratorsOf(type)) table.add({std::to_string(e.value), e.name, oneLine(e.text)});
    return "\n  enumerators\n" + table.text();
}

std::string fieldsText(const Type& type)
{
    Table table("    ");
    for (const Member& field : type.members) {
        const MemberDocumentation& documentation = documentationOf(type, field);
        table.add({declaration(field.use, field.name), oneLine(documentation.text), markOf(documentation)});
    }
    return "\n  fields\n" + table.text();
}

std::string armsText(const Type& type)
{
    Table table("    ");
    for (const Member& arm : armsOf(type)) {
        const MemberDocumentation& documentation = documentationOf(type, arm);
        for (const std::int64_t value : casesOf(type, arm))
            table.add({caseText(type, value), declaration(arm.use, arm.name), oneLine(documentation.text),
                       markOf(documentation)});
    }
    if (type.hasDefault) table.add({"default", "void"});
    const Member& discriminant = type.members.front();
    const std::string mark = markOf(documentationOf(type, discriminant));
    return "\n  arms by " + declaration(discriminant.use, discriminant.name) + (mark.empty() ? "" : "  " + mark) +
           '\n' + table.text();
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

// A void arm has neither name nor offset.
Json memberJson(const Type& type, const Member& member)
{
    const MemberDocumentation& documentation = documentationOf(type, member);
    Json json = Json::object();
    if (member.use.form != Form::none) json["name"] = member.name;
    json.update(useJson(member.use));
    if (member.use.form != Form::none) json["offset"] = member.offset;
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

std::string descriptionText(const Type& type, const Catalogue& catalogue)
{
    const Documentation& documentation = documentationOf(type);
    std::string text = std::string(type.name) + "  " + kindName(type) + "  " + origin(type) + '\n';
    if (*documentation.text) text += indented(documentation.text);
    if (documentation.provisional)
        text += indented(std::string("Provisional: ") +
                         (*documentation.provisional ? documentation.provisional : "not agreed yet"));
    text += '\n';
    if (type.kind == TypeKind::typeDefinition) {
        const std::string mark = markOf(documentationOf(type, type.members.front()));
        text += "  is " + declaration(targetOf(type), "") + (mark.empty() ? "" : "  " + mark) + '\n';
    }
    text += "  " + std::to_string(type.size) + " bytes in memory, at least " +
            std::to_string(Sampler().leastSize(type)) + " on the wire\n";

    if (type.kind == TypeKind::enumeration) text += enumeratorsText(type);
    if (type.kind == TypeKind::structure) text += fieldsText(type);
    if (type.kind == TypeKind::discriminatedUnion) text += armsText(type);

    const auto users = catalogue.usersOf(type);
    if (!users.empty()) text += "\n  used by\n";
    for (const std::string& user : users) text += "    " + user + '\n';
    return text;
}

Json descriptionJson(const Type& type, const Catalogue& catalogue)
{
    Json json = summaryJson(type);
    const Documentation& documentation = documentationOf(type);
    if (const Module* const module = moduleOf(type)) {
        json["file"] = module->file;
        json["line"] = documentation.line;
    }
    if (*documentation.text) json["doc"] = documentation.text;
    json["size"] = type.size;
    json["leastOnWire"] = Sampler().leastSize(type);
    if (type.kind == TypeKind::typeDefinition) json["target"] = useJson(targetOf(type));
    for (const Enumerator& e : enumeratorsOf(type)) {
        Json entry = {{"name", e.name}, {"value", e.value}};
        if (*e.text) entry["doc"] = e.text;
        json["enumerators"].push_back(std::move(entry));
    }
    if (type.kind == TypeKind::structure)
        for (const Member& field : type.members) json["fields"].push_back(memberJson(type, field));
    if (type.kind == TypeKind::discriminatedUnion) {
        json["discriminant"] = memberJson(type, type.members.front());
        for (const Member& arm : armsOf(type)) {
            Json entry = {{"cases", casesOf(type, arm)}};
            entry.update(memberJson(type, arm));
            json["arms"].push_back(std::move(entry));
        }
        json["hasDefault"] = type.hasDefault;
    }
    json["usedBy"] = catalogue.usersOf(type);
    return json;
}

std::span<const char* const> otherPrimitives()
{
    static constexpr const char* names[] = {"XdrEnum",   "XdrLongNatural2", "XdrVoid",   "XdrLongFloat",
                                            "XdrOpaque", "XdrOpaque2",      "XdrString", "XdrWrapString",
                                            "XdrBytes",  "XdrVector",       "XdrArray",  "XdrPointer"};
    return names;
}

std::string summaryText(std::span<const Module* const> modules)
{
    std::map<std::string_view, std::size_t> ofKind;
    std::size_t nameFunctions = 0, provisional = 0, provisionalMembers = 0;
    const std::vector<const Type*> types = typesOf(modules);
    for (const Type* type : types) {
        ++ofKind[kindName(*type)];
        nameFunctions += type->nameOf != nullptr;
        const bool isProvisional = documentationOf(*type).provisional != nullptr;
        provisional += isProvisional;
        if (!isProvisional) provisionalMembers += provisionalMembersOf(*type).size();
    }

    std::string kinds;
    for (const char* kind : kindNames)
        if (const auto found = ofKind.find(kind); found != ofKind.end())
            kinds += (kinds.empty() ? "" : ", ") + std::to_string(found->second) + ' ' + kind;
    const auto number = [](std::size_t value) { return std::to_string(value); };
    Table table("");
    table.add({"modules", number(modules.size())});
    table.add({"types", number(types.size()) + ": " + kinds});
    table.add({"routines", number(types.size()) + " of these types, " + number(builtinTypes().size()) +
                               " of built-in types, " + number(otherPrimitives().size()) + " other primitives"});
    table.add({"name functions", number(nameFunctions)});
    table.add({"layouts", number(types.size() - provisional) + " settled, " + number(provisional) + " provisional"});
    table.add({"members", number(provisionalMembers) + " provisional in settled types"});
    return table.text();
}

}  // namespace quorva::inspect
