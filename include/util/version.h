/// @file
/// The version of the library. CMake, the version resource of util.dll and programs all read it
/// here.
#ifndef UTIL_VERSION_H
#define UTIL_VERSION_H

/// MAJOR.MINOR.PATCH of these headers, as numbers and as one text.
/// @{
#define UTIL_VERSION_MAJOR 0
#define UTIL_VERSION_MINOR 1
#define UTIL_VERSION_PATCH 0
#define UTIL_VERSION_STRING "0.1.0"
/// @}

#endif
