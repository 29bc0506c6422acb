/// @file
/// Connects network (CIFS) shares with explicit credentials.
///
/// Texts are UTF-8 and end at their NUL. On failure, both functions write a text to `message`,
/// without a size limit: 2048 bytes hold the longest text. `message` is unchanged on success, and
/// may be null if the text is not wanted. Any thread may call these functions. Connections belong
/// to the logon session.
///
/// The text for a failed call is "CALL failed (error code = N)". Code 1208 means an error of the
/// network provider. The text is then "CALL failed (error code = N). DESCRIPTION" with the
/// provider's code and words, or "WNetGetLastError failed (error code = N)" if the platform does
/// not return them. Bytes of the words that mean nothing in the ANSI code page become replacement
/// characters. If the call is not made, the text names it with one of these codes: 67 (the share is
/// null), 1113 (a text cannot be converted) or 14 (out of memory).
#ifndef UTIL_HOST_CIFS_SHARE_H
#define UTIL_HOST_CIFS_SHARE_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

/// Connects to the share (`\\server\share`) as `user`, without a drive letter and for this session
/// only. Returns 0, or -1 with a message.
///
/// A null `user` or `password` means the caller's own. "" means an empty one.
///
/// If the machine has a connection to the server under other credentials (1219), disconnects the
/// share, waits 3 seconds and connects again, at most 20 times. This may take a minute. The message
/// is the text for the final failure, then `" \n "`, then the history. The history is empty without
/// a retry. Otherwise it describes the last retry: "Earlier attempt(s):" and the text for the
/// refused connection, then `"\n"` and the text for the disconnection if that failed too.
///
/// The library clears its own copies of the password before it frees them, on success and on
/// failure. The caller clears `password` itself. Copies inside the platform's network calls belong
/// to the platform. Example:
///
///     char message[2048];
///     UTIL_ConnectCifsShare("\\\\srv\\data", "srv\\agent", "secret", message)
///     // -1, message is "WNetAddConnection2 failed (error code = 53) \n "
UTIL_API int UTIL_ConnectCifsShare(char const* share, char const* user, char const* password,
                                   char* message);

/// Disconnects the share, and removes it from those that are restored at logon. Fails if files are
/// open there. Returns 0, or -1 with a message. Example:
///
///     UTIL_DisconnectCifsShare("\\\\srv\\data", message)
///     // -1, message is "WNetCancelConnection2 failed (error code = 2250)"
UTIL_API int UTIL_DisconnectCifsShare(char const* share, char* message);

UTIL_EXTERN_C_END

#endif
