// The promises of the codec over every type of the interface files, with messages that the inspector invents. A new
// type needs no new test.

#include "storage.h"

#include <explain/layout.h>
#include <inspect/annotate.h>
#include <inspect/findings.h>
#include <inspect/json.h>
#include <inspect/sample.h>
#include <inspect/tree_json.h>
#include <quorvapixdr/drivers.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <barrier>
#include <sstream>
#include <thread>

using namespace quorva;
using namespace quorva::test;
using inspect::Extent;

namespace {

constexpr std::size_t longMessage = 1000;  // bytes, for tests that code a message once
constexpr std::size_t shortMessage = 240;  // bytes, for tests that run a pass for each byte

// The blocks of damaged counts fail: comparing their contents for every type would take too long.
constexpr Scarcity granted{.largest = std::size_t{16} << 10};

// The message; the message cut at evenly spread places; and the message with a changed unit at evenly spread places:
// once the next number, once another one.
std::vector<Bytes> variantsOf(const Bytes& wire)
{
    constexpr std::size_t most = 30;  // places
    constexpr std::uint32_t values[] = {0, 1, 2, 0xFFFF, 0x10000, 0x10001, 0x80000000, 0xFFFFFFFF};
    std::vector<Bytes> variants = {wire};
    const std::size_t cuts = std::min(most, wire.size()), units = wire.size() / 4, changes = std::min(most, units);
    for (std::size_t i = 0; i < cuts; ++i)
        variants.emplace_back(wire.begin(), wire.begin() + static_cast<std::ptrdiff_t>(i * wire.size() / cuts));
    for (std::size_t i = 0; i < changes; ++i) {
        const std::size_t at = i * units / changes * 4;
        for (const std::uint32_t value : {unitAt(wire, at) + 1, values[i % std::size(values)]}) {
            variants.push_back(wire);
            setUnit(variants.back(), at, value);
            variants.back().resize(wire.size() + 64);  // room for a part that is longer now
        }
    }
    return variants;
}

class EveryType : public ::testing::TestWithParam<const Type*> {
protected:
    const Type& type = *GetParam();
    inspect::Sampler sampler;

    std::vector<Bytes> samples(std::size_t budget, std::uint64_t seeds)
    {
        std::vector<Bytes> made = {sampler.sample(type, {Extent::least, 0, budget}),
                                   sampler.sample(type, {Extent::most, 0, budget})};
        for (std::uint64_t seed = 0; seed < seeds; ++seed)
            made.push_back(sampler.sample(type, {Extent::random, seed, budget}));
        return made;
    }
};

}  // namespace

// Wire, object, wire; object, JSON, object; and a trace that is XML.
TEST_P(EveryType, comesBackUnchanged)
{
    for (const Bytes& wire : samples(longMessage, std::clamp<std::size_t>(inspect::armsOf(type).size(), 6, 300))) {
        SCOPED_TRACE(hexOf(wire));
        const Decoded whole = decoded(type, Coding::plain, wire);
        ASSERT_TRUE(whole.succeeded);
        ASSERT_EQ(whole.length, wire.size());
        ASSERT_EQ(hexOf(whole.left), hexOf(wire));
        ASSERT_EQ(whole, decoded(type, Coding::interpreted, wire));

        inspect::Object object(type);
        const Message message(wire);
        TraceText trace;
        for (const auto mode : {Mode::decode, Mode::encode}) {
            trace.clear();
            ASSERT_TRUE(runTraced(mode, type.routine, type.name, object.data(), message.span(), trace).succeeded);
            ASSERT_TRUE(isXml(std::string(trace.text()))) << trace.text();
        }
        auto read = inspect::fromJson(type, inspect::objectJson(type, object.data()).dump());
        Bytes again(wire.size());
        ASSERT_TRUE(runPass(Mode::encode, type.routine, read.data(), again).succeeded);
        ASSERT_EQ(hexOf(again), hexOf(wire));
    }
}

// On messages that are whole, cut or damaged, the tree shows what the codec decodes, an annotation has each byte once,
// and the findings tell if an encode of the decoded object writes the same bytes.
TEST_P(EveryType, treesShowWhatTheCodecDecodes)
{
    using inspect::FindingCode;
    for (const Bytes& wire : samples(shortMessage, 2)) {
        for (Bytes bytes : variantsOf(wire)) {
            SCOPED_TRACE(hexOf(bytes));
            const inspect::Tree tree(type, bytes);
            inspect::Object object(type);
            const Pass pass = runPass(Mode::decode, type.routine, object.data(), bytes);
            ASSERT_EQ(pass.succeeded, !tree.stopped());

            std::size_t next = 0;
            for (const inspect::AnnotatedLine& line : inspect::annotatedLines(tree)) {
                ASSERT_EQ(line.offset, next) << line.name;
                next += line.size;
            }
            ASSERT_EQ(next, bytes.size());
            if (!pass.succeeded) continue;

            ASSERT_EQ(pass.length, tree.length());
            ASSERT_EQ(inspect::treeJson(tree).dump(), inspect::objectJson(type, object.data()).dump());
            Bytes again(pass.length);
            runPass(Mode::encode, type.routine, object.data(), again);
            const bool isEqual = std::equal(again.begin(), again.end(), bytes.begin());
            const auto findings = inspect::findingsOf(tree);
            const auto has = [&](std::initializer_list<FindingCode> codes) {
                return std::ranges::any_of(findings, [&](const inspect::Finding& finding) {
                    return std::ranges::find(codes, finding.code) != codes.end();
                });
            };
            if (has({FindingCode::booleanNotZeroOrOne})) continue;  // the codec keeps 2 to 255
            ASSERT_NE(isEqual, has({FindingCode::paddingNotZero, FindingCode::valueCut, FindingCode::countCut,
                                    FindingCode::textHoldsZero}));
        }
    }
}

// On messages that are whole, cut or damaged, the plain functions and the interpreter give the same result, coded
// length, allocations and object; and each of them encodes and releases what the other one decoded.
TEST_P(EveryType, interpreterAndPlainFunctionsAgree)
{
    constexpr Coding codings[] = {Coding::plain, Coding::interpreted};
    for (const Bytes& wire : samples(shortMessage, 2)) {
        for (const Bytes& bytes : variantsOf(wire)) {
            SCOPED_TRACE(hexOf(bytes));
            const Message message(bytes);
            Storage objects[] = {Storage(type, codings[0]), Storage(type, codings[1])};
            std::string ends[2], json[2];
            for (std::size_t i = 0; i < 2; ++i) {
                const Pass pass = objects[i].run(Mode::decode, message.span(), granted);
                ends[i] = std::to_string(pass.succeeded) + " after " + std::to_string(pass.length) + ", " +
                          std::to_string(allocations()) + " allocations of " + std::to_string(allocatedBytes());
                json[i] = inspect::objectJson(type, objects[i].data()).dump();
            }
            ASSERT_EQ(ends[0], ends[1]);
            ASSERT_EQ(json[0], json[1]);

            // Into a buffer of the size of the message, and into a smaller one.
            for (const std::size_t room : {bytes.size(), bytes.size() * 2 / 3}) {
                std::vector<std::string> written;
                for (Storage& object : objects)
                    for (const Coding coding : codings) {
                        const Message buffer{Bytes(room, 0x5A)};
                        const Pass pass = object.run(coding, Mode::encode, buffer.span());
                        written.push_back(std::to_string(pass.succeeded) + " after " + std::to_string(pass.length) +
                                          ", " + std::to_string(allocations()) +
                                          " allocations: " + hexOf(buffer.span()));
                    }
                for (const std::string& each : written) ASSERT_EQ(each, written[0]);
            }
            objects[0].run(codings[1], Mode::release, {});  // each releases what the other one decoded
            ASSERT_TRUE(objects[1].releasesAll(codings[0]));
        }
    }
}

// Each allocation fails in turn, that of a driver's stream included: it alone or all after it too, with null or with an
// exception below the null.
TEST_P(EveryType, failsWithoutMemory)
{
    for (const Bytes& wire : samples(shortMessage, 3)) {
        SCOPED_TRACE(hexOf(wire));
        const long needed = decoded(type, Coding::plain, wire).allocations;
        for (long number = 0; number <= needed; ++number)
            for (const Scarcity& scarcity : {Scarcity{.from = number}, Scarcity{.from = number, .until = number + 1},
                                             Scarcity{.from = number, .until = number + 1, .byException = true}}) {
                if (number < needed) {
                    const Decoded part = decoded(type, Coding::plain, wire, scarcity);
                    ASSERT_FALSE(part.succeeded) << "allocation " << number;
                    ASSERT_EQ(part, decoded(type, Coding::interpreted, wire, scarcity)) << "allocation " << number;
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

// Without memory for the trace, the trace is incomplete and the pass succeeds.
TEST_P(EveryType, survivesATraceWithoutMemory)
{
    for (const Bytes& wire : samples(shortMessage, 1))
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
                        pass = runTraced(Mode::decode, type.routine, type.name, object.data(), message.span(), trace);
                    }
                    missed = number < allocations();
                    ASSERT_EQ(pass.succeeded, !missed || !trace.complete());
                }
                ASSERT_TRUE(object.releasesAll());
            }
}

// The depth of a value indents its trace, and changes nothing else.
TEST_P(EveryType, hasTheSameTraceAtAnyDepth)
{
    for (const Bytes& wire : samples(shortMessage, 2)) {
        SCOPED_TRACE(hexOf(wire));
        const Message message(wire);
        const auto traceBelow = [&](std::size_t elements) {
            Storage object(type);
            TraceText trace;
            for (std::size_t i = 0; i < elements; ++i) trace.open("around");
            EXPECT_TRUE(
                runTraced(Mode::decode, type.routine, type.name, object.data(), message.span(), trace).succeeded);
            EXPECT_TRUE(object.releasesAll());
            std::istringstream lines{std::string(trace.text())};
            std::string line, text;
            for (std::size_t i = 0; std::getline(lines, line); ++i) {
                if (i < elements) continue;
                EXPECT_GE(line.find_first_not_of(' '), 2 * elements) << line;
                text += line.substr(2 * elements) + "\n";
            }
            return text;
        };
        ASSERT_EQ(traceBelow(20), traceBelow(0));
    }
}

// Into a buffer that is too short, a pass writes the beginning of the message, and does not change the object.
TEST_P(EveryType, failsInAShortBuffer)
{
    for (const Bytes& wire : samples(shortMessage, 2)) {
        SCOPED_TRACE(hexOf(wire));
        Storage plain(type, Coding::plain);
        Storage interpreted(type, Coding::interpreted);
        for (Storage* object : {&plain, &interpreted})
            ASSERT_TRUE(object->run(Mode::decode, Message(wire).span()).succeeded);
        for (std::size_t room = 0; room <= wire.size(); ++room) {
            const Message buffer{Bytes(room)};
            ASSERT_EQ(plain.run(Mode::encode, buffer.span()).succeeded, room == wire.size()) << room;
            const Bytes part = plain.written(room);
            ASSERT_TRUE(std::equal(part.begin(), part.end(), wire.begin())) << room;
            ASSERT_EQ(hexOf(part), hexOf(interpreted.written(room))) << room;
        }
        for (Storage* object : {&plain, &interpreted}) object->run(Mode::release, {});
        ASSERT_EQ(liveBlocks(), 0);
    }
}

// An explanation refuses what the codec refuses, after as many bytes: whole, cut and damaged messages, and the objects
// that their decodes leave, complete or not.
TEST_P(EveryType, hasAnExplanationForEachFailure)
{
    const auto expectFits = [](const Pass& pass, const std::optional<Failure>& failure) {
        ASSERT_EQ(pass.succeeded, !failure) << (failure ? failure->reason : "no explanation");
        if (failure) { ASSERT_EQ(failure->coded, pass.length) << failure->path << ": " << failure->reason; }
    };
    for (const Bytes& wire : samples(shortMessage, 2)) {
        for (const Bytes& bytes : variantsOf(wire)) {
            SCOPED_TRACE(hexOf(bytes));
            Storage object(type);
            const Pass pass = object.run(Mode::decode, Message(bytes).span(), granted);
            if (largestAllocation() <= granted.largest) expectFits(pass, explain(type, bytes));
            for (const std::size_t room : {bytes.size(), bytes.size() * 2 / 3, bytes.size() * 2 / 3 + 1})
                expectFits(object.run(Mode::encode, Message(Bytes(room)).span()), explain(type, object.data(), room));
            ASSERT_TRUE(object.releasesAll());
            if (HasFatalFailure()) return;
        }
    }
}

// For a null object, a pass allocates one zeroed object in the scalar form and keeps it in the root slot. Built-in
// types get four bytes.
TEST_P(EveryType, allocatesForANullObject)
{
    const Bytes wire = sampler.sample(type, {Extent::most, 0, shortMessage});
    const bool isBuiltin = type.kind == TypeKind::builtin;
    for (TraceText* const sink : {static_cast<TraceText*>(nullptr), &exhaustedTrace()})
        for (const auto mode : {Mode::decode, Mode::encode, Mode::release})
            for (const long failFrom : {Watch::never, 0L}) {
                const Message message(wire);  // a copy for each pass: encoding writes into it
                Xdr xdrs;
                xdrs.Program(requestOf(mode), message.span().data(),
                             static_cast<unsigned short>(message.span().size()));
                xdrs.setTrace(sink);
                int result;
                {
                    const Watch watch(failFrom);
                    result = type.routine(&xdrs, nullptr);
                }
                void* const root = xdrs.rootAllocationSlot;
                const bool allocates = mode != Mode::release || !isBuiltin;  // released scalars own nothing
                ASSERT_EQ(root != nullptr, allocates && failFrom != 0);
                ASSERT_FALSE(allocates && failFrom == 0 && result != 0);
                if (!root) continue;
                if (mode == Mode::decode) {
                    ASSERT_EQ(result, 1);
                    Bytes again(wire.size());
                    ASSERT_TRUE(runPass(Mode::encode, type.routine, root, again).succeeded);
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

// Passes over distinct objects share nothing, as the thread sanitizer shows. All threads take the types in step, so
// that two passes over one type run at the same time.
TEST(Concurrency, passesShareNothing)
{
    constexpr int threadCount = 16;
    const auto types = allTypes();
    inspect::Sampler sampler;
    std::vector<Bytes> wires;
    std::vector<std::string> traces;
    for (const Type* type : types) {
        wires.push_back(sampler.sample(*type, {Extent::random, 1, shortMessage}));
        TraceText trace;
        inspect::Object object(*type);
        runTraced(Mode::decode, type->routine, type->name, object.data(), Message(wires.back()).span(), trace);
        traces.emplace_back(trace.text());
    }

    std::barrier together(threadCount);
    const auto work = [&] {
        for (std::size_t i = 0; i < types.size(); ++i) {
            const Type& type = *types[i];
            const Message message(wires[i]);
            together.arrive_and_wait();
            for (const bool traced : {false, true}) {
                Storage object(type);
                TraceText trace;
                const Pass pass =
                    traced ? runTraced(Mode::decode, type.routine, type.name, object.data(), message.span(), trace)
                           : object.run(Mode::decode, message.span());
                EXPECT_TRUE(pass.succeeded) << type.name;
                EXPECT_EQ(trace.text(), traced ? traces[i] : "") << type.name;
                EXPECT_EQ(object.written(wires[i].size()), wires[i]) << type.name;
                trace.clear();
                if (traced) runTraced(Mode::encode, type.routine, type.name, object.data(), message.span(), trace);
                releaseContents(type.routine, object.data());
            }
        }
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < threadCount; ++i) threads.emplace_back(work);
    for (std::thread& thread : threads) thread.join();
}
