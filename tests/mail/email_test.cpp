#include "util/mail/email.h"

#include <io.h>

#include "mail/mail_test.h"
#include "support/import_patch.h"

using namespace std::string_literals;
using util_test::ImportPatch;
using util_test::message;

namespace {

using Texts = std::multiset<std::string>;

// --- fields -------------------------------------------------------------------------------------

std::vector<String> fields(const email& mail) {
    return {mail.getFrom(), mail.getTo(), mail.getSubject(), mail.getBody()};
}

TEST(EmailTest, TextsAreAddedOnceEachFieldWithItsSeparator) {
    const std::vector<std::pair<const char*, const char*>> steps = {
        {"", ""},
        {"bob@x", "bob@x"},
        {"", "bob@x"},
        {"al@x", "bob@x|al@x"},
        {"b@x", "bob@x|al@x"},  // anywhere in it counts
        {"Al@x", "bob@x|al@x|Al@x"},
    };
    email mail;
    for (const auto& [text, expected] : steps) {
        mail.updateFrom(text);
        mail.updateTo(text);
        mail.updateSubject(text);
        mail.updateBody(text);
        const String joined(expected);
        EXPECT_EQ(fields(mail),
                  (std::vector<String>{joined.replace("|", ";"), joined.replace("|", ";"),
                                       joined.replace("|", " "), joined.replace("|", "\r\n")}));
    }
}

TEST(EmailTest, IsReadyWithFourFieldsAndElseSendsNothing) {
    const util_test::ScratchDirectory scratch;
    util_test::PrivateRegistry registry;
    registry.set_text(util_test::server_key, "EmailPickupDir", scratch.path());
    for (int missing = 0; missing < 16; ++missing) {
        const auto field = [&](int n) { return missing & (1 << n) ? "" : "x"; };
        email mail(field(0), field(1), field(2), field(3));
        EXPECT_EQ(fields(mail), (std::vector<String>{field(0), field(1), field(2), field(3)}));
        EXPECT_EQ(mail.isReady(), missing == 0);
        EXPECT_EQ(mail.isNull(), missing != 0);
        if (missing == 0) continue;
        EXPECT_EQ(mail.send(), -1) << missing;
        EXPECT_EQ(mail.GetLastErrorMessage(), "") << missing;
    }
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}

// --- sending ------------------------------------------------------------------------------------

class SendMailTest : public util_test::MailTest {
  protected:
    // Sends to the list; also checks what the object says afterwards.
    void send(const std::string& to, int result, const std::string& error) {
        EXPECT_EQ(mail.send_mail("f", to, "s", "b"), result) << to;
        EXPECT_EQ(mail.GetLastErrorMessage(), error) << to;
    }
    Texts messages_to(const std::vector<std::string>& recipients) {
        Texts result;
        for (const auto& recipient : recipients)
            result.insert(message("f", recipient, "s", "b"));
        return result;
    }
};

TEST_F(SendMailTest, EachRecipientGetsAFileOfExactlyTheseBytes) {
    const std::string subject = "gr\xC3\xBC\xC3\x9F \xE6\x97\xA5 %s";
    const std::string body = "=3D \xF0\x9F\x98\x80\n.\r\n\r\nFrom \xFF\0x"s;
    email notice("agent@x", "", subject, body);
    notice.updateTo("a@x");
    notice.updateTo("; \t;;\r\n b c@x\t ;");
    EXPECT_EQ(notice.send(), 0);
    EXPECT_EQ(notice.GetLastErrorMessage(), "");
    EXPECT_EQ(contents("pickup"), (Texts{message("agent@x", "a@x", subject, body),
                                         message("agent@x", "b c@x", subject, body)}));
    for (const auto& [name, content] : files("pickup")) {
        EXPECT_EQ(name.substr(0, 3), "tsr");
        EXPECT_EQ(name.substr(name.size() - 5), ".tmp1");
    }
    EXPECT_EQ(contents("temp"), Texts());
}

TEST_F(SendMailTest, AListWithoutRecipientsSendsNothing) {
    send("", 0, "Invalid To: list specified; To: list= ");
    send(" ;\t;;", 0, "Invalid To: list specified; To: list= ");
    EXPECT_EQ(contents("pickup"), Texts());
}

TEST_F(SendMailTest, DirectoriesMayHaveNamesOfTheAnsiPage) {
    ASSERT_EQ(GetACP(), 1252u) << "the cases are written for this page";
    const auto send_by = [&](const char* temporary, const char* target, const char* code) {
        SetEnvironmentVariableW(L"TMP", util_test::to_wide(scratch.directory(temporary)).c_str());
        const std::wstring path = util_test::to_wide(scratch.directory(target));
        registry.set_wide(util_test::server_key, L"EmailPickupDir", path + L'\0');
        send("a", *code ? -1 : 0, code);
    };
    send_by("t\xC3\xA4", "caf\xC3\xA9", "");
    SetFileApisToOEM();
    send_by("t\xC3\xA4", "caf\xC3\xA9", "");
    SetFileApisToANSI();
    EXPECT_EQ(contents("caf\xC3\xA9"), messages_to({"a", "a"}));
    EXPECT_EQ(contents("t\xC3\xA4"), Texts());
    scratch.directory("A");  // the best fit of a fullwidth A, which the page lacks
    for (const char* temporary : {"temp", "\xEF\xBC\xA1"})
        send_by(temporary, "\xEF\xBC\xA1",
                "Win32 API GetTempFileName returned bad name, GetLastError = 267");
    EXPECT_EQ(contents("A"), Texts());
}

// --- where the messages go ----------------------------------------------------------------------

TEST_F(SendMailTest, ThePickupDirectoryIsTheFirstThatIsSet) {
    using namespace util_test;
    const std::string own = scratch / "own", web = scratch / "web", exchange = scratch / "ex";
    scratch.directory("own");
    scratch.directory("ex\\Mailroot\\vsi 1\\Pickup");
    scratch.directory("web\\wwwroot2\\mailroot\\Pickup");
    scratch.directory("web\\mailroot\\Pickup");
    const std::vector<std::string> all = {server_key, exchange_key, web_key};
    const struct {
        std::string own, exchange, web, directory;
        std::size_t keys;
    } cases[] = {
        {own, exchange, web, own, 1},
        {"", exchange, web, exchange + "\\\\Mailroot\\vsi 1\\Pickup", 2},
        {"", "", scratch / "wwwroot\\web\\wwwroot", web + "\\\\mailroot\\Pickup\\", 3},
        {"", "", web + "\\wwwroot2", web + "2\\\\mailroot\\Pickup\\", 3},
        {"", "", web + "\\WWWroot", web + "\\WWWroot\\\\mailroot\\Pickup\\", 3},
        {"", "", "", "", 3},
    };
    std::vector<std::string> keys_opened, directories_used;
    const ImportPatch open(
        "RegOpenKeyExA", [&](HKEY root, const char* path, DWORD options, REGSAM access, HKEY* key) {
            EXPECT_EQ(access, REGSAM{GENERIC_READ});
            keys_opened.push_back(path);
            return RegOpenKeyExA(root, path, options, access, key);
        });
    const ImportPatch temp_name("GetTempFileNameA", [&](const char* directory, const char* prefix,
                                                        UINT number, char* name) {
        EXPECT_EQ(prefix + std::to_string(number), "tsr0");
        directories_used.push_back(directory);
        return GetTempFileNameA(directory, prefix, number, name);
    });
    for (const auto& c : cases) {
        registry.set_text(server_key, "EmailPickupDir", c.own);
        registry.set_text(exchange_key, "ExchangeServerAdmin", c.exchange);
        registry.set_text(web_key, "PathWWWRoot", c.web);
        keys_opened.clear();
        directories_used.clear();
        const bool arrives = mail.send_mail("f", "a", "s", "b") == 0;
        ASSERT_EQ(directories_used.size(), 2u) << c.directory;
        EXPECT_EQ(directories_used[0], temp + "\\");
        EXPECT_EQ(directories_used[1], c.directory);
        EXPECT_EQ(arrives, std::filesystem::exists(c.directory)) << c.directory;
        keys_opened.resize(c.keys);  // the web server's is opened again in the end
        EXPECT_EQ(keys_opened, std::vector(all.begin(), all.begin() + long(c.keys)));
    }
}

TEST_F(SendMailTest, WithoutAPickupDirectoryThePlatformDecides) {
    registry.remove_value(util_test::server_key, "EmailPickupDir");
    send("a;b", -1, "Win32 API GetTempFileName returned bad name, GetLastError = 267");
    EXPECT_EQ(contents("temp"), messages_to({"a"}));

    const ImportPatch patch(
        "GetTempFileNameA", [](const char* directory, const char* prefix, UINT number, char* name) {
            return GetTempFileNameA(*directory ? directory : ".", prefix, number, name);
        });
    SetCurrentDirectoryA(pickup.c_str());
    send("a;b", 0, "Unable to query the registry for the pickup directory");
    EXPECT_EQ(contents("pickup"), messages_to({"a", "b"}));
    SetCurrentDirectoryA("C:\\");
}

// --- failures -----------------------------------------------------------------------------------

TEST_F(SendMailTest, ADirectoryThatTakesNoFileEndsIt) {
    const std::string bad_name = "Win32 API GetTempFileName returned bad name, GetLastError = ";
    const std::string deep = scratch.directory(std::string(200, 'd') + "\\" + std::string(60, 'e'));
    const auto with_length = [&](std::size_t n) { return deep.substr(0, n); };
    const struct {
        std::string temp, error;
    } cases[] = {
        {scratch / "missing", bad_name + "267"},
        {scratch.file("file"), bad_name + "267"},
        {with_length(246), bad_name + "111"},  // and a backslash
        {with_length(253), bad_name + "111"},
        {with_length(254), bad_name + "267"},  // no room in the buffer
        {with_length(258), bad_name + "267"},
        {with_length(259), "Win32 API GetTempPath returned failure, GetLastError = 206"},
    };
    for (const auto& c : cases) {
        const util_test::EnvironmentChange change(L"TMP", util_test::to_wide(c.temp).c_str());
        send("a;b", -1, c.error);
    }
    {
        // Needs more room. The buffer means nothing then.
        const ImportPatch patch("GetTempPathA", [](DWORD, char* buffer) {
            std::strcpy(buffer, "C:\\");
            return DWORD{256};
        });
        send("a", -1, bad_name + "267");
    }
    for (const std::string& missing : {scratch / "missing", with_length(247)}) {
        registry.set_text(util_test::server_key, "EmailPickupDir", missing);
        send("a;b", -1, bad_name + (missing.size() > 246 ? "111" : "267"));
        EXPECT_EQ(contents("temp"), messages_to({"a"})) << "kept, and nothing for b";
        empty("temp");
    }
    EXPECT_EQ(contents("pickup"), Texts());
}

// Sends to two and to three. What fails is the call for the second, of which `left` stays.
class SecondFailsTest : public SendMailTest {
  protected:
    bool fails() { return ++m_uses == 2; }
    void expect_failure(const std::string& error, const std::string& left) {
        for (const bool is_last : {true, false}) {
            m_uses = 0;
            email notice("f", is_last ? "a;b" : "a;b;c", "s", "b");
            EXPECT_EQ(notice.send(), is_last ? -1 : 0);
            const auto in_temp = files("temp");
            ASSERT_EQ(in_temp.size(), 1u);
            EXPECT_EQ(in_temp.begin()->second, left);
            EXPECT_EQ(notice.GetLastErrorMessage(),
                      error.empty() ? "" : error + temp + "\\" + in_temp.begin()->first);
            EXPECT_EQ(contents("pickup"), is_last ? messages_to({"a"}) : messages_to({"a", "c"}));
            empty("temp");
            empty("pickup");
        }
    }
    const std::string m_whole = message("f", "b", "s", "b");

  private:
    int m_uses = 0;
};

TEST_F(SecondFailsTest, Write) {
    const std::string half = m_whole.substr(0, m_whole.size() / 2);
    for (const int code : {ENOSPC, 0}) {  // a failure, and a short write
        const ImportPatch patch("_write", [&](int fd, const void* bytes, unsigned count) {
            if (!fails()) return _write(fd, bytes, count);
            const int written = _write(fd, bytes, count / 2);
            if (code != 0) errno = code;
            return code != 0 ? -1 : written;
        });
        expect_failure("Unable to open the file ", half);
    }
}

TEST_F(SecondFailsTest, Close) {  // some disks find out here that they are full
    const ImportPatch patch("_close", [&](int fd) {
        const int result = _close(fd);
        if (!fails()) return result;
        errno = ENOSPC;
        return -1;
    });
    expect_failure("Unable to open the file ", m_whole);
}

TEST_F(SecondFailsTest, Rename) {
    const ImportPatch patch("rename", [&](const char* from, const char* to) {
        if (!fails()) return std::rename(from, to);
        errno = EACCES;
        return -1;
    });
    expect_failure("", m_whole);
}

TEST_F(SendMailTest, MessagesWaitForAServiceThatIsNotThere) {
    service->stop();
    send("a", -1, "IIS is not running.");
    registry.remove_value(util_test::web_key, "InstallPath");
    send("b", -1, "IIS is not running.");
    service->start();
    send("c;", -1, "IIS is not installed.");
    send(" ;", -1, "IIS is not installed.");  // asked also when there is nobody to send to
    EXPECT_EQ(contents("pickup"), messages_to({"a", "b", "c"}));

    registry.set_text(util_test::web_key, "InstallPath", "C:\\inetsrv");
    send("d", 0, "IIS is not installed.");  // kept
    const email copy(mail);
    email assigned;
    assigned = mail;
    EXPECT_EQ(copy.GetLastErrorMessage(), "IIS is not installed.");
    EXPECT_EQ(assigned.GetLastErrorMessage(), "IIS is not installed.");
}

}  // namespace
