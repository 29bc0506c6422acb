#include "util/host/volume_manager.h"

#include <algorithm>
#include <iterator>
#include <string>
#include <utility>

#include "util/internal/registry.h"

namespace {

constexpr char key_prefix[] = "SOFTWARE\\VERITAS\\Volume Manager ";

util::ScopedKey open_version(const char* version, REGSAM access) {
    return util::open_machine_key((std::string(key_prefix) + version).c_str(), access);
}

}  // namespace

bool UTIL_GetVeritasVersion(char* out) try {
    if (!out) return false;
    for (char major = '9'; major >= '2'; --major) {
        for (char minor = '9'; minor >= '0'; --minor) {
            const char version[] = {major, '.', minor, '\0'};
            if (!open_version(version, KEY_READ)) continue;
            std::copy(std::begin(version), std::end(version), out);
            return true;
        }
    }
    return false;
} catch (...) {
    return false;
}

bool UTIL_GetVeritasPath(String& path, String& message) try {
    char version[4];
    if (!UTIL_GetVeritasVersion(version)) return false;
    const util::ScopedKey key = open_version(version, KEY_ALL_ACCESS);
    if (!key) {
        message =
            "SS: Could not Veritas Key, please ensure that Volume Manager 3.0 is installed in the "
            "registry";
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
} catch (...) {
    return false;
}
