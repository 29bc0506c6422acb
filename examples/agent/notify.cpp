#include "notify.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <filesystem>
#include <set>
#include <string>

#include "errors.h"
#include "options.h"
#include "output.h"

namespace {

// The platform makes no files in a longer directory. From 261 bytes on, the library would ignore
// the setting and find the pickup directory of another service.
constexpr std::uint64_t longest_directory = 246;

// While it lives, the registry names the pickup directory. Then what it made there goes again.
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
        throw Trouble("cannot set the registry value \"EmailPickupDir\": " +
                      error_text(static_cast<unsigned long>(error)));
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

// Prints the message as it is in the file. It may be gone already: the mail service takes it.
void print_message(const String& path) {
    XrFile file(path, "r");
    std::string text(static_cast<std::size_t>(file.Size()), '\0');
    file.Read(text.data(), text.size());
    print(path + ", " + (file.Error() ? String("taken already") : size_text(double(text.size()))));
    if (file.Error()) return;
    for (const String& line : String(text).split("\n", false))
        print("  " + line.trim("\r"));
}

int notify(const Arguments& arguments) {
    const char* const needs = "notify needs a directory, sender, recipients, subject and body";
    const Options options(arguments, {});
    const Arguments& words = options.operands();
    if (words.size() != 5) throw UsageError(needs);
    email mail(words[1], words[2], words[3], words[4]);
    if (mail.isNull()) throw UsageError(needs);
    const String& directory = words[0];
    if (directory.empty() || !XrDirectory::IsDirectory(directory))
        throw Trouble("'" + directory + "' is not a directory");
    if (directory.size() > longest_directory)
        throw Trouble("'" + directory + "' is too long for a pickup directory");

    const std::set<String> before = messages_in(directory);
    const int result = [&] {
        const PickupSetting setting(directory);
        return mail.send();
    }();
    int waiting = 0;
    for (const String& name : messages_in(directory)) {
        if (before.count(name) != 0) continue;
        print_message(directory + "\\" + name);
        ++waiting;
    }
    print(String::format("send() returned %d ", result) +
          (result == 0 ? String("(sent)") : "(" + mail.GetLastErrorMessage() + ")") +
          String::format(", messages in the directory: %d", waiting));
    if (result != 0 && waiting > 0) print("the messages wait until a mail service takes them");
    return result == 0 ? all_well : trouble;
}

}  // namespace

const Verb notify_verb = {"notify", "PICKUP-DIR FROM TO SUBJECT BODY",
                          "Drops a mail into a pickup directory.",
                          "TO may name several recipients, separated by ';'.\n"
                          "Exit status: 0 sent, 2 trouble.",
                          notify};
