#include "util/mail/message_drop.h"

#include <cerrno>
#include <cstdio>
#include <utility>
#include <vector>

#include "util/internal/encoding.h"
#include "util/internal/kept_errors.h"
#include "util/internal/windows.h"
#include "util/portable/utf8_files.h"

namespace util {
namespace {

constexpr int most_draws = 4096;  // a directory has room for 65535 names of this kind

void remove_file(const std::string& path) noexcept {
    try {
        if (UTF8_unlink(path.c_str()) == 0) return;
    } catch (...) {  // no memory, which a mere -1 may mean as well
    }
    WideText wide;  // this way needs none
    if (utf8_to_wide(path.c_str(), wide) == Conversion::done) DeleteFileW(wide.c_str());
}

// Files that only keep a name; gone at the end of their scope.
class Placeholders {
  public:
    Placeholders() = default;
    ~Placeholders() { remove(); }
    Placeholders(const Placeholders&) = delete;
    Placeholders& operator=(const Placeholders&) = delete;

    // Adds a new one; "" with the last error on failure.
    const std::string& add(const std::string& directory) {
        m_paths.emplace_back();  // before there is a file that could be forgotten
        return m_paths.back() = create_temporary_file(directory);
    }

    void remove() noexcept {
        const KeptErrors kept;
        for (const std::string& path : m_paths)
            remove_file(path);
        m_paths.clear();
    }

  private:
    std::vector<std::string> m_paths;
};

bool exists(const std::string& path) {
    return UTF8_access(path.c_str(), 0) == 0;
}

// The runtime's rename, which never replaces a file: 0, or -1 with errno.
int rename_file(const std::string& from, const std::string& to) {
    std::string ansi_from;
    std::string ansi_to;
    if (!utf8_to_ansi(from.c_str(), ansi_from, Page::files) ||
        !utf8_to_ansi(to.c_str(), ansi_to, Page::files)) {
        errno = ENOENT;
        return -1;
    }
    return std::rename(ansi_from.c_str(), ansi_to.c_str());
}

}  // namespace

bool temporary_directory(std::string& out) {
    constexpr DWORD room = 255;
    char path[room];
    wchar_t twin[room] = {};
    const DWORD length = GetTempPathA(room, path);
    if (length < 1) return false;
    GetTempPathW(room, twin);
    // A longer path is only counted, not written; like a broken one it names no directory.
    out.clear();
    if (length < room) ansi_to_utf8(path, twin, out, Page::files);
    return true;
}

std::string create_temporary_file(const std::string& directory) {
    constexpr std::size_t most_bytes = MAX_PATH - 14;  // leaves room for the name
    std::string ansi_directory;
    if (!utf8_to_ansi(directory.c_str(), ansi_directory, Page::files)) {
        SetLastError(ERROR_DIRECTORY);
        return {};
    }
    // Not every version of the platform looks before it writes into its own buffer.
    if (ansi_directory.size() > most_bytes) {
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return {};
    }
    char made[MAX_PATH];
    const UINT number = GetTempFileNameA(ansi_directory.c_str(), "tsr", 0, made);
    if (number == 0) return {};
    std::string path;
    try {
        wchar_t twin[MAX_PATH] = {};  // with a number the call only forms the name
        GetTempFileNameW(wide_path(directory.c_str()).c_str(), L"tsr", number, twin);
        if (ansi_to_utf8(made, twin, path, Page::files)) return path;
    } catch (...) {
        DeleteFileA(made);
        throw;
    }
    DeleteFileA(made);
    SetLastError(ERROR_DIRECTORY);
    return {};
}

Drop drop_message(const std::string& file, const std::string& directory) {
    Placeholders placeholders;
    for (int draw = 0; draw < most_draws; ++draw) {
        const std::string& name = placeholders.add(directory);
        if (name.empty()) return Drop::no_name;
        const std::string target = name + "1";
        // Its placeholder stays meanwhile, or the platform might offer the same name again.
        if (exists(target)) continue;
        placeholders.remove();
        if (rename_file(file, target) == 0) return Drop::done;
        if (errno != EEXIST) return Drop::not_moved;
    }
    return Drop::not_moved;
}

}  // namespace util
