#include "util/portable/ksl_hostname.h"

#include "support/test.h"
#include "util/internal/windows.h"

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
