// Splits the text of an interface file into tokens and comments.
#pragma once

#include "diagnostics.h"
#include "model.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace quorva::compiler {

enum class TokenKind : std::uint8_t {
    end,  // after the last token of the file
    name,
    keyword,  // a word that RFC 4506 reserves
    number,
    punctuation,  // one character
    bad,          // characters that form no token; already reported
};

struct Token {
    TokenKind kind = TokenKind::end;
    bool known = true;  // of a number: the literal is well-formed and `number` is its value
    bool firstOnLine = false;
    unsigned firstComment = 0;  // index of the first comment after the previous token
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
    bool alone = false;  // no token precedes it on its first line
};

// The tokens and the comments of one file, each in the order of the file. Their texts and spans point into the module's
// source, which must outlive them.
struct LexResult {
    std::vector<Token> tokens;  // never empty: the last one is the only `end`
    std::vector<Comment> comments;
};

// Reports malformed tokens to `errors` and continues after them. Adds to `module.skipped` the names in lines that it
// skips ('#define'), and sets `module.incomplete` where the skipped text may define any name ('#include').
LexResult lex(Module& module, Diagnostics& errors);

}  // namespace quorva::compiler
