/// @file
/// The local machine's short host name and its IPv4 addresses.
///
/// Any thread may call these functions. They start the socket library of the platform
/// (version 2.0). By design, they leave it started: later socket calls of the program find it
/// ready. They do not stop it after a failure either, unless it grants another version.
#ifndef UTIL_PORTABLE_KSL_HOSTNAME_H
#define UTIL_PORTABLE_KSL_HOSTNAME_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

/// Writes the host name up to its first "." into the `size` bytes at `buf`. `size` must be above
/// the length written, even if no NUL is written:
///
///     host name               written
///     "alpha"                 "alpha" and a NUL
///     "alpha.example.test"    the five bytes "alpha", by design without a NUL
///
/// So pass a zeroed buffer.
///
/// By design, the bytes of the socket library are passed on unconverted. Host names are ASCII by
/// the rules of DNS. Any other name is in the process's ANSI code page, not in UTF-8. Characters
/// that the page lacks are replaced by similar ones or by "?". Do not use such a name as UTF-8, and
/// do not tell machines apart by it. Calls of the socket library find the machine by these bytes.
///
/// Returns 0. Returns -1, with `buf` unchanged, if `size` is too small, if the socket library does
/// not start with version 2.0, or if it returns no name. A null `buf` gives -1 with errno 22 before
/// anything is started. Other failures do not set errno.
///
///     char name[256] = "";
///     ksl_gethostname(name, sizeof name);   // 0, name is "alpha"
UTIL_API int ksl_gethostname(char* buf, unsigned int size);

/// Looks up the short host name and writes at most `max` of its addresses. They are packed records
/// of 21 bytes, back to back:
///
///     bytes 0-16     "le0", "le1", ...: the address's index in the lookup, padded with NULs
///     bytes 17-20    the IPv4 address in network byte order
///
/// `records` must hold `max` * 21 bytes. All of them are zeroed first. `*count` is set to the
/// number of records written. Addresses beyond `max` are skipped.
///
/// Returns 0. Returns -1, with `*count` 0 and zeroed records, if ksl_gethostname fails, if the
/// lookup fails, or if the lookup returns anything but IPv4 addresses. A null `count` or `records`,
/// or a negative `max`, gives -1 with errno 22 and writes nothing. Other failures do not set errno.
///
///     char records[4 * 21];
///     int count;
///     KslIpAddrList(4, &count, records);   // 0; with one address count is 1, records is "le0"
UTIL_API int KslIpAddrList(int max, int* count, char* records);

UTIL_EXTERN_C_END

#endif
