// Selects the scalar or the SSE2 byte loops. Each header of this folder contains one loop twice: in
// C++ (namespace scalar) and with SSE2 (namespace sse2), which every x86-64 processor has. Both
// return the same results for all arguments. Callers name neither: they call kernels::find_byte.
#ifndef UTIL_INTERNAL_KERNELS_KERNELS_H
#define UTIL_INTERNAL_KERNELS_KERNELS_H

#include <cstddef>
#include <cstdint>

// UTIL_SCALAR_KERNELS selects the scalar loops. Even then the library needs GCC or Clang, whose
// built-in functions it calls, and a little-endian processor.
#if !defined(UTIL_SCALAR_KERNELS) && defined(__x86_64__)
#define UTIL_SSE2_KERNELS
#include <emmintrin.h>
#endif

namespace util {

constexpr std::size_t chunk_size = 64;  // bytes, one for each bit of a std::uint64_t

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
// Bit i is set if byte i of the result of a comparison is set.
inline unsigned block_bits(Block compared) {
    return static_cast<unsigned>(_mm_movemask_epi8(compared));
}
inline unsigned equal_bits(Block a, Block b) {
    return block_bits(_mm_cmpeq_epi8(a, b));
}
// block_bits of a whole chunk: calls compare(address) for each of its four blocks. The common case,
// no bit set, is tested once.
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
namespace kernels = sse2;
#else
namespace scalar {}
namespace kernels = scalar;
#endif

// Returns the position of the lowest set bit. `bits` is not 0.
inline unsigned lowest_bit(std::uint64_t bits) {
    return static_cast<unsigned>(__builtin_ctzll(bits));
}

// Returns the number of set bits. Adds up neighbours, since the compiler's built-in is a function
// call on processors without POPCNT.
inline unsigned bit_count(std::uint64_t bits) {
    bits -= bits >> 1 & 0x5555555555555555;
    bits = (bits & 0x3333333333333333) + (bits >> 2 & 0x3333333333333333);
    bits = (bits + (bits >> 4)) & 0x0F0F0F0F0F0F0F0F;
    return static_cast<unsigned>(bits * 0x0101010101010101 >> 56);
}

}  // namespace util

#endif
