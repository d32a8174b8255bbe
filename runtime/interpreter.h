// The interpreter codes any object by the description of its type. It defines how the codec behaves, and runs while a
// trace is collected, with a stream class that does not expose its buffer, and from the member on where a pass fails.
#pragma once

#include <quorvapixdr/description.h>

#include <cstddef>

namespace quorva {

// Codes one object of `type` in the stream's mode. Returns 1, or 0 at the first member that fails; the trace elements
// around it stay open. For a null object it allocates one and stores it in the stream's root allocation slot.
int interpret(Xdr* xdrs, void* object, const Type& type);

// The same, starting at the member `first` of a struct, union or typedef. For a union, 0 is the discriminant, and any
// other number means the arm that the discriminant selects. `object` is not null. Returns false at the first failure.
bool interpretFrom(Xdr* xdrs, void* object, const Type& type, std::size_t first);

// The same for the member `index` alone.
bool interpretMember(Xdr* xdrs, void* object, const Type& type, std::size_t index);

// The index, among the members of the union `type`, of the arm that the discriminant in `object` selects; 0 if none.
std::size_t selectedArm(const Type& type, const void* object);

// Bytes that a declaration takes in its object. What a pointer leads to is not counted.
std::size_t memorySize(const Use& use);

}  // namespace quorva
