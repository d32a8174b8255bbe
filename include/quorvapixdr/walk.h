// The few words that generated routines are written in: where the object is, a member between its tags, and each way of
// holding a type. They know neither the direction nor the buffer; only the primitives do.
//
// A field is given together with the coder of its type, so a wrong pairing does not compile. A member that fails leaves
// its element open: what is open after a failed pass is the path to the place where it stopped.
#pragma once

#include <quorvapixdr/primitives.h>

#include <Xdr.h>

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

namespace quorva::walk {

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
inline void* newRoot(Xdr* xdrs, std::size_t size)
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

inline void open(Xdr* xdrs, const char* tag)
{
    if (traced(xdrs)) xdrs->addOpenTag(tag);
}

inline int close(Xdr* xdrs, const char* tag)
{
    if (traced(xdrs)) xdrs->addCloseTag(tag);
    return 1;
}

// One value of any type.
template <class T>
int member(Xdr* xdrs, T& value, Coder<T> coder)
{
    return coder.routine(xdrs, &value);
}

template <class T, std::size_t N>
int vector(Xdr* xdrs, T (&elements)[N], Coder<T> coder)
{
    return XdrVector(xdrs, elements, N, sizeof(T), coder.routine);
}

// `Sequence` is a `Counted<T>` or a sequence type of the interface, which has the same two members.
template <class Sequence, class T>
    requires std::same_as<decltype(Sequence::elements), T*>
int list(Xdr* xdrs, Sequence& sequence, std::uint32_t maximum, Coder<T> coder)
{
    return XdrArray(xdrs, &sequence.elements, &sequence.count, maximum, sizeof(T), coder.routine);
}

template <class T>
int optional(Xdr* xdrs, T*& pointer, Coder<T> coder)
{
    return XdrPointer(xdrs, &pointer, sizeof(T), coder.routine);
}

inline int text(Xdr* xdrs, char*& string, std::uint32_t maximum)
{
    return XdrString(xdrs, &string, maximum);
}

template <class Sequence>
    requires std::same_as<decltype(Sequence::elements), unsigned char*>
int bytes(Xdr* xdrs, Sequence& sequence, std::uint32_t maximum)
{
    return XdrBytes(xdrs, &sequence.elements, &sequence.count, maximum);
}

template <std::size_t N>
int opaque(Xdr* xdrs, unsigned char (&contents)[N])
{
    return XdrOpaque2(xdrs, contents, N);
}

// The same as elements of their own in the trace, for fields and arms.
template <class T>
int member(Xdr* xdrs, const char* tag, T& value, Coder<T> coder)
{
    open(xdrs, tag);
    return member(xdrs, value, coder) ? close(xdrs, tag) : 0;
}

template <class T, std::size_t N>
int vector(Xdr* xdrs, const char* tag, T (&elements)[N], Coder<T> coder)
{
    open(xdrs, tag);
    return vector(xdrs, elements, coder) ? close(xdrs, tag) : 0;
}

template <class Sequence, class T>
int list(Xdr* xdrs, const char* tag, Sequence& sequence, std::uint32_t maximum, Coder<T> coder)
{
    open(xdrs, tag);
    return list(xdrs, sequence, maximum, coder) ? close(xdrs, tag) : 0;
}

template <class T>
int optional(Xdr* xdrs, const char* tag, T*& pointer, Coder<T> coder)
{
    open(xdrs, tag);
    return optional(xdrs, pointer, coder) ? close(xdrs, tag) : 0;
}

inline int text(Xdr* xdrs, const char* tag, char*& string, std::uint32_t maximum)
{
    open(xdrs, tag);
    return text(xdrs, string, maximum) ? close(xdrs, tag) : 0;
}

template <class Sequence>
int bytes(Xdr* xdrs, const char* tag, Sequence& sequence, std::uint32_t maximum)
{
    open(xdrs, tag);
    return bytes(xdrs, sequence, maximum) ? close(xdrs, tag) : 0;
}

template <std::size_t N>
int opaque(Xdr* xdrs, const char* tag, unsigned char (&contents)[N])
{
    open(xdrs, tag);
    return opaque(xdrs, contents) ? close(xdrs, tag) : 0;
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
