// How drivers change their inputs: by damage that knows what the input is, and by libFuzzer's own changes.
#pragma once

#include "damage.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// libFuzzer's own mutation, or the replay program's.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace quorva::fuzz {

// Mutates a driver's input over all types, in place, and returns its new size. What does not fit into `most` is cut
// off.
std::size_t mutateMessage(unsigned char* data, std::size_t size, std::size_t most, unsigned seed);

// The same for a text: its tokens change places, are doubled, go, or give way to one of the words.
std::size_t mutateText(unsigned char* data, std::size_t size, std::size_t most, unsigned seed,
                       std::span<const std::string_view> words);

// Writes `bytes` into an input's storage, as much as fits, and returns how much that is.
std::size_t stored(std::span<const unsigned char> bytes, unsigned char* data, std::size_t most);

}  // namespace quorva::fuzz
