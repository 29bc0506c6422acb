#include "util/host/registry.h"

#include "support/cases.h"
#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/private_registry.h"
#include "support/scratch_directory.h"
#include "torture/resources.h"
#include "util/host/installed_products.h"

using util_test::call;
using util_test::said;
using util_test::to_wide;
using util_test::Words;

namespace {

const std::string key = "SOFTWARE\\Acme\\Agent";
const std::string manager = "SOFTWARE\\VERITAS\\Volume Manager ";

// A registry of its own. Texts that a function may set are "before".
struct World : util_test::CaseWorld {
    World() {
        values = {
            {"key", key},
            {"v41", manager + "4.1"},
            {"v99", manager + "9.9"},
            {"unread", "SS: Could not find path to Veritas directory in the registry, error num ="},
            {"unopened",
             "SS: Could not Veritas Key, please ensure that Volume Manager 3.0 is "
             "installed in the registry"}};
    }

    static DWORD type_of(const std::string& name) {
        static const std::map<std::string, DWORD> types = {{"text", REG_SZ},
                                                           {"expand", REG_EXPAND_SZ},
                                                           {"binary", REG_BINARY},
                                                           {"number", REG_DWORD},
                                                           {"texts", REG_MULTI_SZ}};
        return types.at(name);
    }
    Words get(const char* path, const char* name) const {
        String out = "before";
        const int result = UTIL_GetRegistryValue(path, name, out);
        return said(result, out);
    }
    Words value(const std::string& type, const std::string& bytes) {
        registry.set(key, "Home", type_of(type), bytes);
        return get(key.c_str(), "Home");
    }
    long blocks_kept(const char* path, const char* name) const {
        const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
        get(path, name);  // the platform keeps some from first use on
        const long before = torture::blocks_of(heap);
        for (int i = 0; i < 100; ++i)
            get(path, name);
        return (torture::blocks_of(heap) - before) / 100;
    }
    static Words version() {
        char out[] = "###|";
        const bool found = UTIL_GetVeritasVersion(out);
        return said(found, std::string(out, sizeof out));
    }
    Words install_path() const {
        String path = "before", message = "before";
        const bool found = UTIL_GetVeritasPath(path, message);
        return said(found, path, message);
    }
    Words install_path_of(const std::string& type, const std::string& bytes) {
        registry.set(manager + "4.1", "InstallDir", type_of(type), bytes);
        return install_path();
    }
    Words database(const char* path_of_key) const {
        String path = "before", user = "before", password = "before";
        const bool found = UTIL_getTSSEDBInfoFromRegistry(path_of_key, path, user, password);
        return said(found, path, user, password);
    }
    Words database_at(const std::string& path, const std::string& user,
                      const std::string& password) {
        registry.set_wide(key, L"Database Path", to_wide(path));
        const auto store = [&](const char* name, const std::string& text) {
            registry.remove_value(key, name);
            if (text != "$null")
                registry.set_wide(key, to_wide(name).c_str(), to_wide(text) + L'\0');
        };
        store("DatabaseUsername", user);
        store("DatabasePassword", password);
        return database(key.c_str());
    }

    util_test::PrivateRegistry registry;
    std::optional<util_test::AccessLimit> limit;
    std::optional<util_test::ImportPatch> patch;
    const long handles = util_test::handle_count();
};

const util_test::Cases<World> cases(
    "host/registry.cases",
    {
        call("set_text", [](World& w, const std::string& path, const char* name,
                            const std::string& text) { w.registry.set_text(path, name, text); }),
        call("set_wide",
             [](World& w, const std::string& path, const std::string& name,
                const std::string& text) {
                 w.registry.set_wide(path, to_wide(name).c_str(), to_wide(text));
             }),
        call("install",
             [](World& w, const std::string& version) { w.registry.create(manager + version); }),
        call("remove", [](World& w, const std::string& path,
                          const char* name) { w.registry.remove_value(path, name); }),
        call("clear", [](World& w) { w.registry.clear(); }),
        call("delete_key",
             [](const char* path) { return RegDeleteKeyA(HKEY_LOCAL_MACHINE, path); }),
        call("allow_nobody", [](World& w, const std::string& path) { w.limit.emplace(path, 0); }),
        call("allow_reading",
             [](World& w, const std::string& path) { w.limit.emplace(path, KEY_READ); }),
        call("allow_all", [](World& w) { w.limit.reset(); }),
        call("refuse",
             [](World& w, const char* function) {
                 w.patch.emplace(function, util_test::fails<0>);
             }),
        call("open_keys", [](World& w) { return util_test::handle_count() - w.handles; }),

        call("get", "-1 before", &World::get),
        call("value", "-1 before", &World::value),
        call("blocks_kept", &World::blocks_kept),
        call("version", "false ...", World::version),
        call("version_nowhere", [] { return UTIL_GetVeritasVersion(nullptr); }),
        call("install_path", "false before ...", &World::install_path),
        call("install_path_of", "false before ...", &World::install_path_of),
        call("database", "false ... before before", &World::database),
        call("database_at", "false ... before before", &World::database_at),
    });

}  // namespace
