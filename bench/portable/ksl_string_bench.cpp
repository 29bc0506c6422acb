// The ksl_ string functions against the runtime's, over texts of 4 KB.
#include <cctype>
#include <cstdlib>
#include <cstring>
#include <string>

#include "bench/harness.h"
#include "util/portable/portable.h"

#ifndef _WIN32
#include <strings.h>
#endif

using bench::keep;
using bench::Operation;

namespace {

constexpr std::size_t size = 4096;

int runtime_compare(const char* a, const char* b) {
#ifdef _WIN32
    return _stricmp(a, b);
#else
    return strcasecmp(a, b);
#endif
}

// As the contract describes it: measured, then byte by byte.
int compare_as_described(const char* a, const char* b) {
    const std::size_t common = std::min(std::strlen(a), std::strlen(b));
    const auto is_upper = [](int c) { return c >= 'A' && c <= 'Z'; };
    const auto is_lower = [](int c) { return c >= 'a' && c <= 'z'; };
    for (std::size_t i = 0; i < common; ++i) {
        int difference = a[i] - b[i];
        if (is_upper(a[i]) && is_lower(b[i])) difference += 32;
        if (is_lower(a[i]) && is_upper(b[i])) difference -= 32;
        if (difference != 0) return difference;
    }
    return 0;
}

bool match_on_a_copy(const std::string& list, const char* token) {
    std::string copy = list;
    for (char* word = std::strtok(&copy[0], ", "); word; word = std::strtok(nullptr, ", ")) {
        if (std::strcmp(word, token) == 0) return true;
    }
    return false;
}

const bench::Section section("5 Strings of the portable layer", [] {
    std::string lower, upper, list, wide;
    for (std::size_t i = 0; i < size; ++i)
        lower += static_cast<char>(i % 7 == 0 ? ' ' : 'a' + i % 26);
    for (const char c : lower) {
        upper += static_cast<char>(std::toupper(c));
        wide += c;
        wide += '\0';
    }
    wide.resize(size);
    for (int i = 0; i < 100; ++i)
        list += "word" + std::to_string(i) + (i % 3 == 0 ? ", " : ",");

    Operation compare("ksl_strcasecmp, 4 KB");
    compare.peer("runtime", [&] { keep(runtime_compare(lower.c_str(), upper.c_str())); })
        .library([&] { keep(ksl_strcasecmp(lower.c_str(), upper.c_str())); })
        .described("as described",
                   [&] { keep(compare_as_described(lower.c_str(), upper.c_str())); });
    run(compare);
    std::string text = lower;
    run(Operation("ksl_strupper, 4 KB")
            .limit("copy", [&] { keep(std::memcpy(&text[0], lower.data(), size)); })
            .library([&] { keep(ksl_strupper(&text[0])); })
            .described("toupper each", [&] {
                for (char* p = &text[0]; *p; ++p)
                    *p = static_cast<char>(std::toupper(static_cast<unsigned char>(*p)));
                keep(text);
            }));
    wide += std::string(2, '\0');
    run(Operation("ksl_unicode2CodedChar, 4 KB of wide text")
            .limit("the zeroed block",
                   [&] {
                       void* block = std::calloc(16 * size + 24, 1);
                       keep(block);
                       std::free(block);
                   })
            .library([&] {
                char* coded = nullptr;
                ksl_unicode2CodedChar(wide.data(), size, &coded);
                keep(coded);
                std::free(coded);
            }));
    run(Operation("ksl_match_token_str, 100 words")
            .library([&] { keep(ksl_match_token_str(list.c_str(), "word99", ", ")); })
            .described("strtok on a copy", [&] { keep(match_on_a_copy(list, "word99")); }));
});

}  // namespace
