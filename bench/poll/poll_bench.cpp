// Poll against other loops over 63 connected sockets, each callback a read. In the ring each also
// sends to the next socket; in the burst all have something to read from the start.
#include <array>
#include <memory>

#include "bench/harness.h"
#include "tests/support/loopback.h"
#include "util/poll/poll.h"

using bench::Operation;
using util_test::Connection;

namespace {

constexpr std::size_t sockets = 63;

enum class Traffic { ring, burst };

// The sockets of one loop, and what it still has to serve.
class World {
  public:
    explicit World(Traffic traffic) : m_traffic(traffic) {}

    void start() {
        const bool ring = m_traffic == Traffic::ring;
        m_left = sockets;
        for (std::size_t i = 0; i < (ring ? 1 : sockets); ++i)
            m_connections[i].send_byte_only();
    }
    bool finished() const { return m_left == 0; }
    SOCKET socket(std::size_t i) const { return static_cast<SOCKET>(m_connections[i].fd()); }

    // A false alarm reads nothing and changes nothing.
    void serve(std::size_t i) {
        if (m_connections[i].read() < 1) return;
        --m_left;
        if (m_traffic == Traffic::ring && m_left > 0)
            m_connections[(i + 1) % sockets].send_byte_only();
    }

  private:
    const Traffic m_traffic;
    std::array<Connection, sockets> m_connections;
    std::size_t m_left = 0;
};

struct Finished {};

class Library {
  public:
    explicit Library(Traffic traffic) : m_world(traffic) {
        for (std::size_t i = 0; i < sockets; ++i) {
            m_callbacks[i].library = this;
            m_callbacks[i].index = i;
            m_poll.append(static_cast<int>(m_world.socket(i)), &m_callbacks[i]);
        }
    }
    void run() {
        m_world.start();
        try {
            m_poll.run(Poll::Infinite);
        } catch (Finished) {
        }
    }

  private:
    struct Callback : Poll::Callback {
        void ready(int, int) override {
            library->m_world.serve(index);
            if (library->m_world.finished()) throw Finished();
        }
        Library* library;
        std::size_t index;
    };

    World m_world;
    std::array<Callback, sockets> m_callbacks;
    Poll m_poll;
};

// Waits as Poll does; confirm(socket, event) tells whether to serve.
template <typename Confirm>
class WaitLoop {
  public:
    WaitLoop(Traffic traffic, Confirm confirm) : m_world(traffic), m_confirm(confirm) {
        for (std::size_t i = 0; i < sockets; ++i) {
            m_events[i] = CreateEventA(nullptr, FALSE, FALSE, nullptr);
            WSAEventSelect(m_world.socket(i), m_events[i], FD_READ | FD_CLOSE);
        }
    }
    void run() {
        m_world.start();
        while (!m_world.finished()) {
            const DWORD i = WaitForMultipleObjects(sockets, m_events, FALSE, INFINITE);
            if (m_confirm(m_world.socket(i), m_events[i])) m_world.serve(i);
        }
    }

  private:
    World m_world;
    Confirm m_confirm;
    HANDLE m_events[sockets];
};

bool unconfirmed(SOCKET, HANDLE) {
    return true;
}

bool selected(SOCKET socket, HANDLE event) {
    fd_set set = {1, {socket}};
    timeval no_time = {0, 0};
    if (select(0, &set, nullptr, nullptr, &no_time) > 0) return true;
    ResetEvent(event);
    return false;
}

class SelectLoop {
  public:
    explicit SelectLoop(Traffic traffic) : m_world(traffic) {}
    void run() {
        m_world.start();
        while (!m_world.finished()) {
            fd_set set;
            set.fd_count = sockets;
            for (std::size_t i = 0; i < sockets; ++i)
                set.fd_array[i] = m_world.socket(i);
            select(0, &set, nullptr, nullptr, nullptr);
            for (std::size_t i = 0; i < sockets; ++i) {
                if (FD_ISSET(m_world.socket(i), &set)) m_world.serve(i);
            }
        }
    }

  private:
    World m_world;
};

template <typename Loop, typename... Arguments>
auto made(Arguments... arguments) {
    const auto loop = std::make_shared<Loop>(arguments...);
    return [loop] { loop->run(); };
}

void dispatch(const char* name, Traffic traffic) {
    using Confirmation = bool (*)(SOCKET, HANDLE);
    run(Operation(name)
            .limit("wait, unconfirmed", made<WaitLoop<Confirmation>>(traffic, &unconfirmed))
            .library(made<Library>(traffic))
            .peer("select over all", made<SelectLoop>(traffic))
            .described("wait, then select", made<WaitLoop<Confirmation>>(traffic, &selected))
            .per(sockets));
}

const bench::Section section(
    "10 Event dispatch",
    [] {
        dispatch("Poll, 63 sockets in a ring", Traffic::ring);
        dispatch("Poll, 63 sockets at once", Traffic::burst);
    },
    bench::Section::Cores::one);

}  // namespace
