/// @file
/// Small services of the system: privileges, hardware rescan, temporary directory, error text,
/// clock.
///
/// Any thread may call these functions.
#ifndef UTIL_HOST_SYSTEM_H
#define UTIL_HOST_SYSTEM_H

#include "util/export.h"
#ifdef __cplusplus
#include "util/text/byte_string.h"
#endif

/// A time within the current minute.
struct UTIL_TimeOfDay {
    long seconds;       ///< of the current minute, 0 to 59
    long microseconds;  ///< whole milliseconds, 0 to 999000
};

UTIL_EXTERN_C_BEGIN

/// Turns the privilege of that name on (`enable` not 0) or off for the whole process.
///
/// The name is a text like "SeBackupPrivilege". Returns 0, or the system's error code: 1313 for an
/// unknown name, 8 when out of memory. A null name is unknown. So is a name that the ANSI code page
/// cannot hold exactly, or in 32,766 bytes.
///
/// By design, 0 means that the system took the request. For a privilege that the process does not
/// hold, the result is also 0, with last error 1300. By design, the process's token stays open if
/// the switch itself fails, one handle for each such call. Example:
///
///     UTIL_ModifyPrivilege("SeBackupPrivilege", 1)   // 0
UTIL_API unsigned long UTIL_ModifyPrivilege(const char* name, int enable);

/// Stores the current UTC time within the minute and returns 0. Returns -1 if `time` is null.
///
/// By design, the seconds are those of the minute and count from no epoch. So the record serves for
/// intervals below a minute. Example:
///
///     struct UTIL_TimeOfDay now;
///     UTIL_GetTimeOfDay(&now)   // 0; at 12:34:56.789, 56 and 789000
UTIL_API int UTIL_GetTimeOfDay(struct UTIL_TimeOfDay* time);

#ifdef __cplusplus
/// Sets `out` to the system's text for the calling thread's last error. The text is in the user's
/// language and UTF-8, with the line end that the system adds.
///
/// Sets `out` to "" if the system has no text for the code, or when out of memory. Preserves the
/// last error. Example:
///
///     SetLastError(5);
///     UTIL_FormatMessage(out);   // "Access is denied.\r\n"
UTIL_API void UTIL_FormatMessage(String& out);

/// Rescans the whole device tree for new hardware, waits until this is done and returns 0.
/// `message` is then unchanged.
///
/// Returns -1 if a call fails. `message` then names the call and, by design, the platform's last
/// error instead of the device manager's own result. When out of memory for the message, returns -1
/// and its contents are unspecified. Example:
///
///     String message;
///     if (UTIL_SetupPnPRescan(message) != 0) log(message);
///     // "UTIL_SetupPnPRescan::CM_Locate_DevNode_Ex failed with error: 5"
UTIL_API int UTIL_SetupPnPRescan(String& message);

/// Returns the platform's directory for temporary files in UTF-8, without its trailing backslash.
///
/// Returns the environment variable SystemRoot instead, and "." if that is not set:
/// - if the platform names none, or something that is no directory;
/// - if the name has 260 bytes or more with its backslash;
/// - if the code page of file calls cannot hold the name exactly, since the library uses the
///   platform's ANSI calls.
///
/// Returns "" when out of memory. The environment belongs to the whole process. Example:
///
///     UTIL_GetTempDirectory()   // "C:\Temp"
UTIL_API String UTIL_GetTempDirectory();
#endif

UTIL_EXTERN_C_END

#endif
