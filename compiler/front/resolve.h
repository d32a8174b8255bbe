// Binds every name in the tree to its definition, and every bound, enumerator and case to its number.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <cstddef>

namespace quorva::compiler {

// Sets `builtin` and `definition` of types, `number` and `owner` of values, and `bound` of declarations. A name that
// cannot be bound is reported and stays empty. A bound out of range is left for check() to report. A default arm with
// data becomes an arm for the values without a case.
void resolve(Program& program, Diagnostics& errors);

// The most types that may nest, each held by value in the next or the target of a typedef. C++ compilers stop at about
// 500 levels of templates and constant expressions.
constexpr std::size_t deepestNesting = 256;

// True if the definition is a typedef that only gives a type another name.
bool isAlias(const Definition& definition);

// The type that `type` names once all aliases are resolved: a built-in type, or a definition that is not an alias.
// Returns `type` itself if it is not resolved, and if it has more aliases than may nest.
const TypeRef& canonicalType(const TypeRef& type);

}  // namespace quorva::compiler
