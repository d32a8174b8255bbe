// The trace of a pass as text: a tree of elements that an XML parser accepts, built while the pass runs.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

// Collects the trace of one pass or of several in a row. After a successful pass every element is closed; after a failed
// one the open elements are the path to the place where it stopped. Contents are escaped, so that no string or byte of a
// message can end an element: markup as entities; bytes that are neither printable nor part of well-formed UTF-8 as \n,
// \r, \t or \xHH, and the backslash itself doubled.
//
// Running out of memory ends the collecting, never the pass: `complete()` is then false.
class TraceText {
public:
    // `name` is kept by address until the element is closed.
    void open(const char* name) noexcept;
    void close(const char* name) noexcept;

    // A line of markup of its own, "<value>" or "</value>", which counts as an element in `path()`.
    void marker(const char* markup) noexcept;

    // The contents of the innermost element; two in a row are separated by a blank.
    void value(const char* text) noexcept;

    // Hexadecimal bytes, sixteen a line; up to sixteen stay on the line of their tag.
    void hexDump(const unsigned char* data, std::size_t size) noexcept;

    void indent() noexcept { ++tabs; }
    void outdent() noexcept { --tabs; }
    void endLine() noexcept { lineFeed = true; }
    void setLineFeed(bool on) noexcept { lineFeed = on; }

    // The text so far, its lines separated by '\n', without one at the end.
    const std::string& text() const noexcept { return collected; }

    // The open elements from the outermost in, separated by '/'; an element of an array shows its index: "ids/value[2]".
    std::string path() const;

    bool complete() const noexcept { return !exhausted; }

    // Forgets everything and starts anew.
    void clear() noexcept;

private:
    struct Element {
        const char* name;
        unsigned index;         // of a marker among its siblings
        unsigned markers;       // opened in it so far
        bool isMarker;
        bool spansLines;        // something inside stands on a line of its own
    };

    template <class Action>
    void collect(Action&& action) noexcept;
    void startLine();
    void push(const char* name, bool isMarker);
    void appendEscaped(const char* text);

    std::string collected;
    std::vector<Element> elements;
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
    static TraceText* current() noexcept;

private:
    TraceText* outer;
};
