#include "util/portable/ksl_hostname.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>
#include <vector>

#include "support/import_patch.h"

using namespace std::string_literals;
using util_test::ImportPatch;

namespace {

// The socket library as a test wants it: what it grants, answers and was asked.
WORD version_granted;
int startup_result, startups, cleanups, name_result;
std::string host_name;   // raw bytes; the replaced call adds no NUL
hostent* lookup_result;  // null: the lookup fails
std::string name_looked_up;

int WINAPI startup(WORD version, WSADATA* data) {
    EXPECT_EQ(version, MAKEWORD(2, 0));
    ++startups;
    data->wVersion = version_granted;
    return startup_result;
}
int WINAPI cleanup() {
    ++cleanups;
    return 0;
}
int WINAPI name(char* buffer, int size) {
    EXPECT_EQ(size, 257);
    std::memcpy(buffer, host_name.data(), host_name.size());
    return name_result;
}
hostent* WINAPI lookup(const char* text) {
    name_looked_up = text;
    return lookup_result;
}

class ReplacedSocketsTest : public testing::Test {
  protected:
    void SetUp() override {
        version_granted = MAKEWORD(2, 0);
        startup_result = startups = cleanups = name_result = 0;
        host_name = "alpha\0"s;
        lookup_result = nullptr;
        errno = 77;
    }
    ImportPatch m_startup{"WSAStartup", startup}, m_cleanup{"WSACleanup", cleanup},
        m_name{"gethostname", name}, m_lookup{"gethostbyname", lookup};
};

using HostNameTest = ReplacedSocketsTest;
using AddressListTest = ReplacedSocketsTest;

TEST_F(HostNameTest, FitsAboveItsLengthAndHasANulOnlyWithoutADot) {
    const std::string longest(256, 'x');
    const struct {
        std::string name;     // as the socket library gives it
        std::string written;  // when size is above the length
        unsigned int length;
    } cases[] = {
        {"abcde.example.test\0"s, "abcde", 5},
        {"abcde.\0"s, "abcde", 5},
        {"abcde\0"s, "abcde\0"s, 5},
        {"\0"s, "\0"s, 0},
        {".test\0"s, "", 0},
        {longest + '\0', longest + '\0', 256},
        {longest + 'x', longest + "x\0"s, 257},  // no NUL within the private buffer
        {longest + '.', longest, 256},
    };
    for (const auto& c : cases) {
        host_name = c.name;
        for (const unsigned int size : {0u, c.length, c.length + 1, c.length + 2, ~0u}) {
            const bool fits = size > c.length;
            char buffer[300];
            std::memset(buffer, '#', sizeof buffer);
            const std::string expected = (fits ? c.written : "") + std::string(sizeof buffer, '#');
            EXPECT_EQ(ksl_gethostname(buffer, size), fits ? 0 : -1) << c.name << " in " << size;
            EXPECT_EQ(std::string(buffer, sizeof buffer), expected.substr(0, sizeof buffer))
                << c.name << " in " << size;
        }
    }
    EXPECT_EQ(cleanups, 0) << "the library stays started";
    EXPECT_EQ(errno, 77);
}

TEST_F(HostNameTest, LibraryIsStoppedOnlyWhenItGrantsAnotherVersion) {
    const struct {
        WORD version;
        int startup_result, name_result, cleanups;
    } failures[] = {
        {MAKEWORD(2, 0), WSASYSNOTREADY, 0, 0},
        {MAKEWORD(1, 1), 0, 0, 1},
        {MAKEWORD(2, 2), 0, 0, 1},
        {MAKEWORD(0, 2), 0, 0, 1},
        {MAKEWORD(2, 0), 0, SOCKET_ERROR, 0},
    };
    for (const auto& f : failures) {
        version_granted = f.version;
        startup_result = f.startup_result;
        name_result = f.name_result;
        cleanups = 0;
        char buffer[8] = "kept";
        EXPECT_EQ(ksl_gethostname(buffer, sizeof buffer), -1);
        EXPECT_EQ(cleanups, f.cleanups);
        EXPECT_STREQ(buffer, "kept");
    }
    EXPECT_EQ(errno, 77);
    startups = 0;
    EXPECT_EQ(ksl_gethostname(nullptr, 8), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(startups, 0);
}

// A lookup's answer with so many addresses: 10.0.0.0, 10.0.0.1, ...
class Answer {
  public:
    explicit Answer(int number, short length = 4) : m_bytes(size_t(number) * 4) {
        for (int i = 0; i < number; ++i) {
            char* address = &m_bytes[size_t(i) * 4];
            std::memcpy(address, address_of(i).data(), 4);
            m_list.push_back(address);
        }
        m_list.push_back(nullptr);
        m_host.h_addrtype = AF_INET;
        m_host.h_length = length;
        m_host.h_addr_list = m_list.data();
        lookup_result = &m_host;
    }
    ~Answer() { lookup_result = nullptr; }
    static std::string address_of(int i) { return {10, char(i >> 16), char(i >> 8), char(i)}; }

  private:
    std::vector<char> m_bytes;
    std::vector<char*> m_list;
    hostent m_host = {};
};

std::string records_of(int number) {
    std::string records;
    for (int i = 0; i < number; ++i) {
        std::string label = "le" + std::to_string(i);
        label.resize(17);
        records += label + Answer::address_of(i);
    }
    return records;
}

TEST_F(AddressListTest, WritesPackedRecordsUpToTheCallersNumber) {
    const struct {
        int addresses, max, count;
    } cases[] = {{3, 2, 2}, {3, 3, 3}, {2, 4, 2}, {1, 0, 0}, {0, 2, 0}, {100001, 100001, 100001}};
    host_name = "alpha.example.test\0"s;
    for (const auto& c : cases) {
        Answer answer(c.addresses);
        std::string records(size_t(c.max) * 21 + 21, '#');
        int count = -5;
        EXPECT_EQ(KslIpAddrList(c.max, &count, &records[0]), 0);
        EXPECT_EQ(count, c.count);
        std::string expected = records_of(c.count);
        expected.resize(size_t(c.max) * 21);
        EXPECT_TRUE(records == expected + std::string(21, '#')) << c.addresses << " in " << c.max;
    }
    EXPECT_EQ(name_looked_up, "alpha");
    EXPECT_EQ(errno, 77);
}

TEST_F(AddressListTest, FailuresLeaveNoRecords) {
    const auto expect_failure = [](const char* what) {
        std::string records(42, '#');
        int count = -5;
        EXPECT_EQ(KslIpAddrList(2, &count, &records[0]), -1) << what;
        EXPECT_EQ(count, 0) << what;
        EXPECT_EQ(records, std::string(42, '\0')) << what;
    };
    expect_failure("lookup");
    for (int length : {0, 1, 3, 16, -4}) {
        Answer answer(1, short(length));
        expect_failure("addresses that are not four bytes long");
    }
    Answer answer(1);
    host_name = std::string(256, 'x') + '\0';
    expect_failure("name too long");
    name_result = SOCKET_ERROR;
    expect_failure("host name");
    EXPECT_EQ(errno, 77);
}

TEST_F(AddressListTest, RefusedArgumentsTouchNothing) {
    char records[21] = "kept";
    int count = 5;
    const struct {
        int max, *count;
        char* records;
    } cases[] = {{1, nullptr, records},
                 {1, &count, nullptr},
                 {-1, &count, records},
                 {INT_MIN, &count, records},
                 {0, &count, nullptr}};
    for (const auto& c : cases) {
        errno = 0;
        EXPECT_EQ(KslIpAddrList(c.max, c.count, c.records), -1);
        EXPECT_EQ(errno, EINVAL);
    }
    EXPECT_EQ(count, 5);
    EXPECT_STREQ(records, "kept");
    EXPECT_EQ(startups, 0);
}

TEST(RealSocketsTest, AnswersAreThoseOfTheLibraryWhichStaysStarted) {
    EXPECT_EQ(socket(AF_INET, SOCK_DGRAM, 0), INVALID_SOCKET) << "not started yet";
    char short_name[256] = "";
    ASSERT_EQ(ksl_gethostname(short_name, sizeof short_name), 0);
    const SOCKET opened = socket(AF_INET, SOCK_DGRAM, 0);
    EXPECT_NE(opened, INVALID_SOCKET);
    closesocket(opened);

    char full_name[257] = "";
    ASSERT_EQ(gethostname(full_name, sizeof full_name), 0);
    EXPECT_EQ(short_name, std::string(full_name).substr(0, std::strcspn(full_name, ".")));

    int count;
    std::string records(21, '#');
    const int result = KslIpAddrList(1, &count, &records[0]);
    const hostent* host = gethostbyname(short_name);
    EXPECT_EQ(result, host ? 0 : -1);
    std::string expected = host ? "le0" : "";
    expected.resize(17);
    expected += host ? std::string(host->h_addr_list[0], 4) : std::string(4, '\0');
    EXPECT_EQ(records, expected);
}

}  // namespace
