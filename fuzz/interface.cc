// Any text as an interface file: every stage of the compiler runs, and a file without errors flattens to the same
// interface. The inspector describes its types at run time, and they code messages. Text before a form feed is a module
// "part", which the rest may import.

#include "inspect/interface.h"
#include "compiler/emit/emit.h"
#include "compiler/evolve/compare.h"
#include "compiler/evolve/flatten.h"
#include "compiler/front/check.h"
#include "compiler/front/check_for_c.h"
#include "compiler/front/lint.h"
#include "compiler/front/parser.h"
#include "compiler/front/resolve.h"
#include "inspect/json.h"
#include "inspect/tree.h"
#include "mutate.h"

#include <sstream>

using namespace quorva::compiler;
using namespace quorva::fuzz;
namespace inspect = quorva::inspect;
using quorva::Bytes;
using quorva::Mode;

namespace {

std::unique_ptr<Module> parsed(std::string_view name, std::string_view text, Diagnostics& errors)
{
    auto module = std::make_unique<Module>();
    module->source = {std::string(name) + ".x", std::string(name), std::string(text)};
    module->requested = true;
    parse(*module, errors);
    return module;
}

Program read(std::string_view text, Diagnostics& errors)
{
    Program program;
    const std::size_t split = text.find('\f');
    if (split != text.npos) program.modules.push_back(parsed("part", text.substr(0, split), errors));
    program.modules.push_back(parsed("whole", split == text.npos ? text : text.substr(split + 1), errors));
    for (const auto& module : program.modules)
        for (Import& import : module->imports) {
            if (split != text.npos && module == program.modules.back() && import.name == "part") {
                import.module = program.modules.front().get();
            } else {
                errors.error(import.at, "module " + inQuotes(import.name) + " is not found");
                module->incomplete = true;
            }
        }
    resolve(program, errors);
    check(program, errors);
    return program;
}

void generateAll(const Program& program)
{
    std::vector<const Module*> modules;
    for (const auto& module : program.modules) {
        modules.push_back(module.get());
        for (const auto emit : {emitHeader, emitPrivateHeader, emitSource, emitDescriptions, emitDocumentation})
            if (emit(*module).empty()) throw Finding{"an emitter writes nothing"};
    }
    emitModuleList(modules, "modules");
    Diagnostics errorsOfC;
    checkForC(program, errorsOfC);
    if (errorsOfC.count() == 0)
        for (const Module* module : modules)
            if (emitCHeader(*module).empty()) throw Finding{"an emitter writes nothing"};
    emitRfc4506(program, {"plain_"});
    Diagnostics warnings("warning", mostWarnings);
    lint(program, warnings);
    std::ostringstream printed;
    warnings.print(printed);
}

void checkFlattening(const Program& program)
{
    const std::string flat = flatten(program);
    Diagnostics errors;
    const Program again = read(flat, errors);
    std::ostringstream printed;
    errors.print(printed);
    if (errors.count() > 0) throw Finding{"the flattened file has errors:\n" + printed.str() + flat};
    if (flatten(again) != flat) throw Finding{"flattening changes a flattened file:\n" + flat};
    if (compare({program}, {again}, printed) > 0)
        throw Finding{"flattening breaks the interface:\n" + printed.str() + flat};
}

// The object of a message that the traversal accepts has a JSON form, and encodes to a message that it accepts again.
void checkMessage(const quorva::Type& type, Bytes message)
{
    if (inspect::Tree(type, message).stopped()) return;
    inspect::Object object(type);
    if (!inspect::codeObject(Mode::decode, type, object.data(), message).succeeded)
        throw Finding{std::string("the codec refuses a message of ") + type.name};
    Bytes again(quorva::longestMessage);
    again.resize(inspect::codeObject(Mode::encode, type, object.data(), again).length);
    inspect::Object same = inspect::fromJson(type, inspect::objectJson(type, object.data()).dump());
    Bytes fromJson(quorva::longestMessage);
    fromJson.resize(inspect::codeObject(Mode::encode, type, same.data(), fromJson).length);
    if (fromJson != again) throw Finding{std::string("the JSON form changes a message of ") + type.name};
}

void checkDescriptions(Program program, std::uint64_t seed)
{
    constexpr std::size_t mostTypes = 20, longest = 1024;
    try {
        const inspect::Interfaces interfaces(std::move(program));
        inspect::Sampler sampler;
        Chance chance(seed);
        std::size_t tried = 0;
        for (const quorva::Type* type : inspect::typesOf(interfaces.modules())) {
            if (tried++ == mostTypes) return;
            if (type->size > longest || sampler.leastSize(*type) > longest) continue;
            Generated message = generate(sampler, *type, chance);
            checkMessage(*type, message.message);
            damage(message.message, message.control, {}, chance);
            checkMessage(*type, message.message);
        }
    } catch (const inspect::InterfaceError&) {
    }
}

constexpr std::string_view words[] = {"enum",
                                      "struct",
                                      "union",
                                      "switch",
                                      "case",
                                      "default",
                                      "typedef",
                                      "const",
                                      "import",
                                      "opaque",
                                      "string",
                                      "void",
                                      "bool",
                                      "int",
                                      "unsigned",
                                      "float",
                                      "double",
                                      "hyper",
                                      "quadruple",
                                      "TRUE",
                                      "FALSE",
                                      "{",
                                      "}",
                                      "(",
                                      ")",
                                      "[",
                                      "]",
                                      "<",
                                      ">",
                                      ";",
                                      ",",
                                      ":",
                                      "=",
                                      "*",
                                      "/*",
                                      "*/",
                                      "//",
                                      "#define",
                                      "%",
                                      "\f",
                                      "\n",
                                      "0",
                                      "-1",
                                      "1",
                                      "2",
                                      "65535",
                                      "65536",
                                      "0x7FFFFFFF",
                                      "4294967295",
                                      "4294967296",
                                      "-2147483648",
                                      "0777",
                                      "\xC3\xA4",
                                      "// @provisional because\n",
                                      "import part;\n",
                                      "LongNatural",
                                      "ShortInteger",
                                      "Boolean",
                                      "UINT",
                                      "Natural",
                                      "Float",
                                      "class",
                                      "namespace",
                                      "struct A { A *next; };\n",
                                      "typedef B A;\ntypedef A B;\n"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return runDriver([&] {
        Diagnostics errors;
        Program program = read({reinterpret_cast<const char*>(data), size}, errors);
        if (errors.count() > 0) {
            std::ostringstream printed;
            errors.print(printed);
            return;
        }
        generateAll(program);
        checkFlattening(program);
        checkDescriptions(std::move(program), size);
    });
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    return mutateText(data, size, most, seed, words);
}
