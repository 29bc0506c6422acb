// Where the local mail service looks for messages.
#ifndef UTIL_MAIL_PICKUP_DIRECTORY_H
#define UTIL_MAIL_PICKUP_DIRECTORY_H

#include <string>

namespace util {

// The directory in UTF-8; "" when the registry names none. The first of these that is set:
// 1. "EmailPickupDir" of the product's own server key, as it stands;
// 2. "ExchangeServerAdmin" of the mail server's setup key and "\\Mailroot\vsi 1\Pickup";
// 3. "PathWWWRoot" of the web server's key without any "\wwwroot", and "\\mailroot\Pickup\".
// The doubled backslashes, which the platform accepts, and what else differs between 2 and 3 are
// meant as they are. What is not needed is not read. Any thread may call it. Raises std::bad_alloc.
//     pickup_directory()   // "c:\inetpub\\mailroot\Pickup\"
std::string pickup_directory();

}  // namespace util

#endif
