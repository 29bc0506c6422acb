#include "util/files/copy_file.h"

#include <io.h>
#include <sys/stat.h>

#include "support/built_file.h"
#include "support/cases.h"
#include "support/handle_count.h"
#include "support/import_patch.h"
#include "support/scratch_directory.h"
#include "util/files/xr_file.h"
#include "util/portable/ksl_process.h"

using namespace util_test;

namespace {

constexpr char source_name[] = "gr\xC3\xBC\xE6\x96\x87";

// $from is the source and $to the target.
struct World : CaseWorld {
    World() {
        values = {
            {"from", scratch / source_name}, {"to", scratch / "target"}, {"t", scratch.path()}};
    }

    // The bytes include CR LF and Ctrl+Z, which text mode would change.
    void source(std::size_t count) {
        bytes.clear();
        while (bytes.size() < count)
            bytes += "\r\n\x1A" + std::to_string(bytes.size());
        bytes.resize(count);
        scratch.file(source_name, bytes);
    }
    // The result, and how many bytes of the source the target has.
    Words copy(int keep_mode) const {
        const int result =
            UTIL_copy(values.at("from").c_str(), values.at("to").c_str(), char(keep_mode));
        const std::string copied = scratch.read("target");
        return said(result, bytes.rfind(copied, 0) == 0 ? std::to_string(copied.size()) : "other");
    }
    // The sizes of the reads, and the handles that stay open.
    Words copy_in_chunks() const {
        Words words;
        const long handles = handle_count();
        {
            const ImportPatch patch("_read", [&](int descriptor, void* buffer, unsigned count) {
                words.push_back(std::to_string(count));
                return _read(descriptor, buffer, count);
            });
            copy(0);
        }
        return said(words, handle_count() - handles);
    }
    // The source gets another size after it was asked for.
    Words copy_changing_to(std::size_t size) const {
        const ImportPatch patch("_filelengthi64", [&](int) {
            std::filesystem::resize_file(to_wide(values.at("from")), size);
            return static_cast<__int64>(bytes.size());
        });
        return copy(0);
    }
    Words copy_of_length(std::int64_t length) const {
        const ImportPatch patch("_filelengthi64", [=](int) { return length; });
        return copy(0);
    }
    Words copy_with_writes_of(int written) const {
        const ImportPatch patch("_write", [=] { return written; });
        return copy(0);
    }
    // Whether only reading is allowed afterwards, with each keepMode.
    Words modes(bool writable) const {
        Words words;
        SetFileAttributesW(to_wide(values.at("from")).c_str(),
                           writable ? FILE_ATTRIBUTE_NORMAL : FILE_ATTRIBUTE_READONLY);
        for (const int keep_mode : {0, 2, -1, 1}) {
            copy(keep_mode);
            words.push_back(_access(values.at("to").c_str(), 2) != 0 ? "read" : "write");
            _chmod(values.at("to").c_str(), _S_IREAD | _S_IWRITE);
        }
        return words;
    }
    // The descriptors that a child inherits during a copy beside an XrFile and its duplicate.
    int inherited_while_copying() const {
        const std::string command = "\"" + built_file("child.exe") + "\" open 3";
        const int before = ksl_system(command.c_str());
        int inherited = -1;
        const XrFile file(values.at("from").c_str(), "r");
        XrFile assigned;
        assigned = file;
        const ImportPatch patch("_filelengthi64", [&](int descriptor) {
            inherited = ksl_system(command.c_str());
            return _filelengthi64(descriptor);
        });
        copy(0);
        return inherited - before;
    }

    const ScratchDirectory scratch;
    std::string bytes;
};

const Cases<World> cases(
    "files/copy_file.cases",
    {
        call("source", &World::source),
        call("target", [](World& w, const std::string& bytes) { w.scratch.file("target", bytes); }),
        call("content", [](World& w) { return w.scratch.read("target"); }),
        call("copy", "-1 ...", &World::copy),
        call("copy_path", "-1",
             [](const char* from, const char* to) { return UTIL_copy(from, to, 1); }),
        call("copy_in_chunks", &World::copy_in_chunks),
        call("copy_changing_to", &World::copy_changing_to),
        call("copy_of_length", &World::copy_of_length),
        call("copy_with_writes_of", &World::copy_with_writes_of),
        call("modes", &World::modes),
        call("inherited_while_copying", &World::inherited_while_copying),
    });

}  // namespace
