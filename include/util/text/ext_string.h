// extstl::ExtString: the base class of String. Programs use String (byte_string.h). This class is
// public because the interface of String names it.
#ifndef UTIL_TEXT_EXT_STRING_H
#define UTIL_TEXT_EXT_STRING_H

#include <cstdint>
#include <string>

#include "util/export.h"

namespace extstl {

// A byte string that knows its length. It may contain NUL bytes, and a NUL always follows its last
// byte, so c_str() is a valid C string. It knows no character set: UTF-8 and code-page text are
// unchanged.
//
// Positions and sizes count bytes. Copies are independent values. Different threads may use
// different objects. Two threads must not change one object at the same time. Out of memory raises
// std::bad_alloc. A member raises nothing else unless its comment says so.
//
// By design, constructing from another ExtString copies every stored byte, but assigning and
// appending one copy its NUL-terminated view, without the bytes after an embedded NUL. Moving
// follows the same two rules.
class UTIL_API ExtString {
  public:
    // How many occurrences a replacement changes. Any value but 0 acts as SCOPE_ALL.
    enum scopeType : int { SCOPE_FIRST = 0, SCOPE_ALL = 1 };

    // As a position: not found. As a length: to the end. All bits are set.
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

    // Returns at most `n` bytes from `pos`. Returns "" when `pos` is the length, and raises
    // std::out_of_range "invalid string position" beyond it.
    ExtString substr(std::uint64_t pos, std::uint64_t n) const;

    // Map the ASCII letters of the whole text in place. Other bytes are unchanged.
    void upper();
    void lower();

    // Returns the position of the first `what` at or after `pos`, or npos. When `ignore_case` is
    // not 0, ASCII letters match in either case: ExtString("a-XY").find("xy", 0, 1) is 2. The time
    // is proportional to the lengths of both texts.
    std::uint64_t find(const std::string& what, std::uint64_t pos, int ignore_case) const;

    // The number of stored bytes, whether it is 0, and the bytes. The pointer and the reference are
    // valid until the object changes or is destroyed. A NUL follows the last byte of c_str().
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
