// The program that the tests start.
//
//     child exit N       exits with N
//     child unit TEXT    exits with the first UTF-16 unit of TEXT
//     child signal N     sets the event whose handle is N, if it has one
//     child save FILE    writes its standard input to FILE and exits with 1
//     child open FIRST   exits with the number of descriptors from FIRST on that it inherited
//     child service      is a service: starts, pauses and stops as it is told
//
// READY and GO name events. It sets READY when it is about to begin, and waits for GO.
//
//     child prepare READY GO RECORD PREFIX COUNT SUFFIX
//         prepares PREFIX 0 SUFFIX, PREFIX 1 SUFFIX, ..., pausing before every write of a record;
//         exits with 1 on failure and 2 if a record is written without the turn
//     child lock READY GO DIRECTORY
//         takes the lock before READY, releases it after GO
//     child count READY GO DIRECTORY FILE
//         again and again takes the lock, adds one to the number in FILE, adds one again and
//         releases the lock, so that the number is odd or missing only while the lock is held
//     child drop READY GO KEY PROGRESS
//         drops batches of messages for r0, r1, ... until it is killed, and appends a byte to
//         PROGRESS and sets READY after each; KEY stands in for HKEY_LOCAL_MACHINE
#include <io.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include "mail/mail_child.h"
#include "support/import_patch.h"
#include "support/second_process.h"
#include "util/files/files.h"
#include "util/mail/email.h"

using util_test::Signal;

namespace {

int inherited_descriptors(int first) {
    int inherited = 0;
    for (int descriptor = first; descriptor < 100; ++descriptor)
        inherited += _get_osfhandle(descriptor) != -1 ? 1 : 0;
    return inherited;
}

int save(const char* path) {
    std::FILE* const file = std::fopen(path, "w");
    for (int c; (c = std::getchar()) != EOF;)
        std::fputc(c, file);
    return std::fclose(file) == 0 ? 1 : 2;
}

SERVICE_STATUS_HANDLE service;

void WINAPI control(DWORD what) {
    SERVICE_STATUS status = {};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwControlsAccepted = SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_PAUSE_CONTINUE;
    status.dwCurrentState = what == SERVICE_CONTROL_STOP    ? SERVICE_STOPPED
                            : what == SERVICE_CONTROL_PAUSE ? SERVICE_PAUSED
                                                            : SERVICE_RUNNING;
    SetServiceStatus(service, &status);
}

void WINAPI serve(DWORD, char** names) {
    service = RegisterServiceCtrlHandlerA(names[0], control);
    control(SERVICE_CONTROL_CONTINUE);
}

int run_service() {
    char name[] = "";
    const SERVICE_TABLE_ENTRYA table[] = {{name, serve}, {nullptr, nullptr}};
    return StartServiceCtrlDispatcherA(table) ? 0 : 1;
}

int prepare(const char* record, const std::string& prefix, int count, const char* suffix) {
    bool wrote_without_turn = false;
    const util_test::ImportPatch patch("WriteFile", [&](HANDLE file, const void* data, DWORD size,
                                                        DWORD* written, OVERLAPPED* at) {
        // The turn is a lock on this byte, also in every earlier version of the library.
        OVERLAPPED turn = {};
        turn.Offset = MAXDWORD;
        turn.OffsetHigh = MAXLONG;
        constexpr DWORD at_once = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
        wrote_without_turn |= LockFileEx(file, at_once, 0, 1, 0, &turn) != 0;
        Sleep(1);
        return WriteFile(file, data, size, written, at);
    });
    for (int i = 0; i < count; ++i) {
        String message, failed;
        int kind = 0;
        const unsigned long result = UTIL_prepareAndCreateDir(prefix + std::to_string(i) + suffix,
                                                              message, record, failed, &kind);
        if (result != 0 || kind != 0) return 1;
    }
    return wrote_without_turn ? 2 : 0;
}

int lock(const char* directory, Signal& ready, Signal& go) {
    HANDLE handle = INVALID_HANDLE_VALUE;
    OVERLAPPED record;
    if (!UTIL_LockFilePrivate(directory, &handle, &record)) return 101;
    ready.set();
    if (!go.wait()) return 102;
    return UTIL_UnLockFilePrivate(handle, &record) ? 0 : 103;
}

int count(const char* directory, const char* file) {
    for (;;) {
        HANDLE handle;
        OVERLAPPED record;
        if (!UTIL_LockFilePrivate(directory, &handle, &record)) return 1;
        int number = 0;
        XrFile(file, "r") >> number;
        XrFile(file, "w") << number + 1;
        XrFile(file, "w") << number + 2;
        if (!UTIL_UnLockFilePrivate(handle, &record)) return 2;
    }
}

int drop(const char* key, const char* progress, Signal& ready) {
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

int second_process(const std::string& verb, char** words) {
    Signal ready(words[0]), go(words[1]);
    if (verb == "lock") return lock(words[2], ready, go);
    if (verb == "drop") return drop(words[2], words[3], ready);
    ready.set();
    if (!go.wait()) return 102;
    if (verb == "count") return count(words[2], words[3]);
    return prepare(words[2], words[3], std::atoi(words[4]), words[5]);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string verb = argv[1];
    if (verb == "service") return run_service();
    if (argc > 3) return second_process(verb, argv + 2);
    const char* const word = argv[2];
    if (verb == "exit") ExitProcess(static_cast<UINT>(std::atoi(word)));
    if (verb == "unit") return std::wcsstr(GetCommandLineW(), L" unit ")[6];
    if (verb == "signal") return SetEvent(reinterpret_cast<HANDLE>(std::atoll(word))) ? 0 : 1;
    return verb == "open" ? inherited_descriptors(std::atoi(word)) : save(word);
}
