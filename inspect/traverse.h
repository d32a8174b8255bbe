// The walk over a type in the order of the wire, by its description alone.
//
// It knows arms, counts, maxima and the place where it is; where numbers and bytes come from is its source's business:
// a message (wire.cc), an object (wire.cc) or chance (sample.cc). None of it uses the generated routines, so it can
// judge them.
#pragma once

#include "layout.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorva::inspect {

// Where a walk stopped. The path is spelt as the trace spells it; the offset is that of the first byte of the unit or
// the contents which were at fault.
struct Failure {
    std::string path;
    std::size_t offset = 0;
    std::string reason;
};

// The open elements of a walk.
class Path {
public:
    void enter(const char* element) { open.push_back({element, isName}); }
    void enterElement(std::size_t index) { open.push_back({"value", index}); }
    void leave() { open.pop_back(); }
    std::size_t depth() const { return open.size(); }

    std::string text() const
    {
        std::string path;
        for (const Step& step : open) {
            if (!path.empty()) path += '/';
            path += step.name;
            if (step.index != isName) path += '[' + std::to_string(step.index) + ']';
        }
        return path;
    }

private:
    static constexpr std::size_t isName = static_cast<std::size_t>(-1);

    struct Step {
        const char* name;
        std::size_t index;
    };
    std::vector<Step> open;
};

// Thrown by a source, and by the walk itself, to end the walk with this reason.
struct Refusal {
    std::string reason;
};

inline std::string beyond(const char* what, std::uint32_t number, std::uint32_t maximum)
{
    return std::string(what) + ' ' + std::to_string(number) + " is beyond the maximum " + std::to_string(maximum);
}

// Why nothing can be said about a value of a type of another library.
inline std::string foreignReason(const Type& type)
{
    return std::string(type.name) + " is a type of another library, whose description is not here";
}

// A `Source` has, with `at` the address of the part in question (null where the source has no object):
//   std::size_t offset()                                   bytes of the message so far
//   std::int64_t number(const Type& scalar, at)            the next number
//   std::int64_t discriminant(const Type& union, at)       the next number, which chooses an arm
//   std::uint32_t length(const Use& string, at)            the next unit: a text's length
//   std::uint32_t count(const Use& listOrBytes, at)        the next unit: a count, of which 16 bits hold
//   bool present(const Use& optional, at)                  the next unit: whether a value follows
//   void contents(const Use&, at, std::uint32_t size)      `size` bytes at `at` and their padding
template <class Source>
class Traversal {
public:
    Traversal(Source& from, Path& where) : source(from), path(where) {}

    // Walks over one value of the type; what stopped it, if anything did. The path then keeps the open elements.
    std::optional<Failure> run(const Type& type, const std::byte* at = nullptr)
    {
        try {
            walk(type, at);
            return std::nullopt;
        } catch (Refusal& refusal) {
            return Failure{path.text(), begin, std::move(refusal.reason)};
        }
    }

private:
    using At = const std::byte*;

    static At pointerAt(At at) { return at ? load<At>(at) : nullptr; }
    static At blockAt(At at) { return at ? load<Block>(at).elements : nullptr; }

    void walk(const Type& type, At at)
    {
        if (path.depth() > deepestNesting)
            throw Refusal{"elements are nested deeper than " + std::to_string(deepestNesting) + " levels"};
        switch (type.kind) {
        case TypeKind::builtin:
        case TypeKind::enumeration:
            begin = source.offset();
            source.number(type, at);
            return;
        case TypeKind::structure:
            for (const Member& field : type.members) walkMember(field, at);
            return;
        case TypeKind::discriminatedUnion: walkUnion(type, at); return;
        case TypeKind::typeDefinition: walkUse(targetOf(type), at); return;
        case TypeKind::foreign: throw Refusal{foreignReason(type)};
        }
    }

    void walkMember(const Member& member, At at)
    {
        path.enter(member.name);
        walkUse(member.use, shifted(at, member.offset));
        path.leave();
    }

    void walkUnion(const Type& type, At at)
    {
        const Member& discriminant = type.members.front();
        path.enter(discriminant.name);
        begin = source.offset();
        const std::int64_t value = source.discriminant(type, shifted(at, discriminant.offset));
        path.leave();

        path.enter(type.armElement);
        const Member* arm = armOf(type, value);
        if (!arm && !type.hasDefault)
            throw Refusal{std::string(discriminant.name) + ' ' + numberText(discriminantOf(type), value) +
                          " has no arm in " + type.name};
        if (arm && arm->use.form != Form::none) walkMember(*arm, at);
        path.leave();
    }

    void walkUse(const Use& use, At at)
    {
        begin = source.offset();
        switch (use.form) {
        case Form::single: walk(*use.type, at); return;
        case Form::fixedArray: walkElements(*use.type, use.bound, at); return;
        case Form::variableArray: walkElements(*use.type, judgedCount(use, at), blockAt(at)); return;
        case Form::optional:
            if (source.present(use, at)) walk(*use.type, pointerAt(at));
            return;
        case Form::string: {
            const std::uint32_t length = source.length(use, at);
            if (length > use.bound) throw Refusal{beyond("length", length, use.bound)};
            walkContents(use, pointerAt(at), length);
            return;
        }
        case Form::variableOpaque:
            if (const std::uint32_t count = judgedCount(use, at)) walkContents(use, blockAt(at), count);
            return;
        case Form::fixedOpaque: walkContents(use, at, use.bound); return;
        case Form::none: return;
        }
    }

    void walkElements(const Type& type, std::uint32_t count, At at)
    {
        for (std::uint32_t i = 0; i < count; ++i) {
            path.enterElement(i);
            walk(type, shifted(at, std::size_t{i} * type.size));
            path.leave();
        }
    }

    void walkContents(const Use& use, At at, std::uint32_t size)
    {
        begin = source.offset();
        source.contents(use, at, size);
    }

    std::uint32_t judgedCount(const Use& use, At at)
    {
        const std::uint32_t raw = source.count(use, at);
        const std::uint32_t held = raw & 0xFFFF;
        if (held <= use.bound) return held;
        std::string reason = beyond("count", held, use.bound);
        if (held != raw) reason += " (" + std::to_string(raw) + ", of which 16 bits hold)";
        throw Refusal{std::move(reason)};
    }

    Source& source;
    Path& path;
    std::size_t begin = 0;
};

}  // namespace quorva::inspect
