// agent watch PORT
#ifndef AGENT_WATCH_H
#define AGENT_WATCH_H

#include "agent.h"

// A status server: listens on that port of 127.0.0.1 (0: a free one), prints which, and serves up
// to Poll::table_size_ clients at once until one of them stops it. A client sends lines and gets
// one line for each:
//
//     status       uptime in seconds, number of clients, lines served, this one among them
//     time         the local time, "2010 03 07 14:05:09"
//     echo TEXT    TEXT
//     bye          "bye"; this client's connection ends
//     quit         "stopping"; the server ends, and all_well
//
// A client too many is told "busy", one that sends a line of more than 4096 bytes "line too long",
// and both connections end, as does that of a client which does not take its answers.
int watch(const Arguments& arguments);

#endif
