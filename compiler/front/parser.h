// Reads the text of one interface file into the syntax tree.
#pragma once

#include "diagnostics.h"
#include "model.h"

namespace quorva::compiler {

// Fills `module` from `module.source`: documentation, imports and definitions. Names stay as written; resolve() looks
// them up. Every error is reported to `errors`, and parsing continues after it. Text that is skipped is noted in the
// module, so that later stages do not report its consequences.
void parse(Module& module, Diagnostics& errors);

}  // namespace quorva::compiler
