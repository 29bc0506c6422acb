// What long runs do to the memory of a process: each pattern repeats one thing a program does for
// months, in a process of its own, since the platform reports one peak for a process.
//
// usage: util_memory [--quick] > FILE      a line for each pattern, tab-separated, as report.py
//                                          reads it; --quick repeats a hundredth as often
#include <malloc.h>
#include <process.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "bench/files/scratch.h"
#include "tests/support/loopback.h"
#include "util/util.h"
// after the platform's header, which the loopback brings
#include <psapi.h>

namespace {

long heap_blocks() {
    long blocks = 0;
    _HEAPINFO block = {};
    while (_heapwalk(&block) == _HEAPOK)
        blocks += block._useflag == _USEDENTRY;
    return blocks;
}

std::string megabytes(std::size_t bytes) {
    char text[32];
    std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(bytes) / (1 << 20));
    return text;
}

PROCESS_MEMORY_COUNTERS counters() {
    PROCESS_MEMORY_COUNTERS result = {};
    GetProcessMemoryInfo(GetCurrentProcess(), &result, sizeof result);
    return result;
}

// Repeats the operation and prints the row.
template <typename Operation>
void measure(const char* name, int times, Operation operation) {
    const std::size_t at_start = counters().WorkingSetSize;
    for (int i = 0; i < times / 10; ++i)
        operation(i);
    const std::size_t after_tenth = counters().WorkingSetSize;
    const long blocks = heap_blocks();
    for (int i = times / 10; i < times; ++i)
        operation(i);
    const long more_blocks = heap_blocks() - blocks;
    const PROCESS_MEMORY_COUNTERS at_end = counters();
    std::printf("memory\t%d %s\t%s\t%s\t%s\t%s\t%+ld\n", times, name, megabytes(at_start).c_str(),
                megabytes(after_tenth).c_str(), megabytes(at_end.WorkingSetSize).c_str(),
                megabytes(at_end.PeakWorkingSetSize).c_str(), more_blocks);
}

void formats(int times) {
    measure("texts formatted, to 4 KB each", times, [](int i) {
        const String text(static_cast<std::size_t>(i % 4096), 'x');
        String::format("%s-%d", text.c_str(), i);
    });
}

void polls(int times) {
    struct Reader : Poll::Callback {
        void ready(int, int) override { connection.read(); }
        util_test::Connection connection;
    };
    Reader readers[8];
    Poll poll;
    for (Reader& reader : readers)
        poll.append(reader.connection.fd(), &reader);
    measure("polls of 8 sockets, every tenth with data", times, [&](int i) {
        if (i % 10 == 0) readers[i / 10 % 8].connection.send_byte_only();
        poll.run(0);
    });
}

void listings(int times) {
    const std::string folder = bench::many_files();
    if (folder.empty()) return;
    const auto files = XrDirectory(folder).getDirectoryList(true, false)->size();
    const std::string name = "listings of " + std::to_string(files) + " files";
    measure(name.c_str(), times, [&](int) {
        XrDirectory directory(folder);
        directory.getDirectoryList(true, false);
    });
}

void records(int times) {
    const bench::Scratch scratch;
    XrFile file((scratch / "records").c_str(), "w+");
    const std::string text(1000, 'x');
    measure("records of 1000 bytes written and read", times, [&](int i) {
        std::string back;
        file.SeekToBegin();
        file << i << text;
        file.SeekToBegin();
        file >> i >> back;
    });
}

void copies(int times) {
    const bench::Scratch scratch;
    const std::string source = scratch.file("source", "");
    const std::string target = scratch / "target";
    std::filesystem::resize_file(source, 512 << 20);
    measure("copies of 512 MB", times, [&](int) { UTIL_copy(source.c_str(), target.c_str(), 0); });
}

const struct {
    const char* name;
    void (*run)(int times);
    int times;
} patterns[] = {
    {"formats", formats, 1000000}, {"polls", polls, 200000}, {"listings", listings, 150},
    {"records", records, 200000},  {"copies", copies, 10},
};

}  // namespace

int main(int argc, char** argv) {
    const bool quick = argc > 1 && std::strcmp(argv[1], "--quick") == 0;
    if (argc == 3) {
        for (const auto& pattern : patterns) {
            const int times = quick ? std::max(pattern.times / 100, 10) : pattern.times;
            if (std::strcmp(argv[2], pattern.name) == 0) pattern.run(times);
        }
        return 0;
    }
    int result = 0;
    for (const auto& pattern : patterns)
        result |= static_cast<int>(_spawnl(_P_WAIT, argv[0], argv[0], quick ? "--quick" : "--long",
                                           pattern.name, nullptr));
    return result;
}
