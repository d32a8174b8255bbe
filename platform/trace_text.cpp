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
        exhausted = true;
        limit = at;
        return nullptr;
    }
    if (now > 0) std::memcpy(larger, first, now);
    ::operator delete[](first);
    first = larger;
    at = larger + now;
    limit = larger + wanted;
    return at;
}

bool TraceText::push(Name name, bool isMarker) noexcept
{
    if (depth == depthRoom) {
        const std::size_t wanted = depthRoom == 0 ? 16 : 2 * depthRoom;
        auto* const larger = static_cast<Element*>(::operator new[](wanted * sizeof(Element), std::nothrow));
        if (!larger) {
            exhausted = true;
            limit = at;
            return false;
        }
        if (depth > 0) std::memcpy(larger, elements, depth * sizeof(Element));
        ::operator delete[](elements);
        elements = larger;
        depthRoom = wanted;
    }
    elements[depth] = {name.text, used(), isMarker ? (*markers())++ : 0, 0, isMarker};
    ++depth;
    lineFeed = true;
    afterValue = false;
    return true;
}

void TraceText::open(Name name) noexcept
{
    char* to = room(name.length);
    if (!to) return;
    if (lineFeed) to = startLine(to);
    *to++ = '<';
    to = put(to, name);
    *to++ = '>';
    at = to;
    if (!push(name, false)) return;
    ++nesting;
    blanks += 2;
}

void TraceText::close(Name name) noexcept
{
    char* to = room(name.length);
    if (!to) return;
    if (depth > 0) {
        const Element& closed = elements[--depth];
        if (!closed.isMarker) {
            --nesting;
            blanks -= 2;
        }
        if (lineStart > closed.begin) to = startLine(to);
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
    char* to = room(markup.length);
    if (!to) return;
    at = put(startLine(to), markup);
    push(markup, true);
}

void TraceText::endMarker(Name markup) noexcept
{
    char* to = room(markup.length);
    if (!to) return;
    if (depth > 0 && elements[depth - 1].isMarker && lineStart > elements[--depth].begin) to = startLine(to);
    written(put(to, markup));
}

void TraceText::beginValue() noexcept
{
    beginMarker(frame);
    indent();
}

void TraceText::endValue() noexcept
{
    outdent();
    endMarker({"</value>", 8});
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
        char* to = room(1 + 3 * row);
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
    for (std::size_t i = 0; i < depth; ++i) {
        const Element& element = elements[i];
        if (!path.empty()) path += '/';
        if (!element.isMarker) {
            path += element.name;
        } else {
            path.append(element.name + 1, std::strcspn(element.name + 1, ">"));
            path += '[' + std::to_string(element.index) + ']';
        }
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
    depth = 0;
    nesting = 0;
    blanks = 0;
    lineStart = 0;
    tabs = 0;
    rootMarkers = 0;
    lineFeed = true;
    afterValue = false;
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

constinit const std::array<char, 512> TraceText::hexPairs = [] {
    constexpr char digits[] = "0123456789abcdef";
    std::array<char, 512> all{};
    for (std::size_t i = 0; i < 256; ++i) {
        all[2 * i] = digits[i / 16];
        all[2 * i + 1] = digits[i % 16];
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
