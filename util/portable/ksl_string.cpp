#include "util/portable/ksl_string.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "util/internal/ascii.h"
#include "util/internal/byte_set.h"

namespace {

void report(const char* message) {
    std::printf("%s: %d\n", message, 3);
}

int fail(const char* message) {
    report(message);
    return -1;
}

template <char map(char)>
void map_in_place(char* s) {
    for (; *s; ++s)
        *s = map(*s);
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

// Zeroed; null when memory runs out or the size described to callers exceeds an int.
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
    const char* end = begin + std::strlen(begin);
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
    const std::size_t size = std::strlen(s) + 1;
    auto* copy = static_cast<char*>(std::malloc(size));
    if (copy) std::memcpy(copy, s, size);
    return copy;
}

int ksl_strcasecmp(const char* s1, const char* s2) {
    // Warnings only, on purpose: see the header.
    if (!s1) report("NULL s1 passed to ksl_strcasecmp");
    if (!s2) report("NULL s2 passed to ksl_strcasecmp");
    const auto length1 = static_cast<std::uint32_t>(std::strlen(s1));
    const auto length2 = static_cast<std::uint32_t>(std::strlen(s2));
    const std::uint32_t common = std::min(length1, length2);
    for (std::uint32_t i = 0; i < common; ++i) {
        if (const int difference = folded_difference(s1[i], s2[i])) return difference;
    }
    return static_cast<int>(length1 - length2);
}

char* ksl_str2upper(char* s) {
    if (s) map_in_place<util::to_upper>(s);
    return s;
}

char* ksl_str2lower(char* s) {
    if (s) map_in_place<util::to_lower>(s);
    return s;
}

char* ksl_char2upper(char* s, int pos) {
    if (!s || pos >= static_cast<std::int64_t>(std::strlen(s))) return nullptr;
    s[pos] = util::to_upper(s[pos]);
    return s;
}

int ksl_unicode2CodedChar(const void* pwch, int len, char** out) {
    if (!pwch) return fail("NULL pwch passed to ksl_unicode2CodedChar");
    if (len <= 0) return fail("Invalid length for ksl_unicode2CodedChar");
    if (!out) return -1;
    char* const buffer = allocate(std::int64_t{len} * 16 + 24);
    if (!buffer) return fail("Error allocating memory for ksl_unicode2CodedChar");

    const auto* bytes = static_cast<const char*>(pwch);
    char* to = buffer;
    for (const char c : std::string_view(bytes, static_cast<std::size_t>(len) + 2)) {
        if (c == 1 || c == 2) *to++ = 2;
        *to++ = c == 0 ? char{1} : c;
    }
    *out = buffer;
    return 0;
}

int ksl_codedChar2Unicode(const void* coded, int len, char** out) {
    if (!coded) return fail("NULL pwch passed to ksl_codedChar2Unicode");
    if (len <= 0) return fail("Invalid length for ksl_codedChar2Unicode");
    if (!out) return -1;
    // Decoding never makes text longer; a wide NUL behind it fits as well.
    const auto* from = static_cast<const char*>(coded);
    char* const buffer = allocate(std::int64_t{len} * 8, std::strlen(from) + 2);
    if (!buffer) return fail("Error allocating memory for ksl_codedChar2Unicode");

    for (char* to = buffer; *from; ++from) {
        char c = *from;
        if (c == 1) {
            c = 0;
        } else if (c == 2) {
            c = *++from;
            if (c != 1 && c != 2) {
                std::free(buffer);
                return fail("Invalid format for ksl_codedChar2Unicode");
            }
        }
        *to++ = c;
    }
    *out = buffer;
    return 0;
}

int ksl_match_token_str(const char* token_str, const char* token, const char* delimits) {
    // Warnings only, on purpose: see the header. The list is measured, and a null one faults,
    // before the others are looked at.
    if (!token_str) report("NULL token_str passed to ksl_match_token_str");
    const char* const end = token_str + std::strlen(token_str);
    if (!token) report("NULL token passed to ksl_match_token_str_aux");
    if (!delimits) report("NULL delimits passed to ksl_match_token_str_aux");

    const util::ByteSet separators(delimits);
    const auto is_separator = [&](char c) { return separators.has(c); };
    for (const char* word = token_str;;) {
        word = std::find_if_not(word, end, is_separator);
        if (word == end) return 0;
        const char* const word_end = std::find_if(word, end, is_separator);
        // Never more of the token than the word is long, so that all words together cost one pass.
        const auto length = static_cast<std::size_t>(word_end - word);
        if (std::strncmp(word, token, length) == 0 && token[length] == '\0') return 1;
        word = word_end;
    }
}
