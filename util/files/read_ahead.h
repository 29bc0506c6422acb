// Not installed. Reading byte by byte without a system call per byte.
#ifndef UTIL_FILES_READ_AHEAD_H
#define UTIL_FILES_READ_AHEAD_H

#include <io.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "util/files/transfer.h"
#include "util/internal/kernels/find_byte.h"
#include "util/portable/ksl_descriptor.h"

namespace util {

// The bytes of a descriptor from its position on, for the length of one operation. Where `seekable`
// allows it, they are read a chunk at a time and what was not taken is given back by seeking when
// this object goes, so that the position afterwards is exact for everyone who shares the
// descriptor. Nothing is kept between operations: another handle may have changed the file by then.
//
// A chunk may touch bytes beyond those wanted, and fail for it (a lock, say); reading then goes on
// byte by byte, so that result and code are those of a reader that never looks ahead.
class ReadAhead {
  public:
    ReadAhead(int fd, bool seekable)
        : m_fd(fd), m_seekable(seekable), m_step(seekable ? sizeof m_chunk : 1) {}
    ~ReadAhead() {
        // In 64 bits, unlike ksl_lseek: the file may be larger than 2 GB.
        if (available() > 0) _lseeki64(m_fd, -static_cast<std::int64_t>(available()), SEEK_CUR);
    }
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    // Bytes up to and including the next line feed, at most size of them; a size of 0 is no limit.
    // False when a read fails or the file ends first. No retry rule.
    bool line(char* to, std::uint64_t size) {
        if (size == 0) size = ~std::uint64_t{0};
        while (size > 0) {
            if (available() == 0 && fill(size) < 1) return false;
            const char* const from = m_chunk + m_begin;
            const auto most = static_cast<std::size_t>(std::min<std::uint64_t>(available(), size));
            const std::size_t before = kernels::find_byte(from, most, '\n');
            const std::size_t taken = before < most ? before + 1 : most;
            std::memcpy(to, from, taken);
            m_begin += static_cast<unsigned>(taken);
            if (before < most) return true;
            to += taken;
            size -= taken;
        }
        return true;
    }

    // The next byte, by the retry rule of transfer().
    Transfer next(char* byte) {
        if (available() == 0) {
            const auto filled = [this](char*, unsigned) { return std::min(fill(m_step), 1); };
            const Transfer outcome = transfer(filled, byte, 1);
            if (!outcome.done) return outcome;
        }
        *byte = m_chunk[m_begin++];
        return {true, 0, 1};
    }

    // The next count bytes when they are in the chunk that was read; else null, and nothing taken.
    const char* at_hand(std::uint64_t count) {
        if (available() < count) return nullptr;
        m_begin += static_cast<unsigned>(count);
        return m_chunk + m_begin - count;
    }

    // The next count bytes, by the retry rule of transfer().
    Transfer read(char* to, std::uint64_t count) {
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

    // How many bytes there are up to the end; all bits set when that cannot be known.
    std::uint64_t bytes_left() const {
        const std::int64_t end = m_seekable ? _filelengthi64(m_fd) : -1;
        const std::int64_t position = end < 0 ? -1 : _telli64(m_fd);
        if (position < 0 || position > end) return ~std::uint64_t{0};
        return static_cast<std::uint64_t>(end - position) + available();
    }

  private:
    unsigned available() const { return m_end - m_begin; }

    // Called with nothing available: what the read returned. Reads a chunk, but never more than is
    // wanted, so that for a single byte nothing needs to be given back.
    int fill(std::uint64_t wanted) {
        const auto size = static_cast<unsigned>(std::min<std::uint64_t>(m_step, wanted));
        const int errno_before = errno;
        int count = ksl_read(m_fd, m_chunk, size);
        // An interruption has nothing to do with the size: it is for the rule of transfer() to
        // count.
        if (count < 0 && size > 1 && errno != EINTR) {
            m_step = 1;
            errno = errno_before;
            count = ksl_read(m_fd, m_chunk, 1);
        }
        m_begin = 0;
        m_end = count > 0 ? static_cast<unsigned>(count) : 0;
        return count;
    }

    const int m_fd;
    const bool m_seekable;
    unsigned m_step;  // bytes of one read: a chunk, or 1 where only single bytes will do
    unsigned m_begin = 0;
    unsigned m_end = 0;
    char m_chunk[128];
};

}  // namespace util

#endif
