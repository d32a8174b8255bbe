// Messages of every type, damaged in every place: no uninitialised memory is sent, every block is released, and the
// plain functions and the interpreter agree.
//
// The environment variable DAMAGE_STRIDE is the step between the damages that are tried: 1 tries all, 29 is the
// default. The last line of the output counts the decoded messages.

#include "storage.h"

#include <inspect/json.h>
#include <inspect/sample.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

using namespace quorva;
using namespace quorva::test;
using inspect::Extent;

namespace {

constexpr std::size_t longest = 1024;  // bytes of a message; more where the shortest value of the type needs more

// Larger blocks fail, so that the outcome does not depend on the memory of the machine.
constexpr Scarcity granted{.largest = std::size_t{64} << 20};

// All damages of one message, by number.
class Damages {
public:
    explicit Damages(const Bytes& message) : whole(message), units(whole.size() / 4) {}

    std::size_t count() const { return whole.size() * 9 + units * std::size(values); }

    // Every truncation, then every bit flipped, then every unit replaced by each value.
    Bytes at(std::size_t number) const
    {
        Bytes damaged = whole;
        if (isTruncation(number)) {
            damaged.resize(number);
        } else if (number -= whole.size(); number < whole.size() * 8) {
            damaged[number / 8] = static_cast<unsigned char>(damaged[number / 8] ^ 1u << number % 8);
        } else {
            number -= whole.size() * 8;
            setUnit(damaged, number / std::size(values) * 4, values[number % std::size(values)]);
        }
        return damaged;
    }
    bool isTruncation(std::size_t number) const { return number < whole.size(); }

private:
    static constexpr std::uint32_t values[] = {0,          1,          0xFFFF,     0x10000,    0x10001,   0x7FFFFFFF,
                                               0x80000000, 0xFFFFFFFC, 0xFFFFFFFD, 0xFFFFFFFE, 0xFFFFFFFF};
    const Bytes& whole;
    std::size_t units;
};

// The close tags of a path: "Locker/value[2]/code" gives "</code></value></Locker>".
std::string closing(std::string path)
{
    std::string tags;
    while (!path.empty()) {
        const std::size_t slash = path.rfind('/');
        const std::string last = path.substr(slash == std::string::npos ? 0 : slash + 1);
        tags += "</" + last.substr(0, last.find('[')) + ">";
        path.resize(slash == std::string::npos ? 0 : slash);
    }
    return tags;
}

// True if four successive bytes are the filling of new blocks (support/memory.h).
bool holdsUninitialised(const Bytes& bytes)
{
    return std::search_n(bytes.begin(), bytes.end(), 4, 0xA5) != bytes.end();
}

std::size_t stride()
{
    const char* const wanted = std::getenv("DAMAGE_STRIDE");
    return wanted ? std::max<std::size_t>(1, std::strtoul(wanted, nullptr, 10)) : 29;
}

// Counts the decoded messages: all of them, and those of the type that had the fewest.
class Tally : public ::testing::Environment {
public:
    void add(std::size_t decodes)
    {
        total += decodes;
        fewest = std::min(fewest, decodes);
        ++types;
    }
    void TearDown() override
    {
        if (types > 0) std::printf("damage: %zu messages of %zu types, at least %zu of each\n", total, types, fewest);
    }

private:
    std::size_t total = 0, types = 0, fewest = SIZE_MAX;
};
Tally* const tally = static_cast<Tally*>(::testing::AddGlobalTestEnvironment(new Tally));

class EveryType : public ::testing::TestWithParam<const Type*> {
protected:
    const Type& type = *GetParam();

    // Expects what holds for any message; returns what a decode left.
    Decoded expectSound(const Bytes& message)
    {
        Decoded plain = decoded(type, Coding::plain, message, granted);
        EXPECT_EQ(plain, decoded(type, Coding::interpreted, message, granted));
        EXPECT_LE(plain.length, message.size());
        EXPECT_LE(plain.allocations, static_cast<long>(message.size() / 4))
            << "each takes at least one unit of the message";
        EXPECT_TRUE(!holdsUninitialised(plain.left) || holdsUninitialised(message)) << hexOf(plain.left);
        decodes += 2;
        return plain;
    }

    // Expects that the trace up to the failure is well-formed, and that the object has a JSON text.
    void expectReadableFailure(const Bytes& message)
    {
        TraceText trace;
        inspect::Object object(type);
        runTraced(Mode::decode, type.routine, type.name, object.data(), Message(message).span(), trace);
        EXPECT_TRUE(trace.path().starts_with(type.name)) << trace.path();
        EXPECT_TRUE(isXml(std::string(trace.text()) + closing(trace.path()))) << trace.text();
        inspect::objectJson(type, object.data());
        ++decodes;
    }

    std::size_t decodes = 0;
};

}  // namespace

TEST_P(EveryType, withstandsDamage)
{
    inspect::Sampler sampler;
    for (const Extent extent : {Extent::least, Extent::random, Extent::most}) {
        const Bytes whole = sampler.sample(type, {extent, 0, longest});
        const Damages damages(whole);
        for (std::size_t number = inspect::documentationOf(type).line % stride(); number < damages.count();
             number += stride()) {
            const Bytes message = damages.at(number);
            const Decoded left = expectSound(message);
            if (damages.isTruncation(number)) {
                EXPECT_FALSE(left.succeeded);
                if (number % 4 == 0) expectReadableFailure(message);
            } else if (left.succeeded) {
                const Decoded again = expectSound(left.left);
                EXPECT_TRUE(again.succeeded);
                EXPECT_EQ(again.left, left.left);
            }
            ASSERT_FALSE(HasFailure()) << "damage " << number << ": " << hexOf(message);
        }
    }
    tally->add(decodes);
}

INSTANTIATE_TEST_SUITE_P(Damage, EveryType, ::testing::ValuesIn(allTypes()),
                         [](const auto& info) { return std::string(info.param->name); });
