// The few loops over bytes that are worth writing for the processor: which form of
// them the library is built with. Each header of this folder holds one kind of loop twice, in
// plain C++ (namespace scalar) and with SSE2 (namespace sse2), which every x86-64 processor has.
// The two give the same results for all arguments; callers name neither and write
// kernels::find_byte.
#ifndef UTIL_INTERNAL_KERNELS_KERNELS_H
#define UTIL_INTERNAL_KERNELS_KERNELS_H

#include <cstddef>
#include <cstdint>

// UTIL_SCALAR_KERNELS is the one switch: it leaves out the SSE2 kernels. With it, too, the
// library needs GCC or Clang, whose built-in functions it calls, and a little-endian processor.
#if !defined(UTIL_SCALAR_KERNELS) && defined(__x86_64__)
#define UTIL_SSE2_KERNELS
#include <emmintrin.h>
#endif

namespace util {

constexpr std::size_t chunk_size = 64;  // as many bytes as a number has bits

namespace scalar {}
#ifdef UTIL_SSE2_KERNELS
namespace sse2 {}
namespace kernels = sse2;
#else
namespace kernels = scalar;
#endif

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

using Block = __m128i;  // 16 bytes
constexpr std::size_t block_size = sizeof(Block);
static_assert(chunk_size == 4 * block_size);

inline Block load(const void* from) {
    return _mm_loadu_si128(static_cast<const Block*>(from));
}
inline void store(void* to, Block block) {
    _mm_storeu_si128(static_cast<Block*>(to), block);
}
inline Block all(char c) {
    return _mm_set1_epi8(c);
}
// Bit i is set when byte i of a comparison's result is.
inline unsigned block_bits(Block compared) {
    return static_cast<unsigned>(_mm_movemask_epi8(compared));
}
inline unsigned equal_bits(Block a, Block b) {
    return block_bits(_mm_cmpeq_epi8(a, b));
}
// As block_bits, for the four blocks that compare makes of as many addresses. Mostly none is set.
template <typename Compare>
[[gnu::always_inline]] inline std::uint64_t chunk_bits(const char* from, Compare compare) {
    const Block b0 = compare(from);
    const Block b1 = compare(from + block_size);
    const Block b2 = compare(from + 2 * block_size);
    const Block b3 = compare(from + 3 * block_size);
    if (block_bits(_mm_or_si128(_mm_or_si128(b0, b1), _mm_or_si128(b2, b3))) == 0) return 0;
    return std::uint64_t{block_bits(b0)} | std::uint64_t{block_bits(b1)} << block_size |
           std::uint64_t{block_bits(b2)} << 2 * block_size |
           std::uint64_t{block_bits(b3)} << 3 * block_size;
}

}  // namespace sse2
#endif

// The place of the lowest bit of a number that is not 0.
inline unsigned lowest_bit(std::uint64_t bits) {
    return static_cast<unsigned>(__builtin_ctzll(bits));
}

// How many bits are set; by sums of neighbours, since the compiler's own would be a call.
inline unsigned bit_count(std::uint64_t bits) {
    bits -= bits >> 1 & 0x5555555555555555;
    bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
    bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0F;
    return static_cast<unsigned>(bits * 0x0101010101010101 >> 56);
}

}  // namespace util

#endif
