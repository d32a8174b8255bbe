// Passes over objects of any described type, in both of the ways that a routine has, and what they leave.
#pragma once

#include "codec_tools.h"
#include "memory.h"
#include "tested_modules.h"
#include "ways.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string>
#include <vector>

namespace quorva::test {

inline std::vector<const Type*> allTypes()
{
    std::vector<const Type*> types = inspect::typesOf(testedModules());
    types.insert(types.begin(), builtinTypes().begin(), builtinTypes().end());
    return types;
}

// Zeroed storage of just the size of one object; nobody but the test releases its contents.
class Storage {
public:
    explicit Storage(const Type& type, Way way = Way::plain)
        : described(type), along(way), bytes(new unsigned char[type.size]())
    {
    }
    Storage(const Storage&) = delete;
    ~Storage() { delete[] bytes; }

    Pass run(Mode mode, std::span<unsigned char> buffer, const Scarcity& scarcity = {})
    {
        return run(along, mode, buffer, scarcity);
    }
    Pass run(Way way, Mode mode, std::span<unsigned char> buffer, const Scarcity& scarcity = {})
    {
        TraceText* const sink = way == Way::interpreted ? &deafTrace() : nullptr;
        const Watch watch(scarcity);
        return runPass(mode, described.routine, bytes, buffer, [sink](Xdr& xdrs) { xdrs.setTrace(sink); });
    }

    // Whether one release pass leaves nothing behind, and releases everything in the form that it was allocated in.
    ::testing::AssertionResult releasesAll() { return releasesAll(along); }
    ::testing::AssertionResult releasesAll(Way way)
    {
        run(way, Mode::release, {});
        const bool clean = liveBlocks() == 0 && mismatchedReleases() == 0;
        return clean ? ::testing::AssertionSuccess()
                     : ::testing::AssertionFailure() << liveBlocks() << " blocks are left";
    }

    // What an encode pass writes into `room` bytes, up to where it fails.
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
    const Way along;
    unsigned char* bytes;
};

// What a decode pass did and left, as far as both ways must agree about it.
struct Decoded {
    bool succeeded;
    std::size_t length;
    long allocations;
    std::size_t allocated;  // bytes
    Bytes left;             // what an encode pass makes of the object, whole or not
    bool operator==(const Decoded&) const = default;
};

inline void PrintTo(const Decoded& decoded, std::ostream* out)
{
    *out << (decoded.succeeded ? "accepted " : "refused at ") << decoded.length << ", " << decoded.allocations
         << " allocations of " << decoded.allocated << " bytes, left " << hexOf(decoded.left);
}

// Decodes in one way and looks at what that left; one release pass over it must leave nothing.
inline Decoded decoded(const Type& type, Way way, std::span<const unsigned char> wire, const Scarcity& scarcity = {})
{
    const Message message(wire);
    Storage object(type, way);
    const Pass pass = object.run(Mode::decode, message.span(), scarcity);
    const long number = allocations();
    const std::size_t size = allocatedBytes();
    Bytes left = object.written(wire.size() + 256);  // more than came, to see what a failure left instead
    EXPECT_TRUE(object.releasesAll());
    return {pass.succeeded, pass.length, number, size, std::move(left)};
}

}  // namespace quorva::test
