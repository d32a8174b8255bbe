// How the back ends lay out text: comments, literals and calls that keep to the width of a line.
#pragma once

#include "front/source.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::compiler {

inline constexpr std::size_t indentWidth = 4;  // columns of one step

// `text` in lines of at most `width` columns: its own lines, the overlong ones broken at blanks.
std::vector<std::string> wrapped(std::string_view text, std::size_t width);

// `text` as // comment lines, each with `indent` columns before it and a newline behind it; empty for an empty text.
std::string lineComment(std::string_view text, std::size_t indent = 0);

// The same between /* and */, for tools that know no other comments.
std::string blockComment(std::string_view text, std::size_t indent = 0);

// `text` as a string literal of C++, cut into several where a line would become too long; the first line starts in the
// column `indent`, and the others are aligned with it.
std::string literal(std::string_view text, std::size_t indent = 0);

// `head`, the arguments, `tail`: on one line, or with the arguments that do not fit under the first one. The first line
// includes the indentation by `indent` columns.
std::string argumentList(std::size_t indent, const std::string& head, const std::vector<std::string>& arguments,
                         const std::string& tail);

// The words with commas between them.
std::string joined(const std::vector<std::string>& words);

// One line of a definition's body. `notes` and `doc` stand behind the code where they fit, else above it.
struct BodyLine {
    std::string code;
    std::string notes;  // what the back end has to say
    std::string doc;    // what the interface file says
};

// The lines, indented, their comments aligned.
std::string body(const std::vector<BodyLine>& lines, std::size_t indent);

// Sections with one empty line between each two of them; empty sections leave no trace.
std::string sections(const std::vector<std::string>& parts);

// Definitions one below the other: those of one line follow each other closely, others stand between empty lines.
class Paragraphs {
public:
    void add(const BodyLine& line);
    void add(const std::string& text);
    std::string text();

private:
    void endRun();

    std::vector<BodyLine> run_;
    std::vector<std::string> parts_;
};

}  // namespace quorva::compiler
