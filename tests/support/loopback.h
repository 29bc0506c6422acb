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

// A socket to poll and the far end of its connection.
class Connection {
  public:
    Connection() {
        const SOCKET listener = new_socket(SOCK_STREAM);
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        auto* name = reinterpret_cast<sockaddr*>(&address);
        int size = sizeof address;
        bind(listener, name, size);
        listen(listener, 1);
        getsockname(listener, name, &size);
        m_far = new_socket(SOCK_STREAM);
        if (connect(m_far, name, size) != 0) throw std::runtime_error("no loopback here");
        m_near = accept(listener, nullptr, nullptr);
        closesocket(listener);
    }
    ~Connection() {
        closesocket(m_near);
        closesocket(m_far);
    }
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    int fd() const { return static_cast<int>(m_near); }

    void send_byte_only() const { send(m_far, "x", 1, 0); }

    // Both return when the near end can see it.
    void send_byte() const {
        send_byte_only();
        wait_until_readable();
    }
    void hang_up() const {
        shutdown(m_far, SD_SEND);
        wait_until_readable();
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
    void wait_until_readable() const {
        fd_set set = {1, {m_near}};
        select(0, &set, nullptr, nullptr, nullptr);
    }

    SOCKET m_near, m_far;
};

}  // namespace util_test

#endif
