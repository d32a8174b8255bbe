// Fixed-length arrays, variable-length arrays and optional data. `Element` is a callable `bool(void*)` that codes one
// element: the exported primitives call a routine in it, the interpreter follows a description.
#pragma once

#include <quorvaruntime/stream.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

namespace quorva {

inline constexpr std::uint32_t maxElements = 65535;  // counts have 16 bits

// Reads and writes the pointer at `place`, a `T**` for some element type `T`.
inline void* load(const void* place)
{
    void* pointer;
    std::memcpy(&pointer, place, sizeof pointer);
    return pointer;
}

inline void store(void* place, void* pointer)
{
    std::memcpy(place, &pointer, sizeof pointer);
}

// Stores a count, cut to 16 bits. Writes only a count that changes, because an encode may run over a constant object.
inline void setCount(std::uint16_t* count, std::uint32_t length)
{
    if (*count != static_cast<std::uint16_t>(length)) *count = static_cast<std::uint16_t>(length);
}

// Allocates `count` elements of `size` bytes, not cleared. Returns null when memory is short or the size overflows.
inline void* newBlock(std::size_t count, std::size_t size)
{
    if (size > SIZE_MAX / count) return nullptr;
    return ::operator new[](count* size, std::nothrow);
}

// Most elements are numbers: a store of four bytes is cheaper than a call.
inline void zero(void* at, std::size_t size)
{
    if (size == 4)
        std::memset(at, 0, 4);
    else
        std::memset(at, 0, size);
}

// Codes `count` elements of `size` bytes from `first` on; returns false at the first that fails. `fresh` says that this
// pass allocated the storage: each element is zeroed just before it is coded, and after a failure the elements that
// were not reached are zeroed, so that a release pass reads no uninitialised memory.
template <class Element>
bool codeElements(Xdr* xdrs, void* first, std::uint32_t count, std::size_t size, bool fresh, Element element)
{
    const bool traced = isTraced(xdrs);
    const bool framed = traced && modeOf(xdrs) == Mode::decode;
    auto* at = static_cast<unsigned char*>(first);
    for (std::uint32_t i = 0; i < count; ++i, at += size) {
        if (framed) openValue(xdrs);
        if (fresh) zero(at, size);
        if (!element(at)) {
            if (fresh) std::memset(at + size, 0, (count - i - 1) * size);
            return false;
        }
        if (framed) closeValue(xdrs);
    }
    if (traced) xdrs->addLine();
    return true;
}

// A fixed-length array of `count` elements of `size` bytes.
template <class Element>
bool codeVector(Xdr* xdrs, void* first, std::uint32_t count, std::size_t size, Element element)
{
    return count <= maxElements && codeElements(xdrs, first, count, size, false, element);
}

// A variable-length array of at most `maximum` elements. `block` is the address of the pointer to them. Decoding stores
// the count, cut to 16 bits, before it compares it with the maximum.
template <class Element>
bool codeArray(Xdr* xdrs, void* block, std::uint16_t* count, std::uint32_t maximum, std::size_t size, Element element)
{
    std::uint32_t length = *count;
    if (!XdrLongNatural2(xdrs, &length)) return false;
    setCount(count, length);
    if (*count > maximum) return false;
    if (*count == 0) return true;

    if (modeOf(xdrs) == Mode::decode) {
        void* const fresh = newBlock(*count, size);
        store(block, fresh);
        return fresh && codeElements(xdrs, fresh, *count, size, true, element);
    }

    void* const held = load(block);
    if (modeOf(xdrs) == Mode::encode) return held && codeElements(xdrs, held, *count, size, false, element);

    // A decode that could not allocate the block leaves a count without one: nothing to release.
    if (!held) return true;
    const bool result = codeElements(xdrs, held, *count, size, false, element);
    ::operator delete[](held);
    return result;
}

// Optional data of `size` bytes. `pointer` is the address of the pointer to it, null when absent.
template <class Element>
bool codeOptional(Xdr* xdrs, void* pointer, std::size_t size, Element value)
{
    void* held = load(pointer);
    unsigned char present = held != nullptr;
    if (!XdrBoolean(xdrs, &present)) return false;

    if (present != 1) {  // any byte but 1 means absent
        if (held) store(pointer, nullptr);
        return true;
    }
    switch (modeOf(xdrs)) {
    case Mode::decode:
        held = ::operator new[](size, std::nothrow);
        store(pointer, held);
        return held && value(std::memset(held, 0, size));
    case Mode::encode: return held && value(held);
    case Mode::release: break;
    }
    const bool result = value(held);
    ::operator delete[](held);
    return result;
}

}  // namespace quorva
