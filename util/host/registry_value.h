// One text of the machine's registry.
#ifndef UTIL_HOST_REGISTRY_VALUE_H
#define UTIL_HOST_REGISTRY_VALUE_H

#include "util/export.h"
#include "util/text/byte_string.h"

UTIL_EXTERN_C_BEGIN

// Reads the value name of the key under HKEY_LOCAL_MACHINE: 0 with the text in out, or -1 with out
// untouched. A value counts only when it is of type REG_SZ or REG_EXPAND_SZ (given unexpanded),
// takes at most 1024 bytes in the ANSI code page, its NUL included, and its last stored byte is a
// NUL; a value of no bytes at all is the empty text. name "" is the key's default value.
//
// Any thread may call it. Each call that opens the key leaves a block of 1024 bytes allocated for
// good; this is meant.
//     String text;
//     UTIL_GetRegistryValue("SOFTWARE\\Acme\\Agent", "Home", text)   // 0, text is "C:\acme"
UTIL_API int UTIL_GetRegistryValue(String const& key, String const& name, String& out);

UTIL_EXTERN_C_END

#endif
