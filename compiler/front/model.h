// The syntax tree of an interface file. The parser fills it with names as written; resolve() adds what they refer to.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace quorva::compiler {

// The text of one interface file.
struct Source {
    std::string path;    // as diagnostics print it
    std::string module;  // the path below its -I folder without ".x": "jobs/covers"
    std::string text;
};

// A range within one line of a source. Lines and columns count from 1; columns and lengths are in bytes. The source
// must outlive the span.
struct Span {
    const Source* source = nullptr;  // null where there is no position
    unsigned line = 0;
    unsigned column = 0;
    unsigned length = 0;
};

enum class Builtin {
    none,  // a type that an interface file defines, or no type
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

enum class DefinitionKind { constant, enumeration, structure, discriminatedUnion, typeDefinition };

struct Definition;

// A type as a declaration names it. After resolution either `builtin` or `definition` is set, unless an error was
// reported.
struct TypeRef {
    std::string name;  // as the API spells it: "LongInteger" also where the file says "int"
    Span at;
    Builtin builtin = Builtin::none;
    const Definition* definition = nullptr;
    std::optional<DefinitionKind> keyword;  // "struct", "union" or "enum" before the name: the kind it must have
};

// A number as written: a literal, or the name of a constant or an enumerator.
struct Value {
    std::string text;
    Span at;
    bool isName = false;
    bool known = false;  // `number` is valid. After resolution always true, unless an error was reported
    std::int64_t number = 0;
    const Definition* owner = nullptr;  // of a name: the constant, or the enumeration that declares the enumerator
};

// How a declaration holds its type; the same words as quorva::Form in <quorvapixdr/description.h>.
enum class Form {
    single,
    fixedArray,
    variableArray,
    optional,
    string,
    variableOpaque,
    fixedOpaque,
    none,  // void
};

// Counts and lengths have 16 bits in memory: the most elements of an array, and the most bytes of a string or opaque.
inline constexpr std::uint32_t mostElements = 65535;

// A field, a discriminant, an arm, or the target of a typedef.
struct Declaration {
    Form form = Form::none;
    TypeRef type;                            // unused for string, opaque and void
    std::string name;                        // empty for void
    Span at;                                 // of the name, or of "void"
    std::optional<Value> written;            // the bound in the file, if it gives one
    std::uint32_t bound = 0;                 // resolved: elements of a fixed form, maximum of a variable one; else 0
    std::string doc;                         // lines joined by '\n', without comment marks and provisional line
    std::optional<std::string> provisional;  // the reason after the mark, possibly empty; nullopt if settled
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
    bool wasDefault = false;  // resolve() found the values of a default arm with data
};

struct Definition {
    DefinitionKind kind = DefinitionKind::structure;
    std::string name;
    Span at;                                 // of the name
    std::string doc;                         // lines joined by '\n', without comment marks and provisional line
    std::optional<std::string> provisional;  // the reason after the mark, possibly empty; nullopt if settled
    Value constant;                          // constant
    std::vector<Enumerator> enumerators;     // enumeration, in the order of the file
    std::vector<Declaration> fields;         // struct
    Declaration discriminant;                // union
    std::vector<Arm> arms;                   // union, without the default arm
    std::optional<Arm> defaultArm;           // union; after resolution without data, unless an error was reported
    Declaration target;                      // typedef; its name is the definition's
    bool hasErrors = false;                  // the parser reported an error in it: members may be missing
};

// A procedure of a remote program: `Result name(Argument) = number;`.
struct RemoteProcedure {
    std::string name;
    Span at;  // of the name
    Value number;
    std::optional<TypeRef> argument;  // nullopt for void, here and in the result
    std::optional<TypeRef> result;
    std::string doc;
};

struct RemoteVersion {
    std::string name;
    Span at;  // of the name
    Value number;
    std::vector<RemoteProcedure> procedures;  // in the order of the file
    std::string doc;
};

// A `program` block (RFC 5531, section 12).
struct RemoteProgram {
    std::string name;
    Span at;  // of the name
    Value number;
    std::vector<RemoteVersion> versions;  // in the order of the file
    std::string doc;
    bool hasErrors = false;  // the parser reported an error in it: versions or procedures may be missing
};

struct Module;

struct Import {
    std::string name;  // "common/strings"
    Span at;
    const Module* module = nullptr;  // null until the module is read, and where that failed
};

struct Module {
    Source source;
    std::string doc;
    std::vector<Import> imports;
    std::vector<std::unique_ptr<Definition>> definitions;  // in the order of the file
    std::vector<RemoteProgram> programs;                   // in the order of the file
    bool requested = false;                                // named on the command line, not only imported

    // What later stages must not report as unknown: names in text that the parser skipped, and any name if a whole file
    // is missing.
    std::unordered_set<std::string> skipped;
    bool incomplete = false;
};

// Everything that one run of the compiler has read.
struct Program {
    std::vector<std::unique_ptr<Module>> modules;  // each after the modules that it imports
    // What readOtherModules() found, parsed and not resolved: modules that the same program may link.
    std::vector<std::unique_ptr<Module>> others;
};

}  // namespace quorva::compiler
