#include "notify.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <filesystem>
#include <set>
#include <string>

#include "output.h"

namespace {

// Beyond this the platform makes no files there; somewhat beyond, the library would look further
// and find the pickup directory of another service.
constexpr std::uint64_t longest_directory = 246;

// Names the pickup directory in the registry, as long as it lives. Keys made for that go, too.
class PickupSetting {
  public:
    explicit PickupSetting(const String& directory) {
        try {
            set(std::filesystem::u8path(directory.str()).wstring());
        } catch (...) {
            undo();
            throw;
        }
    }
    ~PickupSetting() { undo(); }
    PickupSetting(const PickupSetting&) = delete;
    PickupSetting& operator=(const PickupSetting&) = delete;

  private:
    void set(const std::wstring& directory) {
        std::wstring path = L"SOFTWARE";
        for (const wchar_t* part : {L"Vorn", L"Vorn Quillmark Tessaron", L"Server"}) {
            path += L"\\";
            path += part;
            DWORD disposition = 0;
            close();
            require(RegCreateKeyExW(HKEY_LOCAL_MACHINE, path.c_str(), 0, nullptr, 0,
                                    KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr, &m_key,
                                    &disposition));
            if (disposition == REG_CREATED_NEW_KEY) m_made.push_back(path);
        }
        if (RegQueryValueExW(m_key, name, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_FILE_NOT_FOUND) {
            throw Trouble("the registry value \"EmailPickupDir\" is set; it stays as it is");
        }
        const std::size_t bytes = (directory.size() + 1) * sizeof(wchar_t);
        require(RegSetValueExW(m_key, name, 0, REG_SZ,
                               reinterpret_cast<const BYTE*>(directory.c_str()),
                               static_cast<DWORD>(bytes)));
        m_is_set = true;
    }

    void undo() {
        if (m_is_set) RegDeleteValueW(m_key, name);
        close();
        for (; !m_made.empty(); m_made.pop_back())
            RegDeleteKeyW(HKEY_LOCAL_MACHINE, m_made.back().c_str());
    }

    void close() {
        if (m_key) RegCloseKey(m_key);
        m_key = nullptr;
    }

    static void require(LSTATUS error) {
        if (error == ERROR_SUCCESS) return;
        throw Trouble(
            String::format("cannot set the registry value \"EmailPickupDir\" (error %ld)", error));
    }

    static constexpr const wchar_t* name = L"EmailPickupDir";
    HKEY m_key = nullptr;
    std::vector<std::wstring> m_made;  // the keys, outermost first
    bool m_is_set = false;
};

std::set<String> messages_in(const String& directory) {
    std::set<String> names;
    XrDirectory listing(directory);
    for (const XrDirectoryEntry* entry : *listing.getDirectoryList(true, false)) {
        const String extension = ".tmp1";
        const std::uint64_t at = entry->first(extension, 0);
        if (at != String::npos && at + extension.size() == entry->size()) names.insert(*entry);
    }
    return names;
}

// As it stands, line ends and all. It may be gone again: that is what the directory is for.
void print_message(const String& path) {
    XrFile file(path, "r");
    std::string text(static_cast<std::size_t>(file.Size()), '\0');
    file.Read(text.data(), text.size());
    print(path + ", " + (file.Error() ? String("taken already") : size_text(double(text.size()))));
    if (!file.Error()) print(text);
}

}  // namespace

int notify(const Arguments& arguments) {
    const char* const needs = "notify needs a directory, sender, recipients, subject and body";
    if (arguments.size() != 5) throw UsageError(needs);
    email mail(arguments[1], arguments[2], arguments[3], arguments[4]);
    if (mail.isNull()) throw UsageError(needs);
    const String& directory = arguments[0];
    if (directory.empty() || !XrDirectory::IsDirectory(directory))
        throw Trouble("'" + directory + "' is not a directory");
    if (directory.size() > longest_directory)
        throw Trouble("'" + directory + "' is too long for a pickup directory");

    const std::set<String> before = messages_in(directory);
    const int answer = [&] {
        const PickupSetting setting(directory);
        return mail.send();
    }();
    int waiting = 0;
    for (const String& name : messages_in(directory)) {
        if (before.count(name) != 0) continue;
        print_message(directory + "\\" + name);
        ++waiting;
    }
    print(String::format("send() answered %d ", answer) +
          (answer == 0 ? String("(sent)") : "(" + mail.GetLastErrorMessage() + ")") +
          String::format(", messages in the directory: %d", waiting));
    return answer == 0 ? all_well : trouble;
}
