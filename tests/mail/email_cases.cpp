#include "util/mail/email.h"

#include <io.h>

#include "mail/mail_world.h"
#include "support/import_patch.h"

using namespace util_test;

namespace {

// $t contains the directories temp, for temporary files, and pickup.
struct World : MailWorld {
    World() {
        values = {{"t", scratch.path()},
                  {"mime", mime},
                  {"server", server_key},
                  {"exchange", exchange_key},
                  {"web", web_key},
                  {"bad", "Win32 API GetTempFileName returned bad name, GetLastError ="}};
    }
    ~World() override {
        SetFileApisToANSI();
        SetCurrentDirectoryA("C:\\");
    }

    // A path of this length: a directory, or below one.
    void deep(std::size_t length) {
        values["deep"] = scratch.directory(std::string(200, 'd')) + "\\" + std::string(60, 'e');
        values["deep"].resize(length);
    }
    void set(const std::string& key, const std::string& value, const std::string& text) {
        registry.set_wide(key, to_wide(value).c_str(), to_wide(text) + L'\0');
    }
    void unset(const std::string& key, const char* value) { registry.remove_value(key, value); }
    bool installed_as(DWORD type, const std::string& bytes) {
        registry.set(web_key, "InstallPath", type, bytes);
        return MailInstalled();
    }

    // The names of temporary files are shown without their number.
    static std::string shown(const std::string& name) {
        return name.rfind("tsr", 0) == 0 ? "tsr" + name.substr(name.find('.')) : name;
    }
    Words list(const std::string& directory) const {
        std::multiset<Words> sorted;  // numbers are drawn in any order
        for (const auto& [name, content] : files(directory))
            sorted.insert({shown(name), content});
        Words words;
        for (const Words& file : sorted)
            say(words, file);
        return said(words);
    }
    // The result and the text of the last failure.
    Words sent(int result) const {
        std::string error = mail.GetLastErrorMessage().str();
        for (const auto& [name, content] : files("temp")) {
            const std::size_t at = error.find(name);
            if (at != std::string::npos) error.replace(at, name.size(), shown(name));
        }
        return said(result, error);
    }
    // The directories that are asked for a name, and the keys that are opened for the second.
    Words places() {
        Words directories, opened;
        const ImportPatch open("RegOpenKeyExA", [&](HKEY root, const char* path, DWORD options,
                                                    REGSAM access, HKEY* key) {
            opened.push_back(path);
            return RegOpenKeyExA(root, path, options, access, key);
        });
        const ImportPatch name("GetTempFileNameA", [&](const char* directory, const char* prefix,
                                                       UINT number, char* path) {
            directories.push_back(directory);
            return GetTempFileNameA(directory, prefix, number, path);
        });
        const int result = send_to("a");
        opened.pop_back();  // the web server's is opened again in the end
        return said(result, directories, opened);
    }

    // Names are n1, n2 and so on. The first draws for the pickup directory all give n1.
    void number_names(int draws) {
        draws_left = draws;
        name_patch.emplace(
            "GetTempFileNameA",
            [this](const char* directory, const char*, UINT, char* name) -> UINT {
                const bool is_first = std::strstr(directory, "pickup") && draws_left-- > 0;
                for (UINT number = 1;; ++number) {
                    std::strcpy(name, (directory + ("\\n" + std::to_string(number))).c_str());
                    const util::FileHandle file(
                        CreateFileA(name, GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
                    if (file || is_first) return number;
                    if (GetLastError() != ERROR_FILE_EXISTS) return 0;
                }
            });
    }
    // A directory without a name is the current one.
    void allow_empty_directory() {
        name_patch.emplace("GetTempFileNameA", [](const char* directory, const char* prefix,
                                                  UINT number, char* name) {
            return GetTempFileNameA(*directory ? directory : ".", prefix, number, name);
        });
    }
    // Other senders take the name just before each of the next moves.
    void add_faster_senders(int count) {
        faster_senders = count;
        patch.emplace("rename", [this](const char* from, const char* to) {
            if (faster_senders-- > 0) {
                const std::string placeholder(to, std::strlen(to) - 1);
                EXPECT_FALSE(std::filesystem::exists(placeholder)) << "goes before the move";
                CloseHandle(CreateFileA(to, GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
            }
            return std::rename(from, to);
        });
    }

    // The second use of a function of the runtime returns this, with this errno.
    void fail_second(const std::string& function, bool is_done, int result, int code) {
        using Word = std::intptr_t;
        uses = 0;
        patch.emplace(function.c_str(), [=](Word a, Word b, Word c) -> Word {
            const bool fails = ++uses == 2;
            const auto real = patch->original<Word(Word, Word, Word)>();
            const Word real_result = fails && !is_done ? 0 : real(a, b, c);
            if (fails) errno = code;
            return fails ? result : real_result;
        });
    }
    // The platform needs more room for the path. The buffer means nothing then.
    void need_room_for_temp_path() {
        patch.emplace("GetTempPathA", [](DWORD, char* buffer) {
            std::strcpy(buffer, "C:\\");
            return DWORD{256};
        });
    }

    // How MailRunning() opens the manager and the service.
    static Words running_asks() {
        Words words;
        const ImportPatch open_manager(
            "OpenSCManagerA", [&](const char* machine, const char* database, DWORD access) {
                say(words, said(machine, database, hex(access)));
                return OpenSCManagerA(machine, database, access);
            });
        const ImportPatch open_service("OpenServiceA",
                                       [&](SC_HANDLE manager, const char* name, DWORD access) {
                                           say(words, said(name, hex(access)));
                                           return OpenServiceA(manager, name, access);
                                       });
        return said(MailRunning(), words);
    }

    std::optional<ImportPatch> name_patch, patch;
    int uses = 0, draws_left = 0, faster_senders = 0;
};

const Cases<World> cases(
    "mail/email.cases",
    {
        call("make", [](World& w, const String& from, const String& to, const String& subject,
                        const String& body) { w.mail = email(from, to, subject, body); }),
        call("update",
             [](World& w, const String& text) {
                 w.mail.updateFrom(text);
                 w.mail.updateTo(text);
                 w.mail.updateSubject(text);
                 w.mail.updateBody(text);
             }),
        call("update_to", [](World& w, const String& text) { w.mail.updateTo(text); }),
        call("fields",
             [](World& w) {
                 return said(w.mail.getFrom(), w.mail.getTo(), w.mail.getSubject(),
                             w.mail.getBody());
             }),
        call("ready", [](World& w) { return said(w.mail.isReady(), w.mail.isNull()); }),
        call("send", [](World& w) { return w.sent(w.mail.send()); }),
        call("send_to", [](World& w, const std::string& to) { return w.sent(w.send_to(to)); }),
        call("copied_errors",
             [](World& w) {
                 email assigned;
                 assigned = w.mail;
                 return said(email(w.mail).GetLastErrorMessage(), assigned.GetLastErrorMessage());
             }),
        call("list", &World::list),
        call("directory", [](World& w, const std::string& name) { w.scratch.directory(name); }),
        call("file", [](World& w, const std::string& name,
                        const std::string& content) { w.scratch.file(name, content); }),
        call("remove",
             [](World& w, const std::string& name) {
                 std::filesystem::remove(to_wide(w.scratch / name));
             }),
        call("go_to", [](const char* path) { SetCurrentDirectoryA(path); }),
        call("deep", &World::deep),
        call("temp",
             [](const std::string& path) {
                 SetEnvironmentVariableW(L"TMP", to_wide(path).c_str());
             }),
        call("set", &World::set),
        call("unset", &World::unset),
        call("installed", MailInstalled),
        call("installed_as", &World::installed_as),
        call("installed_if_allowed",
             [](DWORD access) {
                 const AccessLimit limit(web_key, access);
                 return MailInstalled();
             }),
        call("running", MailRunning),
        call("running_asks", &World::running_asks),
        call("start", [](World& w) { w.service->start(); }),
        call("pause", [](World& w) { w.service->pause(); }),
        call("stop", [](World& w) { w.service->stop(); }),
        call("uninstall", [](World& w) { w.service.reset(); }),
        call("install", [](World& w) { w.service = std::make_unique<MailService>(); }),
        call("oem_names", SetFileApisToOEM),
        call("ansi_names", SetFileApisToANSI),
        call("places", &World::places),
        call("number_names", &World::number_names),
        call("allow_empty_directory", &World::allow_empty_directory),
        call("add_faster_senders", &World::add_faster_senders),
        call("fail_second", &World::fail_second),
        call("need_room_for_temp_path", &World::need_room_for_temp_path),
    });

}  // namespace
