#include "util/host/host_discovery.h"

#include <gtest/gtest.h>
#include <io.h>

#include <cstdlib>
#include <new>

#include "support/built_file.h"
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

class HostDiscoveryTest : public testing::Test {
  protected:
    HostDiscoveryTest() {
        registry.set_text(server_key, "ComputerDomainName", "Example.Test");
        _putenv(("PATH=" + util_test::built_file("nslookup-tool;") + path).c_str());
        answer("host1 A 10.0.0.5\r\n");
    }
    ~HostDiscoveryTest() override { _putenv(("PATH=" + path).c_str()); }

    void answer(const std::string& text) {
        _putenv(("NSLOOKUP_ANSWER=" + scratch.file("answer", text)).c_str());
    }
    int enumerate(const std::string& directory) {
        hosts = {"there before"};
        message = "untouched";
        const int result = UTIL_EnumHostsOnANetwork(hosts, directory, message);
        EXPECT_EQ(hosts.front(), "there before");
        hosts.pop_front();
        return result;
    }

    const std::string path = std::getenv("PATH");
    util_test::PrivateRegistry registry;
    util_test::ScratchDirectory scratch;
    std::list<String> hosts;
    String message;
};

TEST_F(HostDiscoveryTest, HostsOfAddressRecordsAreAppendedInOrder) {
    const std::string kept[][2] = {
        {"\th1\tA\v192.168.255.1 ", "h1"},
        {"h1     A       10.0.0.5", "h1"},
        {"H3 A 1-2/3x4", "H3"},
        {"h4 A -1.+2.-3.999999999999", "h4"},
        {"caf\xE9 A 10.0.0.5", "caf\xE9"},
        {"gc A 10.0.0.5", "gc"},
        {"example.test. A 1.0.0.5", "example.test."},
        {"h5 A 1.0.0.5\0 extra"s, "h5"},
        // 1024 characters are a line; what is left of a longer one is the next
        {std::string(1013, 'h') + " A 10.0.0.5", std::string(1013, 'h')},
        {std::string(1024, 'h') + "left A 10.0.0.5", "left"},
    };
    std::string text =  // what is dropped
        "[dns]\r\n\r\nh\r\nh A\r\nh A 1.0.0.5 extra\r\nh A 1.0.0.5 e f\r\nh CNAME other\r\nh a "
        "1.0.0.5\r\n"
        "h AA 1.0.0.5\r\nh A 1.0.0\r\nh A 1.0.0.\r\nh A 1.0.0.5.\r\nh A 1.0.0.5x\r\nh A 1..0.5\r\n"
        "h A .1.0.0.5\r\nh A 1.0.0.-\r\nh A 1\r\nh A 1 . 0\r\nh A -1.+2.--3.4\r\n"
        "EXAMPLE.TEST A 1.0.0.5\r\nGC._msdcs A 1.0.0.5\r\n";
    std::list<String> expected;
    for (const auto& [line, host] : kept) {
        text += line + "\r\n";
        expected.push_back(host);
    }
    answer(text + "last A 1.2.3.4");
    expected.push_back("last");
    EXPECT_EQ(enumerate(scratch.path()), 0);
    EXPECT_EQ(hosts, expected);
    EXPECT_EQ(message, "untouched");
}

TEST_F(HostDiscoveryTest, DomainIsTheConfiguredOneElseTheComputers) {
    const std::string none = "\x01";
    const std::string longest(1023, 'd'), computers(1500, 'c');
    const struct {
        DWORD type;
        std::string configured, computers;  // as stored, or none
        std::string asked;                  // the domain asked for, or none
    } cases[] = {
        {REG_SZ, longest + '\0', computers, longest},
        {REG_SZ, longest + "d\0"s, computers, computers},
        {REG_EXPAND_SZ, "%own%.test\0"s, none, "%own%.test"},
        {REG_SZ, "caf\xE9.test\0"s, none, "caf\xC3\xA9.test"},
        {REG_SZ, "", "computer.test", ""},
        {REG_SZ, "unended", "computer.test", "computer.test"},
        {REG_DWORD, "own\0"s, "computer.test", "computer.test"},
        {REG_SZ, none, "\xEF\xBC\xA1.test", "\xEF\xBC\xA1.test"},  // best fit: A
        {REG_SZ, none, "", none},
        {REG_SZ, none, none, none},
    };
    answer("");
    for (const auto& c : cases) {
        registry.clear();
        if (c.configured != none)
            registry.set(server_key, "ComputerDomainName", c.type, c.configured);
        if (c.computers != none)
            registry.set_wide(computer_key, L"Domain", util_test::to_wide(c.computers) + L'\0');
        const util_test::AccessLimit readers(server_key, KEY_READ);  // who reads needs no more
        EXPECT_EQ(enumerate(scratch.path()), c.asked == none ? -1 : 0) << c.configured;
        EXPECT_EQ(message, c.asked == none ? no_domain : no_hosts(c.asked)) << c.configured;
    }
}

int noting_open(const wchar_t* file, int flags, int mode) {
    const int descriptor = _wopen(file, flags, mode);
    DWORD kept = 0;
    GetHandleInformation(reinterpret_cast<HANDLE>(_get_osfhandle(descriptor)), &kept);
    EXPECT_FALSE(kept & HANDLE_FLAG_INHERIT) << "another thread's child would inherit it";
    return descriptor;
}

TEST_F(HostDiscoveryTest, WorkFilesAreMadeInTheDirectoryAndStayThere) {
    const ImportPatch open("_wopen", noting_open);
    for (const std::string name : {"plain", "with blanks & such", "caf\xC3\xA9", "a^b^^c", "100%",
                                   "%no_variable%a%b", "!PATH!", "(a);b,c=d+e", " ~`@#$'[]{}"}) {
        const std::string directory = scratch.directory(name);
        scratch.file(name + "\\nslookupOutput.txt", "old A 10.0.0.1\r\n" + std::string(999, 'x'));
        const long handles = util_test::handle_count();
        EXPECT_EQ(enumerate(directory + (name == "plain" ? "" : "\\")), 0);
        EXPECT_EQ(util_test::handle_count(), handles);
        EXPECT_EQ(hosts, std::list<String>{"host1"}) << name;
        const std::string question = "ls -t A Example.Test\nexit";
        EXPECT_EQ(scratch.read(name + "\\nslookupInput.txt"), question);
        EXPECT_EQ(scratch.read(name + "\\nslookupOutput.txt"),
                  "\n" + question + "\nhost1 A 10.0.0.5\r\n");
    }
    SetCurrentDirectoryA(scratch.path().c_str());
    EXPECT_EQ(enumerate(""), 0);
    for (const char* name : {"\\nslookupInput.txt", "\\nslookupOutput.txt"})
        EXPECT_EQ(std::remove(name), 0) << "in the root of the current drive";
}

TEST_F(HostDiscoveryTest, WithoutAnAnswerThereAreNoHosts) {
    const auto expect_none = [this](const std::string& directory) {
        EXPECT_EQ(enumerate(directory), 0) << directory;
        EXPECT_TRUE(hosts.empty()) << directory;
        EXPECT_EQ(message, no_hosts("Example.Test")) << directory;
    };
    expect_none(scratch / "missing");
    expect_none(scratch.directory("\xE2\x86\x92"));  // not in the ANSI page
    // What the command processor would take for more than a path is not run, or even written.
    SetEnvironmentVariableA("UTIL_TEST_QUOTE", "\"");
    for (const std::string& name :
         {"\"&echo x>injected&\""s, "%UTIL_test_quote%&echo x>injected&%UTIL_TEST_QUOTE%"s,
          "%cmdcmdline:~-1%&echo x>injected&%CMDCMDLINE:~-1%"s, "%Cd%"s, "\n"s, "\x7F"s, "a\0"s}) {
        SetCurrentDirectoryA(scratch.path().c_str());
        expect_none(scratch / name + "\\..");
        for (const char* file : {"injected", "nslookupInput.txt"})
            EXPECT_EQ(GetFileAttributesA(file), INVALID_FILE_ATTRIBUTES) << name;
    }
    // What an earlier call has left is no answer to this one.
    scratch.directory("asked\\nslookupInput.txt");  // no question can be written
    scratch.file("asked\\nslookupOutput.txt", "old A 1.2.3.4");
    expect_none(scratch / "asked");
    scratch.file("nslookupOutput.txt", "old A 1.2.3.4");
    const std::string processor = std::getenv("ComSpec");
    _putenv("ComSpec=C:\\missing.exe");
    expect_none(scratch.path());
    _putenv(("ComSpec=" + processor).c_str());
    _putenv(("PATH=" + path).c_str());  // without the tool
    expect_none(scratch.path());
}

std::size_t refused_size;

template <void* make(std::size_t)>
void* refusing_new(std::size_t size) {
    if (size >= refused_size) throw std::bad_alloc();
    return make(size);
}

TEST_F(HostDiscoveryTest, ExhaustedMemoryIsReported) {
    registry.clear();
    registry.set_text(computer_key, "Domain", std::string(9000, 'd'));
    const ImportPatch one("_Znwy", refusing_new < ::operator new>);
    const ImportPatch many("_Znay", refusing_new < ::operator new[]>);
    for (const auto& [size, failure] : {
             std::pair(1024u, "Unable to allocate memory for the domain name"),
             {9002u, "Unable to re-allocate memory for the domain name"},
             {9005u, "Unable to allocate memory for the nslookup command"},
         }) {
        refused_size = size;
        EXPECT_EQ(enumerate("w"), -1);
        EXPECT_EQ(message, failure);
    }
}

}  // namespace
