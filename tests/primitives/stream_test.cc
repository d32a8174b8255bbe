// The bundled stream class: values of any size, all or none of their bytes, and passes without a buffer or a trace.

#include "codec_tools.h"

#include <gtest/gtest.h>

using namespace quorva;
using namespace quorva::test;

// Values of every size are in network byte order.
TEST(Stream, transfersAllBytesOrNone)
{
    static_assert(std::endian::native == std::endian::little);
    const struct {
        unsigned short size;
        std::size_t room;
        bool moved;
        const char* wire;
    } cases[] = {{0, 8, true, ""},
                 {1, 8, true, "01"},
                 {2, 8, true, "0201"},
                 {3, 8, true, "030201"},
                 {4, 8, true, "04030201"},
                 {5, 8, true, "05040302 01"},
                 {8, 8, true, "08070605 04030201"},
                 {8, 7, false, ""},
                 {2, 1, false, ""},
                 {2, 2, true, "0201"},
                 {4, 4, true, "04030201"},
                 {4, 3, false, ""},
                 {1, 0, false, ""}};
    for (const auto& expected : cases) {
        SCOPED_TRACE(std::to_string(expected.size) + " within " + std::to_string(expected.room));
        Bytes value = bytesOf("01020304 05060708"), wire(9, 0x55), back(8, 0x77);
        Xdr xdrs;
        xdrs.Program(requestOf(Mode::encode), wire.data(), static_cast<unsigned short>(expected.room));
        EXPECT_EQ(xdrs.Transfer(value.data(), expected.size), expected.moved);
        EXPECT_EQ(hexOf({wire.data(), xdrs.codedLength}), expected.wire);
        EXPECT_EQ(xdrs.codedLength, expected.moved ? expected.size : 0);
        EXPECT_EQ(wire[xdrs.codedLength], 0x55);
        xdrs.Program(requestOf(Mode::decode), wire.data(), static_cast<unsigned short>(expected.room));
        EXPECT_EQ(xdrs.Transfer(back.data(), expected.size), expected.moved);
        for (std::size_t i = 0; i < back.size(); ++i) EXPECT_EQ(back[i], i < xdrs.codedLength ? value[i] : 0x77);
        EXPECT_EQ(xdrs.codedLength, expected.moved ? expected.size : 0);
    }
}

TEST(Stream, transfersOneValueAfterTheOther)
{
    for (const auto mode : {Mode::encode, Mode::decode}) {
        Bytes wire = bytesOf("0102 AABBCC 00000007"), value = bytesOf("0201"), raw = bytesOf("AABBCC"),
              unit = bytesOf("07000000");
        const Bytes whole = wire, values[] = {value, raw, unit};
        Bytes& cleared = mode == Mode::encode ? wire : raw;
        cleared.assign(cleared.size(), 0);
        Xdr xdrs;
        xdrs.Program(requestOf(mode), wire.data(), static_cast<unsigned short>(wire.size()));
        EXPECT_EQ(xdrs.cursor(), wire.data());
        EXPECT_TRUE(xdrs.Transfer(value.data(), 2));
        EXPECT_TRUE(xdrs.TransferWithoutSwap(raw.data(), 3));
        EXPECT_TRUE(xdrs.TransferWithoutSwap(nullptr, 0));
        EXPECT_EQ(xdrs.cursor(), wire.data() + 5);
        EXPECT_EQ(xdrs.end(), wire.data() + 9);
        EXPECT_FALSE(xdrs.TransferWithoutSwap(raw.data(), 5));
        EXPECT_TRUE(xdrs.Transfer(unit.data(), 4));
        EXPECT_EQ(xdrs.codedLength, 9);
        EXPECT_EQ(wire, whole);
        EXPECT_EQ(value, values[0]);
        EXPECT_EQ(raw, values[1]);
        EXPECT_EQ(unit, values[2]);
        xdrs.moveTo(wire.data() + 2);
        EXPECT_EQ(xdrs.codedLength, 2);
    }
}

// Without a buffer it transfers nothing; without a sink it adds nothing.
TEST(Stream, needsABufferAndASink)
{
    Xdr xdrs;
    EXPECT_EQ(xdrs.rootAllocationSlot, nullptr);
    EXPECT_EQ(xdrs.streamMode, 0);
    EXPECT_FALSE(xdrs.tracing());
    EXPECT_EQ(xdrs.sink(), nullptr);
    unsigned char bytes[4] = {1, 2, 3, 4};
    for (const auto mode : {Mode::encode, Mode::decode, Mode::release}) {
        EXPECT_FALSE(xdrs.Transfer(bytes, 4));
        EXPECT_FALSE(xdrs.TransferWithoutSwap(bytes, 1));
        EXPECT_TRUE(xdrs.TransferWithoutSwap(bytes, 0));
        xdrs.Program(requestOf(mode), nullptr, 8);
        EXPECT_EQ(xdrs.streamMode, static_cast<int>(mode));
        EXPECT_EQ(xdrs.cursor(), xdrs.end());
    }
    EXPECT_FALSE(xdrs.Transfer(bytes, 4));
    const auto all = [&] {
        xdrs.addOpenTag("a");
        xdrs.addString("<value>");
        xdrs.addTab();
        xdrs.addString2("1");
        xdrs.addString3("b");
        xdrs.addHexDump(bytes, 2);
        xdrs.addLine();
        xdrs.setLineFeed(false);
        xdrs.delTab();
        xdrs.addString("</value>");
        xdrs.addCloseTag("a");
    };
    all();
    TraceText trace;
    xdrs.setTrace(&trace);
    EXPECT_TRUE(xdrs.tracing());
    EXPECT_EQ(xdrs.sink(), &trace);
    all();
    EXPECT_EQ(trace.text(), "<a>\n  <value>1 b 01 02</value>\n</a>");
    xdrs.setTrace(nullptr);
    all();
    EXPECT_EQ(trace.text(), "<a>\n  <value>1 b 01 02</value>\n</a>");
}
