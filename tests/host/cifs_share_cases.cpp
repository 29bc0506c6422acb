#include "util/host/cifs_share.h"

#include "support/cases.h"
#include "support/import_patch.h"
#include "util/internal/windows.h"
// after the platform's header
#include <winnetwk.h>

using namespace util_test;

namespace {

// A network that returns the codes of a case and records what it is asked.
struct World : CaseWorld {
    World() {
        values["add"] = "WNetAddConnection2 failed (error code =";
        values["cancel"] = "WNetCancelConnection2 failed (error code =";
        values["share"] = "\\\\srv\\caf\xC3\xA9";
        values["unended"] = std::string(256, '\x80');
        for (int i = 0; i < 128; ++i)
            values["japanese"] += "\x93\xFA";
    }

    // The message, or "done", and the calls made. All codes must be used up.
    template <typename Call>
    Words asked(const std::string& add_codes, const std::string& cancel_codes, Call make) {
        adds = std::istringstream(add_codes);
        cancels = std::istringstream(cancel_codes);
        char message[2048] = "untouched";
        log.clear();
        const int result = make(message);
        DWORD left;
        if (adds >> left || cancels >> left) log += "codes are left";
        if ((result == 0) != (message == std::string("untouched"))) log += "message and " + log;
        return said(result == 0 ? "done" : message, log);
    }
    Words connect_as(const char* share, const char* user, const char* password,
                     const std::string& add_codes, const std::string& cancel_codes) {
        return asked(add_codes, cancel_codes, [&](char* message) {
            return UTIL_ConnectCifsShare(share, user, password, message);
        });
    }
    Words connect(const std::string& add_codes, const std::string& cancel_codes) {
        return connect_as(values["share"].c_str(), "srv\\agent", "p\xC3\xA4ss", add_codes,
                          cancel_codes);
    }
    Words disconnect_from(const char* share, const std::string& code) {
        return asked("", code,
                     [&](char* message) { return UTIL_DisconnectCifsShare(share, message); });
    }
    Words disconnect(const std::string& code) {
        return disconnect_from(values["share"].c_str(), code);
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

    DWORD next(std::istringstream& codes) {
        DWORD code = NO_ERROR;
        if (!(codes >> code)) log += "(a call too many) ";
        return code;
    }
    static std::string shown(const wchar_t* text) {
        char utf8[100] = "(null)";
        if (text) WideCharToMultiByte(CP_UTF8, 0, text, -1, utf8, sizeof utf8, nullptr, nullptr);
        return utf8;
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

// A formatter that rejects its format leaves nothing to say. A conflict is tried again.
const char connect_failure[] =
    "\"WNet... failed (error code = ... | \"$add ... | \" {0A} ... | "
    "done \"cancel (a call too many) sleep3000 add \"";
const char disconnect_failure[] = "\"WNet... failed (error code = ... | \"$cancel ... | \"\" ...";

const Cases<World> cases("host/cifs_share.cases",
                         {
                             call("connect", connect_failure, &World::connect),
                             call("connect_as", &World::connect_as),
                             call("disconnect", disconnect_failure, &World::disconnect),
                             call("disconnect_from", &World::disconnect_from),
                             call("seen", [](World& w) { return w.seen; }),
                             call("provider_says", &World::provider_says),
                             call("returns",
                                  [](World& w, const char* function, std::intptr_t result) {
                                      w.patch.emplace(function, [=] { return result; });
                                  }),
                             call("connect_unheard",
                                  [](const char* share) {
                                      return UTIL_ConnectCifsShare(share, "u", "p", nullptr);
                                  }),
                         });

}  // namespace
