#include "util/host/cifs_share.h"

#include "support/cases.h"
#include "support/import_patch.h"
#include "util/portable/utf8.h"
// after the platform's header
#include <winnetwk.h>

using util_test::call;
using util_test::ImportPatch;
using util_test::said;
using util_test::Words;

namespace {

constexpr char share[] = "\\\\srv\\caf\xC3\xA9";

// A network that returns the codes of a case and records what it is asked.
struct World : util_test::CaseWorld {
    World() {
        values["add"] = "WNetAddConnection2 failed (error code =";
        values["cancel"] = "WNetCancelConnection2 failed (error code =";
    }

    // The message, or "done", and the calls made. All codes must be used up.
    template <typename Call>
    Words asked(Call make) {
        char message[2048] = "untouched";
        log.clear();
        const int result = make(message);
        DWORD left;
        if (adds >> left || cancels >> left) log += "codes are left";
        if ((result == 0) != (message == std::string("untouched"))) log += "message and " + log;
        return said(result == 0 ? "done" : message, log);
    }
    Words connect(const std::string& add_codes, const std::string& cancel_codes) {
        adds = std::istringstream(add_codes);
        cancels = std::istringstream(cancel_codes);
        return asked([](char* message) {
            return UTIL_ConnectCifsShare(share, "srv\\agent", "p\xC3\xA4ss", message);
        });
    }
    Words disconnect(const std::string& code) {
        cancels = std::istringstream(code);
        return asked([](char* message) { return UTIL_DisconnectCifsShare(share, message); });
    }
    Words connect_as(const char* user, const char* password) {
        adds = std::istringstream("0");
        return asked(
            [&](char* message) { return UTIL_ConnectCifsShare(share, user, password, message); });
    }
    void provider_says(DWORD code, const std::string& text) {
        provider.emplace(
            "WNetGetLastErrorA",
            [=](DWORD* its_code, char* its_text, DWORD room, char* name, DWORD name_room) -> DWORD {
                if (room != 256 || name_room != 256) return ERROR_INVALID_PARAMETER;
                *its_code = code;
                std::memcpy(its_text, text.data(), std::min<std::size_t>(room, text.size()));
                std::strcpy(name, "Test Net");
                return NO_ERROR;
            });
    }

    static DWORD next(std::istringstream& codes) {
        DWORD code;
        if (!(codes >> code)) throw std::logic_error("a call too many");
        return code;
    }
    static std::string shown(const wchar_t* text) {
        String utf8;
        return text ? UTIL_WideCharToUtf8(text, &utf8), utf8.str() : "(null)";
    }

    std::istringstream adds, cancels;
    std::string log;
    Words seen;
    std::optional<ImportPatch> provider, patch;

    const ImportPatch sleep{"Sleep",
                            [this](DWORD ms) { log += "sleep" + std::to_string(ms) + " "; }};
    const ImportPatch add{
        "WNetAddConnection2W",
        [this](NETRESOURCEW* record, const wchar_t* password, const wchar_t* user, DWORD flags) {
            log += "add ";
            seen = said(record->dwScope, record->dwType, record->dwUsage,
                        shown(record->lpLocalName), shown(record->lpProvider),
                        shown(record->lpRemoteName), shown(user), shown(password), flags);
            return next(adds);
        }};
    const ImportPatch cancel{"WNetCancelConnection2W",
                             [this](const wchar_t* name, DWORD flags, BOOL force) {
                                 log += "cancel ";
                                 seen = said(shown(name), flags, force);
                                 return next(cancels);
                             }};
};

const util_test::Cases<World> cases(
    "host/cifs_share.cases",
    {
        call("connect", &World::connect),
        call("connect_as", &World::connect_as),
        call("disconnect", &World::disconnect),
        call("seen", [](World& w) { return w.seen; }),
        call("provider_says", &World::provider_says),
        call("provider_says_long",
             [](World& w) { w.provider_says(0x80000000, std::string(256, '\x80')); }),
        call("provider_says_japanese",
             [](World& w) {
                 std::string text;
                 while (text.size() < 256)
                     text += "\x93\xFA";  // the last one is cut
                 w.provider_says(0x80000000, text);
             }),
        call("provider_fails",
             [](World& w) { w.provider.emplace("WNetGetLastErrorA", util_test::fails<1222>); }),
        call("refuse",
             [](World& w, const char* name) { w.patch.emplace(name, util_test::fails<0>); }),
        call("use_page_932", [](World& w) { w.patch.emplace("GetACP", util_test::fails<932>); }),
        call("connect_null",
             [](World& w) {
                 return w.asked(
                     [](char* text) { return UTIL_ConnectCifsShare(nullptr, "u", "p", text); });
             }),
        call("disconnect_null",
             [](World& w) {
                 return w.asked([](char* text) { return UTIL_DisconnectCifsShare(nullptr, text); });
             }),
        call("connect_unheard", [] { return UTIL_ConnectCifsShare(share, "u", "p", nullptr); }),
    });

}  // namespace
