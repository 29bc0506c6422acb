#include "util/host/wow64.h"

#include "util/internal/kept_errors.h"
#include "util/internal/windows.h"

namespace {

template <typename Function>
Function* entry(HMODULE module, const char* name) {
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

using IsWow64 = BOOL WINAPI(HANDLE, BOOL*);

IsWow64* is_wow64_entry() {
    return entry<IsWow64>(GetModuleHandleA("kernel32"), "IsWow64Process");
}

bool is_emulated() {
    BOOL emulated = FALSE;
    IsWow64* ask = is_wow64_entry();
    return ask && ask(GetCurrentProcess(), &emulated) && emulated;
}

template <typename State>
int switch_redirection(const char* name, State state) {
    if (!is_emulated()) return 1;
    const HMODULE kernel = LoadLibraryA("Kernel32.dll");
    if (!kernel) return 0;
    auto* call = entry<BOOL WINAPI(State)>(kernel, name);
    if (!call) {
        const util::KeptErrors kept;
        FreeLibrary(kernel);
        return 0;
    }
    return call(state);  // the reference to the module stays, as the header says
}

}  // namespace

unsigned long UTIL_getIsWow64(unsigned char* flag) {
    if (!flag) return ERROR_INVALID_PARAMETER;
    *flag = 0;
    IsWow64* ask = is_wow64_entry();
    if (!ask) return 0;
    BOOL emulated = FALSE;
    if (!ask(GetCurrentProcess(), &emulated)) return GetLastError();
    if (emulated == TRUE) *flag = 1;
    return 0;
}

int UTIL_VornWow64DisableWow64FsRedirection(void** oldValue) {
    return switch_redirection("Wow64DisableWow64FsRedirection", oldValue);
}

int UTIL_VornWow64RevertWow64FsRedirection(void* oldValue) {
    return switch_redirection("Wow64RevertWow64FsRedirection", oldValue);
}
