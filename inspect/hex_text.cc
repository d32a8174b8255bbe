// Chooses the reader of a hex text, and reads plain digits.

#include "hex_readers.h"

#include <algorithm>

namespace quorva::inspect {

namespace hex {

namespace {

constexpr std::string_view separators = " \t\r\n\f\v,:;-_{}()[]";
constexpr std::string_view tokenEnds = " \t\r\n\f\v,:;-_{}()[]\\";  // the backslash for "\x00\x41"

class DigitsReader : Reader {
public:
    using Reader::Reader;

    HexText read()
    {
        constexpr std::string_view bufferHead = "<Buffer ";
        const std::size_t start = std::min(text.find_first_not_of(blanks), text.size());
        const bool isBuffer = text.substr(start).starts_with(bufferHead);
        std::size_t at = isBuffer ? start + bufferHead.size() : 0;
        if (isBuffer) text = text.substr(0, text.rfind('>'));
        const std::size_t end = text.size();
        while ((at = nextToken(at, end)) < end) at = readToken(at);
        if (tokens == 0) fail(text.size(), "the text has no hexadecimal digits");
        if (wideNumberAt != none && tokens > 1)
            fail(wideNumberAt,
                 "a number of several bytes, whose order in memory is not known; write single bytes, or "
                 "digits without 0x in the order of the message");
        if (hasBrackets && everyNumberIsDecimal && text.find(',') == none)
            fail(firstAt,
                 "these numbers can be decimal or hexadecimal; write 0x before hexadecimal ones, or no brackets");
        if (looksLikeOdWithoutOffsets())
            fail(firstAt,
                 "this can be plain digits or od's words or numbers, which do not show the order of the bytes; "
                 "delete the blanks that begin the line for plain digits, or use `od -A x -t x1`");
        return {std::move(bytes), isBuffer ? "a Buffer" : "hexadecimal digits"};
    }

private:
    // Skips separators up to `end`, and notes those that tell something about the numbers between them.
    std::size_t nextToken(std::size_t at, std::size_t end)
    {
        const std::size_t begin = at;
        for (; at < end && separators.find(text[at]) != none; ++at) {
            const char c = text[at];
            hasBrackets = hasBrackets || c == '[' || c == '{' || c == '(';
            if ((c == '-' || c == '_') && (at == 0 || isBlank(text[at - 1])) && at + 1 < end && isDecimal(text[at + 1]))
                fail(at, "a sign or another mark before a number; only hexadecimal digits are read");
        }
        const std::string_view gap = text.substr(begin, at - begin);
        if (at < end && gap != " " && gap != "\n ") singleBlanks = false;
        if (at < end && tokens > 0 && (gap.size() < 2 || gap.find_first_not_of(blanks) != none)) wideGaps = false;
        return at;
    }

    // Reads the digits of one or more bytes, up to the next separator. Returns the offset of their end.
    std::size_t readToken(std::size_t at)
    {
        const bool isNumber = hasPrefix(text, at);
        const bool isEscape = text.substr(at, 2) == "\\x";
        if (tokens++ == 0) firstAt = at;
        if (isNumber || isEscape) at += 2;
        const std::size_t digits = digitsAt(text, at);
        const std::size_t end = at + digits;
        if (digits == 0 || (end < text.size() && tokenEnds.find(text[end]) == none))
            fail(end, end < text.size() ? quoted(text[end]) + " is not a hexadecimal digit" : "a digit is missing");
        if (isEscape && digits != 2) fail(at, "\\x has two digits; put text with other characters between quotes");
        checkEven(at, digits);
        if (isNumber && digits > 2) wideNumberAt = std::min(wideNumberAt, at);
        const std::string_view number = text.substr(at, digits);
        const bool isCanonical = digits == 2 && number[0] != '0' && isDecimal(number[0]) && isDecimal(number[1]);
        if (isNumber || isEscape || !isCanonical) everyNumberIsDecimal = false;
        if (isNumber || isEscape || (width != 0 && digits != width)) sameWidth = false;
        width = digits;
        if (std::ranges::any_of(number, [](char c) { return c < '0' || c > '7'; })) isOctal = false;
        appendDigits(at, digits);
        return end;
    }

    // True if `od -A n` can have written the text with another -t than x1: each line begins with a blank, and its
    // words or decimal numbers have the same width.
    bool looksLikeOdWithoutOffsets() const
    {
        if (everyNumberIsDecimal && wideGaps && (tokens > 1 || text.starts_with("  "))) return true;
        const bool isWord = width == 4 || width == 8 || width == 16 || (width == 6 && isOctal);
        return text.starts_with(' ') && singleBlanks && sameWidth && isWord;
    }

    std::size_t tokens = 0;
    std::size_t firstAt = 0;
    std::size_t wideNumberAt = none;  // of the first number "0x..." of more than one byte
    std::size_t width = 0;            // digits of the last token
    bool hasBrackets = false;
    bool everyNumberIsDecimal = true;  // each token is from 10 to 99
    bool sameWidth = true;
    bool isOctal = true;
    bool singleBlanks = true;  // one blank before each token, at the start of a line too
    bool wideGaps = true;      // two blanks or more between tokens
};

// The text with blanks in place of comments. Quotes protect what looks like a comment.
std::string withoutComments(std::string_view text)
{
    std::string result(text);
    const auto blankOut = [&](std::size_t from, std::size_t to) {
        for (std::size_t i = from; i < to; ++i)
            if (result[i] != '\n') result[i] = ' ';
    };
    for (std::size_t at = 0; at < text.size();) {
        const char c = text[at];
        std::size_t end = at + 1;
        if (c == '"' || c == '\'') {
            while (end < text.size() && text[end] != c && text[end] != '\n') end += text[end] == '\\' ? 2 : 1;
            ++end;
        } else if (text.substr(at, 2) == "//" || (c == '#' && (at == 0 || isBlank(text[at - 1])))) {
            end = std::min(text.find('\n', at), text.size());
            blankOut(at, end);
        } else if (text.substr(at, 2) == "/*") {
            const std::size_t close = text.find("*/", at + 2);
            if (close == none) throw InputError::at(text, at, "a comment that does not end");
            end = close + 2;
            blankOut(at, end);
        }
        at = end;
    }
    return result;
}

// The result of one reader of a text: what it read, or why it could not.
template <class Read>
auto attempt(Read read) -> std::pair<std::optional<HexText>, std::optional<InputError>>
{
    try {
        return {read(), std::nullopt};
    } catch (const InputError& error) {
        return {std::nullopt, error};
    }
}

// True if the text has letters other than digits and "x", as a declaration has.
bool hasWords(std::string_view text)
{
    return std::ranges::any_of(text,
                               [](char c) { return isWord(c) && digitOf(c) < 0 && c != 'x' && c != 'X' && c != '_'; });
}

}  // namespace

std::size_t digitsAt(std::string_view text, std::size_t from)
{
    std::size_t end = from;
    while (end < text.size() && digitOf(text[end]) >= 0) ++end;
    return end - from;
}

bool hasPrefix(std::string_view text, std::size_t at)
{
    return at + 2 < text.size() && text[at] == '0' && (text[at + 1] == 'x' || text[at + 1] == 'X') &&
           digitOf(text[at + 2]) >= 0;
}

void Reader::append(std::size_t at, unsigned char byte, std::uint64_t times)
{
    if (times > most - bytes.size())
        fail(at, "from here on the message is longer than " + std::to_string(most) + " bytes");
    bytes.insert(bytes.end(), static_cast<std::size_t>(times), byte);
}

void Reader::appendDigits(std::size_t at, std::size_t digits)
{
    if (digits / 2 > most - bytes.size()) append(at, 0, digits / 2);
    for (std::size_t i = 0; i + 1 < digits; i += 2)
        bytes.push_back(static_cast<unsigned char>(digitOf(text[at + i]) << 4 | digitOf(text[at + i + 1])));
}

void Reader::checkEven(std::size_t at, std::size_t digits) const
{
    if (digits % 2 == 0) return;
    std::string sentence = digits == 1 ? "a single digit; a byte has two"
                                       : "an odd number of digits (" + std::to_string(digits) + "); a byte has two";
    const std::string_view number = text.substr(at, digits);
    if (digits <= 3 && !hasPrefix(text, at - std::min<std::size_t>(at, 2)) && std::ranges::all_of(number, isDecimal))
        sentence += " (decimal or octal numbers? use `od -A x -t x1`)";
    fail(at, sentence);
}

HexText readDigits(std::string_view text, std::size_t most)
{
    return DigitsReader(text, most).read();
}

}  // namespace hex

HexText readHex(std::string_view text, std::size_t most)
{
    using namespace hex;
    if (text.size() > longestText) throw InputError::at(text, 0, "more than 64 MiB, which no message needs");
    if (text.find_first_not_of(blanks) == none) return {{}, "no bytes"};
    if (auto dump = readDump(text, most)) return std::move(*dump);

    const std::string code = withoutComments(text);
    if (code.find_first_of("\"'") != none) return readLiterals(code, most);
    auto [digits, whyNotDigits] = attempt([&] { return readDigits(code, most); });
    auto [array, whyNoArray] = attempt([&] { return readLiterals(code, most); });
    if (digits && array && digits->bytes != array->bytes)
        throw InputError::at(code, code.find_first_not_of(blanks),
                             "these numbers can be decimal or hexadecimal; write 0x before hexadecimal ones");
    if (array) return std::move(*array);
    if (digits) return std::move(*digits);
    const bool isDeclaration = code.find('=') != none || (hasWords(code) && code.find_first_of("{[(") != none);
    throw isDeclaration ? *whyNoArray : *whyNotDigits;
}

}  // namespace quorva::inspect
