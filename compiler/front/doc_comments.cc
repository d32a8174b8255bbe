// Decides which comment documents what, and cleans the text of comments.
#include "doc_comments.h"

#include "support/text.h"

#include <algorithm>

namespace quorva::compiler {

namespace {

// Comments reach C++ string literals and JSON, so malformed UTF-8 and control characters are removed here.
std::string cleanText(std::string_view text)
{
    std::string clean;
    while (!text.empty()) {
        const std::size_t length = support::utf8SequenceLength(text);
        if (length == 0) {
            clean += "\xEF\xBF\xBD";
        } else if (text.front() == '\t') {
            clean += ' ';
        } else if (static_cast<unsigned char>(text.front()) >= 0x20 && text.front() != 0x7F) {
            clean += text.substr(0, length);
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return clean;
}

bool isDecoration(std::string_view text)
{
    return !text.empty() && text.find_first_not_of("*-=/+_~ ") == std::string_view::npos;
}

// Appends the lines of one comment, without empty ones at its start and end.
void append(std::vector<DocLine>& lines, const Comment& comment)
{
    const std::size_t before = lines.size();
    std::size_t pending = 0;  // empty lines that count only if text follows
    std::string_view rest = comment.text;
    bool first = true;
    while (true) {
        const auto end = rest.find('\n');
        std::string_view line = rest.substr(0, end);
        if (comment.block) {
            const auto mark = line.find_first_not_of(first ? "*!" : " \t");
            line.remove_prefix(std::min(mark, line.size()));
            if (!first) line.remove_prefix(std::min(line.find_first_not_of('*'), line.size()));
            if (end == std::string_view::npos) line = line.substr(0, line.find_last_not_of('*') + 1);
        } else if (line.starts_with('/') || line.starts_with('!')) {
            line.remove_prefix(1);
        }
        if (line.starts_with(' ')) line.remove_prefix(1);
        line = line.substr(0, line.find_last_not_of(" \t\r") + 1);
        if (isDecoration(line)) line = {};

        // Consecutive `//` comments are one text, in which an empty one separates paragraphs.
        if (line.empty() && comment.block) {
            ++pending;
        } else {
            for (; pending > 0; --pending) {
                if (lines.size() > before) lines.push_back({"", comment.at});
            }
            lines.push_back({cleanText(line), comment.at});
        }
        first = false;
        if (end == std::string_view::npos) break;
        rest.remove_prefix(end + 1);
    }
}

}  // namespace

DocComments::Range DocComments::commentsBefore(std::size_t token) const
{
    const std::vector<Token>& tokens = file.tokens;
    return {tokens[token].firstComment,
            token + 1 < tokens.size() ? tokens[token + 1].firstComment : file.comments.size()};
}

void DocComments::take(std::vector<DocLine>& doc, std::size_t comment)
{
    taken[comment] = true;
    append(doc, file.comments[comment]);
}

std::vector<DocLine> DocComments::moduleComments()
{
    const auto [begin, end] = commentsBefore(0);
    if (begin == end) return {};
    const std::vector<Comment>& comments = file.comments;
    std::size_t last = begin;
    while (last + 1 < end && comments[last + 1].at.line <= comments[last].lastLine + 1) ++last;
    const Token& next = file.tokens.front();
    const bool touches = next.kind != TokenKind::end && last + 1 == end && next.at.line <= comments[last].lastLine + 1;
    if (touches && !next.is("import")) return {};
    std::vector<DocLine> doc;
    for (std::size_t i = begin; i <= last; ++i) take(doc, i);
    return doc;
}

std::vector<DocLine> DocComments::above(std::size_t token)
{
    const auto [begin, end] = commentsBefore(token);
    const bool opensBody = token > 0 && file.tokens[token - 1].is("{");
    unsigned below = file.tokens[token].at.line;
    std::size_t from = end;
    while (from > begin) {
        const Comment& comment = file.comments[from - 1];
        if (taken[from - 1] || comment.lastLine + 1 < below || !(comment.alone || opensBody)) break;
        below = comment.at.line;
        --from;
    }
    std::vector<DocLine> doc;
    for (; from < end; ++from) take(doc, from);
    return doc;
}

void DocComments::appendAfter(std::vector<DocLine>& doc, std::size_t token)
{
    if (token + 1 >= file.tokens.size()) return;
    const auto [begin, end] = commentsBefore(token + 1);
    const Comment* above = nullptr;
    for (std::size_t i = begin; i < end; ++i) {
        const Comment& comment = file.comments[i];
        const bool isOnLine = comment.at.line == file.tokens[token].at.line;
        const bool continues = above && !above->block && !comment.block && comment.alone &&
                               comment.at.line == above->at.line + 1 && comment.at.column == above->at.column;
        if (taken[i] || !(isOnLine || continues)) return;
        take(doc, i);
        above = &comment;
    }
}

void DocComments::appendBetween(std::vector<DocLine>& doc, std::size_t first, std::size_t last)
{
    if (first >= last) return;
    for (std::size_t i = commentsBefore(first + 1).begin; i < commentsBefore(last).end; ++i)
        if (!taken[i]) take(doc, i);
}

std::string textOf(const std::vector<DocLine>& lines)
{
    std::string text;
    for (const DocLine& line : lines) text += line.text + '\n';
    const auto end = text.find_last_not_of('\n');
    const auto start = text.find_first_not_of('\n');
    return end == std::string::npos ? "" : text.substr(start, end + 1 - start);
}

std::string_view markOf(const DocLine& line)
{
    std::string_view text = line.text;
    if (!text.starts_with('@')) return {};
    return text.substr(0, text.find_first_of(" \t:,"));
}

}  // namespace quorva::compiler
