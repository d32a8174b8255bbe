// What the interface files say about types, as text for people and as JSON for programs.
#pragma once

#include "catalogue.h"
#include "documentation.h"
#include "json.h"

#include <span>
#include <string>

namespace quorva::inspect {

// One line for each type, in columns: name, kind, module, and "provisional" for a layout that is not agreed yet, or how
// many of its members are provisional.
std::string typesText(std::span<const Type* const> types);

// [{"name": ..., "kind": ..., "module": ..., "provisional": <reason, if any>, "provisionalMembers": [<name>, ...]},
// ...]
Json typesJson(std::span<const Type* const> types);

// All about one type: where it is defined, its texts, sizes, members and users.
std::string descriptionText(const Type& type, const Catalogue& catalogue);
Json descriptionJson(const Type& type, const Catalogue& catalogue);

// The routines of primitives that code no built-in type: XdrVoid, XdrString, XdrArray and the like.
std::span<const char* const> otherPrimitives();

// How much a library of these modules holds: modules, types by kind, routines and name functions, settled and
// provisional layouts.
std::string summaryText(std::span<const Module* const> modules);

}  // namespace quorva::inspect
