#include "util/poll/poll.h"

#include "support/import_patch.h"
#include "support/loopback.h"
#include "support/process.h"
#include "support/test.h"

using util_test::Connection;
using util_test::ImportPatch;

namespace {

// A connection and its callback. The callback reads all data, then calls `then` or removes itself.
struct Source : Poll::Callback {
    Source(Poll& p, const HANDLE& event_made_last) : poll(p), last_event(event_made_last) {}
    void ready(int fd, int) override {
        char byte;
        while (recv(static_cast<SOCKET>(fd), &byte, 1, 0) > 0) {
        }
        ++calls;
        then ? then() : poll.remove(fd);
    }
    void add() {
        poll.append(fd(), this);
        event = last_event;
    }
    void remove() { poll.remove(fd()); }
    int fd() const { return connection.fd(); }
    void send() {
        connection.send_byte();
        SetEvent(event);  // the platform's own event may come later
    }

    Poll& poll;
    const HANDLE& last_event;
    Connection connection;
    HANDLE event = nullptr;
    int calls = 0;
    std::function<void()> then;
};

struct World {
    HANDLE last_event = nullptr;
    ImportPatch events{"CreateEventA",
                       [this](SECURITY_ATTRIBUTES* security, BOOL manual, BOOL set, char* name) {
                           return last_event = CreateEventA(security, manual, set, name);
                       }};
    Poll poll;
    Source a{poll, last_event}, b{poll, last_event};
};

// fuzz/poll_fuzz.cpp tests which callbacks run, and in which order.
TEST(PollTest, Run_SourceThatIsNeverReadable_TimesOutAndServesTheNext) {
    Connection refused(SOCK_DGRAM);
    refused.close_far_end(false);
    send(static_cast<SOCKET>(refused.fd()), "x", 1, 0);
    const HANDLE process = GetCurrentProcess(), kept_input = GetStdHandle(STD_INPUT_HANDLE);
    int waits_left = 0;
    ImportPatch wait("WaitForMultipleObjects",
                     [&](DWORD count, const HANDLE* handles, BOOL all, DWORD ms) -> DWORD {
                         if (--waits_left < 0) return WAIT_TIMEOUT;
                         return WaitForMultipleObjects(count, handles, all, ms);
                     });
    enum { refused_datagram, input_without_right_to_wait, closed_input };
    for (const int what : {refused_datagram, input_without_right_to_wait, closed_input}) {
        World w;
        HANDLE input;
        const DWORD access = what == input_without_right_to_wait ? READ_CONTROL : SYNCHRONIZE;
        DuplicateHandle(process, process, process, &input, access, FALSE, 0);
        SetStdHandle(STD_INPUT_HANDLE, input);
        if (what == closed_input) w.a.add();  // so that the second is dropped
        w.poll.append(what == refused_datagram ? refused.fd() : 0, &w.b);
        w.a.add();
        w.a.send();
        if (what != input_without_right_to_wait) CloseHandle(input);
        waits_left = 100;
        const ULONGLONG start = GetTickCount64();
        w.poll.run(20);
        EXPECT_GE(waits_left, 0) << what;
        const ULONGLONG took = GetTickCount64() - start;
        EXPECT_GE(took, 4u);  // less a tick of the clock
        EXPECT_LT(took, 1000u);
        EXPECT_EQ(w.a.calls, 1) << what;
    }
    SetStdHandle(STD_INPUT_HANDLE, kept_input);
}

TEST(PollTest, Run_SelectFailsOrNamesNoSocket_NoCallback) {
    for (const int result : {0, SOCKET_ERROR, 1}) {
        ImportPatch select("select", [=](int, fd_set* set) {
            if (result > 0) set->fd_count = 0;
            return result;
        });
        World w;
        w.a.add();
        w.a.connection.close_far_end(false);
        SetEvent(w.a.event);
        w.poll.run(0);
        EXPECT_EQ(w.a.calls, 0) << result;
    }
}

TEST(PollTest, Append_SixtyFifthSource_EndsTheProcess) {
    World w;
    std::vector<Connection> idle(63);
    for (const Connection& connection : idle)
        w.poll.append(connection.fd(), nullptr);
    w.a.add();
    w.a.add();  // is registered already
    w.poll.append(-1, nullptr);
    EXPECT_EXIT(w.b.add(), testing::ExitedWithCode(3), "");
    w.a.send();
    w.poll.run(0);
    EXPECT_EQ(w.a.calls, 1);
}

TEST(PollTest, Remove_UnknownSource_IsReported) {
    World w;
    ImportPatch none("CreateEventA", util_test::fails<0>);
    w.a.add();
    testing::internal::CaptureStderr();
    w.a.remove();  // is registered, without an event
    w.poll.remove(-1);
    errno = ENOENT;
    w.b.remove();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Poll::remove (int fd): Not found: No such file or directory\n");
}

TEST(PollTest, Run_WaitsWithTheSameListUntilTheTableChanges) {
    World w;
    w.a.add();
    w.b.add();
    w.a.send();
    struct Wait {
        DWORD count;
        HANDLE first;
    };
    std::vector<Wait> waits;
    const DWORD answers[] = {WAIT_ABANDONED_0, WAIT_IO_COMPLETION, 2, WAIT_FAILED, 0, WAIT_TIMEOUT};
    ImportPatch wait("WaitForMultipleObjects", [&](DWORD count, HANDLE* handles) {
        waits.push_back({count, handles[0]});
        handles[0] = GetCurrentProcess();  // stays until the list is rebuilt
        return answers[std::min(waits.size(), std::size(answers)) - 1];
    });
    w.poll.run(7);
    EXPECT_EQ(w.a.calls, 1);
    ASSERT_EQ(waits.size(), 6u);
    EXPECT_EQ(waits[0].first, w.a.event);
    for (size_t i = 1; i < 5; ++i)
        EXPECT_EQ(waits[i].first, GetCurrentProcess()) << i;
    EXPECT_EQ(waits[4].count, 2u);
    EXPECT_EQ(waits[5].first, w.b.event) << "a has removed itself";
    EXPECT_EQ(waits[5].count, 1u);
}

TEST(PollTest, Run_NothingToWaitFor_SleepsOrReturns) {
    World w;
    std::vector<DWORD> slept;
    ImportPatch sleep("Sleep", [&](DWORD milliseconds) { slept.push_back(milliseconds); });
    w.poll.append(-1, &w.a);
    w.poll.run(7);
    w.poll.run(Poll::Infinite);
    {
        ImportPatch none("CreateEventA", util_test::fails<0>);
        w.a.add();
    }
    w.a.connection.send_byte();
    w.poll.run(0);
    w.poll.run(Poll::Infinite);
    EXPECT_EQ(slept, (std::vector<DWORD>{7, 0}));
    EXPECT_EQ(w.a.calls, 0);
}

TEST(PollTest, Run_AllocatesNothing) {
    World w;
    w.a.then = [&w] { w.a.calls < 20 ? w.a.send() : w.a.remove(); };
    w.a.add();
    w.a.send();
    static int allocations;
    static const auto real_malloc = &std::malloc;
    const auto counted = +[](size_t size) {
        ++allocations;
        return real_malloc(size);
    };
    ImportPatch runtime("libstdc++-6.dll", "malloc", counted);
    ImportPatch own("malloc", counted);
    allocations = 0;
    Poll another;
    EXPECT_EQ(allocations, 2) << "the two tables";
    w.poll.run(Poll::Infinite);
    EXPECT_EQ(allocations, 2);
    EXPECT_EQ(w.a.calls, 20);
}

TEST(PollTest, SetBlockingMode_RegisteredSocket_ReadsWait) {
    World w;
    for (Source* source : {&w.a, &w.b})
        source->connection.limit_blocking_reads(5);
    w.a.add();
    EXPECT_EQ(w.a.connection.read(), -WSAEWOULDBLOCK);
    w.poll.SetBlockingMode(w.a.fd());
    EXPECT_EQ(w.a.connection.read(), -WSAETIMEDOUT);
    w.poll.SetNonBlockingMode(w.a.fd());
    EXPECT_EQ(w.a.connection.read(), -WSAEWOULDBLOCK);
    w.poll.SetNonBlockingMode(w.b.fd());
    EXPECT_EQ(w.b.connection.read(), -WSAETIMEDOUT) << "not registered";
}

// Runs the console's test again in a child process that has a console without a window. Returns
// true in the child. The child's standard output is lost.
bool in_console_child() {
    constexpr char mark[] = "UTIL_POLL_TEST_HAS_CONSOLE";
    if (GetEnvironmentVariableA(mark, nullptr, 0) != 0) return true;
    util_test::Start start = {'"' + util_test::built_file("poll_test.exe") +
                              "\" --gtest_filter=*.Console --gtest_output=xml:poll_console.xml"};
    start.flags = CREATE_NO_WINDOW;
    SetEnvironmentVariableA(mark, "1");
    const DWORD code = util_test::run(start);
    SetEnvironmentVariableA(mark, nullptr);
    EXPECT_EQ(code, 0u) << "see the child's report, poll_console.xml";
    return false;
}

struct Console : Poll::Callback {
    void ready(int fd, int events) override {
        EXPECT_EQ(fd, 0);
        EXPECT_EQ(events, 0);
        EXPECT_EQ(keys_waiting(), 1u) << "not yet discarded";
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
    // 0 if the console is closed.
    DWORD mode() const {
        DWORD mode = 0;
        return GetConsoleMode(input, &mode) ? mode : 0;
    }

    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    int calls = 0;
    std::function<void()> then;
};

TEST(PollTest, Console) {
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
    EXPECT_EQ(console.keys_waiting(), 0u) << "earlier input is discarded";

    WSASetLastError(0);
    w.poll.SetBlockingMode(0);
    w.poll.SetNonBlockingMode(0);
    EXPECT_EQ(WSAGetLastError(), 0) << "not taken for a socket";

    console.press_key();
    w.a.send();
    w.poll.run(5);
    EXPECT_EQ(w.a.calls, 1);
    EXPECT_EQ(console.calls, 1);
    EXPECT_EQ(console.keys_waiting(), 0u) << "input that the callback did not read is discarded";

    console.then = [&] { w.poll.remove(0); };
    console.press_key();
    w.poll.run(5);
    EXPECT_EQ(console.calls, 2);
    EXPECT_EQ(console.mode(), 0u) << "closed";
    w.a.add();
    // By the next registration the number is invalid, or belongs to an event.
    for (const HANDLE number : {console.input, w.a.event}) {
        SetStdHandle(STD_INPUT_HANDLE, number);
        w.poll.append(0, &console);
        w.poll.run(0);
        SetLastError(0);
        w.poll.remove(0);
        EXPECT_EQ(GetLastError(), 0u) << "nothing is closed";
    }
    w.a.send();
    w.poll.run(5);
    EXPECT_EQ(w.a.calls, 2);
    EXPECT_EQ(console.calls, 2);

    SetStdHandle(STD_INPUT_HANDLE, CreateFileA("CONIN$", GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                               OPEN_EXISTING, 0, nullptr));
    const Console uncalled;
    w.poll.append(0, nullptr);
    uncalled.press_key();
    w.poll.run(5);
    EXPECT_EQ(uncalled.keys_waiting(), 0u) << "discarded also without a callback";
}

}  // namespace
