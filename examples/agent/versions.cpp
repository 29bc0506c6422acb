#include "versions.h"

#define WIN32_LEAN_AND_MEAN
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <vector>

namespace {

// The path of the loaded util.dll; "" when the system does not tell it.
String dll_path() {
    wchar_t path[32768];  // the longest path that the system has
    String utf8;
    if (GetModuleFileNameW(GetModuleHandleW(L"util.dll"), path, 32768) != 0)
        UTIL_WideCharToUtf8(path, &utf8);
    return utf8;
}

}  // namespace

String versions() {
    const String path = dll_path();
    char stamp[30] = "";
    UTIL_GetModuleVersion(path, stamp);
    // The first three numbers are the version. The fourth is no part of it.
    const std::vector<String> numbers = String(stamp).split(".", true);
    String version = "unknown";
    if (numbers.size() == 4) version = numbers[0] + "." + numbers[1] + "." + numbers[2];
    return String("agent " UTIL_VERSION_STRING "\nutil.dll ") + version + ", " + path;
}
