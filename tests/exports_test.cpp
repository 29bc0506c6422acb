#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "util/internal/windows.h"

namespace {

std::vector<std::string> exported_names(const char* module) {
    auto* base = reinterpret_cast<char*>(LoadLibraryA(module));
    auto* dos = reinterpret_cast<IMAGE_DOS_HEADER*>(base);
    auto* nt = reinterpret_cast<IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    auto& directory = nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    auto* exports = reinterpret_cast<IMAGE_EXPORT_DIRECTORY*>(base + directory.VirtualAddress);
    auto* names = reinterpret_cast<DWORD*>(base + exports->AddressOfNames);
    std::vector<std::string> result;
    for (DWORD i = 0; i < exports->NumberOfNames; ++i)
        result.emplace_back(base + names[i]);
    std::sort(result.begin(), result.end());
    return result;
}

// The names that programs link to. A new name is added to the list on purpose; a name that
// vanishes breaks programs that are already built.
TEST(ExportsTest, AreThoseOfTheKeptList) {
    std::ifstream file(UTIL_EXPORTS_LIST);
    ASSERT_TRUE(file) << UTIL_EXPORTS_LIST;
    std::vector<std::string> kept;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        kept.push_back(line);
    }
    std::sort(kept.begin(), kept.end());

    const std::vector<std::string> actual = exported_names("util.dll");
    std::vector<std::string> added, gone;
    std::set_difference(actual.begin(), actual.end(), kept.begin(), kept.end(),
                        std::back_inserter(added));
    std::set_difference(kept.begin(), kept.end(), actual.begin(), actual.end(),
                        std::back_inserter(gone));
    EXPECT_EQ(added, std::vector<std::string>()) << "exported but not in the list";
    EXPECT_EQ(gone, std::vector<std::string>()) << "in the list but no longer exported";
}

}  // namespace
