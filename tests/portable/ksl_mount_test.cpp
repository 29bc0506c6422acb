#include "util/portable/ksl_mount.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

#include "support/import_patch.h"

using util_test::ImportPatch;

namespace {

constexpr std::size_t record_size = 1056;

// A machine made of these, behind the four calls through which the library sees drives.
struct Drive {
    std::string root;
    DWORD serial;
    std::string file_system;  // "" for a volume that does not answer
    UINT type;
};
std::vector<Drive> machine;
std::vector<Drive> plugged_in;  // joins it once the size of the list has been told
bool sizes_fail, lists_fail;

const Drive& drive(const char* root) {
    for (const Drive& d : machine)
        if (d.root == root) return d;
    throw std::runtime_error(root);
}
DWORD WINAPI fake_mask() {
    return (1u << machine.size()) - 1;
}
DWORD WINAPI fake_list(DWORD room, LPSTR out) {
    std::string list;
    for (const Drive& d : machine)
        list += d.root + '\0';
    machine.insert(machine.end(), plugged_in.begin(), plugged_in.end());
    plugged_in.clear();
    if (room ? lists_fail : sizes_fail) return 0;
    if (room <= list.size()) return static_cast<DWORD>(list.size() + 1);
    std::memcpy(out, list.c_str(), list.size() + 1);
    return static_cast<DWORD>(list.size());
}
BOOL WINAPI fake_volume(LPCSTR root, LPSTR, DWORD, LPDWORD serial, LPDWORD, LPDWORD, LPSTR out,
                        DWORD room) {
    const Drive& d = drive(root);
    *serial = d.serial;
    if (d.file_system.empty() || d.file_system.size() >= room) return FALSE;
    std::strcpy(out, d.file_system.c_str());
    return TRUE;
}
UINT WINAPI fake_type(LPCSTR root) {
    return drive(root).type;
}

void* no_block(size_t) {
    return nullptr;
}

class MountTest : public testing::Test {
  protected:
    void SetUp() override {
        machine = {{"C:\\", 0x43000000, "NTFS", DRIVE_FIXED},
                   {"D:\\", 7, "", DRIVE_CDROM},
                   {"E:\\", 0xFEDCBA98, "FAT32", DRIVE_REMOVABLE}};
        plugged_in.clear();
        sizes_fail = lists_fail = false;
    }

    // Room for capacity records and one more that nobody may touch.
    int fetch(int capacity) {
        m_records.assign(record_size * std::size_t(capacity + 1), '\xA5');
        m_capacity = capacity;
        return ksl_getMntData(m_records.data(), &m_capacity);
    }
    std::string m_records;
    int m_capacity = 0;

  private:
    ImportPatch m_mask{"GetLogicalDrives", fake_mask};
    ImportPatch m_list{"GetLogicalDriveStringsA", fake_list};
    ImportPatch m_volume{"GetVolumeInformationA", fake_volume};
    ImportPatch m_type{"GetDriveTypeA", fake_type};
};

std::string record(const char* serial, const char* root, const char* file_system,
                   const std::string& type) {
    std::string bytes(record_size, '\xA5');
    const auto put = [&](std::size_t offset, const std::string& text) {
        bytes.replace(offset, text.size() + 1, text.c_str(), text.size() + 1);
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
    EXPECT_EQ(m_capacity, 3);
    const std::string untouched(record_size * 2, '\xA5');
    EXPECT_TRUE(m_records == record("1124073472", "C:\\", "NTFS", "rw") +
                                 record("-19088744", "E:\\", "FAT32", "removable") + untouched);
}

TEST_F(MountTest, NamesTheTypeOfTheDrive) {
    const char* const texts[] = {"unknown", "",     "removabl", "rw",
                                 "nfs",     "cdfs", "ramdisk",  "\xA5\xA5\xA5\xA5\xA5\xA5\xA5\xA5"};
    for (UINT type = 0; type < std::size(texts); ++type) {
        machine = {{"C:\\", 0, "NTFS", type}};
        ASSERT_EQ(fetch(1), 1);
        EXPECT_STREQ(&m_records[1040], texts[type]) << type;
        EXPECT_EQ(m_records[1048], '\0') << type;
        EXPECT_EQ(m_records[1050], '\xA5') << type;
    }
}

TEST_F(MountTest, SaysHowManyRecordsAreNeeded) {
    for (int capacity : {2, 0, -1, -2147483647}) {
        m_capacity = capacity;
        EXPECT_EQ(ksl_getMntData(nullptr, &m_capacity), 0);
        EXPECT_EQ(m_capacity, 3);
    }
    EXPECT_EQ(ksl_getMntData(nullptr, &m_capacity), -1) << "nowhere to write";
    EXPECT_EQ(ksl_getMntData(nullptr, nullptr), -1);
}

TEST_F(MountTest, DrivesThatArriveMeanwhileNeverOverrunTheArray) {
    const std::vector<Drive> more = {{"F:\\", 1, "NTFS", DRIVE_FIXED},
                                     {"G:\\", 2, "NTFS", DRIVE_FIXED}};
    for (int capacity : {3, 4}) {
        SetUp();
        plugged_in = more;
        EXPECT_EQ(fetch(capacity), capacity);
        EXPECT_EQ(m_records.substr(record_size * std::size_t(capacity)),
                  std::string(record_size, '\xA5'));
    }
}

TEST_F(MountTest, FailsWithoutDrivesListOrMemory) {
    {
        ImportPatch patch("malloc", no_block);
        EXPECT_EQ(fetch(3), -1);
    }
    sizes_fail = true;
    EXPECT_EQ(fetch(3), -1);
    sizes_fail = false;
    lists_fail = true;
    EXPECT_EQ(fetch(3), -1);
    machine.clear();
    EXPECT_EQ(ksl_getNumMntStructures(), -1);
    EXPECT_EQ(fetch(3), -1);
}

TEST(RealMountTest, PassesOverADriveThatDoesNotAnswer) {
    ksl_mount_record records[26];
    int capacity = 26;
    auto* bytes = reinterpret_cast<char*>(records);
    const int answering = ksl_getMntData(bytes, &capacity);
    EXPECT_GT(answering, 0);
    EXPECT_STREQ(records[0].root, "C:\\");
    const int drives = ksl_getNumMntStructures();
    ASSERT_TRUE(DefineDosDeviceA(DDD_RAW_TARGET_PATH, "N:", "\\Device\\NoSuch"));
    EXPECT_EQ(ksl_getNumMntStructures(), drives + 1);
    EXPECT_EQ(ksl_getMntData(bytes, &capacity), answering);
    EXPECT_TRUE(DefineDosDeviceA(DDD_REMOVE_DEFINITION, "N:", nullptr));
}

}  // namespace
