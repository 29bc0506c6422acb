// The record format of XrFile, a number and a text of 12 bytes in turn, against the platform's own
// calls: unbuffered, so that every record is in the file when its operator returns.
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <string>

#include "bench/files/scratch.h"
#include "bench/harness.h"
#include "util/files/files.h"
#include "util/internal/windows.h"

using bench::keep;
using bench::Operation;

namespace {

constexpr int pairs = 100;
constexpr int first_number = 100000;
const char number_record[] = "100000";          // with its zero byte
const char text_record[] = "13\0hello, world";  // the length, a zero byte, text, a zero byte
const char* const text = text_record + 3;

void rewind_raw(HANDLE file) {
    SetFilePointerEx(file, {}, nullptr, FILE_BEGIN);
}

void write_raw(HANDLE file) {
    rewind_raw(file);
    DWORD written;
    for (int i = 0; i < pairs; ++i) {
        WriteFile(file, number_record, sizeof number_record, &written, nullptr);
        WriteFile(file, text_record, sizeof text_record, &written, nullptr);
    }
}

// A record at a time, as told in the format's description: the length of a text is a record too.
void write_three(int fd) {
    _lseek(fd, 0, SEEK_SET);
    for (int i = 0; i < pairs; ++i) {
        char digits[16];
        const auto put = [&](int number) {
            _write(fd, digits, static_cast<unsigned>(std::sprintf(digits, "%d", number)) + 1);
        };
        put(first_number + i);
        put(13);
        _write(fd, text, 13);
    }
}

void take_raw(HANDLE file, long size) {
    char chunk[64];
    DWORD count;
    ReadFile(file, chunk, sizeof chunk, &count, nullptr);
    LARGE_INTEGER back;
    back.QuadPart = size - static_cast<long>(count);
    SetFilePointerEx(file, back, nullptr, FILE_CURRENT);
}

int read_number(int fd) {
    char digits[16];
    for (char* at = digits; _read(fd, at, 1) == 1 && *at != '\0'; ++at) {
    }
    return std::atoi(digits);
}

void read_bytes(int fd) {
    _lseek(fd, 0, SEEK_SET);
    for (int i = 0; i < pairs; ++i) {
        char bytes[16];
        keep(read_number(fd));
        _read(fd, bytes, static_cast<unsigned>(read_number(fd)));
        keep(std::string(bytes));
    }
}

const bench::Section section("7 Records", [] {
    const bench::Scratch scratch;
    XrFile file((scratch / "records").c_str(), "w+");
    const std::string raw_path = scratch / "raw";
    const HANDLE raw = CreateFileA(raw_path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                   CREATE_ALWAYS, 0, nullptr);
    const int fd = _open((scratch / "raw").c_str(), _O_RDWR | _O_BINARY | _O_CREAT, 0600);
    const std::string value = text;

    run(Operation("record written")
            .limit("WriteFile for each", [&] { write_raw(raw); })
            .library([&] {
                file.SeekToBegin();
                for (int i = 0; i < pairs; ++i)
                    file << first_number + i << value;
            })
            .described("three writes for two", [&] { write_three(fd); })
            .per(2 * pairs));
    run(Operation("record read")
            .limit("ReadFile, SetFilePointerEx",
                   [&] {
                       rewind_raw(raw);
                       for (int i = 0; i < pairs; ++i) {
                           take_raw(raw, sizeof number_record);
                           take_raw(raw, sizeof text_record);
                       }
                   })
            .library([&] {
                int number;
                std::string back;
                file.SeekToBegin();
                for (int i = 0; i < pairs; ++i)
                    file >> number >> back;
                keep(back);
            })
            .described("a read per byte of a number", [&] { read_bytes(fd); })
            .per(2 * pairs));
    _close(fd);
    CloseHandle(raw);
});

}  // namespace
