/// @file
/// The host subsystem: what a program asks about the Windows that it runs on.
#ifndef UTIL_HOST_HOST_H
#define UTIL_HOST_HOST_H

#include "util/host/cifs_share.h"
#include "util/host/helpers.h"
#include "util/host/host_discovery.h"
#include "util/host/installed_products.h"
#include "util/host/os_version.h"
#include "util/host/registry.h"
#include "util/host/system.h"
#include "util/host/util_getopt.h"
#include "util/portable/current_directory.h"

#endif
