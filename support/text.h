// Text functions that the compiler and the inspector share. They need the standard library only.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::support {

// True if the byte continues a UTF-8 sequence (10xxxxxx) that an earlier byte began.
constexpr bool continuesCharacter(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

// Bytes of the well-formed UTF-8 sequence at the start of `text`; 0 if there is none. Overlong forms, surrogates and
// code points beyond U+10FFFF are not well-formed.
std::size_t utf8SequenceLength(std::string_view text);

// True if the whole text is well-formed UTF-8. An empty text is.
bool isUtf8(std::string_view text);

// Code points of UTF-8 text, each of which takes one column.
std::size_t columns(std::string_view text);

// The lines of `text` without their '\n'. A text that ends with '\n' has an empty last line, and so has an empty text.
// The views point into `text`.
std::vector<std::string_view> linesOf(std::string_view text);

// `text` with the letters A to Z in lower case.
std::string lowerCase(std::string_view text);

// The fewest edits that turn one text into the other: bytes inserted, deleted, replaced, or swapped with the next one.
std::size_t editDistance(std::string_view from, std::string_view to);

}  // namespace quorva::support
