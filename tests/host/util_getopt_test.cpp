#include "util/host/util_getopt.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(GetoptTest, TakesOneOptionACall) {
    const struct {
        std::vector<const char*> args;  // behind the program's name
        const char* letters;
        std::string steps;  // option, argument and index of each call up to the end
    } cases[] = {
        {{"-b", "value", "-x"}, "ab:", "98 value 3, 120 (null) 4, "},
        {{"/a", "xb", "-a"}, "ab:", "97 (null) 2, 98 -a 4, "},  // no dash
        {{"-bvalue"}, "b:", "98 (null) 3, "},  // the rest is no argument; the one behind the last
        {{"-:", "v"}, "a::", "58 v 3, "},
        {{"-:", "v"}, "a:", "58 (null) 2, 0 (null) 3, "},
        {{"-", "", "-b"}, "b", "0 (null) 2, 0 (null) 3, 98 (null) 4, "},
        {{"-\xFF"}, "", "255 (null) 2, "},  // not like the end
        {{nullptr}, "a", ""},
    };
    for (const auto& c : cases) {
        std::vector<const char*> args(c.args);
        args.insert(args.begin(), "agent");
        args.push_back(nullptr);
        const int count = static_cast<int>(args.size()) - 1;
        int index = 1, option;
        char* argument;  // of either type, as of main's arguments
        std::string steps;
        while ((option = UTIL_getopt(count, args.data(), c.letters, &index, &argument)) != -1) {
            steps += std::to_string(option) + " " + (argument ? argument : "(null)") + " " +
                     std::to_string(index) + ", ";
        }
        EXPECT_EQ(steps, c.steps);
    }
    const char* args[] = {"-a", nullptr};
    const char* argument;
    int index = 0, negative = -1;
    EXPECT_EQ(UTIL_getopt(1, args, "a", &negative, &argument), -1);
    EXPECT_EQ(UTIL_getopt(1, nullptr, "a", &index, &argument), -1);
    EXPECT_EQ(UTIL_getopt(1, args, nullptr, &index, &argument), -1);
    EXPECT_EQ(UTIL_getopt(1, args, "a", nullptr, &argument), -1);
    EXPECT_EQ(UTIL_getopt(1, args, "a", &index, nullptr), -1);
}

}  // namespace
