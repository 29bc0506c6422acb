#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdio>

#include "util/portable/portable.h"

int main() {
    // Paths are UTF-8, whatever the machine's code page is.
    const char folder[] =
        "gr\xC3\xB6\xC3\x9F"
        "e";
    const char path[] =
        "gr\xC3\xB6\xC3\x9F"
        "e\\data.bin";
    std::printf("made: %d\n", UTF8_mkdir(folder));
    const int file = UTF8_open(path, _O_CREAT | _O_RDWR | _O_BINARY, _S_IREAD | _S_IWRITE);
    std::printf("wrote %d bytes\n", ksl_write(file, "12345", 5));
    std::printf("the end is at %ld\n", ksl_lseek(file, 0, SEEK_END));
    ksl_close(file);

    struct _stat64i32 status;
    UTF8_stat(path, &status);
    std::printf("status: %ld bytes\n", status.st_size);
    UTF8_unlink(path);
    UTF8_rmdir(folder);
    const int afterwards = UTF8_stat(path, &status);
    std::printf("status afterwards: %d, errno %d\n", afterwards, errno);

    // A size beyond 32 bits, in the two halves that other interfaces use.
    ksl_uint64_c size(0, 1);  // low half first
    char digits[21];
    std::printf("%s bytes\n", (size + 512).to_decimal_r(digits, sizeof digits));

    // Search a list of words without a copy.
    std::printf("listed: %d\n", ksl_match_token_str("alpha, beta,gamma", "beta", ", "));

    // Run another program and get its exit code.
    std::printf("exit code %d\n", ksl_system2("cmd.exe /c exit 7"));
}
