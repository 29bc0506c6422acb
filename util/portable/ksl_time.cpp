#include "util/portable/ksl_time.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "util/internal/ascii.h"
#include "util/internal/calendar.h"
#include "util/internal/decimal.h"

namespace {

constexpr int invalid_argument = 22;  // EINVAL

// Stores which of the names, each of three characters, stands at the column; else leaves index.
void read_name(std::string_view text, std::size_t column, std::string_view names, int& index) {
    if (text.size() < column + 3) return;
    for (std::size_t i = 0; i < names.size(); i += 3) {
        if (text.substr(column, 3) == names.substr(i, 3)) index = static_cast<int>(i / 3);
    }
}

// scanf's "%d": leading white space, an optional sign, digits. Moves text behind them and stores
// the number; false, with out left as it is, when there are no digits.
bool scan_int(const char*& text, int& out) {
    const char* digits = text;
    while (util::is_space(*digits))
        ++digits;
    if (*digits == '-' || *digits == '+') ++digits;
    if (!util::is_digit(*digits)) return false;
    out = util::parse_int(text);
    for (text = digits; util::is_digit(*text);)
        ++text;
    return true;
}

// The rest of the text from the column, "" beyond its end.
const char* from_column(std::string_view text, std::size_t column) {
    return text.data() + std::min(column, text.size());
}

// "%d:%d:%d": what comes before the first mismatch is kept.
void read_time_of_day(const char* p, std::tm& out) {
    if (!scan_int(p, out.tm_hour) || *p++ != ':') return;
    if (!scan_int(p, out.tm_min) || *p++ != ':') return;
    scan_int(p, out.tm_sec);
}

// Numbers read from text may be any int; sums of them wrap.
int wrapping_sum(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

// By the years since 1900, on purpose: see the header.
int leap_correction(const std::tm& date) {
    if (date.tm_year % 400 == 0) return 1;
    return date.tm_year % 4 == 0 && date.tm_year % 100 != 0 && date.tm_mon >= 2 ? 1 : 0;
}

int days_before_month(int month) {
    constexpr int days[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334, 365};
    return days[std::clamp(month, 0, 12)];
}

}  // namespace

void ksl_strptime(const char* text, std::tm* out) {
    if (!text || !out) return;
    const std::string_view line(text);
    read_name(line, 0, "SunMonTueWedThuFriSat", out->tm_wday);
    read_name(line, 4, "JanFebMarAprMayJunJulAugSepOctNovDec", out->tm_mon);

    const char* day = from_column(line, 8);
    scan_int(day, out->tm_mday);
    read_time_of_day(from_column(line, 11), *out);
    const char* year = from_column(line, 20);
    if (scan_int(year, out->tm_year)) out->tm_year = wrapping_sum(out->tm_year, -1900);

    const int before = days_before_month(out->tm_mon) + leap_correction(*out) - 1;
    out->tm_yday = wrapping_sum(out->tm_mday, before);
    out->tm_isdst = -1;
}

int ksl_localtime(const std::int64_t* t, std::tm* out) {
    return t && out ? util::local_time(*t, out) : invalid_argument;
}

int ksl_ctime(const std::int64_t* t, char* buf, std::uint64_t size) {
    std::tm fields;
    if (const int error = ksl_localtime(t, &fields)) return error;
    if (!buf) return 0;
    return static_cast<int>(std::strftime(buf, size, "%Y %m %d %H:%M:%S", &fields));
}
