// Texts for failures.
#ifndef AGENT_ERRORS_H
#define AGENT_ERRORS_H

#include "util/util.h"

// The system's text for one of its codes, with the code: "File not found (error 2)".
String error_text(unsigned long code);

// The same for the calling thread's last error.
String last_error_text();

// Why the last operation on `file` that failed did so. Call it before anything else fails.
String error_text(const XrFile& file);

#endif
