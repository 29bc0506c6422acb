// Not installed. Reading byte by byte without a system call per byte.
#ifndef UTIL_FILES_READ_AHEAD_H
#define UTIL_FILES_READ_AHEAD_H

#include <cstdint>

#include "util/files/transfer.h"

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
    ReadAhead(int fd, bool seekable) : m_fd(fd), m_seekable(seekable), m_chunked(seekable) {}
    ~ReadAhead();
    ReadAhead(const ReadAhead&) = delete;
    ReadAhead& operator=(const ReadAhead&) = delete;

    // The next byte by a single read: 1, or what the read returned (0 at the end, or -1).
    int get(char* byte);

    // The same, and count bytes, by the retry rule of transfer().
    Transfer next(char* byte);
    Transfer read(char* to, std::uint64_t count);

    // How many bytes there are up to the end; all bits set when that cannot be known.
    std::uint64_t bytes_left() const;

  private:
    int fill();
    unsigned available() const { return m_end - m_begin; }

    const int m_fd;
    const bool m_seekable;
    bool m_chunked;
    unsigned m_begin = 0;
    unsigned m_end = 0;
    char m_chunk[128];
};

}  // namespace util

#endif
