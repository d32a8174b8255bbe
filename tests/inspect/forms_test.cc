// The form of an input, and several messages in one input.

#include "inspect/forms.h"
#include "inspect/messages.h"

#include <gtest/gtest.h>

using namespace quorva;
using namespace quorva::inspect;
using namespace std::string_literals;

namespace {

TEST(Forms, areRecognisedInOneOrder)
{
    const std::initializer_list<InputForm> message = {InputForm::raw, InputForm::hex, InputForm::base64,
                                                      InputForm::pcap};
    const std::initializer_list<InputForm> value = {InputForm::json};
    const std::initializer_list<InputForm> both = {InputForm::raw, InputForm::hex, InputForm::base64, InputForm::json};
    const struct {
        std::string contents;
        std::initializer_list<InputForm> possible;
        const char* phrase;
    } inputs[] = {
        {"\xD4\xC3\xB2\xA1"s + std::string(20, '\0'), message, "read as pcap"},
        {"\n\r\r\n\0\0\0\0\x4D\x3C\x2B\x1A"s, message, "read as pcap"},
        {"\n\r\r\n\0\0\0\0\x4D\x3C\x2B\x1A"s, both, "read as raw"},
        {"\0\0\0\5"s, message, "read as raw"},
        {"\xC3\x28", message, "read as raw"},
        {"\xFF\xFE\x30\0\x31\0"s, message, "text in UTF-16; convert it to UTF-8"},
        {" <trace/>", message, "a trace or another XML document, which is not read"},
        {"<Buffer 00 05>", message, "read as hex: a Buffer"},
        {"12345678", message, "read as hex: hexadecimal digits"},
        {"12345678", value, "read as json"},
        {"12345678", both, "read as hex: hexadecimal digits"},
        {"{\"a\": 1}", both, "read as json"},
        {"[0, 0, 0, 5]", message, "read as hex: an array"},
        {"[0, 0, 0, 5]", value, "read as json"},
        {"[0, 0, 0, 5]", both, "this can be json or hex; name one with --from"},
        {"{0x00, 0x05}", both, "read as hex: an array"},
        {"{\"a\": ", value, "read as json"},
        {"{\"a\": ", both, "read as json"},
        {"\xEF\xBB\xBF"
         "0005",
         message, "read as hex: hexadecimal digits"},
        {"AAAABQ==", message, "read as base64"},
        {"AAAAAAAAAAAAAAAA", message, "these digits can be base64 or hex; name one with --from"},
        {"deadbeef", message, "read as hex: hexadecimal digits"},
        {"zz zz", message, "'z' is not a hexadecimal digit"},
    };
    for (const auto& [contents, possible, phrase] : inputs) {
        try {
            EXPECT_EQ(recognise(contents, possible).phrase, phrase) << contents;
        } catch (const InputError& error) {
            EXPECT_STREQ(error.what(), phrase) << contents;
        }
    }
}

// A source of these bytes, in blocks of a few bytes.
Source sourceOf(std::string bytes, std::size_t most)
{
    return [bytes, most, at = std::size_t{0}](std::span<unsigned char> block) mutable {
        const std::size_t size = std::min({most, block.size(), bytes.size() - at});
        std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(at), size, block.begin());
        at += size;
        return size;
    };
}

// Each message as "offset:digits", and the error.
template <class Messages>
std::string split(Messages messages)
{
    std::string text;
    try {
        for (Message message; messages.next(message);)
            text += std::to_string(message.offset) + ':' + hexDigits(message.bytes) + ' ';
    } catch (const FramingError& error) {
        text += std::to_string(error.offset) + ": " + error.what();
    }
    return text;
}

TEST(Messages, areSplitByMarksAndLengths)
{
    const struct {
        std::string input, expected;
    } framed[] = {
        {"", ""},
        {"\x80\0\0\1A\x80\0\0\0\x80\0\0\2BC"s, "0:41 5: 9:4243 "},
        {"\0\0\0\1A\0\0\0\0\x80\0\0\1B"s, "0:4142 "},
        {"\0\0\0\1A"s, "5: the input ends before the last fragment of a record"},
        {"\x80\0\0\1A\x80\0"s, "0:41 5: the input ends within a record mark"},
        {"\x80\0\0\4AB"s, "0: the input ends within a fragment of 4 bytes, after 2"},
        {"\0\0\0\1A\x80\0\0\5BCDEF"s, "5: a record of more than 5 bytes (or no record mark: 80000005)"},
        {"\x7F\xFF\xFF\xFF"s, "0: a record of more than 5 bytes (or no record mark: 7fffffff)"},
    };
    for (const std::size_t block : {std::size_t{1}, std::size_t{3}, std::size_t{100}}) {
        for (const auto& [input, expected] : framed)
            EXPECT_EQ(split(FramedMessages(sourceOf(input, block), 5)), expected);
        EXPECT_EQ(split(FixedMessages(sourceOf("ABCDE", block), 2)),
                  "0:4142 2:4344 4: the input ends within a message of 2 bytes, after 1");
    }
}

TEST(Messages, linesAreBounded)
{
    const std::string longLine(LineReader::longestLine + 5, 'x');
    LineReader reader(sourceOf("a\n\n" + longLine + "\n" + longLine.substr(5) + "b", 100));
    std::string seen;
    for (LineReader::Line line; reader.next(line);)
        seen += std::to_string(line.text.size()) + (line.isWhole ? " " : "- ");
    EXPECT_EQ(seen, "2 1 1048576- 6- 1048576- 1- ");
}

TEST(Messages, areFoundInLines)
{
    const struct {
        const char* line;
        const char* runs;
    } lines[] = {
        {"10:15:30.123456 recv 00 00 00 05 41 42 43 44 ok", "0000000541424344"},
        {"send: 00000005 000000e7\n", "00000005000000e7"},
        {"msg=0000000541424344, next=00000007", "0000000541424344 00000007"},
        {"to aa:bb:cc:dd:ee:0f [00:00:00:05]", "00000005"},
        {"{0x00, 0x00, 0x00, 0x05}", "00000005"},
        {"b\"\\x00\\x00\\x00\\x05\"", "00000005"},
        {"0x000000050000000700000009", "000000050000000700000009"},
        {"id 123e4567-e89b-12d3-a456-426614174000", ""},
        {"2024-11-22 10:15:30 20241122 17000000 10 20 30 40", ""},
        {"at 0x7fff5fbff8a0b0c1 0x00401000", ""},
        {"v1.00000005 a dead beef 00000005x 0.00000005.7", ""},
        {"2001:0db8:0000:0000:0000:0000:0000:0001", ""},
        {"12 00 00 00 05", ""},
        {"", ""},
    };
    for (const auto& [line, expected] : lines) {
        std::string runs;
        for (const HexRun& run : hexRunsOf(line)) runs += (runs.empty() ? "" : " ") + hexDigits(run.bytes);
        EXPECT_EQ(runs, expected) << line;
    }
    const auto runs = hexRunsOf("a 0x00 0x00 0x00 0x05.");
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].at, 2u);
    EXPECT_EQ(runs[0].size, 19u);
}

}  // namespace
