#include "util/files/xr_directory.h"

#include "util/internal/windows.h"
// after the platform's header
#include <sys/stat.h>

#include <cerrno>
#include <memory>
#include <utility>

#include "util/files/directory_listing.h"
#include "util/internal/encoding.h"
#include "util/internal/print_line.h"
#include "util/portable/utf8_files.h"

namespace {

// The ANSI call for a UTF-8 path. A path that the code page cannot hold does not exist.
bool remove_directory(const std::string& path) {
    std::string ansi;
    if (!util::utf8_to_ansi(path.c_str(), ansi, util::Page::files)) return false;
    return RemoveDirectoryA(ansi.c_str()) != 0;
}

}  // namespace

XrDirectory::XrDirectory(const String& path) : m_valid(false), m_list(nullptr) {
    init(path);
}

XrDirectory::XrDirectory(const XrDirectory& other) = default;
XrDirectory& XrDirectory::operator=(const XrDirectory& other) = default;

XrDirectory::~XrDirectory() {
    destroy();
}

void XrDirectory::init(const String& path) {
    m_list = nullptr;  // not freed: a caller may hold it
    m_valid = false;
    m_path = path;
    m_valid = m_path.empty() || IsDirectory(m_path);
}

bool XrDirectory::isValid() const {
    return m_valid;
}

String XrDirectory::getPath() const {
    return m_path;
}

void XrDirectory::destroy() {
    delete m_list;
    m_list = nullptr;
}

XrDirectory::List* XrDirectory::getDirectoryList(bool include_hidden, bool refresh) {
    if (m_list && !refresh) return m_list;
    // Kept only if complete: a listing that ran out of memory must not be returned later as whole.
    std::unique_ptr<List> fresh;
    if (!m_list) fresh = std::make_unique<List>();
    List* const list = m_list ? m_list : fresh.get();
    util::Entries entries;
    if (m_path.empty()) {
        util::append_drive_roots(entries);
    } else if (!util::append_entries(m_path, include_hidden, entries)) {
        util::print_line("Failed to open directory: ", m_path);
    }
    list->insert(std::move(entries));
    static_cast<void>(fresh.release());
    return m_list = list;
}

int XrDirectory::getFreeSpace(double* kilobytes) const {
    std::uint64_t available = 0;
    std::uint64_t total = 0;
    std::uint64_t free = 0;
    if (!kilobytes) return -1;
    *kilobytes = 0;
    if (!UTF8_GetDiskFreeSpaceEx(m_path, &available, &total, &free)) return -1;
    *kilobytes = static_cast<double>(available) * 0.0009765625;
    return 0;
}

bool XrDirectory::IsDirectory(const String& path) {
    struct _stat64i32 record;
    return UTF8_lstat(path, &record) == 0 && (record.st_mode & _S_IFMT) == _S_IFDIR;
}

int XrDirectory::CreateDirectoryA(const char*) {
    return 0;
}
int XrDirectory::CreateDirectoryA(const String&) {
    return 0;
}

int XrDirectory::DeleteDirectory(const char* path) {
    return DeleteDirectory(String(path));
}

int XrDirectory::DeleteDirectory(const String& path) {
    errno = path.empty() ? EINVAL : 0;
    if (path.empty()) return errno;
    return UTF8_rmdir(path) == 0 ? 0 : errno;
}

int XrDirectory::DeleteDirectoryTree(const char* path) {
    return DeleteDirectoryTree(String(path));
}

int XrDirectory::DeleteDirectoryTree(const String& path) {
    if (path.empty()) return errno = EINVAL;
    const std::vector<String> components = path.split("\\", true);
    int result = 0;
    std::string current = path.str();
    for (auto component = components.rbegin(); component != components.rend(); ++component) {
        if (!remove_directory(current)) result = EPERM;
        const auto cut = path.str().find(component->str());
        if (cut < current.size()) current.resize(cut);
    }
    return errno = result;
}
