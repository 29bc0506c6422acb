/// @file
/// `Poll`: one thread waits for sockets and the console.
#ifndef UTIL_POLL_POLL_H
#define UTIL_POLL_POLL_H

#include <memory>

#include "util/export.h"

/// A table of up to 64 sources, and the loop that serves them. A source is a connected socket,
/// passed as an int, or 0 for standard input of the console. The loop calls the callback of a
/// source when its socket can be read, when the peer has closed, or when there is console input. If
/// several sources are ready, the lowest slot is served first, one per wait. Only data and
/// closing are reported. New connections of a listening socket and room to write are not.
///
/// Ownership: Sockets and callbacks belong to the caller and must outlive their registration. The
/// poller owns one event per socket. By design, it also takes over the console: it closes standard
/// input of the process when 0 is removed or registered again, and when it is destroyed with 0
/// registered.
///
/// Threads: One thread runs the poller and makes all changes, usually from callbacks. There is no
/// lock. The caller must have started Windows Sockets.
///
/// Failure: Nothing is reported, unless a member says so. The constructor raises `std::bad_alloc`
/// if out of memory.
///
///     struct Echo : Poll::Callback {
///         explicit Echo(Poll& poll) : m_poll(poll) {}
///         void ready(int fd, int) override {
///             char buffer[4096];
///             int count;
///             while ((count = recv(fd, buffer, sizeof buffer, 0)) > 0) send(fd, buffer, count, 0);
///             if (count < 0 && WSAGetLastError() == WSAEWOULDBLOCK) return;  // all data is read
///             m_poll.remove(fd);                                            // the peer has closed
///             closesocket(fd);
///         }
///         Poll& m_poll;
///     };
///     Poll poll;
///     Echo echo(poll);
///     poll.append(static_cast<int>(socket), &echo);
///     poll.run(5000);  // serves until 5 seconds pass without an event
class UTIL_API Poll {
  public:
    /// The number of slots: the maximum number of handles in one wait of the platform.
    static const int table_size_ = 64;

    /// The timeout without an end.
    static const int Infinite = -1;

    /// The interface of a source. Poll only calls ready(). It deletes no callback.
    class Callback {
      public:
        virtual ~Callback() = default;

        /// Called when source `fd` is ready. `events` is always 0.
        ///
        /// Read until a read would block, returns 0 or fails. Data that is left unread may or may
        /// not cause another call. A callback that reads once per call may never learn of the end
        /// in two cases:
        /// - The peer sends data and then resets the connection.
        /// - This end called `shutdown(SD_SEND)`, and the peer answers with data and a close.
        ///
        /// Any callback may miss an end or an empty datagram that arrives while run() resets an
        /// event that came without data. Close a connection that is idle for too long.
        ///
        /// After the end, call remove() and close the socket. Otherwise some platforms report the
        /// end again and again, and run() never times out. The same happens with an empty datagram
        /// that is not read.
        ///
        /// The callback may register and remove any source, this one included. It may call run().
        /// It must not destroy the poller. An exception leaves run(), and the poller stays usable.
        virtual void ready(int fd, int events) = 0;
    };

    Poll();

    /// Closes the events, and standard input if it is registered. Closes no socket.
    ~Poll();

    Poll(const Poll&) = delete;
    Poll& operator=(const Poll&) = delete;

    /// Registers source `fd` in the first free slot. A source that is already registered keeps its
    /// slot, and gets a new event and the new callback. With a null `callback` its events are
    /// discarded. Ignores -1. Ends the process with `abort` if all slots are taken.
    ///
    /// Puts a socket into non-blocking mode. Puts the console into line mode with echo (mode 7) and
    /// discards its pending input.
    ///
    /// A source that cannot be waited for is registered but never served. Examples are a socket
    /// whose event could not be created, and closed standard input. But if other code of the
    /// process has reused the number of that closed handle, the new handle is waited for. Standard
    /// input that is not a console (a file or a pipe) is always ready, so run() never times out.
    void append(int fd, Callback* callback);

    /// Unregisters source `fd`. A socket stays open and non-blocking. If `fd` is not registered,
    /// prints "Poll::remove (int fd): Not found" and the text of errno with `perror`. Ignores -1
    /// while a slot is free.
    void remove(int fd);

    /// Serves the sources until one wait takes `timeout` milliseconds. With Infinite, serves as
    /// long as there are sources. If there is nothing to wait for, sleeps for `timeout` and
    /// returns, or returns at once with Infinite.
    ///
    /// Repeats a wait that fails, without the handles that cannot be waited for. An event without
    /// anything to read causes no callback. Discards console input that the callback did not read.
    /// Allocates no memory.
    void run(int timeout);

    /// Switches a registered socket back from SetBlockingMode to the mode of append(). Input that
    /// is waiting then causes an event. Ignores anything but a registered socket.
    void SetNonBlockingMode(int fd);

    /// Switches a registered socket to ordinary blocking calls. It stays registered but causes no
    /// events. An event from before the switch is still served. Ignores anything but a registered
    /// socket.
    ///
    ///     poll.SetBlockingMode(fd);
    ///     recv(fd, header, sizeof header, MSG_WAITALL);
    ///     poll.SetNonBlockingMode(fd);
    void SetBlockingMode(int fd);

  private:
    struct Slot;
    const std::unique_ptr<Slot[]> m_slots;
    bool m_changed;  // the slots changed after a wait list was built
    const std::unique_ptr<Callback*[]> m_callbacks;  // parallel to m_slots
};

#endif
