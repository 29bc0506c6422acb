#include <windows.h>

#include <iostream>

#include "util/util.h"

namespace {

HANDLE stop;  // set when the service has to end
SERVICE_STATUS_HANDLE status_handle;
String folder;

void report(DWORD state, DWORD exit_code = NO_ERROR) {
    SERVICE_STATUS status = {};
    status.dwServiceType = SERVICE_WIN32_OWN_PROCESS;
    status.dwCurrentState = state;
    if (state == SERVICE_RUNNING)
        status.dwControlsAccepted = SERVICE_ACCEPT_STOP | SERVICE_ACCEPT_SHUTDOWN;
    if (state == SERVICE_STOP_PENDING) status.dwWaitHint = 5000;  // milliseconds to the end
    status.dwWin32ExitCode = exit_code;
    SetServiceStatus(status_handle, &status);
}

// The work: a round every minute until `stop` is set. False when it cannot go on.
bool work() {
    for (int round = 1;; ++round) {
        XrFile log(folder + "\\rounds.log", "at");
        log << String::format("round %d\n", round);
        if (log.Error() || !log.Close()) return false;
        if (WaitForSingleObject(stop, 60000) != WAIT_TIMEOUT) return true;
    }
}

DWORD WINAPI on_control(DWORD control, DWORD, void*, void*) {
    if (control == SERVICE_CONTROL_INTERROGATE) return NO_ERROR;
    if (control != SERVICE_CONTROL_STOP && control != SERVICE_CONTROL_SHUTDOWN)
        return ERROR_CALL_NOT_IMPLEMENTED;
    report(SERVICE_STOP_PENDING);
    SetEvent(stop);
    return NO_ERROR;
}

BOOL WINAPI on_console_event(DWORD) {
    return SetEvent(stop);
}

void WINAPI service_main(DWORD, wchar_t** arguments) {  // the first is the name of the service
    status_handle = RegisterServiceCtrlHandlerExW(arguments[0], on_control, nullptr);
    if (!status_handle) return;
    report(SERVICE_RUNNING);
    const bool worked = work();
    report(SERVICE_STOPPED, worked ? NO_ERROR : ERROR_WRITE_FAULT);
}

}  // namespace

extern "C" int wmain(int argc, wchar_t** argv) {
    if (argc != 2 || !UTIL_WideCharToUtf8(argv[1], &folder)) {
        std::cout << "the folder for the log is needed\n";
        return 2;
    }
    stop = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    if (!stop) return 1;
    wchar_t any_name[] = L"";  // with one service in the program, the system ignores it
    const SERVICE_TABLE_ENTRYW services[] = {{any_name, service_main}, {nullptr, nullptr}};
    if (StartServiceCtrlDispatcherW(services)) return 0;
    if (GetLastError() != ERROR_FAILED_SERVICE_CONTROLLER_CONNECT) return 1;
    std::cout << "not started as a service: working until Ctrl-C\n";  // for tests by hand
    SetConsoleCtrlHandler(on_console_event, TRUE);
    return work() ? 0 : 1;
}
