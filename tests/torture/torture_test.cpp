// Every call of the platform's fails once, and memory runs out at every allocation, in scenarios
// that together call everything util.dll exports. See docs/failure.md for what is checked.
//
//     torture_test                 all scenarios, by a few processes, and their report
//     torture_test --only=TEXT     those with TEXT in their name
//     torture_test sweep MAPPING LOG PART PARTS TEXT      one of the processes
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <thread>

#include "mail/mail_child.h"
#include "torture/failures.h"
#include "torture/gate.h"
#include "torture/sweep.h"

using namespace torture;

namespace {

std::string only;  // part of a scenario's name

// The process that sweeps a share, started again behind a call that ended it.
class Worker {
  public:
    Worker(long part, long parts)
        : m_name("util-torture-" + std::to_string(GetCurrentProcessId()) + "-" +
                 std::to_string(part)),
          m_log(m_name + ".log"),
          m_arguments(" sweep " + m_name + " " + m_log + " " + std::to_string(part) + " " +
                      std::to_string(parts) + " \"" + only + "\""),
          m_mapping(CreateFileMappingA(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0,
                                       sizeof(Progress), m_name.c_str())),
          progress(static_cast<Progress*>(
              MapViewOfFile(m_mapping.get(), FILE_MAP_ALL_ACCESS, 0, 0, sizeof(Progress)))) {
        progress->target = -1;
    }
    ~Worker() { DeleteFileA(m_log.c_str()); }

    void work() {
        constexpr int most_ends = 50;
        while (!progress->finished && ends.size() < most_ends) {
            const DWORD code = run();
            if (progress->finished) break;
            const std::string scenario = all_scenarios()[std::size_t(progress->scenario)].name;
            ends.push_back(scenario + ": " +
                           (progress->hung ? "hung" : "ended with code " + std::to_string(code)) +
                           " with " + progress->failing + " failing" +
                           (progress->persistent ? " for good" : "") + ", call " +
                           std::to_string(progress->call));
            crashes += !progress->hung;
            progress->hung = 0;
            if (progress->target < 0) {
                ++progress->scenario;
            } else {
                ++progress->call;
            }
        }
    }

    std::set<std::string> remarks() const {
        std::set<std::string> lines(ends.begin(), ends.end());
        std::ifstream file(m_log);
        for (std::string line; std::getline(file, line);)
            lines.insert(line);
        return lines;
    }

  private:
    DWORD run() {
        std::string line = "\"" + util_test::built_file("torture_test.exe") + "\"" + m_arguments;
        SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
        const util::KernelHandle nowhere(CreateFileA("NUL", GENERIC_READ | GENERIC_WRITE,
                                                     FILE_SHARE_READ | FILE_SHARE_WRITE, &inherited,
                                                     OPEN_EXISTING, 0, nullptr));
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        startup.dwFlags = STARTF_USESTDHANDLES;
        startup.hStdInput = startup.hStdOutput = startup.hStdError = nowhere.get();
        PROCESS_INFORMATION started;
        if (!CreateProcessA(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr,
                            &startup, &started)) {
            return GetLastError();
        }
        const util::KernelHandle thread(started.hThread), process(started.hProcess);
        WaitForSingleObject(process.get(), INFINITE);
        DWORD code = 0;
        GetExitCodeProcess(process.get(), &code);
        RegDeleteTreeA(HKEY_CURRENT_USER,
                       ("Software\\util-test-" + std::to_string(started.dwProcessId)).c_str());
        return code;
    }

    const std::string m_name, m_log, m_arguments;
    const util::KernelHandle m_mapping;

  public:
    Progress* const progress;
    std::vector<std::string> ends;
    int crashes = 0;
};

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

#ifndef UTIL_COVERAGE
TEST(TortureTest, EveryImportedFunctionFailsOrCannot) {
    std::set<std::string> listed;
    for (const Failure& failure : failures)
        listed.insert(failure.name);
    for_each_import("util.dll", [&](const char*, const char* name, void**) {
        EXPECT_TRUE(listed.count(name) || is_allocation(name) || cannot_fail(name))
            << name << " is imported: say in failures.cpp how it fails, or that it cannot";
    });
}
#endif

TEST(TortureTest, EveryCallFailsOnce) {
    util_test::MailService service;
    service.start();
    constexpr int processes = 2;
    std::vector<std::unique_ptr<Worker>> workers;
    std::vector<std::thread> threads;
    for (int i = 0; i < processes; ++i) {
        workers.push_back(std::make_unique<Worker>(i, processes));
        threads.emplace_back([worker = workers.back().get()] { worker->work(); });
    }
    for (std::thread& thread : threads)
        thread.join();

    std::set<std::string> remarks, failed_functions;
    std::set<void*> called;
    long runs = 0, faults = 0, allocations = 0, crashes = 0, hangs = 0, leaks = 0;
    const std::vector<Export> exports = exported("util.dll");
    for (const auto& worker : workers) {
        const Progress& progress = *worker->progress;
        EXPECT_TRUE(progress.finished) << "a share was given up";
        remarks.merge(worker->remarks());
        runs += progress.runs;
        faults += progress.faults;
        allocations += progress.allocations;
        crashes += worker->crashes;
        hangs += long(worker->ends.size()) - worker->crashes;
        for (std::size_t i = 0; i < exports.size(); ++i) {
            if (progress.called[i]) called.insert(exports[i].address);
        }
        for (std::size_t i = 0; i < failures.size(); ++i) {
            if (progress.failed[i]) failed_functions.insert(failures[i].name);
        }
    }
    for (const std::string& remark : remarks) {
        ADD_FAILURE() << remark;
        leaks += remark.find(": +") != std::string::npos || remark.find(": -") != std::string::npos;
    }
    // The same code under two names, as constructors have it, is one.
    for (const Export& one : exports) {
        if (!only.empty()) break;
        EXPECT_TRUE(!one.is_code || called.count(one.address) || is_private(one.name))
            << one.name << " is in no scenario";
    }
    for (const Failure& failure : failures)
        EXPECT_TRUE(!only.empty() || failed_functions.count(failure.name))
            << "no scenario calls " << failure.name;
    std::printf(
        "torture: %d scenarios in %ld runs, %d imported functions failing, "
        "%ld faults and %ld failed allocations injected; %ld crashes, %ld hangs, %ld leaks\n",
        int(all_scenarios().size()), runs, int(failed_functions.size()), faults, allocations,
        crashes, hangs, leaks);
}

int sweep_share(char** arguments) {
    const util::KernelHandle mapping(OpenFileMappingA(FILE_MAP_ALL_ACCESS, FALSE, arguments[0]));
    const util::KernelHandle log(CreateFileA(arguments[1], FILE_APPEND_DATA,
                                             FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                                             OPEN_ALWAYS, 0, nullptr));
    auto* const progress = static_cast<Progress*>(
        MapViewOfFile(mapping.get(), FILE_MAP_ALL_ACCESS, 0, 0, sizeof(Progress)));
    const Share share = {std::atol(arguments[2]), std::atol(arguments[3]), arguments[4]};
    try {
        return sweep(*progress, share, log.get()) ? 0 : 1;
    } catch (const std::exception& error) {  // of the test's own
        const std::string line = error.what() + std::string("\n");
        DWORD written;
        WriteFile(log.get(), line.data(), static_cast<DWORD>(line.size()), &written, nullptr);
        return 2;
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc == 7 && !std::strcmp(argv[1], "sweep")) return sweep_share(argv + 2);
    testing::InitGoogleTest(&argc, argv);
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument.rfind("--only=", 0) == 0) only = argument.substr(7);
    }
    return RUN_ALL_TESTS();
}
