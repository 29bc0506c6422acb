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
        record = {};
        record.dwPlatformId = platform;
        record.dwMajorVersion = major;
        record.dwMinorVersion = minor;
        record.wServicePackMajor = service_pack;
        record.wServicePackMinor = 7;
        record.wProductType = type;
    }
    // Major and minor version, service pack, type, R2.
    static Words version() {
        unsigned long major = 77, minor = 77;
        unsigned short sp_major = 77, sp_minor = 77, type = 77, r2 = 77;
        const int result = UTIL_GetOsVersion(&major, &minor, &sp_major, &sp_minor, &type, &r2);
        const int is_this = UTIL_IsOSVersionEqualTo(major, minor, sp_major, sp_minor, type, r2);
        EXPECT_EQ(is_this, result == 0 ? 1 : -1);
        return said(result, major, minor, sp_major, sp_minor, type, r2);
    }
    static Words platform() {
        String name = "before";
        const int result = UTIL_getPlatform(name);
        return said(result, name);
    }
    // Enterprise edition, service pack 1 of Windows 2003 or later, transportable shadow copies.
    static Words flags() {
        return said(UTIL_IsEnterpriseEdition(), UTIL_IsWin2k3SP_1_Or_Later(),
                    UTIL_IsVSSTransportableSupported());
    }

    // The flag of the emulation, and the result of switching its redirection off and on again.
    static Words is_wow64() {
        unsigned char flag = 7;
        const unsigned long result = UTIL_getIsWow64(&flag);
        return said(result, int(flag));
    }
    Words redirect() {
        int state = 0;
        log.clear();
        const int off = UTIL_VornWow64DisableWow64FsRedirection(reinterpret_cast<void**>(&state));
        const int on = UTIL_VornWow64RevertWow64FsRedirection(&state);
        EXPECT_EQ(off, on);
        return said(off, log);
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
    bool exports_question = true, exports_switch = true, loads = true;
    BOOL tells = TRUE, emulated = TRUE;
    std::string log;
    const ImportPatch entry{
        "GetProcAddress", [this](HMODULE, const char* name) -> void* {
            if (name == std::string("IsWow64Process"))
                return exports_question ? reinterpret_cast<void*>(tell_emulation) : nullptr;
            log += name + std::string(" ");
            return exports_switch ? reinterpret_cast<void*>(switch_redirection) : nullptr;
        }};
    const ImportPatch load{"LoadLibraryA", [this](const char* name) {
                               return loads ? GetModuleHandleA(name) : nullptr;
                           }};
    const ImportPatch release{"FreeLibrary", [this] {
                                  log += "free ";
                                  return TRUE;
                              }};

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

const util_test::Cases<World> cases(
    "host/os_version.cases",
    {
        call("windows", &World::windows),
        call("edition",
             [](World& w, WORD suite, int r2_metric) {
                 w.record.wSuiteMask = suite;
                 w.r2_metric = r2_metric;
             }),
        call("version", World::version),
        call("platform", World::platform),
        call("flags", World::flags),
        call("at_least", UTIL_IsOSVersionAtLeast),
        call("equal", UTIL_IsOSVersionEqualTo),
        call("no_question", [](World& w) { w.exports_question = false; }),
        call("no_answer", [](World& w) { w.tells = FALSE; }),
        call("emulated", [](World& w, int answer) { w.emulated = answer; }),
        call("no_library", [](World& w) { w.loads = false; }),
        call("no_switch", [](World& w) { w.exports_switch = false; }),
        call("is_wow64", World::is_wow64),
        call("is_wow64_nowhere", [] { return UTIL_getIsWow64(nullptr); }),
        call("redirect", &World::redirect),
        call("nothing_asked",
             [] {
                 return UTIL_GetOsVersion(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
             }),
    });

}  // namespace
