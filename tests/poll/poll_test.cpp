#include "util/poll/poll.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/import_patch.h"
#include "support/loopback.h"

using util_test::Connection;
using util_test::ImportPatch;

namespace {

// --- what stands in for the platform's calls ---

HANDLE last_event;
HANDLE WINAPI noted_event(SECURITY_ATTRIBUTES* security, BOOL manual, BOOL set, const char* name) {
    return last_event = CreateEventA(security, manual, set, name);
}

std::function<void()> before_reset;
BOOL WINAPI watched_reset(HANDLE event) {
    before_reset();
    return ResetEvent(event);
}

int selected;
bool selected_none;
int WINAPI scripted_select(int, fd_set* set, fd_set*, fd_set*, timeval*) {
    if (selected_none) set->fd_count = 0;
    return selected;
}

struct Wait {
    DWORD count;
    HANDLE first;
};
std::vector<Wait> waits;
std::vector<DWORD> answers;  // to the waits in turn; after the last one they time out
DWORD WINAPI scripted_wait(DWORD count, const HANDLE* handles, BOOL, DWORD) {
    waits.push_back({count, handles[0]});
    const_cast<HANDLE*>(handles)[0] = GetCurrentProcess();  // there while the list is not rebuilt
    return waits.size() <= answers.size() ? answers[waits.size() - 1] : DWORD(WAIT_TIMEOUT);
}

std::vector<DWORD> slept;
int allocations;

// --- sources that write down when they are served ---

// A connection, and a callback that reads everything as callbacks should. Then it does what the
// test wants; as a rule it removes the socket, so that an infinite run ends when all were served.
struct Source : Poll::Callback {
    Source(Poll& p, std::string& l, char n) : poll(p), log(l), name(n) {}
    void ready(int fd, int events) override {
        EXPECT_EQ(events, 0);
        char byte;
        while (recv(static_cast<SOCKET>(fd), &byte, 1, 0) > 0) {
        }
        log += name;
        const auto action = then;
        action ? action() : poll.remove(fd);
    }
    void add(Poll::Callback* callback) {
        poll.append(fd(), callback);
        event = last_event;
    }
    void add() { add(this); }
    void remove() { poll.remove(fd()); }
    int fd() const { return connection.fd(); }
    // Firing without waiting for the platform makes the order of service certain.
    void fire() { SetEvent(event); }
    void send() {
        connection.send_byte();
        fire();
    }

    Poll& poll;
    std::string& log;
    char name;
    Connection connection;
    HANDLE event = nullptr;
    std::function<void()> then;
};

struct World {
    void run() { poll.run(Poll::Infinite); }

    ImportPatch events{"CreateEventA", noted_event};
    std::string log;
    Poll poll;
    Source a{poll, log, 'a'}, b{poll, log, 'b'}, c{poll, log, 'c'};
};

// --- service ---

TEST(PollTest, ServesDataAndCloseInSlotOrderAndAgainInTheNextRun) {
    World w;
    w.a.add();
    w.b.add();
    w.a.remove();
    w.c.add();  // takes the first slot
    w.a.send();
    w.b.send();
    w.c.connection.hang_up();
    w.c.fire();
    w.run();
    EXPECT_EQ(w.log, "cb");

    w.b.add();
    w.poll.run(0);
    EXPECT_EQ(w.log, "cb") << "idle";
    w.b.connection.send_byte();
    w.run();
    w.b.add();
    w.b.connection.hang_up();
    w.run();
    EXPECT_EQ(w.log, "cbbb");
}

TEST(PollTest, FalseAlarmsCauseNoCallback) {
    const struct {
        const char* what;
        bool closed;  // by the peer, so that only the stand-in for select denies the reason
        int selected;
        bool none;
    } cases[] = {
        {"nothing to read", false, 0, false},
        {"select sees nothing", true, 0, false},
        {"select fails", true, SOCKET_ERROR, false},
        {"select names no socket", true, 1, true},
    };
    for (const auto& c : cases) {
        World w;
        int resets = 0;
        before_reset = [&] { ++resets; };
        ImportPatch reset("ResetEvent", watched_reset);
        ImportPatch select("select", c.closed ? scripted_select : ::select);
        selected = c.selected;
        selected_none = c.none;
        w.a.add();
        w.b.add();
        w.b.then = [&] { w.a.remove(), w.b.remove(); };
        if (c.closed) w.a.connection.hang_up();
        w.a.fire();
        w.b.send();
        w.run();
        EXPECT_EQ(w.log, "b") << c.what;
        EXPECT_GE(resets, 1) << c.what;
    }
}

TEST(PollTest, DataThatComesWhileAFalseAlarmIsResetIsServed) {
    World w;
    before_reset = [&] { w.a.connection.send_byte(); };
    ImportPatch reset("ResetEvent", watched_reset);
    w.a.add();
    w.a.fire();
    w.run();
    EXPECT_EQ(w.log, "a");
}

// --- the table ---

TEST(PollTest, RegisteringAgainReplacesTheCallbackInTheSameSlot) {
    World w;
    w.a.add();
    w.b.add();
    w.a.add(&w.c);
    w.a.send();
    w.b.send();
    w.run();
    EXPECT_EQ(w.log, "cb");

    w.a.add(nullptr);
    w.b.add();
    w.b.then = [&] { w.a.remove(), w.b.remove(); };
    w.a.send();
    w.b.send();
    w.run();
    EXPECT_EQ(w.log, "cbb") << "no callback, no call";
}

// a and b are registered, in this order, and have fired; what a then does is the case.
TEST(PollTest, CallbacksMayChangeTheTable) {
    const struct {
        const char* what;
        void (*then)(World&);
        const char* log;
    } cases[] = {
        {"remove a later source that has fired", [](World& w) { w.a.remove(), w.b.remove(); }, "a"},
        {"give their slot to another source", [](World& w) { w.a.remove(), w.c.add(), w.c.send(); },
         "acb"},
        {"add a later source",
         [](World& w) {
             w.b.then = [] {};
             w.c.then = [&w] { w.a.remove(), w.b.remove(), w.c.remove(); };
             w.c.add(), w.c.send();
         },
         "abc"},
        {"run again",
         [](World& w) {
             w.a.then = [] {};
             w.poll.run(0);
             w.log += '.', w.a.remove();
         },
         "ab."},
        {"run again and leave changes to the run around it",
         [](World& w) {
             w.c.then = [&w] { w.a.remove(), w.c.remove(); };
             w.c.add(), w.poll.run(0), w.c.send();
         },
         "abc"},
        {"raise", [](World& w) { w.a.remove(), throw std::runtime_error("callback"); }, "ab"},
    };
    for (const auto& c : cases) {
        World w;
        w.a.then = [&] { c.then(w); };
        w.a.add();
        w.b.add();
        w.a.send();
        w.b.send();
        try {
            w.run();
        } catch (const std::runtime_error&) {
            w.run();
        }
        EXPECT_EQ(w.log, c.log) << "callbacks may " << c.what;
    }
}

TEST(PollTest, SixtyFourSourcesAreServedAndOneMoreEndsTheProcess) {
    World w;
    std::vector<Connection> idle(63);
    for (const Connection& connection : idle)
        w.poll.append(connection.fd(), nullptr);
    w.a.add();
    w.a.add();  // is there already
    w.poll.append(-1, nullptr);
    EXPECT_EXIT(w.b.add(), testing::ExitedWithCode(3), "");
    w.a.then = [&] {
        for (const Connection& connection : idle)
            w.poll.remove(connection.fd());
        w.a.remove();
    };
    w.a.send();
    w.run();
    EXPECT_EQ(w.log, "a");
}

TEST(PollTest, RemovingAnUnknownSourceIsReported) {
    World w;
    w.a.add();
    testing::internal::CaptureStderr();
    w.poll.remove(-1);
    errno = ENOENT;
    w.b.remove();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Poll::remove (int fd): Not found: No such file or directory\n");
}

// --- the wait ---

TEST(PollTest, WaitsAsLongAsItIsTold) {
    World w;
    w.a.add();
    const ULONGLONG start = GetTickCount64();
    w.poll.run(20);
    EXPECT_GE(GetTickCount64() - start, 4u) << "20 ms less a tick of the clock";
}

TEST(PollTest, WaitsAgainWithTheSameListUntilTheTableChanges) {
    World w;
    w.a.add();
    w.b.add();
    w.a.send();
    ImportPatch wait("WaitForMultipleObjects", scripted_wait);
    answers = {WAIT_ABANDONED_0, WAIT_IO_COMPLETION, 2, WAIT_FAILED, 0};
    waits.clear();
    w.poll.run(7);
    EXPECT_EQ(w.log, "a");
    ASSERT_EQ(waits.size(), 6u);
    EXPECT_EQ(waits[0].first, w.a.event);
    for (size_t i = 1; i < 5; ++i)
        EXPECT_EQ(waits[i].first, GetCurrentProcess()) << i;
    EXPECT_EQ(waits[4].count, 2u);
    EXPECT_EQ(waits[5].first, w.b.event) << "a has removed itself";
    EXPECT_EQ(waits[5].count, 1u);
}

TEST(PollTest, WithNothingToWaitForSleepsOrReturns) {
    World w;
    ImportPatch sleep(
        "Sleep", +[](DWORD milliseconds) { slept.push_back(milliseconds); });
    slept.clear();
    w.poll.append(-1, &w.a);
    w.poll.run(7);
    w.run();
    {
        ImportPatch none("CreateEventA", util_test::fails<0>);
        w.a.add();
    }
    w.a.connection.send_byte();
    w.poll.run(0);
    w.run();
    EXPECT_EQ(slept, (std::vector<DWORD>{7, 0}));
    EXPECT_EQ(w.log, "");
    testing::internal::CaptureStderr();
    w.a.remove();
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << "kept, though without an event";
}

TEST(PollTest, AllocatesNothingWhileServing) {
    World w;
    w.log.reserve(100);
    w.a.then = [&w] { w.log.size() < 20 ? w.a.send() : w.a.remove(); };
    w.a.add();
    w.a.send();
    static const auto real_malloc = &std::malloc;
    const auto counted = +[](size_t size) { return ++allocations, real_malloc(size); };
    ImportPatch runtime("libstdc++-6.dll", "malloc", counted);
    ImportPatch own("malloc", counted);
    allocations = 0;
    Poll another;
    EXPECT_EQ(allocations, 2) << "the two tables";
    w.run();
    EXPECT_EQ(allocations, 2);
    EXPECT_EQ(w.log, std::string(20, 'a'));
}

TEST(PollTest, SwitchesARegisteredSocketBetweenBlockingCallsAndEvents) {
    World w;
    for (Source* source : {&w.a, &w.b})
        source->connection.limit_blocking_reads(5);
    w.a.add();
    EXPECT_EQ(w.a.connection.read(), -WSAEWOULDBLOCK);
    w.poll.SetBlockingMode(w.a.fd());
    EXPECT_EQ(w.a.connection.read(), -WSAETIMEDOUT);
    w.a.connection.send_byte();
    w.poll.run(5);
    EXPECT_EQ(w.log, "") << "no event while blocking";
    w.poll.SetNonBlockingMode(w.a.fd());
    w.poll.SetNonBlockingMode(w.b.fd());
    EXPECT_EQ(w.b.connection.read(), -WSAETIMEDOUT) << "not registered";
    w.run();
    EXPECT_EQ(w.log, "a") << "what came meanwhile is announced";
}

// --- the console ---

// Runs the current test again in a child that has a console of its own, without a window; true in
// that child, whose standard output is lost.
bool in_console_child() {
    constexpr char mark[] = "UTIL_POLL_TEST_HAS_CONSOLE";
    if (GetEnvironmentVariableA(mark, nullptr, 0) != 0) return true;
    char program[MAX_PATH];
    GetModuleFileNameA(nullptr, program, sizeof program);
    const std::string test = testing::UnitTest::GetInstance()->current_test_info()->name();
    std::string command = '"' + std::string(program) + "\" --gtest_filter=*." + test +
                          " --gtest_output=xml:poll_console." + test + ".xml";
    STARTUPINFOA startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION child;
    SetEnvironmentVariableA(mark, "1");
    const BOOL started = CreateProcessA(nullptr, &command[0], nullptr, nullptr, FALSE,
                                        CREATE_NO_WINDOW, nullptr, nullptr, &startup, &child);
    SetEnvironmentVariableA(mark, nullptr);
    if (!started) throw std::runtime_error("cannot start a child with a console");
    if (WaitForSingleObject(child.hProcess, 30000) != WAIT_OBJECT_0) {
        TerminateProcess(child.hProcess, 1);
    }
    DWORD code = 1;
    GetExitCodeProcess(child.hProcess, &code);
    CloseHandle(child.hThread);
    CloseHandle(child.hProcess);
    EXPECT_EQ(code, 0u) << "see the child's report, poll_console." << test << ".xml";
    return false;
}

struct Console : Poll::Callback {
    void ready(int fd, int events) override {
        EXPECT_EQ(fd, 0);
        EXPECT_EQ(events, 0);
        EXPECT_EQ(keys_waiting(), 1u) << "there for the callback to read";
        ++calls;
        if (then) then();
    }
    void press_key() const {
        INPUT_RECORD key = {};
        key.EventType = KEY_EVENT;
        key.Event.KeyEvent.bKeyDown = TRUE;
        DWORD written;
        WriteConsoleInputA(input, &key, 1, &written);
        EXPECT_EQ(keys_waiting(), 1u);
    }
    DWORD keys_waiting() const {
        DWORD count = 0;
        GetNumberOfConsoleInputEvents(input, &count);
        return count;
    }
    // Nothing when the console is closed.
    DWORD mode() const {
        DWORD mode = 0;
        return GetConsoleMode(input, &mode) ? mode : 0;
    }

    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    int calls = 0;
    std::function<void()> then;
};

TEST(PollConsoleTest, IsServedBesideSixtyThreeSockets) {
    if (!in_console_child()) return;
    World w;
    Console console;
    const std::vector<Connection> idle(62);
    for (const Connection& connection : idle)
        w.poll.append(connection.fd(), nullptr);
    w.a.add();
    SetConsoleMode(console.input, 0);
    console.press_key();
    w.poll.append(0, &console);
    EXPECT_EQ(console.mode(), 7u);
    EXPECT_EQ(console.keys_waiting(), 0u) << "input of before is discarded";

    WSASetLastError(0);
    w.poll.SetBlockingMode(0);
    w.poll.SetNonBlockingMode(0);
    EXPECT_EQ(WSAGetLastError(), 0) << "not taken for a socket";

    console.press_key();
    w.a.send();
    w.poll.run(5);
    EXPECT_EQ(w.log, "a");
    EXPECT_EQ(console.calls, 1);
    EXPECT_EQ(console.keys_waiting(), 0u) << "what the callback has left is lost";

    CloseHandle(console.input);  // behind the poller's back
    w.a.add();
    w.a.send();
    w.poll.run(5);
    EXPECT_EQ(w.log, "aa") << "the others are still served";
}

TEST(PollConsoleTest, IsClosedByRemovalAndThenNeverWaitedFor) {
    if (!in_console_child()) return;
    World w;
    Console console;
    console.then = [&] { w.poll.remove(0); };
    w.poll.append(0, &console);
    w.a.add();
    console.press_key();
    w.poll.run(5);
    EXPECT_EQ(console.calls, 1);
    EXPECT_EQ(console.mode(), 0u);

    // The number that is left may name nothing, or by the next registration an event.
    for (const HANDLE number : {console.input, w.a.event}) {
        SetStdHandle(STD_INPUT_HANDLE, number);
        w.poll.append(0, &console);
        w.poll.run(0);
        SetLastError(0);
        w.poll.remove(0);
        EXPECT_EQ(GetLastError(), 0u) << "nothing is closed";
    }
    w.a.send();
    w.run();
    EXPECT_EQ(w.log, "a");
    EXPECT_EQ(console.calls, 1);
}

}  // namespace
