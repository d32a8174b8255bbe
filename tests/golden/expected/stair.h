// stair.h: made from stair.x by quorvaxdrc. Change the interface file, not this one.
#pragma once

#include <quorvapixdr/primitives.h>
#include <quorvapixdr/steps.h>

#include <cstdint>

// A body in place, where nothing is named like a scope of the generated code.
struct Stair {
    Natural height;
    Natural widths[Steps];
};

extern "C" {

// The coding routines, each over one object of its type.
QUORVA_EXPORT int XdrStair(Xdr* xdrs, void* object);

}  // extern "C"

namespace quorva::coder {
inline constexpr quorva::Shaped<::Stair, quorva::shape::Fixed<5>> Stair = {{XdrStair, "Stair"}};
}  // namespace quorva::coder

namespace quorva {
template <>
inline constexpr Coder<::Stair> coderOf<::Stair> = coder::Stair;
}  // namespace quorva
