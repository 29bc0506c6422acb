#include "util/mail/email.h"

#include <new>

#include "util/files/xr_file.h"
#include "util/internal/windows.h"
#include "util/mail/mail_service.h"
#include "util/mail/message_drop.h"
#include "util/mail/message_text.h"
#include "util/mail/pickup_directory.h"

static_assert(sizeof(email) == 5 * sizeof(String), "layout is contract");

namespace {

constexpr char no_temporary_directory[] =
    "Win32 API GetTempPath returned failure, GetLastError = %lu";
constexpr char no_name[] = "Win32 API GetTempFileName returned bad name, GetLastError = %lu";

void add(String& field, String const& text, const char* separator) {
    if (field.first(text, 0) != String::npos) return;
    field += (field.empty() ? "" : separator) + text;
}

bool write_whole(const std::string& path, const std::string& text) {
    XrFile file(path.c_str(), "wb");
    // A disk that fills up may make a write short without calling it failed.
    return file.isValid() && file.Write(text.data(), text.size()) &&
           file.Tell() == static_cast<std::int64_t>(text.size()) && file.Close();
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
                     String const& body) try {
    if (to.empty()) {
        m_error = "Invalid To: list specified; To: list= ";
        return 0;
    }
    const auto fail = [this](const char* format) {
        m_error = String::format(format, GetLastError());
        return -1;
    };
    std::string temporary;
    if (!util::temporary_directory(temporary)) return fail(no_temporary_directory);

    int result = 0;
    for (const String& field : to.split(";", true)) {
        const String recipient = field.trim("\t\r\n ");
        if (recipient.empty()) continue;

        const std::string file = util::create_temporary_file(temporary);
        if (file.empty()) return fail(no_name);
        const std::string pickup = util::pickup_directory();
        if (pickup.empty()) m_error = "Unable to query the registry for the pickup directory";

        if (!write_whole(file, util::message_text(from.view(), recipient.view(), subject.view(),
                                                  body.view()))) {
            m_error = String::format("Unable to open the file %s", file.c_str());
            result = -1;
            continue;
        }
        const util::Drop outcome = util::drop_message(file, pickup);
        if (outcome == util::Drop::no_name) return fail(no_name);
        result = outcome == util::Drop::done ? 0 : -1;
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
} catch (...) {
    // Whatever is raised below for lack of memory, the platform's own error too, becomes this one.
    throw std::bad_alloc();
}
