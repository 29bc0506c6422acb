// XrFile beside a model of its description: one call of the runtime for each step, no reading
// ahead, on a twin of the file. Windows only.
#include "util/files/xr_file.h"

#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <iterator>
#include <optional>
#include <sstream>
#include <type_traits>
#include <utility>

#include "fuzz/fuzz.h"
#include "tests/support/import_patch.h"
#include "tests/support/scratch_directory.h"
#include "util/internal/kept_errors.h"
#include "util/internal/scoped_handle.h"

namespace util_fuzz {
namespace {

constexpr int longest = 1 << 17;  // no file here is as long

int last_error() {
    return static_cast<int>(GetLastError());
}

// Faults. Both sides meet these: the seek of this number in an operation fails, and so does a read
// that touches a byte from lock_begin on. Only the library seeks back after reading ahead.
int refused_seek, refused_seeks_back;
std::int64_t lock_begin;
bool refuses_seek_back;

int refuse(int error, DWORD code) {
    errno = error;
    SetLastError(code);
    return -1;
}
long seek(int fd, long offset, int origin) {
    return --refused_seek == 0 ? refuse(EINVAL, ERROR_SEEK) : _lseek(fd, offset, origin);
}
std::int64_t seek_back(int fd, std::int64_t offset, int origin) {
    if (!refuses_seek_back) return _lseeki64(fd, offset, origin);
    ++refused_seeks_back;
    return refuse(EINVAL, ERROR_SEEK);
}
// Where a read ends. The library cuts a text's length to the bytes left from 64 KiB on.
std::int64_t end_of_read(int fd, unsigned count) {
    const util::KeptErrors kept;
    const std::int64_t end = _telli64(fd) + count;
    return count > 65536 ? std::min(end, _filelengthi64(fd)) : end;
}
int read_bytes(int fd, void* to, unsigned count) {
    const bool is_locked = end_of_read(fd, count) > lock_begin;
    return is_locked ? refuse(EACCES, ERROR_LOCK_VIOLATION) : _read(fd, to, count);
}

struct Assigned {  // what an assignment copies
    std::string name;
    int code = 0, flags = 0;
    bool error = false, is_open = false;
};

struct Model : Assigned {
    int fd = -1;
    std::size_t moved = 0;  // by the last transfer
    bool binary = true;
    bool failed = false;  // in the operation that runs

    Model(const char* path, const char* mode) {
        name = path;
        Open(mode);
    }
    Model(const Model& other) = default;
    Model& operator=(const Model& other) {
        fd = _dup(other.fd);
        if (fd >= 0) Assigned::operator=(other);
        if (fd < 0) invalidate(last_error());
        return *this;
    }
    ~Model() { Close(); }

    bool fail(int reason) {
        failed = error = true;
        code = reason;
        return false;
    }
    bool invalidate(int reason) {
        is_open = false;
        return fail(reason);
    }
    int Open(const char* mode) {
        if (is_open && fd != -1) Close();
        if (name.empty()) {
            invalidate(-1);
            return -1;
        }
        const auto has = [mode](char letter) { return std::strchr(mode, letter) != nullptr; };
        flags = 0x102;
        if (mode) {
            const int access = has('+') ? 2 : !has('r') && (has('w') || has('a')) ? 1 : 0;
            binary = !has('t');
            flags = access | (has('a') ? 0x108 : 0) | (has('w') ? 0x300 : 0);
            flags |= binary ? 0x8000 : 0x4000;
        }
        return reopen();
    }
    int reopen() {
        fd = _open(name.c_str(), flags, flags & 0x100 ? 0x180 : 0);
        is_open = fd != -1;
        error = false;
        if (!is_open) fail(last_error());
        return is_open ? 0 : code;
    }
    bool Close() {
        const bool closed = fd == -1 || _close(fd) == 0;
        fd = -1;
        is_open = false;
        return closed || fail(last_error());
    }
    int Flush() {
        Close();
        return reopen();
    }
    // The retry rule without interruptions, which do not happen here.
    template <typename Move, typename Byte>
    bool transfer(Move move, Byte* at, std::size_t count) {
        errno = 0;
        const int result = move(fd, at, static_cast<unsigned>(count));
        moved = static_cast<std::size_t>(std::max(result, 0));
        if (result == 0) return fail(last_error());
        if (result > 0 && static_cast<unsigned>(result) == count) return true;
        return (result > 0 && errno == 0) || fail(errno != 0 ? errno : last_error());
    }
    bool Read(char* to, std::size_t count) { return transfer(read_bytes, to, count); }
    bool Write(const char* from, std::size_t count) { return transfer(_write, from, count); }
    bool Readln(char* to, std::size_t size) {
        for (char byte;;) {
            if (read_bytes(fd, &byte, 1) < 1) return fail(last_error());
            *to++ = byte;
            if (--size == 0 || byte == '\n') return true;
        }
    }
    bool Seek(int offset) { return seek(fd, offset, 0) != -1 || invalidate(last_error()); }
    bool IsEmpty() {
        const long end = seek(fd, 0, 2);
        const long start = end == -1 ? -1 : seek(fd, 0, 0);
        return start == -1 ? !invalidate(last_error()) : start == end;
    }
    bool Eof() {
        const long position = seek(fd, 0, 1);
        const long end = position == -1 ? -1 : seek(fd, 0, 2);
        if (end == -1) return !invalidate(last_error());
        return position == end || (seek(fd, position, 0) != position && invalidate(-1));
    }

    void operator<<(int value) {
        const std::string digits = std::to_string(value);
        Write(digits.c_str(), digits.size() + binary);
    }
    void operator<<(const std::string& text) {
        if (binary) *this << static_cast<int>(text.size()) + 1;
        Write(text.c_str(), text.size() + binary);
    }
    void operator<<(const char* text) { *this << std::string(text); }
    void operator<<(const String& text) { *this << text.c_str(); }
    template <typename Number>
    std::enable_if_t<std::is_integral_v<Number>> operator>>(Number& value) {
        std::string digits;
        char byte = 'x';
        while (byte != '\0' && Read(&byte, 1))
            digits += byte;
        if (byte == '\0') value = static_cast<Number>(std::atoi(digits.c_str()));
    }
    template <typename Text>
    std::enable_if_t<!std::is_integral_v<Text>> operator>>(Text& text) {
        int length = binary ? 0 : 256;
        if (binary) *this >> length;
        std::string bytes(static_cast<std::size_t>(std::clamp(length, 0, longest)), '\0');
        if (bytes.empty()) invalidate(-1);
        if (!bytes.empty() && Read(bytes.data(), bytes.size()))
            text = bytes.substr(0, moved).c_str();
    }
};

// One side: objects over one file, and a descriptor that is none of theirs.
template <typename File>
class Side {
  public:
    explicit Side(const std::string& path)
        : m_path(path),
          m_file(CreateFileA(path.c_str(), GENERIC_READ, 3, nullptr, 3, 0, nullptr)) {}

    // What the file contains.
    std::string bytes() const {
        std::string bytes(GetFileSize(m_file.get(), nullptr), '\0');
        OVERLAPPED start = {};
        ReadFile(m_file.get(), bytes.data(), static_cast<DWORD>(bytes.size()), nullptr, &start);
        return bytes;
    }

    // Takes a step and returns what the operation returns and stores. C constructs, K copies, A
    // assigns, s seeks, e asks IsEmpty, E asks Eof. I L U T S read a value, i l u t p g write one.
    // P and O open a pipe and a file in text mode without the objects, Q closes them.
    std::string perform(char verb, int at, int number) {
        constexpr const char* modes[] = {"r", "r+", "rt", "w", "a+", "w+t", "rw", "t", "", nullptr};
        const char* const mode = modes[number % std::size(modes)];
        const auto size = static_cast<std::size_t>(number);
        std::string bytes(size, 'x'), line(size == 0 ? longest : size, '#');
        if (size > 2) bytes.replace(1, 2, "\n\0", 2);
        const int other = number % 4;
        if (verb == 'C') files[at].emplace(number % 32 == 31 ? "" : m_path.c_str(), mode);
        if (verb == 'K' && other != at) files[at].emplace(*files[other]);
        File& file = *files[at];
        if (verb == 'A') file = *files[other];
        if (verb == 'o') return std::to_string(file.Open(mode));
        if (verb == 'c') return std::to_string(file.Close());
        if (verb == 'f') return std::to_string(file.Flush());
        if (verb == 'r') return std::to_string(file.Read(bytes.data(), size)) + bytes;
        if (verb == 'n') return std::to_string(file.Readln(line.data(), size)) + line;
        if (verb == 'w') return std::to_string(file.Write(bytes.data(), size));
        if (verb == 's') return std::to_string(file.Seek(number - 1));
        if (verb == 'e') return std::to_string(file.IsEmpty());
        if (verb == 'E') return std::to_string(file.Eof());
        if (verb == 'I') return extracted(file, 99);
        if (verb == 'L') return extracted(file, 99L);
        if (verb == 'U') return extracted(file, static_cast<unsigned short>(99));
        if (verb == 'T') return extracted(file, std::string("99"));
        if (verb == 'S') return extracted(file, String("99"));
        if (verb == 'i') file << number - 1;
        if (verb == 'l') file << number - 1L;
        if (verb == 'u') file << static_cast<unsigned short>(number - 1);
        if (verb == 't') file << bytes;
        if (verb == 'p') file << bytes.c_str();
        if (verb == 'g') file << String(bytes);
        if (verb == 'P') m_stranger = pipe();
        if (verb == 'O') m_stranger = _open(m_path.c_str(), _O_RDONLY | _O_TEXT);
        if (verb == 'Q') _close(std::exchange(m_stranger, -1));
        return "";
    }

    std::optional<File> files[4];

  private:
    template <typename Value>
    static std::string extracted(File& file, Value value) {
        file >> value;
        std::ostringstream text;
        text << value;
        return text.str();
    }
    static int pipe() {
        static const char bytes[] = "line\r\n3\0ab\0x\nline\r\nend";
        HANDLE from, to;
        DWORD written;
        CreatePipe(&from, &to, nullptr, 0);
        WriteFile(to, bytes, sizeof bytes - 1, &written, nullptr);
        CloseHandle(to);
        return _open_osfhandle(reinterpret_cast<std::intptr_t>(from), _O_RDONLY | _O_BINARY);
    }

    const std::string m_path;
    const util::FileHandle m_file;
    int m_stranger = -1;
};

void expect_same_state(XrFile& file, const Model& model) {
    int code;
    struct _stat64i32 status = {};
    if (model.fd >= 1) _fstat64i32(model.fd, &status);
    require(file.Error(code) == model.error, "the error flag");
    require(code == model.code, "the code");
    require(file.isValid() == model.is_open, "isValid");
    require(file.Tell() == _lseek(model.fd, 0, SEEK_CUR), "Tell");
    require(file.Size() == status.st_size, "Size");
}

std::string initial_bytes(Parameters& input) {
    using namespace std::string_literals;
    static const std::string pieces[] = {"42\0"s,
                                         "-7\0"s,
                                         "\r\n"s,
                                         "line\r\n"s,
                                         "5\0four\0"s,
                                         "\x1A"s,
                                         "70000\0cut"s,
                                         "0\0"s,
                                         std::string(150, 'z') + "\n",
                                         "201\0"s + std::string(200, 'y') + '\0',
                                         "99999999999\0"s};
    std::string bytes;
    for (int count = input.byte() % 12; count > 0; --count)
        bytes += pieces[input.byte() % std::size(pieces)];
    return bytes;
}

}  // namespace

// After the file's bytes the input holds steps: a verb, an object and a number. Each descriptor
// number of the library's side is followed by one of the model's, so both reuse numbers alike.
void xr_file(std::string_view bytes) {
    static const util_test::ScratchDirectory scratch;
    const util_test::ImportPatch reads("_read", read_bytes), seeks("_lseek", seek),
        seeks_back("_lseeki64", seek_back);
    Parameters input(bytes);
    const std::string content = initial_bytes(input);
    const int first = _dup(2);
    _close(first);
    refused_seek = 0;
    lock_begin = INT64_MAX;
    refuses_seek_back = false;
    {
        Side<XrFile> library(scratch.file("library", content));
        Side<Model> models(scratch.file("model", content));
        for (int i = 0; i < 4; ++i) {
            library.perform('C', i, 1);
            models.perform('C', i, 1);
        }
        for (int next_refused_seek = 0; !input.empty();) {
            constexpr std::string_view verbs = "CKKKAAoccOOPPQfrnnnnnwseEIILUTTSilutpgkzbb";
            const char verb = verbs[input.byte() % verbs.size()];
            const int at = input.byte() % 4, number = input.byte() ^ 0x60;
            if (verb == 'k') lock_begin = number % 4 == 0 ? INT64_MAX : number * 8;
            if (verb == 'b') refuses_seek_back = !refuses_seek_back;
            refused_seeks_back = 0;
            const auto prepare = [next_refused_seek] {
                refused_seek = next_refused_seek;
                SetLastError(77);
                errno = EINTR;
            };
            prepare();
            const std::string result = library.perform(verb, at, number);
            const int error = errno;
            models.files[at]->failed = false;
            prepare();
            std::string expected = models.perform(verb, at, number);
            const bool succeeded = !models.files[at]->failed && refused_seeks_back == 0;
            require(!succeeded || error == errno, "errno after success");
            Model& model = *models.files[at];
            if (refused_seeks_back > 0) {
                _lseeki64(model.fd - 1, _telli64(model.fd), SEEK_SET);
                if (!model.failed) {
                    model.fail(ERROR_SEEK);
                    expected = verb == 'n' ? "0" + expected.substr(1) : "99";
                }
            }
            require(result == expected, "the result");
            refused_seek = 0;
            next_refused_seek = verb == 'z' ? number % 4 : 0;
            expect_same_state(*library.files[at], model);
        }
        // Once for each input: most of the time goes into these calls.
        for (int i = 0; i < 4; ++i)
            expect_same_state(*library.files[i], *models.files[i]);
        require(library.bytes() == models.bytes(), "the bytes of the file");
    }
    for (int fd = first; fd < 2048; ++fd) {
        if (_get_osfhandle(fd) != -1) _close(fd);
    }
}

}  // namespace util_fuzz
