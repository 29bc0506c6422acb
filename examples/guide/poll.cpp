#define NOMINMAX
#include <winsock2.h>

#include <cstdio>

#include "util/poll/poll.h"

namespace {

// Sends all data back until the peer closes.
class Echo : public Poll::Callback {
  public:
    explicit Echo(Poll& poll) : m_poll(poll) {}

    void ready(int fd, int) override {
        char buffer[512];
        int count;
        while ((count = recv(fd, buffer, sizeof buffer, 0)) > 0) {
            std::printf("echo: %.*s\n", count, buffer);
            send(fd, buffer, count, 0);
        }
        if (count < 0 && WSAGetLastError() == WSAEWOULDBLOCK) return;  // all data is read
        std::printf("closed\n");
        m_poll.remove(fd);
        closesocket(fd);
    }

  private:
    Poll& m_poll;
};

// Connects two sockets on this machine. Returns false on failure.
bool connect_ends(SOCKET ends[2]) {
    const SOCKET listener = socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    auto* name = reinterpret_cast<sockaddr*>(&address);
    int size = sizeof address;
    ends[0] = socket(AF_INET, SOCK_STREAM, 0);
    const bool connected = bind(listener, name, size) == 0 && listen(listener, 1) == 0 &&
                           getsockname(listener, name, &size) == 0 &&
                           connect(ends[0], name, size) == 0;
    ends[1] = connected ? accept(listener, nullptr, nullptr) : INVALID_SOCKET;
    closesocket(listener);
    return connected;
}

}  // namespace

int main() {
    WSADATA data;
    if (WSAStartup(MAKEWORD(2, 0), &data) != 0) return 1;
    SOCKET ends[2];
    if (!connect_ends(ends)) return 1;

    Poll poll;
    Echo echo(poll);
    poll.append(static_cast<int>(ends[1]), &echo);

    send(ends[0], "hello", 5, 0);
    poll.run(200);  // serves until 200 milliseconds pass without an event
    char answer[16];
    std::printf("answer: %.*s\n", recv(ends[0], answer, sizeof answer, 0), answer);

    closesocket(ends[0]);
    poll.run(200);  // the echo removes its socket; with no source left, run() sleeps
    WSACleanup();
}
