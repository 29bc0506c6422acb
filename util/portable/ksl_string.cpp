#include "util/portable/ksl_string.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>

#include "util/internal/ascii.h"
#include "util/internal/byte_set.h"
#include "util/internal/kernels/change_case.h"
#include "util/internal/kernels/coded_bytes.h"
#include "util/internal/kernels/compare_folded.h"
#include "util/internal/kernels/find_byte.h"
#include "util/internal/kernels/pair_bits.h"
#include "util/internal/print_line.h"

namespace {

void report(const char* message) {
    util::print_line(message, ": 3");
}

int fail(const char* message) {
    report(message);
    return -1;
}

constexpr bool is_upper(int c) {
    return c >= 'A' && c <= 'Z';
}
constexpr bool is_lower(int c) {
    return c >= 'a' && c <= 'z';
}

int folded_difference(int c1, int c2) {
    if (is_upper(c1) && is_lower(c2)) return c1 - c2 + 32;
    if (is_lower(c1) && is_upper(c2)) return c1 - c2 - 32;
    return c1 - c2;
}

// Returns a zeroed buffer. Returns null if out of memory, or if the size that the header states
// exceeds an int.
char* allocate(std::int64_t described_size, std::size_t needed = 0) {
    if (described_size > INT_MAX) return nullptr;
    const std::size_t size = std::max(static_cast<std::size_t>(described_size), needed);
    return static_cast<char*>(std::calloc(size, 1));
}

}  // namespace

int ksl_strupper(char* s) {
    return ksl_str2upper(s) ? 0 : -1;
}

int ksl_strcpy_trim(char* s) {
    if (!s) return -1;
    const char* begin = s;
    while (util::is_space(*begin))
        ++begin;
    const char* end = begin + util::text_length(begin);
    while (end > begin && util::is_space(end[-1]))
        --end;
    const auto length = static_cast<std::size_t>(end - begin);
    std::memmove(s, begin, length);
    s[length] = '\0';
    return 0;
}

int ksl_strcpy_clean(char* s) {
    if (ksl_strcpy_trim(s) != 0) return -1;
    return ksl_strupper(s);
}

char* ksl_strdup(const char* s) {
    if (!s) return nullptr;
    const std::size_t size = util::text_length(s) + 1;
    auto* copy = static_cast<char*>(std::malloc(size));
    if (copy) std::memcpy(copy, s, size);
    return copy;
}

int ksl_strcasecmp(const char* s1, const char* s2) {
    // By design, these are only warnings: see the header.
    if (!s1) report("NULL s1 passed to ksl_strcasecmp");
    if (!s2) report("NULL s2 passed to ksl_strcasecmp");
    const auto length1 = static_cast<std::uint32_t>(util::text_length(s1));
    const auto length2 = static_cast<std::uint32_t>(util::text_length(s2));
    const std::uint32_t common = std::min(length1, length2);
    const std::size_t equal = util::kernels::equal_folded(s1, s2, common);
    if (equal < common) return folded_difference(s1[equal], s2[equal]);
    return static_cast<int>(length1 - length2);
}

char* ksl_str2upper(char* s) {
    if (s) util::change_case(s, util::text_length(s), 'a');
    return s;
}

char* ksl_str2lower(char* s) {
    if (s) util::change_case(s, util::text_length(s), 'A');
    return s;
}

char* ksl_char2upper(char* s, int pos) {
    if (!s || pos >= static_cast<std::int64_t>(util::text_length(s))) return nullptr;
    s[pos] = util::to_upper(s[pos]);
    return s;
}

int ksl_unicode2CodedChar(const void* pwch, int len, char** out) {
    if (!pwch) return fail("NULL pwch passed to ksl_unicode2CodedChar");
    if (len <= 0) return fail("Invalid length for ksl_unicode2CodedChar");
    if (!out) return -1;
    char* const buffer = allocate(std::int64_t{len} * 16 + 24);
    if (!buffer) return fail("Error allocating memory for ksl_unicode2CodedChar");

    const auto* from = static_cast<const char*>(pwch);
    const char* const end = from + len + 2;
    for (char* to = buffer;;) {
        const auto left = static_cast<std::size_t>(end - from);
        const std::size_t run = util::kernels::encode_run(from, left, to);
        if (run == left) break;
        from += run;
        to += run;
        *to++ = 2;
        *to++ = *from++;
    }
    *out = buffer;
    return 0;
}

int ksl_codedChar2Unicode(const void* coded, int len, char** out) {
    if (!coded) return fail("NULL pwch passed to ksl_codedChar2Unicode");
    if (len <= 0) return fail("Invalid length for ksl_codedChar2Unicode");
    if (!out) return -1;
    // Decoded text is never longer than coded text. A wide NUL after it fits too.
    const auto* from = static_cast<const char*>(coded);
    const char* const end = from + util::text_length(from);
    char* const buffer = allocate(std::int64_t{len} * 8, static_cast<std::size_t>(end - from) + 2);
    if (!buffer) return fail("Error allocating memory for ksl_codedChar2Unicode");

    for (char* to = buffer;;) {
        const auto left = static_cast<std::size_t>(end - from);
        const std::size_t run = util::kernels::decode_run(from, left, to);
        if (run == left) break;
        const char c = from[run + 1];  // the byte after the 2
        if (c != 1 && c != 2) {
            std::free(buffer);
            return fail("Invalid format for ksl_codedChar2Unicode");
        }
        from += run + 2;
        to += run;
        *to++ = c;
    }
    *out = buffer;
    return 0;
}

int ksl_match_token_str(const char* token_str, const char* token, const char* delimits) {
    // By design, these are only warnings: see the header. A null list is dereferenced before the
    // other two are checked.
    if (!token_str) report("NULL token_str passed to ksl_match_token_str");
    const std::size_t size = util::text_length(token_str);
    if (!token) report("NULL token passed to ksl_match_token_str_aux");
    if (!delimits) report("NULL delimits passed to ksl_match_token_str_aux");

    util::ByteSet separators(delimits);
    separators.add('\0');
    const auto is_separator = [&](char c) { return separators.has(c); };
    if (std::all_of(token_str, token_str + size, is_separator)) return 0;
    const std::size_t length = util::text_length(token);
    if (length == 0 || length > size || std::any_of(token, token + length, is_separator)) return 0;

    // Searches for the first and last byte of the token, then checks that separators surround them.
    // The token contains no separator, so a comparison never leaves the word. All words together
    // cost one pass.
    const util::kernels::BytePair ends(token[0], token[length - 1], length - 1);
    const std::size_t places = size - (length - 1);
    for (std::size_t chunk = 0; chunk < places; chunk += util::chunk_size) {
        const std::size_t count = std::min(util::chunk_size, places - chunk);
        std::uint64_t bits = ends.bits(token_str + chunk, count);
        for (; bits != 0; bits &= bits - 1) {
            const char* const at = token_str + chunk + util::lowest_bit(bits);
            const bool stands_alone =
                (at == token_str || is_separator(at[-1])) && is_separator(at[length]);
            if (stands_alone && std::memcmp(at, token, length) == 0) return 1;
        }
    }
    return 0;
}
