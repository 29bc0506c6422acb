#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include "support/built_file.h"
#include "torture/scenario.h"
#include "torture/stand_ins.h"
#include "util/portable/portable.h"

using namespace std::string_literals;

namespace torture {
void portable_scenarios(const Add& scenario) {
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
