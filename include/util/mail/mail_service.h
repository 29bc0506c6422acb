// Whether this machine has the mail service that picks up message files.
#ifndef UTIL_MAIL_MAIL_SERVICE_H
#define UTIL_MAIL_MAIL_SERVICE_H

#include "util/export.h"

// Both ask the machine afresh at each call; any thread may call them. Each raises std::bad_alloc.

// True when the web server, whose part the mail service is, has left its install folder in the
// registry: a text that is not empty in "InstallPath" of "SOFTWARE\Microsoft\InetStp". Anything
// that keeps the text from being read (see email) makes it false.
//     if (!MailInstalled()) log("notices cannot be sent");
UTIL_API bool MailInstalled();

// True when the service "IISADMIN" is running; false in any other state, also while it starts, and
// when the service or the service manager cannot be opened. Both are opened with full access,
// although they are only asked, so without administrative rights the answer is false; this is
// meant.
UTIL_API bool MailRunning();

#endif
