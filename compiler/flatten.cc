// Prints definitions in the interface language, one member a line, so that differences show line by line.
#include "flatten.h"

#include <algorithm>
#include <vector>

namespace quorva::compiler {

namespace {

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
        case Form::single: return type + " " + name + ";\n";
        case Form::vector: return type + " " + name + "[" + bound(declaration) + "];\n";
        case Form::list: return type + " " + name + "<" + bound(declaration) + ">;\n";
        case Form::optional: return type + " *" + name + ";\n";
        case Form::string: return "string " + name + "<" + bound(declaration) + ">;\n";
        case Form::bytes: return "opaque " + name + "<" + bound(declaration) + ">;\n";
        case Form::opaque: return "opaque " + name + "[" + bound(declaration) + "];\n";
        case Form::nothing: return "void;\n";
    }
    return "";
}

std::string arm(const Arm& arm)
{
    std::string out = "    ";
    for (const Value& value : arm.cases) out += "case " + number(value) + ": ";
    return out + text(arm.declaration);
}

std::string body(const Definition& definition)
{
    std::string out;
    switch (definition.kind) {
        case Kind::constant: return "const " + definition.name + " = " + number(definition.constant) + ";\n";
        case Kind::definedAs: return "typedef " + text(definition.target);
        case Kind::enumeration:
            for (const Enumerator& each : definition.enumerators) {
                out += (out.empty() ? "    " : ",\n    ") + each.name + " = " + number(each.value);
            }
            return "enum " + definition.name + " {\n" + out + "\n};\n";
        case Kind::record:
            for (const Declaration& field : definition.fields) out += "    " + text(field);
            return "struct " + definition.name + " {\n" + out + "};\n";
        case Kind::discriminated:
            for (const Arm& each : definition.arms) out += arm(each);
            if (definition.defaultArm) out += "    default: " + text(definition.defaultArm->declaration);
            return "union " + definition.name + " switch (" + definition.discriminant.type.name + " " +
                   definition.discriminant.name + ") {\n" + out + "};\n";
    }
    return "";
}

std::string mark(const Definition& definition)
{
    if (!definition.provisional) return "";
    return "// @provisional" + (definition.provisional->empty() ? "" : " " + *definition.provisional) + "\n";
}

}  // namespace

std::string flatten(const Program& program)
{
    std::vector<const Module*> modules;
    for (const auto& module : program.modules) modules.push_back(module.get());
    std::sort(modules.begin(), modules.end(),
              [](const Module* a, const Module* b) { return a->source.module < b->source.module; });

    std::string out = "// Made by 'quorvaxdrc flatten'. Change the interface files, not this one.\n";
    for (const Module* module : modules) {
        out.append("\n").append(moduleMark).append(module->source.module).append("\n");
        for (const auto& definition : module->definitions) out += "\n" + mark(*definition) + body(*definition);
    }
    return out;
}

std::optional<std::string_view> moduleOfLine(std::string_view line)
{
    if (!line.starts_with(moduleMark)) return std::nullopt;
    line.remove_prefix(moduleMark.size());
    return line.substr(0, line.find_last_not_of(" \t\r") + 1);
}

}  // namespace quorva::compiler
