// Pseudo-random numbers: the same seed gives the same numbers on every platform.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quorva::inspect {

// The splitmix64 generator.
class Chance {
public:
    explicit Chance(std::uint64_t seed) : state(seed) {}

    // The next number; all 64 bits are random.
    std::uint64_t next()
    {
        state += 0x9E3779B97F4A7C15u;
        std::uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }

    // A number from 0 to `bound` - 1. `bound` must not be 0.
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(next() % bound); }

    // True with a probability of 1 / `n`. `n` must not be 0.
    bool oneIn(std::size_t n) { return below(n) == 0; }

private:
    std::uint64_t state;
};

}  // namespace quorva::inspect
