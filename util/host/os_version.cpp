#include "util/host/os_version.h"

#include <cstdio>
#include <cstdlib>
#include <optional>
#include <string>

#include "util/internal/encoding.h"
#include "util/internal/guarded.h"
#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace {

constexpr unsigned short any = 0xFFFF;

// `Record` is the system's basic or extended version record. Its size says which.
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

template <typename Function>
Function* entry(HMODULE module, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

using IsWow64 = BOOL WINAPI(HANDLE, BOOL*);

IsWow64* is_wow64_entry() {
    return entry<IsWow64>(GetModuleHandleA("kernel32"), "IsWow64Process");
}

bool is_emulated() {
    BOOL emulated = FALSE;
    IsWow64* ask = is_wow64_entry();
    return ask && ask(GetCurrentProcess(), &emulated) && emulated;
}

template <typename State>
int switch_redirection(const char* name, State state) {
    if (!is_emulated()) return 1;
    util::ScopedModule module(LoadLibraryA("Kernel32.dll"));
    if (!module) return 0;
    auto* call = entry<BOOL WINAPI(State)>(module.get(), name);
    if (!call) return 0;
    module.release();  // the reference to the module stays, as the header says
    return call(state);
}

const char no_version[] = "";

// Returns null if the module has no version. The version is part of a block that stays allocated,
// as the header says.
const VS_FIXEDFILEINFO* version_of(const char* ansi_path) {
    DWORD unused;
    const DWORD size = GetFileVersionInfoSizeA(ansi_path, &unused);
    if (size == 0) return nullptr;
    void* block = std::malloc(size);
    void* root = nullptr;
    UINT root_size = 0;
    if (!block || !GetFileVersionInfoA(ansi_path, 0, size, block) ||
        !VerQueryValueA(block, "\\", &root, &root_size) || root_size < sizeof(VS_FIXEDFILEINFO)) {
        return nullptr;
    }
    return static_cast<const VS_FIXEDFILEINFO*>(root);
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
    // The result is 0 also when out of memory.
    return util::guarded(0, [&] {
        out = name;
        return 0;
    });
}

unsigned long UTIL_getIsWow64(unsigned char* flag) {
    if (!flag) return ERROR_INVALID_PARAMETER;
    *flag = 0;
    IsWow64* ask = is_wow64_entry();
    if (!ask) return 0;
    BOOL emulated = FALSE;
    if (!ask(GetCurrentProcess(), &emulated)) return GetLastError();
    if (emulated == TRUE) *flag = 1;
    return 0;
}

int UTIL_VornWow64DisableWow64FsRedirection(void** oldValue) {
    return switch_redirection("Wow64DisableWow64FsRedirection", oldValue);
}

int UTIL_VornWow64RevertWow64FsRedirection(void* oldValue) {
    return switch_redirection("Wow64RevertWow64FsRedirection", oldValue);
}

const char* UTIL_GetModuleVersion(const char* path, char* out) {
    if (!path || !out) return nullptr;
    *out = '\0';
    const auto* version = util::guarded(nullptr, [&]() -> const VS_FIXEDFILEINFO* {
        std::string ansi_path;
        return util::utf8_to_ansi(path, ansi_path) ? version_of(ansi_path.c_str()) : nullptr;
    });
    if (!version) return no_version;
    const DWORD high = version->dwFileVersionMS;
    const DWORD low = version->dwFileVersionLS;
    std::sprintf(out, "%d.%d.%d.%d", HIWORD(high), LOWORD(high), HIWORD(low),
                 static_cast<int>(low & 0xFFFF0000));
    return out;
}
