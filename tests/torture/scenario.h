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

// What the sweep and the run that it plays tell each other.
struct Playing {
    bool armed = false;               // calls may fail
    int faults = 0;                   // calls that have failed so far
    Resources least = {}, most = {};  // what the run keeps by design
};
extern Playing playing;

// Notes that a result is wrong, and what fails meanwhile.
void remark(const std::string& what);

// One pass through a scenario, in which one call of the platform's may fail, or one and all after
// it. Faults happen within call() alone.
class Run {
  public:
    // Makes calls of util.dll; arguments are prepared before. Returns what f returns, or its empty
    // value when f raised what it may, which raised() tells.
    template <typename F>
    auto call(Raises raises, F f) -> decltype(f()) {
        m_raised = false;
        try {
            const Armed armed;
            return f();
        } catch (const std::bad_alloc&) {
            caught(raises & memory, "std::bad_alloc left the call");
        } catch (const _com_error& error) {
            caught((raises & platform) && error.Error() == E_OUTOFMEMORY, "_com_error left it");
        } catch (const std::exception& error) {
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
        Armed() { playing.armed = true; }
        ~Armed() { playing.armed = false; }
    };
    static bool faulted() { return playing.faults > 0; }
    // Whether it is this function that fails, with this result if one is given.
    static bool failing(const std::string& function, std::optional<std::int64_t> result = {});

    // What the calls came to: the success that the scenario is made for, or, after a fault, a
    // failure as documented.
    void outcome(bool success, bool failure, const char* what = "result") {
        if (!success && !(faulted() && failure)) remark(what);
    }
    // What holds in either case.
    void always(bool holds, const std::string& what) {
        if (!holds) remark(what);
    }

    // This run keeps so many by design. docs/failure.md lists all of these leaks.
    static void keeps(Resource resource, long number) {
        playing.least[resource] = playing.most[resource] = number;
    }
    // The same for a call that may fail before it takes them.
    static void keeps_unless_failed(Resource resource, long number) {
        playing.least[resource] = faulted() ? 0 : number;
        playing.most[resource] = number;
    }
    // Adds a call that leaks `least` to `most` of the resource by design.
    static void keeps_more(Resource resource, long least, long most) {
        playing.least[resource] += least;
        playing.most[resource] += most;
    }

    bool exists(const std::string& name) const {
        return GetFileAttributesA((scratch / name).c_str()) != INVALID_FILE_ATTRIBUTES;
    }

    const util_test::ScratchDirectory scratch;

  private:
    void caught(bool documented, const char* what) {
        m_raised = true;
        if (!documented || !faulted()) remark(what);
    }

    bool m_raised = false;
};

struct Scenario {
    std::string name;
    std::function<void(Run& run)> play;
    bool shares_sites;  // a call site that failed in an earlier one of these is not failed again
    bool fails_last;    // of each site the first and the last call fails; else only the first
};

// One list for each subsystem, added in its order.
struct Add {
    std::vector<Scenario>& all;
    template <typename Play>
    void operator()(const std::string& name, Play play, bool shares_sites = false) const {
        all.push_back({name, play, shares_sites, true});
    }
};
void case_scenarios(const Add& scenario);
void text_scenarios(const Add& scenario);
void portable_scenarios(const Add& scenario);
void file_scenarios(const Add& scenario);
void system_scenarios(const Add& scenario);

}  // namespace torture

#endif
