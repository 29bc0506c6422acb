#include "util/mail/message_text.h"

namespace util {

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

}  // namespace util
