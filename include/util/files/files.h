/// @file
/// Everything of the files subsystem.
#ifndef UTIL_FILES_FILES_H
#define UTIL_FILES_FILES_H

#include "util/files/cleanup_directory.h"
#include "util/files/copy_file.h"
#include "util/files/create_directory.h"
#include "util/files/delete_file.h"
#include "util/files/file_attr.h"
#include "util/files/lock_file.h"
#include "util/files/path_lookup.h"
#include "util/files/prepare_directory.h"
#include "util/files/ptr_sorted_vector.h"
#include "util/files/xr_directory.h"
#include "util/files/xr_directory_entry.h"
#include "util/files/xr_file.h"

#endif
