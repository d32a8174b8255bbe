// The promises of the codec over every type that the interface files define, with messages that the schema invents. A new
// type is tested as soon as its interface file is there.

#include "codec_tools.h"
#include "memory.h"

#include <inspect/json.h>
#include <inspect/sample.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <thread>

using namespace quorva;
using namespace quorva::test;
using inspect::Extent;
using inspect::Recipe;
using schema::Type;

namespace {

constexpr std::size_t roomy = 1000;   // bytes of a message for properties that look at a message once
constexpr std::size_t handy = 240;    // and for those that run a pass for each of its bytes

std::vector<const Type*> allTypes()
{
    std::vector<const Type*> types(schema::builtins().begin(), schema::builtins().end());
    for (const auto* module : schema::modules()) types.insert(types.end(), module->types.begin(), module->types.end());
    return types;
}

// The two ways through a generated body. Where nobody collects a trace, direct passes move the bytes; a trace takes the
// way of calls, through the primitives, as every pass does with another platform's stream.
enum class Way { direct, calls };
constexpr Way ways[] = {Way::direct, Way::calls};

// A trace that has run out of memory: it keeps a pass on the way of calls, and allocates nothing itself.
TraceText& deafTrace()
{
    thread_local TraceText trace;
    const Watch watch(0);
    while (trace.complete()) trace.open("deaf");
    return trace;
}

Pass runAlong(Way way, Xdr::Request mode, XdrRoutine routine, void* object, std::span<unsigned char> buffer)
{
    TraceText* const sink = way == Way::calls ? &deafTrace() : nullptr;
    return runPass(mode, routine, object, buffer, [sink](Xdr& xdrs) { xdrs.setTrace(sink); });
}

// Zeroed storage of just the size of one object; nobody but the test releases its contents.
class Storage {
public:
    explicit Storage(const Type& type, Way way = Way::direct)
        : described(type), along(way), bytes(new unsigned char[type.size]())
    {
    }
    Storage(const Storage&) = delete;
    ~Storage() { delete[] bytes; }

    Pass run(Xdr::Request mode, std::span<unsigned char> buffer, long failFrom = Watch::never)
    {
        deafTrace();
        const Watch watch(failFrom);
        return runAlong(along, mode, described.routine, bytes, buffer);
    }

    // Whether one release pass leaves nothing behind, and releases everything in the form that it was allocated in.
    ::testing::AssertionResult releasesAll()
    {
        run(releasing, {});
        const bool clean = liveBlocks() == 0 && mismatchedReleases() == 0;
        return clean ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << liveBlocks() << " blocks are left";
    }

    // The wire form, in a buffer of `room` bytes; empty where encoding failed.
    Bytes encoded(std::size_t room)
    {
        const Message buffer{Bytes(room)};
        const Pass pass = run(encoding, buffer.span());
        const auto written = buffer.span().first(pass.succeeded ? pass.length : 0);
        return {written.begin(), written.end()};
    }

    unsigned char* data() { return bytes; }

private:
    const Type& described;
    const Way along;
    unsigned char* bytes;
};

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

// What is open, innermost first, closed: "Locker/value[2]/code" gives "</code></value></Locker>".
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

}  // namespace

// Wire, object, wire; object, JSON, object; and a trace that is XML.
TEST_P(EveryType, comesBack)
{
    for (const Bytes& wire : samples(roomy, std::clamp<std::size_t>(type.arms.size(), 6, 300))) {
        SCOPED_TRACE(hexOf(wire));
        const Message message(wire);
        Storage object(type);
        const Pass pass = object.run(decoding, message.span());
        ASSERT_TRUE(pass.succeeded);
        ASSERT_EQ(pass.length, wire.size());
        ASSERT_EQ(hexOf(object.encoded(wire.size())), hexOf(wire));

        auto read = inspect::fromJson(type, inspect::parseJson(inspect::toJson(type, object.data()).dump()));
        Bytes again(wire.size());
        ASSERT_TRUE(runPass(encoding, type.routine, read.data(), again).succeeded);
        ASSERT_EQ(hexOf(again), hexOf(wire));

        ASSERT_TRUE(object.releasesAll());
        for (const auto mode : {decoding, encoding, releasing}) {
            TraceText trace;
            ASSERT_TRUE(runTraced(mode, type.routine, type.name, object.data(), message.span(), trace).succeeded);
            ASSERT_TRUE(isXml(trace.text())) << trace.text();
        }
    }
}

// A message that ends too early, wherever: nothing is left, and what is left in the object is fit to be looked at.
TEST_P(EveryType, endsEarly)
{
    const std::string unwritten = hexOf(Bytes(4, 0xA5));
    for (const Bytes& wire : samples(handy, 3)) {
        for (std::size_t size = 0; size < wire.size(); ++size) {
            SCOPED_TRACE(hexOf(std::span(wire).first(size)) + " of " + hexOf(wire));
            const Message message{std::span(wire).first(size)};
            Storage object(type);
            const Pass pass = object.run(decoding, message.span());
            ASSERT_FALSE(pass.succeeded);
            ASSERT_LE(pass.length, size);
            if (size % 4 == 0) {
                inspect::toJson(type, object.data());
                const Message buffer{Bytes(wire.size() + 64)};
                const Pass written = object.run(encoding, buffer.span());
                const std::string hex = hexOf(buffer.span().first(written.length));
                ASSERT_TRUE(hex.find(unwritten) == hex.npos || hexOf(wire).find(unwritten) != hex.npos) << hex;
            }
            ASSERT_TRUE(object.releasesAll());
            if (size % 4 != 0) continue;

            TraceText trace;
            Storage traced(type);
            runTraced(decoding, type.routine, type.name, traced.data(), message.span(), trace);
            ASSERT_TRUE(trace.path().starts_with(type.name)) << trace.path();
            ASSERT_TRUE(isXml(trace.text() + closing(trace.path()))) << trace.text();
            releaseContents(type.routine, traced.data());
        }
    }
}

TEST_P(EveryType, findsNoMemory)
{
    for (const Bytes& wire : samples(handy, 2)) {
        SCOPED_TRACE(hexOf(wire));
        const Message message(wire);
        Storage whole(type);
        whole.run(decoding, message.span());
        const long needed = allocations();
        ASSERT_TRUE(whole.releasesAll());
        for (long first = 0; first < needed; ++first) {
            Storage object(type);
            ASSERT_FALSE(object.run(decoding, message.span(), first).succeeded) << "allocation " << first;
            ASSERT_TRUE(object.releasesAll()) << "allocation " << first;
        }
    }
}

// A buffer that is too short: what was written is the beginning of the message, and the object is as it was.
TEST_P(EveryType, findsNoRoom)
{
    for (const Bytes& wire : samples(handy, 1)) {
        SCOPED_TRACE(hexOf(wire));
        Storage object(type);
        ASSERT_TRUE(object.run(decoding, Message(wire).span()).succeeded);
        for (std::size_t room = 0; room < wire.size(); ++room) {
            const Message buffer{Bytes(room, 0x5A)};
            const Pass pass = object.run(encoding, buffer.span());
            ASSERT_FALSE(pass.succeeded) << room;
            ASSERT_TRUE(std::equal(wire.begin(), wire.begin() + static_cast<std::ptrdiff_t>(pass.length), buffer.span().begin()));
            for (std::size_t i = pass.length; i < room; ++i) ASSERT_EQ(buffer.span()[i], 0x5A) << room;
        }
        ASSERT_EQ(object.encoded(wire.size()), wire);
        ASSERT_TRUE(object.releasesAll());
    }
}

// A unit that says something else: either the message is refused, or it is one that encodes, and then comes back for good.
TEST_P(EveryType, isDamaged)
{
    const std::uint32_t values[] = {0, 1, 2, 0xFFFF, 0x10000, 0x10001, 0x7FFFFFFF, 0x80000000,
                                    0xFFFFFFFC, 0xFFFFFFFD, 0xFFFFFFFE, 0xFFFFFFFF};
    std::mt19937 random(static_cast<unsigned>(type.line));
    for (const Bytes& wire : samples(handy, 4)) {
        const std::size_t units = wire.size() / 4;
        for (std::size_t i = 0; i < std::min<std::size_t>(4 * units, 60); ++i) {
            Bytes damaged = wire;
            setUnit(damaged, random() % units * 4, values[random() % std::size(values)]);
            SCOPED_TRACE(hexOf(damaged));

            const Message message(damaged);
            Storage object(type);
            if (object.run(decoding, message.span()).succeeded) {
                const Bytes settled = object.encoded(damaged.size());
                ASSERT_FALSE(settled.empty());
                Storage second(type);
                ASSERT_TRUE(second.run(decoding, Message(settled).span()).succeeded);
                ASSERT_EQ(hexOf(second.encoded(settled.size())), hexOf(settled));
                second.run(releasing, {});
            }
            ASSERT_TRUE(object.releasesAll());
        }
    }
}

// With a trace every part goes through its routine, without one the direct passes move the bytes: both stop at the same
// byte, having read, written and kept the same.
TEST_P(EveryType, isTheSameWithATrace)
{
    std::mt19937 random(static_cast<unsigned>(type.line) + 1);
    const auto outcome = [&](std::span<unsigned char> message, bool traced) {
        TraceText trace;
        const auto attach = [&](Xdr& xdrs) { xdrs.setTrace(traced ? &trace : nullptr); };
        Storage object(type);
        std::string told;
        const auto tell = [&](const Pass& pass, const std::string& what) {
            told += (pass.succeeded ? "done " : "stopped ") + std::to_string(pass.length) + ' ' + what + '\n';
        };
        tell(runPass(decoding, type.routine, object.data(), message, attach), "");
        for (const std::size_t room : {message.size() + 64, message.size() / 2}) {
            Bytes out(room, 0x5A);
            tell(runPass(encoding, type.routine, object.data(), out, attach), hexOf(out));
        }
        tell(runPass(releasing, type.routine, object.data(), {}, attach), "");
        return told;
    };
    const std::uint32_t values[] = {0, 1, 2, 3, 0xFFFF, 0x10000, 0x10001, 0x80000000, 0xFFFFFFFF};
    for (const Bytes& wire : samples(handy, 3)) {
        for (std::size_t i = 0; i < 40; ++i) {
            Bytes changed = wire;
            setUnit(changed, random() % (wire.size() / 4) * 4, values[random() % std::size(values)]);
            if (i % 2 == 0) changed.resize(random() % changed.size());
            SCOPED_TRACE(hexOf(changed));
            const Message message(changed);
            ASSERT_EQ(outcome(message.span(), false), outcome(message.span(), true));
        }
    }
}

// A null object: one zeroed object in the root slot, allocated in the scalar form; four bytes for a built-in type.
TEST_P(EveryType, isAllocated)
{
    const Message message(sampler.sample(type, {Extent::fullest, 0, handy}));
    for (const auto mode : {decoding, encoding, releasing}) {
        for (const long failFrom : {Watch::never, 0L}) {
            Xdr xdrs;
            xdrs.Program(mode, message.span().data(), static_cast<unsigned short>(message.span().size()));
            int result;
            {
                const Watch watch(failFrom);
                result = type.routine(&xdrs, nullptr);
            }
            void* const root = xdrs.rootAllocationSlot;
            const bool allocates = mode != releasing || type.kind != schema::Kind::builtin;
            ASSERT_EQ(root != nullptr, allocates && failFrom != 0);
            if (allocates && failFrom == 0) {
                ASSERT_EQ(result, 0);
            }
            if (root && mode == decoding) {
                ASSERT_EQ(result, 1);
                Bytes again(message.span().size());
                ASSERT_TRUE(runPass(encoding, type.routine, root, again).succeeded);
                ASSERT_EQ(hexOf(again), hexOf(message.span()));
            }
            if (root && mode != decoding) {
                ASSERT_EQ(allocations(), 1);
                ASSERT_EQ(largestAllocation(), type.kind == schema::Kind::builtin ? 4 : type.size);
            }
            releaseContents(type.routine, root ? root : Storage(type).data());
            ::operator delete(root);
            ASSERT_EQ(liveBlocks(), 0);
            ASSERT_EQ(mismatchedReleases(), 0);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Types, EveryType, ::testing::ValuesIn(allTypes()),
                         [](const auto& info) { return std::string(info.param->name); });

// Passes over distinct objects share nothing: run under the thread sanitizer, this shows it.
TEST(Concurrency, passesShareNothing)
{
    const auto work = [] {
        inspect::Sampler sampler;
        for (const Type* type : allTypes()) {
            Bytes wire = sampler.sample(*type, {Extent::random, 1, handy});
            Storage object(*type);
            TraceText trace;
            ASSERT_TRUE(runTraced(decoding, type->routine, type->name, object.data(), wire, trace).succeeded) << type->name;
            ASSERT_EQ(object.encoded(wire.size()), wire) << type->name;
            releaseContents(type->routine, object.data());
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
}
