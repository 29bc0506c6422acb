// Every call of the platform's fails once, and memory runs out at every allocation, in scenarios
// that together call everything util.dll imports; each scenario is a test of its own. See
// docs/failure.md for what is checked.

#include "mail/mail_child.h"
#include "support/import_patch.h"
#include "support/test.h"
#include "torture/failures.h"
#include "torture/sweep.h"
#include "util/portable/ksl_hostname.h"

using namespace torture;

namespace {

#ifndef UTIL_COVERAGE
TEST(ImportsTest, EveryImportedFunctionFailsOrCannot) {
    util_test::for_each_import("util.dll", [&](const char*, const char* name, void**) {
        EXPECT_FALSE(failures_of(name).empty())
            << name << " is imported: say in failures.cpp how it fails, or that it cannot";
    });
}
#endif

struct TortureTest : testing::Test {
    explicit TortureTest(std::function<void()> f) : body(std::move(f)) {}
    void TestBody() override { body(); }
    const std::function<void()> body;
};

void sweep_silently(const Scenario& scenario) {
    // What the calls print, again and again, is of no interest.
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    const std::string found = sweep(scenario);
    testing::internal::GetCapturedStderr();
    testing::internal::GetCapturedStdout();
    EXPECT_EQ(found, "");
}

void everything_has_failed(std::size_t scenarios) {
    std::set<std::string> failed;
    for (const Failure& failure : failures) {
        if (failure.how == never || failure.how == memory_runs_out) continue;
        EXPECT_GT(failure.times, 0)
            << "no scenario calls " << failure.name << ", result " << failure.result;
        failed.insert(failure.name);
    }
    std::printf(
        "torture: %d scenarios in %ld runs, %d imported functions failing, %ld faults and %ld "
        "failed allocations injected\n",
        int(scenarios), figures.runs, int(failed.size()), figures.faults, figures.allocations);
}

}  // namespace

int main(int argc, char** argv) {
    const auto add = [](const std::string& name, const std::function<void()>& body) {
        testing::RegisterTest("TortureTest", name.c_str(), nullptr, nullptr, __FILE__, __LINE__,
                              [=] { return new TortureTest(body); });
    };
    std::vector<Scenario> scenarios;
    for (auto* list :
         {case_scenarios, text_scenarios, portable_scenarios, file_scenarios, system_scenarios})
        list({scenarios});
    for (const Scenario& scenario : scenarios)
        add(scenario.name, [&] { sweep_silently(scenario); });
    add("EverythingIsCalledAndFails", [&] { everything_has_failed(scenarios.size()); });
    testing::InitGoogleTest(&argc, argv);

    util_test::MailService service;
    service.start();
    // Loads what lookups need, before a fault keeps the platform from loading it.
    int count;
    char records[21];
    KslIpAddrList(1, &count, records);
    begin_sweeps();
    return RUN_ALL_TESTS();
}
