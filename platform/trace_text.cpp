// Builds the trace text.

#include "trace_text.h"

#include <array>
#include <new>

namespace {

// The length of the first character, if it is a well-formed UTF-8 sequence of a character that XML accepts; else 0.
std::size_t wellFormed(std::string_view characters)
{
    const auto* const text = reinterpret_cast<const unsigned char*>(characters.data());
    const unsigned lead = text[0];
    const std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (length == 0 || length > characters.size()) return 0;
    unsigned long character = lead & (0xFFu >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((text[i] & 0xC0) != 0x80) return 0;
        character = character << 6 | (text[i] & 0x3Fu);
    }
    const unsigned long least[] = {0x80, 0x800, 0x10000};
    if (character < least[length - 2] || character > 0x10FFFF) return 0;
    if (character < 0xA0 || (character >= 0xD800 && character < 0xE000)) return 0;
    return (character & 0xFFFE) == 0xFFFE ? 0 : length;
}

// Printable characters that need no escape.
constexpr std::array<bool, 256> isPlain = [] {
    std::array<bool, 256> plain{};
    for (std::size_t c = 0x20; c < 0x7F; ++c) plain[c] = c != '<' && c != '>' && c != '&' && c != '\\';
    return plain;
}();

char* putHex(char* to, unsigned char byte)
{
    constexpr char digits[] = "0123456789abcdef";
    to[0] = digits[byte >> 4];
    to[1] = digits[byte & 15];
    return to + 2;
}

}  // namespace

TraceText::~TraceText()
{
    ::operator delete[](first);
    ::operator delete[](elements);
}

char* TraceText::grow(std::size_t size) noexcept
{
    if (exhausted) return nullptr;
    constexpr std::size_t leastGrowth = 960;
    const std::size_t now = used();
    const std::size_t wanted = now + size + (now > leastGrowth ? now : leastGrowth);
    char* const larger = static_cast<char*>(::operator new[](wanted, std::nothrow));
    if (!larger) {
        exhaust();
        return nullptr;
    }
    if (now > 0) std::memcpy(larger, first, now);
    ::operator delete[](first);
    first = larger;
    at = larger + now;
    limit = larger + wanted;
    return at;
}

void TraceText::exhaust() noexcept
{
    exhausted = true;
    limit = at;
}

bool TraceText::growStack() noexcept
{
    const auto depth = static_cast<std::size_t>(top - elements);
    const std::size_t wanted = depth == 0 ? 16 : 2 * depth;
    auto* const larger = static_cast<Element*>(::operator new[](wanted * sizeof(Element), std::nothrow));
    if (!larger) {
        exhaust();
        return false;
    }
    if (depth > 0) std::memcpy(larger, elements, depth * sizeof(Element));
    ::operator delete[](elements);
    elements = larger;
    top = larger + depth;
    topLimit = larger + wanted;
    return true;
}

char* TraceText::escape(char* to, std::string_view& text) noexcept
{
    const std::size_t length = wellFormed(text);
    const std::string_view character = text.substr(0, length > 0 ? length : 1);
    text.remove_prefix(character.size());
    if (length > 0) return put(to, character);
    switch (character[0]) {
    case '<': return put(to, "&lt;");
    case '>': return put(to, "&gt;");
    case '&': return put(to, "&amp;");
    case '\\': return put(to, "\\\\");
    case '\n': return put(to, "\\n");
    case '\r': return put(to, "\\r");
    case '\t': return put(to, "\\t");
    default: return putHex(put(to, "\\x"), static_cast<unsigned char>(character[0]));
    }
}

void TraceText::value(std::string_view text) noexcept
{
    char* to = reserve(1 + maxEscaped * text.size());
    if (!to) return;
    to = startValue(to);
    while (!text.empty()) {
        if (isPlain[static_cast<unsigned char>(text[0])]) {
            *to++ = text[0];
            text.remove_prefix(1);
        } else {
            to = escape(to, text);
        }
    }
    at = to;
}

void TraceText::hexDump(const unsigned char* data, std::size_t size) noexcept
{
    const bool rows = size > bytesPerLine;
    while (size > 0) {
        const std::size_t shown = size < bytesPerLine ? size : bytesPerLine;
        char* to = reserve(1 + 3 * bytesPerLine);
        if (!to) return;
        to = startValue(rows ? startLine(to) : to);
        for (std::size_t i = 0; i < shown; ++i) {
            if (i > 0) *to++ = ' ';
            to = putHex(to, data[i]);
        }
        at = to;
        data += shown;
        size -= shown;
    }
}

std::string TraceText::path() const
{
    std::string path;
    for (const Element* element = elements; element != top; ++element) {
        if (!path.empty()) path += '/';
        if (element->isMarker)
            path.append(element->name.substr(1, element->name.find('>') - 1))
                .append('[' + std::to_string(element->index) + ']');
        else
            path.append(element->name);
    }
    return path;
}

void TraceText::clear() noexcept
{
    if (exhausted) {  // `limit` is no longer the end of the memory
        ::operator delete[](first);
        first = limit = nullptr;
    }
    at = first;
    blanks = 0;
    top = elements;
    tabs = 0;
    rootMarkers = 0;
    lineFeed = true;
    afterValue = false;
    hasLine = false;
    exhausted = false;
}

constinit thread_local TraceText* ScopedTrace::innermost = nullptr;

ScopedTrace::ScopedTrace(TraceText& sink) noexcept : outer(innermost)
{
    innermost = &sink;
}

ScopedTrace::~ScopedTrace()
{
    innermost = outer;
}
