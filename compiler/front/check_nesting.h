// Finds types that contain themselves, that nest too deep, and that are too large.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <vector>

namespace quorva::compiler {

// Reports such types among `types`, which are all of a resolved program, each once. Later stages rely on these bounds:
// they may follow what a type holds by value, and what a typedef is made of, by recursion.
void checkNesting(const std::vector<const Definition*>& types, Diagnostics& errors);

}  // namespace quorva::compiler
