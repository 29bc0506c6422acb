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
#include <iterator>
#include <new>
#include <string>
#include <string_view>
#include <vector>

#include "util/host/host_line.h"
#include "util/internal/ascii.h"
#include "util/internal/encoding.h"
#include "util/internal/fetch_text.h"
#include "util/internal/guarded.h"
#include "util/internal/path.h"
#include "util/internal/registry.h"
#include "util/internal/scoped_handle.h"
#include "util/portable/ksl_string.h"

namespace {

constexpr char server_key[] = "SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server";
constexpr char domain_value[] = "ComputerDomainName";
constexpr DWORD usual_room = 1024;  // for the domain

// The messages when out of memory, by what was being allocated.
constexpr char domain_failure[] = "Unable to allocate memory for the domain name";
constexpr char long_domain_failure[] = "Unable to re-allocate memory for the domain name";
constexpr char command_failure[] = "Unable to allocate memory for the nslookup command";

// Does not use UTF8_open, which reports a lack of memory like a missing directory.
util::ScopedStream open_file(const String& path, int flags, const char* mode) {
    util::ScopedDescriptor descriptor(_wopen(
        util::wide_path(path).c_str(), flags | _O_BINARY | _O_NOINHERIT, _S_IREAD | _S_IWRITE));
    util::ScopedStream file(descriptor ? _fdopen(descriptor.get(), mode) : nullptr);
    if (!file && errno == ENOMEM) throw std::bad_alloc();
    if (file) descriptor.release();  // the stream owns it now
    return file;
}

bool write_file(const String& path, const String& text) {
    util::ScopedStream file = open_file(path, _O_WRONLY | _O_CREAT | _O_TRUNC, "wb");
    if (!file) return false;
    const bool written = std::fputs(text, file.get()) >= 0;
    return std::fclose(file.release()) == 0 && written;
}

// Returns whether the command processor reads the path as one word between quotes. No directory on
// Windows has a quote in its name. But a path can have one before a "..", which the platform does
// not check.
bool can_be_quoted(std::string_view path) {
    return std::none_of(path.begin(), path.end(),
                        [](char c) { return util::is_control(c) || c == '"'; });
}

// Returns whether the command processor has a value for the name: from the environment or of its
// own.
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

// Returns whether the command processor replaces a part of the command by a variable's value. It
// does so before it looks for quotes, so also inside them, and there are variables whose values
// contain quotes. A percent sign without such a name after it is unchanged.
bool has_variable(const std::string& ansi_command) {
    std::size_t begin = ansi_command.find('%');
    for (std::size_t end; begin != std::string::npos; begin = end) {
        end = ansi_command.find('%', begin + 1);
        if (end == std::string::npos) return false;
        const std::string name = ansi_command.substr(begin + 1, end - begin - 1);
        // "%NAME:~1,2%" is a part of the value. "%NAME:A=B%" is a changed value.
        if (is_variable(name) || is_variable(name.substr(0, name.find(':')))) return true;
    }
    return false;
}

// Converts the command for `system`. The runtime decides whether that reads the ANSI page or the
// page of file calls, so the bytes must be the same in both. Otherwise returns false.
bool to_command(const String& text, std::string& command) {
    std::string in_file_page;
    return util::utf8_to_ansi(text, command) &&
           util::utf8_to_ansi(text, in_file_page, util::Page::files) && command == in_file_page;
}

// Runs the command. Ignores its exit code: only the answer counts.
void run(const std::string& ansi_command) {
    errno = 0;
    if (std::system(ansi_command.c_str()) == -1 && errno == ENOMEM) throw std::bad_alloc();
}

// Returns the computer's own domain, or "". Sets `failure` before it allocates more room.
std::string computer_domain(const char*& failure) {
    const auto ask = [&](char* buffer, DWORD room) -> DWORD {
        DWORD size = room;
        if (GetComputerNameExA(ComputerNameDnsDomain, buffer, &size)) return size;
        if (GetLastError() != ERROR_MORE_DATA) return 0;
        failure = long_domain_failure;
        return std::max(size + 1, room);  // room or more asks again
    };
    const std::vector<char> ansi = util::fetch_text<char>(usual_room, ask);
    if (ansi.front() == '\0') return {};
    auto size = static_cast<DWORD>(ansi.size());
    util::WideText twin;
    wchar_t* const room = twin.make_room(size);  // a unit takes a byte at least
    if (!room) throw std::bad_alloc();
    GetComputerNameExW(ComputerNameDnsDomain, room, &size);
    std::string domain;
    util::ansi_to_utf8(ansi.data(), room, domain);
    return domain;
}

// Returns false if there is neither a configured domain nor one of the computer's.
bool find_domain(std::string& domain, const char*& failure) {
    failure = domain_failure;
    char buffer[usual_room];
    const util::ScopedKey key = util::open_machine_key(server_key, KEY_READ);
    if (key && util::read_text(key, domain_value, util::EmptyText::accepted, buffer, sizeof buffer,
                               domain)) {
        return true;
    }
    domain = computer_domain(failure);
    return !domain.empty();
}

// Runs the tool and returns its answer. Returns no stream if there is none, or if the command
// processor would not read the paths as they are. Writes both files first, so that a query or an
// answer of an earlier call is never taken for this one's.
util::ScopedStream ask(const String& query, const String& work_directory) {
    const String input = util::join_unless_backslash(work_directory.view(), "nslookupInput.txt");
    const String output = util::join_unless_backslash(work_directory.view(), "nslookupOutput.txt");
    std::string command;
    if (!can_be_quoted(work_directory.view()) ||
        !to_command("nslookup < \"" + input + "\" > \"" + output + "\"", command) ||
        has_variable(command) || !write_file(input, query + "exit") || !write_file(output, "")) {
        return util::ScopedStream();
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
    if (const util::ScopedStream answer = ask(query, work_directory)) {
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

int UTIL_EnumHostsOnANetwork(std::list<String>& hosts, String const& workDir, String& message) {
    const char* failure = nullptr;
    const auto out_of_memory = [&] {
        return util::guarded(-1, [&] {
            message = failure;
            return -1;
        });
    };
    return util::guarded(out_of_memory,
                         [&] { return enumerate(hosts, workDir, message, failure); });
}
