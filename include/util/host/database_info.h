// Reads where the replication server's database is, and the credentials for it.
#ifndef UTIL_HOST_DATABASE_INFO_H
#define UTIL_HOST_DATABASE_INFO_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Reads "Database Path" of the key under HKEY_LOCAL_MACHINE into `dbPath` (UTF-8). When that is a
// network path, reads "DatabaseUsername" and "DatabasePassword" into `user` and `password`, too. A
// network path is "\\HOST\SHARE\..." with neither name empty; the backslash after SHARE is not
// needed. Types are not checked. A value ends at its first NUL. Stored texts are returned in UTF-8,
// also where the platform's ANSI call replaced characters that its code page lacks. Other stored
// bytes are returned unchanged.
//
// Returns true for a path that is no network path, with `user` and `password` unchanged. Returns
// true for a network path when both credentials are found and not empty. Otherwise returns false:
// when the key cannot be opened with full access (which needs administrative rights), when a value
// is missing or too long (the path and the password may take 261 bytes), or when out of memory. A
// key that the ANSI code page cannot hold exactly, or in 32,766 bytes, cannot be opened. `dbPath`
// is set as soon as the path has been read, and emptied when it cannot be converted. `user` and
// `password` are set together or not at all.
//
// By design: a missing key is created. The user name may take no more bytes than the stored path
// does in UTF-16 with its NUL. The key stays open when the path cannot be converted to UTF-8.
//
// The library clears its own copies of the password before it frees them, whether the call succeeds
// or fails. `password` is for the caller to clear, including the text that it held before. Copies
// inside the platform's registry calls are the platform's.
//
// Any thread may call it.
//     UTIL_getTSSEDBInfoFromRegistry("SOFTWARE\\Acme\\Db", path, user, password)
//     // true; path is "D:\db\data.db"
UTIL_API bool UTIL_getTSSEDBInfoFromRegistry(String key, String& dbPath, String& user,
                                             String& password);

UTIL_EXTERN_C_END

#endif
