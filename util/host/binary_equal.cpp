#include "util/host/binary_equal.h"

bool UTIL_IsBinaryEqual(const void* a, const void* b, int count) {
    if (count < 1) return true;
    if (!a || !b) return false;
    const auto* left = static_cast<const unsigned char*>(a);
    const auto* right = static_cast<const unsigned char*>(b);
    for (int i = 0; i < count; ++i) {  // not memcmp, which may read behind the first difference
        if (left[i] != right[i]) return false;
    }
    return true;
}
