// Messages as text: reads hex, hex dumps and base64, and prints hex and base64.
#pragma once

#include <quorvapixdr/codec.h>

#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quorva::inspect {

// An error in a text. Lines and columns count from 1; a column is a byte.
class InputError : public std::runtime_error {
public:
    InputError(std::size_t atLine, std::size_t atColumn, const std::string& sentence)
        : std::runtime_error(sentence), line(atLine), column(atColumn)
    {
    }

    // The error at this offset of the text, which may be its end.
    static InputError at(std::string_view text, std::size_t offset, const std::string& sentence);

    const std::size_t line;
    const std::size_t column;
};

// The bytes of a text in one of two forms:
// - pairs of hexadecimal digits. Blanks, line breaks, `,` `:` `;` `-` `_`, brackets, and the prefixes `0x` and `\x` may
//   separate them.
// - a dump of `xxd`, `hexdump -C`, `od -A x -t x1z` or a packet analyser. Its offsets must fit its bytes; a line "*"
//   repeats the line before it.
// Throws InputError if the text has neither form, or more than `longestMessage` bytes.
Bytes parseHex(std::string_view text);

// The bytes of base64 in the standard or the URL alphabet. Blanks and line breaks may be anywhere; the "=" at the end
// may be missing. Throws InputError.
Bytes parseBase64(std::string_view text);

// Two lower-case digits for each byte, without separators: "0a1b2c".
std::string hexDigits(std::span<const unsigned char> bytes);

// The bytes of such digits, of either case; nullopt if the text has another form.
std::optional<Bytes> bytesOfDigits(std::string_view digits);

// Lines of 16 bytes in groups of four; each line ends with '\n'.
std::string hexText(std::span<const unsigned char> bytes);

// Base64 in lines of 76 characters; each line ends with '\n'.
std::string base64Text(std::span<const unsigned char> bytes);

}  // namespace quorva::inspect
