// Converts runs of bytes to and from the code of ksl_unicode2CodedChar: 0 is written as 1, and 1
// and 2 as two bytes. All other bytes are written as they are.
#ifndef UTIL_INTERNAL_KERNELS_CODED_BYTES_H
#define UTIL_INTERNAL_KERNELS_CODED_BYTES_H

#include "util/internal/kernels/kernels.h"

namespace util {
namespace scalar {

// Encodes up to the first 1 or 2. Returns the number of bytes written to `to`.
inline std::size_t encode_run(const char* from, std::size_t size, char* to) {
    std::size_t i = 0;
    for (; i < size && from[i] != 1 && from[i] != 2; ++i)
        to[i] = from[i] == 0 ? char{1} : from[i];
    return i;
}
// Decodes up to the first 2. `from` contains no 0. Returns the number of bytes written to `to`.
inline std::size_t decode_run(const char* from, std::size_t size, char* to) {
    std::size_t i = 0;
    for (; i < size && from[i] != 2; ++i)
        to[i] = from[i] == 1 ? char{0} : from[i];
    return i;
}

}  // namespace scalar

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

inline std::size_t encode_run(const char* from, std::size_t size, char* to) {
    std::size_t i = 0;
    for (; i + block_size <= size; i += block_size) {
        const Block bytes = load(from + i);
        const Block one = _mm_cmpeq_epi8(bytes, all(1));
        const Block two = _mm_cmpeq_epi8(bytes, all(2));
        if (block_bits(_mm_or_si128(one, two)) != 0) break;
        store(to + i, _mm_max_epu8(bytes, all(1)));
    }
    return i + scalar::encode_run(from + i, size - i, to + i);
}

inline std::size_t decode_run(const char* from, std::size_t size, char* to) {
    std::size_t i = 0;
    for (; i + block_size <= size; i += block_size) {
        const Block bytes = load(from + i);
        if (block_bits(_mm_cmpeq_epi8(bytes, all(2))) != 0) break;
        store(to + i, _mm_andnot_si128(_mm_cmpeq_epi8(bytes, all(1)), bytes));
    }
    return i + scalar::decode_run(from + i, size - i, to + i);
}

}  // namespace sse2
#endif

}  // namespace util

#endif
