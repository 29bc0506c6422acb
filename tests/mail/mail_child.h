// The stand-in for the machine's mail service, and what the two sides of the kill test agree on.
#ifndef UTIL_TESTS_MAIL_MAIL_CHILD_H
#define UTIL_TESTS_MAIL_MAIL_CHILD_H

#include <stdexcept>
#include <string>

#include "support/built_file.h"
#include "util/internal/service.h"

namespace util_test {

constexpr int drop_batch = 3;

// Long enough for writing it to take its time.
inline std::string drop_body() {
    return std::string(60000, 'x') + "end";
}

// A service IISADMIN, or of another name, that exists as long as this object. It is stopped at
// first. A service that a killed test did not remove is removed first.
class MailService {
  public:
    explicit MailService(const char* name = "IISADMIN")
        : m_manager(OpenSCManagerA(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)) {
        m_service.reset(OpenServiceA(m_manager.get(), name, SERVICE_ALL_ACCESS));
        if (m_service) remove();
        const std::string command = "\"" + built_file("child.exe") + "\" service";
        // One that was deleted goes when its process has ended.
        for (int tries = 0; tries < most_tries && !m_service; ++tries, Sleep(1)) {
            m_service.reset(CreateServiceA(m_manager.get(), name, name, SERVICE_ALL_ACCESS,
                                           SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START,
                                           SERVICE_ERROR_IGNORE, command.c_str(), nullptr, nullptr,
                                           nullptr, nullptr, nullptr));
        }
        if (!m_service) fail(name + std::string(" cannot be created"));
    }
    ~MailService() { remove(); }

    void start() {
        const bool started = StartServiceA(m_service.get(), 0, nullptr);
        if (!started && GetLastError() != ERROR_SERVICE_ALREADY_RUNNING) fail("cannot be started");
        wait_for(SERVICE_RUNNING);
    }
    void pause() { control(SERVICE_CONTROL_PAUSE, SERVICE_PAUSED); }
    void stop() { control(SERVICE_CONTROL_STOP, SERVICE_STOPPED); }

  private:
    static constexpr int most_tries = 5000;

    void remove() {
        stop();
        DeleteService(m_service.get());
        m_service.reset();
    }
    void control(DWORD what, DWORD state) {
        SERVICE_STATUS status;
        if (ControlService(m_service.get(), what, &status)) wait_for(state);
    }
    void wait_for(DWORD state) {
        SERVICE_STATUS status = {};
        for (int tries = 0; tries < most_tries; ++tries, Sleep(1)) {
            if (QueryServiceStatus(m_service.get(), &status) && status.dwCurrentState == state)
                return;
        }
        fail("does not reach state " + std::to_string(state));
    }
    [[noreturn]] static void fail(const std::string& what) {
        throw std::runtime_error("the service " + what + ", error " +
                                 std::to_string(GetLastError()));
    }

    util::ScopedService m_manager, m_service;
};

}  // namespace util_test

#endif
