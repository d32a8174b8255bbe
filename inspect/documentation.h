// What the interface files say about a type, found by the type: its texts, its module, its enumerators.
#pragma once

#include <quorvapixdr/documentation.h>

#include <span>
#include <vector>

namespace quorva::inspect {

// The types of these modules, in their order.
std::vector<const Type*> typesOf(std::span<const Module* const> modules);

// Makes further modules known: those of `modules()` and the built-in types are known from the start. `further` has
// static storage. Not to be called while another thread uses the inspector.
void addModules(std::span<const Module* const> further);

// Empty for a type whose module is not known.
const Documentation& documentationOf(const Type& type);

// Null for a built-in type, and for a type whose module is not known.
const Module* moduleOf(const Type& type);

// Its name, "jobs/cover"; empty where there is no module.
const char* moduleName(const Type& type);

// Of one of the type's own members.
const MemberDocumentation& documentationOf(const Type& type, const Member& member);

// By value, ascending; none for a type that is not an enumeration.
std::span<const Enumerator> enumeratorsOf(const Type& type);

// The members whose layout is provisional; and true if there is one, or if the type as a whole is provisional.
std::vector<const Member*> provisionalMembersOf(const Type& type);
bool isProvisional(const Type& type);

}  // namespace quorva::inspect
