// Helpers of the hand-written encode and decode functions of both sets of messages.
#pragma once

#include <quorvapixdr/primitives.h>

#include <bit>
#include <cstdint>
#include <cstring>
#include <new>
#include <type_traits>

namespace quorva::bench::limit {

static_assert(std::endian::native == std::endian::little, "the hand-written code always swaps bytes");

using Number = std::uint32_t;
using Out = unsigned char*;       // where the next byte goes; null: refused
using In = const unsigned char*;  // where the next byte is; null: refused

inline constexpr Number most = 65535;  // elements of an array without a maximum of its own

constexpr Number padded(Number length)
{
    return (length + 3) & ~Number{3};
}

template <class T>
Number unitOf(T value)
{
    return static_cast<Number>(value);
}

inline bool fits(const unsigned char* at, const unsigned char* end, std::size_t size)
{
    return static_cast<std::size_t>(end - at) >= size;
}

// The number of bytes from the start of the buffer to `at`; 0 after an error.
template <class At>
std::size_t lengthOf(const unsigned char* start, At at)
{
    return at ? static_cast<std::size_t>(at - start) : 0;
}

// ---- Numbers --------------------------------------------------------------------------------------------------------

inline Out put(Out at, Number number)
{
    number = __builtin_bswap32(number);
    std::memcpy(at, &number, 4);
    return at + 4;
}

inline Out put(Out at, Number first, Number second)
{
    return put(put(at, first), second);
}

inline Number get(In at)
{
    Number number;
    std::memcpy(&number, at, 4);
    return __builtin_bswap32(number);
}

// Copies `count` numbers of 32 bits between wire and memory.
template <class To, class From>
void swapAll(To* to, const From* from, std::size_t count)
{
    auto* out = reinterpret_cast<unsigned char*>(to);
    const auto* in = reinterpret_cast<const unsigned char*>(from);
    for (std::size_t i = 0; i < count; ++i) {
        const Number number = get(in + 4 * i);
        std::memcpy(out + 4 * i, &number, 4);
    }
}

// Writes the elements of an array of numbers. The caller has checked the available bytes.
template <class Array>
Out putNumbers(Out at, const Array& array)
{
    swapAll(at, array.elements, array.count);
    return at + std::size_t{4} * array.count;
}

template <class Array>
In getNumbers(In at, In end, Number count, Array& array)
{
    if (!fits(at, end, std::size_t{4} * count)) return nullptr;
    array.elements = nullptr;
    if (count != 0) {
        array.elements = new (std::nothrow) std::remove_pointer_t<decltype(array.elements)>[count];
        if (!array.elements) return nullptr;
        swapAll(array.elements, at, count);
    }
    array.count = static_cast<std::uint16_t>(count);
    return at + std::size_t{4} * count;
}

// A message that is one variable-length array of numbers.
template <class Array>
std::size_t encodeNumbers(const Array& array, unsigned char* buffer, std::size_t available)
{
    if (available < 4 + std::size_t{4} * array.count || (!array.elements && array.count != 0)) return 0;
    return lengthOf(buffer, putNumbers(put(buffer, array.count), array));
}

template <class Array>
std::size_t decodeNumbers(Array& array, const unsigned char* message, std::size_t length)
{
    array = {0, nullptr};
    if (length < 4) return 0;
    const Number count = get(message);
    return count > most ? 0 : lengthOf(message, getNumbers(message + 4, message + length, count, array));
}

// ---- Bytes ----------------------------------------------------------------------------------------------------------

// Writes the bytes and their padding. Clears the last unit first.
inline Out putBytes(Out at, const void* bytes, Number length)
{
    if (length == 0) return at;
    const Number all = padded(length);
    std::memset(at + all - 4, 0, 4);
    std::memcpy(at, bytes, length);
    return at + all;
}

inline In getBytes(In at, In end, Number count, Counted<unsigned char>& bytes)
{
    if (!fits(at, end, padded(count))) return nullptr;
    bytes.count = static_cast<std::uint16_t>(count);
    bytes.elements = nullptr;
    if (count == 0) return at;
    bytes.elements = new (std::nothrow) unsigned char[count];
    if (!bytes.elements) return nullptr;
    std::memcpy(bytes.elements, at, count);
    return at + padded(count);
}

inline In getString(In at, In end, Number maximum, char*& string)
{
    const Number length = get(at);
    at += 4;
    if (length > maximum || !fits(at, end, padded(length))) return nullptr;
    string = new (std::nothrow) char[length + 1];
    if (!string) return nullptr;
    std::memcpy(string, at, length);
    string[length] = '\0';
    return at + padded(length);
}

// ---- Arrays of structs ----------------------------------------------------------------------------------------------

// Writes the count and the elements, each by `putOne`. The caller has checked the bytes of the count.
template <auto putOne, class Array>
Out putArray(Out at, Out end, const Array& array)
{
    if (!array.elements && array.count != 0) return nullptr;
    at = put(at, array.count);
    for (std::size_t i = 0; i < array.count; ++i)
        if (!(at = putOne(at, end, array.elements[i]))) return nullptr;
    return at;
}

// Reads the count and the elements, each by `getOne`, which takes at least `least` bytes. After an error the array has
// the elements that are complete.
template <auto getOne, class Array>
In getArray(In at, In end, std::size_t least, Array& array)
{
    array = {0, nullptr};
    const Number count = get(at);
    at += 4;
    if (count > most || !fits(at, end, least * count)) return nullptr;
    if (count == 0) return at;
    array.elements = new (std::nothrow) std::remove_pointer_t<decltype(array.elements)>[count];
    if (!array.elements) return nullptr;
    for (Number i = 0; i < count; ++i) {
        at = getOne(at, end, array.elements[i]);
        if (!at) {
            array.count = static_cast<std::uint16_t>(i);
            return nullptr;
        }
    }
    array.count = static_cast<std::uint16_t>(count);
    return at;
}

}  // namespace quorva::bench::limit
