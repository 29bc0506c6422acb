#include <cstdint>

#include "util/text/byte_string.h"

namespace {

constexpr std::uint32_t rotate_left_5(std::uint32_t h) {
    return (h << 5) | (h >> 27);
}

std::uint32_t little_endian_word(const unsigned char* p) {
    return std::uint32_t{p[0]} | std::uint32_t{p[1]} << 8 | std::uint32_t{p[2]} << 16 |
           std::uint32_t{p[3]} << 24;
}

// Sign-extended on purpose: a byte from 0x80 up sets all higher bits, and stored hashes hold that.
std::uint32_t sign_extended(unsigned char byte) {
    return static_cast<std::uint32_t>(static_cast<std::int32_t>(static_cast<signed char>(byte)));
}

}  // namespace

unsigned int String::hash() const {
    const auto* p = reinterpret_cast<const unsigned char*>(m_text.data());
    auto h = static_cast<std::uint32_t>(size());
    for (std::uint64_t groups = size() / 4; groups > 0; --groups, p += 4) {
        h = rotate_left_5(h) ^ little_endian_word(p);
    }
    if (const std::uint64_t rest = size() % 4; rest > 0) {
        std::uint32_t tail = 0;
        for (std::uint64_t i = 0; i < rest; ++i)
            tail = (tail << 8) | sign_extended(p[i]);
        h = rotate_left_5(h) ^ tail;
    }
    return h;
}
