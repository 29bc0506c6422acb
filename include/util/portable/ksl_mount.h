// The machine's logical drives as mount records.
#ifndef UTIL_PORTABLE_KSL_MOUNT_H
#define UTIL_PORTABLE_KSL_MOUNT_H

#include "util/export.h"

// One record of ksl_getMntData, 1056 bytes. Texts are UTF-8 and end in a NUL within their field.
// Bytes after the NUL keep what the caller had there.
struct ksl_mount_record {
    char serial[260];       // the volume's serial number as signed decimal text, "-19088744"
    char root[260];         // root path as the platform lists it: "C:\"
    char file_system[260];  // "NTFS"; "" for a name that cannot be converted
    char unused[260];       // never written
    // By drive type: "unknown", "" (no root directory), "removabl" (removable; by design cut to
    // eight characters), "rw" (fixed), "nfs" (remote), "cdfs" (CD-ROM), "ramdisk". Byte 8 is set to
    // NUL for every type. Nothing else is written for any other type.
    char type[16];
};

UTIL_EXTERN_C_BEGIN

// Returns the number of logical drives, or -1 when the platform names none.
UTIL_API int ksl_getNumMntStructures(void);

// Writes a record for each drive whose volume answers, in the platform's order. Returns the number
// of records written. `records` has room for `*capacity` records back to back; no more are written.
//
// When there are more drives than `*capacity`, returns 0 and stores their number in `*capacity`.
// `records` is unchanged then, and may be null. Returns -1 when the platform lists no drives, when
// a call fails, when `capacity` is null, and when `records` is null with enough capacity. Skips
// empty drives without showing the insert-disk dialog. Any thread may call it.
//
//     int capacity = 26;
//     std::vector<ksl_mount_record> drives(26);
//     int count = ksl_getMntData(reinterpret_cast<char*>(drives.data()), &capacity);
UTIL_API int ksl_getMntData(char* records, int* capacity);

UTIL_EXTERN_C_END

#endif
