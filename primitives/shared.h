// What the primitives have in common with the parts of a traced pass.
#pragma once

#include <cstdint>
#include <cstring>

namespace quorva {

// Characters of opaque data, texts among them, that the trace shows.
inline constexpr std::uint32_t shownCharacters = 4096;

// The pointer that stands at `place`, a `T**` of some element type.
inline void* load(const void* place)
{
    void* pointer;
    std::memcpy(&pointer, place, sizeof pointer);
    return pointer;
}

inline void store(void* place, void* pointer)
{
    std::memcpy(place, &pointer, sizeof pointer);
}

}  // namespace quorva
