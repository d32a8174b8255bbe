// steps.h: made from steps.x by quorvaxdrc. Change the interface file, not this one.
#pragma once

#include <quorvapixdr/primitives.h>

#include <cstdint>

inline constexpr std::int32_t Steps = 4;
inline constexpr std::int32_t MostSteps = 0x7FFFFFFF;
inline constexpr std::int32_t vector = 2;  // named like a word of the generated code
