// What the library frees, whatever becomes of a call, holds no password that can be read.

#include "support/import_patch.h"
#include "support/private_registry.h"
#include "support/test.h"
#include "util/host/cifs_share.h"
#include "util/host/registry.h"
// after the platform's header
#include <winnetwk.h>

using util_test::ImportPatch;

namespace {

constexpr char key[] = "SOFTWARE\\Acme\\Agent";
const std::string secret(300, 's');  // too long for buffers on the stack
const std::wstring wide_secret(300, L's');
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

// Both calls, with memory that runs out at one allocation.
void call_both() {
    char message[2048];
    String path, user, password;
    const std::string given = "p\xC3\xA4" + secret;
    looking = true;
    UTIL_ConnectCifsShare("\\\\srv\\share", "agent", given.c_str(), message);
    try {
        UTIL_getTSSEDBInfoFromRegistry(key, path, user, password);
    } catch (const std::bad_alloc&) {  // the key's own text, made here
    }
    looking = false;
}

TEST(PasswordTest, NoneIsLeftInFreedMemory) {
    util_test::PrivateRegistry registry;
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
    for (const DWORD code : {0, 53}) {
        connected = code;
        registry.set_text(key, "DatabaseUsername", code == 0 ? "agent" : "");
        for (const DWORD type : {REG_SZ, REG_BINARY}) {
            registry.set(key, "DatabasePassword", type, "p\xE4" + secret);
            int allocation = 0;
            do {
                allocations_left = allocation++;
                call_both();
                EXPECT_EQ(found, 0) << code << " " << type << " " << allocation;
            } while (allocations_left < 0);
            EXPECT_GT(allocation, 3);
        }
    }
}

}  // namespace
