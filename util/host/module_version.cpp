#include "util/host/module_version.h"

#include <cstdio>
#include <cstdlib>
#include <new>
#include <string>

#include "util/internal/encoding.h"
#include "util/internal/windows.h"

namespace {

const char no_version[] = "";

// Within the module's version resource, which stays allocated, as the header says; null without.
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

const char* UTIL_GetModuleVersion(const char* path, char* out) {
    if (!path || !out) return nullptr;
    *out = '\0';
    const VS_FIXEDFILEINFO* version = nullptr;
    try {
        std::string ansi_path;
        if (util::utf8_to_ansi(path, ansi_path)) version = version_of(ansi_path.c_str());
    } catch (const std::bad_alloc&) {  // as for a version that cannot be read
    }
    if (!version) return no_version;
    const DWORD high = version->dwFileVersionMS;
    const DWORD low = version->dwFileVersionLS;
    std::sprintf(out, "%d.%d.%d.%d", HIWORD(high), LOWORD(high), HIWORD(low),
                 static_cast<int>(low & 0xFFFF0000));
    return out;
}
