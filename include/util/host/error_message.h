// The system's words for the last error.
#ifndef UTIL_HOST_ERROR_MESSAGE_H
#define UTIL_HOST_ERROR_MESSAGE_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Sets out to the system's text for the calling thread's last error, in the user's language and
// UTF-8, with the line end that the system puts behind it; "" when the system has no text for the
// code or memory runs out. The last error stays as it was. Any thread may call it.
//     SetLastError(5);
//     UTIL_FormatMessage(out);   // "Access is denied.\r\n"
UTIL_API void UTIL_FormatMessage(String& out);

UTIL_EXTERN_C_END

#endif
