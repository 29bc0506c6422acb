#include "util/host/os_version.h"

#include <cstring>

#include "support/cases.h"
#include "support/import_patch.h"

using util_test::call;
using util_test::ImportPatch;
using util_test::said;
using util_test::Words;

namespace {

// A Windows as a case wants it: editions and versions that no setting brings about.
struct World : util_test::CaseWorld {
    World() {
        values["any"] = "65535";
        values["most"] = "4294967295";
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

const util_test::Cases<World> cases("host/os_version.cases",
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
                                        call("nothing_asked",
                                             [] {
                                                 return UTIL_GetOsVersion(nullptr, nullptr, nullptr,
                                                                          nullptr, nullptr,
                                                                          nullptr);
                                             }),
                                    });

}  // namespace
