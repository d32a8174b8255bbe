// Damage as it happens to messages, by pseudo-random choice.
#pragma once

#include "inspect/chance.h"
#include "inspect/sample.h"
#include "subject.h"

#include <span>
#include <vector>

namespace quorva::fuzz {

using inspect::Chance;

// A well-formed message, and the offsets of its control units: counts, lengths, presence flags and the root's
// own unit, such as the discriminant of a union.
struct Generated {
    Bytes message;
    std::vector<std::size_t> control;
};

// Generates a message of the type, mostly a short one.
Generated generate(inspect::Sampler& sampler, const Type& type, Chance& chance);

// The offsets of a message's control units, as far as the inspector can read the message.
std::vector<std::size_t> controlUnits(const Type& type, std::span<const unsigned char> message);

// Damages a message once: changes a unit, mostly one of `control`, or a byte; repeats or removes units; cuts the end,
// or appends units of `other`. Offsets in `control` beyond the message are allowed.
void damage(Bytes& message, std::span<const std::size_t> control, std::span<const unsigned char> other, Chance& chance);

}  // namespace quorva::fuzz
