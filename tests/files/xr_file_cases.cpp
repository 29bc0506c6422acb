#include <fcntl.h>
#include <io.h>
#include <sys/utime.h>

#include <cerrno>
#include <optional>
#include <sstream>

#include "support/cases.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "util/files/xr_file.h"

using util_test::call;
using util_test::ImportPatch;
using util_test::said;
using util_test::Words;

namespace {

// The file f and two objects. Operations work on `file`, which begins with no name.
struct XrFileWorld : util_test::CaseWorld {
    XrFileWorld() {
        values["dir"] = scratch.path();
        values["f"] = scratch / "f";
    }

    // What the result and the object say about an operation. "error" is left out when none is
    // recorded, "closed" when the object is valid.
    template <typename... Results>
    Words state(const Results&... results) const {
        Words words = said(results...);
        int code = 0;
        if (file.Error(code)) util_test::say(words, said("error", code));
        if (!file.isValid()) words.push_back("closed");
        return words;
    }
    // Values that an operation may take for its own when nothing fails.
    static void leave_stale_codes() {
        errno = EINTR;
        SetLastError(77);
    }

    void bytes(const std::string& content) { scratch.file("f", content); }
    void bytes_at(std::int64_t offset, const std::string& content) const {
        const int fd = _open((scratch / "f").c_str(), _O_WRONLY | _O_CREAT | _O_BINARY, 0600);
        _lseeki64(fd, offset, SEEK_SET);
        EXPECT_EQ(_write(fd, content.data(), unsigned(content.size())), int(content.size()));
        _close(fd);
    }
    std::string content() const { return scratch.read("f"); }
    Words open(const char* mode) { return state(file.Open(scratch / "f", mode)); }
    Words open_path(const std::string& path) { return state(file.Open(path, "r")); }
    Words reopen(const char* mode) { return state(file.Open(mode)); }
    Words flush() { return state(file.Flush()); }
    Words close() { return state(file.Close()); }

    Words read(std::uint64_t count) {
        leave_stale_codes();
        std::string buffer(400, '#');
        const bool done = file.Read(buffer.data(), count);
        buffer.resize(buffer.find_last_not_of('#') + 1);
        return state(done, buffer);
    }
    Words write(const std::string& text) {
        leave_stale_codes();
        return state(file.Write(text.data(), text.size()));
    }
    Words line(std::uint64_t size) {
        leave_stale_codes();
        std::string buffer(400, '#');
        const bool done = file.Readln(buffer.data(), size);
        buffer.resize(buffer.find_last_not_of('#') + 1);
        return state(done, buffer);
    }
    Words null_buffers() {
        const Words read = state(file.Read(nullptr, 1)), write = state(file.Write(nullptr, 1));
        return said(read, write, state(file.Readln(nullptr, 1)));
    }

    template <typename T>
    Words get(T value) {
        leave_stale_codes();
        file >> value;
        return state(value);
    }
    template <typename T>
    Words put(T value) {
        leave_stale_codes();
        file << value;
        return state("done");
    }

    Words get_without_memory() {
        const ImportPatch patch("_ZnayRKSt9nothrow_t", util_test::fails<0>);
        return get(std::string("old"));
    }
    // The runtime's reads fail with these values of errno, one after the other. 0: the read is
    // made.
    void fail_reads(const std::string& codes) {
        read_codes = std::istringstream(codes);
        read_patch.emplace("_read", [this](int fd, void* to, unsigned count) {
            int code = 0;
            if (!(read_codes >> code) || code == 0) return _read(fd, to, count);
            errno = code;
            return -1;
        });
    }
    // The flags and the permission that Open() hands on; with a code, what it comes to when the
    // platform fails with it, and the number of attempts.
    Words open_flags(const char* mode) {
        int flags = 0, permission = 0;
        const ImportPatch patch("_wopen", [&](const wchar_t* path, int given, int mode_given) {
            flags = given;
            permission = mode_given;
            return _wopen(path, given, mode_given);
        });
        open(mode);
        return said(util_test::hex(flags), util_test::hex(permission));
    }
    Words open_failing(DWORD code) {
        int attempts = 0;
        const ImportPatch patch("_wopen", [&] {
            ++attempts;
            SetLastError(code);
            return -1;
        });
        return said(open("r"), attempts);
    }
    Words close_failing() {
        const ImportPatch patch("_close", util_test::fails<-1, 1234>);
        return close();
    }
    // As with a program whose standard input is closed: the file gets descriptor 0.
    Words size_and_time_as_standard_input() {
        const int standard_input = _dup(0);
        _close(0);
        const Words opened = open("r");
        const Words words = said(opened, file.Size(), file.LastModified());
        file.Close();
        _dup2(standard_input, 0);
        _close(standard_input);
        return words;
    }

    // Calls of the runtime with these results and values of errno, then -1 with 5 (EIO). Text
    // mode, so nothing is read ahead. Returns the state, the number of calls, and where the last
    // one began in the buffer of 20 bytes.
    Words transfer(const char* function, const std::string& script) {
        file.Open(scratch / "f", "w+t");
        char buffer[20] = {};
        std::istringstream steps(script);
        int calls = 0;
        std::ptrdiff_t last = 0;
        const ImportPatch patch(function, [&](int, const char* at, unsigned count) {
            ++calls;
            last = at - buffer;
            EXPECT_EQ(last + count, 20);
            int result = -1, error = EIO;
            if (!(steps >> result >> error)) result = -1, error = EIO;
            errno = error;
            return result;
        });
        leave_stale_codes();
        const bool reads = function == std::string("_read");
        return said(state(reads ? file.Read(buffer, 20) : file.Write(buffer, 20)), calls, last);
    }

    util_test::ScratchDirectory scratch;
    XrFile file, other;
    std::istringstream read_codes;
    std::optional<ImportPatch> read_patch;
};

const char* const failed = "... error ...";

const util_test::Cases<XrFileWorld> cases(
    "files/xr_file.cases",
    {
        call("bytes", &XrFileWorld::bytes),
        call("content", &XrFileWorld::content),
        call("bytes_at", &XrFileWorld::bytes_at),
        call("open", &XrFileWorld::open, failed),
        call("open_path", &XrFileWorld::open_path, failed),
        call("reopen", &XrFileWorld::reopen, failed),
        call("flush", &XrFileWorld::flush, failed),
        call("close", &XrFileWorld::close, failed),
        call("name", [](XrFileWorld& w) { return w.file.getName(); }),
        call("read", &XrFileWorld::read, "false ... error ..."),
        call("write", &XrFileWorld::write, "false error ..."),
        call("line", &XrFileWorld::line, "false ... error ..."),
        call("null_buffers", &XrFileWorld::null_buffers),
        call(
            "seek", [](XrFileWorld& w, int to) { return w.state(w.file.Seek(to)); }, "false ..."),
        call(
            "rewind", [](XrFileWorld& w) { return w.state(w.file.SeekToBegin()); }, "false ..."),
        call(
            "tell", [](XrFileWorld& w) { return w.state(w.file.Tell()); }, "-1"),
        call(
            "size", [](XrFileWorld& w) { return w.state(w.file.Size()); }, "0"),
        call(
            "changed", [](XrFileWorld& w) { return w.state(w.file.LastModified()); }, "0"),
        call(
            "is_empty", [](XrFileWorld& w) { return w.state(w.file.IsEmpty()); },
            "true error ... closed"),
        call(
            "eof", [](XrFileWorld& w) { return w.state(w.file.Eof()); },
            "true error ... closed | false error -1 closed"),
        call(
            "exists", [](XrFileWorld& w) { return w.file.Exists(); }, "false"),
        call(
            "path_exists", [](const String& path, int mode) { return XrFile::Exists(path, mode); },
            "false"),
        call(
            "get_int", [](XrFileWorld& w) { return w.get(99); }, "99 error ..."),
        call(
            "get_long", [](XrFileWorld& w) { return w.get(99L); }, "99 error ..."),
        call(
            "get_short", [](XrFileWorld& w) { return w.get<unsigned short>(99); }, "99 error ..."),
        call(
            "get", [](XrFileWorld& w) { return w.get(std::string("old")); }, "old error ..."),
        call(
            "get_string", [](XrFileWorld& w) { return w.get(String("old")); }, "old error ..."),
        call("put_int", &XrFileWorld::put<int>, "done error ..."),
        call("put_long", &XrFileWorld::put<long>, "done error ..."),
        call("put_short", &XrFileWorld::put<unsigned short>, "done error ..."),
        call("put", &XrFileWorld::put<const char*>, "done error ..."),
        call("put_bytes", &XrFileWorld::put<std::string>, "done error ..."),
        call("put_string", &XrFileWorld::put<String>, "done error ..."),
        call("copy", [](XrFileWorld& w) { w.other.emplace(w.file); }),
        call("assign", [](XrFileWorld& w) { w.other.emplace() = w.file; }),
        call("swap", [](XrFileWorld& w) { std::swap(w.file, *w.other); }),
        call("times",
             [](const XrFileWorld& w, int accessed, int changed) {
                 __utimbuf64 times = {accessed, changed};
                 _utime64((w.scratch / "f").c_str(), &times);
             }),
        call("read_only",
             [](const XrFileWorld& w) {
                 SetFileAttributesA((w.scratch / "f").c_str(), FILE_ATTRIBUTE_READONLY);
             }),
        call("fail_reads", &XrFileWorld::fail_reads),
        call("get_without_memory", &XrFileWorld::get_without_memory),
        call("open_flags", &XrFileWorld::open_flags),
        call("open_failing", &XrFileWorld::open_failing),
        call("close_failing", &XrFileWorld::close_failing),
        call("size_and_time_as_standard_input", &XrFileWorld::size_and_time_as_standard_input),
        call("reads", [](XrFileWorld& w, const std::string& s) { return w.transfer("_read", s); }),
        call("writes",
             [](XrFileWorld& w, const std::string& s) { return w.transfer("_write", s); }),
    });

}  // namespace
