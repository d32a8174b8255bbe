// stair.h: made from stair.x by quorvaxdrc. Change the interface file, not this one.
#pragma once

#include <quorvapixdr/primitives.h>
#include <quorvapixdr/steps.h>

#include <cstdint>

struct Lower;

// The first of a file, and one that leads back to it.
struct Upper {
    Lower* below;  // null when absent
};

struct Lower {
    Upper* above;  // null when absent
};

// A body in place, where nothing is named like a scope of the generated code.
//   steepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteepsteep
// and high
struct Stair {
    Natural height;
    Natural widths[Steps];
};

extern "C" {

// The coding routines, each over one object of its type.
QUORVA_EXPORT int XdrUpper(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrLower(Xdr* xdrs, void* object);
QUORVA_EXPORT int XdrStair(Xdr* xdrs, void* object);

}  // extern "C"

namespace quorva::coder {
inline constexpr quorva::Shaped<::Upper, quorva::shape::Body<true>> Upper = {{XdrUpper, "Upper"}};
inline constexpr quorva::Shaped<::Lower, quorva::shape::Body<true>> Lower = {{XdrLower, "Lower"}};
inline constexpr quorva::Shaped<::Stair, quorva::shape::Fixed<5>> Stair = {{XdrStair, "Stair"}};
}  // namespace quorva::coder

namespace quorva {
template <>
inline constexpr Coder<::Upper> coderOf<::Upper> = coder::Upper;
template <>
inline constexpr Coder<::Lower> coderOf<::Lower> = coder::Lower;
template <>
inline constexpr Coder<::Stair> coderOf<::Stair> = coder::Stair;
}  // namespace quorva
