/// @file
/// Whether this machine has the mail service that picks up message files.
#ifndef UTIL_MAIL_MAIL_SERVICE_H
#define UTIL_MAIL_MAIL_SERVICE_H

#include "util/export.h"

/// Returns whether the web server is installed. The mail service is a part of it.
///
/// True means that the registry has a text that is not empty in `"InstallPath"` of
/// `"SOFTWARE\Microsoft\InetStp"`. A text that cannot be read is none (see `email`). Reads the
/// registry at each call. Any thread may call it. Raises std::bad_alloc.
///
///     if (!MailInstalled()) log("notices cannot be sent");
UTIL_API bool MailInstalled();

/// Returns whether the service `"IISADMIN"` is running.
///
/// Returns false in any other state, also while it starts, and if the service or the service
/// manager cannot be opened. By design, both are opened with full access, so the result is false
/// without administrative rights. Asks the machine at each call. Any thread may call it. Raises
/// std::bad_alloc.
UTIL_API bool MailRunning();

#endif
