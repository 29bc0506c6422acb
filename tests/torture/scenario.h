// A scenario makes a few calls of util.dll that belong together and says what may come of them.
//
// A new function costs a few lines in the list of its subsystem:
//
//     scenario("UTIL_delete", [](Run& run) {
//         const String file = run.scratch.file("a");
//         const int result = run.call(nothing, [&] { return UTIL_delete(file); });
//         run.outcome(result == 0 && !run.exists("a"), result == -1);
//     });
#ifndef UTIL_TESTS_TORTURE_SCENARIO_H
#define UTIL_TESTS_TORTURE_SCENARIO_H

#include <new>

#include "support/scratch_directory.h"
#include "support/test.h"
#include "torture/resources.h"
// after the platform's header
#include <comutil.h>

namespace torture {

// What a call's header says that it raises when memory runs out.
enum Raises { nothing = 0, memory = 1, platform = 2, either = 3 };

// One pass through a scenario, in which one call of the platform's may fail, or one and all after
// it. Faults happen within call() alone.
class Run {
  public:
    // Makes calls of util.dll; arguments are prepared before. Returns what f returns, or its empty
    // value when f raised what it may, which raised() tells.
    template <typename F>
    auto call(Raises raises, F f) -> decltype(f()) {
        m_raised = false;
        arm(true);
        try {
            if constexpr (std::is_void_v<decltype(f())>) {
                f();
                return arm(false);
            } else {
                auto result = f();
                arm(false);
                return result;
            }
        } catch (const std::bad_alloc&) {
            arm(false);
            caught(raises & memory, "std::bad_alloc left the call");
        } catch (const _com_error& error) {
            arm(false);
            caught((raises & platform) && error.Error() == E_OUTOFMEMORY, "_com_error left it");
        } catch (const std::exception& error) {
            arm(false);
            caught(false, error.what());
        }
        return decltype(f())();
    }

    bool raised() const { return m_raised; }
    // Calls, with no result to look at; true unless f raised what it may.
    template <typename F>
    bool completes(Raises raises, F f) {
        call(raises, [&] { static_cast<void>(f()); });
        outcome(!m_raised, m_raised);
        return !m_raised;
    }
    // Lets calls fail until the object goes.
    struct Armed {
        Armed() { arm(true); }
        ~Armed() { arm(false); }
    };
    // Whether a fault has happened in this run so far, at least.
    static bool faulted();
    // Whether it is this function that fails, and with this result.
    static bool failing(const char* function);
    static bool failing(const char* function, std::int64_t result);
    // Whether what fails does so ever after.
    static bool for_good();

    // What the calls came to: the success that the scenario is made for, or, after a fault, a
    // failure as documented.
    void outcome(bool success, bool failure, const char* what = "result") {
        if (!success && !(faulted() && failure)) violation(what);
    }
    // What holds in either case.
    void always(bool holds, const std::string& what) {
        if (!holds) violation(what);
    }

    // This run keeps so many by design. docs/failure.md lists all of these leaks.
    static void keeps(Resource resource, long number) { keeps(resource, number, number); }
    // The same for a call that may fail before it takes them.
    static void keeps_unless_failed(Resource resource, long number) {
        keeps(resource, faulted() ? 0 : number, number);
    }
    static void keeps_at_most(Resource resource, long number) { keeps(resource, 0, number); }

    bool exists(const std::string& name) const {
        return GetFileAttributesA((scratch / name).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    const util_test::ScratchDirectory scratch;

  private:
    static void arm(bool armed);
    static void violation(const std::string& what);
    static void keeps(Resource resource, long least, long most);
    void caught(bool documented, const char* what) {
        m_raised = true;
        if (!documented || !faulted()) violation(what);
    }

    bool m_raised = false;
};

using Play = std::function<void(Run& run)>;
struct Scenario {
    std::string name;
    Play play;
    bool shares_sites;  // a call site that failed in an earlier one of these is not failed again
    bool fails_last;    // of each site the first and the last call fails; else only the first
};

// One list for each subsystem, added in its order.
struct Add {
    std::vector<Scenario>& all;
    void operator()(const std::string& name, Play play, bool shares_sites = false) const {
        all.push_back({name, std::move(play), shares_sites, true});
    }
};
void case_scenarios(const Add& scenario);
void text_scenarios(const Add& scenario);
void portable_scenarios(const Add& scenario);
void file_scenarios(const Add& scenario);
void system_scenarios(const Add& scenario);

}  // namespace torture

#endif
