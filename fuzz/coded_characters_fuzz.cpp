#include <cstring>
#include <memory>

#include "fuzz/fuzz.h"
#include "util/portable/ksl_string.h"

namespace util_fuzz {
namespace {

struct Free {
    void operator()(char* block) const { std::free(block); }
};
using Block = std::unique_ptr<char, Free>;

Block encode(const std::string& bytes, int length) {
    char* out = nullptr;
    require(ksl_unicode2CodedChar(bytes.data(), length, &out) == 0, "encoding succeeds");
    return Block(out);
}

Block decode(const std::string& coded, int length) {
    char* out = nullptr;
    const int status = ksl_codedChar2Unicode(coded.c_str(), length, &out);
    require((status == 0) == (out != nullptr), "a result exactly on success");
    return Block(out);
}

std::string model_encode(const std::string& bytes) {
    std::string coded;
    for (const char c : bytes) {
        if (c == 1 || c == 2) coded += '\2';
        coded += c == 0 ? '\1' : c;
    }
    return coded;
}

// What a coded text stands for; false when a 02 is followed by neither 01 nor 02.
bool model_decode(const std::string& coded, std::string& bytes) {
    for (std::size_t i = 0; i < coded.size(); ++i) {
        if (coded[i] == 2) {
            if (++i == coded.size() || (coded[i] != 1 && coded[i] != 2)) return false;
            bytes += coded[i];
        } else {
            bytes += coded[i] == 1 ? '\0' : coded[i];
        }
    }
    return true;
}

}  // namespace

void coded_characters(std::string_view input) {
    std::string bytes(input);
    if (bytes.size() > 2) {
        const int length = static_cast<int>(bytes.size()) - 2;  // two bytes beyond it are taken in
        const Block coded = encode(bytes, length);
        require(coded.get() == model_encode(bytes), "encoding");
        const Block back = decode(coded.get(), length);
        require(back != nullptr, "what was encoded decodes");
        std::string whole = bytes;  // and zeros after it
        whole.resize(std::max(bytes.size(), 8 * std::size_t(length)));
        require(std::memcmp(back.get(), whole.data(), whole.size()) == 0, "there and back");
    }
    // Any text at all, promised to be as short as can be.
    const std::string coded = up_to_nul(bytes);
    std::string expected;
    const bool valid = model_decode(coded, expected);
    const Block decoded = decode(coded, 1);
    require((decoded != nullptr) == valid, "only well-formed texts decode");
    require(!valid || std::memcmp(decoded.get(), expected.data(), expected.size()) == 0,
            "decoding");
}

}  // namespace util_fuzz
