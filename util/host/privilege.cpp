#include "util/host/privilege.h"

#include <new>
#include <string>

#include "util/internal/encoding.h"
#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace {

struct TokenTraits {
    using Handle = HANDLE;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { CloseHandle(handle); }
};
using ScopedToken = util::ScopedHandle<TokenTraits>;

}  // namespace

unsigned long UTIL_ModifyPrivilege(const char* name, int enable) {
    HANDLE opened = nullptr;
    if (!OpenProcessToken(GetCurrentProcess(), TOKEN_ADJUST_PRIVILEGES | TOKEN_QUERY, &opened)) {
        return GetLastError();
    }
    ScopedToken token(opened);

    TOKEN_PRIVILEGES request = {};
    request.PrivilegeCount = 1;
    request.Privileges[0].Attributes = enable ? SE_PRIVILEGE_ENABLED : 0;
    try {
        std::string ansi_name;
        if (!util::utf8_to_ansi(name, ansi_name)) return ERROR_NO_SUCH_PRIVILEGE;
        if (!LookupPrivilegeValueA(nullptr, ansi_name.c_str(), &request.Privileges[0].Luid)) {
            return GetLastError();
        }
    } catch (const std::bad_alloc&) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
    if (!AdjustTokenPrivileges(token.get(), FALSE, &request, 0, nullptr, nullptr)) {
        token.release();  // leaked on purpose: the contract keeps it open on this path
        return GetLastError();
    }
    return 0;
}
