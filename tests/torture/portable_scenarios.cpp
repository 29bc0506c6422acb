#include "support/built_file.h"
#include "torture/scenario.h"
#include "torture/stand_ins.h"
#include "util/portable/portable.h"

namespace torture {
namespace {

constexpr int wrong = -77;

// The name is there if the result is 0.
int host_name() {
    char name[256] = "";
    const int result = ksl_gethostname(name, sizeof name);
    return (result == 0) == (*name != '\0') ? result : wrong;
}

// A failure leaves the count 0 and the records zeroed.
int addresses() {
    char records[4 * 21], zeroes[sizeof records] = {};
    int count = -1;
    const int result = KslIpAddrList(4, &count, records);
    const bool none = count == 0 && std::memcmp(records, zeroes, sizeof zeroes) == 0;
    const bool some = count >= 1 && std::strcmp(records, "le0") == 0;
    return result == 0 ? (some ? 0 : wrong) : (none ? result : wrong);
}

// The argument is not ASCII, so that it is converted.
int child_with_code() {
    static const std::string command = util_test::built_file("child.exe") + " unit \xC3\xA4";
    return ksl_system2(command.c_str());
}

int child_with_pipe() {
    static const std::string command = util_test::built_file("child.exe") + " exit 7";
    FILE* const stream = ksl_popen(command.c_str(), "r");
    return stream ? ksl_pclose(stream) : -1;
}

int time_text() {
    const std::int64_t time = 86400;
    char written[20] = "";
    const int length = ksl_ctime(&time, written, sizeof written);
    return length == int(std::strlen(written)) ? length : wrong;
}

const struct {
    const char* name;
    int expected, failure;
    int (*call)();
} calls[] = {
    {"ksl_gethostname", 0, -1, host_name},
    {"ksl_gethostname, another version", -1, -1,
     [] {
         stand_ins.refuses_version = true;
         return host_name();
     }},
    {"KslIpAddrList", 0, -1, addresses},
    {"ksl_system", 7, -1, [] { return ksl_system("exit 7"); }},
    {"ksl_system2", 0xE4, -1, child_with_code},
    {"ksl_popen, ksl_pclose", 0, -1, child_with_pipe},
    {"ksl_ctime", 19, 0, time_text},
    {"ksl_dup", 0, -1,
     [] {
         const int other = ksl_dup(1);
         return other > 1 ? ksl_close(other) : other;
     }},
};

}  // namespace

void portable_scenarios(const Add& scenario) {
    for (const auto& row : calls) {
        scenario(row.name, [row](Run& run) {
            const int result = run.call(nothing, row.call);
            run.outcome(result == row.expected, result == row.failure);
        });
    }
    scenario("ksl_getNumMntStructures, ksl_getMntData", [](Run& run) {
        static const int drives = ksl_getNumMntStructures();
        ksl_mount_record records[30] = {};
        int capacity = 30;
        const int counted = run.call(nothing, ksl_getNumMntStructures);
        run.outcome(counted == drives, counted == -1 && Run::failing("GetLogicalDrives"));
        const int silent = Run::failing("GetVolumeInformationA") ? drives : 0;
        const int written = run.call(
            nothing, [&] { return ksl_getMntData(reinterpret_cast<char*>(records), &capacity); });
        run.outcome(written == drives,
                    written == -1 || written == drives - std::min(silent, playing.faults));
        for (int i = 0; i < written; ++i)
            run.outcome(*records[i].file_system != '\0', !silent, records[i].root);
    });
}

}  // namespace torture
