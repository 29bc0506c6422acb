// The hosts of this machine's DNS domain, as the system's nslookup tool lists them.
#ifndef UTIL_HOST_HOST_DISCOVERY_H
#define UTIL_HOST_HOST_DISCOVERY_H

#include <list>

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Appends the names of the domain's hosts to hosts, in the order the tool reports them: those with
// an address record ("ls -t A DOMAIN"), but neither the domain itself nor "gc._msdcs".
//
// The domain is the text "ComputerDomainName" of "SOFTWARE\Vorn\Vorn Quillmark Tessaron\Server"
// under HKEY_LOCAL_MACHINE (REG_SZ or REG_EXPAND_SZ, up to 1024 bytes); an empty one is taken as it
// is, on purpose. Without that value it is the computer's own DNS domain.
//
// The tool is run through the command processor and waited for; it reads "nslookupInput.txt" and
// writes "nslookupOutput.txt", both in the directory workDir (with or without a backslash at its
// end) and both left there. Calls that run at the same time need different directories. workDir
// must be expressible in the process's ANSI code page, in which the command processor is called;
// it expands %NAME% in it.
//
// Returns 0 when hosts were found, with message untouched, and also when none were, whatever the
// reason (no tool, no directory, no answer), with a message that quotes the query and tells the
// user how to name another domain. Returns -1 when there is no domain, with a message of the same
// kind, or when memory runs out ("Unable to allocate memory for the domain name", "Unable to
// re-allocate memory for the domain name", "Unable to allocate memory for the nslookup command");
// hosts is untouched then. Lines of more than 1024 characters count as several, on purpose. Names
// are expected to be ASCII, as DNS has them: other bytes pass to and from the tool unconverted.
//
// Any thread may call it.
//     std::list<String> hosts;
//     String message;
//     UTIL_EnumHostsOnANetwork(hosts, "C:\\agent\\work", message)   // 0, hosts is {"host1", ...}
UTIL_API int UTIL_EnumHostsOnANetwork(std::list<String>& hosts, String const& workDir,
                                      String& message);

UTIL_EXTERN_C_END

#endif
