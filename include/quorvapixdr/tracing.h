// The pass that encodes or decodes while somebody collects the trace in a text that lends itself: it moves the bytes and
// adds whole elements at once.
//
// Where a part does not fit - no room, a length beyond its maximum, no memory for the text, a release - it is handed to
// its routine in the way of `Calls`, from its start, so the text and the bytes are those of the calls to the letter.
//
// Included by walk.h.
#pragma once

namespace quorva::walk {

struct Tracing {
    Xdr* xdrs;
    Xdr::Trace* text;
    At end;
    bool decoding;
    bool releasing;

    // Where a release pass stands there is no room, so each of its parts is handed over.
    Tracing(Xdr* stream, At nowhere)
        : xdrs(stream), text(stream->sink()), end(nowhere), decoding(static_cast<int>(stream->streamMode) == 1),
          releasing(static_cast<int>(stream->streamMode) == 2)
    {
        if (!releasing) end = xdrs->end();
    }

    bool room(At at, std::size_t size) const { return static_cast<std::size_t>(end - at) >= size; }

    // Before and after a part that its routine codes.
    void leave(At at)
    {
        if (!releasing) xdrs->moveTo(at);
    }
    At resume(At at, int result) const { return result ? (releasing ? at : xdrs->cursor()) : nullptr; }
};

using Name = Xdr::Trace::Name;

// What codes the elements of a block, with the routine of one. A block that the pass allocated is emptied element by
// element, just before each is begun, and behind a failure.
using Elements = At (*)(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine);
using Element = At (*)(Tracing& pass, At at, void* value, XdrRoutine routine);

// ---- Parts, of whatever type (in primitives/tracing.cc) --------------------------------------------------------------

template <class As, class Shown>
At numberElement(Tracing& pass, At at, Name tag, void* value);
template <class As, class Shown>
At numbers(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine);
// As numbers(), with the text that belongs to each.
At enumerators(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine, const char* (*nameOf)(int));
At enumElement(Tracing& pass, At at, Name tag, void* value, const char* (*nameOf)(int));
At textElement(Tracing& pass, At at, Name tag, char** string, std::uint32_t maximum);
// A counted block of whatever type. `sequence` points to a count and a pointer, as every counted block begins. The two
// routines travel in registers: in an object or on the stack each address would be relocated when the library is loaded.
struct Block {
    Name tag;
    void* sequence;
    std::uint32_t maximum;
    std::uint32_t size;
};
At listElement(Tracing& pass, At at, const Block& block, Elements all, XdrRoutine routine);
At bytesElement(Tracing& pass, At at, Name tag, void* sequence, std::uint32_t maximum);
At blockOf(Tracing& pass, At at, void* first, std::uint32_t count, std::uint32_t size, Element element, XdrRoutine routine);
At routineElement(Tracing& pass, At at, void* value, XdrRoutine routine);
At openTag(Tracing& pass, At at, Name tag);
At closeTag(Tracing& pass, At at, Name tag);

// ---- Parts by shape ------------------------------------------------------------------------------------------------

QUORVA_INLINE Name nameOf(const char* tag)
{
    return {tag, tag ? __builtin_strlen(tag) : 0};
}

// Through the routines, as `Calls` does.
template <class Part>
QUORVA_INLINE At callInstead(Tracing& pass, At at, const Part& part)
{
    pass.leave(at);
    return pass.resume(at, callPart(pass.xdrs, part));
}

template <class T, class S, class As, class Shown>
QUORVA_INLINE At traced(Tracing& pass, At at, const Field<T, S>& part, shape::Number<As, Shown>)
{
    return numberElement<As, Shown>(pass, at, nameOf(part.tag), &part.value);
}
template <class T, class S, const char* (*nameOfValue)(int)>
QUORVA_INLINE At traced(Tracing& pass, At at, const Field<T, S>& part, shape::Enumeration<nameOfValue>)
{
    return enumElement(pass, at, nameOf(part.tag), &part.value, nameOfValue);
}
template <class T, class S, std::uint32_t maximum>
QUORVA_INLINE At traced(Tracing& pass, At at, const Field<T, S>& part, shape::Text<maximum>)
{
    return textElement(pass, at, nameOf(part.tag), &part.value, maximum);
}
template <class T, class S>
QUORVA_INLINE At tracedBody(Tracing& pass, At at, const Field<T, S>& part)
{
    at = code(pass, openTag(pass, at, nameOf(part.tag)), part.value);
    return closeTag(pass, at, nameOf(part.tag));
}
template <class T, class S, std::uint32_t units>
QUORVA_INLINE At traced(Tracing& pass, At at, const Field<T, S>& part, shape::Fixed<units>)
{
    return tracedBody(pass, at, part);
}
template <class T, class S, bool owns>
QUORVA_INLINE At traced(Tracing& pass, At at, const Field<T, S>& part, shape::Body<owns>)
{
    return tracedBody(pass, at, part);
}
template <class T, class S, class Other>
QUORVA_INLINE At traced(Tracing& pass, At at, const Field<T, S>& part, Other)
{
    return callInstead(pass, at, part);
}

template <class T, class S>
At bodies(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine)
{
    constexpr Element one = [](Tracing& inner, At from, void* value, XdrRoutine) {
        return code(inner, from, *static_cast<T*>(value));
    };
    return blockOf(pass, at, first, count, sizeof(T), one, routine);
}
template <const char* (*nameOfValue)(int)>
At enumeratorsOf(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine)
{
    return enumerators(pass, at, first, count, routine, nameOfValue);
}
template <class T, class S>
At others(Tracing& pass, At at, void* first, std::uint32_t count, XdrRoutine routine)
{
    return blockOf(pass, at, first, count, sizeof(T), routineElement, routine);
}

template <class T, class S, class As, class Shown>
consteval Elements elementsOf(shape::Number<As, Shown>)
{
    return numbers<As, Shown>;
}
template <class T, class S, const char* (*nameOfValue)(int)>
consteval Elements elementsOf(shape::Enumeration<nameOfValue>)
{
    return enumeratorsOf<nameOfValue>;
}
template <class T, class S, std::uint32_t units>
consteval Elements elementsOf(shape::Fixed<units>)
{
    return bodies<T, S>;
}
template <class T, class S, bool owns>
consteval Elements elementsOf(shape::Body<owns>)
{
    return bodies<T, S>;
}
template <class T, class S, class Other>
consteval Elements elementsOf(Other)
{
    return others<T, S>;
}

template <class T, class S>
QUORVA_INLINE At tracePart(Tracing& pass, At at, const Field<T, S>& part)
{
    return part.tag ? traced(pass, at, part, S{}) : callInstead(pass, at, part);
}
QUORVA_INLINE At tracePart(Tracing& pass, At at, const Text& part)
{
    return part.tag ? textElement(pass, at, nameOf(part.tag), &part.value, part.maximum) : callInstead(pass, at, part);
}
template <class Sequence, class T, class S>
QUORVA_INLINE At tracePart(Tracing& pass, At at, const List<Sequence, T, S>& part)
{
    static_assert(offsetof(Sequence, count) == 0 && offsetof(Sequence, elements) == sizeof(T*));
    return listElement(pass, at, {nameOf(part.tag), &part.value, part.maximum, sizeof(T)}, elementsOf<T, S>(S{}),
                       part.coder.routine);
}
template <class Sequence>
QUORVA_INLINE At tracePart(Tracing& pass, At at, const Bytes<Sequence>& part)
{
    static_assert(offsetof(Sequence, count) == 0 && offsetof(Sequence, elements) == sizeof(void*));
    return part.tag ? bytesElement(pass, at, nameOf(part.tag), &part.value, part.maximum) : callInstead(pass, at, part);
}
// Where there is room, the values are only moved and shown; where there is none, they stay what they were.
template <class T, std::size_t N, class S>
    requires About<S>::isScalar
QUORVA_INLINE At tracePart(Tracing& pass, At at, const Vector<T, N, S>& part)
{
    if (!part.tag || !pass.room(at, 4 * N)) return callInstead(pass, at, part);
    at = elementsOf<T, S>(S{})(pass, openTag(pass, at, nameOf(part.tag)), part.value, N, part.coder.routine);
    return closeTag(pass, at, nameOf(part.tag));
}
template <class Part>
QUORVA_INLINE At tracePart(Tracing& pass, At at, const Part& part)
{
    return callInstead(pass, at, part);
}

template <class... Parts>
QUORVA_INLINE At parts(Tracing& pass, At at, const Parts&... all)
{
    ((at = at ? tracePart(pass, at, all) : nullptr), ...);
    return at;
}

template <class Part>
QUORVA_INLINE At armOf(Tracing& pass, At at, const Part& part)
{
    return tracePart(pass, at, part);
}

QUORVA_INLINE At open(Tracing& pass, At at, const char* tag)
{
    return at ? openTag(pass, at, nameOf(tag)) : nullptr;
}
QUORVA_INLINE At close(Tracing& pass, At at, const char* tag)
{
    return closeTag(pass, at, nameOf(tag));
}

template <class D>
QUORVA_INLINE At refuse(Tracing& pass, At at, D&)
{
    if (at) pass.leave(at);
    return nullptr;
}

}  // namespace quorva::walk
