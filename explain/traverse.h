// Visits the values of a type in the order of the wire, by its description alone.
//
// The traversal knows arms, counts, maxima and the path. A source gives the numbers and the bytes: from a message or an
// object (explain.cc, inspect/tree.cc), or invented (inspect/sample.cc). The generated routines are not used, so tests
// can compare them with the traversal. It does not throw, because a guess of a message's type tries all types on it.
#pragma once

#include "layout.h"
#include "path.h"
#include "refused.h"

#include <cstddef>
#include <cstdint>

namespace quorva::inspect {

// What the traversal opens: the outermost value, a member, an element of an array, or the value of an optional.
struct Part {
    const Member* member = nullptr;  // null for anything but a member
    const Type* type = nullptr;      // the type as declared; null for string, opaque and void
    std::size_t index = 0;           // of an element
};

// A base for sources that need no structure. `open` and `close` enclose each part; `holds` tells the form of the open
// part once all typedefs are resolved: a type that is not a typedef, or a use of another form than single.
struct WithoutStructure {
    void open(const Part&) {}
    void close() {}
    void holds(const Type&) {}
    void holds(const Use&) {}
};

// Visits all parts of one value. A `Source` has the four functions of WithoutStructure and those below. They return
// false to stop the traversal, with the reason in `refused`; `at` is the address of the part in question, null where
// the source has no object:
//   Refused refused                                              why the source stopped
//   std::size_t offset()                                         bytes of the message so far
//   bool number(const Type& scalar, at, std::int64_t&)           the next number
//   bool discriminant(const Type& union, at, std::int64_t&)      the next number, which selects an arm
//   bool length(const Use& string, at, std::uint32_t&)           the next unit, the length of a string
//   bool count(const Use& variableForm, at, std::uint32_t&)      the next unit, a count; its low 16 bits are used
//   bool present(const Use& optional, at, bool&)                 the next unit: true if a value follows
//   bool contents(const Use&, at, std::uint32_t size)            `size` bytes at `at`, and their padding
template <class Source>
class Traversal {
public:
    Traversal(Source& from, Path& where) : source(from), path(where) {}

    // Visits the value of the type at `at`. Returns false if the traversal stopped. Then the path keeps its open
    // members and elements, and `refused` and `stoppedAt` tell the rest.
    bool run(const Type& type, const std::byte* at = nullptr)
    {
        return within({.type = &type}, [&] { return visit(type, at); });
    }

    // Why the traversal stopped.
    const Refused& refused() const { return source.refused; }

    // Where, as a JSON Pointer. A discriminant without an arm is refused at the place of the discriminant.
    std::string pointer() const
    {
        const bool isNoArm = refused().cause == Cause::noArm;
        return path.pointer() + (isNoArm ? std::string("/") + refused().type->members.front().name : "");
    }

    // The offset of the first byte of the refused unit or contents.
    std::size_t stoppedAt() const { return begin; }

private:
    using Address = const std::byte*;

    // The pointer, or the elements of the block, that the object at an address holds.
    static Address pointerAt(Address at) { return at ? load<Address>(at) : nullptr; }
    static Address blockAt(Address at) { return at ? load<Block>(at).elements : nullptr; }

    bool stop(const Refused& why)
    {
        source.refused = why;
        return false;
    }

    template <class Action>
    bool within(const Part& part, Action action)
    {
        source.open(part);
        if (!action()) return false;
        source.close();
        return true;
    }

    bool visit(const Type& type, Address at)
    {
        if (path.depth() > deepestNesting) return stop({.cause = Cause::nestedTooDeeply});
        if (type.kind == TypeKind::typeDefinition) return visitUse(targetOf(type), at);
        if (type.described) return visit(type.described(), at);
        source.holds(type);
        switch (type.kind) {
        case TypeKind::builtin:
        case TypeKind::enumeration: {
            begin = source.offset();
            std::int64_t number = 0;
            return source.number(type, at, number);
        }
        case TypeKind::structure:
            for (const Member& field : type.members)
                if (!visitMember(field, at)) return false;
            return true;
        case TypeKind::discriminatedUnion: return visitUnion(type, at);
        default: return stop({.cause = Cause::foreignType, .type = &type});
        }
    }

    bool visitMember(const Member& member, Address at)
    {
        path.enter(member.name);
        const bool visited = within({.member = &member, .type = member.use.type},
                                    [&] { return visitUse(member.use, shifted(at, member.offset)); });
        if (visited) path.leave();
        return visited;
    }

    bool visitUnion(const Type& type, Address at)
    {
        const Member& discriminant = type.members.front();
        std::int64_t value = 0;
        path.enter(discriminant.name);
        begin = source.offset();
        const bool read = within({.member = &discriminant, .type = discriminant.use.type}, [&] {
            source.holds(discriminantOf(type));
            return source.discriminant(type, shifted(at, discriminant.offset), value);
        });
        if (!read) return false;
        path.leave();
        path.enterArm(type.armElement);
        const Member* arm = armOf(type, value);
        if (!arm && !type.hasDefault) return stop({.cause = Cause::noArm, .type = &type, .number = value});
        if (arm && arm->use.form != Form::none && !visitMember(*arm, at)) return false;
        path.leave();
        return true;
    }

    bool visitUse(const Use& use, Address at)
    {
        begin = source.offset();
        if (use.form == Form::single) return visit(*use.type, at);
        source.holds(use);
        switch (use.form) {
        case Form::fixedArray: return visitElements(*use.type, use.bound, at);
        case Form::variableArray: {
            std::uint32_t count = 0;
            return checkedCount(use, at, count) && visitElements(*use.type, count, blockAt(at));
        }
        case Form::optional: {
            bool present = false;
            if (!source.present(use, at, present)) return false;
            return !present || within({.type = use.type}, [&] { return visit(*use.type, pointerAt(at)); });
        }
        case Form::string: {
            std::uint32_t length = 0;
            if (!source.length(use, at, length)) return false;
            if (length > use.bound)
                return stop({.cause = Cause::lengthBeyondMaximum, .number = length, .bound = use.bound});
            return visitContents(use, pointerAt(at), length);
        }
        case Form::variableOpaque: {
            std::uint32_t count = 0;
            return checkedCount(use, at, count) && (count == 0 || visitContents(use, blockAt(at), count));
        }
        case Form::fixedOpaque: return visitContents(use, at, use.bound);
        default: return true;
        }
    }

    bool visitElements(const Type& type, std::uint32_t count, Address at)
    {
        for (std::uint32_t i = 0; i < count; ++i) {
            path.enterElement(i);
            const bool visited = within({.type = &type, .index = i},
                                        [&] { return visit(type, shifted(at, std::size_t{i} * type.size)); });
            if (!visited) return false;
            path.leave();
        }
        return true;
    }

    bool visitContents(const Use& use, Address at, std::uint32_t size)
    {
        begin = source.offset();
        return source.contents(use, at, size);
    }

    bool checkedCount(const Use& use, Address at, std::uint32_t& count)
    {
        std::uint32_t raw = 0;
        if (!source.count(use, at, raw)) return false;
        count = raw & 0xFFFF;
        return count <= use.bound || stop({.cause = Cause::countBeyondMaximum, .number = raw, .bound = use.bound});
    }

    Source& source;
    Path& path;
    std::size_t begin = 0;  // offset of the part that is being visited
};

}  // namespace quorva::inspect
