// Several messages in one input, one at a time and in constant memory: framed by record marks, of a fixed length, or as
// hex in the lines of a log.
#pragma once

#include "input.h"

#include <functional>
#include <vector>

namespace quorva::inspect {

// Fills the start of a block with the next bytes of an input. Returns their number, 0 at the end of the input. Throws
// if they cannot be read.
using Source = std::function<std::size_t(std::span<unsigned char> block)>;

// Reads from a file descriptor, which stays open. Returns bytes as soon as there are any, so that a pipe's messages are
// seen while it is open. Throws std::system_error.
Source sourceOf(int descriptor);

// An error in the framing of an input, at a byte of it.
class FramingError : public std::runtime_error {
public:
    FramingError(std::uint64_t at, const std::string& sentence) : std::runtime_error(sentence), offset(at) {}

    const std::uint64_t offset;
};

struct Message {
    std::uint64_t offset = 0;  // in the input; of its first record mark if it has one
    Bytes bytes;
};

// Bytes of a source, in pieces of the caller's choice.
class SourceReader {
public:
    explicit SourceReader(Source from) : source(std::move(from)) {}

    // Appends up to `count` bytes. Returns the number of bytes appended, which is smaller only at the input's end.
    std::size_t append(Bytes& bytes, std::size_t count);

    // The bytes that are there, at least one if the input has not ended. They are valid until the next call.
    std::span<const unsigned char> available();
    void skip(std::size_t count) { used += count; }

    std::uint64_t offset() const { return start + used; }

private:
    Source source;
    Bytes block;
    std::size_t used = 0;
    std::uint64_t start = 0;  // offset of the block in the input
};

// The unit before each fragment of a record (RFC 5531).
struct RecordMark {
    static constexpr std::size_t size = 4;

    // Takes the first four bytes.
    explicit RecordMark(std::span<const unsigned char> unit)
        : isLast((unit[0] & 0x80) != 0),
          length((unit[0] & 0x7Fu) << 24 | std::uint32_t{unit[1]} << 16 | std::uint32_t{unit[2]} << 8 | unit[3])
    {
    }

    bool isLast;           // of the record
    std::uint32_t length;  // of the fragment, in bytes
};

// Messages as RFC 5531 frames them in a byte stream: a record is one or more fragments, each after a record mark.
class FramedMessages {
public:
    explicit FramedMessages(Source source, std::size_t longest = longestMessage)
        : reader(std::move(source)), most(longest)
    {
    }

    // Reads the next message into `message`, whose storage it uses again. Returns false at the end of the input. Throws
    // FramingError for a message of more than the longest length, and for an input that ends within a record.
    bool next(Message& message);

private:
    SourceReader reader;
    std::size_t most;
};

// Messages of one length, without anything between them.
class FixedMessages {
public:
    // `length` is not 0.
    FixedMessages(Source source, std::size_t length) : reader(std::move(source)), each(length) {}

    // As FramedMessages::next. An input that ends within a message is an error.
    bool next(Message& message);

private:
    SourceReader reader;
    std::size_t each;
};

// The lines of a text.
class LineReader {
public:
    static constexpr std::size_t longestLine = std::size_t{1} << 20;

    explicit LineReader(Source source) : reader(std::move(source)) {}

    struct Line {
        std::string text;     // with its '\n', which only the last line of the input can lack
        bool isWhole = true;  // false for a piece of a line of more than longestLine bytes
    };

    // Reads the next line, or the next piece of a longer one. Returns false at the end of the input.
    bool next(Line& line);

private:
    SourceReader reader;
    bool continues = false;  // the next piece belongs to the line of the last one
};

// A part of a line that can be a message as hex.
struct HexRun {
    std::size_t at = 0;  // in the line
    std::size_t size = 0;
    Bytes bytes;
};

// The parts of a line that can be messages: hexadecimal digits of whole units, at least one, which are not part of a
// word. They are one group, or pairs or groups of four or eight digits with the same separator: a blank, or for pairs
// also `:`, `-`, `,`, or `, `. A group or each pair can have the prefix `0x` or `\x`; the separator of `\x` is empty.
//
// Not taken for messages: UUIDs, dates and other groups of different widths that `-` or `:` joins; decimal numbers
// without zeros before them, unless a single one has more than 16 digits; a single number of at most 16 digits with the
// prefix 0x; groups next to a decimal point; letters without any decimal digit, such as "dead beef". Pairs directly
// before or after a message ("len 12 00 00 00 05") become part of its run, which is then not found or has bytes too
// many.
std::vector<HexRun> hexRunsOf(std::string_view line);

}  // namespace quorva::inspect
