// Collections of one element type: vectors in place, counted blocks, optional values.

#include "direction.h"
#include "shared.h"

#include <quorvapixdr/walk.h>

#include <cstdint>

using namespace quorva;

namespace {

constexpr std::uint32_t mostElements = 65535;  // counts have 16 bits

// Codes `count` elements. Storage that the pass itself allocated is `fresh`: each element is emptied just before its
// routine sees it, and after a failure so are those that were never begun, so that a release pass finds nothing that
// nobody wrote.
int codeElements(Xdr* xdrs, void* first, std::uint32_t count, std::uint32_t size, XdrRoutine element, bool fresh)
{
    const bool framed = directionOf(xdrs) == Direction::decode && walk::traced(xdrs);
    auto* at = static_cast<unsigned char*>(first);
    for (std::uint32_t i = 0; i < count; ++i, at += size) {
        if (framed) {
            xdrs->setLineFeed(true);
            xdrs->addString("<value>");
            xdrs->addTab();
        }
        if (fresh) std::memset(at, 0, size);
        if (!element(xdrs, at)) {
            if (fresh) std::memset(at + size, 0, std::size_t{count - i - 1} * size);
            return 0;
        }
        if (framed) {
            xdrs->delTab();
            xdrs->addString("</value>");
        }
    }
    if (walk::traced(xdrs)) xdrs->addLine();
    return 1;
}

}  // namespace

int XdrVector(Xdr* xdrs, void* first, std::uint32_t count, std::uint32_t size, XdrRoutine element)
{
    return count <= mostElements && codeElements(xdrs, first, count, size, element, false);
}

int XdrArray(Xdr* xdrs, void* block, std::uint16_t* count, std::uint32_t maximum, std::uint32_t size, XdrRoutine element)
{
    std::uint32_t length = *count;
    if (!XdrLongNatural2(xdrs, &length)) return 0;
    *count = static_cast<std::uint16_t>(length);
    if (*count > maximum) return 0;
    if (*count == 0) return 1;

    if (directionOf(xdrs) == Direction::decode) {
        void* const fresh = size > SIZE_MAX / *count ? nullptr : ::operator new[](std::size_t{*count} * size, std::nothrow);
        store(block, fresh);
        return fresh && codeElements(xdrs, fresh, *count, size, element, true);
    }

    void* const held = load(block);
    if (directionOf(xdrs) == Direction::encode) return held && XdrVector(xdrs, held, *count, size, element);

    // A count whose block could not be had is left by a decode that failed; there is nothing to release.
    if (!held) return 1;
    const int result = XdrVector(xdrs, held, *count, size, element);
    ::operator delete[](held);
    return result;
}

int XdrPointer(Xdr* xdrs, void* pointer, std::uint32_t size, XdrRoutine value)
{
    void* held = load(pointer);
    unsigned char present = held != nullptr;
    if (!XdrBoolean(xdrs, &present)) return 0;

    if (present != 1) {  // 2 and the like mean absent, too
        store(pointer, nullptr);
        return 1;
    }
    switch (directionOf(xdrs)) {
    case Direction::decode:
        held = ::operator new[](size, std::nothrow);
        store(pointer, held);
        return held && value(xdrs, std::memset(held, 0, size));
    case Direction::encode:
        return held && value(xdrs, held);
    case Direction::release:
        break;
    }
    const int result = value(xdrs, held);
    ::operator delete[](held);
    return result;
}
