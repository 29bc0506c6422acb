#include "util/files/xr_file.h"

#include "util/internal/windows.h"
// after the platform's header
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "util/files/open_descriptor.h"
#include "util/files/read_ahead.h"
#include "util/files/transfer.h"
#include "util/internal/decimal.h"
#include "util/internal/kept_errors.h"
#include "util/internal/kernels/find_byte.h"
#include "util/portable/ksl_descriptor.h"
#include "util/portable/utf8_files.h"

static_assert(sizeof(XrFile) == sizeof(void*) + sizeof(std::string) + 24, "layout is contract");

namespace {

constexpr int own_failure = -1;

int last_error() {
    return static_cast<int>(GetLastError());
}

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

bool is_disk_file(int fd) {
    return GetFileType(reinterpret_cast<HANDLE>(_get_osfhandle(fd))) == FILE_TYPE_DISK;
}

// Whether the runtime translates nothing there. It tells a descriptor's mode only by setting
// another one; the duplicate keeps the descriptor itself as it is.
bool is_binary(int fd) {
    const int duplicate = _dup(fd);
    if (duplicate == -1) return false;
    const bool result = _setmode(duplicate, _O_BINARY) == _O_BINARY;
    _close(duplicate);
    return result;
}

// The descriptor numbers that two objects have held at once, because one is a copy of the other.
// Either of them may close the number, and the runtime then gives it to the next file or pipe that
// anybody opens. What the other object, or any later owner of the number, found out at its open may
// then be wrong. A number is never unmarked: the other object may also close it while it belongs to
// a stranger, who will close it once more at any later time.
constexpr unsigned most_descriptors = 2048;  // the runtime's limit
std::atomic<bool> held_twice[most_descriptors];

bool was_held_twice(int fd) {
    const auto number = static_cast<unsigned>(fd);
    return number >= most_descriptors || held_twice[number].load(std::memory_order_relaxed);
}

[[gnu::noinline]] bool is_untranslated_disk_file(int fd) {
    const util::KeptErrors kept;
    return is_disk_file(fd) && is_binary(fd);
}

// Whether reading ahead can be undone without anyone noticing: in a disk file without translation.
// What was true at the open is true now, unless someone else may have closed the number. Asking
// each time would double the time of reading a line.
bool may_read_ahead(int fd, bool was_seekable) {
    return was_seekable && (!was_held_twice(fd) || is_untranslated_disk_file(fd));
}

// Writes the decimal digits of value and a zero byte; returns how many bytes that is.
constexpr std::size_t number_size = 16;
std::uint64_t print(int value, char* text) {
    char* end = std::to_chars(text, text + number_size - 1, value).ptr;
    *end = '\0';
    return static_cast<std::uint64_t>(end - text) + 1;
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
    const auto number = static_cast<unsigned>(m_fd);
    if (number < most_descriptors) held_twice[number].store(true, std::memory_order_relaxed);
}

XrFile& XrFile::operator=(const XrFile& other) {
    std::string name = other.m_name;
    const bool seekable = may_read_ahead(other.m_fd, other.m_seekable);
    m_fd = ksl_dup(other.m_fd);
    if (m_fd < 0) {
        fail_and_invalidate(last_error());
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
        fail_and_invalidate(own_failure);
        return own_failure;
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
    m_seekable = (m_flags & _O_BINARY) && is_disk_file(m_fd);
    return 0;
}

bool XrFile::Close() {
    const bool closed = m_fd == -1 || ksl_close(m_fd) == 0;
    if (!closed) fail(last_error());
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

// Functions that programs call in a loop are flattened: after a system call the processor predicts
// no return right, so each frame between the two costs time (see the benchmarks of records).
[[gnu::flatten]] bool XrFile::Read(char* buf, std::uint64_t count) {
    if (!buf) return fail(own_failure);
    const auto outcome =
        util::transfer([this](char* at, unsigned n) { return ksl_read(m_fd, at, n); }, buf, count);
    return outcome.done || fail(outcome.code);
}

[[gnu::flatten]] bool XrFile::Write(const char* buf, std::uint64_t count) {
    if (!buf) return fail(own_failure);
    const auto outcome = util::transfer(
        [this](const char* at, unsigned n) { return ksl_write(m_fd, at, n); }, buf, count);
    return outcome.done || fail(outcome.code);
}

[[gnu::flatten]] bool XrFile::Readln(char* buf, std::uint64_t size) {
    if (!buf) return fail(own_failure);
    util::ReadAhead input(m_fd, may_read_ahead(m_fd, m_seekable));
    return (input.line(buf, size) && input.seek_back()) || fail(last_error());
}

bool XrFile::Seek(int offset) {
    return ksl_lseek(m_fd, offset, SEEK_SET) != -1 || fail_and_invalidate(last_error());
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
    if (start == -1) return !fail_and_invalidate(last_error());
    return start == end;
}

bool XrFile::Eof() {
    const long position = ksl_lseek(m_fd, 0, SEEK_CUR);
    const long end = position == -1 ? -1 : ksl_lseek(m_fd, 0, SEEK_END);
    if (end == -1) return !fail_and_invalidate(last_error());
    if (position == end) return true;
    if (ksl_lseek(m_fd, position, SEEK_SET) != position) fail_and_invalidate(own_failure);
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
    return m_name.substr(m_name.find_last_of("/\\") + 1);
}

bool XrFile::write_number(int value) {
    char digits[number_size];
    const std::uint64_t size = print(value, digits);
    return Write(digits, m_binary ? size : size - 1);
}

// Writes the length record and the text in one transfer. The file gets the same bytes.
bool XrFile::write_text(const char* text, std::uint64_t size) {
    if (!m_binary) return Write(text, size);
    char short_record[256];
    const std::uint64_t prefix = print(static_cast<int>(size + 1), short_record);
    const std::uint64_t whole = prefix + size + 1;
    std::unique_ptr<char[]> long_record;
    char* record = short_record;
    if (whole > sizeof short_record) {
        long_record.reset(new char[whole]);
        record = long_record.get();
        std::memcpy(record, short_record, prefix);
    }
    std::memcpy(record + prefix, text, size);
    record[whole - 1] = '\0';
    return Write(record, whole);
}

[[gnu::flatten]] XrFile& XrFile::operator<<(int value) {
    write_number(value);
    return *this;
}

XrFile& XrFile::operator<<(long value) {
    return *this << static_cast<int>(value);
}

XrFile& XrFile::operator<<(unsigned short value) {
    return *this << static_cast<int>(value);
}

[[gnu::flatten]] XrFile& XrFile::operator<<(const char* text) {
    if (!text) text = "";
    write_text(text, std::strlen(text));
    return *this;
}

[[gnu::flatten]] XrFile& XrFile::operator<<(const std::string& text) {
    write_text(text.data(), text.size());
    return *this;
}

[[gnu::flatten]] XrFile& XrFile::operator<<(const String& text) {
    return *this << text.c_str();
}

namespace {

// Reads digits up to a zero byte. A token of any length is read to its end without memory.
util::Transfer read_decimal(util::ReadAhead& input, int& value) {
    util::DecimalReader reader;
    for (;;) {
        char byte = '\0';
        const util::Transfer outcome = input.next(&byte);
        if (!outcome.done) return outcome;
        if (byte == '\0') {
            value = reader.value();
            return outcome;
        }
        reader.take(byte);
    }
}

}  // namespace

bool XrFile::read_number(int& value) {
    util::ReadAhead input(m_fd, may_read_ahead(m_fd, m_seekable));
    int number = 0;
    const util::Transfer outcome = read_decimal(input, number);
    if (!outcome.done) return fail(outcome.code);
    if (!input.seek_back()) return fail(last_error());
    value = number;
    return true;
}

[[gnu::flatten]] XrFile& XrFile::operator>>(int& value) {
    read_number(value);
    return *this;
}

XrFile& XrFile::operator>>(long& value) {
    int number;
    if (read_number(number)) value = number;
    return *this;
}

XrFile& XrFile::operator>>(unsigned short& value) {
    int number;
    if (read_number(number)) value = static_cast<unsigned short>(number);
    return *this;
}

bool XrFile::read_text(std::string& text) {
    constexpr int text_mode_length = 256;
    // A damaged file may promise any length. Above this one, at most the bytes left are allocated.
    constexpr int trusted_length = 64 * 1024;

    util::ReadAhead input(m_fd, m_binary && may_read_ahead(m_fd, m_seekable));
    int length = text_mode_length;
    if (m_binary) {
        length = 0;
        const util::Transfer outcome = read_decimal(input, length);
        if (!outcome.done || length <= 0) return fail_and_invalidate(own_failure);
    }
    auto room = static_cast<std::uint64_t>(length);
    if (const char* const record = input.at_hand(room)) {
        if (!input.seek_back()) return fail(last_error());
        text.assign(record, util::kernels::find_byte(record, room, '\0'));
        return true;
    }
    if (length > trusted_length) room = std::min(room, input.bytes_left());
    const std::unique_ptr<char[]> bytes(new (std::nothrow) char[room]);
    if (!bytes) return fail_and_invalidate(own_failure);
    const util::Transfer outcome = input.read(bytes.get(), room);
    if (!outcome.done) return fail(outcome.code);
    text.assign(bytes.get(), util::kernels::find_byte(bytes.get(), outcome.moved, '\0'));
    return true;
}

[[gnu::flatten]] XrFile& XrFile::operator>>(std::string& text) {
    read_text(text);
    return *this;
}

[[gnu::flatten]] XrFile& XrFile::operator>>(String& text) {
    std::string read;
    if (read_text(read)) text = read.c_str();
    return *this;
}
