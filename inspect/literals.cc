// Reads bytes from source code: arrays of numbers and texts with escapes.

#include "hex_readers.h"

#include <algorithm>
#include <optional>

namespace quorva::inspect::hex {

namespace {

// Types of elements that are wider than a byte.
constexpr std::string_view wideTypes[] = {
    "short", "int",   "long",   "uint16_t", "uint32_t",    "uint64_t",    "int16_t",    "int32_t", "int64_t",
    "u16",   "u32",   "u64",    "i16",      "i32",         "i64",         "uint16",     "uint32",  "uint64",
    "int16", "int32", "int64",  "wchar_t",  "Uint16Array", "Uint32Array", "Int16Array", "ushort",  "uint",
    "ulong", "float", "double", "char16_t", "char32_t",    "Int32Array"};

class LiteralReader : Reader {
public:
    using Reader::Reader;

    HexText read()
    {
        const Start start = findStart();
        if (start.close == 0 && !start.isText && text.find(',') == none) fail(start.at, "neither digits nor an array");
        readHead(start.at);
        hasText = start.isText;
        if (hasText && charAt(skipBlanks(0)) == '$')
            fail(start.at, "gdb leaves out zeros at the end of a text; use x/NNxb (NN: bytes)");
        const std::size_t end = readItems(start.at + (start.close != 0 && !start.isText ? 1 : 0), start);
        if (hasText && !hasEscape)
            fail(start.at,
                 "this text has no \\x: its characters can be the bytes, or hex or base64 of the bytes; "
                 "delete the quotes for hex or base64");
        readTail(end);
        checkSize();
        if (bytes.empty() && !declared) fail(start.at, "the text has no bytes");
        return {std::move(bytes), hasText ? "a text with escapes" : "an array"};
    }

private:
    // Where the items begin. `close` is the bracket after them, 0 if none is expected.
    struct Start {
        std::size_t at = 0;
        char close = 0;
        bool isText = false;
    };

    static constexpr bool isQuote(char c) { return c == '"' || c == '\''; }

    std::size_t skipBlanks(std::size_t at) const { return std::min(text.find_first_not_of(blanks, at), text.size()); }

    char charAt(std::size_t at) const { return at < text.size() ? text[at] : '\0'; }

    // The end of the word or number at this offset.
    std::size_t wordEnd(std::size_t at) const
    {
        while (at < text.size() && isWord(text[at])) ++at;
        return at;
    }

    // The first "{", or else the first "[" or "(" that a value follows, or else the first text, or else the start.
    Start findStart() const
    {
        std::optional<Start> square, round;
        for (std::size_t at = 0; at < text.size(); ++at) {
            const char c = text[at];
            if (c == '{') return {at, '}', false};
            if (isQuote(c)) {
                if (square) break;
                while (at > 0 && isWord(text[at - 1])) --at;
                return {at, '\0', true};
            }
            if (c != '[' && c != '(') continue;
            const char next = charAt(skipBlanks(at + 1));
            if (!isDecimal(next) && next != '-' && !isQuote(next)) continue;
            if (c == '[' && !square && (at == 0 || !isWord(text[at - 1])) && !closesSize(at))
                square = Start{at, ']', false};
            if (c == '(' && !round) round = Start{at, ')', false};
        }
        return square ? *square : round ? *round : Start{skipBlanks(0), '\0', false};
    }

    // True if this "[" is part of a type: "[]byte", "[5]uint8" or "byte[]".
    bool closesSize(std::size_t at) const
    {
        std::size_t end = skipBlanks(at + 1);
        while (isDecimal(charAt(end))) ++end;
        return charAt(end) == ']' && end + 1 < text.size() && (isWord(text[end + 1]) || text[end + 1] == ']');
    }

    // Checks the declaration before the items: its element must be a byte. Notes a declared size.
    void readHead(std::size_t end)
    {
        for (std::size_t at = 0; at < end;) {
            const char c = text[at];
            if (!isWord(c)) {
                if (c == ';' && !sizeMayFollow(at)) elementAt = none;
                ++at;
                continue;
            }
            const std::size_t stop = std::min(wordEnd(at), end);
            const std::string_view word = text.substr(at, stop - at);
            if (isDecimal(c)) {
                const std::size_t before = text.find_last_not_of(blanks, at == 0 ? 0 : at - 1);
                const char mark = at == 0 || before == none ? '\0' : text[before];
                if (mark != '[' && mark != '(' && mark != '$' && mark != '=' && mark != ';')
                    fail(at, "a number before the array; only numbers between its brackets are bytes");
                if (mark == '[' || mark == '(' || (mark == ';' && charAt(skipBlanks(stop)) == ']')) {
                    declared = std::ranges::all_of(word, isDecimal) && word.size() < 10
                                   ? std::optional(std::stoull(std::string(word)))
                                   : std::nullopt;
                    declaredAt = at;
                }
            }
            if (std::ranges::find(wideTypes, word) != std::end(wideTypes)) elementAt = at;
            at = stop;
        }
        if (elementAt != none)
            fail(elementAt,
                 "the elements of this array are wider than a byte; their bytes in a message "
                 "depend on the machine");
    }

    // True if this ";" belongs to a type: "[u8; 5]".
    bool sizeMayFollow(std::size_t at) const { return isDecimal(charAt(skipBlanks(at + 1))); }

    // Reads numbers and texts up to the closing bracket, or up to the end of a text. Returns the offset after them.
    std::size_t readItems(std::size_t at, const Start& start)
    {
        bool itemRead = false;  // the last thing was an item, and no comma followed it
        std::size_t inner = 0;  // brackets that are open within the list
        bool innerClosed = false;
        for (at = skipBlanks(at); at < text.size(); at = skipBlanks(at)) {
            const char c = text[at];
            if (start.close != 0 && c == start.close && inner == 0) return at + 1;
            if (start.isText && !startsLiteral(at) && c != '+' && c != '\\') return at;
            if (text.substr(at).starts_with("..."))
                fail(at, "the rest of the array is missing; in gdb, use `set print elements 0`");
            if (c == start.close) {
                --inner;
                innerClosed = true;
                ++at;
            } else if (innerClosed && c != ',') {
                fail(at, "a second array; give one at a time");
            } else if (c == '{' && !itemRead && bytes.empty()) {
                ++inner;
                ++at;
            } else if (c == ',') {
                if (!itemRead) fail(at, "a number is missing before this comma");
                itemRead = false;
                ++at;
            } else if (c == '<') {
                at = readRepeats(at);
            } else if (c == '+' || c == '\\') {
                ++at;
            } else if (startsLiteral(at)) {
                at = readLiteral(at, itemRead);
                itemRead = true;
            } else {
                if (itemRead) fail(at, "a comma is missing between the numbers");
                at = readNumber(at);
                itemRead = true;
            }
        }
        if (start.close != 0) fail(text.size(), std::string("the array does not end with '") + start.close + "'");
        return at;
    }

    // "<repeats 13 times>" after an item: gdb's form.
    std::size_t readRepeats(std::size_t at)
    {
        constexpr std::string_view mark = "<repeats ";
        std::size_t end = at + mark.size();
        std::uint64_t times = 0;
        while (end < text.size() && isDecimal(text[end]) && times <= most)
            times = times * 10 + static_cast<unsigned>(digitOf(text[end++]));
        constexpr std::string_view tail = " times>";
        if (!text.substr(at).starts_with(mark) || !text.substr(end).starts_with(tail) || times == 0 || bytes.empty())
            fail(at, "'<' is not part of an array");
        append(at, bytes.back(), times - 1);
        return end + tail.size();
    }

    // True at a quote, or at the letters directly before it.
    bool startsLiteral(std::size_t at) const
    {
        const std::size_t end = wordEnd(at);
        return end - at <= 2 && isQuote(charAt(end));
    }

    std::size_t readNumber(std::size_t at)
    {
        if (text[at] == '(') {  // a cast: "(byte)0x80"
            const std::size_t end = text.find(')', at);
            const std::string_view type = text.substr(at + 1, end == none ? 0 : end - at - 1);
            if (type != "byte" && type != "char" && type != "unsigned char" && type != "uint8_t" && type != "sbyte")
                fail(at, "only a cast to a byte's type can be before a number");
            at = skipBlanks(end + 1);
        }
        const bool isNegative = charAt(at) == '-';
        const std::size_t begin = isNegative ? at + 1 : at;
        const std::size_t end = wordEnd(begin);
        std::string_view number = text.substr(begin, end - begin);
        for (const std::string_view suffix : {"_u8", "u8", "U", "u"})
            if (number.ends_with(suffix)) {
                number.remove_suffix(suffix.size());
                break;
            }
        unsigned value = 0;
        if (hasPrefix(number, 0)) {
            if (digitsAt(number, 2) + 2 != number.size()) fail(begin, "not a number");
            if (number.size() > 4)
                fail(begin, "a number of more than a byte; its bytes in a message depend on the machine");
            for (const char c : number.substr(2)) value = value << 4 | static_cast<unsigned>(digitOf(c));
        } else {
            if (number.empty() || !std::ranges::all_of(number, isDecimal))
                fail(begin, number.empty() && begin < text.size() ? quoted(text[begin]) + " is not part of an array"
                                                                  : "not a number; hexadecimal ones begin with 0x");
            if (number.size() > 1 && number[0] == '0')
                fail(begin, "a number that begins with 0 is octal in C, and can be hexadecimal; write 0x before it");
            for (const char c : number.substr(0, 4)) value = value * 10 + static_cast<unsigned>(digitOf(c));
        }
        if (value > (isNegative ? 128u : 255u)) fail(begin, "a byte is from -128 to 255");
        append(begin, static_cast<unsigned char>(isNegative ? 256 - value : value));
        return end;
    }

    std::size_t readLiteral(std::size_t at, bool joins)
    {
        const std::size_t open = wordEnd(at);
        const std::string_view prefix = text.substr(at, open - at);
        const bool isBytes = prefix == "b" || prefix == "B";  // of Python: \x has two digits
        if (!prefix.empty() && !isBytes && prefix != "u8") fail(at, "a text with this prefix is not read");
        const char quote = text[open];
        const std::size_t before = bytes.size();
        std::size_t next = open + 1;
        while (charAt(next) != quote) {
            const char c = charAt(next);
            if (c == '\n' || next >= text.size()) fail(open, "the text does not end in its line");
            if (c != '\\' && (c < ' ' || c > '~')) fail(next, quoted(c) + " in a text; write it with \\x");
            if (c == '\\') {
                next = readEscape(next, quote == '"' && !isBytes);
            } else {
                append(next, static_cast<unsigned char>(c));
                ++next;
            }
        }
        if (bytes.size() != before + 1 || quote == '"') {
            if (textRead && !joins) fail(open, "a second text; give one at a time");
            hasText = textRead = true;
        }
        return next + 1;
    }

    // Reads an escape at its backslash. In C, `\x` has any number of digits; elsewhere it has two.
    std::size_t readEscape(std::size_t at, bool mayBeC)
    {
        hasEscape = true;
        const char c = charAt(at + 1);
        if (c == 'x') {
            const std::size_t digits = digitsAt(text, at + 2);
            if (digits == 0) fail(at, "\\x without a digit");
            const std::size_t zeros = std::min(text.find_first_not_of('0', at + 2) - (at + 2), digits);
            if (mayBeC && digits > 2 && digits - zeros <= 2)
                fail(at, "in C this \\x has " + std::to_string(digits) +
                             " digits, elsewhere two; end the text after two digits and begin a new one");
            unsigned value = 0;
            for (std::size_t i = 0; i < std::min<std::size_t>(digits, 2); ++i)
                value = value << 4 | static_cast<unsigned>(digitOf(text[at + 2 + i]));
            append(at, static_cast<unsigned char>(value));
            return at + 2 + std::min<std::size_t>(digits, 2);
        }
        if (c >= '0' && c <= '7') {
            unsigned value = 0;
            std::size_t end = at + 1;
            for (; end < at + 4 && charAt(end) >= '0' && charAt(end) <= '7'; ++end)
                value = value << 3 | static_cast<unsigned>(digitOf(text[end]));
            if (value > 255) fail(at, "an octal escape of more than a byte");
            append(at, static_cast<unsigned char>(value));
            return end;
        }
        constexpr std::string_view letters = "abefnrtv\\\"'?";
        constexpr std::string_view values = "\a\b\x1b\f\n\r\t\v\\\"'?";
        const std::size_t index = letters.find(c);
        if (index == none || c == '\0') fail(at, "an escape that is not read; use \\x and two digits");
        append(at, static_cast<unsigned char>(values[index]));
        return at + 2;
    }

    // Checks that no more bytes follow, and that a length "message_len = 40" is right.
    void readTail(std::size_t at)
    {
        std::string_view lastWord;
        for (char mark = '\0'; (at = skipBlanks(at)) < text.size();) {
            const char c = text[at];
            if (isQuote(c) || c == '{') fail(at, "a second array or text; give one at a time");
            if (!isWord(c)) {
                mark = c;
                ++at;
                continue;
            }
            const std::size_t end = wordEnd(at);
            const std::string_view word = text.substr(at, end - at);
            if (isDecimal(c)) {
                if (mark != '=') fail(at, "a number after the array; only numbers between its brackets are bytes");
                const bool isLength = lastWord.ends_with("_len") || lastWord.ends_with("_LEN");
                if (isLength && word != std::to_string(bytes.size()))
                    fail(at, "the array has " + std::to_string(bytes.size()) + " bytes, not this many");
            } else {
                lastWord = word;
            }
            at = end;
        }
    }

    // A declared size must be right. That of a text may count the zero that ends it in C.
    void checkSize() const
    {
        if (!declared || *declared == bytes.size() || (hasText && *declared == bytes.size() + 1)) return;
        fail(declaredAt, "this size is declared, but the array has " + std::to_string(bytes.size()) +
                             (bytes.size() == 1 ? " byte" : " bytes"));
    }

    std::size_t elementAt = none;  // of a type that is wider than a byte
    std::optional<std::uint64_t> declared;
    std::size_t declaredAt = 0;
    bool hasText = false;
    bool textRead = false;
    bool hasEscape = false;
};

}  // namespace

HexText readLiterals(std::string_view text, std::size_t most)
{
    return LiteralReader(text, most).read();
}

}  // namespace quorva::inspect::hex
