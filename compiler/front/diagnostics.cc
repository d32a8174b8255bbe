// Keeps the faults, sorts them, and draws the line and the caret below each.
#include "diagnostics.h"

#include <algorithm>
#include <numeric>
#include <ostream>
#include <tuple>

namespace quorva::compiler {

namespace {

constexpr std::size_t longestName = 80;      // that is shown in full
constexpr std::size_t longestExcerpt = 160;  // bytes of a source line that are shown
constexpr std::size_t excerptLead = 60;      // bytes before the caret where a line is cut

std::string_view lineOf(const Span& span)
{
    std::string_view text = span.source->text;
    for (unsigned line = 1; line < span.line; ++line) {
        const auto end = text.find('\n');
        if (end == std::string_view::npos) return {};
        text.remove_prefix(end + 1);
    }
    return text.substr(0, text.find('\n'));
}

bool continuesCharacter(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0U) == 0x80U;
}

// A terminal must survive what a hostile file holds.
char printable(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return (byte < 0x20 && c != '\t') || byte == 0x7F ? '?' : c;
}

void printExcerpt(std::ostream& out, const Span& span)
{
    std::string_view line = lineOf(span);
    if (line.ends_with('\r')) line.remove_suffix(1);

    const std::size_t caret = span.column > 0 ? span.column - 1 : 0;
    std::size_t first = 0;
    if (line.size() > longestExcerpt && caret > excerptLead) first = std::min(caret, line.size()) - excerptLead;
    while (first > 0 && continuesCharacter(line[first])) --first;
    std::size_t last = std::min(line.size(), first + longestExcerpt);
    while (last < line.size() && last > first && continuesCharacter(line[last])) --last;

    const std::string_view lead = first > 0 ? "..." : "";
    std::string shown(lead);
    std::string marks(lead.size(), ' ');
    for (std::size_t at = first; at < last; ++at) {
        shown += printable(line[at]);
        if (at < caret && !continuesCharacter(line[at])) marks += line[at] == '\t' ? '\t' : ' ';
    }
    if (last < line.size()) shown += "...";

    marks += '^';
    for (std::size_t at = caret + 1; at < std::min<std::size_t>(caret + span.length, last); ++at) {
        if (!continuesCharacter(line[at])) marks += '~';
    }
    out << shown << '\n' << marks << '\n';
}

void printOne(std::ostream& out, const Span& at, std::string_view severity, std::string_view sentence)
{
    out << at.source->path << ':' << at.line << ':' << at.column << ": " << severity << ": " << sentence << '\n';
    printExcerpt(out, at);
}

// Edits that turn one name into the other: letters put in, left out, exchanged, or swapped with the next.
std::size_t distance(std::string_view a, std::string_view b, std::vector<std::size_t>& scratch)
{
    const std::size_t width = b.size() + 1;
    scratch.resize(3 * width);
    std::size_t* before = scratch.data();
    std::size_t* above = before + width;
    std::size_t* row = above + width;
    std::iota(above, above + width, std::size_t{0});
    for (std::size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const bool same = a[i - 1] == b[j - 1];
            row[j] = std::min({above[j] + 1, row[j - 1] + 1, above[j - 1] + (same ? 0 : 1)});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1])
                row[j] = std::min(row[j], before[j - 2] + 1);
        }
        std::swap(before, above);
        std::swap(above, row);
    }
    return above[b.size()];
}

bool equalIgnoringCase(std::string_view a, std::string_view b)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [&](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace

void Diagnostics::error(const Span& at, std::string sentence, std::optional<Note> note)
{
    if (!full()) faults_.push_back({at, std::move(sentence), std::move(note)});
}

void Diagnostics::print(std::ostream& out) const
{
    std::vector<const Fault*> ordered;
    ordered.reserve(faults_.size());
    for (const Fault& fault : faults_) ordered.push_back(&fault);
    std::stable_sort(ordered.begin(), ordered.end(), [](const Fault* a, const Fault* b) {
        return std::tie(a->at.source->path, a->at.line, a->at.column) <
               std::tie(b->at.source->path, b->at.line, b->at.column);
    });
    for (const Fault* fault : ordered) {
        printOne(out, fault->at, word_, fault->sentence);
        if (fault->note) printOne(out, fault->note->at, "note", fault->note->sentence);
    }
    if (full()) out << "quorvaxdrc: too many " << word_ << "s; only " << limit_ << " are shown\n";
}

std::string inQuotes(std::string_view name)
{
    std::string shown = "'";
    for (const char c : name.substr(0, longestName)) shown += printable(c);
    if (name.size() > longestName) shown += "...";
    return shown + "'";
}

std::string suggestion(std::string_view name, const std::vector<std::string_view>& candidates)
{
    constexpr std::size_t mostCandidates = 20000;  // several times a whole library; more would cost seconds
    if (candidates.size() > mostCandidates) return "";
    const std::size_t farthest = std::min<std::size_t>(3, std::max<std::size_t>(1, name.size() / 4));
    std::size_t best = farthest + 1;
    std::string_view nearest;
    std::vector<std::size_t> scratch;
    for (const std::string_view candidate : candidates) {
        const std::size_t longer = std::max(name.size(), candidate.size());
        if (longer - std::min(name.size(), candidate.size()) > farthest || candidate == name) continue;
        const std::size_t away = equalIgnoringCase(name, candidate) ? 0 : distance(name, candidate, scratch);
        if (away < best || (away == best && candidate < nearest)) {
            best = away;
            nearest = candidate;
        }
    }
    return best > farthest ? "" : "; did you mean " + inQuotes(nearest) + "?";
}

std::string circle(const std::vector<std::string_view>& names)
{
    constexpr std::size_t shown = 4;  // at either end
    std::string path;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i == shown && names.size() > 2 * shown + 1) {
            path += "... -> ";
            i = names.size() - shown;
        }
        path.append(names[i]).append(" -> ");
    }
    return path.append(names.front());
}

Span behind(const Span& span)
{
    return {span.source, span.line, span.column + span.length, 1};
}

}  // namespace quorva::compiler
