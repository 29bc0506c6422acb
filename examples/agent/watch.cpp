#include "watch.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <winsock2.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <ctime>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include "errors.h"
#include "options.h"
#include "output.h"

namespace {

constexpr std::size_t longest_line = 4096;

// Poll announces data and ends, but no connections. The server looks for those after each event,
// and after so many milliseconds without one.
constexpr int look_for_clients = 50;

// Keeps Windows Sockets started while it lives.
class Sockets {
  public:
    Sockets() {
        WSADATA data;
        if (const int error = WSAStartup(MAKEWORD(2, 0), &data); error != 0)
            throw Trouble("no sockets: " + error_text(static_cast<unsigned long>(error)));
    }
    ~Sockets() { WSACleanup(); }
    Sockets(const Sockets&) = delete;
    Sockets& operator=(const Sockets&) = delete;
};

// Owns a socket.
class Socket {
  public:
    explicit Socket(SOCKET socket) : m_socket(socket) {}
    Socket(Socket&& other) noexcept : m_socket(std::exchange(other.m_socket, INVALID_SOCKET)) {}
    ~Socket() {
        if (is_open()) closesocket(m_socket);
    }
    Socket& operator=(Socket&&) = delete;

    bool is_open() const { return m_socket != INVALID_SOCKET; }
    SOCKET get() const { return m_socket; }
    int fd() const { return static_cast<int>(m_socket); }  // as Poll takes it

    // False when the system does not take all of it at once.
    bool send_line(const std::string& text) const {
        const std::string line = text + "\n";
        const int size = static_cast<int>(line.size());
        return send(m_socket, line.data(), size, 0) == size;
    }

  private:
    SOCKET m_socket;
};

int parse_port(const String& word) {
    const int port = word.to_int();
    if (word != String(port) || port < 0 || port > 65535)
        throw UsageError("'" + word + "' is not a port");
    return port;
}

class Listener {
  public:
    explicit Listener(int port) : m_socket(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<unsigned short>(port));
        auto* const name = reinterpret_cast<sockaddr*>(&address);
        int size = sizeof address;
        u_long non_blocking = 1;
        if (!m_socket.is_open() || bind(m_socket.get(), name, size) != 0 ||
            listen(m_socket.get(), SOMAXCONN) != 0 ||
            getsockname(m_socket.get(), name, &size) != 0 ||
            ioctlsocket(m_socket.get(), static_cast<long>(FIONBIO), &non_blocking) != 0) {
            const String reason = last_error_text();
            throw Trouble(String::format("cannot listen on port %d: ", port) + reason);
        }
        m_port = ntohs(address.sin_port);
    }

    int port() const { return m_port; }

    // Returns a closed socket when nobody waits.
    Socket accept() const { return Socket(::accept(m_socket.get(), nullptr, nullptr)); }

  private:
    Socket m_socket;
    int m_port = 0;
};

// One callback for all clients: a client's own could not outlive the client.
class Server : Poll::Callback {
  public:
    explicit Server(const Listener& listener) : m_listener(listener) {}

    // Until a client says "quit".
    void run() {
        while (!m_stopping) {
            admit();
            m_poll.run(look_for_clients);
        }
    }

    std::uint64_t lines() const { return m_lines; }

  private:
    struct Client {
        Socket socket;
        std::string input;  // the line that has not ended yet
    };

    void ready(int fd, int) override {
        if (!serve(m_clients.at(fd))) drop(fd);
        if (m_stopping) {
            while (!m_clients.empty())  // with nothing to wait for, Poll::run() returns
                drop(m_clients.begin()->first);
        } else {
            admit();
        }
    }

    void admit() {
        for (;;) {
            Socket socket = m_listener.accept();
            if (!socket.is_open()) return;
            if (m_clients.size() == Poll::table_size_) {  // one more would end the process
                socket.send_line("busy");
                continue;
            }
            const int fd = socket.fd();
            m_clients.emplace(fd, Client{std::move(socket), ""});
            m_poll.append(fd, this);
        }
    }

    // Poll must forget the socket before it is closed: its number may come back at once.
    void drop(int fd) {
        m_poll.remove(fd);
        m_clients.erase(fd);
    }

    // Reads all there is. False when this client's connection has to end.
    bool serve(Client& client) {
        char buffer[4096];
        for (;;) {
            const int count = recv(client.socket.get(), buffer, sizeof buffer, 0);
            if (count < 0) return WSAGetLastError() == WSAEWOULDBLOCK;
            if (count == 0) return false;
            client.input.append(buffer, static_cast<std::size_t>(count));
            if (!serve_lines(client)) return false;
        }
    }

    bool serve_lines(Client& client) {
        const std::string_view input = client.input;
        std::size_t begin = 0;
        for (std::size_t end = input.find('\n'); end != std::string_view::npos;
             end = input.find('\n', begin)) {
            std::string_view line = input.substr(begin, end - begin);
            begin = end + 1;
            if (!line.empty() && line.back() == '\r') line.remove_suffix(1);
            if (line.size() > longest_line) return refuse_line(client);
            if (!answer(client, line)) return false;
        }
        client.input.erase(0, begin);
        return client.input.size() <= longest_line || refuse_line(client);
    }

    static bool refuse_line(const Client& client) {
        client.socket.send_line("line too long");
        return false;
    }

    // A client that does not read makes send_line() fail. Nobody else waits for it.
    bool answer(const Client& client, std::string_view line) {
        ++m_lines;
        const std::string_view verb = line.substr(0, line.find(' '));
        if (verb == "echo") {
            line.remove_prefix(std::min(line.size(), verb.size() + 1));
            return client.socket.send_line(std::string(line));
        }
        if (line == "status") return client.socket.send_line(status());
        if (line == "time") return client.socket.send_line(date_text(std::time(nullptr)).str());
        if (line == "bye" || line == "quit") {
            m_stopping = line == "quit";
            client.socket.send_line(m_stopping ? "stopping" : "bye");
            return false;
        }
        return client.socket.send_line("unknown command; status, time, echo TEXT, bye, quit");
    }

    std::string status() const {
        using namespace std::chrono;
        const auto uptime = duration_cast<seconds>(steady_clock::now() - m_start).count();
        return "uptime " + std::to_string(uptime) + " s, clients " +
               std::to_string(m_clients.size()) + ", lines " + std::to_string(m_lines);
    }

    const std::chrono::steady_clock::time_point m_start = std::chrono::steady_clock::now();
    const Listener& m_listener;
    std::map<int, Client> m_clients;
    Poll m_poll;
    std::uint64_t m_lines = 0;
    bool m_stopping = false;
};

int watch(const Arguments& arguments) {
    const Options options(arguments, {});
    if (options.operands().size() != 1) throw UsageError("watch needs a port");
    const int port = parse_port(options.operands()[0]);
    const Sockets sockets;
    const Listener listener(port);
    Server server(listener);
    print(String::format("listening on 127.0.0.1, port %d", listener.port()));
    std::fflush(stdout);  // whoever started this may be waiting for the number
    server.run();
    print("stopped, lines " + std::to_string(server.lines()));
    return all_well;
}

}  // namespace

const Verb watch_verb = {"watch", "PORT", "Answers status lines on a port of this machine.",
                         "PORT 0 takes any free port. The first line shows which.\n"
                         "A client's line 'quit' ends it.\n"
                         "Exit status: 0 ended by a client, 2 trouble.",
                         watch};
