#include "util/host/host_discovery.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <new>

#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/private_registry.h"
#include "support/scratch_directory.h"

using namespace std::string_literals;
using util_test::ImportPatch;

namespace {

const std::string server_key = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
const std::string computer_key = "System\\CurrentControlSet\\Services\\Tcpip\\Parameters";

const std::string no_domain =
    "Tessaron is unable to determine the correct DNS domain to query in order to gather a valid "
    "list of hosts.\nResolution:\n If you know the domain name this computer should query for a "
    "list of hosts, create a String value in the registry key HKLM\\SOFTWARE\\Vorn\\Vorn Quillmark "
    "Tessaron\\Server called ComputerDomainName and specify the correct domain name";

std::string no_hosts(const std::string& domain) {
    return "No valid 'A' host entries were returned while executing the following nslookup "
           "command:\nls -t A " +
           domain +
           "\n\nResolution:\n If the domain name used in the nslookup query is not correct, and "
           "you know the domain name this computer should query for a list of hosts, create a "
           "String value in the registry key HKLM\\SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server "
           "called ComputerDomainName and specify the correct domain name.";
}

using Hosts = std::list<String>;

class HostDiscoveryTest : public testing::Test {
  protected:
    HostDiscoveryTest() {
        registry.set_text(server_key, "ComputerDomainName", "Example.Test");
        char program[MAX_PATH];
        GetModuleFileNameA(nullptr, program, sizeof program);
        const std::string folder(program, std::strrchr(program, '\\') - program);
        put("PATH", folder + "\\nslookup-tool;" + path);
        answer("host1 A 10.0.0.5\r\n");
    }
    ~HostDiscoveryTest() override { put("PATH", path); }

    static void put(const std::string& name, const std::string& value) {
        _putenv((name + "=" + value).c_str());
    }
    void answer(const std::string& text) { put("NSLOOKUP_ANSWER", scratch.file("answer", text)); }
    int enumerate() { return enumerate(scratch.path()); }
    int enumerate(const std::string& directory) {
        hosts.clear();
        message = "untouched";
        return UTIL_EnumHostsOnANetwork(hosts, directory, message);
    }

    const std::string path = std::getenv("PATH");
    util_test::PrivateRegistry registry;
    util_test::ScratchDirectory scratch;
    Hosts hosts;
    String message;
};

TEST_F(HostDiscoveryTest, HostsOfAddressRecordsAreAppendedInOrder) {
    const struct {
        std::string line;
        String host;  // "" when the line is dropped
    } cases[] = {
        {"[dns.example.test]", ""},
        {" host1                A      10.0.0.5", "host1"},
        {"\thost2\tA\v192.168.255.1 ", "host2"},
        {"HOST3 A 1-2/3x4", "HOST3"},
        {"host4 A -1.+2.--3.4", ""},
        {"host5 A -1.+2.-3.99999999999999999999", "host5"},
        {"host6 A 1+2+3+4", "host6"},
        {"host1 A 10.0.0.5", "host1"},
        {"caf\xE9 A 10.0.0.5", "caf\xE9"},
        {"", ""},
        {"host", ""},
        {"host A", ""},
        {"host A 10.0.0.5 extra", ""},
        {"host A 10.0.0.5 e f", ""},
        {"host CNAME other", ""},
        {"host a 10.0.0.5", ""},
        {"host AA 10.0.0.5", ""},
        {"host A 10.0.0", ""},
        {"host A 10.0.0.", ""},
        {"host A 10.0.0.5.", ""},
        {"host A 10.0.0.5x", ""},
        {"host A 10..0.5", ""},
        {"host A .10.0.0.5", ""},
        {"host A 10.0.0.-", ""},
        {"host A 10", ""},
        {"host A a.b.c.d", ""},
        {"host A 10 . 0", ""},
        {"example.test A 10.0.0.5", ""},
        {"EXAMPLE.TEST A 10.0.0.5", ""},
        {"example.test. A 10.0.0.5", "example.test."},
        {"GC._msdcs A 10.0.0.5", ""},
        {"gc A 10.0.0.5", "gc"},
        {"host A 10.0.0.5"s + '\0' + " extra", "host"},
        // 1024 characters are a line; what is left of a longer one is the next
        {std::string(1013, 'h') + " A 10.0.0.5", std::string(1013, 'h')},
        {std::string(1024, 'h') + "left A 10.0.0.5", "left"},
        {"host7 A 10.0.0.5", "host7"},
    };
    std::string text;
    Hosts expected = {"there before"};
    for (const auto& c : cases) {
        text += c.line + "\r\n";
        if (!c.host.empty()) expected.push_back(c.host);
    }
    answer(text.substr(0, text.size() - 2));  // the last line has no end
    hosts = {"there before"};
    message = "untouched";
    EXPECT_EQ(UTIL_EnumHostsOnANetwork(hosts, scratch.path(), message), 0);
    EXPECT_EQ(hosts, expected);
    EXPECT_EQ(message, "untouched");

    answer("host A 10.0.0.5 extra\r\n");
    const long handles = util_test::handle_count();
    EXPECT_EQ(enumerate(), 0);
    EXPECT_EQ(util_test::handle_count(), handles);
    EXPECT_EQ(hosts, Hosts());
    EXPECT_EQ(message, no_hosts("Example.Test"));
}

TEST_F(HostDiscoveryTest, DomainIsTheConfiguredOneElseTheComputers) {
    const std::string none = "\x01";
    const auto text = [](std::size_t length) { return std::string(length, 'd'); };
    const struct {
        DWORD type;
        std::string configured, computers;  // as stored, or none
        std::string asked;                  // the domain asked for, or none
    } cases[] = {
        {REG_SZ, "own.test\0"s, "computer.test", "own.test"},
        {REG_EXPAND_SZ, "%own%.test\0"s, none, "%own%.test"},
        {REG_SZ, "caf\xE9.test\0"s, none, "caf\xC3\xA9.test"},
        {REG_SZ, "", "computer.test", ""},
        {REG_SZ, "\0"s, "computer.test", ""},
        {REG_SZ, "unended", "computer.test", "computer.test"},
        {REG_DWORD, "own\0"s, "computer.test", "computer.test"},
        {REG_SZ, text(1023) + '\0', "computer.test", text(1023)},
        {REG_SZ, text(1024) + '\0', "computer.test", "computer.test"},
        {REG_SZ, none, "computer.test", "computer.test"},
        {REG_SZ, none, text(1500), text(1500)},
        {REG_SZ, none, "", none},
        {REG_SZ, none, none, none},
    };
    answer("");
    for (const auto& c : cases) {
        registry.clear();
        if (c.configured != none) {
            registry.set(server_key, "ComputerDomainName", c.type, c.configured);
        }
        if (c.computers != none) registry.set_text(computer_key, "Domain", c.computers);
        EXPECT_EQ(enumerate(), c.asked == none ? -1 : 0) << c.configured << " " << c.computers;
        EXPECT_EQ(message, c.asked == none ? no_domain : no_hosts(c.asked));
        if (c.asked != none) {
            EXPECT_EQ(scratch.read("nslookupInput.txt"), "ls -t A " + c.asked + "\nexit");
        }
    }
}

TEST_F(HostDiscoveryTest, WorkFilesAreMadeInTheDirectoryAndStayThere) {
    for (const char* name : {"plain", "with blanks & such", "caf\xC3\xA9"}) {
        const std::string directory = scratch.directory(name);
        for (const char* end : {"", "\\"}) {
            scratch.file(name + "\\nslookupOutput.txt"s,
                         "old A 10.0.0.1\r\n" + std::string(999, 'x'));
            EXPECT_EQ(enumerate(directory + end), 0);
            EXPECT_EQ(hosts, Hosts{"host1"}) << name << end;
            const std::string question = "ls -t A Example.Test\nexit";
            EXPECT_EQ(scratch.read(name + "\\nslookupInput.txt"s), question);
            EXPECT_EQ(scratch.read(name + "\\nslookupOutput.txt"s),
                      "> " + question + "\r\nhost1 A 10.0.0.5\r\n");
        }
    }
}

TEST_F(HostDiscoveryTest, WithoutAnAnswerThereAreNoHosts) {
    const auto finds_none = [this](const std::string& directory) {
        return enumerate(directory) == 0 && hosts.empty() && message == no_hosts("Example.Test");
    };
    EXPECT_TRUE(finds_none(scratch / "missing"));
    EXPECT_TRUE(finds_none(scratch / "a\"b"));
    EXPECT_TRUE(finds_none(scratch.directory("\xE2\x86\x92"))) << "not in the ANSI page";

    // What an earlier call has left is no answer to this one.
    const std::string directory = scratch.directory("used");
    const auto leave_answer = [&] { scratch.file("used\\nslookupOutput.txt", "old A 1.2.3.4"); };
    leave_answer();
    put("PATH", "C:\\windows");
    EXPECT_TRUE(finds_none(directory)) << "no tool";
    leave_answer();
    const std::string processor = std::getenv("ComSpec");
    put("ComSpec", "C:\\missing.exe");
    EXPECT_TRUE(finds_none(directory)) << "no command processor";
    put("ComSpec", processor);
    std::filesystem::remove(scratch / "used\\nslookupInput.txt");
    scratch.directory("used\\nslookupInput.txt");
    leave_answer();
    EXPECT_TRUE(finds_none(directory)) << "no question";
    EXPECT_EQ(scratch.read("used\\nslookupOutput.txt"), "old A 1.2.3.4");
}

std::size_t refused_size;

void* refusing_new(std::size_t size) {
    if (size == refused_size) throw std::bad_alloc();
    return ::operator new(size);
}
void* refusing_array_new(std::size_t size) {
    if (size >= refused_size) throw std::bad_alloc();
    return ::operator new[](size);
}

TEST_F(HostDiscoveryTest, ExhaustedMemoryIsReported) {
    registry.clear();
    registry.set_text(computer_key, "Domain", std::string(9000, 'd'));
    {
        const ImportPatch patch("_Znwy", refusing_new);
        refused_size = 1024;
        EXPECT_EQ(enumerate(), -1);
        EXPECT_EQ(message, "Unable to allocate memory for the domain name");
        refused_size = 9002;
        EXPECT_EQ(enumerate(), -1);
        EXPECT_EQ(message, "Unable to re-allocate memory for the domain name");
    }
    const ImportPatch patch("_Znay", refusing_array_new);
    refused_size = 9000;
    EXPECT_EQ(enumerate(), -1);
    EXPECT_EQ(message, "Unable to allocate memory for the nslookup command");
}

}  // namespace
