// Finds the names of an interface that C++ cannot declare, and those that would meet in one scope.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <string>
#include <vector>

namespace quorva::compiler {

// Reports such names of modules, definitions and their members. Returns every definition but those that repeat the name
// of another.
std::vector<const Definition*> checkNames(const Program& program, Diagnostics& errors);

// Returns the kind and the name of a definition, as messages show it: "enumeration 'DoorState'".
std::string describe(const Definition& definition);

}  // namespace quorva::compiler
