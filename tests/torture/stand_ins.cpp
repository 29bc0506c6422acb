#include "torture/stand_ins.h"

#include <winsock2.h>
// after winsock2.h
#include <cfgmgr32.h>
#include <winnetwk.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace torture {

StandIns stand_ins;

util_test::PrivateRegistry& registry() {
    static util_test::PrivateRegistry registry;
    return registry;
}

namespace {

void WINAPI no_pause(DWORD) {}

DWORD WINAPI connect_share(NETRESOURCEW*, const wchar_t*, const wchar_t*, DWORD) {
    return stand_ins.connect;
}
DWORD WINAPI disconnect_share(const wchar_t*, DWORD, BOOL) {
    return stand_ins.disconnect;
}
DWORD WINAPI provider_error(DWORD* code, char* description, DWORD, char* provider, DWORD) {
    *code = 42;
    std::strcpy(description, "caf\xE9");
    std::strcpy(provider, "provider");
    return 0;
}

CONFIGRET WINAPI locate(DEVINST* node, char*, ULONG, HMACHINE) {
    *node = 1;
    return CR_SUCCESS;
}
CONFIGRET WINAPI rescan(DEVINST, ULONG, HMACHINE) {
    return CR_SUCCESS;
}

int WINAPI start_sockets(WORD version, WSADATA* data) {
    const int result = WSAStartup(version, data);
    if (stand_ins.refuses_version) data->wVersion = MAKEWORD(1, 1);
    return result;
}

BOOL WINAPI version(OSVERSIONINFOA* record) {
    const BOOL known = GetVersionExA(record);
    if (stand_ins.is_old) {
        record->dwMajorVersion = 5;
        record->dwMinorVersion = 2;
    }
    return known;
}

// The process looks emulated to the library, and its redirection switchable.
BOOL WINAPI is_wow64(HANDLE, BOOL* answer) {
    *answer = TRUE;
    return TRUE;
}
BOOL WINAPI switch_redirection(void*) {
    ++stand_ins.switches;
    return TRUE;
}
decltype(GetProcAddress)* real_entry;
void* WINAPI entry(HMODULE module, const char* name) {
    if (!std::strcmp(name, "IsWow64Process")) return reinterpret_cast<void*>(is_wow64);
    if (!std::strncmp(name, "Wow64", 5)) return reinterpret_cast<void*>(switch_redirection);
    return reinterpret_cast<void*>(real_entry(module, name));
}

// The tool answers at once; other commands are run.
int run_command(const char* command) {
    const char* const output = std::strstr(command, "> \"");
    if (std::strncmp(command, "nslookup ", 9) != 0 || !output) return std::system(command);
    char path[MAX_PATH];
    std::snprintf(path, sizeof path, "%s", output + 3);
    if (char* const quote = std::strchr(path, '"')) *quote = '\0';
    if (std::FILE* const file = std::fopen(path, "wb")) {
        std::fputs("a_host_with_a_name_longer_than_any_short_string A 10.0.0.5\nb A 1.2.3.4\n",
                   file);
        std::fclose(file);
    }
    return 0;
}

}  // namespace

void* stand_in(const std::string& name, void* real) {
    if (name == "GetProcAddress") real_entry = reinterpret_cast<decltype(GetProcAddress)*>(real);
    const struct {
        const char* name;
        void* function;
    } all[] = {
        {"Sleep", reinterpret_cast<void*>(no_pause)},
        {"WNetAddConnection2W", reinterpret_cast<void*>(connect_share)},
        {"WNetCancelConnection2W", reinterpret_cast<void*>(disconnect_share)},
        {"WNetGetLastErrorA", reinterpret_cast<void*>(provider_error)},
        {"CM_Locate_DevNode_ExA", reinterpret_cast<void*>(locate)},
        {"CM_Reenumerate_DevNode_Ex", reinterpret_cast<void*>(rescan)},
        {"WSAStartup", reinterpret_cast<void*>(start_sockets)},
        {"GetVersionExA", reinterpret_cast<void*>(version)},
        {"GetProcAddress", reinterpret_cast<void*>(entry)},
        {"system", reinterpret_cast<void*>(run_command)},
    };
    for (const auto& one : all) {
        if (name == one.name) return one.function;
    }
    return nullptr;
}

}  // namespace torture
