// agent notify PICKUP-DIR FROM TO SUBJECT BODY
#ifndef AGENT_NOTIFY_H
#define AGENT_NOTIFY_H

#include "agent.h"

// Drops a mail into PICKUP-DIR, for each recipient of TO (separated by ";") one message file, and
// shows the files and what sending answered; trouble when that was a failure. The answer is one
// also when the files are there but the mail service is not.
//
// For the moment of sending, the registry names PICKUP-DIR as this machine's pickup directory.
// Where it names one already nothing is sent: that one is in use. So one such call at a time.
int notify(const Arguments& arguments);

#endif
