// Prints messages of every type and what a dissector shows of them, as the inspector reads them: JSON on each line.
//
//   messages [--each N] [--seed S] [--annotated]
//
// N whole messages of each type (default 1), damaged ones and a cut one for each of them, and two that no sender makes.
// With --annotated, the first line is the schema document; the others have what `annotate --json` and `validate --json`
// print of the message.

#include "explain/layout.h"
#include "fuzz/damage.h"
#include "inspect/annotate.h"
#include "inspect/documentation.h"
#include "inspect/findings.h"
#include "inspect/input.h"
#include "inspect/schema.h"
#include "support/tested_modules.h"

#include <bit>
#include <cstdlib>
#include <iostream>

using namespace quorva;
using inspect::Json;
using inspect::Node;
using inspect::Tree;

namespace {

constexpr int damagedOfEach = 4;
constexpr std::size_t unitsOfOthers = 1000;  // many optionals deep

// The first and last sequences of each length, and their invalid neighbours.
constexpr std::string_view endsOfUtf8[] = {"\x7f",
                                           "\x80",
                                           "\xc1\xbf",
                                           "\xc2\x80",
                                           "\xdf\xbf",
                                           "\xe0\x9f\xbf",
                                           "\xe0\xa0\x80",
                                           "\xed\x9f\xbf",
                                           "\xed\xa0\x80",
                                           "\xef\xbf\xbf",
                                           "\xf0\x8f\xbf\xbf",
                                           "\xf0\x90\x80\x80",
                                           "\xf4\x8f\xbf\xbf",
                                           "\xf4\x90\x80\x80",
                                           "\xf5\x80\x80\x80",
                                           "\xe2\x82",
                                           "\xf0\x90\x80",
                                           "\xc2"
                                           "A"};

// The name of the field without what its form adds: that of a member, also for the elements and the value inside.
std::string fieldOf(const Tree& tree, std::uint32_t at)
{
    const Node* node = &tree.nodes()[at];
    while (at != 0 && (tree.isElement(*node) || tree.isOptionalValue(*node))) node = &tree.nodes()[at = node->parent];
    if (at == 0) return std::string("quorva.") + tree.type().name;
    return std::string("quorva.") + tree.nodes()[node->parent].type->name + '.' + node->member->name;
}

std::string colons(std::span<const unsigned char> bytes)
{
    std::string text;
    for (const unsigned char& byte : bytes) text += (text.empty() ? "" : ":") + inspect::hexDigits({&byte, 1});
    return text;
}

// The name and the value of the field that shows a part; null if none does. A string that is not UTF-8 is {"hex"}.
Json shown(const Tree& tree, std::uint32_t at)
{
    const Node& node = tree.nodes()[at];
    const std::string field = fieldOf(tree, at);
    if (node.isGroup()) return {field, ""};
    if (node.type) {
        if (node.size == 0) return nullptr;
        if (node.type->builtin == Builtin::Boolean) return {field, node.number ? "1" : "0"};
        if (node.type->builtin == Builtin::Float) return {field, inspect::numberText(*node.type, node.number), "float"};
        return {field, std::to_string(node.number)};
    }
    if (!node.use) return nullptr;
    switch (node.use->form) {
    case Form::fixedArray: return {field + ".count", std::to_string(node.use->bound)};
    case Form::variableArray: return node.size > 0 ? Json{field + ".count", std::to_string(node.number)} : Json();
    case Form::optional: return node.size > 0 ? Json{field + ".present", node.number ? "1" : "0"} : Json();
    case Form::string:
    case Form::variableOpaque:
    case Form::fixedOpaque: {
        if (!node.complete && node.contentsSize == 0) return nullptr;
        const auto contents = tree.contents(node);
        if (node.use->form != Form::string) return {field, colons(contents)};
        return {field, inspect::hexDigits(contents), "string"};
    }
    default: return nullptr;
    }
}

// What the inspector's verbs print.
void addVerbs(Json& line, const Tree& tree)
{
    std::string annotation;
    inspect::printAnnotationJson(tree, [&](std::string_view text) { annotation += text; });
    line["annotation"] = Json::parse(annotation);
    Json& findings = line["findings"] = Json::array();
    for (const inspect::Finding& finding : inspect::findingsOf(tree)) findings.push_back(inspect::findingJson(finding));
}

// What a dissector shows.
void addFields(Json& line, const Tree& tree)
{
    Json &fields = line["fields"] = Json::array(), &findings = line["findings"] = Json::array();
    std::vector<std::size_t> depths(tree.nodes().size());
    for (std::uint32_t at = 0; at < tree.nodes().size(); ++at) {
        depths[at] = at == 0 ? 0 : depths[tree.nodes()[at].parent] + 1;
        Json field = shown(tree, at);
        if (!field.is_null()) fields.push_back({depths[at], std::move(field)});
    }
    for (const inspect::Finding& finding : inspect::findingsOf(tree)) {
        const std::string place =
            (finding.path.empty() ? "" : finding.path + ", ") + "byte " + std::to_string(finding.offset) + ": ";
        const bool isRefusal = finding.code == inspect::FindingCode::refused;
        findings.push_back({inspect::codeName(finding.code), (isRefusal ? place : "") + finding.sentence});
    }
}

using Addition = void (*)(Json&, const Tree&);

void print(const Type& type, const Bytes& message, Addition add)
{
    Json line = {{"type", type.name}, {"message", inspect::hexDigits(message)}};
    add(line, Tree(type, message));
    std::cout << line.dump() << '\n';
}

Bytes unitOf(std::size_t number)
{
    Bytes bytes;
    for (unsigned shift = 32; shift > 0; shift -= 8) bytes.push_back(static_cast<unsigned char>(number >> (shift - 8)));
    return bytes;
}

void printAll(const Type& type, std::size_t each, Addition add, inspect::Sampler& sampler, fuzz::Chance& chance)
{
    Bytes other;
    for (std::size_t i = 0; i < each; ++i) {
        const fuzz::Generated whole = fuzz::generate(sampler, type, chance);
        print(type, whole.message, add);
        for (int k = 0; k < damagedOfEach; ++k) {
            Bytes damaged = whole.message;
            fuzz::damage(damaged, whole.control, other, chance);
            print(type, damaged, add);
        }
        Bytes cut = whole.message;
        cut.resize(chance.below(cut.size()));
        print(type, cut, add);
        other = whole.message;
    }
    Bytes ones, random;
    for (std::size_t i = 0; i < unitsOfOthers; ++i) {
        ones.insert(ones.end(), {0, 0, 0, 1});
        for (int k = 0; k < 4; ++k) random.push_back(static_cast<unsigned char>(chance.below(256)));
    }
    print(type, ones, add);
    print(type, random, add);
    if (type.kind != TypeKind::typeDefinition || inspect::targetOf(type).form != Form::string) return;
    for (const std::string_view text : endsOfUtf8) {
        Bytes message = {0, 0, 0, static_cast<unsigned char>(text.size())};
        message.insert(message.end(), text.begin(), text.end());
        message.resize(inspect::padded(message.size()));
        print(type, message, add);
    }
}

// The numbers at the ends of each exponent, the powers of ten, and others.
void printFloats(Addition add, fuzz::Chance& chance)
{
    for (std::size_t exponent = 0; exponent < 256; ++exponent)
        for (const std::size_t fraction : {std::size_t{0}, std::size_t{1}, chance.below(1U << 23U)})
            print(description::Float(), unitOf(exponent << 23U | fraction), add);
    for (float power = 1e38F; power > 0; power /= 10)
        print(description::Float(), unitOf(std::bit_cast<std::uint32_t>(power)), add);
}

}  // namespace

int main(int count, char** arguments)
{
    std::size_t each = 1;
    std::uint64_t seed = 1;
    Addition add = addFields;
    for (int i = 1; i < count; ++i) {
        const std::string_view word = arguments[i];
        if (word == "--each" && i + 1 < count)
            each = std::strtoul(arguments[++i], nullptr, 10);
        else if (word == "--seed" && i + 1 < count)
            seed = std::strtoul(arguments[++i], nullptr, 10);
        else if (word == "--annotated")
            add = addVerbs;
        else
            return std::cerr << "usage: messages [--each N] [--seed S] [--annotated]\n", 2;
    }
    addModules(exampleModules());  // for the names of their enumerators
    if (add == addVerbs) std::cout << inspect::schemaJson(inspect::Catalogue()).dump() << '\n';
    inspect::Sampler sampler;
    fuzz::Chance chance(seed);
    if (add == addVerbs) printFloats(add, chance);
    for (const auto& modules : {modules(), exampleModules()})
        for (const Type* type : inspect::typesOf(modules)) printAll(*type, each, add, sampler, chance);
    return std::cout.flush() ? 0 : 1;
}
