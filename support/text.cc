// UTF-8, lines and edit distance.
#include "text.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace quorva::support {

std::size_t utf8SequenceLength(std::string_view text)
{
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const auto follows = [&](std::size_t i, unsigned low = 0x80, unsigned high = 0xBF) {
        return i < text.size() && byte(i) >= low && byte(i) <= high;
    };
    if (text.empty()) return 0;
    const unsigned lead = byte(0);
    if (lead < 0x80) return 1;
    if (lead >= 0xC2 && lead <= 0xDF) return follows(1) ? 2 : 0;
    if (lead >= 0xE0 && lead <= 0xEF) {
        const bool second = follows(1, lead == 0xE0 ? 0xA0 : 0x80, lead == 0xED ? 0x9F : 0xBF);
        return second && follows(2) ? 3 : 0;
    }
    if (lead >= 0xF0 && lead <= 0xF4) {
        const bool second = follows(1, lead == 0xF0 ? 0x90 : 0x80, lead == 0xF4 ? 0x8F : 0xBF);
        return second && follows(2) && follows(3) ? 4 : 0;
    }
    return 0;
}

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const std::size_t length = utf8SequenceLength(text);
        if (length == 0) return false;
        text.remove_prefix(length);
    }
    return true;
}

std::size_t columns(std::string_view text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !continuesCharacter(byte); }));
}

std::vector<std::string_view> linesOf(std::string_view text)
{
    std::vector<std::string_view> lines;
    for (std::size_t end; (end = text.find('\n')) != std::string_view::npos; text.remove_prefix(end + 1))
        lines.push_back(text.substr(0, end));
    lines.push_back(text);
    return lines;
}

std::string lowerCase(std::string_view text)
{
    std::string lower(text);
    for (char& letter : lower)
        if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
    return lower;
}

std::size_t editDistance(std::string_view from, std::string_view to)
{
    const std::size_t width = to.size() + 1;
    std::vector<std::size_t> rows(3 * width);  // the last three rows of the matrix of distances between prefixes
    std::size_t* beforeAbove = rows.data();
    std::size_t* above = beforeAbove + width;
    std::size_t* row = above + width;
    std::iota(above, above + width, std::size_t{0});
    for (std::size_t i = 1; i <= from.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= to.size(); ++j) {
            const bool same = from[i - 1] == to[j - 1];
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && from[i - 1] == to[j - 2] && from[i - 2] == to[j - 1])
                row[j] = std::min(row[j], beforeAbove[j - 2] + 1);
        }
        std::swap(beforeAbove, above);
        std::swap(above, row);
    }
    return above[to.size()];
}

}  // namespace quorva::support
