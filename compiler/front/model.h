// The tree of an interface file, from the parser's view of the text to names that are resolved to definitions.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace quorva::compiler {

// One interface file as it was read. `module` is the path below its -I folder without ".x": "jobs/cover".
struct Source {
    std::string path;  // as diagnostics print it
    std::string module;
    std::string text;
};

// A stretch of one line of a source; lines and columns count from 1, columns and lengths in bytes.
struct Span {
    const Source* source = nullptr;
    unsigned line = 0;
    unsigned column = 0;
    unsigned length = 0;
};

enum class Builtin {
    none,
    Boolean,
    ShortInteger,
    ShortNatural,
    Integer,
    Natural,
    LongInteger,
    LongNatural,
    UINT,
    Float,
};

enum class Kind { constant, enumeration, record, discriminated, definedAs };

struct Definition;

// A type as a declaration names it. After resolution either `builtin` or `definition` is set. `name` is the API's
// spelling: "LongInteger" also where the file says "int".
struct TypeRef {
    std::string name;
    Span at;
    Builtin builtin = Builtin::none;
    const Definition* definition = nullptr;
    std::optional<Kind> keyword;  // "struct", "union" or "enum" before the name: what the definition has to be
};

// A number as written: a literal, or the name of a constant or an enumerator. `number` holds where `known` is set;
// after resolution that is everywhere but where a fault was reported.
struct Value {
    std::string text;
    Span at;
    bool isName = false;
    bool known = false;
    std::int64_t number = 0;
    const Definition* owner = nullptr;  // of a name: the constant, or the enumeration that the enumerator stands in
};

enum class Form { single, vector, list, optional, string, bytes, opaque, nothing };

struct Declaration {
    Form form = Form::nothing;
    TypeRef type;                  // unused for string, bytes, opaque and nothing
    std::string name;              // empty for nothing
    Span at;                       // of the name, or of "void"
    std::optional<Value> written;  // the bound as written, if any
    std::uint32_t bound = 0;       // resolved: elements, or the maximum (65535 where none is written)
    std::string doc;               // comment text, lines joined by '\n', without comment marks and provisional line
    std::optional<std::string> provisional;  // the text behind the mark, possibly empty
};

struct Enumerator {
    std::string name;
    Span at;
    Value value;
    std::string doc;
};

struct Arm {
    std::vector<Value> cases;  // empty for the default arm
    Declaration declaration;
};

struct Definition {
    Kind kind = Kind::record;
    std::string name;
    Span at;                                 // of the name
    std::string doc;                         // without the provisional line
    std::optional<std::string> provisional;  // the text behind the mark, possibly empty
    Value constant;                          // constant
    std::vector<Enumerator> enumerators;     // enumeration, in the order of the file
    std::vector<Declaration> fields;         // record
    Declaration discriminant;                // union
    std::vector<Arm> arms;                   // union, without the default arm
    std::optional<Arm> defaultArm;           // union
    Declaration target;                      // definedAs; its name is the definition's
    bool broken = false;                     // the parser reported a fault inside: parts may be missing
};

struct Module;

struct Import {
    std::string name;  // "common/strings"
    Span at;
    const Module* module = nullptr;
};

struct Module {
    Source source;
    std::string doc;
    std::vector<Import> imports;
    std::vector<std::unique_ptr<Definition>> definitions;  // in the order of the file
    bool requested = false;                                // named on the command line, not only imported

    // Names that may stand in text which the parser had to skip, and whether any name may be missing because a whole
    // file is: an unknown name is then no fault of its own.
    std::unordered_set<std::string> skipped;
    bool incomplete = false;
};

// Everything that one run of the compiler has read. Modules stand behind those that they import.
struct Program {
    std::vector<std::unique_ptr<Module>> modules;
};

}  // namespace quorva::compiler
