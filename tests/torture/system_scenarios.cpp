#include "support/environment_change.h"
#include "support/loopback.h"
#include "support/private_registry.h"
#include "torture/scenario.h"
#include "util/mail/mail.h"
#include "util/poll/poll.h"

using util_test::PrivateRegistry;

namespace torture {
namespace {

const std::string server_key = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
const std::string web_key = "SOFTWARE\\Microsoft\\InetStp";
const std::string mail_rest =
    "\r\nMIME-Version: 1.0\r\nContent-type: text/plain; charset= utf-8\r\n"
    "Content-Transfer-Encoding: quoted-printable\r\nSubject: subject\r\n";
const String text("a text longer than any short string holds");

struct MailServer {
    MailServer() { PrivateRegistry::set_text(web_key, "InstallPath", "C:\\inetsrv"); }
    const PrivateRegistry registry;
};

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
    const MailServer server;
    PrivateRegistry::set_text(is_registered ? server_key : web_key,
                              is_registered ? "EmailPickupDir" : "PathWWWRoot",
                              run.scratch / (is_registered ? pickup : "wwwroot"));
    run.scratch.directory(pickup);
    email mail("from", "a; ;b", "subject", text);
    const int result = run.call(memory, [&] { return mail.send(); });

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
            CloseHandle(GetStdHandle(STD_INPUT_HANDLE));  // every wait for it fails from here on
            connection.send_byte();
            poll.run(0);
            poll.remove(idle.fd());
            poll.remove(12345);
            poll.remove(0);
        });
        run.outcome(reader.served == 3, reader.served < 3);
        // After an exception, standard input may still be open.
        DWORD flags;
        const HANDLE input = GetStdHandle(STD_INPUT_HANDLE);
        if (GetHandleInformation(input, &flags)) CloseHandle(input);
    });
    scenario(
        "email::send", [](Run& run) { send_two(run, true); }, true);
    scenario(
        "email::send, by the web server", [](Run& run) { send_two(run, false); }, true);
    scenario("MailInstalled, MailRunning", [](Run& run) {
        const MailServer server;
        bool is_installed = false, is_running = false;
        run.completes(memory, [&] {
            is_installed = MailInstalled();
            is_running = MailRunning();
        });
        // A fault concerns one of the two.
        run.outcome(is_installed && is_running, run.raised() || is_installed != is_running);
        for (const char* name : {"OpenSCManagerA", "OpenServiceA", "QueryServiceStatus"})
            run.always(!is_running || !Run::failing(name), "running");
    });
}

}  // namespace torture
