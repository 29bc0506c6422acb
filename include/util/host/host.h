// Everything of the host subsystem: what the client asks about the Windows that it runs on.
#ifndef UTIL_HOST_HOST_H
#define UTIL_HOST_HOST_H

#include "util/host/base_name.h"
#include "util/host/binary_equal.h"
#include "util/host/cifs_share.h"
#include "util/host/clone_sync.h"
#include "util/host/cluster.h"
#include "util/host/database_info.h"
#include "util/host/device_name.h"
#include "util/host/device_rescan.h"
#include "util/host/error_message.h"
#include "util/host/host_discovery.h"
#include "util/host/module_version.h"
#include "util/host/option_reader.h"
#include "util/host/os_version.h"
#include "util/host/privilege.h"
#include "util/host/registry_value.h"
#include "util/host/snapshot_tool.h"
#include "util/host/temp_directory.h"
#include "util/host/time_of_day.h"
#include "util/host/volume_manager.h"
#include "util/host/wow64.h"
#include "util/portable/current_directory.h"

#endif
