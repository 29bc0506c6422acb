#include "torture/sweep.h"

#include <io.h>

#include <csignal>
#include <list>

#include "support/import_patch.h"
#include "support/private_registry.h"
#include "torture/failures.h"
#include "torture/gate.h"
#include "torture/resources.h"
#include "torture/stand_ins.h"
#include "util/text/byte_string.h"

namespace torture {

Figures figures;
Playing playing;

namespace {

// An imported function. All that allocate share the entry "memory".
struct Function {
    std::string name;
    std::vector<const Failure*> failures;
    Taker taker;
    int calls = 0;       // in this run
    bool usual = false;  // called when nothing fails
};

struct Target {
    const Function* function;
    const Failure* failure;
};

const Function no_function = {"nothing", {}, {}};
const Failure no_failure = {};
const Target nothing = {&no_function, &no_failure};

struct Call {
    const Function* function;
    int number;
    std::uint64_t site;
};

// Never destroyed: the gates are used until the process has ended.
auto& functions = *new std::list<Function>;
const void* library;

// The run that is going on. Nothing is allocated for what it notes: heap blocks are being counted.
struct {
    const Scenario* scenario = nullptr;
    volatile ULONGLONG started = 0;
    Target target = nothing;  // fails once, or from then on
    int call = 0;             // which call of the target
    bool for_good = false;
    Target second = nothing;  // fails too after the target, whenever it is called
    bool watched = false;     // nothing fails, and the calls are noted
    std::vector<Call> calls;
    std::string remarks;  // what was found in the scenario
} now;
Resources counted = {};

// Ends the process, which has crashed or hangs. The standard error may be captured by then.
HANDLE error_output;
[[noreturn]] void give_up(const char* what) {
    remark(what);
    DWORD written;
    WriteFile(error_output, now.remarks.data(), DWORD(now.remarks.size()), &written, nullptr);
    TerminateProcess(GetCurrentProcess(), 98);
    std::abort();
}

// What the call that is being made fails with, if it does.
const Failure* failure_due(const Function& function) {
    const bool is_due = function.calls == now.call || (now.for_good && function.calls > now.call);
    if (now.target.function == &function && is_due) {
        const bool is_memory = now.target.failure->how == memory_runs_out;
        if (++playing.faults == 1) ++(is_memory ? figures.allocations : figures.faults);
        return now.target.failure;
    }
    return playing.faults > 0 && now.second.function == &function ? now.second.failure : nullptr;
}

void put_up_gates(const char* module, bool in_runtime) {
    util_test::for_each_import(module, [&](const char*, const char* name, void** slot) {
        std::vector<const Failure*> ways = failures_of(name);
        const bool allocates = !ways.empty() && ways[0]->how == memory_runs_out;
        if (in_runtime && !allocates) return;
        void* const other = stand_in(name);
        if (!ways.empty() && ways[0]->how == never) ways.clear();
        if (ways.empty() && !other) return;
        const Taker taker = takers.count(name) ? takers.at(name) : Taker();
        if (!allocates) functions.push_back({name, ways, taker});
        guard(slot, {other ? other : *slot, allocates ? &functions.front() : &functions.back(),
                     in_runtime});
    });
}

DWORD WINAPI watch_time(void*) {
    constexpr ULONGLONG limit_ms = 60000;
    for (;; Sleep(500)) {
        if (now.scenario && GetTickCount64() - now.started >= limit_ms) give_up("hangs");
    }
}

// How much more, or less, there is of each resource after the run than may be.
Resources play() {
    playing = {};
    if (now.watched) now.calls.clear();
    now.started = GetTickCount64();
    stand_ins = StandIns();
    for (Function& function : functions)
        function.calls = 0;
    const Resources before = resources_now(counted);
    try {
        Run run;
        now.scenario->play(run);
    } catch (const std::exception& error) {
        remark(error.what());
    }
    Resources surplus = resources_now(counted);
    for (int i = 0; i < resource_kinds; ++i) {
        const long more = surplus[i] - before[i];
        surplus[i] = more - std::clamp(more, playing.least[i], playing.most[i]);
    }
    ++figures.runs;
    String::format("%2000s", "");  // hangs if the lock of the shared buffer stayed held
    return surplus;
}

// A cache that fills once is not a leak. A leak repeats in every run.
void play_and_compare() {
    Resources least = play();
    for (int again = 0; again < 3 && least != Resources(); ++again) {
        const Resources next = play();
        for (int i = 0; i < resource_kinds; ++i) {
            if (next[i] * least[i] <= 0) least[i] = 0;
        }
    }
    for (int i = 0; i < resource_kinds; ++i) {
        if (least[i] != 0) remark(std::to_string(least[i]) + " " + resource_names[i] + " more");
    }
}

// Functions that are called only after a failure fail as well.
void fail_what_is_new() {
    std::vector<Target> seconds;
    for (const Function& function : functions) {
        if (function.usual || function.calls == 0) continue;
        for (const Failure* const failure : function.failures) {
            if (failure->how != once) seconds.push_back({&function, failure});
        }
    }
    for (const Target& second : seconds) {
        now.second = second;
        play_and_compare();
    }
    now.second = nothing;
}

// The numbers of the calls that are to fail: of each call site the first, and the last, which may
// find something to undo.
std::set<int> calls_to_fail(const Function& function) {
    static std::set<std::pair<const Function*, std::uint64_t>> shared;
    std::map<std::uint64_t, std::set<int>> calls_from;
    for (const Call& call : now.calls) {
        if (call.function == &function) calls_from[call.site].insert(call.number);
    }
    std::set<int> calls;
    for (const auto& [site, numbers] : calls_from) {
        if (now.scenario->shares_sites && !shared.emplace(&function, site).second) continue;
        calls.insert(*numbers.begin());
        if (now.scenario->fails_last) calls.insert(*numbers.rbegin());
    }
    return calls;
}

// Once each, then for good from each on.
void fail_each_call(const Target& target, const std::set<int>& calls) {
    now.target = target;
    for (const bool for_good : {false, true}) {
        if (for_good && target.failure->how == once) break;
        now.for_good = for_good;
        for (const int call : calls) {
            now.call = call;
            play_and_compare();
            if (playing.faults == 0) remark("is not called again");
            fail_what_is_new();
        }
    }
    now.target = nothing;
    now.for_good = false;
}

}  // namespace

std::uint64_t pass_gate(const Gate& gate, const Arguments& arguments) {
    Function& function = *static_cast<Function*>(gate.owner);
    const Failure* failure = nullptr;
    if (playing.armed && (!gate.in_runtime || called_from(library))) {
        ++function.calls;
        if (now.watched && now.calls.size() == now.calls.capacity())
            give_up("makes more calls than can be noted");
        if (now.watched) now.calls.push_back({&function, function.calls, call_site(library)});
        failure = failure_due(function);
    }
    std::uint64_t result = 0;
    if (!failure || failure->how == working) {
        result = call_original(gate, arguments);
        const bool succeeded = result != 0 && result != ~std::uint64_t{0};
        if (succeeded) counted[function.taker.resource] += function.taker.change;
    }
    if (!failure) return result;
    ++failure->times;
    if (failure->error_number) errno = failure->error_number;
    if (failure->last_error) SetLastError(failure->last_error);
    return static_cast<std::uint64_t>(failure->result);
}

void remark(const std::string& what) {
    char line[400];
    const int length = std::snprintf(
        line, sizeof line, "%s with %s failing (%ld), then %s, %s %d\n", what.c_str(),
        now.target.function->name.c_str(), long(now.target.failure->result),
        now.second.function->name.c_str(), now.for_good ? "from call" : "call", now.call);
    const std::size_t room = now.remarks.capacity() - now.remarks.size();
    now.remarks.append(line, std::min({std::size_t(length), sizeof line - 1, room}));
}

bool Run::failing(const std::string& function, std::optional<std::int64_t> result) {
    for (const Target& target : {now.target, now.second}) {
        if (target.function->name == function &&
            target.failure->result == result.value_or(target.failure->result))
            return true;
    }
    return false;
}

void begin_sweeps() {
    error_output = reinterpret_cast<HANDLE>(_get_osfhandle(_dup(2)));
    static const util_test::PrivateRegistry registry;  // for all scenarios
    now.remarks.reserve(1 << 16);
    now.calls.reserve(100000);
    library = GetModuleHandleA("util.dll");
    functions.push_back({"memory", {&failures.front()}, {}});
    put_up_gates("util.dll", false);
    put_up_gates("libstdc++-6.dll", true);
    util_test::place_of_patch = called_by_gate;  // what a scenario replaces fails as well
    SetUnhandledExceptionFilter([](EXCEPTION_POINTERS*) -> LONG { give_up("crashes"); });
    std::signal(SIGABRT, [](int) { give_up("aborts"); });
    CloseHandle(CreateThread(nullptr, 0, watch_time, nullptr, 0, nullptr));
}

std::string sweep(const Scenario& scenario) {
    now.remarks.clear();
    now.started = GetTickCount64();
    now.scenario = &scenario;
    play();  // the platform keeps some things from first use on
    now.watched = true;
    play_and_compare();
    now.watched = false;
    for (Function& function : functions)
        function.usual = function.calls > 0;
    for (const Function& function : functions) {
        if (!function.usual || function.failures.empty()) continue;
        const std::set<int> calls = calls_to_fail(function);
        for (const Failure* const failure : function.failures)
            fail_each_call({&function, failure}, calls);
    }
    now.scenario = nullptr;
    return now.remarks;
}

}  // namespace torture
