// Emits the header of a module for C11.
#include "emit.h"
#include "front/check_for_c.h"
#include "front/structure.h"
#include "header_parts.h"
#include "names.h"
#include "text.h"

#include <cstdint>
#include <limits>
#include <set>

namespace quorva::compiler {

namespace {

// ---- Declarations ---------------------------------------------------------------------------------------------------

std::string counted(const std::string& element, const std::string& name)
{
    return "struct { uint16_t count; " + element + "* elements; } " + name + ";";
}

// A field, an arm, or after "typedef" a typedef.
std::string declarationOf(const Declaration& declaration, const std::string& name)
{
    const std::string& type = declaration.type.name;
    switch (declaration.form) {
    case Form::single: return type + " " + name + ";";
    case Form::fixedArray: return type + " " + name + "[" + bound(declaration) + "];";
    case Form::variableArray: return counted(type, name);
    case Form::optional: return type + "* " + name + ";";
    case Form::string: return "char* " + name + ";";
    case Form::variableOpaque: return counted("unsigned char", name);
    case Form::fixedOpaque:
    case Form::none: break;  // void is not a member
    }
    return "unsigned char " + name + "[" + bound(declaration) + "];";
}

std::string memberOf(const Declaration& declaration)
{
    return declarationOf(declaration, declaration.name);
}

// ---- Definitions, one function for each kind ------------------------------------------------------------------------

// An enumerator, unlike a macro, leaves members of the same name alone, and unlike an object it can be a case or the
// bound of an array. Only C23 has enumerators that do not fit an int; the compilers have them before.
BodyLine constant(const Definition& definition)
{
    const bool fits = definition.constant.number <= std::numeric_limits<std::int32_t>::max();
    return {std::string(fits ? "" : "__extension__ ") + "enum { " + definition.name + " = " +
                std::to_string(definition.constant.number) + " };",
            "", docOf(definition)};
}

// The type is no enum of C, which may have another size or sign.
std::string enumeration(const Definition& definition)
{
    std::vector<BodyLine> lines;
    for (const Enumerator& each : definition.enumerators)
        lines.push_back(
            {enumeratorInC(definition, each) + " = " + std::to_string(each.value.number) + ",", "", each.doc});
    return "typedef int32_t " + definition.name + ";\nenum {\n" + body(lines, indentWidth) + "};\n";
}

std::string countedStruct(const Definition& definition)
{
    const Declaration& target = definition.target;
    const std::string element = target.form == Form::variableOpaque ? "unsigned char" : target.type.name;
    const std::string limit = target.written ? "at most " + bound(target) : "";
    return "struct " + definition.name + " {\n" +
           body({{"uint16_t count;", limit, ""}, {element + "* elements;", "", ""}}, indentWidth) + "};\n";
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
        if (isCountedStruct(definition)) return out.add(doc + countedStruct(definition));
        return out.add(BodyLine{"typedef " + declarationOf(definition.target, definition.name),
                                limitOf(definition.target), docOf(definition)});
    }
}

// ---- Sections of the header -----------------------------------------------------------------------------------------

std::string includes(const Module& module)
{
    std::set<std::string> imported;
    for (const Import& import : module.imports) imported.insert(cHeader(import.name));
    std::string out;
    for (const std::string& header : imported) out += "#include <" + header + ">\n";
    return out + "#include <quorvapixdr/c_codec.h>\n\n#include <stddef.h>\n#include <stdint.h>\n";
}

std::string constants(const Module& module)
{
    Paragraphs out;
    for (const Definition* definition : constantsOf(module)) add(out, *definition);
    return out.text();
}

std::string structNames(const Module& module)
{
    std::string out;
    for (const Definition* definition : typesOf(module))
        if (canBeForwardDeclared(*definition))
            out += "typedef struct " + definition->name + " " + definition->name + ";\n";
    return out;
}

// The types, in an order that C accepts after the names of all structs.
std::string types(const Module& module)
{
    Paragraphs out;
    for (const Definition* definition : declarationOrder(typesOf(module))) add(out, *definition);
    return out.text();
}

// The linker knows name functions and descriptions as C++ functions.
std::string nameFunctions(const Module& module)
{
    std::string out;
    for (const Definition* definition : typesOf(module)) {
        if (definition->kind != DefinitionKind::enumeration) continue;
        const std::string name = definition->name + "String";
        out += "const char* " + name + "(int value) __asm__(\"_Z" + std::to_string(name.size()) + name + "i\");\n";
    }
    if (out.empty()) return "";
    return "// Each returns the name of the enumerator with the value, or \"Error_in_Function\".\n" + out;
}

std::string routines(const Module& module)
{
    std::string out;
    for (const Definition* definition : typesOf(module))
        out += "int Xdr" + definition->name + "(Xdr* xdrs, void* object);\n";
    return out.empty() ? "" : "// The coding routines. Each runs one pass over an object of its type.\n" + out;
}

std::string descriptions(const Module& module)
{
    std::string out;
    for (const Definition* definition : typesOf(module)) {
        const std::string& name = definition->name;
        const std::string head = "const QuorvaType* quorva_" + name + "(void)";
        const std::string label = "__asm__(\"_ZN6quorva11description" + std::to_string(name.size()) + name + "Ev\");\n";
        out += head + (head.size() + label.size() <= lineWidth ? " " : "\n    ") + label;
    }
    return out.empty() ? "" : "// The descriptions of the types.\n" + out;
}

}  // namespace

std::string emitCHeader(const Module& module)
{
    return sections({
        headerBanner(module) + "#pragma once\n",
        "#ifdef __cplusplus\n#error \"This header is for C: C++ includes <" + publicHeader(module.source.module) +
            ">.\"\n#else\n",
        includes(module),
        constants(module),
        structNames(module),
        types(module),
        layoutAssertions(module, {"_Static_assert", "", "QUORVA_BYTES", ", \"not the layout of the library\""}),
        nameFunctions(module),
        routines(module),
        descriptions(module),
        "#endif\n",
    });
}

}  // namespace quorva::compiler
