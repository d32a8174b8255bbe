// The schema table: what the interface files say, as constant data beside the routines made from them.
//
// One `Type` stands for every definition of an interface file and for every built-in type. The inspector, the JSON
// conversion, the property tests and the reference walk this table; nothing else in the project repeats a field list.
// All objects are constants with static storage; nobody releases them. Texts are zero-terminated UTF-8, never null
// unless said so.
#pragma once

#include <quorvapixdr/primitives.h>

#include <cstdint>
#include <span>

namespace quorva::schema {

// What a definition is. An alias, a sequence, a bounded string and every other `typedef` is a `definedAs`; its `target`
// tells which.
enum class Kind : std::uint8_t { builtin, enumeration, record, discriminated, definedAs };

// The built-in types, in the order of their widths; `none` for everything that an interface file defines.
enum class Builtin : std::uint8_t {
    none, Boolean, ShortInteger, ShortNatural, Integer, Natural, LongInteger, LongNatural, UINT, Float,
};

// How a declaration holds its type.
enum class Form : std::uint8_t {
    single,    // T name;
    vector,    // T name[bound];        T[bound] in place
    list,      // T name<bound>;        quorva::Counted<T>, or the two members of a sequence type
    optional,  // T *name;              T*
    string,    // string name<bound>;   char*
    bytes,     // opaque name<bound>;   quorva::Counted<unsigned char>
    opaque,    // opaque name[bound];   unsigned char[bound] in place
    nothing,   // void;
};

struct Type;

// One use of a type: by a field, an arm, a discriminant or a typedef.
struct Use {
    Form form = Form::nothing;
    const Type* type = nullptr;  // the element type; null for string, bytes, opaque and nothing
    std::uint32_t bound = 0;     // number of a vector or opaque, maximum of a list, string or bytes; else 0
};

struct Member {
    const char* name = "";       // also the trace tag
    Use use;
    std::uint32_t offset = 0;    // bytes from the start of the enclosing object
    const char* doc = "";
};

struct Enumerator {
    const char* name = "";
    std::int32_t value = 0;
    const char* doc = "";
};

// One arm of a union: the discriminant values that select it, and what it holds (`Form::nothing` for a void arm).
struct Arm {
    std::span<const std::int64_t> cases;
    Member member;
};

struct Type {
    const char* name = "";
    Kind kind = Kind::builtin;
    Builtin builtin = Builtin::none;
    const char* module = "";               // "jobs/cover"; empty for a built-in type
    const char* file = "";                 // as it was named relative to its -I folder: "jobs/cover.x"
    unsigned line = 0;
    const char* doc = "";                  // without the provisional mark
    const char* provisional = nullptr;     // the reason beside the mark; null for a settled layout
    XdrRoutine routine = nullptr;
    const char* (*nameOf)(int) = nullptr;  // name function of an enumeration, else null
    std::uint32_t size = 0;                // sizeof and alignof of the C++ type
    std::uint32_t alignment = 0;
    std::span<const Enumerator> enumerators = {};  // by value, ascending
    std::span<const Member> fields = {};           // record: in order; union: the discriminant alone
    std::span<const Arm> arms = {};                // union: in order of their first case as written
    bool hasDefault = false;                       // union: other values are accepted and carry nothing
    Use target = {};                               // definedAs
};

struct Module {
    const char* name = "";
    const char* file = "";
    const char* doc = "";
    std::span<const Type* const> types;    // in the order of the file
};

// The built-in types, and the modules that the library was built from, ordered by name.
std::span<const Type* const> builtins();
std::span<const Module* const> modules();

}  // namespace quorva::schema

// The table entry of each built-in type; the generated tables refer to these and declare their own beside them.
namespace quorva::schema::types {
extern const Type Boolean, ShortInteger, ShortNatural, Integer, Natural, LongInteger, LongNatural, UINT, Float;
}
