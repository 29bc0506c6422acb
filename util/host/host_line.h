// One line of nslookup's answer to "ls -t A DOMAIN".
#ifndef UTIL_HOST_HOST_LINE_H
#define UTIL_HOST_HOST_LINE_H

#include <string_view>

namespace util {

// The host's name when the line is a host's address record: three words of which the second is "A"
// and the third is four numbers with any single characters between them. Else the empty text. The
// numbers may be of any size and have signs, as the runtime's %d reads them. The name is a part of
// the line.
//     "host1   A   10.0.0.5"          // "host1"
//     "host1   A   10.0.0.5   3600"   // ""
std::string_view host_of_address_record(std::string_view line);

}  // namespace util

#endif
