// Prints the coding routines and name functions of a module.
#include "emit.h"
#include "emit_model.h"
#include "emit_text.h"

#include <algorithm>
#include <iterator>

namespace quorva::compiler {

namespace {

// How names are written inside a routine. The words of <quorvapixdr/walk.h> and the interface's names stand plainly
// there unless they are spelled alike.
class Spelling {
public:
    explicit Spelling(const Module& module) : visible_(module) {}

    std::string word(const std::string& name) const
    {
        return visible_.contains(name) ? "quorva::walk::" + name : name;
    }

    std::string type(const std::string& name) const { return isTaken(name) ? "::" + name : name; }

    std::string coder(const std::string& name) const
    {
        return (visible_.contains("coder") ? "quorva::coder::" : "coder::") + name;
    }

    bool needsCoderAlias() const { return !visible_.contains("coder"); }

private:
    static bool isTaken(const std::string& name)
    {
        static constexpr const char* words[] = {
            "traced", "newRoot", "objectAt", "open",  "close",   "member",      "vector", "list",
            "text",   "bytes",   "opaque",   "optional", "Decimal", "enumeration",
            "xdrs", "object", "obj",  // parameters and variables of the routines
        };
        return std::find(std::begin(words), std::end(words), name) != std::end(words);
    }

    VisibleNames visible_;
};

std::string bound(const Declaration& declaration, const Spelling& spelling)
{
    const auto& written = declaration.written;
    if (written && written->owner && written->owner->kind == Kind::constant) return spelling.type(written->text);
    return std::to_string(declaration.bound);
}

// The word that codes a declaration of this form.
std::string wordOf(Form form)
{
    switch (form) {
    case Form::single: return "member";
    case Form::vector: return "vector";
    case Form::list: return "list";
    case Form::optional: return "optional";
    case Form::string: return "text";
    case Form::bytes: return "bytes";
    case Form::opaque: return "opaque";
    case Form::nothing: return "";
    }
    return "";
}

bool takesBound(Form form)
{
    return form == Form::list || form == Form::string || form == Form::bytes;
}

bool takesCoder(Form form)
{
    return form == Form::single || form == Form::vector || form == Form::list || form == Form::optional;
}

// A call that codes the object's part `place`, in an element of its own unless `tag` is empty.
std::string coding(std::size_t indent, const std::string& before, const Declaration& declaration,
                   const std::string& tag, const std::string& place, const std::string& after,
                   const Spelling& spelling)
{
    std::vector<std::string> arguments = {"xdrs"};
    if (!tag.empty()) arguments.push_back(literal(tag));
    arguments.push_back(place);
    if (takesBound(declaration.form)) arguments.push_back(bound(declaration, spelling));
    if (takesCoder(declaration.form)) arguments.push_back(spelling.coder(declaration.type.name));
    return argumentList(indent, before + spelling.word(wordOf(declaration.form)) + "(", arguments, ")" + after);
}

std::string codingMember(std::size_t indent, const std::string& before, const Declaration& declaration,
                         const std::string& after, const Spelling& spelling)
{
    return coding(indent, before, declaration, declaration.name, "obj->" + declaration.name, after, spelling) + "\n";
}

// ---- Routines, one function for each kind of definition -------------------------------------------------------------

std::string signature(const Definition& definition)
{
    return "int Xdr" + definition.name + "(Xdr* xdrs, void* object)\n";
}

std::string objectLine(const Definition& definition, const Spelling& spelling)
{
    return "    auto* obj = " + spelling.word("objectAt") + "<" + spelling.type(definition.name) + ">(xdrs, object);\n";
}

std::string nameFunction(const Definition& definition)
{
    std::string out = "const char* " + definition.name + "String(int value)\n{\n    switch (value) {\n";
    for (const Enumerator& enumerator : definition.enumerators)
        out += "    case " + std::to_string(enumerator.value.number) + ": return " + literal(enumerator.name) + ";\n";
    return out + "    default: return \"Error_in_Function\";\n    }\n}\n";
}

std::string enumerationRoutine(const Definition& definition, const Spelling& spelling)
{
    return signature(definition) + "{\n" +
           argumentList(indentWidth,
                        "return " + spelling.word("enumeration") + "<" + spelling.type(definition.name) + ">(",
                        {"xdrs", "object", definition.name + "String"}, ");") +
           "\n}\n";
}

std::string recordRoutine(const Definition& definition, const Spelling& spelling)
{
    std::string out = signature(definition) + "{\n" + objectLine(definition, spelling) + "    return obj\n";
    for (const Declaration& field : definition.fields) {
        const bool isLast = &field == &definition.fields.back();
        out += codingMember(2 * indentWidth, "&& ", field, isLast ? ";" : "", spelling);
    }
    return out + "}\n";
}

// The labels of a union's switch: enumerators where the discriminant is an enumeration, else numbers.
class Labels {
public:
    Labels(const Definition& definition, const Spelling& spelling)
        : enumeration_(discriminantOf(definition).enumeration), spelling_(spelling)
    {
    }

    std::string of(const Value& value) const
    {
        const std::string label = enumeration_ ? spelling_.type(enumeration_->name) + "::" + enumerator(value.number)
                                               : std::to_string(value.number);
        return "    case " + label + ":\n";
    }

private:
    std::string enumerator(std::int64_t number) const
    {
        const auto& all = enumeration_->enumerators;
        const auto found =
            std::find_if(all.begin(), all.end(), [number](const auto& each) { return each.value.number == number; });
        return found == all.end() ? "" : found->name;
    }

    const Definition* enumeration_;
    const Spelling& spelling_;
};

std::string arm(const Arm& arm, const Labels& labels, const Spelling& spelling)
{
    std::string out;
    for (const Value& value : arm.cases) out += labels.of(value);
    if (arm.declaration.form != Form::nothing)
        out += codingMember(2 * indentWidth, "if (!", arm.declaration, ") return 0;", spelling);
    return out + "        break;\n";
}

std::string otherValues(const Definition& definition, const Spelling& spelling)
{
    if (!definition.defaultArm) return "    default:\n        return 0;\n";
    return "    default:\n        " + spelling.word("open") + "(xdrs, \"default\");\n        " +
           spelling.word("close") + "(xdrs, \"default\");\n        break;\n";
}

std::string unionRoutine(const Definition& definition, const Spelling& spelling)
{
    const std::string tag = literal(definition.name + "Union");
    const Labels labels(definition, spelling);

    std::string out = signature(definition) + "{\n" + objectLine(definition, spelling) +
                      codingMember(indentWidth, "if (!obj || !", definition.discriminant, ") return 0;", spelling) +
                      "\n    " + spelling.word("open") + "(xdrs, " + tag + ");\n    switch (obj->" +
                      definition.discriminant.name + ") {\n";
    for (const Arm& each : definition.arms) out += arm(each, labels, spelling);
    return out + otherValues(definition, spelling) + "    }\n    return " + spelling.word("close") + "(xdrs, " + tag +
           ");\n}\n";
}

std::string aliasRoutine(const Definition& definition, const Spelling& spelling)
{
    return signature(definition) + "{\n" + objectLine(definition, spelling) + "    return obj && Xdr" +
           definition.target.type.name + "(xdrs, obj);\n}\n";
}

std::string typedefRoutine(const Definition& definition, const Spelling& spelling)
{
    if (definition.target.form == Form::single) return aliasRoutine(definition, spelling);
    return signature(definition) + "{\n" + objectLine(definition, spelling) +
           coding(indentWidth, "return obj && ", definition.target, "", "*obj", ";", spelling) + "\n}\n";
}

// The first line of the definition's documentation, and where it stands.
std::string heading(const Definition& definition, const Module& module)
{
    const std::string place = module.source.module + ".x:" + std::to_string(definition.at.line);
    const std::string doc = definition.doc.substr(0, definition.doc.find('\n'));
    if (doc.empty()) return lineComment(place);
    const std::string together = doc + "   " + place;
    return lineComment(wrapped(together, lineWidth - 3).size() == 1 ? together : doc + "\n" + place);
}

std::string definitionText(const Definition& definition, const Module& module, const Spelling& spelling)
{
    const std::string comment = heading(definition, module);
    switch (definition.kind) {
    case Kind::enumeration:
        return comment + nameFunction(definition) + "\n" + enumerationRoutine(definition, spelling);
    case Kind::record: return comment + recordRoutine(definition, spelling);
    case Kind::discriminated: return comment + unionRoutine(definition, spelling);
    case Kind::definedAs: return comment + typedefRoutine(definition, spelling);
    case Kind::constant: return "";
    }
    return "";
}

std::string opening(const Module& module, const Spelling& spelling)
{
    const std::string& name = module.source.module;
    return lineComment("Made from " + name + ".x by quorvaxdrc. Change the interface file, not this one.") +
           "#include <quorvapixdr/" + name + ".h>\n#include <quorvapixdr/walk.h>\n\n" +
           "using namespace quorva::walk;\n" +
           (spelling.needsCoderAlias() ? "namespace coder = quorva::coder;\n" : "");
}

}  // namespace

std::string emitUnit(const Module& module)
{
    const Spelling spelling(module);
    std::vector<std::string> parts = {opening(module, spelling)};
    for (const Definition* definition : typesOf(module)) parts.push_back(definitionText(*definition, module, spelling));
    return sections(parts);
}

}  // namespace quorva::compiler
