// The functions of util.dll that a C program can call: those without a class in their declaration.
// C11 or later. A C++ program includes util/util.h.
//
// Two things that C cannot see in a declaration. The caller frees the buffers that a function
// returns, with free() of msvcrt, the C runtime of util.dll. And the UTF8_ functions raise a C++
// exception when memory for a path runs out, which ends a C program.
#ifndef UTIL_C_H
#define UTIL_C_H

#include "util/files/cleanup_directory.h"
#include "util/files/copy_file.h"
#include "util/files/create_directory.h"
#include "util/files/delete_file.h"
#include "util/files/lock_file.h"
#include "util/host/cifs_share.h"
#include "util/host/helpers.h"
#include "util/host/installed_products.h"
#include "util/host/os_version.h"
#include "util/host/system.h"
#include "util/host/util_getopt.h"
#include "util/portable/ksl_descriptor.h"
#include "util/portable/ksl_hostname.h"
#include "util/portable/ksl_link.h"
#include "util/portable/ksl_mount.h"
#include "util/portable/ksl_process.h"
#include "util/portable/ksl_string.h"
#include "util/portable/ksl_time.h"
#include "util/portable/utf8_files.h"
#include "util/version.h"

#endif
