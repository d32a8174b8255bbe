// The counting allocation operators.

#include "memory.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>
#include <utility>

#include <valgrind/memcheck.h>

namespace {

enum class Form : std::uint32_t { scalar = 0x5CA1A12Eu, array = 0xA22A7123u };

// Precedes every block.
struct alignas(std::max_align_t) Header {
    Form form;
    bool watched;
};

// Every thread counts for itself.
thread_local bool watching = false;
thread_local long seen = 0;
thread_local quorva::test::Scarcity scarce;
thread_local std::size_t largest = 0;
thread_local std::size_t total = 0;
thread_local void* last = nullptr;
thread_local long live = 0;
thread_local long mismatched = 0;

void* allocate(std::size_t size, Form form) noexcept
{
    if (watching) {
        if (size > largest) largest = size;
        total = size > SIZE_MAX - total ? SIZE_MAX : total + size;
        const long number = seen++;
        if ((number >= scarce.from && number < scarce.until) || size > scarce.largest) return nullptr;
    }
    if (size > SIZE_MAX - sizeof(Header)) return nullptr;
    auto* const header = static_cast<Header*>(std::malloc(sizeof(Header) + size));
    if (!header) return nullptr;
    *header = {form, watching};

    constexpr std::size_t filled = 65536;
    auto* const block = reinterpret_cast<unsigned char*>(header + 1);
    std::memset(block, 0xA5, size < filled ? size : filled);
    if (size > filled) block[size - 1] = 0xA5;
    VALGRIND_MAKE_MEM_UNDEFINED(block, size);  // the filling is not contents
    if (watching) {
        ++live;
        last = block;
    }
    return block;
}

void* allocateOrThrow(std::size_t size, Form form)
{
    void* const block = allocate(size, form);
    if (!block) throw std::bad_alloc();
    return block;
}

void* allocateOrNull(std::size_t size, Form form) noexcept
{
    if (!watching || !scarce.byException) return allocate(size, form);
    try {
        return form == Form::scalar ? ::operator new(size) : ::operator new[](size);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

void release(void* block, Form form) noexcept
{
    if (!block) return;
    Header* const header = static_cast<Header*>(block) - 1;
    if (header->form != Form::scalar && header->form != Form::array) {
        std::fputs("a block was released twice, or was not allocated by these operators\n", stderr);
        std::abort();
    }
    mismatched += header->form != form;
    live -= header->watched;
    if (block == last) last = nullptr;
    header->form = {};
    std::free(header);
}

}  // namespace

namespace quorva::test {

Watch::Watch(const Scarcity& scarcity)
{
    seen = 0;
    largest = 0;
    total = 0;
    last = nullptr;
    scarce = scarcity;
    watching = true;
}

Watch::~Watch()
{
    watching = false;
}

long liveBlocks()
{
    return live;
}
long allocations()
{
    return seen;
}
std::size_t largestAllocation()
{
    return largest;
}
std::size_t allocatedBytes()
{
    return total;
}
void* lastBlock()
{
    return last;
}
long mismatchedReleases()
{
    return std::exchange(mismatched, 0);
}

}  // namespace quorva::test

// The operators of the thread sanitizer replace these: under it nothing is counted.
#define OPERATOR
#ifdef __has_feature
#if __has_feature(thread_sanitizer)
#undef OPERATOR
#define OPERATOR __attribute__((weak))
#endif
#endif

OPERATOR void* operator new(std::size_t size)
{
    return allocateOrThrow(size, Form::scalar);
}
OPERATOR void* operator new[](std::size_t size)
{
    return allocateOrThrow(size, Form::array);
}
OPERATOR void* operator new(std::size_t size, const std::nothrow_t&) noexcept
{
    return allocateOrNull(size, Form::scalar);
}
OPERATOR void* operator new[](std::size_t size, const std::nothrow_t&) noexcept
{
    return allocateOrNull(size, Form::array);
}
OPERATOR void operator delete(void* block) noexcept
{
    release(block, Form::scalar);
}
OPERATOR void operator delete[](void* block) noexcept
{
    release(block, Form::array);
}
OPERATOR void operator delete(void* block, std::size_t) noexcept
{
    release(block, Form::scalar);
}
OPERATOR void operator delete[](void* block, std::size_t) noexcept
{
    release(block, Form::array);
}
OPERATOR void operator delete(void* block, const std::nothrow_t&) noexcept
{
    release(block, Form::scalar);
}
OPERATOR void operator delete[](void* block, const std::nothrow_t&) noexcept
{
    release(block, Form::array);
}

// Under the address sanitizer too, the allocation of a string of 4 GiB fails with null. DeallocateString releases by
// the scalar form what a decode allocates by the array form, so that check is off.
extern "C" __attribute__((visibility("default"), weak)) const char* __asan_default_options();
const char* __asan_default_options()
{
    return "allocator_may_return_null=1:alloc_dealloc_mismatch=0:max_allocation_size_mb=1024";
}
