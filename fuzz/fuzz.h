// The fuzz targets. Each takes any bytes, runs one family of operations on them and checks a
// property of the results: a plain model, a way there and back, a bound.
#ifndef UTIL_FUZZ_FUZZ_H
#define UTIL_FUZZ_FUZZ_H

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>

namespace util_fuzz {

using Target = void(std::string_view input);

Target coded_characters;
Target dates_and_versions;
Target format;
Target kernels;
Target page_ends;
Target poll;  // on Windows only
Target text;
Target token_lists;
Target uint64_parsing;
Target xml_and_tags;
Target xr_file;  // Windows only

// The input that runs, for the report of a failure; set by callers that make inputs of their own.
struct RunningInput {
    unsigned seed = 0;
    int round = 0;
    std::string_view bytes;
};
inline RunningInput running_input;

// Ends the process, for the fuzzer to keep the input, when a property does not hold.
inline void require(bool holds, const char* property) {
    if (holds) return;
    std::fprintf(stderr, "does not hold: %s (seed %u, round %d, bytes", property,
                 running_input.seed, running_input.round);
    for (const char c : running_input.bytes) {
        std::fprintf(stderr, " %02X", static_cast<unsigned char>(c));
    }
    std::fprintf(stderr, ")\n");
    std::abort();
}

// Takes an input apart into parameters; an empty rest gives zeros and empty texts.
class Parameters {
  public:
    explicit Parameters(std::string_view input) : m_rest(input) {}

    bool empty() const { return m_rest.empty(); }

    unsigned char byte() {
        if (m_rest.empty()) return 0;
        const auto value = static_cast<unsigned char>(m_rest.front());
        m_rest.remove_prefix(1);
        return value;
    }
    std::uint64_t number() {
        std::uint64_t value = 0;
        for (int i = 0; i < 8; ++i) {
            value = value << 8 | byte();
        }
        return value;
    }
    // Up to 15 bytes; their number comes first.
    std::string short_text() {
        const std::size_t wanted = byte() % 16;
        const std::size_t size = std::min(wanted, m_rest.size());
        std::string value(m_rest.substr(0, size));
        m_rest.remove_prefix(size);
        return value;
    }
    std::string rest() { return std::string(m_rest); }

  private:
    std::string_view m_rest;
};

inline std::string up_to_nul(const std::string& bytes) {
    return bytes.c_str();
}

}  // namespace util_fuzz

#endif
