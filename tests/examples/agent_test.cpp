
#include <atomic>
#include <deque>
#include <iomanip>
#include <regex>
#include <thread>

#include "support/built_file.h"
#include "support/loopback.h"
#include "support/matches.h"
#include "support/private_registry.h"
#include "support/process.h"
#include "support/scratch_directory.h"
#include "support/test.h"
#include "util/internal/windows.h"
#include "util/util.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using util_test::ScratchDirectory;
using util_test::to_wide;
using Words = std::vector<std::string>;

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string without_dates(const std::string& text) {
    const std::regex local("[0-9]{4} [0-9]{2} [0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}");
    const std::regex utc("20[2-9][0-9]-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}Z");
    return std::regex_replace(std::regex_replace(text, local, "DATE"), utc, "UTC");
}

// "File not found (error 2)", as the system words it.
std::string system_text(const std::string& code) {
    SetLastError(std::stoul(code));
    String words;
    UTIL_FormatMessage(words);
    const std::string text = words.trim(".\r\n").str();
    return text.empty() ? "error " + code : text + " (error " + code + ")";
}

// The documented format, written without the agent's own code. "#7" is a number, else a text.
std::string records(const Words& fields) {
    std::string bytes;
    for (const std::string& field : fields) {
        if (field[0] != '#') bytes += std::to_string(field.size() + 1) + '\0';
        bytes += field.substr(field[0] == '#' ? 1 : 0) + '\0';
    }
    return bytes;
}
std::string inventory_file(Words fields) {
    fields.insert(fields.begin(), {"util agent inventory", "#1"});
    unsigned int sum = 0;
    for (const std::string& field : fields)
        sum = sum * 31 + String(field[0] == '#' ? field.substr(1) : field).hash();
    return records(fields) + std::to_string(static_cast<int>(sum)) + '\0';
}

Words words_of(const std::string& text) {
    std::istringstream stream(text);
    Words words;
    for (std::string word; stream >> std::quoted(word);)
        words.push_back(word);
    return words;
}

const char* const maker = "SOFTWARE\\Vorn";
const char* const server_key = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";

bool has_maker_key() {
    HKEY key = nullptr;
    RegOpenKeyExA(HKEY_LOCAL_MACHINE, maker, 0, KEY_READ, &key);
    return key && RegCloseKey(key) == 0;
}

HANDLE open_inherited(const std::string& path, DWORD access, DWORD creation) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    return CreateFileW(to_wide(path).c_str(), access, FILE_SHARE_READ | FILE_SHARE_WRITE,
                       &inherited, creation, FILE_ATTRIBUTE_NORMAL, nullptr);
}

struct Result {
    DWORD status;
    std::string out;
    std::string err;
};

class AgentTest : public testing::Test {
  protected:
    // Runs a program in `folder` to its end. Its output is in "1.out", "2.out", ... of `work`, or
    // goes to `terminal`. Every word is quoted, so none may end in a backslash.
    Result run(const std::string& program, const Words& words, DWORD flags = 0,
               HANDLE terminal = nullptr) {
        const std::string name = std::to_string(++m_runs);
        util_test::Start start = {"\"" + program + "\"", true};
        for (const std::string& word : words)
            start.command += " \"" + word + "\"";
        start.flags = flags;
        start.directory = folder;
        const HANDLE out = open_inherited(work / name + ".out", GENERIC_WRITE, CREATE_ALWAYS);
        const HANDLE err = open_inherited(work / name + ".err", GENERIC_WRITE, CREATE_ALWAYS);
        start.startup.dwFlags = STARTF_USESTDHANDLES;
        start.startup.hStdOutput = terminal ? terminal : out;
        start.startup.hStdError = err;
        Result result = {util_test::run(start), "", ""};
        CloseHandle(out);
        CloseHandle(err);
        result.out = work.read(name + ".out");
        result.err = work.read(name + ".err");
        return result;
    }
    Result agent(const Words& words) { return run(util_test::built_file("agent.exe"), words); }

    // The words in braces of a transcript, replaced by what they stand for.
    std::string filled_in(std::string text) const {
        const std::regex field("\\{(error ([0-9]+)|([0-9A-F]{2})|bin|work)\\}");
        for (std::smatch found; std::regex_search(text, found, field);) {
            std::string value = found[1] == "bin" ? util_test::built_file("") : work.path();
            if (found[2].matched) value = system_text(found[2]);
            if (found[3].matched) value = static_cast<char>(std::stoi(found[3], nullptr, 16));
            text.replace(found.position(), found.length(), value);
        }
        return text;
    }

    void prepare(const std::string& verb, const std::string& name, const Words& rest) {
        if (verb == "file") {
            work.file(name, rest.empty() ? "" : rest[0]);
        } else if (verb == "gigabytes") {
            fs::resize_file(fs::u8path(work.file(name)), std::stoull(rest.at(0)) << 30);
        } else if (verb == "inventory" || verb == "records") {
            work.file(name, verb == "records" ? records(rest) : inventory_file(rest));
        } else if (verb == "remove") {
            fs::remove(fs::u8path(work / name));
        } else if (verb == "folder") {
            folder = work / name;
        } else if (verb == "set") {
            const auto* const bytes = reinterpret_cast<const BYTE*>(rest.at(0).c_str());
            RegSetValueExA(util_test::Key(HKEY_LOCAL_MACHINE, server_key).get(), name.c_str(), 0,
                           REG_SZ, bytes, static_cast<DWORD>(rest[0].size() + 1));
        } else {
            ADD_FAILURE() << "unknown verb " << verb;
        }
    }

    // Plays agent/NAME.txt. The first of them says how they are written.
    void play(const std::string& name) {
        std::ifstream file(UTIL_ROOT "/tests/examples/agent/" + name + ".txt");
        int calls = 0;
        for (std::string line; std::getline(file, line);) {
            if (line.empty() || line[0] == '#') continue;
            const std::string title = filled_in(line);
            std::string text;
            while (std::getline(file, line) && !line.empty())
                text += filled_in(line) + "\n";
            Words words = words_of(title.substr(title[0] == '>' ? 1 : 3) + " " +
                                   (title[0] == '>' ? text : ""));
            if (title[0] == '>') {
                prepare(words.at(0), words.at(1), {words.begin() + 2, words.end()});
                continue;
            }
            ++calls;
            const Result result = agent(words);
            const std::string actual = without_dates(result.out + result.err);
            EXPECT_TRUE(util_test::matches(actual, text)) << title << "\n"
                                                          << text << "- but:\n"
                                                          << actual;
            EXPECT_EQ(std::to_string(result.status), title.substr(1, 1)) << title;
        }
        EXPECT_GT(calls, 0) << name;
    }

    ScratchDirectory tree;
    ScratchDirectory work;
    std::string folder = work.path();

  private:
    std::atomic<int> m_runs{0};
};

TEST_F(AgentTest, PrintsWhatTheTranscriptsSay) {
    for (const char* name : {"calls", "compare", "inventory", "cleanup"})
        play(name);
}

TEST_F(AgentTest, ReportsAndSendsMailBySettingsOfTheRegistry) {
    if (has_maker_key()) GTEST_SKIP() << "the machine's own key must not be touched";
    EXPECT_EQ(agent({"report"}).status, 0u);
    play("notify");
    EXPECT_FALSE(has_maker_key()) << "a report or a mail left a key";
    play("report");
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, maker);
}

// Bytes that a terminal obeys are shown on one. A file gets them as they are.
TEST_F(AgentTest, NamesDoNotCommandATerminal) {
    const char* const mark = "UTIL_AGENT_TEST_CONSOLE";
    if (GetEnvironmentVariableA(mark, nullptr, 0) == 0) {  // again, with a console of its own
        SetEnvironmentVariableA(mark, "1");
        const Result inner = run(util_test::built_file("agent_test.exe"),
                                 {"--gtest_filter=*.NamesDoNotCommandATerminal"}, CREATE_NO_WINDOW);
        SetEnvironmentVariableA(mark, nullptr);
        EXPECT_EQ(inner.status, 0u) << inner.out;
        return;
    }
    work.file("a.rec", inventory_file({"C:\\", "1", "0"}));
    work.file("b.rec",
              inventory_file({"C:\\", "1", "1", "a\x1B[1m\xC2\x9B\n", "#33206", "7", "1"}));
    const HANDLE console = open_inherited("CONOUT$", GENERIC_READ | GENERIC_WRITE, OPEN_EXISTING);
    run(util_test::built_file("agent.exe"), {"compare", "a.rec", "b.rec"}, 0, console);
    std::wstring screen(400, L' ');
    DWORD count = 0;
    ReadConsoleOutputCharacterW(console, screen.data(), 400, {0, 0}, &count);
    EXPECT_NE(screen.find(L"  a\\x1B[1m\\u009B\\x0A"), std::wstring::npos)
        << fs::path(screen).u8string();
}

// Wine shows the host's symbolic links as what they lead to, and runs the host's own programs, but
// not to their end: the link appears a little later.
TEST_F(AgentTest, LoopsEndAndUnreadableEntriesAreCounted) {
    const std::string tool = "Z:\\bin\\ln";
    if (!fs::exists(tool)) GTEST_SKIP() << "needs a Unix host";
    tree.file("a\\file", tree.directory("a"));
    const auto link = [&](const std::string& target, const std::string& name, unsigned entries) {
        folder = tree / "a";
        run(tool, {"-s", target, name});
        for (int tries = 0; tries < 500; ++tries, Sleep(10)) {
            if (XrDirectory(folder.c_str()).getDirectoryList(true, false)->size() == entries)
                return;
        }
        ADD_FAILURE() << "no link " << name;
    };
    link("..", "loop", 2);
    const Result loop = agent({"inventory", tree.path(), work / "links.rec"});
    EXPECT_EQ(loop.status, 0u);
    EXPECT_EQ(loop.err, "agent: not followed, leads back up: a\\loop\n");
    EXPECT_TRUE(contains(loop.out, "  entries      3\n")) << loop.out;

    link("/dev/null", "device", 3);
    const Result device = agent({"inventory", "--json", tree.path(), work / "links.rec"});
    EXPECT_EQ(device.status, 2u);
    const std::string reason = system_text("87");
    EXPECT_EQ(device.err,
              "agent: not followed, leads back up: a\\loop\n"
              "agent: cannot read a\\device: " +
                  reason +
                  "\nagent: 1 entry could not be read; the inventory lacks what is there\n");
    EXPECT_TRUE(contains(device.out,
                         "  \"not_followed\": [\n    \"a\\\\loop\"\n  ],\n"
                         "  \"changed\": [\n  ],\n  \"unreadable\": [\n"
                         "    {\"path\": \"a\\\\device\", \"reason\": \"" +
                             reason + "\"}\n  ]\n}\n"))
        << device.out;
}

TEST_F(AgentTest, DamagedFilesAreRefusedAndRemoveNothing) {
    const std::string removed = tree.directory("empty") + "\\";
    const auto refuses = [&](const Words& words, const std::string& text) {
        work.file("bad.rec", text);
        const Result result = agent(words);
        EXPECT_EQ(result.status, 2u) << testing::PrintToString(text);
        EXPECT_EQ(result.err.find("agent: 'bad.rec' "), 0u) << result.err;
        EXPECT_TRUE(work.read("bad.rec") == text && fs::exists(removed));
    };
    const std::string content =
        inventory_file({"C:\\", "0", "2", "one", "#33206", "1", "0", "two", "#16895", "0", "0"});
    work.file("old.rec", content);
    Words inventories = {"", content + '\0', content.substr(0, content.size() - 1),
                         inventory_file({"C:\\", "0", "9999999999", "one", "#33206", "1", "0"})};
    for (std::size_t at = 0; at < content.size(); at += 17)
        inventories.push_back(content.substr(0, at));
    for (std::size_t at = 0; at < content.size(); at += 7) {
        inventories.push_back(content);
        inventories.back()[at] ^= 1;
    }
    for (const std::string& text : inventories)
        refuses({"compare", "old.rec", "bad.rec"}, text);

    const std::string good = records({removed});
    const std::string cut = good.substr(0, good.size() - 1);
    for (const std::string& text :
         {good + cut, good + "6"s, good + "7\0empty\\\0"s, good + "3\0C:\0"s, good + "\0"s,
          good + "-1\0"s, good + "9999999999\0C:\\"s, "x" + good, "0" + good})
        refuses({"cleanup", "bad.rec"}, text);
    work.file("made.rec", "8\0Q:\\mnt\\\0"s);  // the drive may come back, with the directory on it
    EXPECT_EQ(agent({"cleanup", "made.rec"}).status, 2u);
    EXPECT_TRUE(fs::exists(work / "made.rec"));
}

class Client {
  public:
    explicit Client(int port) : m_socket(util_test::new_socket(SOCK_STREAM)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<unsigned short>(port));
        const auto* const name = reinterpret_cast<const sockaddr*>(&address);
        EXPECT_EQ(connect(m_socket, name, sizeof address), 0);
    }
    ~Client() { closesocket(m_socket); }

    void say(const std::string& text) const {
        send(m_socket, text.data(), static_cast<int>(text.size()), 0);
    }
    // The next lines with "|" between them; "END" for the end of the connection.
    std::string hear(int lines = 1) const {
        std::string text;
        for (char c; lines > 0;) {
            if (recv(m_socket, &c, 1, 0) != 1) return text + "END";
            if (c != '\n' || --lines > 0) text += c == '\n' ? '|' : c;
        }
        return text;
    }
    std::string ask(const std::string& text, int lines = 1) const {
        say(text + "\n");
        return hear(lines);
    }

  private:
    SOCKET m_socket;
};

TEST_F(AgentTest, WatchServesManyClientsAtOnce) {
    Result result;
    std::atomic<bool> ended{false};
    std::thread server([&] {
        result = agent({"watch", "0"});
        ended = true;
    });
    const std::string greeting = "listening on 127.0.0.1, port ";
    while (!ended && (!fs::exists(work / "1.out") || !contains(work.read("1.out"), "\n")))
        Sleep(10);
    if (ended) server.join();
    ASSERT_FALSE(ended) << result.err;
    const int port = std::stoi(work.read("1.out").substr(greeting.size()));

    std::deque<Client> clients;
    while (clients.size() < Poll::table_size_)
        clients.emplace_back(port);
    EXPECT_EQ(Client(port).hear(2), "busy|END");
    for (const Client& client : clients)
        client.say("echo cli");
    for (std::size_t i = 0; i < clients.size(); ++i)
        clients[i].say("ent " + std::to_string(i) + "\r\n");
    for (std::size_t i = 0; i < clients.size(); ++i)
        EXPECT_EQ(clients[i].hear(), "client " + std::to_string(i));

    EXPECT_TRUE(std::regex_match(clients[0].ask("status"),
                                 std::regex("uptime [0-9]+ s, clients 64, lines 65")));
    EXPECT_EQ(without_dates(clients[1].ask("time\necho\necho  two\nechoes\nbye\nquit", 6)),
              "DATE|| two|unknown command; status, time, echo TEXT, bye, quit|bye|END");
    EXPECT_EQ(clients[2].ask(std::string(5000, 'x'), 2), "line too long|END");

    while (clients.size() > 32)  // gone without a word
        clients.pop_back();
    int tries = 0;
    while (!contains(clients[0].ask("status"), "clients 30,") && ++tries < 500)
        Sleep(10);
    EXPECT_LT(tries, 500);
    EXPECT_EQ(Client(port).ask("echo new"), "new");
    EXPECT_EQ(agent({"watch", std::to_string(port)}).err, "agent: cannot listen on port " +
                                                              std::to_string(port) + ": " +
                                                              system_text("10048") + "\n");
    EXPECT_EQ(clients[4].ask("quit", 2), "stopping|END");
    EXPECT_EQ(clients[0].hear(), "END");
    server.join();
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out.find(greeting + std::to_string(port) + "\nstopped, lines "), 0u);
}

}  // namespace
