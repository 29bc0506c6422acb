#include "report.h"

#include <algorithm>
#include <ctime>

#include "drives.h"
#include "errors.h"
#include "formats.h"
#include "options.h"
#include "output.h"

namespace {

const char* const server_key = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
const char* const no_answer = "the system does not answer";

// Names are words of ASCII letters and digits. None is the end of another one: UTIL_extractTag
// would take "C:\" from <system_path> for an element "path".
struct Finding {
    String name;
    String value;   // "" when there is none
    String reason;  // why there is none

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
    findings.push_back({"cluster", clustered ? "installed" : "", last_error_text()});

    unsigned char emulated = 0;
    const unsigned long error = UTIL_getIsWow64(&emulated);
    const char* const value = emulated ? "32-bit program on 64-bit Windows" : "none";
    findings.push_back({"emulation", error == 0 ? value : "", error_text(error)});
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
    // This comes first: the next call makes a missing key.
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
    print("<?xml version=\"1.0\" encoding=\"UTF-8\"?>");
    print("<report>");
    for (const Finding& finding : findings) {
        const String tag = finding.name.replace(" ", "_");
        print(finding.is_missing() ? xml_element(tag + "_missing", finding.reason)
                                   : xml_element(tag, finding.value));
    }
    print("</report>");
}

void print_json(const Findings& findings) {
    JsonDocument document;
    document.member("taken", json(utc_text(std::time(nullptr))));
    document.list("findings");
    for (const Finding& finding : findings) {
        document.element(
            json_object({{"name", json(finding.name)},
                         {"value", finding.is_missing() ? "null" : json(finding.value)},
                         {"reason", finding.is_missing() ? json(finding.reason) : "null"}}));
    }
    document.end();
}

void print_csv(const Findings& findings) {
    print("name,value,reason");
    for (const Finding& finding : findings)
        print(csv_row({finding.name, finding.value, finding.is_missing() ? finding.reason : ""}));
}

int report(const Arguments& arguments) {
    const Options options(arguments, {"--json", "--csv", "--xml"});
    const Format format = format_of(options);
    if (!options.operands().empty()) throw UsageError("report takes no names");
    Findings findings;
    add_system(findings);
    add_directories(findings);
    add_network(findings);
    add_volume_manager(findings);
    add_database(findings);
    add_mail(findings);
    add_snapshot_tool(findings);
    switch (format) {
        case Format::json:
            print_json(findings);
            break;
        case Format::csv:
            print_csv(findings);
            break;
        case Format::xml:
            print_xml(findings);
            break;
        case Format::text:
            print("configuration, " + date_text(std::time(nullptr)));
            print_aligned(findings);
    }
    return all_well;
}

}  // namespace

const Verb report_verb = {"report", "[--json | --csv | --xml]",
                          "Shows the configuration of this machine.",
                          "  --json  one JSON object with a list of names and values\n"
                          "  --csv   one line for each name\n"
                          "  --xml   one XML document, an element for each name\n"
                          "Exit status: 0, whatever is missing.",
                          report};
