// A private HKEY_LOCAL_MACHINE for this process, so that tests of the registry neither see the
// machine's keys nor disturb each other.
#ifndef UTIL_TESTS_SUPPORT_PRIVATE_REGISTRY_H
#define UTIL_TESTS_SUPPORT_PRIVATE_REGISTRY_H

#include <stdexcept>
#include <string>

#include "util/internal/windows.h"

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

// While it lives HKEY_LOCAL_MACHINE is an empty key of the current user's.
class PrivateRegistry {
  public:
    PrivateRegistry()
        : m_path("Software\\util-test-" + std::to_string(GetCurrentProcessId())),
          m_root(HKEY_CURRENT_USER, m_path) {
        require(RegOverridePredefKey(HKEY_LOCAL_MACHINE, m_root.get()), "RegOverridePredefKey");
    }
    ~PrivateRegistry() {
        RegOverridePredefKey(HKEY_LOCAL_MACHINE, nullptr);
        RegDeleteTreeA(HKEY_CURRENT_USER, m_path.c_str());
    }

    // Of that key below HKEY_CURRENT_USER.
    const std::string& path() const { return m_path; }

    void create(const std::string& key) { Key(HKEY_LOCAL_MACHINE, key); }

    // Stores exactly these bytes, in the ANSI code page when the type is a text's. (The platform
    // would add a NUL that it finds after the bytes; so it finds something else.)
    void set(const std::string& key, const char* name, DWORD type, const std::string& bytes) {
        const std::string guarded = bytes + "X";
        require(RegSetValueExA(Key(HKEY_LOCAL_MACHINE, key).get(), name, 0, type,
                               reinterpret_cast<const BYTE*>(guarded.data()),
                               static_cast<DWORD>(bytes.size())),
                name);
    }
    // A REG_SZ with its NUL.
    void set_text(const std::string& key, const char* name, const std::string& text) {
        set(key, name, REG_SZ, text + '\0');
    }
    // A REG_SZ in UTF-16 that ends as the given one does, with a NUL or without.
    void set_wide(const std::string& key, const wchar_t* name, const std::wstring& units) {
        const std::wstring guarded = units + L"X";
        require(RegSetValueExW(Key(HKEY_LOCAL_MACHINE, key).get(), name, 0, REG_SZ,
                               reinterpret_cast<const BYTE*>(guarded.data()),
                               static_cast<DWORD>(units.size() * sizeof(wchar_t))),
                "RegSetValueExW");
    }
    void remove_value(const std::string& key, const char* name) {
        RegDeleteValueA(Key(HKEY_LOCAL_MACHINE, key).get(), name);
    }
    void clear() { require(RegDeleteTreeA(m_root.get(), nullptr), "RegDeleteTree"); }

  private:
    std::string m_path;
    Key m_root;
};

// While the object exists, `access` is what everybody may do with the key. 0 is nothing.
class AccessLimit {
  public:
    AccessLimit(const std::string& key, DWORD access) : m_key(HKEY_LOCAL_MACHINE, key) {
        alignas(DWORD) BYTE list[256];
        auto* const acl = reinterpret_cast<ACL*>(list);
        InitializeAcl(acl, sizeof list, ACL_REVISION);
        SID everybody = {SID_REVISION, 1, SECURITY_WORLD_SID_AUTHORITY, {SECURITY_WORLD_RID}};
        if (access != 0) AddAccessAllowedAce(acl, ACL_REVISION, access, &everybody);
        set(acl);
    }
    ~AccessLimit() { set(nullptr); }

  private:
    void set(ACL* acl) {
        SECURITY_DESCRIPTOR descriptor;
        InitializeSecurityDescriptor(&descriptor, SECURITY_DESCRIPTOR_REVISION);
        SetSecurityDescriptorDacl(&descriptor, TRUE, acl, FALSE);
        RegSetKeySecurity(m_key.get(), DACL_SECURITY_INFORMATION, &descriptor);
    }

    Key m_key;
};

}  // namespace util_test

#endif
