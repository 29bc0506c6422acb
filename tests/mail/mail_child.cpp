// The service that the mail tests install: it starts, pauses and stops as it is told.
#include "util/internal/windows.h"

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

}  // namespace

int main() {
    char name[] = "";
    const SERVICE_TABLE_ENTRYA table[] = {{name, serve}, {nullptr, nullptr}};
    return StartServiceCtrlDispatcherA(table) ? 0 : 1;
}
