#include <gtest/gtest.h>

#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/private_registry.h"
#include "torture/resources.h"
#include "util/host/installed_products.h"
#include "util/host/registry.h"

using namespace std::string_literals;
using util_test::AccessLimit;
using util_test::ImportPatch;

namespace {

const std::string key = "SOFTWARE\\Acme\\Agent";

std::string text(std::size_t length) {
    return std::string(length, 't');
}

class RegistryTest : public testing::Test {
  protected:
    ~RegistryTest() override { EXPECT_EQ(keys_left_open(), keys_meant_to_stay); }

    long keys_left_open() const { return util_test::handle_count() - m_handles; }

    util_test::PrivateRegistry registry;
    long keys_meant_to_stay = 0;

  private:
    const long m_handles = util_test::handle_count();
};

// --- UTIL_GetRegistryValue ---

TEST_F(RegistryTest, ValueIsATextOfAtMost1024BytesThatEndsInItsNul) {
    const struct {
        DWORD type;
        std::string stored;
        int result;
        String out;
    } cases[] = {
        {REG_SZ, "C:\\acme\0"s, 0, "C:\\acme"},
        {REG_EXPAND_SZ, "%PATH%;x\0"s, 0, "%PATH%;x"},
        {REG_SZ, "caf\xE9\0"s, 0, "caf\xC3\xA9"},
        {REG_SZ, "one\0two\0"s, 0, "one"},
        {REG_SZ, "\0"s, 0, ""},
        {REG_SZ, "", 0, ""},
        {REG_SZ, text(1022) + '\0', 0, text(1022)},
        {REG_SZ, text(1023) + '\0', 0, text(1023)},
        {REG_SZ, text(1024) + '\0', -1, "before"},
        {REG_SZ, text(1024), -1, "before"},
        {REG_SZ, "abc", -1, "before"},
        {REG_DWORD, "abc\0"s, -1, "before"},
        {REG_BINARY, "abc\0"s, -1, "before"},
        {REG_MULTI_SZ, "abc\0\0"s, -1, "before"},
    };
    for (const auto& c : cases) {
        registry.set(key, "Home", c.type, c.stored);
        String out = "before";
        EXPECT_EQ(UTIL_GetRegistryValue(key, "Home", out), c.result) << c.type << " " << c.stored;
        EXPECT_EQ(out, c.out) << c.type << " " << c.stored;
    }
}

TEST_F(RegistryTest, ValueIsFoundByUtf8NamesThatTheAnsiPageHolds) {
    registry.set_text("SOFTWARE\\caf\xE9", "na\xEF\x66", "found");
    registry.set_text("SOFTWARE\\caf\xE9", "", "default");
    registry.set_wide("SOFTWARE\\caf\xE9", L"wide", L"p\u0105\uFF21\0"s);
    const struct {
        String key, name;
        int result;
        String out;
    } cases[] = {
        {"SOFTWARE\\caf\xC3\xA9", "na\xC3\xAF\x66", 0, "found"},
        {"SOFTWARE\\caf\xC3\xA9", "", 0, "default"},
        {"SOFTWARE\\caf\xC3\xA9", "other", -1, "before"},
        {"SOFTWARE\\caf\xC3\xA9", "\xE2\x86\x92", -1, "before"},
        {"SOFTWARE\\other", "", -1, "before"},
        {"SOFTWARE\\\xE2\x86\x92", "", -1, "before"},
        {"SOFTWARE\\caf\xE9", "", -1, "before"},
        {"SOFTWARE\\caf\xC3\xA9", "wide", 0, "p\xC4\x85\xEF\xBC\xA1"},  // best fit: paA
    };
    for (const auto& c : cases) {
        String out = "before";
        EXPECT_EQ(UTIL_GetRegistryValue(c.key, c.name, out), c.result) << c.key << " " << c.name;
        EXPECT_EQ(out, c.out) << c.key << " " << c.name;
    }
}

TEST_F(RegistryTest, EachValueReadFromAKeyKeepsItsBlock) {
    registry.set_text(key, "Home", "x");
    const auto blocks_kept = [](const String& from, const String& name) {
        String out;
        const auto heap = reinterpret_cast<HANDLE>(_get_heap_handle());
        const long before = torture::blocks_of(heap);
        UTIL_GetRegistryValue(from, name, out);
        return torture::blocks_of(heap) - before;
    };
    blocks_kept(key, "Home");  // the platform keeps some from first use on
    EXPECT_EQ(blocks_kept("SOFTWARE\\missing", "Home"), 0);
    EXPECT_EQ(blocks_kept(key, "Home"), 1);
    EXPECT_EQ(blocks_kept(key, "missing"), 1);
}

TEST_F(RegistryTest, ReadingNeedsReadAccessOnly) {
    registry.set_text(key, "Home", "x");
    String out = "before";
    {
        const AccessLimit nobody(key, 0);
        EXPECT_EQ(UTIL_GetRegistryValue(key, "Home", out), -1);
        EXPECT_EQ(out, "before");
    }
    const AccessLimit readers(key, KEY_READ);
    EXPECT_EQ(UTIL_GetRegistryValue(key, "Home", out), 0);
}

// --- UTIL_GetVeritasVersion, UTIL_GetVeritasPath ---

const std::string manager = "SOFTWARE\\VERITAS\\Volume Manager ";

TEST_F(RegistryTest, HighestVersionFrom20To99IsFound) {
    const struct {
        std::vector<const char*> present;
        const char* found;
    } cases[] = {
        {{}, nullptr},           {{"10.0", "1.9", "1.0", "2", "4.10"}, nullptr},
        {{"2.0"}, "2.0"},        {{"3.0", "4.1"}, "4.1"},
        {{"9.9", "9.8"}, "9.9"}, {{"2.9", "3.0", "10.0"}, "3.0"},
    };
    for (const auto& c : cases) {
        registry.clear();
        for (const char* version : c.present)
            registry.create(manager + version);
        char out[] = "###|";
        EXPECT_EQ(UTIL_GetVeritasVersion(out), c.found != nullptr);
        EXPECT_EQ(std::string(out, sizeof out), c.found ? c.found + "\0\0"s : "###|\0"s);
        EXPECT_FALSE(UTIL_GetVeritasVersion(nullptr));
    }
    const AccessLimit nobody(manager + "3.0", 0);
    char out[4];
    EXPECT_TRUE(UTIL_GetVeritasVersion(out));
    EXPECT_STREQ(out, "2.9") << "a key that does not open is skipped";
}

TEST_F(RegistryTest, InstallDirectoryIsReadWhateverItsType) {
    const std::string not_read =
        "SS: Could not find path to Veritas directory in the registry, error num = ";
    const struct {
        DWORD type;
        std::string stored;
        std::string path, message;
    } cases[] = {
        {REG_SZ, "C:\\vm\0"s, "C:\\vm", "before"},
        {REG_SZ, "C:\\vm", "C:\\vm", "before"},
        {REG_SZ, "", "", "before"},
        {REG_SZ, "\xE9\0"s, "\xC3\xA9", "before"},
        {REG_EXPAND_SZ, "%x%\0"s, "%x%", "before"},
        {REG_MULTI_SZ, "a\0b\0\0"s, "a", "before"},
        {REG_BINARY, "ab\0c"s, "ab", "before"},
        {REG_SZ, text(259) + '\0', text(259), "before"},
        {REG_BINARY, text(260), text(260), "before"},
        {REG_SZ, text(260) + '\0', "before", not_read + "234"},
    };
    for (const auto& c : cases) {
        registry.set(manager + "4.1", "InstallDir", c.type, c.stored);
        String path = "before", message = "before";
        EXPECT_EQ(UTIL_GetVeritasPath(path, message), c.message == "before") << c.stored;
        EXPECT_EQ(path, c.path);
        EXPECT_EQ(message, c.message);
    }
    String path = "before", message;
    registry.remove_value(manager + "4.1", "InstallDir");
    EXPECT_FALSE(UTIL_GetVeritasPath(path, message));
    EXPECT_EQ(message, not_read + "2");
    {
        const AccessLimit readers(manager + "4.1", KEY_READ);
        EXPECT_FALSE(UTIL_GetVeritasPath(path, message));
        EXPECT_EQ(message,
                  "SS: Could not Veritas Key, please ensure that Volume Manager 3.0 is installed "
                  "in the registry");
    }
    registry.clear();
    message = "before";
    EXPECT_FALSE(UTIL_GetVeritasPath(path, message));
    EXPECT_EQ(message, "before");
    EXPECT_EQ(path, "before");
}

// --- UTIL_getTSSEDBInfoFromRegistry ---

TEST_F(RegistryTest, DatabaseOnTheNetworkNeedsCredentials) {
    const auto wide = [](std::size_t length) { return std::wstring(length, L'w'); };
    const char* const none = nullptr;
    const struct {
        std::wstring stored_path;  // with its NUL
        const char *stored_user, *stored_password;
        bool result, credentials;
        std::string path;
    } cases[] = {
        {L"D:\\db\\data.db\0"s, none, none, true, false, "D:\\db\\data.db"},
        {L"D:\\caf\x00E9\x2192\0"s, none, none, true, false, "D:\\caf\xC3\xA9\xE2\x86\x92"},
        {L"D:\\unended", none, none, true, false, "D:\\unended"},
        {L"", none, none, true, false, ""},
        // forms that are no network paths
        {L"\\srv\\share\\db\0"s, none, none, true, false, "\\srv\\share\\db"},
        {L"\\\\\0"s, none, none, true, false, "\\\\"},
        {L"\\\\srv\0"s, none, none, true, false, "\\\\srv"},
        {L"\\\\srv\\\0"s, none, none, true, false, "\\\\srv\\"},
        {L"\\\\srv\\\\share\0"s, none, none, true, false, "\\\\srv\\\\share"},
        {L"\\\\\\srv\\share\0"s, none, none, true, false, "\\\\\\srv\\share"},
        {L"//srv/share/db\0"s, none, none, true, false, "//srv/share/db"},
        // forms that are
        {L"\\\\srv\\share\\db\0"s, "agent", "s3cret", true, true, "\\\\srv\\share\\db"},
        {L"\\\\srv\\share\0"s, "agent", "s3cret", true, true, "\\\\srv\\share"},
        {L"\\\\ \\ \\\\\0"s, "agent", "s3cret", true, true, "\\\\ \\ \\\\"},
        {L"\\\\srv\\share\\db\0"s, none, "s3cret", false, false, "\\\\srv\\share\\db"},
        {L"\\\\srv\\share\\db\0"s, "agent", none, false, false, "\\\\srv\\share\\db"},
        {L"\\\\srv\\share\\db\0"s, "", "s3cret", false, false, "\\\\srv\\share\\db"},
        {L"\\\\srv\\share\\db\0"s, "agent", "", false, false, "\\\\srv\\share\\db"},
        // 261 bytes of UTF-16 hold 130 units
        {wide(129) + L'\0', none, none, true, false, std::string(129, 'w')},
        {wide(130), none, none, true, false, std::string(130, 'w')},
        {wide(130) + L'\0', none, none, false, false, "before"},
    };
    const auto store = [&](const char* name, const char* value) {
        registry.remove_value(key, name);
        if (value) registry.set_text(key, name, value);
    };
    for (const auto& c : cases) {
        registry.set_wide(key, L"Database Path", c.stored_path);
        store("DatabaseUsername", c.stored_user);
        store("DatabasePassword", c.stored_password);
        String path = "before", user = "before", password = "before";
        EXPECT_EQ(UTIL_getTSSEDBInfoFromRegistry(key, path, user, password), c.result) << c.path;
        EXPECT_EQ(path, c.path);
        EXPECT_EQ(user, c.credentials ? "agent" : "before") << c.path;
        EXPECT_EQ(password, c.credentials ? "s3cret" : "before") << c.path;
    }

    // The user's name may take as many bytes as the path does in UTF-16, here 15 units.
    registry.set_wide(key, L"Database Path", L"\\\\srv\\share\\db\0"s);
    const struct {
        std::size_t user, password;
        bool result;
    } lengths[] = {{29, 260, true}, {30, 260, false}, {29, 261, false}};
    for (const auto& c : lengths) {
        registry.set_text(key, "DatabaseUsername", text(c.user));
        registry.set_text(key, "DatabasePassword", text(c.password));
        String path, user, password;
        EXPECT_EQ(UTIL_getTSSEDBInfoFromRegistry(key, path, user, password), c.result)
            << c.user << " " << c.password;
        EXPECT_EQ(password.size(), c.result ? c.password : 0);
    }
    registry.set_wide(key, L"DatabasePassword", L"p\u0105\0"s);
    String path, user, password;
    EXPECT_TRUE(UTIL_getTSSEDBInfoFromRegistry(key, path, user, password));
    EXPECT_EQ(password, "p\xC4\x85") << "not its best fit in the ANSI page";
}

TEST_F(RegistryTest, DatabaseKeyIsMadeWhenMissingAndStaysOpenAfterAFailedConversion) {
    String path = "before", user, password;
    EXPECT_FALSE(UTIL_getTSSEDBInfoFromRegistry(key, path, user, password));
    EXPECT_EQ(path, "before");
    EXPECT_EQ(RegDeleteKeyA(HKEY_LOCAL_MACHINE, key.c_str()), 0) << "it was made";

    registry.set_wide(key, L"Database Path", L"D:\\db\0"s);
    {
        const AccessLimit readers(key, KEY_READ);
        EXPECT_FALSE(UTIL_getTSSEDBInfoFromRegistry(key, path, user, password));
        EXPECT_EQ(path, "before");
    }
    EXPECT_FALSE(UTIL_getTSSEDBInfoFromRegistry("\xE6\x97\xA5", path, user, password));
    EXPECT_EQ(keys_left_open(), 0);
    const ImportPatch convert("WideCharToMultiByte", util_test::fails<0>);
    EXPECT_FALSE(UTIL_getTSSEDBInfoFromRegistry(key, path, user, password));
    EXPECT_EQ(path, "");
    keys_meant_to_stay = 1;
}

}  // namespace
