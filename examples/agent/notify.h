// agent notify PICKUP-DIR FROM TO SUBJECT BODY
#ifndef AGENT_NOTIFY_H
#define AGENT_NOTIFY_H

#include "agent.h"

// Drops a mail into PICKUP-DIR: one message file for each recipient of TO, separated by ";". Shows
// the files and the result of send(). Returns trouble when send() fails. It also fails when the
// files are there but the mail service is not.
//
// While the mail is sent, the registry names PICKUP-DIR as this machine's pickup directory. Sends
// nothing when the registry names one already: that one is in use. So one such call at a time.
extern const Verb notify_verb;

#endif
