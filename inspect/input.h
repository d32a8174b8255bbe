// Messages as people have them: hexadecimal digits in their many dresses, base64, raw bytes; and back to text.
#pragma once

#include <quorvapixdr/codec.h>

#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quorva::inspect {

// A text that is not what it should be. Lines and columns count from 1, columns in bytes.
class InputError : public std::runtime_error {
public:
    InputError(std::size_t atLine, std::size_t atColumn, const std::string& sentence)
        : std::runtime_error(sentence), line(atLine), column(atColumn)
    {
    }

    // The error at this offset of the text.
    static InputError at(std::string_view text, std::size_t offset, const std::string& sentence);

    const std::size_t line;
    const std::size_t column;
};

// Digits in pairs with any blanks, line breaks, `,`, `:`, `;`, `-`, `_`, braces and `0x` or `\x` prefixes between them;
// or a dump as `xxd`, `hexdump -C`, `od -A x -t x1z` and packet analysers print it, whose offsets are held against the
// bytes and whose "*" lines are filled in. Throws InputError; also where there would be more than `longestMessage`
// bytes.
Bytes parseHex(std::string_view text);

// The ordinary alphabet or the one for URLs, with any blanks and line breaks, with or without the "=" at the end.
Bytes parseBase64(std::string_view text);

// "0a1b2c": two digits a byte and nothing between them; and such a text read, or nothing if it is none.
std::string hexDigits(std::span<const unsigned char> bytes);
std::optional<Bytes> bytesOfDigits(std::string_view digits);

// Lines of 16 bytes in groups of four, and of 76 characters; each line ends in '\n'.
std::string hexText(std::span<const unsigned char> bytes);
std::string base64Text(std::span<const unsigned char> bytes);

}  // namespace quorva::inspect
