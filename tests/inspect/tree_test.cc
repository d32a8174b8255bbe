// Why a pass fails, which bytes hold what, and the promises of invented messages.

#include "inspect/tree.h"
#include "explain/layout.h"
#include "inspect/input.h"
#include "inspect/json.h"
#include "inspect/sample.h"
#include "locker_types.h"

#include <gtest/gtest.h>

#include <set>

using namespace quorva;
using namespace quorva::inspect;

namespace {

TEST(Tree, explainsFailedDecodes)
{
    const struct {
        const Type& type;
        const char* message;
        const char* explanation;
    } failures[] = {
        {types::Natural, "", "at byte 0 of 0: no byte left where a unit of 4 is needed"},
        {types::Natural, "00", "at byte 0 of 1: 1 byte left where a unit of 4 is needed"},
        {types::Key, "0000000000", "at byte 0 of 5: 5 bytes left where 16 are needed"},
        {types::Picture, "0000000141", "at byte 4 of 5: the message ends within the padding of 1 byte"},
        {types::LockerIdSeq, "00000007", "at byte 0 of 4: count 7 is beyond the maximum 6"},
        {types::LockerIdSeq, "00010007", "at byte 0 of 4: count 7 is beyond the maximum 6 (the low 16 bits of 65543)"},
        {types::LockerIdSeq, "000000020000000100", "at /1, byte 8 of 9: 1 byte left where a unit of 4 is needed"},
        {types::AccessUnion, "00000001ffffffff", "at /owner, byte 4 of 8: length 4294967295 is beyond the maximum 40"},
        {types::AccessUnion, "00000007", "at /kind, byte 0 of 4: kind 7 has no arm in AccessUnion"},
        {types::StationUnion, "ffffffff",
         "at /attribute, byte 0 of 4: attribute 4294967295 has no arm in StationUnion"},
        {types::EventUnion, "0000000700000001",
         "at /access/owner, byte 8 of 8: "
         "no byte left where a unit of 4 is needed"},
    };
    for (const auto& [type, text, explanation] : failures) {
        const Bytes message = *bytesOfDigits(text);
        const auto failure = explain(type, message);
        ASSERT_TRUE(failure) << text;
        EXPECT_EQ(explained(*failure, message.size()), explanation);
    }
}

TEST(Tree, explainsFailedEncodes)
{
    const struct {
        const Type& type;
        const char* json;
        std::size_t limit;
        const char* explanation;
    } failures[] = {
        {types::AccessUnion, R"({"kind":1,"owner":null})", 1024,
         "at /owner, byte 4 of 1024: the string is a null pointer"},
        {types::LockerIdSeq, "[1,2]", 11, "at /1, byte 8 of 11: the message is longer than the limit of 11 bytes"},
        {types::Picture, R"({"hex":"414243"})", 7, "at byte 4 of 7: the message is longer than the limit of 7 bytes"},
    };
    for (const auto& [type, json, limit, explanation] : failures) {
        const Object object = fromJson(type, json);
        const auto failure = explain(type, object.data(), limit);
        ASSERT_TRUE(failure) << json;
        EXPECT_EQ(explained(*failure, limit), explanation);
    }

    char text[] = "a text of more than forty characters, which is too many";
    struct {
        std::int32_t kind;
        char* owner;
    } tooLong = {1, text};
    EXPECT_EQ(explain(types::AccessUnion, &tooLong, 1024)->reason, "length 55 is beyond the maximum 40");
    const Counted<LongNatural> noBlock = {2, nullptr};
    EXPECT_EQ(explain(types::LockerIdSeq, &noBlock, 1024)->reason, "count 2, but the elements are a null pointer");
    const Counted<LongNatural> tooMany = {7, nullptr};
    EXPECT_TRUE(explain(types::LockerIdSeq, &tooMany, 1024));
}

TEST(Tree, makesANodeOfEachPart)
{
    std::string list;
    const Bytes message = *bytesOfDigits(
        "00000007"
        "00000001"
        "00000003"
        "41e42200");
    const Tree tree(types::EventUnion, message);
    for (std::uint32_t i = 0; i < tree.nodes().size(); ++i) {
        const Node& node = tree.nodes()[i];
        list += std::to_string(node.offset) + '+' + std::to_string(node.size) + ' ' + tree.pointer(i) + ' ' +
                std::to_string(node.number) + ' ' + hexDigits(tree.contents(node)) + '\n';
    }
    EXPECT_FALSE(tree.stopped());
    EXPECT_EQ(tree.length(), message.size());
    EXPECT_EQ(list,
              "0+16  0 \n"
              "0+4 /number 7 \n"
              "4+12 /access 0 \n"
              "4+4 /access/kind 1 \n"
              "8+8 /access/owner 3 41e422\n");
}

// The inspector reads by the description, the codec by its plain functions: for any message the outcome is the same.
TEST(Tree, agreesWithTheCodec)
{
    const Type* const all[] = {&types::AccessUnion, &types::Drive,   &types::EventUnion,   &types::LockerIdSeq,
                               &types::Neighbour,   &types::Picture, &types::StationUnion, &types::Visit};
    Sampler sampler;
    int failed = 0;
    for (const Type* type : all) {
        for (std::uint64_t seed = 0; seed < 400; ++seed) {
            Bytes message = sampler.sample(*type, {Extent::random, seed / 2, 500});
            Object whole(*type);
            ASSERT_TRUE(runPass(Mode::decode, type->routine, whole.data(), message).succeeded);
            Bytes again(message.size());
            EXPECT_TRUE(runPass(Mode::encode, type->routine, whole.data(), again).succeeded);
            EXPECT_EQ(again, message);
            EXPECT_FALSE(explain(*type, whole.data(), message.size()));
            EXPECT_TRUE(explain(*type, whole.data(), message.size() - 1));

            const std::size_t unit = seed * 7 % (message.size() / 4);
            constexpr std::uint32_t damages[] = {0,  1,      2,       6,       7,          13,
                                                 41, 0xFFFF, 0x10000, 0x10001, 0x80000000, 0xFFFFFFFF};
            const std::uint32_t damage = damages[seed % std::size(damages)];
            for (unsigned i = 0; i < 4; ++i) message[4 * unit + i] = static_cast<unsigned char>(damage >> (24 - 8 * i));
            if (seed % 5 == 0) message.resize(seed * 11 % message.size());

            SCOPED_TRACE(std::string(type->name) + '\n' + hexText(message));
            Object object(*type);
            Xdr::Trace trace;
            const Pass pass =
                runPass(Mode::decode, type->routine, object.data(), message, [&](Xdr& xdrs) { xdrs.setTrace(&trace); });
            const Tree tree(*type, message);
            ASSERT_EQ(!tree.stopped(), pass.succeeded);
            if (tree.stopped()) {
                ASSERT_EQ(tree.stopped()->tracePath, trace.path());
                ++failed;
            } else {
                ASSERT_EQ(tree.length(), pass.length);
            }
        }
    }
    EXPECT_GT(failed, 400);
}

// A Locker holds Lockers, so its messages can nest without bound.
TEST(Tree, boundsTheNesting)
{
    Sampler sampler;
    Bytes door = sampler.sample(types::Locker, {Extent::least, 0, 0}), message;
    std::size_t countAt = 0;  // the count of the doors inside
    const Tree one(types::Locker, door);
    for (std::uint32_t i = 0; i < one.nodes().size(); ++i)
        if (one.pointer(i) == "/nested") countAt = one.nodes()[i].offset;
    door[countAt + 3] = 1;
    for (int i = 0; i < 300; ++i)
        message.insert(message.end(), door.begin(), door.begin() + static_cast<std::ptrdiff_t>(countAt) + 4);
    EXPECT_EQ(explain(types::Locker, message)->reason, "elements are nested deeper than 512 levels");

    door[countAt + 3] = 0;
    message.insert(message.end(), door.begin(), door.end());
    for (int i = 0; i < 300; ++i)
        message.insert(message.end(), door.begin() + static_cast<std::ptrdiff_t>(countAt) + 4, door.end());
    Object deep(types::Locker), shallow(types::Locker);
    ASSERT_TRUE(runPass(Mode::decode, types::Locker.routine, deep.data(), message).succeeded);
    EXPECT_THROW(objectJson(types::Locker, deep.data()), Refusal);
    ASSERT_TRUE(runPass(Mode::decode, types::Locker.routine, shallow.data(), door).succeeded);
    const Json inner = objectJson(types::Locker, shallow.data());
    Json many = inner;
    for (int i = 0; i < 300; ++i) {
        Json outer = inner;
        outer["nested"].push_back(std::exchange(many, nullptr));
        many = std::move(outer);
    }
    EXPECT_THROW(fromJson(types::Locker, many.dump()), JsonError);
}

TEST(Sample, keepsItsPromises)
{
    Sampler sampler;
    for (const std::size_t budget : {0u, 300u, 1024u, 60000u}) {
        for (std::uint64_t seed = 0; seed < 50; ++seed) {
            const Recipe recipe{Extent::random, seed, budget};
            const Bytes message = sampler.sample(types::Visit, recipe);
            EXPECT_EQ(message, Sampler().sample(types::Visit, recipe));
            EXPECT_LE(message.size(), std::max(budget, sampler.leastSize(types::Visit)));
            EXPECT_EQ(Tree(types::Visit, message).length(), message.size());
        }
    }
    EXPECT_EQ(sampler.sample(types::Visit, {Extent::least, 0, 9999}).size(), sampler.leastSize(types::Visit));
    EXPECT_EQ(sampler.sample(types::LockerIdSeq, {Extent::most, 0, 1024}).size(), 28u);

    std::set<unsigned char> attributes;
    for (std::uint64_t seed = 0; seed < armsOf(types::StationUnion).size(); ++seed)
        attributes.insert(sampler.sample(types::StationUnion, {Extent::random, seed, 1024})[3]);
    EXPECT_EQ(attributes.size(), armsOf(types::StationUnion).size());
}

}  // namespace
