// The trace of a pass as text: a tree of elements that an XML parser accepts, built while the pass runs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

// Collects the trace of one pass or of several in a row. After a successful pass every element is closed; after a failed
// one the open elements are the path to the place where it stopped. Contents are escaped, so that no string or byte of a
// message can end an element: markup as entities; bytes that are neither printable nor part of well-formed UTF-8 as \n,
// \r, \t or \xHH, and the backslash itself doubled.
//
// Running out of memory ends the collecting, never the pass: `complete()` is then false.
class TraceText {
public:
    // A name and its length. The characters are kept by address until the element is closed.
    struct Name {
        const char* text;
        std::size_t length;
    };

    TraceText() noexcept = default;
    ~TraceText();
    TraceText(const TraceText&) = delete;
    TraceText& operator=(const TraceText&) = delete;

    void open(Name name) noexcept;
    void close(Name name) noexcept;
    void open(const char* name) noexcept { open({name, std::strlen(name)}); }
    void close(const char* name) noexcept { close({name, std::strlen(name)}); }

    // A line of markup of its own, "<value>" or "</value>", which counts as an element in `path()`.
    void marker(const char* markup) noexcept;

    // The contents of the innermost element; two in a row are separated by a blank.
    void value(const char* text) noexcept;

    // Hexadecimal bytes, sixteen a line; up to sixteen stay on the line of their tag.
    void hexDump(const unsigned char* data, std::size_t size) noexcept;

    void indent() noexcept { blanks = blanksOf(++tabs); }
    void outdent() noexcept { blanks = blanksOf(--tabs); }
    void endLine() noexcept { lineFeed = true; }
    void setLineFeed(bool on) noexcept { lineFeed = on; }

    // ---- Whole elements, for those who have much to say: the same text as from the calls above, at once ---------------

    // <name>number</name>
    template <class Number>
    void element(Name name, Number number) noexcept
    {
        leaf(name, mostDigits, [number](char* to) { return decimal(to, number); });
    }

    // <name><inner>number</inner></name>
    void element(Name name, Name inner, std::int32_t number) noexcept
    {
        leaf(name, 2 * inner.length + mostDigits, [inner, number](char* to) {
            *to++ = '<';
            to = put(to, inner);
            *to++ = '>';
            return endTag(decimal(to, number), inner);
        });
    }

    // <name>text</name>; `size` is at least the text's length.
    void element(Name name, const char* text, std::size_t size) noexcept
    {
        leaf(name, mostEscaped * size, [text](char* to) { return escaped(to, text); });
    }

    // <name>bytes</name>, as hexDump writes them
    void element(Name name, const unsigned char* data, std::size_t size) noexcept
    {
        if (size > row) return dumpElement(name, data, size);
        leaf(name, 3 * row, [data, size](char* to) { return hexRow(to, data, size); });
    }

    // The contents of the innermost element, as value() adds them: `count` numbers, each what next() returns.
    template <class Next>
    void numbers(std::size_t count, Next next) noexcept
    {
        constexpr std::size_t most = 64;  // in one piece
        while (count > 0) {
            const std::size_t piece = count < most ? count : most;
            count -= piece;
            char* to = room(piece * (1 + mostDigits));
            for (std::size_t i = 0; i < piece; ++i) {
                const auto number = next();
                if (!to) continue;
                *to = ' ';
                to = decimal(to + afterValue, number);
                afterValue = true;
            }
            if (to) at = to;
        }
    }

    // What an element of an array is framed with: marker("<value>") and indent(), outdent() and marker("</value>").
    void beginValue() noexcept;
    void endValue() noexcept;

    // Such a frame around a number, or around <name>number</name>, on a line.
    template <class Number>
    void framed(Number number) noexcept
    {
        char* to = room(mostDigits + 2 * frame.length);
        if (!to) return;
        ++*markers();
        to = put(startLine(to), frame);
        to = endTag(decimal(to, number), {frame.text + 1, frame.length - 2});
        written(to);
    }

    void framed(Name name, std::int32_t number) noexcept
    {
        char* to = room(mostDigits + 2 * frame.length + 2 * name.length);
        if (!to) return;
        ++*markers();
        to = put(startLine(to), frame);
        *to++ = '<';
        to = put(to, name);
        *to++ = '>';
        to = endTag(decimal(to, number), name);
        to = endTag(to, {frame.text + 1, frame.length - 2});
        written(to);
    }

    // The text so far, its lines separated by '\n', without one at the end. Valid until something is added.
    std::string_view text() const noexcept { return {first, used()}; }

    // The open elements from the outermost in, separated by '/'; an element of an array shows its index: "ids/value[2]".
    std::string path() const;

    bool complete() const noexcept { return !exhausted; }

    // Forgets everything and starts anew. The memory stays for the next text.
    void clear() noexcept;

private:
    struct Element {
        const char* name;
        std::size_t begin;      // of its contents in the text
        unsigned index;         // of a marker among its siblings
        unsigned markers;       // opened in it so far
        bool isMarker;
    };

    static constexpr Name frame = {"<value>", 7};
    static constexpr std::size_t row = 16;  // bytes of a dump on a line
    static constexpr std::size_t mostDigits = 11;
    static constexpr std::size_t mostEscaped = 5;  // characters that one character becomes
    static constexpr std::size_t slack = 64;       // what is written beyond the text in steps of fixed size, and a tag's brackets

    std::size_t used() const noexcept { return static_cast<std::size_t>(at - first); }
    unsigned* markers() noexcept { return depth == 0 ? &rootMarkers : &elements[depth - 1].markers; }
    std::size_t blanksOf(int wanted) const noexcept { return 2 * (nesting + static_cast<std::size_t>(wanted > 0 ? wanted : 0)); }

    // Where to write a line's beginning, `size` characters and a tag's brackets; null when there is no memory for them.
    char* room(std::size_t size) noexcept
    {
        const std::size_t all = size + blanks + slack;
        return static_cast<std::size_t>(limit - at) >= all ? at : grow(all);
    }
    void written(char* to) noexcept
    {
        at = to;
        lineFeed = true;
        afterValue = false;
    }
    char* startLine(char* to) noexcept
    {
        if (to != first) *to++ = '\n';
        lineStart = static_cast<std::size_t>(to - first);
        std::memset(to, ' ', 32);
        if (blanks > 32) std::memset(to + 32, ' ', blanks - 32);
        afterValue = false;
        return to + blanks;
    }
    // `</name>`
    static char* endTag(char* to, Name name) noexcept
    {
        std::memcpy(to, "</", 2);
        to = put(to + 2, name);
        *to = '>';
        return to + 1;
    }
    template <class Contents>
    void leaf(Name name, std::size_t size, Contents contents) noexcept
    {
        char* to = room(2 * name.length + size);
        if (!to) return;
        if (lineFeed) to = startLine(to);
        *to++ = '<';
        to = put(to, name);
        *to++ = '>';
        written(endTag(contents(to), name));
    }

    // Short copies in steps of fixed size that may overlap.
    static char* put(char* to, Name name) noexcept
    {
        const std::size_t n = name.length;
        if (n >= 8) {
            if (n > 16) {
                if (n > 32) return static_cast<char*>(std::memcpy(to, name.text, n)) + n;
                copy<16>(to, name.text);
                copy<16>(to + n - 16, name.text + n - 16);
            } else {
                copy<8>(to, name.text);
                copy<8>(to + n - 8, name.text + n - 8);
            }
        } else if (n >= 4) {
            copy<4>(to, name.text);
            copy<4>(to + n - 4, name.text + n - 4);
        } else if (n > 0) {
            to[0] = name.text[0];
            to[n / 2] = name.text[n / 2];
            to[n - 1] = name.text[n - 1];
        }
        return to + n;
    }
    template <std::size_t n>
    static void copy(char* to, const char* from) noexcept
    {
        std::memcpy(to, from, n);
    }

    static char* decimal(char* to, bool number) noexcept
    {
        return put(to, number ? Name{"true", 4} : Name{"false", 5});
    }
    static char* decimal(char* to, std::int32_t number) noexcept
    {
        std::uint32_t size = static_cast<std::uint32_t>(number);
        if (number < 0) {
            *to++ = '-';
            size = 0 - size;
        }
        return decimal(to, size);
    }
    static char* decimal(char* to, std::uint32_t number) noexcept
    {
        if (number < 10) {
            *to = static_cast<char>('0' + number);
            return to + 1;
        }
        if (number < 100) return pair(to, number);
        if (number < 10000) {
            const std::uint32_t high = number / 100;
            return pair(high < 10 ? decimal(to, high) : pair(to, high), number % 100);
        }
        const std::uint32_t high = number / 10000, low = number % 10000;
        return pair(pair(decimal(to, high), low / 100), low % 100);
    }
    static char* pair(char* to, std::uint32_t number) noexcept
    {
        copy<2>(to, pairs.data() + 2 * number);
        return to + 2;
    }
    // The text up to its zero, escaped.
    static char* escaped(char* to, const char* text) noexcept
    {
        const auto* from = reinterpret_cast<const unsigned char*>(text);
        for (;;) {
            while (isPlain[*from]) *to++ = static_cast<char>(*from++);
            if (*from == 0) return to;
            to = escape(to, from);
        }
    }
    // At most a row of bytes, separated by blanks.
    static char* hexRow(char* to, const unsigned char* data, std::size_t size) noexcept
    {
        for (std::size_t i = 0; i < size; ++i, to += 3) {
            copy<2>(to, hexPairs.data() + 2 * std::size_t{data[i]});
            to[2] = ' ';
        }
        return to - (size > 0);
    }
    void dumpElement(Name name, const unsigned char* data, std::size_t size) noexcept;
    static char* escape(char* to, const unsigned char*& from) noexcept;
    char* grow(std::size_t size) noexcept;
    bool push(Name name, bool isMarker) noexcept;
    void beginMarker(Name markup) noexcept;
    void endMarker(Name markup) noexcept;

    static const std::array<bool, 256> isPlain;
    static const std::array<char, 200> pairs;     // 00 to 99
    static const std::array<char, 512> hexPairs;  // 00 to ff

    char* first = nullptr;  // the text is [first, at)
    char* at = nullptr;
    char* limit = nullptr;
    Element* elements = nullptr;
    std::size_t depth = 0;  // open elements
    std::size_t depthRoom = 0;
    std::size_t nesting = 0;  // of them, those that indent
    std::size_t blanks = 0;   // at the beginning of a line
    std::size_t lineStart = 0;
    int tabs = 0;
    unsigned rootMarkers = 0;
    bool lineFeed = true;
    bool afterValue = false;
    bool exhausted = false;
};

// Gives every stream that this thread makes while it stands the same sink: the way to the trace of passes that go through
// the drivers, which make their own stream. Scopes nest.
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
