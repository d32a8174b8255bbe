// Lays out generated text: comments, literals and calls within the width of a line.
#pragma once

#include "front/source.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::compiler {

inline constexpr std::size_t indentWidth = 4;  // columns of one level

// The lines of `text`, each broken at blanks into lines of at most `width` columns. A longer word is not broken.
std::vector<std::string> wrapped(std::string_view text, std::size_t width);

// `text` as // comment lines, each indented by `indent` columns and ended by a newline; empty for an empty text.
std::string lineComment(std::string_view text, std::size_t indent = 0);

// The same between /* and */, for tools that know no // comments.
std::string blockComment(std::string_view text, std::size_t indent = 0);

// `text` as a C++ string literal, split into several if the line would become too long. The first one starts in the
// column `indent`, and the others are aligned with it.
std::string literal(std::string_view text, std::size_t indent = 0);

// `head`, the arguments and `tail`. Arguments that do not fit on the line continue below the first one. The result
// includes the indentation of the first line by `indent` columns.
std::string argumentList(std::size_t indent, const std::string& head, const std::vector<std::string>& arguments,
                         const std::string& tail);

// The number as 0x and eight hexadecimal digits.
std::string hexadecimal(std::int64_t number);

// The items, separated by ", ".
std::string joined(const std::vector<std::string>& items);

// The items, separated by blanks, as many on each line as fit; every line is indented by `indent` columns and ends with
// a newline. Items must be ASCII.
std::string filledLines(const std::vector<std::string>& items, std::size_t indent);

// One line of a definition's body. Its comments follow the code if they fit on the line, else they precede it.
struct BodyLine {
    std::string code;
    std::string notes;  // the comment of the emitter: cases, bounds
    std::string doc;    // the comment of the interface file
};

// The lines, indented by `indent` columns, with neighbouring comments aligned.
std::string body(const std::vector<BodyLine>& lines, std::size_t indent);

// The sections with an empty line between each two; empty sections are left out.
std::string sections(const std::vector<std::string>& parts);

// Collects definitions: consecutive ones of one line form a group, others are separated by empty lines.
class Paragraphs {
public:
    void add(const BodyLine& line);
    void add(const std::string& text);

    // All that was added, as one text.
    std::string text();

private:
    void endGroup();

    std::vector<BodyLine> group;  // definitions of one line, not yet in parts
    std::vector<std::string> parts;
};

}  // namespace quorva::compiler
