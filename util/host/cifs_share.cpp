#include "util/host/cifs_share.h"

#include "util/internal/windows.h"
// after the platform's header
#include <comdef.h>
#include <winnetwk.h>

#include <cstring>
#include <new>

#include "util/internal/encoding.h"
#include "util/internal/guarded.h"
#include "util/portable/utf8.h"
#include "util/text/byte_string.h"

namespace {

constexpr char add_call[] = "WNetAddConnection2";
constexpr char cancel_call[] = "WNetCancelConnection2";
constexpr int most_retries = 20;
constexpr DWORD pause_ms = 3000;

String plain_text(const char* call, DWORD code) {
    return String::format("%s failed (error code = %ld)", call, static_cast<long>(code));
}

// Must be called right after the failed call: the platform keeps the provider's words of the
// thread's last error only.
String error_text(const char* call, DWORD code) {
    if (code != ERROR_EXTENDED_ERROR) return plain_text(call, code);
    DWORD provider_code = 0;
    char description[256] = {};
    char provider[256] = {};
    const DWORD result = WNetGetLastErrorA(&provider_code, description, sizeof description,
                                           provider, sizeof provider);
    if (result != NO_ERROR) return plain_text("WNetGetLastError", result);
    description[sizeof description - 1] = '\0';
    return plain_text(call, provider_code) + ". " + String(util::words_to_utf8(description));
}

// A null text becomes a null wide text: null has a meaning of its own in the network calls.
bool to_wide(const char* text, _bstr_t& wide) {
    return !text || UTIL_Utf8ToWideChar(text, &wide);
}

// For the password: WideText clears its memory, and UTIL_Utf8ToWideChar does not.
bool to_wide(const char* text, util::WideText& wide) {
    const util::Conversion result = util::utf8_to_wide(text, wide);
    if (result == util::Conversion::no_memory) throw std::bad_alloc();
    return result == util::Conversion::done;
}

DWORD cancel(const char* share) {
    if (!share) return ERROR_BAD_NET_NAME;  // some platforms do not check for null
    _bstr_t wide;
    if (!to_wide(share, wide)) return ERROR_NO_UNICODE_TRANSLATION;
    return WNetCancelConnection2W(wide, CONNECT_UPDATE_PROFILE, FALSE);
}

DWORD connect(const char* share, const char* user, const char* password) {
    if (!share) return ERROR_BAD_NET_NAME;
    _bstr_t wide_share;
    _bstr_t wide_user;
    util::WideText wide_password;
    if (!to_wide(share, wide_share) || !to_wide(user, wide_user) ||
        (password && !to_wide(password, wide_password))) {
        return ERROR_NO_UNICODE_TRANSLATION;
    }
    NETRESOURCEW record = {};
    record.dwScope = RESOURCE_GLOBALNET;
    record.dwType = RESOURCETYPE_DISK;
    record.dwUsage = RESOURCEUSAGE_CONNECTABLE;
    record.lpRemoteName = wide_share;
    return WNetAddConnection2W(&record, password ? wide_password.c_str() : nullptr, wide_user, 0);
}

bool disconnect(const char* share, String& failure) {
    const DWORD result = cancel(share);
    if (result == NO_ERROR) return true;
    failure = error_text(cancel_call, result);
    return false;
}

// Takes a C string, so that reporting a lack of memory needs no memory.
int fail(char* message, const char* text) {
    if (message) std::memcpy(message, text, std::strlen(text) + 1);
    return -1;
}

}  // namespace

int UTIL_ConnectCifsShare(char const* share, char const* user, char const* password,
                          char* message) {
    const auto out_of_memory = [message] {
        return fail(message, "WNetAddConnection2 failed (error code = 14) \n ");
    };
    return util::guarded(out_of_memory, [&] {
        String history;
        DWORD result = connect(share, user, password);
        for (int retry = 0; result == ERROR_SESSION_CREDENTIAL_CONFLICT && retry < most_retries;
             ++retry) {
            history = "Earlier attempt(s):" + error_text(add_call, result);
            String failure;
            if (!disconnect(share, failure)) history += "\n" + failure;
            Sleep(pause_ms);
            result = connect(share, user, password);
        }
        if (result == NO_ERROR) return 0;
        return fail(message, error_text(add_call, result) + " \n " + history);
    });
}

int UTIL_DisconnectCifsShare(char const* share, char* message) {
    const auto out_of_memory = [message] {
        return fail(message, "WNetCancelConnection2 failed (error code = 14)");
    };
    return util::guarded(out_of_memory, [&] {
        String failure;
        return disconnect(share, failure) ? 0 : fail(message, failure);
    });
}
