// Collections of one element type: arrays in place, counted blocks, optional values. The exported primitives code their
// elements by a routine, the interpreter by a description; `Element` is the callable `bool(void*)` of either.
#pragma once

#include <quorvaruntime/stream.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

namespace quorva {

inline constexpr std::uint32_t mostElements = 65535;  // counts have 16 bits

// The pointer at `place`, a `T**` of some element type.
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

// `count` elements of `size` bytes, not cleared; null where memory is short or the size overflows.
inline void* newBlock(std::size_t count, std::size_t size)
{
    return size > SIZE_MAX / count ? nullptr : ::operator new[](count* size, std::nothrow);
}

// Most elements are numbers, for which a call would cost more than the work.
inline void zero(void* at, std::size_t size)
{
    if (size == 4)
        std::memset(at, 0, 4);
    else
        std::memset(at, 0, size);
}

// Codes `count` elements. Storage that the pass itself allocated is `fresh`: each element is zeroed just before it is
// coded, and after a failure so are those that were not reached, so that a release pass finds nothing undefined.
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

template <class Element>
bool codeVector(Xdr* xdrs, void* first, std::uint32_t count, std::size_t size, Element element)
{
    return count <= mostElements && codeElements(xdrs, first, count, size, false, element);
}

// `block` is the address of the pointer to the elements.
template <class Element>
bool codeArray(Xdr* xdrs, void* block, std::uint16_t* count, std::uint32_t maximum, std::size_t size, Element element)
{
    std::uint32_t length = *count;
    if (!XdrLongNatural2(xdrs, &length)) return false;
    *count = static_cast<std::uint16_t>(length);
    if (*count > maximum) return false;
    if (*count == 0) return true;

    if (modeOf(xdrs) == Mode::decode) {
        void* const fresh = newBlock(*count, size);
        store(block, fresh);
        return fresh && codeElements(xdrs, fresh, *count, size, true, element);
    }

    void* const held = load(block);
    if (modeOf(xdrs) == Mode::encode) return held && codeElements(xdrs, held, *count, size, false, element);

    // A count whose block could not be allocated is left by a decode that failed; there is nothing to release.
    if (!held) return true;
    const bool result = codeElements(xdrs, held, *count, size, false, element);
    ::operator delete[](held);
    return result;
}

// `pointer` is the address of the pointer to the value.
template <class Element>
bool codeOptional(Xdr* xdrs, void* pointer, std::size_t size, Element value)
{
    void* held = load(pointer);
    unsigned char present = held != nullptr;
    if (!XdrBoolean(xdrs, &present)) return false;

    if (present != 1) {  // 2 and the like mean absent, too
        store(pointer, nullptr);
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
