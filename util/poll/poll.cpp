#include "util/poll/poll.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

const int Poll::table_size_;
const int Poll::Infinite;

static_assert(Poll::table_size_ == MAXIMUM_WAIT_OBJECTS);
static_assert(static_cast<DWORD>(Poll::Infinite) == INFINITE);

struct Poll::Slot {
    std::int64_t fd = -1;
    util::ScopedSocketEvent handle;  // invalid if there is nothing to wait for
};

namespace {

constexpr int free_slot = -1;
constexpr int console = 0;
constexpr long read_and_close = FD_READ | FD_CLOSE;

// Returns the slot of `fd`, or table_size_ if there is none. This function and the ones below are
// templates because Slot is private to Poll.
template <typename Slot>
std::size_t find(const Slot& slots, int fd) {
    std::size_t index = 0;
    while (index < Poll::table_size_ && slots[index].fd != fd)
        ++index;
    return index;
}

SOCKET socket_of(int fd) {
    return static_cast<SOCKET>(static_cast<std::int64_t>(fd));
}

bool is_open(HANDLE handle) {
    DWORD flags;
    return GetHandleInformation(handle, &flags) != 0;
}

// Returns standard input, or null if it cannot be waited for.
template <typename Slot>
HANDLE open_console(const Slot& slots) {
    const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
    SetConsoleMode(input, ENABLE_PROCESSED_INPUT | ENABLE_LINE_INPUT | ENABLE_ECHO_INPUT);
    FlushConsoleInputBuffer(input);
    // After standard input is closed, GetStdHandle still returns its number. By now the number may
    // be invalid, or it may belong to an event of this table.
    if (!is_open(input)) return nullptr;
    for (std::size_t i = 0; i < Poll::table_size_; ++i) {
        if (slots[i].handle.get() == input) return nullptr;
    }
    return input;
}

HANDLE open_event(int fd) {
    const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
    WSAEventSelect(socket_of(fd), event, read_and_close);
    return event;
}

bool has_bytes(int fd) {
    u_long count = 0;
    return ioctlsocket(socket_of(fd), FIONREAD, &count) == 0 && count > 0;
}

bool is_readable(int fd) {
    // FIONREAD first: it is cheaper, and it never sets the socket's event. A closed peer and an
    // empty datagram have no bytes. Only select reports them.
    if (has_bytes(fd)) return true;
    fd_set readable;
    readable.fd_count = 1;
    readable.fd_array[0] = socket_of(fd);
    timeval no_time = {0, 0};
    return select(fd, &readable, nullptr, nullptr, &no_time) > 0 &&
           FD_ISSET(socket_of(fd), &readable);
}

// Returns whether the socket is readable. If it is not, resets its event.
bool confirm(int fd, HANDLE event) {
    if (is_readable(fd)) return true;
    // On some platforms select sets the event of a socket that is not readable, for example after
    // a datagram was refused. So select must not be called after the reset: the event would stay
    // set and run() would never time out.
    ResetEvent(event);
    // The reset may have discarded the event of data that arrived after select. It is not reported
    // twice. A close in this gap goes unnoticed.
    if (has_bytes(fd)) SetEvent(event);
    return false;
}

// False for a closed handle, and for one that does not grant access to wait.
bool can_wait(HANDLE handle) {
    const DWORD result = WaitForSingleObject(handle, 0);
    if (result == WAIT_OBJECT_0) SetEvent(handle);  // the wait has reset a socket's event
    return result != WAIT_FAILED;
}

// The handles to wait for, and the slot of each.
struct WaitList {
    HANDLE handles[Poll::table_size_];
    std::size_t slots[Poll::table_size_];
    DWORD count = 0;

    void add(HANDLE handle, std::size_t slot) {
        handles[count] = handle;
        slots[count++] = slot;
    }

    template <typename Slot>
    void build(const Slot& table) {
        count = 0;
        for (std::size_t i = 0; i < Poll::table_size_; ++i) {
            if (table[i].handle) add(table[i].handle.get(), i);
        }
    }

    // Removes the handles with which every wait fails, for example one that the program closed.
    void drop_unusable() {
        const DWORD all = count;
        count = 0;
        for (DWORD i = 0; i < all; ++i) {
            if (can_wait(handles[i])) add(handles[i], slots[i]);
        }
    }
};

// Each run() has its own wait list. So it builds the list when it starts. A run() inside a callback
// clears the changed flag, so the outer run() must build its list again afterwards.
class FreshLists {
  public:
    explicit FreshLists(bool& changed) : m_changed(changed) { m_changed = true; }
    ~FreshLists() { m_changed = true; }
    FreshLists(const FreshLists&) = delete;
    FreshLists& operator=(const FreshLists&) = delete;

  private:
    bool& m_changed;
};

}  // namespace

Poll::Poll()
    : m_slots(std::make_unique<Slot[]>(table_size_)),
      m_changed(false),
      m_callbacks(std::make_unique<Callback*[]>(table_size_)) {}

Poll::~Poll() = default;

void Poll::append(int fd, Callback* callback) {
    if (fd == free_slot) return;
    std::size_t index = find(m_slots, fd);
    if (index == table_size_) index = find(m_slots, free_slot);
    if (index == table_size_) std::abort();
    Slot& slot = m_slots[index];
    slot = Slot();  // closes the old event before the new one is created
    slot.handle.reset(fd == console ? open_console(m_slots) : open_event(fd));
    slot.fd = fd;
    m_callbacks[index] = callback;
    m_changed = true;
}

void Poll::remove(int fd) {
    const std::size_t index = find(m_slots, fd);
    if (index == table_size_) {
        std::perror("Poll::remove (int fd): Not found");
        return;
    }
    if (fd == free_slot) return;
    m_slots[index] = Slot();
    m_callbacks[index] = nullptr;
    m_changed = true;
}

void Poll::run(int timeout) {
    const FreshLists fresh(m_changed);
    WaitList list;
    for (;;) {
        if (m_changed) {
            list.build(m_slots);
            m_changed = false;
        }
        if (list.count == 0) {  // nothing could end a wait
            if (timeout != Infinite) Sleep(static_cast<DWORD>(timeout));
            return;
        }
        const DWORD result =
            WaitForMultipleObjects(list.count, list.handles, FALSE, static_cast<DWORD>(timeout));
        if (result == WAIT_TIMEOUT) return;
        if (result == WAIT_FAILED) list.drop_unusable();
        if (result >= list.count) continue;

        const std::size_t index = list.slots[result];
        const Slot& slot = m_slots[index];
        const int fd = static_cast<int>(slot.fd);
        Callback* const callback = m_callbacks[index];
        if (fd == console) {
            if (callback) callback->ready(fd, 0);
            // The callback may have removed the console.
            if (slot.fd == console) FlushConsoleInputBuffer(slot.handle.get());
        } else if (callback && confirm(fd, slot.handle.get())) {
            callback->ready(fd, 0);
        }
    }
}

void Poll::SetNonBlockingMode(int fd) {
    if (fd < 1) return;
    const std::size_t index = find(m_slots, fd);
    if (index == table_size_) return;
    WSAEventSelect(socket_of(fd), m_slots[index].handle.get(), read_and_close);
}

void Poll::SetBlockingMode(int fd) {
    if (fd < 1) return;
    const std::size_t index = find(m_slots, fd);
    if (index == table_size_) return;
    WSAEventSelect(socket_of(fd), m_slots[index].handle.get(), 0);
    u_long non_blocking = 0;
    ioctlsocket(socket_of(fd), static_cast<long>(FIONBIO), &non_blocking);
}
