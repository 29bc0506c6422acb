#include "torture/scenario.h"
#include "util/files/files.h"

namespace torture {
namespace {

void prepare(Run& run, bool exists) {
    const String path(exists ? run.scratch.directory("x\\y") : run.scratch / "x\\y");
    const String record(exists ? "" : run.scratch / "record");
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
        run.scratch.directory("d\\sub");
        const std::string names[] = {"d\\a", "d\\" + std::string(150, 'b')};
        for (const std::string& name : names)
            run.scratch.file(name);
        const std::string path = run.scratch / "d";
        const int result = run.call(nothing, [&] { return UTIL_cleanupDir(path.c_str(), 1); });
        const int left = run.exists(names[0]) + run.exists(names[1]);
        const bool broken_off = Run::failing("FindNextFileW") && result <= 1;
        const bool not_deleted =
            Run::failing("DeleteFileW") && result == 1 && left == playing.faults;
        run.outcome(result == 1 && left == 0,
                    broken_off || not_deleted || (result == 0 && left == 2));
        run.always(run.exists("d\\sub"), "a subdirectory gone");
    });
    scenario("UTIL_copy", [](Run& run) {
        static const std::string bytes(300000, 'b');
        const std::string from = run.scratch.file("a", bytes), to = run.scratch / "b";
        const int result =
            run.call(nothing, [&] { return UTIL_copy(from.c_str(), to.c_str(), 1); });
        run.outcome(result == 0 && run.scratch.read("b") == bytes, result == -1);
        if (run.exists("b")) run.always(bytes.rfind(run.scratch.read("b"), 0) == 0, "other bytes");
    });
    scenario("UTIL_LockFilePrivate, UTIL_UnLockFilePrivate", [](Run& run) {
        HANDLE handle = nullptr;
        OVERLAPPED record;
        const auto copy = std::make_unique<String>(run.scratch.path());  // taken by value
        const bool locked =
            run.call(memory, [&] { return UTIL_LockFilePrivate(*copy, &handle, &record); });
        run.outcome(locked, !locked && (run.raised() || handle == INVALID_HANDLE_VALUE));
        if (!locked) return;
        constexpr DWORD at_once = LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY;
        OVERLAPPED start = {};
        const HANDLE other = CreateFileA((run.scratch / "lockfile.lck").c_str(), GENERIC_WRITE, 7,
                                         nullptr, OPEN_EXISTING, 0, nullptr);
        run.always(!LockFileEx(other, at_once, 0, 1, 0, &start), "success without a lock");
        CloseHandle(other);
        const bool released =
            run.call(nothing, [&] { return UTIL_UnLockFilePrivate(handle, &record); });
        const bool fails = Run::failing("UnlockFileEx") || Run::failing("CloseHandle");
        run.always(released != (fails && Run::faulted()), "the result of the release");
    });
    scenario("Tools::absolute_pathname", [](Run& run) {
        const String file(run.scratch.file("file.name")), name("file.name");
        const String before("C:\\no_such_directory;" + run.scratch.path() + ";C:\\");
        String list(before);
        const String found = run.call(
            either, [&] { return Tools::absolute_pathname(name, list, Tools::FileAttr::any); });
        run.outcome(found == file && list == ";" + run.scratch.path(),
                    found.empty() && list == before);
    });
    for (const bool exists : {false, true}) {
        scenario(
            exists ? "UTIL_prepareAndCreateDir, existing" : "UTIL_prepareAndCreateDir",
            [=](Run& run) { prepare(run, exists); }, true);
    }
    scenario("XrDirectory, listed", [](Run& run) {
        for (const char* name :
             {"\xC3\xA4", "a", ".hidden", "a_name_longer_than_any_short_string_holds"})
            run.scratch.file(name, "x");
        const String path(run.scratch.path());
        std::optional<XrDirectory> directory;
        run.call(either, [&] { directory.emplace(path); });
        const bool valid = directory && directory->isValid();
        run.outcome(valid, run.raised() || !Run::failing("memory"), "validity");
        for (const std::size_t all : {3, 4}) {
            if (!valid) return;
            const auto list = [&, all] {
                return directory->getDirectoryList(all == 4, false)->size();
            };
            const std::size_t listed = run.call(either, list);
            // Only what the platform does not tell is left out; want of memory is raised.
            const bool untold = Run::failing("FindFirstFileW") || Run::failing("FindNextFileW");
            run.outcome(listed == all, run.raised() || (untold && listed < all), "the listing");
            run.always(list() == (run.raised() ? all : listed), "a part was kept");
            directory->destroy();
        }
    });
    scenario("XrDirectory, set anew, free space", [](Run& run) {
        const String path(run.scratch.path());
        double free = -1;
        bool listed = false;
        const int result = run.call(either, [&] {
            XrDirectory directory(path);
            listed = directory.getDirectoryList(false, false)->size() == 0;
            directory.init(path);  // drops its listing
            return directory.getFreeSpace(&free);
        });
        run.keeps(heap_blocks, listed);
        run.outcome(result == 0 && free > 0,
                    run.raised() ? free == -1 || free == 0 : result == -1 && free == 0);
    });
    scenario("XrDirectory, drive roots", [](Run& run) {
        static std::size_t all = 0;
        const String empty;
        const std::size_t found = run.call(
            either, [&] { return XrDirectory(empty).getDirectoryList(false, false)->size(); });
        if (!Run::faulted()) all = found;
        const bool untold = Run::failing("GetLogicalDriveStringsA");
        run.outcome(found > 0 && found == all, found == 0 && (run.raised() || untold));
    });
    scenario("XrDirectory::DeleteDirectoryTree", [](Run& run) {
        const String tree(run.scratch.directory("zq\\zr"));
        run.scratch.file("keep");  // or the ancestors would go as well
        const int result =
            run.call(memory, [&] { return XrDirectory::DeleteDirectoryTree(tree.c_str()); });
        run.outcome(result == 1 && !run.exists("zq"),
                    run.raised() || (result == 1 && run.exists("zq")));
    });
    scenario("XrFile, reopened after a failed seek", [](Run& run) {
        const std::string path = run.scratch.file("a");
        XrFile file(path.c_str(), "r");
        const bool sought = run.call(nothing, [&] { return file.Seek(0); });
        run.outcome(sought && !file.Error(), !sought && file.Error() && Run::failing("_lseek"));
        const int code = run.call(platform, [&] { return file.Open("r"); });
        run.outcome(!run.raised() && code == 0 && file.isValid(),
                    run.raised() || (code != 0 && file.Error() && !file.isValid()));
        run.keeps(kernel_handles, Run::failing("_lseek"));
    });
}

}  // namespace torture
