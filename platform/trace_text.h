// The trace of a pass as text: a tree of elements that an XML parser accepts, built while the pass runs.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// Collects the trace of one pass or of several in a row. After a successful pass every element is closed; after a
// failed one the open elements are the path to the element that failed. Contents are escaped, so that no byte of a
// message can end an element: markup as entities; bytes that are neither printable nor part of well-formed UTF-8 as \n,
// \r, \t or \xHH; the backslash itself doubled.
//
// When memory runs out, the trace ends, but the pass goes on: `complete()` is then false.
class TraceText {
public:
    TraceText() noexcept = default;
    ~TraceText();
    TraceText(const TraceText&) = delete;
    TraceText& operator=(const TraceText&) = delete;

    // Opens an element, on a new line unless setLineFeed(false) came before. The characters of `name` must stay valid
    // until the element is closed.
    void open(std::string_view name) noexcept
    {
        char* const to = beginElement(name.size() + brackets);
        if (!to) return;
        written(putTag(to, name));
        push(name, 0, false);
        blanks += indentWidth;
    }

    // Closes the innermost element: on the line of its contents, or on a new line if a line began inside.
    void close(std::string_view name) noexcept
    {
        char* to = reserve(name.size() + brackets);
        if (!to) return;
        if (top != elements) {
            if (!top[-1].isMarker) blanks -= indentWidth;
            if (pop()) to = startLine(to);
        }
        written(putEndTag(to, name));
    }

    // Adds "<value>" or "</value>" on a new line; the two count as an element in `path()`. The characters of the first
    // must stay valid until the second is added. `marker` takes either.
    void openMarker(std::string_view markup) noexcept
    {
        char* const to = reserve(markup.size());
        if (!to) return;
        written(put(startLine(to), markup));
        push(markup, (top == elements ? rootMarkers : top[-1].markers)++, true);
    }
    void closeMarker(std::string_view markup) noexcept
    {
        char* to = reserve(markup.size());
        if (!to) return;
        if (top != elements && top[-1].isMarker && pop()) to = startLine(to);
        written(put(to, markup));
    }
    void marker(std::string_view markup) noexcept
    {
        if (markup.starts_with("</"))
            closeMarker(markup);
        else
            openMarker(markup);
    }

    // Adds contents to the innermost element; a space separates two in a row. A number is shown in decimal.
    void value(std::string_view text) noexcept;
    void value(std::int64_t number) noexcept
    {
        if (char* const to = reserve(maxDigits)) at = putNumber(startValue(to), number);
    }

    // Adds an element around a number, or around an element around a number, at once: the same text as from open(),
    // setLineFeed(false), value() and close(). Most of a trace is such elements.
    void element(std::string_view name, std::int64_t number) noexcept
    {
        char* const to = beginElement(2 * (name.size() + brackets) + maxDigits);
        if (to) written(putEndTag(putNumber(putTag(to, name), number), name));
    }
    void element(std::string_view name, std::string_view inner, std::int64_t number) noexcept
    {
        char* const to = beginElement(2 * (name.size() + inner.size() + 2 * brackets) + maxDigits);
        if (!to) return;
        char* const end = putEndTag(putNumber(putTag(putTag(to, name), inner), number), inner);
        written(putEndTag(end, name));
    }

    // Adds bytes in hexadecimal, sixteen a line; up to sixteen stay on the line of their tag.
    void hexDump(const unsigned char* data, std::size_t size) noexcept;

    // Indents the lines to come by two spaces more, or less.
    void indent() noexcept
    {
        if (++tabs > 0) blanks += indentWidth;
    }
    void outdent() noexcept
    {
        if (tabs-- > 0) blanks -= indentWidth;
    }

    // True: the next element begins a line. False: it stays on the line of its parent.
    void setLineFeed(bool on) noexcept { lineFeed = on; }
    void endLine() noexcept { lineFeed = true; }

    // The text so far. Lines are separated by '\n'; the last has none. Valid until something is added.
    std::string_view text() const noexcept
    {
        const std::size_t lineEnd = used() > 0 && *first == '\n';
        return {first + lineEnd, used() - lineEnd};
    }

    // The open elements, outermost first, separated by '/'; an element of an array has its index: "ids/value[2]".
    std::string path() const;

    // False once memory ran out: the text is then incomplete.
    bool complete() const noexcept { return !exhausted; }

    // Removes text and open elements, and keeps the memory for the next text.
    void clear() noexcept;

private:
    struct Element {
        std::string_view name;
        std::uint32_t index;    // of a marker among its siblings
        std::uint32_t markers;  // opened in it so far
        bool isMarker;
        bool parentHadLine;  // true if a line had begun in the parent
    };

    static constexpr std::size_t indentWidth = 2;
    static constexpr std::size_t usualBlanks = 32;   // written at once, whatever the indentation
    static constexpr std::size_t brackets = 3;       // of a tag
    static constexpr std::size_t maxEscaped = 5;     // characters of an escaped character
    static constexpr std::size_t maxDigits = 20;     // of a number, with its sign
    static constexpr std::size_t bytesPerLine = 16;  // of a hex dump

    std::size_t used() const noexcept { return static_cast<std::size_t>(at - first); }

    // Makes sure that the beginning of a line and `size` characters fit. Returns where to write them; null when memory
    // is short.
    char* reserve(std::size_t size) noexcept
    {
        const std::size_t all = size + blanks + usualBlanks + 1;
        return static_cast<std::size_t>(limit - at) >= all ? at : grow(all);
    }
    char* grow(std::size_t size) noexcept;
    void exhaust() noexcept;

    // Begins an element of at most `size` characters. Returns where to write it; null when memory is short.
    char* beginElement(std::size_t size) noexcept
    {
        char* const to = reserve(size);
        return to && lineFeed ? startLine(to) : to;
    }
    char* startLine(char* to) noexcept
    {
        *to++ = '\n';
        if (blanks <= usualBlanks)
            std::memset(to, ' ', usualBlanks);  // a fixed size is one step, and what follows overwrites the rest
        else
            std::memset(to, ' ', blanks);
        afterValue = false;
        hasLine = true;
        return to + blanks;
    }
    char* startValue(char* to) noexcept
    {
        if (afterValue) *to++ = ' ';
        afterValue = true;
        return to;
    }
    void written(char* to) noexcept
    {
        at = to;
        lineFeed = true;
        afterValue = false;
    }

    // Opens an element, in which no line has begun.
    void push(std::string_view name, std::uint32_t index, bool isMarker) noexcept
    {
        if (top == topLimit && !growStack()) return;
        *top++ = {name, index, 0, isMarker, hasLine};
        hasLine = false;
    }
    bool growStack() noexcept;
    // Closes the innermost element. Returns true if a line had begun in it.
    bool pop() noexcept
    {
        const bool had = hasLine;
        --top;
        hasLine = had || top->parentHadLine;
        return had;
    }

    // Escapes the first character of `text`, which may be several bytes of UTF-8, and removes it from `text`.
    static char* escape(char* to, std::string_view& text) noexcept;

    // Copies a text, most often a name: two copies of fixed size that may overlap are faster than a call.
    static char* put(char* to, std::string_view text) noexcept
    {
        const std::size_t size = text.size();
        if (size > 16) {
            std::memcpy(to, text.data(), size);
        } else if (size >= 8) {
            std::memcpy(to, text.data(), 8);
            std::memcpy(to + size - 8, text.data() + size - 8, 8);
        } else if (size >= 4) {
            std::memcpy(to, text.data(), 4);
            std::memcpy(to + size - 4, text.data() + size - 4, 4);
        } else {
            for (std::size_t i = 0; i < size; ++i) to[i] = text[i];
        }
        return to + size;
    }
    static char* putTag(char* to, std::string_view name) noexcept
    {
        *to++ = '<';
        to = put(to, name);
        *to++ = '>';
        return to;
    }
    static char* putEndTag(char* to, std::string_view name) noexcept
    {
        *to++ = '<';
        *to++ = '/';
        to = put(to, name);
        *to++ = '>';
        return to;
    }
    static char* putNumber(char* to, std::int64_t number) noexcept
    {
        if (number < 0 || number > 9) return std::to_chars(to, to + maxDigits, number).ptr;
        *to = static_cast<char>('0' + number);
        return to + 1;
    }

    char* first = nullptr;  // the text is [first, at), with a '\n' before each line, even the first
    char* at = nullptr;
    char* limit = nullptr;
    std::size_t blanks = 0;  // spaces at the beginning of a line
    Element* elements = nullptr;
    Element* top = nullptr;  // after the innermost open one
    Element* topLimit = nullptr;
    int tabs = 0;
    std::uint32_t rootMarkers = 0;
    bool lineFeed = true;
    bool afterValue = false;
    bool hasLine = false;  // true if a line began in the innermost open element
    bool exhausted = false;
};

// Gives every stream that this thread makes during its lifetime the same sink. It collects the trace of passes through
// the drivers, which make their own streams. Scopes nest.
class ScopedTrace {
public:
    explicit ScopedTrace(TraceText& sink) noexcept;
    ~ScopedTrace();
    ScopedTrace(const ScopedTrace&) = delete;
    ScopedTrace& operator=(const ScopedTrace&) = delete;

    // The innermost sink of this thread, or null.
    static TraceText* current() noexcept { return innermost; }

private:
    // The constructor of every stream reads it; this model of thread-local storage needs no call.
    [[gnu::tls_model("initial-exec")]] static constinit thread_local TraceText* innermost;

    TraceText* outer;
};
