// A sorted listing with mode and size against the bare enumeration.
#include <sys/stat.h>

#include <algorithm>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "bench/files/scratch.h"
#include "bench/harness.h"
#include "util/files/files.h"
#include "util/internal/windows.h"
#include "util/portable/portable.h"

using bench::keep;
using bench::Operation;

namespace {

template <typename Found>
void enumerate(const std::string& folder, Found found) {
    WIN32_FIND_DATAW data;
    const std::wstring pattern = std::wstring(folder.begin(), folder.end()) + L"\\*.*";
    const HANDLE search = FindFirstFileW(pattern.c_str(), &data);
    do {
        found(data);
    } while (FindNextFileW(search, &data));
    FindClose(search);
}

// A status call for each name, each entry inserted at its place.
void list_as_described(const std::string& folder) {
    XrDirectory::List list;
    enumerate(folder, [&](const WIN32_FIND_DATAW& data) {
        String name;
        UTIL_WideCharToUtf8(data.cFileName, &name);
        if (name == "." || name == "..") return;
        struct _stat64i32 record = {};
        UTF8_stat(String(folder) + "\\" + name, &record);
        list.insert(new XrDirectoryEntry(name, record.st_mode, record.st_size));
    });
    keep(list.size());
}

void list_by_standard_library(const std::string& folder) {
    struct Entry {
        std::string name;
        std::filesystem::file_status status;
        std::uintmax_t size;
    };
    std::vector<Entry> entries;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        entries.push_back({entry.path().filename().string(), entry.status(), entry.file_size()});
    std::stable_sort(entries.begin(), entries.end(),
                     [](const Entry& a, const Entry& b) { return a.name < b.name; });
    keep(entries);
}

const bench::Section section("8 Sorted listing", [] {
    const std::string folder = bench::many_files();
    if (folder.empty()) return;
    const auto files =
        static_cast<double>(XrDirectory(folder).getDirectoryList(true, false)->size());
    run(Operation("getDirectoryList, per file")
            .limit("FindFirstFileW, FindNextFileW",
                   [&] { enumerate(folder, [](const WIN32_FIND_DATAW& data) { keep(data); }); })
            .library([&] {
                XrDirectory directory(folder);
                keep(directory.getDirectoryList(true, false)->size());
            })
            .peer("std::filesystem, status, size, sort", [&] { list_by_standard_library(folder); })
            .described("status of each, sorted insert", [&] { list_as_described(folder); })
            .per(files));
});

}  // namespace
