
#include "support/built_file.h"
#include "support/cases.h"
#include "support/environment_change.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "util/files/cleanup_directory.h"
#include "util/files/create_directory.h"
#include "util/files/delete_file.h"
#include "util/files/path_lookup.h"
#include "util/files/xr_directory.h"

using util_test::call;
using util_test::said;
using util_test::to_wide;
using util_test::Words;

namespace {

const auto& any = Tools::FileAttr::any;

// $t is the path of an empty directory.
struct World : util_test::CaseWorld {
    World() {
        values["t"] = scratch.path();
        values["program"] = util_test::built_file("");
    }
    ~World() override { CloseHandle(held); }

    // The names in a directory, sorted; directories end with "\".
    Words list(const std::string& path) const {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(to_wide(path)))
            names.push_back(entry.path().filename().u8string() +
                            (entry.is_directory() ? "\\" : ""));
        std::sort(names.begin(), names.end());
        return said(names);
    }
    void hold(const std::string& path) {
        held = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                           OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    }
    // Where a program of that name, cut by the buffer, would be.
    static Words program_directory(const std::string& module) {
        const util_test::ImportPatch patch(
            "GetModuleFileNameA", [&](HMODULE, char* buffer, DWORD size) {
                module.copy(buffer, size);  // may leave no room for a NUL, as old systems do
                return static_cast<DWORD>(module.size());
            });
        return said(Tools::find_location("", any));
    }
    // The number of searches for a directory's entries, each of which fails.
    static Words clean_unlistable(const char* path) {
        int searches = 0;
        const util_test::ImportPatch patch("FindFirstFileW", [&] {
            ++searches;
            return INVALID_HANDLE_VALUE;
        });
        return said(UTIL_cleanupDir(path, 1), searches);
    }

    // Of the XrDirectory.
    Words names(bool include_hidden, bool refresh) const {
        Words result;
        for (const XrDirectoryEntry* entry : *opened->getDirectoryList(include_hidden, refresh))
            result.push_back(entry->str());
        return result;
    }
    Words entry(std::size_t index) const {
        const XrDirectoryEntry& one = *(*opened->getDirectoryList(true, false))[index];
        return said(one.getName(), util_test::hex(one.getMode()), one.getSize());
    }
    // The paths that are to be removed, in order. Only the removal of "C:\" fails.
    static Words tree_removals(const char* path) {
        Words removals;
        const util_test::ImportPatch patch("RemoveDirectoryA", [&](const char* removed) -> BOOL {
            removals.push_back(removed);
            return std::strcmp(removed, "C:\\") != 0;
        });
        return said(XrDirectory::DeleteDirectoryTree(path), removals);
    }

    std::unique_ptr<XrDirectory> opened;
    const util_test::ScratchDirectory scratch;
    std::optional<util_test::EnvironmentChange> path_variable;
    HANDLE held = INVALID_HANDLE_VALUE;
};

// -1 is followed by errno, which is 77 before.
template <int (*remove)(const char*)>
Words removed(const char* path) {
    errno = 77;
    const int result = remove(path);
    return result == -1 ? said(-1, errno) : said(result);
}

const util_test::Cases<World> cases(
    "files/paths.cases",
    {
        call("directory", [](World& w, const std::string& name) { w.scratch.directory(name); }),
        call("file", [](World& w, const std::string& name) { w.scratch.file(name); }),
        call("read_only",
             [](World& w, const std::string& name) {
                 SetFileAttributesA(w.scratch.file(name).c_str(), FILE_ATTRIBUTE_READONLY);
             }),
        call("hold", &World::hold),
        call("go_to", [](const std::string& path) { SetCurrentDirectoryW(to_wide(path).c_str()); }),
        call("set_path",
             [](World& w, const std::string& list) {
                 w.path_variable.emplace(L"PATH",
                                         list == "$null" ? nullptr : to_wide(list).c_str());
             }),
        call("list", &World::list),

        call("search", "\"\" ... | raises ...",
             [](const String& name, const std::string& elements) {
                 String list(elements);
                 const String found =
                     Tools::absolute_pathname(name, list, Tools::FileAttr::no_read);
                 return said(found, list);
             }),
        call("find", "\"\" | raises ...",
             [](const String& name) { return Tools::absolute_pathname(name, any); }),
        call("exists", "false", Tools::fileExists),
        call("program_directory", "\"\" | raises ...",
             [] { return Tools::find_location("ignored", any); }),
        call("program_directory_of", &World::program_directory),

        call("make", "0 false | 5 false | 8 false",
             [](const String& path) {
                 bool created = false;
                 const unsigned long code = UTIL_makeNewNTDir(path, &created);
                 return said(code, created);
             }),
        call("make_unasked", "0 | 5 | 8",
             [](const String& path) { return UTIL_makeNewNTDir(path, nullptr); }),
        call("make_all", "-1", UTIL_CreateDirectory),
        call("delete", "-1 ...", removed<UTIL_delete>),
        call("delete_read_only", "-1 ...", removed<UTIL_delete_readonly>),
        call("clean", "0 | 1", UTIL_cleanupDir),
        call("clean_unlistable", &World::clean_unlistable),

        call("open", "false | raises ...",
             [](World& w, const String& path) {
                 w.opened = std::make_unique<XrDirectory>(path);
                 return w.opened->isValid();
             }),
        call("opened_path", "raises ...", [](World& w) { return w.opened->getPath(); }),
        call("names", "none | raises ...", &World::names),
        call("entry", "... 0 0 | raises ...", &World::entry),
        call("destroy", [](World& w) { w.opened->destroy(); }),
        call("init", "raises ...",
             [](World& w, const String& path) {
                 w.opened->init(path);
                 return w.opened->isValid();
             }),
        call("is_directory", "false | raises ...", XrDirectory::IsDirectory),
        call("make_nothing",
             [](const String& path) {
                 return XrDirectory::CreateDirectoryA(path) +
                        XrDirectory::CreateDirectoryA(path.c_str());
             }),
        call("remove", "22 | raises ...",
             [](const char* path) { return XrDirectory::DeleteDirectory(path); }),
        call("remove_string", "22 | raises ...",
             [](const String& path) { return XrDirectory::DeleteDirectory(path); }),
        call("remove_tree", "1 | raises ...",
             [](const char* path) { return XrDirectory::DeleteDirectoryTree(path); }),
        call("remove_tree_string", "1 | raises ...",
             [](const String& path) { return XrDirectory::DeleteDirectoryTree(path); }),
        call("tree_removals", &World::tree_removals),
    });

}  // namespace
