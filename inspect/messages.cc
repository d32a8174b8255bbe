// Splits an input into messages.

#include "messages.h"

#include "hex_readers.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <system_error>

namespace quorva::inspect {

namespace {

constexpr std::size_t unitSize = 4;

// One group of digits in a line.
struct Group {
    std::size_t at = 0;  // of the prefix
    std::size_t digitsAt = 0;
    std::size_t end = 0;

    std::size_t digits() const { return end - digitsAt; }
    bool hasPrefix() const { return digitsAt != at; }
};

class RunFinder {
public:
    explicit RunFinder(std::string_view from) : line(from) {}

    std::vector<HexRun> find()
    {
        for (std::size_t at = 0; at < line.size();) {
            const auto first = groupAt(at);
            if (!first) {
                at = std::max(at + 1, hex::isWord(line[at]) ? wordEnd(at) : at + 1);
                continue;
            }
            at = readRun(*first);
        }
        return std::move(runs);
    }

private:
    std::size_t wordEnd(std::size_t at) const
    {
        while (at < line.size() && hex::isWord(line[at])) ++at;
        return at;
    }

    // The digits at this offset, which is not within a word; nullopt if other letters follow.
    std::optional<Group> groupAt(std::size_t at) const
    {
        const bool isEscape = line.substr(at, 2) == "\\x";
        const std::size_t digitsAt = isEscape || hex::hasPrefix(line, at) ? at + 2 : at;
        const std::size_t digits = hex::digitsAt(line, digitsAt);
        const Group group{at, digitsAt, digitsAt + digits};
        if (digits == 0 || (isEscape && digits != 2)) return std::nullopt;
        if (group.end < line.size() && hex::isWord(line[group.end])) return std::nullopt;
        return group;
    }

    // The separator at this offset, before another group.
    std::string_view separatorAt(std::size_t at) const
    {
        if (line.substr(at).starts_with(", ")) return line.substr(at, 2);
        const bool isSeparator = at < line.size() && std::string_view(" :-,").find(line[at]) != hex::none;
        return line.substr(std::min(at, line.size()), isSeparator ? 1 : 0);
    }

    // Reads the groups that one separator joins, and keeps them if they can be a message. Returns the offset after
    // them.
    std::size_t readRun(const Group& first)
    {
        Group last = first;
        std::string_view separator;
        std::size_t count = 1;
        bool sameWidth = true;
        bool isDecimal = isDecimalNumber(first);
        std::size_t digits = first.digits();
        while (true) {
            const std::string_view found = separatorAt(last.end);
            const auto next = groupAt(last.end + found.size());
            if (!next || (count > 1 && found != separator) || next->hasPrefix() != first.hasPrefix()) break;
            if (found.empty() && line[next->at] != '\\') break;
            const bool isJoined = found == ":" || found == "-";  // one thing, if it has groups of different widths too
            if (next->digits() != first.digits() && !isJoined) break;
            separator = found;
            sameWidth = sameWidth && next->digits() == first.digits();
            isDecimal = isDecimal && isDecimalNumber(*next);
            digits += next->digits();
            last = *next;
            ++count;
        }
        if (sameWidth && (!isDecimal || (count == 1 && digits > 16)) &&
            isMessage(first, last, separator, count, digits))
            keep(first, last);
        return last.end;
    }

    // True for a number without a prefix and without zeros before it, which is likely to be decimal.
    bool isDecimalNumber(const Group& group) const
    {
        return !group.hasPrefix() && line[group.at] != '0' &&
               std::ranges::all_of(line.substr(group.at, group.digits()), hex::isDecimal);
    }

    bool isMessage(const Group& first, const Group& last, std::string_view separator, std::size_t count,
                   std::size_t digits) const
    {
        const std::string_view text = line.substr(first.at, last.end - first.at);
        const std::size_t width = first.digits();
        if (digits % (2 * unitSize) != 0 || std::ranges::none_of(text, hex::isDecimal)) return false;
        if (continuesNumber(first.at) ||
            (last.end + 1 < line.size() && line[last.end] == '.' && hex::isWord(line[last.end + 1])))
            return false;
        if (count > 1) return width == 2 || (separator == " " && !first.hasPrefix() && (width == 4 || width == 8));
        return width > 16 || !first.hasPrefix();
    }

    // True if a word and a mark that joins are directly before this offset: "1.", "zz-".
    bool continuesNumber(std::size_t at) const
    {
        return at > 1 && (line[at - 1] == '.' || line[at - 1] == '-') && hex::isWord(line[at - 2]);
    }

    void keep(const Group& first, const Group& last)
    {
        HexRun run{first.at, last.end - first.at, {}};
        for (std::size_t at = first.at; at < last.end;) {
            const auto group = groupAt(at);
            if (!group) {
                ++at;
                continue;
            }
            const Bytes bytes = *bytesOfDigits(line.substr(group->digitsAt, group->digits()));
            run.bytes.insert(run.bytes.end(), bytes.begin(), bytes.end());
            at = group->end;
        }
        runs.push_back(std::move(run));
    }

    std::string_view line;
    std::vector<HexRun> runs;
};

}  // namespace

Source sourceOf(int descriptor)
{
    return [descriptor](std::span<unsigned char> block) {
        while (true) {
            const ssize_t size = ::read(descriptor, block.data(), block.size());
            if (size >= 0) return static_cast<std::size_t>(size);
            if (errno != EINTR) throw std::system_error(errno, std::generic_category());
        }
    };
}

std::span<const unsigned char> SourceReader::available()
{
    constexpr std::size_t blockSize = 65536;
    if (used == block.size()) {
        start += used;
        used = 0;
        block.resize(blockSize);
        block.resize(source(block));
    }
    return std::span(block).subspan(used);
}

std::size_t SourceReader::append(Bytes& bytes, std::size_t count)
{
    std::size_t appended = 0;
    while (appended < count) {
        const auto piece = available();
        if (piece.empty()) break;
        const std::size_t size = std::min(piece.size(), count - appended);
        bytes.insert(bytes.end(), piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(size));
        skip(size);
        appended += size;
    }
    return appended;
}

bool FramedMessages::next(Message& message)
{
    message.offset = reader.offset();
    message.bytes.clear();
    for (bool isLast = false; !isLast;) {
        const std::uint64_t markAt = reader.offset();
        Bytes mark;
        const std::size_t size = reader.append(mark, RecordMark::size);
        if (size == 0 && markAt == message.offset) return false;
        if (size == 0) throw FramingError(markAt, "the input ends before the last fragment of a record");
        if (size < RecordMark::size) throw FramingError(markAt, "the input ends within a record mark");
        const RecordMark decoded{mark};
        isLast = decoded.isLast;
        const std::size_t length = decoded.length;
        if (length > most - message.bytes.size())
            throw FramingError(markAt, "a record of more than " + std::to_string(most) +
                                           " bytes (or no record mark: " + hexDigits(mark) + ")");
        const std::size_t read = reader.append(message.bytes, length);
        if (read < length)
            throw FramingError(markAt, "the input ends within a fragment of " + std::to_string(length) +
                                           " bytes, after " + std::to_string(read));
    }
    return true;
}

bool FixedMessages::next(Message& message)
{
    message.offset = reader.offset();
    message.bytes.clear();
    const std::size_t read = reader.append(message.bytes, each);
    if (read != 0 && read < each)
        throw FramingError(message.offset, "the input ends within a message of " + std::to_string(each) +
                                               " bytes, after " + std::to_string(read));
    return read != 0;
}

bool LineReader::next(Line& line)
{
    line.text.clear();
    bool ends = false;
    while (!ends && line.text.size() < longestLine) {
        const auto piece = reader.available();
        if (piece.empty()) break;
        const auto most = std::min(piece.size(), longestLine - line.text.size());
        const auto until = std::ranges::find(piece.first(most), static_cast<unsigned char>('\n')) - piece.begin();
        ends = static_cast<std::size_t>(until) < most;
        const std::size_t size = static_cast<std::size_t>(until) + (ends ? 1 : 0);
        line.text.append(piece.begin(), piece.begin() + static_cast<std::ptrdiff_t>(size));
        reader.skip(size);
    }
    const bool isCut = !ends && line.text.size() == longestLine && !reader.available().empty();
    line.isWhole = !isCut && !continues;
    continues = isCut;
    return !line.text.empty();
}

std::vector<HexRun> hexRunsOf(std::string_view line)
{
    return RunFinder(line).find();
}

}  // namespace quorva::inspect
