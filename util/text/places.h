// A bitmap of positions in a text.
#ifndef UTIL_TEXT_PLACES_H
#define UTIL_TEXT_PLACES_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include "util/internal/kernels/member_bits.h"

namespace util {

// One pass finds the positions; then count, reserve, copy. Costs size/8 bytes, on the stack for
// texts of up to 4 KiB.
class Places {
  public:
    // No positions yet, in a text of this size. Both constructors may raise std::bad_alloc.
    explicit Places(std::size_t text_size) : Places(text_size, unset) {
        std::fill_n(m_bits, m_chunks, 0);
    }
    // The positions of all bytes of a set.
    Places(std::string_view text, const kernels::Members& set) : Places(text.size(), unset) {
        std::uint64_t* next = m_bits;
        set.for_each_chunk(text, [&](std::uint64_t bits) {
            m_empty = m_empty && bits == 0;
            *next++ = bits;
        });
    }
    Places(const Places&) = delete;
    Places& operator=(const Places&) = delete;

    void add(std::size_t place) {
        m_empty = false;
        m_bits[place / chunk_size] |= std::uint64_t{1} << place % chunk_size;
    }

    bool empty() const { return m_empty; }
    std::size_t count() const {
        std::size_t count = 0;
        // Most chunks of a long text have none.
        for_each_chunk([&](std::uint64_t bits) { count += bits == 0 ? 0 : bit_count(bits); });
        return count;
    }

    // Calls take(bits) for each 64 bytes of the text. The lowest bit is that of the first byte. The
    // bits after the end are 0.
    template <typename Take>
    void for_each_chunk(Take take) const {
        for (std::size_t i = 0; i < m_chunks; ++i)
            take(m_bits[i]);
    }

    // Calls take(place) for each position, in ascending order.
    template <typename Take>
    void for_each(Take take) const {
        for (std::size_t i = 0; i < m_chunks; ++i) {
            for (std::uint64_t bits = m_bits[i]; bits != 0; bits &= bits - 1)
                take(i * chunk_size + lowest_bit(bits));
        }
    }

  private:
    static constexpr std::size_t near_chunks = 64;

    enum Unset { unset };  // the caller writes the bits

    Places(std::size_t text_size, Unset)
        : m_chunks((text_size + chunk_size - 1) / chunk_size),
          m_far(m_chunks > near_chunks ? new std::uint64_t[m_chunks] : nullptr),
          m_bits(m_far ? m_far.get() : m_near) {}

    const std::size_t m_chunks;
    bool m_empty = true;
    const std::unique_ptr<std::uint64_t[]> m_far;
    std::uint64_t* const m_bits;
    std::uint64_t m_near[near_chunks];
};

}  // namespace util

#endif
