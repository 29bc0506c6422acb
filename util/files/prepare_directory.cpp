#include "util/files/prepare_directory.h"

#include <string_view>

#include "util/files/create_directory.h"
#include "util/files/creation_record.h"
#include "util/files/xr_directory.h"
#include "util/internal/error_text.h"
#include "util/internal/guarded.h"
#include "util/internal/windows.h"

namespace {

enum FailureKind { no_record = 1, file_in_the_way = 2, not_created = 3 };

// Reports to the caller what the result does not.
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

// Creates the directory that each backslash ends. Returns 0, or the code that stopped it. The last
// error is then that of the failing step.
unsigned long create_each(const String& whole, util::CreationRecord& record, const Report& report) {
    std::uint64_t end = whole.first('\\', 0);
    if (end == 0) {
        SetLastError(ERROR_PATH_NOT_FOUND);
        return ERROR_PATH_NOT_FOUND;
    }
    for (bool is_root = true; end != String::npos; end = whole.first('\\', end + 1)) {
        const String directory = whole.substr(0, end + 1);
        // The created path ends at its first NUL, and so does the record. Made before the
        // directory: no allocation can fail between the creation and the append.
        const std::string_view name = directory.c_str();
        const util::TextRecord entry(name.data(), name.size());
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
        if (created) record.append(entry);
        is_root = false;
    }
    return 0;
}

}  // namespace

unsigned long UTIL_prepareAndCreateDir(const String& path, String& message,
                                       const String& trackingFile, String& failedPath, int* kind) {
    return util::guarded(DWORD{ERROR_NOT_ENOUGH_MEMORY}, [&] {
        const String whole = path.trim("\\") + "\\";
        const Report report(message, failedPath, kind);
        util::CreationRecord record;
        if (!trackingFile.empty() && !record.open(trackingFile)) {
            report.failed_to_open(trackingFile);
        }
        const unsigned long result = create_each(whole, record, report);
        if (result != 0) report.append_system_text(GetLastError());
        return result;
    });
}
