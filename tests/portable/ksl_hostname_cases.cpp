#include "util/portable/ksl_hostname.h"

#include "support/cases.h"
#include "support/import_patch.h"

using namespace util_test;

namespace {

// Replaces the socket library, so that a case can choose its version and answers.
struct World : CaseWorld {
    // The result and the bytes written; "kept" if that is none of them.
    Words host_name(unsigned size) {
        std::string buffer(300, '#');
        const int result = errno_kept([&] { return ksl_gethostname(buffer.data(), size); });
        return said(result, of(buffer));
    }
    // Also returns the number of records. `[]` is a record of 21 NULs, `-` is 14 NULs.
    Words addresses(int max) {
        std::string records(100, '#');
        int count = -5;
        const int result = errno_kept([&] { return KslIpAddrList(max, &count, records.data()); });
        for (const auto& [nuls, mark] : {std::pair(21, "[]"), std::pair(14, "-")}) {
            const std::string run(std::size_t(nuls), '\0');
            for (std::size_t at; (at = records.find(run)) != records.npos;)
                records.replace(at, run.size(), mark);
        }
        return said(result, of(records), count);
    }
    static std::string of(const std::string& buffer) {
        const std::size_t end = buffer.find_last_not_of('#');
        return end == buffer.npos ? "kept" : buffer.substr(0, end + 1);
    }
    template <typename Call>
    static int errno_kept(Call make) {
        errno = 77;
        const int result = make();
        EXPECT_EQ(errno, 77);
        return result;
    }
    Words null_arguments() {
        int count = 5;
        char record[21] = "kept";
        errno = 77;
        const int unnamed = ksl_gethostname(nullptr, 8);
        Words words = said(unnamed, errno);
        for (const int missing : {0, 1, 2}) {
            errno = 77;
            const int result = KslIpAddrList(missing == 2 ? -1 : 1, missing == 0 ? nullptr : &count,
                                             missing == 1 ? nullptr : record);
            words = said(words, result, errno);
        }
        return said(words, count, record);
    }

    WORD version = MAKEWORD(2, 0);
    int start_result = 0, name_result = 0, starts = 0, stops = 0;
    std::string name = std::string("alpha.example.test\0", 19), looked_up;
    int address_count = 0;  // negative: the lookup fails
    short address_length = 4;
    char bytes[13] = "abcdefghijkl";
    char* list[4] = {};
    hostent host = {};

    const ImportPatch start{"WSAStartup", [this](WORD wanted, WSADATA* data) {
                                EXPECT_EQ(wanted, MAKEWORD(2, 0));
                                ++starts;
                                data->wVersion = version;
                                return start_result;
                            }};
    const ImportPatch stop{"WSACleanup", [this] { return ++stops; }};
    const ImportPatch get_name{"gethostname", [this](char* buffer, int size) {
                                   EXPECT_EQ(size, 257);
                                   name.copy(buffer, name.size());
                                   return name_result;
                               }};
    const ImportPatch look_up{"gethostbyname", [this](const char* text) -> hostent* {
                                  looked_up = text;
                                  for (int i = 0; i <= address_count; ++i)
                                      list[i] = i < address_count ? bytes + 4 * i : nullptr;
                                  host.h_addr_list = list;
                                  host.h_length = address_length;
                                  return address_count < 0 ? nullptr : &host;
                              }};
};

const Cases<World> cases(
    "portable/ksl_hostname.cases",
    {
        call("named", [](World& w, const std::string& name) { w.name = name; }),
        call("grants", [](World& w, int major, int minor) { w.version = MAKEWORD(major, minor); }),
        call("start_fails", [](World& w) { w.start_result = WSASYSNOTREADY; }),
        call("name_fails", [](World& w) { w.name_result = SOCKET_ERROR; }),
        call("has_addresses",
             [](World& w, int count, int length) {
                 w.address_count = count;
                 w.address_length = static_cast<short>(length);
             }),
        call("host_name", &World::host_name),
        call("addresses", &World::addresses),
        call("null_arguments", &World::null_arguments),
        call("looked_up", [](World& w) { return w.looked_up; }),
        call("starts", [](World& w) { return w.starts; }),
        call("stops", [](World& w) { return w.stops; }),
    });

}  // namespace
