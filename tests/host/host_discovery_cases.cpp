#include "util/host/host_discovery.h"

#include <io.h>

#include <new>

#include "support/built_file.h"
#include "support/cases.h"
#include "support/environment_change.h"
#include "support/import_patch.h"
#include "support/private_registry.h"
#include "support/scratch_directory.h"

using namespace util_test;

namespace {

const std::string server_key = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
const std::string computer_key = "System\\CurrentControlSet\\Services\\Tcpip\\Parameters";
const char create_value[] =
    "create a String value in the registry key HKLM\\SOFTWARE\\Vorn\\Vorn Quillmark "
    "Tessaron\\Server called ComputerDomainName and specify the correct domain name";

// A private registry, a tool that answers, and a directory $d for the work files.
struct World : CaseWorld {
    World() {
        values = {{"d", scratch.path()},
                  {"path", std::getenv("PATH")},
                  {"nodomain",
                   std::string("Tessaron is unable to determine the correct DNS domain to query in "
                               "order to gather a valid list of hosts.\nResolution:\n If you know "
                               "the domain name this computer should query for a list of hosts, ") +
                       create_value},
                  // before and after the domain
                  {"asked",
                   "No valid 'A' host entries were returned while executing the following nslookup "
                   "command:\nls -t A"},
                  {"hint",
                   std::string("\n\nResolution:\n If the domain name used in the nslookup query is "
                               "not correct, and you know the domain name this computer should "
                               "query for a list of hosts, ") +
                       create_value + "."}};
        PrivateRegistry::set_text(server_key, "ComputerDomainName", "Example.Test");
        scratch.file("answer", "host1 A 10.0.0.5\r\n");
        environment.set("NSLOOKUP_ANSWER", scratch / "answer");
        environment.set("PATH", built_file("nslookup-tool;") + values["path"]);
    }

    void configure(const std::string& name, const std::string& type, const std::string& bytes) {
        PrivateRegistry::clear();
        if (name != "$null")
            PrivateRegistry::set_wide(computer_key, L"Domain", to_wide(name) + L'\0');
        if (bytes != "$null") {
            PrivateRegistry::set(server_key, "ComputerDomainName", PrivateRegistry::type_of(type),
                                 bytes);
        }
        readers.emplace(server_key, KEY_READ);  // who reads needs no more
    }
    // The result, the hosts appended, and the message if there is one.
    static Words hosts_in(const String& directory) {
        std::list<String> hosts = {"there before"};
        String message = "untouched";
        Words words = said(UTIL_EnumHostsOnANetwork(hosts, directory, message));
        EXPECT_EQ(hosts.front(), "there before");
        hosts.pop_front();
        for (const String& host : hosts)
            say(words, host);
        if (message != "untouched") say(words, message);
        return words;
    }
    Words hosts_with_room(std::size_t refused) const {
        const ImportPatch one("_Znwy", [=](std::size_t size) {
            return size >= refused ? throw std::bad_alloc() : ::operator new(size);
        });
        const ImportPatch many("_Znay", [=](std::size_t size) {
            return size >= refused ? throw std::bad_alloc() : ::operator new[](size);
        });
        return hosts_in(scratch.path());
    }

    const PrivateRegistry registry;
    std::optional<AccessLimit> readers;
    const ScratchDirectory scratch;
    Environment environment;
    const ImportPatch open{
        "_wopen", [](const wchar_t* file, int flags, int mode) {
            const int descriptor = _wopen(file, flags, mode);
            DWORD kept = 0;
            GetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(descriptor)), &kept);
            EXPECT_FALSE(kept & HANDLE_FLAG_INHERIT) << "another thread's child would inherit it";
            return descriptor;
        }};
    std::optional<ImportPatch> patch;
};

const char hosts_failure[] =
    "0 {h*40} | 0 \"\" | 0 \"$asked... | -1 | -1 \"\" | -1 $nodomain | -1 \"Unable to ...";

const Cases<World> cases(
    "host/host_discovery.cases",
    {
        call("answer", [](World& w, const std::string& text) { w.scratch.file("answer", text); }),
        call("configure", &World::configure),
        call("directory", [](World& w, const std::string& name) { w.scratch.directory(name); }),
        call("file", [](World& w, const std::string& name,
                        const std::string& bytes) { w.scratch.file(name, bytes); }),
        call("go_to", [](const char* directory) { SetCurrentDirectoryA(directory); }),
        call("set", [](World& w, const std::string& name,
                       const std::string& value) { w.environment.set(name, value); }),
        call("content", [](World& w, const std::string& name) { return w.scratch.read(name); }),
        call("exists",
             [](const char* file) { return GetFileAttributesA(file) != INVALID_FILE_ATTRIBUTES; }),
        call("remove", [](const char* file) { return std::remove(file); }),
        call("out_of_memory_in",
             [](World& w, const char* name) { w.patch.emplace(name, fails<-1, 0, ENOMEM>); }),
        call("hosts", hosts_failure, [](World& w) { return w.hosts_in(w.scratch.path()); }),
        call("hosts_in", hosts_failure, World::hosts_in),
        call("hosts_with_room", &World::hosts_with_room),
    });

}  // namespace
