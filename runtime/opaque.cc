// Opaque data of fixed and variable length, and strings.

#include "collections.h"

#include <quorvaruntime/stream.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string_view>

using namespace quorva;

namespace {

// The trace shows at most this many characters of a string or of opaque data.
constexpr std::size_t shownCharacters = 4096;

// Codes the bytes and their padding. Calls `show` with the number of bytes, to add them to the trace, in between.
template <class Show>
int codeOpaque(Xdr* xdrs, unsigned char* bytes, std::uint32_t length, Show show)
{
    if (modeOf(xdrs) == Mode::release) return 1;
    const auto size = static_cast<unsigned short>(length);
    if (!xdrs->TransferWithoutSwap(bytes, size)) return 0;

    if (isTraced(xdrs)) {
        show(size);
        xdrs->setLineFeed(false);
    }
    unsigned char padding[4] = {};
    return xdrs->TransferWithoutSwap(padding, static_cast<unsigned short>(padded(size) - size));
}

template <class Stream>
void addText(Stream* xdrs, std::string_view shown)
{
    if constexpr (ExposesSink<Stream>) {
        xdrs->sink()->value(shown);
    } else {
        char text[shownCharacters + 1];
        *std::copy(shown.begin(), shown.end(), text) = '\0';
        xdrs->addString3(text);
    }
}

unsigned char* newBytes(std::size_t size)
{
    return static_cast<unsigned char*>(newBlock(size, 1));
}

}  // namespace

int XdrOpaque(Xdr* xdrs, unsigned char* bytes, std::uint32_t length)
{
    return codeOpaque(xdrs, bytes, length, [&](unsigned short size) {
        const std::string_view text(reinterpret_cast<const char*>(bytes), std::min<std::size_t>(size, shownCharacters));
        addText(xdrs, text.substr(0, text.find('\0')));
    });
}

int XdrOpaque2(Xdr* xdrs, unsigned char* bytes, std::uint32_t length)
{
    return codeOpaque(xdrs, bytes, length, [&](unsigned short size) { xdrs->addHexDump(bytes, size); });
}

int XdrString(Xdr* xdrs, char** string, std::uint32_t maximum)
{
    std::uint32_t length = 0;
    switch (modeOf(xdrs)) {
    case Mode::release: ::operator delete[](*string); return 1;
    case Mode::encode: {
        if (!*string) return 0;
        const std::size_t characters = std::strlen(*string);
        if (characters > UINT32_MAX) return 0;  // GCOVR_EXCL_LINE: a test has no string of 4 GiB
        length = static_cast<std::uint32_t>(characters);
        if (!XdrLongNatural2(xdrs, &length) || length > maximum) return 0;
        break;
    }
    case Mode::decode:
        if (!XdrLongNatural2(xdrs, &length)) return 0;
        if (std::size_t{length} + 1 == 0) return 0;  // only where a size has 32 bits
        // The interface requires the allocation before the check of the length. Only both ends of the block are
        // written: a huge length costs address space alone, and a failed pass leaves a zero-terminated string.
        *string = reinterpret_cast<char*>(newBytes(std::size_t{length} + 1));
        if (!*string) return 0;
        (*string)[0] = '\0';
        (*string)[length] = '\0';
        if (length > maximum) return 0;
        break;
    }

    // A length beyond 16 bits moves only as many bytes as its low 16 bits say.
    const auto carried = static_cast<unsigned short>(length);
    if (!XdrOpaque(xdrs, reinterpret_cast<unsigned char*>(*string), carried)) return 0;
    // The rest of the block is uninitialised.
    if (carried != length && modeOf(xdrs) == Mode::decode) (*string)[carried] = '\0';
    return 1;
}

int XdrWrapString(Xdr* xdrs, void* string)
{
    auto* text = static_cast<char*>(string);
    return XdrString(xdrs, &text, 65535);
}

int XdrBytes(Xdr* xdrs, unsigned char** bytes, std::uint16_t* count, std::uint32_t maximum)
{
    std::uint32_t length = *count;
    if (!XdrLongNatural2(xdrs, &length)) return 0;
    setCount(count, length);
    if (*count > maximum) return 0;
    if (*count == 0) return 1;

    switch (modeOf(xdrs)) {
    case Mode::release: ::operator delete[](*bytes); return 1;
    case Mode::encode:
        if (!*bytes) return 0;
        break;
    case Mode::decode:
        *bytes = newBytes(*count);
        if (!*bytes) return 0;
        break;
    }
    if (XdrOpaque2(xdrs, *bytes, *count)) return 1;
    // The block is uninitialised, and the caller may still encode or show the object.
    if (modeOf(xdrs) == Mode::decode) std::memset(*bytes, 0, *count);
    return 0;
}
