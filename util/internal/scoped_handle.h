// One owner for anything that the platform opens and wants closed.
#ifndef UTIL_INTERNAL_SCOPED_HANDLE_H
#define UTIL_INTERNAL_SCOPED_HANDLE_H

#include <cstdlib>
#include <utility>

#include "util/internal/kept_errors.h"
#include "util/internal/windows.h"

namespace util {

// Traits name the Handle type, its invalid() value and how to close() it. Move-only; closing
// leaves errno and the last error as they were.
template <typename Traits>
class ScopedHandle {
  public:
    using Handle = typename Traits::Handle;

    explicit ScopedHandle(Handle handle = Traits::invalid()) : m_handle(handle) {}
    ~ScopedHandle() { reset(); }
    ScopedHandle(ScopedHandle&& other) noexcept : m_handle(other.release()) {}
    ScopedHandle& operator=(ScopedHandle&& other) noexcept {
        reset(other.release());  // right for itself too: released first, then put back
        return *this;
    }

    explicit operator bool() const { return m_handle != Traits::invalid(); }
    Handle get() const { return m_handle; }
    Handle release() { return std::exchange(m_handle, Traits::invalid()); }

    void reset(Handle handle = Traits::invalid()) {
        const Handle held = std::exchange(m_handle, handle);
        if (held == Traits::invalid()) return;
        const KeptErrors kept;
        Traits::close(held);
    }

  private:
    Handle m_handle;
};

// FindFirstFile's handle.
struct SearchTraits {
    using Handle = HANDLE;
    static Handle invalid() { return INVALID_HANDLE_VALUE; }
    static void close(Handle handle) { FindClose(handle); }
};
using ScopedSearch = ScopedHandle<SearchTraits>;

// CreateFile's handle.
struct KernelTraits {
    using Handle = HANDLE;
    static Handle invalid() { return INVALID_HANDLE_VALUE; }
    static void close(Handle handle) { CloseHandle(handle); }
};
using KernelHandle = ScopedHandle<KernelTraits>;

// CreateProcess's handle of a process or a thread.
struct ProcessTraits {
    using Handle = HANDLE;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { CloseHandle(handle); }
};
using ScopedProcess = ScopedHandle<ProcessTraits>;

// A text that malloc has allocated.
struct BlockTraits {
    using Handle = char*;
    static Handle invalid() { return nullptr; }
    static void close(Handle block) { std::free(block); }
};
using ScopedBlock = ScopedHandle<BlockTraits>;

// Whether WSAStartup started the socket library.
struct SocketLibraryTraits {
    using Handle = bool;
    static Handle invalid() { return false; }
    static void close(Handle) { WSACleanup(); }
};
using ScopedSocketLibrary = ScopedHandle<SocketLibraryTraits>;

// WSACreateEvent's handle.
struct EventTraits {
    using Handle = HANDLE;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { WSACloseEvent(handle); }
};
using ScopedEvent = ScopedHandle<EventTraits>;

}  // namespace util

#endif
