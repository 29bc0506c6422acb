#include <cstdint>

#include "util/internal/kernels/hash_words.h"
#include "util/text/byte_string.h"

namespace {

// Sign-extended on purpose: a byte from 0x80 up sets all higher bits, and stored hashes hold that.
std::uint32_t sign_extended(char byte) {
    return static_cast<std::uint32_t>(std::int32_t{static_cast<signed char>(byte)});
}

}  // namespace

unsigned int String::hash() const {
    const std::uint64_t words = size() / 4;
    const std::string_view rest = view().substr(4 * words);
    const auto length = static_cast<std::uint32_t>(size());
    const std::uint32_t h = util::kernels::hash_words(length, m_text.data(), words);
    if (rest.empty()) return h;
    std::uint32_t tail = 0;
    for (const char byte : rest)
        tail = (tail << 8) | sign_extended(byte);
    return util::rotate_left_5(h) ^ tail;
}
