// Binds every name in the tree to its definition, and every bound, enumerator and case to its number.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <cstddef>

namespace quorva::compiler {

// Fills `builtin`, `definition`, `number`, `owner` and `bound`. What cannot be bound is reported and left empty; a
// bound that is no maximum or number of elements is left for check().
void resolve(Program& program, Diagnostics& faults);

// The most types that may nest, each held by value in the next or spelled out in a typedef of the next. Compilers of
// C++ stop at some 500 levels of templates and constant expressions.
constexpr std::size_t deepestNesting = 256;

// Returns true if the definition only gives another name to a type.
bool isAlias(const Definition& definition);

// The type behind the aliases of `type`: a built-in type, or a definition that is no alias. An unresolved type, and one
// behind more aliases than may nest, comes out as it is.
const TypeRef& behindAliases(const TypeRef& type);

}  // namespace quorva::compiler
