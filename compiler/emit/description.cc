// Emits the descriptions of a module's types, and the documentation that tools link.
#include "emit.h"
#include "front/resolve.h"
#include "front/structure.h"
#include "names.h"
#include "plan/plan.h"
#include "text.h"

#include <algorithm>

namespace quorva::compiler {

namespace {

// The constants have namespaces of their own, and all names in them start at the global namespace, so an interface may
// give a type any name.

std::string formOf(Form form)
{
    switch (form) {
    case Form::single: return "single";
    case Form::fixedArray: return "fixedArray";
    case Form::variableArray: return "variableArray";
    case Form::optional: return "optional";
    case Form::string: return "string";
    case Form::variableOpaque: return "variableOpaque";
    case Form::fixedOpaque: return "fixedOpaque";
    case Form::none: break;
    }
    return "none";
}

std::string joinedLines(const std::vector<std::string>& all)
{
    std::string out;
    for (const std::string& each : all) out += each;
    return out;
}

// The arrays in a namespace of their own; empty if there are none.
std::string arrays(const std::string& space, const std::vector<std::string>& all)
{
    return all.empty() ? ""
                       : "namespace quorva::" + space + " {\n\n" + joinedLines(all) +
                             "\n}  // namespace quorva::" + space + "\n";
}

std::string arrayOf(const std::string& type, const std::string& name, const std::string& rows)
{
    const std::string head = "constexpr ::quorva::" + type + " " + name + "[] = {";
    const bool isOne = std::ranges::count(rows, '\n') == 1;
    const std::string row = rows.substr(0, rows.size() - 1);
    if (isOne && head.size() + row.size() < lineWidth)
        return head + row.substr(indentWidth, row.size() - indentWidth - 1) + "};\n";
    return head + "\n" + rows + "};\n";
}

class DescriptionPrinter {
public:
    explicit DescriptionPrinter(const Module& module) : plans(module) {}

    // The description that a declaration refers to.
    std::string typeOf(const TypeRef& type)
    {
        if (type.definition && plans.isForeign(*type.definition)) return "::quorva::foreign::" + type.definition->name;
        return "::quorva::types::" + type.name;
    }

    // The rows of the type's members.
    std::string membersOf(const Definition& definition)
    {
        std::string rows;
        for (const Declaration* each : declarationsOf(definition)) rows += memberRow(definition, *each);
        return rows;
    }

    // The rows of a union's cases, sorted by value for a binary search.
    static std::string casesOf(const Definition& definition)
    {
        std::vector<std::pair<std::uint32_t, std::size_t>> cases;
        for (std::size_t arm = 0; arm < definition.arms.size(); ++arm)
            for (const Value& value : definition.arms[arm].cases)
                cases.emplace_back(static_cast<std::uint32_t>(value.number), arm + 1);
        std::ranges::sort(cases);
        std::vector<std::string> rows;
        for (const auto& [value, member] : cases)
            rows.push_back("{" + std::to_string(value) + "U, " + std::to_string(member) + "},");
        return filledLines(rows, indentWidth);
    }

    // The description itself.
    std::string of(const Definition& definition) const
    {
        const std::string& name = definition.name;
        const std::string members = "::quorva::members::" + name;
        const std::string head = "constinit const ::quorva::Type quorva::types::" + name + " = ::quorva::";
        const std::string first = "<::" + name + ">(" + literal(name) + ", ::Xdr" + name + ", ";
        switch (definition.kind) {
        case DefinitionKind::enumeration: return head + "enumeration" + first + "::" + name + "String);\n";
        case DefinitionKind::structure: return head + "structure" + first + members + ");\n";
        case DefinitionKind::discriminatedUnion:
            return head + "discriminatedUnion" + first + members + ", ::quorva::cases::" + name + ", " +
                   literal(name + "Union") + ", " + (definition.defaultArm ? "true" : "false") + ");\n";
        case DefinitionKind::typeDefinition: break;
        case DefinitionKind::constant: return "";
        }
        return head + "typeDefinition" + first + members + ");\n";
    }

    // The exported function that returns it.
    static std::string accessor(const Definition& definition)
    {
        const std::string& name = definition.name;
        return "const ::quorva::Type& quorva::description::" + name + "() { return ::quorva::types::" + name + "; }\n";
    }

    // The description of another library's type: its size, its routine, and the way to the description there.
    static std::string foreignType(const Definition& definition)
    {
        const std::string& name = definition.name;
        return "constexpr ::quorva::Type " + name + " = ::quorva::leaf<::" + name + ">(::quorva::TypeKind::foreign, " +
               literal(name) + ", ::Xdr" + name + ", ::quorva::Builtin::" + builtinOf(definition) +
               ", ::quorva::description::" + name + ");\n";
    }

    // The descriptions of other libraries' types among these, each once.
    template <class Types>
    std::string foreignTypes(const Types& used)
    {
        std::vector<const Definition*> found;
        std::string stubs;
        for (const TypeRef* type : used) {
            const Definition* const definition = type->definition;
            if (!definition || !plans.isForeign(*definition) || std::ranges::count(found, definition) > 0) continue;
            found.push_back(definition);
            stubs += foreignType(*definition);
        }
        return stubs.empty() ? "" : "namespace quorva::foreign {\n" + stubs + "}  // namespace quorva::foreign\n";
    }

private:
    std::string memberRow(const Definition& owner, const Declaration& declaration)
    {
        const Form form = declaration.form;
        const bool hasBound = form != Form::single && form != Form::optional && form != Form::none;
        const std::string use = "{" + (declaration.type.name.empty() ? "nullptr" : "&" + typeOf(declaration.type)) +
                                ", " + std::to_string(hasBound ? declaration.bound : 0) +
                                ", ::quorva::Form::" + formOf(form) + "}";
        const bool isNamed = owner.kind != DefinitionKind::typeDefinition && form != Form::none;
        return "    {" + literal(isNamed ? declaration.name : "") + ", " + use + ", " +
               (isNamed ? "offsetof(::" + owner.name + ", " + declaration.name + ")" : "0") + "},\n";
    }

    // The built-in type that an alias names, or "none".
    static std::string builtinOf(const Definition& definition)
    {
        static constexpr const char* names[] = {"none",    "Boolean",     "ShortInteger", "ShortNatural", "Integer",
                                                "Natural", "LongInteger", "LongNatural",  "UINT",         "Float"};
        if (definition.kind != DefinitionKind::typeDefinition || definition.target.form != Form::single)
            return names[0];
        return names[static_cast<int>(canonicalType(definition.target.type).builtin)];
    }

    Plans plans;
};

// ---- Documentation -------------------------------------------------------------------------------------------------

std::string text(const std::string& doc)
{
    return doc.empty() ? "\"\"" : literal(doc);
}

std::string provisional(const std::optional<std::string>& reason)
{
    return reason ? text(*reason) : "nullptr";
}

// The rows of the enumerators, in ascending order of value.
std::string enumeratorRows(const Definition& definition)
{
    std::string rows;
    for (const Enumerator* each : enumeratorsByValue(definition))
        rows +=
            "    {" + literal(each->name) + ", " + std::to_string(each->value.number) + ", " + text(each->doc) + "},\n";
    return rows;
}

// A row for each member; no rows if no member is documented or provisional.
std::string memberRows(const Definition& definition)
{
    std::string rows;
    bool isDocumented = false;
    for (const Declaration* each : declarationsOf(definition)) {
        isDocumented = isDocumented || !each->doc.empty() || each->provisional;
        rows += "    {" + text(each->doc) + ", " + provisional(each->provisional) + "},\n";
    }
    return isDocumented ? rows : "";
}

// The arguments and results of the module's procedures.
std::vector<const TypeRef*> remoteTypesOf(const Module& module)
{
    std::vector<const TypeRef*> types;
    for (const RemoteProgram& program : module.programs)
        for (const RemoteVersion& version : program.versions)
            for (const RemoteProcedure& procedure : version.procedures)
                for (const auto* type : {&procedure.argument, &procedure.result})
                    if (*type) types.push_back(&**type);
    return types;
}

// The procedures and the versions of a program, each in a namespace of its own.
std::string versionsOf(const RemoteProgram& program, DescriptionPrinter& printer)
{
    const auto type = [&](const std::optional<TypeRef>& each) {
        return each ? "&" + printer.typeOf(*each) : std::string("nullptr");
    };
    const std::string space = "procedures::" + program.name;
    std::vector<std::string> procedures;
    std::string rows;
    for (const RemoteVersion& version : program.versions) {
        std::string ofVersion;
        for (const RemoteProcedure& each : version.procedures)
            ofVersion += "    {" + literal(each.name) + ", " + std::to_string(each.number.number) + "U, " +
                         type(each.argument) + ", " + type(each.result) + ", " + text(each.doc) + "},\n";
        procedures.push_back(arrayOf("RemoteProcedure", version.name, ofVersion));
        rows += "    {" + literal(version.name) + ", " + std::to_string(version.number.number) + "U, " +
                text(version.doc) + ", ::quorva::" + space + "::" + version.name + "},\n";
    }
    return sections({arrays(space, procedures), arrays("versions", {arrayOf("RemoteVersion", program.name, rows)})});
}

std::string programRows(const Module& module)
{
    std::string rows;
    for (const RemoteProgram& each : module.programs)
        rows += "    {" + literal(each.name) + ", " + hexadecimal(each.number.number) + "U, " +
                std::to_string(each.at.line) + ", " + text(each.doc) + ", ::quorva::versions::" + each.name + "},\n";
    return rows;
}

// A unique identifier for each module: letters and digits are kept, '_' becomes "_u" and '/' becomes "_s".
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
    std::vector<std::string> members, cases;
    std::vector<const TypeRef*> used;
    std::string types, accessors;
    for (const Definition* definition : typesOf(module)) {
        for (const Declaration* each : declarationsOf(*definition)) used.push_back(&each->type);
        const std::string rows = printer.membersOf(*definition);
        if (!rows.empty()) members.push_back(arrayOf("Member", definition->name, rows));
        if (definition->kind == DefinitionKind::discriminatedUnion)
            cases.push_back(arrayOf("Case", definition->name, DescriptionPrinter::casesOf(*definition)));
        types += printer.of(*definition);
        accessors += DescriptionPrinter::accessor(*definition);
    }
    return sections(
        {generatedBanner(module) + "#include <" + privateHeader(module.source.module) + ">\n\n#include <cstddef>\n",
         printer.foreignTypes(used), arrays("members", members), arrays("cases", cases), types, accessors});
}

std::string emitDocumentation(const Module& module)
{
    std::vector<std::string> enumerators, members;
    std::string rows;
    for (const Definition* definition : typesOf(module)) {
        const std::string& name = definition->name;
        const std::string named = enumeratorRows(*definition);
        const std::string documented = memberRows(*definition);
        if (!named.empty()) enumerators.push_back(arrayOf("Enumerator", name, named));
        if (!documented.empty()) members.push_back(arrayOf("MemberDocumentation", name, documented));
        rows += "    {&::quorva::types::" + name + ", " + std::to_string(definition->at.line) + ", " +
                text(definition->doc) + ", " + provisional(definition->provisional) + ", " +
                (documented.empty() ? "{}" : "::quorva::texts::" + name) + ", " +
                (named.empty() ? "{}" : "::quorva::enumerators::" + name) + "},\n";
    }
    DescriptionPrinter printer(module);
    std::string versions;
    for (const RemoteProgram& each : module.programs)
        versions += (versions.empty() ? "" : "\n") + versionsOf(each, printer);
    const std::string identifier = identifierOf(module);
    const std::string types = identifier + "_types";
    const std::string programs = identifier + "_programs";
    const std::string remote = programRows(module);
    return sections(
        {generatedBanner(module) + "#include <" + privateHeader(module.source.module) +
             ">\n#include <quorvapixdr/documentation.h>\n",
         arrays("enumerators", enumerators), arrays("texts", members), printer.foreignTypes(remoteTypesOf(module)),
         versions,
         "namespace quorva::documentation {\n\n" + (rows.empty() ? "" : arrayOf("Documentation", types, rows) + "\n") +
             (remote.empty() ? "" : arrayOf("RemoteProgram", programs, remote) + "\n") +
             "extern const ::quorva::Module " + identifier + ";\nconstinit const ::quorva::Module " + identifier +
             " = {" + literal(module.source.module) + ", " + literal(module.source.module + ".x") + ",\n    " +
             text(module.doc) + ",\n    " + (rows.empty() ? "{}" : types) + ", " + (remote.empty() ? "{}" : programs) +
             "};\n\n}  // namespace quorva::documentation\n"});
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
        "// Generated by quorvaxdrc: the list of the documented modules.\n#include <quorvapixdr/documentation.h>\n",
        "namespace quorva::documentation {\n" + declared + "}\n",
        "namespace quorva {\n",
        "std::span<const Module* const> " + function + "();\n",
        "std::span<const Module* const> " + function + "()\n{\n    static constexpr const Module* all[] = {\n" +
            addresses + "    };\n    return all;\n}\n",
        "}  // namespace quorva\n",
    });
}

}  // namespace quorva::compiler
