#include "util/portable/ksl_time.h"

#include <algorithm>
#include <cstring>
#include <string_view>

#include "util/internal/ascii.h"
#include "util/internal/calendar.h"
#include "util/internal/decimal.h"

namespace {

constexpr int invalid_argument = 22;  // EINVAL

// Stores in `index` which of the names, of three characters each, begins at `column`. Leaves
// `index` unchanged if none does.
void read_name(std::string_view text, std::size_t column, std::string_view names, int& index) {
    if (text.size() < column + 3) return;
    for (std::size_t i = 0; i < names.size(); i += 3) {
        if (text.substr(column, 3) == names.substr(i, 3)) index = static_cast<int>(i / 3);
    }
}

// Reads a number as scanf's "%d" does: leading white space, an optional sign, digits. Stores it in
// `out` and moves `text` after it. Returns false, with `out` unchanged, if there are no digits.
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

// Returns the text from `column`, or "" if the text is shorter.
const char* from_column(std::string_view text, std::size_t column) {
    return text.data() + std::min(column, text.size());
}

// Reads "%d:%d:%d". Stores the numbers before the first mismatch.
void read_time_of_day(const char* p, std::tm& out) {
    if (!scan_int(p, out.tm_hour) || *p++ != ':') return;
    if (!scan_int(p, out.tm_min) || *p++ != ':') return;
    scan_int(p, out.tm_sec);
}

// Wraps, because a number that is read from a text may be any int.
int wrapping_sum(int a, int b) {
    return static_cast<int>(static_cast<unsigned>(a) + static_cast<unsigned>(b));
}

// By design, this uses the years since 1900: see the header.
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
