// A private HKEY_LOCAL_MACHINE for this process, so that tests of the registry neither see the
// machine's keys nor disturb each other.
#ifndef UTIL_TESTS_SUPPORT_PRIVATE_REGISTRY_H
#define UTIL_TESTS_SUPPORT_PRIVATE_REGISTRY_H

#include <algorithm>
#include <iterator>
#include <stdexcept>
#include <string>

#include "util/internal/windows.h"
// after the platform's header
#include <sddl.h>

namespace util_test {

inline void require(LSTATUS result, const char* what) {
    if (result != 0) throw std::runtime_error(what + (": error " + std::to_string(result)));
}

// Owns a key opened for the test's own purposes; closed at the end of its scope.
class Key {
  public:
    Key(HKEY parent, const std::string& path) {
        require(RegCreateKeyExA(parent, path.c_str(), 0, nullptr, 0, KEY_ALL_ACCESS, nullptr,
                                &m_key, nullptr),
                path.c_str());
    }
    ~Key() { RegCloseKey(m_key); }
    Key(const Key&) = delete;
    Key& operator=(const Key&) = delete;
    HKEY get() const { return m_key; }

  private:
    HKEY m_key = nullptr;
};

// While at least one object exists, HKEY_LOCAL_MACHINE is a key of this process below
// HKEY_CURRENT_USER. Each new object empties it.
class PrivateRegistry {
  public:
    PrivateRegistry() {
        if (count == 0) {
            const Key root(HKEY_CURRENT_USER, path());
            require(RegOverridePredefKey(HKEY_LOCAL_MACHINE, root.get()), "RegOverridePredefKey");
        }
        clear();
        ++count;
    }
    ~PrivateRegistry() {
        if (--count > 0) return;
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegDeleteTreeA(HKEY_CURRENT_USER, path().c_str());
    }
    PrivateRegistry(const PrivateRegistry&) = delete;
    PrivateRegistry& operator=(const PrivateRegistry&) = delete;

    // Of that key below HKEY_CURRENT_USER.
    static std::string path() {
        return "Software\\util-test-" + std::to_string(GetCurrentProcessId());
    }

    static void create(const std::string& key) { Key(HKEY_LOCAL_MACHINE, key); }

    // Stores exactly these bytes, in the ANSI code page when the type is a text's.
    // Stores an X after the bytes, because the platform would include a NUL that follows them.
    static void set(const std::string& key, const char* name, DWORD type,
                    const std::string& bytes) {
        require(RegSetKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), name, type, (bytes + "X").data(),
                                static_cast<DWORD>(bytes.size())),
                name);
    }
    // A REG_SZ with its NUL.
    static void set_text(const std::string& key, const char* name, const std::string& text) {
        set(key, name, REG_SZ, text + '\0');
    }
    // A REG_SZ in UTF-16 that ends as the given one does, with a NUL or without.
    static void set_wide(const std::string& key, const wchar_t* name, const std::wstring& units) {
        const std::wstring guarded = units + L"X";
        require(RegSetValueExW(Key(HKEY_LOCAL_MACHINE, key).get(), name, 0, REG_SZ,
                               reinterpret_cast<const BYTE*>(guarded.data()),
                               static_cast<DWORD>(units.size() * sizeof(wchar_t))),
                "RegSetValueExW");
    }
    static void remove_value(const std::string& key, const char* name) {
        RegDeleteKeyValueA(HKEY_LOCAL_MACHINE, key.c_str(), name);
    }
    static void clear() { require(RegDeleteTreeA(HKEY_LOCAL_MACHINE, nullptr), "RegDeleteTree"); }

    // The type that case files call "text", "expand", "binary", "number" or "texts".
    static DWORD type_of(const std::string& name) {
        static const char* const names[] = {"",       "text", "expand", "binary",
                                            "number", "",     "",       "texts"};
        const auto* const found = std::find(std::begin(names), std::end(names), name);
        if (found == std::end(names)) throw std::runtime_error("no such type: " + name);
        return static_cast<DWORD>(found - std::begin(names));
    }

  private:
    static inline int count = 0;
};

// While the object exists, `access` is what everybody may do with the key. 0 is nothing.
class AccessLimit {
  public:
    AccessLimit(const std::string& key, DWORD access) : m_key(HKEY_LOCAL_MACHINE, key) {
        allow(access);
    }
    ~AccessLimit() { allow(KEY_ALL_ACCESS); }

  private:
    void allow(DWORD access) {
        // Wine cannot read the number 0.
        const std::string rights = access == 0 ? "" : std::to_string(access);
        const std::string list = "D:(A;;" + rights + ";;;WD)";
        PSECURITY_DESCRIPTOR descriptor = nullptr;
        ConvertStringSecurityDescriptorToSecurityDescriptorA(list.c_str(), SDDL_REVISION_1,
                                                             &descriptor, nullptr);
        RegSetKeySecurity(m_key.get(), DACL_SECURITY_INFORMATION, descriptor);
        LocalFree(descriptor);
    }

    Key m_key;
};

}  // namespace util_test

#endif
