// Reads the text of one interface file into the tree.
#pragma once

#include "diagnostics.h"
#include "model.h"

namespace quorva::compiler {

// Fills `module` from `module.source`: documentation, imports and definitions, with names as written and nothing looked
// up. Every fault is reported and parsing goes on behind it; what was skipped is noted in the module, so that later
// stages do not report what follows from it.
void parse(Module& module, Diagnostics& faults);

}  // namespace quorva::compiler
