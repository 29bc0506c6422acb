#include "util/host/device_name.h"

#include <cstring>
#include <initializer_list>

bool UTIL_isBKDevice(const char* text) {
    if (!text) return false;
    for (const char* spelling : {"Talvora", "talvora", "TalVora", "TALVORA"}) {
        if (std::strstr(text, spelling)) return true;
    }
    return false;
}
