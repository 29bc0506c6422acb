// The program that the tests start.
//
//     child exit N       exits with N
//     child unit TEXT    exits with the first UTF-16 unit of TEXT
//     child signal N     sets the event whose handle is N, if it has one
//     child save FILE    writes its standard input to FILE and exits with 1
//     child open FIRST   exits with the number of descriptors from FIRST on that it inherited
//     child service      is a service: starts, pauses and stops as it is told
//
// It sets the event NAME-ready when it is about to begin, and waits for the event NAME-go.
//
//     child prepare NAME RECORD PREFIX COUNT SUFFIX
//         prepares PREFIX 0 SUFFIX, PREFIX 1 SUFFIX, ..., pausing before every write of a record;
//         exits with 1 on failure
//     child count NAME DIRECTORY FILE ROUNDS
//         takes the lock, adds one to the number in FILE, adds one again and releases the lock, so
//         that the number is odd or missing only while the lock is held; -1 rounds never end
//     child drop NAME KEY PROGRESS
//         drops batches of messages for r0, r1, ... until it is killed, and appends a byte to
//         PROGRESS after each; KEY stands in for HKEY_LOCAL_MACHINE
#include <io.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include "mail/mail_child.h"
#include "support/import_patch.h"
#include "support/second_process.h"
#include "util/files/files.h"
#include "util/mail/email.h"

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
    const util_test::ImportPatch patch(
        "WriteFile", [](HANDLE file, const void* data, DWORD size, DWORD* written, OVERLAPPED* at) {
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
    return 0;
}

int count(const char* directory, const char* file, int rounds) {
    for (; rounds != 0; --rounds) {
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

int drop(const char* key, const char* progress) {
    HKEY machine;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, key, 0, KEY_ALL_ACCESS, &machine) != 0 ||
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine) != 0) {
        return 1;
    }
    XrFile finished(progress, "a");
    const String body = util_test::drop_body();
    for (int n = 0;;) {
        String batch;
        for (const int end = n + util_test::drop_batch; n < end; ++n)
            batch += "r" + String(n) + ";";
        email().send_mail("f", batch, "s", body);
        if (!finished.Write("", 1)) return 1;
    }
}

int second_process(const std::string& verb, const std::string& name, char** words) {
    // Wine's service manager accepts no connection any more after a process was killed while it
    // connected. With this handle, senders are connected before they are killed.
    const util::ScopedService manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_CONNECT));
    util_test::Signal(name + "-ready").set();
    if (!util_test::Signal(name + "-go").wait()) return 102;
    if (verb == "drop") return drop(words[0], words[1]);
    if (verb == "count") return count(words[0], words[1], std::atoi(words[2]));
    return prepare(words[0], words[1], std::atoi(words[2]), words[3]);
}

}  // namespace

int main(int argc, char** argv) {
    const std::string verb = argv[1];
    if (verb == "service") return run_service();
    if (argc > 3) return second_process(verb, argv[2], argv + 3);
    const char* const word = argv[2];
    if (verb == "exit") ExitProcess(static_cast<UINT>(std::atoi(word)));
    if (verb == "unit") return std::wcsstr(GetCommandLineW(), L" unit ")[6];
    if (verb == "signal") return SetEvent(reinterpret_cast<HANDLE>(std::atoll(word))) ? 0 : 1;
    return verb == "open" ? inherited_descriptors(std::atoi(word)) : save(word);
}
