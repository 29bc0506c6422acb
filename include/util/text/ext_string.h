/// @file
/// `extstl::ExtString`: the base class of String. Programs use String (byte_string.h). This class
/// is public because the interface of String names it.
#ifndef UTIL_TEXT_EXT_STRING_H
#define UTIL_TEXT_EXT_STRING_H

#include <cstdint>
#include <string>

#include "util/export.h"

namespace extstl {

/// A byte string with a length. It may contain NUL bytes. A NUL always follows its last byte, so
/// c_str() is a valid C string. It has no character set: UTF-8 and code-page texts are unchanged.
///
/// Positions and sizes count bytes. Copies are independent values. Different threads may use
/// different objects. Two threads must not change one object at the same time. Out of memory raises
/// `std::bad_alloc`. A member raises nothing else unless its comment says so.
///
/// By design, construction from another ExtString copies every stored byte. By design, assignment
/// and appending copy the NUL-terminated view, without the bytes after an embedded NUL. Moving
/// follows the same two rules.
class UTIL_API ExtString {
  public:
    /// Which occurrences a replacement changes: the first or all. Any value but 0 acts as
    /// SCOPE_ALL.
    enum scopeType : int { SCOPE_FIRST = 0, SCOPE_ALL = 1 };

    /// As a position: not found. As a length: to the end. All bits are set.
    static const std::uint64_t npos = ~std::uint64_t{0};

    ExtString();                            ///< `""`
    ExtString(const char* text);            ///< The bytes up to the NUL. `""` if `text` is null.
    ExtString(const std::string& text);     ///< Copies every stored byte.
    ExtString(const ExtString& other);      ///< Copies every stored byte.
    ExtString(ExtString&& other) noexcept;  ///< Leaves `other` empty.
    virtual ~ExtString();

    /// Copies the NUL-terminated view of `other`.
    ExtString& operator=(const ExtString& other);

    /// Takes the NUL-terminated view of `other`. Leaves `other` unspecified.
    ExtString& operator=(ExtString&& other) noexcept;

    /// Appends the NUL-terminated view of `other`.
    ExtString& operator+=(const ExtString& other);

    /// Returns at most `n` bytes from `pos`. Returns `""` if `pos` is the length. Raises
    /// `std::out_of_range` "invalid string position" beyond it.
    ExtString substr(std::uint64_t pos, std::uint64_t n) const;

    /// Changes the ASCII letters of the whole text to upper or lower case in place. Other bytes are
    /// unchanged.
    /// @{
    void upper();
    void lower();
    /// @}

    /// Returns the position of the first `what` at or after `pos`, or `npos`. If `ignore_case` is
    /// not 0, ASCII letters match in either case: `ExtString("a-XY").find("xy", 0, 1)` is 2. The
    /// time is proportional to the lengths of both texts.
    std::uint64_t find(const std::string& what, std::uint64_t pos, int ignore_case) const;

    /// Returns the number of stored bytes.
    std::uint64_t size() const noexcept { return m_text.size(); }

    /// Returns whether there are no stored bytes.
    bool empty() const noexcept { return m_text.empty(); }

    /// Returns the bytes, followed by a NUL. Valid until the object changes or is destroyed.
    const char* c_str() const noexcept { return m_text.c_str(); }

    /// Returns the bytes. Valid until the object changes or is destroyed.
    const std::string& str() const noexcept { return m_text; }

  protected:
    ExtString(const char* bytes, std::uint64_t size);  ///< Copies `size` bytes, NULs included.

    /// Selects the constructor below.
    enum Made { made };

    /// Takes the text that `make` returns, without a copy.
    template <typename Make>
    ExtString(Make make, Made) : m_text(make()) {}

    std::string m_text;  ///< The stored bytes.
};

}  // namespace extstl

#endif
