// Copying a large file against the platform's own ways.
#include <filesystem>
#include <memory>
#include <string>

#include "bench/files/scratch.h"
#include "bench/harness.h"
#include "util/files/files.h"
#include "util/internal/windows.h"

using bench::keep;
using bench::Operation;

namespace {

constexpr std::size_t megabytes = 512;

void copy_raw(const std::string& source, const std::string& destination) {
    constexpr DWORD chunk = 256 * 1024;
    const std::unique_ptr<char[]> buffer(new char[chunk]);
    const HANDLE from = CreateFileA(source.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, 0, nullptr);
    const HANDLE to =
        CreateFileA(destination.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr);
    DWORD count;
    DWORD written;
    while (ReadFile(from, buffer.get(), chunk, &count, nullptr) && count > 0)
        WriteFile(to, buffer.get(), count, &written, nullptr);
    CloseHandle(from);
    CloseHandle(to);
}

const bench::Section section("9 Copying", [] {
    const bench::Scratch scratch;
    const std::string source = scratch.file("source", std::string(megabytes << 20, 'x'));
    const std::string target = scratch / "target";
    run(Operation("UTIL_copy, per megabyte")
            .limit("ReadFile, WriteFile, 256 KB", [&] { copy_raw(source, target); })
            .library([&] { keep(UTIL_copy(source.c_str(), target.c_str(), 0)); })
            .peer("CopyFileA", [&] { keep(CopyFileA(source.c_str(), target.c_str(), FALSE)); })
            .peer("std::filesystem::copy_file",
                  [&] {
                      // Its option to overwrite fails with this runtime.
                      std::filesystem::remove(target);
                      keep(std::filesystem::copy_file(source, target));
                  })
            .by_minimum()
            .per(megabytes));
});

}  // namespace
