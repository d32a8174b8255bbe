// What the schema says about types, as text for people and as JSON for programs.
#pragma once

#include "catalogue.h"
#include "json.h"

#include <string>

namespace quorva::inspect {

// One line for each type, in columns: name, kind, module, and "provisional" for an unpublished layout.
std::string typesText(std::span<const schema::Type* const> types);

// [{"name": ..., "kind": ..., "module": ..., "provisional": <reason, if any>}, ...]
Json typesJson(std::span<const schema::Type* const> types);

// All about one type: where it is defined, its words, sizes, parts and users.
std::string descriptionText(const schema::Type& type, const Catalogue& catalogue);
Json descriptionJson(const schema::Type& type, const Catalogue& catalogue);

// How much the library holds: modules, types by kind, routines and name functions, settled and provisional layouts.
std::string summaryText();

}  // namespace quorva::inspect
