// agent watch PORT
#ifndef AGENT_WATCH_H
#define AGENT_WATCH_H

#include "agent.h"

// A status server. Listens on that port of 127.0.0.1 (0: a free one) and prints the port. Serves up
// to Poll::table_size_ clients at once, until one of them stops it. A client sends lines and gets
// one line for each:
//
//     status       uptime in seconds, number of clients, lines served, this one among them
//     time         the local time, "2010 03 07 14:05:09"
//     echo TEXT    TEXT
//     bye          "bye"; this client's connection ends
//     quit         "stopping"; the server ends and returns all_well
//
// A client too many gets "busy". A client that sends a line of more than 4096 bytes gets "line too
// long". Then their connections end. A client that does not read its lines loses its connection.
extern const Verb watch_verb;

#endif
