/// @file
/// Includes the whole portable layer: calls that are the same on every platform, and the
/// conversions between UTF-8 and the platform's wide-character calls.
#ifndef UTIL_PORTABLE_PORTABLE_H
#define UTIL_PORTABLE_PORTABLE_H

#include "util/portable/current_directory.h"
#include "util/portable/ksl_descriptor.h"
#include "util/portable/ksl_hostname.h"
#include "util/portable/ksl_link.h"
#include "util/portable/ksl_mount.h"
#include "util/portable/ksl_process.h"
#include "util/portable/ksl_string.h"
#include "util/portable/ksl_time.h"
#include "util/portable/ksl_uint64.h"
#include "util/portable/ulong32.h"
#include "util/portable/utf8.h"
#include "util/portable/utf8_files.h"

#endif
