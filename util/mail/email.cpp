#include "util/mail/email.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "util/files/xr_file.h"
#include "util/internal/encoding.h"
#include "util/internal/guarded.h"
#include "util/internal/kept_errors.h"
#include "util/internal/windows.h"
#include "util/mail/mail_service.h"
#include "util/mail/mail_setting.h"

static_assert(sizeof(email) == 5 * sizeof(String), "layout is contract");

namespace {

using util::Page;

constexpr char no_temporary_directory[] =
    "Win32 API GetTempPath returned failure, GetLastError = %lu";
constexpr char bad_name[] = "Win32 API GetTempFileName returned bad name, GetLastError = %lu";

void add(String& field, String const& text, const char* separator) {
    if (field.first(text, 0) != String::npos) return;
    field += (field.empty() ? "" : separator) + text;
}

// The bytes of the message to one recipient. By design, no blank line precedes the body, nothing is
// encoded, and nothing ends the last line.
std::string message_text(std::string_view from, std::string_view recipient,
                         std::string_view subject, std::string_view body) {
    constexpr std::string_view fixed =
        "MIME-Version: 1.0\r\n"
        "Content-type: text/plain; charset= utf-8\r\n"
        "Content-Transfer-Encoding: quoted-printable\r\n";
    std::string text;
    text.reserve(64 + from.size() + recipient.size() + fixed.size() + subject.size() + body.size());
    text.append("From: ").append(from).append("\r\n");
    text.append("To: ").append(recipient).append("\r\n");
    text.append(fixed);
    text.append("Subject: ").append(subject).append("\r\n");
    text.append(body);
    return text;
}

// Returns the pickup directory in UTF-8, or "" if the registry names none. By design, two of the
// three forms contain a doubled backslash, and they end differently.
std::string pickup_directory() {
    std::string own =
        util::mail_setting("SOFTWARE\\Vorn\\Vorn Quillmark Tessaron\\Server", "EmailPickupDir");
    if (!own.empty()) return own;

    const std::string mail_server =
        util::mail_setting("SOFTWARE\\Microsoft\\Exchange\\Setup", "ExchangeServerAdmin");
    if (!mail_server.empty()) return mail_server + "\\" + "\\Mailroot\\vsi 1\\Pickup";

    const String web_root = util::mail_setting(util::web_server_key, "PathWWWRoot");
    if (web_root.empty()) return {};
    return web_root.replace("\\wwwroot", "").str() + "\\" + "\\mailroot\\Pickup\\";
}

// The calls for temporary names and for the move are ANSI calls. So a path stays in the code page
// of file calls from its directory to the move. Only XrFile needs UTF-8.
//
// A directory without a value is one that the page cannot hold exactly. It counts as missing, so
// that nothing is written to a directory with a similar name.
using Directory = std::optional<std::string>;

Directory to_page(const std::string& utf8) {
    std::string ansi;
    if (!util::utf8_to_ansi(utf8.c_str(), ansi, Page::files)) return std::nullopt;
    return ansi;
}

// Returns false, with the last error, if the platform names no directory for temporary files.
bool find_temporary_directory(Directory& out) {
    constexpr DWORD room = 255;
    char path[room];
    wchar_t twin[room] = {};
    const DWORD length = GetTempPathA(room, path);
    if (length < 1) return false;
    GetTempPathW(room, twin);
    std::string utf8;
    // The platform only counts a longer path and does not write it.
    const bool is_known = length < room && util::ansi_to_utf8(path, twin, utf8, Page::files);
    out = is_known ? to_page(utf8) : std::nullopt;
    return true;
}

// Makes an empty file with a new name. Returns its path, or "" with the last error.
std::string create_file(const Directory& directory) {
    constexpr std::size_t most_bytes = MAX_PATH - 14;  // leaves room for the name
    if (!directory) {
        SetLastError(ERROR_DIRECTORY);
        return {};
    }
    // Not every version of the platform checks the size before it writes into its own buffer.
    if (directory->size() > most_bytes) {
        SetLastError(ERROR_BUFFER_OVERFLOW);
        return {};
    }
    std::string path(MAX_PATH, '\0');  // before there is a file that could be forgotten
    if (GetTempFileNameA(directory->c_str(), "tsr", 0, path.data()) == 0) return {};
    path.resize(std::strlen(path.c_str()));
    return path;
}

// Files that only keep a name. They are deleted at the end of the scope.
class Placeholders {
  public:
    Placeholders() = default;
    ~Placeholders() { remove(); }
    Placeholders(const Placeholders&) = delete;
    Placeholders& operator=(const Placeholders&) = delete;

    // Adds a new one. Returns its path, or "" with the last error.
    const std::string& add(const Directory& directory) {
        m_paths.emplace_back();  // before there is a file that could be forgotten
        return m_paths.back() = create_file(directory);
    }

    void remove() noexcept {
        const util::KeptErrors kept;
        for (const std::string& path : m_paths)
            DeleteFileA(path.c_str());
        m_paths.clear();
    }

  private:
    std::vector<std::string> m_paths;
};

enum class Outcome { done, failed, no_name, no_memory };

Outcome write_whole(const std::string& utf8_path, const std::string& text) {
    // XrFile also raises the platform's own error when out of memory.
    return util::guarded(Outcome::no_memory, [&] {
        XrFile file(utf8_path.c_str(), "wb");
        // A disk that fills up may make a write short without calling it failed.
        const bool is_whole = file.isValid() && file.Write(text.data(), text.size()) &&
                              file.Tell() == static_cast<std::int64_t>(text.size()) && file.Close();
        return is_whole ? Outcome::done : Outcome::failed;
    });
}

// Converts the path for XrFile.
Outcome convert(const std::string& path, std::string& utf8_path) {
    return util::guarded(Outcome::no_memory, [&] {
        const bool converted = util::ansi_to_utf8(path.c_str(), L"", utf8_path, Page::files);
        return converted ? Outcome::done : Outcome::failed;
    });
}

// Moves `file` into `directory`, under a new name there with "1" at its end. Never replaces a file:
// a name that is taken, by an old message or by another sender at the same moment, is skipped. An
// empty placeholder keeps the name (without its "1") until just before the move.
//
// Returns no_name, with the last error, if the platform gives no name. Returns failed if the move
// fails, or if 4096 names in a row are taken. After a failure `file` is where it was.
Outcome drop(const std::string& file, const Directory& directory) {
    constexpr int most_draws = 4096;  // a directory has room for 65535 names of this kind
    Placeholders placeholders;
    for (int draw = 0; draw < most_draws; ++draw) {
        const std::string& name = placeholders.add(directory);
        if (name.empty()) return Outcome::no_name;
        const std::string target = name + "1";
        // Its placeholder stays meanwhile, or the platform might offer the same name again.
        if (GetFileAttributesA(target.c_str()) != INVALID_FILE_ATTRIBUTES) continue;
        placeholders.remove();
        if (std::rename(file.c_str(), target.c_str()) == 0) return Outcome::done;
        if (errno != EEXIST) return Outcome::failed;
    }
    return Outcome::failed;
}

}  // namespace

email::email() = default;

email::email(String const& from, String const& to, String const& subject, String const& body)
    : m_from(from), m_to(to), m_subject(subject), m_body(body) {}

email::email(email const& other) = default;
email& email::operator=(email const& other) = default;
email::~email() = default;

String const& email::getFrom() const {
    return m_from;
}

String const& email::getTo() const {
    return m_to;
}

String const& email::getSubject() const {
    return m_subject;
}

String const& email::getBody() const {
    return m_body;
}

String const& email::GetLastErrorMessage() const {
    return m_error;
}

void email::updateFrom(String const& text) {
    add(m_from, text, ";");
}

void email::updateTo(String const& text) {
    add(m_to, text, ";");
}

void email::updateSubject(String const& text) {
    add(m_subject, text, " ");
}

void email::updateBody(String const& text) {
    add(m_body, text, "\r\n");
}

bool email::isReady() const {
    return !m_from.empty() && !m_to.empty() && !m_subject.empty() && !m_body.empty();
}

bool email::isNull() const {
    return !isReady();
}

int email::send() {
    return isReady() ? send_mail(m_from, m_to, m_subject, m_body) : -1;
}

int email::send_mail(String const& from, String const& to, String const& subject,
                     String const& body) {
    if (to.empty()) {
        m_error = "Invalid To: list specified; To: list= ";
        return 0;
    }
    const auto fail = [this](const char* format) {
        m_error = String::format(format, GetLastError());
        return -1;
    };
    Directory temporary;
    if (!find_temporary_directory(temporary)) return fail(no_temporary_directory);

    int result = 0;
    for (const String& field : to.split(";", true)) {
        const String recipient = field.trim("\t\r\n ");
        if (recipient.empty()) continue;

        const std::string file = create_file(temporary);
        if (file.empty()) return fail(bad_name);
        std::string utf8_file;
        const Outcome named = convert(file, utf8_file);
        if (named != Outcome::done) {
            DeleteFileA(file.c_str());
            if (named == Outcome::no_memory) throw std::bad_alloc();
            SetLastError(ERROR_DIRECTORY);
            return fail(bad_name);
        }
        const std::string pickup = pickup_directory();
        if (pickup.empty()) m_error = "Unable to query the registry for the pickup directory";

        Outcome outcome = write_whole(
            utf8_file, message_text(from.view(), recipient.view(), subject.view(), body.view()));
        if (outcome == Outcome::no_memory) throw std::bad_alloc();
        if (outcome == Outcome::done) {
            outcome = drop(file, to_page(pickup));
            if (outcome == Outcome::no_name) return fail(bad_name);
        } else {
            m_error = String::format("Unable to open the file %s", utf8_file.c_str());
        }
        result = outcome == Outcome::done ? 0 : -1;
    }

    if (!MailInstalled()) {
        m_error = "IIS is not installed.";
        result = -1;
    }
    if (!MailRunning()) {
        m_error = "IIS is not running.";
        result = -1;
    }
    return result;
}
