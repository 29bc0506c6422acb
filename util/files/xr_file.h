// XrFile: a named file opened on a descriptor, with sticky error reporting and a small
// self-delimiting record format.
#ifndef UTIL_FILES_XR_FILE_H
#define UTIL_FILES_XR_FILE_H

#include <cstdint>
#include <string>

#include "util/export.h"
#include "util/text/byte_string.h"

// Names are UTF-8. Every failure is recorded in the object instead of raised: test Error() after a
// run of operations. The flag is sticky; only a successful open clears it. There is no buffer: when
// a writing operation returns, the bytes have been handed to the operating system. Each operation
// therefore costs a system call, many times what a buffered stream takes for a short record.
//
// Two styles of failure are kept apart. Read, Readln, Write, reading a number and Close only set
// the error. IsEmpty, Eof, Seek, SeekToBegin, a failed open, reading a string's bad length and a
// failed assignment also clear isValid(). After a failed position or length the descriptor stays
// with the object: Close() or the destructor gives it back, but Open() on an object that is not
// valid leaves it behind. This is meant; call Close() first.
//
// Error codes: of a transfer that moved nothing, and of Readln, Seek and Close, the platform's last
// error; of any other failed transfer errno; -1 for the object's own failures: a null buffer, an
// empty name, a bad length record, no memory for a record, a failed seek back in Eof().
//
// Positions and sizes are 32 bits: Seek, Tell, Size, IsEmpty and Eof serve files below 2 GB. Larger
// files can be read and written in sequence. One transfer moves at most 2^31 - 1 bytes.
//
// Threads: one object, and all objects that share a position because one was assigned or copied
// from another, belong to one thread at a time. Raises std::bad_alloc when a name or a text cannot
// be allocated, and what UTF8_open raises when it has no memory.
//
//     XrFile file("C:\\agent\\state.rec", "w");
//     file << 42 << "ab";                 // bytes: '4' '2' 0 '3' 0 'a' 'b' 0
//     if (file.Error()) return;
//     int number = 0; String text;
//     file.Open("r");
//     file >> number >> text;             // 42, "ab"
class UTIL_API XrFile {
  public:
    // No name, nothing open, no error, binary mode.
    XrFile();

    // Opens name at once; ask isValid() or Error() for the outcome. Null is the empty name.
    XrFile(const char* name, const char* mode);

    // Copies every member: both objects then hold the SAME descriptor number, and both close it.
    // Assignment duplicates instead. The difference is meant.
    XrFile(const XrFile& other);

    // Takes a duplicate of other's descriptor, with its name, flags, state and error. The target's
    // former descriptor is not closed, and its text or binary setting stays its own; both are
    // meant. When the duplicate fails, records the last error and is not valid.
    XrFile& operator=(const XrFile& other);

    // Closes the descriptor if there is one.
    virtual ~XrFile();

    // Opens the file, closing a valid one first. Returns 0; the platform's error code when the open
    // fails (2: no such file), or errno where the platform was not asked; -1 when the name is
    // empty. When the platform runs out of handles (code 4) the open is tried seven times in all.
    //
    // mode is searched for letters; order and repetition do not matter:
    //   r  read only                 w  write, create, truncate       a  write, create, append
    //   +  with any of them: read and write                           t  text mode, else binary
    // Meant as it is: "rw" is read-only, create and truncate. "" is binary, read-only. Null is read
    // and write, create, with the runtime's default translation; binary or text records stay as
    // they were set. A created file may be read and written by its owner.
    int Open(const char* mode);
    int Open(const std::string& name, const char* mode);

    // Closes the descriptor. False, with the error recorded, only when the close itself fails; the
    // object is closed in every case.
    bool Close();

    // Closes and opens again with the same flags: the position returns to the start, and a file
    // opened with "w" is emptied. This is meant. Returns what the open returns.
    int Flush();

    // Moves count bytes. A transfer that is interrupted (errno 4) goes on up to five times. True
    // when all went, and also when the file ended early: ask Tell() for how far. False at the end
    // of the file, for a count of 0, a null buffer and every failure. A transfer that succeeds, one
    // of the operators below included, leaves errno at 0.
    bool Read(char* buf, std::uint64_t count);
    bool Write(const char* buf, std::uint64_t count);

    // Reads up to and including the next line feed, at most size bytes. No NUL is written, and a
    // carriage return stays. False when the file ends first, though the bytes are in buf. A size of
    // 0 is no limit. The position afterwards is right behind the line.
    bool Readln(char* buf, std::uint64_t size);

    // Position in bytes from the start. Seek and SeekToBegin return false on failure; Tell returns
    // -1 and records nothing.
    bool Seek(int offset);
    bool SeekToBegin();
    long Tell() const;

    // Size in bytes (its low 32 bits) and time of the last change in seconds since 1970 UTC. Both
    // are 0 without an open file; descriptor 0 counts as none.
    long Size() const;
    std::int64_t LastModified() const;

    // True when the file has no bytes, and on failure. Leaves the position at the start.
    bool IsEmpty();

    // True when the position is at the end, and on failure. Leaves the position where it was.
    bool Eof();

    // Whether a failure was recorded since the last successful open. The second form also stores
    // the code last recorded.
    bool Error() const;
    bool Error(int& code) const;

    // Whether the file is open: from a successful open to Close() or a failure that clears it.
    bool isValid() const;

    // Whether the file exists. The static form takes the mode of _access: 0 existence, 2 write,
    // 4 read, 6 both.
    bool Exists() const;
    static bool Exists(const String& path, int mode);

    // The name after its last slash or backslash: "C:\\dir/sub\\file.txt" gives "file.txt", "dir/"
    // gives "".
    std::string getName() const;

    // In binary mode a number is its decimal text and a zero byte; a text is the number length + 1,
    // then its bytes and a zero byte. In text mode both are the bare characters; an empty text is
    // then a transfer of nothing, which is recorded as a failure. Null is the empty text. Texts end
    // at their first NUL, but a std::string is written at its full size. Each operator is one
    // transfer. A char is written as its number.
    XrFile& operator<<(int value);
    XrFile& operator<<(long value);
    XrFile& operator<<(unsigned short value);
    XrFile& operator<<(const char* text);
    XrFile& operator<<(const std::string& text);
    XrFile& operator<<(const String& text);

    // A number is read up to a zero byte, in either mode, as atoi reads it; what is no number gives
    // 0. On failure the target stays as it was.
    XrFile& operator>>(int& value);
    XrFile& operator>>(long& value);
    XrFile& operator>>(unsigned short& value);

    // A text ends at its first zero byte. In text mode one read of at most 256 bytes is taken. In
    // binary mode a record cut short gives the bytes that are there; a length that is 0, negative,
    // no number, or cannot be allocated is failure -1. On failure the target stays as it was.
    XrFile& operator>>(std::string& text);
    XrFile& operator>>(String& text);

  private:
    int m_open_file();
    bool fail(int code);
    bool fail_and_invalidate(int code);
    bool write_number(int value);
    bool write_text(const char* text, std::uint64_t size);
    bool read_number(int& value);
    bool read_text(std::string& text);

    // The layout is fixed: programs derive from and embed this class.
    std::string m_name;
    int m_fd;
    int m_error_code;
    int m_access_mode;  // what Exists() asks for; always 0
    bool m_error;
    bool m_is_open;
    bool m_binary;
    bool m_seekable;  // a disk file without translation, where reading ahead can be undone
    int m_flags;
};

#endif
