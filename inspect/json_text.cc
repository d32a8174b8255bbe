// Checks and indexes JSON texts.

#include "json_text.h"

#include "explain/layout.h"
#include "input.h"
#include "support/text.h"

#include <nlohmann/json.hpp>

#include <limits>

namespace quorva::inspect {

namespace {

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

// True for the characters of numbers, literals, and the names that other languages write without quotes.
bool isOfWord(char c)
{
    return isDigit(c) || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '+' || c == '-' ||
           c == '.';
}

}  // namespace

// Adds the nodes of a text to an empty index.
class JsonText::Scanner {
public:
    explicit Scanner(JsonText& of) : index(of), text(of.text), nodes(of.nodes)
    {
        if (text.size() > std::numeric_limits<std::uint32_t>::max()) fail(0, "a JSON text of more than 4 GiB");
    }

    void scan()
    {
        if (text.starts_with("\xEF\xBB\xBF")) at = 3;  // a byte order mark
        scanValue();
        while (!open.empty()) scanNext();
        skipBlanks();
        if (at < text.size()) failHere("the end of the text");
    }

private:
    [[noreturn]] void fail(std::size_t place, const std::string& sentence) const
    {
        throw JsonError(index.error(place, "", sentence));
    }

    [[noreturn]] void failHere(const std::string& wanted) const
    {
        fail(at, "not JSON: expected " + wanted + ", found " + found());
    }

    // What the text has at this place, for a message.
    std::string found() const
    {
        if (at == text.size()) return "the end of the text";
        const std::string_view word = wordAt(at);
        if (!word.empty()) return '"' + std::string(word) + '"';
        const auto byte = static_cast<unsigned char>(text[at]);
        return byte > 0x20 && byte < 0x7F ? std::string("'") + text[at] + '\'' : "byte 0x" + hexDigits({&byte, 1});
    }

    // At most 40 characters.
    std::string_view wordAt(std::size_t begin) const
    {
        std::size_t end = begin;
        while (end < text.size() && end - begin < 40 && isOfWord(text[end])) ++end;
        return text.substr(begin, end - begin);
    }

    bool has(char c) const { return at < text.size() && text[at] == c; }

    bool skip(char c)
    {
        if (!has(c)) return false;
        ++at;
        return true;
    }

    void skipBlanks() { at = std::min(text.find_first_not_of(" \t\r\n", at), text.size()); }

    // Returns the number of digits.
    std::size_t skipDigits()
    {
        const std::size_t begin = at;
        while (at < text.size() && isDigit(text[at])) ++at;
        return at - begin;
    }

    void addNode() { nodes.push_back({static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(nodes.size() + 1)}); }

    // Scans the next member or element of the innermost open object or array, or its end.
    void scanNext()
    {
        const std::size_t container = open.back();
        const bool isObject = text[nodes[container].begin] == '{';
        const bool isEmpty = nodes.size() == container + 1;
        const std::string orEnd = isObject ? " or '}'" : " or ']'";
        skipBlanks();
        if (skip(isObject ? '}' : ']')) {
            nodes[container].after = static_cast<std::uint32_t>(nodes.size());
            open.pop_back();
            return;
        }
        if (!isEmpty) {
            if (!skip(',')) failHere("','" + orEnd);
            skipBlanks();
        }
        if (isObject) {
            if (!has('"')) failHere("a name in double quotes" + (isEmpty ? orEnd : ""));
            scanString();
            skipBlanks();
            if (!skip(':')) failHere("':'");
        }
        scanValue();
    }

    void scanValue()
    {
        skipBlanks();
        if (has('{') || has('[')) {
            if (open.size() == deepestNesting)
                fail(at, "values are nested deeper than " + std::to_string(deepestNesting) + " levels");
            open.push_back(nodes.size());
            addNode();
            ++at;
        } else if (has('"')) {
            scanString();
        } else if (has('-') || (at < text.size() && isDigit(text[at]))) {
            scanNumber();
        } else {
            const std::string_view word = wordAt(at);
            if (word != "true" && word != "false" && word != "null") failHere("a value");
            addNode();
            at += word.size();
        }
    }

    void scanNumber()
    {
        addNode();
        const std::size_t begin = at;
        skip('-');
        const bool beginsWithZero = has('0');
        const std::size_t digits = skipDigits();
        bool isNumber = digits == 1 || (digits > 1 && !beginsWithZero);
        if (skip('.')) isNumber &= skipDigits() > 0;
        if (skip('e') || skip('E')) {
            if (!skip('+')) skip('-');
            isNumber &= skipDigits() > 0;
        }
        if (!isNumber || (at < text.size() && isOfWord(text[at])))
            fail(begin, "not JSON: \"" + std::string(wordAt(begin)) + "\" is not a number");
    }

    void scanString()
    {
        addNode();
        const std::size_t begin = at++;
        while (!skip('"')) {
            if (at == text.size()) fail(begin, "not JSON: the string has no closing quote");
            const auto byte = static_cast<unsigned char>(text[at]);
            if (byte == '\\') {
                scanEscape();
            } else if (byte < 0x20) {
                fail(at, "not JSON: a string with the control character 0x" + hexDigits({&byte, 1}) +
                             "; write it as \\u00" + hexDigits({&byte, 1}));
            } else {
                const std::size_t length = byte < 0x80 ? 1 : support::utf8SequenceLength(text.substr(at));
                if (length == 0) fail(at, "not JSON: byte 0x" + hexDigits({&byte, 1}) + " of a string is not UTF-8");
                at += length;
            }
        }
    }

    void scanEscape()
    {
        const std::size_t begin = at++;
        if (at < text.size() && std::string_view("\"\\/bfnrt").find(text[at]) != std::string_view::npos) {
            ++at;
            return;
        }
        const unsigned first = scanUnit(begin);
        const bool isHigh = first >= 0xD800 && first < 0xDC00;
        const bool isLow = first >= 0xDC00 && first < 0xE000;
        const unsigned second = isHigh && skip('\\') ? scanUnit(begin) : 0;
        if (isLow || (isHigh && (second < 0xDC00 || second >= 0xE000)))
            fail(begin, "not JSON: half of a surrogate pair");
    }

    // Scans the part of an escape after its backslash, "u00e4". Returns its number.
    unsigned scanUnit(std::size_t begin)
    {
        const auto bytes = has('u') ? bytesOfDigits(text.substr(at + 1, 4)) : std::nullopt;
        if (!bytes || bytes->size() != 2)
            fail(begin,
                 "not JSON: an escape is \\\" \\\\ \\/ \\b \\f \\n \\r \\t, or \\u with four hexadecimal digits");
        at += 5;
        return bytes->front() * 256u + bytes->back();
    }

    const JsonText& index;
    const std::string_view text;
    std::vector<Node>& nodes;
    std::vector<std::size_t> open;  // the objects and arrays that have not ended, from the outermost in
    std::size_t at = 0;
};

JsonText::JsonText(std::string_view of) : text(of)
{
    Scanner(*this).scan();
}

JsonError::Entry JsonText::error(std::size_t offset, std::string path, std::string sentence) const
{
    const InputError place = InputError::at(text, offset, sentence);
    return {std::move(path), std::move(sentence), place.line, place.column};
}

std::string_view JsonText::Value::token() const
{
    const std::string_view rest = in->text.substr(offset());
    std::size_t end = 1;
    if (isString()) {
        while (rest[end] != '"') end += rest[end] == '\\' ? 2 : 1;
        return rest.substr(0, end + 1);
    }
    while (end < rest.size() && isOfWord(rest[end])) ++end;
    return rest.substr(0, end);
}

std::string JsonText::Value::string() const
{
    const std::string_view quoted = token();
    if (quoted.find('\\') != std::string_view::npos) return nlohmann::json::parse(quoted).get<std::string>();
    return std::string(quoted.substr(1, quoted.size() - 2));
}

}  // namespace quorva::inspect
