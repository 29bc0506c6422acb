#include <gtest/gtest.h>

#include <atomic>
#include <deque>
#include <filesystem>
#include <map>
#include <regex>
#include <thread>
#include <vector>

#include "support/loopback.h"
#include "support/private_registry.h"
#include "support/scratch_directory.h"
#include "util/internal/windows.h"
#include "util/util.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;
using util_test::ScratchDirectory;
using util_test::to_wide;

HANDLE output_file(const std::string& path) {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    return CreateFileW(to_wide(path).c_str(), GENERIC_WRITE, FILE_SHARE_READ, &inherited,
                       CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
}

struct Result {
    DWORD status;
    std::string out;
    std::string err;
};

// It stands beside this program.
std::string agent_path() {
    wchar_t own[MAX_PATH];
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    return fs::path(own).replace_filename("agent.exe").u8string();
}

class AgentTest : public testing::Test {
  protected:
    // Runs a program to its end, its output in "1.out", "2.out", ... Every word is quoted, so none
    // may end in a backslash.
    Result run(const std::string& program, const std::vector<std::string>& words,
               const std::string& directory = ".") {
        const std::string name = std::to_string(++m_runs);
        std::wstring line = L"\"" + to_wide(program) + L"\"";
        for (const std::string& word : words)
            line += L" \"" + to_wide(word) + L"\"";
        STARTUPINFOW start = {};
        start.cb = sizeof start;
        start.dwFlags = STARTF_USESTDHANDLES;
        start.hStdOutput = output_file(work / name + ".out");
        start.hStdError = output_file(work / name + ".err");
        PROCESS_INFORMATION child = {};
        Result result = {~0ul, "", ""};
        if (CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr,
                           to_wide(directory).c_str(), &start, &child)) {
            WaitForSingleObject(child.hProcess, INFINITE);
            GetExitCodeProcess(child.hProcess, &result.status);
            CloseHandle(child.hThread);
            CloseHandle(child.hProcess);
        } else {
            ADD_FAILURE() << program << " does not start: error " << GetLastError();
        }
        CloseHandle(start.hStdOutput);
        CloseHandle(start.hStdError);
        result.out = work.read(name + ".out");
        result.err = work.read(name + ".err");
        return result;
    }

    Result agent(const std::vector<std::string>& words) { return run(agent_path(), words); }

    ScratchDirectory tree;
    ScratchDirectory work;  // inventories and outputs

  private:
    std::atomic<int> m_runs{0};
};

std::string without_dates(const std::string& text) {
    const std::regex date("[0-9]{4} [0-9]{2} [0-9]{2} [0-9]{2}:[0-9]{2}:[0-9]{2}");
    return std::regex_replace(text, date, "DATE");
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

// The documented format, read without the agent's own code: path to size, -1 for a directory.
std::map<std::string, std::int64_t> sizes_in(const std::string& inventory) {
    XrFile file(inventory.c_str(), "r");
    String format, root, taken, count, path, size, modified;
    int version = 0, mode = 0;
    file >> format >> version >> root >> taken >> count;
    EXPECT_EQ(format, "util agent inventory");
    EXPECT_EQ(version, 1);
    std::map<std::string, std::int64_t> sizes;
    for (int i = 0; i < count.to_int(); ++i) {
        file >> path >> mode >> size >> modified;
        struct _stat64i32 status = {};
        EXPECT_EQ(UTF8_stat(root + "\\" + path, &status), 0) << path;
        EXPECT_EQ(mode, status.st_mode) << path;
        EXPECT_EQ(modified, std::to_string(status.st_mtime)) << path;
        sizes[path.str()] = (mode & 0x4000) ? -1 : std::stoll(size.str());
    }
    EXPECT_FALSE(file.Error());
    return sizes;
}

TEST_F(AgentTest, InventoryHoldsTheWholeTree) {
    const std::string german = "gr\xC3\xB6\xC3\x9F\x65";
    const std::string japanese = german + "\\\xE6\x97\xA5\xE6\x9C\xAC";
    const std::string emoji = japanese + "\\\xF0\x9F\x98\x80.txt";
    tree.directory("empty");
    tree.directory(german);
    tree.directory(japanese);
    tree.file(emoji, "12345");
    tree.file(".hidden", "1");
    tree.directory("Build");
    tree.file("Build\\left out");
    {
        // Five gigabytes, of which the file system keeps none.
        const HANDLE big = output_file(tree / "big");
        LARGE_INTEGER end;
        end.QuadPart = 5ll << 30;
        SetFilePointerEx(big, end, nullptr, FILE_BEGIN);
        ASSERT_TRUE(SetEndOfFile(big));
        CloseHandle(big);
    }
    // Inside the tree, and there before the second run: not part of what it lists.
    const std::string file = tree / "inventory.rec";
    for (int i = 0; i < 2; ++i) {
        const Result result = agent({"inventory", "--skip", "build", tree.path(), file});
        EXPECT_EQ(result.status, 0u);
        EXPECT_EQ(result.err, "");
        EXPECT_TRUE(contains(result.out, "  left out     Build\n")) << result.out;
        EXPECT_TRUE(contains(result.out,
                             "  entries      6\n  directories  3\n"
                             "  bytes        5368709126 (5.0 GB)\n"
                             "  verified     6 entries"))
            << result.out;
        EXPECT_LT(result.out.find("  big\n"), result.out.find("  " + emoji + "\n"));
        const std::map<std::string, std::int64_t> expected = {{".hidden", 1}, {"big", 5ll << 30},
                                                              {"empty", -1},  {german, -1},
                                                              {japanese, -1}, {emoji, 5}};
        EXPECT_EQ(sizes_in(file), expected);
    }
}

// Wine shows the host's symbolic links as what they lead to, and runs the host's own programs, but
// not to their end: the link appears a little later.
TEST_F(AgentTest, LoopsEndAndUnreadableEntriesAreReported) {
    const std::string tool = "Z:\\bin\\ln";
    if (!fs::exists(tool)) GTEST_SKIP() << "needs a Unix host";
    const std::string directory = tree.directory("a");
    tree.file("a\\file");
    const auto link = [&](const std::string& target, const std::string& name, unsigned entries) {
        run(tool, {"-s", target, name}, directory);
        for (int tries = 0; tries < 500; ++tries, Sleep(10)) {
            if (XrDirectory(directory.c_str()).getDirectoryList(true, false)->size() == entries)
                return;
        }
        ADD_FAILURE() << "no link " << name;
    };
    const std::string file = work / "links.rec";

    link("..", "loop", 2);
    const Result loop = agent({"inventory", tree.path(), file});
    EXPECT_EQ(loop.status, 0u);
    EXPECT_TRUE(contains(loop.err, "agent: not followed, leads back up: a\\loop\n")) << loop.err;
    EXPECT_TRUE(contains(loop.out, "  entries      3\n")) << loop.out;

    link("/dev/null", "device", 3);
    const Result device = agent({"inventory", tree.path(), file});
    EXPECT_EQ(device.status, 2u);
    EXPECT_TRUE(contains(device.err, "agent: cannot read a\\device\n")) << device.err;
    EXPECT_TRUE(contains(device.out, "  entries      3\n  directories  2\n  bytes        0 "))
        << device.out;
}

TEST_F(AgentTest, BadCallsGetOneMessage) {
    const std::string file = tree.file("file");
    const std::string good = work / "good.rec";
    ASSERT_EQ(agent({"inventory", tree.path(), good}).status, 0u);
    const struct {
        std::vector<std::string> words;
        std::string message;
    } cases[] = {
        {{}, "a verb is needed\nusage: agent VERB"},
        {{"invent"}, "unknown verb 'invent'\nusage: agent VERB"},
        {{"inventory"}, "inventory needs a directory and a file\nusage: agent inventory ["},
        {{"inventory", "--skip"}, "--skip needs a name\nusage: "},
        {{"inventory", "--fast", tree.path(), good}, "unknown option '--fast'\nusage: "},
        {{"inventory", "", good}, "'' does not exist\n"},
        {{"inventory", file, good}, "'" + file + "' is not a directory\n"},
        {{"inventory", tree.path(), tree.path()}, "cannot create '" + tree.path() + "' (error 5)"},
        {{"compare", good, tree / "none"}, "cannot open '" + tree / "none" + "' (error 2)\n"},
        {{"compare", file, good}, "'" + file + "' is not an inventory\n"},
        {{"prepare", "\\\\srv\\share\\x", work / "x"}, "'\\\\srv\\share\\x' is not on a drive; "},
        {{"prepare", tree / "new", good}, "'" + good + "' is damaged: no directory at byte 0\n"},
        {{"prepare", tree / "new", file + "\\x"},
         "Failed to open the file " + file +
             "\\x. Tessaron will not be able to cleanup the alternate "
             "paths created for mounting this replica.\nfailing path: " +
             file + "\\x\n"},
        {{"cleanup", "--dry-run"}, "cleanup needs a record file\nusage: agent cleanup ["},
        {{"notify", file, "a", "b", "c", "d"}, "'" + file + "' is not a directory\n"},
        {{"report", "--html"}, "report takes nothing but --xml\nusage: agent report [--xml]\n"},
        {{"watch", ""}, "'' is not a port\nusage: "},
        {{"watch", "80x"}, "'80x' is not a port\nusage: "},
        {{"watch", "4294967297"}, "'4294967297' is not a port\nusage: "},
    };
    for (const auto& c : cases) {
        const Result result = agent(c.words);
        EXPECT_EQ(result.status, 2u) << c.message;
        EXPECT_EQ(result.out, "") << c.message;
        EXPECT_EQ(result.err.substr(0, 7 + c.message.size()), "agent: " + c.message);
    }
    EXPECT_EQ(agent({"compare", good, good}).status, 0u) << "a bad call changed the inventory";
}

TEST_F(AgentTest, DamagedInventoriesAreRefused) {
    tree.file("one", "1");
    const std::string good = work / "good.rec";
    const std::string bad = work / "bad.rec";
    ASSERT_EQ(agent({"inventory", tree.path(), good}).status, 0u);
    const std::string content = work.read("good.rec");

    std::vector<std::string> damaged = {"", content + '\0', content.substr(0, content.size() - 1)};
    for (std::size_t at = 0; at < content.size(); at += 17)
        damaged.push_back(content.substr(0, at));
    for (std::size_t at = 0; at < content.size(); at += 7) {
        damaged.push_back(content);
        damaged.back()[at] ^= 1;
    }
    const std::string count = "2\0001\0"s;  // of entries, in front of the first path
    damaged.push_back(content);
    damaged.back().replace(content.find(count + "4\0one"s), count.size(), "11\0009999999999\0"s);
    for (const std::string& text : damaged) {
        work.file("bad.rec", text);
        const Result result = agent({"compare", good, bad});
        EXPECT_EQ(result.status, 2u) << testing::PrintToString(text);
        EXPECT_EQ(result.err.find("agent: '" + bad + "' "), 0u) << result.err;
    }
}

// Makes a file or directory look as if it was last changed in 2017.
void age(const std::string& path) {
    const HANDLE opened = CreateFileW(to_wide(path).c_str(), FILE_WRITE_ATTRIBUTES, 7, nullptr,
                                      OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    const FILETIME past = {0, 0x01D30000};
    EXPECT_TRUE(SetFileTime(opened, nullptr, nullptr, &past)) << path;
    CloseHandle(opened);
}

TEST_F(AgentTest, CompareShowsWhatChanged) {
    tree.directory("dir");
    tree.file("dir\\same", "same");
    tree.file("gone", "12");
    tree.file("grown", "1");
    const std::string touched = tree.file("touched", "123");
    tree.file("turned");
    const std::string before = work / "before.rec";
    const std::string after = work / "after.rec";
    ASSERT_EQ(agent({"inventory", tree.path(), before}).status, 0u);

    DeleteFileW(to_wide(tree / "gone").c_str());
    DeleteFileW(to_wide(tree / "turned").c_str());
    tree.directory("turned");
    tree.file("grown", std::string(1536, 'x'));
    tree.file("dir\\n\xC3\xA9", "1234");
    age(touched);
    age(tree / "dir");  // no change: what is in a directory speaks for itself
    ASSERT_EQ(agent({"inventory", tree.path(), after}).status, 0u);

    const Result changed = agent({"compare", before, after});
    EXPECT_EQ(changed.status, 1u);
    EXPECT_EQ(without_dates(changed.out), "old  DATE  " + tree.path() + ", 6 entries\n" +
                                              "new  DATE  " + tree.path() + ", 6 entries\n" +
                                              "added          4 B  DATE  dir\\n\xC3\xA9\n"
                                              "removed        2 B  DATE  gone\n"
                                              "changed     1.5 KB  DATE  grown (was 1 B, DATE)\n"
                                              "changed        3 B  DATE  touched (was 3 B, DATE)\n"
                                              "changed          -  DATE  turned (was 0 B, DATE)\n"
                                              "1 added, 1 removed, 3 changed\n");
    const Result same = agent({"compare", after, after});
    EXPECT_EQ(same.status, 0u);
    EXPECT_TRUE(contains(same.out, "entries\n0 added, 0 removed, 0 changed\n")) << same.out;
}

TEST_F(AgentTest, CleanupRemovesWhatPrepareCreated) {
    const std::string record = work / "made.rec";
    const std::string mount = tree.directory("mnt") + "\\gr\xC3\xB6\xC3\x9F\x65\\";
    EXPECT_EQ(agent({"prepare", mount + "r1\\x\\..", record}).out,
              "created  " + mount + "\ncreated  " + mount + "r1\\\n");
    EXPECT_EQ(agent({"prepare", mount + "r1", record}).out, "nothing to create\n");
    agent({"prepare", mount + "r2/deep", record});
    const std::string content = work.read("made.rec");
    const std::string outer = std::to_string(mount.size() + 1) + '\0' + mount + '\0';
    // The outermost last, as when another process was quicker to record, and twice.
    work.file("made.rec", content.substr(outer.size()) + outer + outer);

    const std::string lines = "removed  " + mount + "r2\\deep\\\nremoved  " + mount +
                              "r1\\\nremoved  " + mount + "r2\\\nremoved  " + mount + "\n";
    const std::string would = String(lines).replace("removed", "would remove").str();
    EXPECT_EQ(agent({"cleanup", "--dry-run", record}).out, would);
    tree.file("mnt\\gr\xC3\xB6\xC3\x9F\x65\\r2\\file", "in the way");
    const Result kept = agent({"cleanup", record});
    EXPECT_EQ(kept.status, 1u);
    EXPECT_TRUE(contains(kept.out, "\nstays, not empty  " + mount + "r2\\\n")) << kept.out;
    EXPECT_TRUE(contains(kept.out, "\nstays, not empty  " + mount + "\nkept  " + record + "\n"));
    fs::remove(fs::u8path(mount + "r2\\file"));
    const Result done = agent({"cleanup", record});
    EXPECT_EQ(done.status, 0u);
    EXPECT_TRUE(contains(done.out, "gone already  " + mount + "r1\\\nremoved  " + mount +
                                       "r2\\\nremoved  " + mount + "\nremoved  " + record + "\n"));
    EXPECT_TRUE(fs::exists(tree / "mnt")) << "it was there before";
    EXPECT_FALSE(fs::exists(record));
}

TEST_F(AgentTest, UnsoundRecordsRemoveNothing) {
    const std::string record = work / "made.rec";
    const std::string directory = tree.directory("empty") + "\\";
    const std::string cut = std::to_string(directory.size() + 1) + '\0' + directory;
    const std::string good = cut + '\0';
    for (const std::string& text :
         {good + cut, good + "6"s, good + "7\0empty\\\0"s, good + "3\0C:\0"s, good + "\0"s,
          good + "-1\0"s, good + "9999999999\0C:\\"s, "x" + good, "0" + good}) {
        work.file("made.rec", text);
        const Result result = agent({"cleanup", record});
        EXPECT_EQ(result.status, 2u) << testing::PrintToString(text);
        EXPECT_EQ(result.err.find("agent: '" + record + "' is damaged: no directory at byte "), 0u);
        EXPECT_EQ(work.read("made.rec"), text);
        EXPECT_TRUE(fs::exists(directory)) << testing::PrintToString(text);
    }
    work.file("made.rec", "8\0Q:\\mnt\\\0"s);  // the drive may come back, with the directory on it
    EXPECT_EQ(agent({"cleanup", record}).status, 2u);
    EXPECT_TRUE(fs::exists(record));
}

bool has_machine_key(const char* path) {
    HKEY key;
    const bool found = RegOpenKeyExA(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &key) == 0;
    if (found) RegCloseKey(key);
    return found;
}

TEST_F(AgentTest, ReportShowsEachThingOrWhyNot) {
    const char* const maker = "SOFTWARE\\Vorn";
    if (has_machine_key(maker)) GTEST_SKIP() << "the machine's own key must not be touched";
    const std::string bare = agent({"report"}).out;
    EXPECT_FALSE(has_machine_key(maker)) << "a report made a key";
    for (const char* name : {"Database Path", "EmailPickupDir"})
        EXPECT_TRUE(contains(bare, "(the registry value \""s + name + "\" is not there)\n"));

    const util_test::Key key(HKEY_LOCAL_MACHINE, maker + "\\Vorn Quillmark Tessaron\\Server"s);
    const auto set = [&key](const char* name, const std::string& text) {
        RegSetValueExA(key.get(), name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                       static_cast<DWORD>(text.size() + 1));
    };
    set("Database Path", "\\\\srv\\share\\a database");
    set("DatabaseUsername", "srv\\agent");
    set("DatabasePassword", "secret");
    set("EmailPickupDir", "C:\\<mail> & \"more\"");
    const std::string text = agent({"report"}).out;
    const std::string xml = agent({"report", "--xml"}).out;
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, maker);

    std::string rows;  // as the XML has them
    for (const char* name :
         {"platform", "version", "edition", "cluster", "emulation", "temporary directory",
          "current directory", "host name", "volume manager release", "volume manager path",
          "database location", "database user", "database password", "pickup directory",
          "snapshot tool"}) {
        const String tag = String(name).replace(" ", "_");
        String value;
        if (UTIL_extractTag(xml, tag, value) != 0) {
            EXPECT_EQ(UTIL_extractTag(xml, tag + "_missing", value), 0) << name;
            value = "(" + value + ")";
        }
        rows += String::format("  %-22s  %s\n", name, value.c_str());
    }
    const std::regex changing("  (drive|address) .*\n|.*DATE\n");
    EXPECT_EQ(std::regex_replace(without_dates(text), changing, ""), rows);
    EXPECT_TRUE(contains(rows,
                         "  database location       \\\\srv\\share\\a database\n"
                         "  database user           srv\\agent\n"
                         "  database password       ********\n"
                         "  pickup directory        C:\\<mail> & \"more\"\n"));
    String drive;
    EXPECT_EQ(UTIL_extractTag(xml, "drive_C", drive), 0);
    EXPECT_TRUE(contains(text, "  drive C                 " + drive.str().substr(0, 5)));
}

TEST_F(AgentTest, NotifyDropsMessagesAndLeavesTheRegistryAsItWas) {
    const char* const maker = "SOFTWARE\\Vorn";
    if (has_machine_key(maker)) GTEST_SKIP() << "the machine's own key must not be touched";
    const std::vector<std::string> words = {
        "notify", tree.path(), "a@x.test", "b@x.test; c@x.test", "full", "No room left"};
    tree.file("tsr0.tmp1", "an old message");
    const Result sent = agent(words);
    EXPECT_FALSE(has_machine_key(maker));
    for (const char* to : {"b@x.test", "c@x.test"})
        EXPECT_TRUE(contains(sent.out, "\nFrom: a@x.test\r\nTo: "s + to + "\r\nMIME-"));
    EXPECT_TRUE(contains(sent.out, "\r\nSubject: full\r\nNo room left\n")) << sent.out;
    EXPECT_FALSE(contains(sent.out, "an old message"));
    EXPECT_TRUE(contains(sent.out, ", messages in the directory: 2\n"));
    const std::string answer = MailRunning() && MailInstalled() ? "0 (sent)" : "-1 (IIS is not ";
    EXPECT_TRUE(contains(sent.out, "\nsend() answered " + answer)) << sent.out;

    const util_test::Key key(HKEY_LOCAL_MACHINE, maker + "\\Vorn Quillmark Tessaron\\Server"s);
    RegSetValueExA(key.get(), "EmailPickupDir", 0, REG_SZ, nullptr, 0);
    const Result refused = agent(words);
    EXPECT_EQ(RegQueryValueExA(key.get(), "EmailPickupDir", nullptr, nullptr, nullptr, nullptr), 0);
    RegDeleteTreeA(HKEY_LOCAL_MACHINE, maker);
    EXPECT_EQ(refused.err,
              "agent: the registry value \"EmailPickupDir\" is set; it stays as it is\n");
}

class Client {
  public:
    explicit Client(int port) : m_socket(util_test::new_socket(SOCK_STREAM)) {
        sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = htons(static_cast<unsigned short>(port));
        EXPECT_EQ(connect(m_socket, reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
    }
    ~Client() { closesocket(m_socket); }

    void say(const std::string& text) const {
        send(m_socket, text.data(), static_cast<int>(text.size()), 0);
    }
    // The next line, or what came before the end of the connection and "END".
    std::string hear() const {
        std::string line;
        for (char c; recv(m_socket, &c, 1, 0) == 1; line += c) {
            if (c == '\n') return line;
        }
        return line + "END";
    }
    std::string ask(const std::string& text) const {
        say(text + "\n");
        return hear();
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
    const Client one_too_many(port);
    EXPECT_EQ(one_too_many.hear(), "busy");
    EXPECT_EQ(one_too_many.hear(), "END");
    for (const Client& client : clients)
        client.say("echo cli");
    for (std::size_t i = 0; i < clients.size(); ++i)
        clients[i].say("ent " + std::to_string(i) + "\r\n");
    for (std::size_t i = 0; i < clients.size(); ++i)
        EXPECT_EQ(clients[i].hear(), "client " + std::to_string(i));

    const std::string status = clients[0].ask("status");
    EXPECT_TRUE(std::regex_match(status, std::regex("uptime [0-9]+ s, clients 64, lines 65")))
        << status;
    EXPECT_EQ(without_dates(clients[1].ask("time")), "DATE");
    EXPECT_EQ(clients[1].ask("echo\necho  two"), "");
    EXPECT_EQ(clients[1].hear(), " two");
    EXPECT_EQ(clients[1].ask("echoes"), "unknown command; status, time, echo TEXT, bye, quit");
    EXPECT_EQ(clients[2].ask(std::string(5000, 'x')), "line too long");
    EXPECT_EQ(clients[2].hear(), "END");
    EXPECT_EQ(clients[3].ask("bye\nquit"), "bye");
    EXPECT_EQ(clients[3].hear(), "END");

    while (clients.size() > 32)  // gone without a word
        clients.pop_back();
    int tries = 0;
    while (!contains(clients[0].ask("status"), "clients 30,") && ++tries < 500)
        Sleep(10);
    EXPECT_LT(tries, 500);
    EXPECT_EQ(Client(port).ask("echo new"), "new");
    EXPECT_EQ(agent({"watch", std::to_string(port)}).err,
              "agent: cannot listen on port " + std::to_string(port) + " (error 10048)\n");
    EXPECT_EQ(clients[4].ask("quit"), "stopping");
    EXPECT_EQ(clients[0].hear(), "END");
    server.join();
    EXPECT_EQ(result.status, 0u);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(result.out.find(greeting + std::to_string(port) + "\nstopped, lines "), 0u);
}

}  // namespace
