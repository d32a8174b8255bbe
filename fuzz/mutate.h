// Mutators for the drivers: damage that knows the form of the input, and libFuzzer's own mutations.
#pragma once

#include "damage.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

// libFuzzer's own mutation, or that of the replay program.
extern "C" std::size_t LLVMFuzzerMutate(std::uint8_t* data, std::size_t size, std::size_t most);

namespace quorva::fuzz {

// Mutates an Input in place: its type, its variant or its message. `data` holds `size` bytes and has storage for
// `most`. Returns the new size; a longer result is cut to `most`.
std::size_t mutateMessage(unsigned char* data, std::size_t size, std::size_t most, unsigned seed);

// Mutates a text in the same way: swaps, repeats or removes tokens, or replaces them by one of the words.
std::size_t mutateText(unsigned char* data, std::size_t size, std::size_t most, unsigned seed,
                       std::span<const std::string_view> words);

// Copies `bytes` to `data`, at most `most` of them. Returns the number of bytes copied.
std::size_t store(std::span<const unsigned char> bytes, unsigned char* data, std::size_t most);

}  // namespace quorva::fuzz
