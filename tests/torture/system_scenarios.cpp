#include <initializer_list>
#include <list>

#include "support/built_file.h"
#include "support/environment_change.h"
#include "support/loopback.h"
#include "torture/scenario.h"
#include "torture/stand_ins.h"
#include "util/host/host.h"
#include "util/mail/mail.h"
#include "util/poll/poll.h"

namespace torture {
namespace {

const std::string server_key = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
const std::string computer_key = "System\\CurrentControlSet\\Services\\Tcpip\\Parameters";
const std::string web_key = "SOFTWARE\\Microsoft\\InetStp";
const std::string database_key = "SOFTWARE\\Torture\\Db";
const std::string volume_key = "SOFTWARE\\VERITAS\\Volume Manager 4.1";
const std::string mail_rest =
    "\r\nMIME-Version: 1.0\r\nContent-type: text/plain; charset= utf-8\r\n"
    "Content-Transfer-Encoding: quoted-printable\r\nSubject: subject\r\n";
const String text("a text longer than any short string holds");

// The contents of a directory's message files; placeholders are empty ones.
std::multiset<std::string> messages_in(const Run& run, const std::string& directory) {
    std::multiset<std::string> contents;
    WIN32_FIND_DATAA found;
    const HANDLE search = FindFirstFileA((run.scratch / directory + "\\tsr*").c_str(), &found);
    for (BOOL more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileA(search, &found))
        contents.insert(run.scratch.read(directory + "\\" + found.cFileName));
    FindClose(search);
    return contents;
}

void send_two(Run& run, bool is_registered) {
    const std::string temp = run.scratch.directory("temp");
    const std::string pickup = is_registered ? "pickup" : "mailroot\\Pickup";
    const util_test::EnvironmentChange change(L"TMP", util_test::to_wide(temp).c_str());
    registry().set_text(web_key, "InstallPath", "C:\\inetsrv");
    registry().set_text(is_registered ? server_key : web_key,
                        is_registered ? "EmailPickupDir" : "PathWWWRoot",
                        is_registered ? run.scratch / pickup : run.scratch / "wwwroot");
    run.scratch.directory(pickup);
    email mail("from", "a; ;b", "subject", text);
    const int result = run.call(memory, [&] { return mail.send(); });
    registry().remove_value(server_key, "EmailPickupDir");
    registry().remove_value(web_key, "PathWWWRoot");

    const std::multiset<std::string> dropped = messages_in(run, pickup);
    std::multiset<std::string> whole;
    for (const char* to : {"a", "b"})
        whole.insert("From: from\r\nTo: " + std::string(to) + mail_rest + text.str());
    run.outcome(
        !run.raised() && result == 0 && dropped == whole && messages_in(run, "temp").empty(),
        run.raised() || result == -1 || !dropped.empty());
    const bool can_delete = !Run::failing("DeleteFileA");
    for (const std::string& message : dropped)
        run.always(whole.count(message) || (message.empty() && !can_delete), "what was dropped");
}

// A formatter that rejects its format leaves nothing to say.
bool names_the_call(const char* message) {
    return std::strstr(message, " failed (error code = ") || Run::failing("_vsnprintf_s_l");
}

struct Reader : Poll::Callback {
    explicit Reader(const util_test::Connection& from) : connection(from) {}
    void ready(int fd, int) override {
        if (fd != 0) connection.read();
        ++served;
    }
    const util_test::Connection& connection;
    int served = 0;
};

}  // namespace

void system_scenarios(const Add& scenario) {
    scenario("Poll", [](Run& run) {
        const util_test::Connection connection, idle;
        connection.send_byte();
        SetStdHandle(STD_INPUT_HANDLE, CreateEventA(nullptr, FALSE, TRUE, nullptr));
        Reader reader(connection);
        run.completes(memory, [&] {
            Poll poll;
            poll.append(0, &reader);
            poll.append(connection.fd(), &reader);
            poll.append(idle.fd(), &reader);
            poll.append(idle.fd(), nullptr);
            poll.SetBlockingMode(idle.fd());
            poll.SetBlockingMode(12345);
            poll.SetNonBlockingMode(idle.fd());
            poll.run(0);
            poll.remove(idle.fd());
            poll.remove(12345);
            poll.remove(0);
        });
        run.outcome(reader.served == 2, reader.served < 2);
        // Where the poller never took the standard input over, it is still to be closed.
        DWORD flags;
        const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
        if (GetHandleInformation(input, &flags)) CloseHandle(input);
    });
    scenario("email", [](Run& run) {
        bool right = false;
        run.completes(memory, [&] {
            email mail, other("f", "t", "s", "b"), copy(other);
            mail = other;
            mail.updateFrom(text), mail.updateTo(text), mail.updateSubject(text);
            mail.updateBody(text);
            right = mail.isReady() && !mail.isNull() && mail.getTo() == "t;" + text &&
                    mail.getFrom() == "f;" + text && mail.getSubject() == "s " + text &&
                    mail.getBody() == "b\r\n" + text && mail.GetLastErrorMessage().empty();
        });
        run.outcome(right, run.raised());
    });
    scenario(
        "email::send", [](Run& run) { send_two(run, true); }, true);
    scenario(
        "email::send, by the web server", [](Run& run) { send_two(run, false); }, true);
    scenario("email::send_mail to nobody", [](Run& run) {
        const String nobody, blank(" ;");
        registry().set_text(web_key, "InstallPath", "C:\\inetsrv");
        email mail;
        int result = run.call(memory, [&] { return mail.send_mail(text, nobody, text, text); });
        run.outcome(result == 0 && !mail.GetLastErrorMessage().empty(), run.raised());
        result = run.call(memory, [&] { return mail.send_mail(text, blank, text, text); });
        run.outcome(!run.raised() && result == 0, run.raised() || result == -1);
    });
    scenario("MailInstalled, MailRunning", [](Run& run) {
        registry().set_text(web_key, "InstallPath", "C:\\inetsrv");
        bool results[2] = {};
        run.completes(memory, [&] {
            results[0] = MailInstalled();
            results[1] = MailRunning();
        });
        if (run.raised()) return;
        const auto one_fails = [](std::initializer_list<const char*> functions) {
            return Run::faulted() && std::any_of(functions.begin(), functions.end(),
                                                 [](const char* f) { return Run::failing(f); });
        };
        run.always(
            results[0] == !one_fails({"RegOpenKeyExA", "RegQueryValueExA", "WideCharToMultiByte"}),
            "installed");
        run.always(
            results[1] == !one_fails({"OpenSCManagerA", "OpenServiceA", "QueryServiceStatus"}),
            "running");
    });
    const struct {
        const char* name;
        DWORD connect, disconnect;
        const char* message;
    } shares[] = {
        {"UTIL_ConnectCifsShare", 0, 0, ""},
        {"UTIL_ConnectCifsShare, conflict", ERROR_SESSION_CREDENTIAL_CONFLICT, ERROR_NOT_CONNECTED,
         "WNetAddConnection2 failed (error code = 1219) \n Earlier attempt(s):"
         "WNetAddConnection2 failed (error code = 1219)\n"
         "WNetCancelConnection2 failed (error code = 2250)"},
        {"UTIL_ConnectCifsShare, provider", ERROR_EXTENDED_ERROR, 0,
         "WNetAddConnection2 failed (error code = 42). caf\xC3\xA9 \n "},
    };
    for (const auto& c : shares) {
        scenario(
            c.name,
            [c](Run& run) {
                stand_ins.connect = c.connect;
                stand_ins.disconnect = c.disconnect;
                char said[4096] = "";
                const int got = run.call(nothing, [&] {
                    return UTIL_ConnectCifsShare("\\\\srv\\share", "user", "secret", said);
                });
                run.outcome(got == (c.connect ? -1 : 0) && !std::strcmp(said, c.message),
                            (got == -1 && names_the_call(said)) || (got == 0 && !*said));
            },
            true);
    }
    scenario("UTIL_DisconnectCifsShare", [](Run& run) {
        char said[4096] = "";
        const int got =
            run.call(nothing, [&] { return UTIL_DisconnectCifsShare("\\\\srv\\share", said); });
        run.outcome(got == 0 && !*said, got == -1 && names_the_call(said));
    });
    scenario("UTIL_IsClustered, UTIL_IsCluster", [](Run& run) {
        const String name("IISADMIN");
        bool results[2] = {};
        run.call(nothing, [&] {
            results[0] = UTIL_IsClustered(name);
            results[1] = UTIL_IsCluster() || UTIL_IsClustered(text);
        });
        run.outcome(results[0] && !results[1], !results[0]);
    });
    scenario("UTIL_getTSSEDBInfoFromRegistry", [](Run& run) {
        registry().set_text(database_key, "Database Path", "\\\\srv\\share\\a\\long\\path\\to.db");
        registry().set_text(database_key, "DatabaseUsername", text.str());
        registry().set_text(database_key, "DatabasePassword", text.str());
        const String key(database_key);
        String path("p"), user("u"), password("w");
        // The key is taken by value, so the caller's copy may be what finds no memory.
        const bool result = run.call(
            memory, [&] { return UTIL_getTSSEDBInfoFromRegistry(key, path, user, password); });
        run.outcome(result && user == text && password == text,
                    !result && user == "u" && password == "w");
        run.keeps(kernel_handles, path.empty());  // the key, when the path cannot be converted
    });
    scenario("UTIL_SetupPnPRescan", [](Run& run) {
        String message;
        SetLastError(77);
        const int result = run.call(nothing, [&] { return UTIL_SetupPnPRescan(message); });
        run.outcome(result == 0 && message.empty(), result == -1);
    });
    scenario("UTIL_FormatMessage", [](Run& run) {
        String out("before");
        const DWORD code = run.call(nothing, [&] {
            SetLastError(ERROR_FILENAME_EXCED_RANGE);
            UTIL_FormatMessage(out);
            return GetLastError();
        });
        run.outcome(!out.empty() && out != "before", out.empty());
        run.always(code == ERROR_FILENAME_EXCED_RANGE, "the last error");
    });
    for (const bool configured : {true, false}) {
        scenario(
            configured ? "UTIL_EnumHostsOnANetwork"
                       : "UTIL_EnumHostsOnANetwork, the computer's domain",
            [configured](Run& run) {
                registry().set_text(computer_key, "Domain", "example.test");
                if (configured)
                    registry().set_text(server_key, "ComputerDomainName", "example.test");
                const String directory(run.scratch.directory("50%"));
                std::list<String> hosts;
                String message;
                const int result = run.call(
                    nothing, [&] { return UTIL_EnumHostsOnANetwork(hosts, directory, message); });
                registry().remove_value(server_key, "ComputerDomainName");
                const bool no_domain = result == -1 && hosts.empty();
                // Without memory it is not for the lack of hosts that there are none.
                const bool no_hosts = result == 0 && !message.empty();
                run.outcome((result == 0 && hosts.size() == 2 && message.empty()) ||
                                (!configured && no_domain),
                            (result == 0 && !hosts.empty()) || no_domain ||
                                (no_hosts && !Run::failing("memory")));
            },
            true);
    }
    scenario("UTIL_GetModuleVersion", [](Run& run) {
        const std::string module = util_test::built_file("stamped.dll");
        char out[30] = "before";
        const char* const result =
            run.call(nothing, [&] { return UTIL_GetModuleVersion(module.c_str(), out); });
        run.keeps_unless_failed(heap_blocks, 1);  // the version resource
        run.outcome(result == out && !std::strcmp(out, "1.2.3.196608"),
                    result && result != out && !*result && !*out);
    });
    scenario("UTIL_GetOsVersion and its like", [](Run& run) {
        unsigned long major = 0;
        int results[5] = {};
        bool transportable = false;
        String name;
        run.call(nothing, [&] {
            results[0] = UTIL_GetOsVersion(&major, nullptr, nullptr, nullptr, nullptr, nullptr);
            results[1] = UTIL_IsOSVersionAtLeast(5, 0);
            results[2] = UTIL_IsOSVersionEqualTo(1, 1, 1, 1, 1, 1);
            results[3] = UTIL_IsEnterpriseEdition();
            results[4] = UTIL_IsWin2k3SP_1_Or_Later();
            transportable = UTIL_IsVSSTransportableSupported();
            results[0] += UTIL_getPlatform(name);
        });
        run.outcome(results[0] == 0 && major >= 5, results[0] == -1 && major == 0);
        run.outcome(results[1] == 1 && results[2] == 0, results[1] == -1 || results[2] == -1);
        run.outcome(results[3] >= 0 && results[4] >= 0, results[3] == -1 || results[4] == -1);
        run.outcome(name == "Windows", name.empty());
    });
    scenario("UTIL_GetOsVersion, R2", [](Run& run) {
        stand_ins.is_old = true;
        unsigned short r2 = 2;
        const int result = run.call(nothing, [&] {
            return UTIL_GetOsVersion(nullptr, nullptr, nullptr, nullptr, nullptr, &r2);
        });
        run.outcome(result == 0 && r2 <= 1, result == -1 && r2 == 2);
    });
    scenario("UTIL_ModifyPrivilege", [](Run& run) {
        const unsigned long result =
            run.call(nothing, [] { return UTIL_ModifyPrivilege("SeBackupPrivilege", 1); });
        run.keeps(kernel_handles, Run::failing("AdjustTokenPrivileges"));  // the token
        run.outcome(result == 0, result != 0);
    });
    scenario("UTIL_GetRegistryValue", [](Run& run) {
        registry().set_text(volume_key, "InstallDir", text.str());
        const String key(volume_key), name("InstallDir");
        String out("untouched");
        const int result = run.call(nothing, [&] { return UTIL_GetRegistryValue(key, name, out); });
        run.keeps_unless_failed(heap_blocks, 1);  // 1024 bytes
        run.outcome(result == 0 && out == text, result == -1 && out == "untouched");
    });
    scenario("UTIL_GetVeritasVersion, UTIL_GetVeritasPath", [](Run& run) {
        registry().set_text(volume_key, "InstallDir", text.str());
        char version[4] = "";
        const bool found = run.call(nothing, [&] { return UTIL_GetVeritasVersion(version); });
        run.outcome(found && !std::strcmp(version, "4.1"), !found && !*version);
        String path("untouched"), message;
        const bool result = run.call(nothing, [&] { return UTIL_GetVeritasPath(path, message); });
        run.outcome(result && path == text && message.empty(), !result && path == "untouched");
    });
    scenario("UTIL_GetHalcVexsnapFileName", [](Run& run) {
        const String tool(run.scratch.file("vexsnap.exe"));
        const util_test::EnvironmentChange path(
            L"PATH", util_test::to_wide("C:\\no_such_directory;" + run.scratch.path()).c_str());
        String out("before");
        const int result = run.call(nothing, [&] { return UTIL_GetHalcVexsnapFileName(out); });
        run.outcome(result == 0 && out == tool, result == -1 && out.empty());
    });
    scenario("UTIL_GetTempDirectory", [](Run& run) {
        const String path = run.call(nothing, [] { return UTIL_GetTempDirectory(); });
        static String usual;
        if (!Run::faulted()) usual = path;
        run.outcome(!path.empty() && path == usual,
                    path == "C:\\windows" || path == "." || path.empty());
    });
    scenario("UTIL_getIsWow64 and the redirection", [](Run& run) {
        unsigned char flag = 2;
        int results[2] = {};
        void* state = nullptr;
        const unsigned long result = run.call(nothing, [&] {
            results[0] = UTIL_VornWow64DisableWow64FsRedirection(&state);
            results[1] = UTIL_VornWow64RevertWow64FsRedirection(state);
            return UTIL_getIsWow64(&flag);
        });
        run.keeps(modules, stand_ins.switches);  // kernel32.dll
        run.outcome(result == 0 && flag == 1, result == 0 && flag == 0);
        run.outcome(results[0] == 1 && results[1] == 1,
                    Run::failing("GetProcAddress") || Run::failing("LoadLibraryA"));
    });
}

}  // namespace torture
