// Prints a module's part of the schema table, and the list of modules.
#include "emit.h"
#include "plan/structure.h"
#include "text.h"

#include <algorithm>
#include <unordered_set>

namespace quorva::compiler {

namespace {

// Everything stands in the namespace of the table's own types, and the interface's types are written with :: there. The
// entries are in a namespace below it, where nothing else is named, so that an interface may define a "Type" or a
// "Member".

std::string fileOf(const Module& module)
{
    return module.source.module + ".x";
}

// The name of a module's entry: each module name gives another one.
std::string entryOf(const Module& module)
{
    std::string out = "of_";
    for (const char c : module.source.module) {  // letters, digits, '_' and '/'
        if (c == '/')
            out += '_';
        else if (c == '_')
            out += "_0";
        else
            out += c;
    }
    return out;
}

std::string formOf(Form form)
{
    switch (form) {
    case Form::single: return "Form::single";
    case Form::vector: return "Form::vector";
    case Form::list: return "Form::list";
    case Form::optional: return "Form::optional";
    case Form::string: return "Form::string";
    case Form::bytes: return "Form::bytes";
    case Form::opaque:
    case Form::nothing: break;  // which needs no words
    }
    return "Form::opaque";
}

std::string kindOf(Kind kind)
{
    switch (kind) {
    case Kind::enumeration: return "Kind::enumeration";
    case Kind::record: return "Kind::record";
    case Kind::discriminated: return "Kind::discriminated";
    case Kind::definedAs:
    case Kind::constant: break;  // which has no entry
    }
    return "Kind::definedAs";
}

std::string useOf(const Declaration& declaration)
{
    const bool hasType = !declaration.type.name.empty();
    const bool hasBound = declaration.form != Form::single && declaration.form != Form::optional;
    return "{" + formOf(declaration.form) + ", " + (hasType ? "&types::" + declaration.type.name : "nullptr") +
           (hasBound ? ", " + std::to_string(declaration.bound) : "") + "}";
}

// A braced line of a table with documentation at its end.
std::string row(std::size_t indent, const std::string& head, std::vector<std::string> parts, const std::string& doc,
                const std::string& tail)
{
    if (doc.empty()) return argumentList(indent, head, parts, tail) + "\n";

    const std::string text = literal(doc, indent + head.size());
    if (text.find('\n') == std::string::npos) {
        parts.push_back(text);
        return argumentList(indent, head, parts, tail) + "\n";
    }
    return argumentList(indent, head, parts, ",") + "\n" + std::string(indent + head.size(), ' ') + text + tail + "\n";
}

std::vector<std::string> memberParts(const Definition& owner, const Declaration& declaration)
{
    return {literal(declaration.name), useOf(declaration), "offsetof(::" + owner.name + ", " + declaration.name + ")"};
}

// ---- The arrays behind an entry -------------------------------------------------------------------------------------

std::string enumeratorArray(const Definition& definition)
{
    std::vector<const Enumerator*> byValue;
    for (const Enumerator& enumerator : definition.enumerators) byValue.push_back(&enumerator);
    std::ranges::sort(byValue, {}, [](const Enumerator* each) { return each->value.number; });

    std::string out = "constexpr Enumerator " + definition.name + "Enumerators[] = {\n";
    for (const Enumerator* each : byValue)
        out += row(indentWidth, "{", {literal(each->name), std::to_string(each->value.number)}, each->doc, "},");
    return out + "};\n";
}

std::string fieldArray(const Definition& definition)
{
    std::string out = "constexpr Member " + definition.name + "Fields[] = {\n";
    const auto add = [&](const Declaration& field) {
        out += row(indentWidth, "{", memberParts(definition, field), field.doc, "},");
    };
    if (definition.kind == Kind::discriminated) add(definition.discriminant);
    for (const Declaration& field : definition.fields) add(field);
    return out + "};\n";
}

std::string armRow(const Definition& definition, const Arm& arm)
{
    std::vector<std::string> numbers;
    for (const Value& value : arm.cases) numbers.push_back(std::to_string(value.number));
    const std::string head = "{cases<" + joined(numbers) + ">, {";

    if (arm.declaration.form != Form::nothing)
        return row(indentWidth, head, memberParts(definition, arm.declaration), arm.declaration.doc, "}},");
    if (arm.declaration.doc.empty()) return std::string(indentWidth, ' ') + head + "}},\n";
    return row(indentWidth, head, {"\"\"", "{}", "0"}, arm.declaration.doc, "}},");
}

std::string armArray(const Definition& definition)
{
    std::string out = "constexpr Arm " + definition.name + "Arms[] = {\n";
    for (const Arm& arm : definition.arms) out += armRow(definition, arm);
    return out + "};\n";
}

std::string arrays(const Definition& definition)
{
    switch (definition.kind) {
    case Kind::enumeration: return enumeratorArray(definition);
    case Kind::record: return fieldArray(definition);
    case Kind::discriminated: return fieldArray(definition) + "\n" + armArray(definition);
    case Kind::definedAs:
    case Kind::constant: break;
    }
    return "";
}

// ---- Entries --------------------------------------------------------------------------------------------------------

std::string item(const std::string& name, const std::string& value)
{
    return "    ." + name + " = " + value + ",\n";
}

std::string textItem(const std::string& name, const std::string& text)
{
    return item(name, literal(text, indentWidth + name.size() + 4));
}

// What only entries of its kind have.
std::string itemsOfKind(const Definition& definition)
{
    const std::string& name = definition.name;
    switch (definition.kind) {
    case Kind::enumeration: return item("enumerators", name + "Enumerators");
    case Kind::record: return item("fields", name + "Fields");
    case Kind::discriminated:
        return item("fields", name + "Fields") + item("arms", name + "Arms") +
               (definition.defaultArm ? item("hasDefault", "true") : "");
    case Kind::definedAs:
    case Kind::constant: break;
    }
    return item("target", useOf(definition.target));
}

std::string entry(const Definition& definition, const Module& module)
{
    const std::string& name = definition.name;
    return "constinit const Type types::" + name + " = {\n" + textItem("name", name) +
           item("kind", kindOf(definition.kind)) + textItem("module", module.source.module) +
           textItem("file", fileOf(module)) + item("line", std::to_string(definition.at.line)) +
           (definition.doc.empty() ? "" : textItem("doc", definition.doc)) +
           (definition.provisional ? textItem("provisional", *definition.provisional) : "") +
           item("routine", "Xdr" + name) +
           (definition.kind == Kind::enumeration ? item("nameOf", name + "String") : "") +
           item("size", "sizeof(::" + name + ")") + item("alignment", "alignof(::" + name + ")") +
           itemsOfKind(definition) + "};\n";
}

std::string definitionText(const Definition& definition, const Module& module)
{
    const std::string before = arrays(definition);
    return before + (before.empty() ? "" : "\n") + entry(definition, module);
}

// ---- The parts of the file ------------------------------------------------------------------------------------------

std::string declared(const std::vector<std::string>& names)
{
    return argumentList(0, "extern const schema::Type ", names, ";") + "\n";
}

// The module's own entries, and those of other modules that they refer to.
std::string entryDeclarations(const Module& module)
{
    std::vector<std::string> own;
    std::vector<std::string> foreign;
    std::unordered_set<const Definition*> seen;
    for (const Definition* definition : typesOf(module)) {
        own.push_back(definition->name);
        seen.insert(definition);
    }
    for (const Definition* definition : typesOf(module))
        for (const Declaration* declaration : declarationsOf(*definition))
            if (const Definition* used = declaration->type.definition; used && seen.insert(used).second)
                foreign.push_back(used->name);
    if (own.empty()) return "";
    return "namespace types {\n" + declared(own) +
           (foreign.empty() ? "" : "\n// Of other modules.\n" + declared(foreign)) + "}  // namespace types\n";
}

std::string caseArrays(const Module& module)
{
    const auto types = typesOf(module);
    if (std::none_of(types.begin(), types.end(), [](const auto* each) { return !each->arms.empty(); })) return "";
    return "// The values that select an arm.\ntemplate <std::int64_t... numbers>\n"
           "static constexpr std::int64_t cases[] = {numbers...};\n";
}

std::string moduleEntry(const Module& module)
{
    const std::string name = entryOf(module);
    std::string types;
    for (const Definition* definition : typesOf(module)) types += "    &types::" + definition->name + ",\n";

    return "namespace tables {\nextern const schema::Module " + name + ";\n}\n\n" +
           (types.empty() ? "" : "constexpr const Type* definitions[] = {\n" + types + "};\n\n") +
           "constinit const Module tables::" + name + " = {\n" + textItem("name", module.source.module) +
           textItem("file", fileOf(module)) + textItem("doc", module.doc) +
           item("types", types.empty() ? "{}" : "definitions") + "};\n";
}

}  // namespace

std::string emitSchema(const Module& module)
{
    std::vector<std::string> parts = {
        lineComment("The schema table of " + fileOf(module) +
                    ", made from it by quorvaxdrc. Change the interface file, not this one.") +
            "#include <quorvapixdr/" + module.source.module + ".h>\n#include <quorvapixdr/schema.h>\n",
        "#include <cstddef>\n#include <cstdint>\n",
        "namespace quorva::schema {\n",
        entryDeclarations(module),
        caseArrays(module),
    };
    for (const Definition* definition : typesOf(module)) parts.push_back(definitionText(*definition, module));
    parts.push_back(moduleEntry(module));
    parts.push_back("}  // namespace quorva::schema\n");
    return sections(parts);
}

std::string emitModuleList(const std::vector<const Module*>& modules)
{
    std::vector<const Module*> byName = modules;
    std::sort(byName.begin(), byName.end(),
              [](const Module* a, const Module* b) { return a->source.module < b->source.module; });

    std::vector<std::string> names;
    std::string addresses;
    for (const Module* module : byName) {
        names.push_back(entryOf(*module));
        addresses += "        &tables::" + names.back() + ",\n";
    }
    return sections({
        "// The modules of the schema table, listed by quorvaxdrc.\n#include <quorvapixdr/schema.h>\n",
        "namespace quorva::schema {\n",
        "namespace tables {\n" + argumentList(0, "extern const schema::Module ", names, ";") + "\n}\n",
        "std::span<const Module* const> modules()\n{\n    static constexpr const Module* all[] = {\n" + addresses +
            "    };\n    return all;\n}\n",
        "}  // namespace quorva::schema\n",
    });
}

}  // namespace quorva::compiler
