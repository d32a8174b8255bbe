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
    // Words of the bodies and routines. A few more are refused as names of types.
    static bool isTaken(const std::string& name)
    {
        static constexpr const char* words[] = {
            "At", "Calls", "Decimal", "Decoding", "Element", "Elements", "Encoding", "Field", "List", "Name",
            "Optional", "Pass", "Releasing", "Text", "Tracing", "at", "bytes", "close", "enumeration", "field",
            "list", "obj", "object", "objectAt", "open", "optional", "parts", "pass", "refuse", "run", "text",
            "untagged", "vector", "xdrs",
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

// The word for a part of this form.
std::string wordOf(Form form)
{
    switch (form) {
    case Form::single: return "field";
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

// The object's part `place`, with `tag` as it stands in C++.
std::string part(std::size_t indent, const std::string& before, const Declaration& declaration, const std::string& tag,
                 const std::string& place, const std::string& after, const Spelling& spelling)
{
    std::vector<std::string> arguments = {tag, place};
    if (takesBound(declaration.form)) arguments.push_back(bound(declaration, spelling));
    if (takesCoder(declaration.form)) arguments.push_back(spelling.coder(declaration.type.name));
    return argumentList(indent, before + spelling.word(wordOf(declaration.form)) + "(", arguments, ")" + after);
}

std::string memberPart(std::size_t indent, const std::string& before, const Declaration& declaration,
                       const std::string& after, const Spelling& spelling)
{
    return part(indent, before, declaration, literal(declaration.name), "obj." + declaration.name, after, spelling) + "\n";
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

// ---- Bodies: one for all passes over a type -------------------------------------------------------------------------

std::string bodySignature(const Definition& definition, const Spelling& spelling, const std::string& scope)
{
    const std::string at = scope.empty() ? spelling.word("At") : scope + "At";
    return "template <class Pass>\n" + at + " code(Pass& pass, " + at + " at, " + spelling.type(definition.name) + "& obj)";
}

std::string recordBody(const Definition& definition, const Spelling& spelling)
{
    std::string out = "{\n    return " + spelling.word("parts") + "(pass, at,\n";
    for (const Declaration& field : definition.fields) {
        const bool isLast = &field == &definition.fields.back();
        out += memberPart(3 * indentWidth, "", field, isLast ? ");" : ",", spelling);
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
        out += memberPart(2 * indentWidth, "at = " + spelling.word("parts") + "(pass, at, ", arm.declaration, ");", spelling);
    return out + "        break;\n";
}

std::string otherValues(const Definition& definition, const Spelling& spelling)
{
    if (!definition.defaultArm)
        return "    default:\n        return " + spelling.word("refuse") + "(pass, at, obj." + definition.discriminant.name +
               ");\n";
    return "    default:\n        at = " + spelling.word("open") + "(pass, at, \"default\");\n        at = " +
           spelling.word("close") + "(pass, at, \"default\");\n        break;\n";
}

std::string unionBody(const Definition& definition, const Spelling& spelling)
{
    const std::string tag = literal(definition.name + "Union");
    const Labels labels(definition, spelling);

    std::string out = "{\n" +
                      memberPart(indentWidth, "at = " + spelling.word("parts") + "(pass, at, ", definition.discriminant,
                                 ");", spelling) +
                      "    if (!at) return at;\n\n    at = " + spelling.word("open") + "(pass, at, " + tag +
                      ");\n    switch (obj." + definition.discriminant.name + ") {\n";
    for (const Arm& each : definition.arms) out += arm(each, labels, spelling);
    return out + otherValues(definition, spelling) + "    }\n    return " + spelling.word("close") + "(pass, at, " + tag +
           ");\n}\n";
}

std::string countedBody(const Definition& definition, const Spelling& spelling)
{
    return "{\n" +
           part(indentWidth, "return " + spelling.word("parts") + "(pass, at, ", definition.target,
                spelling.word("untagged"), "obj", ");", spelling) +
           "\n}\n";
}

std::string bodyOf(const Definition& definition, const Spelling& spelling)
{
    switch (definition.kind) {
    case Kind::record: return recordBody(definition, spelling);
    case Kind::discriminated: return unionBody(definition, spelling);
    default: return countedBody(definition, spelling);
    }
}

// ---- Routines -------------------------------------------------------------------------------------------------------

std::string bodyRoutine(const Definition& definition, const Spelling& spelling)
{
    return signature(definition) + "{\n    return " + spelling.word("run") + "<" + spelling.type(definition.name) +
           ">(xdrs, object);\n}\n";
}

std::string aliasRoutine(const Definition& definition, const Spelling& spelling)
{
    return signature(definition) + "{\n" + objectLine(definition, spelling) + "    return obj && Xdr" +
           definition.target.type.name + "(xdrs, obj);\n}\n";
}

// A typedef of a form that has no C++ type of its own.
std::string formRoutine(const Definition& definition, const Spelling& spelling)
{
    return signature(definition) + "{\n" + objectLine(definition, spelling) +
           part(indentWidth, "return obj && ", definition.target, spelling.word("untagged"), "*obj", ".call(xdrs);",
                spelling) +
           "\n}\n";
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

bool hasBody(const Definition& definition)
{
    return definition.kind == Kind::record || definition.kind == Kind::discriminated || isCounted(definition);
}

// Types whose body always codes the same units are coded in place wherever they are used.
bool isInPlace(const Definition& definition, WireShapes& shapes)
{
    return hasBody(definition) && shapes.of(definition).kind == WireShape::Kind::fixed;
}

std::string definitionText(const Definition& definition, const Module& module, const Spelling& spelling, WireShapes& shapes)
{
    const std::string comment = heading(definition, module);
    if (definition.kind == Kind::enumeration)
        return comment + nameFunction(definition) + "\n" + enumerationRoutine(definition, spelling);
    if (!hasBody(definition))
        return comment + (definition.target.form == Form::single ? aliasRoutine(definition, spelling)
                                                                 : formRoutine(definition, spelling));
    if (isInPlace(definition, shapes)) return comment + bodyRoutine(definition, spelling);
    return comment + bodySignature(definition, spelling, "") + "\n" + bodyOf(definition, spelling) + "QUORVA_BODY(" +
           definition.name + ")\n\n" + bodyRoutine(definition, spelling);
}

// A body in a header, which must not open the words to everyone.
std::string inPlaceBody(const Definition& definition, const Spelling& spelling)
{
    std::string words = "    using namespace quorva::walk;\n";
    if (spelling.needsCoderAlias()) words += "    namespace coder = quorva::coder;\n";
    return bodyOf(definition, spelling).insert(2, words);
}

std::string banner(const Module& module)
{
    return lineComment("Made from " + module.source.module + ".x by quorvaxdrc. Change the interface file, not this one.");
}

std::string using_(const Spelling& spelling)
{
    return std::string("using namespace quorva::walk;\n") +
           (spelling.needsCoderAlias() ? "namespace coder = quorva::coder;\n" : "");
}

std::string opening(const Module& module, const Spelling& spelling)
{
    return banner(module) + "#include <quorvapixdr/" + module.source.module + ".bodies.h>\n\n" + using_(spelling);
}

}  // namespace

std::string emitUnit(const Module& module)
{
    const Spelling spelling(module);
    WireShapes shapes;
    std::vector<std::string> parts = {opening(module, spelling)};
    for (const Definition* definition : typesOf(module))
        parts.push_back(definitionText(*definition, module, spelling, shapes));
    return sections(parts);
}

std::string emitBodies(const Module& module)
{
    const Spelling spelling(module);
    WireShapes shapes;
    std::string includes;
    for (const Import& import : module.imports) includes += "#include <quorvapixdr/" + import.name + ".bodies.h>\n";
    std::string declared;
    std::vector<std::string> inPlace;
    for (const Definition* definition : declarationOrder(typesOf(module))) {
        if (!hasBody(*definition)) continue;
        if (isInPlace(*definition, shapes))
            inPlace.push_back(heading(*definition, module) + bodySignature(*definition, spelling, "quorva::walk::") + "\n" +
                              inPlaceBody(*definition, spelling));
        else
            declared += bodySignature(*definition, spelling, "quorva::walk::") + ";\n";
    }
    std::vector<std::string> parts = {
        banner(module) +
            "// What the units of other modules need of its bodies; no part of the library's interface.\n#pragma once\n",
        "#include <quorvapixdr/" + module.source.module + ".h>\n" + includes + "#include <quorvapixdr/walk.h>\n", declared};
    parts.insert(parts.end(), inPlace.begin(), inPlace.end());
    return sections(parts);
}

}  // namespace quorva::compiler
