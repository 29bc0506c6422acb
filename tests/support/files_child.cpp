// The second process of the files tests. READY and GO name events: it sets the first and waits for
// the second.
//
//     files_child prepare READY GO RECORD PREFIX COUNT SUFFIX
//         when GO: prepares PREFIX 0 SUFFIX, PREFIX 1 SUFFIX, ...; exits with the first failure
//     files_child slow READY GO RECORD PREFIX COUNT SUFFIX
//         the same, pausing before the runtime's every write
//     files_child hold READY GO DIRECTORY
//         takes the lock, then READY; when GO: ends without giving it back
//     files_child release READY GO DIRECTORY
//         the same, but gives it back
//     files_child count READY GO DIRECTORY FILE ROUNDS
//         when GO: in each round takes the lock, adds one to the number in FILE, adds one again and
//         gives the lock back, so that the number is odd or missing only while the lock is held
#include <cstdlib>
#include <optional>

#include "support/import_patch.h"
#include "support/second_process.h"
#include "util/files/files.h"

namespace {

int prepare(const char* record, const std::string& prefix, int count, const char* suffix) {
    for (int i = 0; i < count; ++i) {
        String message, failed;
        int kind = 0;
        const unsigned long result = UTIL_prepareAndCreateDir(prefix + std::to_string(i) + suffix,
                                                              message, record, failed, &kind);
        if (result != 0 || kind != 0) return result != 0 ? static_cast<int>(result) : -kind;
    }
    return 0;
}

BOOL WINAPI late_write(HANDLE file, const void* data, DWORD size, DWORD* written, OVERLAPPED* at) {
    Sleep(1);
    return WriteFile(file, data, size, written, at);
}

int count(const char* directory, const char* file, int rounds) {
    for (int i = 0; i < rounds; ++i) {
        HANDLE handle;
        OVERLAPPED record;
        if (!UTIL_LockFilePrivate(directory, &handle, &record)) return 1;
        int number = 0;
        XrFile(file, "r") >> number;
        XrFile(file, "w") << number + 1;
        XrFile(file, "w") << number + 2;
        if (!UTIL_UnLockFilePrivate(handle, &record)) return 2;
    }
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 5) return 100;
    const char verb = argv[1][0];
    util_test::Signal ready(argv[2]), go(argv[3]);
    HANDLE handle = INVALID_HANDLE_VALUE;
    OVERLAPPED record;
    const bool holds = verb == 'h' || verb == 'r';
    if (holds && !UTIL_LockFilePrivate(argv[4], &handle, &record)) return 101;
    ready.set();
    if (!go.wait()) return 102;
    std::optional<util_test::ImportPatch> patch;
    if (verb == 's') patch.emplace("msvcrt.dll", "WriteFile", late_write);
    if ((verb == 'p' || verb == 's') && argc == 8)
        return prepare(argv[4], argv[5], std::atoi(argv[6]), argv[7]);
    if (verb == 'c' && argc == 7) return count(argv[4], argv[5], std::atoi(argv[6]));
    if (verb == 'r') return UTIL_UnLockFilePrivate(handle, &record) ? 0 : 103;
    return holds ? 0 : 100;
}
