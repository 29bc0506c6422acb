#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "support/built_file.h"
#include "torture/scenario.h"
#include "torture/stand_ins.h"
#include "util/portable/portable.h"

using namespace std::string_literals;

namespace torture {
namespace {

const HANDLE no_search = INVALID_HANDLE_VALUE;

// A wrapper of one path gives 0, or -1, or no memory for the path; true for 0.
template <typename Call>
bool path_call(Run& run, Call call, int failed_errno = 0) {
    errno = 0;
    const int result = run.call(platform, call);
    const bool done = !run.raised() && result == 0;
    run.outcome(done, run.raised() || (result == -1 && (!failed_errno || errno == failed_errno)));
    return done;
}

}  // namespace

void portable_scenarios(const Add& scenario) {
    // So long that the conversions need memory.
    static const std::string narrow(1000, 'n');
    static const std::wstring wide(1000, L'n');
    scenario("UTIL_WideCharToUtf8, UTIL_WcharToMultiByte", [](Run& run) {
        String utf8("untouched"), ansi("untouched");
        bool results[2] = {};
        run.call(nothing, [&] {
            results[0] = UTIL_WideCharToUtf8(wide.c_str(), &utf8);
            results[1] = UTIL_WcharToMultiByte(wide.c_str(), &ansi);
        });
        run.outcome(results[0] && utf8 == narrow, !results[0] && utf8.empty());
        run.outcome(results[1] && ansi == narrow, !results[1] && ansi == "untouched");
    });
    scenario("UTIL_Utf8ToWideChar, UTIL_Utf8ToMultiByte", [](Run& run) {
        _bstr_t out(L"before");
        bool result = run.call(platform, [&] { return UTIL_Utf8ToWideChar(narrow.c_str(), &out); });
        run.outcome(result && out.length() == wide.size(), run.raised() || (!result && !out));
        String ansi("untouched");
        result = run.call(platform, [&] { return UTIL_Utf8ToMultiByte(narrow.c_str(), &ansi); });
        run.outcome(result && ansi == narrow, !result && ansi == "untouched");
    });
    scenario("UTF8_open", [](Run& run) {
        const std::string file = run.scratch.file("a");
        errno = 0;
        const int fd = run.call(platform, [&] { return UTF8_open(file.c_str(), _O_BINARY, 0); });
        run.outcome(!run.raised() && fd > 2, run.raised() || (fd == -1 && errno != 0));
        if (!run.raised() && fd > 2) _close(fd);
    });
    scenario("UTF8_unlink, UTF8_chdir, UTF8_chmod, UTF8_access", [](Run& run) {
        const std::string path = run.scratch.directory("d"), file = run.scratch.file("a");
        path_call(run, [&] { return UTF8_chdir(path.c_str()); });
        SetCurrentDirectoryA("C:\\");
        path_call(run, [&] { return UTF8_access(file.c_str(), 4); });
        path_call(run, [&] { return UTF8_chmod(file.c_str(), _S_IWRITE); });
        const bool gone = path_call(run, [&] { return UTF8_unlink(file.c_str()); });
        run.always(run.exists("a") != gone, "the file");
    });
    scenario("UTF8_mkdir, UTF8_rmdir", [](Run& run) {
        const std::string path = run.scratch / "d";
        const bool made = path_call(
            run, [&] { return UTF8_mkdir(path.c_str()); }, EINVAL);
        run.always(run.exists("d") == made, "the new directory");
        if (!made) return;
        const bool gone = path_call(
            run, [&] { return UTF8_rmdir(path.c_str()); }, EINVAL);
        run.always(run.exists("d") != gone, "the directory");
    });
    scenario("UTF8_lstat, UTF8_stat", [](Run& run) {
        const std::string bare = run.scratch.directory("d");
        for (const std::string& path : {"C:"s, bare + "\\", bare + "/"}) {
            struct _stat64i32 status;
            const bool known = path_call(run, [&] {
                return path == "C:" ? UTF8_lstat("C:", &status) : UTF8_stat(path.c_str(), &status);
            });
            run.always(!known || (status.st_mode & _S_IFDIR), "a directory's status");
        }
    });
    scenario("UTF8_FindFirstFile, UTF8_FindNextFile", [](Run& run) {
        run.scratch.file("a"), run.scratch.file("b");
        const std::string pattern = run.scratch / "*";
        WIN32_FIND_DATAW data;
        char name[MAX_PATH * 3] = "";
        void* search =
            run.call(platform, [&] { return UTF8_FindFirstFile(pattern.c_str(), &data, name); });
        run.outcome(search && search != no_search && std::strcmp(name, ".") == 0,
                    run.raised() || search == no_search);
        if (!search || search == no_search) return;
        int found = 1;
        const bool ended = run.call(nothing, [&] {
            while (UTF8_FindNextFile(search, &data, name))
                ++found;
            return GetLastError() == ERROR_NO_MORE_FILES;
        });
        run.outcome(ended && found == 4, !ended && found <= 4);
        FindClose(search);
    });
    scenario("UTF8_GetDiskFreeSpaceEx", [](Run& run) {
        std::uint64_t free = 0;
        const int result = run.call(
            platform, [&] { return UTF8_GetDiskFreeSpaceEx("C:\\", &free, nullptr, nullptr); });
        run.outcome(result != 0 && free > 0, result == 0);
    });
    scenario("UTF8_CopyFile", [](Run& run) {
        const std::string from = run.scratch.file("a", "content"), to = run.scratch / "b";
        const int result =
            run.call(platform, [&] { return UTF8_CopyFile(from.c_str(), to.c_str(), 1); });
        run.outcome(result != 0 && run.scratch.read("b") == "content",
                    result == 0 && !run.exists("b"));
    });
    scenario("ksl_write, ksl_read, ksl_lseek, ksl_dup, ksl_close", [](Run& run) {
        const int fd = _open(run.scratch.file("a").c_str(), _O_RDWR | _O_BINARY);
        char byte = 0;
        bool ends = false;
        run.call(nothing, [&] {
            const int other = ksl_dup(fd);
            ends = ksl_write(fd, "x", 1) == 1 && ksl_lseek(fd, 0, 0) == 0 &&
                   ksl_read(other, &byte, 1) == 1 && byte == 'x' && ksl_flush(fd) == 0;
            if (ksl_close(other) != 0) ends = false;
        });
        run.outcome(ends, true);
        _close(fd);
    });
    scenario("ksl_putenv", [](Run& run) {
        const int result = run.call(nothing, [] { return ksl_putenv("UTIL_TORTURE_CHILD=1"); });
        run.outcome(result == 0, result == -1);
    });
    scenario("ksl_lstat, ksl_stat", [](Run& run) {
        const std::string bare = run.scratch.directory("d"), path = bare + "\\";
        std::string longer = run.scratch.path();
        while (longer.size() < 1200)
            longer += "\\.";
        longer += "\\d";
        struct _stat64i32 status;
        run.call(nothing, [&] { return ksl_readlink() + ksl_read_link_chain(); });
        for (const std::string& given : {path, bare + "/", longer}) {
            errno = 0;
            const int result = run.call(nothing, [&] {
                return ksl_lstat(given.c_str(), &status) + ksl_stat(given.c_str(), &status);
            });
            run.outcome(
                result == 0 && (status.st_mode & _S_IFDIR),
                (result == -1 || result == -2) && (!Run::failing("memory") || errno == ENOMEM));
        }
    });
    scenario("ksl_getNumMntStructures, ksl_getMntData", [](Run& run) {
        std::vector<ksl_mount_record> records(30);
        int capacity = 30, drives = 0, written = 0;
        run.call(nothing, [&] {
            drives = ksl_getNumMntStructures();
            written = ksl_getMntData(reinterpret_cast<char*>(records.data()), &capacity);
        });
        run.outcome(drives > 0 && written > 0 && written <= drives,
                    (drives == -1 || drives > 0) && written >= -1 && written <= 30);
        run.always(capacity == 30, "the capacity");
    });
    for (const bool refused : {false, true}) {
        scenario(refused ? "ksl_gethostname, another version" : "ksl_gethostname", [refused](
                                                                                       Run& run) {
            stand_ins.refuses_version = refused;
            char name[256] = "";
            const int result =
                run.call(nothing, [&] { return ksl_gethostname(name, sizeof name); });
            run.outcome(result == (refused ? -1 : 0) && refused == !*name, result == -1 && !*name);
        });
    }
    scenario("KslIpAddrList", [](Run& run) {
        char records[4 * 21], zeroes[sizeof records] = {};
        int count = 0;
        const int result = run.call(nothing, [&] { return KslIpAddrList(4, &count, records); });
        run.outcome(result == 0 && count >= 1 && std::strcmp(records, "le0") == 0,
                    result == -1 && count == 0 && std::memcmp(records, zeroes, sizeof zeroes) == 0);
    });
    scenario("ksl_system", [](Run& run) {
        const int result = run.call(nothing, [] { return ksl_system("exit 7"); });
        run.outcome(result == 7, result == -1);
    });
    scenario("ksl_system2", [](Run& run) {
        // Not ASCII, so that it is converted.
        const std::string command = util_test::built_file("child.exe") + " unit \xC3\xA4";
        errno = 0;
        const int result = run.call(nothing, [&] { return ksl_system2(command.c_str()); });
        run.outcome(result == 0xE4, result == -1 && (!Run::failing("memory") || errno == ENOMEM));
    });
    scenario("ksl_popen, ksl_pclose", [](Run& run) {
        const std::string command = util_test::built_file("child.exe") + " exit 7";
        int result = -1;
        run.call(nothing, [&] {
            if (FILE* const stream = ksl_popen(command.c_str(), "r")) result = ksl_pclose(stream);
        });
        run.outcome(result == 0, result == -1);
    });
    scenario("ksl strings", [](Run& run) {
        char s[] = " ab c ", *copy = nullptr, *coded = nullptr, *bytes = nullptr;
        run.call(nothing, [&] {
            ksl_strcpy_trim(s), ksl_strcpy_clean(s), ksl_strupper(s), ksl_str2lower(s);
            ksl_str2upper(s), ksl_char2upper(s, 1);
            copy = ksl_strdup(s);
            run.outcome(ksl_strcasecmp(s, "ab C") == 0 && ksl_match_token_str(s, "AB", " ") == 1,
                        false);
        });
        run.outcome(copy && std::strcmp(copy, "AB C") == 0, !copy);
        std::free(copy);
        int result = run.call(nothing, [&] { return ksl_unicode2CodedChar("a\0\0", 1, &coded); });
        run.outcome(result == 0 && std::strcmp(coded, "a\1\1") == 0, result == -1 && !coded);
        if (!coded) return;
        result = run.call(nothing, [&] { return ksl_codedChar2Unicode(coded, 1, &bytes); });
        run.outcome(result == 0 && std::strcmp(bytes, "a") == 0, result == -1 && !bytes);
        std::free(coded);
        std::free(bytes);
    });
    scenario("ksl times", [](Run& run) {
        std::tm fields = {};
        const std::int64_t time = 86400;
        char written[20] = "";
        int error = 0, length = 0;
        run.call(nothing, [&] {
            ksl_strptime("Wed Mar 03 10:11:12 2010", &fields);
            error = ksl_localtime(&time, &fields);
            length = ksl_ctime(&time, written, sizeof written);
        });
        run.outcome(error == 0 && length == 19, error == EINVAL || length == 0 || length == EINVAL);
    });
}

}  // namespace torture
