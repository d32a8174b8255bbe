// Warns of what the language allows and the library's own interface files avoid.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <cstddef>

namespace quorva::compiler {

// The limit of the list that lint() fills.
inline constexpr std::size_t mostWarnings = 1000;

// Adds warnings about the requested modules of a program without errors. Settled names and layouts cannot change, so
// names are checked in provisional types and members only, and the size of arms where the layout is provisional.
void lint(const Program& program, Diagnostics& warnings);

}  // namespace quorva::compiler
