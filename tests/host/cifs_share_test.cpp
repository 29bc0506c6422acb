#include "util/host/cifs_share.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "support/import_patch.h"
// after the platform's header
#include <winnetwk.h>

using util_test::ImportPatch;

namespace {

constexpr char share[] = "\\\\srv\\caf\xC3\xA9";

// --- what the network answers, and what it was asked ---

std::vector<DWORD> add_results, cancel_results;  // one for each call to come
std::string log;
std::wstring seen;

DWORD next(std::vector<DWORD>& results) {
    if (results.empty()) throw std::logic_error("a call too many");
    const DWORD result = results.front();
    results.erase(results.begin());
    return result;
}

std::wstring shown(const wchar_t* text) {
    return text ? text : L"(null)";
}

DWORD WINAPI add(NETRESOURCEW* record, const wchar_t* password, const wchar_t* user, DWORD flags) {
    log += "add ";
    seen = std::to_wstring(record->dwScope) + L" " + std::to_wstring(record->dwType) + L" " +
           std::to_wstring(record->dwUsage) + L" " + shown(record->lpLocalName) + L" " +
           shown(record->lpProvider) + L" " + shown(record->lpRemoteName) + L" " + shown(user) +
           L" " + shown(password) + L" " + std::to_wstring(flags);
    return next(add_results);
}

DWORD WINAPI cancel(const wchar_t* name, DWORD flags, BOOL force) {
    log += "cancel ";
    seen = name + (L" " + std::to_wstring(flags)) + L" " + std::to_wstring(force);
    return next(cancel_results);
}

void WINAPI noting_sleep(DWORD milliseconds) {
    log += "sleep" + std::to_string(milliseconds) + " ";
}

class CifsShareTest : public testing::Test {
  protected:
    // The result's message, or "connected".
    std::string connect(std::vector<DWORD> adds, std::vector<DWORD> cancels) {
        add_results = std::move(adds);
        cancel_results = std::move(cancels);
        log.clear();
        std::strcpy(message, "untouched");
        const int result = UTIL_ConnectCifsShare(share, "srv\\agent", "p\xC3\xA4ss", message);
        EXPECT_TRUE(add_results.empty() && cancel_results.empty()) << "calls left over";
        EXPECT_EQ(result == 0, message == std::string("untouched"));
        EXPECT_TRUE(result == 0 || result == -1);
        return result == 0 ? "connected" : message;
    }

    std::string disconnect(DWORD code) {
        cancel_results = {code};
        std::strcpy(message, "untouched");
        const int result = UTIL_DisconnectCifsShare(share, message);
        EXPECT_EQ(result == 0, message == std::string("untouched"));
        return result == 0 ? "disconnected" : message;
    }

    char message[2048];
    ImportPatch sleep{"Sleep", noting_sleep}, connecting{"WNetAddConnection2W", add},
        disconnecting{"WNetCancelConnection2W", cancel};
};

std::string repeated(int times, const std::string& text) {
    std::string result;
    while (times-- > 0)
        result += text;
    return result;
}

TEST_F(CifsShareTest, CallsNameTheShareAndTheCredentials) {
    EXPECT_EQ(connect({0}, {}), "connected");
    EXPECT_EQ(seen, L"2 1 1 (null) (null) \\\\srv\\caf\x00E9 srv\\agent p\x00E4ss 0");

    add_results = {0, 0};
    EXPECT_EQ(UTIL_ConnectCifsShare(share, nullptr, nullptr, message), 0);
    EXPECT_EQ(seen, L"2 1 1 (null) (null) \\\\srv\\caf\x00E9 (null) (null) 0")
        << "the caller's own";
    EXPECT_EQ(UTIL_ConnectCifsShare(share, "", "", message), 0);
    EXPECT_EQ(seen, L"2 1 1 (null) (null) \\\\srv\\caf\x00E9   0") << "empty ones";

    EXPECT_EQ(disconnect(0), "disconnected");
    EXPECT_EQ(seen, L"\\\\srv\\caf\x00E9 1 0") << "no longer remembered, not forced";
}

TEST_F(CifsShareTest, ConflictIsRetriedTwentyTimesAndReported) {
    const std::vector<DWORD> conflicts(21, 1219);
    std::vector<DWORD> first_cancels_fail(20, 2250), last_cancel_fails(20, 0);
    first_cancels_fail.back() = 0;
    last_cancel_fails.back() = 2401;
    const std::string pass = "add cancel sleep3000 ";
    const std::string refused = "WNetAddConnection2 failed (error code = 1219)";
    const std::string history = "Earlier attempt(s):" + refused;
    const struct {
        std::vector<DWORD> adds, cancels;
        std::string outcome, log;
    } cases[] = {
        {{53}, {}, "WNetAddConnection2 failed (error code = 53) \n ", "add "},
        {{1219, 1219, 1219, 1219, 0}, {0, 2250, 0, 0}, "connected", repeated(4, pass) + "add "},
        {{1219, 86},
         {0},
         "WNetAddConnection2 failed (error code = 86) \n " + history,
         pass + "add "},
        {{1219, 1219, 86},
         {0, 2250},
         "WNetAddConnection2 failed (error code = 86) \n " + history +
             "\nWNetCancelConnection2 failed (error code = 2250)",
         pass + pass + "add "},
        {conflicts, first_cancels_fail, refused + " \n " + history, repeated(20, pass) + "add "},
        {conflicts, last_cancel_fails,
         refused + " \n " + history + "\nWNetCancelConnection2 failed (error code = 2401)",
         repeated(20, pass) + "add "},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(connect(c.adds, c.cancels), c.outcome);
        EXPECT_EQ(log, c.log) << c.outcome;
    }
    EXPECT_EQ(disconnect(2250), "WNetCancelConnection2 failed (error code = 2250)");
    EXPECT_EQ(disconnect(DWORD(-2)), "WNetCancelConnection2 failed (error code = -2)");
}

DWORD provider_code;
std::string provider_text;

DWORD WINAPI provider_words(DWORD* code, char* text, DWORD room, char* name, DWORD name_room) {
    if (room != 256 || name_room != 256) return ERROR_INVALID_PARAMETER;
    *code = provider_code;
    std::memcpy(text, provider_text.data(), std::min<std::size_t>(room, provider_text.size()));
    std::strcpy(name, "Test Net");
    return NO_ERROR;
}

TEST_F(CifsShareTest, ProvidersOwnErrorIsToldInItsWords) {
    const std::string refusal = "WNetGetLastError failed (error code = 1222)";
    const ImportPatch no_words("WNetGetLastErrorA", util_test::fails<1222>);
    EXPECT_EQ(connect({1208}, {}), refusal + " \n ");
    EXPECT_EQ(disconnect(1208), refusal);
    const ImportPatch patch("WNetGetLastErrorA", provider_words);
    provider_code = 7;
    provider_text = "Kein Zugang f\xFCr %s.\r\n";
    provider_text += '\0';
    EXPECT_EQ(connect({1208}, {}),
              "WNetAddConnection2 failed (error code = 7). Kein Zugang f\xC3\xBCr %s.\r\n \n ");
    EXPECT_EQ(disconnect(1208),
              "WNetCancelConnection2 failed (error code = 7). Kein Zugang f\xC3\xBCr %s.\r\n");

    // The longest there is: a description without an end, of characters that take three bytes.
    provider_code = 0x80000000;
    provider_text = std::string(256, '\x80');
    const std::string euros = repeated(255, "\xE2\x82\xAC");
    const std::string longest =
        "WNetAddConnection2 failed (error code = -2147483648). " + euros +
        " \n Earlier attempt(s):WNetAddConnection2 failed (error code = 1219)\n"
        "WNetCancelConnection2 failed (error code = -2147483648). " +
        euros;
    EXPECT_EQ(connect({1219, 1208}, {1208}), longest);
    EXPECT_LT(longest.size(), sizeof message);

    const ImportPatch page("GetACP", util_test::fails<932>);
    provider_text = repeated(128, "\x93\xFA");  // cut inside the last character
    const std::string words = "(error code = -2147483648). " + repeated(127, "\xE6\x97\xA5");
    EXPECT_NE(disconnect(1208).find(words), std::string::npos);
}

wchar_t* WINAPI no_memory(const wchar_t*) {
    return nullptr;
}
int WINAPI no_conversion(UINT, DWORD, const char*, int, wchar_t*, int) {
    return 0;
}

TEST_F(CifsShareTest, FailuresBeforeTheCallAreReportedAsTheCalls) {
    {
        const ImportPatch patch("SysAllocString", no_memory);
        EXPECT_EQ(connect({}, {}), "WNetAddConnection2 failed (error code = 14) \n ");
        EXPECT_EQ(UTIL_DisconnectCifsShare(share, message), -1);
        EXPECT_STREQ(message, "WNetCancelConnection2 failed (error code = 14)");
        EXPECT_EQ(UTIL_ConnectCifsShare(share, "u", "p", nullptr), -1) << "the text is not wanted";
    }
    {
        const ImportPatch patch("MultiByteToWideChar", no_conversion);
        EXPECT_EQ(connect({}, {}), "WNetAddConnection2 failed (error code = 1113) \n ");
        EXPECT_EQ(UTIL_DisconnectCifsShare(share, message), -1);
        EXPECT_STREQ(message, "WNetCancelConnection2 failed (error code = 1113)");
    }
    EXPECT_EQ(UTIL_ConnectCifsShare(nullptr, "u", "p", message), -1);
    EXPECT_STREQ(message, "WNetAddConnection2 failed (error code = 67) \n ");
    EXPECT_EQ(UTIL_DisconnectCifsShare(nullptr, message), -1);
    EXPECT_STREQ(message, "WNetCancelConnection2 failed (error code = 67)");
}

}  // namespace
