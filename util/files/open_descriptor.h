// Opens a descriptor with the retry rule of XrFile.
#ifndef UTIL_FILES_OPEN_DESCRIPTOR_H
#define UTIL_FILES_OPEN_DESCRIPTOR_H

namespace util {

struct OpenResult {
    int descriptor;  // -1 on failure
    int code;        // on failure: the platform's last error, or errno if that is 0
};

// Opens the UTF-8 `name` with the runtime's open `flags`. A created file is readable and writable
// by its owner. If the platform is out of handles (code 4), it tries up to seven times in all.
// Raises what UTF8_open raises.
OpenResult open_descriptor(const char* name, int flags);

}  // namespace util

#endif
