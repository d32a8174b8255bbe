// A replacement of the allocation operators that counts, fills and fails on demand. It is part of every test binary that
// links `test_support`, and serves the codec's shared library too. All counts are those of the calling thread.
#pragma once

#include <cstddef>
#include <limits>

namespace quorva::test {

// Watches what is allocated while it stands; scopes don't nest. Every block that the operators hand out is filled with
// 0xA5 (its first 64 KiB and its end), so that unwritten memory is noticed. Blocks of 1 GiB and more fail where the
// machine says so.
class Watch {
public:
    static constexpr long never = std::numeric_limits<long>::max();

    // The allocations with the numbers `failFrom` and above, counted from 0, fail: the throwing operators throw
    // std::bad_alloc, the others return null.
    explicit Watch(long failFrom = never);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
};

// Blocks that were allocated under some Watch and not released since.
long liveBlocks();

// Allocations that the last Watch saw, the failed ones included, and the largest of them in bytes.
long allocations();
std::size_t largestAllocation();

// The watched block that was handed out last, or null.
void* lastBlock();

// Releases since this was asked last whose form, scalar or array, was not that of the allocation.
long mismatchedReleases();

}  // namespace quorva::test
