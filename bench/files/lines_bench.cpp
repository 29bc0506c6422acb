// Reading lines and single bytes through XrFile against the platform's own calls.
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <random>
#include <string>

#include "bench/files/scratch.h"
#include "bench/harness.h"
#include "util/files/files.h"
#include "util/internal/windows.h"

using bench::keep;
using bench::Operation;

namespace {

constexpr int lines = 200;

std::string text() {
    std::mt19937 random(1);
    std::string result;
    for (int i = 0; i < lines; ++i)
        result += std::string(20 + random() % 80, 'x') + '\n';  // 60 bytes on average
    return result;
}

HANDLE open_raw(const std::string& path) {
    return CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                       OPEN_EXISTING, 0, nullptr);
}

void rewind_raw(HANDLE file) {
    SetFilePointerEx(file, {}, nullptr, FILE_BEGIN);
}

// One read and one seek a line: the least that leaves the position behind it.
void read_and_seek(HANDLE file) {
    rewind_raw(file);
    for (int i = 0; i < lines; ++i) {
        char chunk[128];
        DWORD count;
        ReadFile(file, chunk, sizeof chunk, &count, nullptr);
        const auto* end = static_cast<const char*>(std::memchr(chunk, '\n', count));
        LARGE_INTEGER back;
        back.QuadPart = end + 1 - (chunk + count);
        SetFilePointerEx(file, back, nullptr, FILE_CURRENT);
    }
}

void read_byte_by_byte(int fd) {
    _lseek(fd, 0, SEEK_SET);
    for (int i = 0; i < lines; ++i) {
        char byte;
        while (_read(fd, &byte, 1) == 1 && byte != '\n') {
        }
    }
}

const bench::Section section("6 Reading lines", [] {
    const bench::Scratch scratch;
    const std::string path = scratch.file("lines", text());
    XrFile file(path.c_str(), "r");
    const HANDLE raw = open_raw(path);
    const int fd = _open(path.c_str(), _O_RDONLY | _O_BINARY);
    std::FILE* const stream = std::fopen(path.c_str(), "rb");
    char buffer[256];

    run(Operation("Readln, lines of 60 bytes")
            .limit("ReadFile, SetFilePointerEx", [&] { read_and_seek(raw); })
            .library([&] {
                file.SeekToBegin();
                for (int i = 0; i < lines; ++i)
                    keep(file.Readln(buffer, sizeof buffer));
            })
            .peer("fgets, position not exact",
                  [&] {
                      std::rewind(stream);
                      while (std::fgets(buffer, sizeof buffer, stream))
                          keep(buffer);
                  })
            .described("a read per byte", [&] { read_byte_by_byte(fd); })
            .per(lines));
    run(Operation("Read, one byte")
            .limit("ReadFile",
                   [&] {
                       rewind_raw(raw);
                       DWORD count;
                       for (int i = 0; i < lines; ++i)
                           ReadFile(raw, buffer, 1, &count, nullptr);
                   })
            .library([&] {
                file.SeekToBegin();
                for (int i = 0; i < lines; ++i)
                    keep(file.Read(buffer, 1));
            })
            .per(lines));
    std::fclose(stream);
    _close(fd);
    CloseHandle(raw);
});

}  // namespace
