// Reads dumps: lines of an offset, bytes, and sometimes the same bytes as characters.

#include "hex_readers.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace quorva::inspect::hex {

namespace {

constexpr std::string_view tcpdumpName = "tcpdump -x";
constexpr const char* useInstead = "; use `hexdump -C` or `od -A x -t x1`";

// The start of one line of a dump.
struct Row {
    std::size_t begin = 0;
    std::size_t end = 0;
    std::size_t digitsAt = 0;  // of the offset
    std::size_t digits = 0;
    std::size_t bytesAt = 0;  // the first character after the offset that is not blank; `end` if there is none
    std::size_t gap = 0;      // blanks between both
    bool hasPrefix = false;   // "0x" before the offset
    bool hasColon = false;    // after the offset
    bool hasSymbol = false;   // "<message+8>" after the offset
    bool hasTab = false;      // in the gap

    bool isEmpty() const { return bytesAt == end; }  // only the offset, as after the last byte
};

// The lines of a text that are not blank and no comments, one after the other.
class Lines {
public:
    explicit Lines(std::string_view from) : text(from) {}

    struct Line {
        std::size_t begin;
        std::size_t end;
    };

    std::optional<Line> next()
    {
        while (at < text.size()) {
            const std::size_t begin = at;
            std::size_t end = std::min(text.find('\n', at), text.size());
            at = end + 1;
            while (end > begin && isBlank(text[end - 1])) --end;
            const std::string_view line = text.substr(begin, end - begin);
            const std::size_t first = line.find_first_not_of(blanks);
            if (first != none && line[first] != '#' && !line.substr(first).starts_with("//")) return Line{begin, end};
        }
        return std::nullopt;
    }

private:
    std::string_view text;
    std::size_t at = 0;
};

// Reads "00000010: ", "0x0010:  ", "0x4010 <message>:\t", "0000010 00" or an offset alone; nullopt for another form.
std::optional<Row> rowOf(std::string_view text, Lines::Line line)
{
    const std::string_view until = text.substr(0, line.end);
    Row row;
    row.begin = line.begin;
    row.end = line.end;
    std::size_t at = std::min(until.find_first_not_of(" \t", line.begin), line.end);
    row.hasPrefix = hasPrefix(until, at);
    if (row.hasPrefix) at += 2;
    row.digitsAt = at;
    row.digits = digitsAt(until, at);
    if (row.digits < 4 || row.digits > 16) return std::nullopt;
    at += row.digits;
    if (until.substr(at).starts_with(" <")) {
        const std::size_t close = until.substr(at).rfind(">:");
        if (close == none) return std::nullopt;
        row.hasSymbol = true;
        at += close + 1;
    }
    row.hasColon = at < line.end && until[at] == ':';
    if (row.hasColon) ++at;
    row.bytesAt = std::min(until.find_first_not_of(" \t", at), line.end);
    row.gap = row.bytesAt - at;
    row.hasTab = until.substr(at, row.gap).find('\t') != none;
    if (row.gap == 0 && !row.isEmpty()) return std::nullopt;
    return row;
}

// The offset of a row; nullopt if it has other digits than the base.
std::optional<std::uint64_t> offsetOf(std::string_view text, const Row& row, unsigned base)
{
    std::uint64_t offset = 0;
    for (const char c : text.substr(row.digitsAt, row.digits)) {
        const auto digit = static_cast<unsigned>(digitOf(c));
        if (digit >= base) return std::nullopt;
        offset = offset * base + digit;
    }
    return offset;
}

// What the first row tells about the tool.
struct Tool {
    std::string name;
    bool isOd = false;          // od or hexdump without -C: six or seven digits
    bool isDebugger = false;    // numbers "0x00"
    bool isFormatHex = false;   // one blank before the characters
    std::size_t firstLine = 0;  // offset of the first row's line
};

// Reads the rows of a dump with offsets of one base.
class DumpReader : Reader {
public:
    DumpReader(std::string_view from, std::size_t longest, const Tool& origin, unsigned baseOfOffsets)
        : Reader(from, longest), tool(origin), base(baseOfOffsets)
    {
    }

    HexText read()
    {
        std::size_t starAt = none;
        Lines lines(text.substr(tool.firstLine));
        while (auto line = lines.next()) {
            line->begin += tool.firstLine;
            line->end += tool.firstLine;
            if (text.substr(line->begin, line->end - line->begin) == "*") {
                if (rowBytes == 0) fail(line->begin, "\"*\" repeats the line before it, and there is none");
                starAt = line->begin;
                continue;
            }
            const auto row = rowOf(text, *line);
            if (!row)
                fail(line->begin, "each line of a dump begins with its offset; this one does not" +
                                      std::string(tool.isOd                  ? " (od has one -t alone: `od -A x -t x1`)"
                                                  : tool.name == tcpdumpName ? " (give one packet at a time)"
                                                                             : ""));
            placeRow(*row, std::exchange(starAt, none));
            if (!row->isEmpty()) readRow(*row);
        }
        if (starAt != none) fail(starAt, "no line follows \"*\" to tell how often it repeats");
        checkOrder();
        return {std::move(bytes), tool.name};
    }

    std::size_t bytesRead() const { return bytes.size(); }

private:
    // The characters at the end of a row.
    enum class Tail { characters, bytes, unclear };

    // Checks that the offset of the row fits the bytes before it, which a "*" repeats.
    void placeRow(const Row& row, std::size_t starAt)
    {
        const auto offset = offsetOf(text, row, base);
        if (!offset) fail(row.digitsAt, "this offset has other digits than those before it");
        if (!origin) origin = offset;
        if (starAt != none) {
            const std::uint64_t fill = *offset - *origin - bytes.size();
            if (*offset < *origin + bytes.size() || fill > most - bytes.size()) append(row.begin, 0, most + 1);
            if (fill % rowBytes != 0) fail(row.begin, "the offset is wrong: \"*\" repeats whole lines");
            for (std::uint64_t i = 0; i < fill; ++i) bytes.push_back(bytes[bytes.size() - rowBytes]);
        }
        if (*offset == *origin + bytes.size()) return;
        if (*offset == *origin) fail(row.begin, "a second dump begins here; give one message at a time");
        fail(row.begin, "the offset is wrong: the lines before hold " + std::to_string(bytes.size()) +
                            (bytes.size() == 1 ? " byte" : " bytes"));
    }

    void readRow(const Row& row)
    {
        const std::size_t before = bytes.size();
        std::size_t at = row.bytesAt;
        std::size_t bytesEnd = at;
        std::size_t groups = 0;
        bool groupsBegin = true;
        for (std::size_t gap = row.gap; at < row.end && text[at] != '|' && text[at] != '>' && text[at] != '#';) {
            const std::size_t count = bytes.size() - before;
            if (tool.isFormatHex && count == 16) break;
            if (!groupsBegin && gap >= 2 && !(tool.isOd && odSpreads)) {
                const Tail tail = tailAt(at, row.end, gap, before);
                if (tail == Tail::characters) break;
                if (tail == Tail::unclear)
                    fail(at, "two blanks are before these digits, which can be bytes or characters" +
                                 std::string(useInstead));
            }
            at = readGroup(at, row, std::exchange(groupsBegin, false));
            bytesEnd = at;
            ++groups;
            const std::size_t next = std::min(text.find_first_not_of(" \t", at), row.end);
            gap = next - at;
            at = next;
            if (gap == 0 && at < row.end && text[at] == '-') ++at;  // between the halves of a row
        }
        rowBytes = bytes.size() - before;
        compareCharacters(bytesEnd, at, row.end, rowBytes, groups);
    }

    // Tells if the rest of a row, after `gap` blanks, is characters or more bytes, of which two halves can have a gap.
    Tail tailAt(std::size_t at, std::size_t end, std::size_t gap, std::size_t before) const
    {
        const std::size_t count = bytes.size() - before;
        const std::string_view rest = text.substr(at, end - at);
        const bool isPair =
            digitsAt(rest, 0) == 2 && (rest.size() == 2 || isBlank(rest[2]) || rest[2] == '|' || rest[2] == '-');
        if (gap > 2 || width > 2 || !isPair) return Tail::characters;
        bool agrees = rest.size() <= count;
        for (std::size_t i = 0; agrees && i < rest.size(); ++i)
            agrees = static_cast<unsigned char>(rest[i]) == bytes[before + i];
        if (agrees) return Tail::characters;
        return count % 8 == 0 ? Tail::bytes : Tail::unclear;
    }

    // Reads one group of digits. Returns the offset of its end.
    std::size_t readGroup(std::size_t at, const Row& row, bool isFirst)
    {
        const bool isNumber = hasPrefix(text, at);
        if (isNumber) at += 2;
        const std::size_t digits = std::min(digitsAt(text, at), row.end - at);
        const std::size_t end = at + digits;
        if (tool.isDebugger && !isNumber) fail(at, "gdb's decimal, octal or other numbers; use x/NNxb (NN: bytes)");
        if (tool.isOd && (digits != 2 || (end < row.end && !isBlank(text[end])))) failAsOd(at, digits, end == row.end);
        if (digits == 0 || (end < row.end && !isBlank(text[end]) && text[end] != '|' && text[end] != '-'))
            fail(end, end < text.size() ? quoted(text[end]) + " is not a hexadecimal digit" : "a digit is missing");
        checkEven(at, digits);
        if (isNumber && digits > 2)
            fail(at, "words of gdb (x/xh, x/xw or x/xg), in the order of the machine's memory; use x/NNxb (NN: bytes)");
        if (width == 0) width = digits;
        if (digits > width || (!isFirst && lastWidth < width)) fail(at, "the groups of digits differ in their width");
        lastWidth = digits;
        for (const char c : text.substr(at, digits)) {
            isBinary = isBinary && (c == '0' || c == '1');
            provesHex = provesHex || !isDecimal(c);
        }
        provesHex = provesHex || text[at] == '0';
        appendDigits(at, digits);
        return end;
    }

    // Names the form of od or hexdump that writes such a group.
    [[noreturn]] void failAsOd(std::size_t at, std::size_t digits, bool atEnd) const
    {
        if (digits == 4)
            fail(at,
                 "hexdump without -C, or od -x: words in the order of the machine's memory" + std::string(useInstead));
        if (digits == 6)
            fail(at, "od without -t x1: octal words in the order of the machine's memory" + std::string(useInstead));
        if (digits == 8 || digits == 16)
            fail(at,
                 "od -t x" + std::to_string(digits / 2) + ": words in the order of the machine's memory" + useInstead);
        if (digits == 3 || digits == 1 || digits == 5 || (digits == 0 && !atEnd && text[at] == '-'))
            fail(at, "decimal or octal numbers of od or hexdump" + std::string(useInstead));
        fail(at, "od or hexdump in another form than hexadecimal bytes" + std::string(useInstead));
    }

    // Characters of a row that agree with its bytes, and with the bytes of each group in reverse.
    struct Agreement {
        std::size_t inOrder = 0;
        std::size_t inReverse = 0;
    };

    // Compares characters with the last `count` bytes. Dots and blanks tell nothing.
    Agreement compare(std::string_view characters, std::size_t count) const
    {
        const auto row = std::span(bytes).last(count);
        Agreement agreement;
        for (std::size_t i = 0; i < std::min(count, characters.size()); ++i) {
            const auto c = static_cast<unsigned char>(characters[i]);
            if (c == '.' || c == ' ') continue;
            agreement.inOrder += row[i] == c;
            agreement.inReverse += row[reversed(i, count)] == c;
        }
        return agreement;
    }

    // The byte of a row that is at this place if the bytes of each group are in reverse.
    std::size_t reversed(std::size_t i, std::size_t count) const
    {
        const std::size_t group = i / (width / 2) * (width / 2);
        return group + std::min(group + width / 2, count) - 1 - i;
    }

    // Compares the characters from `at` on with the bytes of a row that ended at `bytesEnd`. Blanks before them can be
    // characters too, so the start that agrees best counts.
    void compareCharacters(std::size_t bytesEnd, std::size_t at, std::size_t end, std::size_t count, std::size_t groups)
    {
        if (width < 4 || count == 0) return;
        if (end - at > count) characterMissing = true;
        isBinary = isBinary && end - at <= groups;
        if (width == 8 && isBinary && at < end) fail(tool.firstLine, "binary digits (xxd -b); use `xxd` without -b");
        const auto row = std::span(bytes).last(count);
        for (std::size_t i = 0; i < count; ++i) ordersDiffer = ordersDiffer || row[i] != row[reversed(i, count)];
        constexpr std::size_t mostBlanks = 64;
        Agreement best;
        for (std::size_t start = at; start >= bytesEnd + 2 && start + mostBlanks > at; --start) {
            const Agreement agreement = compare(text.substr(start, end - start), count);
            if (std::max(agreement.inOrder, agreement.inReverse) > std::max(best.inOrder, best.inReverse))
                best = agreement;
        }
        inOrder += best.inOrder;
        inReverse += best.inReverse;
    }

    // Refuses words whose bytes can be in the machine's order.
    void checkOrder() const
    {
        if (tool.isOd && odSpreads && !provesHex && !bytes.empty())
            fail(tool.firstLine, "decimal numbers (od -t u1) or hexadecimal ones" + std::string(useInstead));
        if (width < 4 || width > 16) return;
        if (inReverse > inOrder)
            fail(tool.firstLine, "words in reverse, as `xxd -e` writes them; use `xxd` without -e");
        if (characterMissing || (width > 4 && ordersDiffer && inOrder <= inReverse))
            fail(tool.firstLine, "groups of " + std::to_string(width / 2) +
                                     " bytes, which can be in the order of the "
                                     "message (xxd -g) or of the machine's memory (xxd -e); use `xxd`");
    }

    const Tool& tool;
    const unsigned base;
    std::optional<std::uint64_t> origin;  // offset in the first line, which need not be 0
    std::size_t rowBytes = 0;             // of the last line, which "*" repeats
    std::size_t width = 0;                // digits of a group
    std::size_t lastWidth = 0;            // digits of the last group; only the last of a row can be short
    std::size_t inOrder = 0;
    std::size_t inReverse = 0;
    bool ordersDiffer = false;
    bool characterMissing = false;  // a row has more characters than bytes
    bool isBinary = true;           // zeros and ones, and not more characters than groups
    bool provesHex = false;         // a number cannot be decimal

public:
    bool odSpreads = false;  // od has several blanks before each number
};

// Reads the bytes and characters of `od -A n -t x1z`, whose lines have no offsets: " 00 41  >.A<".
class CharactersReader : Reader {
public:
    using Reader::Reader;

    // True if the first line has this form.
    bool fits() const
    {
        const auto line = Lines(text).next();
        return line && text[line->begin] == ' ' && digitsAt(text, line->begin + 1) >= 2 && text[line->end - 1] == '<' &&
               text.find("  >", line->begin) < line->end;
    }

    HexText read()
    {
        Lines lines(text);
        while (const auto line = lines.next()) {
            if (text[line->begin] == '*') fail(line->begin, "\"*\" needs offsets; use `od -v`, or -A x");
            const std::size_t before = bytes.size();
            std::size_t at = line->begin;
            for (; at < line->end && text[at] == ' ' && digitsAt(text, at + 1) > 0; at += 3) {
                if (digitsAt(text, at + 1) != 2)
                    fail(at + 1, "od with other numbers than bytes" + std::string(useInstead));
                appendDigits(at + 1, 2);
            }
            at = std::min(text.find_first_not_of(' ', at), line->end);
            if (at == line->end || text[at] != '>' || text[line->end - 1] != '<' ||
                line->end - at != bytes.size() - before + 2)
                fail(at, "the characters at the end of the line do not fit its bytes");
        }
        return {std::move(bytes), "od -t x1z"};
    }
};

// Finds out if a text is a dump, and of which tool.
class Detector : Reader {
public:
    using Reader::Reader;

    std::optional<HexText> read()
    {
        if (CharactersReader plain(text, most); plain.fits()) return plain.read();
        const auto first = findFirstRow();
        if (!first || !isDump(*first)) return std::nullopt;
        tool.firstLine = first->begin;
        nameTool(*first);

        // Offsets can be numbers of different bases; only "*" makes the bytes depend on the base.
        std::optional<HexText> result;
        std::optional<InputError> error;
        std::size_t furthest = 0;
        for (const unsigned base : basesOf(*first)) {
            DumpReader reader(text, most, tool, base);
            reader.odSpreads = tool.isOd && first->gap >= 2;
            std::optional<HexText> read;
            try {
                read = reader.read();
            } catch (const InputError& caught) {
                if (!error || reader.bytesRead() > furthest) error.emplace(caught);
                furthest = std::max(furthest, reader.bytesRead());
                continue;
            }
            if (result && result->bytes != read->bytes)
                fail(first->begin,
                     "the offsets can have different bases, which tell different numbers of lines at "
                     "\"*\"; use `hexdump -v -C` or `od -v -A x -t x1`");
            result = std::move(read);
        }
        if (result) return result;
        throw *error;
    }

private:
    std::string_view lineAt(Lines::Line line) const { return text.substr(line.begin, line.end - line.begin); }

    // The first row, after the head that some tools write. Throws InputError for a head that is not known.
    std::optional<Row> findFirstRow()
    {
        Lines lines(text);
        auto line = lines.next();
        if (!line) return std::nullopt;
        if (auto row = rowOf(text, *line)) return row;
        if (text.find_first_of("\"'{", line->begin) < line->end) return std::nullopt;
        const std::size_t start = std::min(text.find_first_not_of(blanks, line->begin), line->end);
        const std::string_view head = text.substr(start, line->end - start);
        tool.isFormatHex = head.starts_with("Path:") || head.starts_with("Label:") ||
                           head.starts_with("Offset Bytes") ||
                           head.starts_with("00 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F");
        const bool isSummary = isPacketSummary(head);
        while ((line = lines.next())) {
            auto row = rowOf(text, *line);
            if (!row || row->isEmpty()) continue;
            const std::uint64_t offset = offsetOf(text, *row, 16).value_or(1);
            const bool isTcpdump = row->hasPrefix && row->hasColon && row->digits == 4 && row->gap == 2;
            if (tool.isFormatHex || (offset == 0 && (isTcpdump || (isSummary && row->gap >= 2)))) return row;
            if (offset == 0 && row->hasColon) fail(row->begin, "a dump begins here; delete the lines before it");
        }
        tool.isFormatHex = false;
        return std::nullopt;
    }

    // True for a line such as "    1   0.000000    127.0.0.1 ...", which a packet analyser writes before a dump.
    static bool isPacketSummary(std::string_view head)
    {
        const std::size_t number = head.find_first_not_of("0123456789");
        if (number == none || number == 0 || head[number] != ' ') return false;
        const std::size_t time = head.find_first_not_of(' ', number);
        const std::size_t end = time == none ? none : head.find_first_not_of("0123456789.", time);
        return end != none && end > time && head.substr(time, end - time).find('.') != none && head[end] == ' ';
    }

    // True if the first row is one of a dump. Throws InputError if it can be plain digits as well.
    bool isDump(const Row& row)
    {
        if (row.hasColon || tool.isFormatHex) return true;
        if (row.hasPrefix || row.isEmpty()) return false;
        const std::size_t width = std::min(digitsAt(text, row.bytesAt), row.end - row.bytesAt);
        const std::size_t next = std::min(text.find_first_not_of(" \t", row.bytesAt + width), row.end);
        const bool isGroup = width > 0 && (next == row.end || next > row.bytesAt + width || text[next] == '-');
        tool.isOd = row.digits == 7 || row.digits == 6;
        if (row.digits % 2 != 0) return row.digits == 7;
        if (isGroup && width == 2) return row.gap >= 2 || row.hasTab || hasCharacters(row) || everyLineIsRow(row);
        if (row.digits == 6 && offsetOf(text, row, 16) == 0 && !readsAsPlainGroups(row, width)) return true;
        if (isGroup && width >= 4 && row.gap >= 2 && next == row.bytesAt + width + 1)
            fail(row.begin,
                 "this can be an offset and words in the order of the machine's memory; give single bytes, or "
                 "put one blank between the digits");
        return false;
    }

    // True if a row ends with `|....|` or `>....<`.
    bool hasCharacters(const Row& row) const
    {
        const std::size_t mark = text.find_first_of("|>", row.bytesAt);
        return mark < row.end && isBlank(text[mark - 1]);
    }

    // True if all of at least two lines begin with an offset and a pair of digits, or are an offset alone. Otherwise
    // throws InputError if the first digits can be an offset: `od -A x` has six digits; lines begin at multiples of 16.
    bool everyLineIsRow(const Row& first) const
    {
        Lines lines(text);
        std::size_t rows = 0;
        bool all = true;
        while (const auto line = lines.next()) {
            ++rows;
            const auto row = rowOf(text, *line);
            all = all &&
                  (lineAt(*line) == "*" ||
                   (row && (row->isEmpty() || std::min(digitsAt(text, row->bytesAt), row->end - row->bytesAt) == 2)));
        }
        if (rows > 1 && all) return true;
        if (first.digits != 6 && offsetOf(text, first, 16).value_or(0) % 16 != 0) return false;
        fail(first.begin,
             "the first digits can be bytes or the offset of a dump; delete the blank after bytes, or the offset");
    }

    // True for six digits and more groups of six that od does not write: plain digits. Other groups after six digits
    // are those of `od -A x`.
    bool readsAsPlainGroups(const Row& row, std::size_t width) const
    {
        if (width == 0) return false;
        const std::string_view rest = text.substr(row.bytesAt, row.end - row.bytesAt);
        return width == 6 && (rest.find_first_of("89abcdefABCDEF") != none || rest.find_first_of("234567") == 0);
    }

    std::vector<unsigned> basesOf(const Row& row) const
    {
        if (row.digits == 7 && !row.hasColon) return {8, 10};
        if (row.digits == 8 && row.hasColon && !row.hasPrefix) return {16, 10};
        return {16};
    }

    void nameTool(const Row& row)
    {
        const bool isTcpdump = row.hasPrefix && row.hasColon && row.digits == 4;
        tool.isDebugger = row.hasSymbol || (row.hasColon && row.hasTab) || hasPrefix(text, row.bytesAt);
        tool.isFormatHex = tool.isFormatHex || (!row.hasColon && row.digits == 16);
        tool.isOd = !row.hasColon && !tool.isFormatHex && (row.digits == 6 || row.digits == 7);
        tool.name = tool.isFormatHex                   ? "Format-Hex"
                    : tool.isDebugger                  ? "x/NNxb of gdb or lldb"
                    : isTcpdump                        ? std::string(tcpdumpName)
                    : row.hasPrefix                    ? "memory read of lldb"
                    : row.hasColon && row.digits == 8  ? "xxd"
                    : tool.isOd                        ? "od -t x1"
                    : !row.hasColon && row.digits == 8 ? "hexdump -C"
                    : !row.hasColon && row.digits == 4 ? "the dump of a packet analyser"
                                                       : "a dump";
    }

    Tool tool;
};

}  // namespace

std::optional<HexText> readDump(std::string_view text, std::size_t most)
{
    return Detector(text, most).read();
}

}  // namespace quorva::inspect::hex
