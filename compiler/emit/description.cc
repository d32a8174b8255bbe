// Prints the descriptions of a module's types, and the documentation that tools link beside them.
#include "emit.h"
#include "names.h"
#include "plan/plan.h"
#include "plan/structure.h"
#include "front/resolve.h"
#include "text.h"

#include <algorithm>

namespace quorva::compiler {

namespace {

// The constants are in namespaces where nothing else is declared, and all that they mention is spelled from the global
// namespace on, so that an interface may name a type as it likes.

std::string formOf(Form form)
{
    switch (form) {
    case Form::single: return "single";
    case Form::vector: return "fixedArray";
    case Form::list: return "variableArray";
    case Form::optional: return "optional";
    case Form::string: return "string";
    case Form::bytes: return "variableOpaque";
    case Form::opaque: return "fixedOpaque";
    case Form::nothing: break;
    }
    return "none";
}

std::string kindOf(Kind kind)
{
    switch (kind) {
    case Kind::enumeration: return "enumeration";
    case Kind::record: return "structure";
    case Kind::discriminated: return "discriminatedUnion";
    case Kind::definedAs:
    case Kind::constant: break;  // which has no description
    }
    return "typeDefinition";
}

std::string arrayOf(const std::string& type, const std::string& space, const std::string& name, const std::string& rows)
{
    return rows.empty() ? "" : "namespace quorva::" + space + " {\nconstexpr ::quorva::" + type + " " + name + "[] = {\n" + rows + "};\n}\n";
}

std::string item(const std::string& name, const std::string& value)
{
    return "    ." + name + " = " + value + ",\n";
}

class DescriptionPrinter {
public:
    explicit DescriptionPrinter(const Module& module) : plans_(module) {}

    // The description that a declaration refers to.
    std::string typeOf(const TypeRef& type)
    {
        if (type.definition && plans_.isForeign(*type.definition)) return "::quorva::foreign::" + type.definition->name;
        return "::quorva::types::" + type.name;
    }

    std::string memberRow(const Definition& owner, const Declaration& declaration, bool isNamed)
    {
        const std::string use = "{" + (declaration.type.name.empty() ? "nullptr" : "&" + typeOf(declaration.type)) + ", " +
                                std::to_string(hasBound(declaration.form) ? declaration.bound : 0) + ", ::quorva::Form::" +
                                formOf(declaration.form) + "}";
        if (!isNamed || declaration.form == Form::nothing) return "    {\"\", " + use + ", 0, 0},\n";
        return "    {" + literal(declaration.name) + ", " + use + ", offsetof(::" + owner.name + ", " + declaration.name + "), " +
               std::to_string(declaration.name.size()) + "},\n";
    }

    std::string of(const Definition& definition)
    {
        std::string members, cases;
        switch (definition.kind) {
        case Kind::record:
            for (const Declaration& field : definition.fields) members += memberRow(definition, field, true);
            break;
        case Kind::discriminated:
            members += memberRow(definition, definition.discriminant, true);
            for (const Arm& arm : definition.arms) members += memberRow(definition, arm.declaration, true);
            cases = caseRows(definition);
            break;
        case Kind::definedAs: members = memberRow(definition, definition.target, false); break;
        case Kind::enumeration:
        case Kind::constant: break;
        }
        const std::string& name = definition.name;
        return arrayOf("Member", "members", name, members) + arrayOf("Case", "cases", name, cases) +
               "constinit const ::quorva::Type quorva::types::" + name + " = {\n" + item("name", literal(name)) +
               item("kind", "::quorva::TypeKind::" + kindOf(definition.kind)) +
               (definition.defaultArm ? item("hasDefault", "true") : "") + item("size", "sizeof(::" + name + ")") +
               item("alignment", "alignof(::" + name + ")") + item("routine", "::Xdr" + name) +
               (definition.kind == Kind::enumeration ? item("nameOf", "::" + name + "String") : "") +
               (members.empty() ? "" : item("members", "::quorva::members::" + name)) +
               (cases.empty() ? "" : item("cases", "::quorva::cases::" + name)) +
               (definition.kind == Kind::discriminated ? item("armElement", literal(name + "Union")) : "") + "};\n";
    }

    // What is known of another library's type: how long it is, and its routine.
    std::string stub(const Definition& definition)
    {
        const std::string& name = definition.name;
        const Builtin builtin = builtinOf(definition);
        return "namespace quorva::foreign {\nconstexpr ::quorva::Type " + name + " = {\n" + item("name", literal(name)) +
               item("kind", "::quorva::TypeKind::foreign") +
               (builtin == Builtin::none ? "" : item("builtin", "::quorva::Builtin::" + nameOf(builtin))) +
               item("size", "sizeof(::" + name + ")") + item("alignment", "alignof(::" + name + ")") +
               item("routine", "::Xdr" + name) + "};\n}\n";
    }

    // Definitions of other libraries that the module's declarations name.
    std::vector<const Definition*> foreignOf(const Module& module)
    {
        std::vector<const Definition*> out;
        for (const Definition* definition : typesOf(module))
            for (const Declaration* declaration : declarationsOf(*definition)) {
                const Definition* used = declaration->type.definition;
                if (used && plans_.isForeign(*used) && std::ranges::find(out, used) == out.end()) out.push_back(used);
            }
        return out;
    }

private:
    static bool hasBound(Form form) { return form != Form::single && form != Form::optional && form != Form::nothing; }

    static Builtin builtinOf(const Definition& definition)
    {
        if (definition.kind != Kind::definedAs || definition.target.form != Form::single) return Builtin::none;
        return behindAliases(definition.target.type).builtin;
    }
    static std::string nameOf(Builtin builtin)
    {
        static constexpr const char* names[] = {"none", "Boolean", "ShortInteger", "ShortNatural", "Integer",
                                                "Natural", "LongInteger", "LongNatural", "UINT", "Float"};
        return names[static_cast<int>(builtin)];
    }

    // By value, for a binary search.
    static std::string caseRows(const Definition& definition)
    {
        std::vector<std::pair<std::uint32_t, std::size_t>> rows;
        for (std::size_t arm = 0; arm < definition.arms.size(); ++arm)
            for (const Value& value : definition.arms[arm].cases)
                rows.emplace_back(static_cast<std::uint32_t>(value.number), arm + 1);
        std::ranges::sort(rows);
        std::string out;
        for (const auto& [value, member] : rows)
            out += "    {" + std::to_string(value) + "U, " + std::to_string(member) + "},\n";
        return out;
    }

    Plans plans_;
};

// ---- Documentation -------------------------------------------------------------------------------------------------

std::string text(const std::string& words)
{
    return words.empty() ? "\"\"" : literal(words);
}

std::string provisional(const std::optional<std::string>& reason)
{
    return reason ? text(*reason) : "nullptr";
}

std::string documentationRows(const Definition& definition, std::string& enumerators)
{
    std::vector<const Enumerator*> byValue;
    for (const Enumerator& enumerator : definition.enumerators) byValue.push_back(&enumerator);
    std::ranges::sort(byValue, {}, [](const Enumerator* each) { return each->value.number; });
    for (const Enumerator* each : byValue)
        enumerators += "    {" + literal(each->name) + ", " + std::to_string(each->value.number) + ", " + text(each->doc) + "},\n";

    std::string members;
    bool says = false;
    for (const Declaration* each : declarationsOf(definition)) {
        says = says || !each->doc.empty();
        members += "    {" + text(each->doc) + "},\n";
    }
    return says ? members : "";
}

// A name of its own for each module: letters and digits stand for themselves, '_' and '/' for two characters.
std::string identifierOf(const Module& module)
{
    std::string out = "module_";
    for (const char c : module.source.module) out += c == '_' ? std::string("_u") : c == '/' ? "_s" : std::string(1, c);
    return out;
}

}  // namespace

std::string emitDescriptions(const Module& module)
{
    DescriptionPrinter printer(module);
    std::vector<std::string> parts = {madeFrom(module) + "#include <" + privateHeader(module.source.module) +
                                      ">\n\n#include <cstddef>\n#include <cstdint>\n"};
    for (const Definition* definition : printer.foreignOf(module)) parts.push_back(printer.stub(*definition));
    for (const Definition* definition : typesOf(module)) parts.push_back(printer.of(*definition));
    return sections(parts);
}

std::string emitDocumentation(const Module& module)
{
    std::string arrays, rows;
    for (const Definition* definition : typesOf(module)) {
        const std::string& name = definition->name;
        std::string enumerators;
        const std::string members = documentationRows(*definition, enumerators);
        arrays += arrayOf("Enumerator", "enumerators", name, enumerators);
        arrays += arrayOf("MemberDocumentation", "texts", name, members);
        rows += "    {&::quorva::types::" + name + ", " + std::to_string(definition->at.line) + ", " + text(definition->doc) +
                ", " + provisional(definition->provisional) + ", " + (members.empty() ? "{}" : "::quorva::texts::" + name) + ", " +
                (enumerators.empty() ? "{}" : "::quorva::enumerators::" + name) + "},\n";
    }
    const std::string identifier = identifierOf(module);
    const std::string types = arrayOf("Documentation", "documentation", identifier + "_types", rows);
    return sections({madeFrom(module) + "#include <" + privateHeader(module.source.module) +
                         ">\n#include <quorvapixdr/documentation.h>\n",
                     arrays, types,
                     "namespace quorva::documentation {\nextern const ::quorva::Module " + identifier + ";\n}\n",
                     "constinit const ::quorva::Module quorva::documentation::" + identifier + " = {\n" +
                         item("name", literal(module.source.module)) + item("file", literal(module.source.module + ".x")) +
                         item("text", text(module.doc)) +
                         item("types", rows.empty() ? "{}" : "::quorva::documentation::" + identifier + "_types") + "};\n"});
}

std::string emitModuleList(const std::vector<const Module*>& modules, const std::string& function)
{
    std::vector<const Module*> byName = modules;
    std::ranges::sort(byName, {}, [](const Module* each) { return each->source.module; });
    std::string declared, addresses;
    for (const Module* module : byName) {
        declared += "extern const ::quorva::Module " + identifierOf(*module) + ";\n";
        addresses += "        &documentation::" + identifierOf(*module) + ",\n";
    }
    return sections({
        "// The documented modules, listed by quorvaxdrc.\n#include <quorvapixdr/documentation.h>\n",
        "namespace quorva::documentation {\n" + declared + "}\n",
        "namespace quorva {\n",
        "std::span<const Module* const> " + function + "();\n",
        "std::span<const Module* const> " + function + "()\n{\n    static constexpr const Module* all[] = {\n" + addresses +
            "    };\n    return all;\n}\n",
        "}  // namespace quorva\n",
    });
}

}  // namespace quorva::compiler
