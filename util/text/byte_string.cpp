#include "util/text/byte_string.h"

#include <algorithm>
#include <ostream>
#include <utility>

#include "util/internal/byte_set.h"
#include "util/internal/decimal.h"
#include "util/internal/kernels/change_case.h"
#include "util/internal/position_error.h"
#include "util/text/find_text.h"

namespace {

template <typename IsMember>
String trimmed(std::string_view text, IsMember is_member) {
    const char* end = text.data() + text.size();
    const char* const begin = std::find_if_not(text.data(), end, is_member);
    while (begin != end && is_member(end[-1]))
        --end;
    return String(begin, static_cast<std::uint64_t>(end - begin));
}

}  // namespace

const String String::eol("\n");

String::String() = default;
String::String(const String& other) = default;
String::String(const extstl::ExtString& other) : ExtString(other) {}
String::String(String&& other) noexcept = default;
String::String(char c) : String(1, c) {}
String::String(const char* s) : ExtString(s) {}
String::String(const char* s, std::uint64_t n)
    : ExtString([=] { return std::string(s ? s : "", s ? n : 0); }, made) {}
String::String(std::uint64_t n, char c) {
    m_text.assign(n, c);
}
String::String(std::string s) : ExtString([&] { return std::move(s); }, made) {}
String::~String() = default;
// In this file, so that the compiler can inline it into ~String.
extstl::ExtString::~ExtString() = default;

String& String::operator=(const String& other) = default;
String& String::operator=(String&& other) noexcept = default;

String& String::operator+=(const String& other) {
    ExtString::operator+=(other);
    return *this;
}

String& String::operator+=(const char* s) {
    m_text += util::c_text(s);
    return *this;
}

String& String::operator+=(char c) {
    m_text += c;
    return *this;
}

int String::to_int() const {
    return util::parse_int(c_str());
}

int String::operator==(char c) const {
    return !empty() && m_text.front() == c;
}
int String::operator!=(char c) const {
    return !empty() && m_text.front() != c;
}

std::uint64_t String::first(const char* s, std::uint64_t pos) const {
    return util::find_text(view(), util::c_text(s), pos);
}

std::uint64_t String::first(char c, std::uint64_t pos) const {
    return util::find_byte(view(), c, pos);
}

std::uint64_t String::last(char c) const {
    return m_text.rfind(c);
}

String String::substr(std::uint64_t pos, std::uint64_t n) const {
    util::require_position(pos, size());
    return String(m_text.data() + pos, std::min(n, size() - pos));
}

String String::substr(std::uint64_t pos) const {
    return substr(pos, npos);
}

String String::pad(int n) {
    const auto width = static_cast<std::int64_t>(n);
    return String(static_cast<std::uint64_t>(width < 0 ? -width : width), ' ');
}

String& String::prepend(const String& s) {
    m_text.insert(0, s.m_text);
    return *this;
}

String& String::replace(std::uint64_t pos, std::uint64_t n, const char* s, std::uint64_t len) {
    util::require_position(pos, size());
    m_text.replace(pos, n, s ? s : "", s ? len : 0);
    return *this;
}

String& String::replace(std::uint64_t pos, std::uint64_t n, const char* s) {
    return replace(pos, n, s, util::c_text(s).size());
}

String String::to_lower() const {
    String result(*this);
    if (util::kernels::change_case(result.m_text.data(), size(), 'A', m_text.data()))
        result.m_text.resize(util::c_text(c_str()).size());
    return result;
}

String String::to_upper() const {
    String result(*this);
    if (util::kernels::change_case(result.m_text.data(), size(), 'a', m_text.data()))
        result.m_text.resize(util::c_text(c_str()).size());
    return result;
}

String String::trim(const char* set) const {
    // A set of bytes below 64, such as white space, fits a register. NUL is a member of every set,
    // by design.
    std::uint64_t bits = 1;
    bool is_small = true;
    for (const char* c = set; c && *c; ++c) {
        is_small = is_small && (*c & 0xC0) == 0;
        bits |= std::uint64_t{1} << (*c & 0x3F);
    }
    if (is_small)
        return trimmed(view(), [bits](char c) { return (c & 0xC0) == 0 && bits >> c & 1; });
    util::ByteSet table(util::c_text(set));
    table.add('\0');
    return trimmed(view(), [&table](char c) { return table.has(c); });
}

bool String::isAscii() const {
    const std::string_view visible = util::c_text(c_str());
    return std::all_of(visible.begin(), visible.end(), [](char c) { return c >= 0; });
}

bool String::hasUnprintable() const {
    return std::any_of(m_text.begin(), m_text.end(), [](char c) { return c < ' '; });
}

std::ostream& operator<<(std::ostream& out, const String& s) {
    return out << s.view();
}
