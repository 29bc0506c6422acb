#include "util/host/cluster.h"

#include <new>

#include "util/internal/service.h"

namespace {

bool is_installed(const char* service) {
    try {
        return util::is_service_installed(service);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

}  // namespace

bool UTIL_IsClustered(const String& name) {
    return is_installed(name);
}

bool UTIL_IsCluster() {
    return is_installed("ClusSvc");
}
