#include "support/cases.h"
#include "support/time_zone.h"
#include "util/portable/ksl_string.h"
#include "util/portable/ksl_time.h"

using namespace util_test;

namespace {

// Changes a copy of the text in place; the copy follows the result. Null stays null.
template <int (*change)(char*)>
Words changed(const std::string& text) {
    if (text == "$null") return said(change(nullptr));
    std::string copy = text;
    const int result = change(copy.data());
    return said(result, copy.c_str());
}

// The result and the text made, or the -1 and "kept".
template <int (*code)(const void*, int, char**)>
Words coded(const char* bytes, int length) {
    char untouched, *out = &untouched;
    const int result = code(bytes, length, &out);
    if (out == &untouched) return said(result, "kept");
    const Words words = said(result, out);
    std::free(out);
    return words;
}
// What such a call prints, when it refuses.
template <int (*code)(const void*, int, char**)>
std::string refusal(const char* bytes, int length) {
    testing::internal::CaptureStdout();
    coded<code>(bytes, length);
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

Words nulls() {
    testing::internal::CaptureStdout();
    const Words words = said(ksl_strupper(nullptr), ksl_strcpy_trim(nullptr),
                             ksl_strcpy_clean(nullptr), ksl_strdup(nullptr), ksl_str2upper(nullptr),
                             ksl_str2lower(nullptr), ksl_char2upper(nullptr, 0));
    return said(words, testing::internal::GetCapturedStdout());
}

// Day of the week, month, day, time, year, day of the year, daylight saving. Fields that the text
// does not set keep their values: 91 5 93 94:95:96 97 98 99, with another month if given.
std::string parsed_in(int month, const char* text) {
    std::tm t = {};
    t.tm_wday = 91, t.tm_mon = month, t.tm_mday = 93, t.tm_hour = 94, t.tm_min = 95;
    t.tm_sec = 96, t.tm_year = 97, t.tm_yday = 98, t.tm_isdst = 99;
    ksl_strptime(text, &t);
    char fields[128];
    std::snprintf(fields, sizeof fields, "%d %d %d %d:%d:%d %d %d %d", t.tm_wday, t.tm_mon,
                  t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, t.tm_year, t.tm_yday, t.tm_isdst);
    return fields;
}

// Both calls with this time, then with null pointers.
Words time_codes(std::int64_t time) {
    std::tm fields;
    char text[32];
    return said(ksl_localtime(&time, &fields), ksl_ctime(&time, text, sizeof text),
                ksl_localtime(&time, nullptr), ksl_ctime(&time, nullptr, 32),
                ksl_localtime(nullptr, &fields), ksl_ctime(nullptr, text, sizeof text));
}

// The time in that zone from ksl_ctime, with 19 bytes and with 20. From ksl_localtime: day of the
// week, day of the year, daylight saving.
Words local(const char* zone, std::int64_t time) {
    set_zone(zone);
    char text[20] = "";
    std::tm fields;
    const int too_short = ksl_ctime(&time, text, 19);
    const int length = ksl_ctime(&time, text, sizeof text);
    ksl_localtime(&time, &fields);
    return said(too_short, length, text, fields.tm_wday, fields.tm_yday, fields.tm_isdst);
}

const Cases<CaseWorld> cases("portable/ksl.cases",
                             {
                                 call("trim", changed<ksl_strcpy_trim>),
                                 call("clean", changed<ksl_strcpy_clean>),
                                 call("upper", changed<ksl_strupper>),
                                 call("capitalise",
                                      [](std::string text, int begin, int at) {
                                          const char* const result =
                                              ksl_char2upper(text.data() + begin, at);
                                          return said(result, text);
                                      }),
                                 call("duplicate", "$null",
                                      [](const char* text) {
                                          char* const copy = ksl_strdup(text);
                                          const Words words = said(copy);
                                          std::free(copy);
                                          return words;
                                      }),
                                 call("compare", ksl_strcasecmp),
                                 call("match_token", ksl_match_token_str),
                                 call("encode", "-1 kept", coded<ksl_unicode2CodedChar>),
                                 call("decode", "-1 kept", coded<ksl_codedChar2Unicode>),
                                 call("encode_prints", refusal<ksl_unicode2CodedChar>),
                                 call("decode_prints", refusal<ksl_codedChar2Unicode>),
                                 call("code_nowhere",
                                      [] {
                                          return said(ksl_unicode2CodedChar("abc", 1, nullptr),
                                                      ksl_codedChar2Unicode("abc", 1, nullptr));
                                      }),
                                 call("nulls", nulls),
                                 call("strptime",
                                      [](const char* text) { return parsed_in(5, text); }),
                                 call("strptime_in", parsed_in),
                                 call("time_codes", time_codes),
                                 call("local", local),
                             });

}  // namespace
