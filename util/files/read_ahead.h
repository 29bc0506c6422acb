// Reads byte by byte without a system call per byte.
#ifndef UTIL_FILES_READ_AHEAD_H
#define UTIL_FILES_READ_AHEAD_H

#include <io.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstring>

#include "util/files/transfer.h"
#include "util/internal/kept_errors.h"
#include "util/internal/kernels/find_byte.h"
#include "util/portable/ksl_descriptor.h"

namespace util {

// Reads a descriptor from its position on, during one operation of XrFile. If `seekable`, it reads
// chunks and seeks back over the bytes that were not taken, so the position afterwards is exact for
// everyone who shares the descriptor. Else it reads single bytes. No bytes are kept between
// operations, because another handle may change the file.
//
// Results and codes are those of a reader that reads single bytes. A chunk may fail because of
// bytes after those wanted (a locked range, for example). Reading then continues byte by byte,
// with errno and the last error as they were before the chunk.
//
// An operation that succeeds calls seek_back() last: only then is a failed seek reported. The
// destructor seeks back after an exception or a failure that is recorded already.
class ReadAhead {
  public:
    ReadAhead(int fd, bool seekable)
        : m_fd(fd), m_seekable(seekable), m_step(seekable ? sizeof m_chunk : 1) {}
    ~ReadAhead() {
        const KeptErrors kept;
        seek_back();
    }
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    // Moves the position to the first byte that was not taken. Returns false, with the last error,
    // if the seek fails. The position is then after the chunk, and the caller must report it.
    bool seek_back() {
        if (available() == 0) return true;
        const auto distance = -static_cast<std::int64_t>(available());
        m_begin = m_end;
        // ksl_lseek has 32 bits, and the file may be larger than 2 GB.
        return _lseeki64(m_fd, distance, SEEK_CUR) >= 0;
    }

    // Reads up to and including the next line feed, at most `size` bytes. A size of 0 is no limit.
    // Returns false, with the last error, if a read fails or the file ends first. An interruption
    // is a failure here.
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

    // Reads the next byte, with the retry rule of transfer().
    Transfer next(char* byte) {
        if (available() == 0) {
            const auto filled = [this](char*, unsigned) { return std::min(fill(m_step), 1); };
            const Transfer outcome = transfer(filled, byte, 1);
            if (!outcome.done) return outcome;
        }
        *byte = m_chunk[m_begin++];
        return {true, 0, 1};
    }

    // Takes and returns the next `count` bytes if the chunk contains them. Otherwise takes nothing
    // and returns null.
    const char* at_hand(std::uint64_t count) {
        if (available() < count) return nullptr;
        m_begin += static_cast<unsigned>(count);
        return m_chunk + m_begin - count;
    }

    // Reads the next `count` bytes, with the retry rule of transfer(). After success the chunk is
    // empty unless it contained all of them.
    Transfer read(char* to, std::uint64_t count) {
        const auto ready = static_cast<unsigned>(std::min<std::uint64_t>(available(), count));
        std::memcpy(to, m_chunk + m_begin, ready);
        m_begin += ready;
        if (ready == count && count > 0) return {true, 0, ready};
        Transfer rest = transfer([this](char* at, unsigned n) { return ksl_read(m_fd, at, n); },
                                 to + ready, count - ready);
        // Bytes followed by the end of the file are a short read, which succeeds.
        if (rest.at_end && rest.moved == 0 && ready > 0) rest.done = true;
        if (!rest.done && rest.moved == 0) {
            m_begin -= ready;  // a single read of all the bytes would have moved none
            return rest;
        }
        rest.moved += ready;
        return rest;
    }

    // Returns the number of bytes up to the end of the file, or all bits set if it is not known.
    std::uint64_t bytes_left() const {
        const KeptErrors kept;
        const std::int64_t end = m_seekable ? _filelengthi64(m_fd) : -1;
        const std::int64_t position = end < 0 ? -1 : _telli64(m_fd);
        if (position < 0 || position > end) return ~std::uint64_t{0};
        return static_cast<std::uint64_t>(end - position) + available();
    }

  private:
    unsigned available() const { return m_end - m_begin; }

    // Fills the empty chunk and returns the result of the read. It never reads more than `wanted`
    // bytes, so a single byte needs no seek back.
    int fill(std::uint64_t wanted) {
        const auto size = static_cast<unsigned>(std::min<std::uint64_t>(m_step, wanted));
        const int errno_before = errno;
        const DWORD last_error_before = GetLastError();
        int count = ksl_read(m_fd, m_chunk, size);
        // An interruption does not depend on the size; the rule of transfer() counts it.
        if (count < 0 && size > 1 && errno != EINTR) {
            m_step = 1;
            errno = errno_before;
            SetLastError(last_error_before);
            count = ksl_read(m_fd, m_chunk, 1);
        }
        m_begin = 0;
        m_end = count > 0 ? static_cast<unsigned>(count) : 0;
        return count;
    }

    const int m_fd;
    const bool m_seekable;
    unsigned m_step;  // bytes per read: the chunk's size, or 1
    unsigned m_begin = 0;
    unsigned m_end = 0;
    char m_chunk[128];
};

}  // namespace util

#endif
