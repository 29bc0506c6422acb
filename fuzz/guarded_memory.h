// Memory in which a read or write beyond either end of a text is a fault.
#ifndef UTIL_FUZZ_GUARDED_MEMORY_H
#define UTIL_FUZZ_GUARDED_MEMORY_H

#include <cstddef>
#include <cstring>
#include <new>
#include <string>

#ifdef _WIN32
#include "util/internal/windows.h"
#else
#include <sys/mman.h>
#endif

namespace util_fuzz {

// Writable pages between two that cannot be accessed. Lives as long as the process.
class GuardedMemory {
  public:
    static constexpr std::size_t room = 20 * 4096;  // for a text and its NUL

    GuardedMemory() {
        constexpr std::size_t page = 4096, all = room + 2 * page;
#ifdef _WIN32
        m_begin = static_cast<char*>(VirtualAlloc(nullptr, all, MEM_RESERVE, PAGE_NOACCESS));
        if (!m_begin || !VirtualAlloc(m_begin += page, room, MEM_COMMIT, PAGE_READWRITE))
            throw std::bad_alloc();
#else
        void* const pages = mmap(nullptr, all, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        m_begin = static_cast<char*>(pages) + page;
        if (pages == MAP_FAILED || mprotect(m_begin, room, PROT_READ | PROT_WRITE) != 0)
            throw std::bad_alloc();
#endif
    }

    // The text, up to its first NUL, at the first bytes of the memory or up to the last one. Valid
    // until the next call.
    char* at_begin(const std::string& text) {
        return std::strcpy(m_begin, text.c_str());
    }
    char* at_end(const std::string& text) {
        return std::strcpy(m_begin + room - std::strlen(text.c_str()) - 1, text.c_str());
    }

  private:
    char* m_begin;
};

}  // namespace util_fuzz

#endif
