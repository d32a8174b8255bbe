// What the schema says about types, as text and as JSON.

#include "describe.h"

#include "layout.h"
#include "sample.h"

#include <algorithm>
#include <array>
#include <map>

namespace quorva::inspect {

using schema::Form;
using schema::Kind;
using schema::Type;
using schema::Use;

namespace {

// Rows of cells, printed in columns as wide as their widest cell.
class Table {
public:
    using Row = std::array<std::string, 4>;

    explicit Table(std::string before) : margin(std::move(before)) {}
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

// Documentation as one line, for a cell.
std::string oneLine(std::string text)
{
    std::ranges::replace(text, '\n', ' ');
    return text;
}

std::string indented(const std::string& text)
{
    std::string lines = "  ";
    for (const char c : text) {
        lines += c;
        if (c == '\n') lines += "  ";
    }
    return lines + '\n';
}

std::string origin(const Type& type)
{
    return *type.file ? std::string(type.file) + ':' + std::to_string(type.line) : "built in";
}

std::string caseText(const Type& type, std::int64_t value)
{
    const schema::Enumerator* named = enumeratorOf(discriminantOf(type), value);
    return std::to_string(value) + (named ? std::string(" ") + named->name : "");
}

std::string enumeratorsText(const Type& type)
{
    Table table("    ");
    for (const schema::Enumerator& e : type.enumerators)
        table.add({std::to_string(e.value), e.name, oneLine(e.doc), ""});
    return "\n  enumerators\n" + table.text();
}

std::string fieldsText(const Type& type)
{
    Table table("    ");
    for (const schema::Member& field : type.fields)
        table.add({declaration(field.use, field.name), oneLine(field.doc), "", ""});
    return "\n  fields\n" + table.text();
}

std::string armsText(const Type& type)
{
    Table table("    ");
    for (const schema::Arm& arm : type.arms)
        for (const std::int64_t value : arm.cases)
            table.add(
                {caseText(type, value), declaration(arm.member.use, arm.member.name), oneLine(arm.member.doc), ""});
    if (type.hasDefault) table.add({"any other", "void", "", ""});
    const schema::Member& discriminant = type.fields.front();
    return "\n  arms by " + declaration(discriminant.use, discriminant.name) + '\n' + table.text();
}

const char* formName(Form form)
{
    constexpr const char* names[] = {"single", "vector", "list", "optional", "string", "bytes", "opaque", "void"};
    return names[static_cast<std::size_t>(form)];
}

Json useJson(const Use& use)
{
    Json json = {{"form", formName(use.form)}};
    if (use.type) json["type"] = use.type->name;
    if (use.form == Form::vector || use.form == Form::opaque) json["number"] = use.bound;
    if (use.form == Form::list || use.form == Form::string || use.form == Form::bytes) json["maximum"] = use.bound;
    return json;
}

// The parts that only some have: documentation, name, offset.
Json memberJson(const schema::Member& member)
{
    Json json = Json::object();
    if (member.use.form != Form::nothing) json["name"] = member.name;
    json.update(useJson(member.use));
    if (member.use.form != Form::nothing) json["offset"] = member.offset;
    if (*member.doc) json["doc"] = member.doc;
    return json;
}

Json headJson(const Type& type)
{
    Json json = {{"name", type.name}, {"kind", kindName(type)}};
    if (*type.module) json["module"] = type.module;
    if (type.provisional) json["provisional"] = type.provisional;
    return json;
}

}  // namespace

std::string typesText(std::span<const Type* const> types)
{
    Table table("");
    for (const Type* type : types)
        table.add({type->name, kindName(*type), type->module, type->provisional ? "provisional" : ""});
    return table.text();
}

Json typesJson(std::span<const Type* const> types)
{
    Json json = Json::array();
    for (const Type* type : types) json.push_back(headJson(*type));
    return json;
}

std::string descriptionText(const Type& type, const Catalogue& catalogue)
{
    std::string text = std::string(type.name) + "  " + kindName(type) + "  " + origin(type) + '\n';
    if (*type.doc) text += indented(type.doc);
    if (type.provisional)
        text += indented(std::string("Provisional: ") + (*type.provisional ? type.provisional : "no published layout"));
    text += '\n';
    if (type.kind == Kind::definedAs) text += "  is " + declaration(type.target, "") + '\n';
    text += "  in memory " + std::to_string(type.size) + " bytes, on the wire at least " +
            std::to_string(Sampler().leastSize(type)) + '\n';

    if (type.kind == Kind::enumeration) text += enumeratorsText(type);
    if (type.kind == Kind::record) text += fieldsText(type);
    if (type.kind == Kind::discriminated) text += armsText(type);

    const auto users = catalogue.usersOf(type);
    if (!users.empty()) text += "\n  used by\n";
    for (const std::string& user : users) text += "    " + user + '\n';
    return text;
}

Json descriptionJson(const Type& type, const Catalogue& catalogue)
{
    Json json = headJson(type);
    if (*type.file) {
        json["file"] = type.file;
        json["line"] = type.line;
    }
    if (*type.doc) json["doc"] = type.doc;
    json["size"] = type.size;
    json["leastOnWire"] = Sampler().leastSize(type);
    if (type.kind == Kind::definedAs) json["target"] = useJson(type.target);
    for (const schema::Enumerator& e : type.enumerators) {
        Json entry = {{"name", e.name}, {"value", e.value}};
        if (*e.doc) entry["doc"] = e.doc;
        json["enumerators"].push_back(std::move(entry));
    }
    for (const schema::Member& field : type.fields)
        json[type.kind == Kind::discriminated ? "discriminant" : "fields"].push_back(memberJson(field));
    for (const schema::Arm& arm : type.arms) {
        Json entry = {{"cases", std::vector<std::int64_t>(arm.cases.begin(), arm.cases.end())}};
        entry.update(memberJson(arm.member));
        json["arms"].push_back(std::move(entry));
    }
    if (type.kind == Kind::discriminated) {
        json["discriminant"] = json["discriminant"].front();
        json["hasDefault"] = type.hasDefault;
    }
    json["usedBy"] = catalogue.usersOf(type);
    return json;
}

std::string summaryText()
{
    std::map<std::string_view, std::size_t> ofKind;
    std::size_t types = 0, nameFunctions = 0, provisional = 0;
    for (const schema::Module* module : schema::modules())
        for (const schema::Type* type : module->types) {
            ++types;
            ++ofKind[kindName(*type)];
            nameFunctions += type->nameOf != nullptr;
            provisional += type->provisional != nullptr;
        }

    std::string kinds;
    for (const char* kind : kindNames)
        if (const auto found = ofKind.find(kind); found != ofKind.end())
            kinds += (kinds.empty() ? "" : ", ") + std::to_string(found->second) + ' ' + kind;
    return "modules         " + std::to_string(schema::modules().size()) + "\n" +  //
           "types           " + std::to_string(types) + ": " + kinds + "\n" +     //
           "routines        " + std::to_string(types) + " of these types, " +
           std::to_string(schema::builtins().size()) + " of built-in types\n" +  //
           "name functions  " + std::to_string(nameFunctions) + "\n" +           //
           "layouts         " + std::to_string(types - provisional) + " settled, " + std::to_string(provisional) +
           " provisional\n";
}

}  // namespace quorva::inspect
