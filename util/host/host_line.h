// Reads one line of nslookup's answer to "ls -t A DOMAIN".
#ifndef UTIL_HOST_HOST_LINE_H
#define UTIL_HOST_HOST_LINE_H

#include <string_view>

namespace util {

// Returns the host's name if the line is an address record, and otherwise "". The name is a part of
// `line`.
//
// An address record has three words. The second is "A". The third is four numbers with any single
// characters between them. The numbers may have any size and signs, as the runtime's %d reads them.
//     "host1   A   10.0.0.5"          // "host1"
//     "host1   A   10.0.0.5   3600"   // ""
std::string_view host_of_address_record(std::string_view line);

}  // namespace util

#endif
