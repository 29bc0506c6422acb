#include "util/files/prepare_directory.h"

#include "support/cases.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "util/internal/scoped_handle.h"

using namespace util_test;

namespace {

util::FileHandle open_shared(const std::string& path, DWORD access) {
    return util::FileHandle(
        CreateFileA(path.c_str(), access, 7, nullptr, OPEN_EXISTING, 0, nullptr));
}

// The current directory is an empty one.
struct World : CaseWorld {
    World() { SetCurrentDirectoryA(scratch.path().c_str()); }

    // The result, then the kind and the failed path if anything is reported.
    Words prepare(const String& path, const String& tracking) {
        String failed = message = "before";
        int kind = 77;
        const auto result = UTIL_prepareAndCreateDir(path, message, tracking, failed, &kind);
        const bool silent = kind == 77 && failed == "before" && message == "before";
        return silent ? said(result) : said(result, kind, failed);
    }
    // The paths of all directories.
    Words tree() const {
        Words paths;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(".")) {
            if (entry.is_directory()) paths.push_back(entry.path().u8string().substr(2));
        }
        std::sort(paths.begin(), paths.end());
        return said(paths);
    }
    void hold(const std::string& name) {
        held.reset(CreateFileA(scratch.directory(name).c_str(), GENERIC_READ, 0, nullptr,
                               OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    }

    // Prepares x\y\z. The script has the bytes that the first writes write, and their codes; later
    // ones are real, and just before each of them a rival appends "!". A reader locks the record,
    // until so many pauses have passed; 0: there is no reader. Returns the record and the pauses.
    Words record(const std::string& script, int pauses_to_release) {
        std::istringstream writes(script);
        const std::string tracking = scratch.file("record");
        util::FileHandle reader, rival = open_shared(tracking, FILE_APPEND_DATA);
        SetCurrentDirectoryA(scratch.directory(std::to_string(++rounds)).c_str());
        if (pauses_to_release != 0) {
            reader = open_shared(tracking, GENERIC_READ);
            OVERLAPPED start = {};
            EXPECT_TRUE(LockFileEx(reader.get(), 0, 0, MAXDWORD, MAXDWORD, &start));
        }
        const ImportPatch write("WriteFile", [&](HANDLE file, const void* data, DWORD size,
                                                 DWORD* moved, OVERLAPPED* at) {
            DWORD bytes, code;
            if (!(writes >> bytes >> code)) {
                WriteFile(rival.get(), "!", 1, moved, nullptr);
                return WriteFile(file, data, size, moved, at);
            }
            WriteFile(file, data, bytes, moved, at);
            SetLastError(code);
            return BOOL(code == 0);
        });
        int pauses = 0;
        const ImportPatch sleep("Sleep", [&](DWORD milliseconds) {
            EXPECT_EQ(milliseconds, 10u);
            if (++pauses == pauses_to_release) reader.reset();
        });
        EXPECT_EQ(prepare("x\\y\\z", tracking), Words{"0"});
        reader.reset();
        return said(scratch.read("record"), pauses);
    }

    const ScratchDirectory scratch;
    util::FileHandle held;
    String message;
    int rounds = 0;
    // The system's text says which code it was asked for, and needs UTF-8 to say it.
    const ImportPatch system_text{
        "FormatMessageW", [](DWORD flags, LPCVOID, DWORD code, DWORD, wchar_t* buffer) -> DWORD {
            if (flags != 0x1300) return 0;  // allocate, from the system, ignore inserts
            const std::wstring text = L"\u6587" + std::to_wstring(code);
            auto* const block = LocalAlloc(LPTR, (text.size() + 1) * sizeof(wchar_t));
            std::memcpy(block, text.data(), text.size() * sizeof(wchar_t));
            *reinterpret_cast<void**>(buffer) = block;
            return static_cast<DWORD>(text.size());
        }};
};

const Cases<World> cases(
    "files/prepare_directory.cases",
    {
        call("file", [](World& w, const std::string& name) { w.scratch.file(name); }),
        call("content", [](World& w, const std::string& name) { return w.scratch.read(name); }),
        call("hold", &World::hold),
        call("let_go", [](World& w) { w.held.reset(); }),
        call("tree", &World::tree),
        call("prepare", &World::prepare),
        call("message", [](World& w) { return w.message; }),
        call("prepare_in_place",
             [](World& w, String path) {
                 return UTIL_prepareAndCreateDir(path, w.message, ".", path, nullptr);
             }),
        call("record", &World::record),
    });

}  // namespace
