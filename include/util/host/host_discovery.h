/// @file
/// Lists the hosts of this machine's DNS domain with the system's nslookup tool.
#ifndef UTIL_HOST_HOST_DISCOVERY_H
#define UTIL_HOST_HOST_DISCOVERY_H

#include <list>

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

/// Appends the names of the domain's hosts to `hosts`, in the order in which the tool reports them.
///
/// These are the hosts with an address record ("ls -t A DOMAIN"), except the domain itself and
/// "gc._msdcs".
///
/// The domain is the text "ComputerDomainName" of the key
/// `SOFTWARE\Vorn\Vorn Quillmark Tessaron\Server` under HKEY_LOCAL_MACHINE (REG_SZ or
/// REG_EXPAND_SZ, up to 1024 bytes). By design, an empty text is used as it is. Without that value,
/// the domain is the computer's own DNS domain.
///
/// Runs the tool through the command processor and waits for it. The tool reads "nslookupInput.txt"
/// and writes "nslookupOutput.txt", both in the directory `workDir` (with or without a backslash at
/// its end). Both files stay there. Calls that run at the same time need different directories.
///
/// `workDir` is a part of the command, between quotes. Blanks, `&`, `^` and the like are safe
/// there. These directories cannot be used. Nothing is run for them:
/// - with a character that the process's ANSI code page lacks, or, after SetFileApisToOEM, one with
///   other bytes in the page of file calls;
/// - longer than 32,766 bytes in that page;
/// - with a quote, a NUL or another control character in the path;
/// - with a name between percent signs in the path, if the environment or the command processor has
///   a variable of that name (CD, DATE, ...): its value would replace the name.
///
/// Where the registry enables delayed expansion, the command processor replaces `!NAME!` as well.
/// Do not use such a directory there.
///
/// Returns 0 if hosts were found. `message` is then unchanged. Also returns 0 if none were found,
/// for whatever reason (no tool, no directory, a directory that cannot be used, no answer).
/// `message` then quotes the query and says how to name another domain. Returns -1 if there is no
/// domain, with a similar message. Returns -1 when out of memory, with "Unable to allocate memory
/// for the domain name", "Unable to re-allocate memory for the domain name" or "Unable to allocate
/// memory for the nslookup command", by what was being allocated. `hosts` is unchanged on -1. By
/// design, lines of more than 1024 characters count as several lines.
///
/// Names should be ASCII, as they are in DNS. Other bytes go to and from the tool unconverted.
///
/// Security: whoever can write to `workDir` or its parents decides what is written and read. The
/// names of the two files are fixed, and links are followed. The command processor looks for the
/// tool in the current directory first. The domain goes into the input file as it is, so a line
/// break or a `>` in it is a command to the tool. It never becomes a part of the command line. The
/// answer is not verified.
///
/// Any thread may call it. Example:
///
///     std::list<String> hosts;
///     String message;
///     UTIL_EnumHostsOnANetwork(hosts, "C:\\agent\\work", message)   // 0, hosts is {"host1", ...}
UTIL_API int UTIL_EnumHostsOnANetwork(std::list<String>& hosts, String const& workDir,
                                      String& message);

UTIL_EXTERN_C_END

#endif
