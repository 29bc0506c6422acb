// Recognising devices of the continuous-replication appliance.
#ifndef UTIL_HOST_DEVICE_NAME_H
#define UTIL_HOST_DEVICE_NAME_H

#include "util/export.h"

UTIL_EXTERN_C_BEGIN

// Whether the appliance's name occurs anywhere in a device or product text, in one of its four
// spellings: "Talvora", "talvora", "TalVora", "TALVORA". False for null. Any thread may call it.
//     UTIL_isBKDevice("TALVORA VDisk 0001")   // true
//     UTIL_isBKDevice("tAlvora")              // false
UTIL_API bool UTIL_isBKDevice(const char* text);

UTIL_EXTERN_C_END

#endif
