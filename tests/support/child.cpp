// A program for the tests to start.
//
//     child exit N       exits with N
//     child unit TEXT    exits with the first UTF-16 unit of TEXT
//     child signal N     sets the event whose handle is N, if it has one
//     child save FILE    writes its standard input to FILE and exits with 1
//     child open FIRST   exits with the number of descriptors from FIRST on that it inherited
#include <io.h>

#include <cstdio>
#include <cstdlib>
#include <cwchar>

#include "util/internal/windows.h"

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    const char verb = argv[1][0];
    if (verb == 'e') ExitProcess(static_cast<UINT>(std::atoi(argv[2])));
    if (argv[1][1] == 'i') return SetEvent(reinterpret_cast<HANDLE>(std::atoll(argv[2]))) ? 0 : 1;
    if (verb == 'u') return std::wcsstr(GetCommandLineW(), L" unit ")[6];
    if (verb == 'o') {
        int inherited = 0;
        for (int descriptor = std::atoi(argv[2]); descriptor < 100; ++descriptor)
            inherited += _get_osfhandle(descriptor) != -1 ? 1 : 0;
        return inherited;
    }
    std::FILE* file = std::fopen(argv[2], "w");
    for (int c; (c = std::getchar()) != EOF;)
        std::fputc(c, file);
    return std::fclose(file) == 0 ? 1 : 2;
}
