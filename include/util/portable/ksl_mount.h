/// @file
/// The machine's logical drives as mount records.
#ifndef UTIL_PORTABLE_KSL_MOUNT_H
#define UTIL_PORTABLE_KSL_MOUNT_H

#include "util/export.h"

/// One record of ksl_getMntData. It has 1056 bytes. Texts are UTF-8 and end in a NUL within their
/// field. Bytes after the NUL are unchanged.
struct ksl_mount_record {
    char serial[260];       ///< Serial number as signed decimal text: `"-19088744"`.
    char root[260];         ///< Root path as the platform lists it: letter, colon, backslash.
    char file_system[260];  ///< `"NTFS"`, or `""` for a name that does not convert.
    char unused[260];       ///< Never written.

    /// The drive type: `"unknown"`, `""` (no root directory), `"removabl"` (removable; by design
    /// cut to eight characters), `"rw"` (fixed), `"nfs"` (remote), `"cdfs"` (CD-ROM) or
    /// `"ramdisk"`. For any other type no text is written. Byte 8 is set to NUL for every type.
    char type[16];
};

UTIL_EXTERN_C_BEGIN

/// Returns the number of logical drives, or -1 if the platform lists none.
UTIL_API int ksl_getNumMntStructures(void);

/// Writes a record for each drive whose volume answers, in the platform's order. Returns the number
/// of records written. `records` has room for `*capacity` records back to back. No more are
/// written.
///
/// If there are more drives than `*capacity`, returns 0 and stores their number in `*capacity`.
/// `records` is unchanged then, and may be null. Returns -1 if the platform lists no drives, if a
/// call fails, if `capacity` is null, and if `records` is null with enough capacity. Skips empty
/// drives without showing the insert-disk dialog. Any thread may call it.
///
///     int capacity = 26;
///     std::vector<ksl_mount_record> drives(26);
///     int count = ksl_getMntData(reinterpret_cast<char*>(drives.data()), &capacity);
UTIL_API int ksl_getMntData(char* records, int* capacity);

UTIL_EXTERN_C_END

#endif
