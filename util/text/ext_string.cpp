#include "util/text/ext_string.h"

#include <utility>

#include "util/internal/ascii.h"
#include "util/internal/kernels/change_case.h"
#include "util/internal/position_error.h"
#include "util/text/find_text.h"

namespace extstl {

const std::uint64_t ExtString::npos;

ExtString::ExtString() = default;
ExtString::ExtString(const char* text) : m_text(util::c_text(text)) {}
ExtString::ExtString(const std::string& text) : m_text(text) {}
ExtString::ExtString(const ExtString& other) = default;
ExtString::ExtString(ExtString&& other) noexcept : m_text(std::move(other.m_text)) {
    other.m_text.clear();
}
ExtString::ExtString(const char* bytes, std::uint64_t size) : m_text(bytes, size) {}

ExtString& ExtString::operator=(const ExtString& other) {
    if (this != &other) m_text = util::c_text(other.c_str());
    return *this;
}

ExtString& ExtString::operator=(ExtString&& other) noexcept {
    if (this != &other) {
        m_text = std::move(other.m_text);
        m_text.resize(util::c_text(c_str()).size());
    }
    return *this;
}

ExtString& ExtString::operator+=(const ExtString& other) {
    m_text += util::c_text(other.c_str());
    return *this;
}

ExtString ExtString::substr(std::uint64_t pos, std::uint64_t n) const {
    util::require_position(pos, size());
    return ExtString(m_text.substr(pos, n));
}

void ExtString::upper() {
    util::change_case(m_text.data(), m_text.size(), 'a');
}
void ExtString::lower() {
    util::change_case(m_text.data(), m_text.size(), 'A');
}

std::uint64_t ExtString::find(const std::string& what, std::uint64_t pos, int ignore_case) const {
    if (!ignore_case) return util::find_text(m_text, what, pos);
    if (pos > size() || what.size() > size() - pos) return npos;
    if (what.empty()) return pos;
    ExtString wanted(what);
    wanted.upper();
    std::uint64_t found = npos;
    const auto take = [&](std::size_t at) {
        found = at;
        return false;
    };
    util::each_in_repetitive(m_text, wanted.str(), pos, take, util::to_upper);
    return found;
}

}  // namespace extstl
