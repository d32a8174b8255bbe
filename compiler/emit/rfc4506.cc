// Emits a program as one file of RFC 4506, in the subset that every XDR tool reads.
#include "emit.h"
#include "front/structure.h"
#include "text.h"

#include <cstdint>
#include <unordered_map>
#include <unordered_set>

namespace quorva::compiler {

namespace {

// True if the name is reserved by other XDR compilers or in the C that they generate. Keywords of C++ are never names.
bool isReserved(const std::string& name)
{
    return name == "program" || name == "quad" || name == "restrict" || name == "typeof" || name == "version";
}

std::string spelled(const std::string& name)
{
    return isReserved(name) ? name + "_" : name;
}

// The RFC 4506 type with the same wire format. RFC 4506 has no integers of 8 and 16 bits.
std::string wireType(Builtin builtin)
{
    switch (builtin) {
    case Builtin::LongInteger:
    case Builtin::Integer: return "int";
    case Builtin::LongNatural:
    case Builtin::Natural:
    case Builtin::ShortInteger:
    case Builtin::ShortNatural:
    case Builtin::UINT: return "unsigned int";
    case Builtin::Boolean: return "bool";
    case Builtin::Float:
    case Builtin::none: break;
    }
    return "float";
}

// Emits definitions, and remembers which are emitted already.
class Rfc4506Printer {
public:
    explicit Rfc4506Printer(const Rfc4506Options& options) : prefix(options.prefix) {}

    std::string module(const Module& module);
    std::string remoteProgram(const RemoteProgram& program) const;

private:
    // Types, enumerators and constants share one name space in C.
    std::string global(const std::string& name) const { return spelled(prefix + name); }

    std::string type(const Declaration& declaration, const Definition& user) const;
    std::string remoteType(const std::optional<TypeRef>& type) const;
    std::string bound(const Declaration& declaration) const;
    std::string declaration(const Declaration& declaration, const std::string& name, const Definition& user) const;

    std::string constant(const Definition& definition) const;
    std::string enumeration(const Definition& definition) const;
    std::string structure(const Definition& definition) const;
    std::string discriminatedUnion(const Definition& definition) const;
    std::string typeDefinition(const Definition& definition) const;
    std::string definition(const Definition& definition) const;

    std::string prefix;
    std::unordered_set<const Definition*> printed;
};

// A type that is not emitted yet is part of a cycle with the user. There, and for an array of the user's own type, C
// compilers need the keyword before the name. Other names have no keyword, because not every tool accepts it.
std::string Rfc4506Printer::type(const Declaration& declaration, const Definition& user) const
{
    const Definition* used = declaration.type.definition;
    if (!used) return wireType(declaration.type.builtin);
    const bool isStructure =
        used->kind == DefinitionKind::structure || used->kind == DefinitionKind::discriminatedUnion;
    const bool isAhead = used == &user ? declaration.form == Form::variableArray : !printed.contains(used);
    return (isAhead && isStructure ? "struct " : "") + global(used->name);
}

std::string Rfc4506Printer::bound(const Declaration& declaration) const
{
    const auto& written = declaration.written;
    if (written && written->owner && written->owner->kind == DefinitionKind::constant) return global(written->text);
    return std::to_string(declaration.bound);
}

std::string Rfc4506Printer::declaration(const Declaration& declaration, const std::string& name,
                                        const Definition& user) const
{
    switch (declaration.form) {
    case Form::single: return type(declaration, user) + " " + name + ";";
    case Form::fixedArray: return type(declaration, user) + " " + name + "[" + bound(declaration) + "];";
    case Form::variableArray: return type(declaration, user) + " " + name + "<" + bound(declaration) + ">;";
    case Form::optional: return type(declaration, user) + " *" + name + ";";
    case Form::string: return "string " + name + "<" + bound(declaration) + ">;";
    case Form::variableOpaque: return "opaque " + name + "<" + bound(declaration) + ">;";
    case Form::fixedOpaque: return "opaque " + name + "[" + bound(declaration) + "];";
    case Form::none: break;
    }
    return "void;";
}

std::string Rfc4506Printer::constant(const Definition& definition) const
{
    return "const " + global(definition.name) + " = " + std::to_string(definition.constant.number) + ";\n";
}

std::string Rfc4506Printer::enumeration(const Definition& definition) const
{
    std::string out = "enum " + global(definition.name) + " {\n";
    for (const Enumerator& each : definition.enumerators)
        out += blockComment(each.doc, indentWidth) + "    " + global(each.name) + " = " +
               std::to_string(each.value.number) + (&each == &definition.enumerators.back() ? "\n" : ",\n");
    return out + "};\n";
}

std::string Rfc4506Printer::structure(const Definition& definition) const
{
    std::string out = "struct " + global(definition.name) + " {\n";
    for (const Declaration& field : definition.fields)
        out += blockComment(docOf(field), indentWidth) + "    " + declaration(field, spelled(field.name), definition) +
               "\n";
    return out + "};\n";
}

// Cases that share a member become one arm, because XDR tools generate one member for each arm.
std::string Rfc4506Printer::discriminatedUnion(const Definition& definition) const
{
    const Discriminant discriminant = discriminantOf(definition);
    std::unordered_map<std::int64_t, std::string> names;
    if (discriminant.enumeration)
        for (const Enumerator& each : discriminant.enumeration->enumerators)
            names.emplace(each.value.number, global(each.name));
    const auto label = [&](const Value& value) -> std::string {
        if (discriminant.builtin == Builtin::Boolean) return value.number ? "TRUE" : "FALSE";
        const auto named = names.find(value.number);
        return named == names.end() ? std::to_string(value.number) : named->second;
    };

    const std::string comment = blockComment(docOf(definition.discriminant), indentWidth);
    std::string out = "union " + global(definition.name) + " switch (" +
                      (comment.empty() ? "" : "\n" + comment + "    ") + type(definition.discriminant, definition) +
                      " " + spelled(definition.discriminant.name) + ") {\n";
    const auto add = [&](const std::vector<const Value*>& cases, const Declaration& arm, const std::string& doc) {
        for (const Value* value : cases) out += "case " + label(*value) + ":\n";
        out += blockComment(doc, indentWidth) + "    " + declaration(arm, spelled(arm.name), definition) + "\n";
    };

    for (const ArmMember& arm : armMembersOf(definition)) add(arm.cases, *arm.declaration, arm.doc);
    for (const ArmMember& arm : voidArmsOf(definition)) add(arm.cases, *arm.declaration, arm.doc);
    if (definition.defaultArm)
        out += "default:\n" + blockComment(docOf(definition.defaultArm->declaration), indentWidth) + "    void;\n";
    return out + "};\n";
}

std::string Rfc4506Printer::typeDefinition(const Definition& definition) const
{
    return "typedef " + declaration(definition.target, global(definition.name), definition) + "\n";
}

std::string Rfc4506Printer::definition(const Definition& definition) const
{
    const std::string comment = blockComment(docOf(definition));
    switch (definition.kind) {
    case DefinitionKind::constant: return comment + constant(definition);
    case DefinitionKind::enumeration: return comment + enumeration(definition);
    case DefinitionKind::structure: return comment + structure(definition);
    case DefinitionKind::discriminatedUnion: return comment + discriminatedUnion(definition);
    case DefinitionKind::typeDefinition: break;
    }
    return comment + typeDefinition(definition);
}

std::string Rfc4506Printer::module(const Module& module)
{
    std::vector<std::string> parts = {
        blockComment("Module " + module.source.module + (module.doc.empty() ? "" : "\n\n" + module.doc))};
    for (const Definition* each : constantsOf(module)) parts.push_back(definition(*each));
    for (const Definition* each : declarationOrder(typesOf(module), Language::c)) {
        parts.push_back(definition(*each));
        printed.insert(each);
    }
    return sections(parts);
}

std::string Rfc4506Printer::remoteType(const std::optional<TypeRef>& type) const
{
    if (!type) return "void";
    return type->definition ? global(type->definition->name) : wireType(type->builtin);
}

std::string Rfc4506Printer::remoteProgram(const RemoteProgram& program) const
{
    std::string out = blockComment(program.doc) + "program " + global(program.name) + " {\n";
    for (const RemoteVersion& version : program.versions) {
        out += blockComment(version.doc, indentWidth) + "    version " + global(version.name) + " {\n";
        for (const RemoteProcedure& each : version.procedures)
            out += blockComment(each.doc, 2 * indentWidth) + "        " + remoteType(each.result) + " " +
                   global(each.name) + "(" + remoteType(each.argument) + ") = " + std::to_string(each.number.number) +
                   ";\n";
        out += "    } = " + std::to_string(version.number.number) + ";\n";
    }
    return out + "} = " + hexadecimal(program.number.number) + ";\n";
}

}  // namespace

std::string emitRfc4506(const Program& program, const Rfc4506Options& options)
{
    Rfc4506Printer printer(options);
    std::vector<std::string> parts = {blockComment("Generated by quorvaxdrc. Edit the interface files, not this one.")};
    for (const auto& module : program.modules) parts.push_back(printer.module(*module));
    for (const auto& module : program.modules)
        for (const RemoteProgram& remote : module->programs) parts.push_back(printer.remoteProgram(remote));
    return sections(parts);
}

}  // namespace quorva::compiler
