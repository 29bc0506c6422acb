#include "util/host/host_discovery.h"

#include "util/internal/windows.h"
// after the platform's header
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <vector>

#include "util/host/host_line.h"
#include "util/internal/ansi_text.h"
#include "util/internal/registry.h"
#include "util/portable/ksl_string.h"
#include "util/portable/utf8_files.h"

namespace {

constexpr char server_key[] = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
constexpr char domain_value[] = "ComputerDomainName";

// For memory that runs out: what was being made room for.
constexpr char domain_failure[] = "Unable to allocate memory for the domain name";
constexpr char long_domain_failure[] = "Unable to re-allocate memory for the domain name";
constexpr char command_failure[] = "Unable to allocate memory for the nslookup command";

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

File open_file(const String& path, int flags, const char* mode) {
    const int descriptor = UTF8_open(path, flags | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE);
    if (descriptor < 0) return nullptr;
    File file(_fdopen(descriptor, mode));
    if (!file) _close(descriptor);
    return file;
}

bool write_file(const String& path, const String& text) {
    File file = open_file(path, _O_WRONLY | _O_CREAT | _O_TRUNC, "wb");
    if (!file) return false;
    const bool written = std::fputs(text, file.get()) >= 0;
    return std::fclose(file.release()) == 0 && written;
}

bool run(const String& command) {
    std::string ansi_command;
    if (!util::utf8_to_ansi(command, ansi_command)) return false;
    std::system(ansi_command.c_str());  // what counts is the answer, not how the tool ended
    return true;
}

// The computer's own domain through the buffer, or "". failure follows what is allocated.
std::string computer_domain(std::vector<char>& buffer, const char*& failure) {
    auto size = static_cast<DWORD>(buffer.size());
    BOOL known = GetComputerNameExA(ComputerNameDnsDomain, buffer.data(), &size);
    if (!known && GetLastError() == ERROR_MORE_DATA) {
        failure = long_domain_failure;
        buffer.resize(++size);
        known = GetComputerNameExA(ComputerNameDnsDomain, buffer.data(), &size);
    }
    std::string domain;
    if (known) util::ansi_to_utf8(buffer.data(), domain);
    return domain;
}

// False when there is neither a configured domain nor one of the computer's.
bool find_domain(std::string& domain, const char*& failure) {
    failure = domain_failure;
    std::vector<char> buffer(1024);
    const util::ScopedKey key = util::open_machine_key(server_key, KEY_READ);
    if (key && util::read_text(key, domain_value, util::EmptyText::accepted, buffer.data(),
                               static_cast<DWORD>(buffer.size()), domain)) {
        return true;
    }
    domain = computer_domain(buffer, failure);
    return !domain.empty();
}

// Runs the tool and gives its answer; null when there is none. Both files are written first: a
// question or an answer that an earlier call has left is never taken for this one's.
File ask(const String& query, const String& work_prefix) {
    const String input = work_prefix + "nslookupInput.txt";
    const String output = work_prefix + "nslookupOutput.txt";
    const String command = "nslookup < \"" + input + "\" > \"" + output + "\"";
    if (!write_file(input, query + "exit") || !write_file(output, "") || !run(command)) {
        return nullptr;
    }
    return open_file(output, _O_RDONLY, "rb");
}

std::list<String> read_hosts(std::FILE* answer, const std::string& domain) {
    std::list<String> hosts;
    constexpr int most_characters = 1024;
    char line[most_characters + 1];
    while (std::fgets(line, sizeof line, answer)) {
        const String host(std::string(util::host_of_address_record(line)));
        if (!host.empty() && ksl_strcasecmp(host, domain.c_str()) != 0 &&
            ksl_strcasecmp(host, "gc._msdcs") != 0) {
            hosts.push_back(host);
        }
    }
    return hosts;
}

int enumerate(std::list<String>& hosts, const String& work_directory, String& message,
              const char*& failure) {
    std::string domain;
    if (!find_domain(domain, failure)) {
        message = String::format(
            "Tessaron is unable to determine the correct DNS domain to query in order to gather a "
            "valid list of hosts.\nResolution:\n If you know the domain name this computer should "
            "query for a list of hosts, create a String value in the registry key HKLM\\%s called "
            "%s and specify the correct domain name",
            server_key, domain_value);
        return -1;
    }

    failure = command_failure;
    const String query = String::format("ls -t A %s\n", domain.c_str());
    const bool separated = !work_directory.empty() && work_directory.view().back() == '\\';
    std::list<String> found;
    if (const File answer = ask(query, work_directory + (separated ? "" : "\\"))) {
        found = read_hosts(answer.get(), domain);
    }
    if (found.empty()) {
        message = String::format(
            "No valid 'A' host entries were returned while executing the following nslookup "
            "command:\n%s\nResolution:\n If the domain name used in the nslookup query is not "
            "correct, and you know the domain name this computer should query for a list of hosts, "
            "create a String value in the registry key HKLM\\%s called %s and specify the correct "
            "domain name.",
            query.c_str(), server_key, domain_value);
    }
    hosts.splice(hosts.end(), found);
    return 0;
}

}  // namespace

int UTIL_EnumHostsOnANetwork(std::list<String>& hosts, String const& workDir, String& message) try {
    const char* failure = nullptr;
    try {
        return enumerate(hosts, workDir, message, failure);
    } catch (...) {
        message = failure;
        return -1;
    }
} catch (...) {
    return -1;
}
