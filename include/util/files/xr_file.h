/// @file
/// `XrFile`: a named file opened on a descriptor, with sticky error reporting and a small
/// self-delimiting record format.
#ifndef UTIL_FILES_XR_FILE_H
#define UTIL_FILES_XR_FILE_H

#include <cstdint>
#include <string>

#include "util/export.h"
#include "util/text/byte_string.h"

/// A file with a name (UTF-8) and a descriptor.
///
///     XrFile file("C:\\agent\\state.rec", "w");
///     file << 42 << "ab";                 // bytes: '4' '2' 0 '3' 0 'a' 'b' 0
///     if (file.Error()) return;
///     int number = 0; String text;
///     file.Open("r");
///     file >> number >> text;             // 42, "ab"
///
/// Operations raise nothing for a failure of the file. They record it in the object: call Error()
/// after a run of operations. The error is sticky: only a successful open clears it. There is no
/// write buffer: when a writing operation returns, the operating system has the bytes. Each
/// operation therefore costs a system call.
///
/// Failures are recorded in one of two styles:
/// - Read(), Readln(), Write(), `>>` of a number and Close() set the error and leave isValid()
///   unchanged (Close() always clears it).
/// - IsEmpty(), Eof(), Seek(), SeekToBegin(), a failed open, a bad length in `>>` of a text and a
///   failed assignment set the error and clear isValid(). The descriptor stays with the object.
///   Close() or the destructor closes it, but Open() on an object that is not valid leaves it open.
///   By design. Call Close() first.
///
/// The recorded code is:
/// - the platform's last error for a transfer that returned 0 (end of the file, a count of 0), and
///   for Readln(), Seek(), SeekToBegin(), IsEmpty(), Eof(), Close(), assignment and a failed seek
///   back after reading ahead;
/// - errno for any other failed transfer (9: no open descriptor, or not open for this), or the last
///   error if errno is 0;
/// - the code that Open() returns for a failed open;
/// - -1 for a null buffer, an empty name, a bad length in a record, no memory for a record, and a
///   failed seek back in Eof().
///
/// Positions and sizes have 32 bits: Seek(), Tell(), Size(), IsEmpty() and Eof() are for files
/// below 2 GB. Larger files can be read and written in sequence. One transfer moves at most
/// 2,147,483,647 bytes.
///
/// Readln() and the `>>` operators read ahead on disk files in binary mode, then seek back, so the
/// position is exact afterwards. If that seek fails, the operation fails: a `>>` target is
/// unchanged, and the position is up to 127 bytes too far. Pipes and files in text mode are read at
/// a system call per byte. Objects whose descriptor number was ever shared by a copy, in this
/// process, ask the platform before each of these operations what the number is now. That takes
/// longer than the operation.
///
/// Child processes inherit the descriptor if they inherit handles: those of ksl_system(),
/// ksl_popen() and UTIL_EnumHostsOnANetwork() do, those of ksl_system2() do not. By design. Call
/// Close() before starting a child that must not read the file.
///
/// Threads: one object belongs to one thread at a time, and so do all objects that share a position
/// because one was copied or assigned from another. Raises std::bad_alloc if a name or text cannot
/// be allocated, and what UTF8_open() raises if it is out of memory.
class UTIL_API XrFile {
  public:
    /// An object without name, descriptor and error, in binary mode.
    XrFile();

    /// Opens `name` at once. Call isValid() or Error() for the result. A null name is empty.
    XrFile(const char* name, const char* mode);

    /// Copies every member: both objects then have the SAME descriptor number, and both close it.
    /// After one has closed it, the other one works on whatever file gets the number next. By
    /// design. Assignment duplicates the descriptor instead.
    XrFile(const XrFile& other);

    /// Duplicates the descriptor of `other`. The duplicate shares its position and is inheritable.
    /// Takes the name, flags, state and error of `other`. By design, the target's previous
    /// descriptor stays open, and its text or binary setting does not change. If the duplicate
    /// fails, records the last error and clears isValid().
    XrFile& operator=(const XrFile& other);

    /// Closes the descriptor, if any.
    virtual ~XrFile();

    /// Opens the file. Closes the descriptor of a valid object first.
    ///
    /// Returns 0 on success. Returns -1 if the name is empty. Returns the platform's error code (2:
    /// no such file) for a failed open, or errno if the platform reported none. If the platform is
    /// out of handles (code 4), it tries up to seven times in all.
    ///
    /// `mode` is searched for letters. Order and repetition do not matter. Other letters do
    /// nothing:
    ///
    ///     r  read only                 w  write, create, truncate       a  write, create, append
    ///     +  with any of them: read and write                           t  text mode, else binary
    ///
    /// By design, `"rw"` is read-only, create and truncate, and `""` is binary, read-only. Null is
    /// read and write, create, with the runtime's default translation. The text or binary setting
    /// of records then does not change. A created file is readable and writable by its owner.
    int Open(const char* mode);

    /// Sets the name, then opens the file as above.
    int Open(const std::string& name, const char* mode);

    /// Closes the descriptor, if any. Returns false, with the error recorded, if the close fails.
    /// The object is closed in any case.
    bool Close();

    /// Closes and opens again with the same flags. By design, the position returns to the start,
    /// and a file opened with `"w"` is emptied. Returns what Open() returns.
    int Flush();

    /// @{
    /// Moves `count` bytes. Returns true if all were moved, and also if the file ended early:
    /// Tell() returns how far.
    ///
    /// Returns false at the end of the file, for a count of 0, for a null buffer, and for every
    /// failure. A transfer that is interrupted (errno 4) continues, up to five times. A successful
    /// transfer, also one of an operator below, sets errno to 0.
    bool Read(char* buf, std::uint64_t count);
    bool Write(const char* buf, std::uint64_t count);
    /// @}

    /// Reads up to and including the next line feed, at most `size` bytes. A size of 0 is no limit.
    ///
    /// Writes no NUL and keeps a carriage return. Returns false if the file ends first, although
    /// the bytes are in `buf`. The position is then right after the bytes read.
    bool Readln(char* buf, std::uint64_t size);

    /// Moves the position to `offset` bytes from the start. Returns false on failure.
    bool Seek(int offset);

    /// Moves the position to the start. Returns false on failure.
    bool SeekToBegin();

    /// Returns the position in bytes from the start. Returns -1 on failure and records nothing.
    long Tell() const;

    /// Returns the size in bytes (its low 32 bits). Returns 0 without an open file. By design,
    /// descriptor 0 counts as none. Records nothing.
    long Size() const;

    /// Returns the time of the last change in seconds since 1970 UTC. Returns 0 without an open
    /// file. By design, descriptor 0 counts as none. Records nothing.
    std::int64_t LastModified() const;

    /// Returns true if the file is empty, and on failure. Moves the position to the start.
    bool IsEmpty();

    /// Returns true if the position is at the end, and on failure. Keeps the position. If it cannot
    /// seek back to it, records -1, clears isValid() and returns false.
    bool Eof();

    /// Returns whether a failure was recorded since the last successful open.
    bool Error() const;

    /// Returns the same, and stores the code of the last failure.
    bool Error(int& code) const;

    /// Returns whether the file is open: from a successful open until Close() or a failure of the
    /// second style.
    bool isValid() const;

    /// Returns whether the file exists. Records nothing.
    bool Exists() const;

    /// Returns whether `path` exists and allows the access. `mode` is that of `_access`: 0
    /// existence, 2 write, 4 read, 6 both.
    static bool Exists(const String& path, int mode);

    /// Returns the name after its last slash or backslash.
    ///
    ///     XrFile("C:\\dir/sub\\file.txt", "r").getName()   // "file.txt"
    ///     XrFile("dir/", "r").getName()                    // ""
    std::string getName() const;

    /// @{
    /// Writes a record, in one transfer.
    ///
    /// In binary mode a number is its decimal digits and a zero byte. A text is its length plus 1
    /// as such a number, then its bytes and a zero byte. In text mode both are the bare characters,
    /// so an empty text is a transfer of 0 bytes, which fails. Null is the empty text. Texts end at
    /// their first NUL, but a std::string is written at its full size. A `char` is written as its
    /// number.
    XrFile& operator<<(int value);
    XrFile& operator<<(long value);
    XrFile& operator<<(unsigned short value);
    XrFile& operator<<(const char* text);
    XrFile& operator<<(const std::string& text);
    XrFile& operator<<(const String& text);
    /// @}

    /// @{
    /// Reads a number up to a zero byte, in text mode too, and converts it like `atoi`: 0 for a
    /// token that is no number. On failure the target is unchanged.
    XrFile& operator>>(int& value);
    XrFile& operator>>(long& value);
    XrFile& operator>>(unsigned short& value);
    /// @}

    /// @{
    /// Reads a text, which ends at its first zero byte.
    ///
    /// In text mode it is one read of at most 256 bytes. In binary mode a record that is cut short
    /// gives the bytes that are there. A length that is missing, 0, negative, no number, or cannot
    /// be allocated is failure -1. On failure the target is unchanged.
    XrFile& operator>>(std::string& text);
    XrFile& operator>>(String& text);
    /// @}

  private:
    int m_open_file();
    bool fail(int code);
    bool fail_and_invalidate(int code);
    bool write_number(int value);
    bool write_text(const char* text, std::uint64_t size);
    bool read_number(int& value);
    bool read_text(std::string& text);

    // The layout is fixed: programs derive from this class and embed it.
    std::string m_name;
    int m_fd;
    int m_error_code;
    int m_access_mode;  // what Exists() asks for; always 0
    bool m_error;
    bool m_is_open;
    bool m_binary;
    bool m_seekable;  // found at the open: a disk file without translation
    int m_flags;
};

#endif
