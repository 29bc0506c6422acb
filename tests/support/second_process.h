// Real second processes: started, waited for and killed, with events between them and the test.
#ifndef UTIL_TESTS_SUPPORT_SECOND_PROCESS_H
#define UTIL_TESTS_SUPPORT_SECOND_PROCESS_H

#include <functional>
#include <memory>
#include <random>
#include <stdexcept>
#include <string>
#include <utility>

#include "support/process.h"
#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace util_test {

constexpr DWORD soon_in_ms = 30000;  // for what must happen; a loaded machine gets its time

// An event that stays set. Another process finds it by its name.
class Signal {
  public:
    explicit Signal(const std::string& name)
        : m_event(CreateEventA(nullptr, TRUE, FALSE, name.c_str())) {}

    void set() { SetEvent(m_event.get()); }
    bool wait() { return WaitForSingleObject(m_event.get(), soon_in_ms) == WAIT_OBJECT_0; }

  private:
    util::WinHandle m_event;
};

// tests/support/child.cpp with a verb. It sets `ready` when it is about to begin, and waits for
// `go`. Killed with the object if it still runs.
class SecondProcess {
    static inline int count = 0;
    const std::string m_name =
        "util-test-" + std::to_string(GetCurrentProcessId()) + "-" + std::to_string(++count);

  public:
    Signal ready{m_name + "-ready"}, go{m_name + "-go"};

    SecondProcess(const std::string& verb, const std::string& arguments)
        : m_process(
              started({built_file("child.exe") + " " + verb + " " + m_name + " " + arguments})) {}
    ~SecondProcess() { kill(); }

    // Its exit code, or 259 when it does not end.
    DWORD wait(DWORD limit_ms = soon_in_ms) { return exit_code(m_process.get(), limit_ms); }
    void kill() {
        TerminateProcess(m_process.get(), 99);
        wait();
    }

  private:
    util::WinHandle m_process;
};

// Starts a second process and kills it at a random moment, round after round.
struct Kills {
    static constexpr int rounds = 20;

    const char* verb;
    unsigned longest_ms;
    std::function<std::string(int round)> arguments = {};
    std::function<void()> watch = [] { Sleep(1); };  // again and again while it runs
    std::function<void(int round)> check = {};       // what it left
    unsigned seed = std::random_device()();

    // Throws when a process does not get ready. The next process loads meanwhile.
    void run() const {
        std::mt19937 random(seed);
        std::unique_ptr<SecondProcess> next;
        for (int round = 0; round <= rounds; ++round) {
            const auto victim = std::move(next);
            if (round < rounds) next = std::make_unique<SecondProcess>(verb, arguments(round));
            if (!victim) continue;
            if (!victim->ready.wait()) throw std::runtime_error("the child does not get ready");
            victim->go.set();
            const ULONGLONG end = GetTickCount64() + random() % longest_ms;
            do {
                watch();
            } while (GetTickCount64() < end);
            victim->kill();
            check(round - 1);
        }
    }
};

}  // namespace util_test

#endif
