// Hex, base64 and other forms of messages: every form that is read, each that is refused, and the place of each error.

#include "inspect/forms.h"

#include "inspect/chance.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <numeric>

#include <unistd.h>

using namespace quorva;
using namespace quorva::inspect;

namespace {

std::string placeOf(const InputError& error)
{
    return std::to_string(error.line) + ':' + std::to_string(error.column) + ": " + error.what();
}

// What was read, or the error.
std::string read(std::string_view text)
{
    try {
        return hexDigits(readHex(text).bytes);
    } catch (const InputError& error) {
        return placeOf(error);
    }
}

TEST(Hex, readsEveryForm)
{
    const struct {
        const char* text;
        const char* digits;
        const char* what;
    } forms[] = {
        {"", "", "no bytes"},
        {" \n", "", "no bytes"},
        {"0000000341424300", "0000000341424300", "hexadecimal digits"},
        {"00 00 00 03\r\n41 42 43 00\r\n", "0000000341424300", "hexadecimal digits"},
        {"0000 0003 4142 4300", "0000000341424300", "hexadecimal digits"},
        {"00000000 00000005\n00000004 00000007\n", "00000000000000050000000400000007", "hexadecimal digits"},
        {"00:00:00:03-41", "0000000341", "hexadecimal digits"},
        {"0x0000000341", "0000000341", "hexadecimal digits"},
        {"00000005 # service\n// the job\n000000e7 // 231", "00000005000000e7", "hexadecimal digits"},
        {"\\x00\\x41", "0041", "hexadecimal digits"},
        {"<Buffer 00 00 00 03>", "00000003", "a Buffer"},
        {"00000000: 0000 0003 4142 4300 0a               ....ABC..\n", "00000003414243000a", "xxd"},
        {"  00000000: 41                  0\n", "41", "xxd"},
        {"00000100: 01\n# a comment\n00000101: 02\n", "0102", "xxd"},
        {"00000000: 00 01 02 03 04 05 06 07  08 09\n", "00010203040506070809", "xxd"},
        {"00000000: 33 30 20 33 31 20 33 32  30 31 3\n", "3330203331203332", "xxd"},
        {"00000000: 41 42 43 44 45 46 47 49  41\n", "414243444546474941", "xxd"},
        {"00000000: 4142 4345  ABCD\n", "41424345", "xxd"},
        {"00000000: 00000003 41424344  ....ABCD\n", "0000000341424344", "xxd"},
        {"12:00:01.5 IP 127.0.0.1.5 > 127.0.0.1.6: UDP\n\t0x0000:  4500 0003\n\t0x0004:  41\n", "4500000341",
         "tcpdump -x"},
        {"\t0x0000:  4500 0003 4142  E...AB\n", "450000034142", "tcpdump -x"},
        {"00000000  00 00 00 03 41 42 43 00  de ad                    |....ABC...|\n0000000a\n", "0000000341424300dead",
         "hexdump -C"},
        {"00000000  07 07  |..|\n*\n00000008\n", "0707070707070707", "hexdump -C"},
        {"000000 00 00 00 03 41 42 43 00 01 01 01 01 01 01 01 01  >....ABC.........<\n000010 0a     >.<\n000011\n",
         "000000034142430001010101010101010a", "od -t x1"},
        {"0000000    00  03  4a\n0000003\n", "00034a", "od -t x1"},
        {"0000020 00 01\n", "0001", "od -t x1"},
        {" 00 22  >.\"<\n", "0022", "od -t x1z"},
        {"00000000 03\n00000001 04\n", "0304", "hexdump -C"},
        {"0000   00 03 41   ..A\n", "000341", "the dump of a packet analyser"},
        {"    1   0.000000  127.0.0.1 > 127.0.0.1  UDP 5\n\n0000  00 03   ..\n", "0003",
         "the dump of a packet analyser"},
        {"0x7ffe10 <message>:\t0x00\t0x41\n0x7ffe12 <message+2>:\t0xff\n", "0041ff", "x/NNxb of gdb or lldb"},
        {"0x7ffe10: 00 00 00 03 41 42 43 00 de ad be ef 0d 0a 3e 7c  ....ABC.......>|\n",
         "0000000341424300deadbeef0d0a3e7c", "memory read of lldb"},
        {"   Label: String\n\n          Offset Bytes      Ascii\n          ------ -----\n"
         "0000000000000000 30 31 20 30 31 32 33 34 35 36 37 38 39 30 31 32 01 0123456789012\n",
         "30312030313233343536373839303132", "Format-Hex"},
        {"unsigned char m[] = {\n  0x00, 0x41, // 0x42\n};\nunsigned int m_len = 2;\n", "0041", "an array"},
        {"{ 0x00, 0x01,\n 0xfF };", "0001ff", "an array"},
        {"const uint8_t m[3] = {0, 'A', /* 7 */ 255};", "0041ff", "an array"},
        {"[]byte{0x0, 0x3}", "0003", "an array"},
        {"m = bytes([0, 0, 3])  # three", "000003", "an array"},
        {"new Uint8Array([0, 10, 20])", "000a14", "an array"},
        {"Uint8Array(2) [ 10, 20 ]", "0a14", "an array"},
        {"let m: [u8; 2] = [0x0a, 20u8];", "0a14", "an array"},
        {"byte[] m = { (byte)0x80, -1 };", "80ff", "an array"},
        {"byteArrayOf(0x00, 0x7f)", "007f", "an array"},
        {"[0, 0, 0, 3]", "00000003", "an array"},
        {"$2 = {0x0, 0x3, 0x1 <repeats 3 times>}", "0003010101", "an array"},
        {"b'\\x00AB\\x0a\\n'", "0041420a0a", "a text with escapes"},
        {"char m[] = \"\\x00\\x41\" // 1\n  \"B\\0\\\"\";", "0041420022", "a text with escapes"},
        {"\"\\x00\\x00\" \\\n\"\\x00#\"", "00000023", "a text with escapes"},
    };
    for (const auto& [text, digits, what] : forms) {
        EXPECT_EQ(read(text), digits) << text;
        EXPECT_EQ(readHex(text).what, what) << text;
    }
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
        {"# nothing\n", "2:1: the text has no hexadecimal digits"},
        {"0x00000003, 0x41424300", "1:3: a number of several bytes"},
        {"10, 20, 30", "1:1: these numbers can be decimal or hexadecimal"},
        {"[65 66]", "1:2: these numbers can be decimal or hexadecimal"},
        {"  65  66  67\n", "1:3: this can be plain digits or od's words or numbers"},
        {" 0500 0000\n", "1:2: this can be plain digits or od's words or numbers"},
        {"000000 03", "1:1: the first digits can be bytes or the offset of a dump"},
        {"0000 03\n0000 04\n", "2:1: a second dump begins here"},
        {"0000 03\n0007 04\n", "2:1: the offset is wrong: the lines before hold 1 byte"},
        {"\\x00ABC\\x01", "1:3: \\x has two digits"},
        {"00000000: 00\n00000002: 00\n", "2:1: the offset is wrong: the lines before hold 1 byte"},
        {"00000000: 00\nzz\n", "2:1: each line of a dump begins with its offset; this one does not"},
        {"00000000: 0g\n", "1:12: 'g' is not a hexadecimal digit"},
        {"00000000: 03000000\n", "1:1: groups of 4 bytes"},
        {"00000000: 41 42  41\n", "1:18: two blanks are before these digits"},
        {"00000000  00\n*\n", "2:1: no line follows \"*\" to tell how often it repeats"},
        {"00000000:  |..|\n*\n", "2:1: \"*\" repeats the line before it, and there is none"},
        {"00000100: 00\n*\n00000000:\n", "3:1: from here on the message is longer than 65535 bytes"},
        {"00000000  00\n*\n10000000\n", "3:1: from here on the message is longer than 65535 bytes"},
        {"0000000 00 01 02 03 04 05 06 07\n*\n0000040 08\n0000041\n", "1:1: the offsets can have different bases"},
        {"1 IP a > b\n\t0x0000:  4500\n2 IP a > b\n\t0x0000:  4500\n",
         "3:1: each line of a dump begins with its offset; this one does not (give one packet at a time)"},
        {"a capture\n00000000: 00\n", "2:1: a dump begins here; delete the lines before it"},

        {"0x7ff0 <m>:\t0x03000000\n", "1:15: words of gdb"},
        {"0x7ff0 <m>:\t65\t66\n", "1:13: gdb's decimal, octal or other numbers"},
        {"$1 = \"\\000\\000\"", "1:6: gdb leaves out zeros"},
        {"$1 = {0x0, 0x1...}", "1:15: the rest of the array is missing"},
        {"uint16_t m[] = {0x00, 0x01};", "1:1: the elements of this array are wider than a byte"},
        {"char m[3] = {0x00, 0x01};", "1:8: this size is declared, but the array has 2 bytes"},
        {"char m[] = {0x00};\nunsigned m_len = 2;", "2:18: the array has 1 bytes"},
        {"char m[] = {0x00}, n[] = {0x01};", "1:26: a second array or text"},
        {"char m[] = {0x00, 010};", "1:19: a number that begins with 0 is octal in C"},
        {"char m[] = {0x00, 0x100};", "1:19: a number of more than a byte"},
        {"char m[] = {300};", "1:13: a byte is from -128 to 255"},
        {"char m[] = {0x00, SIZE};", "1:19: not a number"},
        {"char m[] = {0x00, 0x01", "1:23: the array does not end with '}'"},
        {"m = {0x00} 0x01", "1:12: a number after the array"},
        {"{10, 20}", "1:1: these numbers can be decimal or hexadecimal"},
        {"\"\\x00A\"", "1:2: in C this \\x has 3 digits"},
        {"\"00000003\"", "1:1: this text has no \\x"},
        {"\"\\x00", "1:1: the text does not end in its line"},
        {"L\"\\x00\"", "1:1: a text with this prefix is not read"},
        {"\"\\x00\", \"\\x01\"", "1:9: a second array or text"},
        {"00 /* 01", "1:4: a comment that does not end"},
        {std::string(131072, '0'), "1:1: from here on the message is longer than 65535 bytes"},
    };
    for (const auto& [text, expected] : wrong)
        EXPECT_EQ(read(text).substr(0, expected.size()), expected) << text.substr(0, 80);
}

// The output of a shell command; nullopt if it fails.
std::optional<std::string> outputOf(const std::string& command)
{
    std::string output;
    char block[4096];
    std::FILE* const pipe = popen((command + " 2>/dev/null").c_str(), "r");
    if (pipe == nullptr) return std::nullopt;
    while (const std::size_t size = std::fread(block, 1, sizeof block, pipe)) output.append(block, size);
    return pclose(pipe) == 0 ? std::optional(output) : std::nullopt;
}

// Every form of the tools on this machine is read rightly or refused, whatever the bytes are.
TEST(Hex, readsToolsRightlyOrNotAtAll)
{
    const struct {
        const char* command;
        bool isRead;
    } tools[] = {
        {"xxd", true},
        {"xxd -p", true},
        {"xxd -i", true},
        {"xxd -i -C", true},
        {"xxd -u -g1", true},
        {"xxd -c 8", true},
        {"xxd -c 8 -g 1", true},
        {"xxd -c 7 -g 1", true},
        {"xxd -d", true},
        {"xxd -ps -c 4", true},
        {"hexdump -C", true},
        {"hexdump -v -C", true},
        {"od -v -t x1", true},
        {"od -A x -t x1z", true},
        {"od -A x -t x1", true},
        {"od -v -A d -t x1z", true},
        {"od -v -A n -t x1z", true},
        {"od -v -A n -t x1", true},
        {"od -v -w8 -A x -t x1", true},
        {"od -A o -t x1", false},
        {"xxd -a", false},
        {"xxd -g4", false},
        {"xxd -g8", false},
        {"xxd -e", false},

        {"xxd -e -g8", false},
        {"xxd -b", false},
        {"hexdump", false},
        {"hexdump -x", false},
        {"hexdump -b", false},
        {"hexdump -c", false},
        {"hexdump -d", false},
        {"hexdump -o", false},
        {"od", false},
        {"od -x", false},
        {"od -b", false},
        {"od -c", false},
        {"od -a", false},
        {"od -t u1", false},
        {"od -t d1", false},
        {"od -t x4", false},
        {"od -t x8", false},
        {"od -t u2", false},
        {"od -t d4", false},
        {"od -t f8", false},
        {"od -t x1c", false},
        {"od -A x", false},
        {"od -A x -t x2z", false},
        {"od -A x -t x4", false},
        {"od -A x -b", false},
        {"od -A x -t u1", false},
        {"od -A x -t d1", false},
        {"od -A x -c", false},
        {"od -A x -t d4", false},
        {"od -A n", false},
        {"od -A n -x", false},
        {"od -A n -t x4", false},
        {"od -A n -t x8", false},
        {"od -A n -b", false},
        {"od -A n -t u1", false},
        {"od -A n -t d1", false},
        {"od -A n -t d2", false},
        {"od -A n -c", false},
        {"od -A n -t x1c", false},
    };
    // Bytes that look like other things: digits and blanks as characters, two decimal digits, zeros and ones.
    const std::vector<std::string> alphabets = {"", "0123456789abcdef  ", "ABCDEFGHI", {"\0\0\0\1", 4}, " >|<\"'#/*"};
    const auto file = (std::filesystem::temp_directory_path() / ("input_test." + std::to_string(getpid()))).string();
    Chance chance(1);
    for (int round = 0; round < 10; ++round) {
        const std::string& alphabet = alphabets[static_cast<std::size_t>(round) % alphabets.size()];
        Bytes bytes(1 + chance.below(round < 5 ? 24 : 90));
        for (auto& byte : bytes)
            byte = alphabet.empty() ? static_cast<unsigned char>(chance.next())
                                    : static_cast<unsigned char>(alphabet[chance.below(alphabet.size())]);
        std::ofstream(file, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), std::ssize(bytes));
        for (const auto& [command, isRead] : tools) {
            const auto text = outputOf(std::string(command) + ' ' + file);
            if (!text) continue;
            try {
                EXPECT_EQ(hexDigits(readHex(*text).bytes), hexDigits(bytes)) << command << '\n' << *text;
            } catch (const InputError& error) {
                EXPECT_FALSE(isRead) << command << '\n' << *text << placeOf(error);
            }
        }
    }
    std::filesystem::remove(file);
}

TEST(Base64, readsBothAlphabetsAndRefusesOtherForms)
{
    EXPECT_EQ(hexDigits(parseBase64("AAAAA0FC\n Q/8=\n")), "00000003414243ff");
    EXPECT_EQ(hexDigits(parseBase64("Q_-A")), hexDigits(parseBase64("Q/+A")));
    EXPECT_EQ(hexDigits(parseBase64("QQ")), "41");
    for (const char* wrong : {"A", "QQ=", "QUJD=", "Q=QQ", "QQ===", "Q!=="})
        EXPECT_THROW(parseBase64(wrong), InputError) << wrong;
    EXPECT_THROW(parseBase64("AAAA", 2), InputError);
}

TEST(Text, readsBackWhatItPrints)
{
    Bytes bytes(200);
    std::iota(bytes.begin(), bytes.end(), static_cast<unsigned char>(0));
    for (std::size_t size = 0; size <= bytes.size(); ++size) {
        const Bytes part(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        EXPECT_EQ(parseHex(hexText(part)), part);
        EXPECT_EQ(parseHex(arrayText(part)), part);
        EXPECT_EQ(parseBase64(base64Text(part)), part);
    }
    EXPECT_EQ(hexText(Bytes(18, 0x41)), "41414141 41414141 41414141 41414141\n4141\n");
    EXPECT_EQ(hexText(Bytes(9, 0x41)), "41414141 4141414141\n");
    EXPECT_EQ(arrayText(Bytes(2, 0x41)), "static const unsigned char message[2] = {\n    0x41, 0x41,\n};\n");
}

}  // namespace
