// Owners of everything that the platform or the runtime opens or allocates.
#ifndef UTIL_INTERNAL_SCOPED_HANDLE_H
#define UTIL_INTERNAL_SCOPED_HANDLE_H

#include <io.h>

#include <cstdio>
#include <cstdlib>
#include <utility>

#include "util/internal/kept_errors.h"
#include "util/internal/windows.h"

namespace util {

// Owns one handle. Traits name the Handle type, its invalid() value and how to close() it.
// Move-only. Closing preserves errno and the last error.
template <typename Traits>
class ScopedHandle {
  public:
    using Handle = typename Traits::Handle;

    explicit ScopedHandle(Handle handle = Traits::invalid()) : m_handle(handle) {}
    ~ScopedHandle() { reset(); }
    ScopedHandle(ScopedHandle&& other) noexcept : m_handle(other.release()) {}
    ScopedHandle& operator=(ScopedHandle&& other) noexcept {
        reset(other.release());  // correct for self-move: releases first, then stores again
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

    // Closes the handle and returns where a call can store another one. Example:
    //     ScopedKey key;
    //     RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, access, key.receive());
    Handle* receive() {
        reset();
        return &m_handle;
    }

  private:
    Handle m_handle;
};

// Base of the traits whose invalid value is null.
template <typename Type>
struct NullWhenInvalid {
    using Handle = Type;
    static Handle invalid() { return nullptr; }
};

// A process, thread, token or event. Null when there is none.
struct WinHandleTraits : NullWhenInvalid<HANDLE> {
    static void close(Handle handle) { CloseHandle(handle); }
};
using WinHandle = ScopedHandle<WinHandleTraits>;

// The result of CreateFile. INVALID_HANDLE_VALUE when there is none.
struct FileHandleTraits {
    using Handle = HANDLE;
    static Handle invalid() { return INVALID_HANDLE_VALUE; }
    static void close(Handle handle) { CloseHandle(handle); }
};
using FileHandle = ScopedHandle<FileHandleTraits>;
using KernelHandle = FileHandle;  // the former name

// The result of FindFirstFile. INVALID_HANDLE_VALUE when there is none.
struct SearchTraits {
    using Handle = HANDLE;
    static Handle invalid() { return INVALID_HANDLE_VALUE; }
    static void close(Handle handle) { FindClose(handle); }
};
using ScopedSearch = ScopedHandle<SearchTraits>;

// A key of the registry.
struct KeyTraits : NullWhenInvalid<HKEY> {
    static void close(Handle key) { RegCloseKey(key); }
};
using ScopedKey = ScopedHandle<KeyTraits>;

// The service manager, or a service.
struct ServiceTraits : NullWhenInvalid<SC_HANDLE> {
    static void close(Handle handle) { CloseServiceHandle(handle); }
};
using ScopedService = ScopedHandle<ServiceTraits>;

// One reference to a loaded module.
struct ModuleTraits : NullWhenInvalid<HMODULE> {
    static void close(Handle module) { FreeLibrary(module); }
};
using ScopedModule = ScopedHandle<ModuleTraits>;

// A file descriptor of the runtime. -1 when there is none; 0 is a valid one.
struct DescriptorTraits {
    using Handle = int;
    static Handle invalid() { return -1; }
    static void close(Handle descriptor) { _close(descriptor); }
};
using ScopedDescriptor = ScopedHandle<DescriptorTraits>;

// A stream of the runtime. To learn whether closing succeeded, release() it and call fclose.
struct StreamTraits : NullWhenInvalid<std::FILE*> {
    static void close(Handle stream) { std::fclose(stream); }
};
using ScopedStream = ScopedHandle<StreamTraits>;

// A block from malloc.
template <typename Type>
struct MallocTraits : NullWhenInvalid<Type*> {
    static void close(Type* block) { std::free(block); }
};
template <typename Type>
using ScopedMalloc = ScopedHandle<MallocTraits<Type>>;

// A block from LocalAlloc. FormatMessage returns such blocks.
template <typename Type>
struct LocalTraits : NullWhenInvalid<Type*> {
    static void close(Type* block) { LocalFree(block); }
};
template <typename Type>
using ScopedLocal = ScopedHandle<LocalTraits<Type>>;

}  // namespace util

#endif
