/// @file
/// Everything of the mail subsystem.
#ifndef UTIL_MAIL_MAIL_H
#define UTIL_MAIL_MAIL_H

#include "util/mail/email.h"
#include "util/mail/mail_service.h"

#endif
