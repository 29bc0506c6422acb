// Runs every fuzz target over its kept inputs: a property that does not hold ends the process.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

#include "fuzz/fuzz.h"

namespace {

struct Family {
    const char* name;
    util_fuzz::Target* target;
};

class FuzzReplayTest : public testing::TestWithParam<Family> {};

TEST_P(FuzzReplayTest, KeptInputsHold) {
    int inputs = 0;
    for (const auto& entry :
         std::filesystem::directory_iterator(UTIL_FUZZ_CORPUS + std::string(GetParam().name))) {
        std::ifstream file(entry.path(), std::ios::binary);
        const std::string bytes{std::istreambuf_iterator<char>(file), {}};
        GetParam().target(bytes);
        ++inputs;
    }
    EXPECT_GT(inputs, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Families, FuzzReplayTest,
    testing::Values(Family{"coded_characters", util_fuzz::coded_characters},
                    Family{"dates_and_versions", util_fuzz::dates_and_versions},
                    Family{"text", util_fuzz::text}, Family{"token_lists", util_fuzz::token_lists},
                    Family{"uint64_parsing", util_fuzz::uint64_parsing},
                    Family{"xml_and_tags", util_fuzz::xml_and_tags}),
    [](const auto& family) { return std::string(family.param.name); });

}  // namespace
