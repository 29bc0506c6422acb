#include "util/files/prepare_directory.h"

#include <string>
#include <string_view>

#include "util/files/create_directory.h"
#include "util/files/xr_directory.h"
#include "util/internal/encoding.h"
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

// The tracking file, opened as the runtime's mode "a" opens a file. Processes append in turns: the
// turn is a lock on one byte far after all records. Windows appends atomically even without a turn;
// other platforms and some servers look for the end first and write then.
//
// Whoever may read the file can lock it as a whole, so the wait for a turn must be limited.
class CreationRecord {
  public:
    bool open(const String& path) {
        m_file.reset(CreateFileW(util::wide_path(path).c_str(), GENERIC_WRITE,
                                 FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_ALWAYS,
                                 FILE_ATTRIBUTE_NORMAL, nullptr));
        return static_cast<bool>(m_file);
    }

    // Forms the record of a directory that is about to be created, so that no allocation can fail
    // between the creation and the append. The created path ends at the first NUL, and so does the
    // record.
    void prepare(const String& directory) {
        const std::string_view created = directory.c_str();
        m_bytes = std::to_string(created.size() + 1);
        m_bytes.append(1, '\0').append(created).append(1, '\0');
    }

    void append() {
        if (!m_file || m_torn) return;
        while (!try_to_append() && m_pauses_left > 0) {
            --m_pauses_left;
            Sleep(pause_ms);
        }
    }

  private:
    // About three seconds for all records together; a pause may last 16 ms.
    static constexpr int most_pauses = 200;
    static constexpr DWORD pause_ms = 10;

    // False when nothing was written because another process holds a lock.
    bool try_to_append() {
        OVERLAPPED turn = {};
        turn.Offset = MAXDWORD;
        turn.OffsetHigh = MAXLONG;
        const bool has_turn =
            LockFileEx(m_file.get(), LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0,
                       &turn) != 0;
        // A file system without locks gives another code: then a record without a turn is best.
        if (!has_turn && GetLastError() == ERROR_LOCK_VIOLATION && m_pauses_left > 0) return false;
        OVERLAPPED end = {};
        end.Offset = end.OffsetHigh = MAXDWORD;
        DWORD moved = 0;
        const bool succeeded = WriteFile(m_file.get(), m_bytes.data(),
                                         static_cast<DWORD>(m_bytes.size()), &moved, &end) != 0;
        const bool is_locked = !succeeded && GetLastError() == ERROR_LOCK_VIOLATION;
        if (has_turn) UnlockFileEx(m_file.get(), 0, 1, 0, &turn);
        // A reader would take what follows half a record for the rest of it.
        m_torn = moved != 0 && moved != m_bytes.size();
        return moved != 0 || !is_locked;
    }

    util::KernelHandle m_file;
    std::string m_bytes;
    int m_pauses_left = most_pauses;
    bool m_torn = false;
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
