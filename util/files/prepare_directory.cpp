#include "util/files/prepare_directory.h"

#include <string>
#include <string_view>

#include "util/files/create_directory.h"
#include "util/files/wide_path.h"
#include "util/files/xr_directory.h"
#include "util/files/xr_file.h"
#include "util/internal/error_text.h"
#include "util/internal/scoped_handle.h"
#include "util/internal/windows.h"

namespace {

enum FailureKind { no_record = 1, file_in_the_way = 2, not_created = 3 };

// What the caller is told besides the result.
class Report {
  public:
    Report(String& message, String& failed_path, int* kind)
        : m_message(message), m_failed_path(failed_path), m_kind(kind) {}

    void failed_to_open(const String& file) const {
        tell(no_record, file,
             "Failed to open the file " + file +
                 ". Tessaron will not be able to cleanup the alternate paths created for mounting "
                 "this replica.\n");
    }
    void failed_to_create(const String& directory, FailureKind kind) const {
        tell(kind, directory,
             "Failed to create the directory " + directory +
                 (kind == file_in_the_way
                      ? " A file with the same name exists. Please remove the file and try again\n"
                      : " Please create required directory(s) manually and try again.\n"));
    }
    void append_system_text(DWORD code) const { m_message += util::error_text(code).c_str(); }

  private:
    void tell(FailureKind kind, const String& failing, const String& text) const {
        m_failed_path = failing;
        m_message = text;
        if (m_kind) *m_kind = kind;
    }

    String& m_message;
    String& m_failed_path;
    int* m_kind;
};

// The tracking file. The runtime appends in two steps, a seek and a write, between which another
// process may append; so writers take turns by a lock on a byte far behind all records.
class CreationRecord {
  public:
    bool open(const String& path) {
        if (m_file.Open(path.str(), "a") != 0) return false;
        m_turns.reset(CreateFileW(util::wide_path(path).c_str(), GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
                                  FILE_ATTRIBUTE_NORMAL, nullptr));
        return true;
    }

    // Forms the record of a directory that is about to be created, so that its creation is followed
    // by nothing that could want memory. What is created ends at the first NUL, and so does this.
    void prepare(const String& directory) {
        const std::string_view created = directory.c_str();
        m_bytes = std::to_string(created.size() + 1);
        m_bytes.append(1, '\0').append(created).append(1, '\0');
    }

    // Nothing is appended behind a record that could not be written whole: it would be misread.
    void append() {
        if (!m_file.isValid() || m_file.Error()) return;
        OVERLAPPED turn = {};
        turn.Offset = MAXDWORD;
        turn.OffsetHigh = MAXLONG;
        // Where the file system knows no locks, a record without its turn is better than none.
        const bool locked =
            m_turns && LockFileEx(m_turns.get(), LOCKFILE_EXCLUSIVE_LOCK, 0, 1, 0, &turn);
        m_file.Write(m_bytes.data(), m_bytes.size());
        if (locked) UnlockFileEx(m_turns.get(), 0, 1, 0, &turn);
    }

  private:
    XrFile m_file;
    util::KernelHandle m_turns;
    std::string m_bytes;
};

// Creates what each backslash ends. Returns 0, or the code that stopped it with the last error
// still as the failing step left it.
unsigned long create_each(const String& whole, CreationRecord& record, const Report& report) {
    std::uint64_t end = whole.first('\\', 0);
    if (end == 0) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return ERROR_PATH_NOT_FOUND;
    }
    for (bool is_root = true; end != String::npos; end = whole.first('\\', end + 1)) {
        const String directory = whole.substr(0, end + 1);
        record.prepare(directory);
        bool created = false;
        const unsigned long result = UTIL_makeNewNTDir(directory, &created);
        if (result == ERROR_ALREADY_EXISTS) {
            if (!XrDirectory::IsDirectory(directory)) {
                report.failed_to_create(directory, file_in_the_way);
                return result;
            }
        } else if (result != 0) {
            const bool root_is_missing = is_root && result == ERROR_PATH_NOT_FOUND;
            if (!root_is_missing) report.failed_to_create(directory, not_created);
            return result;
        }
        if (created) record.append();
        is_root = false;
    }
    return 0;
}

}  // namespace

unsigned long UTIL_prepareAndCreateDir(const String& path, String& message,
                                       const String& trackingFile, String& failedPath, int* kind) {
    try {
        const String whole = path.trim("\\") + "\\";
        const Report report(message, failedPath, kind);
        CreationRecord record;
        if (!trackingFile.empty() && !record.open(trackingFile)) {
            report.failed_to_open(trackingFile);
        }
        const unsigned long result = create_each(whole, record, report);
        if (result != 0) report.append_system_text(GetLastError());
        return result;
    } catch (...) {
        return ERROR_NOT_ENOUGH_MEMORY;
    }
}
