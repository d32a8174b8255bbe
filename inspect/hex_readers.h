// The readers of the forms of hex, which readHex chooses from.
#pragma once

#include "input.h"

namespace quorva::inspect::hex {

inline constexpr std::string_view blanks = " \t\r\n\f\v";
inline constexpr std::size_t none = std::string_view::npos;

constexpr bool isBlank(char c)
{
    return blanks.find(c) != none;
}

constexpr bool isDecimal(char c)
{
    return c >= '0' && c <= '9';
}

// The value of a hexadecimal digit, or -1.
constexpr int digitOf(char c)
{
    if (isDecimal(c)) return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// True for a character of an identifier.
constexpr bool isWord(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDecimal(c) || c == '_';
}

// The number of hexadecimal digits in a row from this offset on.
std::size_t digitsAt(std::string_view text, std::size_t from);

// True for "0x" and "0X" before a digit.
bool hasPrefix(std::string_view text, std::size_t at);

// The base of a reader: a text, and the bytes read so far. Offsets in the text tell line and column of an error.
class Reader {
public:
    Reader(std::string_view from, std::size_t longest) : text(from), most(longest) {}

protected:
    [[noreturn]] void fail(std::size_t at, const std::string& sentence) const
    {
        throw InputError::at(text, at, sentence);
    }

    // Appends a byte, or pairs of digits, of this place.
    void append(std::size_t at, unsigned char byte, std::uint64_t times = 1);
    void appendDigits(std::size_t at, std::size_t digits);

    // Throws InputError for an odd number of digits.
    void checkEven(std::size_t at, std::size_t digits) const;

    std::string_view text;
    std::size_t most;
    Bytes bytes;
};

// Reads a dump; nullopt if the text has no dump's form.
std::optional<HexText> readDump(std::string_view text, std::size_t most);

// Reads an array or a text of source code, from which comments are removed.
HexText readLiterals(std::string_view text, std::size_t most);

// Reads plain digits, from which comments are removed.
HexText readDigits(std::string_view text, std::size_t most);

}  // namespace quorva::inspect::hex
