// Plays the cases of a suite: each block is a test, and each result must be the written one.

#include "support/cases.h"

namespace util_test {
namespace {

// Puts the results into their lines, in place of those that are there.
void rewrite(const std::string& path, const std::map<int, std::string>& results) {
    std::ifstream in(path, std::ios::binary);
    std::ostringstream out;
    int number = 0;
    for (std::string line; std::getline(in, line); out << line << '\n') {
        const auto result = results.find(++number);
        if (result == results.end()) continue;
        const std::size_t comment = line.find("  # ");
        const std::string tail = comment == std::string::npos ? "" : line.substr(comment);
        line =
            line.substr(0, std::min(line.find(" => "), comment)) + " => " + result->second + tail;
    }
    in.close();
    std::ofstream(path, std::ios::binary) << out.str();
}

class CaseTest : public testing::Test {
  public:
    explicit CaseTest(const Block& block) : m_block(block) {}

  private:
    void TestBody() override {
#ifndef _WIN32
        if (m_block.windows_only) GTEST_SKIP() << "on Windows only";
#endif
        const char* const path = m_block.file->path.c_str();
        std::map<int, std::string> results;
        bool wrong = false;
        try {
            m_block.play([&](const Step& step) {
                const Words actual = step.make();
                const std::string shown = written(actual, step.world);
                std::string& line = results[step.line];
                if (step.call.has_result) line += (line.empty() ? "" : "; ") + shown;
                if (actual == step.expected) return true;
                wrong = true;
                ADD_FAILURE_AT(path, step.line)
                    << m_block.title << ": " << step.call.name << " "
                    << written(step.arguments, step.world) << "\n    expected "
                    << written(step.expected, step.world) << "\n    actual   " << shown;
                return step.call.has_result;
            });
        } catch (const std::exception& error) {
            ADD_FAILURE_AT(path, m_block.line) << m_block.title << ": " << error.what();
            return;
        }
        for (auto line = results.begin(); line != results.end();)
            line = line->second.empty() ? results.erase(line) : std::next(line);
        if (wrong && rewriting()) rewrite(path, results);
    }

    const Block& m_block;
};

}  // namespace

void add_cases(const CaseFile& file) {
    for (const Block& block : file.blocks) {
        testing::RegisterTest((file.stem + ".cases").c_str(), block.title.c_str(), nullptr, nullptr,
                              file.path.c_str(), block.line,
                              [&block]() -> testing::Test* { return new CaseTest(block); });
    }
}

}  // namespace util_test
