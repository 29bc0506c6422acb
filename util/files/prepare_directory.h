// Preparing the directory tree on which a replica is mounted, with a record of what was created so
// that a later clean-up can remove exactly that.
#ifndef UTIL_FILES_PREPARE_DIRECTORY_H
#define UTIL_FILES_PREPARE_DIRECTORY_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Creates every missing directory of path, from the top, and appends each that it has created to
// the tracking file. Returns 0, or the platform's code that stopped it; what was created until then
// stays, and is in the tracking file. The steps:
//
//   1. Backslashes at both ends of the path are dropped, then one is put at its end. So a share
//      ("\\server\share\dir") becomes a path relative to the current directory, and so does "\dir".
//      This is meant; map a share to a drive letter first. A slash separates nothing: of "C:/a/b"
//      the whole is one directory, whose parent must exist.
//   2. The tracking file is opened for appending, unless its path is empty. When that fails,
//      message, failedPath and kind 1 say so, as a warning: the directories are created without a
//      record, and the result can still be 0.
//   3. "C:\a\b" is prepared as "C:\", "C:\a\", "C:\a\b\", each with UTIL_makeNewNTDir. A directory
//      that is there, or that anybody has open, is passed over. How long a path may be
//      is for the platform to say; one that it refuses is a failure of kind 3.
//
//   kind  failedPath         message
//   1     the tracking file  "Failed to open the file ...", a warning; gives way to a failure
//   2     the directory      "Failed to create the directory ... A file with the same name exists.
//                            Please remove the file and try again\n"; the result is 183
//   3     the directory      "Failed to create the directory ... Please create required
//                            directory(s) manually and try again.\n"; the platform's code
//
// When the result is not 0 the system's text for the last error, in UTF-8, is appended to message;
// for a file in the way it need not speak of the file. When the first directory gives 3 (no such
// drive), or the path holds nothing but backslashes (also 3), this text is appended to whatever
// message holds, and failedPath and *kind are left alone. All three stay as they were when nothing
// is to be said; kind may be null. 8 when memory runs out; message may then be incomplete.
//
// The tracking file is a series of string records as XrFile's operators read them, in order of
// creation, each a directory with its closing backslash. It is never read here. Processes may
// prepare the same tree at once, also with the same tracking file: each created directory gets one
// record, by the process that created it; for that a process may wait for the moment in which
// another appends its record. The record follows the creation at once, but the two are no single
// step: of a process that is killed at most one directory, the last it made, may lack its record. A
// record that cannot be written (a full disk) is not reported, and ends the recording of this call:
// the file may then end in half a record.
//
// Any thread may call it; nothing is raised.
//     String message, failed;
//     int kind = 0;
//     UTIL_prepareAndCreateDir("C:\\mnt\\r1", message, "C:\\agent\\made.rec", failed, &kind)   // 0
//     XrFile record("C:\\agent\\made.rec", "r");
//     String directory;
//     record >> directory;   // "C:\mnt\r1\", when C:\mnt was there before
UTIL_API unsigned long UTIL_prepareAndCreateDir(const String& path, String& message,
                                                const String& trackingFile, String& failedPath,
                                                int* kind);

UTIL_EXTERN_C_END

#endif
