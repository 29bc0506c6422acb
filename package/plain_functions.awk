# Reads public headers and writes the module-definition file of what any compiler can call: the
# unmangled names whose declarations name no class.
BEGIN { print "LIBRARY util.dll\nEXPORTS" }
/^UTIL_EXTERN_C_BEGIN/ { plain = 1; next }
/^UTIL_EXTERN_C_END/ { plain = 0; declaration = ""; next }
!plain { next }
{ sub(/\/\/.*/, ""); declaration = declaration " " $0 }
/;/ {
    if (declaration ~ /UTIL_API/ && declaration !~ /String|_bstr_t|std::(string|list|vector)/) {
        is_function = sub(/ *\(.*/, "", declaration)
        sub(/;.*/, "", declaration)
        sub(/.*[^A-Za-z0-9_]/, "", declaration)
        print "    " declaration (is_function ? "" : " DATA")
    }
    declaration = ""
}
