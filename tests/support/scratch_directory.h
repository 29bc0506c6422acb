// A directory of its own for a test, gone with everything in it when the test ends. It makes its
// calls itself, in wide characters. It owes nothing to the library under test.
#ifndef UTIL_TESTS_SUPPORT_SCRATCH_DIRECTORY_H
#define UTIL_TESTS_SUPPORT_SCRATCH_DIRECTORY_H

#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>

#include "util/internal/windows.h"

namespace util_test {

inline std::wstring to_wide(const std::string& utf8) {
    std::wstring wide(utf8.size(), L'\0');
    const int size = static_cast<int>(utf8.size());
    const int units = MultiByteToWideChar(CP_UTF8, 0, utf8.data(), size, wide.data(), size);
    wide.resize(static_cast<std::size_t>(units));
    return wide;
}

class ScratchDirectory {
  public:
    // Below the temporary directory; the path is ASCII there and has no trailing backslash.
    ScratchDirectory() {
        char temp[MAX_PATH];
        const DWORD length = GetTempPathA(sizeof temp, temp);
        if (length == 0 || length > sizeof temp) throw std::runtime_error("no temporary directory");
        const std::string begin = temp + ("util-" + std::to_string(GetCurrentProcessId()) + "-");
        int tries = 0;
        do {
            m_path = begin + std::to_string(tries++);
            if (CreateDirectoryA(m_path.c_str(), nullptr)) return;
        } while (GetLastError() == ERROR_ALREADY_EXISTS);
        throw std::runtime_error(m_path);
    }

    // A current directory inside would keep it from going, so the process leaves it first.
    ~ScratchDirectory() {
        SetCurrentDirectoryA("C:\\");
        remove(extended(m_path));
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    const std::string& path() const { return m_path; }

    // The UTF-8 path of name in here; nothing is created.
    std::string operator/(const std::string& name) const { return m_path + "\\" + name; }

    // Creates a directory with its parents, or a file with that content in place of any that was
    // there. Returns its path.
    std::string directory(const std::string& name) const {
        const std::string path = *this / name;
        for (std::size_t end = m_path.size(); end != std::string::npos;) {
            end = path.find('\\', end + 1);
            CreateDirectoryW(extended(path.substr(0, end)).c_str(), nullptr);
        }
        if (GetFileAttributesW(extended(path).c_str()) == INVALID_FILE_ATTRIBUTES)
            throw std::runtime_error(path);
        return path;
    }
    std::string file(const std::string& name, const std::string& content = "") const {
        const std::string path = *this / name;
        std::ofstream out(std::filesystem::path(extended(path)), std::ios::binary);
        if (!(out << content).flush()) throw std::runtime_error(path);
        return path;
    }

    // Every byte of a file in here, also while another process moves it.
    std::string read(const std::string& name) const {
        const std::string path = *this / name;
        const HANDLE file = CreateFileW(extended(path).c_str(), GENERIC_READ,
                                        FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                        nullptr, OPEN_EXISTING, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE) throw std::runtime_error(path);
        std::string content;
        char chunk[4096];
        for (DWORD size = 0; ReadFile(file, chunk, sizeof chunk, &size, nullptr) && size > 0;)
            content.append(chunk, size);
        CloseHandle(file);
        return content;
    }

  private:
    // The form that has no limit of length.
    static std::wstring extended(const std::string& path) { return L"\\\\?\\" + to_wide(path); }

    // Links are removed, never followed.
    static void remove(const std::wstring& path) {
        SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
        if (DeleteFileW(path.c_str()) || RemoveDirectoryW(path.c_str())) return;
        WIN32_FIND_DATAW entry;
        const HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &entry);
        if (search == INVALID_HANDLE_VALUE) return;
        do {
            const std::wstring name = entry.cFileName;
            if (name != L"." && name != L"..") remove(path + L"\\" + name);
        } while (FindNextFileW(search, &entry));
        FindClose(search);
        RemoveDirectoryW(path.c_str());
    }

    std::string m_path;
};

}  // namespace util_test

#endif
