#include <cstdint>

#include "util/internal/kernels/hash_words.h"
#include "util/text/byte_string.h"

namespace {

// A byte from 0x80 up sets all higher bits. By design: stored hashes depend on it.
std::uint32_t sign_extended(char byte) {
    return static_cast<std::uint32_t>(std::int32_t{static_cast<signed char>(byte)});
}

}  // namespace

unsigned int String::hash() const {
    const std::size_t words = size() / 4;
    const auto length = static_cast<std::uint32_t>(size());
    const std::uint32_t h = util::kernels::hash_words(length, m_text.data(), words);
    if (size() % 4 == 0) return h;
    std::uint32_t tail = 0;
    for (std::size_t i = 4 * words; i < size(); ++i)
        tail = (tail << 8) | sign_extended(m_text[i]);
    return util::rotate_left_5(h) ^ tail;
}
