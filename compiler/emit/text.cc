// Line breaks, escapes and aligned comments.
#include "text.h"

#include "support/text.h"

#include <algorithm>

namespace quorva::compiler {

namespace {

using support::columns;
using support::linesOf;

std::string blanks(std::size_t count)
{
    return std::string(count, ' ');
}

std::string_view withoutTrailingBlanks(std::string_view text)
{
    const std::size_t last = text.find_last_not_of(" \t");
    return last == std::string_view::npos ? std::string_view() : text.substr(0, last + 1);
}

// The end of the first line of at most `width` columns: before a blank, or after a word that is longer.
std::size_t breakOf(std::string_view text, std::size_t width)
{
    const std::size_t indentation = std::min(text.find_first_not_of(' '), text.size());
    std::size_t end = std::string_view::npos;
    for (std::size_t at = text.find(' ', indentation); at != std::string_view::npos; at = text.find(' ', at + 1)) {
        if (end != std::string_view::npos && columns(text.substr(0, at)) > width) break;
        end = at;
    }
    return std::min(end, text.size());
}

// A comment line that ends in a backslash would continue on the line below it.
std::string safeAtLineEnd(std::string text)
{
    if (text.ends_with('\\') || text.ends_with("\?\?/")) text += '.';
    return text;
}

// Neither mark of a block comment may occur inside one.
std::string safeInBlock(std::string text)
{
    for (const char* mark : {"*/", "/*"})
        for (std::size_t at; (at = text.find(mark)) != std::string::npos;) text.insert(at + 1, " ");
    return text;
}

// Newlines are the only control characters in documentation.
std::string escaped(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        if (c == '"' || c == '\\' || (c == '?' && out.ends_with('?')))  // two '?' may begin a trigraph
            (out += '\\') += c;
        else if (c == '\n')
            out += "\\n";
        else
            out += c;
    }
    return out;
}

std::string joinedWith(const std::string& first, const std::string& second, const char* between)
{
    return first.empty() || second.empty() ? first + second : first + between + second;
}

// A line of a body with its comments assigned to their places.
struct PlacedLine {
    std::string above;  // comment lines that precede the code
    std::string code;
    std::string beside;  // comment that follows the code on its line
};

PlacedLine placed(const BodyLine& line, std::size_t indent)
{
    const auto fits = [&](const std::string& comment) {
        return comment.find('\n') == std::string::npos &&
               indent + columns(line.code) + columns("  // ") + columns(comment) <= lineWidth;
    };
    const std::string all = joinedWith(line.notes, line.doc, "; ");
    if (fits(all)) return {"", line.code, all};
    if (fits(line.notes)) return {line.doc, line.code, line.notes};
    return {joinedWith(line.notes, line.doc, "\n"), line.code, ""};
}

// Consecutive lines whose comments start in one column.
struct AlignedLines {
    std::size_t end = 0;  // index after the last line
    std::size_t column = 0;
};

// The longest such group from the line `first` on.
AlignedLines alignedLines(const std::vector<PlacedLine>& lines, std::size_t first, std::size_t indent)
{
    AlignedLines group{first, 0};
    std::size_t widestCode = 0;
    std::size_t widestComment = 0;
    for (; group.end < lines.size(); ++group.end) {
        const auto& [above, code, beside] = lines[group.end];
        if (beside.empty() || (group.end > first && !above.empty())) break;
        widestCode = std::max(widestCode, columns(code));
        widestComment = std::max(widestComment, columns(beside));
        if (indent + widestCode + columns("  // ") + widestComment > lineWidth) break;
        group.column = widestCode;
    }
    return group;
}

}  // namespace

std::vector<std::string> wrapped(std::string_view text, std::size_t width)
{
    std::vector<std::string> out;
    for (std::string_view line : linesOf(text)) {
        line = withoutTrailingBlanks(line);
        while (columns(line) > width) {
            const std::size_t end = breakOf(line, width);
            if (end == line.size()) break;
            out.emplace_back(withoutTrailingBlanks(line.substr(0, end)));
            line.remove_prefix(std::min(line.find_first_not_of(' ', end), line.size()));
        }
        out.emplace_back(line);
    }
    return out;
}

std::string lineComment(std::string_view text, std::size_t indent)
{
    if (text.empty()) return "";
    std::string out;
    for (const std::string& line : wrapped(text, lineWidth - indent - columns("// ")))
        out += blanks(indent) + (line.empty() ? "//" : "// " + safeAtLineEnd(line)) + "\n";
    return out;
}

std::string blockComment(std::string_view text, std::size_t indent)
{
    if (text.empty()) return "";
    const std::size_t width = lineWidth - indent - columns("/*  */");
    const std::vector<std::string> lines = wrapped(safeInBlock(std::string(text)), width);
    if (lines.size() == 1) return blanks(indent) + "/* " + lines.front() + " */\n";

    std::string out = blanks(indent) + "/*\n";
    for (const std::string& line : lines) out += blanks(indent) + (line.empty() ? " *" : " * " + line) + "\n";
    return out + blanks(indent) + " */\n";
}

std::string literal(std::string_view text, std::size_t indent)
{
    const std::string whole = '"' + escaped(text) + '"';
    if (indent + columns(whole) + 2 <= lineWidth) return whole;

    std::string out;
    const std::vector<std::string_view> lines = linesOf(text);
    for (std::size_t at = 0; at < lines.size(); ++at) {
        const std::vector<std::string> pieces = wrapped(lines[at], lineWidth - indent - columns("\" \\n\"},"));
        for (std::size_t piece = 0; piece < pieces.size(); ++piece) {
            const bool endsPiece = piece + 1 < pieces.size();
            const bool endsLine = !endsPiece && at + 1 < lines.size();
            if (!out.empty()) out += "\n" + blanks(indent);
            out += '"' + escaped(pieces[piece]) + (endsPiece ? " " : "") + (endsLine ? "\\n" : "") + '"';
        }
    }
    return out;
}

std::string argumentList(std::size_t indent, const std::string& head, const std::vector<std::string>& arguments,
                         const std::string& tail)
{
    std::string out = blanks(indent) + head;
    const std::string start = blanks(columns(out));
    std::size_t column = columns(out);
    for (std::size_t at = 0; at < arguments.size(); ++at) {
        const std::string argument = arguments[at] + (at + 1 < arguments.size() ? "," : tail);
        const bool isFirst = at == 0;
        if (!isFirst && column + 1 + columns(argument) > lineWidth) {
            out += "\n" + start;
            column = columns(start);
        } else if (!isFirst) {
            out += ' ';
            ++column;
        }
        out += argument;
        column += columns(argument);
    }
    return arguments.empty() ? out + tail : out;
}

std::string hexadecimal(std::int64_t number)
{
    std::string digits;
    for (int shift = 28; shift >= 0; shift -= 4) digits += "0123456789abcdef"[(number >> shift) & 15];
    return "0x" + digits;
}

std::string joined(const std::vector<std::string>& items)
{
    std::string out;
    for (const std::string& item : items) out += (out.empty() ? "" : ", ") + item;
    return out;
}

std::string filledLines(const std::vector<std::string>& items, std::size_t indent)
{
    std::string out, line;
    for (const std::string& item : items) {
        if (!line.empty() && indent + line.size() + 1 + item.size() > lineWidth) {
            out += blanks(indent) + line + "\n";
            line.clear();
        }
        line += (line.empty() ? "" : " ") + item;
    }
    return line.empty() ? out : out + blanks(indent) + line + "\n";
}

std::string body(const std::vector<BodyLine>& lines, std::size_t indent)
{
    std::vector<PlacedLine> all;
    for (const BodyLine& line : lines) all.push_back(placed(line, indent));

    std::string out;
    AlignedLines group;
    for (std::size_t at = 0; at < all.size(); ++at) {
        const auto& [above, code, beside] = all[at];
        if (at == group.end) group = alignedLines(all, at, indent);
        out += lineComment(above, indent) + blanks(indent) + code;
        if (at < group.end) out += blanks(group.column - columns(code)) + "  // " + safeAtLineEnd(beside);
        if (at == group.end) ++group.end;  // a line without a comment beside it
        out += '\n';
    }
    return out;
}

std::string sections(const std::vector<std::string>& parts)
{
    std::string out;
    for (const std::string& part : parts)
        if (!part.empty()) out += (out.empty() ? "" : "\n") + part;
    return out;
}

void Paragraphs::add(const BodyLine& line)
{
    if (placed(line, 0).above.empty())
        group.push_back(line);
    else
        add(body({line}, 0));
}

void Paragraphs::add(const std::string& text)
{
    endGroup();
    parts.push_back(text);
}

std::string Paragraphs::text()
{
    endGroup();
    return sections(parts);
}

void Paragraphs::endGroup()
{
    if (!group.empty()) parts.push_back(body(group, 0));
    group.clear();
}

}  // namespace quorva::compiler
