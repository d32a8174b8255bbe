// Hex, hex dumps and base64: every form that is read, and the place of each error.

#include "inspect/input.h"

#include <gtest/gtest.h>

#include <numeric>

using namespace quorva;
using namespace quorva::inspect;

namespace {

TEST(Hex, readsEveryForm)
{
    const struct {
        const char* text;
        const char* digits;
    } forms[] = {
        {"", ""},
        {" \n", ""},
        {"0000000341424300", "0000000341424300"},
        {"00 00 00 03\r\n41 42 43 00\r\n", "0000000341424300"},
        {"00:00:00:03-41", "0000000341"},
        {"0x00000003, 0X41424300", "0000000341424300"},
        {"{ 0x00, 0x01,\n 0xfF };", "0001ff"},
        {"\\x00\\x41", "0041"},
        {"00000000: 0000 0003 4142 4300 0a               ....ABC..\n", "00000003414243000a"},
        {"  00000000: 41                  0\n", "41"},
        {"0x0000:  4500 0003\n0x0004:  41\n", "4500000341"},
        {"00000100: 01\n00000101: 02\n", "0102"},
        {"00000000  00 00 00 03 41 42 43 00  de ad                    |....ABC...|\n0000000a\n",
         "0000000341424300dead"},
        {"00000000  07 07  |..|\n*\n00000008\n", "0707070707070707"},
        {"000000 00 00 00 03 41 42 43 00 01 01 01 01 01 01 01 01  >....ABC.........<\n000010 0a     >.<\n000011\n",
         "000000034142430001010101010101010a"},
        {"0000   00 03 41   ..A\n", "000341"},
        {"000000 03", "00000003"},
        {"0000 03\n0000 04\n", "000003000004"},
        {"00000000 03\n00000001 04\n", "0304"},
        {"00000000 0000\n", "000000000000"},
    };
    for (const auto& [text, digits] : forms) EXPECT_EQ(hexDigits(parseHex(text)), digits) << text;
}

TEST(Hex, tellsLineAndColumnOfAnError)
{
    const struct {
        std::string text, error;
    } wrong[] = {
        {"00 0g", "1:5: 'g' is not a hexadecimal digit"},
        {"00\n xx", "2:2: 'x' is not a hexadecimal digit"},
        {"00 \x01", "1:4: byte 0x01 is not a hexadecimal digit"},
        {"00 000", "1:4: an odd number of digits (3); a byte has two"},
        {"0x0", "1:3: a single digit; a byte has two"},
        {"00000000: 00\n00000002: 00\n", "2:1: the offset is wrong: the lines before hold 1 byte"},
        {"00000000: 00\nzz\n", "2:1: each line of a dump begins with its offset; this one does not"},
        {"00000000: 0g\n", "1:12: 'g' is not a hexadecimal digit"},
        {"00000000  00\n*\n", "2:1: no line follows \"*\" to tell how often it repeats"},
        {"00000000:  |..|\n*\n", "2:1: \"*\" repeats the line before it, and there is none"},
        {"00000100: 00\n*\n00000000:\n", "3:1: from here on the message is longer than 65535 bytes"},
        {"00000000  00\n*\n10000000\n", "3:1: from here on the message is longer than 65535 bytes"},
        {std::string(131072, '0'), "1:1: from here on the message is longer than 65535 bytes"},
    };
    for (const auto& [text, expected] : wrong) {
        try {
            ADD_FAILURE() << text.substr(0, 40) << " was read as " << hexDigits(parseHex(text));
        } catch (const InputError& caught) {
            const std::string told =
                std::to_string(caught.line) + ':' + std::to_string(caught.column) + ": " + caught.what();
            EXPECT_EQ(told.substr(0, expected.size()), expected);
        }
    }
}

TEST(Base64, readsBothAlphabetsAndRefusesOtherForms)
{
    EXPECT_EQ(hexDigits(parseBase64("AAAAA0FC\n Q/8=\n")), "00000003414243ff");
    EXPECT_EQ(hexDigits(parseBase64("Q_-A")), hexDigits(parseBase64("Q/+A")));
    EXPECT_EQ(hexDigits(parseBase64("QQ")), "41");
    for (const char* wrong : {"A", "QQ=", "QUJD=", "Q=QQ", "QQ===", "Q!=="})
        EXPECT_THROW(parseBase64(wrong), InputError) << wrong;
}

TEST(Text, readsBackWhatItPrints)
{
    Bytes bytes(200);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        const Bytes part(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(parseHex(hexText(part)), part);
        EXPECT_EQ(parseBase64(base64Text(part)), part);
    }
    EXPECT_EQ(hexText(Bytes(18, 0x41)), "41414141 41414141 41414141 41414141\n4141\n");
}

}  // namespace
