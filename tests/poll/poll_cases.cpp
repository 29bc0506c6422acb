// fuzz/poll_fuzz.cpp tests which callbacks run, and in which order.
#include "util/poll/poll.h"

#include <chrono>
#include <deque>
#include <list>

#include "support/cases.h"
#include "support/import_patch.h"
#include "support/loopback.h"
#include "support/process.h"
#include "support/scratch_directory.h"

using namespace util_test;

namespace {

constexpr int console = 0;

DWORD keys_waiting() {
    DWORD count = 0;
    GetNumberOfConsoleInputEvents(GetStdHandle(STD_INPUT_HANDLE), &count);
    return count;
}

// A source and its callback, which reads all data. It removes itself in its last call, and sends
// itself a byte in the others.
struct Source : Poll::Callback {
    Source(Poll& p, int number) : poll(p), fd(number) {}
    Source(Poll& p, std::unique_ptr<Connection> c)
        : poll(p), fd(c->fd()), connection(std::move(c)) {
        connection->limit_blocking_reads(5);
    }
    void ready(int given_fd, int events) override {
        if (given_fd != fd || events != 0) ADD_FAILURE() << given_fd << " " << events;
        if (fd == console && keys_waiting() != 1) ADD_FAILURE() << "discarded too early";
        ++calls;
        while (connection && connection->read() > 0) {
        }
        if (--calls_left <= 0) return poll.remove(fd);
        if (connection) send();
    }
    void send() {
        connection->send_byte();
        SetEvent(event);  // the platform's own event may come later
    }

    Poll& poll;
    const int fd;
    std::unique_ptr<Connection> connection;
    HANDLE event = nullptr;
    int calls = 0, calls_left = 1;
};

struct World : CaseWorld {
    World() {
        sources.try_emplace("free", poll, -1);
        sources.try_emplace("console", poll, console);
        for (const char* const name : {"a", "b"})
            sources.try_emplace(name, poll, std::make_unique<Connection>());
        auto datagrams = std::make_unique<Connection>(SOCK_DGRAM);
        datagrams->close_far_end(false);
        ::send(static_cast<SOCKET>(datagrams->fd()), "x", 1, 0);
        sources.try_emplace("refused", poll, std::move(datagrams));
    }
    ~World() override { SetStdHandle(STD_INPUT_HANDLE, input); }
    Source& at(const std::string& name) { return sources.at(name); }

    void add(const std::string& name) {
        poll.append(at(name).fd, &at(name));
        at(name).event = last_event;
    }
    void add_idle(int count) {
        for (; count > 0; --count)
            poll.append(idle.emplace_back().fd(), nullptr);
    }
    // What it prints.
    std::string remove(const std::string& name) {
        errno = ENOENT;
        testing::internal::CaptureStderr();
        poll.remove(at(name).fd);
        return testing::internal::GetCapturedStderr();
    }
    DWORD remove_code(const std::string& name) {
        SetLastError(0);
        poll.remove(at(name).fd);
        return GetLastError();
    }
    // Whether it takes its time, less a tick, and ends. GetTickCount64 lags on a loaded machine.
    bool run(int ms) {
        using std::chrono::steady_clock;
        const auto start = steady_clock::now();
        poll.run(ms);
        const auto took = steady_clock::now() - start;
        return took >= std::chrono::milliseconds(ms - 16) && took < std::chrono::seconds(10);
    }
    // Returns how often a new Poll allocates, and how often a run of this world's Poll does.
    Words allocations(int ms) {
        int count = 0;
        const ImportPatch own("malloc", [&](size_t n) { return ++count, std::malloc(n); });
        const ImportPatch runtime(
            "malloc", [&](size_t n) { return ++count, std::malloc(n); }, "libstdc++-6.dll");
        const Poll another;
        const int of_another = std::exchange(count, 0);
        poll.run(ms);
        return said(of_another, std::exchange(count, 0));
    }
    int set_mode(const std::string& name, void (Poll::*set)(int fd)) {
        WSASetLastError(0);
        (poll.*set)(at(name).fd);
        return WSAGetLastError();
    }
    static void use_input(DWORD access) {
        const HANDLE process = GetCurrentProcess();
        HANDLE made;
        DuplicateHandle(process, process, process, &made, access, FALSE, 0);
        SetStdHandle(STD_INPUT_HANDLE, made);
    }
    static void use_console() {
        SetStdHandle(STD_INPUT_HANDLE, CreateFileA("CONIN$", GENERIC_READ | GENERIC_WRITE, 0,
                                                   nullptr, OPEN_EXISTING, 0, nullptr));
    }

    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    HANDLE last_event = nullptr;
    bool no_events = false;
    const ImportPatch events{
        "CreateEventA", [this](SECURITY_ATTRIBUTES* security, BOOL manual, BOOL set, char* name) {
            return last_event = no_events ? nullptr : CreateEventA(security, manual, set, name);
        }};
    std::optional<int> select_result;
    const ImportPatch selects{"select", [this](int, fd_set* set, fd_set*, fd_set*, timeval* time) {
                                  EXPECT_EQ(time->tv_sec + time->tv_usec, 0) << "waits";
                                  if (!select_result) return select(0, set, nullptr, nullptr, time);
                                  if (*select_result > 0) set->fd_count = 0;
                                  return *select_result;
                              }};
    int waits_left = 100;
    std::deque<DWORD> results;  // of the next waits, instead of real ones
    Words waits;                // of these, the number of handles and the first
    const ImportPatch wait{
        "WaitForMultipleObjects",
        [this](DWORD count, HANDLE* handles, BOOL all, DWORD ms) -> DWORD {
            if (--waits_left < 0) return WAIT_TIMEOUT;
            if (results.empty()) return WaitForMultipleObjects(count, handles, all, ms);
            const bool is_kept = handles[0] == GetCurrentProcess();
            const char* const first = is_kept ? "kept" : handles[0] == at("a").event ? "a" : "b";
            say(waits, said(count, first));
            handles[0] = GetCurrentProcess();  // stays until the list is built again
            const DWORD result = results.front();
            results.pop_front();
            return result;
        }};
    std::vector<DWORD> slept;
    const ImportPatch sleep{"Sleep", [this](DWORD ms) {
                                slept.push_back(ms);
                                Sleep(ms);
                            }};
    Poll poll;
    std::map<std::string, Source> sources;
    std::list<Connection> idle;
};

void press_key() {
    INPUT_RECORD key = {};
    key.EventType = KEY_EVENT;
    key.Event.KeyEvent.bKeyDown = TRUE;
    DWORD written;
    WriteConsoleInputA(GetStdHandle(STD_INPUT_HANDLE), &key, 1, &written);
    EXPECT_EQ(keys_waiting(), 1u);
}

// 0 without a console.
DWORD mode_of_input() {
    DWORD mode = 0;
    return GetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), &mode) ? mode : 0;
}

using Name = const std::string&;
constexpr char has_console[] = "UTIL_POLL_TEST_HAS_CONSOLE";

const Cases<World> cases(
    std::getenv(has_console) ? "poll/console.cases" : "poll/poll.cases",
    {
        call("add", &World::add),
        call("add_idle", &World::add_idle),
        call("add_silent", [](World& w, Name name) { w.poll.append(w.at(name).fd, nullptr); }),
        call("add_ends_the_process",
             [](World& w, Name name) { EXPECT_EXIT(w.add(name), testing::ExitedWithCode(3), ""); }),
        call("remove", &World::remove),
        call("remove_code", &World::remove_code),
        call("run", &World::run),
        call("serve", [](World& w, int ms) { w.poll.run(ms); }),
        call("allocations", &World::allocations),
        call("set_blocking",
             [](World& w, Name name) { return w.set_mode(name, &Poll::SetBlockingMode); }),
        call("set_non_blocking",
             [](World& w, Name name) { return w.set_mode(name, &Poll::SetNonBlockingMode); }),

        call("send", [](World& w, Name name) { w.at(name).send(); }),
        call("close", [](World& w, Name name) { w.at(name).connection->close_far_end(false); }),
        call("set_event", [](World& w, Name name) { SetEvent(w.at(name).event); }),
        call("read", [](World& w, Name name) { return w.at(name).connection->read(); }),
        call("calls", [](World& w, Name name) { return w.at(name).calls; }),
        call("removes_itself_in",
             [](World& w, Name name, int calls) { w.at(name).calls_left = calls; }),

        call("select_gives", [](World& w, int result) { w.select_result = result; }),
        call("wait_gives", [](World& w, DWORD result) { w.results.push_back(result); }),
        call("waits", [](World& w) { return w.waits; }),
        call("waits_left", [](World& w) { return w.waits_left >= 0; }),
        call("slept", [](World& w) { return w.slept; }),
        call("no_events", [](World& w) { w.no_events = true; }),

        call("input", World::use_input),
        call("close_input", [] { CloseHandle(GetStdHandle(STD_INPUT_HANDLE)); }),
        call("input_is_event",
             [](World& w, Name name) { SetStdHandle(STD_INPUT_HANDLE, w.at(name).event); }),
        call("input_is_console", World::use_console),
        call("set_mode", [](DWORD mode) { SetConsoleMode(GetStdHandle(STD_INPUT_HANDLE), mode); }),
        call("mode", mode_of_input),
        call("press_key", press_key),
        call("keys_waiting", keys_waiting),
    });

// The child process has a console without a window. Its standard output is lost.
TEST(PollTest, ConsoleCases_PassInAProcessWithAConsole) {
    const ScratchDirectory scratch;
    Start start = {'"' + built_file("poll_test.exe") +
                   "\" --gtest_filter=console.* \"--gtest_output=xml:" + scratch / "report" + '"'};
    start.flags = CREATE_NO_WINDOW;
    SetEnvironmentVariableA(has_console, "1");
    EXPECT_EQ(run(start), 0u) << scratch.read("report");
    SetEnvironmentVariableA(has_console, nullptr);
    EXPECT_NE(scratch.read("report").find("<testcase "), std::string::npos);
}

}  // namespace
