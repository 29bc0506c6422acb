// What a message file holds.
#ifndef UTIL_MAIL_MESSAGE_TEXT_H
#define UTIL_MAIL_MESSAGE_TEXT_H

#include <string>
#include <string_view>

namespace util {

// The bytes of the message to one recipient, every text as it is. Meant as they are: no blank line
// parts the headers from the body, the body is not encoded although it is declared to be
// quoted-printable, and nothing ends its last line. Raises std::bad_alloc.
std::string message_text(std::string_view from, std::string_view recipient,
                         std::string_view subject, std::string_view body);

}  // namespace util

#endif
