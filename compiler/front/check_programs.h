// Finds what RFC 5531 does not allow in `program` blocks.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <vector>

namespace quorva::compiler {

// Reports names and numbers of programs, versions and procedures that are taken, reserved or out of range. Programs,
// types, constants and enumerators share one scope; `definitions` are those of the program.
void checkPrograms(const Program& program, const std::vector<const Definition*>& definitions, Diagnostics& errors);

}  // namespace quorva::compiler
