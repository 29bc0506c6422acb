// Every call of the platform's fails once, and memory runs out at every allocation, in scenarios
// that together call everything util.dll exports; each scenario is a test of its own. See
// docs/failure.md for what is checked.
#include <gtest/gtest.h>

#include <memory>
#include <set>
#include <string>

#include "mail/mail_child.h"
#include "support/import_patch.h"
#include "torture/failures.h"
#include "torture/gate.h"
#include "torture/sweep.h"

using namespace torture;

namespace {

// Members that only the class itself can call; programs reach them through the others.
bool is_private(const std::string& name) {
    static const std::set<std::string> names = {"_ZN6XrFile10write_textEPKcy",
                                                "_ZN6XrFile11m_open_fileEv",
                                                "_ZN6XrFile11read_numberERi",
                                                "_ZN6XrFile12write_numberEi",
                                                "_ZN6XrFile19fail_and_invalidateEi",
                                                "_ZN6XrFile4failEi",
                                                "_ZN6XrFile9read_textERNSt7__cxx1112basic_stringIcS"
                                                "t11char_traitsIcESaIcEEE"};
    return names.count(name) > 0;
}

// A class that computes and asks nobody.
bool is_arithmetic(const std::string& name) {
    return name.find("12ksl_uint64_c") != std::string::npos;
}

// What asks neither the platform nor for memory, and so cannot fail: functions, Tools::FileAttr.
bool asks_nobody(const std::string& name) {
    const std::string names =
        " UTIL_CDPbasename UTIL_GetTimeOfDay UTIL_IsBinaryEqual UTIL_basename UTIL_getFeatureSet "
        "UTIL_getopt UTIL_isBKDevice _ZN5Tools8FileAttraSERKS0_ _ZNK5Tools8FileAttreqERKS0_ "
        "_ZNK5Tools8FileAttrneERKS0_ _ZNK5Tools8FileAttrorERKS0_ ";
    return names.find(" " + name + " ") != names.npos;
}

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
        // The same code under two names, as constructors have it, is one.
        const std::vector<Export> exports = exported("util.dll");
        std::set<void*> called;
        for (std::size_t i = 0; i < exports.size(); ++i) {
            if (figures.called[i]) called.insert(exports[i].address);
        }
        for (const Export& one : exports) {
            EXPECT_TRUE(!one.is_code || called.count(one.address) || is_private(one.name) ||
                        asks_nobody(one.name) || is_arithmetic(one.name))
                << one.name << " is in no scenario";
        }
        std::set<std::string> failed;
        for (std::size_t i = 0; i < failures.size(); ++i) {
            EXPECT_TRUE(figures.failed[i]) << "no scenario calls " << failures[i].name;
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
        add(scenario.name, [&]() -> TortureTest* { return new ScenarioTest(scenario); });
    add("EverythingIsCalledAndFails", []() -> TortureTest* { return new EverythingTest; });
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
