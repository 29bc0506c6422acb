/// @file
/// Reads texts from the machine's registry.
///
/// Keys are under HKEY_LOCAL_MACHINE. Texts are UTF-8. The library uses the platform's ANSI calls:
/// a key or value name that the ANSI code page cannot hold exactly, or in 32,766 bytes, is a
/// missing one. A text is returned as it is stored, even if the ANSI call replaced characters that
/// the page lacks. Any thread may call these functions.
#ifndef UTIL_HOST_REGISTRY_H
#define UTIL_HOST_REGISTRY_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

/// Reads the value `name` of `key` into `out` and returns 0. Returns -1 on failure, also when out
/// of memory. `out` is then unchanged.
///
/// The value must be of type REG_SZ or REG_EXPAND_SZ, which is not expanded. It may take 1024 bytes
/// in the ANSI code page with its NUL. Its last stored byte must be a NUL. A value of no bytes is
/// the empty text. The `name` "" is the key's default value.
///
/// By design, each call that opens the key leaves a block of 1024 bytes allocated. Example:
///
///     String text;
///     UTIL_GetRegistryValue("SOFTWARE\\Acme\\Agent", "Home", text)   // 0, text is "C:\acme"
UTIL_API int UTIL_GetRegistryValue(String const& key, String const& name, String& out);

/// Reads where the replication server's database is, and the credentials for it.
///
/// Reads "Database Path" of `key` into `dbPath`. If this is a network path, also reads
/// "DatabaseUsername" and "DatabasePassword" into `user` and `password`. A network path is
/// `\\HOST\SHARE\...` with neither name empty. The backslash after SHARE is optional. Types are not
/// checked. A value ends at its first NUL. Stored bytes that are not of a text type are returned
/// unchanged.
///
/// Returns true for a path that is no network path, with `user` and `password` unchanged. Returns
/// true for a network path if both credentials are found and not empty. Otherwise returns false:
/// - if the key cannot be opened with full access, which needs administrative rights;
/// - if a value is missing or too long: the path and the password may take 261 bytes;
/// - if the path cannot be converted to UTF-8: `dbPath` is then empty;
/// - when out of memory.
///
/// `dbPath` is set as soon as the path has been read. `user` and `password` are set together or not
/// at all.
///
/// By design:
/// - A missing key is created, if the ANSI code page can hold its name.
/// - The user name may take no more bytes than the stored path takes in UTF-16 with its NUL.
/// - The key stays open if the path cannot be converted to UTF-8.
///
/// The library clears its own copies of the password before it frees them, on success and on
/// failure. The caller clears `password`, also the text that it held before the call. Copies inside
/// the platform's registry calls belong to the platform. Example:
///
///     UTIL_getTSSEDBInfoFromRegistry("SOFTWARE\\Acme\\Db", path, user, password)
///     // true; path is "D:\db\data.db"
UTIL_API bool UTIL_getTSSEDBInfoFromRegistry(String key, String& dbPath, String& user,
                                             String& password);

UTIL_EXTERN_C_END

#endif
