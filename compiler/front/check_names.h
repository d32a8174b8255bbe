// Finds names that C++ cannot declare, and names that clash in one scope.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <vector>

namespace quorva::compiler {

// Reports such names of modules, definitions and members, and names in requested modules that `program.others` have.
// Returns the definitions of the program, of those with the same name only the first.
std::vector<const Definition*> checkNames(const Program& program, Diagnostics& errors);

}  // namespace quorva::compiler
