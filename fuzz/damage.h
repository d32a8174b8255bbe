// Damage as it happens to messages, done by chance.
#pragma once

#include "inspect/chance.h"
#include "inspect/sample.h"
#include "subject.h"

#include <span>
#include <vector>

namespace quorva::fuzz {

using inspect::Chance;

// A well-formed message, and the offsets of its units that steer a decode: counts, lengths and presences.
struct Invented {
    Bytes message;
    std::vector<std::size_t> steering;
};

// A fresh message of the type, short as a rule.
Invented invent(inspect::Sampler& sampler, const Type& type, Chance& chance);

// The steering units of a message, as far as the inspector's reading gets.
std::vector<std::size_t> steeringUnits(const Type& type, std::span<const unsigned char> message);

// Damages a message once: a unit that says something else, mostly a steering one; units that are doubled, gone, or
// taken over from `other`; an end that comes early or late.
void damage(Bytes& message, std::span<const std::size_t> steering, std::span<const unsigned char> other,
            Chance& chance);

}  // namespace quorva::fuzz
