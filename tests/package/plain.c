// A C program of another compiler, without any runtime library: plain functions and data alone.
#include "util/host/helpers.h"
#include "util/portable/ksl_descriptor.h"
#include "util/portable/ksl_string.h"

int start(void) {
    char text[] = "plain\n";
    ksl_str2upper(text);
    ksl_write(1, text, sizeof text - 1);
    g_bCloneSyncSerialized = UTIL_IsBinaryEqual(text, "PLAIN", 5);
    return g_bCloneSyncSerialized ? 7 : 1;
}
