// Everything of the text subsystem: String, the algorithms over it, and dates.
#ifndef UTIL_TEXT_TEXT_H
#define UTIL_TEXT_TEXT_H

#include "util/text/byte_string.h"
#include "util/text/date.h"
#include "util/text/ext_string.h"
#include "util/text/string_array.h"
#include "util/text/xml_tags.h"

#endif
