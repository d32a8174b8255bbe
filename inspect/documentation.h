// Documentation, module and enumerators of a type, found by the type's description.
#pragma once

#include <quorvapixdr/documentation.h>

#include <cstdint>
#include <span>
#include <vector>

namespace quorva::inspect {

// The types of these modules, in their order.
std::vector<const Type*> typesOf(std::span<const Module* const> modules);

// The known modules: those of the library, then those that `addModules` added. A module replaces all earlier ones of
// its name.
std::vector<const Module*> knownModules();

// The documentation of a type; an empty one if its module is not known.
const Documentation& documentationOf(const Type& type);

// The module that defines a type; null for a built-in type and for a type whose module is not known.
const Module* moduleOf(const Type& type);

// The name of that module, such as "jobs/covers"; empty where `moduleOf` is null.
const char* moduleName(const Type& type);

// The documentation of a member, which must be one of `type.members`; an empty one if the module is not known.
const MemberDocumentation& documentationOf(const Type& type, const Member& member);

// The enumerators of an enumeration, ascending by value; none for any other type. A description of another library is
// known by its name, if its name function agrees with the enumerators of a known type.
std::span<const Enumerator> enumeratorsOf(const Type& type);

// The enumerator with this value, or null.
const Enumerator* enumeratorOf(const Type& enumeration, std::int64_t value);

// The members whose own layout is marked provisional.
std::vector<const Member*> provisionalMembersOf(const Type& type);

// True if the type or one of its members is marked provisional.
bool isProvisional(const Type& type);

}  // namespace quorva::inspect
