// Prints definitions in the interface language, one member a line, so that line-based tools show the differences.
#include "flatten.h"

#include "support/text.h"

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
    case Form::fixedArray: return type + " " + name + "[" + bound(declaration) + "]";
    case Form::variableArray: return type + " " + name + "<" + bound(declaration) + ">";
    case Form::optional: return type + " *" + name;
    case Form::string: return "string " + name + "<" + bound(declaration) + ">";
    case Form::variableOpaque: return "opaque " + name + "<" + bound(declaration) + ">";
    case Form::fixedOpaque: return "opaque " + name + "[" + bound(declaration) + "]";
    case Form::none: break;
    }
    return "void";
}

// The provisional mark as a comment; empty if there is none.
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

// The mark of a discriminant is a // comment, so the line ends after it.
std::string unionHead(const Definition& discriminatedUnion)
{
    const Declaration& discriminant = discriminatedUnion.discriminant;
    const std::string code = "union " + discriminatedUnion.name + " switch (" + text(discriminant);
    return code + (discriminant.provisional ? "  " + mark(discriminant.provisional) + "\n" : "") + ") {\n";
}

std::string body(const Definition& definition)
{
    std::string out;
    switch (definition.kind) {
    case DefinitionKind::constant: return "const " + definition.name + " = " + number(definition.constant) + ";\n";
    case DefinitionKind::enumeration:
        for (const Enumerator& each : definition.enumerators) {
            out += (out.empty() ? "    " : ",\n    ") + each.name + " = " + number(each.value);
        }
        return "enum " + definition.name + " {\n" + out + "\n};\n";
    case DefinitionKind::structure:
        for (const Declaration& field : definition.fields) out += member("", field);
        return "struct " + definition.name + " {\n" + out + "};\n";
    case DefinitionKind::discriminatedUnion:
        for (const Arm& each : definition.arms) out += arm(each);
        if (definition.defaultArm) out += member("default: ", definition.defaultArm->declaration);
        return unionHead(definition) + out + "};\n";
    case DefinitionKind::typeDefinition: break;
    }
    return "typedef " + text(definition.target) + ";\n";
}

std::string body(const RemoteProgram& program)
{
    const auto name = [](const std::optional<TypeRef>& type) { return type ? type->name : "void"; };
    std::string out = "program " + program.name + " {\n";
    for (const RemoteVersion& version : program.versions) {
        out += "    version " + version.name + " {\n";
        for (const RemoteProcedure& each : version.procedures)
            out += "        " + name(each.result) + " " + each.name + "(" + name(each.argument) +
                   ") = " + number(each.number) + ";\n";
        out += "    } = " + number(version.number) + ";\n";
    }
    return out + "} = " + number(program.number) + ";\n";
}

// The modules of a flattened file, each with the line on which it begins.
std::vector<std::pair<unsigned, std::string>> moduleLines(std::string_view text)
{
    std::vector<std::pair<unsigned, std::string>> lines;
    unsigned number = 0;
    for (std::string_view line : support::linesOf(text)) {
        ++number;
        if (!line.starts_with(moduleMark)) continue;
        line.remove_prefix(moduleMark.size());
        lines.emplace_back(number, line.substr(0, line.find_last_not_of(" \t\r") + 1));
    }
    return lines;
}

// The modules from which a file was made: for a flattened file several, for any other the file's own.
class Origins {
public:
    explicit Origins(const Source& source)
    {
        if (isFlattened(source)) starts = moduleLines(source.text);
        if (starts.empty()) starts.emplace_back(0, source.module);
    }

    const std::vector<std::pair<unsigned, std::string>>& modules() const { return starts; }

    // The module of a definition. Each call must ask for the same place or a later one.
    const std::string& moduleAt(const Span& at)
    {
        while (current + 1 < starts.size() && starts[current + 1].first < at.line) ++current;
        return starts[current].second;
    }

private:
    std::vector<std::pair<unsigned, std::string>> starts;
    std::size_t current = 0;
};

}  // namespace

bool isFlattened(const Source& source)
{
    return source.text.starts_with(head);
}

DefinitionsByModule definitionsByModule(const Program& program)
{
    DefinitionsByModule contents;
    for (const auto& module : program.modules) {
        Origins origins(module->source);
        for (const auto& each : origins.modules()) contents[each.second];
        for (const auto& definition : module->definitions)
            contents[origins.moduleAt(definition->at)].push_back(definition.get());
    }
    return contents;
}

std::string flatten(const Program& program)
{
    std::map<std::string, std::string> programs;  // by module
    for (const auto& module : program.modules) {
        Origins origins(module->source);
        for (const RemoteProgram& each : module->programs) programs[origins.moduleAt(each.at)] += "\n" + body(each);
    }
    std::string out = std::string(head) + "\n";
    for (const auto& [module, definitions] : definitionsByModule(program)) {
        out.append("\n").append(moduleMark).append(module).append("\n");
        for (const Definition* definition : definitions) {
            out += "\n" + mark(definition->provisional) + (definition->provisional ? "\n" : "") + body(*definition);
        }
        out += programs[module];
    }
    return out;
}

}  // namespace quorva::compiler
