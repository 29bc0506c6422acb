// The machine's logical drives as mount records.
#ifndef UTIL_PORTABLE_KSL_MOUNT_H
#define UTIL_PORTABLE_KSL_MOUNT_H

#include "util/export.h"

// One record of ksl_getMntData, 1056 bytes. Texts end in a NUL within their field; bytes behind it
// keep what the caller had there.
struct ksl_mount_record {
    char serial[260];       // the volume's serial number as signed decimal text
    char root[260];         // root path as the platform lists it, "C:\"
    char file_system[260];  // "NTFS"
    char unused[260];       // never written
    // By drive type: "unknown", "" (no root directory), "removabl" (removable, cut on purpose to
    // eight characters), "rw" (fixed), "nfs" (remote), "cdfs" (CD-ROM), "ramdisk". Of any other
    // type, as of every type, byte 8 is set to NUL; nothing else is written then.
    char type[16];
};

UTIL_EXTERN_C_BEGIN

// The number of logical drives, or -1 when the platform names none.
UTIL_API int ksl_getNumMntStructures(void);

// Writes a record for each drive whose volume answers, in the platform's order, and returns how
// many were written. records holds *capacity records back to back; no more are ever written. When
// there are more drives than that, returns 0 with their number in *capacity, records untouched and
// allowed to be null. Returns -1 when the platform lists no drives or a call fails, and when
// capacity, or records with any capacity, is null. A drive without a medium is passed over without
// asking the user to insert one. Any thread may call it.
//
//     int capacity = 26;
//     std::vector<ksl_mount_record> drives(26);
//     int count = ksl_getMntData(reinterpret_cast<char*>(drives.data()), &capacity);
UTIL_API int ksl_getMntData(char* records, int* capacity);

UTIL_EXTERN_C_END

#endif
