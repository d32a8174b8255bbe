// Builds the tree of a message.

#include "tree.h"

#include "explain/sources.h"

#include <algorithm>

namespace quorva::inspect {

namespace {

// Reads a message and adds a node for each part that the traversal opens.
class TreeSource : public MessageSource {
public:
    TreeSource(std::span<const unsigned char> from, std::vector<Node>& to) : MessageSource(from), nodes(to) {}

    void open(const Part& part)
    {
        Node node;
        node.member = part.member;
        node.declared = part.type;
        node.index = static_cast<std::uint32_t>(part.index);
        node.parent = current;
        node.offset = static_cast<std::uint32_t>(offset());
        current = static_cast<std::uint32_t>(nodes.size());
        nodes.push_back(node);
    }

    void close()
    {
        nodes[current].complete = true;
        end();
    }

    // Ends the innermost open part.
    void end()
    {
        Node& node = nodes[current];
        node.end = static_cast<std::uint32_t>(nodes.size());
        node.size = static_cast<std::uint32_t>(offset()) - node.offset;
        current = node.parent;
    }

    void holds(const Type& type) { nodes[current].type = &type; }
    void holds(const Use& use) { nodes[current].use = &use; }

    bool number(const Type& scalar, const std::byte* at, std::int64_t& value)
    {
        return MessageSource::number(scalar, at, value) && note(value);
    }
    bool discriminant(const Type& type, const std::byte* at, std::int64_t& value)
    {
        return MessageSource::discriminant(type, at, value) && note(value);
    }
    bool length(const Use& use, const std::byte* at, std::uint32_t& value)
    {
        return MessageSource::length(use, at, value) && note(value);
    }
    bool count(const Use& use, const std::byte* at, std::uint32_t& value)
    {
        return MessageSource::count(use, at, value) && note(value & 0xFFFF);
    }
    bool present(const Use& use, const std::byte* at, bool& follows)
    {
        return MessageSource::present(use, at, follows) && note(follows);
    }
    bool contents(const Use& use, const std::byte* at, std::uint32_t size)
    {
        const bool isRead = MessageSource::contents(use, at, size);
        if (isRead || refused.cause == Cause::messageEndsInPadding) nodes[current].contentsSize = size;
        return isRead;
    }

    std::uint32_t innermost() const { return current; }

private:
    bool note(std::int64_t value)
    {
        nodes[current].unit = lastUnit();
        nodes[current].number = value;
        return true;
    }

    std::vector<Node>& nodes;
    std::uint32_t current = 0;
};

}  // namespace

Tree::Tree(const Type& type, std::span<const unsigned char> from) : message(from)
{
    Path path;
    TreeSource source(message, parts);
    Traversal traversal(source, path);
    if (!traversal.run(type)) {
        stop = {{traversal.pointer(), traversal.stoppedAt(), traversal.refused().sentence(), source.offset()},
                traversal.refused(),
                path.traceElements(),
                source.innermost()};
        while (parts.front().end == 0) source.end();
    }
    valueLength = source.offset();
}

bool Tree::isElement(const Node& node) const
{
    const Use* const use = parts[node.parent].use;
    return &node != &parts.front() && use && (use->form == Form::fixedArray || use->form == Form::variableArray);
}

bool Tree::isOptionalValue(const Node& node) const
{
    const Use* const use = parts[node.parent].use;
    return &node != &parts.front() && use && use->form == Form::optional;
}

std::optional<std::uint32_t> Tree::memberOf(std::uint32_t at, const Member& member) const
{
    for (std::uint32_t i = first(at); i < parts[at].end; i = parts[i].end)
        if (parts[i].member == &member) return i;
    return std::nullopt;
}

std::string Tree::pointer(std::uint32_t at) const
{
    std::vector<std::string> tokens;
    for (; at != 0; at = parts[at].parent)
        if (!isOptionalValue(parts[at]))
            tokens.push_back(isElement(parts[at]) ? std::to_string(parts[at].index) : parts[at].member->name);
    std::string path;
    for (; !tokens.empty(); tokens.pop_back()) path.append("/").append(tokens.back());
    return path;
}

std::span<const unsigned char> Tree::contents(const Node& node) const
{
    const bool hasUnit = node.use && (node.use->form == Form::string || node.use->form == Form::variableOpaque);
    return message.subspan(node.offset + (hasUnit ? 4 : 0), node.contentsSize);
}

}  // namespace quorva::inspect
