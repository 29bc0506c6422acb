#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include "support/cases.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "support/units.h"
#include "util/portable/portable.h"
// after the platform's header
#include <comutil.h>

using util_test::call;
using util_test::ImportPatch;
using util_test::said;
using util_test::shown;
using util_test::to_wide;
using util_test::units_of;
using util_test::Words;

namespace {

// The result of a call. A failure is followed by errno, or the last error; both are 77 before.
template <typename Call>
Words by_errno(Call make) {
    errno = 77;
    const auto result = make();
    return result == -1 ? said(-1, errno) : said(result);
}
template <typename Call>
Words by_last_error(Call make) {
    SetLastError(77);
    const int result = make();
    return result == 0 ? said(0, GetLastError()) : said("done");
}

using Status = int(const char*, struct _stat64i32*);
template <Status* status>
Words status_of(const char* path) {
    struct _stat64i32 record, zeroes = {};
    std::memset(&record, 0xA5, sizeof record);
    Words result = by_errno([&] { return status(path, &record); });
    if (result[0] == "0")
        return said(result, util_test::hex(record.st_mode & _S_IFMT), record.st_size);
    return said(result, std::memcmp(&record, &zeroes, sizeof record) ? "kept" : "zeroed");
}

// The path that reaches the runtime, from ksl_lstat and from UTF8_lstat. The other two agree.
Words examined(const char* path) {
    std::wstring last;
    const ImportPatch patch("_wstat64", [&](const wchar_t* given, struct _stat64*) {
        last = given;
        errno = 99;
        return -1;
    });
    const auto by = [&](Status* status) {
        struct _stat64i32 record;
        EXPECT_EQ(by_errno([&] { return status(path, &record); }), said(-1, 99));
        return shown(last);
    };
    const Words words = said(by(ksl_lstat), by(UTF8_lstat));
    EXPECT_EQ(said(by(ksl_stat), by(UTF8_stat)), words);
    return words;
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
    const Words result =
        by_last_error([&] { return UTF8_GetDiskFreeSpaceEx(path, &available, &total, &free); });
    return result[0] == "0" ? result : said(available <= free, free < total);
}

struct World : util_test::CaseWorld {
    World() {
        values["d"] = scratch.path();
        std::string& deep = values["deep"];  // so long that its conversion needs memory
        for (deep = scratch.path(); deep.size() < 300;)
            deep += "\\.";
    }
    // A function of the platform's fails, or leaves other codes, until the block ends.
    void refuse(const char* function) { patch.emplace(function, util_test::fails<0, 0, ENOMEM>); }
    void disturb_free() {
        patch.emplace("SysFreeString", [](BSTR text) {
            SysFreeString(text);
            errno = 88;
            SetLastError(88);
        });
    }

    util_test::ScratchDirectory scratch;
    std::optional<ImportPatch> patch;
};

const char* const failed = "-1 ... | raises _com_error";

const util_test::Cases<World> cases(
    "portable/system.cases",
    {
        call("refuse", &World::refuse),
        call("disturb_free", &World::disturb_free),
        call("directory", [](World& w, const std::string& name) { w.scratch.directory(name); }),
        call("file", [](World& w, const std::string& name) { w.scratch.file(name, "content"); }),
        call("content", [](World& w, const std::string& name) { return w.scratch.read(name); }),

        call("open", failed,
             [](const char* path, int flags) {
                 const Words result = by_errno([&] { return UTF8_open(path, flags, _S_IWRITE); });
                 if (result[0] == "-1") return result;
                 _close(std::stoi(result[0]));
                 return said("opened");
             }),
        call("access", failed,
             [](const char* path, int mode) {
                 return by_errno([&] { return UTF8_access(path, mode); });
             }),
        call("chmod", failed,
             [](const char* path, int mode) {
                 return by_errno([&] { return UTF8_chmod(path, mode); });
             }),
        call("unlink", failed,
             [](const char* path) { return by_errno([&] { return UTF8_unlink(path); }); }),
        call("chdir", failed,
             [](const char* path) { return by_errno([&] { return UTF8_chdir(path); }); }),
        call("mkdir", failed,
             [](const char* path) { return by_errno([&] { return UTF8_mkdir(path); }); }),
        call("rmdir", failed,
             [](const char* path) { return by_errno([&] { return UTF8_rmdir(path); }); }),
        call("stat", "-1 ... zeroed | raises _com_error", status_of<UTF8_stat>),
        call("lstat", "-1 ... zeroed | raises _com_error", status_of<UTF8_lstat>),
        call("ksl_stat", "-1 ... zeroed", status_of<ksl_stat>),
        call("ksl_lstat", "-1 ... zeroed", status_of<ksl_lstat>),
        call("examined", examined),
        call("find", "-1 ... | raises _com_error | ... \"ends with\" ...", find),
        call("disk_space", "0 ... | raises _com_error", disk_space),
        call("copy", "0 ... | raises _com_error",
             [](const char* from, const char* to, int fails) {
                 return by_last_error([&] { return UTF8_CopyFile(from, to, fails); });
             }),
        call("no_record",
             [](const char* path) {
                 const Words stat = by_errno([&] { return UTF8_stat(path, nullptr); });
                 return said(stat, by_errno([&] { return ksl_stat(path, nullptr); }));
             }),

        call("to_wide", "false | raises _com_error",
             [](const char* utf8) {
                 _bstr_t out(L"before");
                 const bool done = UTIL_Utf8ToWideChar(utf8, &out);
                 return out.copy(false) ? said(done, shown({out, out.length()})) : said(done);
             }),
        call("to_utf8", "false \"\"",
             [](const char* wide) {
                 String out("before");
                 const bool done =
                     UTIL_WideCharToUtf8(wide ? units_of(wide).c_str() : nullptr, &out);
                 return said(done, out);
             }),
        call("wide_to_ansi", "false before",
             [](const char* wide) {
                 String out("before");
                 const bool done =
                     UTIL_WcharToMultiByte(wide ? units_of(wide).c_str() : nullptr, &out);
                 return said(done, out);
             }),
        call("to_ansi", "false before",
             [](const char* utf8) {
                 String out("before");
                 const bool done = UTIL_Utf8ToMultiByte(utf8, &out);
                 return said(done, out);
             }),
        call("no_outputs",
             [] {
                 return said(UTIL_WideCharToUtf8(L"a", nullptr),
                             UTIL_WcharToMultiByte(L"a", nullptr),
                             UTIL_Utf8ToWideChar("a", nullptr), UTIL_Utf8ToMultiByte("a", nullptr));
             }),

        call("go_to", [](const std::string& path) { SetCurrentDirectoryW(to_wide(path).c_str()); }),
        call("current_directory", "\"\"", UTIL_CurrentDirectory),
        call("use_oem_page", SetFileApisToOEM),
        call("use_ansi_page", SetFileApisToANSI),
        call("putenv", "-1", ksl_putenv),
        call("getenv", [](const char* name) { return std::getenv(name); }),
        call("close",
             [](int descriptor) {
                 int closed = -2;
                 const ImportPatch patch("_close", [&](int given) {
                     closed = given;
                     return 0;
                 });
                 return said(ksl_close(descriptor), closed);
             }),
        call("transfer", "false",
             [](World& w) {
                 const int fd = _open((w.scratch / "f").c_str(), _O_RDWR | _O_CREAT, _S_IWRITE);
                 const int other = ksl_dup(fd);
                 char byte = 0;
                 const bool done = ksl_write(fd, "x", 1) == 1 && ksl_lseek(other, 0, 0) == 0 &&
                                   ksl_read(other, &byte, 1) == 1 && byte == 'x';
                 const bool closed = ksl_close(other) == 0;
                 _close(fd);
                 return done && closed;
             }),
    });

}  // namespace
