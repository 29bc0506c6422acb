#include <windows.h>

#include <stdbool.h>
#include <stdint.h>
#include <stdio.h>

typedef int (*system_t)(const char* command);
typedef int (*free_space_t)(const char* path, uint64_t* available, uint64_t* total, uint64_t* free);
typedef bool (*is_equal_t)(const void* a, const void* b, int count);

// The version in the resource of a loaded DLL, as major * 65536 + minor; 0 when there is none.
static DWORD version_of(HMODULE module) {
    wchar_t path[MAX_PATH];
    char block[8192];
    VS_FIXEDFILEINFO* info;
    UINT size;
    const DWORD length = GetModuleFileNameW(module, path, MAX_PATH);
    if (length == 0 || length == MAX_PATH) return 0;
    if (!GetFileVersionInfoW(path, 0, sizeof block, block)) return 0;
    if (!VerQueryValueW(block, L"\\", (void**)&info, &size)) return 0;
    return info->dwFileVersionMS;
}

int main(void) {
    const HMODULE util = LoadLibraryW(L"util.dll");
    if (!util) {
        printf("util.dll does not load: error %lu\n", GetLastError());
        return 1;
    }
    printf("version 0.1: %d\n", version_of(util) == MAKELONG(1, 0));

    // The cast by way of void (*)(void) tells the compiler that the types differ on purpose.
    const system_t run = (system_t)(void (*)(void))GetProcAddress(util, "ksl_system2");
    const free_space_t free_space =
        (free_space_t)(void (*)(void))GetProcAddress(util, "UTF8_GetDiskFreeSpaceEx");
    const is_equal_t is_equal =
        (is_equal_t)(void (*)(void))GetProcAddress(util, "UTIL_IsBinaryEqual");
    if (!run || !free_space || !is_equal) {
        printf("a function is missing: error %lu\n", GetLastError());
        return 1;
    }
    uint64_t available = 0;
    printf("exit code: %d\n", run("cmd.exe /c exit 7"));
    printf("the drive answers: %d\n", free_space(".", &available, NULL, NULL) != 0);
    printf("equal: %d\n", is_equal("abc", "abd", 2));
    FreeLibrary(util);
    return 0;
}
