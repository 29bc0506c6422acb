// Every function without a system call that takes a text, with a text that begins or ends where
// memory does. Some texts are longer than 16 bits count.
#include <ctime>
#include <exception>
#include <vector>

#include "fuzz/fuzz.h"
#include "fuzz/guarded_memory.h"
#include "util/host/helpers.h"
#include "util/host/util_getopt.h"
#include "util/portable/ksl_string.h"
#include "util/portable/ksl_time.h"
#include "util/portable/ksl_uint64.h"
#include "util/text/text.h"

namespace util_fuzz {
namespace {

const String abc("abc");
const String document("<k a=\"b\">v</k>");

template <typename Number>
void add(std::string& all, Number value) {
    all += std::to_string(value) + '\n';
}
void add(std::string& all, const String& value) {
    all += value.str() + '\n';
}
void add(std::string& all, const std::vector<String>& values) {
    for (const String& value : values)
        add(all, value);
}
// What a function of the C library's kind has allocated.
void add_block(std::string& all, char* block) {
    add(all, String(block));
    std::free(block);
}

void call_text_functions(const char* t, std::string& all) {
    const String s(t);
    add(all, s);
    add(all, s.to_lower());
    add(all, s.to_upper());
    add(all, s.trim("\t x"));
    add(all, s.replace("x", "yy"));
    add(all, s.split("x", true));
    add(all, s.split_by_tag("x"));
    add(all, deserializeStrArray(s));
    add(all, s.to_int());
    add(all, s.isLessThanVersion("1.2"));
    add(all, s.toDate().label().size());
    add(all, String(s).squeeze_spaces());
    add(all, String(s).replaceXML());
    add(all, String(s).prepend(t) + t);
    add(all, s == t);
    add(all, abc.replace("b", t));
    add(all, abc.replace(t, "b"));
    add(all, String(abc).replace(1, 1, t));
    add(all, abc.first(t, 0));
    add(all, abc.find(t, 0, 1));
    add(all, abc.trim(t));
    add(all, abc.split(t, true));
    add(all, String::format(t, ""));  // without a directive
    add(all, String::format("%s", t));
    add(all, String::format("%.9s", t));
    add(all, String(extstl::ExtDate(1, 2, 2003).text(t)));
    String value;
    add(all, UTIL_addTag(value, t, t));
    add(all, UTIL_extractTag(t, "k", value));
    add(all, UTIL_extractTag(document, t, value));
    add(all, UTIL_XMLParserExtractTagValue(&s, &abc, &abc, &value));
    add(all, UTIL_XMLParserExtractTagXml(&document, &s, &value, true));
    add(all, value);
    add(all, String(s).placeXML());  // may raise, so it is the last one
}

void call_plain_functions(char* t, std::string& all) {
    const std::string copy(t);
    std::tm time = {};
    ksl_strptime(t, &time);
    add(all, time.tm_yday);
    add(all, ksl_strcasecmp(t, copy.c_str()));
    add(all, ksl_match_token_str(t, t, "x"));
    add(all, ksl_match_token_str("a b", "b", t));
    add(all, ksl_uint64_c(t).lo());
    add(all, UTIL_isBKDevice(t));
    add(all, UTIL_IsBinaryEqual(t, copy.c_str(), static_cast<int>(copy.size()) + 1));
    const char* const args[] = {"p", t, nullptr};
    const char* argument = nullptr;
    int index = 1;
    add(all, UTIL_getopt(2, args, t, &index, &argument));
    add_block(all, ksl_strdup(t));
    char* coded = nullptr;
    if (copy.size() > 1) ksl_unicode2CodedChar(t, static_cast<int>(copy.size()) - 1, &coded);
    add_block(all, coded);
    std::string name(copy.size() + 1, '\0');
    UTIL_basename(name.data(), t);
    add(all, String(name.c_str()));
    UTIL_CDPbasename(name.data(), t);
    add(all, String(name.c_str()));
    // in place
    ksl_char2upper(t, static_cast<int>(copy.size() / 2));
    ksl_str2lower(t);
    ksl_str2upper(t);
    ksl_strupper(t);
    ksl_strcpy_trim(t);
    ksl_strcpy_clean(t);
    add(all, String(t));
}

std::string results(char* t) {
    std::string all;
    try {
        call_text_functions(t, all);
    } catch (const std::exception& error) {
        all += error.what();
    }
    call_plain_functions(t, all);
    return all;
}

}  // namespace

void page_ends(std::string_view input) {
    static GuardedMemory memory;
    std::string text = up_to_nul(std::string(input));
    std::replace(text.begin(), text.end(), '%', 'p');
    if (text.size() % 128 == 99) {
        while (text.size() < 70000)
            text += text;
        text.resize(70000);
    }
    require(results(memory.at_begin(text)) == results(memory.at_end(text)),
            "the place is the same");
}

}  // namespace util_fuzz
