// Guesses the type of a message: which types its bytes fit, the most likely one first.
//
// Each type is read as a model of its messages: known enumerators, attribute numbers, small numbers, readable texts and
// zero padding are likely, the rest is not. A model describes a likely message with few bits. The evidence for a type
// is the number of bits that its model saves: bytes at random save n bits or more with a probability below 2^-n.
#pragma once

#include "least_size.h"
#include "plausible.h"

#include <quorvapixdr/description.h>

#include <cstddef>
#include <optional>
#include <span>
#include <unordered_map>
#include <vector>

namespace quorva::inspect {

// How a message fits a type.
enum class Fit {
    whole,     // the value has all bytes
    leftOver,  // a short rest follows the value
    cut,       // the message ends within the value: it could go on
    refused,   // a decode stops at damage, as it seems: what comes before fits well
};

// One type that a message fits.
struct Guess {
    const Type* type = nullptr;
    std::vector<const Type*> same;  // other types whose messages are the same, the most likely one first
    Fit fit = Fit::whole;
    std::size_t used = 0;   // bytes of the value, as far as it fits
    std::size_t least = 0;  // bytes that a value with this beginning has at least; with Fit::whole equal to `used`
    double evidence = 0;    // in bits
    double score = 0;       // evidence, and how likely the type and the fit are for any message
};

// Guesses among the same types again and again. One thread at a time may use it.
class Guesser {
public:
    // Types of other libraries are left out.
    explicit Guesser(std::span<const Type* const> types);

    // At most `most` guesses, by falling score; none if no type fits. The work is bounded: of a long message that many
    // types accept up to a distant byte, only the most likely ones among them are read to the end and are listed.
    std::vector<Guess> guess(std::span<const unsigned char> message, std::size_t most) const;

private:
    // Types that have the same messages.
    struct Candidate {
        std::vector<const Type*> types;  // the most likely one first
        double prior = 0;                // of that one, in bits; at most 0
        std::size_t least = 0;           // bytes of the shortest message
    };

    class Reader;

    // Bits that choose one of the enumerators, or one of the arms.
    double bitsOfChoice(const Type& type) const;

    // What a reading of a message of this size says of the types. `savedByAnything` are the bits that would be saved
    // from each unit to the end by numbers and texts of no type.
    static std::optional<Guess> guessOf(const Candidate& candidate, const Reader& reader, std::size_t size,
                                        std::span<const double> savedByAnything);

    std::vector<Candidate> candidates;
    std::unordered_map<const Type*, double> choices;  // what `bitsOfChoice` returns
    mutable LeastSizes sizes;
    mutable KnownNumbers numbers;
};

}  // namespace quorva::inspect
