// What a call has to give back, counted.
#ifndef UTIL_TESTS_TORTURE_RESOURCES_H
#define UTIL_TESTS_TORTURE_RESOURCES_H

#include <malloc.h>

#include <array>
#include <map>
#include <string>

#include "support/handle_count.h"

namespace torture {

enum Resource { kernel_handles, service_handles, modules, heap_blocks, resource_kinds };

constexpr const char* resource_names[] = {"kernel handles", "service handles", "module references",
                                          "heap blocks"};

using Resources = std::array<long, resource_kinds>;

// What a function takes (+1) or gives back (-1) when it succeeds; counted by its gate.
struct Taker {
    Resource resource;
    int change;
};
inline const std::map<std::string, Taker> takers = {{"OpenSCManagerA", {service_handles, 1}},
                                                    {"OpenServiceA", {service_handles, 1}},
                                                    {"CloseServiceHandle", {service_handles, -1}},
                                                    {"LoadLibraryA", {modules, 1}},
                                                    {"FreeLibrary", {modules, -1}}};

inline long blocks_of(HANDLE heap) {
    long blocks = 0;
    PROCESS_HEAP_ENTRY entry;
    entry.lpData = nullptr;
    HeapLock(heap);
    while (HeapWalk(heap, &entry)) {
        if (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) ++blocks;
    }
    HeapUnlock(heap);
    return blocks;
}

// What this process holds now; counted is what the gates have seen.
inline Resources resources_now(const Resources& counted) {
    Resources now = counted;
    now[kernel_handles] = util_test::handle_count();
    const auto runtime = reinterpret_cast<HANDLE>(_get_heap_handle());
    now[heap_blocks] = blocks_of(runtime);
    if (runtime != GetProcessHeap()) now[heap_blocks] += blocks_of(GetProcessHeap());
    return now;
}

}  // namespace torture

#endif
