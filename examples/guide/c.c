#include "util/c.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/stat.h>

int main(void) {
    // Files: paths are UTF-8, results and errno are those of the runtime library.
    const int file = UTF8_open("state.txt", _O_CREAT | _O_RDWR | _O_BINARY, _S_IREAD | _S_IWRITE);
    if (file < 0) {
        perror("state.txt");
        return 1;
    }
    char text[] = "ready";
    const int written = ksl_write(file, text, 5);
    const long end = ksl_lseek(file, 0, SEEK_END);
    ksl_close(file);
    printf("wrote %d bytes, the end is at %ld\n", written, end);

    struct _stat64i32 status;
    printf("copied: %d\n", UTIL_copy("state.txt", "state.bak", 0));
    if (UTF8_stat("state.bak", &status) == 0) printf("copy: %ld bytes\n", status.st_size);
    printf("deleted: %d %d\n", UTIL_delete("state.txt"), UTIL_delete("state.bak"));

    // Texts: in place, in ASCII.
    printf("upper case: %s\n", ksl_str2upper(text));
    printf("equal: %d\n", UTIL_IsBinaryEqual(text, "READY", 5));
    printf("listed: %d\n", ksl_match_token_str("alpha, beta", "beta", ", "));

    // Times: seconds since 1970 UTC, as 64 bits.
    const int64_t seconds = 1267970709;
    char date[20];  // local time, such as "2010 03 07 14:05:09"
    if (ksl_ctime(&seconds, date, sizeof date) == 19) printf("date: %.4s\n", date);

    // Addresses: records of 21 bytes, a label of 17 and the address of 4.
    char records[8 * 21];
    int count = 0;
    if (KslIpAddrList(8, &count, records) == 0) printf("first address: %s\n", records);

    // Another program and its exit code, and the system.
    printf("exit code: %d\n", ksl_system2("cmd.exe /c exit 7"));
    printf("Windows XP or later: %d\n", UTIL_IsOSVersionAtLeast(5, 1));
    return 0;
}
