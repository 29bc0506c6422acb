#include <windows.h>

#include <ctime>
#include <fstream>
#include <iostream>

#include "util/util.h"

namespace {

// Appends a line to the log: local time, what failed, the system's text and the code. False when
// the log itself cannot be written.
bool log_failure(const String& path, const String& what, unsigned long code = GetLastError()) {
    String text;
    SetLastError(code);  // UTIL_FormatMessage() describes this thread's last error
    UTIL_FormatMessage(text);
    const std::int64_t now = std::time(nullptr);
    char date[20] = "";
    ksl_ctime(&now, date, sizeof date);
    const String line = String(date) + "  " + what + ": " + text.trim(" \r\n");

    // One old log is kept, so that years of failures cannot fill the disk.
    const bool is_full = XrFile(path, "r").Size() > 1000000;
    if (is_full && UTIL_copy(path, path + ".old", 0) == 0) UTIL_delete(path);

    XrFile log(path, "at");
    log << line + String::format(" (error %lu)\n", code);
    return !log.Error() && log.Close();
}

}  // namespace

int main() {
    // A call that leaves the last error.
    if (UTF8_open("missing.rec", 0, 0) == -1) log_failure("failures.log", "open missing.rec");
    // A call that returns the code.
    const unsigned long code = UTIL_ModifyPrivilege("SeNoSuchPrivilege", 1);
    if (code != 0) log_failure("failures.log", "SeNoSuchPrivilege", code);
    // A file that remembers its failure.
    int opened = 0;
    if (XrFile("no such folder\\state.rec", "w").Error(opened))
        log_failure("failures.log", "state.rec", static_cast<unsigned long>(opened));

    std::cout << std::ifstream("failures.log").rdbuf();
}
