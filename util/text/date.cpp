#include "util/text/date.h"

#include <string>
#include <string_view>

#include "util/internal/calendar.h"

namespace extstl {

namespace {

constexpr std::string_view day_names[] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                          "Thursday", "Friday", "Saturday"};
constexpr std::string_view month_names[] = {"January",   "February", "March",    "April",
                                            "May",       "June",     "July",     "August",
                                            "September", "October",  "November", "December"};

// The name for a field; for a field out of range none, as for any text that cannot be written.
template <std::size_t Count>
std::string_view name_of(const std::string_view (&names)[Count], int field) {
    const auto index = static_cast<std::size_t>(field);
    return index < Count ? names[index] : "";
}

// strftime of the platform follows the host program's locale, and not every Windows runtime has the
// form that takes a locale. So the directives that read it are put here as they are in the "C"
// locale; the others are left to the platform.
std::string in_c_locale(std::string_view pattern, const std::tm& fields) {
    std::string result;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        if (pattern[i] != '%' || i + 1 == pattern.size()) {
            result += pattern[i];
            continue;
        }
        // "#" asks for the long form of a date and changes nothing in the other directives here.
        const std::size_t flagged = pattern[i + 1] == '#' && i + 2 < pattern.size() ? 1 : 0;
        const std::size_t length = 2 + flagged;
        switch (pattern[i + 1 + flagged]) {
            case 'a':
                result += name_of(day_names, fields.tm_wday).substr(0, 3);
                break;
            case 'A':
                result += name_of(day_names, fields.tm_wday);
                break;
            case 'b':
                result += name_of(month_names, fields.tm_mon).substr(0, 3);
                break;
            case 'B':
                result += name_of(month_names, fields.tm_mon);
                break;
            case 'p':
                result += fields.tm_hour < 12 ? "AM" : "PM";
                break;
            case 'X':
                result += "%H:%M:%S";
                break;
            case 'x':
                result += flagged ? in_c_locale("%A, %B %d, %Y", fields) : "%m/%d/%y";
                break;
            case 'c':
                result += in_c_locale(flagged ? "%#x %X" : "%x %X", fields);
                break;
            default:
                result += pattern.substr(i, length);
        }
        i += length - 1;
    }
    return result;
}

// strftime into a buffer of the given size; "" when the text does not fit or cannot be written.
template <std::size_t Size>
ExtString formatted(const char* pattern, const std::tm& fields) {
    char buffer[Size];
    const std::size_t length = std::strftime(buffer, Size, pattern, &fields);
    return std::string(buffer, length);
}

std::tm local_fields_now() {
    std::tm fields = {};
    util::local_time(util::current_time(), &fields);
    return fields;
}

// Modulo 2^32 like all of the runtime's arithmetic on fields: no number read from a text overflows.
int month_field(int month) {
    return static_cast<int>(static_cast<unsigned>(month) - 1);
}

int year_field(int year) {
    return year < 100 ? year + 100 : year - 1900;
}

}  // namespace

ExtDate::~ExtDate() = default;

ExtDate::ExtDate() : m_fields(local_fields_now()) {
    set_time_of_day(0, 0, 1);
}

ExtDate::ExtDate(int day, int month, int year) {
    m_fields.tm_mday = day;
    m_fields.tm_mon = month_field(month);
    m_fields.tm_year = year_field(year);
    set_time_of_day(0, 0, 1);
}

ExtDate::ExtDate(const ExtDate& other) : m_fields(other.m_fields) {
    set_time_of_day(0, 0, 1);
}

ExtDate& ExtDate::operator=(const ExtDate& other) {
    m_fields = other.m_fields;
    set_time_of_day(0, 0, 1);
    return *this;
}

void ExtDate::set_time_of_day(int hour, int minute, int second) {
    m_fields.tm_hour = hour;
    m_fields.tm_min = minute;
    m_fields.tm_sec = second;
    m_fields.tm_isdst = -1;
    m_time = util::make_time(&m_fields);
}

bool ExtDate::isValid() const {
    std::tm copy = m_fields;
    return util::make_time(&copy) != -1;
}

ExtString ExtDate::text(const char* pattern) const {
    if (!pattern || !isValid()) return ExtString();
    return formatted<128>(in_c_locale(pattern, m_fields).c_str(), m_fields);
}

ExtString ExtDate::toString() const {
    return text("%Y %m %d");
}

ExtTime::~ExtTime() = default;

ExtTime::ExtTime() {
    m_fields = local_fields_now();
    m_time = util::make_time(&m_fields);
}

ExtTime::ExtTime(const ExtDate& date, int hour, int minute, int second, const ExtString& label)
    : ExtDate(date), m_label(label) {
    set_time_of_day(hour, minute, second);
}

ExtTime::ExtTime(const ExtTime& other)
    : ExtTime(other, other.m_fields.tm_hour, other.m_fields.tm_min, other.m_fields.tm_sec,
              other.m_label) {}

ExtTime& ExtTime::operator=(const ExtTime& other) {
    m_label = other.m_label;  // first, as the only one that can fail
    m_fields = other.m_fields;
    m_time = other.m_time;
    return *this;
}

ExtString ExtTime::toString() const {
    if (m_time == 1) return ExtString();
    std::string text = ExtDate::toString().str();
    text += ' ';
    text += formatted<sizeof "00:00:00">("%H:%M:%S", m_fields).str();
    return text;
}

ExtString ExtTime::label() const {
    return m_label;
}

}  // namespace extstl
