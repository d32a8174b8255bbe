// Moves whole blocks: units of 32-bit numbers, whose bytes are turned, and bytes as they are.

#include <quorvapixdr/walk.h>

#include <cstring>

#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
#include <immintrin.h>
#define _Bool bool  // the header's word, which not every compiler of C++ knows
#include <sys/platform/x86.h>
#undef _Bool
#define QUORVA_AVX2
#endif

#ifdef QUORVA_DIRECT

namespace quorva::walk {

namespace {

#ifdef QUORVA_AVX2
// Eight units at a time, the last eight of them again where they are not a multiple. At least eight.
[[gnu::target("avx2")]] void swapEights(unsigned char* to, const unsigned char* from, std::size_t count)
{
    const __m256i turned = _mm256_set_epi8(12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3,  //
                                           12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3);
    const auto eight = [=](std::size_t at) __attribute__((target("avx2"), always_inline)) {
        __m256i units;
        std::memcpy(&units, from + 4 * at, sizeof units);
        units = _mm256_shuffle_epi8(units, turned);
        std::memcpy(to + 4 * at, &units, sizeof units);
    };
    std::size_t at = 0;
    for (; at + 8 <= count; at += 8) eight(at);
    if (at < count) eight(count - 8);
}
#endif

// Two at a time: one swap of eight bytes and a turn by half make two of four.
void swapPairs(unsigned char* to, const unsigned char* from, std::size_t count)
{
    std::size_t at = 0;
    for (; at + 4 <= count; at += 4) {
        std::uint64_t a, b;
        std::memcpy(&a, from + 4 * at, 8);
        std::memcpy(&b, from + 4 * at + 8, 8);
        a = std::rotl(__builtin_bswap64(a), 32);
        b = std::rotl(__builtin_bswap64(b), 32);
        std::memcpy(to + 4 * at, &a, 8);
        std::memcpy(to + 4 * at + 8, &b, 8);
    }
    for (; at < count; ++at) {
        std::uint32_t unit;
        std::memcpy(&unit, from + 4 * at, 4);
        putUnit(to + 4 * at, unit);
    }
}

}  // namespace

void swapUnits(unsigned char* to, const unsigned char* from, std::size_t count)
{
    if constexpr (std::endian::native != std::endian::little) {
        if (count > 0) std::memcpy(to, from, 4 * count);
        return;
    }
#ifdef QUORVA_AVX2
    if (count >= 16 && CPU_FEATURE_ACTIVE(AVX2)) return swapEights(to, from, count);
#endif
    swapPairs(to, from, count);
}

void copyMany(void* to, const void* from, std::size_t size)
{
    std::memcpy(to, from, size);
}

}  // namespace quorva::walk

#endif
