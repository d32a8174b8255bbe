// Implements what the public headers share.
#include "header_parts.h"

#include "front/layout.h"
#include "front/structure.h"
#include "names.h"
#include "text.h"

#include <cstdint>

namespace quorva::compiler {

namespace {

// A comment on a line of its own within a body.
void addRemark(std::vector<BodyLine>& lines, const std::string& remark, std::size_t indent)
{
    for (const std::string& line : wrapped(remark, lineWidth - indent - 3)) lines.push_back({"// " + line, "", ""});
}

// "case A", or "cases A, B".
std::string casesOf(const std::vector<const Value*>& values)
{
    std::vector<std::string> cases;
    for (const Value* value : values) cases.push_back(value->text);
    return (cases.size() == 1 ? "case " : "cases ") + joined(cases);
}

// Adds comments that say which cases of the union have no data.
void addVoidArms(std::vector<BodyLine>& lines, const Definition& definition, std::size_t indent)
{
    const auto add = [&](const std::string& cases, const std::string& doc) {
        addRemark(lines, cases + ": void" + (doc.empty() ? "" : "; " + doc), indent);
    };
    for (const ArmMember& arm : voidArmsOf(definition)) add(casesOf(arm.cases), arm.doc);
    if (definition.defaultArm) add("any other value", docOf(definition.defaultArm->declaration));
}

std::string arms(const Definition& definition, MemberText member)
{
    const std::size_t indent = 2 * indentWidth;
    std::vector<BodyLine> lines;
    for (const ArmMember& arm : armMembersOf(definition)) {
        const std::string limit = limitOf(*arm.declaration);
        lines.push_back({member(*arm.declaration), casesOf(arm.cases) + (limit.empty() ? "" : ": " + limit), arm.doc});
    }
    addVoidArms(lines, definition, indent);
    return "    union {\n" + body(lines, indent) + "    };\n";
}

// The types of the module and of those that it imports.
std::vector<const Definition*> visibleTypes(const Module& module)
{
    std::vector<const Definition*> types;
    for (const Module* each : importClosure(module))
        for (const Definition* type : typesOf(*each)) types.push_back(type);
    return types;
}

// The index in `declarationsOf` of the last member; the arms of a union have one place.
std::size_t lastMember(const std::vector<const Declaration*>& declarations)
{
    std::size_t last = declarations.size() - 1;
    while (declarations[last]->form == Form::none) --last;
    return last;
}

}  // namespace

std::string headerBanner(const Module& module)
{
    return generatedBanner(module) + (module.doc.empty() ? "" : "//\n" + lineComment(module.doc));
}

std::string bound(const Declaration& declaration)
{
    return std::to_string(declaration.bound);
}

std::string limitOf(const Declaration& declaration)
{
    switch (declaration.form) {
    case Form::string: return "at most " + bound(declaration) + " characters";
    case Form::variableOpaque: return declaration.written ? "at most " + bound(declaration) + " bytes" : "";
    case Form::variableArray: return declaration.written ? "at most " + bound(declaration) + " elements" : "";
    case Form::optional: return "null when absent";
    default: return "";
    }
}

std::string structText(const Definition& definition, MemberText member)
{
    std::vector<BodyLine> lines;
    for (const Declaration& field : definition.fields) lines.push_back({member(field), limitOf(field), docOf(field)});
    return "struct " + definition.name + " {\n" + body(lines, indentWidth) + "};\n";
}

std::string unionText(const Definition& definition, MemberText member)
{
    const bool hasArms = !armMembersOf(definition).empty();
    std::vector<BodyLine> lines = {{member(definition.discriminant), "", docOf(definition.discriminant)}};
    if (!hasArms) addVoidArms(lines, definition, indentWidth);
    return "struct " + definition.name + " {\n" + body(lines, indentWidth) + (hasArms ? arms(definition, member) : "") +
           "};\n";
}

// The library would code a layout wrongly that an option such as -fpack-struct, or a pragma before the header, changes.
// Size and place of the last member show it: each depends on all members before.
std::string layoutAssertions(const Module& module, const AssertionSpelling& spelling)
{
    const auto numberOfBytes = [&](std::uint64_t with32, std::uint64_t with64) {
        if (with32 == with64) return std::to_string(with64);
        return spelling.choice + "(" + std::to_string(with32) + ", " + std::to_string(with64) + ")";
    };
    const std::vector<const Definition*> visible = visibleTypes(module);
    const Layouts on32 = layoutsOf(visible, 4);
    const Layouts on64 = layoutsOf(visible, 8);
    std::string out;
    for (const Definition* definition : typesOf(module)) {
        if (!canBeForwardDeclared(*definition)) continue;
        const std::string type = spelling.qualifier + definition->name;
        const std::string size = numberOfBytes(on32.of(*definition).size, on64.of(*definition).size);
        std::string member = "elements";
        std::string offset = numberOfBytes(4, 8);
        if (!isCountedStruct(*definition)) {
            const std::vector<const Declaration*> declarations = declarationsOf(*definition);
            const std::size_t last = lastMember(declarations);
            member = declarations[last]->name;
            offset = numberOfBytes(on32.offsetsIn(*definition)[last], on64.offsetsIn(*definition)[last]);
        }
        const std::string head = spelling.keyword + "(sizeof(" + type + ") == " + size + " &&";
        const std::string rest = "offsetof(" + type + ", " + member + ") == " + offset + spelling.message + ");\n";
        const bool fits = head.size() + rest.size() <= lineWidth;
        out += head + (fits ? " " : "\n" + std::string(spelling.keyword.size() + 1, ' ')) + rest;
    }
    if (out.empty()) return "";
    return "// The library codes these layouts in memory: sizes, and places of the last members.\n" + out;
}

}  // namespace quorva::compiler
