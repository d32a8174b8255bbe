// Builds the trace text: tags and values go on the line of their parent until something asks for a line of its own.

#include "trace_text.h"

#include <cstring>
#include <new>

namespace {

thread_local TraceText* innermost = nullptr;

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

const char hexDigits[] = "0123456789abcdef";

}  // namespace

template <class Action>
void TraceText::collect(Action&& action) noexcept
{
    if (exhausted) return;
    try {
        action();
    } catch (const std::bad_alloc&) {
        exhausted = true;
    }
}

void TraceText::startLine()
{
    if (!elements.empty()) elements.back().spansLines = true;
    if (!collected.empty()) collected += '\n';
    std::size_t depth = static_cast<std::size_t>(tabs > 0 ? tabs : 0);
    for (const Element& element : elements) depth += !element.isMarker;
    collected.append(2 * depth, ' ');
    afterValue = false;
}

void TraceText::push(const char* name, bool isMarker)
{
    unsigned& siblings = elements.empty() ? rootMarkers : elements.back().markers;
    elements.push_back({name, isMarker ? siblings++ : 0, 0, isMarker, false});
    lineFeed = true;
    afterValue = false;
}

void TraceText::open(const char* name) noexcept
{
    collect([&] {
        if (lineFeed) startLine();
        collected += '<';
        collected += name;
        collected += '>';
        push(name, false);
    });
}

void TraceText::close(const char* name) noexcept
{
    collect([&] {
        bool spansLines = false;
        if (!elements.empty()) {
            spansLines = elements.back().spansLines;
            elements.pop_back();
        }
        if (spansLines) startLine();
        collected += "</";
        collected += name;
        collected += '>';
        lineFeed = true;
        afterValue = false;
    });
}

void TraceText::marker(const char* markup) noexcept
{
    collect([&] {
        if (markup[0] == '<' && markup[1] == '/') {
            if (!elements.empty() && elements.back().isMarker) {
                if (elements.back().spansLines) startLine();
                elements.pop_back();
            }
            collected += markup;
            lineFeed = true;
            afterValue = false;
        } else {
            startLine();
            collected += markup;
            push(markup, true);
        }
    });
}

void TraceText::value(const char* text) noexcept
{
    collect([&] {
        if (afterValue) collected += ' ';
        appendEscaped(text);
        afterValue = true;
    });
}

void TraceText::hexDump(const unsigned char* data, std::size_t size) noexcept
{
    collect([&] {
        for (std::size_t i = 0; i < size; ++i) {
            if (size > 16 && i % 16 == 0)
                startLine();
            else if (i % 16 != 0 || afterValue)
                collected += ' ';
            collected += hexDigits[data[i] >> 4];
            collected += hexDigits[data[i] & 15];
            afterValue = true;
        }
    });
}

void TraceText::appendEscaped(const char* text)
{
    const auto* at = reinterpret_cast<const unsigned char*>(text);
    while (*at != 0) {
        const unsigned char c = *at;
        if (const std::size_t length = wellFormed(at)) {
            collected.append(reinterpret_cast<const char*>(at), length);
            at += length;
            continue;
        }
        ++at;
        switch (c) {
        case '<': collected += "&lt;"; break;
        case '>': collected += "&gt;"; break;
        case '&': collected += "&amp;"; break;
        case '\\': collected += "\\\\"; break;
        case '\n': collected += "\\n"; break;
        case '\r': collected += "\\r"; break;
        case '\t': collected += "\\t"; break;
        default:
            if (c >= 0x20 && c < 0x7F) {
                collected += static_cast<char>(c);
            } else {
                collected += "\\x";
                collected += hexDigits[c >> 4];
                collected += hexDigits[c & 15];
            }
        }
    }
}

std::string TraceText::path() const
{
    std::string path;
    for (const Element& element : elements) {
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
    collected.clear();
    elements.clear();
    tabs = 0;
    rootMarkers = 0;
    lineFeed = true;
    afterValue = false;
    exhausted = false;
}

ScopedTrace::ScopedTrace(TraceText& sink) noexcept : outer(innermost)
{
    innermost = &sink;
}

ScopedTrace::~ScopedTrace()
{
    innermost = outer;
}

TraceText* ScopedTrace::current() noexcept
{
    return innermost;
}
