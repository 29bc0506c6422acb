#include "drives.h"

#include "output.h"

namespace {

const char* type_text(const String& type) {
    if (type == "rw") return "fixed";
    if (type == "nfs") return "network";
    if (type == "cdfs") return "CD-ROM";
    if (type == "ramdisk") return "RAM disk";
    if (type.empty()) return "no disk";
    return type == "removabl" ? "removable" : "unknown";
}

}  // namespace

std::vector<Drive> drives() {
    int capacity = 26;  // a drive is a letter
    std::vector<ksl_mount_record> records(26);
    const int count = ksl_getMntData(reinterpret_cast<char*>(records.data()), &capacity);
    std::vector<Drive> drives;
    for (int i = 0; i < count; ++i) {
        const ksl_mount_record& record = records[i];
        double kilobytes = 0;
        const bool known = XrDirectory(record.root).getFreeSpace(&kilobytes) == 0;
        drives.push_back({record.root, type_text(record.type), record.file_system,
                          known ? size_text(kilobytes * 1024) : "?"});
    }
    return drives;
}
