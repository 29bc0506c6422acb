// What the library frees, whatever becomes of a call, holds no password that can be read.

#include "support/import_patch.h"
#include "support/private_registry.h"
#include "support/test.h"
#include "util/host/cifs_share.h"
#include "util/host/registry.h"
// after the platform's header
#include <winnetwk.h>

using namespace util_test;

namespace {

constexpr char key[] = "SOFTWARE\\Acme\\Agent";
// The password without its first two characters. A freed block loses its first bytes, so a block
// that is used again never holds all of it by chance.
std::string secret;
std::wstring wide_secret;
bool looking;
int found, allocations_left;

void look(const void* block, std::size_t size) {
    const std::string_view memory(static_cast<const char*>(block), size);
    const std::string_view wide(reinterpret_cast<const char*>(wide_secret.data()),
                                wide_secret.size() * sizeof(wchar_t));
    if (looking && (memory.find(secret) != memory.npos || memory.find(wide) != memory.npos))
        ++found;
}
void looking_free(void* block) {
    if (block) look(block, _msize(block));
    std::free(block);
}
void* failing_malloc(std::size_t size) {
    return looking && allocations_left-- == 0 ? nullptr : std::malloc(size);
}

// Both calls, with memory that runs out at one allocation. Returns the password from the registry.
std::string call_both(const std::string& given) {
    char message[2048];
    String path, user, password;
    looking = true;
    UTIL_ConnectCifsShare("\\\\srv\\share", "agent", given.c_str(), message);
    try {
        UTIL_getTSSEDBInfoFromRegistry(key, path, user, password);
    } catch (const std::bad_alloc&) {  // the key's own text, made here
    }
    looking = false;
    return password.str();
}

TEST(PasswordTest, NoneIsLeftInFreedMemory) {
    PrivateRegistry registry;
    registry.set_wide(key, L"Database Path", L"\\\\srv\\share\\a\\long\\path\\to.db");
    DWORD connected = 0;
    const ImportPatch add("WNetAddConnection2W", [&](NETRESOURCEW*, const wchar_t* password) {
        looking = false;  // what the test does itself
        EXPECT_EQ(password, L"p\x00E4" + wide_secret);
        looking = true;
        return connected;
    });
    const ImportPatch heap("free", looking_free),
        runtime_heap("libstdc++-6.dll", "free", looking_free),
        runtime_malloc("libstdc++-6.dll", "malloc", failing_malloc);
    const struct {
        std::size_t length;
        DWORD code;  // of the connection
        const char* user;
        DWORD type;
        const char* begin;  // of the password that is read: text becomes UTF-8; null for none
    } cases[] = {
        {32, 0, "agent", REG_SZ, "p\xC3\xA4"}, {32, 0, "agent", REG_BINARY, "p\xE4"},
        {32, 53, "", REG_SZ, nullptr},         {32, 53, "", REG_BINARY, nullptr},
        {300, 0, "agent", REG_SZ, nullptr},  // too long for the stack, and for the registry
        {300, 53, "agent", REG_SZ, nullptr},
    };
    for (const auto& c : cases) {
        secret.assign(c.length, 's');
        wide_secret.assign(c.length, L's');
        connected = c.code;
        registry.set_text(key, "DatabaseUsername", c.user);
        registry.set(key, "DatabasePassword", c.type, "p\xE4" + secret);
        int allocation = 0;
        std::string password;
        do {
            allocations_left = allocation++;
            password = call_both("p\xC3\xA4" + secret);
            EXPECT_EQ(found, 0) << c.length << " " << c.code << " " << c.type << " " << allocation;
        } while (allocations_left < 0);
        EXPECT_GT(allocation, 3);
        EXPECT_EQ(password, c.begin ? c.begin + secret : "");
    }
}

}  // namespace
