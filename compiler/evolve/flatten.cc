// Prints definitions in the interface language, one member a line, so that differences show line by line.
#include "flatten.h"

#include <iterator>
#include <optional>
#include <string_view>
#include <utility>

namespace quorva::compiler {

namespace {

constexpr std::string_view head = "// Made by 'quorvaxdrc flatten'. Change the interface files, not this one.";
constexpr std::string_view moduleMark = "// module ";

std::string number(const Value& value)
{
    return value.isName ? value.text : std::to_string(value.number);
}

std::string bound(const Declaration& declaration)
{
    return declaration.written ? number(*declaration.written) : "";
}

std::string text(const Declaration& declaration)
{
    const std::string& type = declaration.type.name;
    const std::string& name = declaration.name;
    switch (declaration.form) {
    case Form::single: return type + " " + name;
    case Form::vector: return type + " " + name + "[" + bound(declaration) + "]";
    case Form::list: return type + " " + name + "<" + bound(declaration) + ">";
    case Form::optional: return type + " *" + name;
    case Form::string: return "string " + name + "<" + bound(declaration) + ">";
    case Form::bytes: return "opaque " + name + "<" + bound(declaration) + ">";
    case Form::opaque: return "opaque " + name + "[" + bound(declaration) + "]";
    case Form::nothing: break;
    }
    return "void";
}

// The provisional mark as a comment, or nothing.
std::string mark(const std::optional<std::string>& provisional)
{
    if (!provisional) return "";
    return "// @provisional" + (provisional->empty() ? "" : " " + *provisional);
}

std::string member(const std::string& labels, const Declaration& declaration)
{
    const std::string space = declaration.provisional ? "  " : "";
    return "    " + labels + text(declaration) + ";" + space + mark(declaration.provisional) + "\n";
}

std::string arm(const Arm& arm)
{
    std::string labels;
    for (const Value& value : arm.cases) labels += "case " + number(value) + ": ";
    return member(labels, arm.declaration);
}

// The mark of a discriminant takes the rest of its line.
std::string unionHead(const Definition& discriminated)
{
    const Declaration& discriminant = discriminated.discriminant;
    const std::string code = "union " + discriminated.name + " switch (" + text(discriminant);
    return code + (discriminant.provisional ? "  " + mark(discriminant.provisional) + "\n" : "") + ") {\n";
}

std::string body(const Definition& definition)
{
    std::string out;
    switch (definition.kind) {
    case Kind::constant: return "const " + definition.name + " = " + number(definition.constant) + ";\n";
    case Kind::enumeration:
        for (const Enumerator& each : definition.enumerators) {
            out += (out.empty() ? "    " : ",\n    ") + each.name + " = " + number(each.value);
        }
        return "enum " + definition.name + " {\n" + out + "\n};\n";
    case Kind::record:
        for (const Declaration& field : definition.fields) out += member("", field);
        return "struct " + definition.name + " {\n" + out + "};\n";
    case Kind::discriminated:
        for (const Arm& each : definition.arms) out += arm(each);
        if (definition.defaultArm) out += member("default: ", definition.defaultArm->declaration);
        return unionHead(definition) + out + "};\n";
    case Kind::definedAs: break;
    }
    return "typedef " + text(definition.target) + ";\n";
}

// The modules of a flattened file and the lines at which they begin.
std::vector<std::pair<unsigned, std::string>> moduleLines(std::string_view text)
{
    std::vector<std::pair<unsigned, std::string>> lines;
    for (unsigned number = 1; !text.empty(); ++number) {
        const auto end = text.find('\n');
        std::string_view line = text.substr(0, end);
        if (line.starts_with(moduleMark)) {
            line.remove_prefix(moduleMark.size());
            lines.emplace_back(number, line.substr(0, line.find_last_not_of(" \t\r") + 1));
        }
        text.remove_prefix(end == std::string_view::npos ? text.size() : end + 1);
    }
    return lines;
}

}  // namespace

bool isFlattened(const Source& source)
{
    return source.text.starts_with(head);
}

Contents contentsOf(const Program& program)
{
    Contents contents;
    for (const auto& module : program.modules) {
        const Source& source = module->source;
        std::vector<std::pair<unsigned, std::string>> starts;
        if (isFlattened(source)) starts = moduleLines(source.text);
        if (starts.empty()) starts.emplace_back(0, source.module);

        auto start = starts.begin();
        for (const auto& each : starts) contents[each.second];
        for (const auto& definition : module->definitions) {
            while (std::next(start) != starts.end() && std::next(start)->first < definition->at.line) ++start;
            contents[start->second].push_back(definition.get());
        }
    }
    return contents;
}

std::string flatten(const Program& program)
{
    std::string out = std::string(head) + "\n";
    for (const auto& [module, definitions] : contentsOf(program)) {
        out.append("\n").append(moduleMark).append(module).append("\n");
        for (const Definition* definition : definitions) {
            out += "\n" + mark(definition->provisional) + (definition->provisional ? "\n" : "") + body(*definition);
        }
    }
    return out;
}

}  // namespace quorva::compiler
