// How XrFile moves bytes, lines and records.
#include "util/files/xr_file.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <new>

#include "util/files/read_ahead.h"
#include "util/files/record.h"
#include "util/files/seekable.h"
#include "util/files/transfer.h"
#include "util/internal/decimal.h"
#include "util/internal/kernels/find_byte.h"
#include "util/portable/ksl_descriptor.h"

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

// Functions that programs call in a loop are flattened, and all of them are in this source. The
// return predictor is cold after a system call, so one more frame costs 50 to 100 ns a record.
[[gnu::flatten]] bool XrFile::Read(char* buf, std::uint64_t count) {
    if (!buf) return fail(util::own_failure);
    const auto outcome =
        util::transfer([this](char* at, unsigned n) { return ksl_read(m_fd, at, n); }, buf, count);
    return outcome.done || fail(outcome.code);
}

[[gnu::flatten]] bool XrFile::Write(const char* buf, std::uint64_t count) {
    if (!buf) return fail(util::own_failure);
    const auto outcome = util::transfer(
        [this](const char* at, unsigned n) { return ksl_write(m_fd, at, n); }, buf, count);
    return outcome.done || fail(outcome.code);
}

[[gnu::flatten]] bool XrFile::Readln(char* buf, std::uint64_t size) {
    if (!buf) return fail(util::own_failure);
    util::ReadAhead input(m_fd, util::may_read_ahead(m_fd, m_seekable));
    return (input.line(buf, size) && input.seek_back()) || fail(util::last_error());
}

bool XrFile::write_number(int value) {
    const util::NumberRecord record(value);
    return Write(record.data(), m_binary ? record.size() : record.size() - 1);
}

bool XrFile::write_text(const char* text, std::uint64_t size) {
    if (!m_binary) return Write(text, size);
    const util::TextRecord record(text, size);
    return Write(record.data(), record.size());
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

bool XrFile::read_number(int& value) {
    util::ReadAhead input(m_fd, util::may_read_ahead(m_fd, m_seekable));
    int number = 0;
    const util::Transfer outcome = read_decimal(input, number);
    if (!outcome.done) return fail(outcome.code);
    if (!input.seek_back()) return fail(util::last_error());
    value = number;
    return true;
}

[[gnu::flatten]] XrFile& XrFile::operator>>(int& value) {
    read_number(value);
    return *this;
}

XrFile& XrFile::operator>>(long& value) {
    int number = 0;
    if (read_number(number)) value = number;
    return *this;
}

XrFile& XrFile::operator>>(unsigned short& value) {
    int number = 0;
    if (read_number(number)) value = static_cast<unsigned short>(number);
    return *this;
}

bool XrFile::read_text(std::string& text) {
    constexpr int text_mode_length = 256;
    // A damaged file may promise any length. Above this one, at most the bytes left are allocated.
    constexpr int trusted_length = 64 * 1024;

    util::ReadAhead input(m_fd, m_binary && util::may_read_ahead(m_fd, m_seekable));
    int length = text_mode_length;
    if (m_binary) {
        length = 0;
        const util::Transfer outcome = read_decimal(input, length);
        if (!outcome.done || length <= 0) return fail_and_invalidate(util::own_failure);
    }
    auto room = static_cast<std::uint64_t>(length);
    if (const char* const record = input.at_hand(room)) {
        if (!input.seek_back()) return fail(util::last_error());
        text.assign(record, util::kernels::find_byte(record, room, '\0'));
        return true;
    }
    if (length > trusted_length) room = std::min(room, input.bytes_left());
    const std::unique_ptr<char[]> bytes(new (std::nothrow) char[room]);
    if (!bytes) return fail_and_invalidate(util::own_failure);
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
