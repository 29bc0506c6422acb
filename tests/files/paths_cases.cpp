#include <sys/stat.h>

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
#include "util/portable/utf8_files.h"

using namespace util_test;

namespace {

const auto& any = Tools::FileAttr::any;

// $t is the path of an empty directory.
struct World : CaseWorld {
    World() {
        values = {
            {"t", scratch.path()}, {"tail", scratch.path().substr(3)}, {"program", built_file("")}};
    }
    ~World() override {
        CloseHandle(held);
        SetFileApisToANSI();
    }

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
        const ImportPatch patch("GetModuleFileNameA", [&](HMODULE, char* buffer, DWORD size) {
            module.copy(buffer, size);  // may leave no room for a NUL, as old systems do
            return static_cast<DWORD>(module.size());
        });
        return said(Tools::find_location("", any));
    }
    // The number of searches for a directory's entries, each of which fails.
    static Words clean_unlistable(const char* path) {
        int searches = 0;
        const ImportPatch patch("FindFirstFileW", [&] {
            ++searches;
            return INVALID_HANDLE_VALUE;
        });
        return said(UTIL_cleanupDir(path, 1), searches);
    }

    static int clean_with_links(const char* path) {
        const ImportPatch patch("FindNextFileW", [&](HANDLE search, WIN32_FIND_DATAW* data) {
            const BOOL found = FindNextFileW(search, data);
            data->dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
            return found;
        });
        return UTIL_cleanupDir(path, 1);
    }

    // Of the XrDirectory.
    Words names(bool include_hidden, bool refresh) const {
        Words result;
        for (const XrDirectoryEntry* entry : *opened->getDirectoryList(include_hidden, refresh))
            result.push_back(entry->str());
        return said(result);
    }
    Words entry(std::size_t index) const {
        const XrDirectoryEntry& one = *(*opened->getDirectoryList(true, false))[index];
        return said(one.getName(), hex(one.getMode()), one.getSize());
    }
    // The entries whose status is not that of their path.
    Words unlike_their_paths() const {
        Words result;
        for (const XrDirectoryEntry* entry : *opened->getDirectoryList(true, false)) {
            struct _stat64i32 record = {};
            UTF8_stat((scratch / entry->str()).c_str(), &record);
            const bool is_directory = (record.st_mode & _S_IFDIR) != 0;
            if (entry->getMode() != record.st_mode || entry->getSize() != record.st_size ||
                entry->isDirectory() != is_directory) {
                result.push_back(entry->str());
            }
        }
        return said(result);
    }
    // The size of the only file. The search gives it this name, more attributes and the size 999.
    long size_found_as(const std::wstring& name, DWORD attributes) const {
        const ImportPatch patch("FindNextFileW", [&](HANDLE search, WIN32_FIND_DATAW* data) {
            const BOOL found = FindNextFileW(search, data);
            if (data->cFileName[0] == L'.') return found;
            data->cFileName[name.copy(data->cFileName, MAX_PATH)] = L'\0';
            data->dwFileAttributes |= attributes;
            data->nFileSizeLow = 999;
            return found;
        });
        opened->destroy();
        return (*opened->getDirectoryList(false, false))[0]->getSize();
    }
    // Whether the first entry has its status from a call for its path.
    static bool asks_for_status(const String& path) {
        const ImportPatch patch("_wstat64", fails<-1>);
        XrDirectory directory(path);
        return (*directory.getDirectoryList(false, false))[0]->getMode() == 0;
    }
    // What a listing prints.
    std::string printed() const {
        const ImportPatch no_bytes("fputc", fails<0>);  // each a write on a console
        testing::internal::CaptureStdout();
        opened->getDirectoryList(false, false);
        return testing::internal::GetCapturedStdout();
    }
    std::string printed_broken_off() const {
        // The code is also that of a name that cannot be converted.
        const ImportPatch patch("FindNextFileW", fails<FALSE, ERROR_INVALID_NAME>);
        return printed();
    }
    // The drives that the platform lists in a text, and its length.
    static Words roots(const std::string& list, DWORD length) {
        const ImportPatch patch("GetLogicalDriveStringsA", [&](DWORD size, char* buffer) {
            list.copy(buffer, size);
            return length;
        });
        Words result;
        XrDirectory drives("");
        for (const XrDirectoryEntry* entry : *drives.getDirectoryList(false, false))
            say(result, said(*entry, hex(entry->getMode())));
        return result;
    }
    // The caller has 5,000 bytes of the disk.
    Words free_space(bool wanted) const {
        const ImportPatch patch("GetDiskFreeSpaceExW",
                                [](const wchar_t* path, ULARGE_INTEGER* own, ULARGE_INTEGER* all,
                                   ULARGE_INTEGER* free) {
                                    const BOOL known = GetDiskFreeSpaceExW(path, own, all, free);
                                    own->QuadPart = 5000;
                                    return known;
                                });
        double kilobytes = -1;
        const int result = opened->getFreeSpace(wanted ? &kilobytes : nullptr);
        return said(result, kilobytes);
    }
    // Whether a refreshed listing and that of a copy are the same, and its size after both objects
    // have dropped it.
    Words shared_listing() const {
        XrDirectory::List* const list = opened->getDirectoryList(false, false);
        const bool refreshed = opened->getDirectoryList(false, true) == list;
        XrDirectory copy(*opened);
        const std::unique_ptr<XrDirectory::List> dropped(copy.getDirectoryList(false, false));
        copy.init("");
        opened->init("");
        return said(refreshed, dropped.get() == list, dropped->size());
    }
    // A sorted list: entries one by one, then the others together. Each gets its number as size.
    static Words sorted(const std::string& names, long single) {
        XrDirectory::List list;
        std::vector<std::unique_ptr<XrDirectoryEntry>> together;
        std::istringstream in(names);
        long number = 0;
        for (std::string name; in >> name;) {
            auto entry = std::make_unique<XrDirectoryEntry>(name, 0, ++number);
            if (number > single) {
                together.push_back(std::move(entry));
            } else {
                list.insert(entry.release());
            }
        }
        EXPECT_FALSE(list.insert(nullptr));
        list.insert(std::move(together));
        Words result;
        for (const XrDirectoryEntry* entry : list)
            result.push_back(entry->str() + std::to_string(entry->getSize()));
        return result;
    }
    // The paths that are to be removed, in order. Only the removal of "C:\" fails.
    static Words tree_removals(const char* path) {
        Words removals;
        const ImportPatch patch("RemoveDirectoryA", [&](const char* removed) -> BOOL {
            removals.push_back(removed);
            return std::strcmp(removed, "C:\\") != 0;
        });
        return said(XrDirectory::DeleteDirectoryTree(path), removals);
    }

    std::unique_ptr<XrDirectory> opened;
    const ScratchDirectory scratch;
    std::optional<EnvironmentChange> path_variable;
    HANDLE held = INVALID_HANDLE_VALUE;
};

// -1 is followed by errno, which is 77 before.
template <int (*remove)(const char*)>
Words removed(const char* path) {
    errno = 77;
    const int result = remove(path);
    return result == -1 ? said(-1, errno) : said(result);
}

const Cases<World> cases(
    "files/paths.cases",
    {
        call("directory", [](World& w, const std::string& name) { w.scratch.directory(name); }),
        call("file", [](World& w, const std::string& name) { w.scratch.file(name); }),
        call("read_only",
             [](World& w, const std::string& name) {
                 SetFileAttributesA((w.scratch / name).c_str(), FILE_ATTRIBUTE_READONLY);
             }),
        call("resize",
             [](World& w, const std::string& name, std::uint64_t size) {
                 std::filesystem::resize_file(w.scratch / name, size);
             }),
        call("oem_names", SetFileApisToOEM),
        call("ansi_names", SetFileApisToANSI),
        call("hold", &World::hold),
        call("go_to", [](const std::string& path) { SetCurrentDirectoryW(to_wide(path).c_str()); }),
        call("set_path",
             [](World& w, const std::string& list) {
                 w.path_variable.emplace(L"PATH",
                                         list == "$null" ? nullptr : to_wide(list).c_str());
             }),
        call("list", &World::list),

        call("search", "\"\" ... | raises std::bad_alloc | raises _com_error",
             [](const String& name, const std::string& elements) {
                 String list(elements);
                 const String found =
                     Tools::absolute_pathname(name, list, Tools::FileAttr::no_read);
                 return said(found, list);
             }),
        call("find", "\"\" | raises std::bad_alloc | raises _com_error",
             [](const String& name) { return Tools::absolute_pathname(name, any); }),
        call("exists", "false | raises _com_error", Tools::fileExists),
        call("program_directory", "\"\" | raises std::bad_alloc | raises _com_error",
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
        call("clean_with_links", &World::clean_with_links),

        call("open", "false | raises std::bad_alloc | raises _com_error",
             [](World& w, const String& path) {
                 w.opened = std::make_unique<XrDirectory>(path);
                 return w.opened->isValid();
             }),
        call("opened_path", "raises std::bad_alloc", [](World& w) { return w.opened->getPath(); }),
        call("names", "none | raises std::bad_alloc | raises _com_error", &World::names),
        call("entry", "... 0 0 | raises std::bad_alloc | raises _com_error", &World::entry),
        call("unlike_their_paths", &World::unlike_their_paths),
        call("found_as",
             [](World& w, const std::string& name, DWORD attributes) {
                 return w.size_found_as(to_wide(name), attributes);
             }),
        call("found_with",
             [](World& w, wchar_t unit) { return w.size_found_as(std::wstring(L"n") + unit, 0); }),
        call("asks_for_status", &World::asks_for_status),
        call("printed_broken_off", &World::printed_broken_off),
        call("printed", &World::printed),
        call("roots", &World::roots),
        call("free_space", &World::free_space),
        call("shared_listing", &World::shared_listing),
        call("sorted", &World::sorted),
        call("destroy", [](World& w) { w.opened->destroy(); }),
        call("init", "raises std::bad_alloc | raises _com_error",
             [](World& w, const String& path) {
                 w.opened->init(path);
                 return w.opened->isValid();
             }),
        call("create_directory",
             [](const String& path) {
                 return said(XrDirectory::CreateDirectoryA(path),
                             XrDirectory::CreateDirectoryA(path.c_str()));
             }),
        call("is_directory", "false | raises _com_error", XrDirectory::IsDirectory),
        call("remove", "22 | raises std::bad_alloc | raises _com_error",
             [](const char* path) { return XrDirectory::DeleteDirectory(path); }),
        call("remove_tree", "1 | raises std::bad_alloc | raises _com_error",
             [](const char* path) { return XrDirectory::DeleteDirectoryTree(path); }),
        call("tree_removals", &World::tree_removals),
    });

}  // namespace
