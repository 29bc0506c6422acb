// Stands in for the system's nslookup: prints the commands that it is given, then the file that
// NSLOOKUP_ANSWER names, and fails, which nobody should mind.
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <cstdlib>

namespace {

void print_all(std::FILE* file) {
    for (int c; file && (c = std::getc(file)) != EOF;)
        std::putchar(c);
}

}  // namespace

int main() {
    _setmode(_fileno(stdin), _O_BINARY);
    _setmode(_fileno(stdout), _O_BINARY);
    std::fputs("> ", stdout);
    print_all(stdin);
    std::fputs("\r\n", stdout);
    const char* const answer = std::getenv("NSLOOKUP_ANSWER");
    print_all(answer ? std::fopen(answer, "rb") : nullptr);
    return 1;
}
