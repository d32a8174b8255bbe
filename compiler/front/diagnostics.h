// Collects the faults of a run, or its warnings, and prints them with their places.
#pragma once

#include "model.h"

#include <cstddef>
#include <iosfwd>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::compiler {

// A second place that belongs to a fault, such as the first of two definitions.
struct Note {
    Span at;
    std::string sentence;
};

// The sources that spans point into must outlive the collection.
class Diagnostics {
public:
    // A file with this many faults is no interface file that somebody is going to mend from the list.
    static constexpr std::size_t limit = 100;

    Diagnostics() = default;

    // A collection of what `word` calls it ("warning") instead of errors, with a limit of its own.
    Diagnostics(std::string_view word, std::size_t limit) : word_(word), limit_(limit) {}

    void error(const Span& at, std::string sentence, std::optional<Note> note = std::nullopt);

    std::size_t count() const { return faults_.size(); }

    // Whether the limit is reached: further faults are dropped, so whoever looks for them may stop.
    bool full() const { return faults_.size() >= limit_; }

    // Ordered by file and place, whatever the order in which they were found.
    void print(std::ostream& out) const;

private:
    struct Fault {
        Span at;
        std::string sentence;
        std::optional<Note> note;
    };

    std::string word_ = "error";
    std::size_t limit_ = limit;
    std::vector<Fault> faults_;
};

// A name from an input as messages show it: in quotes, cut where it is overlong.
std::string inQuotes(std::string_view name);

// "; did you mean 'X'?" with the candidate that is nearest to the name, or nothing where none is near.
std::string suggestion(std::string_view name, const std::vector<std::string_view>& candidates);

// "A -> B -> A" for the names A and B, with dots in the middle of a long circle.
std::string circle(const std::vector<std::string_view>& names);

// The place right behind a span, where something is missing.
Span behind(const Span& span);

}  // namespace quorva::compiler
