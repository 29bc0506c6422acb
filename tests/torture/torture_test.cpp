// Every call of the platform's fails once, and memory runs out at every allocation, in scenarios
// that together call everything util.dll imports; each scenario is a test of its own. See
// docs/failure.md for what is checked.

#include "mail/mail_child.h"
#include "support/import_patch.h"
#include "support/test.h"
#include "torture/failures.h"
#include "torture/gate.h"
#include "torture/sweep.h"
#include "util/portable/ksl_hostname.h"

using namespace torture;

namespace {

#ifndef UTIL_COVERAGE
TEST(ImportsTest, EveryImportedFunctionFailsOrCannot) {
    std::set<std::string> listed;
    for (const Failure& failure : failures)
        listed.insert(failure.name);
    util_test::for_each_import("util.dll", [&](const char*, const char* name, void**) {
        EXPECT_TRUE(listed.count(name) || is_allocation(name) || cannot_fail(name))
            << name << " is imported: say in failures.cpp how it fails, or that it cannot";
    });
}
#endif

class TortureTest : public testing::Test {
  protected:
    static void SetUpTestSuite() {
        service = std::make_unique<util_test::MailService>();
        service->start();
        // Loads what lookups need, before a fault keeps the platform from loading it.
        int count;
        char records[21];
        KslIpAddrList(1, &count, records);
        begin_sweeps();
    }
    static void TearDownTestSuite() {
        end_sweeps();
        service.reset();
    }

  private:
    static inline std::unique_ptr<util_test::MailService> service;
};

class ScenarioTest : public TortureTest {
  public:
    explicit ScenarioTest(const Scenario& scenario) : m_scenario(scenario) {}

  private:
    void TestBody() override {
        // What the calls print, again and again, is of no interest.
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const std::string found = sweep(m_scenario);
        testing::internal::GetCapturedStderr();
        testing::internal::GetCapturedStdout();
        EXPECT_EQ(found, "");
    }
    const Scenario& m_scenario;
};

class EverythingTest : public TortureTest {
    void TestBody() override {
        const Figures& figures = end_sweeps();
        std::set<std::string> failed;
        for (std::size_t i = 0; i < failures.size(); ++i) {
            EXPECT_TRUE(figures.failed[i])
                << "no scenario calls " << failures[i].name << ", row " << i;
            failed.insert(failures[i].name);
        }
        std::printf(
            "torture: %d scenarios in %ld runs, %d imported functions failing, %ld faults and %ld "
            "failed allocations injected\n",
            int(all_scenarios().size()), figures.runs, int(failed.size()), figures.faults,
            figures.allocations);
    }
};

}  // namespace

int main(int argc, char** argv) {
    const auto add = [](const char* name, auto make) {
        testing::RegisterTest("TortureTest", name, nullptr, nullptr, __FILE__, __LINE__, make);
    };
    for (const Scenario& scenario : all_scenarios())
        add(scenario.name.c_str(), [&]() -> TortureTest* { return new ScenarioTest(scenario); });
    add("EverythingIsCalledAndFails", []() -> TortureTest* { return new EverythingTest; });
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
