#include "torture/sweep.h"

#include <io.h>

#include <csignal>

#include "support/import_patch.h"
#include "torture/failures.h"
#include "torture/gate.h"
#include "torture/resources.h"
#include "torture/stand_ins.h"
#include "util/text/byte_string.h"

using util_test::for_each_import;

namespace torture {
namespace {

enum Kind { failing, allocating };

struct Gated {
    Gate* gate;
    Kind kind;
    bool in_runtime;            // libstdc++'s import, which serves the test as well
    std::vector<int> failures;  // rows of the table
    const Taker* taker;         // when it is one
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
const void* library;
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
    const Target* watched;  // nothing fails, and the sites of its calls are collected
    volatile ULONGLONG started;
} now;
Resources counted = {};

// The sites of the calls of what is watched, in their order. The room is here before a run begins.
std::uint64_t sites[10000];
std::size_t site_count;

// What the run that is going on keeps by design.
struct {
    Resources least, most;
} kept;

const Failure no_memory = {"malloc", 0, 0, ENOMEM, instead};

const Failure& failure_of(const Target& target) {
    return target.gated < 0 ? no_memory : failures[std::size_t(target.failure)];
}

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
    if (is(now.watched) && site_count < std::size(sites)) sites[site_count++] = call_site(library);
    if (is(now.target)) {
        ++now.seen;
        if (now.seen == now.call || (now.persistent && now.seen > now.call))
            return &failure_of(*now.target);
    }
    return now.faulted && is(now.second) ? &failure_of(*now.second) : nullptr;
}

Decision decide_call(Gate& gate) {
    Gated& gated = gates[std::size_t(gate.index)];
    gated.injected = nullptr;
    if (now.armed) {
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

void put_up(void** slot, const char* name, Kind kind, bool in_runtime = false) {
    Gated gated = {nullptr, kind, in_runtime, {}, nullptr, 0, false, nullptr};
    for (std::size_t i = 0; i < failures.size() && kind == failing; ++i) {
        if (failures[i].name == name) gated.failures.push_back(int(i));
    }
    for (const Taker& taker : takers) {
        if (!std::strcmp(taker.name, name)) gated.taker = &taker;
    }
    gates.push_back(gated);
    gates.back().gate = &guard(slot, name, int(gates.size()) - 1);
}

void put_up_all() {
    library = GetModuleHandleA("util.dll");
    // Before there are gates: this may be called by the ones that are being put up.
    std::vector<std::pair<void**, const char*>> imports, runtime;
    for_each_import("util.dll", [&](const char*, const char* name, void** slot) {
        imports.emplace_back(slot, name);
    });
    for_each_import("libstdc++-6.dll", [&](const char*, const char* name, void** slot) {
        if (is_allocation(name)) runtime.emplace_back(slot, name);
    });
    for (const auto& [slot, name] : imports) {
        void* const other = stand_in(name, *slot);
        if (!other && cannot_fail(name)) continue;
        put_up(slot, name, is_allocation(name) ? allocating : failing);
        if (other) gates.back().gate->original = other;
    }
    for (const auto& [slot, name] : runtime)
        put_up(slot, name, allocating, true);
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
    kept = {};
    for (Gated& gated : gates)
        gated.calls = 0;
    const Resources before = resources_now(counted);
    {
        Run run;
        now.scenario->play(run);
    }
    Resources surplus = resources_now(counted);
    for (int i = 0; i < resource_kinds; ++i) {
        const long more = surplus[i] - before[i];
        surplus[i] = more - std::clamp(more, kept.least[i], kept.most[i]);
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
            if (failure_of({gated, failure}).how == once) continue;
            const Target second = {gated, failure};
            now.second = &second;
            play_and_compare();
            now.second = nullptr;
        }
    }
}

// The numbers of the calls that are to fail: of each call site the first, and the last, which may
// find something to undo.
std::set<int> calls_to_fail(const Target& target) {
    static std::set<std::pair<int, std::uint64_t>> shared;
    site_count = 0;
    now.watched = &target;
    play();
    now.watched = nullptr;
    std::map<std::uint64_t, int> first, last;
    for (std::size_t i = 0; i < site_count; ++i) {
        first.emplace(sites[i], int(i) + 1);
        last[sites[i]] = int(i) + 1;
    }
    std::set<int> calls;
    for (const auto& [site, call] : first) {
        if (now.scenario->shares_sites && !shared.emplace(target.gated, site).second) continue;
        calls.insert(call);
        if (now.scenario->fails_last) calls.insert(last[site]);
    }
    return calls;
}

// Once each, then for good from each on.
void fail_each_call(const Target& target, const std::set<int>& calls) {
    const bool for_good = failure_of(target).how != once;
    now.target = &target;
    for (const bool persistent : {false, true}) {
        if (persistent && !for_good) break;
        now.persistent = persistent;
        for (const int call : calls) {
            now.call = call;
            play_and_compare();
            if (!now.faulted) remark("is not called again");
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
bool Run::failing(const char* function, std::int64_t result) {
    const auto gives = [&](const Target* target) {
        return target && target->gated >= 0 && failure_of(*target).name == function &&
               failure_of(*target).result == result;
    };
    return gives(now.target) || gives(now.second);
}
bool Run::for_good() {
    return now.persistent;
}
void Run::violation(const std::string& what) {
    remark(what.c_str());
}
void Run::keeps(Resource resource, long least, long most) {
    kept.least[resource] = least;
    kept.most[resource] = most;
}

const std::vector<Scenario>& all_scenarios() {
    static const std::vector<Scenario> all = [] {
        std::vector<Scenario> scenarios;
        for (auto* list :
             {case_scenarios, text_scenarios, portable_scenarios, file_scenarios, system_scenarios})
            list({scenarios});
        return scenarios;
    }();
    return all;
}

void begin_sweeps() {
    error_output = reinterpret_cast<HANDLE>(_get_osfhandle(_dup(2)));
    registry();
    put_up_all();
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
    for (Gated& gated : gates)
        gated.usual = gated.calls > 0;
    const Target memory = {-1, -1};
    fail_each_call(memory, calls_to_fail(memory));
    for (std::size_t g = 0; g < gates.size(); ++g) {
        if (!gates[g].usual || gates[g].kind != failing) continue;
        const std::set<int> calls = calls_to_fail({int(g), -1});
        for (const int failure : gates[g].failures)
            fail_each_call({int(g), failure}, calls);
    }
    now.scenario = nullptr;
    return {remarks, remarks_size};
}

}  // namespace torture
