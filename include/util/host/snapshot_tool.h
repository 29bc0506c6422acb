// Finding the command-line tool that takes the storage array's snapshots.
#ifndef UTIL_HOST_SNAPSHOT_TOOL_H
#define UTIL_HOST_SNAPSHOT_TOOL_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Finds the first of these that exists, stores its path in `out` and returns 0. Returns -1 and sets
// `out` to "" when none exists, or when out of memory.
// 1. "tssnap.exe" beside the running program, in the directory of Tools::find_location;
// 2. "C:\Program Files\Vorn\Halcyra Vexsnap\vexsnap.exe";
// 3. "C:\Program Files\Vorn\Halcyra Vexsnap for Win2K\vexsnap.exe";
// 4. "vexsnap.exe" along PATH, as Tools::absolute_pathname searches it.
// The tool is only found, never run. Any thread may call it.
//     String tool;
//     UTIL_GetHalcVexsnapFileName(tool)   // 0, tool is "C:\agent\bin\tssnap.exe"
UTIL_API int UTIL_GetHalcVexsnapFileName(String& out);

UTIL_EXTERN_C_END

#endif
