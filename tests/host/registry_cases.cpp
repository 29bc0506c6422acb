#include "util/host/registry.h"

#include "support/cases.h"
#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/private_registry.h"
#include "support/scratch_directory.h"
#include "torture/resources.h"
#include "util/host/installed_products.h"

using namespace util_test;

namespace {

const std::string key = "SOFTWARE\\Acme\\Agent";
const std::string manager = "SOFTWARE\\VERITAS\\Volume Manager";

struct World : CaseWorld {
    World() {
        values = {
            {"key", key},
            {"manager", manager},
            {"unread", "SS: Could not find path to Veritas directory in the registry, error num ="},
            {"unopened",
             "SS: Could not Veritas Key, please ensure that Volume Manager 3.0 is "
             "installed in the registry"}};
    }

    PrivateRegistry registry;
    std::optional<AccessLimit> limit;
    std::optional<ImportPatch> patch;
    const long handles = handle_count();
};

void set_wide(const std::string& path, const std::string& name, const std::string& text) {
    PrivateRegistry::set_wide(path, to_wide(name).c_str(), to_wide(text));
}
int value(const std::string& type, const std::string& bytes, String& out) {
    PrivateRegistry::set(key, "Home", PrivateRegistry::type_of(type), bytes);
    return UTIL_GetRegistryValue(key, "Home", out);
}
long blocks_kept(const String& path, const String& name) {
    const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
    String out;
    UTIL_GetRegistryValue(path, name, out);  // the platform keeps some from first use on
    const long before = torture::blocks_of(heap);
    for (int i = 0; i < 100; ++i)
        UTIL_GetRegistryValue(path, name, out);
    return (torture::blocks_of(heap) - before) / 100;
}
Words version() {
    char out[] = "###|";
    const bool found = UTIL_GetVeritasVersion(out);
    return said(found, std::string(out, sizeof out));
}
bool install_path_of(const std::string& type, const std::string& bytes, String& path,
                     String& message) {
    PrivateRegistry::set(manager + " 4.1", "InstallDir", PrivateRegistry::type_of(type), bytes);
    return UTIL_GetVeritasPath(path, message);
}
bool database_at(const std::string& path, const std::string& user, const std::string& password,
                 String& path_out, String& user_out, String& password_out) {
    set_wide(key, "Database Path", path);
    for (const auto& [name, text] :
         {std::pair("DatabaseUsername", user), std::pair("DatabasePassword", password)}) {
        PrivateRegistry::remove_value(key, name);
        if (text != "$null") set_wide(key, name, text + '\0');
    }
    return UTIL_getTSSEDBInfoFromRegistry(key, path_out, user_out, password_out);
}

const char database_failure[] = "false ... before before";
const char unconverted_path[] = "false \"\" before before";  // leaves the key open

const Cases<World> cases(
    "host/registry.cases",
    {
        call("set_text", PrivateRegistry::set_text),
        call("set_wide", set_wide),
        call("create", PrivateRegistry::create),
        call("remove", PrivateRegistry::remove_value),
        call("delete_key",
             [](const char* path) { return RegDeleteKeyA(HKEY_LOCAL_MACHINE, path); }),
        call("allow_nobody", [](World& w, const std::string& path) { w.limit.emplace(path, 0); }),
        call("allow_reading",
             [](World& w, const std::string& path) { w.limit.emplace(path, KEY_READ); }),
        call("allow_all", [](World& w) { w.limit.reset(); }),
        call("refuse", [](World& w, const char* name) { w.patch.emplace(name, fails<0>); }),
        call("open_keys", [](World& w) { return handle_count() - w.handles; }),

        call("get", "-1 before", UTIL_GetRegistryValue).keeps(1, "heap blocks"),
        call("value", "-1 before", value).keeps(1, "heap blocks"),
        call("blocks_kept", blocks_kept),
        call("version", "false \"###|{00}\"", version),
        call("version_nowhere", [] { return UTIL_GetVeritasVersion(nullptr); }),
        call("install_path", "false before ...", UTIL_GetVeritasPath),
        call("install_path_of", "false before ...", install_path_of),
        call("database", database_failure, UTIL_getTSSEDBInfoFromRegistry)
            .keeps(1, "kernel handles", unconverted_path),
        call("database_at", database_failure, database_at)
            .keeps(1, "kernel handles", unconverted_path),
    });

}  // namespace
