// Where the replication server's database is, and with which credentials it is reached.
#ifndef UTIL_HOST_DATABASE_INFO_H
#define UTIL_HOST_DATABASE_INFO_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Reads "Database Path" of the key under HKEY_LOCAL_MACHINE into dbPath (UTF-8) and, when that is a
// network path, "DatabaseUsername" and "DatabasePassword" into user and password. A network path is
// "\\HOST\SHARE\..." with neither name empty, the backslash behind SHARE not needed. Types are not
// checked; a value ends at its first NUL. Stored texts come in UTF-8, by way of the ANSI code page:
// characters that the page lacks come as its best fit or "?". Stored bytes come as they are.
//
// True for a path that is no network path, with user and password untouched, and for a network path
// with both credentials found and not empty. Otherwise false: when the key cannot be opened with
// full access (which needs administrative rights), when a value is missing or too long (the path
// and the password may take 261 bytes), or when memory runs out. dbPath is set as soon as the path
// has been read, and emptied when it cannot be converted; user and password are set together or not
// at all.
//
// Meant as they are: a missing key is created; the user name may take no more bytes than the path
// does as it is stored, in UTF-16 with its NUL; and when the path cannot be converted to UTF-8 the
// key stays open.
//
// Any thread may call it.
//     UTIL_getTSSEDBInfoFromRegistry("SOFTWARE\\Acme\\Db", path, user, password)
//     // true; path is "D:\db\data.db"
UTIL_API bool UTIL_getTSSEDBInfoFromRegistry(String key, String& dbPath, String& user,
                                             String& password);

UTIL_EXTERN_C_END

#endif
