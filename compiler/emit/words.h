// What the codec's units are written with: names, the parts of objects, the labels of a switch, the lines of the trace.
#pragma once

#include "plan/structure.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <unordered_map>

namespace quorva::compiler {

// How names are written inside a routine. The words of <quorvapixdr/walk.h> and the interface's names stand plainly
// there unless they are spelled alike.
class Spelling {
public:
    explicit Spelling(const Module& module) : visible_(module) {}

    std::string word(const std::string& name) const;
    std::string global(const std::string& name) const;  // of the interface
    std::string coder(const std::string& name) const;
    bool needsCoderAlias() const { return !visible_.contains("coder"); }

    // Within the name space of the words, where they hide the interface's names.
    Spelling amongWords() const;

private:
    VisibleNames visible_;
    bool isAmongWords_ = false;
};

// Whether a routine of the type has a body, which codes what it holds.
bool hasBody(const Definition& definition);

// The bound of a declaration: as it was written, if it is a constant.
std::string bound(const Declaration& declaration, const Spelling& spelling);

// The object's part `place`, with `tag` as it stands in C++.
std::string part(std::size_t indent, const std::string& before, const Declaration& declaration, const std::string& tag,
                 const std::string& place, const std::string& after, const Spelling& spelling);

// The labels of a union's switch: enumerators where the discriminant is an enumeration, else numbers.
class Labels {
public:
    Labels(const Definition& definition, const Spelling& spelling)
        : enumeration_(discriminantOf(definition).enumeration), spelling_(spelling)
    {
    }

    std::string of(const Value& value) const;

private:
    std::string enumerator(std::int64_t number) const;

    const Definition* enumeration_;
    const Spelling& spelling_;
};

// How many lines the contents of a definition are. Each is counted once, as in `WireShapes`.
class LineCounts {
public:
    std::size_t of(const Definition& definition);

private:
    std::unordered_map<const Definition*, std::size_t> counts_;
};

// What types show in the trace, for <quorvapixdr/tracing.h>.
class TraceLines {
public:
    // Spelled as it is among the words.
    explicit TraceLines(const Spelling& spelling) : spelling_(spelling) {}

    // The functions for one type; empty where it has no body.
    std::string of(const Definition& definition);

private:
    LineCounts counts_;
    WireShapes shapes_;
    Spelling spelling_;
};

}  // namespace quorva::compiler
