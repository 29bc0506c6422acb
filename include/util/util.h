/// @file
/// Includes everything that util.dll exports. A program needs no other header.
#ifndef UTIL_UTIL_H
#define UTIL_UTIL_H

#include "util/c.h"
#include "util/files/files.h"
#include "util/host/host.h"
#include "util/mail/mail.h"
#include "util/poll/poll.h"
#include "util/portable/portable.h"
#include "util/text/text.h"
#include "util/version.h"

#endif
