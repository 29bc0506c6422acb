#include <ctime>

#include "torture/scenario.h"
#include "util/util.h"

using extstl::ExtDate;
using extstl::ExtString;
using extstl::ExtTime;

namespace torture {
namespace {

const String text("a text longer than any short string holds");
const String longer = text + " and more";
const String tags(
    "<long_enough_for_the_heap a=\"the value of an attribute\">  1&lt;2 and more</"
    "long_enough_for_the_heap>");
const String tag("long_enough_for_the_heap");

String formatted(const char* format, ...) {
    va_list args;
    va_start(args, format);
    struct End {
        va_list& list;
        ~End() { va_end(list); }
    } const end{args};
    return String::va_format(format, args);
}

// What derived classes may use.
struct OpenDate : ExtDate {
    using ExtDate::set_time_of_day;
};
struct OpenString : ExtString {
    OpenString(const char* bytes, std::uint64_t size) : ExtString(bytes, size) {}
};

}  // namespace

void text_scenarios(const Add& scenario) {
    scenario("String, made", [](Run& run) {
        const std::string standard(40, 's');
        run.completes(memory, [&] {
            const ExtString& base = text;
            const String from[] = {String(),
                                   String(base),
                                   String('c'),
                                   String(text.c_str()),
                                   String("a text longer than any short string", 30),
                                   String(40, 'c'),
                                   String(standard)};
            String copy(text), moved(std::move(copy)), assigned;
            assigned = text;
            assigned = std::move(moved);
            assigned += 'c';
            const std::unique_ptr<ExtString> owned(new String(from[3]));
            const ExtString plain[] = {ExtString(), ExtString("text"), ExtString(standard),
                                       ExtString(base)};
            const std::unique_ptr<ExtString> other(new ExtString(plain[3]));
            const OpenString open(text, 30);
        });
    });

    scenario("String, formatted", [](Run& run) {
        String result;
        run.completes(memory, [&] { result = formatted("%s %d", text.c_str(), 7); });
        run.outcome(result == text + " 7", result.empty());
    });
    scenario("String, formatted long", [](Run& run) {
        static int length = 0;
        length += 110000;  // more than the shared buffer holds by now, however far it has grown
        String result;
        run.completes(memory, [&] { result = String::format("%*s", length, ""); });
        run.outcome(result.size() == static_cast<unsigned>(length), result.empty());
    });
    scenario("String, asked", [](Run& run) {
        bool right = false;
        run.completes(memory, [&] {
            right = String(-7) == "-7" && String(7u) == "7" && String(7ul) == "7" &&
                    String(1.5) == "1.500000" && String::pad(3) == "   " && text.to_int() == 0 &&
                    text == 'a' && text != 'b' && text.first("text", 0) == 2 &&
                    text.first('t', 0) == 2 && text.last('s') == 40 && text.hash() != 0 &&
                    text.isAscii() && !text.hasUnprintable() && text.isEqualToVersion("0") &&
                    text.isLessThanVersion("1") && !text.isGreaterThanVersion("1") &&
                    text.find("TEXT", 0, 1) == 2;
        });
        run.outcome(right, run.raised() || Run::failing("_vsnprintf_s_l"));
    });
    const struct {
        const char* name;
        String result;
        void (*change)(String& s);
    } changes[] = {
        {"String, appended", text + text, [](String& s) { s += text; }},
        {"String, appended characters", text + text, [](String& s) { s += text.c_str(); }},
        {"String, prepended", text + text, [](String& s) { s.prepend(text); }},
        {"String, part replaced", text + text,
         [](String& s) { s.replace(0, 0, text, text.size()); }},
        {"String, rest replaced", "a " + text, [](String& s) { s.replace(2, 100, text); }},
        {"String, text replaced", longer + text.substr(1),
         [](String& s) { s.replace("a", longer.c_str(), ExtString::SCOPE_FIRST); }},
        {"String, squeezed", text, [](String& s) { s.squeeze_spaces(); }},
    };
    // Made or not made, and nothing between.
    for (const auto& c : changes) {
        scenario(c.name, [c](Run& run) {
            String target(text);
            run.completes(memory, [&] { c.change(target); });
            run.outcome(target == c.result, run.raised() && target == text, "the text");
        });
    }
    scenario("String, printed", [](Run& run) {
        std::ostringstream stream;
        run.call(memory, [&] { stream << text; });
        run.outcome(stream.str() == text.str(), run.raised() || !stream);
    });
    scenario("UTIL_addTag", [](Run& run) {
        String document("<x>");
        run.completes(memory, [&] { return UTIL_addTag(document, tag, text); });
        run.outcome(document.first(text, 0) != String::npos, document == "<x>");
    });
    scenario("UTIL_extractTag, UTIL_XMLParser...", [](Run& run) {
        const String untouched("untouched"), attribute("a");
        String values[] = {untouched, untouched, untouched};
        const String closed("<" + tag + ">" + text + "</" + tag + ">");
        int results[3] = {};
        run.call(nothing, [&] {
            results[0] = UTIL_extractTag(closed, tag, values[0]);
            results[1] = UTIL_XMLParserExtractTagValue(&tags, &tag, &attribute, &values[1]);
            results[2] = UTIL_XMLParserExtractTagXml(&tags, &tag, &values[2], true);
        });
        const String expected[] = {text, "the value of an attribute", "1&lt;2 and more"};
        for (int i = 0; i < 3; ++i) {
            run.outcome(results[i] == 0 && values[i] == expected[i],
                        results[i] == -1 && values[i] == untouched);
        }
    });
    scenario("String::toDate", [](Run& run) {
        const String written("2010/05/17 12:30:45 a_label_longer_than_any_short_string_holds");
        std::int64_t time = 0;
        run.call(nothing, [&] { time = written.toDate().time(); });
        // Else it is the current time; unless it is the clock that fails.
        const bool current = std::abs(time - std::time(nullptr)) <= 60;
        const bool no_clock = Run::failing("_mktime64") || Run::failing("_time64");
        run.outcome(time > 1000000000 && time < 1300000000, current || no_clock);
    });
    scenario("ExtDate", [](Run& run) {
        ExtString shown, other;
        bool valid = false;
        run.completes(memory, [&] {
            const ExtDate today, date(17, 5, 2010);
            OpenDate open;
            open = OpenDate();
            static_cast<ExtDate&>(open) = date;
            open.set_time_of_day(1, 2, 3);
            const std::unique_ptr<ExtDate> owned(new ExtDate(date));
            valid = owned->isValid();
            shown = owned->toString();
            other = date.text("a pattern with the year: %Y");
        });
        run.outcome(
            valid && shown.str() == "2010 05 17" && other.str() == "a pattern with the year: 2010",
            run.raised() || !valid || shown.empty() || other.empty());
    });
    scenario("ExtTime", [](Run& run) {
        const ExtTime source(ExtDate(17, 5, 2010), 12, 30, 45, text);
        ExtTime target(ExtDate(1, 2, 2003), 4, 5, 6, "UTC");
        const std::int64_t before = target.time();
        run.completes(memory, [&] { target = source; });
        run.outcome(target.time() == source.time() && target.label().str() == text.str(),
                    target.time() == before && target.label().str() == "UTC");
        ExtString shown;
        run.completes(memory, [&] {
            const ExtTime now;
            const std::unique_ptr<ExtDate> owned(
                new ExtTime(ExtTime(ExtDate(now), 1, 2, 3, source.label())));
            const ExtTime copy(source);
            shown = static_cast<const ExtDate&>(copy).toString();
            owned->toString();
        });
        run.outcome(shown.str() == "2010 05 17 12:30:45",
                    run.raised() || Run::failing("strftime") || Run::failing("_mktime64"));
    });
}

}  // namespace torture
