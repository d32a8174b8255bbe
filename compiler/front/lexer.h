// Cuts the text of an interface file into tokens and the comments between them.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace quorva::compiler {

enum class TokenKind : std::uint8_t {
    end,  // behind the last token of the file
    name,
    keyword,  // a word of RFC 4506 that nothing can be named
    number,
    punctuation,  // one character
    bad,          // characters of no token, already reported
};

struct Token {
    TokenKind kind = TokenKind::end;
    bool known = true;  // of a number: the literal is well-formed and `number` is its value
    bool firstOnLine = false;
    unsigned firstComment = 0;  // index of the first comment behind the token before this one
    Span at;
    std::string_view text;  // within the source's text
    std::int64_t number = 0;

    bool is(std::string_view word) const { return text == word && kind != TokenKind::end && kind != TokenKind::bad; }
};

struct Comment {
    std::string_view text;  // without the comment marks
    Span at;                // of its first line
    unsigned lastLine = 0;
    bool block = false;  // written between slash-star and star-slash
    bool alone = false;  // no token stands before it on its first line
};

struct Lexed {
    std::vector<Token> tokens;  // never empty: the last one is the only `end`
    std::vector<Comment> comments;
};

// One line of a comment's text, cleaned of marks, decoration and control characters, in valid UTF-8.
struct DocLine {
    std::string text;
    Span at;  // of the comment
};

// Names in lines that are skipped ('#define') are noted in the module, as is text that may define anything
// ('#include').
Lexed lex(Module& module, Diagnostics& faults);

// Appends the lines of one comment, without empty ones at its start and end.
void appendDoc(std::vector<DocLine>& lines, const Comment& comment);

}  // namespace quorva::compiler
