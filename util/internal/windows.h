// The only place that includes the platform's headers. So their macros are the same everywhere:
// wide and narrow calls are named with their suffix, and min and max are the standard library's.
#ifndef UTIL_INTERNAL_WINDOWS_H
#define UTIL_INTERNAL_WINDOWS_H

#ifndef _WIN32_WINNT
#define _WIN32_WINNT 0x0601  // Windows 7 and later
#endif
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif

#include <windows.h>
#include <winsock2.h>

#endif
