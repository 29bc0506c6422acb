#include "util/portable/ksl_mount.h"

#include <cstddef>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <memory>
#include <new>

#include "util/internal/encoding.h"
#include "util/internal/kept_errors.h"
#include "util/internal/windows.h"

// Programs hold arrays of these records, so the layout never changes.
static_assert(sizeof(ksl_mount_record) == 1056);
static_assert(offsetof(ksl_mount_record, root) == 260);
static_assert(offsetof(ksl_mount_record, file_system) == 520);
static_assert(offsetof(ksl_mount_record, unused) == 780);
static_assert(offsetof(ksl_mount_record, type) == 1040);

namespace {

// Returns the root paths of the drives, each with its NUL, and another NUL after the last. Returns
// null on failure. The list may grow between the call for its size and the call that fetches it.
std::unique_ptr<char[]> root_list() {
    DWORD room = GetLogicalDriveStringsA(0, nullptr);
    if (room == 0) return nullptr;
    for (;;) {
        std::unique_ptr<char[]> list(new (std::nothrow) char[std::size_t{room} + 2]);
        if (!list) return nullptr;
        const DWORD length = GetLogicalDriveStringsA(room, list.get());
        if (length == 0 && room > 1) return nullptr;  // 1 is the size of an empty list
        if (length <= room) {
            list[length] = list[length + 1] = '\0';  // also when the platform wrote none
            return list;
        }
        room = length + 1;
    }
}

const char* type_text(UINT type) {
    switch (type) {
        case DRIVE_UNKNOWN:
            return "unknown";
        case DRIVE_NO_ROOT_DIR:
            return "";
        case DRIVE_REMOVABLE:
            return "removable";
        case DRIVE_FIXED:
            return "rw";
        case DRIVE_REMOTE:
            return "nfs";
        case DRIVE_CDROM:
            return "cdfs";
        case DRIVE_RAMDISK:
            return "ramdisk";
        default:
            return nullptr;
    }
}

// Suppresses the insert-disk dialog on this thread: a call for an empty drive fails at once. The
// dialog would wait for a user, and an agent has none.
class NoInsertDiskBox {
  public:
    NoInsertDiskBox() { SetThreadErrorMode(SEM_FAILCRITICALERRORS, &m_before); }
    ~NoInsertDiskBox() {
        const util::KeptErrors kept;
        SetThreadErrorMode(m_before, nullptr);
    }
    NoInsertDiskBox(const NoInsertDiskBox&) = delete;
    NoInsertDiskBox& operator=(const NoInsertDiskBox&) = delete;

  private:
    DWORD m_before = 0;
};

// Writes the name of the file system, which the ANSI call returned as `ansi`, or "" if it does not
// convert. `root` is a letter, a colon and a backslash, so it is UTF-8 as it is.
void write_file_system(const char* root, const char* ansi, ksl_mount_record* record) {
    wchar_t twin[260] = {};
    util::WideText wide_root;
    util::NarrowText name;
    if (util::utf8_to_wide(root, wide_root) == util::Conversion::done) {
        GetVolumeInformationW(wide_root.c_str(), nullptr, 0, nullptr, nullptr, nullptr, twin,
                              static_cast<DWORD>(std::size(twin)));
    }
    const auto result = util::ansi_to_utf8(ansi, twin, util::Page::files, name);
    std::snprintf(record->file_system, sizeof record->file_system, "%s",
                  result == util::Conversion::done ? name.c_str() : "");
}

// Fills the record of a drive. Returns false, with `record` unchanged, if its volume does not
// answer.
bool describe(const char* root, ksl_mount_record* record) {
    char volume_name[260];
    char file_system[260];
    DWORD serial = 0;
    if (!GetVolumeInformationA(root, volume_name, sizeof volume_name, &serial, nullptr, nullptr,
                               file_system, sizeof file_system)) {
        return false;
    }
    std::snprintf(record->serial, sizeof record->serial, "%ld", static_cast<long>(serial));
    std::snprintf(record->root, sizeof record->root, "%s", root);
    write_file_system(root, file_system, record);
    if (const char* type = type_text(GetDriveTypeA(root))) {
        std::snprintf(record->type, sizeof record->type, "%s", type);
    }
    record->type[8] = '\0';
    return true;
}

}  // namespace

int ksl_getNumMntStructures() {
    int count = 0;
    for (DWORD mask = GetLogicalDrives(); mask != 0; mask &= mask - 1)
        ++count;
    return count > 0 ? count : -1;
}

int ksl_getMntData(char* records, int* capacity) {
    if (!capacity) return -1;
    const int drives = ksl_getNumMntStructures();
    if (drives < 0) return -1;
    if (drives > *capacity) {
        *capacity = drives;
        return 0;
    }
    if (!records) return -1;

    const std::unique_ptr<char[]> roots = root_list();
    if (!roots) return -1;
    const NoInsertDiskBox no_box;
    int written = 0;
    auto* record = reinterpret_cast<ksl_mount_record*>(records);
    for (const char* root = roots.get(); *root && written < *capacity;
         root += std::strlen(root) + 1) {
        if (describe(root, record + written)) ++written;
    }
    return written;
}
