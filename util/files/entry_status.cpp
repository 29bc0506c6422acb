#include "util/files/entry_status.h"

#include "util/internal/windows.h"
// after the platform's header
#include <sys/stat.h>

#include <algorithm>
#include <iterator>

#include "util/internal/ascii.h"
#include "util/internal/path.h"
#include "util/portable/utf8_files.h"

namespace util {

namespace {

bool equals_lower(std::string_view text, std::string_view lower) {
    return std::equal(text.begin(), text.end(), lower.begin(), lower.end(),
                      [](char a, char b) { return to_lower(a) == b; });
}

template <std::size_t count>
bool is_one_of(std::string_view text, const std::string_view (&lower)[count]) {
    return std::any_of(std::begin(lower), std::end(lower),
                       [text](std::string_view each) { return equals_lower(text, each); });
}

bool has_program_extension(std::string_view name) {
    constexpr std::string_view extensions[] = {".exe", ".bat", ".cmd", ".com"};
    constexpr std::size_t length = 4;
    return name.size() >= length && is_one_of(name.substr(name.size() - length), extensions);
}

// Returns whether a path that ends in `name` may lead to a device, whatever files exist. Returns
// true for some names that are no devices. They only cost a call.
bool may_be_device(std::string_view name) {
    constexpr std::string_view devices[] = {"con", "prn", "aux", "nul", "conin$", "conout$"};
    constexpr std::string_view numbered[] = {"com", "lpt"};
    const std::string_view stem = name.substr(0, name.find_first_of(". :"));
    // The digit may be a superscript, which takes two bytes.
    const bool has_digit = stem.size() == 4 || stem.size() == 5;
    return is_one_of(stem, devices) || (has_digit && is_one_of(stem.substr(0, 3), numbered));
}

// Returns whether Windows opens no file of that name. Disks of other systems have such names, and
// the search lists them.
bool has_refused_character(std::string_view name) {
    const auto is_refused = [](char c) {
        switch (c) {
            case '"':
            case '*':
            case '/':
            case ':':
            case '<':
            case '>':
            case '?':
            case '\\':
            case '|':
                return true;
            default:
                return c >= 0 && c < ' ';
        }
    };
    if (std::any_of(name.begin(), name.end(), is_refused)) return true;
    // U+FFFD may replace half a surrogate pair, which has no UTF-8 and so no path.
    return name.find("\xEF\xBF\xBD") != std::string_view::npos;
}

// Returns whether a path that ends in `name` leads to the file that the search found. The platform
// removes blanks and dots at the end.
bool is_found_by_path(std::string_view name) {
    return !name.empty() && name.back() != '.' && name.back() != ' ' && !may_be_device(name) &&
           !has_refused_character(name);
}

// Returns the length below which the status call on Windows takes the path of a name. Returns 0 for
// a directory whose path is not complete, because it is longer than it looks. Returns 0 for a path
// in the platform's own syntax ("\\?\C:\"), which the call may not know, and for "\", because
// "\\name" names a server.
std::size_t name_limit_in(std::string_view directory) {
    if (directory.size() < 3 || directory.size() + 1 >= MAX_PATH) return 0;
    const bool on_drive = directory[1] == ':' && is_separator(directory[2]);
    const bool on_server = is_separator(directory[0]) && is_separator(directory[1]) &&
                           directory[2] != '?' && directory[2] != '.';
    return on_drive || on_server ? MAX_PATH - directory.size() - 1 : 0;
}

EntryStatus status_from_search(std::string_view name, const WIN32_FIND_DATAW& found) {
    constexpr int read_all = 0444;
    constexpr int write_all = 0222;
    constexpr int execute_all = 0111;
    EntryStatus status;
    status.mode = read_all;
    if (!(found.dwFileAttributes & FILE_ATTRIBUTE_READONLY)) status.mode |= write_all;
    if (found.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
        status.mode |= _S_IFDIR | execute_all;
    } else {
        status.mode |= _S_IFREG;
        if (has_program_extension(name)) status.mode |= execute_all;
        status.size = static_cast<long>(found.nFileSizeLow);  // 32 bits, as in the status
    }
    return status;
}

}  // namespace

EntryStatusReader::EntryStatusReader(const String& directory)
    : m_directory(directory), m_name_limit(name_limit_in(directory.view())) {}

EntryStatus EntryStatusReader::status_of(std::string_view name,
                                         const WIN32_FIND_DATAW& found) const {
    // The search describes a link itself, not what it leads to.
    const bool described = !(found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT);
    if (described && name.size() < m_name_limit && is_found_by_path(name)) {
        return status_from_search(name, found);
    }
    struct _stat64i32 record = {};
    if (UTF8_stat(join_entry(m_directory.view(), name).c_str(), &record) != 0) return {};
    return {record.st_mode, record.st_size};
}

}  // namespace util
