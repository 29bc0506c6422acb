#define NOMINMAX
#include <winsock2.h>

#include <atomic>
#include <iostream>
#include <set>
#include <thread>

#include "util/poll/poll.h"

namespace {

std::atomic<bool> stopping{false};  // any thread may set it, and the handler of Ctrl-C

BOOL WINAPI on_console_event(DWORD) {
    stopping = true;
    return TRUE;
}

// Sends back what each client sends.
class Server : Poll::Callback {
  public:
    explicit Server(SOCKET listener) : m_listener(listener) {}

    void run() {
        while (!stopping) {
            admit();
            m_poll.run(100);  // returns after 100 ms without an event
        }
        while (!m_clients.empty())
            drop(*m_clients.begin());
    }

  private:
    // accept() does not wait. A client too many is refused: the 65th source would end the process.
    void admit() {
        for (SOCKET client; (client = accept(m_listener, nullptr, nullptr)) != INVALID_SOCKET;) {
            const int fd = static_cast<int>(client);
            if (m_clients.size() == Poll::table_size_) {
                closesocket(client);
            } else if (m_clients.insert(fd).second) {
                m_poll.append(fd, this);
            }
        }
    }

    void ready(int fd, int) override {
        char buffer[512];
        int count;
        while ((count = recv(fd, buffer, sizeof buffer, 0)) > 0) {
            if (send(fd, buffer, count, 0) != count) break;  // it reads nothing
        }
        const bool goes_on = count < 0 && WSAGetLastError() == WSAEWOULDBLOCK;
        if (!goes_on) drop(fd);
        admit();
        while (stopping && !m_clients.empty())  // with nothing to wait for, m_poll.run() returns
            drop(*m_clients.begin());
    }

    void drop(int fd) {
        m_poll.remove(fd);
        closesocket(fd);
        m_clients.erase(fd);
    }

    SOCKET m_listener;
    std::set<int> m_clients;
    Poll m_poll;
};

void play_client(const sockaddr_in& address) {
    const SOCKET server = socket(AF_INET, SOCK_STREAM, 0);
    char answer[16] = "";
    if (connect(server, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
        send(server, "hello", 5, 0) == 5 && recv(server, answer, sizeof answer - 1, 0) > 0)
        std::cout << "answer: " << answer << '\n';
    stopping = true;

    closesocket(server);
}

}  // namespace

int main() {
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 0), &data) != 0) return 1;
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);  // this machine only, on any free port
    auto* const name = reinterpret_cast<sockaddr*>(&address);
    int size = sizeof address;
    u_long non_blocking = 1;
    const SOCKET listener = socket(AF_INET, SOCK_STREAM, 0);
    if (bind(listener, name, size) != 0 || listen(listener, SOMAXCONN) != 0 ||
        getsockname(listener, name, &size) != 0 ||
        ioctlsocket(listener, static_cast<long>(FIONBIO), &non_blocking) != 0) {
        std::cout << "cannot listen: error " << WSAGetLastError() << '\n';
        return 1;
    }
    SetConsoleCtrlHandler(on_console_event, TRUE);
    std::thread client(play_client, address);
    Server(listener).run();
    client.join();
    closesocket(listener);
    WSACleanup();
}
