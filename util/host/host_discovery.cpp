#include "util/host/host_discovery.h"

#include "util/internal/windows.h"
// after the platform's header
#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "util/host/host_line.h"
#include "util/internal/ascii.h"
#include "util/internal/encoding.h"
#include "util/internal/registry.h"
#include "util/portable/ksl_string.h"

namespace {

constexpr char server_key[] = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
constexpr char domain_value[] = "ComputerDomainName";

// The message when out of memory, by what was being allocated.
constexpr char domain_failure[] = "Unable to allocate memory for the domain name";
constexpr char long_domain_failure[] = "Unable to re-allocate memory for the domain name";
constexpr char command_failure[] = "Unable to allocate memory for the nslookup command";

struct CloseFile {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

// Not UTF8_open: it reports a lack of memory like a missing directory.
File open_file(const String& path, int flags, const char* mode) {
    const int descriptor = _wopen(util::wide_path(path).c_str(), flags | _O_BINARY | _O_NOINHERIT,
                                  _S_IREAD | _S_IWRITE);
    if (descriptor < 0 && errno == ENOMEM) throw std::bad_alloc();
    if (descriptor < 0) return nullptr;
    File file(_fdopen(descriptor, mode));
    if (file) return file;
    const bool out_of_memory = errno == ENOMEM;
    _close(descriptor);
    if (out_of_memory) throw std::bad_alloc();
    return nullptr;
}

bool write_file(const String& path, const String& text) {
    File file = open_file(path, _O_WRONLY | _O_CREAT | _O_TRUNC, "wb");
    if (!file) return false;
    const bool written = std::fputs(text, file.get()) >= 0;
    return std::fclose(file.release()) == 0 && written;
}

// Whether the command processor reads the path as one word between quotes. No directory on Windows
// has a quote in its name, but a path can have one before a "..", where the platform never looks.
bool can_be_quoted(std::string_view path) {
    return std::none_of(path.begin(), path.end(),
                        [](char c) { return util::is_control(c) || c == '"'; });
}

// Whether the command processor has a value for the name: from the environment or of its own.
bool is_variable(const std::string& ansi_name) {
    constexpr const char* dynamic[] = {"CD",     "CMDCMDLINE", "CMDEXTVERSION",
                                       "DATE",   "ERRORLEVEL", "HIGHESTNUMANODENUMBER",
                                       "RANDOM", "TIME"};
    const auto has_name = [&](const char* each) {
        return ksl_strcasecmp(ansi_name.c_str(), each) == 0;
    };
    return std::any_of(std::begin(dynamic), std::end(dynamic), has_name) ||
           GetEnvironmentVariableA(ansi_name.c_str(), nullptr, 0) != 0;
}

// Whether the command processor replaces a part of the command by a variable's value. It does so
// inside quotes, too, before it looks for quotes, and it has variables whose values contain quotes.
// A percent sign without such a name after it stays as it is.
bool has_variable(const std::string& ansi_command) {
    std::size_t begin = ansi_command.find('%');
    for (std::size_t end; begin != std::string::npos; begin = end) {
        end = ansi_command.find('%', begin + 1);
        if (end == std::string::npos) return false;
        const std::string name = ansi_command.substr(begin + 1, end - begin - 1);
        // "%NAME:~1,2%" is a part of the value, "%NAME:A=B%" a changed one.
        if (is_variable(name) || is_variable(name.substr(0, name.find(':')))) return true;
    }
    return false;
}

// Which code page `system` reads a command in depends on the runtime. So the bytes must be the same
// in both.
bool to_command(const String& text, std::string& command) {
    std::string in_file_page;
    return util::utf8_to_ansi(text, command) &&
           util::utf8_to_ansi(text, in_file_page, util::Page::files) && command == in_file_page;
}

// Runs the command. Its exit code does not matter; the answer does.
void run(const std::string& ansi_command) {
    errno = 0;
    if (std::system(ansi_command.c_str()) == -1 && errno == ENOMEM) throw std::bad_alloc();
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
    if (!known) return domain;
    util::WideText twin;
    wchar_t* const room = twin.make_room(++size);  // a unit takes a byte at least
    if (!room) throw std::bad_alloc();
    GetComputerNameExW(ComputerNameDnsDomain, room, &size);
    util::ansi_to_utf8(buffer.data(), room, domain);
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

// Runs the tool and returns its answer; null if there is none, or if the command processor would
// not read the paths as they are. Both files are written first, so that a question or an answer of
// an earlier call is never taken for this one's.
File ask(const String& query, const String& work_directory) {
    const bool separated = !work_directory.empty() && work_directory.view().back() == '\\';
    const String prefix = work_directory + (separated ? "" : "\\");
    const String input = prefix + "nslookupInput.txt";
    const String output = prefix + "nslookupOutput.txt";
    std::string command;
    if (!can_be_quoted(work_directory.view()) ||
        !to_command("nslookup < \"" + input + "\" > \"" + output + "\"", command) ||
        has_variable(command) || !write_file(input, query + "exit") || !write_file(output, "")) {
        return nullptr;
    }
    run(command);
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
    std::list<String> found;
    if (const File answer = ask(query, work_directory)) {
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
