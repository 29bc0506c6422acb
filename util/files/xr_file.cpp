#include "util/files/xr_file.h"

#include "util/internal/windows.h"
// after the platform's header
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstring>

#include "util/files/open_descriptor.h"
#include "util/files/seekable.h"
#include "util/files/transfer.h"
#include "util/internal/path.h"
#include "util/portable/ksl_descriptor.h"
#include "util/portable/utf8_files.h"

static_assert(sizeof(XrFile) == sizeof(void*) + sizeof(std::string) + 24, "layout is contract");

namespace {

bool has(const char* mode, char letter) {
    return std::strchr(mode, letter) != nullptr;
}

// Returns the runtime's open flags for a mode that is not null.
int flags_of(const char* mode) {
    int flags = 0;
    if (has(mode, 'a')) flags |= _O_APPEND | _O_CREAT;
    if (has(mode, 'w')) flags |= _O_CREAT | _O_TRUNC;
    if (has(mode, '+')) {
        flags |= _O_RDWR;
    } else if (!has(mode, 'r') && (has(mode, 'w') || has(mode, 'a'))) {
        flags |= _O_WRONLY;
    }
    return flags | (has(mode, 't') ? _O_TEXT : _O_BINARY);
}

}  // namespace

XrFile::XrFile()
    : m_fd(-1),
      m_error_code(0),
      m_access_mode(0),
      m_error(false),
      m_is_open(false),
      m_binary(true),
      m_seekable(false),
      m_flags(0) {}

XrFile::XrFile(const char* name, const char* mode) : XrFile() {
    if (name) m_name = name;
    Open(mode);
}

XrFile::XrFile(const XrFile& other)
    : m_name(other.m_name),
      m_fd(other.m_fd),
      m_error_code(other.m_error_code),
      m_access_mode(other.m_access_mode),
      m_error(other.m_error),
      m_is_open(other.m_is_open),
      m_binary(other.m_binary),
      m_seekable(other.m_seekable),
      m_flags(other.m_flags) {
    util::note_second_holder(m_fd);
}

XrFile& XrFile::operator=(const XrFile& other) {
    std::string name = other.m_name;
    const bool seekable = util::may_read_ahead(other.m_fd, other.m_seekable);
    m_fd = ksl_dup(other.m_fd);
    if (m_fd < 0) {
        fail_and_invalidate(util::last_error());
        return *this;
    }
    m_error = other.m_error;
    m_is_open = other.m_is_open;
    m_seekable = seekable;
    m_flags = other.m_flags;
    m_error_code = other.m_error_code;
    m_name.swap(name);
    return *this;
}

XrFile::~XrFile() {
    Close();
}

int XrFile::Open(const char* mode) {
    if (m_is_open) Close();
    if (m_name.empty()) {
        fail_and_invalidate(util::own_failure);
        return util::own_failure;
    }
    if (!mode) {
        m_flags = _O_RDWR | _O_CREAT;
    } else {
        m_flags = flags_of(mode);
        m_binary = (m_flags & _O_BINARY) != 0;
    }
    return m_open_file();
}

int XrFile::Open(const std::string& name, const char* mode) {
    m_name = name;
    return Open(mode);
}

int XrFile::m_open_file() {
    const util::OpenResult opened = util::open_descriptor(m_name.c_str(), m_flags);
    m_fd = opened.descriptor;
    if (m_fd == -1) {
        fail_and_invalidate(opened.code);
        return opened.code;
    }
    m_error = false;
    m_is_open = true;
    m_seekable = (m_flags & _O_BINARY) && util::is_disk_file(m_fd);
    return 0;
}

bool XrFile::Close() {
    const bool closed = m_fd == -1 || ksl_close(m_fd) == 0;
    if (!closed) fail(util::last_error());
    m_fd = -1;
    m_is_open = false;
    return closed;
}

int XrFile::Flush() {
    Close();
    return m_open_file();
}

bool XrFile::fail(int code) {
    m_error = true;
    m_error_code = code;
    return false;
}

bool XrFile::fail_and_invalidate(int code) {
    m_is_open = false;
    return fail(code);
}

bool XrFile::Seek(int offset) {
    return ksl_lseek(m_fd, offset, SEEK_SET) != -1 || fail_and_invalidate(util::last_error());
}

bool XrFile::SeekToBegin() {
    return Seek(0);
}

long XrFile::Tell() const {
    return ksl_lseek(m_fd, 0, SEEK_CUR);
}

long XrFile::Size() const {
    struct _stat64i32 record = {};
    if (m_fd >= 1) _fstat64i32(m_fd, &record);
    return record.st_size;
}

std::int64_t XrFile::LastModified() const {
    struct _stat64i32 record = {};
    if (m_fd >= 1) _fstat64i32(m_fd, &record);
    return record.st_mtime;
}

bool XrFile::IsEmpty() {
    const long end = ksl_lseek(m_fd, 0, SEEK_END);
    const long start = end == -1 ? -1 : ksl_lseek(m_fd, 0, SEEK_SET);
    if (start == -1) return !fail_and_invalidate(util::last_error());
    return start == end;
}

bool XrFile::Eof() {
    const long position = ksl_lseek(m_fd, 0, SEEK_CUR);
    const long end = position == -1 ? -1 : ksl_lseek(m_fd, 0, SEEK_END);
    if (end == -1) return !fail_and_invalidate(util::last_error());
    if (position == end) return true;
    if (ksl_lseek(m_fd, position, SEEK_SET) != position) fail_and_invalidate(util::own_failure);
    return false;
}

bool XrFile::Error() const {
    return m_error;
}

bool XrFile::Error(int& code) const {
    code = m_error_code;
    return m_error;
}

bool XrFile::isValid() const {
    return m_is_open;
}

bool XrFile::Exists() const {
    return UTF8_access(m_name.c_str(), m_access_mode) != -1;
}

bool XrFile::Exists(const String& path, int mode) {
    return UTF8_access(path, mode) != -1;
}

std::string XrFile::getName() const {
    return std::string(util::last_component(m_name));
}
