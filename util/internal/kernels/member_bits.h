// Not installed. Finding any byte of a set, as bits.
#ifndef UTIL_INTERNAL_KERNELS_MEMBER_BITS_H
#define UTIL_INTERNAL_KERNELS_MEMBER_BITS_H

#include <algorithm>
#include <cstring>
#include <string_view>

#include "util/internal/byte_set.h"
#include "util/internal/kernels/kernels.h"

namespace util {

namespace plain {

class Members {
  public:
    explicit Members(std::string_view members) : m_set(members) {}

    // Bit i is set when text[i] is a member; the others are not. One byte at least and line_size
    // at most.
    std::uint64_t bits(const char* text, std::size_t size) const {
        std::uint64_t bits = 0;
        for (std::size_t i = 0; i < size; ++i)
            bits |= std::uint64_t{m_set.has(text[i])} << i;
        return bits;
    }

    // Calls take(bits) for each line of 64 bytes of the text, of which the last may have fewer.
    template <typename Take>
    void for_each_line(std::string_view text, Take take) const {
        for (std::size_t begin = 0; begin < text.size(); begin += line_size) {
            const std::size_t size = std::min(line_size, text.size() - begin);
            take(bits(text.data() + begin, size));
        }
    }

  private:
    ByteSet m_set;
};

}  // namespace plain

#ifdef UTIL_SSE2_KERNELS
namespace sse2 {

// All bytes are compared with each member, or with two members at once: where two differ in a
// single bit, a byte with that bit set equals both of them with it set just when it is one of them.
// So this pays for a few members, and the table of the plain form serves for many. Setting a bit of
// the result twice changes nothing: unused comparisons repeat the first one, and the last block may
// overlap the one before it.
class Members {
  public:
    explicit Members(std::string_view members) : m_plain("") {
        for (const char c : members)
            add(c);
        if (m_count > few) m_plain = plain::Members(members);
    }

    std::uint64_t bits(const char* text, std::size_t size) const {
        if (m_count == 0 || m_count > few) return m_plain.bits(text, size);
        if (m_count == 1) return bits(text, size, Comparison<1>(m_tests, m_count));
        if (m_count <= 3) return bits(text, size, Comparison<3>(m_tests, m_count));
        return bits(text, size, Comparison<few>(m_tests, m_count));
    }

    template <typename Take>
    void for_each_line(std::string_view text, Take take) const {
        if (m_count == 0 || m_count > few) return m_plain.for_each_line(text, take);
        if (m_count == 1) return for_each_line(text, take, Comparison<1>(m_tests, m_count));
        if (m_count <= 3) return for_each_line(text, take, Comparison<3>(m_tests, m_count));
        for_each_line(text, take, Comparison<few>(m_tests, m_count));
    }

  private:
    static constexpr std::size_t few = 5;

    struct Test {
        char set;    // the bit that is set before the comparison, or none
        char value;  // what the byte is then
    };

    void add(char c) {
        Test* const end = m_tests + std::min(m_count, few);
        const auto has = [c](const Test& test) { return (c | test.set) == test.value; };
        if (std::any_of(m_tests, end, has)) return;
        const auto is_pair = [c](const Test& test) {
            const auto difference = static_cast<unsigned char>(test.value ^ c);
            return test.set == 0 && (difference & (difference - 1)) == 0;
        };
        Test* const other = std::find_if(m_tests, end, is_pair);
        if (other != end) {
            *other = {static_cast<char>(other->value ^ c), static_cast<char>(other->value | c)};
        } else if (m_count++ < few) {
            *other = {0, c};
        }
    }

    // Up to n tests, in registers.
    template <std::size_t n>
    class Comparison {
      public:
        Comparison(const Test* tests, std::size_t count) {
            for (std::size_t i = 0; i < n; ++i) {
                const Test& test = tests[i < count ? i : 0];
                m_set[i] = all(test.set);
                m_values[i] = all(test.value);
            }
        }
        Block operator()(const char* from) const {
            const Block block = load(from);
            Block found = equal(block, 0);
            for (std::size_t i = 1; i < n; ++i)
                found = _mm_or_si128(found, equal(block, i));
            return found;
        }

      private:
        Block equal(Block block, std::size_t i) const {
            return _mm_cmpeq_epi8(_mm_or_si128(block, m_set[i]), m_values[i]);
        }

        Block m_set[n], m_values[n];
    };

    template <typename Compare>
    static std::uint64_t bits(const char* text, std::size_t size, const Compare& compare) {
        if (size == line_size) return line_bits(text, compare);
        if (size < block_size) {
            char block[block_size] = {};
            std::memcpy(block, text, size);
            return block_bits(compare(block)) & ((1u << size) - 1);
        }
        const std::size_t last = size - block_size;
        std::uint64_t bits = std::uint64_t{block_bits(compare(text + last))} << last;
        for (std::size_t i = 0; i < last; i += block_size)
            bits |= std::uint64_t{block_bits(compare(text + i))} << i;
        return bits;
    }

    template <typename Take, typename Compare>
    static void for_each_line(std::string_view text, Take take, const Compare& compare) {
        std::size_t begin = 0;
        for (; text.size() - begin >= line_size; begin += line_size)
            take(line_bits(text.data() + begin, compare));
        const std::size_t rest = text.size() - begin;
        if (rest > 0) take(bits(text.data() + begin, rest, compare));
    }

    std::size_t m_count = 0;  // of tests, and of those that there would be beyond few
    Test m_tests[few];
    plain::Members m_plain;
};

}  // namespace sse2
#endif

}  // namespace util

#endif
