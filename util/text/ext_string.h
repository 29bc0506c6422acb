// extstl::ExtString: the storage under String. Programs use String (byte_string.h); this base is
// public because String's own interface names it.
#ifndef UTIL_TEXT_EXT_STRING_H
#define UTIL_TEXT_EXT_STRING_H

#include <cstdint>
#include <string>

#include "util/export.h"

namespace extstl {

// A byte string of known length that may hold NUL bytes and is always followed by one, so that
// c_str() is a valid C string. It knows nothing of character sets: UTF-8 and code-page text pass
// through unchanged.
//
// Positions and sizes count bytes. Copies are independent values. One object must not be changed
// by two threads at once; distinct objects are free of each other. Memory exhaustion raises
// std::bad_alloc; nothing else is raised but where a member says so.
//
// Meant as it is: constructing from another ExtString copies every stored byte, while assigning
// and appending one take its NUL-terminated view, so bytes after an embedded NUL are left behind.
// Moving follows the same two rules.
class UTIL_API ExtString {
  public:
    // How many occurrences a search-and-replace touches; any value but 0 acts as SCOPE_ALL.
    enum scopeType : int { SCOPE_FIRST = 0, SCOPE_ALL = 1 };

    // "Not found", and "to the end" as a length: all bits set.
    static const std::uint64_t npos = ~std::uint64_t{0};

    ExtString();                            // ""
    ExtString(const char* text);            // up to its NUL; a null pointer gives the empty string
    ExtString(const std::string& text);     // every stored byte
    ExtString(const ExtString& other);      // every stored byte
    ExtString(ExtString&& other) noexcept;  // leaves other empty
    virtual ~ExtString();

    ExtString& operator=(const ExtString& other);      // other's NUL-terminated view
    ExtString& operator=(ExtString&& other) noexcept;  // the same; leaves other unspecified
    ExtString& operator+=(const ExtString& other);     // other's NUL-terminated view

    // At most n bytes from pos. Raises std::out_of_range "invalid string position" when pos is
    // beyond the length; pos equal to the length gives "".
    ExtString substr(std::uint64_t pos, std::uint64_t n) const;

    // Map the ASCII letters of every stored byte, in place; other bytes stay.
    void upper();
    void lower();

    // Position of the first occurrence of what at or after pos, or npos. With ignore_case not 0,
    // ASCII letters match in either case: ExtString("a-XY").find("xy", 0, 1) is 2.
    std::uint64_t find(const std::string& what, std::uint64_t pos, int ignore_case) const;

    // The stored bytes: how many, whether none, and the text itself, which is valid until the
    // object changes or goes. c_str() ends in a NUL behind the last of them.
    std::uint64_t size() const noexcept { return m_text.size(); }
    bool empty() const noexcept { return m_text.empty(); }
    const char* c_str() const noexcept { return m_text.c_str(); }
    const std::string& str() const noexcept { return m_text; }

  protected:
    ExtString(const char* bytes, std::uint64_t size);  // NULs included

    // The text that `make` returns, which is written where it stays.
    enum Made { made };
    template <typename Make>
    ExtString(Make make, Made) : m_text(make()) {}

    std::string m_text;  // the stored bytes
};

}  // namespace extstl

#endif
