// Warns of what the language allows and the library's own interface files avoid.
#pragma once

#include "diagnostics.h"
#include "model.h"

namespace quorva::compiler {

// More warnings than this are a list that nobody works off in one go.
inline constexpr std::size_t mostWarnings = 1000;

// Looks at the requested modules of a program without faults. Settled names cannot be changed, so habits of naming are
// asked of provisional types and their members alone, and habits of layout where the layout is still open.
void lint(const Program& program, Diagnostics& warnings);

}  // namespace quorva::compiler
