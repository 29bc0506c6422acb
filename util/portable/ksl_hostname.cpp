#include "util/portable/ksl_hostname.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <string_view>

#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace {

struct AddressRecord {
    char label[17];
    char address[4];
};
static_assert(sizeof(AddressRecord) == 21, "the caller's array has no padding between records");

bool start_socket_library() {
    const WORD version = MAKEWORD(2, 0);
    WSADATA granted;
    util::ScopedSocketLibrary library(WSAStartup(version, &granted) == 0);
    if (!library || granted.wVersion != version) return false;
    return library.release();  // by design, the library stays started
}

// Looks up a host. Returns null if its addresses are not IPv4 addresses.
const hostent* look_up_ipv4(const char* name) {
    const hostent* host = gethostbyname(name);
    const bool usable = host && host->h_length == sizeof AddressRecord::address;
    return usable ? host : nullptr;
}

}  // namespace

int ksl_gethostname(char* buf, unsigned int size) {
    if (!buf) {
        errno = EINVAL;
        return -1;
    }
    char name[257] = "";
    if (!start_socket_library() || gethostname(name, sizeof name) != 0) return -1;

    const std::string_view full(name, strnlen(name, sizeof name));
    const std::string_view wanted = full.substr(0, full.find('.'));
    if (size <= wanted.size()) return -1;
    std::memcpy(buf, wanted.data(), wanted.size());
    if (wanted.size() == full.size()) buf[wanted.size()] = '\0';
    return 0;
}

int KslIpAddrList(int max, int* count, char* records) {
    if (!count || !records || max < 0) {
        errno = EINVAL;
        return -1;
    }
    *count = 0;
    std::memset(records, 0, static_cast<std::size_t>(max) * sizeof(AddressRecord));

    char name[256] = "";  // zeroed: a name that is cut at its dot has no NUL
    if (ksl_gethostname(name, sizeof name) != 0) return -1;
    const hostent* host = look_up_ipv4(name);
    if (!host) return -1;

    for (int i = 0; i < max && host->h_addr_list[i]; ++i) {
        AddressRecord record = {"le", {}};
        std::to_chars(record.label + 2, std::end(record.label), i);
        std::memcpy(record.address, host->h_addr_list[i], sizeof record.address);
        std::memcpy(records + i * sizeof record, &record, sizeof record);
        *count = i + 1;
    }
    return 0;
}
