// Emits a program as a package of Python: a module for each interface module, and the runtime package xdr.
#include "emit.h"
#include "front/resolve.h"
#include "front/structure.h"
#include "python_names.h"
#include "support/text.h"
#include "text.h"

#include <algorithm>
#include <map>
#include <set>
#include <unordered_set>

namespace quorva::compiler {

const std::vector<PythonFile>& pythonRuntime();  // the files of python/, embedded by CMake

namespace {

using support::columns;

std::string blanks(std::size_t count)
{
    return std::string(count, ' ');
}

std::string quoted(const std::string& name)
{
    return '"' + name + '"';
}

// `text` as comment lines.
std::string comment(const std::string& text, std::size_t indent)
{
    if (text.empty()) return "";
    std::string out;
    for (const std::string& line : wrapped(text, lineWidth - indent - 2))
        out += blanks(indent) + (line.empty() ? "#" : "# " + line) + "\n";
    return out;
}

// `text` as a string that documents what is above it; empty for an empty text.
std::string docstring(const std::string& text, std::size_t indent)
{
    if (text.empty()) return "";
    std::string safe;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool mayEndString = text[i] == '"' && (i + 1 == text.size() || text[i + 1] == '"');
        if (text[i] == '\\' || mayEndString) safe += '\\';
        safe += text[i];
    }
    const std::vector<std::string> lines = wrapped(safe, lineWidth - indent - 6);
    std::string out = blanks(indent) + "\"\"\"" + lines.front();
    for (std::size_t i = 1; i < lines.size(); ++i)
        out += "\n" + (lines[i].empty() ? std::string() : blanks(indent) + lines[i]);
    return out + (lines.size() > 1 ? "\n" + blanks(indent) : "") + "\"\"\"\n";
}

// `head`, the items and `tail` on one line, or each item on a line of its own.
std::string items(std::size_t indent, const std::string& head, const std::vector<std::string>& all,
                  const std::string& tail)
{
    const std::string line = blanks(indent) + head + joined(all) + tail + "\n";
    if (columns(line) <= lineWidth + 1) return line;
    std::string out = blanks(indent) + head + "\n";
    for (const std::string& each : all) out += blanks(indent + indentWidth) + each + ",\n";
    return out + blanks(indent) + tail + "\n";
}

std::string importLine(const std::string& module, const std::vector<std::string>& names)
{
    const std::string head = "from " + module + " import ";
    const std::string line = head + joined(names) + "\n";
    return columns(line) <= lineWidth + 1 ? line : items(0, head + "(", names, ")");
}

// The alternatives of a type annotation without repetitions, such as {"int", "None"}.
class Alternatives {
public:
    void add(const std::string& type)
    {
        if (std::ranges::find(types, type) == types.end()) types.push_back(type);
    }
    void add(const Alternatives& others)
    {
        for (const std::string& type : others.types) add(type);
    }
    // None is the last one.
    std::vector<std::string> list() const
    {
        std::vector<std::string> out = types;
        std::stable_partition(out.begin(), out.end(), [](const std::string& type) { return type != "None"; });
        return out;
    }
    std::string text() const
    {
        std::string out;
        for (const std::string& type : list()) out += (out.empty() ? "" : " | ") + type;
        return out;
    }

private:
    std::vector<std::string> types;
};

// Emits one module and collects what it imports.
class ModulePrinter {
public:
    ModulePrinter(const Module& of, const PythonNames& pythonNames) : module(of), names(pythonNames) {}

    std::string text();

private:
    // ---- Types as Python sees their values ----

    // The Python class of a definition, imported if it is another module's.
    std::string classOf(const Definition& definition)
    {
        const std::string name = names.of(definition);
        const std::string& home = definition.at.source->module;
        if (home != module.source.module) imports[home].insert(name);
        return name;
    }

    Alternatives valuesOf(const TypeRef& type)
    {
        Alternatives out;
        const Definition* definition = type.definition;
        if (!definition) {
            if (type.builtin == Builtin::Boolean) out.add("bool");
            out.add(type.builtin == Builtin::Float ? "float" : "int");
        } else if (definition->kind == DefinitionKind::typeDefinition) {
            if (!open.insert(definition).second) {
                out.add("object");  // a typedef that holds itself has no finite annotation
                return out;
            }
            out = valuesOf(definition->target);
            open.erase(definition);
        } else {
            out.add(classOf(*definition));
            if (definition->kind == DefinitionKind::enumeration) out.add("int");
        }
        return out;
    }

    Alternatives valuesOf(const Declaration& declaration)
    {
        Alternatives out;
        switch (declaration.form) {
        case Form::single: return valuesOf(declaration.type);
        case Form::fixedArray:
        case Form::variableArray: out.add("list[" + valuesOf(declaration.type).text() + "]"); break;
        case Form::optional:
            out = valuesOf(declaration.type);
            out.add("None");
            break;
        case Form::string: out.add("str"); break;
        case Form::variableOpaque:
        case Form::fixedOpaque: out.add("bytes"); break;
        case Form::none: out.add("None"); break;
        }
        return out;
    }

    // The class that the annotation of a declaration names, if it names one.
    static const Definition* classIn(const Declaration& declaration)
    {
        const Definition* definition = declaration.type.definition;
        std::unordered_set<const Definition*> passed;
        while (definition && definition->kind == DefinitionKind::typeDefinition && passed.insert(definition).second)
            definition = definition->target.type.definition;
        return definition;
    }

    // The names of these classes: a member must not have the name of one.
    std::unordered_set<std::string> classesIn(const std::vector<const Declaration*>& declarations) const
    {
        std::unordered_set<std::string> out;
        for (const Declaration* each : declarations)
            if (const Definition* definition = classIn(*each)) out.insert(names.of(*definition));
        return out;
    }

    // True if the definition comes later in the module.
    bool follows(const Definition* definition) const
    {
        return definition && definition->at.source == &module.source && !printed.contains(definition);
    }

    // ---- Declarations ----

    std::string typeOf(const TypeRef& type) { return type.definition ? classOf(*type.definition) : "xdr." + type.name; }

    // What codes the declared value: a class, or a codec.
    std::string codecOf(const Declaration& declaration)
    {
        const std::string bound = std::to_string(declaration.bound);
        switch (declaration.form) {
        case Form::single: return typeOf(declaration.type);
        case Form::fixedArray: return "xdr.FixedArray(" + typeOf(declaration.type) + ", " + bound + ")";
        case Form::variableArray: return "xdr.Array(" + typeOf(declaration.type) + ", " + bound + ")";
        case Form::optional: return "xdr.Optional(" + typeOf(declaration.type) + ")";
        case Form::string: return "xdr.String(" + bound + ")";
        case Form::variableOpaque: return "xdr.Opaque(" + bound + ")";
        case Form::fixedOpaque: return "xdr.FixedOpaque(" + bound + ")";
        case Form::none: break;
        }
        return "None";
    }

    std::string memberOf(const Declaration& declaration, const std::string& attribute)
    {
        return "xdr.Member(" + quoted(declaration.name) + ", " + codecOf(declaration) +
               (attribute == declaration.name ? "" : ", " + quoted(attribute)) + ")";
    }

    // A member on a line, or its arguments on a line of their own. `key` precedes it.
    static std::string memberLine(std::size_t indent, const std::string& key, const std::string& member)
    {
        const std::string line = blanks(indent) + key + member + ",\n";
        if (columns(line) <= lineWidth + 1 || !member.ends_with(')')) return line;
        const std::size_t arguments = member.find('(') + 1;
        return blanks(indent) + key + member.substr(0, arguments) + "\n" + blanks(indent + indentWidth) +
               member.substr(arguments, member.size() - arguments - 1) + "\n" + blanks(indent) + "),\n";
    }

    static std::string attribute(const std::string& name, const Alternatives& type, const std::string& rest,
                                 const std::string& doc)
    {
        std::string line = blanks(indentWidth) + name + ": " + type.text() + rest + "\n";
        if (columns(line) > lineWidth + 1) {
            line = blanks(indentWidth) + name + ": (\n";
            bool first = true;
            for (const std::string& each : type.list()) {
                line += blanks(2 * indentWidth) + (first ? "" : "| ") + each + "\n";
                first = false;
            }
            line += blanks(indentWidth) + ")" + rest + "\n";
        }
        return line + docstring(doc, indentWidth);
    }

    // ---- Definitions ----

    std::string constant(const Definition& definition)
    {
        return names.of(definition) + " = " + std::to_string(definition.constant.number) + "\n" +
               docstring(docOf(definition), 0);
    }

    std::string classHead(const Definition& definition, const std::string& base)
    {
        const std::string doc = docstring(docOf(definition), indentWidth);
        return "class " + names.of(definition) + "(" + base + "):\n" + doc + (doc.empty() ? "" : "\n");
    }

    std::string enumeration(const Definition& definition);
    std::string structure(const Definition& definition);
    std::string discriminatedUnion(const Definition& definition);
    std::string typeDefinition(const Definition& definition);
    std::string type(const Definition& definition);
    std::string caseOf(const Value& value, const Discriminant& discriminant);
    std::string importLines() const;

    const Module& module;
    const PythonNames& names;
    std::map<std::string, std::set<std::string>> imports;  // names by module
    std::unordered_set<const Definition*> open;            // the typedefs whose values are being named
    std::unordered_set<const Definition*> printed;
    bool usesDataclasses = false;
};

std::string ModulePrinter::enumeration(const Definition& definition)
{
    std::string out = classHead(definition, "xdr.Enumeration");
    const std::vector<std::string> attributes = enumeratorNames(definition);
    std::vector<std::string> renamed;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const Enumerator& each = definition.enumerators[i];
        out += blanks(indentWidth) + attributes[i] + " = " + std::to_string(each.value.number) + "\n" +
               docstring(each.doc, indentWidth);
        if (attributes[i] != each.name) renamed.push_back(quoted(attributes[i]) + ": " + quoted(each.name));
    }
    if (renamed.empty()) return out;
    return out + "\n    @classmethod\n    def _renamed(cls) -> dict[str, str]:\n" +
           items(2 * indentWidth, "return {", renamed, "}");
}

std::string ModulePrinter::structure(const Definition& definition)
{
    usesDataclasses = true;
    const std::vector<std::string> attributes = fieldNames(definition, classesIn(declarationsOf(definition)));

    std::string out = "@dataclasses.dataclass\n" + classHead(definition, "xdr.Struct");
    std::vector<std::string> members;
    for (std::size_t i = 0; i < attributes.size(); ++i) {
        const Declaration& field = definition.fields[i];
        out += attribute(attributes[i], valuesOf(field), "", docOf(field));
        members.push_back(memberOf(field, attributes[i]));
    }
    out += "\n    @classmethod\n    def _fields(cls) -> tuple[xdr.Member, ...]:\n        return (\n";
    for (const std::string& member : members) out += memberLine(3 * indentWidth, "", member);
    return out + "        )\n";
}

// The number that selects an arm, as an enumerator if it has one.
std::string ModulePrinter::caseOf(const Value& value, const Discriminant& discriminant)
{
    if (discriminant.builtin == Builtin::Boolean) return value.number ? "True" : "False";
    if (!discriminant.enumeration) {
        const bool isSigned = discriminant.builtin == Builtin::LongInteger;
        return std::to_string(isSigned ? static_cast<std::int32_t>(value.number) : value.number);
    }
    const Definition& enumeration = *discriminant.enumeration;
    const auto found = std::ranges::find_if(enumeration.enumerators,
                                            [&](const Enumerator& each) { return each.value.number == value.number; });
    if (found == enumeration.enumerators.end()) return std::to_string(value.number);
    const auto index = static_cast<std::size_t>(found - enumeration.enumerators.begin());
    return classOf(enumeration) + "." + enumeratorNames(enumeration)[index];
}

std::string ModulePrinter::discriminatedUnion(const Definition& definition)
{
    usesDataclasses = true;
    Alternatives values;
    for (const Arm& arm : definition.arms) values.add(valuesOf(arm.declaration));
    values.add("None");
    std::unordered_set<std::string> classes = classesIn(declarationsOf(definition));
    classes.insert("value");
    const std::string discriminantName = discriminantAttribute(definition, classes);
    std::string out =
        "@dataclasses.dataclass\n" + classHead(definition, "xdr.Union") +
        attribute(discriminantName, valuesOf(definition.discriminant), "", docOf(definition.discriminant)) +
        attribute("value", values, " = None", "");

    out += "\n    @classmethod\n    def _arms(cls) -> xdr.Arms:\n        return xdr.Arms(\n" +
           memberLine(3 * indentWidth, "", memberOf(definition.discriminant, discriminantName)) +
           blanks(3 * indentWidth) + "{\n";
    const Discriminant discriminant = discriminantOf(definition);
    for (const Arm& arm : definition.arms) {
        const Declaration& declaration = arm.declaration;
        const std::string member = declaration.form == Form::none ? "None" : memberOf(declaration, declaration.name);
        out += comment(docOf(declaration), 4 * indentWidth);
        for (const Value& value : arm.cases)
            out += memberLine(4 * indentWidth, caseOf(value, discriminant) + ": ", member);
    }
    out += blanks(3 * indentWidth) + "},\n";
    if (definition.defaultArm)
        out += comment(docOf(definition.defaultArm->declaration), 3 * indentWidth) + blanks(3 * indentWidth) +
               "has_default=True,\n";
    return out + "        )\n";
}

std::string ModulePrinter::typeDefinition(const Definition& definition)
{
    const Declaration& target = definition.target;
    const std::string doc = docstring(docOf(definition), indentWidth);
    if (target.form == Form::single) {
        const TypeRef& canonical = canonicalType(target.type);
        const bool isClass = canonical.definition && canonical.definition->kind != DefinitionKind::typeDefinition;
        if (isClass)  // the class itself, so that callers can make objects
            return names.of(definition) + " = " + typeOf(target.type) + "\n" + docstring(docOf(definition), 0);
        return "class " + names.of(definition) + "(" + typeOf(target.type) + "):\n" +
               (doc.empty() ? "    pass\n" : doc);
    }

    const std::string values = valuesOf(target).text();
    const bool isKnown = !follows(classIn(target));  // a name that is not known yet is quoted
    return classHead(definition, "xdr.Typedef[" + (isKnown ? values : quoted(values)) + "]") +
           "    @classmethod\n    def _declaration(cls) -> xdr.Codec:\n        return " + codecOf(target) + "\n";
}

std::string ModulePrinter::importLines() const
{
    std::string out = "from __future__ import annotations\n\n";
    if (usesDataclasses) out += "import dataclasses\n\n";
    out += "from " + names.rootFrom(module) + " import xdr\n";
    for (const auto& [from, imported] : imports) {
        const std::vector<std::string> list(imported.begin(), imported.end());
        out += importLine(names.rootFrom(module) + names.pathOf(from), list);
    }
    return out;
}

std::string ModulePrinter::type(const Definition& definition)
{
    switch (definition.kind) {
    case DefinitionKind::enumeration: return enumeration(definition);
    case DefinitionKind::structure: return structure(definition);
    case DefinitionKind::discriminatedUnion: return discriminatedUnion(definition);
    default: return typeDefinition(definition);
    }
}

std::string ModulePrinter::text()
{
    std::vector<std::string> parts;
    for (const Definition* each : constantsOf(module)) parts.push_back(constant(*each));
    std::vector<const Definition*> rest = typesOf(module);
    while (!rest.empty()) {  // an alias waits for what it names
        std::vector<const Definition*> waiting;
        for (const Definition* each : rest) {
            if (isAlias(*each) && follows(each->target.type.definition)) {
                waiting.push_back(each);
            } else {
                parts.push_back(type(*each));
                printed.insert(each);
            }
        }
        rest = std::move(waiting);
    }
    std::string out = "# Generated from " + module.source.module +
                      ".x by quorvaxdrc. Edit the interface file, not this one.\n" + docstring(module.doc, 0) + "\n" +
                      importLines();
    for (const std::string& part : parts) out += "\n\n" + part;
    return out;
}

// ---- The package ----------------------------------------------------------------------------------------------------

constexpr const char* packageHead = R"(# Generated by quorvaxdrc.
"""The types of an interface: dataclasses and enumerations that are coded in XDR (RFC 4506). See xdr.

`from PACKAGE import T` loads the module of the type T when it is first asked for.
"""

from __future__ import annotations

import importlib
import sys

# The module of each name.
_MODULES = {
)";

constexpr const char* packageTail = R"(}


def __getattr__(name: str) -> object:
    if name not in _MODULES:
        message = f"module {__name__!r} has no attribute {name!r}"
        raise AttributeError(message, name=name, obj=sys.modules[__name__])
    value: object = getattr(importlib.import_module("." + _MODULES[name], __name__), name)
    globals()[name] = value
    return value


def __dir__() -> list[str]:
    return sorted({*globals(), *_MODULES})
)";

constexpr const char* stubHead = "# Generated by quorvaxdrc: what the package re-exports, for type checkers.\n";

// What the package re-exports of xdr: the errors and the built-in types.
constexpr const char* runtimeNames[] = {"CodingError", "Json",         "JsonError",    "Boolean",
                                        "Float",       "Integer",      "LongInteger",  "LongNatural",
                                        "Natural",     "ShortInteger", "ShortNatural", "UINT"};

}  // namespace

std::vector<PythonFile> emitPython(const Program& program)
{
    const PythonNames names(program);
    std::map<std::string, std::string> modules;  // of each name that the package re-exports
    std::vector<PythonFile> files;
    std::set<std::string> folders;
    for (const char* name : runtimeNames) modules.emplace(name, "xdr");
    for (const auto& module : program.modules) {
        const std::string path = names.pathOf(module->source.module);
        files.push_back({names.fileOf(*module), ModulePrinter(*module, names).text()});
        for (std::size_t dot = 0; (dot = path.find('.', dot)) != std::string::npos; ++dot)
            folders.insert(path.substr(0, dot));
        for (const auto& definition : module->definitions) {
            // As an attribute of the package, the name of a module or a folder is that.
            if (!names.isTopLevel(names.of(*definition))) modules.emplace(names.of(*definition), path);
        }
    }
    for (const std::string& folder : folders) {
        if (!names.isModule(folder))
            files.push_back({names.fileOfFolder(folder), "\"\"\"The modules of " + folder + ".\"\"\"\n"});
    }

    std::string table, stub = stubHead;
    std::map<std::string, std::vector<std::string>> imports;  // by module
    for (const auto& [name, module] : modules) {
        table += "    " + quoted(name) + ": " + quoted(module) + ",\n";
        imports[module].push_back(name + " as " + name);
    }
    for (const auto& [module, imported] : imports) stub += importLine("." + module, imported);
    files.push_back({"__init__.py", packageHead + table + packageTail});
    files.push_back({"__init__.pyi", stub});
    files.insert(files.end(), pythonRuntime().begin(), pythonRuntime().end());
    files.push_back({"py.typed", ""});
    return files;
}

}  // namespace quorva::compiler
