// Programs and modules that are built for the tests, wherever the current directory is.
#ifndef UTIL_TESTS_SUPPORT_BUILT_FILE_H
#define UTIL_TESTS_SUPPORT_BUILT_FILE_H

#include <string>

#include "util/internal/windows.h"

namespace util_test {

// The path of a name in the running test's own directory.
inline std::string built_file(const std::string& name) {
    char program[MAX_PATH];
    const std::string path(program, GetModuleFileNameA(nullptr, program, sizeof program));
    return path.substr(0, path.rfind('\\') + 1) + name;
}

}  // namespace util_test

#endif
