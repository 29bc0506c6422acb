#include "util/portable/ksl_mount.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <string>
#include <vector>

#include "support/import_patch.h"

using util_test::ImportPatch;

namespace {

constexpr std::size_t record_size = 1056;

// A machine made of these, from C: on, behind the four calls through which the library sees drives.
struct Drive {
    DWORD serial;
    std::string file_system;  // "" for a volume that does not answer
    UINT type;
};
std::vector<Drive> machine, plugged_in;  // the latter join once the size of the list has been told
bool lists_fail, may_ask_the_user;

DWORD WINAPI fake_mask() {
    return (1u << machine.size()) - 1;
}
DWORD WINAPI fake_list(DWORD room, LPSTR out) {
    std::string list;
    for (std::size_t i = 0; i < machine.size(); ++i)
        list += {char('C' + i), ':', '\\', '\0'};
    machine.insert(machine.end(), plugged_in.begin(), plugged_in.end());
    plugged_in.clear();
    if (room && lists_fail) return 0;
    if (room <= list.size()) return static_cast<DWORD>(list.size() + 1);
    std::memcpy(out, list.c_str(), list.size() + 1);
    return static_cast<DWORD>(list.size());
}
BOOL WINAPI fake_volume(LPCSTR root, LPSTR, DWORD, LPDWORD serial, LPDWORD, LPDWORD, LPSTR out,
                        DWORD) {
    const Drive& drive = machine.at(root[0] - 'C');
    may_ask_the_user |= !(GetThreadErrorMode() & SEM_FAILCRITICALERRORS);
    *serial = drive.serial;
    std::strcpy(out, drive.file_system.c_str());
    return !drive.file_system.empty();
}
UINT WINAPI fake_type(LPCSTR root) {
    return machine.at(root[0] - 'C').type;
}
class MountTest : public testing::Test {
  protected:
    void SetUp() override {
        machine = {{0x43000000, "NTFS", DRIVE_FIXED},
                   {7, "", DRIVE_CDROM},
                   {0xFEDCBA98, "FAT32", DRIVE_REMOVABLE}};
    }

    // Room for capacity records and one more that nobody may touch.
    int fetch(int capacity) {
        m_records.assign(record_size * std::size_t(capacity + 1), '\xA5');
        return ksl_getMntData(m_records.data(), &capacity);
    }
    std::string m_records;

  private:
    ImportPatch m_mask{"GetLogicalDrives", fake_mask}, m_list{"GetLogicalDriveStringsA", fake_list},
        m_volume{"GetVolumeInformationA", fake_volume}, m_type{"GetDriveTypeA", fake_type};
};

std::string record(const char* serial, const char* root, const char* file_system,
                   const char* type) {
    std::string bytes(record_size, '\xA5');
    const auto put = [&](std::size_t offset, const char* text) {
        bytes.replace(offset, std::strlen(text) + 1, text, std::strlen(text) + 1);
    };
    put(0, serial);
    put(260, root);
    put(520, file_system);
    put(1040, type);
    bytes[1048] = '\0';
    return bytes;
}

TEST_F(MountTest, WritesTheseBytesAndNoOthers) {
    EXPECT_EQ(ksl_getNumMntStructures(), 3);
    ASSERT_EQ(fetch(3), 2) << "a drive whose volume does not answer has no record";
    EXPECT_TRUE(m_records == record("1124073472", "C:\\", "NTFS", "rw") +
                                 record("-19088744", "E:\\", "FAT32", "removable") +
                                 std::string(record_size * 2, '\xA5'));
    const char* const texts[] = {"unknown", "",     "removabl", "rw",
                                 "nfs",     "cdfs", "ramdisk",  "\xA5\xA5\xA5\xA5\xA5\xA5\xA5\xA5"};
    for (UINT type = 0; type < std::size(texts); ++type) {
        machine = {{0, "F\xC4", type}};
        ASSERT_EQ(fetch(1), 1);
        EXPECT_STREQ(&m_records[520], "F\xC3\x84") << "in UTF-8";
        EXPECT_STREQ(&m_records[1040], texts[type]) << type;
        EXPECT_EQ(m_records[1048], '\0') << type;
    }
}

TEST_F(MountTest, NeverAsksTheUserForADisk) {
    DWORD before;
    ASSERT_TRUE(SetThreadErrorMode(SEM_NOOPENFILEERRORBOX, &before));
    may_ask_the_user = false;
    EXPECT_EQ(fetch(3), 2);
    EXPECT_FALSE(may_ask_the_user);
    EXPECT_EQ(GetThreadErrorMode(), static_cast<DWORD>(SEM_NOOPENFILEERRORBOX)) << "put back";
    SetThreadErrorMode(before, nullptr);
}

TEST_F(MountTest, SaysHowManyRecordsAreNeededAndNeverOverrunsTheArray) {
    int capacity = 0;
    for (int given : {2, 0, -2147483647}) {
        capacity = given;
        EXPECT_EQ(ksl_getMntData(nullptr, &capacity), 0);
        EXPECT_EQ(capacity, 3);
    }
    EXPECT_EQ(ksl_getMntData(nullptr, &capacity), -1) << "nowhere to write";
    EXPECT_EQ(ksl_getMntData(nullptr, nullptr), -1);
    plugged_in = {{1, "NTFS", DRIVE_FIXED}, {2, "NTFS", DRIVE_FIXED}};
    EXPECT_EQ(fetch(3), 3);
    EXPECT_EQ(m_records.substr(record_size * 3), std::string(record_size, '\xA5'));
}

TEST_F(MountTest, FailsWithoutDrivesOrTheirList) {
    lists_fail = true;
    EXPECT_EQ(fetch(3), -1);
    lists_fail = false;
    machine.clear();
    EXPECT_EQ(ksl_getNumMntStructures(), -1);
    EXPECT_EQ(fetch(3), -1);
}

}  // namespace
