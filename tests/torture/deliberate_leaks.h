// The only leaks there are; docs/failure.md tells users of them.
#ifndef UTIL_TESTS_TORTURE_DELIBERATE_LEAKS_H
#define UTIL_TESTS_TORTURE_DELIBERATE_LEAKS_H

#include <cstring>

#include "torture/resources.h"

namespace torture {

// Leaks that the headers call deliberate: in that scenario, when that function fails (null: in any
// run), so many more of the resource than before.
constexpr struct {
    const char* scenario;
    const char* function;
    Resource resource;
    long most;
} deliberate_leaks[] = {
    {"UTIL_CurrentDirectory", "GetCurrentDirectoryA", heap_blocks, 1},     // as long as the path
    {"Tools::absolute_pathname", "GetCurrentDirectoryA", heap_blocks, 1},  // the same
    {"UTIL_GetRegistryValue", nullptr, heap_blocks, 1},                    // 1024 bytes
    {"UTIL_GetModuleVersion", nullptr, heap_blocks, 1},                    // the version resource
    {"UTIL_ModifyPrivilege", "AdjustTokenPrivileges", kernel_handles, 1},  // the token
    {"UTIL_getTSSEDBInfoFromRegistry", "WideCharToMultiByte", kernel_handles, 1},  // the key
    {"UTIL_getTSSEDBInfoFromRegistry", "memory", kernel_handles, 1},               // the same
    {"UTIL_getIsWow64 and the redirection", nullptr, modules, 2},                  // kernel32.dll
    {"XrDirectory, copied, set anew, free space", nullptr, heap_blocks, 3},  // list, table, entry
    {"XrFile, reopened after a failed seek", "_lseek", kernel_handles, 1},   // the descriptor
    {"XrFile, reopened after a failed seek", "_lseek", heap_blocks, 1},      // and its lock
};

// How many of the resource a run may leave behind.
inline long most_left(const char* scenario, const char* failing, Resource resource) {
    for (const auto& leak : deliberate_leaks) {
        if (leak.resource == resource && !std::strcmp(leak.scenario, scenario) &&
            (!leak.function || !std::strcmp(leak.function, failing))) {
            return leak.most;
        }
    }
    return 0;
}

}  // namespace torture

#endif
