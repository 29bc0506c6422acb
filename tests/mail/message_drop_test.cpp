// How messages get into the pickup directory: whole, and none at another's cost.
#include "util/mail/email.h"

#include <thread>

#include "mail/mail_test.h"
#include "support/import_patch.h"
#include "support/second_process.h"

using util_test::ImportPatch;
using util_test::message;

namespace {

std::string message_to(const std::string& recipient) {
    return message("f", recipient, "s", "b");
}

class MessageDropTest : public util_test::MailTest {
  protected:
    int send(const std::string& to) { return mail.send_mail("f", to, "s", "b"); }
};

// --- names --------------------------------------------------------------------------------------

using Files = std::map<std::string, std::string>;

// The first name that is free, as the platform may choose it.
UINT WINAPI first_free_name(const char* directory, const char*, UINT, char* name) {
    for (UINT number = 1;; ++number) {
        const std::string path = std::string(directory) + "\\n" + std::to_string(number);
        const HANDLE file =
            CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr);
        if (file == INVALID_HANDLE_VALUE) {
            if (GetLastError() != ERROR_FILE_EXISTS) return 0;
            continue;
        }
        CloseHandle(file);
        std::strcpy(name, path.c_str());
        return number;
    }
}

TEST_F(MessageDropTest, ANameThatIsTakenIsPassedOver) {
    const ImportPatch names("GetTempFileNameA", first_free_name);
    scratch.file("pickup\\n11", "old");
    scratch.directory("pickup\\n31");
    EXPECT_EQ(send("a;b"), 0);
    std::filesystem::remove(scratch / "pickup\\n31");
    EXPECT_EQ(files("pickup"),
              (Files{{"n11", "old"}, {"n21", message_to("a")}, {"n41", message_to("b")}}));
    EXPECT_EQ(files("temp"), Files());
}

TEST_F(MessageDropTest, ANameThatAnotherSenderTakesMeanwhileIsPassedOver) {
    const ImportPatch names("GetTempFileNameA", first_free_name);
    int faster_senders = 2;
    const ImportPatch move("rename", [&](const char* from, const char* to) {
        if (faster_senders-- > 0) {
            const std::string placeholder(to, std::strlen(to) - 1);
            EXPECT_FALSE(std::filesystem::exists(placeholder)) << "goes before the move";
            CloseHandle(CreateFileA(to, GENERIC_WRITE, 0, nullptr, CREATE_NEW, 0, nullptr));
        }
        return std::rename(from, to);
    });
    EXPECT_EQ(send("a"), 0);
    EXPECT_EQ(files("pickup"), (Files{{"n11", ""}, {"n21", ""}, {"n31", message_to("a")}}));
}

TEST_F(MessageDropTest, TheSearchForANameEndsForItsRecipientAlone) {
    scratch.file("pickup\\n11", "old");
    int unlucky_draws = 2 * 4096;
    const ImportPatch names(
        "GetTempFileNameA",
        [&](const char* directory, const char* prefix, UINT number, char* name) -> UINT {
            if (!std::strstr(directory, "pickup") || unlucky_draws-- <= 0)
                return first_free_name(directory, prefix, number, name);
            std::strcpy(name, (std::string(directory) + "\\n1").c_str());
            return 1;
        });
    EXPECT_EQ(send("a"), -1);
    EXPECT_EQ(send("b;c"), 0);
    EXPECT_EQ(mail.GetLastErrorMessage(), "");
    EXPECT_EQ(files("pickup"), (Files{{"n11", "old"}, {"n21", message_to("c")}}));
    EXPECT_EQ(files("temp"), (Files{{"n1", message_to("a")}, {"n2", message_to("b")}}));
}

TEST_F(MessageDropTest, SendersAtTheSameTimeLoseNothing) {
    constexpr int senders = 4, each = 40;
    handles = -1;  // the runtime keeps its threads' for a while
    std::multiset<std::string> expected;
    std::vector<std::thread> threads;
    std::string lists[senders];
    for (int n = 0; n < senders * each; ++n) {
        const std::string recipient = "r" + std::to_string(n);
        lists[n % senders] += recipient + ";";
        expected.insert(message_to(recipient));
    }
    for (const std::string& list : lists)
        threads.emplace_back([&list] { EXPECT_EQ(email().send_mail("f", list, "s", "b"), 0); });
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_EQ(contents("pickup"), expected);
    EXPECT_EQ(files("temp"), Files());
}

// --- kills --------------------------------------------------------------------------------------

class KillTest : public MessageDropTest {
  protected:
    KillTest() {
        util_test::Signal();  // the platform keeps a handle from the first one on
        handles = util_test::handle_count();
    }
    // Counts what stands in the pickup directory as whole messages, by recipient.
    void look(std::set<std::string>& seen, bool killed) {
        static const std::string body = util_test::drop_body();
        for (const auto& entry : std::filesystem::directory_iterator(pickup)) {
            const std::string name = entry.path().filename().string();
            if (name.back() != '1') {
                EXPECT_TRUE(!killed || std::filesystem::is_empty(entry.path())) << name;
                continue;
            }
            if (!names.insert(name).second && !killed) continue;
            const std::string content = scratch.read("pickup\\" + name);
            const std::size_t start = content.find("To: ") + 4;
            const std::string to = content.substr(start, content.find('\r', start) - start);
            EXPECT_TRUE(content == message("f", to, "s", body))
                << name << " of " << content.size() << " bytes is not whole";
            seen.insert(to);
        }
    }
    std::set<std::string> names;
};

TEST_F(KillTest, NothingHalfWrittenShowsWhenTheSenderIsKilledAndNothingSentIsLost) {
    constexpr int rounds = 20;
    int in_the_middle = 0, lost = 0;
    std::size_t dropped = 0;
    std::set<std::string> seen;
    util_test::Kills kills = {"drop", 30, {}, {}, {}};
    kills.arguments = [&](int) {
        seen.clear();
        names.clear();
        return registry.path() + " " + scratch.file("progress");
    };
    kills.watch = [&] { look(seen, false); };
    kills.check = [&](int) {
        look(seen, true);
        const auto finished = static_cast<int>(scratch.read("progress").size());
        for (int n = 0; n < finished * util_test::drop_batch; ++n)
            lost += !seen.count("r" + std::to_string(n));
        const bool placeholder_left = files("pickup").size() > seen.size();
        if (placeholder_left || !std::filesystem::is_empty(temp)) ++in_the_middle;
        dropped += seen.size();
        empty("pickup");
        empty("temp");
    };
    kills.run(rounds);
    std::printf(
        "kill test, mailing: %d rounds, %d hit the middle of a message, %d dropped, %d lost\n",
        rounds, in_the_middle, int(dropped), lost);
    EXPECT_EQ(lost, 0) << "seed " << kills.seed;
    EXPECT_GT(in_the_middle, 0) << "no kill hit";
}

}  // namespace
