// What the mail tests start.
//
//     mail_child service    a service that starts, pauses and stops as it is told
//     mail_child drop KEY   drops batches of messages for r0, r1, ... until it is killed, and
//     writes
//                           a byte to its standard output after each batch; KEY stands in for
//                           HKEY_LOCAL_MACHINE
#include "mail/mail_child.h"

#include "util/internal/windows.h"
#include "util/mail/email.h"

namespace {

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

int drop(const char* key) {
    HKEY machine;
    if (RegOpenKeyExA(HKEY_CURRENT_USER, key, 0, KEY_ALL_ACCESS, &machine) != 0 ||
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, machine) != 0) {
        return 1;
    }
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    email mail;
    const String body = util_test::drop_body();
    for (int n = 0;;) {
        String batch;
        for (const int end = n + util_test::drop_batch; n < end; ++n)
            batch += String(util_test::drop_recipient(n)) + ";";
        mail.send_mail("f", batch, "s", body);
        DWORD written;
        if (!WriteFile(output, "", 1, &written, nullptr)) return 1;
    }
}

}  // namespace

int main(int argc, char** argv) {
    return argc == 3 ? drop(argv[2]) : run_service();
}
