// Any text as an interface file: every stage of the compiler runs, and a file without errors flattens to the same
// interface. Text before a form feed is a module "part", which the rest may import.

#include "compiler/emit/emit.h"
#include "compiler/evolve/compare.h"
#include "compiler/evolve/flatten.h"
#include "compiler/front/check.h"
#include "compiler/front/lint.h"
#include "compiler/front/parser.h"
#include "compiler/front/resolve.h"
#include "mutate.h"

#include <sstream>

using namespace quorva::compiler;
using namespace quorva::fuzz;

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
        const Program program = read({reinterpret_cast<const char*>(data), size}, errors);
        if (errors.count() > 0) {
            std::ostringstream printed;
            errors.print(printed);
            return;
        }
        generateAll(program);
        checkFlattening(program);
    });
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    return mutateText(data, size, most, seed, words);
}
