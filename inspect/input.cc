// Reads and prints hex, hex dumps and base64.

#include "input.h"

#include <algorithm>
#include <cstdint>

namespace quorva::inspect {

namespace {

constexpr std::string_view blanks = " \t\r\n\f\v";
constexpr std::string_view separators = " \t\r\n\f\v,:;-_{}()[]";
constexpr std::string_view tokenEnds = " \t\r\n\f\v,:;-_{}()[]\\";  // the backslash for "\x00\x41"

// The value of a hexadecimal digit, or -1.
int digitOf(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// The number of digits in a row from this offset on.
std::size_t digitsAt(std::string_view text, std::size_t from)
{
    std::size_t end = from;
    while (end < text.size() && digitOf(text[end]) >= 0) ++end;
    return end - from;
}

void appendPairs(Bytes& bytes, std::string_view digits)
{
    for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
        bytes.push_back(static_cast<unsigned char>(digitOf(digits[i]) << 4 | digitOf(digits[i + 1])));
}

// A character for a message: 'x', or "byte 0x01" if it is not printable.
std::string quoted(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte >= 0x20 && byte < 0x7F ? std::string("'") + c + "'" : "byte 0x" + hexDigits({&byte, 1});
}

// Reads a whole text. `at`, `begin` and `end` are offsets in that text, so that errors can tell line and column.
class HexReader {
public:
    explicit HexReader(std::string_view from) : text(from) {}

    Bytes read()
    {
        if (isDump())
            readDump();
        else
            readPlain(0, text.size());
        return std::move(bytes);
    }

private:
    // The start of one line of a dump.
    struct Row {
        std::uint64_t offset = 0;
        std::size_t bytesAt = 0;  // where the text after the offset begins
        bool hasColon = false;    // after the offset
        bool hasGap = false;      // at least two blanks after the offset
        bool isEmpty = false;     // only the offset
    };

    static constexpr std::size_t none = static_cast<std::size_t>(-1);

    [[noreturn]] void fail(std::size_t at, const std::string& sentence) const
    {
        throw InputError::at(text, at, sentence);
    }

    template <class Action>
    void forEachLine(Action action) const
    {
        for (std::size_t begin = 0; begin < text.size();) {
            std::size_t end = std::min(text.find('\n', begin), text.size());
            const std::size_t next = end + 1;
            if (end > begin && text[end - 1] == '\r') --end;
            if (text.substr(begin, end - begin).find_first_not_of(blanks) != std::string_view::npos) action(begin, end);
            begin = next;
        }
    }

    // Reads "00000010: ", "0x0010:  ", "00000010  00 1f " or an offset alone; nullopt for a line of another form.
    std::optional<Row> rowAt(std::size_t begin, std::size_t end) const
    {
        const std::string_view line = text.substr(0, end);
        std::size_t at = begin;
        while (at < end && line[at] == ' ') ++at;
        if (line.substr(at, 2) == "0x") at += 2;
        const std::size_t digits = digitsAt(line, at);
        if (digits < 4 || digits > 8) return std::nullopt;
        Row row;
        for (std::size_t i = 0; i < digits; ++i)
            row.offset = row.offset << 4 | static_cast<unsigned>(digitOf(line[at + i]));
        at += digits;
        if (at < end && line[at] == ':') {
            row.hasColon = true;
            ++at;
        }
        row.bytesAt = at;
        const std::size_t first = std::min(line.find_first_not_of(" \t", at), end);
        row.isEmpty = first == end;
        row.hasGap = first - at >= 2;
        if (row.isEmpty) return row;
        if (first == at) return std::nullopt;
        // Without a colon, only a single byte after it tells an offset from four more bytes.
        if (!row.hasColon && digitsAt(line, first) != 2) return std::nullopt;
        return row;
    }

    // True if the first line begins with an offset, and the text cannot be plain hex.
    bool isDump() const
    {
        std::optional<Row> row;
        std::size_t lines = 0;
        forEachLine([&](std::size_t begin, std::size_t end) {
            if (lines++ == 0) row = rowAt(begin, end);
        });
        if (!row || row->isEmpty) return false;
        if (row->hasColon) return true;
        // A zero and one blank can also be plain hex. The text is a dump only if all offsets are right.
        return row->offset == 0 && (row->hasGap || (lines > 1 && readsAsDump()));
    }

    bool readsAsDump() const
    {
        try {
            HexReader(text).readDump();
            return true;
        } catch (const InputError&) {
            return false;
        }
    }

    void readDump()
    {
        forEachLine([this](std::size_t begin, std::size_t end) { readRow(begin, end); });
        if (repeatAt != none) fail(repeatAt, "no line follows \"*\" to tell how often it repeats");
    }

    void readRow(std::size_t begin, std::size_t end)
    {
        const std::string_view line = text.substr(begin, end - begin);
        if (line == "*") {
            if (rowBytes == 0) fail(begin, "\"*\" repeats the line before it, and there is none");
            repeatAt = begin;
            return;
        }
        const auto row = rowAt(begin, end);
        if (!row) fail(begin, "each line of a dump begins with its offset; this one does not");
        if (!origin) origin = row->offset;
        if (repeatAt != none) fillUpTo(row->offset, begin);
        if (row->offset != *origin + bytes.size())
            fail(begin, "the offset is wrong: the lines before hold " + std::to_string(bytes.size()) +
                            (bytes.size() == 1 ? " byte" : " bytes"));
        if (row->isEmpty) return;
        const std::size_t before = bytes.size();
        readRowBytes(*row, end);
        rowBytes = bytes.size() - before;
    }

    // Repeats the last line up to this offset of the dump.
    void fillUpTo(std::uint64_t offset, std::size_t at)
    {
        if (offset - *origin > longestMessage) tooLong(at);  // also if the offset goes back
        while (bytes.size() < offset - *origin) bytes.push_back(bytes[bytes.size() - rowBytes]);
        repeatAt = none;
    }

    // The bytes end where the same bytes follow as characters: after two blanks in `xxd`; in other dumps, which can
    // have two blanks in the middle of the bytes, after three blanks, or at `|` or `>`.
    void readRowBytes(const Row& row, std::size_t end)
    {
        const std::size_t gap = row.hasColon ? 2 : 3;
        std::size_t at = text.find_first_not_of(" \t", row.bytesAt);
        while (at < end && text[at] != '|' && text[at] != '>') {
            at = readToken(at);
            const std::size_t next = std::min(text.find_first_not_of(" \t", at), end);
            if (next - at >= gap) return;
            at = next;
        }
    }

    // Reads hex that is not a dump.
    void readPlain(std::size_t at, std::size_t end)
    {
        while ((at = text.find_first_not_of(separators, at)) < end) {
            const std::string_view prefix = text.substr(at, 2);
            if ((prefix == "0x" || prefix == "0X" || prefix == "\\x") && at + 2 < end) at += 2;
            at = readToken(at);
        }
    }

    // Reads the digits of one or more bytes, up to the next separator. Returns the offset of their end.
    std::size_t readToken(std::size_t at)
    {
        const std::size_t digits = digitsAt(text, at);
        const std::size_t end = at + digits;
        if (digits == 0 || (end < text.size() && tokenEnds.find(text[end]) == std::string_view::npos))
            fail(end, quoted(text[end]) + " is not a hexadecimal digit");
        if (digits % 2 != 0)
            fail(at, digits == 1 ? "a single digit; a byte has two"
                                 : "an odd number of digits (" + std::to_string(digits) + "); a byte has two");
        if (bytes.size() + digits / 2 > longestMessage) tooLong(at);
        appendPairs(bytes, text.substr(at, digits));
        return end;
    }

    [[noreturn]] void tooLong(std::size_t at) const
    {
        fail(at, "from here on the message is longer than " + std::to_string(longestMessage) + " bytes");
    }

    std::string_view text;
    Bytes bytes;
    std::optional<std::uint64_t> origin;  // offset in the first line, which need not be 0
    std::size_t rowBytes = 0;             // of the last line, which "*" repeats
    std::size_t repeatAt = none;          // offset of a "*" that no line follows yet
};

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

Bytes parseHex(std::string_view text)
{
    return HexReader(text).read();
}

Bytes parseBase64(std::string_view text)
{
    Bytes bytes;
    std::uint32_t bits = 0;
    std::size_t characters = 0;
    std::size_t pads = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (blanks.find(c) != std::string_view::npos) continue;
        if (c == '=') {
            ++pads;
            continue;
        }
        const int value = base64Value(c);
        if (value < 0) throw InputError::at(text, at, quoted(c) + " is not a base64 character");
        if (pads > 0) throw InputError::at(text, at, quoted(c) + " after the \"=\" that ends base64");
        bits = bits << 6 | static_cast<unsigned>(value);
        if (++characters % 4 != 1)
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
    if (digits.size() % 2 != 0 || digitsAt(digits, 0) != digits.size()) return std::nullopt;
    Bytes bytes;
    appendPairs(bytes, digits);
    return bytes;
}

std::string hexText(std::span<const unsigned char> bytes)
{
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); i += 4) {
        text += hexDigits(bytes.subspan(i, std::min<std::size_t>(4, bytes.size() - i)));
        text += i % 16 == 12 || i + 4 >= bytes.size() ? '\n' : ' ';
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

}  // namespace quorva::inspect
