// A setting that the library's callers share.
#ifndef UTIL_HOST_CLONE_SYNC_H
#define UTIL_HOST_CLONE_SYNC_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Initially false. The library neither reads nor writes it: its meaning is among the callers that
// share it in one process, and so are its thread rules.
extern UTIL_API bool g_bCloneSyncSerialized;

UTIL_EXTERN_C_END

#endif
