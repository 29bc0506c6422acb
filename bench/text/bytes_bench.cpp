// What goes byte by byte: case, trimming, the hash.
#include <boost/algorithm/string/case_conv.hpp>
#include <boost/algorithm/string/trim.hpp>
#include <cctype>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

#ifndef _WIN32
#include <absl/strings/ascii.h>
#endif

#include "bench/harness.h"
#include "util/text/text.h"

using bench::keep;
using bench::Operation;

namespace {

// No power of two: of two blocks that lie so far apart the processor takes every load from one to
// depend on the stores to the other.
constexpr std::size_t megabyte = 1000000;

std::string mixed_case(std::size_t size) {
    std::string text;
    while (text.size() < size)
        text += "Server-07\\Share ";
    text.resize(size);
    return text;
}

void lower(std::size_t size) {
    const std::string text = mixed_case(size);
    const String subject(text);
    Operation operation("to_lower, " + std::to_string(size) + " bytes");
    operation.limit("copy", [&] { keep(std::string(text.data(), text.size())); })
        .library([&] { keep(subject.to_lower()); })
        .peer("boost::to_lower_copy", [&] { keep(boost::to_lower_copy(text)); })
        .described("tolower for each byte", [&] {
            std::string result(text);
            for (char& c : result)
                c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
            keep(result);
        });
#ifndef _WIN32
    operation.peer("absl::AsciiStrToLower", [&] { keep(absl::AsciiStrToLower(text)); });
#endif
    run(operation);
}

void trim(std::size_t padding) {
    const std::string blanks(padding, ' ');
    const std::string text = blanks + "\tC:\\Program Files\\Vendor\\bin" + blanks + "\r\n";
    const std::string kept = boost::trim_copy(text);
    const String subject(text);
    Operation operation("trim, " + std::to_string(2 * padding) + " bytes of padding");
    operation.limit("copy of what is kept", [&] { keep(std::string(kept.data(), kept.size())); })
        .library([&] { keep(subject.trim(" \t\r\n")); })
        .peer("boost::trim_copy_if",
              [&] { keep(boost::trim_copy_if(text, boost::is_any_of(" \t\r\n"))); })
        .described("strchr for each byte", [&] {
            std::size_t begin = 0, end = text.size();
            while (begin < end && std::strchr(" \t\r\n", text[begin]))
                ++begin;
            while (begin < end && std::strchr(" \t\r\n", text[end - 1]))
                --end;
            keep(text.substr(begin, end - begin));
        });
#ifndef _WIN32
    operation.peer("absl::StripAsciiWhitespace",
                   [&] { keep(std::string(absl::StripAsciiWhitespace(text))); });
#endif
    run(operation);
}

// Each group of four bytes in turn, as the hash is described; for texts of whole groups. Kept out
// of line, as the library's is.
[[gnu::noinline]] std::uint32_t hash_in_a_chain(std::string_view text) {
    auto h = static_cast<std::uint32_t>(text.size());
    for (std::size_t i = 0; i < text.size(); i += 4) {
        std::uint32_t word;
        std::memcpy(&word, text.data() + i, sizeof word);
        h = (h << 5 | h >> 27) ^ word;
    }
    return h;
}

// Every byte read once, in numbers that do not wait for each other.
[[gnu::noinline]] std::uint64_t read_every_byte(std::string_view text) {
    std::uint64_t folded[4] = {};
    for (std::size_t i = 0; i + sizeof folded <= text.size(); i += sizeof folded) {
        std::uint64_t words[4];
        std::memcpy(words, text.data() + i, sizeof words);
        for (int k = 0; k < 4; ++k)
            folded[k] ^= words[k];
    }
    return folded[0] ^ folded[1] ^ folded[2] ^ folded[3];
}

void hash(std::size_t size) {
    const std::string text = mixed_case(size);
    const String subject(text);
    Operation operation("hash, " + std::to_string(size) + " bytes");
    operation.limit("reading", [&] { keep(read_every_byte(text)); })
        .library([&] { keep(subject.hash()); })
        .peer("std::hash", [&] { keep(std::hash<std::string_view>()(text)); })
        .described("a chain of groups", [&] { keep(hash_in_a_chain(text)); });
    run(operation);
}

const bench::Section section("4 Case, trimming, hash", [] {
    for (const std::size_t size : {std::size_t{12}, std::size_t{100}, std::size_t{65600}, megabyte})
        lower(size);
    trim(2);
    trim(5000);
    for (const std::size_t size :
         {std::size_t{12}, std::size_t{60}, std::size_t{256}, std::size_t{4096}, megabyte})
        hash(size);
});

}  // namespace
