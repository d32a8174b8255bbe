// Invented messages: well-formed bytes of any type, for tests, fuzzers' first inputs and people who want an example.
#pragma once

#include <quorvapixdr/codec.h>
#include <quorvapixdr/description.h>

#include <cstddef>
#include <cstdint>
#include <unordered_map>

namespace quorva::inspect {

enum class Extent {
    least,    // empty texts and lists, absent values, zeros, the smallest arm
    random,   // by the seed
    fullest,  // texts and lists at their maximum, present values, the largest numbers and arm, as far as the budget
              // goes
};

// What to invent. `budget` bounds the message in bytes, but where the type's shortest message is longer.
struct Recipe {
    Extent extent = Extent::random;
    std::uint64_t seed = 0;
    std::size_t budget = 1024;
};

// Makes samples. The bytes are those that an encode pass writes for what a decode pass makes of them: zero padding,
// narrow numbers within their range, presence 0 or 1, truth values 0 or 1, texts without zero bytes. Enumerations are
// sometimes without a name; texts hold any other bytes; floats any bits.
//
// The arms of a message's first union take turns with the seed: as many seeds in a row as it has arms show them all,
// as far as the budget goes.
//
// The same recipe makes the same message everywhere. An object serves one thread at a time.
class Sampler {
public:
    Bytes sample(const Type& type, const Recipe& recipe);

    // Length of the shortest message of the type, in bytes.
    std::size_t leastSize(const Type& type);

private:
    std::size_t leastSize(const Use& use);

    std::unordered_map<const Type*, std::size_t> known;

    friend class Inventor;
};

}  // namespace quorva::inspect
