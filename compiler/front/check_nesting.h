// Finds types that contain themselves, nest too deep or are too large.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <vector>

namespace quorva::compiler {

// Reports such types. `types` are all definitions of a resolved program, each once. Later stages rely on these bounds:
// they recurse into the types that a type holds by value and into the targets of typedefs.
void checkNesting(const std::vector<const Definition*>& types, Diagnostics& errors);

}  // namespace quorva::compiler
