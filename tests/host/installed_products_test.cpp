#include "util/host/installed_products.h"

#include "mail/mail_child.h"
#include "support/import_patch.h"
#include "support/test.h"

namespace {

SC_HANDLE WINAPI open_manager(const char* machine, const char* database, DWORD access) {
    EXPECT_STREQ(database, "ServicesActive");
    EXPECT_EQ(access, DWORD(GENERIC_READ));
    return OpenSCManagerA(machine, database, access);
}
SC_HANDLE WINAPI open_service(SC_HANDLE manager, const char* name, DWORD access) {
    EXPECT_EQ(access, DWORD(GENERIC_READ));
    return OpenServiceA(manager, name, access);
}

TEST(ClusterTest, AnInstalledServiceCountsWhetherItRunsOrNot) {
    util_test::ImportPatch manager("OpenSCManagerA", open_manager),
        service("OpenServiceA", open_service);
    EXPECT_FALSE(UTIL_IsCluster());
    const util_test::MailService cluster("ClusSvc"), accented("util-test-\xE4");  // never started
    EXPECT_TRUE(UTIL_IsCluster());
    EXPECT_TRUE(UTIL_IsClustered("clussvc"));
    EXPECT_TRUE(UTIL_IsClustered("util-test-\xC3\xA4"));
    for (const char* name : {"", "ClusSv", "util-test-a", "util-test-\xE4", "\xE6\x97\xA5"})
        EXPECT_FALSE(UTIL_IsClustered(name)) << name;
}

}  // namespace
