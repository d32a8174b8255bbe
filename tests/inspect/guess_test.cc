// Which types a message fits: whole, cut, with a rest, with findings, and at random.

#include "inspect/guess.h"
#include "inspect/catalogue.h"
#include "inspect/chance.h"
#include "inspect/input.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace quorva;
using namespace quorva::inspect;

namespace {

const Guesser& guesser()
{
    static const Guesser all(Catalogue().types());
    return all;
}

// A JobMngParameters: promotes job 230 of service 6, charged to a department.
constexpr const char* promote =
    "00000006 00000006 000000e6 00000000 00000002 00000002 00000006 6d776562 65720000 00000002"
    "00000006 34373131 2d420000 00000002 0000000b 53616c65 73204e6f 72746800 00000004 30383135";

TEST(Guess, tellsWholeMessagesFromCutOnesAndRests)
{
    Bytes message = parseHex(promote);
    const struct {
        std::size_t size;
        Fit fit;
        std::size_t used;
        std::size_t least;
    } cases[] = {{80, Fit::whole, 80, 80}, {84, Fit::leftOver, 80, 80}, {76, Fit::cut, 76, 80}, {62, Fit::cut, 60, 76}};
    for (const auto& each : cases) {
        message.resize(each.size);
        const auto guesses = guesser().guess(message, 1);
        ASSERT_EQ(guesses.size(), 1u) << each.size;
        EXPECT_STREQ(guesses[0].type->name, "JobMngParameters") << each.size;
        EXPECT_EQ(guesses[0].fit, each.fit) << each.size;
        EXPECT_EQ(guesses[0].used, each.used) << each.size;
        EXPECT_EQ(guesses[0].least, each.least) << each.size;
    }
}

// A newer peer sends enumerators that this catalogue does not have, and some peers send damaged values.
TEST(Guess, findsTheTypeOfMessagesWithFindings)
{
    const struct {
        std::size_t at;
        unsigned char byte;
        const char* what;
    } damages[] = {
        {19, 7, "unknown enumerator"},   {30, 0, "zero in a text"}, {71, 1, "padding that is not zero"},
        {57, 1, "count beyond 16 bits"}, {3, 9, "another service"},
    };
    for (const auto& damage : damages) {
        Bytes message = parseHex(promote);
        message[damage.at] = damage.byte;
        const auto guesses = guesser().guess(message, 1);
        ASSERT_EQ(guesses.size(), 1u) << damage.what;
        EXPECT_STREQ(guesses[0].type->name, "JobMngParameters") << damage.what;
    }
}

TEST(Guess, findsTheTypeOfMessagesThatADecodeRefuses)
{
    Bytes message = parseHex(promote);
    message[74] = 1;  // a PIN of 260 bytes
    const auto guesses = guesser().guess(message, 1);
    ASSERT_EQ(guesses.size(), 1u);
    EXPECT_STREQ(guesses[0].type->name, "JobMngParameters");
    EXPECT_EQ(guesses[0].fit, Fit::refused);
}

TEST(Guess, groupsTypesWithTheSameMessages)
{
    const auto guesses = guesser().guess(parseHex("00000001 00000083 00000083 00000001"), 1'000);
    std::size_t groups = 0;
    for (const Guess& guess : guesses)
        for (const Type* same : guess.same) {
            ++groups;
            EXPECT_EQ(std::ranges::count(guesses, same, &Guess::type), 0) << same->name;
        }
    EXPECT_GT(groups, 0u);
}

TEST(Guess, findsNothingInBytesAtRandom)
{
    Chance chance(1);
    for (const std::size_t size : {0u, 200u, 65532u, 65535u}) {
        Bytes message(size);
        for (unsigned char& byte : message) byte = static_cast<unsigned char>(chance.next());
        EXPECT_TRUE(guesser().guess(message, 5).empty()) << size;
    }
}

}  // namespace
