// Documentation of the described types: the texts of the interface files, and the place of each definition. The
// inspector's library has it, quorvapixdr::inspect; the codec does not carry it.
#pragma once

#include <quorvapixdr/description.h>

#include <cstdint>
#include <span>

namespace quorva {

// An enumerator with its documentation. Here and below, texts are zero-terminated and, but for `provisional`, not null.
struct Enumerator {
    const char* name = "";
    std::int32_t value = 0;
    const char* text = "";
};

// What an interface file says about one field, arm or discriminant.
struct MemberDocumentation {
    const char* text = "";
    const char* provisional = nullptr;  // the reason given with the mark; null for a settled member
};

// What an interface file says about one type.
struct Documentation {
    const Type* type = nullptr;
    unsigned line = 0;                                  // in the module's file, from 1
    const char* text = "";                              // without the provisional mark
    const char* provisional = nullptr;                  // the reason given with the mark; null for a settled type
    std::span<const MemberDocumentation> members = {};  // one for each member of the type, or none
    std::span<const Enumerator> enumerators = {};       // of an enumeration: by value, ascending
};

// A procedure of a remote program (RFC 5531): its numbers select it in a call, which carries one value to the server
// and one back.
struct RemoteProcedure {
    const char* name = "";
    std::uint32_t number = 0;
    const Type* argument = nullptr;  // null for void, here and in the result
    const Type* result = nullptr;
    const char* text = "";
};

struct RemoteVersion {
    const char* name = "";
    std::uint32_t number = 0;
    const char* text = "";
    std::span<const RemoteProcedure> procedures = {};  // in the order of the file
};

// A `program` block of an interface file.
struct RemoteProgram {
    const char* name = "";
    std::uint32_t number = 0;
    unsigned line = 0;  // in the module's file, from 1
    const char* text = "";
    std::span<const RemoteVersion> versions = {};  // in the order of the file
};

// An interface file.
struct Module {
    const char* name = "";  // "jobs/covers"
    const char* file = "";  // relative to its -I folder: "jobs/covers.x"
    const char* text = "";
    std::span<const Documentation> types = {};     // in the order of the file
    std::span<const RemoteProgram> programs = {};  // in the order of the file
};

#pragma GCC visibility push(default)

// The descriptions of the built-in types, and the modules of the library, ordered by name. Static storage.
std::span<const Type* const> builtinTypes();
std::span<const Module* const> modules();

// Adds modules to those that the inspector's library knows, which are `modules()` at the start: modules that a program
// generates for itself, or describes at run time. Everything that `further` points to must live until `removeModules`,
// or to the end of the program. Neither is thread-safe: no other thread may use that library meanwhile.
void addModules(std::span<const Module* const> further);
void removeModules(std::span<const Module* const> added);

#pragma GCC visibility pop

}  // namespace quorva
