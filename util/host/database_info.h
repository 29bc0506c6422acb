// Reads where the replication server's database is, and the credentials for it.
#ifndef UTIL_HOST_DATABASE_INFO_H
#define UTIL_HOST_DATABASE_INFO_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Reads "Database Path" of `key` under HKEY_LOCAL_MACHINE into `dbPath` (UTF-8). If that is a
// network path, also reads "DatabaseUsername" into `user` and "DatabasePassword" into `password`. A
// network path is "\\HOST\SHARE\..." with neither name empty; the backslash after SHARE is
// optional. Types are not checked, and a value ends at its first NUL. Stored texts are returned in
// UTF-8, by way of the ANSI code page: a character that the page lacks becomes its best fit or "?".
// Stored bytes are returned unchanged.
//
// Returns true for a path that is no network path; `user` and `password` are then unchanged.
// Returns true for a network path if both credentials exist and are not empty. Otherwise returns
// false: the key cannot be opened with full access (which needs administrative rights), a value is
// missing or too long (the path and the password may take 261 bytes), or out of memory. `dbPath` is
// set as soon as the path has been read, and emptied if it cannot be converted. `user` and
// `password` are set together or not at all.
//
// By design, creates a missing key. By design, the user name may take no more bytes than the stored
// path does (in UTF-16, with its NUL). By design, leaves the key open if the path cannot be
// converted to UTF-8.
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
