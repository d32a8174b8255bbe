// Codes any object by the description of its type: the definition of how the codec behaves, and what runs with a trace,
// with a stream class that does not expose its buffer, and wherever a pass fails.
#pragma once

#include <quorvapixdr/description.h>

#include <cstddef>

namespace quorva {

// Codes one object of `type` in the stream's mode. Returns 1, or 0 at the first part that fails, whose element it
// leaves open. A null object is allocated and left in the stream's root allocation slot.
int interpret(Xdr* xdrs, void* object, const Type& type);

// The same from the member `first` of a struct, union or typedef on: of a union, 0 is the discriminant and any other
// number the arm that the discriminant selects. `object` is not null.
bool interpretFrom(Xdr* xdrs, void* object, const Type& type, std::size_t first);

// The member `index` alone.
bool interpretMember(Xdr* xdrs, void* object, const Type& type, std::size_t index);

// The index of the arm that the union's discriminant selects among its members; 0 where none is selected.
std::size_t selectedArm(const Type& type, const void* object);

}  // namespace quorva
