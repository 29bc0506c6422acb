// An environment variable of this process with another value (null: unset) while it lives.
#ifndef UTIL_TESTS_SUPPORT_ENVIRONMENT_CHANGE_H
#define UTIL_TESTS_SUPPORT_ENVIRONMENT_CHANGE_H

#include <string>

#include "util/internal/windows.h"

namespace util_test {

class EnvironmentChange {
  public:
    EnvironmentChange(const wchar_t* name, const wchar_t* value)
        : m_name(name), m_before(32767, L'\0') {
        m_before.resize(GetEnvironmentVariableW(name, m_before.data(), 32767));
        SetEnvironmentVariableW(name, value);
    }
    ~EnvironmentChange() {
        SetEnvironmentVariableW(m_name, m_before.empty() ? nullptr : m_before.c_str());
    }
    EnvironmentChange(const EnvironmentChange&) = delete;
    EnvironmentChange& operator=(const EnvironmentChange&) = delete;

  private:
    const wchar_t* m_name;
    std::wstring m_before;
};

}  // namespace util_test

#endif
