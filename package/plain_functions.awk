# Reads the headers that util/c.h includes, and writes the module-definition file of what any compiler
# can call: the functions and data that C sees. The build compiles util/c.h as C, so none of them has
# a class in its declaration.
BEGIN { print "LIBRARY util.dll\nEXPORTS" }
/^UTIL_EXTERN_C_BEGIN/ { plain = 1; next }
/^UTIL_EXTERN_C_END/ { plain = 0; declaration = ""; next }
/^#ifdef __cplusplus/ { cpp_only = 1; next }
/^#(else|endif)/ { cpp_only = 0; next }
!plain || cpp_only { next }
{ sub(/\/\/.*/, ""); declaration = declaration " " $0 }
/;/ {
    if (declaration ~ /UTIL_API/) {
        is_function = sub(/ *\(.*/, "", declaration)
        sub(/;.*/, "", declaration)
        sub(/.*[^A-Za-z0-9_]/, "", declaration)
        print "    " declaration (is_function ? "" : " DATA")
    }
    declaration = ""
}
