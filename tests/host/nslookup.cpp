// Stands in for the system's nslookup: prints the commands that it is given, then the file that
// NSLOOKUP_ANSWER names, and fails, which nobody should mind.
#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <cstdlib>
#include <initializer_list>

int main() {
    _setmode(_fileno(stdout), _O_BINARY);
    for (std::FILE* file : {stdin, std::fopen(std::getenv("NSLOOKUP_ANSWER"), "rb")}) {
        std::putchar('\n');
        for (int c; (c = std::getc(file)) != EOF;)
            std::putchar(c);
    }
    return 1;
}
