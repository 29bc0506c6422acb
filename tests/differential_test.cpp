// Every family of the fuzz targets, which compare the library with plain models, over its kept
// inputs and over random ones. A property that does not hold names itself and ends the process.

#include <iterator>
#include <ostream>
#include <random>

#include "fuzz/fuzz.h"
#include "support/test.h"

namespace {

struct Family {
    const char* name;
    util_fuzz::Target* target;
    std::string_view alphabet;  // bytes that mean something to this family
    int rounds = 20000;         // of random inputs
    int long_every = 10;        // of these inputs, one has up to 600 bytes and the others up to 40
};

std::ostream& operator<<(std::ostream& out, const Family& family) {
    return out << family.name;
}

using namespace std::string_view_literals;

const Family families[] = {
    {"coded_characters", util_fuzz::coded_characters, "\0\1\2a"sv},
    {"dates_and_versions", util_fuzz::dates_and_versions, "0123456789./: VZ"sv},
    {"format", util_fuzz::format, "\1\2\3a%\0\xFF"sv},
    {"kernels", util_fuzz::kernels, "\3aAzZ@[`{\0\x80\xFF"sv},
    {"page_ends", util_fuzz::page_ends, "aAxX<>&;/:. \t\n\x01\x7F\xE9"sv},
#ifdef _WIN32
    {"poll", util_fuzz::poll, "aaonzxBN..:_crshuftlRRR!0123401234"sv, 90, 2},
#endif
    {"text", util_fuzz::text, "ab,; \t\n\x01\x7F$\0\xE9"sv},
    {"token_lists", util_fuzz::token_lists, "aAbB, [\xC3\xE9"sv},
    {"uint64_parsing", util_fuzz::uint64_parsing, "0123456789abcdefABCDEFxXg\0\xFF\x80"sv},
    {"xml_and_tags", util_fuzz::xml_and_tags, "&<>\"'\t;=/altgtmpquox#9\0"sv},
#ifdef _WIN32
    {"xr_file", util_fuzz::xr_file, "`abcdefghijklmnopqrstuvwxyz{|}~\x7F"sv, 140, 2},
#endif
};

class DifferentialTest : public testing::TestWithParam<Family> {};

TEST_P(DifferentialTest, KeptInputs) {
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

// The engine's numbers are the same on every platform; a failing input is found again by its round.
TEST_P(DifferentialTest, RandomInputs) {
    const unsigned seed = 20240607;
    const std::string_view alphabet = GetParam().alphabet;
    std::mt19937 random(seed);
    for (int round = 0; round < GetParam().rounds; ++round) {
        std::string bytes(random() % (round % GetParam().long_every == 0 ? 600 : 40), '\0');
        for (char& c : bytes) {
            c = random() % 8 == 0 ? static_cast<char>(random())
                                  : alphabet[random() % alphabet.size()];
        }
        util_fuzz::running_input = {seed, round, bytes};
        GetParam().target(bytes);
    }
    util_fuzz::running_input = {};
}

INSTANTIATE_TEST_SUITE_P(Families, DifferentialTest, testing::ValuesIn(families),
                         [](const auto& family) { return std::string(family.param.name); });

}  // namespace
