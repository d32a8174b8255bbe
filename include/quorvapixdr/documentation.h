// Documentation of the described types: texts of the interface files, and where each definition is. Tools link it; the
// library does not carry it.
#pragma once

#include <quorvapixdr/description.h>

#include <cstdint>
#include <span>

namespace quorva {

// An enumerator, with the text that documents it.
struct Enumerator {
    const char* name = "";
    std::int32_t value = 0;
    const char* text = "";
};

// What an interface file says about one field, arm or discriminant.
struct MemberDocumentation {
    const char* text = "";
    const char* provisional = nullptr;  // the reason beside the mark; null for a settled one
};

// What an interface file says about one type.
struct Documentation {
    const Type* type = nullptr;
    unsigned line = 0;                                  // in the module's file
    const char* text = "";                              // without the provisional mark
    const char* provisional = nullptr;                  // the reason beside the mark; null for a settled layout
    std::span<const MemberDocumentation> members = {};  // one for each member of the type, or none
    std::span<const Enumerator> enumerators = {};       // of an enumeration: by value, ascending
};

struct Module {
    const char* name = "";  // "jobs/cover"
    const char* file = "";  // relative to its -I folder: "jobs/cover.x"
    const char* text = "";
    std::span<const Documentation> types = {};  // in the order of the file
};

// The built-in types, and the modules that the library was built from, ordered by name.
std::span<const Type* const> builtinTypes();
std::span<const Module* const> modules();

}  // namespace quorva
