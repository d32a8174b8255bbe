// Binds every name in the tree to its definition, and every bound, enumerator and case to its number.
#pragma once

#include "diagnostics.h"
#include "model.h"

namespace quorva::compiler {

// Fills `builtin`, `definition`, `number`, `owner` and `bound`. What cannot be bound is reported and left empty; a
// bound that is no maximum or number of elements is left for check().
void resolve(Program& program, Diagnostics& faults);

// The type behind the aliases of `type`: a built-in type, or a definition that is no alias. An unresolved type, and one
// behind a chain of aliases that no sane file has, comes out as it is.
const TypeRef& behindAliases(const TypeRef& type);

}  // namespace quorva::compiler
