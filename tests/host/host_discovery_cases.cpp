#include "util/host/host_discovery.h"

#include <io.h>

#include <new>

#include "support/built_file.h"
#include "support/cases.h"
#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/private_registry.h"
#include "support/scratch_directory.h"

using util_test::call;
using util_test::ImportPatch;
using util_test::said;
using util_test::Words;

namespace {

const std::string server_key = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
const std::string computer_key = "System\\CurrentControlSet\\Services\\Tcpip\\Parameters";

const std::string no_domain =
    "Tessaron is unable to determine the correct DNS domain to query in order to gather a valid "
    "list of hosts.\nResolution:\n If you know the domain name this computer should query for a "
    "list of hosts, create a String value in the registry key HKLM\\SOFTWARE\\Vorn\\Vorn Quillmark "
    "Tessaron\\Server called ComputerDomainName and specify the correct domain name";
// Before and after the domain.
const std::string no_hosts[] = {
    "No valid 'A' host entries were returned while executing the following nslookup "
    "command:\nls -t A ",
    "\n\nResolution:\n If the domain name used in the nslookup query is not correct, and "
    "you know the domain name this computer should query for a list of hosts, create a "
    "String value in the registry key HKLM\\SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server "
    "called ComputerDomainName and specify the correct domain name."};

// A private registry, a tool that answers, and a directory $d for the work files.
struct World : util_test::CaseWorld {
    World() {
        values["d"] = scratch.path();
        values["nodomain"] = no_domain;
        registry.set_text(server_key, "ComputerDomainName", "Example.Test");
        set_path(util_test::built_file("nslookup-tool;") + path);
        answer("host1 A 10.0.0.5\r\n");
    }
    ~World() override {
        set_path(path);
        _putenv(("ComSpec=" + processor).c_str());
    }

    static void set_path(const std::string& list) { _putenv(("PATH=" + list).c_str()); }
    void answer(const std::string& text) const {
        _putenv(("NSLOOKUP_ANSWER=" + scratch.file("answer", text)).c_str());
    }
    void configure(const std::string& name, const std::string& type, const std::string& bytes) {
        registry.clear();
        if (name != "$null") {
            const std::wstring wide = util_test::to_wide(name) + L'\0';
            registry.set_wide(computer_key, L"Domain", wide);
        }
        const DWORD number = type == "text" ? REG_SZ : type == "expand" ? REG_EXPAND_SZ : REG_DWORD;
        if (bytes != "$null") registry.set(server_key, "ComputerDomainName", number, bytes);
        readers.emplace(server_key, KEY_READ);  // who reads needs no more
    }
    // The result and the hosts appended, or the message. Of no hosts, the domain.
    Words hosts_in(const std::string& directory) const {
        std::list<String> hosts = {"there before"};
        String message = "untouched";
        const int result = UTIL_EnumHostsOnANetwork(hosts, directory, message);
        EXPECT_EQ(hosts.front(), "there before");
        Words words = said(result);
        for (auto host = ++hosts.begin(); host != hosts.end(); ++host)
            words.push_back(host->str());
        std::string text = message.str();
        if (text == "untouched") return words;
        if (text.rfind(no_hosts[0], 0) == 0) {
            text.erase(0, no_hosts[0].size());
            const std::size_t end = text.find(no_hosts[1]);
            return said(words, "no hosts of", text.erase(std::min(end, text.size())));
        }
        return said(words, text);
    }
    long handles_kept(const std::string& directory) const {
        hosts_in(directory);
        const long handles = util_test::handle_count();
        hosts_in(directory);
        return util_test::handle_count() - handles;
    }
    Words hosts_with_room(std::size_t refused) const {
        const ImportPatch one("_Znwy", [=](std::size_t size) {
            return size >= refused ? throw std::bad_alloc() : ::operator new(size);
        });
        const ImportPatch many("_Znay", [=](std::size_t size) {
            return size >= refused ? throw std::bad_alloc() : ::operator new[](size);
        });
        return hosts_in("w");
    }

    const std::string path = std::getenv("PATH"), processor = std::getenv("ComSpec");
    util_test::PrivateRegistry registry;
    std::optional<util_test::AccessLimit> readers;
    const util_test::ScratchDirectory scratch;
    const ImportPatch open{
        "_wopen", [](const wchar_t* file, int flags, int mode) {
            const int descriptor = _wopen(file, flags, mode);
            DWORD kept = 0;
            GetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(descriptor)), &kept);
            EXPECT_FALSE(kept & HANDLE_FLAG_INHERIT) << "another thread's child would inherit it";
            return descriptor;
        }};
};

const util_test::Cases<World> cases(
    "host/host_discovery.cases",
    {
        call("answer", &World::answer),
        call("configure", &World::configure),
        call("directory", [](World& w, const std::string& name) { w.scratch.directory(name); }),
        call("file", [](World& w, const std::string& name,
                        const std::string& bytes) { w.scratch.file(name, bytes); }),
        call("go_to", [](const char* directory) { SetCurrentDirectoryA(directory); }),
        call("set_variable",
             [](const char* name, const char* value) { SetEnvironmentVariableA(name, value); }),
        call("without_tool", [](World& w) { w.set_path(w.path); }),
        call("without_processor", [] { _putenv("ComSpec=C:\\missing.exe"); }),
        call("content", [](World& w, const std::string& name) { return w.scratch.read(name); }),
        call("exists",
             [](const char* file) { return GetFileAttributesA(file) != INVALID_FILE_ATTRIBUTES; }),
        call("remove", [](const char* file) { return std::remove(file); }),
        call("hosts", [](World& w) { return w.hosts_in(w.scratch.path()); }),
        call("hosts_in", &World::hosts_in),
        call("handles_kept", &World::handles_kept),
        call("hosts_with_room", &World::hosts_with_room),
    });

}  // namespace
