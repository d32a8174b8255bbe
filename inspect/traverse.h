// Visits the values of a type in the order of the wire, by its description alone.
//
// The traversal knows arms, counts, maxima and the path. A source gives the numbers and the bytes: from a message or an
// object (wire.cc), or from a random generator (sample.cc). The generated routines are not used, so tests can compare
// them with the traversal.
#pragma once

#include "layout.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace quorva::inspect {

// Why and where a traversal stopped. The path has the form of `TraceText::path`. The offset is that of the first byte
// of the refused unit or contents.
struct Failure {
    std::string path;
    std::size_t offset = 0;
    std::string reason;
};

// The open elements of a traversal, from the outermost in.
class Path {
public:
    // Opens the element of a member or of a union's arm. The name must live until `leave`.
    void enter(const char* name) { open.push_back({name, noIndex}); }

    // Opens the element of one element of an array.
    void enterElement(std::size_t index) { open.push_back({"value", index}); }

    // Closes the innermost element.
    void leave() { open.pop_back(); }

    std::size_t depth() const { return open.size(); }

    // "value[2]/value/JobUnionUnion"; empty if no element is open.
    std::string text() const
    {
        std::string path;
        for (const OpenElement& element : open) {
            if (!path.empty()) path += '/';
            path += element.name;
            if (element.index != noIndex) path += '[' + std::to_string(element.index) + ']';
        }
        return path;
    }

private:
    static constexpr std::size_t noIndex = static_cast<std::size_t>(-1);

    struct OpenElement {
        const char* name;
        std::size_t index;
    };
    std::vector<OpenElement> open;
};

// Thrown by the traversal and by its source to stop it.
struct Refusal {
    std::string reason;
};

// "count 7 is beyond the maximum 6"
inline std::string beyond(const char* what, std::uint32_t number, std::uint32_t maximum)
{
    return std::string(what) + ' ' + std::to_string(number) + " is beyond the maximum " + std::to_string(maximum);
}

// The reason to refuse a type of another library, whose description is not known.
inline std::string foreignReason(const Type& type)
{
    return std::string(type.name) + " is a type of another library, whose description is not here";
}

// Bytes of contents with their padding: `size` rounded up to whole units.
constexpr std::size_t padded(std::size_t size)
{
    return (size + 3) / 4 * 4;
}

// Visits all parts of one value. A `Source` has these functions, which throw Refusal to stop the traversal; `at` is the
// address of the part in question, null where the source has no object:
//   std::size_t offset()                                   bytes of the message so far
//   std::int64_t number(const Type& scalar, at)            the next number
//   std::int64_t discriminant(const Type& union, at)       the next number, which selects an arm
//   std::uint32_t length(const Use& string, at)            the next unit, the length of a string
//   std::uint32_t count(const Use& variableForm, at)       the next unit, a count; its low 16 bits are used
//   bool present(const Use& optional, at)                  the next unit: true if a value follows
//   void contents(const Use&, at, std::uint32_t size)      `size` bytes at `at`, and their padding
template <class Source>
class Traversal {
public:
    Traversal(Source& from, Path& where) : source(from), path(where) {}

    // Visits the value of the type at `at`. Returns the failure that stopped the traversal, or nullopt. After a failure
    // the path keeps its open elements.
    std::optional<Failure> run(const Type& type, const std::byte* at = nullptr)
    {
        try {
            visit(type, at);
            return std::nullopt;
        } catch (Refusal& refusal) {
            return Failure{path.text(), begin, std::move(refusal.reason)};
        }
    }

private:
    using Address = const std::byte*;

    // The pointer, or the elements of the block, that the object at an address holds.
    static Address pointerAt(Address at) { return at ? load<Address>(at) : nullptr; }
    static Address blockAt(Address at) { return at ? load<Block>(at).elements : nullptr; }

    void visit(const Type& type, Address at)
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
            for (const Member& field : type.members) visitMember(field, at);
            return;
        case TypeKind::discriminatedUnion: visitUnion(type, at); return;
        case TypeKind::typeDefinition: visitUse(targetOf(type), at); return;
        case TypeKind::foreign: throw Refusal{foreignReason(type)};
        }
    }

    void visitMember(const Member& member, Address at)
    {
        path.enter(member.name);
        visitUse(member.use, shifted(at, member.offset));
        path.leave();
    }

    void visitUnion(const Type& type, Address at)
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
        if (arm && arm->use.form != Form::none) visitMember(*arm, at);
        path.leave();
    }

    void visitUse(const Use& use, Address at)
    {
        begin = source.offset();
        switch (use.form) {
        case Form::single: visit(*use.type, at); return;
        case Form::fixedArray: visitElements(*use.type, use.bound, at); return;
        case Form::variableArray: visitElements(*use.type, checkedCount(use, at), blockAt(at)); return;
        case Form::optional:
            if (source.present(use, at)) visit(*use.type, pointerAt(at));
            return;
        case Form::string: {
            const std::uint32_t length = source.length(use, at);
            if (length > use.bound) throw Refusal{beyond("length", length, use.bound)};
            visitContents(use, pointerAt(at), length);
            return;
        }
        case Form::variableOpaque:
            if (const std::uint32_t count = checkedCount(use, at)) visitContents(use, blockAt(at), count);
            return;
        case Form::fixedOpaque: visitContents(use, at, use.bound); return;
        case Form::none: return;
        }
    }

    void visitElements(const Type& type, std::uint32_t count, Address at)
    {
        for (std::uint32_t i = 0; i < count; ++i) {
            path.enterElement(i);
            visit(type, shifted(at, std::size_t{i} * type.size));
            path.leave();
        }
    }

    void visitContents(const Use& use, Address at, std::uint32_t size)
    {
        begin = source.offset();
        source.contents(use, at, size);
    }

    std::uint32_t checkedCount(const Use& use, Address at)
    {
        const std::uint32_t raw = source.count(use, at);
        const std::uint32_t count = raw & 0xFFFF;
        if (count <= use.bound) return count;
        std::string reason = beyond("count", count, use.bound);
        if (count != raw) reason += " (the low 16 bits of " + std::to_string(raw) + ")";
        throw Refusal{std::move(reason)};
    }

    Source& source;
    Path& path;
    std::size_t begin = 0;  // offset of the part that is being visited
};

}  // namespace quorva::inspect
