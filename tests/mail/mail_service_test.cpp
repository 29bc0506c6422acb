#include "util/mail/mail_service.h"

#include "mail/mail_test.h"
#include "support/import_patch.h"

using namespace std::string_literals;
using util_test::AccessLimit;
using util_test::ImportPatch;

namespace {

class MailServiceTest : public util_test::MailTest {};

TEST_F(MailServiceTest, InstalledWithATextOfAtMost260BytesThatIsNotEmpty) {
    const struct {
        DWORD type;
        std::string stored;
        bool installed;
    } cases[] = {
        {REG_SZ, "C:\\inetsrv\0"s, true},
        {REG_EXPAND_SZ, "%none%\0"s, true},
        {REG_SZ, std::string(259, 'x') + '\0', true},
        {REG_SZ, std::string(260, 'x') + '\0', false},
        {REG_SZ, "C:\\inetsrv", false},
        {REG_SZ, "\0"s, false},
        {REG_SZ, "\0x\0"s, false},
        {REG_SZ, "", false},
        {REG_BINARY, "C:\\inetsrv\0"s, false},
        {REG_MULTI_SZ, "C:\\inetsrv\0\0"s, false},
    };
    for (const auto& c : cases) {
        registry.set(util_test::web_key, "InstallPath", c.type, c.stored);
        EXPECT_EQ(MailInstalled(), c.installed) << c.type << " " << c.stored;
    }
    registry.set_text(util_test::web_key, "InstallPath", "C:\\inetsrv");
    {
        const AccessLimit readers(util_test::web_key, KEY_READ | WRITE_DAC);
        EXPECT_TRUE(MailInstalled());
    }
    {
        const AccessLimit nobody(util_test::web_key, WRITE_DAC);
        EXPECT_FALSE(MailInstalled());
    }
    registry.clear();
    EXPECT_FALSE(MailInstalled());
}

TEST_F(MailServiceTest, RunningInThatStateOnly) {
    EXPECT_TRUE(MailRunning());
    service->pause();
    EXPECT_FALSE(MailRunning());
    service->stop();
    EXPECT_FALSE(MailRunning());
    service.reset();
    EXPECT_FALSE(MailRunning());
    service = std::make_unique<util_test::MailService>();
    EXPECT_FALSE(MailRunning());
    service->start();
    EXPECT_TRUE(MailRunning());
}

TEST_F(MailServiceTest, AskingNeedsFullAccessAndClosesTheServiceFirst) {
    SC_HANDLE manager = nullptr, iis = nullptr;
    std::vector<SC_HANDLE> closed;
    const ImportPatch open_manager("OpenSCManagerA",
                                   [&](const char* machine, const char* database, DWORD access) {
                                       EXPECT_EQ(machine, nullptr);
                                       EXPECT_EQ(database, nullptr);
                                       EXPECT_EQ(access, 0xF003Fu);
                                       return manager = OpenSCManagerA(machine, database, access);
                                   });
    const ImportPatch open_service("OpenServiceA",
                                   [&](SC_HANDLE from, const char* name, DWORD access) {
                                       EXPECT_STREQ(name, "IISADMIN");
                                       EXPECT_EQ(access, 0xF01FFu);
                                       return iis = OpenServiceA(from, name, access);
                                   });
    const ImportPatch close("CloseServiceHandle", [&](SC_HANDLE handle) {
        closed.push_back(handle);
        return CloseServiceHandle(handle);
    });
    EXPECT_TRUE(MailRunning());
    EXPECT_EQ(closed, (std::vector<SC_HANDLE>{iis, manager}));
}

}  // namespace
