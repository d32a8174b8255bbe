// Emits the source file of a module, which defines plain functions, name functions and routines, and the private header
// that declares them.
#include "emit.h"
#include "front/source.h"
#include "front/structure.h"
#include "function_body.h"
#include "names.h"
#include "plan/plan.h"
#include "text.h"

namespace quorva::compiler {

namespace {

std::string encodeHead(const Definition& definition)
{
    return "unsigned char* quorva::plain::encode(quorva::Encoder& out, unsigned char* at, const " +
           typeName(definition) + "& value)";
}

std::string decodeHead(const Definition& definition)
{
    return "unsigned char* quorva::plain::decode(quorva::Decoder& in, unsigned char* at, " + typeName(definition) +
           "& value)";
}

// Leaves parameters that the body does not use unnamed. The stream is always the first argument of a call.
std::string releaseHead(const Definition& definition, const std::string& body)
{
    const bool usesStream = body.find("(xdrs, ") != std::string::npos;
    const bool usesValue = body.find("value") != std::string::npos;
    return std::string("bool quorva::plain::release(Xdr*") + (usesStream ? " xdrs, " : ", ") + typeName(definition) +
           "&" + (usesValue ? " value)" : ")");
}

std::string putHead(const Definition& definition)
{
    return "void quorva::plain::put(unsigned char* at, const " + typeName(definition) + "& value)";
}

std::string getHead(const Definition& definition)
{
    return "void quorva::plain::get(const unsigned char* at, " + typeName(definition) + "& value)";
}

// A template specialisation, on one line if it fits.
std::string specialisation(bool isInline, const std::string& head, const std::string& tail = "")
{
    const std::string rest = (isInline ? "inline " : "") + head + tail;
    const std::string line = "template <> " + rest;
    return (line.size() <= lineWidth ? line : "template <>\n" + rest) + "\n";
}

std::string function(const std::string& comment, bool isInline, const std::string& head, const std::string& body)
{
    return comment + specialisation(isInline, head) + "{\n" + body + "}\n";
}

// The plain functions of a type, with a comment above the first.
std::string definitions(const Definition& definition, const std::string& comment, Plans& plans)
{
    const TypePlan plan = plans.of(definition);
    std::string out;
    if (plan.size != 0) {
        out = function(comment, plan.isInline, putHead(definition), putBody(plans, definition)) + "\n" +
              function("", plan.isInline, getHead(definition), getBody(plans, definition));
    } else {
        out = function(comment, plan.isInline, encodeHead(definition), encodeBody(plans, definition)) + "\n" +
              function("", plan.isInline, decodeHead(definition), decodeBody(plans, definition));
    }
    if (!plan.owns) return out;
    const std::string body = releaseBody(plans, definition);
    return out + "\n" + function("", plan.isInline, releaseHead(definition, body), body);
}

std::string declarations(const Definition& definition, Plans& plans)
{
    const TypePlan plan = plans.of(definition);
    const auto declare = [&](const std::string& head) { return specialisation(plan.isInline, head, ";"); };
    return (plan.size != 0 ? declare(putHead(definition)) + declare(getHead(definition))
                           : declare(encodeHead(definition)) + declare(decodeHead(definition))) +
           (plan.owns ? declare(releaseHead(definition, "(xdrs, value)")) : "");
}

// A comment: the first line of the documentation, and the line of the definition.
std::string heading(const Definition& definition, const Module& module)
{
    const std::string location = module.source.module + ".x:" + number(definition.at.line);
    const std::string doc = definition.doc.substr(0, definition.doc.find('\n'));
    if (doc.empty()) return lineComment(location);
    const std::string together = doc + "   " + location;
    return lineComment(wrapped(together, lineWidth - 3).size() == 1 ? together : doc + "\n" + location);
}

// The function that returns the name of an enumerator.
std::string nameFunction(const Definition& definition)
{
    std::string out = "const char* " + definition.name + "String(int value)\n{\n    switch (value) {\n";
    for (const Enumerator* each : enumeratorsByValue(definition))
        out += "    case " + std::to_string(each->value.number) + ": return " + literal(each->name) + ";\n";
    return out + "    }\n    return \"Error_in_Function\";\n}\n";
}

// The exported routine of a type.
std::string routine(const Definition& definition, Plans& plans)
{
    const TypePlan plan = hasFunctions(definition) ? plans.of(definition) : TypePlan{};
    const std::string owns = plan.owns ? "true" : "false";
    const std::string body = !plan.hasFunctions ? "interpret"
                             : plan.size != 0
                                 ? "codeFixed<" + typeName(definition) + ", " + number(plan.size) + ", " + owns + ">"
                                 : "code<" + typeName(definition) + ", " + owns + ">";
    const std::string head = "int Xdr" + definition.name + "(Xdr* xdrs, void* object)";
    const std::string call = "return quorva::" + body + "(xdrs, object, " + description(definition) + ");";
    const std::string line = head + " { " + call + " }\n";
    return line.size() <= lineWidth + 1 ? line : head + "\n{\n    " + call + "\n}\n";
}

}  // namespace

std::string emitSource(const Module& module)
{
    Plans plans(module);
    std::vector<std::string> parts = {generatedBanner(module) + "#include <" + privateHeader(module.source.module) +
                                      ">\n"};
    std::string routines;
    for (const Definition* definition : typesOf(module)) {
        if (definition->kind == DefinitionKind::enumeration)
            parts.push_back(heading(*definition, module) + nameFunction(*definition));
        if (hasFunctions(*definition) && !plans.of(*definition).isInline)
            parts.push_back(definitions(*definition, heading(*definition, module), plans));
        routines += routine(*definition, plans);
    }
    parts.push_back(routines.empty() ? "" : "// The coding routines.\n" + routines);
    return sections(parts);
}

std::string emitPrivateHeader(const Module& module)
{
    Plans plans(module);
    std::string includes = "#include <" + publicHeader(module.source.module) + ">\n";
    for (const Import& import : module.imports) {
        const bool isForeign = import.module && !import.module->requested;
        if (!isForeign) includes += "#include <" + privateHeader(import.name) + ">\n";
    }
    std::string declared, descriptions;
    std::vector<std::string> inlined;
    for (const Definition* definition : declarationOrder(typesOf(module))) {
        if (!hasFunctions(*definition)) continue;
        declared += declarations(*definition, plans);
        if (plans.of(*definition).isInline)
            inlined.push_back(definitions(*definition, heading(*definition, module), plans));
    }
    for (const Definition* definition : typesOf(module))
        descriptions += "extern const ::quorva::Type " + definition->name + ";\n";
    std::vector<std::string> parts = {
        generatedBanner(module) +
            "// Shared by the generated source files of one library; not part of its interface.\n#pragma once\n",
        includes + "\n#include <quorvaruntime/plain.h>\n\n#include <cstddef>\n#include <cstdint>\n#include <span>\n",
        descriptions.empty() ? "" : "namespace quorva::types {\n" + descriptions + "}  // namespace quorva::types\n",
        declared};
    parts.insert(parts.end(), inlined.begin(), inlined.end());
    return sections(parts);
}

}  // namespace quorva::compiler
