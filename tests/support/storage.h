// Passes over objects of any described type, coded by the plain functions or the interpreter, and what the passes
// leave.
#pragma once

#include "codec_tools.h"
#include "coding.h"
#include "memory.h"
#include "tested_modules.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace quorva::test {

// The built-in types and all types of the tested modules.
inline std::vector<const Type*> allTypes()
{
    std::vector<const Type*> types = inspect::typesOf(testedModules());
    types.insert(types.begin(), builtinTypes().begin(), builtinTypes().end());
    return types;
}

// Zeroed storage of exactly the size of one object. It does not release the contents: the test does, with a pass.
class Storage {
public:
    explicit Storage(const Type& type, Coding coding = Coding::plain)
        : described(type), usual(coding), bytes(new unsigned char[type.size]())
    {
    }
    Storage(const Storage&) = delete;
    ~Storage() { delete[] bytes; }

    Pass run(Mode mode, std::span<unsigned char> buffer, const Scarcity& scarcity = {})
    {
        return run(usual, mode, buffer, scarcity);
    }
    Pass run(Coding coding, Mode mode, std::span<unsigned char> buffer, const Scarcity& scarcity = {})
    {
        TraceText* const sink = coding == Coding::interpreted ? &exhaustedTrace() : nullptr;
        const Watch watch(scarcity);
        return runPass(mode, described.routine, bytes, buffer, [sink](Xdr& xdrs) { xdrs.setTrace(sink); });
    }

    // True if one release pass releases every block, each in the form in which it was allocated.
    ::testing::AssertionResult releasesAll() { return releasesAll(usual); }
    ::testing::AssertionResult releasesAll(Coding coding)
    {
        run(coding, Mode::release, {});
        const bool clean = liveBlocks() == 0 && mismatchedReleases() == 0;
        return clean ? ::testing::AssertionSuccess()
                     : ::testing::AssertionFailure() << liveBlocks() << " blocks are left";
    }

    // What an encode pass writes into a buffer of `room` bytes before it ends or fails.
    Bytes written(std::size_t room)
    {
        const Message buffer{Bytes(room, 0x5A)};
        const Pass pass = run(Mode::encode, buffer.span());
        for (std::size_t i = pass.length; i < room; ++i)
            EXPECT_EQ(buffer.span()[i], 0x5A) << "written beyond the length";
        return {buffer.span().begin(), buffer.span().begin() + static_cast<std::ptrdiff_t>(pass.length)};
    }

    unsigned char* data() { return bytes; }

private:
    const Type& described;
    const Coding usual;
    unsigned char* bytes;
};

// What a decode pass did and left. The plain functions and the interpreter must agree in all of it.
struct Decoded {
    bool succeeded;
    std::size_t length;
    long allocations;
    std::size_t allocated;  // bytes
    Bytes left;             // what an encode pass makes of the object, complete or not
    bool operator==(const Decoded&) const = default;
};

inline void PrintTo(const Decoded& decoded, std::ostream* out)
{
    *out << (decoded.succeeded ? "accepted " : "refused at ") << decoded.length << ", " << decoded.allocations
         << " allocations of " << decoded.allocated << " bytes, left " << hexOf(decoded.left);
}

// Decodes a message, encodes what that left, and expects one release pass to release everything.
inline Decoded decoded(const Type& type, Coding coding, std::span<const unsigned char> wire,
                       const Scarcity& scarcity = {})
{
    const Message message(wire);
    Storage object(type, coding);
    const Pass pass = object.run(Mode::decode, message.span(), scarcity);
    const long number = allocations();
    const std::size_t size = allocatedBytes();
    Bytes left = object.written(wire.size() + 256);  // room for a value that a failed decode left longer
    EXPECT_TRUE(object.releasesAll());
    return {pass.succeeded, pass.length, number, size, std::move(left)};
}

}  // namespace quorva::test
