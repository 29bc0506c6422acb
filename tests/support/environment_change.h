// Other values for environment variables of this process, for a while.
#ifndef UTIL_TESTS_SUPPORT_ENVIRONMENT_CHANGE_H
#define UTIL_TESTS_SUPPORT_ENVIRONMENT_CHANGE_H

#include <cstdlib>
#include <map>
#include <optional>
#include <string>

#include "support/scratch_directory.h"
#include "util/internal/windows.h"

namespace util_test {

// One variable has this value (null: none) while the object exists.
class EnvironmentChange {
  public:
    EnvironmentChange(const wchar_t* name, const wchar_t* value)
        : m_name(name), m_before(32767, L'\0') {
        m_before.resize(GetEnvironmentVariableW(name, m_before.data(), 32767));
        _wputenv_s(name, value ? value : L"");
    }
    ~EnvironmentChange() { _wputenv_s(m_name.c_str(), m_before.c_str()); }
    EnvironmentChange(const EnvironmentChange&) = delete;
    EnvironmentChange& operator=(const EnvironmentChange&) = delete;

  private:
    std::wstring m_name;
    std::wstring m_before;
};

// Any variables, set by name. The word $null is no value.
class Environment {
  public:
    void set(const std::string& name, const std::string& value) {
        m_changes[name].emplace(to_wide(name).c_str(),
                                value == "$null" ? nullptr : to_wide(value).c_str());
    }

  private:
    std::map<std::string, std::optional<EnvironmentChange>> m_changes;
};

}  // namespace util_test

#endif
