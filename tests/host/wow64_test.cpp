#include "util/host/wow64.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "support/import_patch.h"

using util_test::ImportPatch;

namespace {

// kernel32 as a test wants it.
struct Kernel {
    bool has_question;
    BOOL answers, emulated;
    bool loads, has_switch;
} kernel;
int frees;
std::string switch_name;
void* switch_state;

BOOL WINAPI is_wow64(HANDLE, BOOL* answer) {
    *answer = kernel.emulated;
    SetLastError(77);
    return kernel.answers;
}
BOOL WINAPI switch_redirection(void* state) {
    switch_state = state;
    return 5;
}
void* WINAPI get_entry(HMODULE, const char* name) {
    if (!std::strcmp(name, "IsWow64Process"))
        return kernel.has_question ? reinterpret_cast<void*>(is_wow64) : nullptr;
    switch_name = name;
    SetLastError(78);
    return kernel.has_switch ? reinterpret_cast<void*>(switch_redirection) : nullptr;
}
HMODULE WINAPI load(const char* name) {
    return kernel.loads ? GetModuleHandleA(name) : nullptr;
}
BOOL WINAPI free_module(HMODULE) {
    ++frees;
    SetLastError(88);
    return TRUE;
}

TEST(Wow64Test, ANativeProcessHasNothingToSwitch) {
    unsigned char flag = 7;
    EXPECT_EQ(UTIL_getIsWow64(&flag), 0u);
    EXPECT_EQ(flag, 0);
    EXPECT_EQ(UTIL_getIsWow64(nullptr), DWORD(ERROR_INVALID_PARAMETER));
    void* state = &flag;
    EXPECT_EQ(UTIL_VornWow64DisableWow64FsRedirection(&state), 1);
    EXPECT_EQ(UTIL_VornWow64RevertWow64FsRedirection(state), 1);
    EXPECT_EQ(state, &flag);
}

TEST(Wow64Test, EveryStepOfTheSwitch) {
    const struct {
        Kernel kernel;
        DWORD flag_error;
        int flag, switched, frees;
    } cases[] = {
        {{false, 1, 1, true, true}, 0, 0, 1, 0},  // a system without emulation
        {{true, 0, 1, true, true}, 77, 0, 1, 0}, {{true, 1, 0, true, true}, 0, 0, 1, 0},
        {{true, 1, 1, false, true}, 0, 1, 0, 0}, {{true, 1, 1, true, false}, 0, 1, 0, 1},
        {{true, 1, 1, true, true}, 0, 1, 5, 0},  // the switch's own result; the module stays
        {{true, 1, 2, true, true}, 0, 0, 5, 0},  // the flag wants exactly 1
    };
    ImportPatch entry("GetProcAddress", get_entry), library("LoadLibraryA", load),
        release("FreeLibrary", free_module);
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        kernel = c.kernel;
        unsigned char flag = 7;
        EXPECT_EQ(UTIL_getIsWow64(&flag), c.flag_error);
        EXPECT_EQ(flag, c.flag);

        void* state = nullptr;
        frees = 0;
        switch_state = nullptr;
        EXPECT_EQ(UTIL_VornWow64DisableWow64FsRedirection(&state), c.switched);
        EXPECT_EQ(switch_state, c.switched == 5 ? &state : nullptr);
        EXPECT_EQ(UTIL_VornWow64RevertWow64FsRedirection(&flag), c.switched);
        EXPECT_NE(GetLastError(), 88u) << "giving the module back keeps the error";
        EXPECT_EQ(switch_state, c.switched == 5 ? &flag : nullptr);
        EXPECT_EQ(frees, 2 * c.frees);
    }
    UTIL_VornWow64DisableWow64FsRedirection(nullptr);
    EXPECT_EQ(switch_name, "Wow64DisableWow64FsRedirection");
    UTIL_VornWow64RevertWow64FsRedirection(nullptr);
    EXPECT_EQ(switch_name, "Wow64RevertWow64FsRedirection");
}

}  // namespace
