// The scalar primitives: bytes after RFC 4506 sections 4.1 to 4.6 written out by hand, and where this API departs from
// it.

#include "codec_tools.h"
#include "memory.h"

#include <gtest/gtest.h>

#include <bit>
#include <clocale>
#include <cstdint>
#include <cstdlib>
#include <limits>

using namespace quorva;
using namespace quorva::test;

namespace {

struct Scalar {
    const char* why;
    XdrRoutine routine;
    Bytes memory;  // the value after decoding, and before encoding
    const char* wire;
    const char* shown;
    bool bothWays = true;  // encoding `memory` gives `wire`; false where decoding drops something
};

const float notANumber = std::bit_cast<float>(0x7FC00001u);
const float minusNotANumber = std::bit_cast<float>(0xFFC00000u);
const float infinity = std::numeric_limits<float>::infinity();

const Scalar scalars[] = {
    {"a unit is big-endian", XdrLongInteger, memoryOf(std::int32_t{0x01020304}), "01020304", "16909060"},
    {"32 bits signed", XdrLongInteger, memoryOf(std::int32_t{-2}), "FFFFFFFE", "-2"},
    {"the least number", XdrLongInteger, memoryOf(std::numeric_limits<std::int32_t>::min()), "80000000", "-2147483648"},
    {"32 bits unsigned", XdrLongNatural, memoryOf(std::uint32_t{0xFFFFFFFF}), "FFFFFFFF", "4294967295"},
    {"UINT is shown as if signed, as its receivers have always read it", XdrUINT, memoryOf(std::uint32_t{0xFFFFFFFF}),
     "FFFFFFFF", "-1"},
    {"16 bits are sign-extended", XdrInteger, memoryOf(std::int16_t{-1}), "FFFFFFFF", "-1"},
    {"decoding keeps the low 16 bits and shows the unit", XdrInteger, memoryOf(std::int16_t{5}), "00010005", "65541",
     false},
    {"16 bits are zero-extended", XdrNatural, memoryOf(std::uint16_t{65535}), "0000FFFF", "65535"},
    {"decoding keeps the low 16 bits and shows the unit", XdrNatural, memoryOf(std::uint16_t{1}), "FFFF0001",
     "4294901761", false},
    {"8 bits are zero-extended although signed: -1 travels as 255", XdrShortInteger, memoryOf(std::int8_t{-1}),
     "000000FF", "255"},
    {"the sign that others extend is dropped, but shown", XdrShortInteger, memoryOf(std::int8_t{-1}), "FFFFFFFF", "-1",
     false},
    {"8 bits unsigned", XdrShortNatural, memoryOf(std::uint8_t{200}), "000000C8", "200"},
    {"decoding keeps the low 8 bits and shows the unit", XdrShortNatural, memoryOf(std::uint8_t{2}), "00000102", "258",
     false},
    {"false", XdrBoolean, memoryOf(Boolean{0}), "00000000", "false"},
    {"true", XdrBoolean, memoryOf(Boolean{1}), "00000001", "true"},
    {"a boolean is its low byte, which is kept as it came", XdrBoolean, memoryOf(Boolean{2}), "00000002", "true"},
    {"a boolean is its low byte alone", XdrBoolean, memoryOf(Boolean{0}), "00000100", "false", false},
    {"six decimals", XdrFloat, memoryOf(1.5f), "3FC00000", "1.500000"},
    {"rounded as printf rounds", XdrFloat, memoryOf(0.0000005f), "350637BD", "0.000000"},
    {"minus zero", XdrFloat, memoryOf(-0.0f), "80000000", "-0.000000"},
    {"the longest text of a float", XdrFloat, memoryOf(-std::numeric_limits<float>::max()), "FF7FFFFF",
     "-340282346638528859811704183484516925440.000000"},
    {"filled to four places, as printf does", XdrFloat, memoryOf(infinity), "7F800000", " inf"},
    {"minus infinity", XdrFloat, memoryOf(-infinity), "FF800000", "-inf"},
    {"the bits of a NaN travel", XdrFloat, memoryOf(notANumber), "7FC00001", " nan"},
    {"a NaN shows its sign", XdrFloat, memoryOf(minusNotANumber), "FFC00000", "-nan"},
    {"an enumeration's text is its own routine's", XdrEnum, memoryOf(std::int32_t{7}), "00000007", ""},
    {"lengths and counts leave no text", XdrLongNatural2, memoryOf(std::uint32_t{7}), "00000007", ""},
};

struct Outcome {
    Pass pass;
    std::string shown;
};

Outcome run(Mode mode, XdrRoutine routine, void* value, std::span<unsigned char> buffer)
{
    TraceText trace;
    const Pass pass = runPass(mode, routine, value, buffer, [&](Xdr& xdrs) { xdrs.setTrace(&trace); });
    return {pass, std::string(trace.text())};
}

}  // namespace

TEST(Scalars, decode)
{
    for (const Scalar& scalar : scalars) {
        SCOPED_TRACE(std::string(scalar.wire) + ": " + scalar.why);
        Bytes value(scalar.memory.size(), 0x55);
        const Message message(bytesOf(scalar.wire));
        const Outcome outcome = run(Mode::decode, scalar.routine, value.data(), message.span());
        EXPECT_EQ(outcome.pass.succeeded, 1);
        EXPECT_EQ(outcome.pass.length, 4u);
        EXPECT_EQ(hexOf(value), hexOf(scalar.memory));
        EXPECT_EQ(outcome.shown, scalar.shown);
    }
}

TEST(Scalars, encode)
{
    for (const Scalar& scalar : scalars) {
        if (!scalar.bothWays) continue;
        SCOPED_TRACE(std::string(scalar.wire) + ": " + scalar.why);
        Bytes value = scalar.memory;
        Bytes buffer(4, 0x55);
        const Outcome outcome = run(Mode::encode, scalar.routine, value.data(), buffer);
        EXPECT_TRUE(outcome.pass.succeeded);
        EXPECT_EQ(outcome.pass.length, 4u);
        EXPECT_EQ(hexOf(buffer), scalar.wire);
        EXPECT_EQ(hexOf(value), hexOf(scalar.memory));
        EXPECT_EQ(outcome.shown, scalar.shown);
    }
}

// A refused unit leaves value, buffer and length; the text of the value as it stands is added all the same.
TEST(Scalars, refused)
{
    for (const Scalar& scalar : scalars) {
        if (!scalar.bothWays) continue;
        for (const auto mode : {Mode::encode, Mode::decode}) {
            SCOPED_TRACE(std::string(scalar.wire) + ": " + scalar.why);
            Bytes value = scalar.memory;
            const Message message(Bytes(3, 0x11));
            const Outcome outcome = run(mode, scalar.routine, value.data(), message.span());
            EXPECT_FALSE(outcome.pass.succeeded);
            EXPECT_EQ(outcome.pass.length, 0u);
            EXPECT_EQ(hexOf(value), hexOf(scalar.memory));
            EXPECT_EQ(hexOf(message.span()), "111111");
            EXPECT_EQ(outcome.shown, scalar.shown);
        }
    }
}

// Four zero bytes for every width, in the root slot: narrow values have always been given a whole unit.
TEST(Scalars, null)
{
    for (const Scalar& scalar : scalars) {
        SCOPED_TRACE(std::string(scalar.wire) + ": " + scalar.why);
        for (const bool cut : {false, true}) {
            const Message message(cut ? Bytes() : bytesOf(scalar.wire));
            Xdr xdrs;
            xdrs.Program(requestOf(Mode::decode), message.span().data(),
                         static_cast<unsigned short>(message.span().size()));
            {
                const Watch watch;
                EXPECT_EQ(scalar.routine(&xdrs, nullptr), cut ? 0 : 1);
            }
            EXPECT_EQ(allocations(), 1);
            EXPECT_EQ(largestAllocation(), 4u);
            ASSERT_NE(xdrs.rootAllocationSlot, nullptr);
            const Bytes expected = cut ? Bytes(scalar.memory.size()) : scalar.memory;
            EXPECT_EQ(std::memcmp(xdrs.rootAllocationSlot, expected.data(), expected.size()), 0);
            ::operator delete(xdrs.rootAllocationSlot);
        }

        Xdr xdrs;
        unsigned char unit[4] = {};
        xdrs.Program(requestOf(Mode::decode), unit, 4);
        {
            const Watch watch(0);
            EXPECT_EQ(scalar.routine(&xdrs, nullptr), 0) << "no memory";
        }
        xdrs.Program(requestOf(Mode::release), nullptr, 0);
        {
            const Watch watch;
            EXPECT_EQ(scalar.routine(&xdrs, nullptr), 1) << "scalars own nothing: release allocates nothing";
        }
        EXPECT_EQ(allocations(), 0);
        EXPECT_EQ(xdrs.rootAllocationSlot, nullptr);
        EXPECT_EQ(liveBlocks(), 0);
    }
}

TEST(Scalars, voidAndLongFloat)
{
    Bytes buffer(8, 0x55);
    for (const auto mode : {Mode::encode, Mode::decode, Mode::release}) {
        EXPECT_TRUE(run(mode, XdrVoid, nullptr, buffer).pass.succeeded);
        EXPECT_EQ(run(mode, XdrLongFloat, nullptr, buffer).pass.succeeded, false) << "the API has no 8-byte float";
    }
    EXPECT_EQ(buffer, Bytes(8, 0x55));
}

// A comma in the number would change what readers of the trace parse.
TEST(Scalars, localeWithDecimalComma)
{
    const char* chosen = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8"})
        if (!chosen && std::setlocale(LC_ALL, name)) chosen = name;
    if (!chosen) GTEST_SKIP() << "no locale with a decimal comma is installed";
    char printed[8];
    std::snprintf(printed, sizeof printed, "%.1f", 0.5);
    float value = 1234.5f;
    Bytes buffer(4);
    const std::string shown = run(Mode::encode, XdrFloat, &value, buffer).shown;
    std::setlocale(LC_ALL, "C");
    ASSERT_STREQ(printed, "0,5");
    EXPECT_EQ(shown, "1234.500000");
}

// The one diagnostic print of the codec, in every mode, release included.
TEST(Scalars, floatIsAnnounced)
{
    static std::string heard;
    setDiagnosticHook([](const char* text) { heard += text; });
    float value = 1.0f;
    Bytes buffer(4);
    for (const auto mode : {Mode::encode, Mode::decode, Mode::release}) run(mode, XdrFloat, &value, buffer);
    std::uint32_t other = 0;
    run(Mode::encode, XdrLongNatural, &other, buffer);
    setDiagnosticHook(nullptr);
    EXPECT_EQ(heard, "In XdrFloat\nIn XdrFloat\nIn XdrFloat\n");
}

TEST(Trace, finishedTextOfAtMost511Characters)
{
    static std::string heard;
    setDiagnosticHook([](const char* text) { heard = text; });
    TRACE("%s %d\n", "unit", 7);
    EXPECT_EQ(heard, "unit 7\n");
    TRACE("%s", std::string(600, 'A').c_str());
    EXPECT_EQ(heard, std::string(511, 'A'));
    setDiagnosticHook(nullptr);
    TRACE("nobody hears this");
    EXPECT_EQ(heard.size(), 511u);
}
