// The few words that generated bodies are written in: a field, each way of holding a type, and an element of the trace.
//
// A body is written once and serves several passes over its type. `Calls` works with any stream class: it opens an
// element for each part, calls the part's routine and closes the element. The direct passes (see passes.h) move bytes
// themselves; they exist where the class in use lends its buffer, and run where nobody collects a trace. Where the class
// lends its trace as well, another pass collects it, by lines instead of bodies (see tracing.h).
//
// A field is given together with the coder of its type, so a wrong pairing does not compile. A part that fails leaves
// its element open: what is open after a failed pass is the path to the place where it stopped.
#pragma once

#include <quorvapixdr/names.h>
#include <quorvapixdr/primitives.h>

#include <Xdr.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#define QUORVA_INLINE [[gnu::always_inline]] inline

namespace quorva::walk {

// Where a pass stands. The direct passes move through the buffer with it; for the others it only is not null. Null: the
// pass has failed.
using At = unsigned char*;

// Whether anybody collects the trace. A class that cannot be asked is always told everything; only a template may find
// that out.
template <class Stream>
bool traced(Stream* xdrs)
{
    if constexpr (requires(const Stream& x) { { x.tracing() } -> std::convertible_to<bool>; })
        return xdrs->tracing();
    else
        return true;
}

// Storage for an object that nobody brought: `size` bytes of zeros in the stream's root allocation slot, or null.
[[gnu::cold, gnu::noinline]] inline void* newRoot(Xdr* xdrs, std::size_t size)
{
    void* storage = ::operator new(size, std::nothrow);
    if (!storage) return nullptr;
    xdrs->rootAllocationSlot = std::memset(storage, 0, size);
    return storage;
}

// The object that a routine was given, or a new one; null when there is none to be had.
template <class T>
T* objectAt(Xdr* xdrs, void* object)
{
    return static_cast<T*>(object ? object : newRoot(xdrs, sizeof(T)));
}

// ---- Parts: what an object holds, and how --------------------------------------------------------------------------
// `tag` is the part's element in the trace; the one part of a typedef has none. `call` codes the part through routines.

template <class T, class S>
struct Field {
    const char* tag;
    T& value;
    Shaped<T, S> coder;

    int call(Xdr* xdrs) const { return coder.routine(xdrs, &value); }
};

template <class T, std::size_t N, class S>
struct Vector {
    const char* tag;
    T (&value)[N];
    Shaped<T, S> coder;

    int call(Xdr* xdrs) const { return XdrVector(xdrs, value, N, sizeof(T), coder.routine); }
};

template <class Sequence, class T, class S>
struct List {
    const char* tag;
    Sequence& value;
    std::uint32_t maximum;
    Shaped<T, S> coder;

    int call(Xdr* xdrs) const
    {
        return XdrArray(xdrs, &value.elements, &value.count, maximum, sizeof(T), coder.routine);
    }
};

template <class T, class S>
struct Optional {
    const char* tag;
    T*& value;
    Shaped<T, S> coder;

    int call(Xdr* xdrs) const { return XdrPointer(xdrs, &value, sizeof(T), coder.routine); }
};

struct Text {
    const char* tag;
    char*& value;
    std::uint32_t maximum;

    int call(Xdr* xdrs) const { return XdrString(xdrs, &value, maximum); }
};

template <class Sequence>
struct Bytes {
    const char* tag;
    Sequence& value;
    std::uint32_t maximum;

    int call(Xdr* xdrs) const { return XdrBytes(xdrs, &value.elements, &value.count, maximum); }
};

template <std::size_t N>
struct Opaque {
    const char* tag;
    unsigned char (&value)[N];

    int call(Xdr* xdrs) const { return XdrOpaque2(xdrs, value, N); }
};

// ---- The words -----------------------------------------------------------------------------------------------------

template <class T, class S>
QUORVA_INLINE Field<T, S> field(const char* tag, T& value, Shaped<T, S> coder)
{
    return {tag, value, coder};
}

template <class T, std::size_t N, class S>
QUORVA_INLINE Vector<T, N, S> vector(const char* tag, T (&elements)[N], Shaped<T, S> coder)
{
    return {tag, elements, coder};
}

// `Sequence` is a `Counted<T>` or a sequence type of the interface, which has the same two members.
template <class Sequence, class T, class S>
    requires std::same_as<decltype(Sequence::elements), T*>
QUORVA_INLINE List<Sequence, T, S> list(const char* tag, Sequence& sequence, std::uint32_t maximum, Shaped<T, S> coder)
{
    return {tag, sequence, maximum, coder};
}

template <class T, class S>
QUORVA_INLINE Optional<T, S> optional(const char* tag, T*& pointer, Shaped<T, S> coder)
{
    return {tag, pointer, coder};
}

QUORVA_INLINE Text text(const char* tag, char*& string, std::uint32_t maximum)
{
    return {tag, string, maximum};
}

template <class Sequence>
    requires std::same_as<decltype(Sequence::elements), unsigned char*>
QUORVA_INLINE Bytes<Sequence> bytes(const char* tag, Sequence& sequence, std::uint32_t maximum)
{
    return {tag, sequence, maximum};
}

template <std::size_t N>
QUORVA_INLINE Opaque<N> opaque(const char* tag, unsigned char (&contents)[N])
{
    return {tag, contents};
}

inline constexpr const char* untagged = nullptr;

// ---- The pass that calls -------------------------------------------------------------------------------------------

struct Calls {
    Xdr* xdrs;
};

[[gnu::noinline]] inline void openElement(Xdr* xdrs, const char* tag)
{
    if (tag && traced(xdrs)) xdrs->addOpenTag(tag);
}

[[gnu::noinline]] inline int closeElement(Xdr* xdrs, const char* tag)
{
    if (tag && traced(xdrs)) xdrs->addCloseTag(tag);
    return 1;
}

// The commonest part, in one call: an element around one value.
[[gnu::noinline]] inline int element(Xdr* xdrs, const char* tag, void* value, XdrRoutine routine)
{
    openElement(xdrs, tag);
    return routine(xdrs, value) ? closeElement(xdrs, tag) : 0;
}

template <class T, class S>
QUORVA_INLINE int callPart(Xdr* xdrs, const Field<T, S>& part)
{
    return element(xdrs, part.tag, &part.value, part.coder.routine);
}

template <class Part>
QUORVA_INLINE int callPart(Xdr* xdrs, const Part& part)
{
    openElement(xdrs, part.tag);
    return part.call(xdrs) ? closeElement(xdrs, part.tag) : 0;
}

// Codes the parts in order, up to the first that fails.
template <class... Parts>
QUORVA_INLINE At parts(Calls& pass, At at, const Parts&... all)
{
    return (callPart(pass.xdrs, all) && ...) ? at : nullptr;
}

// The arm of a union.
template <class Part>
QUORVA_INLINE At armOf(Calls& pass, At at, const Part& part)
{
    return parts(pass, at, part);
}

// An element around what follows, and its end.
QUORVA_INLINE At open(Calls& pass, At at, const char* tag)
{
    if (at) openElement(pass.xdrs, tag);
    return at;
}

QUORVA_INLINE At close(Calls& pass, At at, const char* tag)
{
    if (at) closeElement(pass.xdrs, tag);
    return at;
}

// A discriminant that selects no arm.
template <class D>
QUORVA_INLINE At refuse(Calls&, At, D&)
{
    return nullptr;
}

// The decimal text of a number, as printf writes it, zero-terminated.
class Decimal {
public:
    explicit Decimal(std::int64_t number)
    {
        std::uint64_t rest = number < 0 ? 0 - static_cast<std::uint64_t>(number) : static_cast<std::uint64_t>(number);
        *--first = '\0';
        do *--first = static_cast<char>('0' + rest % 10);
        while (rest /= 10);
        if (number < 0) *--first = '-';
    }
    Decimal(const Decimal&) = delete;
    Decimal& operator=(const Decimal&) = delete;

    const char* text() const { return first; }

private:
    char digits[24];
    char* first = digits + sizeof digits;
};

// An enumeration: its unit, then in the trace its enumerator's name around the number. A value without an enumerator
// is no fault: a peer may be newer.
template <class E>
int enumeration(Xdr* xdrs, void* object, const char* (*nameOf)(int))
{
    E* value = objectAt<E>(xdrs, object);
    if (!value || !XdrEnum(xdrs, value)) return 0;
    if (!traced(xdrs)) return 1;

    const int number = static_cast<int>(*value);
    const char* name = nameOf(number);
    xdrs->addOpenTag(name);
    xdrs->addString2(Decimal(number).text());
    xdrs->addCloseTag(name);
    return 1;
}

}  // namespace quorva::walk

// Inside the codec, where its bodies can be linked directly, and with a class that lends its buffer.
#if defined(QUORVA_CODEC) && defined(XDR_LENDS_BUFFER)
#define QUORVA_DIRECT
#include <quorvapixdr/passes.h>
#ifdef XDR_LENDS_TRACE
#define QUORVA_TRACING
#include <quorvapixdr/tracing.h>
#endif
// The body of `T`, which other modules call.
#define QUORVA_BODY(T)                                                                                     \
    template quorva::walk::At code(quorva::walk::Encoding<Xdr>&, quorva::walk::At, ::T&);                  \
    template quorva::walk::At code(quorva::walk::Decoding<Xdr>&, quorva::walk::At, ::T&);                  \
    template quorva::walk::At code(quorva::walk::Releasing<Xdr>&, quorva::walk::At, ::T&);
#else
#define QUORVA_BODY(T)
#endif
// The same of a small type, whose body its users write in place where bytes move.
#define QUORVA_IN_PLACE(T)                                                                            \
    template <class Pass>                                                                                  \
    quorva::walk::At code(Pass& pass, quorva::walk::At at, ::T& obj)                                       \
    {                                                                                                      \
        return inPlace(pass, at, obj);                                                                     \
    }                                                                                                      \
    QUORVA_BODY(T)
// What `T` shows, and what the arms of a union show, which other modules show as well.
#ifdef QUORVA_TRACING
#define QUORVA_SHOWS(T) \
    template <>         \
    quorva::walk::At quorva::walk::show<::T>(quorva::walk::Tracing&, quorva::walk::At, void*);
#define QUORVA_SHOWS_ARMS(T) \
    template <>              \
    const quorva::walk::Step* quorva::walk::showArm<::T>(const void*, quorva::walk::Callee&);
#else
#define QUORVA_SHOWS(T)
#define QUORVA_SHOWS_ARMS(T)
#endif

namespace quorva::walk {

// A pass with a trace, and with a stream that lends nothing.
template <class T>
[[gnu::noinline]] int runTraced(Xdr* xdrs, T& value)
{
    const At nowhere = reinterpret_cast<At>(&value);
#ifdef QUORVA_TRACING
    Tracing pass(xdrs, nowhere);
    const At at = show<T>(pass, pass.releasing ? nowhere : xdrs->cursor(), &value);
    if (at) pass.leave(at);
    return at != nullptr;
#else
    Calls pass{xdrs};
    return code(pass, nowhere, value) != nullptr;
#endif
}

// The routine of a type with a body: finds the object and runs the pass that fits the stream.
template <class T>
int run(Xdr* xdrs, void* object)
{
    T* value = objectAt<T>(xdrs, object);
    if (!value) return 0;
#ifdef QUORVA_DIRECT
    if (!traced(xdrs)) return runDirect<T>(xdrs, *value);
#endif
    return runTraced(xdrs, *value);
}

}  // namespace quorva::walk
