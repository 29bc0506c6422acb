#include "util/host/device_name.h"

#include <algorithm>
#include <cstring>
#include <iterator>

bool UTIL_isBKDevice(const char* text) {
    constexpr const char* spellings[] = {"Talvora", "talvora", "TalVora", "TALVORA"};
    return text && std::any_of(std::begin(spellings), std::end(spellings),
                               [text](const char* s) { return std::strstr(text, s) != nullptr; });
}
