// The case files of the suites as scenarios: each block is played with every fault. Every result up
// to the first one that differs must be as written. The first that differs must be the documented
// failure, and only after a fault.
#include "support/cases.h"
#include "support/matches.h"
#include "torture/scenario.h"

using namespace util_test;

namespace {

std::vector<torture::Scenario>& all() {
    static std::vector<torture::Scenario> scenarios;
    return scenarios;
}

Words result_of(const Step& step) {
    try {
        return step.make();
    } catch (const _com_error& error) {
        return {"raises", error.Error() == E_OUTOFMEMORY ? "_com_error" : "another _com_error"};
    }
}

// Alternatives are separated by " | ".
bool is_documented(const std::string& result, std::string patterns) {
    constexpr char separator[] = " | ";
    for (std::size_t end; (end = patterns.find(separator)) != std::string::npos;) {
        if (matches(result, patterns.substr(0, end))) return true;
        patterns.erase(0, end + sizeof separator - 1);
    }
    return matches(result, patterns);
}

// Counts what the call keeps by design. After a failure it may keep less.
void keep(const Step& step, const Words& actual) {
    const auto& [resource, number, event] = step.call.kept;
    if (number == 0) return;
    const auto* const end = std::end(torture::resource_names);
    const auto* const name =
        std::find(std::begin(torture::resource_names), end, std::string_view(resource));
    if (name == end) throw CaseError(std::string("no such resource: ") + resource);
    const std::string result = written(actual, step.world);
    const bool has_failed = is_documented(result, step.call.failure);
    const bool happened = event.empty() || matches(result, event) ||
                          (has_failed && torture::Run::failing(event.c_str()));
    const long most = happened ? number : 0;
    torture::Run::keeps_more(torture::Resource(name - torture::resource_names),
                             event.empty() && has_failed ? 0 : most, most);
}

void play(const Block& block, torture::Run& run) {
    block.play([&](const Step& step) {
        const Words actual = result_of(step);  // arms before the call
        torture::playing.armed = false;
        keep(step, actual);
        if (actual == step.expected) return true;
        const std::string result = written(actual, step.world);
        if (!torture::Run::faulted() || !is_documented(result, step.call.failure))
            run.always(false, "line " + std::to_string(step.line) + ", " + step.call.name + " => " +
                                  result);
        return false;
    });
    // A current directory that is too long leaks by design, if there is memory.
    if (torture::Run::failing("GetCurrentDirectoryA", 300) && !torture::Run::failing("memory")) {
        const int blocks = (torture::playing.faults + 1) / 2;  // two calls ask for each path
        torture::Run::keeps_more(torture::heap_blocks, blocks, blocks);
    }
}

}  // namespace

void util_test::add_cases(const CaseFile& file) {
    for (const Block& block : file.blocks) {
        const auto played = [&block](torture::Run& run) { play(block, run); };
        if (!block.plain) all().push_back({file.stem + ": " + block.title, played, true, false});
    }
}

void torture::case_scenarios(const Add& scenario) {
    before_call = [] { playing.armed = true; };
    scenario.all = all();
}
