// Copies blocks of 32-bit numbers between memory and the wire, with AVX2 where the processor has it.

#include <quorvaruntime/plain.h>

#if defined(__x86_64__) && __has_include(<sys/platform/x86.h>)
#include <immintrin.h>
#define _Bool bool  // the header uses it; not every C++ compiler knows it
#include <sys/platform/x86.h>
#undef _Bool
#define QUORVA_HAS_AVX2
#endif

namespace quorva {

namespace {

#ifdef QUORVA_HAS_AVX2
// Swaps eight units at a time; `count` is at least eight. Where it is not a multiple, the last step covers the last
// eight units, some of them for the second time.
[[gnu::target("avx2")]] void swapEights(unsigned char* to, const unsigned char* from, std::size_t count)
{
    const __m256i turned = _mm256_set_epi8(12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3,  //
                                           12, 13, 14, 15, 8, 9, 10, 11, 4, 5, 6, 7, 0, 1, 2, 3);
    for (std::size_t i = 0; i < count; i += 8) {
        const std::size_t at = 4 * (i + 8 <= count ? i : count - 8);
        const __m256i units = _mm256_loadu_si256(reinterpret_cast<const __m256i*>(from + at));
        _mm256_storeu_si256(reinterpret_cast<__m256i*>(to + at), _mm256_shuffle_epi8(units, turned));
    }
}
#endif

// Swaps two units at a time: eight bytes take as long as four.
void swapPairs(unsigned char* to, const unsigned char* from, std::size_t count)
{
    std::size_t i = 0;
    for (; i + 2 <= count; i += 2) {
        std::uint64_t pair;
        std::memcpy(&pair, from + 4 * i, 8);
        pair = std::rotl(__builtin_bswap64(pair), 32);
        std::memcpy(to + 4 * i, &pair, 8);
    }
    if (i == count) return;
    std::uint32_t last;
    std::memcpy(&last, from + 4 * i, 4);
    putUnit(to + 4 * i, last);
}

void swapUnits(unsigned char* to, const unsigned char* from, std::size_t count)
{
    if constexpr (std::endian::native != std::endian::little) {
        if (count > 0) std::memcpy(to, from, 4 * count);
        return;
    }
#ifdef QUORVA_HAS_AVX2
    constexpr std::size_t fewest = 16;  // below, the check of the processor costs more than AVX2 saves
    if (count >= fewest && CPU_FEATURE_ACTIVE(AVX2)) return swapEights(to, from, count);
#endif
    swapPairs(to, from, count);
}

}  // namespace

void putUnits(unsigned char* at, const void* values, std::size_t count)
{
    swapUnits(at, static_cast<const unsigned char*>(values), count);
}

void getUnits(const unsigned char* at, void* values, std::size_t count)
{
    swapUnits(static_cast<unsigned char*>(values), at, count);
}

}  // namespace quorva
