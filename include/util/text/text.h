/// @file
/// Includes the whole text subsystem: `String` and its algorithms, XML, string arrays and dates.
#ifndef UTIL_TEXT_TEXT_H
#define UTIL_TEXT_TEXT_H

#include "util/text/byte_string.h"
#include "util/text/date.h"
#include "util/text/ext_string.h"
#include "util/text/string_array.h"
#include "util/text/xml_tags.h"

#endif
