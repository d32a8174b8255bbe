// Prints a program as one file in the XDR language of RFC 4506, in the subset that every XDR tool reads.
#include "emit.h"
#include "front/structure.h"
#include "text.h"

#include <cstdint>
#include <unordered_map>
#include <unordered_set>

namespace quorva::compiler {

namespace {

// Words that other XDR compilers keep for themselves, or that are reserved in the C which they print. What is a word of
// C++ as well has no chance to be a name here.
bool isReserved(const std::string& name)
{
    return name == "program" || name == "quad" || name == "restrict" || name == "typeof" || name == "version";
}

std::string spelled(const std::string& name)
{
    return isReserved(name) ? name + "_" : name;
}

// The type that carries the same units, for tools that know no narrow integers.
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

// Prints definitions and keeps in mind which of them are out already.
class Printer {
public:
    explicit Printer(const PlainOptions& options) : prefix_(options.prefix) {}

    std::string module(const Module& module);

private:
    // Types, enumerators and constants share one name space in C.
    std::string global(const std::string& name) const { return spelled(prefix_ + name); }

    std::string type(const Declaration& declaration, const Definition& user) const;
    std::string bound(const Declaration& declaration) const;
    std::string declaration(const Declaration& declaration, const std::string& name, const Definition& user) const;

    std::string constant(const Definition& definition) const;
    std::string enumeration(const Definition& definition) const;
    std::string record(const Definition& definition) const;
    std::string discriminated(const Definition& definition) const;
    std::string definedAs(const Definition& definition) const;
    std::string definition(const Definition& definition) const;

    std::string prefix_;
    std::unordered_set<const Definition*> printed_;
};

// A type that is still to come is one that the user's own definition leads back to. There, and for a list of the user's
// own type, C compilers need the keyword before the name; nowhere else, since not every tool knows that form.
std::string Printer::type(const Declaration& declaration, const Definition& user) const
{
    const Definition* used = declaration.type.definition;
    if (!used) return wireType(declaration.type.builtin);
    const bool isStructure = used->kind == Kind::record || used->kind == Kind::discriminated;
    const bool isAhead = used == &user ? declaration.form == Form::list : !printed_.contains(used);
    return (isAhead && isStructure ? "struct " : "") + global(used->name);
}

std::string Printer::bound(const Declaration& declaration) const
{
    const auto& written = declaration.written;
    if (written && written->owner && written->owner->kind == Kind::constant) return global(written->text);
    return std::to_string(declaration.bound);
}

std::string Printer::declaration(const Declaration& declaration, const std::string& name, const Definition& user) const
{
    switch (declaration.form) {
    case Form::single: return type(declaration, user) + " " + name + ";";
    case Form::vector: return type(declaration, user) + " " + name + "[" + bound(declaration) + "];";
    case Form::list: return type(declaration, user) + " " + name + "<" + bound(declaration) + ">;";
    case Form::optional: return type(declaration, user) + " *" + name + ";";
    case Form::string: return "string " + name + "<" + bound(declaration) + ">;";
    case Form::bytes: return "opaque " + name + "<" + bound(declaration) + ">;";
    case Form::opaque: return "opaque " + name + "[" + bound(declaration) + "];";
    case Form::nothing: break;
    }
    return "void;";
}

std::string Printer::constant(const Definition& definition) const
{
    return "const " + global(definition.name) + " = " + std::to_string(definition.constant.number) + ";\n";
}

std::string Printer::enumeration(const Definition& definition) const
{
    std::string out = "enum " + global(definition.name) + " {\n";
    for (const Enumerator& each : definition.enumerators)
        out += blockComment(each.doc, indentWidth) + "    " + global(each.name) + " = " +
               std::to_string(each.value.number) + (&each == &definition.enumerators.back() ? "\n" : ",\n");
    return out + "};\n";
}

std::string Printer::record(const Definition& definition) const
{
    std::string out = "struct " + global(definition.name) + " {\n";
    for (const Declaration& field : definition.fields)
        out += blockComment(docOf(field), indentWidth) + "    " + declaration(field, spelled(field.name), definition) +
               "\n";
    return out + "};\n";
}

// Arms that share a member are brought together, because the C that is made from the file has one member for each arm.
std::string Printer::discriminated(const Definition& definition) const
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

    const std::string told = blockComment(docOf(definition.discriminant), indentWidth);
    std::string out = "union " + global(definition.name) + " switch (" + (told.empty() ? "" : "\n" + told + "    ") +
                      type(definition.discriminant, definition) + " " + spelled(definition.discriminant.name) + ") {\n";
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

std::string Printer::definedAs(const Definition& definition) const
{
    return "typedef " + declaration(definition.target, global(definition.name), definition) + "\n";
}

std::string Printer::definition(const Definition& definition) const
{
    const std::string comment = blockComment(docOf(definition));
    switch (definition.kind) {
    case Kind::constant: return comment + constant(definition);
    case Kind::enumeration: return comment + enumeration(definition);
    case Kind::record: return comment + record(definition);
    case Kind::discriminated: return comment + discriminated(definition);
    case Kind::definedAs: break;
    }
    return comment + definedAs(definition);
}

std::string Printer::module(const Module& module)
{
    std::vector<std::string> parts = {
        blockComment("Module " + module.source.module + (module.doc.empty() ? "" : "\n\n" + module.doc))};
    for (const Definition* each : constantsOf(module)) parts.push_back(definition(*each));
    for (const Definition* each : declarationOrder(typesOf(module))) {
        parts.push_back(definition(*each));
        printed_.insert(each);
    }
    return sections(parts);
}

}  // namespace

std::string emitPlain(const Program& program, const PlainOptions& options)
{
    Printer printer(options);
    std::vector<std::string> parts = {blockComment("Made by quorvaxdrc. Change the interface files, not this one.")};
    for (const auto& module : program.modules) parts.push_back(printer.module(*module));
    return sections(parts);
}

}  // namespace quorva::compiler
