// 32-bit emulation on 64-bit Windows and its redirection of the system directory.
//
// Any thread may call these; redirection is a setting of the calling thread.
#ifndef UTIL_HOST_WOW64_H
#define UTIL_HOST_WOW64_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Sets *flag to 1 when this process runs under 32-bit emulation, else to 0. Returns 0, or the
// system's error code when the question fails; 87 when flag is null. A system without emulation
// answers 0.
//     unsigned char emulated;
//     UTIL_getIsWow64(&emulated)   // 0; emulated is 0 in a 64-bit program
UTIL_API unsigned long UTIL_getIsWow64(unsigned char* flag);

// Turn the redirection off, with its former state in *oldValue, and back on with that state. Not 0
// on success, and at once when there is nothing to do: in a process that is not emulated, or that
// cannot tell; *oldValue stays as it was then. 0 with the platform's last error when the switch
// fails or the system lacks it. A call that reaches the switch keeps one more reference to
// kernel32.dll, which never leaves a process anyway; this is meant.
//     void* state = nullptr;
//     if (UTIL_VornWow64DisableWow64FsRedirection(&state)) {
//         // C:\Windows\System32 is the 64-bit one
//         UTIL_VornWow64RevertWow64FsRedirection(state);
//     }
UTIL_API int UTIL_VornWow64DisableWow64FsRedirection(void** oldValue);
UTIL_API int UTIL_VornWow64RevertWow64FsRedirection(void* oldValue);

UTIL_EXTERN_C_END

#endif
