// Finds what the grammar allows and the API does not.
#pragma once

#include "diagnostics.h"
#include "model.h"

namespace quorva::compiler {

// Reports what prevents code generation from a resolved program: names that clash or that C++ reserves, numbers out of
// range, forms that the API does not have, types that nest too deep. Consequences of errors that parse() or resolve()
// reported are not reported again.
void check(const Program& program, Diagnostics& errors);

}  // namespace quorva::compiler
