// Real second processes: started, waited for and killed, with events between them and the test.
#ifndef UTIL_TESTS_SUPPORT_SECOND_PROCESS_H
#define UTIL_TESTS_SUPPORT_SECOND_PROCESS_H

#include <string>

#include "support/process.h"
#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace util_test {

constexpr DWORD soon_in_ms = 30000;  // for what must happen; a loaded machine gets its time

// An event that stays set; another process finds it by its name.
class Signal {
  public:
    Signal() : Signal(fresh_name()) {}
    explicit Signal(const std::string& name)
        : m_name(name), m_event(CreateEventA(nullptr, TRUE, FALSE, name.c_str())) {}

    const std::string& name() const { return m_name; }
    void set() { SetEvent(m_event.get()); }
    bool wait(DWORD ms = soon_in_ms) {
        return WaitForSingleObject(m_event.get(), ms) == WAIT_OBJECT_0;
    }

  private:
    static std::string fresh_name() {
        static int count = 0;
        return "util-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);
    }

    std::string m_name;
    util::WinHandle m_event;
};

// tests/support/files_child.cpp with a verb. It sets ready when it is about to begin (or holds the
// lock) and waits for go. Killed with the object if it still runs.
class SecondProcess {
  public:
    SecondProcess(const std::string& verb, const std::string& arguments, const Signal& go)
        : m_process(started({built_file("files_child.exe") + " " + verb + " " + ready.name() + " " +
                             go.name() + " " + arguments})) {}
    ~SecondProcess() { kill(); }

    // Its exit code, or 259 when it does not end.
    DWORD wait() { return exit_code(m_process.get(), soon_in_ms); }
    void kill() {
        TerminateProcess(m_process.get(), 99);
        wait();
    }

    Signal ready;

  private:
    util::WinHandle m_process;
};

}  // namespace util_test

#endif
