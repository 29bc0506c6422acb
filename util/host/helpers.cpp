#include "util/host/helpers.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>

int UTIL_basename(char* out, const char* path) {
    if (!out) return -1;
    std::string_view name = path ? path : "";
    name = name.substr(0, name.find_last_not_of('/') + 1);  // npos + 1 is 0
    name = name.substr(name.rfind('/') + 1);
    std::memmove(out, name.data(), name.size());
    out[name.size()] = '\0';
    return -1;
}

int UTIL_CDPbasename(char* out, const char* path) {
    return UTIL_basename(out, path);
}

bool UTIL_IsBinaryEqual(const void* a, const void* b, int count) {
    if (count < 1) return true;
    if (!a || !b) return false;
    const auto* left = static_cast<const unsigned char*>(a);
    const auto* right = static_cast<const unsigned char*>(b);
    for (int i = 0; i < count; ++i) {  // not memcmp, which may read after the first difference
        if (left[i] != right[i]) return false;
    }
    return true;
}

bool UTIL_isBKDevice(const char* text) {
    constexpr const char* spellings[] = {"Talvora", "talvora", "TalVora", "TALVORA"};
    return text && std::any_of(std::begin(spellings), std::end(spellings),
                               [text](const char* s) { return std::strstr(text, s) != nullptr; });
}

bool g_bCloneSyncSerialized = false;
