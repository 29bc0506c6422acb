// Opens services of the service manager.
#ifndef UTIL_INTERNAL_SERVICE_H
#define UTIL_INTERNAL_SERVICE_H

#include <string>

#include "util/internal/encoding.h"
#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace util {

// The manager's database (null: the default one), and the access to it and to the service in it.
struct ServiceAccess {
    const char* database;
    DWORD to_manager;
    DWORD to_service;
};

// An open service of this machine, whatever its state. Closes the service first, then the manager.
// The constructor raises std::bad_alloc.
class OpenedService {
  public:
    // `name` is UTF-8. The object is false, with the last error, if the manager or the service
    // cannot be opened with that access.
    OpenedService(const char* name, const ServiceAccess& access)
        : m_manager(OpenSCManagerA(nullptr, access.database, access.to_manager)) {
        std::string ansi_name;
        if (!m_manager) return;
        if (!utf8_to_ansi(name, ansi_name)) {
            SetLastError(ERROR_SERVICE_DOES_NOT_EXIST);
            return;
        }
        m_service.reset(OpenServiceA(m_manager.get(), ansi_name.c_str(), access.to_service));
    }

    explicit operator bool() const { return bool(m_service); }
    SC_HANDLE get() const { return m_service.get(); }

  private:
    ScopedService m_manager;
    ScopedService m_service;  // declared last, so closed first
};

// Returns whether the service exists in the running database. Needs read access only.
inline bool is_service_installed(const char* name) {
    return bool(OpenedService(name, {"ServicesActive", GENERIC_READ, GENERIC_READ}));
}

}  // namespace util

#endif
