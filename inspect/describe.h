// What the interface files say about types, as text for people and as JSON for programs.
#pragma once

#include "catalogue.h"
#include "documentation.h"
#include "json.h"
#include "sizes.h"
#include "users.h"

#include <cstddef>
#include <span>
#include <string>

namespace quorva::inspect {

// One line for each type, in columns: name, kind, module, and the provisional mark: "provisional" for the whole type,
// or the number of its provisional members.
std::string typesText(std::span<const Type* const> types);

// An array of {"name", "kind", "module", "provisional": <reason>, "provisionalMembers": [<name>, ...]}. A built-in type
// has no module; the last two are there only where something is provisional.
Json typesJson(std::span<const Type* const> types);

// What the descriptions of several types share.
struct TypeFacts {
    TypeFacts(const Catalogue& catalogue) : users(catalogue.types()) {}

    Users users;
    WireSizes sizes;
};

// Everything about one type: place of its definition, documentation, sizes, members or enumerators, and up to
// `mostUsers` of its direct and of its indirect users.
std::string descriptionText(const Type& type, const TypeFacts& facts, std::size_t mostUsers = 12);

// The entry of the type in the schema document (schema.h).
Json descriptionJson(const Type& type, const TypeFacts& facts);

// The names of the primitive routines that do not belong to one built-in type: "XdrVoid", "XdrString", "XdrArray", ...
std::span<const char* const> otherPrimitives();

// The number of modules, of types by kind, of routines and name functions, and of settled and provisional layouts.
// `primitives` is the number of other primitives to mention; 0 mentions none.
std::string summaryText(std::span<const Type* const> types, std::size_t primitives);

}  // namespace quorva::inspect
