// Replaced allocation operators that count, fill and fail on demand. Every test program that links `test_support` has
// them, and the codec's shared library uses them too. All counts are those of the calling thread.
#pragma once

#include <cstddef>
#include <limits>

namespace quorva::test {

// Which allocations fail, counted from 0, and how.
struct Scarcity {
    static constexpr long never = std::numeric_limits<long>::max();

    long from = never;   // the first that fails
    long until = never;  // the first after it that succeeds again
    // A nothrow operator that fails calls the throwing operator and catches its std::bad_alloc, as in most programs
    // that replace only the throwing operators.
    bool byException = false;
    std::size_t largest = std::numeric_limits<std::size_t>::max();  // bytes; longer blocks fail too
};

// Counts the allocations of its scope; scopes do not nest. Every block is filled with 0xA5 (its first 64 KiB and its
// last byte), so that a test notices uninitialised memory. Blocks of 1 GiB and more may fail, as the machine decides.
// The throwing operators fail by std::bad_alloc, the others by null.
class Watch {
public:
    static constexpr long never = Scarcity::never;

    explicit Watch(long failFrom = never) : Watch(Scarcity{.from = failFrom}) {}
    explicit Watch(const Scarcity& scarcity);
    ~Watch();
    Watch(const Watch&) = delete;
    Watch& operator=(const Watch&) = delete;
};

// Blocks that were allocated under any Watch and are not released yet.
long liveBlocks();

// Allocations under the last Watch, including those that failed; the largest of them and their sum, in bytes.
long allocations();
std::size_t largestAllocation();
std::size_t allocatedBytes();

// The block that was allocated last under a Watch, or null if it is released.
void* lastBlock();

// Releases since the last call whose form, scalar or array, differs from that of the allocation.
long mismatchedReleases();

}  // namespace quorva::test
