// Not installed. Entries of the service manager.
#ifndef UTIL_INTERNAL_SERVICE_H
#define UTIL_INTERNAL_SERVICE_H

#include <string>

#include "util/internal/ansi_text.h"
#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace util {

// Handles of the service manager and of its services alike.
struct ServiceTraits {
    using Handle = SC_HANDLE;
    static Handle invalid() { return nullptr; }
    static void close(Handle handle) { CloseServiceHandle(handle); }
};
using ScopedService = ScopedHandle<ServiceTraits>;

// How far to open the manager's database (null: the default one) and the service in it.
struct ServiceAccess {
    const char* database;
    DWORD to_manager;
    DWORD to_service;
};

// The service of this machine under that UTF-8 name, in whatever state it is; invalid, with the
// last error, when the manager or the service cannot be opened so far. A service's handle outlives
// its manager's, so the manager is closed already. Raises std::bad_alloc.
inline ScopedService open_service(const char* name, const ServiceAccess& access) {
    const ScopedService manager(OpenSCManagerA(nullptr, access.database, access.to_manager));
    std::string ansi_name;
    if (!manager) return ScopedService();
    if (!utf8_to_ansi(name, ansi_name)) {
        SetLastError(ERROR_SERVICE_DOES_NOT_EXIST);
        return ScopedService();
    }
    return ScopedService(OpenServiceA(manager.get(), ansi_name.c_str(), access.to_service));
}

// Whether the service exists, as anyone who may look into the running database sees it.
inline bool is_service_installed(const char* name) {
    return bool(open_service(name, {"ServicesActive", GENERIC_READ, GENERIC_READ}));
}

}  // namespace util

#endif
