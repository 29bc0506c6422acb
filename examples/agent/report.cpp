#include "report.h"

#include <algorithm>
#include <ctime>

#include "drives.h"
#include "output.h"

namespace {

const char* const server_key = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
const char* const no_answer = "the system does not answer";

// Names are words of ASCII letters and digits. None is the end of another one: UTIL_extractTag
// would take "C:\" from <system_path> for an element "path".
struct Finding {
    String name;
    String value;   // empty when there is none
    String reason;  // why, then

    bool is_missing() const { return value.empty(); }
};

using Findings = std::vector<Finding>;

String version() {
    unsigned long major = 0;
    unsigned long minor = 0;
    unsigned short pack = 0;
    unsigned short pack_minor = 0;
    unsigned short type = 0;
    unsigned short r2 = 0;
    if (UTIL_GetOsVersion(&major, &minor, &pack, &pack_minor, &type, &r2) != 0) return "";
    String text = String::format("%lu.%lu", major, minor);
    if (r2 != 0) text += " R2";
    if (pack != 0) text += String::format(", service pack %d.%d", pack, pack_minor);
    const char* const types[] = {"unknown type", "workstation", "domain controller", "server"};
    return text + ", " + types[type <= 3 ? type : 0];
}

String edition() {
    const int is_enterprise = UTIL_IsEnterpriseEdition();
    if (is_enterprise < 0) return "";
    return is_enterprise ? "Enterprise or Datacenter" : "neither Enterprise nor Datacenter";
}

void add_system(Findings& findings) {
    String platform;
    UTIL_getPlatform(platform);
    findings.push_back({"platform", platform, no_answer});
    findings.push_back({"version", version(), no_answer});
    findings.push_back({"edition", edition(), no_answer});

    const bool clustered = UTIL_IsCluster();
    String reason;
    UTIL_FormatMessage(reason);  // only of interest when there is none
    findings.push_back({"cluster", clustered ? "installed" : "", reason.trim("\r\n ")});

    unsigned char emulated = 0;
    const unsigned long error = UTIL_getIsWow64(&emulated);
    const char* const value = emulated ? "32-bit program on 64-bit Windows" : "none";
    findings.push_back({"emulation", error == 0 ? value : "", String::format("error %lu", error)});
}

void add_directories(Findings& findings) {
    findings.push_back({"temporary directory", UTIL_GetTempDirectory(), no_answer});
    findings.push_back({"current directory", UTIL_CurrentDirectory(), no_answer});
    const std::vector<Drive> all = drives();
    if (all.empty()) findings.push_back({"drives", "", "the system lists none"});
    for (const Drive& drive : all) {
        findings.push_back({"drive " + drive.root.substr(0, 1),
                            drive.type + ", " + drive.file_system + ", " + drive.free + " free",
                            ""});
    }
}

void add_network(Findings& findings) {
    char host[256] = "";  // a name with dots is written without its NUL
    ksl_gethostname(host, sizeof host);
    findings.push_back({"host name", host, no_answer});

    struct Record {
        char label[17];  // "le0"
        unsigned char address[4];
    };
    static_assert(sizeof(Record) == 21);
    Record records[32];
    int count = 0;
    if (KslIpAddrList(32, &count, reinterpret_cast<char*>(records)) != 0 || count == 0) {
        findings.push_back({"addresses", "", "no IPv4 address is known for the host name"});
    }
    for (int i = 0; i < count; ++i) {
        const auto& bytes = records[i].address;
        findings.push_back({String("address ") + records[i].label,
                            String::format("%d.%d.%d.%d", bytes[0], bytes[1], bytes[2], bytes[3]),
                            ""});
    }
}

void add_volume_manager(Findings& findings) {
    const char* const none = "not installed";
    char number[4];
    const bool installed = UTIL_GetVeritasVersion(number);
    findings.push_back({"volume manager release", installed ? number : "", none});

    String path;
    String message = installed ? "no memory" : none;
    UTIL_GetVeritasPath(path, message);
    findings.push_back({"volume manager path", path, message});
}

String registry_text(const char* name, String& reason) {
    String text;
    const bool there = UTIL_GetRegistryValue(server_key, name, text) == 0;
    reason = String("the registry value \"") + name + (there ? "\" is empty" : "\" is not there");
    return text;
}

void add_database(Findings& findings) {
    String path;
    String user;
    String password;
    String reason;
    bool complete = false;
    // Asked first: without the key the next call would make one.
    if (!registry_text("Database Path", reason).empty()) {
        complete = UTIL_getTSSEDBInfoFromRegistry(server_key, path, user, password);
        reason = "the key cannot be opened with full access";
    }
    findings.push_back({"database location", path, reason});
    if (!path.empty()) {
        reason = complete ? "not needed for a local database"
                          : "a network database needs \"DatabaseUsername\" and "
                            "\"DatabasePassword\"";
    }
    findings.push_back({"database user", user, reason});
    findings.push_back({"database password", password.empty() ? "" : "********", reason});
}

void add_mail(Findings& findings) {
    String reason;
    const String directory = registry_text("EmailPickupDir", reason);
    findings.push_back({"pickup directory", directory, reason});
}

void add_snapshot_tool(Findings& findings) {
    String tool;
    UTIL_GetHalcVexsnapFileName(tool);
    findings.push_back(
        {"snapshot tool", tool, "neither beside this program, nor installed, nor along PATH"});
}

void print_aligned(const Findings& findings) {
    std::uint64_t width = 0;
    for (const Finding& finding : findings)
        width = std::max(width, finding.name.size());
    for (const Finding& finding : findings) {
        print(String::format("  %-*s  ", static_cast<int>(width), finding.name.c_str()) +
              (finding.is_missing() ? "(" + finding.reason + ")" : finding.value));
    }
}

void print_xml(const Findings& findings) {
    for (const Finding& finding : findings) {
        const String tag = finding.name.replace(" ", "_");
        String line;
        if (finding.is_missing()) {
            UTIL_addTag(line, tag + "_missing", finding.reason);
        } else {
            UTIL_addTag(line, tag, finding.value);
        }
        print(line);
    }
}

}  // namespace

int report(const Arguments& arguments) {
    const bool xml = arguments.size() == 1 && arguments[0] == "--xml";
    if (!xml && !arguments.empty()) throw UsageError("report takes nothing but --xml");
    Findings findings;
    add_system(findings);
    add_directories(findings);
    add_network(findings);
    add_volume_manager(findings);
    add_database(findings);
    add_mail(findings);
    add_snapshot_tool(findings);
    if (xml) {
        print_xml(findings);
    } else {
        print("configuration, " + date_text(std::time(nullptr)));
        print_aligned(findings);
    }
    return all_well;
}
