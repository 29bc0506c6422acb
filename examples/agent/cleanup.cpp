#include "cleanup.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <set>
#include <system_error>

#include "creation_record.h"
#include "output.h"

namespace fs = std::filesystem;

namespace {

// What a drive holds that is not there now cannot be known.
bool is_gone(const String& directory) {
    struct _stat64i32 status;
    if (UTF8_stat(directory, &status) == 0) return (status.st_mode & _S_IFMT) != _S_IFDIR;
    return errno == ENOENT && XrDirectory::IsDirectory(directory.substr(0, 3));
}

// Each directory once. The order of the record is not enough: of two processes that prepare the
// same tree, the one that creates the child may be the first to say so.
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
            stays(trouble, "in use or protected", directory);
        } else {
            m_removed.insert(directory.to_lower());
            print((m_dry_run ? "would remove  " : "removed  ") + directory);
        }
    }

    ExitCode outcome() const { return m_outcome; }

  private:
    // Asked before removing, too: the system takes a mount point away, whatever is mounted there.
    // In a dry run, what would be gone by now does not count.
    bool is_empty(const String& directory, std::error_code& error) const {
        for (fs::directory_iterator entry(fs::u8path(directory.str()), error), end;
             !error && entry != end; entry.increment(error)) {
            const String path = directory + String(entry->path().filename().u8string()) + "\\";
            if (m_removed.count(path.to_lower()) == 0) return false;
        }
        return true;
    }

    void stays(ExitCode outcome, const char* reason, const String& directory) {
        print(String::format("stays, %s  ", reason) + directory);
        m_outcome = std::max(m_outcome, outcome);
    }

    bool m_dry_run;
    std::set<String> m_removed;  // in lower case
    ExitCode m_outcome = all_well;
};

}  // namespace

int cleanup(const Arguments& arguments) {
    const bool dry_run = !arguments.empty() && arguments[0] == "--dry-run";
    if (arguments.size() != (dry_run ? 2u : 1u) || arguments.back().first("--", 0) == 0)
        throw UsageError("cleanup needs a record file");
    const String& record = arguments.back();

    Cleanup cleanup(dry_run);
    for (const String& directory : deepest_first(read_creation_record(record)))
        cleanup.remove(directory);
    if (dry_run) return cleanup.outcome();

    // Read again: a preparation may have gone on meanwhile.
    const std::vector<String> named = read_creation_record(record);
    if (std::all_of(named.begin(), named.end(), is_gone)) {
        if (UTIL_delete(record) != 0) throw Trouble("cannot remove '" + record + "'");
        print("removed  " + record);
    } else {
        print("kept  " + record);
    }
    return cleanup.outcome();
}
