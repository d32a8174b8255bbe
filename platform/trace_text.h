// The trace of a pass as text: a tree of elements that an XML parser accepts, built while the pass runs.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>
#include <type_traits>

// Collects the trace of one pass or of several in a row. After a successful pass every element is closed; after a failed
// one the open elements are the path to the place where it stopped. Contents are escaped, so that no string or byte of a
// message can end an element: markup as entities; bytes that are neither printable nor part of well-formed UTF-8 as \n,
// \r, \t or \xHH, and the backslash itself doubled.
//
// Running out of memory ends the collecting, never the pass: `complete()` is then false.
class TraceText {
public:
    // A name and its length. The characters are kept by address until the element is closed, and end with a zero or a '>'.
    struct Name {
        const char* text;
        std::size_t length;
    };

    // `<name></name>`, with the length of the name. These characters are kept by address, too.
    struct Tags {
        const char* text;
        std::size_t length;

        Name name() const noexcept { return {text + 1, length}; }
    };

    TraceText() noexcept = default;
    ~TraceText();
    TraceText(const TraceText&) = delete;
    TraceText& operator=(const TraceText&) = delete;

    void open(Name name) noexcept
    {
        if (!takesLine(name.length) || top == topLimit) return openSlowly(name);
        char* to = nextLine();
        *to++ = '<';
        to = put(to, name);
        *to = '>';
        at = to + 1;
        blanks += 2;
        push(name, false);
    }
    void close(Name name) noexcept
    {
        if (!takesLine(name.length) || top == elements || top[-1].isMarker) return closeSlowly(name);
        blanks -= 2;
        at = endTag(pop() ? nextLine() : at, name);
    }
    void open(const char* name) noexcept;
    void close(const char* name) noexcept;

    // A line of markup of its own, "<value>" or "</value>", which counts as an element in `path()`.
    void marker(const char* markup) noexcept;

    // The contents of the innermost element; two in a row are separated by a blank.
    void value(const char* text) noexcept;

    // Hexadecimal bytes, sixteen a line; up to sixteen stay on the line of their tag.
    void hexDump(const unsigned char* data, std::size_t size) noexcept;

    void indent() noexcept
    {
        if (++tabs > 0) blanks += 2;
    }
    void outdent() noexcept
    {
        if (tabs-- > 0) blanks -= 2;
    }
    void endLine() noexcept { lineFeed = true; }
    void setLineFeed(bool on) noexcept { lineFeed = on; }

    // ---- Whole elements, for those who have much to say: the same text as from the calls above, at once ---------------

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

    // `count` pieces of markup behind what stands on the line, each what next() returns.
    template <class Next>
    void inLine(std::size_t count, Next next) noexcept
    {
        char* to = at;
        for (; count > 0; --count) {
            const Name markup = next();
            if (static_cast<std::size_t>(limit - to) < markup.length + slack) {
                at = to;
                if (!room(markup.length)) continue;
                to = at;
            }
            to = putLong(to, markup);
        }
        written(to);
    }

    // <name>number</name>, written to `to`, and its end.
    static char* enumerator(char* to, const char* name, std::int32_t number) noexcept;

    // What an element of an array is framed with: marker("<value>") and indent(), outdent() and marker("</value>").
    void beginValue() noexcept
    {
        if (!takesLine(frame().length) || top == topLimit) return beginSlowly();
        at = put(nextLine(), frame());
        push(frame(), true);
        indent();
    }
    void endValue() noexcept
    {
        outdent();
        if (!takesLine(frame().length) || top == elements || !top[-1].isMarker) return endMarker(frameEnd());
        at = put(pop() ? nextLine() : at, frameEnd());
    }

    // `count` such frames, each on a line around a number or markup, which next() returns.
    template <class Next>
    void framed(std::size_t count, Next next) noexcept
    {
        constexpr std::size_t most = 16;  // in one piece
        constexpr std::size_t mostContents = std::is_same_v<decltype(next()), Name> ? mostMarkup : mostDigits;
        constexpr std::size_t size = 1 + usualBlanks + 2 * 8 + mostContents;
        while (count > 0) {
            const std::size_t piece = count < most ? count : most;
            count -= piece;
            const bool isTaken = takesLine(piece * size) || (room(piece * size) && takesLine(piece * size));
            char* to = at;
            for (std::size_t i = 0; i < piece; ++i) {
                const auto shown = next();
                if (isTaken)
                    to = put(contents(put(beginLine(to) + blanks, frame()), shown), frameEnd());
                else
                    framedSlowly(shown);
            }
            if (!isTaken) continue;
            *markers() += static_cast<std::uint32_t>(piece);
            hasLine = true;
            written(to);
        }
    }

    // Lines one after the other, for those who have most to say: the end of the text is theirs meanwhile, to be in
    // registers. Each name has at most `longestName` characters, and `beyond` more can be read behind its tags.
    class Lines {
    public:
        static constexpr std::size_t longestName = 29;
        static constexpr std::size_t beyond = 32;
        static constexpr std::size_t mostBlanks = 31;
        static constexpr std::ptrdiff_t mostPushed = 8;
        static constexpr std::size_t mostDigits = 11;
        // What a line takes at most beside its name, twice, and its contents; what any number of lines takes beside that.
        static constexpr std::size_t most = 1 + mostBlanks + 5;
        static constexpr std::size_t mostOnce = 64 + mostBlanks;

        explicit Lines(TraceText& of) noexcept : text(of) {}

        // Whether there is room for lines of `size` characters, counted as above, of which the first begins behind at most
        // `before` blanks, and whether it begins as most lines do. Then all is short that comes before leave().
        bool take(std::size_t size, std::size_t before) noexcept
        {
            if (!to) {
                if (!text.lineFeed || text.afterValue) return false;
                to = text.at;
                blanks = text.blanks;
            }
            return blanks <= before && static_cast<std::size_t>(text.limit - to) >= size &&
                   text.topLimit - text.top >= mostPushed;
        }
        // Gives the end back, where others are going to write, or none of these is.
        void leave() noexcept
        {
            if (!to) return;
            text.at = to;
            text.blanks = blanks;
            to = nullptr;
        }

        // <name>number</name>
        template <class Number>
        void element(Tags tags, Number number) noexcept
        {
            finish(decimal(start(tags), number), tags);
        }
        // <name>text</name>, where the text is markup already
        void element(Tags tags, Name markup) noexcept { finish(putLong(start(tags), markup), tags); }
        // <name><inner>number</inner></name>
        void element(Tags tags, const char* inner, std::int32_t number) noexcept
        {
            finish(enumerator(start(tags), inner, number), tags);
        }

        // <name> and </name> around some lines that are taken together with them
        void open(Tags tags) noexcept
        {
            to = start(tags);
            blanks += 2;
        }
        void close(Tags tags) noexcept
        {
            blanks -= 2;
            finish(next(), tags);
        }
        // and around whatever else; at most `mostPushed` of those that begin are taken together
        void push(Tags tags) noexcept
        {
            open(tags);
            *text.top++ = {tags.name().text, 0, 0, false, true};
            text.hasLine = false;
        }
        void pop(Tags tags) noexcept
        {
            blanks -= 2;
            finish(text.hasLine ? next() : to, tags);
            --text.top;
            text.hasLine = true;
        }

    private:
        char* next() noexcept
        {
            text.hasLine = true;
            return beginLine(to) + blanks;
        }
        char* start(Tags tags) noexcept
        {
            char* const from = next();
            copy<beyond>(from, tags.text);
            return from + tags.length + 2;
        }
        void finish(char* from, Tags tags) noexcept
        {
            copy<beyond>(from, tags.text + tags.length + 2);
            to = from + tags.length + 3;
        }

        TraceText& text;
        char* to = nullptr;
        std::size_t blanks = 0;
    };

    // Room for lines of so many characters, if there is memory.
    void makeRoom(std::size_t size) noexcept;

    // The text so far, its lines separated by '\n', without one at the end. Valid until something is added.
    std::string_view text() const noexcept
    {
        const std::size_t lineEnd = used() > 0 && *first == '\n';
        return {first + lineEnd, used() - lineEnd};
    }

    // The open elements from the outermost in, separated by '/'; an element of an array shows its index: "ids/value[2]".
    std::string path() const;

    bool complete() const noexcept { return !exhausted; }

    // Forgets everything and starts anew. The memory stays for the next text.
    void clear() noexcept;

private:
    struct Element {
        const char* name;
        std::uint32_t index;    // of a marker among its siblings
        std::uint32_t markers;  // opened in it so far
        std::uint16_t isMarker;
        std::uint16_t hadLine;  // of what it stands in: whether a line began there
    };

    // Functions, as an object would hold an address that is relocated when the library is loaded.
    static constexpr Name frame() noexcept { return {"<value>", 7}; }
    static constexpr Name frameEnd() noexcept { return {"</value>", 8}; }
    static constexpr std::size_t row = 16;  // bytes of a dump on a line
    static constexpr std::size_t mostDigits = Lines::mostDigits;
    static constexpr std::size_t usualBlanks = Lines::mostBlanks;
    static constexpr std::size_t slack = Lines::mostOnce;  // what is written beyond the text in steps of fixed size
    static constexpr std::size_t mostMarkup = 2 * 255 + 17;  // that is shown as one: an enumerator and its number
    static constexpr std::size_t mostEscaped = 5;  // characters that one character becomes

    // Whether what comes next begins a line as most do, and there is room for the line, `size` characters and a tag's
    // brackets.
    bool takesLine(std::size_t size) const noexcept
    {
        return lineFeed && !afterValue && blanks <= usualBlanks && static_cast<std::size_t>(limit - at) >= size + slack;
    }
    std::size_t used() const noexcept { return static_cast<std::size_t>(at - first); }
    std::uint32_t* markers() noexcept { return top == elements ? &rootMarkers : &top[-1].markers; }

    // Begins a line where takesLine().
    char* nextLine() noexcept
    {
        char* const to = at;
        hasLine = true;
        return beginLine(to) + blanks;
    }
    // The end of a line and the usual blanks, in steps of fixed size.
    static char* beginLine(char* to) noexcept
    {
        copy<1 + usualBlanks>(to, "\n                               ");
        return to + 1;
    }
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
        *to++ = '\n';
        std::memset(to, ' ', blanks);
        afterValue = false;
        hasLine = true;
        return to + blanks;
    }
    char* lineSlowly(std::size_t size) noexcept
    {
        char* const to = room(size);
        return to ? startLine(to) : nullptr;
    }
    // What an element contains has begun no line yet.
    void push(Name name, bool isMarker) noexcept
    {
        const unsigned index = isMarker ? (*markers())++ : 0;
        *top++ = {name.text, index, 0, isMarker, hasLine};
        hasLine = false;
    }
    // Whether the element that ends contains lines.
    bool pop() noexcept
    {
        const bool has = hasLine;
        --top;
        hasLine = has || top->hadLine;
        return has;
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
        if (!takesLine(2 * name.length + size)) return leafSlowly(name, size, contents);
        at = around(nextLine(), name, contents);
    }
    template <class Contents>
    [[gnu::cold, gnu::noinline]] void leafSlowly(Name name, std::size_t size, Contents contents) noexcept
    {
        char* const to = room(2 * name.length + size);
        if (to) written(around(lineFeed ? startLine(to) : to, name, contents));
    }
    template <class Contents>
    static char* around(char* to, Name name, Contents contents) noexcept
    {
        *to++ = '<';
        to = put(to, name);
        *to = '>';
        return endTag(contents(to + 1), name);
    }
    template <class Contents>
    [[gnu::cold, gnu::noinline]] void framedSlowly(Contents shown) noexcept
    {
        char* to = lineSlowly(2 * frame().length + mostMarkup);
        if (!to) return;
        ++*markers();
        written(put(contents(put(to, frame()), shown), frameEnd()));
    }
    template <class Number>
    static char* contents(char* to, Number number) noexcept
    {
        return decimal(to, number);
    }
    static char* contents(char* to, Name markup) noexcept { return putLong(to, markup); }

    // Short copies in steps of fixed size that may overlap.
    static char* put(char* to, Name name) noexcept
    {
        const std::size_t n = name.length;
        if (n > 16) {
            for (std::size_t i = 0; i < n - 16; i += 16) copy<16>(to + i, name.text + i);
            copy<16>(to + n - 16, name.text + n - 16);
        } else if (n >= 8) {
            copy<8>(to, name.text);
            copy<8>(to + n - 8, name.text + n - 8);
        } else if (n >= 4) {
            copy<4>(to, name.text);
            copy<4>(to + n - 4, name.text + n - 4);
        } else if (n >= 2) {
            copy<2>(to, name.text);
            copy<2>(to + n - 2, name.text + n - 2);
        } else if (n > 0) {
            *to = *name.text;
        }
        return to + n;
    }
    // In one step up to the usual length; behind the text as much can be read.
    static char* putLong(char* to, Name name) noexcept
    {
        constexpr std::size_t usual = 48;
        copy<usual>(to, name.text);
        if (name.length > usual) [[unlikely]] std::memcpy(to + usual, name.text + usual, name.length - usual);
        return to + name.length;
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
    // At most a row of bytes, separated by blanks. In steps of four, of which the next overwrites one.
    static char* hexRow(char* to, const unsigned char* data, std::size_t size) noexcept
    {
        for (std::size_t i = 0; i < size; ++i, to += 3) copy<4>(to, hexSteps.data() + 4 * std::size_t{data[i]});
        return to - (size > 0);
    }
    void dumpElement(Name name, const unsigned char* data, std::size_t size) noexcept;
    static char* escape(char* to, const unsigned char*& from) noexcept;
    void openSlowly(Name name) noexcept;
    void closeSlowly(Name name) noexcept;
    void beginSlowly() noexcept;
    char* grow(std::size_t size) noexcept;
    bool roomToPush(std::ptrdiff_t count) noexcept;
    void exhaust() noexcept;
    void beginMarker(Name markup) noexcept;
    void endMarker(Name markup) noexcept;

    static const std::array<bool, 256> isPlain;
    static const std::array<char, 200> pairs;     // 00 to 99
    static const std::array<char, 1024> hexSteps;  // 00 to ff, each with two blanks

    char* first = nullptr;  // the text is [first, at), with a line's end before each line, even the first
    char* at = nullptr;
    char* limit = nullptr;
    std::size_t blanks = 0;    // at the beginning of a line
    Element* elements = nullptr;
    Element* top = nullptr;  // behind the innermost open one
    Element* topLimit = nullptr;
    int tabs = 0;
    std::uint32_t rootMarkers = 0;
    bool lineFeed = true;
    bool afterValue = false;
    bool hasLine = false;  // whether a line began in the innermost open element
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
