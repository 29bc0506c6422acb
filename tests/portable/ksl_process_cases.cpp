#include "util/portable/ksl_process.h"

#include "support/cases.h"
#include "support/import_patch.h"
#include "util/internal/scoped_handle.h"

using namespace util_test;

namespace {

// A failure is followed by errno and the last error, which are 77 before.
Words system2(const char* command) {
    fails<0, 77, 77>();
    const int result = ksl_system2(command);
    const auto last_error = GetLastError();
    return result == -1 ? said(-1, errno, last_error) : said(result);
}

// Whether an event of this process is set by a child that is told its number.
bool child_inherits() {
    SECURITY_ATTRIBUTES inherited = {sizeof inherited, nullptr, TRUE};
    const util::WinHandle event(CreateEventA(&inherited, TRUE, FALSE, nullptr));
    const auto number = reinterpret_cast<std::intptr_t>(event.get());
    ksl_system2(("bin\\child.exe signal " + std::to_string(number)).c_str());
    return WaitForSingleObject(event.get(), 0) == WAIT_OBJECT_0;
}

// The command's first line and the result of ksl_pclose, or "no stream" and errno.
Words read(const char* command, const char* mode) {
    errno = 77;
    FILE* const stream = ksl_popen(command, mode);
    if (!stream) return said("no stream", errno);
    char line[16] = "";
    const std::string text = std::fgets(line, sizeof line, stream) ? line : "";
    return said(text, ksl_pclose(stream));
}

// What the command has saved in the file, and the result of ksl_pclose.
Words write(const char* command, const char* text, const char* file) {
    FILE* const stream = ksl_popen(command, "w");
    std::fputs(text, stream);
    const int result = ksl_pclose(stream);
    std::string saved;
    std::getline(std::ifstream(file), saved);
    std::remove(file);
    return said(saved, result);
}

Words close_nothing() {
    errno = 77;
    const int result = ksl_pclose(nullptr);
    return said(result, errno);
}

// Failing calls leave 77 in errno and the last error. Freeing and closing leave 88.
struct World : CaseWorld {
    void disturb() {
        closing.emplace("CloseHandle", [](HANDLE handle) {
            const BOOL closed = CloseHandle(handle);
            return closed ? fails<TRUE, 88, 88>() : FALSE;
        });
        freeing.emplace("free", [](void* block) {
            std::free(block);
            fails<0, 88, 88>();
        });
    }
    void fail(const char* name, int result) {
        failing.emplace(name, [=] {
            fails<0, 77, 77>();
            return result;
        });
    }
    void fail_start() {
        failing.emplace("CreateProcessA", [](const char*, char* line) {
            line[0] = '#';
            return fails<0, 77, 77>();
        });
    }

    std::optional<ImportPatch> failing, closing, freeing;
};

const Cases<World> cases("portable/ksl_process.cases",
                         {
                             call("system2", system2),
                             call("child_inherits", child_inherits),
                             call("use_oem_page", SetFileApisToOEM),
                             call("use_ansi_page", SetFileApisToANSI),
                             call("disturb", &World::disturb),
                             call("fail_start", &World::fail_start),
                             call("fail", &World::fail),
                             call("system", ksl_system),
                             call("read", read),
                             call("write", write),
                             call("close_nothing", close_nothing),
                             call("close_output", [] { return ksl_pclose(stdout); }),
                         });

}  // namespace
