// Connecting to network (CIFS) shares with explicit credentials.
#ifndef UTIL_HOST_CIFS_SHARE_H
#define UTIL_HOST_CIFS_SHARE_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Texts are UTF-8 and end at their NUL. A failure's text goes to message, which is written without
// a limit: 2048 bytes hold the longest text there is. message is untouched on success; it may be
// null when the text is not wanted. Any thread may call these; connections belong to the logon
// session.
//
// A failed call's text is "CALL failed (error code = N)". When N would be 1208, an error of the
// network provider's own, it is "CALL failed (error code = N). DESCRIPTION" with the provider's
// code and words, or "WNetGetLastError failed (error code = N)" when those cannot be had. When a
// share is null (67), a text cannot be converted (1113) or memory runs out (14), the text names the
// call that would have been made.

// Connects to the share ("\\server\share") as user, without a drive letter and for this session
// only: 0, or -1 with a message. A null user or password means the caller's own, "" an empty one.
//
// While the machine holds a connection to the server under other credentials (1219), the share is
// disconnected and, 3 seconds later, connected again, at most 20 times; so this may take a minute.
// The message is the final failure's text, " \n ", and what the last retry was about: nothing
// without one, else "Earlier attempt(s):" and the text of the connection that was refused, followed
// by "\n" and the text of the disconnection when that failed too.
//     char message[2048];
//     UTIL_ConnectCifsShare("\\\\srv\\data", "srv\\agent", "secret", message)
//     // -1, message is "WNetAddConnection2 failed (error code = 53) \n "
UTIL_API int UTIL_ConnectCifsShare(char const* share, char const* user, char const* password,
                                   char* message);

// Ends the connection to the share, also as one to be restored at logon, unless files are open
// there: 0, or -1 with a message.
//     UTIL_DisconnectCifsShare("\\\\srv\\data", message)
//     // -1, message is "WNetCancelConnection2 failed (error code = 2250)"
UTIL_API int UTIL_DisconnectCifsShare(char const* share, char* message);

UTIL_EXTERN_C_END

#endif
