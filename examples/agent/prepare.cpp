#include "prepare.h"

#include <filesystem>

#include "creation_record.h"
#include "options.h"
#include "output.h"

namespace fs = std::filesystem;

namespace {

// The library takes a share for a relative path, and not every standard library knows a share.
String full_path(const String& path) {
    const fs::path native = fs::u8path(path.str()).make_preferred();
    String full(fs::absolute(native).lexically_normal().u8string());
    const bool is_share = native.native().compare(0, 2, L"\\\\") == 0;
    if (!is_share && full.view().substr(1, 1) == ":") return full;
    throw Trouble("'" + path + "' is not on a drive; a share needs a drive letter first");
}

int prepare(const Arguments& arguments) {
    const Options options(arguments, {});
    const Arguments& words = options.operands();
    if (words.size() != 2 || words[0].empty() || words[1].empty())
        throw UsageError("prepare needs a directory and a record file");
    const String directory = full_path(words[0]);
    const String& record = words[1];
    // Nothing is added to a file that a clean-up would refuse.
    std::size_t known = 0;
    if (XrFile::Exists(record, 0)) known = read_creation_record(record).size();

    String message;
    String failed = directory;
    int kind = 0;
    const unsigned long error = UTIL_prepareAndCreateDir(directory, message, record, failed, &kind);
    if (XrFile::Exists(record, 0)) {
        const std::vector<String> created = read_creation_record(record);
        for (std::size_t i = known; i < created.size(); ++i)
            print("created  " + created[i]);
        if (created.size() == known && message.empty()) print("nothing to create");
    }
    if (error == 0 && message.empty()) return all_well;
    warn(message.trim("\r\n ").replace("\n", " "));  // also when only the record failed
    warn("failing path: " + failed);
    return trouble;
}

}  // namespace

const Verb prepare_verb = {"prepare", "DIR RECORD",
                           "Creates the directory DIR and records in RECORD what was missing.",
                           "'agent cleanup RECORD' removes those directories again.\n"
                           "Exit status: 0 all well, 2 trouble.",
                           prepare};
