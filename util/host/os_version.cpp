#include "util/host/os_version.h"

#include <cstdio>
#include <new>
#include <optional>

#include "util/internal/windows.h"

namespace {

constexpr unsigned short any = 0xFFFF;

// Record is the system's basic or its extended one; the size tells which.
template <typename Record>
std::optional<Record> running_version() {
    Record record = {};
    record.dwOSVersionInfoSize = sizeof record;
    if (!GetVersionExA(reinterpret_cast<OSVERSIONINFOA*>(&record))) return std::nullopt;
    return record;
}

using Version = OSVERSIONINFOEXA;
static_assert(sizeof(Version) == 156 && sizeof(OSVERSIONINFOA) == 148);

unsigned short r2_flag(const Version& version) {
    const auto is = [&](DWORD major, DWORD minor) {
        return version.dwMajorVersion == major && version.dwMinorVersion == minor;
    };
    if (is(5, 2)) return GetSystemMetrics(SM_SERVERR2) != 0;
    return is(6, 1) && version.wProductType != VER_NT_WORKSTATION;
}

template <typename Number, typename Value>
void store(Number* out, Value value) {
    if (out) *out = value;
}

const char* nt_name(DWORD major, DWORD minor) {
    if (major <= 4) return "Windows NT";
    if (major > 5) return "Windows";
    switch (minor) {
        case 0:
            return "Windows 2000";
        case 1:
            return "Windows XP";
        default:
            return "Windows 2003";
    }
}

}  // namespace

int UTIL_GetOsVersion(unsigned long* major, unsigned long* minor, unsigned short* spMajor,
                      unsigned short* spMinor, unsigned short* productType, unsigned short* r2) {
    const auto version = running_version<Version>();
    if (!version) return -1;
    store(major, version->dwMajorVersion);
    store(minor, version->dwMinorVersion);
    store(spMajor, version->wServicePackMajor);
    store(spMinor, version->wServicePackMinor);
    store(productType, version->wProductType);
    store(r2, r2_flag(*version));
    return 0;
}

int UTIL_IsOSVersionAtLeast(unsigned long major, unsigned long minor) {
    const auto version = running_version<Version>();
    if (!version) return -1;
    if (version->dwMajorVersion != major) return version->dwMajorVersion > major;
    return version->dwMinorVersion >= minor;
}

int UTIL_IsOSVersionEqualTo(unsigned long major, unsigned long minor, unsigned short spMajor,
                            unsigned short spMinor, unsigned short productType, unsigned short r2) {
    const auto version = running_version<Version>();
    if (!version) return -1;
    return version->dwMajorVersion == major && version->dwMinorVersion == minor &&
           (spMajor == any || version->wServicePackMajor == spMajor) &&
           (spMinor == any || version->wServicePackMinor == spMinor) &&
           (productType == any || version->wProductType >= productType) &&
           (r2 == any || r2_flag(*version) == r2);
}

int UTIL_IsEnterpriseEdition() {
    const auto version = running_version<Version>();
    if (!version) return -1;
    return (version->wSuiteMask & (VER_SUITE_ENTERPRISE | VER_SUITE_DATACENTER)) != 0;
}

int UTIL_IsWin2k3SP_1_Or_Later() {
    const auto version = running_version<Version>();
    if (!version) return -1;
    return version->dwMajorVersion >= 5 && version->dwMinorVersion >= 2 &&
           version->wServicePackMajor > 0;
}

bool UTIL_IsVSSTransportableSupported() {
    return UTIL_IsEnterpriseEdition() == 1 || UTIL_IsWin2k3SP_1_Or_Later() == 1;
}

int UTIL_getFeatureSet() {
    return 1;
}

int UTIL_getPlatform(String& out) {
    char name[32] = "Windows";
    if (const auto version = running_version<OSVERSIONINFOA>()) {
        const DWORD major = version->dwMajorVersion;
        const DWORD minor = version->dwMinorVersion;
        switch (version->dwPlatformId) {
            case VER_PLATFORM_WIN32s:
                std::snprintf(name, sizeof name, "Windows 3.1 %d", static_cast<int>(major));
                break;
            case VER_PLATFORM_WIN32_WINDOWS:
                std::snprintf(name, sizeof name, "%s", minor == 0 ? "Windows95" : "Windows98");
                break;
            case VER_PLATFORM_WIN32_NT:
                std::snprintf(name, sizeof name, "%s", nt_name(major, minor));
                break;
        }
    }
    try {
        out = name;
    } catch (const std::bad_alloc&) {  // the result has no room for it
    }
    return 0;
}
