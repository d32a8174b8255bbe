// The stream in use, as the runtime sees it: its mode, and what its class offers beyond the contract.
#pragma once

#include <quorvapixdr/primitives.h>

#include <Xdr.h>

#include <charconv>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace quorva {

// A class that tells whether anybody collects the trace. Any other is always told everything.
template <class Stream>
concept TellsTracing = requires(const Stream& xdrs)
{
    {
        xdrs.tracing()
        } -> std::convertible_to<bool>;
};

// A class that exposes its buffer: the next byte to move, the end, and a way to say how far bytes were moved.
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

// A class that exposes what collects its trace: names are handed over with their length, numbers as numbers.
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

// The mode is compared as a number: a platform's class may name its enumerators as it likes.
inline Mode modeOf(const Xdr* xdrs)
{
    return static_cast<Mode>(xdrs->streamMode);
}

template <class Stream>
bool isTraced(const Stream* xdrs)
{
    if constexpr (TellsTracing<Stream>)
        return xdrs->tracing();
    else
        return true;
}

// Opens and closes an element of the trace. `name` is zero-terminated after its last character. Call these only while
// the stream is traced.
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

// Adds a number in decimal, as printf writes it. Call it only while the stream is traced.
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

// Around an element of an array that is decoded.
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

// `size` zeroed bytes for an object that the caller did not bring, left in the stream's root allocation slot; null
// where memory is short.
void* newRoot(Xdr* xdrs, std::size_t size);

}  // namespace quorva
