// Opaque data and strings: RFC 4506 sections 4.9 to 4.11 by hand, whether a length is checked before its allocation,
// and what a failed pass leaves.

#include "codec_tools.h"
#include "memory.h"

#include <gtest/gtest.h>

using namespace quorva;
using namespace quorva::test;

namespace {

// The primitives with a maximum, as routines over one object.
template <std::uint32_t Maximum>
int stringOf(Xdr* xdrs, void* object)
{
    return XdrString(xdrs, static_cast<char**>(object), Maximum);
}

using ByteArray = Counted<unsigned char>;

template <std::uint32_t Maximum>
int byteArray(Xdr* xdrs, void* object)
{
    auto* const bytes = static_cast<ByteArray*>(object);
    return XdrBytes(xdrs, &bytes->elements, &bytes->count, Maximum);
}

Pass pass(Mode mode, XdrRoutine routine, void* object, std::span<unsigned char> buffer)
{
    const Watch watch;
    return runPass(mode, routine, object, buffer);
}

struct Decoded {
    const char* why;
    XdrRoutine routine;
    const char* wire;
    bool succeeded;
    std::size_t length;
    const char* left;  // the string, or the bytes in hex; null for none
    long allocated = 1;
};

const Decoded strings[] = {
    {"length, characters, padding", stringOf<80>, "00000003 41424300", true, 8, "ABC"},
    {"no padding after a whole unit", stringOf<80>, "00000004 41424344", true, 8, "ABCD"},
    {"an empty string", stringOf<80>, "00000000", true, 4, ""},
    {"at the maximum", stringOf<3>, "00000003 41424300", true, 8, "ABC"},
    {"the storage is allocated before the length is checked", stringOf<2>, "00000003 41424300", false, 4, ""},
    {"a length beyond all maxima is allocated too, and refused", stringOf<65535>, "00020000 41424300", false, 4, ""},
    {"the padding may have any value", stringOf<80>, "00000001 41FFFFFF", true, 8, "A"},
    {"a zero byte ends the string in memory", stringOf<80>, "00000003 41004300", true, 8, "A"},
    {"the message ends in the length", stringOf<80>, "000000", false, 0, nullptr, 0},
    {"the message ends in the characters", stringOf<80>, "00000003 4142", false, 4, ""},
    {"the message ends in the padding", stringOf<80>, "00000003 414243", false, 7, "ABC"},
    {"of a length beyond 16 bits, the low part is transferred", stringOf<100000>, "00010001 41000000", true, 8, "A"},
};

const Decoded byteArrays[] = {
    {"count, bytes, padding", byteArray<40>, "00000003 41424300", true, 8, "414243"},
    {"a count of zero allocates nothing", byteArray<40>, "00000000", true, 4, nullptr, 0},
    {"at the maximum", byteArray<3>, "00000003 41424300", true, 8, "414243"},
    {"a count beyond the maximum is stored and refused", byteArray<2>, "00000003 41424300", false, 4, nullptr, 0},
    {"a count is its low 16 bits, and only they are compared with the maximum", byteArray<2>, "00010001 41000000", true,
     8, "41"},
    {"missing bytes are zero", byteArray<40>, "00000003 4142", false, 4, "000000"},
    {"without their padding, all bytes are zero", byteArray<40>, "00000003 414243", false, 7, "000000"},
};

}  // namespace

TEST(Strings, decodeTheirCharacters)
{
    for (const Decoded& expected : strings) {
        SCOPED_TRACE(expected.why);
        const Message message(bytesOf(expected.wire));
        char* string = nullptr;
        const Pass done = pass(Mode::decode, expected.routine, &string, message.span());
        EXPECT_EQ(done.succeeded, expected.succeeded);
        EXPECT_EQ(done.length, expected.length);
        EXPECT_EQ(allocations(), expected.allocated);
        EXPECT_STREQ(string, expected.left);

        const char* const before = string;
        EXPECT_TRUE(pass(Mode::release, expected.routine, &string, {}).succeeded);
        EXPECT_EQ(string, before) << "release leaves the pointer";
        EXPECT_EQ(liveBlocks(), 0);
        EXPECT_EQ(mismatchedReleases(), 0);
    }
}

// The machine decides if it has 4 GiB; a release pass succeeds in both cases.
TEST(Strings, ofTheLargestLengthAreAllocatedAndRefused)
{
    for (const char* wire : {"FFFFFFFF 41414141", "80000000", "7FFFFFFC 41"}) {
        const Message message(bytesOf(wire));
        char* string = nullptr;
        EXPECT_FALSE(pass(Mode::decode, stringOf<65535>, &string, message.span()).succeeded);
        EXPECT_GT(largestAllocation(), 0x7FFFFFFCu) << "allocated before the check";
        if (string) { EXPECT_STREQ(string, ""); }
        EXPECT_TRUE(pass(Mode::release, stringOf<65535>, &string, {}).succeeded);
        EXPECT_EQ(liveBlocks(), 0);
    }
}

TEST(Strings, encodeTheirCharacters)
{
    const struct {
        const char* why;
        XdrRoutine routine;
        std::string string;
        std::size_t room;
        bool succeeded;
        const char* wire;
    } cases[] = {
        {"length, characters, zero padding", stringOf<80>, "ABC", 80, true, "00000003 41424300"},
        {"empty", stringOf<80>, "", 80, true, "00000000"},
        {"at the maximum", stringOf<3>, "ABC", 80, true, "00000003 41424300"},
        {"beyond the maximum, the length is written", stringOf<2>, "ABC", 80, false, "00000003"},
        {"no room for the length", stringOf<80>, "ABC", 3, false, ""},
        {"no room for the characters", stringOf<80>, "ABC", 6, false, "00000003"},
        {"no room for the padding", stringOf<80>, "ABC", 7, false, "00000003 414243"},
        {"of a length beyond 16 bits, the low part is transferred", stringOf<100000>, std::string(65537, 'A'), 80, true,
         "00010001 41000000"},
        {"a string by value", XdrWrapString, "ABC", 80, true, "00000003 41424300"},
        {"at most 65535 characters of it", XdrWrapString, std::string(65535, 'A'), 8, false, "0000FFFF"},
        {"65536 are refused, although their low 16 bits are zero", XdrWrapString, std::string(65536, 'A'), 8, false,
         "00010000"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.why);
        Bytes buffer(expected.room, 0x55);
        std::string copy = expected.string;
        char* string = copy.data();
        void* const object = expected.routine == XdrWrapString ? static_cast<void*>(string) : &string;
        const Pass done = pass(Mode::encode, expected.routine, object, buffer);
        EXPECT_EQ(done.succeeded, expected.succeeded);
        EXPECT_EQ(copy, expected.string);
        EXPECT_EQ(hexOf(std::span(buffer).first(done.length)), expected.wire);
        for (std::size_t i = done.length; i < buffer.size(); ++i)
            ASSERT_EQ(buffer[i], 0x55) << "written beyond the length";
    }
    char* none = nullptr;
    Bytes buffer(80);
    const Pass done = pass(Mode::encode, stringOf<80>, &none, buffer);
    EXPECT_FALSE(done.succeeded) << "a null string";
    EXPECT_EQ(done.length, 0u);
}

// XdrWrapString takes the string by value, so its caller cannot get the decoded string.
TEST(Strings, byValueLoseWhatTheyDecode)
{
    char given[] = "given";
    const Message message(bytesOf("00000003 41424300"));
    EXPECT_TRUE(pass(Mode::decode, XdrWrapString, given, message.span()).succeeded);
    EXPECT_STREQ(given, "given");
    ASSERT_EQ(liveBlocks(), 1);
    char* const lost = static_cast<char*>(lastBlock());
    EXPECT_STREQ(lost, "ABC");
    EXPECT_TRUE(pass(Mode::release, XdrWrapString, lost, {}).succeeded);
    EXPECT_EQ(liveBlocks(), 0);
}

TEST(ByteArrays, decodeTheirBytes)
{
    for (const Decoded& expected : byteArrays) {
        SCOPED_TRACE(expected.why);
        const Message message(bytesOf(expected.wire));
        ByteArray bytes = {};
        const Pass done = pass(Mode::decode, expected.routine, &bytes, message.span());
        EXPECT_EQ(done.succeeded, expected.succeeded);
        EXPECT_EQ(done.length, expected.length);
        EXPECT_EQ(allocations(), expected.allocated);
        EXPECT_EQ(bytes.count, message.span()[3]);
        EXPECT_EQ(bytes.elements != nullptr, expected.left != nullptr);
        if (expected.left && bytes.elements) { EXPECT_EQ(hexOf({bytes.elements, bytes.count}), expected.left); }
        const auto before = bytes;
        EXPECT_EQ(pass(Mode::release, expected.routine, &bytes, {}).succeeded,
                  expected.allocated > 0 || bytes.count == 0);
        EXPECT_EQ(bytes.elements, before.elements);
        EXPECT_EQ(bytes.count, before.count);
        EXPECT_EQ(liveBlocks(), 0);
        EXPECT_EQ(mismatchedReleases(), 0);
    }
}

TEST(ByteArrays, keepTheirPointerAtACountOfZero)
{
    unsigned char own = 7;
    for (const auto mode : {Mode::encode, Mode::decode, Mode::release}) {
        Bytes buffer(4);
        ByteArray bytes = {0, &own};
        EXPECT_TRUE(pass(mode, byteArray<40>, &bytes, buffer).succeeded);
        EXPECT_EQ(bytes.elements, &own);
        EXPECT_EQ(allocations(), 0);
    }
}

TEST(ByteArrays, withoutBytesCanOnlyBeReleased)
{
    Bytes buffer(80);
    ByteArray none = {3, nullptr};
    EXPECT_FALSE(pass(Mode::encode, byteArray<40>, &none, buffer).succeeded);
    EXPECT_TRUE(pass(Mode::release, byteArray<40>, &none, {}).succeeded) << "as a decode without memory leaves it";
}

TEST(Strings, keepTheirCountWithoutMemory)
{
    const Message message(bytesOf("00000003 41424300"));
    char* string = nullptr;
    ByteArray bytes = {};
    {
        const Watch watch(0);
        EXPECT_FALSE(runPass(Mode::decode, stringOf<80>, &string, message.span()).succeeded);
        EXPECT_FALSE(runPass(Mode::decode, byteArray<80>, &bytes, message.span()).succeeded);
    }
    EXPECT_EQ(string, nullptr);
    EXPECT_EQ(bytes.count, 3);
    EXPECT_EQ(bytes.elements, nullptr);
}

// The trace of opaque data: characters up to the first zero byte or 4096 of them, or a hex dump.
TEST(Opaque, tracesCharactersOrADump)
{
    const auto trace = [](auto routine, Bytes bytes, std::uint32_t length, std::size_t moved) {
        Bytes buffer(70000);
        TraceText trace;
        Xdr xdrs;
        xdrs.Program(requestOf(Mode::encode), buffer.data(), 65535);
        xdrs.setTrace(&trace);
        EXPECT_EQ(routine(&xdrs, bytes.data(), length), 1);
        EXPECT_EQ(xdrs.codedLength, moved);
        xdrs.Program(requestOf(Mode::release), nullptr, 0);
        EXPECT_EQ(routine(&xdrs, nullptr, length), 1) << "the object owns opaque data";
        return std::string(trace.text());
    };
    EXPECT_EQ(trace(XdrOpaque, bytesOf("41424300 44"), 5, 8), "ABC");
    EXPECT_EQ(trace(XdrOpaque, bytesOf("4142"), 2, 4), "AB") << "no zero within the length";
    EXPECT_EQ(trace(XdrOpaque, Bytes(5000, 'A'), 5000, 5000), std::string(4096, 'A'));
    EXPECT_EQ(trace(XdrOpaque, bytesOf("42"), 1, 4), "B");
    EXPECT_EQ(trace(XdrOpaque, bytesOf("41"), 0, 0), "");
    EXPECT_EQ(trace(XdrOpaque2, bytesOf("41424300"), 4, 4), "41 42 43 00");
    EXPECT_EQ(trace(XdrOpaque2, bytesOf("41"), 0x10001, 4), "41") << "of a length, the low 16 bits are used";
}
