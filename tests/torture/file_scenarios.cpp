
#include "torture/scenario.h"
#include "util/files/files.h"
#include "util/portable/current_directory.h"

using namespace std::string_literals;

namespace torture {
namespace {

const String text("a text longer than any short string holds");
const std::string bytes(300000, 'b');

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
    scenario("UTIL_LockFilePrivate, UTIL_UnLockFilePrivate", [](Run& run) {
        const String directory(run.scratch.path());
        HANDLE handle = nullptr;
        OVERLAPPED record;
        const auto copy = std::make_unique<String>(directory);  // taken by value
        const bool locked =
            run.call(memory, [&] { return UTIL_LockFilePrivate(*copy, &handle, &record); });
        run.outcome(locked, !locked && (run.raised() || handle == INVALID_HANDLE_VALUE));
        if (!locked) return;
        OVERLAPPED start = {};
        constexpr DWORD at_once = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
        const HANDLE other = CreateFileA((run.scratch / "lockfile.lck").c_str(), GENERIC_WRITE, 7,
                                         nullptr, OPEN_EXISTING, 0, nullptr);
        run.always(!LockFileEx(other, at_once, 0, 1, 0, &start), "success without a lock");
        CloseHandle(other);
        const bool released =
            run.call(nothing, [&] { return UTIL_UnLockFilePrivate(handle, &record); });
        run.outcome(released, !released);
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
    scenario(
        "UTIL_prepareAndCreateDir",
        [](Run& run) {
            prepare(run, String(run.scratch / "x\\y"), String(run.scratch / "record"));
        },
        true);
    scenario(
        "UTIL_prepareAndCreateDir, existing",
        [](Run& run) { prepare(run, String(run.scratch.directory("x\\y")), String("")); }, true);
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
            run.outcome(directory->isValid() && directory->getPath() == path,
                        !directory->isValid());
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
            const std::size_t found = drives.getDirectoryList(false, false)->size();
            static std::size_t all = 0;
            if (!Run::faulted()) all = found;
            run.outcome(found > 0 && found == all, found < all);
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
    scenario("XrFile, reopened after a failed seek", [](Run& run) {
        const std::string path = run.scratch.file("a");
        run.completes(either, [&] {
            XrFile file(path.c_str(), "r");
            file.Seek(0);
            file.Open("r");
        });
        run.keeps(kernel_handles, Run::failing("_lseek"));
        run.keeps_at_most(heap_blocks, Run::failing("_lseek"));  // the lock of a new descriptor
    });
}

}  // namespace torture
