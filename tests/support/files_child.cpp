// The second process of the tests. READY and GO name events: it sets the first and waits for the
// second.
//
//     files_child prepare READY GO RECORD PREFIX COUNT SUFFIX
//         when GO: prepares PREFIX 0 SUFFIX, PREFIX 1 SUFFIX, ..., pausing before every write of a
//         record; exits with 1 on failure and 2 if a record is written without the turn
//     files_child lock READY GO DIRECTORY
//         takes the lock, then READY; when GO: gives it back
//     files_child count READY GO DIRECTORY FILE ROUNDS
//         when GO: in each round takes the lock, adds one to the number in FILE, adds one again and
//         gives the lock back, so that the number is odd or missing only while the lock is held
//     files_child drop READY GO KEY PROGRESS
//         drops batches of messages for r0, r1, ... until it is killed, and appends a byte to
//         PROGRESS and sets READY after each; KEY stands in for HKEY_LOCAL_MACHINE
#include <cstdlib>

#include "mail/mail_child.h"
#include "support/import_patch.h"
#include "support/second_process.h"
#include "util/files/files.h"
#include "util/mail/email.h"

namespace {

bool wrote_without_turn;

// The turn is a lock on this byte, also in every earlier version of the library.
BOOL WINAPI late_write(HANDLE file, const void* data, DWORD size, DWORD* written, OVERLAPPED* at) {
    OVERLAPPED turn = {};
    turn.Offset = MAXDWORD;
    turn.OffsetHigh = MAXLONG;
    constexpr DWORD at_once = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
    wrote_without_turn |= LockFileEx(file, at_once, 0, 1, 0, &turn) != 0;
    Sleep(1);
    return WriteFile(file, data, size, written, at);
}

int prepare(const char* record, const std::string& prefix, int count, const char* suffix) {
    const util_test::ImportPatch patch("WriteFile", late_write);
    for (int i = 0; i < count; ++i) {
        String message, failed;
        int kind = 0;
        const unsigned long result = UTIL_prepareAndCreateDir(prefix + std::to_string(i) + suffix,
                                                              message, record, failed, &kind);
        if (result != 0 || kind != 0) return 1;
    }
    return wrote_without_turn ? 2 : 0;
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

int drop(const char* key, const char* progress, util_test::Signal& ready) {
    HKEY machine;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, key, 0, KEY_ALL_ACCESS, &machine) != 0 ||
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine) != 0) {
        return 1;
    }
    XrFile finished(progress, "a");
    email mail;
    const String body = util_test::drop_body();
    for (int n = 0;;) {
        String batch;
        for (const int end = n + util_test::drop_batch; n < end; ++n)
            batch += "r" + String(n) + ";";
        mail.send_mail("f", batch, "s", body);
        if (!finished.Write("", 1)) return 1;
        ready.set();
    }
}

}  // namespace

int main(int, char** argv) {
    const char verb = argv[1][0];
    util_test::Signal ready(argv[2]), go(argv[3]);
    HANDLE handle = INVALID_HANDLE_VALUE;
    OVERLAPPED record;
    if (verb == 'l' && !UTIL_LockFilePrivate(argv[4], &handle, &record)) return 101;
    if (verb == 'd') return drop(argv[4], argv[5], ready);
    ready.set();
    if (!go.wait()) return 102;
    if (verb == 'p') return prepare(argv[4], argv[5], std::atoi(argv[6]), argv[7]);
    if (verb == 'c') return count(argv[4], argv[5], std::atoi(argv[6]));
    return UTIL_UnLockFilePrivate(handle, &record) ? 0 : 103;
}
