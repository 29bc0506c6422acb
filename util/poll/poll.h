// Everything of the poll subsystem: one thread waits for sockets and the console.
#ifndef UTIL_POLL_POLL_H
#define UTIL_POLL_POLL_H

#include <memory>

#include "util/export.h"

// A table of up to 64 sources and the loop that serves them. A source is a connected socket, given
// as an int, or 0 for the console's standard input. When a socket can be read or its peer has
// closed, or when console input is there, its callback runs. With several ready at once the lowest
// slot is served first, one per wait. A listening socket is not served, and room to write is not
// announced: only data and closing are waited for.
//
// Ownership: sockets and callbacks stay the caller's and must outlive their registration. The
// poller owns one event per socket, and takes over the console: removing 0, registering it again
// and destroying the poller while it is registered close the process's standard input. Meant as it
// is.
//
// Threads: one object belongs to one thread, which also makes all changes, in practice from
// callbacks. There is no lock. The caller has started Windows Sockets.
//
// Failure: nothing is reported except where a member says so. Raises std::bad_alloc (construction
// only).
//
//     struct Echo : Poll::Callback {
//         explicit Echo(Poll& poll) : m_poll(poll) {}
//         void ready(int fd, int) override {
//             char buffer[4096];
//             int count;
//             while ((count = recv(fd, buffer, sizeof buffer, 0)) > 0) send(fd, buffer, count, 0);
//             if (count < 0 && WSAGetLastError() == WSAEWOULDBLOCK) return;  // all read
//             m_poll.remove(fd);                                            // closed by the peer
//             closesocket(fd);
//         }
//         Poll& m_poll;
//     };
//     Poll poll;
//     Echo echo(poll);
//     poll.append(static_cast<int>(socket), &echo);
//     poll.run(5000);  // serves until 5 seconds pass without an event
class UTIL_API Poll {
  public:
    // The number of slots, the most handles that the platform waits for at once.
    static const int table_size_ = 64;

    // The timeout that never ends.
    static const int Infinite = -1;

    // What a source is registered with. Nothing but ready() is called, and nothing is deleted.
    class Callback {
      public:
        virtual ~Callback() = default;

        // fd is the source; events is always 0. Read everything there is, until the read would
        // block: what is left behind may or may not cause another call. When the peer has closed,
        // remove() the source and close the socket: some platforms announce a close again and
        // again, and run() would then never time out. May register and remove any source, this one
        // included, and run() again, but must not destroy the poller. An exception leaves run();
        // the poller stays usable.
        virtual void ready(int fd, int events) = 0;
    };

    Poll();

    // Closes the events, and standard input if it is registered; no socket.
    ~Poll();

    Poll(const Poll&) = delete;
    Poll& operator=(const Poll&) = delete;

    // Registers a source in the first free slot; one that is registered already keeps its slot and
    // gets a fresh event and the new callback (null: events are swallowed). Puts a socket into
    // non-blocking mode. Puts the console into line mode with echo (mode 7) and discards its
    // pending input. Ends the process with abort() when all slots are taken.
    // -1 is ignored. A source that cannot be waited for is kept but never served: a socket for
    // which there was no event, a console whose handle is closed. Standard input that is no console
    // (a file, a pipe) is always ready, so that run() does not time out.
    void append(int fd, Callback* callback);

    // Forgets a source; a socket stays open and non-blocking. For a source that is not registered
    // prints "Poll::remove (int fd): Not found" and the text of errno, by perror(). -1 is ignored
    // silently while a slot is free.
    void remove(int fd);

    // Serves the sources until one wait lasts for timeout milliseconds; with Infinite, as long as
    // there are sources. When there is nothing (any more) to wait for, sleeps for the timeout and
    // returns; with Infinite returns at once. A wait that fails is tried again. What the console
    // callback has not read is discarded. Allocates nothing.
    void run(int timeout);

    // Switch a registered socket between the mode of append() and ordinary blocking calls. While
    // blocking it stays registered but causes no events, except that one which had fired before is
    // still served; input that waits when it is switched back causes one. Anything else than a
    // registered socket is ignored.
    //     poll.SetBlockingMode(fd);
    //     recv(fd, header, sizeof header, MSG_WAITALL);
    //     poll.SetNonBlockingMode(fd);
    void SetNonBlockingMode(int fd);
    void SetBlockingMode(int fd);

  private:
    struct Slot;
    const std::unique_ptr<Slot[]> m_slots;
    bool m_changed;  // since a list of handles to wait for was last built
    const std::unique_ptr<Callback*[]> m_callbacks;  // parallel to the slots
};

#endif
