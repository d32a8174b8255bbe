// The scalar primitives: bytes of RFC 4506 sections 4.1 to 4.6 written by hand, and where this API departs from them.

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
    const char* traced;
    bool encodesBack = true;  // encoding `memory` gives `wire`; false where decoding drops bits
};

const float notANumber = std::bit_cast<float>(0x7FC00001u);
const float minusNotANumber = std::bit_cast<float>(0xFFC00000u);
const float infinity = std::numeric_limits<float>::infinity();

const Scalar scalars[] = {
    {"a unit is big-endian", XdrLongInteger, memoryOf(std::int32_t{0x01020304}), "01020304", "16909060"},
    {"32 bits signed", XdrLongInteger, memoryOf(std::int32_t{-2}), "FFFFFFFE", "-2"},
    {"the least number", XdrLongInteger, memoryOf(std::numeric_limits<std::int32_t>::min()), "80000000", "-2147483648"},
    {"32 bits unsigned", XdrLongNatural, memoryOf(std::uint32_t{0xFFFFFFFF}), "FFFFFFFF", "4294967295"},
    {"UINT is traced as a signed number, as readers of the trace expect it", XdrUINT,
     memoryOf(std::uint32_t{0xFFFFFFFF}), "FFFFFFFF", "-1"},
    {"16 bits are sign-extended", XdrInteger, memoryOf(std::int16_t{-1}), "FFFFFFFF", "-1"},
    {"decoding keeps the low 16 bits and traces the unit", XdrInteger, memoryOf(std::int16_t{5}), "00010005", "65541",
     false},
    {"16 bits are zero-extended", XdrNatural, memoryOf(std::uint16_t{65535}), "0000FFFF", "65535"},
    {"decoding keeps the low 16 bits and traces the unit", XdrNatural, memoryOf(std::uint16_t{1}), "FFFF0001",
     "4294901761", false},
    {"8 bits are zero-extended although signed: -1 travels as 255", XdrShortInteger, memoryOf(std::int8_t{-1}),
     "000000FF", "255"},
    {"decoding drops the extended sign and traces the unit", XdrShortInteger, memoryOf(std::int8_t{-1}), "FFFFFFFF",
     "-1", false},
    {"8 bits unsigned", XdrShortNatural, memoryOf(std::uint8_t{200}), "000000C8", "200"},
    {"decoding keeps the low 8 bits and traces the unit", XdrShortNatural, memoryOf(std::uint8_t{2}), "00000102", "258",
     false},
    {"false", XdrBoolean, memoryOf(Boolean{0}), "00000000", "false"},
    {"true", XdrBoolean, memoryOf(Boolean{1}), "00000001", "true"},
    {"a boolean is its low byte, which is kept unchanged", XdrBoolean, memoryOf(Boolean{2}), "00000002", "true"},
    {"a boolean is its low byte alone", XdrBoolean, memoryOf(Boolean{0}), "00000100", "false", false},
    {"six decimals", XdrFloat, memoryOf(1.5f), "3FC00000", "1.500000"},
    {"rounded as printf rounds", XdrFloat, memoryOf(0.0000005f), "350637BD", "0.000000"},
    {"minus zero", XdrFloat, memoryOf(-0.0f), "80000000", "-0.000000"},
    {"the longest text of a float", XdrFloat, memoryOf(-std::numeric_limits<float>::max()), "FF7FFFFF",
     "-340282346638528859811704183484516925440.000000"},
    {"filled to four places, as printf does", XdrFloat, memoryOf(infinity), "7F800000", " inf"},
    {"minus infinity", XdrFloat, memoryOf(-infinity), "FF800000", "-inf"},
    {"the bits of a NaN travel", XdrFloat, memoryOf(notANumber), "7FC00001", " nan"},
    {"the sign of a NaN is traced", XdrFloat, memoryOf(minusNotANumber), "FFC00000", "-nan"},
    {"the routine of an enumeration adds its text itself", XdrEnum, memoryOf(std::int32_t{7}), "00000007", ""},
    {"lengths and counts are not traced", XdrLongNatural2, memoryOf(std::uint32_t{7}), "00000007", ""},
};

struct Outcome {
    Pass pass;
    std::string traced;
};

Outcome run(Mode mode, XdrRoutine routine, void* value, std::span<unsigned char> buffer)
{
    TraceText trace;
    const Pass pass = runPass(mode, routine, value, buffer, [&](Xdr& xdrs) { xdrs.setTrace(&trace); });
    return {pass, std::string(trace.text())};
}

}  // namespace

TEST(Scalars, decodeTheirUnit)
{
    for (const Scalar& scalar : scalars) {
        SCOPED_TRACE(std::string(scalar.wire) + ": " + scalar.why);
        Bytes value(scalar.memory.size(), 0x55);
        const Message message(bytesOf(scalar.wire));
        const Outcome outcome = run(Mode::decode, scalar.routine, value.data(), message.span());
        EXPECT_EQ(outcome.pass.succeeded, 1);
        EXPECT_EQ(outcome.pass.length, 4u);
        EXPECT_EQ(hexOf(value), hexOf(scalar.memory));
        EXPECT_EQ(outcome.traced, scalar.traced);
    }
}

TEST(Scalars, encodeTheirUnit)
{
    for (const Scalar& scalar : scalars) {
        if (!scalar.encodesBack) continue;
        SCOPED_TRACE(std::string(scalar.wire) + ": " + scalar.why);
        Bytes value = scalar.memory;
        Bytes buffer(4, 0x55);
        const Outcome outcome = run(Mode::encode, scalar.routine, value.data(), buffer);
        EXPECT_TRUE(outcome.pass.succeeded);
        EXPECT_EQ(outcome.pass.length, 4u);
        EXPECT_EQ(hexOf(buffer), scalar.wire);
        EXPECT_EQ(hexOf(value), hexOf(scalar.memory));
        EXPECT_EQ(outcome.traced, scalar.traced);
    }
}

// After a refusal, value, buffer and length are unchanged; the trace gets the text of the unchanged value.
TEST(Scalars, areUnchangedWhenRefused)
{
    for (const Scalar& scalar : scalars) {
        if (!scalar.encodesBack) continue;
        for (const auto mode : {Mode::encode, Mode::decode}) {
            SCOPED_TRACE(std::string(scalar.wire) + ": " + scalar.why);
            Bytes value = scalar.memory;
            const Message message(Bytes(3, 0x11));
            const Outcome outcome = run(mode, scalar.routine, value.data(), message.span());
            EXPECT_FALSE(outcome.pass.succeeded);
            EXPECT_EQ(outcome.pass.length, 0u);
            EXPECT_EQ(hexOf(value), hexOf(scalar.memory));
            EXPECT_EQ(hexOf(message.span()), "111111");
            EXPECT_EQ(outcome.traced, scalar.traced);
        }
    }
}

// For a null object, every width gets four bytes in the root slot; they are zero after a refusal.
TEST(Scalars, areZeroInTheRootSlotWhenRefused)
{
    for (const Scalar& scalar : scalars) {
        SCOPED_TRACE(std::string(scalar.wire) + ": " + scalar.why);
        Xdr xdrs;
        xdrs.Program(requestOf(Mode::decode), nullptr, 0);
        {
            const Watch watch;
            EXPECT_EQ(scalar.routine(&xdrs, nullptr), 0);
        }
        EXPECT_EQ(allocations(), 1);
        EXPECT_EQ(largestAllocation(), 4u);
        ASSERT_NE(xdrs.rootAllocationSlot, nullptr);
        EXPECT_EQ(std::memcmp(xdrs.rootAllocationSlot, "\0\0\0\0", 4), 0);
        ::operator delete(xdrs.rootAllocationSlot);
        EXPECT_EQ(liveBlocks(), 0);
    }
}

TEST(Scalars, doNotIncludeVoidAndLongFloat)
{
    Bytes buffer(8, 0x55);
    for (const auto mode : {Mode::encode, Mode::decode, Mode::release}) {
        EXPECT_TRUE(run(mode, XdrVoid, nullptr, buffer).pass.succeeded);
        EXPECT_EQ(run(mode, XdrLongFloat, nullptr, buffer).pass.succeeded, false) << "the API has no 8-byte float";
    }
    EXPECT_EQ(buffer, Bytes(8, 0x55));
}

// Readers of the trace expect a decimal point.
TEST(Scalars, doNotDependOnTheLocale)
{
    const char* chosen = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8"})
        if (!chosen && std::setlocale(LC_ALL, name)) chosen = name;
    if (!chosen) GTEST_SKIP() << "no locale with a decimal comma is installed";
    char comma[8];
    std::snprintf(comma, sizeof comma, "%.1f", 0.5);
    float value = 1234.5f;
    Bytes buffer(4);
    const std::string traced = run(Mode::encode, XdrFloat, &value, buffer).traced;
    std::setlocale(LC_ALL, "C");
    ASSERT_STREQ(comma, "0,5");
    EXPECT_EQ(traced, "1234.500000");
}

// The only diagnostic print of the codec: in every mode, release included.
TEST(Scalars, printADiagnosticForEveryFloat)
{
    static std::string printed;
    setDiagnosticHook([](const char* text) { printed += text; });
    float value = 1.0f;
    Bytes buffer(4);
    for (const auto mode : {Mode::encode, Mode::decode, Mode::release}) run(mode, XdrFloat, &value, buffer);
    std::uint32_t other = 0;
    run(Mode::encode, XdrLongNatural, &other, buffer);
    setDiagnosticHook(nullptr);
    EXPECT_EQ(printed, "In XdrFloat\nIn XdrFloat\nIn XdrFloat\n");
}

TEST(Trace, givesTheHookAtMost511Characters)
{
    static std::string printed;
    setDiagnosticHook([](const char* text) { printed = text; });
    TRACE("%s %d\n", "unit", 7);
    EXPECT_EQ(printed, "unit 7\n");
    TRACE("%s", std::string(600, 'A').c_str());
    EXPECT_EQ(printed, std::string(511, 'A'));
    setDiagnosticHook(nullptr);
    TRACE("without a hook");
    EXPECT_EQ(printed.size(), 511u);
}
