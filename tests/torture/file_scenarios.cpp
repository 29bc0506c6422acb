#include <algorithm>
#include <cerrno>
#include <memory>

#include "torture/scenario.h"
#include "util/files/files.h"
#include "util/portable/current_directory.h"

using namespace std::string_literals;

namespace torture {
namespace {

const String text("a text longer than any short string holds");
const std::string bytes(300000, 'b');
const std::string stored_text = "42\0"s + text.str() + '\0';
char room[20];

// What an XrFile's state must be after an operation that came to this result.
void state(Run& run, const XrFile& file, bool succeeded, bool invalidates) {
    int code = 0;
    if (succeeded) {
        run.always(!file.Error(code) && file.isValid(), "an error without a failure");
    } else {
        run.always(file.Error(code), "a failure without an error");
        if (invalidates) run.always(!file.isValid(), "valid after a failure");
    }
}

void prepare(Run& run, const String& path, const String& record) {
    String message, failed;
    int kind = 0;
    const unsigned long result = run.call(
        nothing, [&] { return UTIL_prepareAndCreateDir(path, message, record, failed, &kind); });
    // 8 for memory says nothing more; every other failure and the warning speak.
    run.outcome(result == 0 && kind == 0, result == 8 || (kind == 1 && result == 0) ||
                                              (!failed.empty() && !message.empty() && kind >= 1));
    // What seems to be in use is passed over.
    if (result == 0 && !Run::failing("CreateFileW"))
        run.always(run.exists("x\\y"), "success without a directory");
    // What was made is recorded, however the call ended; but for a record that cannot be written.
    if (record.empty() || kind == 1 || Run::failing("WriteFile")) return;
    const std::string records = run.exists("record") ? run.scratch.read("record") : "";
    const auto made = long(run.exists("x")) + long(run.exists("x\\y"));
    run.always(std::count(records.begin(), records.end(), '\0') == 2 * made, "the record");
}

}  // namespace

void file_scenarios(const Add& scenario) {
    scenario("UTIL_cleanupDir", [](Run& run) {
        run.scratch.directory("d\\sub"), run.scratch.file("d\\a"), run.scratch.file("d\\b");
        const std::string path = run.scratch / "d";
        const int result = run.call(nothing, [&] { return UTIL_cleanupDir(path.c_str(), 1); });
        run.outcome(result == 1 && !run.exists("d\\a") && !run.exists("d\\b"),
                    result == 0 || result == 1);
        run.always(run.exists("d\\sub"), "a subdirectory gone");
    });
    scenario("UTIL_copy", [](Run& run) {
        const std::string from = run.scratch.file("a", bytes), to = run.scratch / "b";
        const int result =
            run.call(nothing, [&] { return UTIL_copy(from.c_str(), to.c_str(), 1); });
        run.outcome(result == 0 && run.scratch.read("b") == bytes, result == -1);
        if (run.exists("b")) run.always(bytes.rfind(run.scratch.read("b"), 0) == 0, "other bytes");
    });
    for (const bool exists : {false, true}) {
        scenario(exists ? "UTIL_makeNewNTDir, existing" : "UTIL_makeNewNTDir", [exists](Run& run) {
            const String path(exists ? run.scratch.directory("d") : run.scratch / "d");
            bool created = false;
            const unsigned long result =
                run.call(nothing, [&] { return UTIL_makeNewNTDir(path, &created); });
            run.outcome(exists ? result == 183 : result == 0 && created,
                        !created && (result == 0 || result == 5 || result == 8));
            run.always(created == (!exists && run.exists("d")), "what is said to be created");
        });
    }
    scenario("UTIL_CreateDirectory", [](Run& run) {
        const std::string path = run.scratch / "a\\b";
        const int result = run.call(nothing, [&] { return UTIL_CreateDirectory(path.c_str()); });
        run.outcome(result == 0 && run.exists("a\\b"), result == -1);
    });
    for (const bool is_readonly : {false, true}) {
        scenario(is_readonly ? "UTIL_delete_readonly" : "UTIL_delete", [is_readonly](Run& run) {
            const std::string path = run.scratch.file("a");
            if (is_readonly) SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY);
            const int result = run.call(nothing, [&] {
                return is_readonly ? UTIL_delete_readonly(path.c_str()) : UTIL_delete(path.c_str());
            });
            run.outcome(result == 0 && !run.exists("a"), result == -1 && run.exists("a"));
        });
    }
    scenario("UTIL_LockFilePrivate, UTIL_UnLockFilePrivate", [](Run& run) {
        const String directory(run.scratch.path());
        HANDLE handle = nullptr;
        OVERLAPPED record;
        const auto copy = std::make_unique<String>(directory);  // taken by value
        const bool locked =
            run.call(memory, [&] { return UTIL_LockFilePrivate(*copy, &handle, &record); });
        run.outcome(locked, !locked && (run.raised() || handle == INVALID_HANDLE_VALUE));
        if (!locked) return;
        const bool released =
            run.call(nothing, [&] { return UTIL_UnLockFilePrivate(handle, &record); });
        run.outcome(released, !released);
    });
    scenario("Tools::fileExists, Tools::find_location", [](Run& run) {
        const std::string path = run.scratch.file("a");
        const bool found = run.call(platform, [&] { return Tools::fileExists(path.c_str()); });
        run.outcome(found, !found);
        const String unused, location = run.call(memory, [&] {
            return Tools::find_location(unused, Tools::FileAttr::any);
        });
        run.outcome(!location.empty(), location.empty());
    });
    scenario("Tools::absolute_pathname", [](Run& run) {
        run.scratch.directory("d"), run.scratch.file("file.name");
        SetCurrentDirectoryA((run.scratch / "d").c_str());
        const String file(run.scratch / "file.name");
        const String before("C:\\no_such_directory;" + run.scratch.path() + ";C:\\");
        String list(before);
        const struct {
            String path;
            String* list;
        } searches[] = {{file, nullptr}, {"..\\file.name", nullptr}, {"file.name", &list}};
        for (const auto& [path, in] : searches) {
            const String result = run.call(either, [&, path = path, in = in] {
                return in ? Tools::absolute_pathname(path, *in, Tools::FileAttr::any)
                          : Tools::absolute_pathname(path, Tools::FileAttr::any);
            });
            run.outcome(result == file, result.empty());
            if (in)
                run.always(list == (result.empty() ? before : ";" + run.scratch.path()), "list");
        }
        run.keeps(heap_blocks, Run::failing("GetCurrentDirectoryA", 300));
        const String name("cmd.exe"), found = run.call(either, [&] {
            return Tools::absolute_pathname(name, Tools::FileAttr::any);
        });
        run.outcome(!found.empty(), found.empty());
    });
    scenario("UTIL_CurrentDirectory", [](Run& run) {
        SetCurrentDirectoryA("C:\\");
        const String path = run.call(nothing, [] { return UTIL_CurrentDirectory(); });
        run.keeps(heap_blocks, Run::failing("GetCurrentDirectoryA", 300));
        run.outcome(path == "C:\\", path.empty());
    });
    scenario("UTIL_prepareAndCreateDir", [](Run& run) {
        prepare(run, String(run.scratch / "x\\y"), String(run.scratch / "record"));
    });
    scenario("UTIL_prepareAndCreateDir, existing",
             [](Run& run) { prepare(run, String(run.scratch.directory("x\\y")), String("")); });
    scenario("XrDirectoryEntry", [](Run& run) {
        XrDirectoryEntry entry(text, 0x4000, 5), other("b", 0, 0);
        bool right = false;
        run.completes(memory, [&] {
            std::unique_ptr<String> owned(new XrDirectoryEntry(entry));
            XrDirectoryEntry made(text, 1, 2);
            other = entry;
            right = other.getName() == text && other.getMode() == 0x4000 && other.getSize() == 5 &&
                    other.isDirectory() && !(other < entry);
        });
        run.outcome(right, run.raised() && (other == "b" || other == text));
    });
    scenario("XrDirectory, listed", [](Run& run) {
        for (const char* name :
             {"\xC3\xA4", "a", ".hidden", "a_name_longer_than_any_short_string_holds"})
            run.scratch.file(name, "x");
        const String path(run.scratch.path());
        std::unique_ptr<XrDirectory> directory;
        run.completes(either, [&] {
            directory.reset(new XrDirectory(path));
            run.outcome(directory->isValid() && directory->getPath() == path, true);
            // Only what the platform does not tell is left out; want of memory is raised.
            const bool untold = Run::failing("FindFirstFileW") || Run::failing("FindNextFileW") ||
                                !directory->isValid();
            XrDirectory::List* list = directory->getDirectoryList(false, false);
            run.outcome(list->size() == 3 && (*list)[0]->getName() == "a",
                        untold && list->size() < 3, "the listing");
            directory->destroy();
            list = directory->getDirectoryList(true, false);
            run.outcome(list->size() == 4, untold && list->size() < 4, "the whole listing");
        });
        if (run.raised() && directory && directory->isValid())
            run.always(directory->getDirectoryList(false, false)->size() == 3, "a part was kept");
        run.call(nothing, [&] { directory.reset(); });
    });
    scenario("XrDirectory, copied, set anew, free space", [](Run& run) {
        const String path(run.scratch.path());
        double free = -1;
        const int result = run.call(either, [&] {
            XrDirectory directory(path), copy(directory);
            copy = directory;
            directory.getDirectoryList(false, false);
            directory.init(path);  // drops its listing
            return copy.getFreeSpace(&free);
        });
        run.keeps_unless_failed(heap_blocks, 1);  // the list, which is empty
        run.outcome(result == 0 && free > 0,
                    run.raised() ? free == -1 || free == 0 : result == -1 && free == 0);
    });
    scenario("XrDirectory, drive roots", [](Run& run) {
        const String empty;
        run.completes(either, [&] {
            XrDirectory drives(empty);
            run.outcome(drives.getDirectoryList(false, false)->size() > 0, true);
        });
    });
    scenario("XrDirectory, static", [](Run& run) {
        const String path(run.scratch.directory("d")), tree(run.scratch.directory("t\\u"));
        const bool is = run.call(platform, [&] { return XrDirectory::IsDirectory(path); });
        run.outcome(is, !is);
        int result = run.call(either, [&] {
            return XrDirectory::CreateDirectoryA(path) + XrDirectory::CreateDirectoryA("") +
                   XrDirectory::DeleteDirectory(path);
        });
        run.outcome(!run.raised() && result == 0 && !run.exists("d"),
                    run.raised() || (result == EINVAL && run.exists("d")));
        result = run.call(either, [&] { return XrDirectory::DeleteDirectory(tree.c_str()); });
        run.outcome(!run.raised() && result == 0, run.raised() || result == EINVAL);
    });
    scenario("XrDirectory::DeleteDirectoryTree", [](Run& run) {
        const String tree(run.scratch.directory("zq\\zr"));
        run.scratch.file("keep");  // or the ancestors would go as well
        int result = run.call(memory, [&] { return XrDirectory::DeleteDirectoryTree(tree); });
        run.outcome(result == 1 && !run.exists("zq"), result == 1 || run.raised());
        result = run.call(memory, [&] { return XrDirectory::DeleteDirectoryTree(tree.c_str()); });
        run.outcome(result == 1, run.raised());
    });
    scenario("XrFile, opened and closed", [](Run& run) {
        const std::string path = run.scratch.file("a"), empty;
        int results[3] = {};
        bool closed = false;
        run.call(either, [&] {
            XrFile file;
            results[0] = file.Open(path, "r+");
            state(run, file, results[0] == 0, true);
            results[1] = file.Open("r");
            results[2] = file.Flush();
            closed = file.Close();
            const std::unique_ptr<XrFile> owned(new XrFile(path.c_str(), "r"));
            state(run, *owned, owned->isValid(), true);
        });
        for (const int result : results)
            run.outcome(!run.raised() && result == 0, run.raised() || result != 0);
        run.outcome(closed, !closed);
    });
    scenario("XrFile, copied and assigned", [](Run& run) {
        XrFile file(run.scratch.file(text.str(), "line\n").c_str(), "r"), target;
        run.call(memory, [&] { target = file; });
        run.outcome(target.isValid() && target.getName() == text.str(),
                    run.raised() || (!target.isValid() && target.Error()));
        run.completes(memory, [&] {
            XrFile copy(file);
            copy.getName();
            state(run, copy, copy.Readln(room, sizeof room), false);
        });
        file.Close();
        target.Close();
    });
    scenario("XrFile::Exists", [](Run& run) {
        const XrFile file(run.scratch.file("a").c_str(), "r");
        const String path(run.scratch / "a");
        const bool found =
            run.call(platform, [&] { return file.Exists() && XrFile::Exists(path, 0); });
        run.outcome(found, !found);
    });
    const struct {
        const char *name, *mode;
        bool invalidates;
        bool (*operation)(XrFile&);
    } file_operations[] = {
        {"XrFile::Read", "r", false, [](XrFile& file) { return file.Read(room, 5); }},
        {"XrFile::Write", "a", false, [](XrFile& file) { return file.Write("bytes", 5); }},
        {"XrFile::Readln", "r", false,
         [](XrFile& file) { return file.Readln(room, 20) && file.Readln(room, 20); }},
        {"XrFile::Seek", "r", true,
         [](XrFile& file) { return file.Seek(3) && file.SeekToBegin(); }},
        // "At the end" is also the answer of a failure; a failed seek back answers "no".
        {"XrFile::Eof", "r", true, [](XrFile& file) { return !file.Eof() && !file.Error(); }},
        {"XrFile::IsEmpty", "r", true, [](XrFile& file) { return !file.IsEmpty(); }},
    };
    for (const auto& c : file_operations) {
        scenario(c.name, [c](Run& run) {
            XrFile file(run.scratch.file("a", "first\nsecond\n").c_str(), c.mode);
            const bool result = run.call(nothing, [&] { return c.operation(file); });
            run.outcome(result, !result);
            state(run, file, result, c.invalidates);
            file.Close();
        });
    }
    scenario("XrFile, asked", [](Run& run) {
        const XrFile file(run.scratch.file("a", "12345").c_str(), "r");
        long size = 0, position = 0;
        std::int64_t time = 0;
        run.call(nothing, [&] {
            size = file.Size(), time = file.LastModified(), position = file.Tell();
            int code;
            return file.isValid() && !file.Error() && !file.Error(code);
        });
        run.outcome(size == 5, size == 0);
        run.outcome(time > 0, time == 0);
        run.outcome(position == 0, position == -1);
    });
    scenario("XrFile, reopened after a failed seek", [](Run& run) {
        const std::string path = run.scratch.file("a");
        run.completes(either, [&] {
            XrFile file(path.c_str(), "r");
            file.Seek(0);
            file.Open("r");
        });
        run.keeps(kernel_handles, Run::failing("_lseek"));
        run.keeps(heap_blocks, Run::failing("_lseek"));  // the descriptor's lock
    });
    scenario("XrFile, records written", [](Run& run) {
        const std::string path = run.scratch / "a", standard = text.str();
        bool failed = true;
        run.completes(either, [&] {
            XrFile file(path.c_str(), "w");
            file << 42 << 43L << static_cast<unsigned short>(44) << text << standard
                 << text.c_str();
            failed = file.Error();
        });
        run.outcome(!failed && run.scratch.read("a") ==
                                   "42\0"
                                   "43\0"
                                   "44\0"s +
                                       stored_text + stored_text + stored_text,
                    failed);
    });
    scenario("XrFile, records read", [](Run& run) {
        const std::string stored =
            "1\0"
            "2\0"
            "3\0"s +
            stored_text + stored_text;
        XrFile file(run.scratch.file("a", stored).c_str(), "r");
        int first = 0;
        long second = 0;
        unsigned short third = 0;
        std::string fourth;
        String fifth;
        run.completes(memory, [&] { file >> first >> second >> third >> fourth >> fifth; });
        const bool all =
            first == 1 && second == 2 && third == 3 && fourth == text.str() && fifth == text;
        run.outcome(all && !file.Error(), run.raised() || file.Error());
    });
    scenario("XrFile, a long record read", [](Run& run) {
        XrFile file(run.scratch.file("a", "300001\0"s + bytes + '\0').c_str(), "r");
        std::string read = "before";
        run.completes(memory, [&] { file >> read; });
        run.outcome(read == bytes && !file.Error(),
                    (read == "before" && (run.raised() || file.Error())) ||
                        bytes.rfind(read, 0) == 0);  // what is there of a record cut short
    });
}

}  // namespace torture
