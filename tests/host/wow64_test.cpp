#include "util/host/wow64.h"

#include <gtest/gtest.h>

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
std::string log;  // what was done with it

BOOL WINAPI is_wow64(HANDLE, BOOL* answer) {
    *answer = kernel.emulated;
    SetLastError(77);
    return kernel.answers;
}
BOOL WINAPI switch_redirection(int* state) {
    log += "call " + std::to_string(++*state) + " ";
    return 5;
}
void* WINAPI get_entry(HMODULE, const char* name) {
    if (name == std::string("IsWow64Process"))
        return kernel.has_question ? reinterpret_cast<void*>(is_wow64) : nullptr;
    log += name + std::string(" ");
    return kernel.has_switch ? reinterpret_cast<void*>(switch_redirection) : nullptr;
}
HMODULE WINAPI load(const char* name) {
    return kernel.loads ? GetModuleHandleA(name) : nullptr;
}
BOOL WINAPI free_module(HMODULE) {
    log += "free ";
    return TRUE;
}

TEST(Wow64Test, EveryStepOfTheSwitch) {
    const std::string disable = "Wow64DisableWow64FsRedirection ";
    const std::string revert = "Wow64RevertWow64FsRedirection ";
    const std::string calls = disable + "call 1 " + revert + "call 2 ";
    const struct {
        Kernel kernel;
        DWORD flag_error;
        int flag, switched;
        std::string log;
    } cases[] = {
        {{false, 1, 1, true, true}, 0, 0, 1, ""},  // a system without emulation
        {{true, 0, 1, true, true}, 77, 0, 1, ""},
        {{true, 1, 0, true, true}, 0, 0, 1, ""},
        {{true, 1, 1, false, true}, 0, 1, 0, ""},
        {{true, 1, 1, true, false}, 0, 1, 0, disable + "free " + revert + "free "},
        {{true, 1, 1, true, true}, 0, 1, 5, calls},  // the switch's own result; the module stays
        {{true, 1, 2, true, true}, 0, 0, 5, calls},  // the flag wants exactly 1
    };
    unsigned char flag = 7;
    EXPECT_EQ(UTIL_getIsWow64(&flag), 0u);
    EXPECT_EQ(flag, 0) << "as it really is";
    EXPECT_EQ(UTIL_getIsWow64(nullptr), DWORD(ERROR_INVALID_PARAMETER));
    const ImportPatch entry("GetProcAddress", get_entry), library("LoadLibraryA", load),
        release("FreeLibrary", free_module);
    for (const auto& c : cases) {
        SCOPED_TRACE(&c - cases);
        kernel = c.kernel;
        EXPECT_EQ(UTIL_getIsWow64(&flag), c.flag_error);
        EXPECT_EQ(flag, c.flag);

        int state = 0;
        log.clear();
        EXPECT_EQ(UTIL_VornWow64DisableWow64FsRedirection(reinterpret_cast<void**>(&state)),
                  c.switched);
        EXPECT_EQ(UTIL_VornWow64RevertWow64FsRedirection(&state), c.switched);
        EXPECT_EQ(log, c.log);
    }
}

}  // namespace
