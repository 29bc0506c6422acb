#include "util/host/os_version.h"

#include "support/cases.h"
#include "support/import_patch.h"

using util_test::call;
using util_test::ImportPatch;
using util_test::said;
using util_test::Words;

namespace {

// Replaces the calls for the version, so that a case can choose any edition and version.
struct World : util_test::CaseWorld {
    World() {
        values["any"] = "65535";
        values["most"] = "4294967295";
        current = this;
    }
    void windows(DWORD platform, DWORD major, DWORD minor, WORD service_pack, BYTE type) {
        answers = true;
        record = {0, major, minor, 0, platform, "", service_pack, 7, 0, type, 0};
    }
    // The result of switching the redirection, and the calls made for it.
    Words switch_off() {
        void** const old = reinterpret_cast<void**>(&state);
        const int result = UTIL_VornWow64DisableWow64FsRedirection(old);
        return said(result, std::exchange(log, ""));
    }
    Words switch_on() {
        const int result = UTIL_VornWow64RevertWow64FsRedirection(&state);
        return said(result, std::exchange(log, ""));
    }
    static BOOL WINAPI tell_emulation(HANDLE, BOOL* answer) {
        *answer = current->emulated;
        SetLastError(77);
        return current->tells;
    }
    static BOOL WINAPI switch_redirection(int* state) {
        current->log += "call " + std::to_string(++*state) + " ";
        return 5;
    }

    // kernel32: what it exports, loads and tells about the emulation, and the calls made of it.
    static inline World* current = nullptr;
    bool exports_question = true, exports_switch = true;
    BOOL tells = TRUE, emulated = TRUE;
    int state = 0;
    std::string log;
    const ImportPatch entry{
        "GetProcAddress", [this](HMODULE, const char* name) -> void* {
            if (name == std::string("IsWow64Process"))
                return exports_question ? reinterpret_cast<void*>(tell_emulation) : nullptr;
            log += name + std::string(" ");
            return exports_switch ? reinterpret_cast<void*>(switch_redirection) : nullptr;
        }};
    const ImportPatch release{"FreeLibrary", [this] {
                                  log += "free ";
                                  return TRUE;
                              }};

    std::optional<ImportPatch> library;

    OSVERSIONINFOEXA record = {};
    bool answers = false;
    int r2_metric = 0;

    const ImportPatch query{"GetVersionExA", [this](OSVERSIONINFOA* out) {
                                const DWORD size = out->dwOSVersionInfoSize;
                                if (!answers || (size != 148 && size != 156)) return FALSE;
                                std::memcpy(out, &record, size);
                                return TRUE;
                            }};
    const ImportPatch metric{"GetSystemMetrics",
                             [this](int index) { return index == 89 ? r2_metric : 0; }};
};

// Major and minor version, service pack, type, R2. Then whether the version equals these.
Words version() {
    unsigned long major = 77, minor = 77;
    unsigned short sp_major = 77, sp_minor = 77, type = 77, r2 = 77;
    const int result = UTIL_GetOsVersion(&major, &minor, &sp_major, &sp_minor, &type, &r2);
    const int is_this = UTIL_IsOSVersionEqualTo(major, minor, sp_major, sp_minor, type, r2);
    return said(result, major, minor, sp_major, sp_minor, type, r2, is_this);
}
int nothing_asked() {
    return UTIL_GetOsVersion(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}
// Enterprise edition, service pack 1 of Windows 2003 or later, transportable shadow copies.
Words flags() {
    return said(UTIL_IsEnterpriseEdition(), UTIL_IsWin2k3SP_1_Or_Later(),
                UTIL_IsVSSTransportableSupported());
}
Words is_wow64() {
    unsigned char flag = 7;
    const unsigned long result = UTIL_getIsWow64(&flag);
    return said(result, int(flag));
}

const char switch_failure[] = "1 \"\" | 0 \"\" | 0 \"free \"";

const util_test::Cases<World> cases(
    "host/os_version.cases",
    {
        call("windows", &World::windows),
        call("edition",
             [](World& w, WORD suite, int r2_metric) {
                 w.record.wSuiteMask = suite;
                 w.r2_metric = r2_metric;
             }),
        call("version", "-1 77 77 77 77 77 77 ... | 0 5 2 1 7 3 0 ... | 0 5 2 1 7 3 1 0 | 0 ... -1",
             version),
        call("platform", "0 Windows", UTIL_getPlatform),
        call("flags", "-1 ... | ... -1 ... | ... false", flags),
        call("at_least", "-1", UTIL_IsOSVersionAtLeast),
        call("equal", "-1 | 0", UTIL_IsOSVersionEqualTo),
        call("no_question", [](World& w) { w.exports_question = false; }),
        call("no_answer", [](World& w) { w.tells = FALSE; }),
        call("emulated", [](World& w, int answer) { w.emulated = answer; }),
        call("no_library",
             [](World& w) { w.library.emplace("LoadLibraryA", util_test::fails<0>); }),
        call("no_switch", [](World& w) { w.exports_switch = false; }),
        call("is_wow64", "0 0", is_wow64),
        call("is_wow64_nowhere", [] { return UTIL_getIsWow64(nullptr); }),
        call("switch_off", switch_failure, &World::switch_off)
            .keeps(1, "module references", "5 ..."),
        call("switch_on", switch_failure, &World::switch_on).keeps(1, "module references", "5 ..."),
        call("nothing_asked", nothing_asked),
    });

}  // namespace
