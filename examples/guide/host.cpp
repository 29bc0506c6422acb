#include <cstdio>

#include "util/host/host.h"

int main() {
    // Read options one at a time. "b:" takes an argument.
    const char* args[] = {"agent", "-b", "value", "-x", nullptr};
    int index = 1;
    const char* argument = nullptr;
    for (int option; (option = UTIL_getopt(4, args, "b:", &index, &argument)) != -1;)
        std::printf("option %c %s\n", option, argument ? argument : "alone");

    // Each call asks the system. 1 is yes, 0 is no, -1 means that the system did not answer.
    std::printf("Windows XP or later: %d\n", UTIL_IsOSVersionAtLeast(5, 1));
    unsigned char emulated = 9;
    if (UTIL_getIsWow64(&emulated) == 0) std::printf("emulated: %d\n", emulated);
    std::printf("a service of this name: %d\n", UTIL_IsClustered("util guide, no such service"));

    // Read a value of the registry. The output is unchanged when there is none.
    String home("C:\\agent");
    const int found = UTIL_GetRegistryValue("SOFTWARE\\util guide\\none", "Home", home);
    std::printf("registry: %d, %s\n", found, home.c_str());

    // Privileges belong to the whole process. 1313: there is no privilege of that name.
    std::printf("privilege: %lu\n", UTIL_ModifyPrivilege("SeNoSuchPrivilege", 1));

    char name[16];
    UTIL_basename(name, "backup/2010/may.rec");
    std::printf("%s\n", name);
}
