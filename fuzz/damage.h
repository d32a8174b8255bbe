// Damage as it happens to messages and texts, done by chance.
#pragma once

#include "inspect/chance.h"
#include "inspect/sample.h"
#include "subject.h"

#include <span>
#include <string_view>
#include <vector>

namespace quorva::fuzz {

using inspect::Chance;

// A well-formed message, and the offsets of its units that steer a decode: counts, lengths and presences.
struct Invented {
    Bytes message;
    std::vector<std::size_t> steering;
};

// A fresh message of the type, short as a rule.
Invented invent(inspect::Sampler& sampler, const schema::Type& type, Chance& chance);

// The steering units of a message, as far as the schema's reading gets.
std::vector<std::size_t> steeringUnits(const schema::Type& type, std::span<const unsigned char> message);

// Damages a message once: a unit that says something else, mostly a steering one; units that are doubled, gone, or taken
// over from `other`; an end that comes early or late.
void damage(Bytes& message, std::span<const std::size_t> steering, std::span<const unsigned char> other, Chance& chance);

// Mutates a driver's input over all types, in place, and returns its new size. What does not fit into `most` is cut off.
std::size_t mutateMessage(unsigned char* data, std::size_t size, std::size_t most, unsigned seed);

// The same for a text: its tokens change places, are doubled, go, or give way to one of the words.
std::size_t mutateText(unsigned char* data, std::size_t size, std::size_t most, unsigned seed,
                       std::span<const std::string_view> words);

// Writes `bytes` into an input's storage, as much as fits, and returns how much that is.
std::size_t stored(std::span<const unsigned char> bytes, unsigned char* data, std::size_t most);

}  // namespace quorva::fuzz

// libFuzzer's own mutation, or the replay program's.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);
