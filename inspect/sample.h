// Invented messages of any type: for tests, for the seeds of fuzzing, and as examples.
#pragma once

#include <quorvapixdr/codec.h>
#include <quorvapixdr/description.h>

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace quorva::inspect {

// How much an invented message holds.
enum class Extent {
    least,    // empty strings and arrays, absent optionals, zeros, the shortest arm
    random,   // chosen by the seed
    fullest,  // strings and arrays at their maximum, optionals present, the largest numbers, the longest arm, as far as
              // the budget allows
};

// What to invent. A message has at most `budget` bytes, unless the type's shortest message is longer.
struct Recipe {
    Extent extent = Extent::random;
    std::uint64_t seed = 0;
    std::size_t budget = 1024;
};

// Invents messages.
// 1. A decode accepts the message, and an encode of the decoded object writes the same bytes: padding is zero, narrow
//    numbers are in range, presence is 0 or 1, Boolean is 0 or 1, strings have no zero byte.
// 2. Everything else varies: numbers without an enumerator, strings of any other bytes, floats of any bits.
// 3. The first union of a message takes its arms in turn: as many successive seeds as it has arms give each arm once,
//    as far as the budget allows.
// 4. The same type and recipe give the same message on every platform.
// A Sampler may be used by one thread at a time.
class Sampler {
public:
    // Throws std::logic_error if the type contains a foreign type.
    Bytes sample(const Type& type, const Recipe& recipe);

    // Bytes of the shortest message of the type.
    std::size_t leastSize(const Type& type);

private:
    std::size_t leastSize(const Use& use);

    std::unordered_map<const Type*, std::size_t> known;

    friend class Inventor;
};

}  // namespace quorva::inspect
