// How messages get into the pickup directory: whole, and none at another's cost.
#include "util/mail/email.h"

#include <climits>
#include <thread>

#include "mail/mail_world.h"

namespace {

struct MessageDropTest : testing::Test, util_test::MailWorld {};

TEST_F(MessageDropTest, FourThreads_LoseNothing) {
    constexpr int senders = 4, each = 20;
    handles = LONG_MAX;  // not checked: the runtime keeps its threads' for a while
    std::multiset<std::string> expected, dropped;
    std::vector<std::thread> threads;
    std::string lists[senders];
    for (int n = 0; n < senders * each; ++n) {
        const std::string recipient = "r" + std::to_string(n);
        lists[n % senders] += recipient + ";";
        expected.insert(recipient);
    }
    for (const std::string& list : lists)
        threads.emplace_back([&list] { EXPECT_EQ(email().send_mail("f", list, "s", "b"), 0); });
    for (std::thread& thread : threads)
        thread.join();
    for (const auto& [name, recipient] : files("pickup"))
        dropped.insert(recipient);
    EXPECT_EQ(dropped, expected);
    EXPECT_TRUE(files("temp").empty());
}

class KillTest : public MessageDropTest {
  protected:
    // Counts what is in the pickup directory as whole messages, by recipient.
    void look(bool killed) {
        for (const auto& entry : std::filesystem::directory_iterator(pickup)) {
            const std::string name = entry.path().filename().string();
            if (name.back() != '1') {
                EXPECT_TRUE(!killed || std::filesystem::is_empty(entry.path())) << name;
                continue;
            }
            const std::string content = scratch.read("pickup\\" + name);
            const std::size_t start = content.find("To: ") + 4;
            const std::string to = content.substr(start, content.find('\r', start) - start);
            EXPECT_TRUE(content == util_test::message(to, body))
                << name << " of " << content.size() << " bytes is not whole";
            seen.insert(to);
        }
    }
    const std::string body = util_test::drop_body();
    std::set<std::string> seen;
};

TEST_F(KillTest, KilledSender_LeavesWholeMessagesAndLosesNoneThatWasSent) {
    int in_the_middle = 0, lost = 0;
    std::size_t dropped = 0;
    util_test::Kills kills = {"drop", 150};
    kills.arguments = [&](int round) {
        return registry.path() + " " + scratch.file("progress" + std::to_string(round));
    };
    kills.watch = [&] { look(false); };
    kills.check = [&](int round) {
        look(true);
        const std::string finished = scratch.read("progress" + std::to_string(round));
        for (int n = 0; n < int(finished.size()) * util_test::drop_batch; ++n)
            lost += !seen.count("r" + std::to_string(n));
        const bool placeholder_left = files("pickup").size() > seen.size();
        if (placeholder_left || !std::filesystem::is_empty(temp)) ++in_the_middle;
        dropped += seen.size();
        empty("pickup");
        empty("temp");
        seen.clear();
    };
    kills.run();
    std::printf(
        "kill test, mailing: %d rounds, %d hit the middle of a message, %d dropped, %d lost\n",
        kills.rounds, in_the_middle, int(dropped), lost);
    EXPECT_EQ(lost, 0) << "seed " << kills.seed;
    EXPECT_GT(in_the_middle, 0) << "no kill hit";
}

}  // namespace
