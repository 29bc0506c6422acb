// Prints one line: what the library takes the running Windows for. A process is shown the same
// Windows all its life.
#include <cstdio>

#include "util/host/os_version.h"

int main() {
    unsigned long major, minor;
    unsigned short sp_major, sp_minor, product_type, r2;
    if (UTIL_GetOsVersion(&major, &minor, &sp_major, &sp_minor, &product_type, &r2) != 0) return 1;
    String platform;
    UTIL_getPlatform(platform);
    std::printf("%lu.%lu SP%d.%d type %d r2 %d \"%s\" win2k3sp1 %d\n", major, minor, sp_major,
                sp_minor, product_type, r2, platform.c_str(), UTIL_IsWin2k3SP_1_Or_Later());
    return 0;
}
