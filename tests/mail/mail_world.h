// What the tests that drop messages share.
#ifndef UTIL_TESTS_MAIL_MAIL_WORLD_H
#define UTIL_TESTS_MAIL_MAIL_WORLD_H

#include "mail/mail_child.h"
#include "support/cases.h"
#include "support/environment_change.h"
#include "support/handle_count.h"
#include "support/private_registry.h"
#include "support/scratch_directory.h"
#include "support/second_process.h"
#include "util/mail/mail.h"

namespace util_test {

const std::string server_key = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
const std::string exchange_key = "SOFTWARE\\Microsoft\\Exchange\\Setup";
const std::string web_key = "SOFTWARE\\Microsoft\\InetStp";
const std::string mime =
    "MIME-Version: 1.0\r\nContent-type: text/plain; charset= utf-8\r\n"
    "Content-Transfer-Encoding: quoted-printable";

// The message to a recipient, from "f" and with the subject "s".
inline std::string message(const std::string& recipient, const std::string& body) {
    return "From: f\r\nTo: " + recipient + "\r\n" + mime + "\r\nSubject: s\r\n" + body;
}

// A machine with the mail service installed and running, and directories of the test's own for
// messages and for temporary files.
struct MailWorld : CaseWorld {
    MailWorld() {
        if (!service) {
            service = std::make_unique<MailService>();
            const Signal signal("util-test");
            email().send_mail("", ";", "", "");  // the platform keeps handles from first use on
        }
        service->start();
        registry.set_text(web_key, "InstallPath", "C:\\inetsrv");
        registry.set_text(server_key, "EmailPickupDir", pickup);
        handles = handle_count();
    }
    ~MailWorld() override { EXPECT_LE(handle_count(), handles); }

    int send_to(const std::string& to) { return mail.send_mail("f", to, "s", "b"); }

    // Names and contents. The content of a message that send_to() sends is shown as its recipient.
    std::multimap<std::string, std::string> files(const std::string& directory) const {
        static const std::string begin = message("", "").substr(0, 13);
        static const std::string end = message("", "b").substr(13);
        std::multimap<std::string, std::string> result;
        for (const auto& entry :
             std::filesystem::directory_iterator(to_wide(scratch / directory))) {
            const std::string name = entry.path().filename().u8string();
            std::string content = scratch.read(directory + "\\" + name);
            const std::size_t at = content.find(end, begin.size());
            if (content.rfind(begin, 0) == 0 && at == content.size() - end.size())
                content = content.substr(begin.size(), at - begin.size());
            result.emplace(name, content);
        }
        return result;
    }
    void empty(const std::string& directory) const {
        for (const auto& entry : std::filesystem::directory_iterator(to_wide(scratch / directory)))
            std::filesystem::remove(entry.path());
    }

    static inline std::unique_ptr<MailService> service;

    const ScratchDirectory scratch;
    const std::string temp = scratch.directory("temp");
    const std::string pickup = scratch.directory("pickup");
    EnvironmentChange temp_change{L"TMP", to_wide(temp).c_str()};
    PrivateRegistry registry;
    email mail;
    long handles;  // no more at the end; the runtime may close some of its own meanwhile
};

}  // namespace util_test

#endif
