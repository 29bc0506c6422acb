#include <cstdio>

#include "util/host/host.h"

int main() {
    // Options, one at a time; "b:" takes an argument.
    const char* args[] = {"agent", "-b", "value", "-x", nullptr};
    int index = 1;
    const char* argument = nullptr;
    for (int option; (option = UTIL_getopt(4, args, "b:", &index, &argument)) != -1;)
        std::printf("option %c %s\n", option, argument ? argument : "alone");

    // The machine is asked afresh at each call: 1 is yes, 0 no, -1 that the system did not answer.
    std::printf("Windows XP or later: %d\n", UTIL_IsOSVersionAtLeast(5, 1));
    unsigned char emulated = 9;
    if (UTIL_getIsWow64(&emulated) == 0) std::printf("emulated: %d\n", emulated);
    std::printf("a service of this name: %d\n", UTIL_IsClustered("util guide, no such service"));

    // A value of the registry; out stays as it was when there is none.
    String home("C:\\agent");
    const int found = UTIL_GetRegistryValue("SOFTWARE\\util guide\\none", "Home", home);
    std::printf("registry: %d, %s\n", found, home.c_str());

    // Privileges are the whole process's. 1313: there is none of that name.
    std::printf("privilege: %lu\n", UTIL_ModifyPrivilege("SeNoSuchPrivilege", 1));

    char name[16];
    UTIL_basename(name, "backup/2010/may.rec");
    std::printf("%s\n", name);
}
