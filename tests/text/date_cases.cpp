#include <clocale>

#include "support/cases.h"
#include "support/time_zone.h"
#include "util/text/byte_string.h"
#include "util/text/date.h"

using extstl::ExtDate;
using extstl::ExtTime;
using namespace util_test;

namespace {

// The results of a call in each of three time zones, or one result if all are the same.
template <typename Call>
Words in_zones(Call make) {
    Words results;
    for (const char* zone : {"UTC", "EST5EDT", "CET-1CEST"}) {
        set_zone(zone);
        const Words words = make();
        if (results.empty()) results = words;
        if (results != words) say(results, said(zone, words));
    }
    return results;
}

Words shown(const ExtDate& date) {
    char fields[32];
    std::strftime(fields, sizeof fields, "%Y-%m-%d %H:%M:%S", &date.fields());
    const char* const validity = date.isValid() ? "valid" : "invalid";
    return said(fields, date.toString(), date.isValid() == (date.time() != -1) ? validity : "odd");
}

Words date(int day, int month, int year) {
    return in_zones([&] { return shown(ExtDate(day, month, year)); });
}

// On the day of the next call's text: a time as it is, and one made of its date.
Words time(int year, int hour, int minute, int second) {
    return in_zones([&] {
        const ExtTime time(ExtDate(17, 5, year), hour, minute, second, "");
        return said(shown(time), shown(ExtDate(time)));
    });
}

// 2001-09-08 21:46:40, or at another hour, in a program with a German locale.
Words written_at(int hour, const char* pattern) {
    std::setlocale(LC_ALL, "German");
    const Words words = in_zones(
        [&] { return said(ExtTime(ExtDate(8, 9, 2001), hour, 46, 40, "").text(pattern)); });
    std::setlocale(LC_ALL, "C");
    return words;
}

// Of each month of 2001.
Words first_days() {
    Words words;
    for (int month = 1; month <= 12; ++month)
        say(words, ExtTime(ExtDate(1, month, 2001), 0, 0, 0, "").text("%A %B"));
    return words;
}

Words read(const String& text) {
    return in_zones([&] {
        const ExtTime time = text.toDate();
        return said(time.toString(), time.label());
    });
}

// Of the 17th of a month of 2010, at noon.
std::int64_t seconds(const std::string& zone, int month) {
    set_zone(zone);
    return ExtTime(ExtDate(17, month, 2010), 12, 0, 0, "").time();
}

// The second 1 has no text as a time.
Words second_one() {
    set_zone("UTC");
    const ExtTime one(ExtDate(1, 1, 1970), 0, 0, 1, "");
    return said(one.time(), one.toString(), ExtDate(one).toString());
}

// Assigned to a time, as the base class prints it, and to a date: the seconds between the two.
Words assigned(const char* label) {
    const ExtTime time(ExtDate(17, 5, 2010), 14, 20, 10, label);
    ExtTime copy;
    copy = time;
    ExtDate date;
    date = time;
    const ExtDate& base = copy;
    return said(base.toString(), copy.label(), copy.time() - date.time());
}

bool is_today(int most_seconds) {
    const ExtDate today;
    return std::abs(std::time(nullptr) - today.time()) <= most_seconds &&
           today.text("%H:%M:%S").str() == "00:00:01";
}

bool reads_now(const String& text) {
    const std::time_t before = std::time(nullptr), time = text.toDate().time();
    return before <= time && time <= std::time(nullptr);
}

const char* const no_text = "\"\" ... | raises std::bad_alloc";

const Cases<CaseWorld> cases(
    "text/date.cases",
    {
        call("date", "... invalid ... | raises std::bad_alloc", date),
        call("is_valid", "false",
             [](int day, int month, int year) { return ExtDate(day, month, year).isValid(); }),
        call("time", "... invalid ... | raises std::bad_alloc", time),
        call("written", no_text, [](const char* pattern) { return written_at(21, pattern); }),
        call("written_at", no_text, written_at),
        call("first_days", first_days),
        call("read", "... | raises std::bad_alloc", read),
        call("seconds", "-1", seconds),
        call("second_one", second_one),
        call("assigned", "raises std::bad_alloc", assigned),
        call("is_today", "false", is_today),
        call("reads_now", "false", reads_now),
    });

}  // namespace
