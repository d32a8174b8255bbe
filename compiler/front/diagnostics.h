// Collects the errors or the warnings of a run, and prints them with the source lines that they refer to.
#pragma once

#include "model.h"

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::compiler {

// A second position that belongs to a diagnostic, such as the first of two definitions.
struct Note {
    Span at;
    std::string sentence;
};

// A list of diagnostics of one severity. The sources that their spans point into must outlive it.
class Diagnostics {
public:
    // The default limit. A file with more errors is seldom an interface file.
    static constexpr std::size_t defaultLimit = 100;

    // A list of at most `defaultLimit` errors.
    Diagnostics() = default;

    // A list of another severity ("warning"), with a limit of its own.
    Diagnostics(std::string_view listSeverity, std::size_t listLimit) : severity(listSeverity), limit(listLimit) {}

    // Adds a diagnostic, of whatever severity the list has; dropped once the list is full.
    void error(const Span& at, std::string sentence, std::optional<Note> note = std::nullopt);

    std::size_t count() const { return entries.size(); }

    // True if the limit is reached. Checks may stop then.
    bool full() const { return entries.size() >= limit; }

    // Prints the list ordered by file, line and column.
    void print(std::ostream& out) const;

    // Prints the list in the same order, each diagnostic as one line of JSON: severity, message, its place, notes.
    void printJson(std::ostream& out) const;

private:
    struct Entry {
        Span at;
        std::string sentence;
        std::optional<Note> note;
    };

    std::vector<const Entry*> ordered() const;
    std::string excess() const;

    std::string severity = "error";
    std::size_t limit = defaultLimit;
    std::vector<Entry> entries;
};

// A line of JSON for a message without a place.
std::string jsonMessage(std::string_view severity, std::string_view sentence);

// The functions below return text for messages.

// A name from an input in quotes: cut where it is too long, control characters replaced by '?'.
std::string inQuotes(std::string_view name);

// "enumeration", "struct", ...; "type" for a typedef.
std::string_view kindName(DefinitionKind kind);

// Kind and name: "enumeration 'DoorState'"; the kind alone while the name is empty.
std::string describe(const Definition& definition);

// "; did you mean 'X'?" with the candidate that is most like the name; empty if no candidate is.
std::string suggestion(std::string_view name, const std::vector<std::string_view>& candidates);

// A cycle of names: "A -> B -> A" for A and B. The middle of a long cycle is left out.
std::string cyclePath(const std::vector<std::string_view>& names);

// The position just after a span, where something is missing.
Span positionAfter(const Span& span);

}  // namespace quorva::compiler
