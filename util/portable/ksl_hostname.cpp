#include "util/portable/ksl_hostname.h"

#include <cerrno>
#include <charconv>
#include <cstring>
#include <string_view>

#include "util/internal/kept_errors.h"
#include "util/internal/windows.h"

namespace {

struct AddressRecord {
    char label[17];
    char address[4];
};
static_assert(sizeof(AddressRecord) == 21, "records stand back to back in the caller's array");

bool start_socket_library() {
    const WORD version = MAKEWORD(2, 0);
    WSADATA granted;
    if (WSAStartup(version, &granted) != 0) return false;
    if (granted.wVersion == version) return true;
    const util::KeptErrors kept;
    WSACleanup();
    return false;
}

// A host with addresses of another kind has none that fits a record.
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

    char name[256] = "";  // zeroed: a name cut at its dot comes without a NUL
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
