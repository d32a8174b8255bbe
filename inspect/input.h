// Messages as text: reads hex, dumps, arrays and base64, and prints hex, base64 and C arrays.
#pragma once

#include <quorvapixdr/codec.h>

#include <cstddef>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>

namespace quorva::inspect {

// No text of a message is longer: this is more than any message takes in any form.
inline constexpr std::size_t longestText = std::size_t{64} << 20;

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

// A character for an error's sentence: 'x', or "byte 0x01" if it is not printable.
std::string quoted(char c);

struct HexText {
    Bytes bytes;
    std::string what;  // the tool or form that was recognised: "hexdump -C", "an array", "hexadecimal digits"
};

// Reads one of these forms:
//
// - A dump: lines of an offset and bytes, as `xxd`, `hexdump -C`, `od -t x1` (with any -A), `tcpdump -x` and -X, packet
//   analysers, `x/NNxb` of gdb, `memory read` of lldb and Format-Hex of PowerShell write them. Characters after the
//   bytes are ignored. A line "*" repeats the line before it. The first offset may have any value; each other offset
//   must fit the bytes before it, as a hexadecimal, decimal or octal number.
// - An array or text of C, C++, Python, Go, JavaScript or similar languages, with its declaration and comments:
//   `{0x00, 65, 'A'}`, `b"\x00A" "\n"`. A declared size, or the length that `xxd -i` appends, must be right.
// - Pairs of hexadecimal digits. Blanks, line breaks, `,` `:` `;` `-` `_`, brackets, and `0x` or `\x` before a pair may
//   separate them. `#` and `//` begin a comment.
//
// A text that has different bytes in two of these forms, or in two orders of bytes, is an error that says how to write
// it clearly. Three rules decide where a tool's usual output leaves no doubt:
//
// - Digits before `:` and a blank are an offset. So are digits before two blanks and a pair, and digits before one
// blank
//   and a pair if there are at least two lines and all begin so. Otherwise the latter are an error if they are a
//   multiple of 16, as most offsets are, or have six places, as those of `od -A x`, and else plain digits.
// - Groups of two bytes after `:` are in the order of the wire, unless the characters show the reverse. Groups of four
//   or eight bytes after `:` are so only if the characters show it, or if both orders are equal.
// - Groups of four or eight digits without `:` are plain digits, in the order of the wire.
//
// Dumps of words, decimal and octal numbers are errors that name the tool and the command line to use instead.
// Throws InputError, also for more than `most` bytes. Takes time in proportion to the text and the bytes.
HexText readHex(std::string_view text, std::size_t most = longestMessage);

// The same, without what was recognised.
inline Bytes parseHex(std::string_view text)
{
    return readHex(text).bytes;
}

// The bytes of base64 in the standard or the URL alphabet. Blanks and line breaks may be anywhere; the "=" at the end
// may be missing. Throws InputError, also for more than `most` bytes.
Bytes parseBase64(std::string_view text, std::size_t most = longestMessage);

// Two lower-case digits for each byte, without separators: "0a1b2c".
std::string hexDigits(std::span<const unsigned char> bytes);

// The bytes of such digits, of either case; nullopt if the text has another form.
std::optional<Bytes> bytesOfDigits(std::string_view digits);

// Lines of 16 bytes in groups of four; each line ends with '\n'. A shorter group at the end joins the one before it, so
// that this one does not read as an offset.
std::string hexText(std::span<const unsigned char> bytes);

// Base64 in lines of 76 characters; each line ends with '\n'.
std::string base64Text(std::span<const unsigned char> bytes);

// A C array: "static const unsigned char message[2] = {", lines of 12 bytes, "};". Standard C has no array without
// elements; compilers accept that of an empty message as an extension.
std::string arrayText(std::span<const unsigned char> bytes);

}  // namespace quorva::inspect
