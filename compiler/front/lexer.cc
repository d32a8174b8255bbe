// Reads the text once, without recursion.
#include "lexer.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

namespace quorva::compiler {

namespace {

constexpr std::size_t longestWord = 255;  // bytes

constexpr std::array<std::string_view, 18> keywords = {
    "bool",   "case",      "const",  "default", "double", "enum",    "float", "hyper",    "int",
    "opaque", "quadruple", "string", "struct",  "switch", "typedef", "union", "unsigned", "void",
};

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool startsWord(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool continuesWord(char c)
{
    return startsWord(c) || isDigit(c);
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\f' || c == '\v';
}

bool isPunctuation(char c)
{
    return std::string_view("{}()[]<>;,:=*/").find(c) != std::string_view::npos;
}

class Lexer {
public:
    Lexer(Module& lexedModule, Diagnostics& diagnostics)
        : module(lexedModule), errors(diagnostics), text(lexedModule.source.text)
    {
    }

    LexResult run();

private:
    char peek(std::size_t ahead = 0) const { return position + ahead < text.size() ? text[position + ahead] : '\0'; }
    bool atEnd() const { return position >= text.size(); }
    Span span(std::size_t from, std::size_t length) const;
    void newLine();
    std::size_t endOfLine(std::size_t from) const { return std::min(text.find('\n', from), text.size()); }

    void add(TokenKind kind, std::size_t from);
    void lineComment();
    void blockComment();
    void word();
    void number();
    void preprocessorLine();
    void illegal();

    Module& module;
    Diagnostics& errors;
    std::string_view text;
    std::size_t position = 0;
    std::size_t lineStart = 0;
    unsigned lineNumber = 1;
    unsigned lastIllegalLine = 0;
    bool tokenOnLine = false;
    unsigned commentsSeen = 0;
    LexResult out;
};

Span Lexer::span(std::size_t from, std::size_t length) const
{
    return {&module.source, lineNumber, static_cast<unsigned>(from - lineStart + 1), static_cast<unsigned>(length)};
}

// Expects `position` at the '\n'.
void Lexer::newLine()
{
    lineStart = ++position;
    ++lineNumber;
    tokenOnLine = false;
}

void Lexer::add(TokenKind kind, std::size_t from)
{
    Token token;
    token.kind = kind;
    token.firstOnLine = !tokenOnLine;
    token.firstComment = commentsSeen;
    token.at = span(from, position - from);
    token.text = text.substr(from, position - from);
    out.tokens.push_back(token);
    commentsSeen = static_cast<unsigned>(out.comments.size());
    tokenOnLine = true;
}

void Lexer::lineComment()
{
    const std::size_t from = position;
    position = endOfLine(position);
    const auto content = text.substr(from + 2, position - from - 2);
    out.comments.push_back({content, span(from, position - from), lineNumber, false, !tokenOnLine});
}

void Lexer::blockComment()
{
    const std::size_t from = position;
    const Span at = span(from, 2);
    const bool alone = !tokenOnLine;
    const std::size_t close = text.find("*/", from + 2);
    if (close == std::string_view::npos) {
        errors.error(at, "this comment never ends: '*/' is missing");
        module.incomplete = true;  // the rest of the file became part of the comment
        position = text.size();
        return;
    }
    const bool sameLineToken = tokenOnLine;
    bool crossed = false;
    while (position < close) {
        if (text[position] == '\n') {
            newLine();
            crossed = true;
        } else {
            ++position;
        }
    }
    position = close + 2;
    tokenOnLine = !crossed && sameLineToken;
    out.comments.push_back({text.substr(from + 2, close - from - 2), at, lineNumber, true, alone});
}

void Lexer::word()
{
    const std::size_t from = position;
    while (continuesWord(peek())) ++position;
    const auto name = text.substr(from, position - from);
    const bool keyword = std::find(keywords.begin(), keywords.end(), name) != keywords.end();
    add(keyword ? TokenKind::keyword : TokenKind::name, from);
    if (name.size() > longestWord) {
        errors.error(span(from, name.size()), "this name has " + std::to_string(name.size()) +
                                                  " characters; the maximum is " + std::to_string(longestWord));
        out.tokens.back().text = name.substr(0, longestWord);
    }
}

void Lexer::number()
{
    const std::size_t from = position;
    const bool negative = peek() == '-';
    if (negative) ++position;
    while (continuesWord(peek())) ++position;
    add(TokenKind::number, from);
    Token& token = out.tokens.back();

    std::string_view digits = token.text.substr(negative ? 1 : 0);
    int base = 10;
    if (digits.starts_with("0x") || digits.starts_with("0X")) {
        base = 16;
        digits.remove_prefix(2);
    } else if (digits.size() > 1 && digits.front() == '0') {
        base = 8;
    }
    std::int64_t magnitude = 0;
    const char* const end = digits.data() + digits.size();
    const auto [stop, result] = std::from_chars(digits.data(), end, magnitude, base);
    if (digits.empty() || (result != std::errc::result_out_of_range && stop != end)) {
        token.known = false;
        const bool octal = base == 8 && std::all_of(digits.begin(), digits.end(), isDigit);
        errors.error(token.at, inQuotes(token.text) +
                                   (octal ? " is not a number: a leading 0 makes it octal, and octal has no 8 and 9"
                                          : " is not a number, and a name cannot begin with a digit"));
    } else if (result == std::errc::result_out_of_range) {
        token.known = false;
        errors.error(token.at,
                     "the number " + inQuotes(token.text) + " is out of range: the API's numbers have 32 bits");
    } else {
        token.number = negative ? -magnitude : magnitude;
    }
}

// rpcgen runs the C preprocessor over its input. This compiler does not, and tells what to write instead.
void Lexer::preprocessorLine()
{
    std::size_t end = endOfLine(position);
    const auto line = text.substr(position, end - position);
    std::size_t wordStart = 1;
    while (wordStart < line.size() && isBlank(line[wordStart])) ++wordStart;
    std::size_t wordEnd = wordStart;
    while (wordEnd < line.size() && continuesWord(line[wordEnd])) ++wordEnd;
    const auto directive = line.substr(wordStart, wordEnd - wordStart);

    std::string sentence = "there is no preprocessor: lines that begin with '#' are not allowed";
    if (directive == "define") {
        sentence = "there is no preprocessor: write 'const NAME = number;' instead of '#define'";
        std::size_t nameStart = wordEnd;
        while (nameStart < line.size() && isBlank(line[nameStart])) ++nameStart;
        std::size_t nameEnd = nameStart;
        while (nameEnd < line.size() && continuesWord(line[nameEnd])) ++nameEnd;
        module.skipped.emplace(line.substr(nameStart, nameEnd - nameStart));
    } else if (directive == "include") {
        sentence = "there is no preprocessor: write 'import module;' instead of '#include'";
        module.incomplete = true;
    } else if (directive.starts_with("if") || directive.starts_with("el") || directive == "endif") {
        sentence = "there is no preprocessor: keep only the definitions that hold and remove the '#" +
                   std::string(directive.substr(0, longestWord)) + "' line";
    }
    const auto shown = line.substr(0, line.find_last_not_of(" \t\r") + 1);
    errors.error(span(position, shown.size()), std::move(sentence));

    // A backslash continues the line.
    while (end < text.size() && text.substr(position, end - position).ends_with('\\')) {
        position = end;
        newLine();
        end = endOfLine(position);
    }
    position = end;
}

void Lexer::illegal()
{
    const std::size_t from = position;
    while (!atEnd() && peek() != '\n' && !isBlank(peek()) && !continuesWord(peek()) && !isPunctuation(peek()))
        ++position;
    const auto byte = static_cast<unsigned char>(text[from]);
    std::string what;
    if (byte == '"') {
        what = "this language has no quoted strings";
    } else if (byte == '\'') {
        what = "this language has no quoted characters; write the character's number";
    } else if (byte > 0x20 && byte < 0x7F) {
        what = inQuotes(text.substr(from, 1)) + " is not a character of this language";
    } else {
        constexpr std::string_view hex = "0123456789ABCDEF";
        what = std::string("the byte 0x") + hex[byte >> 4U] + hex[byte & 15U] +
               (byte < 0x80 ? " does not belong in a text file"
                            : " is not ASCII; only comments may contain other characters");
    }
    add(TokenKind::bad, from);
    // Bad characters come in groups; one error a line is enough.
    if (lineNumber != lastIllegalLine) errors.error(out.tokens.back().at, std::move(what));
    lastIllegalLine = lineNumber;
}

LexResult Lexer::run()
{
    while (!atEnd() && !errors.full()) {
        const char c = peek();
        if (c == '\n') {
            newLine();
        } else if (isBlank(c)) {
            ++position;
        } else if (c == '/' && peek(1) == '/') {
            lineComment();
        } else if (c == '/' && peek(1) == '*') {
            blockComment();
        } else if (startsWord(c)) {
            word();
        } else if (isDigit(c) || (c == '-' && isDigit(peek(1)))) {
            number();
        } else if (c == '%' && !tokenOnLine) {
            position = endOfLine(position);  // rpcgen copies such lines to its output
        } else if (c == '#' && !tokenOnLine) {
            preprocessorLine();
        } else if (isPunctuation(c)) {
            const std::size_t from = position++;
            add(TokenKind::punctuation, from);
        } else {
            illegal();
        }
    }
    const std::size_t end = position;
    add(TokenKind::end, end);
    return std::move(out);
}

}  // namespace

LexResult lex(Module& module, Diagnostics& errors)
{
    return Lexer(module, errors).run();
}

}  // namespace quorva::compiler
