// Real second processes: started, waited for and killed, with events between them and the test.
#ifndef UTIL_TESTS_SUPPORT_SECOND_PROCESS_H
#define UTIL_TESTS_SUPPORT_SECOND_PROCESS_H

#include <functional>
#include <random>
#include <stdexcept>
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

// tests/support/child.cpp with a verb. It sets ready when it is about to begin (or holds the lock)
// and waits for go. Killed with the object if it still runs.
class SecondProcess {
  public:
    SecondProcess(const std::string& verb, const std::string& arguments, const Signal& go)
        : m_process(started({built_file("child.exe") + " " + verb + " " + ready.name() + " " +
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

// Starts a second process and kills it at a random moment, round after round.
struct Kills {
    const char* verb;
    unsigned longest_ms;
    std::function<std::string(int round)> arguments;
    std::function<void()> watch;           // again and again while it runs
    std::function<void(int round)> check;  // what it left

    unsigned seed = std::random_device()();

    // Throws when a process does not get ready.
    void run(int rounds) const {
        std::mt19937 random(seed);
        for (int round = 0; round < rounds; ++round) {
            Signal go;
            SecondProcess victim(verb, arguments(round), go);
            if (!victim.ready.wait()) throw std::runtime_error("the child does not get ready");
            go.set();
            const ULONGLONG end = GetTickCount64() + random() % longest_ms;
            do {
                watch();
            } while (GetTickCount64() < end);
            victim.kill();
            check(round);
        }
    }
};

}  // namespace util_test

#endif
