// The functions for C, where they differ from the C++ layer: limits, lengths and texts that are cut.

#include <quorvapixdr/c_codec.h>
#include <quorvapixdr/codec.h>
#include <quorvapixdr/drivers.h>
#include <quorvapixdr/types/bodies.h>
#include <quorvapixdr/types/common/event.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

namespace {

const QuorvaType* described(const quorva::Type& type)
{
    return reinterpret_cast<const QuorvaType*>(&type);
}

}  // namespace

TEST(CodecForC, aFailedEncodeTellsItsLengthAndItsTrace)
{
    const NotifyBinding binding = {const_cast<char*>("a"), 1, 2, 3};
    unsigned char buffer[16];
    std::size_t length = 0;
    char* trace = nullptr;
    EXPECT_EQ(quorvaEncode(XdrNotifyBinding, &binding, buffer, sizeof buffer, &length, &trace), 0);
    EXPECT_EQ(length, 16u);
    ASSERT_NE(trace, nullptr);
    EXPECT_EQ(std::string(trace).substr(0, 22), "<hostName>a</hostName>");
    std::free(trace);

    QuorvaFailure failure;
    EXPECT_EQ(quorvaExplainEncode(described(quorva::description::NotifyBinding()), &binding, 20, &failure), 0);
    EXPECT_EQ(quorvaExplainEncode(described(quorva::description::NotifyBinding()), &binding, 16, &failure), 1);
    EXPECT_STREQ(failure.path, "/notifyProcedureNumber");
    EXPECT_EQ(failure.offset, 16u);
}

TEST(CodecForC, aMessageHasAtMost65535Bytes)
{
    const std::vector<unsigned char> zeros(65536);
    LongNatural number = 1;
    std::size_t length = 9;
    QuorvaFailure failure;
    const QuorvaType* const type = described(quorva::description::LongNatural());
    EXPECT_EQ(quorvaDecode(XdrLongNatural, &number, zeros.data(), 65536, &length, nullptr), 0);
    EXPECT_EQ(length, 0u);
    EXPECT_EQ(number, 1u);
    EXPECT_EQ(quorvaExplainDecode(type, zeros.data(), 65536, &failure), 1);
    EXPECT_STREQ(failure.reason, "a message has at most 65535 bytes");

    EXPECT_EQ(quorvaDecode(XdrLongNatural, &number, zeros.data(), 65535, &length, nullptr), 1);
    EXPECT_EQ(length, 4u);
    EXPECT_EQ(number, 0u);
    EXPECT_EQ(quorvaExplainDecode(type, zeros.data(), 65535, nullptr), 0);
    EXPECT_EQ(quorvaExplainDecode(type, zeros.data(), 3, nullptr), 1);
}

TEST(CodecForC, aLongPathEndsInDots)
{
    const std::vector<unsigned char> present = [] {
        std::vector<unsigned char> units(400);
        for (std::size_t at = 3; at < units.size(); at += 4) units[at] = 1;
        return units;
    }();
    QuorvaFailure failure;
    ASSERT_EQ(quorvaExplainDecode(described(quorva::description::Knot()), present.data(), present.size(), &failure), 1);
    EXPECT_EQ(std::string(failure.path).substr(0, 14), "/tie/knot/tie/");
    EXPECT_EQ(std::string(failure.path).substr(252), "...");
    EXPECT_EQ(failure.offset, present.size());
}
