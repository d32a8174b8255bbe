// What the interface files say about types, as text for people and as JSON for programs.
#pragma once

#include "catalogue.h"
#include "documentation.h"
#include "json.h"

#include <span>
#include <string>

namespace quorva::inspect {

// One line for each type, in columns: name, kind, module, and the provisional mark: "provisional" for the whole type,
// or the number of its provisional members.
std::string typesText(std::span<const Type* const> types);

// An array of {"name", "kind", "module", "provisional": <reason>, "provisionalMembers": [<name>, ...]}. A built-in type
// has no module; the last two are there only where something is provisional.
Json typesJson(std::span<const Type* const> types);

// Everything about one type: place of its definition, documentation, sizes, members or enumerators, and users.
std::string descriptionText(const Type& type, const Catalogue& catalogue);

// The same as one JSON object.
Json descriptionJson(const Type& type, const Catalogue& catalogue);

// The names of the primitive routines that do not belong to one built-in type: "XdrVoid", "XdrString", "XdrArray", ...
std::span<const char* const> otherPrimitives();

// The number of modules, of types by kind, of routines and name functions, and of settled and provisional layouts.
std::string summaryText(std::span<const Module* const> modules);

}  // namespace quorva::inspect
