// What the tests that drop messages share.
#ifndef UTIL_TESTS_MAIL_MAIL_TEST_H
#define UTIL_TESTS_MAIL_MAIL_TEST_H

#include "mail/mail_child.h"
#include "support/environment_change.h"
#include "support/handle_count.h"
#include "support/private_registry.h"
#include "support/scratch_directory.h"
#include "support/test.h"
#include "util/mail/mail.h"

namespace util_test {

const std::string server_key = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
const std::string exchange_key = "SOFTWARE\\Microsoft\\Exchange\\Setup";
const std::string web_key = "SOFTWARE\\Microsoft\\InetStp";

inline std::string message(const std::string& from, const std::string& recipient,
                           const std::string& subject, const std::string& body) {
    return "From: " + from + "\r\nTo: " + recipient +
           "\r\nMIME-Version: 1.0\r\nContent-type: text/plain; charset= utf-8\r\n"
           "Content-Transfer-Encoding: quoted-printable\r\nSubject: " +
           subject + "\r\n" + body;
}

// A machine with the mail service installed and running, a pickup directory and a directory for
// temporary files of the test's own.
class MailTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        service = std::make_unique<MailService>();
        service->start();
        email().send_mail("", ";", "", "");  // the platform keeps some handles from first use on
    }
    static void TearDownTestSuite() { service.reset(); }

    MailTest() {
        registry.set_text(web_key, "InstallPath", "C:\\inetsrv");
        registry.set_text(server_key, "EmailPickupDir", pickup);
    }
    ~MailTest() override { EXPECT_TRUE(handles == -1 || handle_count() == handles); }

    // Names and contents.
    std::map<std::string, std::string> files(const std::string& directory) {
        std::map<std::string, std::string> result;
        for (const auto& entry :
             std::filesystem::directory_iterator(to_wide(scratch / directory))) {
            const std::string name = entry.path().filename().u8string();
            result[name] = scratch.read(directory + "\\" + name);
        }
        return result;
    }
    std::multiset<std::string> contents(const std::string& directory) {
        std::multiset<std::string> result;
        for (const auto& [name, content] : files(directory))
            result.insert(content);
        return result;
    }
    void empty(const std::string& directory) {
        for (const auto& entry : std::filesystem::directory_iterator(to_wide(scratch / directory)))
            std::filesystem::remove(entry.path());
    }

    static std::unique_ptr<MailService> service;

    ScratchDirectory scratch;
    const std::string temp = scratch.directory("temp");
    const std::string pickup = scratch.directory("pickup");
    EnvironmentChange temp_change{L"TMP", to_wide(temp).c_str()};
    PrivateRegistry registry;
    email mail;
    long handles = handle_count();  // that the test must end with; -1: any number
};

inline std::unique_ptr<MailService> MailTest::service;

}  // namespace util_test

#endif
