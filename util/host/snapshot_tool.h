// Finding the command-line tool that takes the storage array's snapshots.
#ifndef UTIL_HOST_SNAPSHOT_TOOL_H
#define UTIL_HOST_SNAPSHOT_TOOL_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// The first of these that exists, in out: 0. With none, -1 and out is "".
// 1. "tssnap.exe" beside the running program;
// 2. "C:\Program Files\Vorn\Halcyra Vexsnap\vexsnap.exe";
// 3. "C:\Program Files\Vorn\Halcyra Vexsnap for Win2K\vexsnap.exe";
// 4. "vexsnap.exe" along PATH, as Tools::absolute_pathname searches it.
// The tool is only found, never run. -1 also when memory runs out. Any thread may call it.
//     String tool;
//     UTIL_GetHalcVexsnapFileName(tool)   // 0, tool is "C:\agent\bin\tssnap.exe"
UTIL_API int UTIL_GetHalcVexsnapFileName(String& out);

UTIL_EXTERN_C_END

#endif
