#include "util/host/clone_sync.h"

bool g_bCloneSyncSerialized = false;
