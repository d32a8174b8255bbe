// Fixed-length and variable-length arrays and optional values: RFC 4506 sections 4.12, 4.13 and 4.19 by hand, and what
// a failed pass leaves.

#include "codec_tools.h"
#include "memory.h"

#include <quorvapixdr/types/common/status.h>
#include <quorvapixdr/types/jobs/kinds.h>

#include <gtest/gtest.h>

#include <algorithm>

using namespace quorva;
using namespace quorva::test;

namespace {

// An element that owns storage, so that a release pass over an uninitialised element would fail.
int label(Xdr* xdrs, void* object)
{
    return XdrString(xdrs, static_cast<char**>(object), 4);
}

template <std::uint32_t Maximum>
int labels(Xdr* xdrs, void* object)
{
    auto* const held = static_cast<Counted<char*>*>(object);
    return XdrArray(xdrs, &held->elements, &held->count, Maximum, sizeof(char*), label);
}

int numbers(Xdr* xdrs, void* object)
{
    auto* const held = static_cast<Counted<Natural>*>(object);
    return XdrArray(xdrs, &held->elements, &held->count, 65535, sizeof(Natural), XdrNatural);
}

int optionalLabel(Xdr* xdrs, void* object)
{
    return XdrPointer(xdrs, object, sizeof(char*), label);
}

int pairOfLabels(Xdr* xdrs, void* object)
{
    return XdrVector(xdrs, object, 2, sizeof(char*), label);
}

Pass pass(Mode mode, XdrRoutine routine, void* object, std::span<unsigned char> buffer)
{
    const Watch watch;
    return runPass(mode, routine, object, buffer);
}

std::string traceOf(Mode mode, XdrRoutine routine, void* object, std::span<unsigned char> buffer)
{
    TraceText trace;
    runPass(mode, routine, object, buffer, [&](Xdr& xdrs) {
        xdrs.setTrace(&trace);
        trace.open("held");
    });
    trace.close("held");
    return std::string(trace.text());
}

}  // namespace

TEST(Arrays, decodeTheirElements)
{
    const struct {
        const char* why;
        XdrRoutine routine;
        const char* wire;
        bool succeeded;
        std::size_t length;
        std::uint16_t count;
        std::vector<const char*> left;
        long allocated;
    } cases[] = {
        {"count, elements", labels<3>, "00000002 00000001 41000000 00000000", true, 16, 2, {"A", ""}, 3},
        {"a count of zero allocates nothing", labels<3>, "00000000", true, 4, 0, {}, 0},
        {"of 65536, the low 16 bits are zero", labels<3>, "00010000", true, 4, 0, {}, 0},
        {"a count is its low 16 bits, and only they are compared with the maximum",
         labels<3>,
         "00010001 00000000",
         true,
         8,
         1,
         {""},
         2},
        {"at the maximum", labels<2>, "00000002 00000000 00000000", true, 12, 2, {"", ""}, 3},
        {"beyond the maximum, the count is stored and nothing is allocated",
         labels<2>,
         "00000003 00000000",
         false,
         4,
         3,
         {},
         0},
        {"the message ends in the count", labels<2>, "0000", false, 0, 0, {}, 0},
        {"the elements after a failure are empty",
         labels<4>,
         "00000004 00000001 41000000 00000002",
         false,
         16,
         4,
         {"A", "", nullptr, nullptr},
         3},
        {"so is an element that failed", labels<4>, "00000003 00000000", false, 8, 3, {"", nullptr, nullptr}, 2},
        {"so are all if the first one failed", labels<4>, "00000002", false, 4, 2, {nullptr, nullptr}, 1},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.why);
        const Message message(bytesOf(expected.wire));
        Counted<char*> held = {};
        const Pass done = pass(Mode::decode, expected.routine, &held, message.span());
        EXPECT_EQ(done.succeeded, expected.succeeded);
        EXPECT_EQ(done.length, expected.length);
        EXPECT_EQ(held.count, expected.count);
        EXPECT_EQ(allocations(), expected.allocated);
        ASSERT_EQ(held.elements != nullptr, !expected.left.empty());
        for (std::size_t i = 0; i < expected.left.size(); ++i) EXPECT_STREQ(held.elements[i], expected.left[i]) << i;

        const auto before = held;
        pass(Mode::release, expected.routine, &held, {});
        EXPECT_EQ(held.elements, before.elements) << "release leaves the pointer";
        EXPECT_EQ(held.count, before.count);
        EXPECT_EQ(liveBlocks(), 0);
        EXPECT_EQ(mismatchedReleases(), 0);
    }
}

TEST(Arrays, encodeTheirElements)
{
    char text[] = "A";
    char tooLong[] = "ABCDE";
    char* good[] = {text, text};
    char* bad[] = {text, tooLong, text};
    const struct {
        const char* why;
        Counted<char*> held;
        bool succeeded;
        const char* wire;
    } cases[] = {
        {"count, elements", {2, good}, true, "00000002 00000001 41000000 00000001 41000000"},
        {"empty", {0, good}, true, "00000000"},
        {"beyond the maximum, the count is written", {4, bad}, false, "00000004"},
        {"a count without a block", {2, nullptr}, false, "00000002"},
        {"the first element that fails ends the pass", {3, bad}, false, "00000003 00000001 41000000 00000005"},
    };
    for (auto expected : cases) {
        SCOPED_TRACE(expected.why);
        Bytes buffer(64);
        const Pass done = pass(Mode::encode, labels<3>, &expected.held, buffer);
        EXPECT_EQ(done.succeeded, expected.succeeded);
        EXPECT_EQ(hexOf(std::span(buffer).first(done.length)), expected.wire);
    }
}

TEST(Arrays, releaseOnlyBlocksWithACount)
{
    Counted<char*> noBlock = {2, nullptr};
    EXPECT_TRUE(pass(Mode::release, labels<3>, &noBlock, {}).succeeded)
        << "a count without a block has nothing to release";
    char* own = nullptr;
    Counted<char*> noCount = {0, &own};
    EXPECT_TRUE(pass(Mode::release, labels<3>, &noCount, {}).succeeded) << "a count of zero leaves the block";
    EXPECT_EQ(noCount.elements, &own);
}

TEST(Arrays, keepTheirCountWithoutMemory)
{
    const Message message(bytesOf("00000002 00000001 41000000 00000001 42000000"));
    for (long first = 0; first < 4; ++first) {
        Counted<char*> held = {};
        bool succeeded;
        {
            const Watch watch(first);
            succeeded = runPass(Mode::decode, labels<3>, &held, message.span()).succeeded;
        }
        EXPECT_EQ(succeeded, first == 3);
        EXPECT_EQ(held.count, 2);
        EXPECT_EQ(held.elements != nullptr, first > 0);
        pass(Mode::release, labels<3>, &held, {});
        EXPECT_EQ(liveBlocks(), 0);
    }
}

// 65535 elements of 4 GiB exceed the address space; the size of the block must not wrap around.
TEST(Arrays, doNotWrapTheSizeOfABlock)
{
    const Message message(bytesOf("0000FFFF 00000000"));
    void* block = nullptr;
    std::uint16_t count = 0;
    Xdr xdrs;
    xdrs.Program(requestOf(Mode::decode), message.span().data(), 8);
    {
        const Watch watch(Scarcity{.largest = std::size_t{1} << 32});
        EXPECT_EQ(XdrArray(&xdrs, &block, &count, 65535, 0xFFFFFFFF, XdrLongNatural), 0);
    }
    EXPECT_EQ(largestAllocation(), std::size_t{65535} * 0xFFFFFFFF);
    EXPECT_EQ(count, 65535);
    EXPECT_EQ(block, nullptr);
}

TEST(FixedArrays, codeTheirElements)
{
    char* pair[2] = {};
    const Message message(bytesOf("00000001 41000000 00000001 42000000"));
    const Pass whole = pass(Mode::decode, pairOfLabels, pair, message.span());
    EXPECT_TRUE(whole.succeeded);
    EXPECT_EQ(whole.length, 16u);
    EXPECT_STREQ(pair[1], "B");
    Bytes buffer(16);
    EXPECT_TRUE(pass(Mode::encode, pairOfLabels, pair, buffer).succeeded);
    EXPECT_EQ(hexOf(buffer), "00000001 41000000 00000001 42000000") << "no count";
    EXPECT_TRUE(pass(Mode::release, pairOfLabels, pair, {}).succeeded);

    char* cut[2] = {};
    EXPECT_FALSE(pass(Mode::decode, pairOfLabels, cut, message.span().first(8)).succeeded);
    EXPECT_TRUE(pass(Mode::release, pairOfLabels, cut, {}).succeeded);
    EXPECT_EQ(liveBlocks(), 0);
}

TEST(FixedArrays, takeCountsOf16Bits)
{
    Xdr xdrs;
    Bytes buffer(8);
    for (const auto mode : {Mode::encode, Mode::decode, Mode::release}) {
        xdrs.Program(requestOf(mode), buffer.data(), 8);
        EXPECT_EQ(XdrVector(&xdrs, nullptr, 0, 4, XdrLongNatural), 1);
        EXPECT_EQ(xdrs.codedLength, 0);
        EXPECT_EQ(XdrVector(&xdrs, buffer.data(), 65536, 0, XdrVoid), 0)
            << "counts have 16 bits; a larger one is refused";
        EXPECT_EQ(XdrVector(&xdrs, buffer.data(), 65535, 0, XdrVoid), 1);
    }
}

TEST(Optional, decodesItsValue)
{
    const struct {
        const char* why;
        const char* wire;
        bool succeeded;
        const char* left;
        long allocated;
    } cases[] = {
        {"absent", "00000000", true, nullptr, 0},
        {"present", "00000001 00000001 41000000", true, "A", 2},
        {"a flag of 2 means absent, unlike RFC 4506", "00000002 00000001 41000000", true, nullptr, 0},
        {"the low byte alone counts", "00000100", true, nullptr, 0},
        {"so 257 is present", "00000101 00000000", true, "", 2},
        {"the message ends in the value", "00000001", false, nullptr, 1},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.why);
        const Message message(bytesOf(expected.wire));
        char* older = nullptr;
        char** held = &older;  // an absent value clears it
        const Pass done = pass(Mode::decode, optionalLabel, &held, message.span());
        EXPECT_EQ(done.succeeded, expected.succeeded);
        EXPECT_EQ(allocations(), expected.allocated);
        ASSERT_EQ(held != nullptr, expected.allocated > 0);
        if (held) { EXPECT_STREQ(*held, expected.left); }
        EXPECT_TRUE(pass(Mode::release, optionalLabel, &held, {}).succeeded);
        EXPECT_EQ(liveBlocks(), 0);
    }
}

TEST(Optional, encodesItsValue)
{
    char text[] = "AB";
    char* label = text;
    char** held = &label;
    Bytes buffer(12);
    EXPECT_TRUE(pass(Mode::encode, optionalLabel, &held, buffer).succeeded);
    EXPECT_EQ(hexOf(buffer), "00000001 00000002 41420000");
    held = nullptr;
    EXPECT_EQ(pass(Mode::encode, optionalLabel, &held, buffer).length, 4u);
    EXPECT_EQ(hexOf(std::span(buffer).first(4)), "00000000");
}

// The trace of a decode has a tag around each element, the trace of an encode has none.
TEST(Collections, traceTheirElements)
{
    Counted<Natural> held = {};
    Bytes buffer = bytesOf("00000002 00000007 00000008");
    EXPECT_EQ(traceOf(Mode::decode, numbers, &held, buffer), "<held>\n  <value>7</value>\n  <value>8</value>\n</held>");
    EXPECT_EQ(traceOf(Mode::encode, numbers, &held, buffer), "<held>7 8</held>");
    EXPECT_EQ(traceOf(Mode::release, numbers, &held, buffer), "<held></held>");
    char** absent = nullptr;
    EXPECT_EQ(traceOf(Mode::encode, optionalLabel, &absent, buffer), "<held>false</held>");
}

// Numbers and enumerators have a line each in the trace of a decode, and one line in the trace of an encode.
TEST(NumberArrays, traceTheirElements)
{
    const struct {
        const char* name;
        XdrRoutine routine;
        const char* decoded;
        const char* encoded;
    } cases[] = {
        {"AttributeSeq", XdrAttributeSeq, "<l>\n  <value>1</value>\n  <value>2</value>\n  <value>99</value>\n</l>",
         "<l>1 2 99</l>"},
        {"JobSourceSeq", XdrJobSourceSeq,
         "<l>\n  <value><JSFileCabinet>1</JSFileCabinet></value>\n  <value><JSPrint>2</JSPrint></value>\n"
         "  <value><Error_in_Function>99</Error_in_Function></value>\n</l>",
         "<l><JSFileCabinet>1</JSFileCabinet><JSPrint>2</JSPrint><Error_in_Function>99</Error_in_Function></l>"},
    };
    for (const auto& expected : cases) {
        SCOPED_TRACE(expected.name);
        const Message message(bytesOf("00000003 00000001 00000002 00000063"));
        Counted<std::uint32_t> held = {};
        TraceText decoded, encoded;
        EXPECT_TRUE(runTraced(Mode::decode, expected.routine, "l", &held, message.span(), decoded).succeeded);
        EXPECT_EQ(decoded.text(), expected.decoded);
        EXPECT_TRUE(runTraced(Mode::encode, expected.routine, "l", &held, message.span(), encoded).succeeded);
        EXPECT_EQ(encoded.text(), expected.encoded);
        releaseContents(expected.routine, &held);
    }
}

// The codec moves blocks of numbers with the widest instructions of the processor. The bytes are those of single
// numbers.
TEST(NumberArrays, ofAnyLengthAreTheirNumbers)
{
    for (std::uint16_t count = 0; count < 70; ++count) {
        std::vector<std::uint32_t> numbers;
        Bytes expected(4 * (1 + std::size_t{count}));
        for (std::uint32_t i = 0; i <= count; ++i) {
            std::uint32_t number = i == 0 ? count : numbers.emplace_back(0x01020304 * i + 0x80);
            runPass(Mode::encode, XdrLongNatural, &number, std::span(expected).subspan(4 * i));
        }
        Counted<std::uint32_t> sent = {count, numbers.data()}, received = {};
        Message message(Bytes(expected.size()));
        EXPECT_TRUE(runPass(Mode::encode, XdrAttributeSeq, &sent, message.span()).succeeded);
        EXPECT_TRUE(std::ranges::equal(message.span(), expected)) << count;
        EXPECT_TRUE(runPass(Mode::decode, XdrAttributeSeq, &received, message.span()).succeeded);
        EXPECT_TRUE(std::equal(numbers.begin(), numbers.end(), received.elements, received.elements + received.count))
            << count;
        releaseContents(XdrAttributeSeq, &received);
    }
}
