// Adds up the bytes of shortest values.

#include "least_size.h"

#include "explain/layout.h"

#include <algorithm>
#include <cstdint>

namespace quorva::inspect {

std::size_t LeastSizes::of(const Type& type)
{
    // The recursion ends: a type refers to itself through variable-length arrays and optionals only, which can be
    // empty and are not followed.
    if (const auto found = known.find(&type); found != known.end()) return found->second;
    std::size_t size = 4;
    switch (type.kind) {
    case TypeKind::builtin:
    case TypeKind::enumeration: break;
    case TypeKind::structure:
        size = 0;
        for (const Member& field : type.members) size += of(field.use);
        break;
    case TypeKind::discriminatedUnion:
        if (const auto arm = fixed.find(&type); arm != fixed.end()) {
            size += arm->second ? of(arm->second->use) : 0;
        } else if (!type.hasDefault) {
            std::size_t least = SIZE_MAX;
            for (const Member& arm : armsOf(type)) least = std::min(least, of(arm.use));
            size += least;
        }
        break;
    case TypeKind::typeDefinition: size = of(targetOf(type)); break;
    case TypeKind::foreign: size = 0; break;
    }
    return known[&type] = size;
}

std::size_t LeastSizes::of(const Use& use)
{
    switch (use.form) {
    case Form::single: return of(*use.type);
    case Form::fixedArray: return use.bound * of(*use.type);
    case Form::fixedOpaque: return padded(use.bound);
    case Form::none: return 0;
    case Form::variableArray:
    case Form::optional:
    case Form::string:
    case Form::variableOpaque: break;
    }
    return 4;
}

std::size_t LeastSizes::extra(const Type& discriminatedUnion, const Member* arm)
{
    const std::size_t least = of(discriminatedUnion), bytes = 4 + (arm ? of(arm->use) : 0);
    return bytes - std::min(bytes, least);
}

}  // namespace quorva::inspect
