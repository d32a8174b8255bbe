// Descriptions: what an interface file says about each type, as constant data.
//
// One `Type` describes each definition of an interface file and each built-in type. The interpreter follows it, and the
// inspector, the JSON conversion and the property tests read it; no field list is written a second time. Generated
// descriptions are constants with static storage. Names are zero-terminated and never null. Documentation, files and
// lines are in <quorvapixdr/documentation.h>.
//
// A tool can also describe types at run time. Such a type has no routine, and only the interpreter codes it; an
// enumeration has no name function: its members and cases give the names.
#pragma once

#include <quorvapixdr/primitives.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace quorva {

// What a definition is. An alias, a sequence, a bounded string and every other `typedef` is a `typeDefinition`; a
// `foreign` type is one that another library defines and describes.
enum class TypeKind : std::uint8_t { builtin, enumeration, structure, discriminatedUnion, typeDefinition, foreign };

// The built-in types; `none` for everything that an interface file defines.
enum class Builtin : std::uint8_t {
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

// The form of a declaration, with its RFC 4506 syntax and its C++ type.
enum class Form : std::uint8_t {
    single,          // T name;
    fixedArray,      // T name[bound];       T[bound]
    variableArray,   // T name<bound>;       quorva::Counted<T>, or the two members of a sequence type
    optional,        // T *name;             T*
    string,          // string name<bound>;  char*
    variableOpaque,  // opaque name<bound>;  quorva::Counted<unsigned char>
    fixedOpaque,     // opaque name[bound];  unsigned char[bound]
    none,            // void;
};

struct Type;

// One use of a type: by a field, an arm, a discriminant or a typedef.
struct Use {
    const Type* type = nullptr;  // the element type; null for string, opaque and void
    std::uint32_t bound = 0;     // element count of a fixed-length form, maximum of a variable-length one; else 0
    Form form = Form::none;
};

// A field of a struct, the discriminant or an arm of a union, or what a typedef names.
struct Member {
    constexpr Member() = default;
    constexpr Member(const char* memberName, Use memberUse, std::size_t memberOffset)
        : name(memberName),
          use(memberUse),
          offset(static_cast<std::uint32_t>(memberOffset)),
          nameLength(static_cast<std::uint32_t>(std::char_traits<char>::length(memberName)))
    {
    }

    const char* name = "";  // also the name of the trace element; empty for a void arm and in a typedef
    Use use;
    std::uint32_t offset = 0;      // in bytes, from the start of the enclosing object
    std::uint32_t nameLength = 0;  // in bytes
};

// A discriminant value that selects an arm, or the value of an enumerator.
struct Case {
    std::uint32_t value = 0;   // as on the wire: -1 is 0xFFFFFFFF
    std::uint32_t member = 0;  // index of the arm or the enumerator among the type's members
};

// A definition of an interface file, or a built-in type.
struct Type {
    const char* name = "";
    TypeKind kind = TypeKind::builtin;
    Builtin builtin = Builtin::none;
    bool hasDefault = false;      // union: a discriminant without a case selects a void arm
    std::uint32_t size = 0;       // sizeof the C++ type
    std::uint32_t alignment = 0;  // alignof
    XdrRoutine routine = nullptr;
    const char* (*nameOf)(int) = nullptr;  // name function of an enumeration, else null
    std::span<const Member> members = {};  // struct: its fields; union: the discriminant, then its arms in the order of
                                           // the file; typedef: its one declaration; enumeration without a name
                                           // function: the name of unknown values, then the names of the enumerators
    std::span<const Case> cases = {};      // of a union and of such an enumeration: by value, ascending
    const char* armElement = "";           // union: the trace element around the arm
    const Type& (*described)() = nullptr;  // foreign: returns the description in the library that defines the type
};

// Generated code makes descriptions with these functions, one for each kind of definition; `T` is the C++ type.
template <class T>
constexpr Type enumeration(const char* name, XdrRoutine routine, const char* (*nameOf)(int))
{
    return {.name = name,
            .kind = TypeKind::enumeration,
            .size = sizeof(T),
            .alignment = alignof(T),
            .routine = routine,
            .nameOf = nameOf};
}

template <class T>
constexpr Type structure(const char* name, XdrRoutine routine, std::span<const Member> fields)
{
    return {.name = name,
            .kind = TypeKind::structure,
            .size = sizeof(T),
            .alignment = alignof(T),
            .routine = routine,
            .members = fields};
}

template <class T>
constexpr Type discriminatedUnion(const char* name, XdrRoutine routine, std::span<const Member> members,
                                  std::span<const Case> cases, const char* armElement, bool hasDefault)
{
    return {.name = name,
            .kind = TypeKind::discriminatedUnion,
            .hasDefault = hasDefault,
            .size = sizeof(T),
            .alignment = alignof(T),
            .routine = routine,
            .members = members,
            .cases = cases,
            .armElement = armElement};
}

template <class T>
constexpr Type typeDefinition(const char* name, XdrRoutine routine, std::span<const Member> named)
{
    return {.name = name,
            .kind = TypeKind::typeDefinition,
            .size = sizeof(T),
            .alignment = alignof(T),
            .routine = routine,
            .members = named};
}

// A type without members: a built-in type, or a foreign one, where `builtin` is the built-in type that it is an alias
// of, or `Builtin::none`, and `described` returns the other library's description.
template <class T>
constexpr Type leaf(TypeKind kind, const char* name, XdrRoutine routine, Builtin builtin,
                    const Type& (*described)() = nullptr)
{
    return {.name = name,
            .kind = kind,
            .builtin = builtin,
            .size = sizeof(T),
            .alignment = alignof(T),
            .routine = routine,
            .described = described};
}

// The descriptions of the built-in types. Generated code declares those of the interface's types in this namespace.
// They are hidden in the library; callers reach them by `coder::JobId.description()`.
namespace types {
extern const Type Boolean, ShortInteger, ShortNatural, Integer, Natural, LongInteger, LongNatural, UINT, Float;
}

}  // namespace quorva
