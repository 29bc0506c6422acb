// Hostile input for every exported function that takes a text or a path, and attacks that once got
// through. Each is a test of its own; one that never returns is ended by the suite's time limit.

#include <climits>
#include <new>
#include <tuple>
#include <unordered_set>

#include "fuzz/guarded_memory.h"
#include "support/built_file.h"
#include "support/import_patch.h"
#include "support/private_registry.h"
#include "support/scratch_directory.h"
#include "support/test.h"
#include "util/util.h"
// after the platform's header
#include <comutil.h>
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

using util_test::ImportPatch;
using util_test::to_wide;

namespace {

struct AttackTest : testing::Test {
    explicit AttackTest(std::function<void()> body) : play(std::move(body)) {}
    void TestBody() override { play(); }
    const std::function<void()> play;
};

void attack(const char* name, std::function<void()> play) {
    testing::RegisterTest("AttackTest", name, nullptr, nullptr, __FILE__, __LINE__,
                          [play] { return new AttackTest(play); });
}

int commands;  // given to the command processor

int noted_command(const char*) {
    return ++commands, 0;
}

// The current directory has the file "f", the directory "d" with a file, and the empty one "e".
struct World {
    World() {
        SetCurrentDirectoryA(m_scratch.path().c_str());
        m_scratch.file("f", "content"), m_scratch.directory("e");
        m_scratch.directory("d"), m_scratch.file("d\\inner");
        commands = 0;
    }
    std::string operator/(const std::string& name) const { return m_scratch / name; }
    std::string state() const {
        std::string all = ", " + std::to_string(commands) + " commands";
        for (const std::string name : {"f", "d\\inner", "e", "n"}) {
            if (GetFileAttributesA((*this / name).c_str()) != INVALID_FILE_ATTRIBUTES)
                all += ", " + name;
        }
        return all;
    }
    const util_test::ScratchDirectory m_scratch;
};

// A call with a text. Returns what the call returned, stored or raised, as text.
using Call = std::function<std::string(const char*)>;

template <typename Function>
Call shown(Function call) {
    return [call](const char* text) -> std::string {
        String out;
        try {
            if constexpr (std::is_invocable_v<Function, const char*, String&>) {
                return testing::PrintToString(call(text, out)) + ", " + out.str();
            } else {
                return testing::PrintToString(call(text));
            }
        } catch (const std::exception& error) {
            return error.what();
        }
    };
}

// The text begins and ends where readable memory does. The place must make no difference. The sizes
// are around those of fixed buffers, and beyond 15 and 16 bits. The bytes take all values but NUL.
void play_texts(const Call& call) {
    static util_fuzz::GuardedMemory memory;
    const World world;
    for (const std::size_t size : {0, 1, 2, 30, 260, 261, 1024, 1025, 32767, 32768, 40000, 70000}) {
        std::string text(size, 'x');
        for (std::size_t i = 0; i < size; ++i)
            text[i] = static_cast<char>(1 + (i * 7 + size) % 255);
        EXPECT_EQ(call(memory.at_begin(text)), call(memory.at_end(text))) << size;
    }
}

// An overlong form of a good name must do what a missing name does. Where lengths have 16 bits, the
// form with 65,536 bytes more is taken for the good name. Names of one letter are in a World.
void play_names(const Call& call, const std::string& good) {
    const bool in_world = good.size() == 1;
    const auto outcome = [&](const std::string& name) {
        const World world;
        const std::string result = call((in_world ? world / name : name).c_str());
        return result + world.state();
    };
    const std::string failure = outcome(in_world ? "f\\missing" : good + "-missing");
    EXPECT_NE(outcome(good), failure);
    for (const std::size_t more : {33000, 40000, 65536, 70000})
        EXPECT_EQ(outcome(good + std::string(more, 'x')), failure) << more;
    play_texts(call);
}

template <typename Function>
void text(const char* what, Function call) {
    attack(what, [call = shown(call)] { play_texts(call); });
}
template <typename Function>
void name(const char* what, const std::string& good, Function call) {
    attack(what, [=, call = shown(call)] { play_names(call, good); });
}

using Text = const char*;
constexpr char server[] = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";

// Outputs that no row looks at.
String ignored;
char message[2048];
std::list<String> hosts;
HANDLE handle;
OVERLAPPED lock;
WIN32_FIND_DATAW entry;
struct _stat64i32 status_record;

// Those that call the system; the others are in fuzz/page_ends_fuzz.cpp.
void add_texts() {
    text("ksl_putenv", ksl_putenv);
    text("ksl_system", ksl_system);
    text("ksl_popen", [](Text t) { return ksl_popen(t, t); });
    text("UTIL_Utf8ToWideChar", [](Text t) {
        _bstr_t wide;
        return UTIL_Utf8ToWideChar(t, &wide) ? std::wstring(wide) : L"failed";
    });
    text("UTIL_Utf8ToMultiByte", [](Text t, String& out) { return UTIL_Utf8ToMultiByte(t, &out); });
    text("UTIL_WideCharToUtf8",
         [](Text t, String& out) { return UTIL_WideCharToUtf8(to_wide(t).c_str(), &out); });
    text("UTIL_WcharToMultiByte",
         [](Text t, String& out) { return UTIL_WcharToMultiByte(to_wide(t).c_str(), &out); });
    text("email::send", [](Text t) { return email(t, String(t).replace(";", ""), t, t).send(); });
    text("email::updateTo", [](Text t) {
        email mail(t, "b", "c", t);
        return mail.updateTo(t), mail.updateBody("x"), mail.getTo() + mail.getBody();
    });
    text("UTIL_ConnectCifsShare", [](Text t) { return UTIL_ConnectCifsShare(t, t, t, message); });
    text("UTIL_DisconnectCifsShare", [](Text t) { return UTIL_DisconnectCifsShare(t, message); });
    text("XrFile", [](Text t, String& out) {
        XrFile file("n", "w+");
        file << t << String(t) << std::string(t);
        return file.SeekToBegin() && (file >> out).Error();
    });
}

void add_names() {
    name("UTIL_GetRegistryValue, key", server,
         [](Text t, String& out) { return UTIL_GetRegistryValue(t, "Home", out); });
    name("UTIL_GetRegistryValue, name", "Home",
         [](Text t, String& out) { return UTIL_GetRegistryValue(server, t, out); });
    name("UTIL_getTSSEDBInfoFromRegistry", server,
         [](Text t, String& out) { return UTIL_getTSSEDBInfoFromRegistry(t, out, out, out); });
    name("UTIL_IsClustered", "PlugPlay", [](Text t) { return UTIL_IsClustered(t); });
    name("UTIL_ModifyPrivilege", "SeDebugPrivilege",
         [](Text t) { return UTIL_ModifyPrivilege(t, 1); });
    name("ksl_system2", "hostname", ksl_system2);
    name("UTIL_GetModuleVersion", util_test::built_file("stamped.dll"),
         [](Text t) { return String(UTIL_GetModuleVersion(t, message)); });
}

void add_paths() {
    const auto any = Tools::FileAttr::any;
    name("UTF8_open", "f", [](Text t) { return ksl_close(UTF8_open(t, _O_RDWR, 0)); });
    name("UTF8_open, new", "n", [](Text t) { return ksl_close(UTF8_open(t, _O_CREAT, 0)); });
    name("UTF8_unlink", "f", UTF8_unlink);
    name("UTF8_chdir", "d", UTF8_chdir);
    name("UTF8_chmod", "f", [](Text t) { return UTF8_chmod(t, _S_IWRITE); });
    name("UTF8_access", "f", [](Text t) { return UTF8_access(t, 4); });
    name("UTF8_mkdir", "n", UTF8_mkdir);
    name("UTF8_rmdir", "e", UTF8_rmdir);
    for (auto* status : {UTF8_stat, UTF8_lstat, ksl_stat, ksl_lstat})
        name("status", "f", [=](Text t) { return status(t, &status_record); });
    name("UTF8_Find", "f", [](Text t) { return FindClose(UTF8_FindFirstFile(t, &entry, {})); });
    name("UTF8_GetDiskFreeSpaceEx", "d",
         [](Text t) { return UTF8_GetDiskFreeSpaceEx(t, nullptr, nullptr, nullptr); });
    name("UTF8_CopyFile", "f", [](Text t) { return UTF8_CopyFile(t, "n", 0); });
    name("UTF8_CopyFile, to", "n", [](Text t) { return UTF8_CopyFile("f", t, 0); });
    name("UTIL_copy", "f", [](Text t) { return UTIL_copy(t, "n", 1); });
    name("UTIL_copy, to", "n", [](Text t) { return UTIL_copy("f", t, 1); });
    name("UTIL_delete", "f", UTIL_delete);
    name("UTIL_delete_readonly", "f", UTIL_delete_readonly);
    name("UTIL_cleanupDir", "d", [](Text t) { return UTIL_cleanupDir(t, 1); });
    name("UTIL_CreateDirectory", "n", UTIL_CreateDirectory);
    name("UTIL_makeNewNTDir", "n", [](Text t) { return UTIL_makeNewNTDir(t, nullptr) == 0; });
    name("UTIL_prepareAndCreateDir", "n",
         [](Text t) { return UTIL_prepareAndCreateDir(t, ignored, "", ignored, nullptr) == 0; });
    name("UTIL_prepareAndCreateDir, record", "n", [](Text t) {
        int kind = 0;
        return UTIL_prepareAndCreateDir("e", ignored, t, ignored, &kind), kind;
    });
    name("UTIL_LockFilePrivate", "d", [](Text t) {
        return UTIL_LockFilePrivate(t, &handle, &lock) && UTIL_UnLockFilePrivate(handle, &lock);
    });
    name("UTIL_EnumHostsOnANetwork", "d",
         [](Text t, String& out) { return UTIL_EnumHostsOnANetwork(hosts, t, out); });
    name("XrFile", "f", [](Text t) { return XrFile(t, "r").isValid(); });
    name("XrFile::Open", "n", [](Text t) { return XrFile().Open(t, "w") == 0; });
    name("XrFile::Exists", "f", [](Text t) { return XrFile::Exists(t, 0); });
    name("XrDirectory", "d", [](Text t) {
        XrDirectory directory(t);
        double size;
        return std::tuple(directory.isValid(), directory.getFreeSpace(&size),
                          directory.getDirectoryList(true, false)->size());
    });
    name("XrDirectory::IsDirectory", "d", [](Text t) { return XrDirectory::IsDirectory(t); });
    name("DeleteDirectory", "e", [](Text t) { return XrDirectory::DeleteDirectory(t); });
    name("DeleteDirectoryTree", "e", [](Text t) { return XrDirectory::DeleteDirectoryTree(t); });
    name("Tools::fileExists", "f", Tools::fileExists);
    name("absolute_pathname", "f", [=](Text t) { return Tools::absolute_pathname(t, any) == t; });
    name("absolute_pathname, list", "d", [=](Text t) {
        String list(t);
        return Tools::absolute_pathname("inner", list, any).empty();
    });
}

// Begins with `head`. With its NUL it is 2^32 bytes longer than `head`: 16 MB mapped 256 times.
const char* huge_text(const std::string& head) {
    constexpr std::size_t block = 1 << 24, size = (std::size_t{1} << 32) + block;
    auto* const begin = static_cast<char*>(VirtualAlloc(nullptr, size, MEM_RESERVE, PAGE_NOACCESS));
    VirtualFree(begin, 0, MEM_RELEASE);
    HANDLE sections[2];
    for (HANDLE& pages : sections)
        pages = CreateFileMapping(INVALID_HANDLE_VALUE, nullptr, PAGE_READWRITE, 0, block, nullptr);
    for (std::size_t at = 0; at < size; at += block)
        MapViewOfFileEx(sections[at + block == size], FILE_MAP_WRITE, 0, 0, block, begin + at);
    std::memset(begin, 'x', block);
    std::memcpy(begin, head.data(), head.size());
    std::strcpy(begin + size - block, head.c_str() + 1);
    return begin;
}

TEST(HardeningDeathTest, ADamagedStackEndsTheProcess) {
    const auto overflow = [] {
        const ImportPatch patch("gethostname", [](char* name, int size) {
            std::memset(name, 'x', static_cast<std::size_t>(size) + 1000);
            return -1;
        });
        char name[8];
        ksl_gethostname(name, sizeof name);
    };
    const auto fails_fast = [](int code) { return static_cast<DWORD>(code) == 0xC0000409; };
    EXPECT_EXIT(overflow(), fails_fast, "");
}

void add_attacks() {
    attack("a command in the directory of UTIL_EnumHostsOnANetwork", [] {
        for (const char* name : {"\"&echo x>n&\"\\..", "\n\\..", "\x01\\..", "\x1F\\.."}) {
            const World world;
            EXPECT_EQ(UTIL_EnumHostsOnANetwork(hosts, world / name, ignored), 0);
            EXPECT_EQ(commands, 0) << name;
        }
    });
    attack("a reader that locks the tracking file", [] {
        const World world;
        const HANDLE file = CreateFileA("f", GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                        nullptr, OPEN_EXISTING, 0, nullptr);
        OVERLAPPED whole = {};
        LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK, 0, MAXDWORD, MAXDWORD, &whole);
        const String made(world / "n"), record(world / "f");
        EXPECT_EQ(UTIL_prepareAndCreateDir(made, ignored, record, ignored, nullptr), 0u);
        CloseHandle(file);
    });
    attack("a format of 2 GB", [] {
        const char* volatile format = "%.*f";  // hides it from the compiler, which would warn
        EXPECT_THROW(String::format(format, INT_MAX, 1.5), std::bad_alloc);
    });
    attack("a repetitive text to search", [] {
        const std::string half(1 << 20, 'a');
        EXPECT_EQ(String(half + half).find(half + "b", 0, 1), String::npos);
    });
    attack("keys with one String::hash()", [] {
        std::unordered_set<String> keys;
        for (std::uint32_t i = 0; i < 1000; ++i) {
            const std::uint32_t h = (8 << 5) ^ i, words[] = {i, h << 5 | h >> 27};
            keys.emplace(reinterpret_cast<const char*>(words), sizeof words);
        }
        for (std::size_t i = 0; i < keys.bucket_count(); ++i)
            ASSERT_LT(keys.bucket_size(i), 20u);
    });
    attack("a path beyond 4 GB", [] {
        const World world;
        EXPECT_EQ(UTF8_unlink(huge_text(world / "f")), -1);
        EXPECT_EQ(world.state(), World().state());
    });
    attack("files of UTIL_copy in child processes", [] {
        const World world;
        int reads = 0;
        const ImportPatch patch("_read", [&](int descriptor, void* buffer, unsigned int size) {
            DWORD flags = HANDLE_FLAG_INHERIT;
            GetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(descriptor)), &flags);
            EXPECT_EQ(flags & HANDLE_FLAG_INHERIT, 0u) << "child processes can read the file";
            ++reads;
            return _read(descriptor, buffer, size);
        });
        EXPECT_EQ(UTIL_copy("f", "n", 0), 0);
        EXPECT_GT(reads, 0);
    });
    attack("a link below the directory of UTIL_cleanupDir", [] {
        const World world;
        if (ksl_system2("Z:\\bin\\ln -s ../d e/link") != 0) std::system("mklink /J e\\link d");
        while (GetFileAttributesA("e\\link") == INVALID_FILE_ATTRIBUTES)  // a Unix process is slow
            Sleep(10);
        EXPECT_EQ(UTIL_cleanupDir("e", 1), 1);
        EXPECT_EQ(world.state(), World().state());
        RemoveDirectoryA("e\\link");
    });
}

}  // namespace

int main(int argc, char** argv) {
    util_test::PrivateRegistry registry;
    registry.set_text(server, "Home", "here");
    registry.set_text(server, "EmailPickupDir", ".");
    registry.set_text(server, "ComputerDomainName", "example.test");
    registry.set_wide(server, L"Database Path", std::wstring(L"D:\\db") + L'\0');
    const ImportPatch pause("Sleep", util_test::fails<0>), command("system", noted_command);
    add_texts(), add_names(), add_paths(), add_attacks();
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
