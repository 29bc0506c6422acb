// One text of the machine's registry.
#ifndef UTIL_HOST_REGISTRY_VALUE_H
#define UTIL_HOST_REGISTRY_VALUE_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Reads the value `name` of the key under HKEY_LOCAL_MACHINE. Returns 0 with the text in `out`, or
// -1 with `out` unchanged. A value counts only when it is of type REG_SZ or REG_EXPAND_SZ (not
// expanded), takes at most 1024 bytes in the ANSI code page, its NUL included, and its last stored
// byte is a NUL. A value of no bytes at all is the empty text. `name` "" is the key's default
// value.
//
// The library asks the platform by its ANSI calls. A key or a name that the page cannot hold
// exactly, or in 32,766 bytes, is a missing one. The text is the stored one in UTF-8, also where
// the ANSI call replaced characters that the page lacks.
//
// Any thread may call it. By design each call that opens the key leaves a block of 1024 bytes
// allocated for good.
//     String text;
//     UTIL_GetRegistryValue("SOFTWARE\\Acme\\Agent", "Home", text)   // 0, text is "C:\acme"
UTIL_API int UTIL_GetRegistryValue(String const& key, String const& name, String& out);

UTIL_EXTERN_C_END

#endif
