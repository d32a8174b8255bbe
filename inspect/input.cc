// Prints hex, base64 and C arrays, and reads base64.

#include "input.h"

#include "hex_readers.h"

#include <algorithm>
#include <cstdint>

namespace quorva::inspect {

namespace {

constexpr std::string_view base64Alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// The six bits of a character of either alphabet, or -1.
int base64Value(char c)
{
    if (c == '-') c = '+';
    if (c == '_') c = '/';
    const std::size_t value = base64Alphabet.find(c);
    return value == std::string_view::npos ? -1 : static_cast<int>(value);
}

}  // namespace

InputError InputError::at(std::string_view text, std::size_t offset, const std::string& sentence)
{
    const std::string_view before = text.substr(0, offset);
    const auto lines = static_cast<std::size_t>(std::ranges::count(before, '\n'));
    const std::size_t lineBegin = before.rfind('\n') + 1;  // npos + 1 is 0
    return {lines + 1, before.size() - lineBegin + 1, sentence};
}

std::string quoted(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte < 0x7F ? std::string("'") + c + "'" : "byte 0x" + hexDigits({&byte, 1});
}

Bytes parseBase64(std::string_view text, std::size_t most)
{
    Bytes bytes;
    std::uint32_t bits = 0;
    std::size_t characters = 0;
    std::size_t pads = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (hex::isBlank(c)) continue;
        if (c == '=') {
            ++pads;
            continue;
        }
        const int value = base64Value(c);
        if (value < 0) throw InputError::at(text, at, quoted(c) + " is not a base64 character");
        if (pads > 0) throw InputError::at(text, at, quoted(c) + " after the \"=\" that ends base64");
        bits = bits << 6 | static_cast<unsigned>(value);
        if (++characters % 4 == 1) continue;
        if (bytes.size() == most)
            throw InputError::at(text, at,
                                 "from here on the message is longer than " + std::to_string(most) + " bytes");
        bytes.push_back(static_cast<unsigned char>(bits >> (6 - 2 * ((characters - 1) % 4))));
    }
    if (characters % 4 == 1 || (pads > 0 && (characters + pads) % 4 != 0) || pads > 2)
        throw InputError::at(text, text.size(), "base64 ends within a group of four characters");
    return bytes;
}

std::string hexDigits(std::span<const unsigned char> bytes)
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::string text;
    text.reserve(2 * bytes.size());
    for (const unsigned char byte : bytes) {
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::optional<Bytes> bytesOfDigits(std::string_view digits)
{
    if (digits.size() % 2 != 0 || hex::digitsAt(digits, 0) != digits.size()) return std::nullopt;
    Bytes bytes(digits.size() / 2);
    for (std::size_t i = 0; i < bytes.size(); ++i)
        bytes[i] = static_cast<unsigned char>(hex::digitOf(digits[2 * i]) << 4 | hex::digitOf(digits[2 * i + 1]));
    return bytes;
}

std::string hexText(std::span<const unsigned char> bytes)
{
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text += hexDigits(bytes.subspan(i, 1));
        const std::size_t rest = bytes.size() - i - 1;
        if (rest == 0 || i % 16 == 15) {
            text += '\n';
        } else if (i % 4 == 3 && rest >= 4) {
            text += ' ';
        }
    }
    return text;
}

std::string base64Text(std::span<const unsigned char> bytes)
{
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const std::size_t count = std::min<std::size_t>(3, bytes.size() - i);
        std::uint32_t bits = 0;
        for (std::size_t k = 0; k < 3; ++k) bits = bits << 8 | (k < count ? bytes[i + k] : 0u);
        for (std::size_t k = 0; k < 4; ++k) text += k <= count ? base64Alphabet[bits >> (18 - 6 * k) & 63] : '=';
        if (i % 57 == 54 || i + 3 >= bytes.size()) text += '\n';
    }
    return text;
}

std::string arrayText(std::span<const unsigned char> bytes)
{
    std::string text = "static const unsigned char message[" + std::to_string(bytes.size()) + "] = {\n";
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        text.append(i % 12 == 0 ? "    0x" : " 0x").append(hexDigits(bytes.subspan(i, 1))) += ',';
        if (i % 12 == 11 || i + 1 == bytes.size()) text += '\n';
    }
    return text + "};\n";
}

}  // namespace quorva::inspect
