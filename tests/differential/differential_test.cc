// The codec against libtirpc: the same interface files, compiled by rpcgen, give the same bytes for every type and
// refuse the same messages, except for the intended differences that are listed here.

#include "codec_tools.h"
#include "peer.h"
#include "tested_modules.h"

#include <explain/layout.h>
#include <inspect/object.h>
#include <inspect/sample.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

using namespace quorva;
using namespace quorva::test;
using inspect::Extent;

namespace {

struct Peer {
    const Type* type;
    unsigned index;
};

std::vector<Peer> peers()
{
    std::vector<Peer> all;
    unsigned index = 0;
    for (const Type* type : inspect::typesOf(testedModules())) all.push_back({type, index++});
    return all;
}

// What an implementation makes of a message: how many bytes it reads, and what it then writes.
struct Outcome {
    bool accepted;
    std::size_t consumed;
    std::string written;
    bool operator==(const Outcome&) const = default;
};

void PrintTo(const Outcome& outcome, std::ostream* out)
{
    *out << (outcome.accepted ? outcome.written + ", read " + std::to_string(outcome.consumed) : "refused");
}

constexpr std::size_t room = 4096;

Outcome theirs(const Peer& peer, const Bytes& message)
{
    Bytes out(room);
    unsigned consumed = 0;
    const int length =
        peerRecode(peer.index, message.data(), static_cast<unsigned>(message.size()), out.data(), room, &consumed);
    if (length == peerRefusesToEncode) return {true, consumed, "refused to write"};
    if (length < 0) return {false, 0, ""};
    return {true, consumed, hexOf(std::span(out).first(static_cast<std::size_t>(length)))};
}

Outcome ours(const Peer& peer, const Bytes& message)
{
    inspect::Object object(*peer.type);
    const Pass read = runPass(Mode::decode, peer.type->routine, object.data(), Message(message).span());
    if (!read.succeeded) return {false, 0, ""};
    Bytes out(room);
    const Pass written = runPass(Mode::encode, peer.type->routine, object.data(), out);
    return {true, read.length, written.succeeded ? hexOf(std::span(out).first(written.length)) : "refused to write"};
}

class Differential : public ::testing::TestWithParam<Peer> {
protected:
    const Type& type = *GetParam().type;
    inspect::Sampler sampler;

    std::vector<Bytes> samples(std::uint64_t seeds)
    {
        std::vector<Bytes> made = {sampler.sample(type, {Extent::least, 0, 300}),
                                   sampler.sample(type, {Extent::most, 0, 300})};
        for (std::uint64_t seed = 0; seed < seeds; ++seed)
            made.push_back(sampler.sample(type, {Extent::random, seed, 300}));
        return made;
    }
};

// True if the implementation writes what it read: then all values of the message are within its ranges.
bool keeps(const Outcome& outcome, const Bytes& message)
{
    return outcome.accepted && outcome.written == hexOf(std::span(message).first(outcome.consumed));
}

}  // namespace

TEST(Peers, areTheTypesOfTheModules)
{
    for (const Peer& peer : peers()) ASSERT_STREQ(peerTypes[peer.index], peer.type->name);
    ASSERT_EQ(peerTypes[peers().size()], nullptr);
}

TEST_P(Differential, writesTheSameBytes)
{
    for (const Bytes& wire : samples(std::clamp<std::size_t>(inspect::armsOf(type).size(), 4, 300))) {
        const Outcome same = {true, wire.size(), hexOf(wire)};
        ASSERT_EQ(ours(GetParam(), wire), same);
        ASSERT_EQ(theirs(GetParam(), wire), same) << "by libtirpc";
    }
}

// Both refuse a message that ends early. Both accept a message with a changed unit and more bytes after it if its
// values are within the ranges of either; otherwise the listed differences apply.
TEST_P(Differential, refusesTheSameMessages)
{
    std::mt19937 random(inspect::documentationOf(type).line);
    for (const Bytes& wire : samples(2)) {
        for (std::size_t size = 0; size < wire.size(); ++size) {
            const Bytes cut(wire.begin(), wire.begin() + static_cast<std::ptrdiff_t>(size));
            ASSERT_FALSE(ours(GetParam(), cut).accepted || theirs(GetParam(), cut).accepted) << hexOf(cut);
        }
        for (int i = 0; i < 30; ++i) {
            Bytes changed = wire;
            const std::size_t at = random() % (wire.size() / 4) * 4;
            const std::uint32_t old = unitAt(wire, at);
            const std::uint32_t values[] = {old + 1, old - 1, 0,         1,
                                            0x1FF,   0x10000, 0x80000001};  // small, as they may be counts
            setUnit(changed, at, values[random() % std::size(values)]);
            changed.resize(changed.size() + 64);
            const Outcome mine = ours(GetParam(), changed);
            const Outcome other = theirs(GetParam(), changed);
            if (keeps(mine, changed) || keeps(other, changed)) {
                ASSERT_TRUE(mine.accepted && other.accepted)
                    << mine.accepted << other.accepted << ' ' << hexOf(changed);
                ASSERT_EQ(mine.consumed, other.consumed) << hexOf(changed);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Types, Differential, ::testing::ValuesIn(peers()),
                         [](const auto& info) { return std::string(info.param.type->name); });

// All intended differences. Values within the ranges of the interface files never meet one.
TEST(Peers, differWhereItIsIntended)
{
    const char* const refused = "refused";
    const struct {
        const char* why;
        const char* type;
        const char* message;
        std::string ours;  // what is written for it
        std::string theirs;
    } differences[] = {
        {"a Natural keeps 16 bits", "CallbackToken", "00010005", "00000005", "00010005"},
        {"so does an Integer, and the peer extends the sign", "DocumentUnion", "00000240 00018000", "00000240 FFFF8000",
         "00000240 00018000"},
        {"a ShortNatural keeps 8 bits", "TimeOfDayStruct", "00000102 00000000 00000000", "00000002 00000000 00000000",
         "00000102 00000000 00000000"},
        {"so does a ShortInteger, which is sent without its sign", "IDCode", "FFFFFFFF", "000000FF", "FFFFFFFF"},
        {"a Boolean keeps its low byte unchanged", "ColorAccessControlEnabled", "00000002", "00000002", "00000001"},
        {"and drops its other bytes", "ColorAccessControlEnabled", "00000100", "00000000", "00000001"},
        {"a count of elements is its low 16 bits", "AttributeSeq", "00010001 00000007", "00000001 00000007", refused},
        {"and so is one of bytes", "EncodedString", "00000000 00010001 41000000", "00000000 00000001 41000000",
         refused},
        {"a flag is present if its low byte is 1, and absent otherwise", "EssFaultRecordList", "00000001 00000002",
         "00000001 00000000", refused},
    };
    const auto written = [&](const Outcome& outcome) { return outcome.accepted ? outcome.written : refused; };
    for (const auto& difference : differences) {
        SCOPED_TRACE(difference.why);
        bool found = false;
        for (const Peer& peer : peers()) {
            if (std::string(peer.type->name) != difference.type) continue;
            found = true;
            EXPECT_EQ(written(ours(peer, bytesOf(difference.message))), difference.ours);
            EXPECT_EQ(written(theirs(peer, bytesOf(difference.message))), difference.theirs);
        }
        EXPECT_TRUE(found) << difference.type << " does not exist: use another type";
    }
}
