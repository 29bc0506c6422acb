#include "util/host/cluster.h"

#include <gtest/gtest.h>

#include "support/import_patch.h"
#include "util/internal/service.h"

using util::ScopedService;

namespace {

// A service that is never started, for as long as this lives. One that a test left behind when it
// died is taken over.
class InstalledService {
  public:
    explicit InstalledService(const wchar_t* name)
        : m_manager(OpenSCManagerW(nullptr, nullptr, SC_MANAGER_ALL_ACCESS)),
          m_service(CreateServiceW(m_manager.get(), name, name, SERVICE_ALL_ACCESS,
                                   SERVICE_WIN32_OWN_PROCESS, SERVICE_DEMAND_START,
                                   SERVICE_ERROR_IGNORE, L"C:\\never-started.exe", nullptr, nullptr,
                                   nullptr, nullptr, nullptr)) {
        if (!m_service) m_service.reset(OpenServiceW(m_manager.get(), name, SERVICE_ALL_ACCESS));
    }
    ~InstalledService() { DeleteService(m_service.get()); }

  private:
    ScopedService m_manager, m_service;
};

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
    { InstalledService left_over(L"ClusSvc"); }  // by a run that died
    util_test::ImportPatch manager("OpenSCManagerA", open_manager),
        service("OpenServiceA", open_service);
    EXPECT_FALSE(UTIL_IsCluster());
    InstalledService cluster(L"ClusSvc"), accented(L"util-test-\u00E4");
    EXPECT_TRUE(UTIL_IsCluster());
    EXPECT_TRUE(UTIL_IsClustered("clussvc"));
    EXPECT_TRUE(UTIL_IsClustered("util-test-\xC3\xA4"));
    for (const char* name : {"", "ClusSv", "util-test-a", "util-test-\xE4", "\xE6\x97\xA5"})
        EXPECT_FALSE(UTIL_IsClustered(name)) << name;
}

}  // namespace
