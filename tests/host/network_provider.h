// What the tests' network provider asks the test that runs in the same process.
#ifndef UTIL_TESTS_HOST_NETWORK_PROVIDER_H
#define UTIL_TESTS_HOST_NETWORK_PROVIDER_H

#include "util/internal/windows.h"
// after the platform's header
#include <winnetwk.h>

namespace util_test {

struct NetworkHooks {
    DWORD(*add)
    (const NETRESOURCEW& record, const wchar_t* password, const wchar_t* user, DWORD flags);
    DWORD (*cancel)(const wchar_t* name, bool force);
};

constexpr char network_provider[] = "util_test_provider";  // its service's name, and the DLL's

}  // namespace util_test

#endif
