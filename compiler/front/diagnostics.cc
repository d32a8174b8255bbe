// Prints diagnostics, each with an excerpt of the source and a caret below it or as JSON, and the text that messages
// share.
#include "diagnostics.h"

#include "support/text.h"

#include <algorithm>
#include <ostream>
#include <tuple>

namespace quorva::compiler {

namespace {

using support::continuesCharacter;

constexpr std::size_t longestName = 80;      // bytes; a longer name is cut
constexpr std::size_t longestExcerpt = 160;  // bytes of a source line that are printed
constexpr std::size_t excerptLead = 60;      // bytes before the caret in the excerpt of a longer line

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

// Control characters in a malformed file must not reach the terminal.
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

// A JSON string. A byte that is not part of UTF-8, as in the name of a file, becomes U+FFFD.
std::string jsonString(std::string_view text)
{
    constexpr std::string_view hex = "0123456789abcdef";
    std::string out = "\"";
    while (!text.empty()) {
        const std::size_t length = std::max<std::size_t>(1, support::utf8SequenceLength(text));
        const auto byte = static_cast<unsigned char>(text[0]);
        if (byte < 0x20) {
            out.append("\\u00").append(1, hex[byte >> 4U]).append(1, hex[byte & 15U]);
        } else if (byte >= 0x80 && length == 1) {
            out += "\\ufffd";
        } else {
            if (byte == '"' || byte == '\\') out += '\\';
            out += text.substr(0, length);
        }
        text.remove_prefix(length);
    }
    return out + '"';
}

// The members of an object, without its braces.
std::string jsonMembers(const Span& at, std::string_view sentence)
{
    const std::size_t end = at.column + std::max(1U, at.length);
    return "\"file\":" + jsonString(at.source->path) + ",\"line\":" + std::to_string(at.line) +
           ",\"column\":" + std::to_string(at.column) + ",\"endColumn\":" + std::to_string(end) +
           ",\"message\":" + jsonString(sentence);
}

}  // namespace

void Diagnostics::error(const Span& at, std::string sentence, std::optional<Note> note)
{
    if (!full()) entries.push_back({at, std::move(sentence), std::move(note)});
}

std::vector<const Diagnostics::Entry*> Diagnostics::ordered() const
{
    std::vector<const Entry*> list;
    list.reserve(entries.size());
    for (const Entry& entry : entries) list.push_back(&entry);
    std::stable_sort(list.begin(), list.end(), [](const Entry* a, const Entry* b) {
        return std::tie(a->at.source->path, a->at.line, a->at.column) <
               std::tie(b->at.source->path, b->at.line, b->at.column);
    });
    return list;
}

std::string Diagnostics::excess() const
{
    return full() ? "too many " + severity + "s; only " + std::to_string(limit) + " are shown" : "";
}

void Diagnostics::print(std::ostream& out) const
{
    for (const Entry* entry : ordered()) {
        printOne(out, entry->at, severity, entry->sentence);
        if (entry->note) printOne(out, entry->note->at, "note", entry->note->sentence);
    }
    if (full()) out << "quorvaxdrc: " << excess() << '\n';
}

void Diagnostics::printJson(std::ostream& out) const
{
    for (const Entry* entry : ordered()) {
        out << "{\"severity\":" << jsonString(severity) << ',' << jsonMembers(entry->at, entry->sentence)
            << ",\"notes\":[";
        if (entry->note) out << '{' << jsonMembers(entry->note->at, entry->note->sentence) << '}';
        out << "]}\n";
    }
    if (full()) out << jsonMessage("note", excess());
}

std::string jsonMessage(std::string_view severity, std::string_view sentence)
{
    return "{\"severity\":" + jsonString(severity) + ",\"message\":" + jsonString(sentence) + "}\n";
}

std::string inQuotes(std::string_view name)
{
    std::string shown = "'";
    for (const char c : name.substr(0, longestName)) shown += printable(c);
    if (name.size() > longestName) shown += "...";
    return shown + "'";
}

std::string_view kindName(DefinitionKind kind)
{
    switch (kind) {
    case DefinitionKind::constant: return "constant";
    case DefinitionKind::enumeration: return "enumeration";
    case DefinitionKind::structure: return "struct";
    case DefinitionKind::discriminatedUnion: return "union";
    case DefinitionKind::typeDefinition: break;
    }
    return "type";
}

std::string describe(const Definition& definition)
{
    const std::string kind(kindName(definition.kind));
    return definition.name.empty() ? kind : kind + " " + inQuotes(definition.name);
}

std::string suggestion(std::string_view name, const std::vector<std::string_view>& candidates)
{
    constexpr std::size_t mostCandidates = 20000;  // several times the API; more would take seconds
    if (candidates.size() > mostCandidates) return "";
    const std::size_t farthest = std::min<std::size_t>(3, std::max<std::size_t>(1, name.size() / 4));
    std::size_t best = farthest + 1;
    std::string_view nearest;
    const std::string lowered = support::lowerCase(name);
    for (const std::string_view candidate : candidates) {
        const std::size_t longer = std::max(name.size(), candidate.size());
        if (longer - std::min(name.size(), candidate.size()) > farthest || candidate == name) continue;
        const bool differsInCase = support::lowerCase(candidate) == lowered;
        const std::size_t distance = differsInCase ? 0 : support::editDistance(name, candidate);
        if (distance < best || (distance == best && candidate < nearest)) {
            best = distance;
            nearest = candidate;
        }
    }
    return best > farthest ? "" : "; did you mean " + inQuotes(nearest) + "?";
}

std::string cyclePath(const std::vector<std::string_view>& names)
{
    constexpr std::size_t shown = 4;  // names at either end
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

Span positionAfter(const Span& span)
{
    return {span.source, span.line, span.column + span.length, 1};
}

}  // namespace quorva::compiler
