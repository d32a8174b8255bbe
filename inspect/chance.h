// Numbers by chance, the same ones everywhere for the same seed.
#pragma once

#include <cstddef>
#include <cstdint>

namespace quorva::inspect {

// Small and good enough (splitmix64).
class Chance {
public:
    explicit Chance(std::uint64_t seed) : state(seed) {}

    std::uint64_t next()
    {
        state += 0x9E3779B97F4A7C15u;
        std::uint64_t z = state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9u;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBu;
        return z ^ (z >> 31);
    }

    // From 0 up to, but not including, `bound`, which is not 0.
    std::size_t below(std::size_t bound) { return static_cast<std::size_t>(next() % bound); }
    bool oneIn(std::size_t n) { return below(n) == 0; }

private:
    std::uint64_t state;
};

}  // namespace quorva::inspect
