// A message as a tree: each part of the value with its bytes.
#pragma once

#include "explain/refused.h"

#include <quorvapixdr/explain.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace quorva::inspect {

// One part of a message: the outermost value, a member, an element of an array, or the value of an optional. Its bytes
// are those of its own units and contents, and of the parts inside.
struct Node {
    const Member* member = nullptr;  // null for anything but a member
    const Type* declared = nullptr;  // the type as declared, such as HostName; null for string and opaque members
    const Type* type = nullptr;      // a number, struct or union: its canonical type; else null
    const Use* use = nullptr;        // an array, optional, string or opaque: its form; else null
    std::uint32_t index = 0;         // of an element, from 0
    std::uint32_t parent = 0;        // index of the enclosing node; of the outermost node: 0
    std::uint32_t end = 0;           // index after the last node inside
    std::uint32_t offset = 0;        // of the first byte
    std::uint32_t size = 0;          // bytes, with padding
    std::uint32_t unit = 0;          // the first unit on the wire: number, length, count or presence
    std::int64_t number = 0;         // the number that a decode makes of it; a count has 16 bits, presence is 0 or 1
    std::uint32_t contentsSize = 0;  // a string or opaque: bytes without padding
    bool complete = false;           // false for the parts that were open when the reading stopped

    // True if the reading got its value, or the beginning of one that has parts. A string or opaque is read as a whole.
    bool wasRead() const
    {
        const bool isContents =
            use && (use->form == Form::string || use->form == Form::fixedOpaque || use->form == Form::variableOpaque);
        return complete || (size > 0 && !isContents);
    }

    // True for a struct or union.
    bool isGroup() const
    {
        return type && (type->kind == TypeKind::structure || type->kind == TypeKind::discriminatedUnion);
    }
};

// A message that was read by the description of its type, up to its end or to the place where a decode fails.
class Tree {
public:
    // Reads the message, which must outlive the tree. It fails where a decode pass fails, with two differences: it
    // never lacks memory, and it refuses values that nest deeper than `deepestNesting`. Bytes after the value are not a
    // failure.
    Tree(const Type& type, std::span<const unsigned char> message);

    // In the order of the message, each before the parts inside it. There is at least the outermost one.
    std::span<const Node> nodes() const { return parts; }

    // The index of the first node inside; its siblings follow at each node's `end`.
    //     for (auto i = first(at); i < nodes()[at].end; i = nodes()[i].end)
    static std::uint32_t first(std::uint32_t at) { return at + 1; }

    // True if the node is an element of an array.
    bool isElement(const Node& node) const;

    // True if the node is the value of an optional, which has the same path as the optional.
    bool isOptionalValue(const Node& node) const;

    // The index of a member inside a struct or union; nullopt if it was not read.
    std::optional<std::uint32_t> memberOf(std::uint32_t at, const Member& member) const;

    // The path of the node as a JSON Pointer.
    std::string pointer(std::uint32_t at) const;

    // The bytes of a string or opaque without padding.
    std::span<const unsigned char> contents(const Node& node) const;

    // The whole message, with the bytes after the value.
    std::span<const unsigned char> bytes() const { return message; }

    // Bytes that belong to the value; after a failure, the bytes before the place where it failed.
    std::size_t length() const { return valueLength; }

    const Type& type() const { return *parts.front().declared; }

    // Where and why the reading stopped.
    struct Stopped {
        Failure failure;
        Refused why;
        std::string tracePath;   // the path that a trace would show
        std::uint32_t node = 0;  // the innermost open part
    };
    const std::optional<Stopped>& stopped() const { return stop; }

private:
    std::span<const unsigned char> message;
    std::vector<Node> parts;
    std::size_t valueLength = 0;
    std::optional<Stopped> stop;
};

}  // namespace quorva::inspect
