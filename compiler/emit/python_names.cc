// Finds names that Python accepts.
#include "python_names.h"

#include <algorithm>
#include <string_view>

namespace quorva::compiler {

namespace {

using Words = std::unordered_set<std::string>;

// Keywords, built-in functions and built-in types of Python 3.
const Words pythonWords = {
    "False",       "None",       "True",       "__import__",   "abs",       "aiter",    "all",       "and",
    "anext",       "any",        "as",         "ascii",        "assert",    "async",    "await",     "bin",
    "bool",        "break",      "breakpoint", "bytearray",    "bytes",     "callable", "chr",       "class",
    "classmethod", "compile",    "complex",    "continue",     "copyright", "credits",  "def",       "del",
    "delattr",     "dict",       "dir",        "divmod",       "elif",      "else",     "enumerate", "eval",
    "except",      "exec",       "exit",       "filter",       "finally",   "float",    "for",       "format",
    "from",        "frozenset",  "getattr",    "global",       "globals",   "hasattr",  "hash",      "help",
    "hex",         "id",         "if",         "import",       "in",        "input",    "int",       "is",
    "isinstance",  "issubclass", "iter",       "lambda",       "len",       "license",  "list",      "locals",
    "map",         "max",        "memoryview", "min",          "next",      "nonlocal", "not",       "object",
    "oct",         "open",       "or",         "ord",          "pass",      "pow",      "print",     "property",
    "quit",        "raise",      "range",      "repr",         "return",    "reversed", "round",     "set",
    "setattr",     "slice",      "sorted",     "staticmethod", "str",       "sum",      "super",     "try",
    "tuple",       "type",       "vars",       "while",        "with",      "yield",    "zip",
};

// What generated modules and the package define.
const Words moduleWords = {"CodingError", "Json", "JsonError", "annotations", "dataclasses", "importlib", "sys", "xdr"};

// What classes define.
const Words classWords = {"arm",     "codec", "decode",  "decode_prefix", "encode",      "from_json",
                          "to_json", "_arms", "_fields", "_renamed",      "dataclasses", "xdr"};

// What enumerators inherit.
const Words enumerationWords = {
    "as_integer_ratio", "bit_count", "bit_length", "conjugate", "denominator", "from_bytes", "imag", "mro", "name",
    "numerator",        "real",      "to_bytes",   "value"};

const Words fileWords = {"__init__", "__main__", "xdr"};

// Enumerations keep `_x_` for themselves.
bool isSunder(std::string_view name)
{
    return name.size() > 2 && name.front() == '_' && name.back() == '_' && name[name.size() - 2] != '_';
}

// The names; each that `isTaken` gets `_` at its end until it is neither that nor another of the names.
template <class IsTaken>
std::vector<std::string> renamed(std::vector<std::string> names, IsTaken isTaken)
{
    Words used;
    for (const std::string& name : names)
        if (!isTaken(name)) used.insert(name);
    for (std::string& name : names) {
        if (!isTaken(name)) continue;
        do name += '_';
        while (isTaken(name) || used.contains(name));
        used.insert(name);
    }
    return names;
}

// The path with '.' for '/', made of names.
std::string pythonPath(const std::string& module)
{
    std::string out;
    for (std::size_t begin = 0; begin <= module.size();) {
        const std::size_t end = std::min(module.find('/', begin), module.size());
        const std::string part = module.substr(begin, end - begin);
        const bool isDigit = part[0] >= '0' && part[0] <= '9';
        out += (out.empty() ? "" : ".") + std::string(isDigit ? "_" : "") + part +
               (pythonWords.contains(part) || fileWords.contains(part) ? "_" : "");
        begin = end + 1;
    }
    return out;
}

std::string filePath(std::string path)
{
    std::ranges::replace(path, '.', '/');
    return path;
}

bool isMemberWord(const std::string& name)
{
    return pythonWords.contains(name) || classWords.contains(name);
}

}  // namespace

PythonNames::PythonNames(const Program& program)
{
    std::vector<std::string> names, moduleNames, modulePaths;
    for (const auto& module : program.modules) {
        moduleNames.push_back(module->source.module);
        modulePaths.push_back(pythonPath(module->source.module));
        for (const auto& definition : module->definitions) names.push_back(definition->name);
    }
    const std::vector<std::string> classes = renamed(
        names, [](const std::string& name) { return pythonWords.contains(name) || moduleWords.contains(name); });
    for (std::size_t i = 0; i < names.size(); ++i) definitions.emplace(names[i], classes[i]);

    for (std::size_t i = 0; i < moduleNames.size(); ++i) {
        std::string path = modulePaths[i];
        while (!modules.insert(path).second) path += '_';
        paths.emplace(moduleNames[i], path);
        for (std::size_t dot = 0; (dot = path.find('.', dot)) != std::string::npos; ++dot)
            folders.insert(path.substr(0, dot));
    }
}

std::string PythonNames::rootFrom(const Module& module) const
{
    const std::string& path = pathOf(module.source.module);
    const auto levels = static_cast<std::size_t>(std::ranges::count(path, '.'));
    return std::string(levels + (folders.contains(path) ? 2 : 1), '.');
}

std::string PythonNames::fileOf(const Module& module) const
{
    const std::string& path = pathOf(module.source.module);
    return folders.contains(path) ? fileOfFolder(path) : filePath(path) + ".py";
}

std::string PythonNames::fileOfFolder(const std::string& path) const
{
    return filePath(path) + "/__init__.py";
}

std::vector<std::string> enumeratorNames(const Definition& enumeration)
{
    std::vector<std::string> names;
    for (const Enumerator& each : enumeration.enumerators) names.push_back(each.name);
    return renamed(std::move(names), [](const std::string& name) {
        return isMemberWord(name) || enumerationWords.contains(name) || isSunder(name);
    });
}

std::vector<std::string> fieldNames(const Definition& structure, const std::unordered_set<std::string>& classes)
{
    std::vector<std::string> names;
    for (const Declaration& field : structure.fields) names.push_back(field.name);
    return renamed(std::move(names),
                   [&](const std::string& name) { return isMemberWord(name) || classes.contains(name); });
}

std::string discriminantAttribute(const Definition& discriminatedUnion, const std::unordered_set<std::string>& classes)
{
    return renamed({discriminatedUnion.discriminant.name},
                   [&](const std::string& name) { return isMemberWord(name) || classes.contains(name); })
        .front();
}

}  // namespace quorva::compiler
