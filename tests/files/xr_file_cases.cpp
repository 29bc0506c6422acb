#include <fcntl.h>
#include <io.h>
#include <sys/stat.h>
#include <sys/utime.h>

#include "support/cases.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "util/files/xr_file.h"
#include "util/internal/scoped_handle.h"

using namespace util_test;

namespace {

// Values that an operation may take for its own when nothing fails.
void leave_stale_codes() {
    errno = EINTR;
    SetLastError(77);
}

// The file f and two objects. Operations work on `file`, which begins with no name.
struct World : CaseWorld {
    World() {
        values["dir"] = scratch.path();
        values["f"] = scratch / "f";
    }

    // What the result and the object say about an operation. "error" is left out when none is
    // recorded, "closed" when the object is valid.
    template <typename... Results>
    Words state(const Results&... results) const {
        Words words = said(results...);
        int code = 0;
        if (file->Error(code)) say(words, said("error", code));
        if (!file->isValid()) words.push_back("closed");
        return words;
    }
    Words open(const char* mode) { return state(file->Open(scratch / "f", mode)); }
    // A pipe with these bytes, which then ends.
    Words open_pipe(const std::string& bytes) {
        const std::string name = "\\\\.\\pipe\\util-xr-file-test";
        const util::FileHandle pipe(CreateNamedPipeA(name.c_str(), PIPE_ACCESS_DUPLEX,
                                                     PIPE_TYPE_BYTE, 1, 100, 100, 0, nullptr));
        const Words opened = state(file->Open(name, "r+"));
        DWORD written;
        WriteFile(pipe.get(), bytes.data(), DWORD(bytes.size()), &written, nullptr);
        return opened;
    }
    Words fill(bool (XrFile::*operation)(char*, std::uint64_t), std::uint64_t size) {
        leave_stale_codes();
        std::string buffer(400, '#');
        const bool done = (file.get()->*operation)(buffer.data(), size);
        buffer.resize(buffer.find_last_not_of('#') + 1);
        return state(done, buffer);
    }

    template <typename T>
    Words get(T value) {
        leave_stale_codes();
        *file >> value;
        return state(value);
    }
    template <typename T>
    Words put(T value) {
        leave_stale_codes();
        *file << value;
        return state("done");
    }

    // There is no memory for more than this.
    Words get_within(std::size_t limit) {
        const ImportPatch memory("_ZnayRKSt9nothrow_t", [=](std::size_t size) {
            return size > limit ? nullptr : operator new[](size, std::nothrow);
        });
        return get(std::string("old"));
    }
    // What the next calls of a function of the runtime do: the number of bytes that each moves (-1:
    // it fails), and its errno. Later calls are real.
    void plan(const std::string& function, const std::string& script) {
        steps = std::istringstream(script);
        patch.emplace(function.c_str(), [this](int fd, char* at, unsigned count) {
            const auto real = patch->original<int(int, char*, unsigned)>();
            int moved = 0, code = 0;
            if (!(steps >> moved >> code)) return real(fd, at, count);
            const int result = moved > 0 ? real(fd, at, unsigned(moved)) : moved;
            errno = code;
            return result;
        });
    }
    // How often Open() asks a platform that fails with the code, and for which flags and
    // permission.
    Words open_failing(const char* mode, DWORD code) {
        int attempts = 0, flags = 0, permission = 0;
        const ImportPatch wopen("_wopen", [&](const wchar_t*, int given, int mode_given) {
            ++attempts;
            flags = given;
            permission = mode_given;
            SetLastError(code);
            return -1;
        });
        open(mode);
        return said(attempts, hex(flags), hex(permission));
    }
    Words close_failing() {
        const ImportPatch close("_close", fails<-1, 1234>);
        return state(file->Close());
    }
    // As with a program whose standard input is closed: the file gets descriptor 0.
    Words size_and_time_as_standard_input() {
        const int standard_input = _dup(0);
        _close(0);
        const Words opened = open("r");
        const Words words = said(opened, file->Size(), file->LastModified());
        file->Close();
        _dup2(standard_input, 0);
        _close(standard_input);
        return words;
    }

    ScratchDirectory scratch;
    std::unique_ptr<XrFile> file = std::make_unique<XrFile>(), other;
    std::istringstream steps;
    std::optional<ImportPatch> patch;
};

// A call of an operation: what it returns, and the state of the object.
template <typename R, typename... A>
Call on_file(const char* name, const char* failure, R (XrFile::*operation)(A...)) {
    return call(name, failure, [=](World& w, A... arguments) {
        leave_stale_codes();
        return w.state((w.file.get()->*operation)(arguments...));
    });
}
template <typename R>
Call on_file(const char* name, const char* failure, R (XrFile::*question)() const) {
    return call(name, failure, [=](World& w) { return w.state((w.file.get()->*question)()); });
}

const char open_failure[] = "... error ... | raises std::bad_alloc | raises _com_error";
const char text_failure[] = "old error ... | {... | raises std::bad_alloc";

const Cases<World> cases(
    "files/xr_file.cases",
    {
        call("bytes", [](World& w, const std::string& bytes) { w.scratch.file("f", bytes); }),
        call("content", [](World& w) { return w.scratch.read("f"); }),
        call("open", open_failure, &World::open),
        call("open_pipe", &World::open_pipe),
        call("open_path", open_failure,
             [](World& w, const char* path) { return w.state(w.file->Open(path, "r")); }),
        on_file<int, const char*>("reopen", open_failure, &XrFile::Open),
        on_file("flush", "... error ...", &XrFile::Flush),
        on_file("close", "... error ...", &XrFile::Close),
        on_file("seek", "false ...", &XrFile::Seek),
        on_file("rewind", "false ...", &XrFile::SeekToBegin),
        on_file("tell", "-1 | -1 ...", &XrFile::Tell),
        on_file("size", "0", &XrFile::Size),
        on_file("changed", "0", &XrFile::LastModified),
        on_file("is_empty", "true error ... closed", &XrFile::IsEmpty),
        on_file("eof", "true error ... closed | false error -1 closed", &XrFile::Eof),
        call("exists", "false | raises _com_error", [](World& w) { return w.file->Exists(); }),
        call("path_exists", "false | raises _com_error",
             [](const String& path, int mode) { return XrFile::Exists(path, mode); }),
        call("name", [](World& w) { return w.file->getName(); }),
        call("code",
             [](World& w) {
                 int code = 77;
                 const bool failed = w.file->Error(code);
                 return said(failed, code);
             }),
        call("read", "false ... error ...",
             [](World& w, std::uint64_t size) { return w.fill(&XrFile::Read, size); }),
        call("line", "false ... error ...",
             [](World& w, std::uint64_t size) { return w.fill(&XrFile::Readln, size); }),
        call("write", "false error ...",
             [](World& w, const std::string& bytes) {
                 leave_stale_codes();
                 return w.state(w.file->Write(bytes.data(), bytes.size()));
             }),
        call("read_null", [](World& w) { return w.state(w.file->Read(nullptr, 1)); }),
        call("line_null", [](World& w) { return w.state(w.file->Readln(nullptr, 1)); }),
        call("write_null", [](World& w) { return w.state(w.file->Write(nullptr, 1)); }),
        call("get_int", "99 error ...", [](World& w) { return w.get(99); }),
        call("get_long", "99 error ...", [](World& w) { return w.get(99L); }),
        call("get_short", "99 error ...", [](World& w) { return w.get<unsigned short>(99); }),
        call("get", text_failure, [](World& w) { return w.get(std::string("old")); }),
        call("get_string", text_failure, [](World& w) { return w.get(String("old")); }),
        call("get_within", &World::get_within),
        call("put_int", "done error ...", &World::put<int>),
        call("put_long", "done error ...", &World::put<long>),
        call("put_short", "done error ...", &World::put<unsigned short>),
        call("put", "done error ...", &World::put<const char*>),
        call("put_bytes", "done error ... | raises std::bad_alloc", &World::put<std::string>),
        call("put_string", "done error ...", &World::put<String>),
        call("copy", "raises std::bad_alloc",
             [](World& w) { w.other = std::make_unique<XrFile>(*w.file); }),
        call("assign", "false | raises std::bad_alloc",
             [](World& w) {
                 w.other = std::make_unique<XrFile>();
                 *w.other = *w.file;
                 return w.other->isValid();
             }),
        call("swap", [](World& w) { w.file.swap(w.other); }),
        call("times",
             [](const World& w, int accessed, int changed) {
                 __utimbuf64 times = {accessed, changed};
                 _utime64((w.scratch / "f").c_str(), &times);
             }),
        call("read_only", [](World& w) { _chmod((w.scratch / "f").c_str(), _S_IREAD); }),
        call("plan", &World::plan),
        call("open_failing", &World::open_failing),
        call("close_failing", &World::close_failing),
        call("size_and_time_as_standard_input", &World::size_and_time_as_standard_input),
    });

}  // namespace
