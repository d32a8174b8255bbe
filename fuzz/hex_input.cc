// Any text, read in every form of a message: an error has a position within the text, the bytes survive printing and
// reading, and messages and runs lie within the input.

#include "inspect/forms.h"
#include "inspect/messages.h"
#include "mutate.h"

#include <algorithm>

using namespace quorva;
using namespace quorva::fuzz;
using namespace quorva::inspect;

namespace {

void checkPlace(std::string_view text, const InputError& error)
{
    const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
    if (error.line < 1 || error.line > lines || error.column < 1 || error.column > text.size() + 1)
        throw Finding{"an error beyond the text, at " + std::to_string(error.line) + ':' +
                      std::to_string(error.column)};
}

template <class Parse, class Print>
void checkReader(std::string_view text, Parse parse, Print print)
{
    try {
        const Bytes bytes = parse(text);
        if (bytes.size() > longestMessage) throw Finding{"more bytes than a message has"};
        if (parse(print(bytes)) != bytes) throw Finding{"printed bytes read back differently: " + print(bytes)};
    } catch (const InputError& error) {
        checkPlace(text, error);
    }
}

void checkForms(std::string_view text)
{
    try {
        const Recognised recognised =
            recognise(text, {InputForm::raw, InputForm::hex, InputForm::base64, InputForm::pcap, InputForm::json});
        if (recognised.bytes.size() > longestMessage) throw Finding{"recognised more bytes than a message has"};
    } catch (const InputError& error) {
        checkPlace(text, error);
    }
}

// A source of the text in blocks, whose size the text tells.
Source sourceOf(std::string_view text)
{
    const std::size_t most = text.empty() ? 1 : 1 + static_cast<unsigned char>(text.back()) % 7u;
    return [text, most](std::span<unsigned char> block) mutable {
        const std::size_t size = std::min({most, block.size(), text.size()});
        std::copy_n(text.begin(), size, block.begin());
        text.remove_prefix(size);
        return size;
    };
}

template <class Messages>
void checkMessages(std::string_view text, Messages messages)
{
    try {
        std::size_t end = 0;
        for (Message message; messages.next(message);) {
            if (message.offset < end) throw Finding{"a message that overlaps the one before it"};
            end = message.offset + std::max<std::size_t>(1, message.bytes.size());
            if (message.offset + message.bytes.size() > text.size()) throw Finding{"a message beyond the input"};
        }
    } catch (const FramingError& error) {
        if (error.offset > text.size()) throw Finding{"an error beyond the input"};
    }
}

void checkLines(std::string_view text)
{
    LineReader reader(sourceOf(text));
    std::string all;
    for (LineReader::Line line; reader.next(line);) {
        all += line.text;
        std::size_t end = 0;
        for (const HexRun& run : hexRunsOf(line.text)) {
            if (run.at < end || run.at + run.size > line.text.size()) throw Finding{"a run beyond its line"};
            if (run.bytes.empty() || run.bytes.size() % 4 != 0) throw Finding{"a run without whole units"};
            end = run.at + run.size;
        }
    }
    if (all != text) throw Finding{"the lines differ from the text"};
}

constexpr std::string_view words[] = {
    "00",
    "0x",
    "\\x",
    "0x00, ",
    "00000000: ",
    "00000010  ",
    "0000020 ",
    "\n*\n",
    "  >..<\n",
    "  |....|\n",
    "\n",
    "\r\n",
    "\t",
    "deadbeef",
    "=",
    "==",
    "AAAA",
    "Q_-A",
    "ffffffff",
    "{",
    "};",
    "\"",
    "'",
    "b'",
    "// ",
    "/*",
    "*/",
    "# ",
    "char m[2] = ",
    "\\0",
    "\\n",
    "[",
    "]",
    "(byte)",
    " <m+8>:\t",
    "<Buffer ",
    "\t0x0000:  ",
    "000000 ",
    "0000000  ",
    "  ",
    "Path:\n",
    "-",
    "..",
    "u8",
    "_len = 1",
    "{\"a\":1}",
    "<trace/>",
    "0 <repeats 3 times>",
    "65, 66",
    " 00  >.<",
    "0x00\t0x01",
    "0000 0003 ",
    " 4142  AB\n",
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return runDriver([&] {
        const std::string_view text(reinterpret_cast<const char*>(data), size);
        const auto parse64 = [](std::string_view from) { return parseBase64(from); };
        checkReader(text, parseHex, hexText);
        checkReader(text, parseHex, arrayText);
        checkReader(text, parse64, base64Text);
        const auto bytes = bytesOfDigits(text);
        if (bytes && hexDigits(*bytes).size() != text.size()) throw Finding{"digits read back differently"};
        checkForms(text);
        checkMessages(text, FramedMessages(sourceOf(text)));
        checkMessages(text, FixedMessages(sourceOf(text), 1 + size % 9));
        checkLines(text);
    });
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    return mutateText(data, size, most, seed, words);
}
