#include <regex>

#include "support/import_patch.h"
#include "support/loopback.h"
#include "support/matches.h"
#include "support/private_registry.h"
#include "support/process.h"
#include "support/test.h"
#include "util/util.h"
// after the platform's header
#include <shellapi.h>

// The agent is linked into this program, where most of its calls are made.
extern "C" int wmain(int argc, wchar_t** argv);

namespace {

namespace fs = std::filesystem;
using namespace util_test;

// XrFile's records, written without the agent's code.
std::string records(const Words& fields) {
    std::string bytes;
    for (const std::string& field : fields) {
        const bool is_text = field[0] != '#' && field[0] != '=';
        if (is_text) bytes += std::to_string(field.size() + 1) + '\0';
        bytes += is_text ? field : field.substr(1);
        if (field[0] != '=') bytes += '\0';
    }
    return bytes;
}

// Whether it comes true within ten seconds.
bool soon(const std::function<bool()>& holds) {
    for (int tries = 0; tries < 1000; ++tries) {
        if (holds()) return true;
        Sleep(10);
    }
    return false;
}

class AgentTest : public testing::Test {
  protected:
    AgentTest() { SetCurrentDirectoryA(work.path().c_str()); }

    // Returns what the call prints, and its exit status in brackets.
    static std::string agent(const std::string& words) {
        int count = 0;
        const std::wstring line = to_wide("agent " + words);
        wchar_t** const arguments = CommandLineToArgvW(line.c_str(), &count);
        testing::internal::CaptureStdout();
        testing::internal::CaptureStderr();
        const int status = wmain(count, arguments);
        const std::string output = testing::internal::GetCapturedStdout();
        LocalFree(arguments);
        return output + testing::internal::GetCapturedStderr() + "[" + std::to_string(status) + "]";
    }

    static std::string without_dates(const std::string& text) {
        const std::regex local("[0-9]{4} [0-9]{2} [0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}");
        const std::regex utc("20[2-9][0-9]-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z");
        return std::regex_replace(std::regex_replace(text, local, "DATE"), utc, "UTC");
    }

    // The words in braces of a transcript, replaced by what they stand for.
    std::string filled_in(std::string text) const {
        const std::regex field("\\{(error ([0-9]+)|([0-9A-F]{2})|bin|work)\\}");
        for (std::smatch found; std::regex_search(text, found, field);) {
            std::string value = found[1] == "bin" ? built_file("") : work.path();
            if (found[3].matched) value = static_cast<char>(std::stoi(found[3], nullptr, 16));
            if (found[2].matched) {
                SetLastError(std::stoul(found[2]));
                String words;
                UTIL_FormatMessage(words);
                value = words.trim(".\r\n").str() + " (" + found[1].str() + ")";
            }
            text.replace(found.position(), found.length(), value);
        }
        return text;
    }

    void prepare(const std::string& line) {
        std::istringstream stream(line);
        Words words;
        for (std::string word; stream >> word;)
            words.push_back(filled_in(word));
        const std::string verb = words.at(0);
        const std::string name = words.at(1);
        const Words rest(words.begin() + 2, words.end());
        if (verb == "file") {
            work.file(name, records(rest));
        } else if (verb == "gigabytes") {
            fs::resize_file(fs::u8path(work.file(name)), std::stoull(rest.at(0)) << 30);
        } else if (verb == "folder") {
            fs::current_path(fs::u8path(work / name));
        } else if (verb == "link") {  // the tool does not run to its end: the link is made later
            const auto before = XrDirectory(".").getDirectoryList(true, false)->size();
            ksl_system2(("Z:\\bin\\ln -s " + rest.at(0) + " " + name).c_str());
            const auto is_made = [&] {
                return XrDirectory(".").getDirectoryList(true, false)->size() > before;
            };
            ASSERT_TRUE(soon(is_made)) << name;
        } else if (verb == "set") {
            registry.set_text("SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server", name.c_str(),
                              rest.empty() ? "" : rest[0]);
        } else if (verb == "terminal") {
            terminal.emplace(nullptr, "_isatty", fails<1>);
        } else {
            ADD_FAILURE() << line;
        }
    }

    // Plays agent/NAME.txt. The first of them says how they are written.
    void play(const std::string& name) {
        std::ifstream file(UTIL_ROOT "/tests/examples/agent/" + name + ".txt");
        ASSERT_TRUE(file) << name;
        for (std::string line; std::getline(file, line);) {
            if (line.empty() || line[0] == '#') continue;
            std::string text;
            for (std::string more; std::getline(file, more) && !more.empty();)
                text += more + "\n";
            if (line[0] == '>') {
                prepare(line.substr(1) + " " + text);
                continue;
            }
            const std::string expected = filled_in(text) + line.substr(0, 3);
            const std::string actual = without_dates(agent(filled_in(line.substr(3))));
            EXPECT_TRUE(matches(actual, expected)) << name << ": " << line << "\n" << actual;
        }
    }

    ScratchDirectory work;
    PrivateRegistry registry;
    std::optional<ImportPatch> terminal;
};

class TranscriptTest : public AgentTest, public testing::WithParamInterface<const char*> {};

TEST_P(TranscriptTest, IsWhatTheAgentPrints) {
    play(GetParam());
}
INSTANTIATE_TEST_SUITE_P(Agent, TranscriptTest,
                         testing::Values("calls", "cleanup", "compare", "inventory", "report"),
                         [](const auto& name) { return std::string(name.param); });

TEST_F(AgentTest, MailsAndReportsLeaveNoKey) {
    play("notify");
    EXPECT_EQ(RegDeleteKeyA(HKEY_LOCAL_MACHINE, "SOFTWARE\\Vorn"), ERROR_FILE_NOT_FOUND);
}

// Wine shows the host's symbolic links as what they lead to, and runs the host's own programs.
TEST_F(AgentTest, LoopsEndAndUnreadableEntriesAreCounted) {
    if (!fs::exists("Z:\\bin\\ln")) GTEST_SKIP() << "needs a Unix host";
    play("links");
}

TEST_F(AgentTest, DamagedFilesAreRefused) {
    play("damaged");
    const std::string good = work.read("good.rec");
    for (std::size_t at = 0; at < good.size(); ++at) {
        std::string flipped = good;
        flipped[at] ^= 1;
        for (const std::string& text : {flipped, good.substr(0, at)}) {
            work.file("bad.rec", text);
            const std::string actual = agent("compare good.rec bad.rec");
            EXPECT_TRUE(matches(actual, "agent: 'bad.rec' ...[2]")) << at << ": " << actual;
        }
    }
}

class Client {
  public:
    explicit Client(const std::string& port) : m_socket(new_socket(SOCK_STREAM)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<unsigned short>(std::stoi(port)));
        connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address);
    }
    ~Client() { closesocket(m_socket); }

    // Sends the text. Returns the next lines with "|" between them, "END" for the end of the
    // connection.
    std::string ask(const std::string& text, int lines) const {
        send(m_socket, text.data(), static_cast<int>(text.size()), 0);
        std::string heard;
        for (char c; lines > 0;) {
            if (recv(m_socket, &c, 1, 0) != 1) return heard + "END";
            if (c != '\n' || --lines > 0) heard += c == '\n' ? '|' : c;
        }
        return heard;
    }

  private:
    SOCKET m_socket;
};

TEST_F(AgentTest, WatchServesManyClientsAtOnce) {
    const util::WinHandle server =
        started({"cmd /c \"\"" + built_file("agent.exe") + "\" watch 0 >server\""});
    const auto said = [&] { return fs::exists("server") ? work.read("server") : ""; };
    while (said().empty() && exit_code(server.get(), 10) == STILL_ACTIVE) {
    }
    const std::string greeting = "listening on 127.0.0.1, port ";
    ASSERT_TRUE(matches(said(), greeting + "...\n"));
    const std::string port = std::to_string(std::stoi(said().substr(greeting.size())));

    std::map<std::size_t, Client> clients;
    while (clients.size() < Poll::table_size_)
        clients.try_emplace(clients.size(), port);
    EXPECT_EQ(Client(port).ask("", 2), "busy|END");
    for (const auto& [number, client] : clients)
        client.ask("echo cli", 0);
    for (const auto& [number, client] : clients)
        EXPECT_EQ(client.ask("ent\r\n", 1), "client") << number;
    EXPECT_TRUE(matches(clients.at(0).ask("status\n", 1), "uptime ... s, clients 64, lines 65"));
    EXPECT_EQ(without_dates(clients.at(1).ask("time\necho\necho  two\nechoes\nbye\nquit\n", 6)),
              "DATE|| two|unknown command; status, time, echo TEXT, bye, quit|bye|END");
    EXPECT_EQ(clients.at(2).ask(std::string(5000, 'x'), 2), "line too long|END");
    EXPECT_EQ(clients.at(3).ask(std::string(5000, 'x') + "\n", 2), "line too long|END");

    while (clients.size() > 32)  // gone without a word
        clients.erase(clients.size() - 1);
    EXPECT_TRUE(
        soon([&] { return matches(clients.at(0).ask("status\n", 1), "...clients 29,..."); }));
    EXPECT_EQ(agent("watch " + port),
              "agent: cannot listen on port " + port + ": error 10048\n[2]");
    EXPECT_EQ(clients.at(4).ask("quit\n", 2), "stopping|END");
    EXPECT_EQ(clients.at(0).ask("", 1), "END");
    EXPECT_EQ(exit_code(server.get()), 0u);
    EXPECT_TRUE(matches(said(), greeting + port + "\nstopped, lines ...\n")) << said();
}

}  // namespace
