// Emits the public header of a module.
#include "emit.h"
#include "front/structure.h"
#include "header_parts.h"
#include "names.h"
#include "text.h"

#include <cstdint>
#include <limits>
#include <set>
#include <unordered_set>

namespace quorva::compiler {

namespace {

std::string typeName(const TypeRef& type)
{
    return "::" + type.name;
}

// ---- Declarations ---------------------------------------------------------------------------------------------------

// A field or an arm as a member of a struct.
std::string memberOf(const Declaration& declaration)
{
    const std::string& name = declaration.name;
    switch (declaration.form) {
    case Form::single: return typeName(declaration.type) + " " + name + ";";
    case Form::fixedArray: return typeName(declaration.type) + " " + name + "[" + bound(declaration) + "];";
    case Form::variableArray: return "quorva::Counted<" + typeName(declaration.type) + "> " + name + ";";
    case Form::optional: return typeName(declaration.type) + "* " + name + ";";
    case Form::string: return "char* " + name + ";";
    case Form::variableOpaque: return "quorva::Counted<unsigned char> " + name + ";";
    case Form::fixedOpaque:
    case Form::none: break;  // void is not a member
    }
    return "unsigned char " + name + "[" + bound(declaration) + "];";
}

// The C++ type of a typedef that is another name of a type.
std::string typeOf(const Declaration& declaration)
{
    switch (declaration.form) {
    case Form::single: return typeName(declaration.type);
    case Form::fixedArray: return typeName(declaration.type) + "[" + bound(declaration) + "]";
    case Form::optional: return typeName(declaration.type) + "*";
    case Form::string: return "char*";
    default: return "unsigned char[" + bound(declaration) + "]";  // C++ declares the other forms as counted structs
    }
}

// ---- Definitions, one function for each kind ------------------------------------------------------------------------

BodyLine constant(const Definition& definition)
{
    const Value& value = definition.constant;
    const std::string type = value.number > std::numeric_limits<std::int32_t>::max() ? "std::uint32_t" : "std::int32_t";
    return {"inline constexpr " + type + " " + definition.name + " = " +
                (value.isName || value.number < 0 ? std::to_string(value.number) : value.text) + ";",
            "", docOf(definition)};
}

std::string enumeration(const Definition& definition)
{
    std::vector<BodyLine> lines;
    for (const Enumerator& enumerator : definition.enumerators)
        lines.push_back({enumerator.name + " = " + std::to_string(enumerator.value.number) + ",", "", enumerator.doc});
    return "enum class " + definition.name + " : std::int32_t {\n" + body(lines, indentWidth) + "};\n";
}

std::string countedStruct(const Definition& definition)
{
    const std::string element =
        definition.target.form == Form::variableOpaque ? "unsigned char" : typeName(definition.target.type);
    const std::string limit = definition.target.written ? "at most " + bound(definition.target) : "";
    return "struct " + definition.name + " {\n" +
           body({{"std::uint16_t count;", limit, ""}, {element + "* elements;", "", ""}}, indentWidth) + "};\n";
}

BodyLine alias(const Definition& definition)
{
    return {"using " + definition.name + " = " + typeOf(definition.target) + ";", limitOf(definition.target),
            docOf(definition)};
}

void add(Paragraphs& out, const Definition& definition)
{
    const std::string doc = lineComment(docOf(definition));
    switch (definition.kind) {
    case DefinitionKind::constant: return out.add(constant(definition));
    case DefinitionKind::enumeration: return out.add(doc + enumeration(definition));
    case DefinitionKind::structure: return out.add(doc + structText(definition, memberOf));
    case DefinitionKind::discriminatedUnion: return out.add(doc + unionText(definition, memberOf));
    case DefinitionKind::typeDefinition:
        return isCountedStruct(definition) ? out.add(doc + countedStruct(definition)) : out.add(alias(definition));
    }
}

// ---- Sections of the header -----------------------------------------------------------------------------------------

// Declares the types that the definition has pointers to and the header defines later.
std::string forwardDeclarations(const Definition& user, std::unordered_set<const Definition*>& declared)
{
    std::string out;
    for (const Declaration* declaration : declarationsOf(user)) {
        const Definition* used = declaration->type.definition;
        if (!used || used == &user || used->at.source != user.at.source || !canBeForwardDeclared(*used)) continue;
        if (declared.insert(used).second) out += "struct " + used->name + ";\n";
    }
    return out;
}

std::string constants(const Module& module)
{
    Paragraphs out;
    for (const Definition* definition : constantsOf(module)) add(out, *definition);
    return out.text();
}

// The types, in an order that C++ accepts.
std::string types(const Module& module)
{
    Paragraphs out;
    std::unordered_set<const Definition*> declared;
    for (const Definition* definition : declarationOrder(typesOf(module))) {
        if (const std::string ahead = forwardDeclarations(*definition, declared); !ahead.empty()) out.add(ahead);
        add(out, *definition);
        declared.insert(definition);
    }
    return out.text();
}

std::string nameFunctions(const Module& module)
{
    std::string out;
    for (const Definition* definition : typesOf(module))
        if (definition->kind == DefinitionKind::enumeration)
            out += "const char* " + definition->name + "String(int value);\n";
    if (out.empty()) return "";
    return "// Each returns the name of the enumerator with the value, or \"Error_in_Function\".\n" + out;
}

std::string routines(const Module& module)
{
    std::string out;
    for (const Definition* definition : typesOf(module))
        out += "int Xdr" + definition->name + "(Xdr* xdrs, void* object);\n";
    if (out.empty()) return "";
    return "extern \"C\" {\n\n// The coding routines. Each runs one pass over an object of its type.\n" + out +
           "\n}  // extern \"C\"\n";
}

// Functions, not exported constants: an exported constant would fix the size of a description for all callers.
std::string descriptions(const Module& module)
{
    std::string out;
    for (const Definition* definition : typesOf(module)) out += "const ::quorva::Type& " + definition->name + "();\n";
    return out.empty() ? ""
                       : "// The descriptions of the types.\nnamespace quorva::description {\n" + out +
                             "}  // namespace quorva::description\n";
}

// Makes the declarations visible outside a library that is compiled with hidden visibility.
std::string exported(const std::string& declarations)
{
    if (declarations.empty()) return "";
    return "#pragma GCC visibility push(default)\n\n" + declarations + "\n#pragma GCC visibility pop\n";
}

std::string coders(const Module& module)
{
    std::string out;
    for (const Definition* definition : typesOf(module)) {
        const std::string& name = definition->name;
        const std::string head = "inline constexpr ::quorva::Coder<::" + name + "> " + name + " = {";
        const std::string members = "::Xdr" + name + ", " + literal(name) + ", ::quorva::description::" + name + "};\n";
        out += head + (head.size() + members.size() <= lineWidth + 1 ? "" : "\n    ") + members;
    }
    return out.empty() ? "" : "namespace quorva::coder {\n" + out + "}  // namespace quorva::coder\n";
}

std::string coderChoices(const Module& module)
{
    std::string out;
    for (const Definition* definition : typesOf(module)) {
        const std::string& name = definition->name;
        if (!isDistinctType(*definition)) continue;
        out += "template <> inline constexpr quorva::Coder<::" + name + "> quorva::coderOf<::" + name +
               "> = quorva::coder::" + name + ";\n";
    }
    return out;
}

// The C++ type of an argument or a result, and its coder.
std::string remoteType(const std::optional<TypeRef>& type)
{
    return type ? "::" + type->name : "::quorva::Void";
}

std::string remoteCoder(const std::optional<TypeRef>& type)
{
    return type ? "::quorva::coder::" + type->name : "::quorva::voidCoder";
}

// A constant for each procedure, in namespaces that are named like its program and version.
std::string procedures(const Module& module)
{
    std::string out;
    for (const RemoteProgram& program : module.programs) {
        for (const RemoteVersion& version : program.versions) {
            const std::string space = "quorva::procedure::" + program.name + "::" + version.name;
            const std::string numbers =
                ", " + hexadecimal(program.number.number) + "U, " + std::to_string(version.number.number) + "U, ";
            out += (out.empty() ? "" : "\n") + lineComment(program.doc) + lineComment(version.doc) + "namespace " +
                   space + " {\n";
            for (const RemoteProcedure& each : version.procedures)
                out += lineComment(each.doc) + "inline constexpr ::quorva::Procedure<" + remoteType(each.argument) +
                       ", " + remoteType(each.result) + "> " + each.name + " = {\n    " + literal(each.name) + numbers +
                       std::to_string(each.number.number) + "U, " + remoteCoder(each.argument) + ", " +
                       remoteCoder(each.result) + "};\n";
            out += "}  // namespace " + space + "\n";
        }
    }
    return out;
}

std::string includes(const Module& module)
{
    std::set<std::string> imported;
    for (const Import& import : module.imports) imported.insert(publicHeader(import.name));
    std::string out;
    for (const std::string& header : imported) out += "#include <" + header + ">\n";
    out += "#include <quorvapixdr/primitives.h>\n";
    if (!module.programs.empty()) out += "#include <quorvapixdr/procedure.h>\n";
    return out + "\n#include <cstdint>\n";
}

}  // namespace

std::string emitHeader(const Module& module)
{
    return sections({
        headerBanner(module) + "#pragma once\n",
        includes(module),
        constants(module),
        types(module),
        exported(sections({nameFunctions(module), routines(module), descriptions(module)})),
        coders(module),
        coderChoices(module),
        procedures(module),
        layoutAssertions(module, {"static_assert", "::", "quorva::on32Or64Bits", ""}),
    });
}

}  // namespace quorva::compiler
