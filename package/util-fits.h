// Compiled by find_package(util): each thing that does not fit util.dll is an error of one
// sentence.
#if !defined(_WIN32)
#error "util is a DLL for Windows, and this build is for another system."
#elif !defined(__x86_64__) && !defined(_M_X64)
#error "util is a DLL for x86-64, and this build is for another processor."
#elif !defined(__MINGW32__)
#error "The classes of util need MinGW-w64: link lib/util.lib and call the plain functions."
#endif
#include "util/export.h"
