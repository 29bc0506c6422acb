#include <ctime>

#include "torture/scenario.h"
#include "util/util.h"

using extstl::ExtDate;
using extstl::ExtString;
using extstl::ExtTime;

namespace torture {
namespace {

const String text("a text longer than any short string holds");
const std::string standard = text.str();

const struct {
    const char* name;
    std::string expected;
    std::string (*make)();
} texts[] = {
    {"String(double)", "1.500000", [] { return String(1.5).str(); }},
    {"String::format", standard + " 7", [] { return String::format("%s 7", text.c_str()).str(); }},
    {"String::operator=, +=", standard + "c",
     [] {
         String assigned;
         assigned = text;
         return (assigned += 'c').str();
     }},
    {"ExtDate::text", "a pattern with the year: 2010",
     [] { return ExtDate(17, 5, 2010).text("a pattern with the year: %Y").str(); }},
    {"ExtTime, on the heap", "2010 05 17 12:30:45",
     [] {
         const ExtTime time(ExtDate(17, 5, 2010), 12, 30, 45, text);
         return std::unique_ptr<ExtDate>(new ExtTime(time))->toString().str();
     }},
    {"ExtTime::label", standard,
     [] { return ExtTime(ExtDate(ExtTime()), 12, 30, 45, text).label().str(); }},
};

}  // namespace

void text_scenarios(const Add& scenario) {
    scenario("Texts that are made", [](Run& run) {
        const bool refused =
            Run::failing("_vsnprintf_s_l") || Run::failing("strftime") || Run::failing("_mktime64");
        for (const auto& row : texts) {
            const std::string made = run.call(memory, row.make);
            run.outcome(made == row.expected,
                        run.raised() || (refused && made.size() < row.expected.size()), row.name);
        }
    });
    scenario("String, formatted long", [](Run& run) {
        static int length = 0;
        length += 110000;  // more than the shared buffer holds by now, however far it has grown
        const String made = run.call(memory, [] { return String::format("%*s", length, ""); });
        const bool refused = Run::failing("_vsnprintf_s_l") || Run::failing("_vscprintf_l");
        run.outcome(made == String::pad(length), run.raised() || (refused && made.empty()));
    });
    // Each changes a text, or leaves it as it was.
    const auto changes = [&](const char* name, const std::string& expected, auto change) {
        scenario(name, [=](Run& run) {
            String target(text);
            run.call(memory, [&] { change(target); });
            run.outcome(target == expected, run.raised() && target == text);
        });
    };
    changes("String::replace", standard + standard.substr(1),
            [](String& target) { target.replace("a", text.c_str(), ExtString::SCOPE_FIRST); });
    changes("UTIL_addTag", standard + "<a>" + standard + "</a>",
            [](String& target) { UTIL_addTag(target, "a", text); });
    scenario("String::toDate", [](Run& run) {
        const String written("2010/05/17 12:30:45 a_label_longer_than_any_short_string_holds");
        std::int64_t time = 0;
        run.call(nothing, [&] { time = written.toDate().time(); });
        // Else it is the current time, unless it is the clock that fails.
        const bool current = std::abs(time - std::time(nullptr)) <= 60;
        const bool no_clock = Run::failing("_mktime64") || Run::failing("_time64");
        run.outcome(time > 1000000000 && time < 1300000000, current || no_clock);
    });
    scenario("ExtTime::operator=", [](Run& run) {
        const ExtTime source(ExtDate(17, 5, 2010), 12, 30, 45, text);
        ExtTime target(ExtDate(1, 2, 2003), 4, 5, 6, "UTC");
        const std::int64_t before = target.time();
        run.call(memory, [&] { target = source; });
        run.outcome(target.time() == source.time() && target.label().str() == standard,
                    run.raised() && target.time() == before && target.label().str() == "UTC");
    });
}

}  // namespace torture
