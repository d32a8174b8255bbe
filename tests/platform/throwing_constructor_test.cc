// A platform class whose constructor throws: the exception passes through the drivers and the C++ layer, nothing leaks,
// and the caller's object and buffer are as they were. This program is its own platform.

#include "memory.h"

#include <quorvapixdr/codec.h>
#include <quorvapixdr/drivers.h>

#include <gtest/gtest.h>

#include <array>
#include <cstring>

using namespace quorva;
using namespace quorva::test;

namespace {

struct NoStream {};

int constructed = 0;
int destroyed = 0;
int refusedStream = -1;  // the number of the constructor call that throws

}  // namespace

Xdr::Xdr() : rootAllocationSlot(nullptr), codedLength(0), streamMode(), position(nullptr), rest(0)
{
    if (constructed++ == refusedStream) throw NoStream();
}

Xdr::~Xdr()
{
    ++destroyed;
}

void Xdr::Program(Request mode, unsigned char* buffer, unsigned short length)
{
    streamMode = mode;
    position = buffer;
    rest = length;
    codedLength = 0;
}

bool Xdr::TransferWithoutSwap(unsigned char* data, unsigned short size)
{
    if (size > rest) return false;
    if (streamMode == Request::fromTheWire) std::memcpy(data, position, size);
    if (streamMode == Request::toTheWire) std::memcpy(position, data, size);
    codedLength = static_cast<unsigned short>(codedLength + size);
    return true;
}

namespace {

struct Letter {
    unsigned char* text;  // four bytes, allocated by a decode
};

int passes = 0;

int XdrLetter(Xdr* xdrs, void* object)
{
    ++passes;
    auto& letter = *static_cast<Letter*>(object);
    if (xdrs->streamMode == Xdr::Request::letGo) {
        delete[] letter.text;
        return 1;
    }
    if (xdrs->streamMode == Xdr::Request::fromTheWire) letter.text = new unsigned char[4];
    return xdrs->TransferWithoutSwap(letter.text, 4);
}

const Coder<Letter> letterCoder = {XdrLetter, "Letter"};

class ThrowingConstructor : public ::testing::Test {
protected:
    ThrowingConstructor()
    {
        buffer.fill('B');
        constructed = destroyed = passes = 0;
        refusedStream = 0;
    }

    void expectNothingHappened() const
    {
        EXPECT_EQ(liveBlocks(), 0) << "the stream's memory";
        EXPECT_EQ(mismatchedReleases(), 0);
        EXPECT_EQ(constructed, 1);
        EXPECT_EQ(destroyed, 0);
        EXPECT_EQ(passes, 0);
        EXPECT_EQ(letter.text, text.data());
        EXPECT_EQ(buffer.front(), 'B');
    }

    std::array<unsigned char, 4> text = {'a', 'b', 'c', 'd'};
    Letter letter = {text.data()};
    std::array<unsigned char, driverMessage> buffer;
};

}  // namespace

TEST_F(ThrowingConstructor, passesThroughTheEncodingDriver)
{
    const Watch watch;
    EXPECT_THROW(ClientsXdrSupport(XdrLetter, &letter, buffer.data()), NoStream);
    expectNothingHappened();
    EXPECT_EQ(ClientsXdrSupport(XdrLetter, &letter, buffer.data()), 4) << "the next stream is there again";
    EXPECT_EQ(buffer[0], 'a');
}

TEST_F(ThrowingConstructor, passesThroughTheDecodingDriver)
{
    const Watch watch;
    EXPECT_THROW(ClientsXdrDeserialize(XdrLetter, &letter, buffer.data()), NoStream);
    expectNothingHappened();
}

TEST_F(ThrowingConstructor, passesThroughTheTestDriver)
{
    const Watch watch;
    EXPECT_THROW(TestDeserialize(XdrLetter, &letter, buffer.data()), NoStream);
    expectNothingHappened();
}

TEST_F(ThrowingConstructor, passesThroughTheReleasingDriver)
{
    const Watch watch;
    EXPECT_THROW(XdrDeallocate(XdrLetter, &letter, buffer.data()), NoStream);
    expectNothingHappened();
}

TEST_F(ThrowingConstructor, passesThroughEncode)
{
    const Watch watch;
    EXPECT_THROW(encode(letter, letterCoder), NoStream);
    expectNothingHappened();
}

// The value that was to be decoded is released with a stream of its own.
TEST_F(ThrowingConstructor, passesThroughDecode)
{
    const Watch watch;
    EXPECT_THROW(decode<Letter>(buffer, letterCoder), NoStream);
    EXPECT_EQ(liveBlocks(), 0);
    EXPECT_EQ(passes, 1) << "the release";
    EXPECT_EQ(destroyed, 1);
}
