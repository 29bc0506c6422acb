#include "cleanup.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <system_error>

#include "creation_record.h"
#include "errors.h"
#include "options.h"
#include "output.h"

namespace fs = std::filesystem;

namespace {

// A directory on a drive that is not there now is not known to be gone.
bool is_gone(const String& directory) {
    struct _stat64i32 status;
    if (UTF8_stat(directory, &status) == 0) return (status.st_mode & _S_IFMT) != _S_IFDIR;
    return errno == ENOENT && XrDirectory::IsDirectory(directory.substr(0, 3));
}

// Each directory once. The order of the record is not enough: when two processes prepare the same
// tree, the one that creates the child may be the first to record it.
std::vector<String> deepest_first(std::vector<String> directories) {
    const auto depth = [](const String& path) {
        const std::string_view text = path.view();
        return std::count(text.begin(), text.end(), '\\');
    };
    std::sort(directories.begin(), directories.end(), [&](const String& a, const String& b) {
        return depth(a) != depth(b) ? depth(a) > depth(b) : a < b;
    });
    directories.erase(std::unique(directories.begin(), directories.end()), directories.end());
    return directories;
}

class Cleanup {
  public:
    explicit Cleanup(bool dry_run) : m_dry_run(dry_run) {}

    void remove(const String& directory) {
        if (is_gone(directory)) {
            print("gone already  " + directory);
            return;
        }
        std::error_code error;
        const bool empty = is_empty(directory, error);
        if (error) {
            stays(trouble, "unreadable", directory);
        } else if (!empty) {
            stays(differences, "not empty", directory);
        } else if (!m_dry_run && XrDirectory::DeleteDirectory(directory) != 0) {
            stays(trouble, last_error_text(), directory);
        } else {
            m_removed.insert(directory.to_lower());
            print((m_dry_run ? "would remove  " : "removed  ") + directory);
        }
    }

    ExitCode outcome() const { return m_outcome; }

  private:
    // Asked before a removal as well: the system removes a mount point, whatever is mounted there.
    // A dry run ignores what would be gone by now.
    bool is_empty(const String& directory, std::error_code& error) const {
        for (fs::directory_iterator entry(fs::u8path(directory.str()), error), end;
             !error && entry != end; entry.increment(error)) {
            const String path = directory + String(entry->path().filename().u8string()) + "\\";
            if (m_removed.count(path.to_lower()) == 0) return false;
        }
        return true;
    }

    void stays(ExitCode outcome, const String& reason, const String& directory) {
        print("stays, " + reason + "  " + directory);
        m_outcome = std::max(m_outcome, outcome);
    }

    bool m_dry_run;
    std::set<String> m_removed;  // in lower case
    ExitCode m_outcome = all_well;
};

int cleanup(const Arguments& arguments) {
    const Options options(arguments, {"--dry-run"});
    if (options.operands().size() != 1) throw UsageError("cleanup needs a record file");
    const String& record = options.operands()[0];
    const bool dry_run = options.has("--dry-run");

    Cleanup cleanup(dry_run);
    for (const String& directory : deepest_first(read_creation_record(record)))
        cleanup.remove(directory);
    if (dry_run) return cleanup.outcome();

    // Read again: a preparation may have gone on meanwhile.
    const std::vector<String> named = read_creation_record(record);
    if (std::all_of(named.begin(), named.end(), is_gone)) {
        if (UTIL_delete(record) != 0)
            throw Trouble("cannot remove '" + record + "': " + last_error_text());
        print("removed  " + record);
    } else {
        print("kept  " + record);
    }
    return cleanup.outcome();
}

}  // namespace

const Verb cleanup_verb = {
    "cleanup", "[--dry-run] RECORD", "Removes the directories that RECORD names.",
    "  --dry-run  show what would be removed, remove nothing\n"
    "Exit status: 1 when a directory is not empty, 2 when one stays for another reason.",
    cleanup};
