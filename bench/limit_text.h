// Helpers of the hand-written traces of both sets of messages. The trace of a message is its values and a few constants
// around them.
#pragma once

#include <algorithm>
#include <array>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quorva::bench::limit {

// ---- Constants of known length --------------------------------------------------------------------------------------

// A text of N characters, zero-terminated, that can be a template argument.
template <std::size_t N>
struct Constant {
    char chars[N + 1] = {};
    consteval Constant() = default;
    consteval Constant(const char (&text)[N + 1]) { std::copy_n(text, N + 1, chars); }
    static constexpr std::size_t size = N;
};
template <std::size_t N>
Constant(const char (&)[N]) -> Constant<N - 1>;

// The texts one after the other.
template <std::size_t... sizes>
consteval auto joined(const Constant<sizes>&... parts)
{
    Constant<(sizes + ...)> whole;
    char* at = whole.chars;
    ((at = std::copy_n(parts.chars, sizes, at)), ...);
    return whole;
}

// The text with `depth` more levels of two blanks after each line break.
template <Constant text, std::size_t depth>
consteval auto indented()
{
    constexpr auto breaks = static_cast<std::size_t>(std::count(text.chars, text.chars + text.size, '\n'));
    Constant<text.size + breaks * 2 * depth> result;
    char* at = result.chars;
    for (std::size_t i = 0; i < text.size; ++i) {
        *at++ = text.chars[i];
        if (text.chars[i] == '\n') at = std::fill_n(at, 2 * depth, ' ');
    }
    return result;
}

// ---- Values ---------------------------------------------------------------------------------------------------------

using Out = char*;  // where the next character goes; null: refused

// More characters than the constants around one attribute or reading have.
inline constexpr std::size_t anyTags = 512;

// More characters than an enumerator or a number with its markers, and than a copy of fixed size.
inline constexpr std::size_t anyElement = 160;

// Writes a constant text.
template <Constant text, std::size_t depth = 0>
Out add(Out at)
{
    constexpr auto whole = indented<text, depth>();
    std::memcpy(at, whole.chars, whole.size);
    return at + whole.size;
}

inline constexpr auto twoDigits = [] {
    std::array<char, 200> table = {};
    for (std::size_t i = 0; i < 100; ++i) {
        table[2 * i] = static_cast<char>('0' + i / 10);
        table[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return table;
}();

inline Out addNumber(Out at, std::uint32_t number)
{
    if (number < 10) {
        *at = static_cast<char>('0' + number);
        return at + 1;
    }
    if (number < 100) {
        std::memcpy(at, &twoDigits[2 * number], 2);
        return at + 2;
    }
    return std::to_chars(at, at + 10, number).ptr;
}

inline Out addNumber(Out at, std::int32_t number)
{
    if (number < 0) *at++ = '-';
    return addNumber(at, number < 0 ? 0 - static_cast<std::uint32_t>(number) : static_cast<std::uint32_t>(number));
}

inline constexpr auto hexTriples = [] {
    std::array<std::array<char, 4>, 256> table = {};
    for (std::size_t i = 0; i < 256; ++i) table[i] = {"0123456789abcdef"[i / 16], "0123456789abcdef"[i % 16], ' ', ' '};
    return table;
}();

// Hexadecimal bytes with a blank after each but the last.
inline Out addHex(Out at, const unsigned char* bytes, std::size_t count)
{
    for (std::size_t i = 0; i < count; ++i, at += 3) std::memcpy(at, hexTriples[bytes[i]].data(), 4);
    return count == 0 ? at : at - 1;
}

// The element of an enumerator, "<NAME>7</NAME>", in an array of fixed size: a copy of fixed size is fast.
struct Enumerator {
    std::size_t size = 0;
    char chars[120] = {};

    constexpr Enumerator(const char* name, unsigned number)
    {
        const auto put = [&](char c) { chars[size++] = c; };
        const auto tag = [&] {
            for (const char* c = name; *c; ++c) put(*c);
            put('>');
        };
        put('<');
        tag();
        if (number >= 10) put(static_cast<char>('0' + number / 10));
        put(static_cast<char>('0' + number % 10));
        put('<');
        put('/');
        tag();
    }
};

template <std::size_t N, class E>
Out addEnumerator(Out at, const Enumerator (&table)[N], E value)
{
    const auto number = static_cast<std::uint32_t>(value);
    if (number >= N) return nullptr;
    const Enumerator& found = table[number];
    std::memcpy(at, found.chars, 48);
    if (found.size > 48) [[unlikely]]
        std::memcpy(at + 48, found.chars + 48, sizeof found.chars - 48);
    return at + found.size;
}

// The contents of an element of that depth as hexadecimal bytes. Up to sixteen stay on the line of the tag. The caller
// has checked the available bytes.
template <std::size_t depth>
Out addHexLines(Out at, const unsigned char* bytes, std::size_t count)
{
    if (count <= 16) return addHex(at, bytes, count);
    for (std::size_t rest = count; rest > 0;) {
        const std::size_t now = std::min<std::size_t>(rest, 16);
        at = addHex(add<"\n  ", depth>(at), bytes, now);
        bytes += now;
        rest -= now;
    }
    return add<"\n", depth>(at);
}

// The most characters that `addHexLines` writes.
constexpr std::size_t hexLinesSize(std::size_t count, std::size_t depth)
{
    return 3 * count + (count / 16 + 2) * (3 + 2 * depth);
}

// Writes the elements of an array of enumerators or numbers. `depth` is that of the array.
template <bool decoding, std::size_t depth, class T, class Add>
Out addElements(Out at, Out end, const T* elements, std::size_t count, Add addOne)
{
    if (static_cast<std::size_t>(end - at) < anyTags + count * (anyElement + 2 * depth)) return nullptr;
    for (std::size_t i = 0; i < count; ++i) {
        if constexpr (decoding) at = add<"\n  <value>", depth>(at);
        if (!(at = addOne(at, elements[i], i))) return nullptr;
        if constexpr (decoding) at = add<"</value>">(at);
    }
    if constexpr (decoding)
        if (count > 0) at = add<"\n", depth>(at);
    return at;
}

// Writes a string with markup and the backslash escaped. Refuses bytes that are not printable ASCII: no measured string
// of this kind has one.
inline Out addEscaped(Out at, const char* text, std::size_t length)
{
    for (std::size_t i = 0; i < length; ++i) {
        const char c = text[i];
        switch (c) {
        case '<': at = add<"&lt;">(at); break;
        case '>': at = add<"&gt;">(at); break;
        case '&': at = add<"&amp;">(at); break;
        case '\\': at = add<"\\\\">(at); break;
        default:
            if (c < ' ' || c > '~') return nullptr;
            *at++ = c;
        }
    }
    return at;
}

// ---- Whole messages -------------------------------------------------------------------------------------------------

inline std::size_t lengthOf(const char* text, Out end)
{
    return end ? static_cast<std::size_t>(end - text) : 0;
}

// Writes an array of structs. In a decode pass each element has a tag of its own, so `addOne` is one level deeper.
template <bool decoding, auto addOne, class Array>
std::size_t traceStructs(const Array& array, char* text, std::size_t available)
{
    const Out end = text + available;
    Out at = text;
    for (std::size_t i = 0; i < array.count; ++i) {
        if (static_cast<std::size_t>(end - at) < anyElement) return 0;
        if (i > 0) *at++ = '\n';
        if constexpr (decoding) at = add<"<value>\n  ">(at);
        if (!(at = addOne(at, end, array.elements[i]))) return 0;
        if (static_cast<std::size_t>(end - at) < anyElement) return 0;
        if constexpr (decoding) at = add<"\n</value>">(at);
    }
    return lengthOf(text, at);
}

template <bool decoding, class Array>
std::size_t traceNumbers(const Array& numbers, char* text, std::size_t available)
{
    if (available < 32 * std::size_t{numbers.count}) return 0;
    Out at = text;
    for (std::size_t i = 0; i < numbers.count; ++i) {
        if (i > 0) *at++ = decoding ? '\n' : ' ';
        if constexpr (decoding) at = add<"<value>">(at);
        at = addNumber(at, numbers.elements[i]);
        if constexpr (decoding) at = add<"</value>">(at);
    }
    return lengthOf(text, at);
}

}  // namespace quorva::bench::limit
