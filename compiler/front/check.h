// Finds what the grammar allows and the API does not.
#pragma once

#include "diagnostics.h"
#include "model.h"

namespace quorva::compiler {

// Reports everything that stands between a resolved program and its generated code. What parse() and resolve() have
// reported already is taken as known, and nothing is reported that only follows from it.
void check(const Program& program, Diagnostics& errors);

}  // namespace quorva::compiler
