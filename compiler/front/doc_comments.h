// Turns comments into the documentation of the tokens that they belong to.
#pragma once

#include "lexer.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::compiler {

// One line of a comment's text: valid UTF-8 without comment marks, decoration and control characters.
struct DocLine {
    std::string text;
    Span at;  // of the comment
};

// The comments of one file. Each function takes the comments that it returns, so no comment documents two things.
// Tokens are given by their index. The LexResult must outlive the object.
class DocComments {
public:
    explicit DocComments(const LexResult& lexedFile) : file(lexedFile), taken(lexedFile.comments.size(), false) {}

    // The module's documentation: the first comments of the file, unless they are directly above a definition.
    std::vector<DocLine> moduleComments();

    // The comments directly above the token, up to an empty line.
    std::vector<DocLine> above(std::size_t token);

    // Appends the comments after the token on its line, and the lines below that continue them in the same column.
    void appendAfter(std::vector<DocLine>& doc, std::size_t token);

    // Appends every comment between two tokens.
    void appendBetween(std::vector<DocLine>& doc, std::size_t first, std::size_t last);

private:
    // Indices of the comments between the token and the one before it.
    struct Range {
        std::size_t begin = 0;
        std::size_t end = 0;
    };
    Range commentsBefore(std::size_t token) const;
    void take(std::vector<DocLine>& doc, std::size_t comment);

    const LexResult& file;
    std::vector<bool> taken;  // by index of the comment
};

// The lines as one text, joined by '\n', without empty lines at its start and end.
std::string textOf(const std::vector<DocLine>& lines);

// The mark that the line begins with, such as "@provisional"; empty if it begins with none.
std::string_view markOf(const DocLine& line);

}  // namespace quorva::compiler
