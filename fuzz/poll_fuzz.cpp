// Poll beside a model of its loop, on Windows only. Sockets and events are real. The model knows
// what each socket has to read and which events are set. Each operation changes both, also inside
// a callback. At each callback the model says which source must be served.
#include <vector>

#include "fuzz/fuzz.h"
#include "tests/support/import_patch.h"
#include "tests/support/loopback.h"
#include "util/poll/poll.h"

namespace util_fuzz {
namespace {

constexpr int all = -1;

struct Reader : Poll::Callback {
    explicit Reader(int r) : reads(r) {}
    void ready(int fd, int events) override;
    const int reads;  // in one call
};

struct Source {
    Source(int type) : ends(type), stream(type == SOCK_STREAM) {}
    int fd() const { return ends.fd(); }
    SOCKET socket() const { return static_cast<SOCKET>(fd()); }
    bool ended() const { return stream && closed; }
    // After a datagram was refused, the platform decides whether the socket is readable.
    bool readable() const { return unread > 0 ? stream || !closed : ended(); }

    util_test::Connection ends;
    const bool stream;         // otherwise datagrams
    int unread = 0;            // bytes of a stream, or datagrams
    bool closed = false;       // the far end
    bool reported = false;     // unread data has set the event; reading enables it again
    bool late = false;         // data arrives when the library resets the event
    Reader* reader = nullptr;  // null: events are swallowed
    HANDLE event = nullptr;    // null: not registered
    bool bound = false;        // the socket sets the event
    bool set = false;          // the event
};

struct Raised {};

class World {
  public:
    explicit World(std::string_view input) : m_input(input) {}

    // Plays the input: one byte for the operation, one for the source, '0' to '4'.
    void play() {
        while (!m_input.empty()) {
            try {
                operate();
            } catch (Raised) {
                m_depth = 0;
            }
        }
        run();
    }

    void serve(int fd, const Reader& reader) {
        Source* s = m_sources;
        while (s->fd() != fd)
            ++s;
        if (!s->stream && s->closed) return read(*s, all);
        require(next() == s && s->reader == &reader, "the source whose turn it is");
        // The platform may report an end or an empty datagram again and again until it is read.
        u_long bytes = 0;
        ioctlsocket(s->socket(), FIONREAD, &bytes);
        read(*s, s->closed || bytes == 0 ? all : reader.reads);
        if (s->closed && s->event) remove(*s);
        operate();
        operate();
    }

    HANDLE created(HANDLE event) { return m_created = event; }

    void reset(HANDLE event) {
        for (Source& s : m_sources) {
            if (s.event != event || !s.late) continue;
            s.late = false;
            arrive(s, 1);
            if (s.bound) await_event(s);
            s.set = true;
        }
    }

    void wait(const std::vector<HANDLE>& handles) {
        std::vector<HANDLE> expected;
        for (const Source* s : m_slots) {
            if (s) expected.push_back(s->event);
        }
        require(handles == expected, "a wait for all events, in the order of the slots");
        require(++m_waits < 1000, "run ends");
        for (const Source& s : m_sources)
            await_event(s);
    }

  private:
    void operate() {
        const unsigned char what = m_input.byte();
        Source& s = m_sources[static_cast<unsigned char>(m_input.byte() - '0') % 5];
        if (what == 'a') append(s, &m_reads_all);
        if (what == 'o') append(s, &m_reads_one);
        if (what == 'n') append(s, &m_reads_none);
        if (what == 'z') append(s, nullptr);
        if (what == 'x' && s.event) remove(s);
        if (what == 'B' && s.event) set_blocking(s);
        if (what == 'N' && s.event) m_poll.SetNonBlockingMode(s.fd()), bind(s);
        if (what == '.' && !s.closed) arrive(s, 1);
        if (what == ':' && !s.closed) arrive(s, 1), arrive(s, 1);
        if (what == '_' && !s.closed) arrive(s, s.stream);  // an empty datagram
        if (what == 't' && s.bound && !s.closed) read(s, all);
        if (what == 's' && s.stream && !s.closed) shutdown(s.ends.far_end(), SD_SEND), end(s);
        if (what == 'c' && !s.closed) s.ends.close_far_end(false), end(s);
        if (what == 'r' && !s.closed) s.ends.close_far_end(true), end(s);
        if (what == 'h' && s.stream) shutdown(s.socket(), SD_SEND);
        if (what == 'u') send(s.socket(), "x", 1, 0);  // is refused when the far end is closed
        if (what == 'f' && s.event) SetEvent(s.event), s.set = true;
        if (what == 'l' && s.event && !s.closed) SetEvent(s.event), s.set = s.late = true;
        if (what == 'R') run();
        if (what == '!' && m_depth > 0) throw Raised();
    }

    // The documented steps.
    Source*& slot_of(const Source* source) {
        Source** slot = m_slots;
        while (*slot != source)
            ++slot;
        return *slot;
    }
    void append(Source& s, Reader* reader) {
        m_poll.append(s.fd(), reader);
        (s.event ? slot_of(&s) : slot_of(nullptr)) = &s;
        s.reader = reader;
        s.event = m_created;
        s.set = false;
        bind(s);
    }
    void remove(Source& s) {
        m_poll.remove(s.fd());
        slot_of(&s) = nullptr;
        s.event = nullptr;
        s.bound = s.set = false;
    }
    void set_blocking(Source& s) {
        await_event(s);
        m_poll.SetBlockingMode(s.fd());
        s.bound = false;
        if (!s.set) ResetEvent(s.event);  // may be set for data that has been read since
    }
    // Runs up to the next callback. Returns its source, or null when the wait times out.
    Source* next() {
        for (Source* s : m_slots) {
            if (!s || !s->set) continue;
            s->set = false;
            if (s->readable() && s->reader) return s;
        }
        return nullptr;
    }
    void run() {
        if (m_depth == 3) return;
        ++m_depth;
        m_waits = 0;
        m_poll.run(0);
        --m_depth;
        require(!next(), "run returns after it has served all");
    }

    // The platform.
    void bind(Source& s) {
        s.bound = true;
        s.reported = false;
        s.set |= s.ended();
        report(s);
    }
    static void report(Source& s) {
        if (s.bound && !s.reported && s.unread > 0) s.reported = s.set = true;
    }
    static void await_event(const Source& s) {  // it is set some time after its cause
        if (!s.set || !s.readable() || !s.reader) return;
        require(WaitForSingleObject(s.event, 5000) == WAIT_OBJECT_0, "an event");
        SetEvent(s.event);
    }
    static void arrive(Source& s, int size) {
        require(send(s.ends.far_end(), "x", size, 0) == size, "to send");
        ++s.unread;
        report(s);
    }
    static void end(Source& s) {
        s.closed = true;
        s.late = false;
        if (!s.stream || !s.bound) return;
        if (s.unread > 0) SetEvent(s.event);  // some platforms wait until the data is read
        s.set = true;
    }
    static void read(Source& s, int limit) {
        for (; limit != 0; --limit) {
            if (s.event && !s.bound && s.unread == 0 && !s.ended()) break;  // it would block
            s.reported = false;
            char byte;
            const int count = recv(s.socket(), &byte, 1, 0);
            if (count < 0 && WSAGetLastError() == WSAEWOULDBLOCK) {
                require(s.unread == 0 && !s.ended(), "data until it would block");
                break;
            }
            if (s.stream && count <= 0) {
                require(s.ended(), "an end only after a close");
                s.unread = 0;  // a reset may have discarded data
                break;
            }
            if (count >= 0) require(s.unread-- > 0, "no more data than was sent");
        }
        report(s);
    }

    Source m_sources[5] = {SOCK_STREAM, SOCK_STREAM, SOCK_STREAM, SOCK_DGRAM, SOCK_DGRAM};
    Source* m_slots[Poll::table_size_] = {};
    Reader m_reads_all{all}, m_reads_one{1}, m_reads_none{0};
    Poll m_poll;
    Parameters m_input;
    HANDLE m_created = nullptr;
    int m_depth = 0, m_waits = 0;
};

World* world;

void Reader::ready(int fd, int events) {
    require(events == 0, "no events");
    world->serve(fd, *this);
}

}  // namespace

void poll(std::string_view input) {
    using util_test::ImportPatch;
    const ImportPatch create(
        "CreateEventA",
        +[](SECURITY_ATTRIBUTES* security, BOOL manual, BOOL set, const char* name) {
            return world->created(CreateEventA(security, manual, set, name));
        });
    const ImportPatch reset(
        "ResetEvent", +[](HANDLE event) { return world->reset(event), ResetEvent(event); });
    const ImportPatch wait(
        "WaitForMultipleObjects", +[](DWORD n, const HANDLE* handles, BOOL every, DWORD timeout) {
            world->wait({handles, handles + n});
            return WaitForMultipleObjects(n, handles, every, timeout);
        });
    World played(input);
    world = &played;
    played.play();
}

}  // namespace util_fuzz
