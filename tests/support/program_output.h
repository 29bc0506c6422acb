// What a program of the build prints.
#ifndef UTIL_TESTS_SUPPORT_PROGRAM_OUTPUT_H
#define UTIL_TESTS_SUPPORT_PROGRAM_OUTPUT_H

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "support/built_file.h"

namespace util_test {

// Its whole output, with line feeds alone; the program must end with 0. One that Wine could not
// start, as happens on a busy machine, is started again.
inline std::string output_of(const std::string& program) {
    constexpr int cannot_start = static_cast<int>(0xC0000142);
    for (int attempts_left = 3;;) {
        std::string output;
        FILE* const pipe = _popen(("\"" + built_file(program) + "\"").c_str(), "r");
        if (pipe) {
            for (int c; (c = std::fgetc(pipe)) != EOF;)
                output += static_cast<char>(c);
        }
        const int code = pipe ? _pclose(pipe) : -1;
        if (code != cannot_start || --attempts_left == 0) {
            EXPECT_EQ(code, 0) << program;
            return output;
        }
    }
}

}  // namespace util_test

#endif
