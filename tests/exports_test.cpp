#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <fstream>
#include <numeric>
#include <set>
#include <string>
#include <vector>

#include "support/built_file.h"
#include "support/import_patch.h"
#include "torture/gate.h"
#include "util/portable/ksl_hostname.h"

namespace {

// The names that programs link to. A new name is added to the list on purpose; a name that
// vanishes breaks programs that are already built.
TEST(ExportsTest, AreThoseOfTheKeptList) {
    std::ifstream file(UTIL_EXPORTS_LIST);
    ASSERT_TRUE(file) << UTIL_EXPORTS_LIST;
    std::set<std::string> kept, actual;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        kept.insert(line);
    }
    for (const torture::Export& one : torture::exported("util.dll"))
        actual.insert(one.name);
    std::vector<std::string> added, gone;
    std::set_difference(actual.begin(), actual.end(), kept.begin(), kept.end(),
                        std::back_inserter(added));
    std::set_difference(kept.begin(), kept.end(), actual.begin(), actual.end(),
                        std::back_inserter(gone));
    EXPECT_EQ(added, std::vector<std::string>()) << "exported but not in the list";
    EXPECT_EQ(gone, std::vector<std::string>()) << "in the list but no longer exported";
}

TEST(HardeningTest, ProgramsThatShipAskForTheSystemsProtections) {
    constexpr WORD wanted = 0x0160;  // high-entropy addresses, dynamic base, no execution of data
    constexpr DWORD writable_code = IMAGE_SCN_MEM_EXECUTE | IMAGE_SCN_MEM_WRITE;
    for (const char* name : {"util.dll", "agent.exe"}) {
        const auto* base = reinterpret_cast<char*>(LoadLibraryExA(
            util_test::built_file(name).c_str(), nullptr, DONT_RESOLVE_DLL_REFERENCES));
        ASSERT_NE(base, nullptr) << name;
        const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
        const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
        EXPECT_EQ(nt->OptionalHeader.DllCharacteristics & wanted, wanted) << name;
        EXPECT_EQ(nt->FileHeader.Characteristics & IMAGE_FILE_RELOCS_STRIPPED, 0) << name;
        const IMAGE_SECTION_HEADER* section = IMAGE_FIRST_SECTION(nt);
        for (WORD i = 0; i < nt->FileHeader.NumberOfSections; ++i, ++section)
            EXPECT_NE(section->Characteristics & writable_code, writable_code) << section->Name;
    }
}

TEST(HardeningTest, NoOtherLibraryIsNeeded) {
    std::set<std::string> libraries;
    util_test::for_each_import("util.dll", [&](const char* library, const char*, void**) {
        libraries.insert(std::string(library) + " ");
    });
    EXPECT_EQ(std::accumulate(libraries.begin(), libraries.end(), std::string()),
              "ADVAPI32.dll KERNEL32.dll MPR.dll OLEAUT32.dll SETUPAPI.dll SHELL32.dll USER32.dll "
              "VERSION.dll WS2_32.dll libgcc_s_seh-1.dll libstdc++-6.dll "
              "msvcrt.dll ");
}

int write_too_much(char* name, int size) {
    std::memset(name, 'x', static_cast<std::size_t>(size) + 1000);
    return -1;
}

TEST(HardeningDeathTest, ADamagedStackEndsTheProcess) {
    const auto overflow = [] {
        const util_test::ImportPatch patch("gethostname", write_too_much);
        char name[8];
        ksl_gethostname(name, sizeof name);
    };
    const auto fails_fast = [](int code) { return static_cast<DWORD>(code) == 0xC0000409; };
    EXPECT_EXIT(overflow(), fails_fast, "");
}

}  // namespace
