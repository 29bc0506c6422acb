/// @file
/// Prepares the directory tree on which a replica is mounted. A record of the created directories
/// allows a later clean-up to remove exactly those.
#ifndef UTIL_FILES_PREPARE_DIRECTORY_H
#define UTIL_FILES_PREPARE_DIRECTORY_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

/// Creates every missing directory of `path`, from the top, and appends each created directory to
/// the tracking file.
///
/// Returns 0, or the platform's error code that stopped it. Directories created before a failure
/// stay and are in the tracking file. The steps:
///
/// 1. Removes the backslashes at both ends of `path` and appends one. By design, a share
///    (`"\\server\share\dir"`) and a rooted path (`"\dir"`) thus become paths relative to the
///    current directory. Map a share to a drive letter first. A slash is no separator: `"C:/a/b"`
///    is one directory, and its parent must exist.
/// 2. Opens `trackingFile` for appending. A missing file is created. An empty path means no record.
///    If the open fails, `message`, `failedPath` and kind 1 report it as a warning: the directories
///    are created without a record, and the result can still be 0.
/// 3. Prepares `"C:\a\b"` as `C:\`, `C:\a\`, `C:\a\b\`, each with UTIL_makeNewNTDir(). Skips a
///    directory that exists or is in use. The platform limits the length of a path. A path that it
///    refuses is a failure of kind 3.
///
/// The failures:
///
///     kind  failedPath         message
///     1     the tracking file  "Failed to open the file ...": a warning, and a later failure
///                              replaces it
///     2     the directory      "Failed to create the directory ... A file with the same
///                              name exists. Please remove the file and try again\n"; the
///                              result is 183
///     3     the directory      "Failed to create the directory ... Please create required
///                              directory(s) manually and try again.\n"; the platform's code
///
/// If the result is not 0, the system's text for the last error, in UTF-8, is appended to
/// `message`. For a file in the way this text may be about something else. Two failures set neither
/// `failedPath` nor `*kind` and only append this text to `message`: a first directory that returns
/// 3 (no such drive), and a path of nothing but backslashes (also 3). All three outputs are
/// unchanged if there is nothing to report. `kind` may be null. Returns 8 when out of memory.
/// `message` may then be incomplete.
///
/// The tracking file is a series of text records, as XrFile's operators read them, in order of
/// creation. Each is a directory with its closing backslash. This function never reads the file.
///
/// Several processes may prepare the same tree at the same time, also with the same tracking file.
/// Each created directory gets one record, from the process that created it. Processes append in
/// turns, and a turn is a lock on one byte far after all records. Any process that may open the
/// file can lock it, so the wait is limited to about 3 seconds in a call, for all records together.
/// Then records are written without a turn. On Windows they still never mix. Where the platform or
/// the server does not append atomically, two records without a turn may overwrite each other.
///
/// The record is written right after the directory is created, but the two are not one step. A
/// killed process leaves at most one directory without a record: the last one that it created. A
/// failed write (disk full, a lock on the whole file that lasts longer than the wait) is not
/// reported. If nothing of the record was written, only that directory lacks its record. If a part
/// was written, this call records nothing more, because a reader would misread what follows.
///
/// Any thread may call it. Raises nothing.
///
///     String message, failed;
///     int kind = 0;
///     // returns 0
///     UTIL_prepareAndCreateDir("C:\\mnt\\r1", message, "C:\\agent\\made.rec", failed, &kind);
///     XrFile record("C:\\agent\\made.rec", "r");
///     String directory;
///     record >> directory;  // "C:\mnt\r1\", if C:\mnt existed before
UTIL_API unsigned long UTIL_prepareAndCreateDir(const String& path, String& message,
                                                const String& trackingFile, String& failedPath,
                                                int* kind);

UTIL_EXTERN_C_END

#endif
