// Opaque data, texts and byte arrays: RFC 4506 sections 4.9 to 4.11 by hand, the order of allocation and judgement, and
// what is left behind by a failure.

#include "codec_tools.h"
#include "memory.h"

#include <gtest/gtest.h>

using namespace quorva;
using namespace quorva::test;

namespace {

// The primitives with a maximum, as routines over one object.
template <std::uint32_t Maximum>
int text(Xdr* xdrs, void* object)
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
    const char* left;  // the text, or the bytes as hex; null for none
    long allocated = 1;
};

const Decoded texts[] = {
    {"length, characters, padding", text<80>, "00000003 41424300", true, 8, "ABC"},
    {"no padding behind a whole unit", text<80>, "00000004 41424344", true, 8, "ABCD"},
    {"an empty text is a text", text<80>, "00000000", true, 4, ""},
    {"a maximum is reached", text<3>, "00000003 41424300", true, 8, "ABC"},
    {"the storage is allocated before the length is judged", text<2>, "00000003 41424300", false, 4, ""},
    {"an absurd length is still asked for, and refused", text<65535>, "00020000 41424300", false, 4, ""},
    {"padding is not looked at", text<80>, "00000001 41FFFFFF", true, 8, "A"},
    {"a byte of zero ends the text for its reader", text<80>, "00000003 41004300", true, 8, "A"},
    {"the message ends in the length", text<80>, "000000", false, 0, nullptr, 0},
    {"the message ends in the characters", text<80>, "00000003 4142", false, 4, ""},
    {"the message ends in the padding", text<80>, "00000003 414243", false, 7, "ABC"},
    {"beyond 16 bits the low part of the length is carried", text<100000>, "00010001 41000000", true, 8, "A"},
};

const Decoded byteArrays[] = {
    {"count, bytes, padding", byteArray<40>, "00000003 41424300", true, 8, "414243"},
    {"a count of zero allocates nothing", byteArray<40>, "00000000", true, 4, nullptr, 0},
    {"a maximum is reached", byteArray<3>, "00000003 41424300", true, 8, "414243"},
    {"a count beyond the maximum is stored before it is judged", byteArray<2>, "00000003 41424300", false, 4, nullptr,
     0},
    {"a count is its low 16 bits, which alone are judged", byteArray<2>, "00010001 41000000", true, 8, "41"},
    {"what did not come is empty, never what the storage held", byteArray<40>, "00000003 4142", false, 4, "000000"},
    {"nor is it kept without its padding", byteArray<40>, "00000003 414243", false, 7, "000000"},
};

}  // namespace

TEST(Strings, decode)
{
    for (const Decoded& expected : texts) {
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

// 4 GiB are had or not, as the machine will; neither stops a release pass.
TEST(Strings, largestLength)
{
    for (const char* wire : {"FFFFFFFF 41414141", "80000000", "7FFFFFFC 41"}) {
        const Message message(bytesOf(wire));
        char* string = nullptr;
        EXPECT_FALSE(pass(Mode::decode, text<65535>, &string, message.span()).succeeded);
        EXPECT_GT(largestAllocation(), 0x7FFFFFFCu) << "allocated before judged";
        if (string) { EXPECT_STREQ(string, ""); }
        EXPECT_TRUE(pass(Mode::release, text<65535>, &string, {}).succeeded);
        EXPECT_EQ(liveBlocks(), 0);
    }
}

TEST(Strings, encode)
{
    const struct {
        const char* why;
        XdrRoutine routine;
        std::string string;
        std::size_t room;
        bool succeeded;
        const char* wire;
    } cases[] = {
        {"length, characters, zero padding", text<80>, "ABC", 80, true, "00000003 41424300"},
        {"empty", text<80>, "", 80, true, "00000000"},
        {"at the maximum", text<3>, "ABC", 80, true, "00000003 41424300"},
        {"beyond the maximum the length has been written", text<2>, "ABC", 80, false, "00000003"},
        {"no room for the length", text<80>, "ABC", 3, false, ""},
        {"no room for the characters", text<80>, "ABC", 6, false, "00000003"},
        {"no room for the padding", text<80>, "ABC", 7, false, "00000003 414243"},
        {"beyond 16 bits the low part of the length is carried", text<100000>, std::string(65537, 'A'), 80, true,
         "00010001 41000000"},
        {"a text by value", XdrWrapString, "ABC", 80, true, "00000003 41424300"},
        {"at most 65535 characters of it", XdrWrapString, std::string(65535, 'A'), 8, false, "0000FFFF"},
        {"and no more, though they would count as none", XdrWrapString, std::string(65536, 'A'), 8, false, "00010000"},
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
    const Pass done = pass(Mode::encode, text<80>, &none, buffer);
    EXPECT_FALSE(done.succeeded) << "a null text is no text";
    EXPECT_EQ(done.length, 0u);
}

// The text comes by value, so nobody hears where a decoded one went: its callers have never asked.
TEST(Strings, wrapStringLosesWhatItDecodes)
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

TEST(ByteArrays, decode)
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

TEST(ByteArrays, countOfZeroLeavesThePointer)
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

TEST(ByteArrays, nullBytes)
{
    Bytes buffer(80);
    ByteArray none = {3, nullptr};
    EXPECT_FALSE(pass(Mode::encode, byteArray<40>, &none, buffer).succeeded);
    EXPECT_TRUE(pass(Mode::release, byteArray<40>, &none, {}).succeeded) << "left by a decode that found no memory";
}

TEST(Strings, noMemory)
{
    const Message message(bytesOf("00000003 41424300"));
    char* string = nullptr;
    ByteArray bytes = {};
    {
        const Watch watch(0);
        EXPECT_FALSE(runPass(Mode::decode, text<80>, &string, message.span()).succeeded);
        EXPECT_FALSE(runPass(Mode::decode, byteArray<80>, &bytes, message.span()).succeeded);
    }
    EXPECT_EQ(string, nullptr);
    EXPECT_EQ(bytes.count, 3);
    EXPECT_EQ(bytes.elements, nullptr);
}

// The trace of opaque data: text up to the first zero byte or 4096 characters, or a hex dump.
TEST(Opaque, traceAndLength)
{
    const auto shown = [](auto routine, Bytes bytes, std::uint32_t length, std::size_t moved) {
        Bytes buffer(70000);
        TraceText trace;
        Xdr xdrs;
        xdrs.Program(requestOf(Mode::encode), buffer.data(), 65535);
        xdrs.setTrace(&trace);
        EXPECT_EQ(routine(&xdrs, bytes.data(), length), 1);
        EXPECT_EQ(xdrs.codedLength, moved);
        xdrs.Program(requestOf(Mode::release), nullptr, 0);
        EXPECT_EQ(routine(&xdrs, nullptr, length), 1) << "opaque data is its holder's";
        return std::string(trace.text());
    };
    EXPECT_EQ(shown(XdrOpaque, bytesOf("41424300 44"), 5, 8), "ABC");
    EXPECT_EQ(shown(XdrOpaque, bytesOf("4142"), 2, 4), "AB") << "no zero within the length";
    EXPECT_EQ(shown(XdrOpaque, Bytes(5000, 'A'), 5000, 5000), std::string(4096, 'A'));
    EXPECT_EQ(shown(XdrOpaque, bytesOf("42"), 1, 4), "B");
    EXPECT_EQ(shown(XdrOpaque, bytesOf("41"), 0, 0), "");
    EXPECT_EQ(shown(XdrOpaque2, bytesOf("41424300"), 4, 4), "41 42 43 00");
    EXPECT_EQ(shown(XdrOpaque2, bytesOf("41"), 0x10001, 4), "41") << "a length is cut to 16 bits";
}
