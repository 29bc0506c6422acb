#include "util/portable/ksl_mount.h"

#include "support/cases.h"
#include "support/import_patch.h"

using namespace util_test;

namespace {

constexpr std::size_t record_size = 1056, kind_size = 8;  // with a NUL after the kind

struct Drive {
    int serial;
    std::string file_system;  // "" for a volume that does not answer
    UINT type;
};

// A machine with made-up drives, from C: on. The calls that the library makes see them.
struct World : CaseWorld {
    // The number of records; of each, the serial number, the root, the file system and the kind.
    // Nothing else may be written: not after the texts, nor in one record more.
    Words records(int capacity) {
        const int given = capacity;
        std::string bytes(record_size * std::size_t(capacity + 1), '\xA5');
        const int count = ksl_getMntData(bytes.data(), &capacity);
        EXPECT_EQ(capacity, given);
        Words words = said(count);
        for (int i = 0; i < count; ++i) {
            char* const record = bytes.data() + record_size * std::size_t(i);
            for (const std::size_t field : {0, 260, 520, 1040}) {
                const std::string text(record + field,
                                       strnlen(record + field, field == 1040 ? kind_size : 20));
                const std::size_t nul = field == 1040 && text.size() == kind_size ? 0 : 1;
                words.push_back(text);
                std::memset(record + field, '\xA5', text.size() + nul);
            }
            record[1048] = record[1048] == '\0' ? '\xA5' : '!';
            // "removable" is cut by that NUL, and has its own after it.
            if (words.back() == "removabl") record[1049] = record[1049] == '\0' ? '\xA5' : '!';
        }
        EXPECT_EQ(bytes.find_first_not_of('\xA5'), std::string::npos);
        return words;
    }
    // Whether the user may be asked for a disk meanwhile, and whether the mode is put back.
    Words asks() {
        DWORD before;
        SetThreadErrorMode(SEM_NOOPENFILEERRORBOX, &before);
        asked = false;
        records(3);
        const bool kept = GetThreadErrorMode() == DWORD(SEM_NOOPENFILEERRORBOX);
        SetThreadErrorMode(before, nullptr);
        return said(asked, kept);
    }

    std::vector<Drive> machine, plugged_in;  // the latter join when the list's size has been told
    bool list_fails = false, asked = false;

    const ImportPatch mask{"GetLogicalDrives", [this] { return (1u << machine.size()) - 1; }};
    const ImportPatch list{"GetLogicalDriveStringsA", [this](DWORD room, char* out) -> DWORD {
                               std::string roots;
                               for (std::size_t i = 0; i < machine.size(); ++i)
                                   roots += {char('C' + i), ':', '\\', '\0'};
                               machine.insert(machine.end(), plugged_in.begin(), plugged_in.end());
                               plugged_in.clear();
                               if (room != 0 && list_fails) return 0;
                               if (room <= roots.size()) return DWORD(roots.size() + 1);
                               std::memcpy(out, roots.c_str(), roots.size() + 1);
                               return DWORD(roots.size());
                           }};
    const ImportPatch volume{
        "GetVolumeInformationA",
        [this](const char* root, char*, DWORD, DWORD* serial, DWORD*, DWORD*, char* out, DWORD) {
            const Drive& drive = machine.at(root[0] - 'C');
            asked |= !(GetThreadErrorMode() & SEM_FAILCRITICALERRORS);
            *serial = DWORD(drive.serial);
            std::strcpy(out, drive.file_system.c_str());
            return BOOL(!drive.file_system.empty());
        }};
    const ImportPatch type{"GetDriveTypeA",
                           [this](const char* root) { return machine.at(root[0] - 'C').type; }};
};

template <std::vector<Drive> World::*drives>
void add(World& w, int serial, const std::string& file_system, UINT type) {
    (w.*drives).push_back({serial, file_system, type});
}

const Cases<World> cases("portable/ksl_mount.cases",
                         {
                             call("drive", add<&World::machine>),
                             call("plug_in", add<&World::plugged_in>),
                             call("no_drives", [](World& w) { w.machine.clear(); }),
                             call("fail_list", [](World& w) { w.list_fails = true; }),
                             call("drives", ksl_getNumMntStructures),
                             call("records", &World::records),
                             call("needed",
                                  [](int capacity) {
                                      const int result = ksl_getMntData(nullptr, &capacity);
                                      return said(result, capacity);
                                  }),
                             call("no_arguments", [] { return ksl_getMntData(nullptr, nullptr); }),
                             call("asks", &World::asks),
                         });

}  // namespace
