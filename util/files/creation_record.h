// The record of created directories, which several processes append to.
#ifndef UTIL_FILES_CREATION_RECORD_H
#define UTIL_FILES_CREATION_RECORD_H

#include "util/files/record.h"
#include "util/internal/scoped_handle.h"
#include "util/text/byte_string.h"

namespace util {

// The tracking file, opened as the runtime's mode "a" opens a file. Processes append in turns: the
// turn is a lock on one byte far after all records. Windows appends atomically even without a turn.
// Other platforms and some servers look for the end first and write then.
//
// Whoever may read the file can lock it as a whole, so the wait for a turn must be limited.
class CreationRecord {
  public:
    // Returns false, with the last error, if the file cannot be opened. Raises std::bad_alloc.
    bool open(const String& path);

    // Appends the record of a directory. Does nothing if the file is not open, or if an earlier
    // record was torn. Raises nothing: a created directory must not miss its record because memory
    // runs out.
    void append(const TextRecord& directory);

  private:
    bool try_to_append(const TextRecord& directory);

    // About three seconds for all records together, because a pause may last 16 ms.
    static constexpr int most_pauses = 200;

    FileHandle m_file;
    int m_pauses_left = most_pauses;
    bool m_torn = false;
};

}  // namespace util

#endif
