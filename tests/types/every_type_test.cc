// The promises of the codec over every type that the interface files define, with messages that the schema invents. A new
// type is tested as soon as its interface file is there.

#include "passes_over.h"

#include <inspect/json.h>
#include <inspect/sample.h>
#include <quorvapixdr/drivers.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <barrier>
#include <sstream>
#include <thread>

using namespace quorva;
using namespace quorva::test;
using inspect::Extent;
using schema::Type;

namespace {

constexpr std::size_t roomy = 1000;   // bytes of a message for properties that look at a message once
constexpr std::size_t handy = 240;    // and for those that run a pass for each of its bytes

class EveryType : public ::testing::TestWithParam<const Type*> {
protected:
    const Type& type = *GetParam();
    inspect::Sampler sampler;

    std::vector<Bytes> samples(std::size_t budget, std::uint64_t seeds)
    {
        std::vector<Bytes> made = {sampler.sample(type, {Extent::least, 0, budget}),
                                   sampler.sample(type, {Extent::fullest, 0, budget})};
        for (std::uint64_t seed = 0; seed < seeds; ++seed) made.push_back(sampler.sample(type, {Extent::random, seed, budget}));
        return made;
    }
};

}  // namespace

// Wire, object, wire; object, JSON, object; and a trace that is XML.
TEST_P(EveryType, comesBack)
{
    for (const Bytes& wire : samples(roomy, std::clamp<std::size_t>(type.arms.size(), 6, 300))) {
        SCOPED_TRACE(hexOf(wire));
        const Decoded whole = decoded(type, Way::direct, wire);
        ASSERT_TRUE(whole.succeeded);
        ASSERT_EQ(whole.length, wire.size());
        ASSERT_EQ(hexOf(whole.left), hexOf(wire));
        ASSERT_EQ(whole, decoded(type, Way::traced, wire));

        inspect::Object object(type);
        const Message message(wire);
        TraceText trace;
        for (const auto mode : {decoding, encoding}) {
            trace.clear();
            ASSERT_TRUE(runTraced(mode, type.routine, type.name, object.data(), message.span(), trace).succeeded);
            ASSERT_TRUE(isXml(std::string(trace.text()))) << trace.text();
        }
        auto read = inspect::fromJson(type, inspect::parseJson(inspect::toJson(type, object.data()).dump()));
        Bytes again(wire.size());
        ASSERT_TRUE(runPass(encoding, type.routine, read.data(), again).succeeded);
        ASSERT_EQ(hexOf(again), hexOf(wire));
    }
}

// Any allocation fails, once or for good, by a null or by an exception below it; in a driver also that of the stream.
TEST_P(EveryType, findsNoMemory)
{
    for (const Bytes& wire : samples(handy, 3)) {
        SCOPED_TRACE(hexOf(wire));
        const long needed = decoded(type, Way::direct, wire).allocations;
        for (long number = 0; number <= needed; ++number)
            for (const Scarcity& scarcity : {Scarcity{.from = number}, Scarcity{.from = number, .until = number + 1},
                                             Scarcity{.from = number, .until = number + 1, .byException = true}}) {
                if (number < needed) {
                    const Decoded part = decoded(type, Way::direct, wire, scarcity);
                    ASSERT_FALSE(part.succeeded) << "allocation " << number;
                    ASSERT_EQ(part, decoded(type, Way::traced, wire, scarcity)) << "allocation " << number;
                }
                Storage object(type);
                Bytes buffer = wire;
                buffer.resize(std::max(wire.size(), driverMessage));
                {
                    const Watch watch(scarcity);
                    ClientsXdrDeserialize(type.routine, object.data(), buffer.data());
                }
                ASSERT_TRUE(object.releasesAll()) << "allocation " << number;
            }
    }
}

// What a trace cannot have is missing in the trace alone.
TEST_P(EveryType, findsNoMemoryForItsTrace)
{
    for (const Bytes& wire : samples(handy, 1))
        for (const bool byException : {false, true})
            for (long number = 0, missed = true; missed; ++number) {
                SCOPED_TRACE(hexOf(wire) + ", allocation " + std::to_string(number));
                const Message message(wire);
                Storage object(type);
                {
                    TraceText trace;
                    Pass pass;
                    {
                        const Watch watch(Scarcity{.from = number, .until = number + 1, .byException = byException});
                        pass = runTraced(decoding, type.routine, type.name, object.data(), message.span(), trace);
                    }
                    missed = number < allocations();
                    ASSERT_EQ(pass.succeeded, !missed || !trace.complete());
                }
                ASSERT_TRUE(object.releasesAll());
            }
}

// How deep a value stands moves its trace to the right, and changes nothing else.
TEST_P(EveryType, showsTheSameAtAnyDepth)
{
    for (const Bytes& wire : samples(handy, 2)) {
        SCOPED_TRACE(hexOf(wire));
        const Message message(wire);
        const auto shownBehind = [&](std::size_t elements) {
            Storage object(type);
            TraceText trace;
            for (std::size_t i = 0; i < elements; ++i) trace.open("around");
            EXPECT_TRUE(runTraced(decoding, type.routine, type.name, object.data(), message.span(), trace).succeeded);
            EXPECT_TRUE(object.releasesAll());
            std::istringstream lines{std::string(trace.text())};
            std::string line, shown;
            for (std::size_t i = 0; std::getline(lines, line); ++i) {
                if (i < elements) continue;
                EXPECT_GE(line.find_first_not_of(' '), 2 * elements) << line;
                shown += line.substr(2 * elements) + "\n";
            }
            return shown;
        };
        ASSERT_EQ(shownBehind(20), shownBehind(0));
    }
}

// A buffer that is too short: what was written is the beginning of the message, and the object is as it was.
TEST_P(EveryType, findsNoRoom)
{
    for (const Bytes& wire : samples(handy, 2)) {
        SCOPED_TRACE(hexOf(wire));
        Storage direct(type, Way::direct);
        Storage traced(type, Way::traced);
        for (Storage* object : {&direct, &traced}) ASSERT_TRUE(object->run(decoding, Message(wire).span()).succeeded);
        for (std::size_t room = 0; room <= wire.size(); ++room) {
            const Message buffer{Bytes(room)};
            ASSERT_EQ(direct.run(encoding, buffer.span()).succeeded, room == wire.size()) << room;
            const Bytes part = direct.written(room);
            ASSERT_TRUE(std::equal(part.begin(), part.end(), wire.begin())) << room;
            ASSERT_EQ(hexOf(part), hexOf(traced.written(room))) << room;
        }
        for (Storage* object : {&direct, &traced}) object->run(releasing, {});
        ASSERT_EQ(liveBlocks(), 0);
    }
}

// A null object: one zeroed object in the root slot, allocated in the scalar form; four bytes for a built-in type.
TEST_P(EveryType, isAllocated)
{
    const Bytes wire = sampler.sample(type, {Extent::fullest, 0, handy});
    const bool isBuiltin = type.kind == schema::Kind::builtin;
    for (TraceText* const sink : {static_cast<TraceText*>(nullptr), &deafTrace()})
        for (const auto mode : {decoding, encoding, releasing})
            for (const long failFrom : {Watch::never, 0L}) {
                const Message message(wire);  // a copy for each pass: encoding writes into it
                Xdr xdrs;
                xdrs.Program(mode, message.span().data(), static_cast<unsigned short>(message.span().size()));
                xdrs.setTrace(sink);
                int result;
                {
                    const Watch watch(failFrom);
                    result = type.routine(&xdrs, nullptr);
                }
                void* const root = xdrs.rootAllocationSlot;
                const bool allocates = mode != releasing || !isBuiltin;  // released scalars own nothing
                ASSERT_EQ(root != nullptr, allocates && failFrom != 0);
                ASSERT_FALSE(allocates && failFrom == 0 && result != 0);
                if (!root) continue;
                if (mode == decoding) {
                    ASSERT_EQ(result, 1);
                    Bytes again(wire.size());
                    ASSERT_TRUE(runPass(encoding, type.routine, root, again).succeeded);
                    ASSERT_EQ(hexOf(again), hexOf(wire));
                } else {
                    ASSERT_EQ(allocations(), 1);
                    ASSERT_EQ(largestAllocation(), isBuiltin ? 4 : type.size);
                }
                releaseContents(type.routine, root);
                ::operator delete(root);
                ASSERT_EQ(liveBlocks(), 0);
                ASSERT_EQ(mismatchedReleases(), 0);
            }
}

INSTANTIATE_TEST_SUITE_P(Types, EveryType, ::testing::ValuesIn(allTypes()),
                         [](const auto& info) { return std::string(info.param->name); });

// Passes over distinct objects share nothing: run under the thread sanitizer, this shows it. All threads go through the
// types together, so that whatever two passes over one type touched would be touched at the same time.
TEST(Concurrency, passesShareNothing)
{
    constexpr int crowd = 16;
    const auto types = allTypes();
    inspect::Sampler sampler;
    std::vector<Bytes> wires;
    std::vector<std::string> traces;
    for (const Type* type : types) {
        wires.push_back(sampler.sample(*type, {Extent::random, 1, handy}));
        TraceText trace;
        inspect::Object object(*type);
        runTraced(decoding, type->routine, type->name, object.data(), Message(wires.back()).span(), trace);
        traces.emplace_back(trace.text());
    }

    std::barrier together(crowd);
    const auto work = [&] {
        for (std::size_t i = 0; i < types.size(); ++i) {
            const Type& type = *types[i];
            const Message message(wires[i]);
            together.arrive_and_wait();
            for (const bool traced : {false, true}) {
                Storage object(type);
                TraceText trace;
                const Pass pass = traced ? runTraced(decoding, type.routine, type.name, object.data(), message.span(), trace)
                                         : object.run(decoding, message.span());
                EXPECT_TRUE(pass.succeeded) << type.name;
                EXPECT_EQ(trace.text(), traced ? traces[i] : "") << type.name;
                EXPECT_EQ(object.written(wires[i].size()), wires[i]) << type.name;
                trace.clear();
                if (traced) runTraced(encoding, type.routine, type.name, object.data(), message.span(), trace);
                releaseContents(type.routine, object.data());
            }
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < crowd; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
}
