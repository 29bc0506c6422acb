#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include "support/cases.h"
#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "support/units.h"
#include "torture/resources.h"
#include "util/portable/portable.h"
// after the platform's header
#include <comutil.h>

using namespace util_test;

namespace {

// The result of a call. A failure is followed by errno, or the last error; both are 77 before.
template <typename Function, typename... Arguments>
Words by_errno(Function function, Arguments... arguments) {
    errno = 77;
    const int result = function(arguments...);
    return result == -1 ? said(-1, errno) : said(result);
}
template <typename Function, typename... Arguments>
Words by_last_error(Function function, Arguments... arguments) {
    SetLastError(77);
    const int result = function(arguments...);
    return result == 0 ? said(0, GetLastError()) : said("done");
}

const char* const failed = "-1 ... | raises _com_error";

// A function on a path. Its failure is -1 and errno.
template <typename... Arguments>
Call on_path(const char* name, int (*function)(Arguments...)) {
    return call(name, failed,
                [=](Arguments... arguments) { return by_errno(function, arguments...); });
}

using Status = int(const char*, struct _stat64i32*);
template <Status* status>
Words status_of(const char* path) {
    struct _stat64i32 record, zeroes = {};
    std::memset(&record, 0xA5, sizeof record);
    const Words result = by_errno(status, path, &record);
    if (result[0] == "0") return said(result, hex(record.st_mode & _S_IFMT), record.st_size);
    return said(result, std::memcmp(&record, &zeroes, sizeof record) ? "kept" : "zeroed");
}

// The path that reaches the runtime from ksl_stat and ksl_lstat, and the path from UTF8_stat and
// UTF8_lstat if it is another one.
Words examined(const char* path) {
    Words paths;
    const ImportPatch patch("_wstat64", [&](const wchar_t* given, struct _stat64*) {
        if (paths.empty() || paths.back() != shown(given)) paths.push_back(shown(given));
        return fails<-1, 0, 99>();
    });
    struct _stat64i32 record;
    for (Status* const status : {ksl_stat, ksl_lstat, UTF8_stat, UTF8_lstat})
        EXPECT_EQ(by_errno(status, path, &record), said(-1, 99));
    return paths;
}

Words open(const char* path, int flags) {
    const Words result = by_errno(UTF8_open, path, flags, _S_IWRITE);
    if (result[0] == "-1") return result;
    _close(std::stoi(result[0]));
    return said("opened");
}

// The names that match, sorted. The search gives each in both forms.
Words find(const char* pattern) {
    WIN32_FIND_DATAW data;
    char name[778];
    SetLastError(77);
    void* const search = UTF8_FindFirstFile(pattern, &data, name);
    if (search == INVALID_HANDLE_VALUE) return said(-1, GetLastError());
    Words names;
    do {
        names.push_back(name);
        if (to_wide(name) != data.cFileName) names.push_back(shown(data.cFileName));
    } while (UTF8_FindNextFile(search, &data, name));
    const DWORD end = GetLastError();
    FindClose(search);
    std::sort(names.begin(), names.end());
    return end == ERROR_NO_MORE_FILES ? names : said(names, "ends with", end);
}

Words disk_space(const char* path) {
    std::uint64_t available = 1, total = 0, free = 0;
    const Words result = by_last_error(UTF8_GetDiskFreeSpaceEx, path, &available, &total, &free);
    return result[0] == "0" ? result : said(available <= free, free < total);
}

Words to_wide_text(const char* utf8) {
    _bstr_t out(L"before");
    const bool done = UTIL_Utf8ToWideChar(utf8, &out);
    return out.copy(false) ? said(done, shown({out, out.length()})) : said(done);
}
template <bool (*convert)(const wchar_t*, String*)>
Words from_wide_text(const char* wide) {
    String out("before");
    const bool done = convert(wide ? units_of(wide).c_str() : nullptr, &out);
    return said(done, out);
}
Words to_ansi(const char* utf8) {
    String out("before");
    const bool done = UTIL_Utf8ToMultiByte(utf8, &out);
    return said(done, out);
}
Words no_outputs() {
    return said(UTIL_WideCharToUtf8(L"a", nullptr), UTIL_WcharToMultiByte(L"a", nullptr),
                UTIL_Utf8ToWideChar("a", nullptr), UTIL_Utf8ToMultiByte("a", nullptr));
}

// The result, and the descriptor that reaches the runtime.
Words closed(int descriptor) {
    int given = -2;
    const ImportPatch patch("_close", [&](int fd) {
        given = fd;
        return 0;
    });
    const int result = ksl_close(descriptor);
    return said(result, given);
}

// The current directory of a platform that gives a text of that length in the ANSI page, and one
// that has grown at the next question. Also the number of heap blocks that stay.
Words directory_of(std::size_t length, std::size_t growth) {
    std::string text = length == 0 ? "" : std::string(length - 1, 'd') + "\xE9";
    const ImportPatch patch("GetCurrentDirectoryA", [&](DWORD room, char* out) {
        const std::string given = text;
        text.append(growth, 'd');
        if (given.size() >= room) return static_cast<DWORD>(given.size() + 1);
        std::memcpy(out, given.c_str(), given.size() + 1);
        return static_cast<DWORD>(given.size());
    });
    const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
    const long before = torture::blocks_of(heap);
    const String directory = UTIL_CurrentDirectory();
    const bool is_long = directory.size() > 15;  // has a heap block of its own
    return said(directory, torture::blocks_of(heap) - before - is_long);
}

// Whether a search begins. If it does not: the last error, and the handles that stay.
Words begun(const char* pattern, WIN32_FIND_DATAW* data) {
    char name[778];
    SetLastError(77);
    const long before = handle_count();
    const bool begins = UTF8_FindFirstFile(pattern, data, name) != INVALID_HANDLE_VALUE;
    const DWORD last_error = GetLastError();
    return begins ? said("begun") : said(0, last_error, handle_count() - before);
}

struct World : CaseWorld {
    World() {
        values["d"] = scratch.path();
        std::string& deep = values["deep"];  // so long that its conversion needs memory
        for (deep = scratch.path(); deep.size() < 300;)
            deep += "\\.";
    }
    // A function of the platform's fails, or leaves other codes, until the block ends.
    void refuse(const char* function) { patch.emplace(function, fails<0, 0, ENOMEM>); }
    void disturb_free() {
        patch.emplace("SysFreeString", [](BSTR text) {
            SysFreeString(text);
            fails<0, 88, 88>();
        });
    }
    bool transfer() {
        const int fd = _open((scratch / "f").c_str(), _O_RDWR | _O_CREAT, _S_IWRITE);
        const int other = ksl_dup(fd);
        char byte = 0;
        const bool done = ksl_write(fd, "x", 1) == 1 && ksl_lseek(other, 0, 0) == 0 &&
                          ksl_read(other, &byte, 1) == 1 && byte == 'x';
        const bool is_closed = ksl_close(other) == 0;
        _close(fd);
        return done && is_closed;
    }

    Words next(bool has_record, bool has_name) {
        const auto step = [&] {
            return UTF8_FindNextFile(search, has_record ? &data : nullptr,
                                     has_name ? name : nullptr);
        };
        return by_last_error(step);
    }

    ScratchDirectory scratch;
    std::optional<ImportPatch> patch;
    WIN32_FIND_DATAW data;
    char name[778];
    void* search = nullptr;
};

const Cases<World> cases(
    "portable/system.cases",
    {
        call("refuse", &World::refuse),
        call("permit", [](World& w) { w.patch.reset(); }),
        call("disturb_free", &World::disturb_free),
        call("directory", [](World& w, const std::string& name) { w.scratch.directory(name); }),
        call("file", [](World& w, const std::string& name) { w.scratch.file(name, "content"); }),
        call("content", [](World& w, const std::string& name) { return w.scratch.read(name); }),

        call("open", failed, open),
        on_path("access", UTF8_access),
        on_path("chmod", UTF8_chmod),
        on_path("unlink", UTF8_unlink),
        on_path("chdir", UTF8_chdir),
        on_path("mkdir", UTF8_mkdir),
        on_path("rmdir", UTF8_rmdir),
        call("stat", "-1 ... zeroed | raises _com_error", status_of<UTF8_stat>),
        call("lstat", "-1 ... zeroed | raises _com_error", status_of<UTF8_lstat>),
        call("ksl_stat", "-1 ... zeroed", status_of<ksl_stat>),
        call("ksl_lstat", "-1 ... zeroed", status_of<ksl_lstat>),
        call("no_record", [] { return by_errno(UTF8_stat, "C:\\", nullptr); }),
        call("no_ksl_record", [] { return by_errno(ksl_stat, "C:\\", nullptr); }),
        call("examined", examined),
        call("find", "-1 ... | raises _com_error | ... \"ends with\" ...", find),
        call("search",
             [](World& w, const char* pattern) {
                 w.search = UTF8_FindFirstFile(pattern, &w.data, w.name);
             }),
        call("next", &World::next),
        call("end_search", [](World& w) { return FindClose(w.search); }),
        call("another_search",
             [](World& w, const char* pattern) { return begun(pattern, &w.data); }),
        call("search_without_record", [] { return begun("C:\\*", nullptr); }),
        call("disk_space", "0 ... | raises _com_error", disk_space),
        call("copy", "0 ... | raises _com_error",
             [](const char* from, const char* to, int is_new) {
                 return by_last_error(UTF8_CopyFile, from, to, is_new);
             }),

        call("to_wide", "false | raises _com_error", to_wide_text),
        call("to_utf8", "false \"\"", from_wide_text<UTIL_WideCharToUtf8>),
        call("wide_to_ansi", "false before", from_wide_text<UTIL_WcharToMultiByte>),
        call("to_ansi", "false before | raises _com_error", to_ansi),
        call("no_outputs", "raises _com_error", no_outputs),

        call("go_to", [](const std::string& path) { SetCurrentDirectoryW(to_wide(path).c_str()); }),
        call("current_directory", "\"\"", UTIL_CurrentDirectory),
        call("directory_of", directory_of),
        call("use_oem_page", SetFileApisToOEM),
        call("use_ansi_page", SetFileApisToANSI),
        on_path("putenv", ksl_putenv),
        call("getenv", [](const char* name) { return std::getenv(name); }),
        call("close", closed),
        call("transfer", "false", &World::transfer),
    });

}  // namespace
