// The trace of a pass as text: a tree of elements that an XML parser accepts, built while the pass runs.
#pragma once

#include <charconv>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// Collects the trace of one pass or of several in a row. After a successful pass every element is closed; after a
// failed one the open elements are the path to the place where it stopped. Contents are escaped, so that no string or
// byte of a message can end an element: markup as entities; bytes that are neither printable nor part of well-formed
// UTF-8 as \n, \r, \t or \xHH, and the backslash itself doubled.
//
// Running out of memory ends the collecting, never the pass: `complete()` is then false.
class TraceText {
public:
    TraceText() noexcept = default;
    ~TraceText();
    TraceText(const TraceText&) = delete;
    TraceText& operator=(const TraceText&) = delete;

    // Opens an element, on a line of its own unless setLineFeed(false) came before. The characters of the name are kept
    // by address until the element is closed.
    void open(std::string_view name) noexcept
    {
        char* const to = beginElement(name.size() + brackets);
        if (!to) return;
        written(putTag(to, name));
        push(name, 0, false);
        blanks += indentWidth;
    }

    // Closes the innermost element: on the line of its contents, or on a line of its own where a line began inside.
    void close(std::string_view name) noexcept
    {
        char* to = room(name.size() + brackets);
        if (!to) return;
        if (top != elements) {
            if (!top[-1].isMarker) blanks -= indentWidth;
            if (pop()) to = startLine(to);
        }
        written(putEndTag(to, name));
    }

    // A line of markup of its own, "<value>" or "</value>", which counts as an element in `path()`. The characters of
    // the first are kept by address until the second. `marker` takes either.
    void openMarker(std::string_view markup) noexcept
    {
        char* const to = room(markup.size());
        if (!to) return;
        written(put(startLine(to), markup));
        push(markup, (top == elements ? rootMarkers : top[-1].markers)++, true);
    }
    void closeMarker(std::string_view markup) noexcept
    {
        char* to = room(markup.size());
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

    // The contents of the innermost element; two in a row are separated by a blank. A number is shown in decimal.
    void value(std::string_view text) noexcept;
    void value(std::int64_t number) noexcept
    {
        if (char* const to = room(mostDigits)) at = putNumber(startValue(to), number);
    }

    // A whole element around a number, or around an element around a number: the same text as from open(), value() and
    // close(), with setLineFeed(false) between them, at once. Most of a trace is such elements.
    void element(std::string_view name, std::int64_t number) noexcept
    {
        char* const to = beginElement(2 * (name.size() + brackets) + mostDigits);
        if (to) written(putEndTag(putNumber(putTag(to, name), number), name));
    }
    void element(std::string_view name, std::string_view inner, std::int64_t number) noexcept
    {
        char* const to = beginElement(2 * (name.size() + inner.size() + 2 * brackets) + mostDigits);
        if (!to) return;
        char* const end = putEndTag(putNumber(putTag(putTag(to, name), inner), number), inner);
        written(putEndTag(end, name));
    }

    // Hexadecimal bytes, sixteen a line; up to sixteen stay on the line of their tag.
    void hexDump(const unsigned char* data, std::size_t size) noexcept;

    // Two blanks more, or less, at the beginning of each line to come.
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

    // The text so far, its lines separated by '\n', without one at the end. Valid until something is added.
    std::string_view text() const noexcept
    {
        const std::size_t lineEnd = used() > 0 && *first == '\n';
        return {first + lineEnd, used() - lineEnd};
    }

    // The open elements from the outermost in, separated by '/'; an element of an array shows its index:
    // "ids/value[2]".
    std::string path() const;

    // False once memory ran out: something is missing in the text.
    bool complete() const noexcept { return !exhausted; }

    // Forgets everything and starts anew. The memory stays for the next text.
    void clear() noexcept;

private:
    struct Element {
        std::string_view name;
        std::uint32_t index;    // of a marker among its siblings
        std::uint32_t markers;  // opened in it so far
        bool isMarker;
        bool parentHadLine;  // whether a line had begun in what it stands in
    };

    static constexpr std::size_t indentWidth = 2;
    static constexpr std::size_t usualBlanks = 32;  // at the beginning of a line, written in one step
    static constexpr std::size_t brackets = 3;      // of a tag
    static constexpr std::size_t mostEscaped = 5;   // characters that one character becomes
    static constexpr std::size_t mostDigits = 20;   // of a number, with its sign
    static constexpr std::size_t row = 16;          // bytes of a dump on a line

    std::size_t used() const noexcept { return static_cast<std::size_t>(at - first); }

    // Where to write the beginning of a line and `size` characters; null when there is no memory for them.
    char* room(std::size_t size) noexcept
    {
        const std::size_t all = size + blanks + usualBlanks + 1;
        return static_cast<std::size_t>(limit - at) >= all ? at : grow(all);
    }
    char* grow(std::size_t size) noexcept;
    void exhaust() noexcept;

    // Where an element of `size` characters begins; null when there is no memory for it.
    char* beginElement(std::size_t size) noexcept
    {
        char* const to = room(size);
        return to && lineFeed ? startLine(to) : to;
    }
    char* startLine(char* to) noexcept
    {
        *to++ = '\n';
        if (blanks <= usualBlanks)
            std::memset(to, ' ', usualBlanks);  // more than needed, but in one step
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

    // No line has begun yet in what the element contains.
    void push(std::string_view name, std::uint32_t index, bool isMarker) noexcept
    {
        if (top == topLimit && !growStack()) return;
        *top++ = {name, index, 0, isMarker, hasLine};
        hasLine = false;
    }
    bool growStack() noexcept;
    // Returns true if a line began in the element that ends.
    bool pop() noexcept
    {
        const bool had = hasLine;
        --top;
        hasLine = had || top->parentHadLine;
        return had;
    }

    // One character that is not plain, or the sequence of bytes that is one; takes it off `text`.
    static char* escape(char* to, std::string_view& text) noexcept;

    // Copies a short text in two steps of fixed size that may overlap, which beats a call where most texts are names.
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
        if (number < 0 || number > 9) return std::to_chars(to, to + mostDigits, number).ptr;
        *to = static_cast<char>('0' + number);
        return to + 1;
    }

    char* first = nullptr;  // the text is [first, at), with a line's end before each line, even the first
    char* at = nullptr;
    char* limit = nullptr;
    std::size_t blanks = 0;  // at the beginning of a line
    Element* elements = nullptr;
    Element* top = nullptr;  // after the innermost open one
    Element* topLimit = nullptr;
    int tabs = 0;
    std::uint32_t rootMarkers = 0;
    bool lineFeed = true;
    bool afterValue = false;
    bool hasLine = false;  // whether a line began in the innermost open element
    bool exhausted = false;
};

// While it exists, every stream that this thread makes has the same sink: the way to the trace of passes that go
// through the drivers, which make their own stream. Scopes nest.
class ScopedTrace {
public:
    explicit ScopedTrace(TraceText& sink) noexcept;
    ~ScopedTrace();
    ScopedTrace(const ScopedTrace&) = delete;
    ScopedTrace& operator=(const ScopedTrace&) = delete;

    // The innermost sink of this thread, or null.
    static TraceText* current() noexcept { return innermost; }

private:
    // Every stream looks at it when it is made; this way of reaching it costs no call.
    [[gnu::tls_model("initial-exec")]] static constinit thread_local TraceText* innermost;

    TraceText* outer;
};
