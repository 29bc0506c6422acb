// The local machine's short host name and its IPv4 addresses.
//
// Both functions may be called from any thread. They start the socket library of the platform
// (version 2.0) and leave it started, so that later socket calls of the program find it ready; it
// is not stopped after a failure either, unless it grants another version. This is meant.
#ifndef UTIL_PORTABLE_KSL_HOSTNAME_H
#define UTIL_PORTABLE_KSL_HOSTNAME_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Writes the host name up to its first "." into the size bytes at buf. size must be above the
// length written, also where no NUL is written:
//
//     host name               written
//     "alpha"                 "alpha" and a NUL
//     "alpha.example.test"    the five bytes "alpha", NO NUL: pass a zeroed buffer (this is meant)
//
// Returns 0; -1 when size is too small, when the socket library does not start with version 2.0 or
// when it has no name, and then buf is as it was. A null buf gives -1 with errno 22, before
// anything is started; errno is not set otherwise.
//
//     char name[256] = "";
//     ksl_gethostname(name, sizeof name);   // 0, name is "alpha"
UTIL_API int ksl_gethostname(char* buf, unsigned int size);

// Looks the short host name up and writes its addresses, max at most, as packed records of 21
// bytes, back to back:
//
//     bytes 0-16     "le0", "le1", ...: the address's index in the lookup, padded with NULs
//     bytes 17-20    the IPv4 address in network byte order
//
// records must hold max * 21 bytes, all of which are zeroed first. *count becomes the number of
// records written. Addresses beyond max are passed over silently.
//
// Returns 0; -1 when the name cannot be had or looked up, or when the lookup gives anything but
// IPv4 addresses, and then *count is 0 and the records are zeroes. A null count or records, or a
// negative max, gives -1 with errno 22 and writes nothing; errno is not set otherwise.
//
//     char records[4 * 21];
//     int count;
//     KslIpAddrList(4, &count, records);   // 0; with one address count is 1, records is "le0"
UTIL_API int KslIpAddrList(int max, int* count, char* records);

UTIL_EXTERN_C_END

#endif
