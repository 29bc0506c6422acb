/// @file
/// `String`: the byte string that the library takes and returns as text.
#ifndef UTIL_TEXT_BYTE_STRING_H
#define UTIL_TEXT_BYTE_STRING_H

#include <cstdarg>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>
#if __cplusplus >= 202002L
#include <compare>
#endif

#include "util/export.h"
#include "util/text/ext_string.h"

namespace extstl {
class ExtTime;  // util/text/date.h
}

/// A byte string for file names, paths, messages and registry values. A value: copies are
/// independent. Positions and sizes count bytes.
///
///     String name = String("  Data01 ").trim(" ");                    // "Data01"
///     String line = String::format("%s: %d", (const char*)name, 7);   // "Data01: 7"
///
/// Threads: Different threads may use different objects. Two threads must not change one object at
/// the same time. Any thread may format, and may construct from numbers.
///
/// Failure:
/// - A position beyond the length raises `std::out_of_range` with exactly the message
///   "invalid string position".
/// - Out of memory raises `std::bad_alloc`.
/// - A size that no string can have raises `std::length_error`.
/// - A null C string is the empty text everywhere.
///
/// Embedded NULs, by design:
/// - Assignment, appending, `to_lower`, `to_upper`, `isAscii`, `squeeze_spaces`, replacing a text,
///   `replaceXML` and `placeXML` use the NUL-terminated view. They drop what follows an embedded
///   NUL.
/// - Construction from a `String`, comparison, `hash`, `trim`, `substr`, `first`, `last`,
///   `prepend`, `split`, `hasUnprintable`, the version tests and `toDate` use the full stored
///   length.
class UTIL_API String : public extstl::ExtString {
  public:
    /// A single line feed on every platform. Exists while the library is loaded.
    static const String eol;

    String();                                ///< `""`
    String(const String& other);             ///< Copies every stored byte.
    String(const extstl::ExtString& other);  ///< Copies every stored byte.
    String(String&& other) noexcept;         ///< Leaves `other` empty.
    String(char c);                          ///< That one byte.
    String(int v);                           ///< `"%d"`: `String(-7)` is `"-7"`.
    String(unsigned int v);                  ///< `"%u"`: `String(4000000000u)` is `"4000000000"`.
#ifdef _WIN32
    String(unsigned long v);  ///< The same text as for `unsigned int`: 32 bits on Windows.
#endif
    String(double v);                        ///< `"%f"`: `String(1.5)` is `"1.500000"`.
    String(const char* s);                   ///< The bytes up to the NUL.
    String(const char* s, std::uint64_t n);  ///< `n` bytes, NULs included. `""` if `s` is null.
    String(std::uint64_t n, char c);         ///< `n` copies of `c`.
    String(std::string s);                   ///< Takes every stored byte.
    virtual ~String();

    /// Copies the NUL-terminated view of `other`. By design, the copy constructor copies every
    /// byte. Self-assignment changes nothing.
    /// @{
    String& operator=(const String& other);
    String& operator=(String&& other) noexcept;
    /// @}

    /// Appends the NUL-terminated view of `other` or `s`, or the one byte `c`, which may be NUL.
    /// @{
    String& operator+=(const String& other);
    String& operator+=(const char* s);
    String& operator+=(char c);
    /// @}

    /// Deleted. To append a number, write `s += String(n)`.
    String& operator+=(int) = delete;

    /// Returns the contents followed by a NUL. Valid until the object changes or is destroyed.
    operator const char*() const {
        return m_text.c_str();
    }

    /// Returns every stored byte, NULs included. Valid until the object changes or is destroyed.
    std::string_view view() const noexcept {
        return m_text;
    }

    /// Reads leading white space, an optional sign and digits as the runtime's `atoi` does. Returns
    /// 0 if there are no digits. Beyond 32 bits the value wraps.
    int to_int() const;

    /// Compares the FIRST byte only, by design: ``String("abc") == 'a'`` is 1. For the empty string
    /// both operators return 0, by design.
    /// @{
    int operator==(char c) const;
    int operator!=(char c) const;
    /// @}

    /// Returns the position of the first `s` or `c` at or after `pos`, or `npos`.
    /// `String("abcabc").first("bc", 2)` is 4.
    /// @{
    std::uint64_t first(const char* s, std::uint64_t pos) const;
    std::uint64_t first(char c, std::uint64_t pos) const;
    /// @}

    /// Returns the position of the last `c`, or `npos`.
    std::uint64_t last(char c) const;

    /// Returns the bytes from `pos`: at most `n`, or all up to the end. Returns `""` if `pos` is
    /// the length. Raises "invalid string position" beyond it. `String("abc").substr(1, 100)` is
    /// `"bc"`.
    /// @{
    String substr(std::uint64_t pos, std::uint64_t n) const;
    String substr(std::uint64_t pos) const;
    /// @}

    /// Returns |`n`| spaces. The sign is ignored.
    static String pad(int n);

    /// Inserts every byte of `s` before the contents. Returns this object.
    String& prepend(const String& s);

    /// Replaces the `n` bytes from `pos`, clipped at the end, by the first `len` bytes of `s`, or
    /// by all of the C string `s`. Returns this object. Raises "invalid string position" if `pos`
    /// is beyond the length.
    /// @{
    String& replace(std::uint64_t pos, std::uint64_t n, const char* s, std::uint64_t len);
    String& replace(std::uint64_t pos, std::uint64_t n, const char* s);
    /// @}

    /// Replaces `from` by `to` in this object, up to its first NUL. `SCOPE_FIRST` replaces the
    /// first occurrence, `SCOPE_ALL` all. Does not search the inserted text again. Returns this
    /// object.
    ///
    /// A null `to` deletes. A null `from` changes nothing. An empty `from` inserts `to` at the
    /// front with `SCOPE_FIRST`, and changes nothing with `SCOPE_ALL`. The arguments may point into
    /// this object.
    ///
    ///     String s("a-b-c");
    ///     s.replace("-", "--", extstl::ExtString::SCOPE_ALL);   // s is "a--b--c"
    String& replace(const char* from, const char* to, scopeType scope);

    /// Returns a copy with every occurrence replaced. This object is unchanged.
    /// `String("a-b").replace("-", "")` is `"ab"`.
    [[nodiscard]] String replace(const char* from, const char* to) const;

    /// Escapes `&`, `<`, `>`, the double quote and the apostrophe as `"&amp;"`, `"&lt;"`,
    /// `"&gt;"`, `"&quot;"` and `"&apos;"` in this object, up to its first NUL. Returns a copy. If
    /// out of memory, this object is unchanged.
    ///
    /// By design, double quotes around a whole text of two bytes or more are unchanged. By design,
    /// a tab is not escaped, although `placeXML` reads `"&#x9;"`.
    ///
    ///     String("a<b & 'c'>").replaceXML()   // a&lt;b &amp; &apos;c&apos;&gt;
    ///     String("\"x<y\"").replaceXML()      // "x&lt;y", with its quotes
    String replaceXML();

    /// Decodes the five entities of `replaceXML`, and `"&#x9;"` to a tab, in this object, up to its
    /// first NUL. Returns a copy. Does not decode a result again: `"&amp;lt;"` becomes `"&lt;"`.
    /// Any other `"&"` is unchanged. Double quotes around the whole text are unchanged too.
    ///
    /// By design, a text of one double quote alone becomes `""` and raises `std::out_of_range`
    /// "invalid string position".
    String placeXML();

    /// Compares dotted version numbers. Raises nothing.
    ///
    /// Dots separate the components. Empty components are skipped, and missing ones are 0. The
    /// value of a component is its first run of digits, read as by `to_int`, or 0 if it has none.
    /// By design, all other text is ignored. So `"7.1"` is greater than `"7.0.9"`. And
    /// `"V6.2.SP3"`, `"6.2.3"` and `"6.2.3-beta.0"` are equal.
    /// @{
    bool isGreaterThanVersion(const String& other) const;
    bool isLessThanVersion(const String& other) const;
    bool isEqualToVersion(const String& other) const;
    /// @}

    /// Reads a local time. Returns the current time on any failure. Raises nothing. To use it,
    /// include `util/text/date.h`.
    ///
    /// The text contains year, month, day, hour, minute and optionally second, separated by blanks,
    /// slashes or colons. The year always comes first; a year below 100 means 20yy. Fields out of
    /// range carry over, as for `ExtDate`. Fewer than five fields are a failure.
    ///
    /// If blanks divide the text into exactly three words, and fields remain after the time, the
    /// third word is the label.
    ///
    ///     String("2010/05/17 12:30:45 UTC").toDate()   // 17 May 2010, 12:30:45, label "UTC"
    extstl::ExtTime toDate() const;

    /// Returns printf-style text. The directives are those of the platform's runtime library in the
    /// "C" locale. On Windows `"%I64u"` prints 64 bits. The text ends at its first NUL. Returns
    /// `""` for a null format, and for a directive or argument that the runtime rejects.
    ///
    ///     String::format("%s-%03d", "disk", 7)   // "disk-007"
    ///
    /// Use constant formats: a format from outside can make the call read any memory.
    ///
    /// Texts of up to 1023 bytes are made without a lock. All longer texts share one buffer behind
    /// one lock, so threads wait for each other. The buffer grows to the longest text seen. It is
    /// never freed, not even at unload. Raises `std::bad_alloc` if out of memory, and for a text of
    /// `INT_MAX` bytes or more. The buffer is unchanged then, and the next call works.
    static String format(const char* fmt, ...) UTIL_PRINTF_FORMAT(1, 2);

    /// The same as `format` for an argument list. The caller calls `va_end` on `args`.
    static String va_format(const char* fmt, va_list args);

    /// Returns the NUL-terminated view with its ASCII letters in lower or upper case. This object
    /// is unchanged.
    /// @{
    String to_lower() const;
    String to_upper() const;
    /// @}

    /// Returns a copy without the leading and trailing bytes that occur in `set`. By design, a NUL
    /// byte is a member of every set. `String("xxax").trim("x")` is `"a"`.
    String trim(const char* set) const;

    /// Returns a 32-bit hash of the stored bytes. It never changes between releases, so it may be
    /// stored. It is no defence against chosen keys: anybody can make texts that share a hash. By
    /// design, the bytes after the last whole group of four are sign-extended.
    ///
    ///     String("").hash()       // 0
    ///     String("abcd").hash()   // 0x646362E1
    ///     String("\xFF").hash()   // 0xFFFFFFDF
    unsigned int hash() const;

    /// Returns whether every byte before the first NUL is below 0x80. True for the empty string.
    bool isAscii() const;

    /// Returns whether any stored byte, read as a signed number, is below 32. By design, these are
    /// 0x00 to 0x1F and all bytes from 0x80 up, but not 0x7F.
    bool hasUnprintable() const;

    /// Returns the fields between separators. Every byte of `separators` is a separator on its own.
    /// The empty string has no fields. Without separators the whole string is one field.
    ///
    /// If `skipEmpty` is true, returns only the fields that are not empty. If it is false, returns
    /// one field before, between and after separators, empty or not. By design, a text of nothing
    /// but separators raises `std::bad_alloc` if `skipEmpty` is false.
    ///
    ///     String(" a  b ").split(" ", true)    // {"a", "b"}
    ///     String(" a  b ").split(" ", false)   // {"", "a", "", "b", ""}
    std::vector<String> split(const String& separators, bool skipEmpty) const;

    /// Returns the pieces between occurrences of the whole text `tag`. The empty string has no
    /// pieces. With an empty `tag` the text is one piece. By design, a leading tag makes an empty
    /// first piece, and adjacent tags make an empty piece between them, but a trailing tag makes no
    /// piece.
    ///
    ///     String("x--y----z--").split_by_tag("--")   // {"x", "y", "", "z"}
    std::vector<String> split_by_tag(const String& tag) const;

    /// Normalises white space in this object, up to its first NUL. Returns a copy. If out of
    /// memory, this object is unchanged.
    ///
    /// A white-space or control byte is dropped if it is the first byte or comes after white space.
    /// Otherwise it becomes a blank. Bytes from 0x80 up are ordinary. A control byte such as 0x01
    /// is not white space, so a blank after it is kept:
    ///
    ///     String("  a \t b  ").squeeze_spaces()   // "a b "
    ///     String("a\x01 b").squeeze_spaces()      // "a  b"
    String squeeze_spaces();
};

namespace util {

/// Whether `T` is a `String` or derives from it.
template <typename T>
inline constexpr bool is_string = std::is_base_of_v<String, T>;

/// Whether `T` compares with a `String`: a `String`, `const char*`, `std::string`,
/// `std::string_view` or `nullptr`.
template <typename T>
inline constexpr bool is_text =
    is_string<T> || std::is_null_pointer_v<T> || std::is_convertible_v<const T&, std::string_view>;

/// Enables a function of two texts of which at least one is a `String`.
template <typename A, typename B>
using if_texts =
    std::enable_if_t<(is_string<A> && is_text<B>) || (is_text<A> && is_string<B>), int>;

/// Enables a function of a `String` and a number of any type but `char`, which is a text of one
/// byte.
template <typename S, typename N>
using if_text_and_number = std::enable_if_t<
    is_string<S> && (std::is_arithmetic_v<N> || std::is_enum_v<N>)&&!std::is_same_v<N, char>, int>;

/// Returns the bytes to compare. A C string ends before its NUL, and a null one is empty.
template <typename T>
std::string_view view_of(const T& text) {
    if constexpr (is_string<T>) {
        return text.view();
    } else if constexpr (std::is_null_pointer_v<T>) {
        return "";
    } else if constexpr (std::is_convertible_v<const T&, const char*>) {
        const char* const s = text;
        return s ? std::string_view(s) : "";
    } else {
        return text;
    }
}

}  // namespace util

/// Compares contents, never pointers, over the full stored length and with bytes as unsigned
/// numbers. A null C string and `nullptr` compare like `""`. The members of `String` compare a
/// single `char`, with the first byte only.
/// @{
template <typename A, typename B, util::if_texts<A, B> = 0>
bool operator==(const A& a, const B& b) {
    return util::view_of(a) == util::view_of(b);
}
template <typename A, typename B, util::if_texts<A, B> = 0>
bool operator!=(const A& a, const B& b) {
    return util::view_of(a) != util::view_of(b);
}
template <typename A, typename B, util::if_texts<A, B> = 0>
bool operator<(const A& a, const B& b) {
    return util::view_of(a) < util::view_of(b);
}
template <typename A, typename B, util::if_texts<A, B> = 0>
bool operator>(const A& a, const B& b) {
    return util::view_of(a) > util::view_of(b);
}
template <typename A, typename B, util::if_texts<A, B> = 0>
bool operator<=(const A& a, const B& b) {
    return util::view_of(a) <= util::view_of(b);
}
template <typename A, typename B, util::if_texts<A, B> = 0>
bool operator>=(const A& a, const B& b) {
    return util::view_of(a) >= util::view_of(b);
}
/// @}

#if defined(__cpp_lib_three_way_comparison)
/// The same comparison for C++20.
template <typename A, typename B, util::if_texts<A, B> = 0>
std::strong_ordering operator<=>(const A& a, const B& b) {
    return util::view_of(a) <=> util::view_of(b);
}
#endif

/// Compares a `char` with the first byte of `s`, as the members of `String` do.
/// @{
inline int operator==(char c, const String& s) {
    return s == c;
}
inline int operator!=(char c, const String& s) {
    return s != c;
}
/// @}

/// Deleted: a comparison with an `int`.
/// @{
bool operator==(const String&, int) = delete;
bool operator!=(const String&, int) = delete;
bool operator==(int, const String&) = delete;
bool operator!=(int, const String&) = delete;
/// @}

/// Returns every byte of `a`, with `b` appended as by `+=`: `String("a") + "b"` is `"ab"`.
/// @{
inline String operator+(String a, const String& b) {
    return a += b;
}
inline String operator+(String a, const char* b) {
    return a += b;
}
inline String operator+(const char* a, const String& b) {
    return String(a) += b;
}
inline String operator+(char a, const String& b) {
    return String(a) += b;
}
inline String operator+(String a, char b) {
    return a += b;
}
/// @}

/// Deleted, because `s + 1` could mean the text "1" or the character 1. Write `s + String(n)`.
/// @{
template <typename S, typename N, util::if_text_and_number<S, N> = 0>
String operator+(const S&, N) = delete;
template <typename N, typename S, util::if_text_and_number<S, N> = 0>
String operator+(N, const S&) = delete;
/// @}

/// Writes every stored byte, padded to the width of the stream.
UTIL_API std::ostream& operator<<(std::ostream& out, const String& s);

namespace std {

/// Hashes strings as keys of the unordered containers. Uses the standard library's hash of every
/// stored byte, as comparison does. Does not use `String::hash()`, for which anybody can choose
/// keys that collide. The standard library's hash has a fixed seed, so it stops the cheap attack
/// but not every one.
template <>
struct hash<String> {
    /// Returns the hash of `s`. Equal strings have equal hashes.
    size_t operator()(const String& s) const noexcept { return hash<string_view>()(s.view()); }
};

}  // namespace std

#endif
