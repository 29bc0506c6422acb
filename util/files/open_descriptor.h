// Not installed. Opening a descriptor with the retry rule of XrFile.
#ifndef UTIL_FILES_OPEN_DESCRIPTOR_H
#define UTIL_FILES_OPEN_DESCRIPTOR_H

namespace util {

struct OpenResult {
    int descriptor;  // -1 on failure
    int code;        // why: the platform's last error, or errno where it was not asked
};

// Opens the UTF-8 name with the runtime's flags; a created file may be read and written by its
// owner. When the platform runs out of handles (code 4) the open is tried seven times in all.
// Raises what UTF8_open raises.
OpenResult open_descriptor(const char* name, int flags);

}  // namespace util

#endif
