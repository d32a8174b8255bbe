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
    Lexer(Module& module, Diagnostics& errors) : module_(module), errors_(errors), text_(module.source.text) {}

    LexResult run();

private:
    char peek(std::size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : '\0'; }
    bool atEnd() const { return at_ >= text_.size(); }
    Span span(std::size_t from, std::size_t length) const;
    void newLine();
    std::size_t endOfLine(std::size_t from) const { return std::min(text_.find('\n', from), text_.size()); }

    void add(TokenKind kind, std::size_t from);
    void lineComment();
    void blockComment();
    void word();
    void number();
    void preprocessorLine();
    void illegal();

    Module& module_;
    Diagnostics& errors_;
    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t lineStart_ = 0;
    unsigned line_ = 1;
    unsigned lastIllegal_ = 0;  // line
    bool tokenOnLine_ = false;
    unsigned commentsSeen_ = 0;
    LexResult out_;
};

Span Lexer::span(std::size_t from, std::size_t length) const
{
    return {&module_.source, line_, static_cast<unsigned>(from - lineStart_ + 1), static_cast<unsigned>(length)};
}

// Expects at_ on the '\n'.
void Lexer::newLine()
{
    lineStart_ = ++at_;
    ++line_;
    tokenOnLine_ = false;
}

void Lexer::add(TokenKind kind, std::size_t from)
{
    Token token;
    token.kind = kind;
    token.firstOnLine = !tokenOnLine_;
    token.firstComment = commentsSeen_;
    token.at = span(from, at_ - from);
    token.text = text_.substr(from, at_ - from);
    out_.tokens.push_back(token);
    commentsSeen_ = static_cast<unsigned>(out_.comments.size());
    tokenOnLine_ = true;
}

void Lexer::lineComment()
{
    const std::size_t from = at_;
    at_ = endOfLine(at_);
    const auto text = text_.substr(from + 2, at_ - from - 2);
    out_.comments.push_back({text, span(from, at_ - from), line_, false, !tokenOnLine_});
}

void Lexer::blockComment()
{
    const std::size_t from = at_;
    const Span at = span(from, 2);
    const bool alone = !tokenOnLine_;
    const std::size_t close = text_.find("*/", from + 2);
    if (close == std::string_view::npos) {
        errors_.error(at, "this comment never ends: '*/' is missing");
        module_.incomplete = true;  // the rest of the file became part of the comment
        at_ = text_.size();
        return;
    }
    const bool sameLineToken = tokenOnLine_;
    bool crossed = false;
    while (at_ < close) {
        if (text_[at_] == '\n') {
            newLine();
            crossed = true;
        } else {
            ++at_;
        }
    }
    at_ = close + 2;
    tokenOnLine_ = !crossed && sameLineToken;
    out_.comments.push_back({text_.substr(from + 2, close - from - 2), at, line_, true, alone});
}

void Lexer::word()
{
    const std::size_t from = at_;
    while (continuesWord(peek())) ++at_;
    const auto text = text_.substr(from, at_ - from);
    const bool keyword = std::find(keywords.begin(), keywords.end(), text) != keywords.end();
    add(keyword ? TokenKind::keyword : TokenKind::name, from);
    if (text.size() > longestWord) {
        errors_.error(span(from, text.size()), "this name has " + std::to_string(text.size()) +
                                                   " characters; at most " + std::to_string(longestWord) +
                                                   " are taken");
        out_.tokens.back().text = text.substr(0, longestWord);
    }
}

void Lexer::number()
{
    const std::size_t from = at_;
    const bool negative = peek() == '-';
    if (negative) ++at_;
    while (continuesWord(peek())) ++at_;
    add(TokenKind::number, from);
    Token& token = out_.tokens.back();

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
        errors_.error(token.at, inQuotes(token.text) +
                                    (octal ? " is no number: a leading 0 makes it octal, and octal has no 8 and 9"
                                           : " is no number, and a name cannot begin with a digit"));
    } else if (result == std::errc::result_out_of_range) {
        token.known = false;
        errors_.error(token.at,
                      "the number " + inQuotes(token.text) + " is out of range: the API's numbers have 32 bits");
    } else {
        token.number = negative ? -magnitude : magnitude;
    }
}

// rpcgen runs the C preprocessor over its input. This compiler does not, and tells what to write instead.
void Lexer::preprocessorLine()
{
    std::size_t end = endOfLine(at_);
    const auto line = text_.substr(at_, end - at_);
    std::size_t wordStart = 1;
    while (wordStart < line.size() && isBlank(line[wordStart])) ++wordStart;
    std::size_t wordEnd = wordStart;
    while (wordEnd < line.size() && continuesWord(line[wordEnd])) ++wordEnd;
    const auto directive = line.substr(wordStart, wordEnd - wordStart);

    std::string sentence = "there is no preprocessor: lines that begin with '#' are not understood";
    if (directive == "define") {
        sentence = "there is no preprocessor: write 'const NAME = number;' instead of '#define'";
        std::size_t nameStart = wordEnd;
        while (nameStart < line.size() && isBlank(line[nameStart])) ++nameStart;
        std::size_t nameEnd = nameStart;
        while (nameEnd < line.size() && continuesWord(line[nameEnd])) ++nameEnd;
        module_.skipped.emplace(line.substr(nameStart, nameEnd - nameStart));
    } else if (directive == "include") {
        sentence = "there is no preprocessor: write 'import module;' instead of '#include'";
        module_.incomplete = true;
    } else if (directive.starts_with("if") || directive.starts_with("el") || directive == "endif") {
        sentence = "there is no preprocessor: keep only the definitions that hold and remove the '#" +
                   std::string(directive.substr(0, longestWord)) + "' line";
    }
    const auto shown = line.substr(0, line.find_last_not_of(" \t\r") + 1);
    errors_.error(span(at_, shown.size()), std::move(sentence));

    // A backslash continues the line.
    while (end < text_.size() && text_.substr(at_, end - at_).ends_with('\\')) {
        at_ = end;
        newLine();
        end = endOfLine(at_);
    }
    at_ = end;
}

void Lexer::illegal()
{
    const std::size_t from = at_;
    while (!atEnd() && peek() != '\n' && !isBlank(peek()) && !continuesWord(peek()) && !isPunctuation(peek())) ++at_;
    const auto byte = static_cast<unsigned char>(text_[from]);
    std::string what;
    if (byte == '"') {
        what = "nothing stands in quotes in this language";
    } else if (byte > 0x20 && byte < 0x7F) {
        what = inQuotes(text_.substr(from, 1)) + " is no character of this language";
    } else {
        constexpr std::string_view hex = "0123456789ABCDEF";
        what = std::string("the byte 0x") + hex[byte >> 4U] + hex[byte & 15U] +
               (byte < 0x80 ? " stands in no text file" : " is no letter of ASCII; others may stand in comments only");
    }
    add(TokenKind::bad, from);
    // Bad characters come in groups; one error a line is enough.
    if (line_ != lastIllegal_) errors_.error(out_.tokens.back().at, std::move(what));
    lastIllegal_ = line_;
}

LexResult Lexer::run()
{
    while (!atEnd() && !errors_.full()) {
        const char c = peek();
        if (c == '\n') {
            newLine();
        } else if (isBlank(c)) {
            ++at_;
        } else if (c == '/' && peek(1) == '/') {
            lineComment();
        } else if (c == '/' && peek(1) == '*') {
            blockComment();
        } else if (startsWord(c)) {
            word();
        } else if (isDigit(c) || (c == '-' && isDigit(peek(1)))) {
            number();
        } else if (c == '%' && !tokenOnLine_) {
            at_ = endOfLine(at_);  // rpcgen copies such lines to its output
        } else if (c == '#' && !tokenOnLine_) {
            preprocessorLine();
        } else if (isPunctuation(c)) {
            const std::size_t from = at_++;
            add(TokenKind::punctuation, from);
        } else {
            illegal();
        }
    }
    const std::size_t end = at_;
    add(TokenKind::end, end);
    return std::move(out_);
}

}  // namespace

LexResult lex(Module& module, Diagnostics& errors)
{
    return Lexer(module, errors).run();
}

}  // namespace quorva::compiler
