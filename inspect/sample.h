// Invented messages of any type: examples for people, messages for tests, and the seeds of fuzzing.
#pragma once

#include "least_size.h"
#include "plausible.h"

#include <quorvapixdr/codec.h>
#include <quorvapixdr/description.h>

#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

namespace quorva::inspect {

// What an invented message holds.
enum class Extent {
    least,   // empty strings and arrays, absent optionals, zeros, the shortest arm
    usual,   // what a device could send: texts, times and numbers that fit their names (plausible.h)
    most,    // strings and arrays at their maximum, optionals present, the largest numbers, the longest arm, as far as
             // the budget allows
    random,  // noise for tests: numbers without an enumerator, strings of any bytes, floats of any bits
};

// Which arm the unions of a message take.
struct ArmChoice {
    // The discriminant's member name, the union's type name, or a JSON Pointer to the union or to its discriminant.
    std::string name;
    // A number, an enumerator, true, false or the arm's own name.
    std::string value;
};

// What to invent. A message has at most `budget` bytes, unless the type's shortest message with the chosen arms is
// longer.
struct Recipe {
    Extent extent = Extent::random;
    std::uint64_t seed = 0;
    std::size_t budget = 1024;
    std::vector<ArmChoice> arms = {};
};

// An arm choice that no union of the type can take, or that other choices exclude.
class ArmError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Invents messages.
// 1. A decode accepts the message, and an encode of the decoded object writes the same bytes: padding is zero, narrow
//    numbers are in range, presence is 0 or 1, Boolean is 0 or 1, strings have no zero byte.
// 2. Except for `random`, `validate` finds nothing: enumerations have an enumerator, texts are UTF-8 without control
//    characters, and a number before a union in the same struct equals the discriminant if both have the same type, but
//    for built-in types.
// 3. For `usual` and `random` the first union of a message takes its arms in turn: as many successive seeds as it has
//    arms give each arm once, as far as the budget allows.
// 4. Each arm choice applies to every union that it fits. The message has the optionals, the array elements and the
//    arms that lead to one such union at least.
// 5. The same type and recipe give the same message on every platform.
// A Sampler may be used by one thread at a time.
class Sampler {
public:
    // Throws std::logic_error if the type contains a foreign type, and ArmError.
    Bytes sample(const Type& type, const Recipe& recipe);

    // Bytes of the shortest message of the type.
    std::size_t leastSize(const Type& type) { return sizes.of(type); }

private:
    LeastSizes sizes;
    KnownNumbers numbers;
};

}  // namespace quorva::inspect
