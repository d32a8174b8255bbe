// A replacement of the allocation operators that counts, fills and fails on demand. It is part of every test binary
// that links `test_support`, and serves the codec's shared library too. All counts are those of the calling thread.
#pragma once

#include <cstddef>
#include <limits>

namespace quorva::test {

// Which allocations fail, counted from 0, and how.
struct Scarcity {
    static constexpr long never = std::numeric_limits<long>::max();

    long from = never;   // the first that fails
    long until = never;  // the first behind it that succeeds again
    // Failing nothrow operators come by their null from a std::bad_alloc of the throwing operator below them, as those
    // of most programs do that replace the throwing ones alone.
    bool byException = false;
    std::size_t largest = std::numeric_limits<std::size_t>::max();  // bytes; longer blocks fail, too
};

// Watches what is allocated while it stands; scopes don't nest. Every block that the operators hand out is filled with
// 0xA5 (its first 64 KiB and its end), so that unwritten memory is noticed. Blocks of 1 GiB and more fail where the
// machine says so. The throwing operators fail by std::bad_alloc, the others by null.
class Watch {
public:
    static constexpr long never = Scarcity::never;

    explicit Watch(long failFrom = never) : Watch(Scarcity{.from = failFrom}) {}
    explicit Watch(const Scarcity& scarcity);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
};

// Blocks that were allocated under some Watch and not released since.
long liveBlocks();

// Allocations that the last Watch saw, the failed ones included; the largest of them, and their sum, in bytes.
long allocations();
std::size_t largestAllocation();
std::size_t allocatedBytes();

// The watched block that was handed out last, or null.
void* lastBlock();

// Releases since this was asked last whose form, scalar or array, was not that of the allocation.
long mismatchedReleases();

}  // namespace quorva::test
