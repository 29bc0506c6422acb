// The files of a message: where it is written, and where it is dropped.
#ifndef UTIL_MAIL_MESSAGE_DROP_H
#define UTIL_MAIL_MESSAGE_DROP_H

#include <string>

namespace util {

// Paths are UTF-8. The calls that the platform offers for temporary names and for the move are its
// ANSI ones, so a directory that the page of file calls cannot hold exactly is a missing one: it
// never becomes another. Any thread and any process may call these at the same time, also for the
// same directories. They raise std::bad_alloc, and the platform's own error for lack of memory from
// the UTF-8 layer.

// The directory for temporary files, into out: false, with the last error, when the platform names
// none. out is "", which names no directory, when the path takes 255 bytes or more.
bool temporary_directory(std::string& out);

// Makes an empty file with a new name in the directory, as GetTempFileNameA does, and returns its
// path; "" with the last error on failure. A directory of more than 246 bytes is too long (111).
std::string create_temporary_file(const std::string& directory);

enum class Drop { done, no_name, not_moved };

// Moves `file` into `directory`, under a new name there with "1" at its end. Never replaces a file:
// a name that is taken, by an old message or by another sender at the same moment, is skipped. An
// empty placeholder keeps the name (without its "1") until just before the move; none is left over.
//
// Returns no_name, with the last error, if the platform gives no name: the directory is missing, is
// full, or takes no file. Returns not_moved if the move fails, or if 4096 names in a row are taken.
// After any failure `file` is where it was.
Drop drop_message(const std::string& file, const std::string& directory);

}  // namespace util

#endif
