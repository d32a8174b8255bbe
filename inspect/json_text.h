// A JSON text (RFC 8259) and the places of its values.
//
// The text is checked and indexed here, without the JSON library: its parser does not tell places, takes the text to
// end at a zero byte, and needs many times the memory of a malformed text.
#pragma once

#include <quorvapixdr/json.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace quorva::inspect {

class JsonText {
public:
    // Indexes the text, which must outlive the index, in linear time and with 8 bytes for each name and value. Names
    // that an object has twice are accepted. Throws a malformed JsonError if the text is not JSON, if its objects
    // and arrays nest deeper than `deepestNesting`, or if it has more than 4 GiB.
    explicit JsonText(std::string_view text);

    // A value, or the name of an object's member, which is a string.
    class Value {
    public:
        bool isObject() const { return head() == '{'; }
        bool isArray() const { return head() == '['; }
        bool isString() const { return head() == '"'; }

        // Bytes of the text before the value.
        std::size_t offset() const { return in->nodes[index].begin; }

        // The text of a value that is neither object nor array: `null`, `-1.50`, `"a\u0000b"` with its quotes.
        std::string_view token() const;

        // The contents of a string, without quotes and escapes.
        std::string string() const;

        // Calls `action` with the name and the value of each member of an object.
        template <class Action>
        void forEachMember(Action action) const
        {
            const Value end = next();
            for (Value name = first(); name.index != end.index; name = name.next().next()) action(name, name.next());
        }

        // Calls `action` with each element of an array.
        template <class Action>
        void forEachElement(Action action) const
        {
            const Value end = next();
            for (Value element = first(); element.index != end.index; element = element.next()) action(element);
        }

    private:
        friend JsonText;
        Value(const JsonText& from, std::size_t at) : in(&from), index(at) {}

        char head() const { return in->text[offset()]; }
        Value first() const { return {*in, index + 1}; }
        Value next() const { return {*in, in->nodes[index].after}; }

        const JsonText* in;
        std::size_t index;
    };

    Value value() const { return {*this, 0}; }

    // An error at this offset of the text, which may be its end.
    JsonError::Entry error(std::size_t offset, std::string path, std::string sentence) const;

private:
    class Scanner;

    // A name or a value. Its members or elements are the nodes that follow it; a name comes before its value.
    struct Node {
        std::uint32_t begin;  // bytes of the text before it
        std::uint32_t after;  // index of the first node that is not part of it
    };

    std::string_view text;
    std::vector<Node> nodes;
};

}  // namespace quorva::inspect
