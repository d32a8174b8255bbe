// The place of a value within the outermost one.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quorva::inspect {

// The open members and elements of a traversal, from the outermost in. It knows two spellings: that of the JSON form,
// and that of the trace, which also has an element around the arm of a union.
class Path {
public:
    // Opens a member. The name must live until `leave`, as in `enterArm`.
    void enter(const char* name) { open.push_back({name, 0, false}); }

    // Opens an element of an array.
    void enterElement(std::size_t index) { open.push_back({nullptr, index, false}); }

    // Opens the trace's element around the arm of a union.
    void enterArm(const char* armElement) { open.push_back({armElement, 0, true}); }

    // Closes the innermost one.
    void leave() { open.pop_back(); }

    std::size_t depth() const { return open.size(); }

    // As a JSON Pointer: "/aValues/2/value/jobName"; empty for the outermost value. Names of members need no escapes.
    std::string pointer() const
    {
        std::string path;
        for (const Token& token : open)
            if (!token.isArm) path.append("/").append(token.name ? token.name : std::to_string(token.index));
        return path;
    }

    // As `TraceText::path` spells it: "aValues/value[2]/value/JobUnionUnion/jobName".
    std::string traceElements() const
    {
        std::string path;
        for (const Token& token : open) {
            if (!path.empty()) path += '/';
            path += token.name ? token.name : "value[" + std::to_string(token.index) + ']';
        }
        return path;
    }

private:
    struct Token {
        const char* name;  // null for an element of an array
        std::size_t index;
        bool isArm;
    };
    std::vector<Token> open;
};

}  // namespace quorva::inspect
