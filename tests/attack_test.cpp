// Hostile input for every exported function that takes a text or a path, and attacks that once got
// through. Each is a test of its own; one that never returns is ended by the suite's time limit.

#include "fuzz/guarded_memory.h"
#include "support/import_patch.h"
#include "support/private_registry.h"
#include "support/scratch_directory.h"
#include "support/test.h"
#include "util/util.h"
// after the platform's header
#include <comutil.h>
#include <fcntl.h>
#include <sys/stat.h>

using namespace util_test;
using Text = const char*;

namespace {

constexpr char server[] = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";

// The current directory has the file "f", the directory "d" with a file, and the empty one "e".
struct World {
    World() {
        SetCurrentDirectoryA(scratch.path().c_str());
        scratch.file("f", "content");
        scratch.directory("e");
        scratch.directory("d");
        scratch.file("d\\inner");
        registry.set_text(server, "Home", "here");
        registry.set_text(server, "EmailPickupDir", ".");
        registry.set_text(server, "ComputerDomainName", "example.test");
        registry.set_text(server, "Database Path", "D:\\db");
    }
    Words state() const {
        Words all;
        for (const char* name : {"f", "d\\inner", "d\\nslookupInput.txt", "e", "n"}) {
            if (std::filesystem::exists(scratch / name)) all.push_back(name);
        }
        return all;
    }
    const ScratchDirectory scratch;
    PrivateRegistry registry;
    const ImportPatch pause{"Sleep", fails<0>};
    const ImportPatch command{"system", fails<7>};
};

// Outputs of calls. Only `out` is looked at.
String out;
String ignored;
char message[2048];
double free_space;
std::list<String> hosts;
HANDLE handle;
OVERLAPPED lock;
WIN32_FIND_DATAW entry;
struct _stat64i32 status_record;

// What a call with a text returned or raised, and stored in `out`.
using Call = std::function<Words(Text)>;

struct AttackTest : testing::Test {
    AttackTest(Call play, std::string name) : call(std::move(play)), good(std::move(name)) {}
    void TestBody() override {
        if (!good.empty()) play_names();
        play_texts();
    }

    // The text begins and ends where readable memory does. The place must make no difference. The
    // sizes are around those of fixed buffers, and beyond 15 and 16 bits. The bytes take all values
    // but NUL.
    void play_texts() const {
        static util_fuzz::GuardedMemory memory;
        const World world;
        for (const int size : {0, 1, 2, 30, 260, 261, 1024, 1025, 32767, 32768, 40000, 70000}) {
            std::string text;
            for (int i = 0; i < size; ++i)
                text += static_cast<char>(1 + (i * 7 + size) % 255);
            EXPECT_EQ(call(memory.at_begin(text)), call(memory.at_end(text))) << size;
        }
    }

    // An overlong form of a good name must do what a missing name does. Where lengths have 16 bits,
    // the form with 65,536 bytes more is taken for the good name. Names of one letter are in a
    // World.
    void play_names() const {
        const auto outcome = [this](const std::string& name) {
            const World world;
            const std::string path = good.size() == 1 ? world.scratch / name : name;
            Words result = call(path.c_str());
            say(result, world.state());
            return result;
        };
        const Words failure = outcome("f\\" + good);
        EXPECT_NE(outcome(good), failure);
        for (const std::size_t more : {33000, 40000, 65536, 70000})
            EXPECT_EQ(outcome(good + std::string(more, 'x')), failure) << more;
    }

    const Call call;
    const std::string good;
};

// `good` is empty for a text that is no name. `more` are the function's other arguments.
template <typename Function, typename... More>
void add(Text what, const std::string& good, Function function, More... more) {
    const auto call = [=](Text text) {
        out = "";
        try {
            return said(function(text, more...), out);
        } catch (const std::exception& error) {
            return said(error.what());
        }
    };
    testing::RegisterTest("AttackTest", what, nullptr, nullptr, __FILE__, __LINE__,
                          [=] { return new AttackTest(call, good); });
}

// Those that call the system. The others are in fuzz/page_ends_fuzz.cpp.
[[maybe_unused]] const bool added = [] {
    const auto o = std::ref(out);
    const auto any = Tools::FileAttr::any;
    add("ksl_putenv", "", ksl_putenv);
    add("ksl_system", "", ksl_system);
    add("ksl_popen", "", [](Text t) { return ksl_popen(t, t); });
    add("UTIL_Utf8ToWideChar and back", "", [](Text t) {
        _bstr_t wide;
        return UTIL_Utf8ToWideChar(t, &wide) && UTIL_WideCharToUtf8(wide, &out);
    });
    add("UTIL_Utf8ToMultiByte", "", UTIL_Utf8ToMultiByte, &out);
    add("wide to ANSI", "", [](Text t) { return UTIL_WcharToMultiByte(to_wide(t).c_str(), &out); });
    add("email", "", [](Text t) { return email(t, String(t).replace(";", ""), t, t).send(); });
    add("connect", "", [](Text t) { return UTIL_ConnectCifsShare(t, t, t, message); });
    add("disconnect", "", UTIL_DisconnectCifsShare, message);
    add("registry key", server, UTIL_GetRegistryValue, "Home", o);
    add("registry value", "Home", [](Text t) { return UTIL_GetRegistryValue(server, t, out); });
    add("UTIL_getTSSEDBInfoFromRegistry", server, UTIL_getTSSEDBInfoFromRegistry, o, o, o);
    add("UTIL_IsClustered", "PlugPlay", UTIL_IsClustered);
    add("UTIL_ModifyPrivilege", "SeDebugPrivilege", UTIL_ModifyPrivilege, '\1');
    add("ksl_system2", "hostname", ksl_system2);
    add("module version", "\\Windows\\system32\\kernel32.dll", UTIL_GetModuleVersion, message);

    add("UTF8_open", "f", [](Text t) { return ksl_close(UTF8_open(t, _O_RDWR, 0)); });
    add("UTF8_unlink", "f", UTF8_unlink);
    add("UTF8_chdir", "d", UTF8_chdir);
    add("UTF8_chmod", "f", UTF8_chmod, _S_IWRITE);
    add("UTF8_access", "f", UTF8_access, 4);
    add("UTF8_mkdir", "n", UTF8_mkdir);
    add("UTF8_rmdir", "e", UTF8_rmdir);
    for (auto* status : {UTF8_stat, UTF8_lstat, ksl_stat, ksl_lstat})
        add("status", "f", status, &status_record);
    add("UTF8_Find", "f", [](Text t) { return FindClose(UTF8_FindFirstFile(t, &entry, {})); });
    add("UTF8_GetDiskFreeSpaceEx", "d", UTF8_GetDiskFreeSpaceEx, nullptr, nullptr, nullptr);
    add("UTF8_CopyFile", "f", UTF8_CopyFile, "n", 0);
    add("UTF8_CopyFile, to", "n", [](Text t) { return UTF8_CopyFile("f", t, 0); });
    add("UTIL_copy", "f", UTIL_copy, "n", '\1');
    add("UTIL_copy, to", "n", [](Text t) { return UTIL_copy("f", t, 1); });
    add("UTIL_delete", "f", UTIL_delete);
    add("UTIL_delete_readonly", "f", UTIL_delete_readonly);
    add("UTIL_cleanupDir", "d", UTIL_cleanupDir, 1);
    add("UTIL_CreateDirectory", "n", UTIL_CreateDirectory);
    add("UTIL_makeNewNTDir", "n", [](Text t) { return UTIL_makeNewNTDir(t, nullptr) == 0; });
    add("UTIL_prepareAndCreateDir", "n",
        [](Text t) { return UTIL_prepareAndCreateDir(t, ignored, "", ignored, nullptr) == 0; });
    add("creation record", "n",
        [](Text t) { return UTIL_prepareAndCreateDir("e", ignored, t, ignored, nullptr) == 0; });
    add("UTIL_LockFilePrivate", "d", [](Text t) {
        return UTIL_LockFilePrivate(t, &handle, &lock) && UTIL_UnLockFilePrivate(handle, &lock);
    });
    add("EnumHosts", "d", [](Text t) { return UTIL_EnumHostsOnANetwork(hosts, t, out); });
    add("XrFile", "f", [](Text t) { return XrFile(t, "r").isValid(); });
    add("XrFile::Exists", "f", [](Text t) { return XrFile::Exists(t, 0); });
    add("XrDirectory", "d", [](Text t) { return XrDirectory(t).getDirectoryList(1, 0)->size(); });
    add("getFreeSpace", "d", [](Text t) { return XrDirectory(t).getFreeSpace(&free_space); });
    add("XrDirectory::IsDirectory", "d", [](Text t) { return XrDirectory::IsDirectory(t); });
    add("DeleteDirectory", "e", [](Text t) { return XrDirectory::DeleteDirectory(t); });
    add("DeleteDirectoryTree", "e", [](Text t) { return XrDirectory::DeleteDirectoryTree(t); });
    add("Tools::fileExists", "f", Tools::fileExists);
    add("absolute_pathname", "f", [=](Text t) { return Tools::absolute_pathname(t, any) == t; });
    add("absolute_pathname, list", "d",
        [=](Text t) { return Tools::absolute_pathname("inner", ignored = t, any).empty(); });
    return true;
}();

TEST(HardeningDeathTest, ADamagedStackEndsTheProcess) {
    const ImportPatch patch("gethostname", [](char* name, int size) {
        std::memset(name, 'x', static_cast<std::size_t>(size) + 1000);
        return -1;
    });
    char name[8];
    EXPECT_EXIT(ksl_gethostname(name, sizeof name), testing::ExitedWithCode(int(0xC0000409)), "");
}

TEST(OldAttackTest, ARepetitiveTextToSearch) {
    const std::string half(1 << 20, 'a');
    EXPECT_EQ(String(half + half).find(half + "b", 0, 1), String::npos);
}

TEST(OldAttackTest, KeysWithOneStringHash) {
    const String key("\0\0\0\0\0\x20\0\0", 8);
    const String other("\1\0\0\0\x20\x20\0\0", 8);
    EXPECT_EQ(key.hash(), other.hash());
    EXPECT_NE(std::hash<String>()(key), std::hash<String>()(other));
}

// The name of a file, and 2^32 bytes after it: 16 MB mapped 256 times.
TEST(OldAttackTest, APathBeyond4GB) {
    const World world;
    const std::string name = world.scratch / "f";
    constexpr std::size_t block = 1 << 24, size = std::size_t{1} << 32;
    auto* const text = reinterpret_cast<char*>(std::size_t{1} << 45);  // nothing else is there
    const HANDLE pages =
        CreateFileMapping(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, block, nullptr);
    for (std::size_t at = 0; at < size; at += block)
        ASSERT_NE(MapViewOfFileEx(pages, FILE_MAP_WRITE, 0, 0, block, text + at), nullptr);
    ASSERT_NE(VirtualAlloc(text + size, block, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE), nullptr);
    std::memset(text, 'x', block);
    std::memcpy(text, name.data(), name.size());
    std::strcpy(text + size, name.c_str() + 1);  // what 32 bits count is the name
    EXPECT_EQ(UTF8_unlink(text), -1);
}

TEST(OldAttackTest, AFileInAnotherChildProcess) {
    const World world;
    std::set<int> inherited;
    const ImportPatch patch("_wopen", [&](const wchar_t* path, int flags, int mode) {
        inherited.insert((flags & _O_NOINHERIT) == 0);
        return _wopen(path, flags, mode);
    });
    EXPECT_EQ(UTIL_copy("f", "n", 0), 0);
    EXPECT_EQ(UTIL_EnumHostsOnANetwork(hosts, world.scratch / "d", out), 0);
    EXPECT_EQ(inherited, std::set<int>{0}) << "child processes can use the files";
}

}  // namespace
