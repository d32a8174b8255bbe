// How the runtime uses the stream: its mode, and what its class offers beyond the contract.
#pragma once

#include <quorvapixdr/primitives.h>

#include <Xdr.h>

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quorva {

// A stream class that tells if a trace is collected. Any other is given every element and text of it.
template <class Stream>
concept TellsTracing = requires(const Stream& xdrs)
{
    {
        xdrs.tracing()
        } -> std::convertible_to<bool>;
};

// A stream class that exposes its buffer: the next byte, the end, and a way to set the next byte.
template <class Stream>
concept ExposesBuffer = TellsTracing<Stream> && requires(Stream& xdrs, unsigned char* at)
{
    {
        xdrs.cursor()
        } -> std::same_as<unsigned char*>;
    {
        xdrs.end()
        } -> std::same_as<unsigned char*>;
    xdrs.moveTo(at);
};

// A stream class that exposes the sink of its trace, which takes names with their lengths, and numbers as numbers.
template <class Stream>
concept ExposesSink = TellsTracing<Stream> && requires(Stream& xdrs, std::string_view name, std::int64_t number)
{
    xdrs.sink()->open(name);
    xdrs.sink()->close(name);
    xdrs.sink()->openMarker(name);
    xdrs.sink()->closeMarker(name);
    xdrs.sink()->value(name);
    xdrs.sink()->value(number);
    xdrs.sink()->element(name, number);
    xdrs.sink()->element(name, name, number);
};

// The stream's mode, read as a number: a platform's class may name its enumerators differently.
inline Mode modeOf(const Xdr* xdrs)
{
    return static_cast<Mode>(xdrs->streamMode);
}

// True if a trace is collected, or may be.
template <class Stream>
bool isTraced(const Stream* xdrs)
{
    if constexpr (TellsTracing<Stream>)
        return xdrs->tracing();
    else
        return true;
}

// Opens or closes an element of the trace. A zero byte must follow the last character of `name`. Call these only if
// `isTraced`.
template <class Stream>
void openElement(Stream* xdrs, std::string_view name)
{
    if constexpr (ExposesSink<Stream>)
        xdrs->sink()->open(name);
    else
        xdrs->addOpenTag(name.data());
}

template <class Stream>
void closeElement(Stream* xdrs, std::string_view name)
{
    if constexpr (ExposesSink<Stream>)
        xdrs->sink()->close(name);
    else
        xdrs->addCloseTag(name.data());
}

// Adds a number to the trace, in decimal. Call it only if `isTraced`.
template <class Stream>
void showNumber(Stream* xdrs, std::int64_t number)
{
    if constexpr (ExposesSink<Stream>) {
        xdrs->sink()->value(number);
    } else {
        char digits[24];
        *std::to_chars(digits, digits + sizeof digits - 1, number).ptr = '\0';
        xdrs->addString2(digits);
    }
}

// Opens or closes the marker around an element of a decoded array. Call these only if `isTraced`.
template <class Stream>
void openValue(Stream* xdrs)
{
    xdrs->setLineFeed(true);
    if constexpr (ExposesSink<Stream>)
        xdrs->sink()->openMarker("<value>");
    else
        xdrs->addString("<value>");
    xdrs->addTab();
}

template <class Stream>
void closeValue(Stream* xdrs)
{
    xdrs->delTab();
    if constexpr (ExposesSink<Stream>)
        xdrs->sink()->closeMarker("</value>");
    else
        xdrs->addString("</value>");
}

// Allocates an object of `size` zeroed bytes and stores it in the stream's root allocation slot, for a routine that was
// given a null object. Returns null when memory is short.
void* newRoot(Xdr* xdrs, std::size_t size);

}  // namespace quorva
