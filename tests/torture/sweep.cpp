#include "torture/sweep.h"

#include <io.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <stdexcept>
#include <string>

#include "support/import_patch.h"
#include "torture/deliberate_leaks.h"
#include "torture/failures.h"
#include "torture/gate.h"
#include "torture/resources.h"
#include "torture/stand_ins.h"
#include "util/text/byte_string.h"

using util_test::for_each_import;

namespace torture {
namespace {

enum Kind { failing, allocating, counting, recording };

struct Gated {
    Gate* gate;
    Kind kind;
    bool in_runtime;            // libstdc++'s import, which serves the test as well
    std::vector<int> failures;  // rows of the table
    const Taker* taker;         // when it is one
    int number;                 // of an export
    int calls;                  // in this run
    bool usual;                 // called when nothing fails
    const Failure* injected;    // what this very call is to fail with
};

// What fails: a row of the table, or memory.
struct Target {
    int gated;  // -1: every allocation, together
    int failure;
};

std::vector<Gated> gates;
std::vector<Export> exports;
void* library;
Figures figures;

// The run that is going on.
struct {
    const Scenario* scenario;
    bool armed;
    bool faulted;
    const Target* target;
    const Target* second;  // fails too, whenever it is called
    int call;              // which call of the target
    bool persistent;
    int seen;
    volatile ULONGLONG started;
} now;
Resources counted = {};

constexpr Failure no_memory = {"malloc", 0, 0, ENOMEM, instead};

const char* target_name(const Target* target) {
    if (!target) return "nothing";
    return target->gated < 0 ? "memory" : gates[std::size_t(target->gated)].gate->name;
}

// What was found in the scenario that is going on; without the heap, which is being counted.
char remarks[1 << 16];
std::size_t remarks_size;

void remark(const char* what) {
    const int code = now.target && now.target->gated >= 0 ? now.target->failure : -1;
    const std::size_t room = sizeof remarks - remarks_size;
    const int length = std::snprintf(
        remarks + remarks_size, room, "%s with %s failing (row %d)%s%s%s, call %d\n", what,
        target_name(now.target), code, now.second ? " and then " : "",
        now.second ? target_name(now.second) : "", now.persistent ? " for good" : "", now.call);
    remarks_size += std::min(static_cast<std::size_t>(length), room - 1);
}

// Ends the process, which has crashed or hangs. The standard error may be captured by then.
HANDLE error_output;
[[noreturn]] void give_up(const char* what) {
    remark(what);
    DWORD written;
    WriteFile(error_output, remarks, DWORD(remarks_size), &written, nullptr);
    TerminateProcess(GetCurrentProcess(), 98);
    std::abort();
}

// --- what the gates decide ---

const Failure* injected(Gated& gated, int index) {
    const auto is = [&](const Target* target) {
        return target && (target->gated < 0 ? gated.kind == allocating : target->gated == index);
    };
    const auto row = [](const Target& target) {
        return target.gated < 0 ? &no_memory : &failures[std::size_t(target.failure)];
    };
    if (is(now.target)) {
        ++now.seen;
        if (now.seen == now.call || (now.persistent && now.seen > now.call))
            return row(*now.target);
    }
    return now.faulted && is(now.second) ? row(*now.second) : nullptr;
}

Decision decide_call(Gate& gate) {
    Gated& gated = gates[std::size_t(gate.index)];
    gated.injected = nullptr;
    if (now.armed) {
        if (gated.kind == recording) {
            figures.called[std::size_t(gated.number)] = true;
            return pass;
        }
        if (!gated.in_runtime || called_from(library)) {
            ++gated.calls;
            gated.injected = injected(gated, gate.index);
        }
    }
    if (!gated.injected) return gated.taker ? watch : pass;
    if (!now.faulted) ++(gated.kind == allocating ? figures.allocations : figures.faults);
    now.faulted = true;
    if (gated.kind != allocating)
        figures.failed[std::size_t(gated.injected - failures.data())] = true;
    return gated.injected->how == working ? watch : replace;
}

std::uint64_t after_call(Gate& gate, std::uint64_t result) {
    Gated& gated = gates[std::size_t(gate.index)];
    const bool succeeded = result != 0 && result != ~std::uint64_t{0};
    if (gated.taker && succeeded) counted[gated.taker->resource] += gated.taker->change;
    const Failure* const failure = gated.injected;
    if (!failure) return result;
    if (failure->error_number) errno = failure->error_number;
    if (failure->last_error) SetLastError(failure->last_error);
    return static_cast<std::uint64_t>(failure->result);
}

// --- putting up the gates ---

void put_up(void** slot, const char* name, Kind kind, int number = 0) {
    Gated gated = {nullptr, kind, false, {}, nullptr, number, 0, false, nullptr};
    for (std::size_t i = 0; i < failures.size() && kind == failing; ++i) {
        if (!std::strcmp(failures[i].name, name)) gated.failures.push_back(int(i));
    }
    for (const Taker& taker : takers) {
        if (!std::strcmp(taker.name, name)) gated.taker = &taker;
    }
    gates.push_back(gated);
    gates.back().gate = &guard(slot, name, int(gates.size()) - 1);
}

// The table of an exported class's virtual functions: behind two words, as long as it holds code.
void put_up_virtual(void** entry) {
    for (entry += 2; is_code(*entry); ++entry) {
        for (std::size_t i = 0; i < exports.size(); ++i) {
            if (exports[i].address != *entry) continue;
            put_up(entry, exports[i].name.c_str(), recording, int(i));
            break;
        }
    }
}

void put_up_all() {
    exports = exported("util.dll");
    library = GetModuleHandleA("util.dll");
    // Before there are gates: this may be called by the ones that are being put up.
    std::vector<std::pair<void**, const char*>> imports, runtime, own;
    for_each_import("util.dll", [&](const char*, const char* name, void** slot) {
        imports.emplace_back(slot, name);
    });
    for_each_import("libstdc++-6.dll", [&](const char*, const char* name, void** slot) {
        if (is_allocation(name)) runtime.emplace_back(slot, name);
    });
    for_each_import(nullptr, [&](const char* from, const char* name, void** slot) {
        if (!_stricmp(from, "util.dll") && is_code(*slot)) own.emplace_back(slot, name);
    });
    for (const auto& [slot, name] : imports) {
        const bool allocates = is_allocation(name);
        if (!allocates && cannot_fail(name) && !stand_in(name, *slot)) continue;
        if (void* const other = stand_in(name, *slot)) {
            put_up(slot, name, failing);
            gates.back().gate->original = other;
        } else {
            put_up(slot, name, allocates ? allocating : failing);
        }
    }
    for (const auto& [slot, name] : runtime) {
        put_up(slot, name, allocating);
        gates.back().in_runtime = true;
    }
    for (const auto& [slot, name] : own) {
        for (std::size_t i = 0; i < exports.size(); ++i) {
            if (exports[i].name == name) put_up(slot, name, recording, int(i));
        }
    }
    for (const Export& one : exports) {
        if (one.name.rfind("_ZTV", 0) == 0) put_up_virtual(static_cast<void**>(one.address));
    }
    decide = decide_call;
    after = after_call;
}

// --- a run ---

// A second thread that formats a text when asked: no lock may have stayed held.
class Formatter {
  public:
    Formatter()
        : m_asked(CreateEventA(nullptr, FALSE, FALSE, nullptr)),
          m_answered(CreateEventA(nullptr, FALSE, FALSE, nullptr)),
          m_thread(CreateThread(nullptr, 0, serve, this, 0, nullptr)) {
        answers();
    }
    bool answers() {
        SetEvent(m_asked);
        return WaitForSingleObject(m_answered, 20000) == WAIT_OBJECT_0;
    }

  private:
    static DWORD WINAPI serve(void* self) {
        auto* const formatter = static_cast<Formatter*>(self);
        while (WaitForSingleObject(formatter->m_asked, INFINITE) == WAIT_OBJECT_0) {
            if (String::format("%d", 7) == "7") SetEvent(formatter->m_answered);
        }
        return 0;
    }
    HANDLE m_asked, m_answered, m_thread;
};

DWORD WINAPI watch_time(void*) {
    constexpr ULONGLONG limit_ms = 60000;
    for (;; Sleep(500)) {
        if (now.scenario && GetTickCount64() - now.started >= limit_ms) give_up("hangs");
    }
}

// How much more, or less, there is of each resource after the run than may be.
Resources play() {
    static Formatter formatter;
    now.faulted = false;
    now.seen = 0;
    now.started = GetTickCount64();
    stand_ins = StandIns();
    for (Gated& gated : gates)
        gated.calls = 0;
    const Resources before = resources_now(counted);
    {
        Run run;
        now.scenario->play(run);
    }
    Resources surplus = resources_now(counted);
    for (int i = 0; i < resource_kinds; ++i) {
        surplus[i] -= before[i];
        if (surplus[i] > 0)
            surplus[i] -= std::min(
                surplus[i], most_left(now.scenario->name, target_name(now.target), Resource(i)));
    }
    ++figures.runs;
    if (!formatter.answers()) remark("formatting hangs");
    return surplus;
}

// Caches that fill once are no leak: what is lost is lost again each time.
void play_and_compare() {
    Resources least = play();
    for (int again = 0; again < 3 && least != Resources(); ++again) {
        const Resources next = play();
        for (int i = 0; i < resource_kinds; ++i) {
            if (next[i] * least[i] <= 0) least[i] = 0;
        }
    }
    for (int i = 0; i < resource_kinds; ++i) {
        if (least[i] == 0) continue;
        char what[80];
        std::snprintf(what, sizeof what, "%+ld %s", least[i], resource_names[i]);
        remark(what);
    }
}

// --- all runs ---

// What failed as a consequence has ways to fail of its own.
void fail_what_is_new() {
    std::vector<int> called;
    for (std::size_t i = 0; i < gates.size(); ++i) {
        if (gates[i].kind == failing && !gates[i].usual && gates[i].calls > 0)
            called.push_back(int(i));
    }
    for (const int gated : called) {
        for (const int failure : gates[std::size_t(gated)].failures) {
            if (failures[std::size_t(failure)].how == once) continue;
            const Target second = {gated, failure};
            now.second = &second;
            play_and_compare();
            now.second = nullptr;
        }
    }
}

// Once each, then for good from each on.
void fail_each_call(const Target& target) {
    const bool for_good = target.gated < 0 || failures[std::size_t(target.failure)].how != once;
    now.target = &target;
    for (const bool persistent : {false, true}) {
        if (persistent && !for_good) break;
        now.persistent = persistent;
        for (now.call = 1;; ++now.call) {
            play_and_compare();
            if (!now.faulted) break;
            fail_what_is_new();
        }
    }
    now.target = nullptr;
    now.persistent = false;
}

}  // namespace

void Run::arm(bool armed) {
    now.armed = armed;
}
bool Run::faulted() {
    return now.faulted;
}
bool Run::failing(const char* function) {
    return !std::strcmp(target_name(now.target), function) ||
           !std::strcmp(target_name(now.second), function);
}
bool Run::for_good() {
    return now.persistent;
}
void Run::violation(const char* what) {
    remark(what);
}

const std::vector<Scenario>& all_scenarios() {
    static const std::vector<Scenario> all = [] {
        std::vector<Scenario> scenarios;
        for (auto* list : {text_scenarios, portable_scenarios, file_scenarios, system_scenarios}) {
            list([&](const char* name, Play play) {
                scenarios.push_back({name, std::move(play)});
            });
        }
        return scenarios;
    }();
    return all;
}

void begin_sweeps() {
    error_output = reinterpret_cast<HANDLE>(_get_osfhandle(_dup(2)));
    registry();
    put_up_all();
    figures.called.resize(exports.size());
    figures.failed.resize(failures.size());
    SetUnhandledExceptionFilter([](EXCEPTION_POINTERS*) -> LONG { give_up("crashes"); });
    std::signal(SIGABRT, [](int) { give_up("aborts"); });
    CloseHandle(CreateThread(nullptr, 0, watch_time, nullptr, 0, nullptr));
}

const Figures& end_sweeps() {
    decide = [](Gate&) { return pass; };  // the process's end makes calls, too
    return figures;
}

std::string sweep(const Scenario& scenario) {
    remarks_size = 0;
    now.started = GetTickCount64();
    now.scenario = &scenario;
    play();  // the platform keeps some things from first use on
    play_and_compare();
    std::vector<Target> targets = {{-1, -1}};
    for (std::size_t g = 0; g < gates.size(); ++g) {
        gates[g].usual = gates[g].calls > 0;
        if (!gates[g].usual || gates[g].kind != failing) continue;
        for (const int failure : gates[g].failures)
            targets.push_back({int(g), failure});
    }
    for (const Target& target : targets)
        fail_each_call(target);
    now.scenario = nullptr;
    return {remarks, remarks_size};
}

}  // namespace torture
