#include "util/host/installed_products.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "util/files/path_lookup.h"
#include "util/internal/guarded.h"
#include "util/internal/registry.h"
#include "util/internal/service.h"

namespace {

bool is_installed(const char* service) {
    return util::guarded(false, [&] { return util::is_service_installed(service); });
}

util::ScopedKey open_volume_manager(const char* version, REGSAM access) {
    const std::string prefix = "SOFTWARE\\VERITAS\\Volume Manager ";
    return util::open_machine_key((prefix + version).c_str(), access);
}

// Returns "" if the program's own directory has no snapshot tool.
String find_beside_program() {
    const String directory = Tools::find_location("", Tools::FileAttr::any);
    if (directory.empty()) return {};
    String candidate = directory + "tssnap.exe";
    return Tools::fileExists(candidate) ? candidate : String();
}

String find_snapshot_tool() {
    // Running out of memory beside the program must not end the search.
    String beside = util::guarded([] { return String(); }, find_beside_program);
    if (!beside.empty()) return beside;
    for (const char* installed :
         {"C:\\Program Files\\Vorn\\Halcyra Vexsnap\\vexsnap.exe",
          "C:\\Program Files\\Vorn\\Halcyra Vexsnap for Win2K\\vexsnap.exe"}) {
        if (Tools::fileExists(installed)) return installed;
    }
    return Tools::absolute_pathname("vexsnap.exe", Tools::FileAttr::any);
}

}  // namespace

bool UTIL_IsClustered(const String& name) {
    return is_installed(name);
}

bool UTIL_IsCluster() {
    return is_installed("ClusSvc");
}

bool UTIL_GetVeritasVersion(char* out) {
    if (!out) return false;
    return util::guarded(false, [&] {
        for (char major = '9'; major >= '2'; --major) {
            for (char minor = '9'; minor >= '0'; --minor) {
                const char version[] = {major, '.', minor, '\0'};
                if (!open_volume_manager(version, KEY_READ)) continue;
                std::copy(std::begin(version), std::end(version), out);
                return true;
            }
        }
        return false;
    });
}

bool UTIL_GetVeritasPath(String& path, String& message) {
    return util::guarded(false, [&] {
        char version[4];
        if (!UTIL_GetVeritasVersion(version)) return false;
        const util::ScopedKey key = open_volume_manager(version, KEY_ALL_ACCESS);
        if (!key) {
            message =
                "SS: Could not Veritas Key, please ensure that Volume Manager 3.0 is installed in "
                "the registry";
            return false;
        }
        constexpr DWORD room = 260;
        std::string text;
        const LSTATUS result = util::read_any_type(key, "InstallDir", room, text);
        if (result != ERROR_SUCCESS) {
            message = String::format(
                "SS: Could not find path to Veritas directory in the registry, error num = %lu",
                static_cast<unsigned long>(result));
            return false;
        }
        path = String(std::move(text));
        return true;
    });
}

int UTIL_GetHalcVexsnapFileName(String& out) {
    return util::guarded(-1, [&] {
        out = String();
        out = find_snapshot_tool();
        return out.empty() ? -1 : 0;
    });
}
