#include "util/portable/ksl_string.h"
#include "support/test.h"

#ifdef _WIN32
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

// Death tests see standard error only: what the dying call prints is sent there at once.
template <typename Call>
void with_stdout_on_stderr(Call call) {
    std::setvbuf(stdout, nullptr, _IONBF, 0);
    dup2(2, 1);
    call();
}

TEST(KslStringDeathTest, WarnsOfNullAndGoesOnIntoAFault) {
    const auto expect_fault = [](auto call, const char* message) {
        EXPECT_DEATH(with_stdout_on_stderr(call), message);
    };
    expect_fault([] { ksl_strcasecmp(nullptr, "a"); }, "NULL s1 passed to ksl_strcasecmp: 3\n");
    expect_fault([] { ksl_strcasecmp("a", nullptr); }, "NULL s2 passed to ksl_strcasecmp: 3\n");
    expect_fault([] { ksl_match_token_str(nullptr, "a", ","); },
                 "NULL token_str passed to ksl_match_token_str: 3\n");
    expect_fault([] { ksl_match_token_str("", "a", nullptr); },
                 "NULL delimits passed to ksl_match_token_str_aux: 3\n");
    expect_fault([] { ksl_match_token_str("a", nullptr, ","); },
                 "NULL token passed to ksl_match_token_str_aux: 3\n");
    testing::internal::CaptureStdout();
    EXPECT_EQ(ksl_match_token_str(",,", nullptr, ","), 0);
    std::fflush(stdout);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "NULL token passed to ksl_match_token_str_aux: 3\n");
}

}  // namespace
