// Prints the coding routines and name functions of a module.
#include "emit.h"
#include "plan/structure.h"
#include "text.h"
#include "words.h"
#include "front/resolve.h"

#include <algorithm>
#include <iterator>
#include <unordered_map>
#include <unordered_set>

namespace quorva::compiler {

namespace {

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
    return "    auto* obj = " + spelling.word("objectAt") + "<" + spelling.global(definition.name) + ">(xdrs, object);\n";
}

std::string nameFunction(const Definition& definition, const Spelling& spelling)
{
    std::string out = "const char* " + definition.name + "String(int value)\n{\n    static constexpr " +
                      spelling.word("NamedValue") + " values[] = {\n";
    std::vector<Enumerator> ascending = definition.enumerators;
    std::sort(ascending.begin(), ascending.end(),
              [](const auto& a, const auto& b) { return a.value.number < b.value.number; });
    for (const Enumerator& each : ascending)
        out += "        {" + std::to_string(each.value.number) + ", " + literal(each.name) + "},\n";
    return out + "    };\n    return " + spelling.word("nameAmong") + "<values>(value);\n}\n";
}

std::string enumerationRoutine(const Definition& definition, const Spelling& spelling)
{
    return signature(definition) + "{\n" +
           argumentList(indentWidth,
                        "return " + spelling.word("enumeration") + "<" + spelling.global(definition.name) + ">(",
                        {"xdrs", "object", definition.name + "String"}, ");") +
           "\n}\n";
}

// ---- Bodies: one for all passes over a type -------------------------------------------------------------------------

// What becomes of a type's body: written in place wherever the type is used, when it always codes the same units; in place
// where bytes move and a function where a trace is made, when it is small; else a function.
enum class Place { everywhere, untraced, function };

std::string bodySignature(const Definition& definition, const Spelling& spelling, const std::string& scope,
                          Place place = Place::function)
{
    const std::string at = scope.empty() ? spelling.word("At") : scope + "At";
    const std::string name = place == Place::untraced ? "QUORVA_INLINE " + at + " inPlace" : at + " code";
    return "template <class Pass>\n" + name + "(Pass& pass, " + at + " at, " + spelling.global(definition.name) + "& obj)";
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

std::string arm(const Arm& arm, const Labels& labels, const Spelling& spelling)
{
    std::string out;
    for (const Value& value : arm.cases) out += labels.of(value);
    if (arm.declaration.form != Form::nothing)
        out += memberPart(2 * indentWidth, "at = " + spelling.word("armOf") + "(pass, at, ", arm.declaration, ");", spelling);
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
    return signature(definition) + "{\n    return " + spelling.word("run") + "<" + spelling.global(definition.name) +
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

// Decides where bodies are written. In place, those of small types cost little more space than calls of them, and less time.
class Places {
public:
    Place of(const Definition& definition)
    {
        if (const WireShape shape = shapes_.of(definition); shape.kind == WireShape::Kind::fixed && shape.units > mostParts)
            return Place::everywhere;
        return parts(definition) <= mostParts ? Place::untraced : Place::function;
    }

private:
    static constexpr std::uint64_t mostParts = 7;

    // How many parts a pass over the definition codes one by one; `none` where it is a function.
    std::uint64_t parts(const Definition& definition)
    {
        constexpr std::uint64_t none = UINT64_MAX;
        const auto [known, isNew] = parts_.emplace(&definition, none);
        if (!isNew) return known->second;
        if (definition.kind == Kind::discriminated || !hasBody(definition) || holdsItself(definition)) return none;
        std::uint64_t all = 0;
        for (const Declaration* each : declarationsOf(definition)) all += parts(*each);
        return parts_[&definition] = all <= mostParts ? all : none;
    }
    std::uint64_t parts(const Declaration& declaration)
    {
        constexpr std::uint64_t block = 3;
        switch (declaration.form) {
        case Form::single: return parts(declaration.type);
        case Form::vector: return declaration.bound * parts(declaration.type);
        case Form::list:
        case Form::optional: return block + parts(declaration.type);
        default: return block;
        }
    }
    std::uint64_t parts(const TypeRef& type)
    {
        if (!type.definition) return 1;
        const WireShape shape = shapes_.of(*type.definition);
        if (shape.kind == WireShape::Kind::fixed) return shape.units;
        const std::uint64_t inside = shape.kind == WireShape::Kind::body ? parts(*behindAliases(type).definition) : 1;
        return inside <= mostParts ? inside : 1;
    }

    // Whether the definition is reached from itself without a union between.
    static bool holdsItself(const Definition& definition)
    {
        std::unordered_set<const Definition*> seen;
        std::vector<const Definition*> toRead = {&definition};
        while (!toRead.empty()) {
            const Definition* next = toRead.back();
            toRead.pop_back();
            if (next->kind == Kind::discriminated) continue;
            for (const Declaration* each : declarationsOf(*next)) {
                if (each->type.definition == &definition) return true;
                if (each->type.definition && seen.insert(each->type.definition).second)
                    toRead.push_back(each->type.definition);
            }
        }
        return false;
    }

    WireShapes shapes_;
    std::unordered_map<const Definition*, std::uint64_t> parts_;
};

std::string definitionText(const Definition& definition, const Module& module, const Spelling& spelling, Places& places)
{
    const std::string comment = heading(definition, module);
    if (definition.kind == Kind::enumeration)
        return comment + nameFunction(definition, spelling) + "\n" + enumerationRoutine(definition, spelling);
    if (!hasBody(definition))
        return comment + (definition.target.form == Form::single ? aliasRoutine(definition, spelling)
                                                                 : formRoutine(definition, spelling));
    switch (places.of(definition)) {
    case Place::everywhere: return comment + bodyRoutine(definition, spelling);
    case Place::untraced:
        return comment + "QUORVA_IN_PLACE(" + definition.name + ")\n\n" + bodyRoutine(definition, spelling);
    case Place::function: break;
    }
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
    Places places;
    TraceLines lines(spelling.amongWords());
    std::vector<std::string> parts = {opening(module, spelling)};
    std::vector<std::string> shown;
    for (const Definition* definition : typesOf(module)) {
        parts.push_back(definitionText(*definition, module, spelling, places));
        shown.push_back(lines.of(*definition));
    }
    if (const std::string all = sections(shown); !all.empty())
        parts.insert(parts.end(),
                     {"#ifdef QUORVA_TRACING\n\nnamespace quorva::walk {\n", all, "}  // namespace quorva::walk\n\n#endif\n"});
    return sections(parts);
}

std::string emitBodies(const Module& module)
{
    const Spelling spelling(module);
    Places places;
    std::string includes;
    for (const Import& import : module.imports) includes += "#include <quorvapixdr/" + import.name + ".bodies.h>\n";
    std::string declared;
    std::vector<std::string> inPlace;
    for (const Definition* definition : declarationOrder(typesOf(module))) {
        if (!hasBody(*definition)) continue;
        declared += "QUORVA_SHOWS(" + definition->name + ")\n";
        if (definition->kind == Kind::discriminated) declared += "QUORVA_SHOWS_ARMS(" + definition->name + ")\n";
        const Place place = places.of(*definition);
        if (place != Place::everywhere) declared += bodySignature(*definition, spelling, "quorva::walk::") + ";\n";
        if (place == Place::function) continue;
        inPlace.push_back(heading(*definition, module) + bodySignature(*definition, spelling, "quorva::walk::", place) +
                          "\n" + inPlaceBody(*definition, spelling));
    }
    std::vector<std::string> parts = {
        banner(module) +
            "// What the units of other modules need of its bodies; no part of the library's interface.\n#pragma once\n",
        "#include <quorvapixdr/" + module.source.module + ".h>\n" + includes + "#include <quorvapixdr/walk.h>\n", declared};
    parts.insert(parts.end(), inPlace.begin(), inPlace.end());
    return sections(parts);
}

}  // namespace quorva::compiler
