// Kernel handles that this process holds: files, processes, threads, events, registry keys. The
// count of before and after shows what a call did not give back. Make the call once beforehand:
// the platform keeps some handles from first use on.
#ifndef UTIL_TESTS_SUPPORT_HANDLE_COUNT_H
#define UTIL_TESTS_SUPPORT_HANDLE_COUNT_H

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "util/internal/windows.h"

namespace util_test {

// Read from the system's own table, since GetProcessHandleCount answers 0 under Wine.
inline long handle_count() {
    struct Entry {
        USHORT process, trace;
        UCHAR type, flags;
        USHORT value;
        void* object;
        ULONG access;
    };
    constexpr ULONG whole_table = 16;
    constexpr LONG too_small = static_cast<LONG>(0xC0000004);
    using Query = LONG WINAPI(ULONG, void*, ULONG, ULONG*);
    auto* query = reinterpret_cast<Query*>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleA("ntdll.dll"), "NtQuerySystemInformation")));
    std::vector<Entry> table(4096);  // in front, where an entry would stand: the number of entries
    LONG status;
    while ((status = query(whole_table, table.data(), ULONG(table.size() * sizeof(Entry)),
                           nullptr)) == too_small) {
        table.resize(table.size() * 2);
    }
    if (status < 0) throw std::runtime_error("the system's handle table cannot be read");
    const auto* head = reinterpret_cast<const char*>(table.data());
    const auto* first = reinterpret_cast<const Entry*>(head + sizeof(void*));
    const auto number = *reinterpret_cast<const ULONG*>(head);
    const auto own = static_cast<USHORT>(GetCurrentProcessId());
    return static_cast<long>(
        std::count_if(first, first + number, [own](const Entry& e) { return e.process == own; }));
}

}  // namespace util_test

#endif
