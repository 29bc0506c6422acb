#include "util/files/read_ahead.h"

#include <io.h>

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "util/portable/ksl_descriptor.h"

namespace util {

ReadAhead::~ReadAhead() {
    // In 64 bits, unlike ksl_lseek: the file may be larger than 2 GB.
    if (available() > 0) _lseeki64(m_fd, -static_cast<std::int64_t>(available()), SEEK_CUR);
}

// Called with nothing available: 1 with a chunk read, 0 at the end, -1 when only single bytes
// will do.
int ReadAhead::fill() {
    if (!m_chunked) return -1;
    const int count = ksl_read(m_fd, m_chunk, sizeof m_chunk);
    m_chunked = count >= 0;
    m_begin = 0;
    m_end = count > 0 ? static_cast<unsigned>(count) : 0;
    return count > 0 ? 1 : count;
}

int ReadAhead::get(char* byte) {
    if (available() == 0) {
        const int filled = fill();
        if (filled < 0) return ksl_read(m_fd, byte, 1);
        if (filled == 0) return 0;
    }
    *byte = m_chunk[m_begin++];
    return 1;
}

Transfer ReadAhead::next(char* byte) {
    return transfer([this](char* at, unsigned) { return get(at); }, byte, 1);
}

Transfer ReadAhead::read(char* to, std::uint64_t count) {
    const auto ready = static_cast<unsigned>(std::min<std::uint64_t>(available(), count));
    std::memcpy(to, m_chunk + m_begin, ready);
    m_begin += ready;
    if (ready == count && count > 0) return {true, 0, ready};
    Transfer rest = transfer([this](char* at, unsigned n) { return ksl_read(m_fd, at, n); },
                             to + ready, count - ready);
    // Bytes followed by the end of the file are a short read, which is no failure.
    if (rest.at_end && rest.moved == 0 && ready > 0) rest.done = true;
    if (!rest.done && rest.moved == 0) {
        m_begin -= ready;  // as if the read had failed as a whole
        return rest;
    }
    rest.moved += ready;
    return rest;
}

std::uint64_t ReadAhead::bytes_left() const {
    const std::int64_t end = m_seekable ? _filelengthi64(m_fd) : -1;
    const std::int64_t position = end < 0 ? -1 : _telli64(m_fd);
    if (position < 0 || position > end) return ~std::uint64_t{0};
    return static_cast<std::uint64_t>(end - position) + available();
}

}  // namespace util
