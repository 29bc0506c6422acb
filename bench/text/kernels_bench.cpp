// Each kernel against its scalar twin at sizes that users have. A kernel that is nowhere 1.5 times
// as fast is removed; util/internal/kernels/README.md keeps the table.
#include <algorithm>
#include <string>
#include <string_view>

#include "bench/harness.h"
#include "util/internal/kernels/change_case.h"
#include "util/internal/kernels/coded_bytes.h"
#include "util/internal/kernels/compare_folded.h"
#include "util/internal/kernels/find_byte.h"
#include "util/internal/kernels/hash_words.h"
#include "util/internal/kernels/hex_digits.h"
#include "util/internal/kernels/member_bits.h"
#include "util/internal/kernels/pair_bits.h"

#ifdef UTIL_SSE2_KERNELS

using bench::keep;
using bench::Operation;

namespace {

using namespace util;

template <typename Vector, typename Scalar>
void compare(const char* kernel, std::size_t size, Vector vector, Scalar scalar) {
    run(Operation(kernel + (", " + std::to_string(size) + " bytes"))
            .library([=] { keep(vector()); })
            .peer("scalar", [=] { keep(scalar()); }));
}

// Texts without what is searched: all of a text is looked at.
void kernels_at(std::size_t size) {
    const std::string text(size, 'x'), same(size, 'X');
    std::string space(size + 64, '=');
    const char* const from = text.c_str();
    const char* const other = same.c_str();
    char* const to = space.data();
    const auto row = [size](const char* kernel, auto vector, auto scalar) {
        compare(kernel, size, vector, scalar);
    };
    row(
        "find_byte", [=] { return sse2::find_byte(from, size, '!'); },
        [=] { return scalar::find_byte(from, size, '!'); });
    row(
        "find_byte_or_nul", [=] { return sse2::find_byte_or_nul(from, '!'); },
        [=] { return scalar::find_byte_or_nul(from, '!'); });
    row(
        "copy_text", [=] { return sse2::copy_text(from, to, size + 64); },
        [=] { return scalar::copy_text(from, to, size + 64); });
    row(
        "change_case", [=] { return sse2::change_case(to, size, 'a', to), *to; },
        [=] { return scalar::change_case(to, size, 'a', to), *to; });
    row(
        "equal_folded", [=] { return sse2::equal_folded(from, other, size); },
        [=] { return scalar::equal_folded(from, other, size); });
    row(
        "encode_run", [=] { return sse2::encode_run(from, size, to); },
        [=] { return scalar::encode_run(from, size, to); });
    row(
        "decode_run", [=] { return sse2::decode_run(from, size, to); },
        [=] { return scalar::decode_run(from, size, to); });
    row(
        "hash_words", [=] { return sse2::hash_words(1, from, size / 4); },
        [=] { return scalar::hash_words(1, from, size / 4); });
    const auto any_bits = [=](const auto& set) {
        std::uint64_t all = 0;
        set.for_each_chunk(std::string_view(from, size), [&](std::uint64_t bits) { all |= bits; });
        return all;
    };
    const auto members_row = [&](const char* kernel, const char* members) {
        row(
            kernel, [=] { return any_bits(sse2::Members(members)); },
            [=] { return any_bits(scalar::Members(members)); });
    };
    members_row("Members of 5", "&<>\"'");
    members_row("Members of 12", " \t\r\n,;:/|._-");
    const auto pair_bits = [=](const auto& pair) {
        std::uint64_t all = 0;
        for (std::size_t at = 0; at < size - 4; at += chunk_size)
            all |= pair.bits(from + at, std::min(chunk_size, size - 4 - at));
        return all;
    };
    row(
        "BytePair", [=] { return pair_bits(sse2::BytePair('s', 'e', 4)); },
        [=] { return pair_bits(scalar::BytePair('s', 'e', 4)); });
}

const bench::Section section("5 Kernels", [] {
    for (const std::size_t size : {8, 24, 60, 260, 4096})
        kernels_at(size);
    char digits[16];
    std::uint64_t number = 0x123456789ABCDEF0;
    compare(
        "hex_digits", 8, [&] { return keep(number), sse2::hex_digits(number, digits), *digits; },
        [&] { return keep(number), scalar::hex_digits(number, digits), *digits; });
});

}  // namespace

#endif
