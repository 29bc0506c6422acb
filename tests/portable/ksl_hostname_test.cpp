#include "util/portable/ksl_hostname.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <string>

#include "support/import_patch.h"

using namespace std::string_literals;
using util_test::ImportPatch;

namespace {

// The socket library as a test wants it: what it grants, answers and was asked.
WORD version_granted;
int startup_result, startups, cleanups, name_result;
std::string host_name;  // raw bytes; the replaced call adds no NUL
int addresses;          // negative: the lookup fails
short address_length;
std::string name_looked_up;

int WINAPI startup(WORD version, WSADATA* data) {
    EXPECT_EQ(version, MAKEWORD(2, 0));
    ++startups;
    data->wVersion = version_granted;
    return startup_result;
}
int WINAPI cleanup() {
    return ++cleanups;
}
int WINAPI name(char* buffer, int size) {
    EXPECT_EQ(size, 257);
    std::memcpy(buffer, host_name.data(), host_name.size());
    return name_result;
}
hostent* WINAPI lookup(const char* text) {
    static char bytes[] = "abcdefghijkl";
    static char* list[4];
    static hostent host;
    name_looked_up = text;
    for (int i = 0; i <= addresses; ++i)
        list[i] = i < addresses ? bytes + 4 * i : nullptr;
    host.h_addr_list = list;
    host.h_length = address_length;
    return addresses < 0 ? nullptr : &host;
}

class HostNameTest : public testing::Test {
  protected:
    void SetUp() override {
        version_granted = MAKEWORD(2, 0);
        startup_result = startups = cleanups = name_result = 0;
        host_name = "alpha.example.test\0"s;
        address_length = 4;
        errno = 77;
    }
    ImportPatch m_startup{"WSAStartup", startup}, m_cleanup{"WSACleanup", cleanup},
        m_name{"gethostname", name}, m_lookup{"gethostbyname", lookup};
};

TEST_F(HostNameTest, FitsAboveItsLengthAndHasANulOnlyWithoutADot) {
    const std::string longest(256, 'x');
    const struct {
        std::string name;     // as the socket library gives it
        std::string written;  // when size is above the length
        unsigned int length;
    } cases[] = {{"abcde.example.test\0"s, "abcde", 5},
                 {"abcde\0"s, "abcde\0"s, 5},
                 {".test\0"s, "", 0},
                 {longest + 'x', longest + "x\0"s, 257},  // no NUL within the private buffer
                 {longest + '.', longest, 256}};
    for (const auto& c : cases) {
        host_name = c.name;
        std::string buffer(300, '#');
        EXPECT_EQ(ksl_gethostname(&buffer[0], c.length), -1) << c.name;
        EXPECT_EQ(buffer, std::string(300, '#'));
        EXPECT_EQ(ksl_gethostname(&buffer[0], c.length + 1), 0) << c.name;
        EXPECT_EQ(buffer, c.written + std::string(300 - c.written.size(), '#'));
    }
    EXPECT_EQ(cleanups, 0) << "the library stays started";
}

TEST_F(HostNameTest, LibraryIsStoppedOnlyWhenItGrantsAnotherVersion) {
    const int failures[][4] = {// the version granted, two failures, the stops
                               {MAKEWORD(2, 0), WSASYSNOTREADY, 0, 0},
                               {MAKEWORD(2, 0), 0, SOCKET_ERROR, 0},
                               {MAKEWORD(2, 2), 0, 0, 1},
                               {MAKEWORD(0, 2), 0, 0, 1}};
    for (const auto& [version, start_failure, name_failure, stops] : failures) {
        version_granted = static_cast<WORD>(version);
        startup_result = start_failure;
        name_result = name_failure;
        cleanups = 0;
        char buffer[8] = "kept";
        EXPECT_EQ(ksl_gethostname(buffer, sizeof buffer), -1);
        EXPECT_EQ(cleanups, stops);
        EXPECT_STREQ(buffer, "kept");
    }
    EXPECT_EQ(errno, 77);
    EXPECT_EQ(ksl_gethostname(nullptr, 8), -1);
    EXPECT_EQ(errno, EINVAL);
}

TEST_F(HostNameTest, AddressesArePackedRecordsUpToTheCallersNumber) {
    const std::string zeros(14, '\0');
    const std::string all = "le0" + zeros + "abcdle1" + zeros + "efghle2" + zeros + "ijkl";
    const int cases[][3] = {{3, 2, 2}, {3, 3, 3}, {2, 3, 2}, {1, 0, 0}, {0, 2, 0}};
    for (const auto& [given, max, expected] : cases) {
        addresses = given;
        std::string records(84, '#');
        int count = -5;
        EXPECT_EQ(KslIpAddrList(max, &count, &records[0]), 0);
        EXPECT_EQ(count, expected);
        std::string bytes = all.substr(0, std::size_t(expected) * 21);
        bytes.resize(std::size_t(max) * 21);
        EXPECT_EQ(records, bytes + std::string(84 - bytes.size(), '#')) << given << " in " << max;
    }
    EXPECT_EQ(name_looked_up, "alpha");
}

TEST_F(HostNameTest, FailuresLeaveNoAddressesAndRefusedArgumentsTouchNothing) {
    // the addresses, their length, that of the host's name
    const int failures[][3] = {{-1, 4, 5}, {1, 3, 5}, {1, 16, 5}, {1, 4, 256}};
    for (const auto& [given, length, name_length] : failures) {
        addresses = given;
        address_length = static_cast<short>(length);
        host_name = std::string(std::size_t(name_length), 'x') + '\0';
        std::string records(42, '#');
        int count = -5;
        EXPECT_EQ(KslIpAddrList(2, &count, &records[0]), -1) << given << " of " << length;
        EXPECT_EQ(count, 0);
        EXPECT_EQ(records, std::string(42, '\0'));
    }
    EXPECT_EQ(errno, 77);
    startups = 0;
    char records[21] = "kept";
    int count = 5;
    EXPECT_EQ(KslIpAddrList(1, nullptr, records), -1);
    EXPECT_EQ(KslIpAddrList(-1, &count, records), -1);
    EXPECT_EQ(KslIpAddrList(0, &count, nullptr), -1);
    EXPECT_EQ(errno, EINVAL);
    EXPECT_EQ(count, 5);
    EXPECT_STREQ(records, "kept");
    EXPECT_EQ(startups, 0);
}

TEST(RealSocketsTest, AnswersAreThoseOfTheLibraryWhichStaysStarted) {
    char short_name[256] = "", full_name[257] = "";
    EXPECT_EQ(socket(AF_INET, SOCK_DGRAM, 0), INVALID_SOCKET) << "not started yet";
    ASSERT_EQ(ksl_gethostname(short_name, sizeof short_name), 0);
    EXPECT_NE(socket(AF_INET, SOCK_DGRAM, 0), INVALID_SOCKET);
    ASSERT_EQ(gethostname(full_name, sizeof full_name), 0);
    EXPECT_EQ(short_name, std::string(full_name).substr(0, std::strcspn(full_name, ".")));

    int count;
    char record[21];
    const hostent* host = gethostbyname(short_name);
    ASSERT_NE(host, nullptr);
    EXPECT_EQ(KslIpAddrList(1, &count, record), 0);
    EXPECT_EQ(std::memcmp(record + 17, host->h_addr_list[0], 4), 0);
}

}  // namespace
