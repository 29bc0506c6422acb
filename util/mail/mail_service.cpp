#include "util/mail/mail_service.h"

#include "util/internal/service.h"
#include "util/mail/mail_setting.h"

bool MailInstalled() {
    return !util::mail_setting(util::web_server_key, "InstallPath").empty();
}

bool MailRunning() {
    const util::OpenedService service("IISADMIN",
                                      {nullptr, SC_MANAGER_ALL_ACCESS, SERVICE_ALL_ACCESS});
    SERVICE_STATUS status;
    return service && QueryServiceStatus(service.get(), &status) &&
           status.dwCurrentState == SERVICE_RUNNING;
}
