// The properties, and the types that inputs select.

#include "subject.h"

#include "inspect/json.h"
#include "inspect/tree.h"
#include "tested_modules.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <unordered_map>

#include <fcntl.h>
#include <unistd.h>

extern "C" __attribute__((weak)) void __sanitizer_set_death_callback(void (*callback)());

namespace quorva::fuzz {

using test::exhaustedTrace;
using test::Watch;

namespace {

void (*crashReport)() = nullptr;

struct Keys {
    std::map<std::uint16_t, const Type*> types;
    std::unordered_map<const Type*, std::uint16_t> keys;

    Keys()
    {
        for (const Type* type : allTypes()) {
            std::uint32_t hash = 0x811C9DC5;
            for (const char* c = type->name; *c; ++c) hash = (hash ^ static_cast<unsigned char>(*c)) * 0x01000193u;
            auto key = static_cast<std::uint16_t>(hash ^ hash >> 16);
            while (!types.emplace(key, type).second) ++key;
            keys.emplace(type, key);
        }
    }
};

const Keys& keys()
{
    static const Keys all;
    return all;
}

std::string described(const Outcome& outcome)
{
    std::string text = outcome.succeeded ? "accepted " : "refused at ";
    text += std::to_string(outcome.length) + ", " + std::to_string(outcome.allocated) + " allocations, left ";
    char digits[3];
    for (const unsigned char byte : outcome.left) {
        std::snprintf(digits, sizeof digits, "%02x", byte);
        text += digits;
    }
    return text + (outcome.encodes ? "" : " and no more");
}

// True if the output has the bytes that the test's allocation operators fill new blocks with, and the input has not.
bool showsUninitialised(std::span<const unsigned char> out, std::span<const unsigned char> in)
{
    const auto contains = [](std::span<const unsigned char> bytes, std::size_t inRow) {
        return std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size())
                   .find("\xA5\xA5\xA5\xA5", 0, inRow) != std::string_view::npos;
    };
    return contains(out, 4) && !contains(in, 2);
}

}  // namespace

std::span<const Type* const> allTypes()
{
    static const auto all = [] {
        std::vector<const Type*> types = inspect::typesOf(test::testedModules());
        types.insert(types.end(), builtinTypes().begin(), builtinTypes().end());
        std::ranges::sort(types, {}, [](const Type* type) { return std::string_view(type->name); });
        return types;
    }();
    return all;
}

std::uint16_t keyOf(const Type& type)
{
    return keys().keys.at(&type);
}

const Type& typeOf(std::uint16_t key)
{
    const auto found = keys().types.lower_bound(key);
    return *(found == keys().types.end() ? keys().types.begin() : found)->second;
}

Input Input::of(std::span<const unsigned char> bytes)
{
    const auto at = [&](std::size_t i) { return i < bytes.size() ? bytes[i] : 0u; };
    return {&typeOf(static_cast<std::uint16_t>(at(0) << 8 | at(1))), static_cast<std::uint8_t>(at(2)),
            bytes.subspan(std::min(headSize, bytes.size()))};
}

Bytes Input::bytes() const
{
    const std::uint16_t key = keyOf(*type);
    Bytes all(headSize + contents.size());
    all[0] = static_cast<unsigned char>(key >> 8);
    all[1] = static_cast<unsigned char>(key);
    all[2] = variant;
    std::ranges::copy(contents, all.begin() + headSize);
    return all;
}

void abortOn(const Finding& finding)
{
    std::fprintf(stderr, "FINDING: %s\n", finding.what.c_str());
    std::abort();
}

void onCrash(void (*report)())
{
    if (__sanitizer_set_death_callback) {
        __sanitizer_set_death_callback(report);
        return;
    }
    crashReport = report;
    for (const int signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        std::signal(signal, [](int number) {
            std::signal(number, SIG_DFL);
            crashReport();
            std::raise(number);
        });
}

void keepInput(const char* file, std::span<const unsigned char> input)
{
    const int handle = ::open(file, O_CREAT | O_TRUNC | O_WRONLY, 0644);
    const auto size = static_cast<ssize_t>(input.size());
    const bool written = handle >= 0 && ::write(handle, input.data(), input.size()) == size;
    std::fprintf(stderr, written ? "the input is in %s\n" : "the input cannot be written to %s\n", file);
    if (handle >= 0) ::close(handle);
}

Subject::Subject(const Type& type)
    : described(type), object(new unsigned char[type.size]), arena(new unsigned char[arenaSize])
{
    if (__sanitizer_set_death_callback) refuseBlocksAbove(std::size_t{1} << 20);
    exhaustedTrace();
}

Pass Subject::run(Coding coding, Mode mode, std::span<unsigned char> buffer, long failFrom)
{
    TraceText* const sink = coding == Coding::interpreted ? &exhaustedTrace() : nullptr;
    const Watch watch(test::Scarcity{.from = failFrom, .largest = largestBlock});
    return runPass(mode, described.routine, object.get(), buffer, [sink](Xdr& xdrs) { xdrs.setTrace(sink); });
}

void Subject::release(Coding coding)
{
    run(coding, Mode::release, {});
    if (const long left = test::liveBlocks())
        throw Finding{std::string(described.name) + ": " + std::to_string(left) + " blocks stay allocated"};
    if (test::mismatchedReleases())
        throw Finding{std::string(described.name) + ": a block is released in another form than it was allocated in"};
}

std::span<unsigned char> Subject::placed(std::span<const unsigned char> message)
{
    if (message.size() > arenaSize) message = message.first(arenaSize);
    const auto place = lastBytes(message.size());
    if (!message.empty()) std::memcpy(place.data(), message.data(), message.size());
    return place;
}

const Outcome& Subject::decode(Coding coding, std::span<const unsigned char> message, long failFrom)
{
    Outcome& outcome = outcomes[coding == Coding::interpreted];
    std::memset(object.get(), 0, described.size);
    const auto buffer = placed(message);
    const Pass pass = run(coding, Mode::decode, buffer, failFrom);
    outcome.succeeded = pass.succeeded;
    outcome.length = pass.length;
    outcome.allocated = test::allocations();
    const Pass written = run(coding, Mode::encode, buffer);
    if (pass.length > buffer.size() || written.length > buffer.size())
        throw Finding{std::string(described.name) + ": the length is beyond the buffer's"};
    outcome.encodes = written.succeeded;
    outcome.left.assign(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(written.length));
    release(coding);
    if (showsUninitialised(outcome.left, message))
        throw Finding{std::string(described.name) + ": shows uninitialised memory: " + fuzz::described(outcome)};
    return outcome;
}

const Outcome& Subject::decodeBothWays(std::span<const unsigned char> message, long failFrom)
{
    const Outcome& plain = decode(Coding::plain, message, failFrom);
    const Outcome& interpreted = decode(Coding::interpreted, message, failFrom);
    if (plain != interpreted)
        throw Finding{std::string(described.name) + ": interpreter and plain functions differ\n  plain:       " +
                      fuzz::described(plain) + "\n  interpreted: " + fuzz::described(interpreted)};
    return plain;
}

bool Subject::roundTrips(std::span<const unsigned char> message)
{
    const Outcome& outcome = decode(Coding::plain, message);
    if (!outcome.succeeded) return false;
    Outcome& first = outcomes[2];
    first = outcome;
    if (!first.encodes)
        throw Finding{std::string(described.name) + ": accepted, but does not encode: " + fuzz::described(first)};
    const Outcome& again = decode(Coding::plain, first.left);
    if (!again.succeeded || again.length != first.left.size() || again.left != first.left)
        throw Finding{std::string(described.name) + ": the round trip changes it\n  first: " + fuzz::described(first) +
                      "\n  again: " + fuzz::described(again)};
    return true;
}

void Subject::encodeInto(std::size_t size, std::span<const unsigned char> message)
{
    const Bytes whole = decode(Coding::plain, message).left;
    for (const Coding coding : {Coding::plain, Coding::interpreted}) {
        std::memset(object.get(), 0, described.size);
        const Pass read = run(coding, Mode::decode, placed(message));
        const auto buffer = lastBytes(std::min(size, whole.size()));
        const Pass pass = run(coding, Mode::encode, buffer);
        const bool same =
            pass.length <= buffer.size() &&
            std::equal(buffer.begin(), buffer.begin() + static_cast<std::ptrdiff_t>(pass.length), whole.begin());
        release(coding);
        if (!same || (read.succeeded && pass.succeeded != (buffer.size() == whole.size())))
            throw Finding{std::string(described.name) + ": the bytes differ when it encodes into " +
                          std::to_string(size) + " bytes"};
    }
}

void Subject::agreesWithInspector(std::span<const unsigned char> message)
{
    std::memset(object.get(), 0, described.size);
    const auto buffer = placed(message);
    Pass pass;
    std::string path;
    bool outOfMemory;
    {
        TraceText trace;  // allocates under the same watch as the pass; ends before blocks are counted
        {
            const Watch watch(test::Scarcity{.largest = largestBlock});
            pass = runPass(Mode::decode, described.routine, object.get(), buffer,
                           [&](Xdr& xdrs) { xdrs.setTrace(&trace); });
            outOfMemory = test::largestAllocation() > largestBlock;
        }
        path = trace.path();
    }

    std::string different;
    const inspect::Tree tree(described, message);
    const auto& stopped = tree.stopped();
    if (!outOfMemory && !(stopped && stopped->why.cause == inspect::Cause::nestedTooDeeply)) {
        const std::string expected = stopped ? stopped->tracePath : "";
        if (pass.succeeded == stopped.has_value())
            different = stopped ? "refused by the inspector's tree alone: " + stopped->failure.reason
                                : "refused by the pass alone";
        else if (const std::size_t coded = stopped ? stopped->failure.coded : tree.length(); pass.length != coded)
            different = "lengths " + std::to_string(pass.length) + " and " + std::to_string(coded);
        else if (path != expected)
            different = "stops at '" + path + "' and at '" + expected + '\'';
    }
    try {
        inspect::objectJson(described, object.get());
        const auto refusal = explain(described, object.get(), buffer.size());
        const Pass written = run(Coding::plain, Mode::encode, buffer);
        if (written.succeeded == refusal.has_value())
            different +=
                refusal ? "; only the explanation refuses to encode: " + refusal->reason : "; encoding is refused";
        else if (refusal && refusal->coded != written.length)
            different += "; encoding stops after other bytes than its explanation: " + refusal->reason;
    } catch (const inspect::Refusal&) {
        // Nested deeper than the inspector goes.
    }
    release(Coding::plain);
    if (!different.empty()) throw Finding{std::string(described.name) + ": " + different};
}

}  // namespace quorva::fuzz
