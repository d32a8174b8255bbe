// Builds the trace text: tags and values go on the line of their parent until something asks for a line of its own.

#include "trace_text.h"

#include <new>

namespace {

// Length of the well-formed UTF-8 sequence of a character that XML accepts at `text`, or 0. Looks no further than the
// terminating zero.
std::size_t wellFormed(const unsigned char* text)
{
    const unsigned lead = text[0];
    const std::size_t length = lead < 0xC2 ? 0 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 0;
    if (length == 0) return 0;
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

}  // namespace

TraceText::~TraceText()
{
    ::operator delete[](first);
    ::operator delete[](elements);
}

char* TraceText::grow(std::size_t size) noexcept
{
    if (exhausted) return nullptr;
    const std::size_t now = used();
    const std::size_t wanted = now + size + (now > 960 ? now : 960);
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

void TraceText::makeRoom(std::size_t size) noexcept
{
    if (room(size)) roomToPush(Lines::mostPushed);
}

// At most as many as there are open elements, or `mostPushed`.
bool TraceText::roomToPush(std::ptrdiff_t count) noexcept
{
    if (topLimit - top >= count) return true;
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

void TraceText::open(const char* name) noexcept
{
    open({name, std::strlen(name)});
}

void TraceText::close(const char* name) noexcept
{
    close({name, std::strlen(name)});
}

void TraceText::openSlowly(Name name) noexcept
{
    char* to = room(name.length);
    if (!to) return;
    if (lineFeed) to = startLine(to);
    *to++ = '<';
    to = put(to, name);
    *to = '>';
    written(to + 1);
    if (!roomToPush(1)) return;
    push(name, false);
    blanks += 2;
}

void TraceText::closeSlowly(Name name) noexcept
{
    char* to = room(name.length);
    if (!to) return;
    if (top != elements) {
        if (!top[-1].isMarker) blanks -= 2;
        if (pop()) to = startLine(to);
    }
    written(endTag(to, name));
}

void TraceText::marker(const char* markup) noexcept
{
    const Name name = {markup, std::strlen(markup)};
    if (markup[0] == '<' && markup[1] == '/')
        endMarker(name);
    else
        beginMarker(name);
}

void TraceText::beginMarker(Name markup) noexcept
{
    char* to = lineSlowly(markup.length);
    if (!to) return;
    written(put(to, markup));
    if (roomToPush(1)) push(markup, true);
}

void TraceText::endMarker(Name markup) noexcept
{
    char* to = room(markup.length);
    if (!to) return;
    if (top != elements && top[-1].isMarker && pop()) to = startLine(to);
    written(put(to, markup));
}

void TraceText::beginSlowly() noexcept
{
    beginMarker(frame());
    indent();
}

void TraceText::value(const char* text) noexcept
{
    char* to = room(1 + mostEscaped * std::strlen(text));
    if (!to) return;
    if (afterValue) *to++ = ' ';
    at = escaped(to, text);
    afterValue = true;
}

void TraceText::hexDump(const unsigned char* data, std::size_t size) noexcept
{
    const bool rows = size > row;
    while (size > 0) {
        const std::size_t shown = size < row ? size : row;
        char* to = room(2 + 3 * row);
        if (!to) return;
        if (rows)
            to = startLine(to);
        else if (afterValue)
            *to++ = ' ';
        at = hexRow(to, data, shown);
        afterValue = true;
        data += shown;
        size -= shown;
    }
}

char* TraceText::enumerator(char* to, const char* name, std::int32_t number) noexcept
{
    const Name inner = {name, std::strlen(name)};
    *to++ = '<';
    to = put(to, inner);
    *to++ = '>';
    return endTag(decimal(to, number), inner);
}

void TraceText::dumpElement(Name name, const unsigned char* data, std::size_t size) noexcept
{
    open(name);
    hexDump(data, size);
    close(name);
}

// One character that is not plain, or the sequence of bytes that is one.
char* TraceText::escape(char* to, const unsigned char*& from) noexcept
{
    const auto text = [&to](const char* replacement, std::size_t length) {
        return static_cast<char*>(std::memcpy(to, replacement, length)) + length;
    };
    if (const std::size_t length = wellFormed(from)) {
        to = text(reinterpret_cast<const char*>(from), length);
        from += length;
        return to;
    }
    const unsigned char c = *from++;
    switch (c) {
    case '<': return text("&lt;", 4);
    case '>': return text("&gt;", 4);
    case '&': return text("&amp;", 5);
    case '\\': return text("\\\\", 2);
    case '\n': return text("\\n", 2);
    case '\r': return text("\\r", 2);
    case '\t': return text("\\t", 2);
    default: return hexRow(text("\\x", 2), &c, 1);
    }
}

std::string TraceText::path() const
{
    std::string path;
    for (const Element* element = elements; element != top; ++element) {
        if (!path.empty()) path += '/';
        const char* const name = element->name + element->isMarker;
        path.append(name, std::strcspn(name, ">"));
        if (element->isMarker) path += '[' + std::to_string(element->index) + ']';
    }
    return path;
}

void TraceText::clear() noexcept
{
    if (exhausted) {  // its end was drawn in; it has to be had anew
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

// Shown as they are: printable characters but those that mean something in markup, and the backslash.
constinit const std::array<bool, 256> TraceText::isPlain = [] {
    std::array<bool, 256> plain{};
    for (std::size_t c = 0x20; c < 0x7F; ++c) plain[c] = c != '<' && c != '>' && c != '&' && c != '\\';
    return plain;
}();

constinit const std::array<char, 200> TraceText::pairs = [] {
    std::array<char, 200> digits{};
    for (std::size_t i = 0; i < 100; ++i) {
        digits[2 * i] = static_cast<char>('0' + i / 10);
        digits[2 * i + 1] = static_cast<char>('0' + i % 10);
    }
    return digits;
}();

constinit const std::array<char, 1024> TraceText::hexSteps = [] {
    constexpr char digits[] = "0123456789abcdef";
    std::array<char, 1024> all{};
    for (std::size_t i = 0; i < 256; ++i) {
        all[4 * i] = digits[i / 16];
        all[4 * i + 1] = digits[i % 16];
        all[4 * i + 2] = all[4 * i + 3] = ' ';
    }
    return all;
}();

constinit thread_local TraceText* ScopedTrace::innermost = nullptr;

ScopedTrace::ScopedTrace(TraceText& sink) noexcept : outer(innermost)
{
    innermost = &sink;
}

ScopedTrace::~ScopedTrace()
{
    innermost = outer;
}
