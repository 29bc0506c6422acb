// Real second processes: started, waited for and killed, with events between them and the test.
#ifndef UTIL_TESTS_SUPPORT_SECOND_PROCESS_H
#define UTIL_TESTS_SUPPORT_SECOND_PROCESS_H

#include <stdexcept>
#include <string>

#include "support/built_file.h"
#include "util/internal/windows.h"

namespace util_test {

constexpr DWORD soon_in_ms = 30000;  // for what must happen; a loaded machine gets its time

// An event that stays set; another process opens it by its name.
class Signal {
  public:
    Signal() {
        static int count = 0;
        m_name =
            "util-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
        m_event = CreateEventA(nullptr, TRUE, FALSE, m_name.c_str());
    }
    explicit Signal(const char* name) : m_name(name) {
        m_event = OpenEventA(EVENT_ALL_ACCESS, FALSE, name);
    }
    ~Signal() { CloseHandle(m_event); }
    Signal(const Signal&) = delete;
    Signal& operator=(const Signal&) = delete;

    const std::string& name() const { return m_name; }
    void set() { SetEvent(m_event); }
    bool wait(DWORD ms = soon_in_ms) { return WaitForSingleObject(m_event, ms) == WAIT_OBJECT_0; }

  private:
    std::string m_name;
    HANDLE m_event;
};

// tests/support/files_child.cpp with a verb. It sets ready when it is about to begin (or holds the
// lock) and waits for go. Killed with the object if it still runs.
class SecondProcess {
  public:
    explicit SecondProcess(const std::string& verb, const std::string& arguments, Signal& go)
        : m_name(built_file("files_child.exe") + " " + verb + " " + ready.name() + " " + go.name() +
                 " " + arguments) {
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started;
        if (!CreateProcessA(nullptr, m_name.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                            &startup, &started)) {
            throw std::runtime_error("cannot start " + m_name);
        }
        CloseHandle(started.hThread);
        m_process = started.hProcess;
    }
    ~SecondProcess() {
        kill();
        CloseHandle(m_process);
    }
    SecondProcess(const SecondProcess&) = delete;
    SecondProcess& operator=(const SecondProcess&) = delete;

    // Its exit code, or 259 when it does not end.
    DWORD wait() {
        DWORD code = STILL_ACTIVE;
        WaitForSingleObject(m_process, soon_in_ms);
        GetExitCodeProcess(m_process, &code);
        return code;
    }
    void kill() {
        TerminateProcess(m_process, 99);
        WaitForSingleObject(m_process, soon_in_ms);
    }

    Signal ready;

  private:
    std::string m_name;
    HANDLE m_process;
};

}  // namespace util_test

#endif
