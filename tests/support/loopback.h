// Connected sockets on this machine.
#ifndef UTIL_TESTS_SUPPORT_LOOPBACK_H
#define UTIL_TESTS_SUPPORT_LOOPBACK_H

#include <stdexcept>
#include <utility>

#include "util/internal/windows.h"

namespace util_test {

// Windows Sockets stay started for the life of the process.
inline SOCKET new_socket(int type) {
    static const int status = [] {
        WSADATA data;
        return WSAStartup(MAKEWORD(2, 0), &data);
    }();
    const SOCKET result = status == 0 ? socket(AF_INET, type, 0) : INVALID_SOCKET;
    if (result == INVALID_SOCKET) throw std::runtime_error("no sockets here");
    return result;
}

// A socket to poll and the far end of its connection, a stream or datagrams.
class Connection {
  public:
    explicit Connection(int type = SOCK_STREAM)
        : m_near(new_socket(type)), m_far(new_socket(type)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto* const name = reinterpret_cast<sockaddr*>(&address);
        int size = sizeof address;
        const BOOL on = TRUE;  // sends each byte at once
        setsockopt(m_far, IPPROTO_TCP, TCP_NODELAY, reinterpret_cast<const char*>(&on), sizeof on);
        bind(m_near, name, size);
        listen(m_near, 1);  // fails for datagrams
        getsockname(m_near, name, &size);
        bool connected = connect(m_far, name, size) == 0;
        if (type == SOCK_STREAM) {
            closesocket(std::exchange(m_near, accept(m_near, nullptr, nullptr)));
        } else {
            getsockname(m_far, name, &size);
            connected = connected && connect(m_near, name, size) == 0;
        }
        if (!connected) throw std::runtime_error("no loopback here");
    }
    ~Connection() {
        closesocket(m_near);
        closesocket(m_far);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int fd() const { return static_cast<int>(m_near); }

    SOCKET far_end() const { return m_far; }
    void close_far_end(bool abort) {
        const linger at_once = {abort, 0};
        setsockopt(m_far, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&at_once),
                   sizeof at_once);
        closesocket(std::exchange(m_far, INVALID_SOCKET));
    }

    void send_byte_only() const { send(m_far, "x", 1, 0); }

    // Returns when the near end can be read.
    void send_byte() const {
        send_byte_only();
        fd_set set = {1, {m_near}};
        select(0, &set, nullptr, nullptr, nullptr);
    }

    // The number of bytes read, 0 at the end, or minus the error's code.
    int read() const {
        char buffer[16];
        const int count = recv(m_near, buffer, sizeof buffer, 0);
        return count < 0 ? -WSAGetLastError() : count;
    }

    void limit_blocking_reads(DWORD milliseconds) const {
        setsockopt(m_near, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&milliseconds),
                   sizeof milliseconds);
    }

  private:
    SOCKET m_near, m_far;
};

}  // namespace util_test

#endif
