// The promises of the codec over every type that the interface files define, with messages that the schema invents. A new
// type is tested as soon as its interface file is there.

#include "codec_tools.h"
#include "memory.h"
#include "tested_modules.h"

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
    for (const auto* module : testedModules()) types.insert(types.end(), module->types.begin(), module->types.end());
    return types;
}

// The two ways through a generated body. Where nobody collects a trace, direct passes move the bytes; a trace takes the
// way of calls, through the primitives, as every pass does with another platform's stream.
enum class Way { direct, calls };

// A trace that has run out of memory: it keeps a pass on the way of calls, and allocates nothing itself.
TraceText& deafTrace()
{
    thread_local TraceText trace;
    if (trace.complete()) {
        const Watch watch(0);
        for (int i = 0; trace.complete() && i < 100; ++i) trace.open("deaf");  // for ever, were the memory not watched
    }
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

    // What an encode pass writes into `room` bytes, up to where it fails.
    Bytes written(std::size_t room)
    {
        const Message buffer{Bytes(room, 0x5A)};
        const Pass pass = run(encoding, buffer.span());
        for (std::size_t i = pass.length; i < room; ++i) EXPECT_EQ(buffer.span()[i], 0x5A) << "written beyond the length";
        return {buffer.span().begin(), buffer.span().begin() + static_cast<std::ptrdiff_t>(pass.length)};
    }

    unsigned char* data() { return bytes; }

private:
    const Type& described;
    const Way along;
    unsigned char* bytes;
};

// What a decode pass did and left, as far as both ways must agree about it.
struct Decoded {
    bool succeeded;
    std::size_t length;
    long allocated;
    std::string left;  // what an encode pass makes of the object, whole or not
    bool operator==(const Decoded&) const = default;
};

void PrintTo(const Decoded& decoded, std::ostream* out)
{
    *out << (decoded.succeeded ? "accepted " : "refused at ") << decoded.length << ", " << decoded.allocated
         << " allocations, left " << decoded.left;
}

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

    // Decodes in one way and looks at what that left; one release pass over it must leave nothing.
    Decoded decoded(Way way, std::span<const unsigned char> wire, long failFrom = Watch::never)
    {
        const Message message(wire);
        Storage object(type, way);
        const Pass pass = object.run(decoding, message.span(), failFrom);
        const long allocated = allocations();
        const std::string left = hexOf(object.written(wire.size()));
        EXPECT_TRUE(object.releasesAll());
        return {pass.succeeded, pass.length, allocated, left};
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
        const Decoded whole = decoded(Way::direct, wire);
        ASSERT_TRUE(whole.succeeded);
        ASSERT_EQ(whole.length, wire.size());
        ASSERT_EQ(whole.left, hexOf(wire));
        ASSERT_EQ(whole, decoded(Way::calls, wire));

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

// A message that ends too early, wherever: nothing is left, and what is left in the object is fit to be looked at.
TEST_P(EveryType, endsEarly)
{
    const std::string unwritten = hexOf(Bytes(4, 0xA5));
    for (const Bytes& wire : samples(handy, 3)) {
        for (std::size_t size = 0; size < wire.size(); ++size) {
            SCOPED_TRACE(hexOf(std::span(wire).first(size)) + " of " + hexOf(wire));
            const auto cut = std::span(wire).first(size);
            const Decoded part = decoded(Way::direct, cut);
            ASSERT_FALSE(part.succeeded);
            ASSERT_LE(part.length, size);
            ASSERT_TRUE(part.left.find(unwritten) == part.left.npos || hexOf(wire).find(unwritten) != part.left.npos) << part.left;
            ASSERT_EQ(part, decoded(Way::calls, cut));
            if (size % 4 != 0) continue;

            TraceText trace;
            inspect::Object object(type);
            const Message message(cut);
            runTraced(decoding, type.routine, type.name, object.data(), message.span(), trace);
            ASSERT_TRUE(trace.path().starts_with(type.name)) << trace.path();
            ASSERT_TRUE(isXml(std::string(trace.text()) + closing(trace.path()))) << trace.text();
            inspect::toJson(type, object.data());
        }
    }
}

TEST_P(EveryType, findsNoMemory)
{
    for (const Bytes& wire : samples(handy, 3)) {
        SCOPED_TRACE(hexOf(wire));
        const long needed = decoded(Way::direct, wire).allocated;
        for (long first = 0; first < needed; ++first) {
            const Decoded part = decoded(Way::direct, wire, first);
            ASSERT_FALSE(part.succeeded) << "allocation " << first;
            ASSERT_EQ(part, decoded(Way::calls, wire, first)) << "allocation " << first;
        }
    }
}

// A buffer that is too short: what was written is the beginning of the message, and the object is as it was.
TEST_P(EveryType, findsNoRoom)
{
    for (const Bytes& wire : samples(handy, 2)) {
        SCOPED_TRACE(hexOf(wire));
        Storage direct(type, Way::direct);
        Storage calls(type, Way::calls);
        for (Storage* object : {&direct, &calls}) ASSERT_TRUE(object->run(decoding, Message(wire).span()).succeeded);
        for (std::size_t room = 0; room <= wire.size(); ++room) {
            const Message buffer{Bytes(room)};
            ASSERT_EQ(direct.run(encoding, buffer.span()).succeeded, room == wire.size()) << room;
            const Bytes part = direct.written(room);
            ASSERT_TRUE(std::equal(part.begin(), part.end(), wire.begin())) << room;
            ASSERT_EQ(hexOf(part), hexOf(calls.written(room))) << room;
        }
        for (Storage* object : {&direct, &calls}) object->run(releasing, {});
        ASSERT_EQ(liveBlocks(), 0);
    }
}

// A unit that says something else: either the message is refused, or it is one that encodes, and then comes back for good.
TEST_P(EveryType, isDamaged)
{
    const std::uint32_t values[] = {0, 1, 2, 0xFFFF, 0x10000, 0x10001, 0x7FFFFFFF, 0x80000000,
                                    0xFFFFFFFC, 0xFFFFFFFD, 0xFFFFFFFE, 0xFFFFFFFF};
    std::mt19937 random(type.line);
    for (const Bytes& wire : samples(handy, 4)) {
        for (std::size_t i = 0; i < std::min<std::size_t>(wire.size(), 60); ++i) {
            Bytes damaged = wire;
            setUnit(damaged, random() % (wire.size() / 4) * 4, values[random() % std::size(values)]);
            SCOPED_TRACE(hexOf(damaged));
            const Decoded direct = decoded(Way::direct, damaged);
            ASSERT_EQ(direct, decoded(Way::calls, damaged));
            if (!direct.succeeded) continue;
            const Decoded again = decoded(Way::direct, bytesOf(direct.left));
            ASSERT_TRUE(again.succeeded);
            ASSERT_EQ(again.left, direct.left);
        }
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
            ASSERT_EQ(object.written(wire.size()), wire) << type->name;
            releaseContents(type->routine, object.data());
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
}
