// The five drivers: mode, buffer of 1024 bytes, result, and who owns the stream and the object after the call.

#include "codec_tools.h"
#include "memory.h"

#include <quorvapixdr/drivers.h>

#include <gtest/gtest.h>

using namespace quorva;
using namespace quorva::test;

namespace {

int text(Xdr* xdrs, void* object)
{
    return XdrString(xdrs, static_cast<char**>(object), 65535);
}

}  // namespace

TEST(Drivers, returnTheBytesWrittenAfterAFailureToo)
{
    Bytes buffer(2000, 0x55);
    const struct {
        std::size_t characters;
        unsigned short written;
    } cases[] = {{3, 8}, {1020, 1024}, {1021, 4}, {1400, 4}};
    for (const auto& expected : cases) {
        std::string characters(expected.characters, 'A');
        char* string = characters.data();
        const Watch watch;
        EXPECT_EQ(ClientsXdrSupport(text, &string, buffer.data()), expected.written);
        EXPECT_EQ(liveBlocks(), 0) << "the stream is deleted";
    }
    EXPECT_EQ(Bytes(buffer.begin() + 1024, buffer.end()), Bytes(976, 0x55)) << "the buffer has 1024 bytes";
}

TEST(Drivers, decodeAndDeallocate)
{
    Bytes buffer = bytesOf("00000003 41424300");
    buffer.resize(1024, 0x55);
    char* string = nullptr;
    {
        const Watch watch;
        ClientsXdrDeserialize(text, &string, buffer.data());
        EXPECT_EQ(liveBlocks(), 1) << "the string alone";
    }
    EXPECT_STREQ(string, "ABC");
    const Bytes before = buffer;
    XdrDeallocate(text, &string, buffer.data());
    EXPECT_EQ(liveBlocks(), 0);
    EXPECT_EQ(buffer, before);
    EXPECT_NE(string, nullptr) << "release leaves the pointer";
}

// Callers of TestDeserialize read the stream after the pass, so the driver never deletes it.
TEST(Drivers, keepTheStreamOfTestDeserialize)
{
    static Xdr* kept;
    const auto routine = [](Xdr* xdrs, void* object) {
        kept = xdrs;
        return XdrLongNatural(xdrs, object) && *static_cast<std::uint32_t*>(object) == 4 ? 1 : 0;
    };
    Bytes buffer = bytesOf("00000004");
    buffer.resize(1024);
    for (const int result : {1, 0}) {
        if (result == 0) buffer[3] = 0xFF;
        std::uint32_t value = 0;
        const Watch watch;
        EXPECT_EQ(TestDeserialize(routine, &value, buffer.data()), result);
        EXPECT_EQ(liveBlocks(), 1);
        delete kept;
        EXPECT_EQ(liveBlocks(), 0);
    }
}

TEST(Drivers, loseTheObjectTheyAllocate)
{
    Bytes buffer = bytesOf("00000007");
    buffer.resize(1024);
    void* root = nullptr;
    {
        const Watch watch;
        ClientsXdrDeserialize(XdrLongNatural, nullptr, buffer.data());
        root = lastBlock();
    }
    EXPECT_EQ(liveBlocks(), 1) << "the object without its stream";
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(std::memcmp(root, memoryOf(std::uint32_t{7}).data(), 4), 0);
    ::operator delete(root);
}

// A decode allocates strings with the array form; DeallocateString releases them with the scalar form, as the replaced
// operators of callers expect it.
TEST(Drivers, deallocateStringsWithTheScalarForm)
{
    auto* string = new char[4]{'A', 'B', 'C', '\0'};
    char* const before = string;
    DeallocateString(&string);
    EXPECT_EQ(mismatchedReleases(), 1);
    EXPECT_EQ(string, before);
    char* none = nullptr;
    DeallocateString(&none);
}

TEST(Drivers, doNothingWithoutMemoryForTheStream)
{
    Bytes buffer(1024, 0x55);
    std::uint32_t value = 7;
    const Watch watch(0);
    EXPECT_EQ(ClientsXdrSupport(XdrLongNatural, &value, buffer.data()), 0);
    ClientsXdrDeserialize(XdrLongNatural, &value, buffer.data());
    EXPECT_EQ(TestDeserialize(XdrLongNatural, &value, buffer.data()), 0);
    XdrDeallocate(XdrLongNatural, &value, buffer.data());
    EXPECT_EQ(value, 7u);
}
