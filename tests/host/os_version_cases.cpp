#include "util/host/os_version.h"

#include "support/cases.h"
#include "support/import_patch.h"

using namespace util_test;

namespace {

// A version as it is written: 5.2.
struct Version {
    explicit Version(const std::string& word) {
        char more;
        if (std::sscanf(word.c_str(), "%lu.%lu%c", &major, &minor, &more) != 2)
            throw CaseError("not a version: " + word);
    }
    unsigned long major = 0, minor = 0;
};

// Fields of a version as they are written: "sp 1, type 3". The service pack has a minor number.
class Fields {
  public:
    explicit Fields(std::string list) {
        std::replace(list.begin(), list.end(), ',', ' ');
        std::istringstream words(list);
        for (std::string name; words >> name;) {
            const std::set<std::string> names = {"sp", "minor", "type", "r2"};
            if (names.count(name) == 0) throw CaseError("no such field: " + name);
            std::string number;
            words >> number;
            m_numbers[name] = argument<WORD>(number);
        }
    }
    WORD get(const char* name, WORD otherwise) const {
        const auto found = m_numbers.find(name);
        return found == m_numbers.end() ? otherwise : found->second;
    }

  private:
    std::map<std::string, WORD> m_numbers;
};

// Replaces the calls for the version, so that a case can choose any edition and version.
struct World : CaseWorld {
    World() { current = this; }
    void windows(const std::string& platform, const Version& version, const Fields& fields) {
        const std::string platforms[] = {"3.x", "9x", "nt", "other"};
        const auto found = std::find(std::begin(platforms), std::end(platforms), platform);
        if (found == std::end(platforms)) throw CaseError("no such platform: " + platform);
        record = {};
        record.dwPlatformId = static_cast<DWORD>(found - platforms);
        record.dwMajorVersion = version.major;
        record.dwMinorVersion = version.minor;
        record.wServicePackMajor = fields.get("sp", 0);
        record.wServicePackMinor = fields.get("minor", 7);
        record.wProductType = static_cast<BYTE>(fields.get("type", 0));
        answers = true;
    }
    // The result of switching the redirection, and the calls made for it.
    Words switch_off() {
        void** const old = reinterpret_cast<void**>(&state);
        const int result = UTIL_VornWow64DisableWow64FsRedirection(old);
        return said(result, std::exchange(log, ""));
    }
    Words switch_on() {
        const int result = UTIL_VornWow64RevertWow64FsRedirection(&state);
        return said(result, std::exchange(log, ""));
    }
    static BOOL WINAPI tell_emulation(HANDLE, BOOL* answer) {
        *answer = current->emulated;
        SetLastError(77);
        return current->tells;
    }
    static BOOL WINAPI switch_redirection(int* state) {
        current->log += "call " + std::to_string(++*state) + " ";
        return 5;
    }

    // kernel32: what it exports, loads and tells about the emulation, and the calls made of it.
    static inline World* current = nullptr;
    bool exports_question = true, exports_switch = true;
    BOOL tells = TRUE, emulated = TRUE;
    int state = 0;
    std::string log;
    const ImportPatch entry{
        "GetProcAddress", [this](HMODULE, const char* name) -> void* {
            if (name == std::string("IsWow64Process"))
                return exports_question ? reinterpret_cast<void*>(tell_emulation) : nullptr;
            log += name + std::string(" ");
            return exports_switch ? reinterpret_cast<void*>(switch_redirection) : nullptr;
        }};
    const ImportPatch release{"FreeLibrary", [this] {
                                  log += "free ";
                                  return TRUE;
                              }};

    std::optional<ImportPatch> library;

    OSVERSIONINFOEXA record = {};
    bool answers = false;
    int r2_metric = 0;

    const ImportPatch query{"GetVersionExA", [this](OSVERSIONINFOA* out) {
                                const DWORD size = out->dwOSVersionInfoSize;
                                if (!answers || (size != 148 && size != 156)) return FALSE;
                                std::memcpy(out, &record, size);
                                return TRUE;
                            }};
    const ImportPatch metric{"GetSystemMetrics",
                             [this](int index) { return index == 89 ? r2_metric : 0; }};
};

// The result, the stored version, and whether the system is equal to it.
Words version() {
    unsigned long major = 77, minor = 77;
    unsigned short sp = 77, sp_minor = 77, type = 77, r2 = 77;
    const int result = UTIL_GetOsVersion(&major, &minor, &sp, &sp_minor, &type, &r2);
    std::ostringstream told;
    told << major << '.' << minor << " sp " << sp << '.' << sp_minor << " type " << type;
    told << " r2 " << r2;
    return said(result, told.str(), UTIL_IsOSVersionEqualTo(major, minor, sp, sp_minor, type, r2));
}
int at_least(const Version& least) {
    return UTIL_IsOSVersionAtLeast(least.major, least.minor);
}
// A field that is left out is "any".
int equal(const Version& to, const Fields& fields) {
    constexpr WORD any = 0xFFFF;
    return UTIL_IsOSVersionEqualTo(to.major, to.minor, fields.get("sp", any),
                                   fields.get("minor", any), fields.get("type", any),
                                   fields.get("r2", any));
}
int nothing_asked() {
    return UTIL_GetOsVersion(nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
}
Words flags() {
    return said("enterprise", UTIL_IsEnterpriseEdition(), "2003_sp1", UTIL_IsWin2k3SP_1_Or_Later(),
                "transportable", UTIL_IsVSSTransportableSupported());
}
Words is_wow64() {
    unsigned char flag = 7;
    const unsigned long result = UTIL_getIsWow64(&flag);
    return said(result, int(flag));
}

const char version_failure[] =
    "-1 \"77.77 sp 77.77 type 77 r2 77\" ... | 0 \"5.2 sp 1.7 type 3 r2 0\" ... | "
    "0 \"5.2 sp 1.7 type 3 r2 1\" 0 | 0 ... -1";
const char switch_failure[] = "1 \"\" | 0 \"\" | 0 \"free \"";

const Cases<World> cases(
    "host/os_version.cases",
    {
        call("windows", &World::windows),
        call("edition",
             [](World& w, WORD suite, int r2_metric) {
                 w.record.wSuiteMask = suite;
                 w.r2_metric = r2_metric;
             }),
        call("version", version_failure, version),
        call("platform", "0 Windows | 0 before", UTIL_getPlatform),
        call("flags", "enterprise -1 ... | ... 2003_sp1 -1 ... | ... false", flags),
        call("at_least", "-1", at_least),
        call("equal", "-1 | 0", equal),
        call("no_question", [](World& w) { w.exports_question = false; }),
        call("no_answer", [](World& w) { w.tells = FALSE; }),
        call("emulated", [](World& w, int answer) { w.emulated = answer; }),
        call("no_library", [](World& w) { w.library.emplace("LoadLibraryA", fails<0>); }),
        call("no_switch", [](World& w) { w.exports_switch = false; }),
        call("is_wow64", "0 0", is_wow64),
        call("is_wow64_nowhere", [] { return UTIL_getIsWow64(nullptr); }),
        call("switch_off", switch_failure, &World::switch_off)
            .keeps(1, "module references", "5 ..."),
        call("switch_on", switch_failure, &World::switch_on).keeps(1, "module references", "5 ..."),
        call("nothing_asked", nothing_asked),
    });

}  // namespace
