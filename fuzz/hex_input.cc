// Any text, read as hexadecimal digits and as base64: an error has a position within the text, and the bytes survive
// printing and reading.

#include "inspect/input.h"
#include "mutate.h"

#include <algorithm>

using namespace quorva;
using namespace quorva::fuzz;
using namespace quorva::inspect;

namespace {

void checkReader(std::string_view text, Bytes (*parse)(std::string_view),
                 std::string (*print)(std::span<const unsigned char>))
{
    try {
        const Bytes bytes = parse(text);
        if (bytes.size() > longestMessage) throw Finding{"more bytes than a message has"};
        if (parse(print(bytes)) != bytes) throw Finding{"printed bytes read back differently: " + print(bytes)};
    } catch (const InputError& error) {
        const auto lines = static_cast<std::size_t>(std::ranges::count(text, '\n')) + 1;
        if (error.line < 1 || error.line > lines || error.column < 1 || error.column > text.size() + 1)
            throw Finding{"an error beyond the text, at " + std::to_string(error.line) + ':' +
                          std::to_string(error.column)};
    }
}

constexpr std::string_view words[] = {
    "00",       "0x",       "\\x",  "0x00, ", "00000000: ",          "00000010  ",  "0000020 ", "\n*\n", "  |....|\n",
    "  >..<\n", "\n",       "\r\n", "\t",     "0000 0003 4142 4300", "de ad be ef", "=",        "==",    "AAAA",
    "Q_-A",     "ffffffff", "{",    "};"};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    return runDriver([&] {
        const std::string_view text(reinterpret_cast<const char*>(data), size);
        checkReader(text, parseHex, hexText);
        checkReader(text, parseBase64, base64Text);
        const auto bytes = bytesOfDigits(text);
        if (bytes && hexDigits(*bytes).size() != text.size()) throw Finding{"digits read back differently"};
    });
}

extern "C" std::size_t LLVMFuzzerCustomMutator(std::uint8_t* data, std::size_t size, std::size_t most, unsigned seed)
{
    return mutateText(data, size, most, seed, words);
}
