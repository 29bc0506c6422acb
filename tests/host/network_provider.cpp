// A network provider for the system's router of network calls. It knows no network: what a call
// results in is the test's to say.
#include "host/network_provider.h"

#define EXPORTED extern "C" __declspec(dllexport)

EXPORTED util_test::NetworkHooks network_hooks;
util_test::NetworkHooks network_hooks = {};

EXPORTED DWORD WINAPI NPGetCaps(DWORD index) {
    constexpr DWORD spec_version = 1, net_type = 2, connection = 6, start = 12;
    constexpr DWORD add = 1, cancel = 2, add3 = 8;
    switch (index) {
        case spec_version:
            return 0x00050001;
        case net_type:
            return WNNC_NET_SMB;
        case start:
            return 1;
        case connection:
            return add | cancel | add3;
        default:
            return 0;
    }
}

EXPORTED DWORD WINAPI NPAddConnection3(HWND, NETRESOURCEW* record, wchar_t* password, wchar_t* user,
                                       DWORD flags) {
    return network_hooks.add ? network_hooks.add(*record, password, user, flags)
                             : ERROR_BAD_NET_NAME;
}

EXPORTED DWORD WINAPI NPAddConnection(NETRESOURCEW* record, wchar_t* password, wchar_t* user) {
    return NPAddConnection3(nullptr, record, password, user, 0);
}

EXPORTED DWORD WINAPI NPCancelConnection(wchar_t* name, BOOL force) {
    return network_hooks.cancel ? network_hooks.cancel(name, force) : ERROR_NOT_CONNECTED;
}
