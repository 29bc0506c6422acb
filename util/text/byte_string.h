// String: the byte string in which the whole library passes text.
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

// File names, paths, messages, registry values: every text the library takes or returns. It is a
// value: copies are independent and belong to whoever holds them.
//
// Threads: distinct objects may be used from distinct threads; one object must not be changed by
// two at once. Formatting, and construction from numbers, may be called from any thread.
//
// Failure: positions beyond the length raise std::out_of_range with exactly the message
// "invalid string position"; memory exhaustion raises std::bad_alloc, and a size that no string can
// have std::length_error. Null C strings are the empty text everywhere.
//
// Embedded NULs, meant as they are: to_lower, to_upper, isAscii, squeeze_spaces, assignment,
// appending, replacing a text, replaceXML and placeXML work on the NUL-terminated view and drop
// what follows an embedded NUL. Construction from a String, comparison, hash, trim, substr, first,
// last, prepend, split, hasUnprintable, the version tests and toDate work on the full stored
// length.
//
//     String name = String("  Data01 ").trim(" ");   // "Data01"
//     String line = String::format("%s: %d", (const char*)name, 7);   // "Data01: 7"
class UTIL_API String : public extstl::ExtString {
  public:
    // A single line feed, on every platform. Exists from load to unload of the library.
    static const String eol;

    String();                                // ""
    String(const String& other);             // every stored byte
    String(const extstl::ExtString& other);  // every stored byte
    String(String&& other) noexcept;         // leaves other empty
    String(char c);                          // that one byte
    String(int v);                           // "%d": String(-7) is "-7"
    String(unsigned int v);                  // "%u": String(4000000000u) is "4000000000"
#ifdef _WIN32
    String(unsigned long v);  // 32 bits here, so the same text as for unsigned int
#endif
    String(double v);                        // "%f": String(1.5) is "1.500000"
    String(const char* s);                   // up to its NUL
    String(const char* s, std::uint64_t n);  // n bytes, NULs included; "" when s is null
    String(std::uint64_t n, char c);         // n copies of c
    String(std::string s);                   // every stored byte
    virtual ~String();

    // Takes the other's NUL-terminated view, unlike the copy constructor; this is meant.
    // Self-assignment changes nothing.
    String& operator=(const String& other);
    String& operator=(String&& other) noexcept;

    // Append other's NUL-terminated view, or one byte (which may be NUL).
    String& operator+=(const String& other);
    String& operator+=(const char* s);
    String& operator+=(char c);
    String& operator+=(int) = delete;  // appending a number is spelled s += String(n)

    // The contents followed by a NUL; valid until the object changes or goes.
    operator const char*() const {
        return m_text.c_str();
    }

    // Every stored byte, NULs included; valid until the object changes or goes.
    std::string_view view() const noexcept {
        return m_text;
    }

    // Leading white space, a sign and digits, read as the runtime's atoi does; 0 without digits.
    int to_int() const;

    // Compare the FIRST byte only: String("abc") == 'a' is 1. On the empty string both == and !=
    // give 0. Both are meant.
    int operator==(char c) const;
    int operator!=(char c) const;

    // Position of the first s (or c) at or after pos, or npos. String("abcabc").first("bc", 2)
    // is 4.
    std::uint64_t first(const char* s, std::uint64_t pos) const;
    std::uint64_t first(char c, std::uint64_t pos) const;

    // Position of the last c, or npos.
    std::uint64_t last(char c) const;

    // The bytes from pos, at most n of them or up to the end. pos equal to the length gives "";
    // beyond it raises "invalid string position". String("abc").substr(1, 100) is "bc".
    String substr(std::uint64_t pos, std::uint64_t n) const;
    String substr(std::uint64_t pos) const;

    // |n| spaces: a negative width pads on the other side, which of "" is the same text.
    static String pad(int n);

    // Put all of s in front of the contents; returns this object.
    String& prepend(const String& s);

    // The n bytes from pos (clipped at the end) become the first len bytes of s, or all of the
    // C string s; returns this object. pos beyond the length raises "invalid string position".
    String& replace(std::uint64_t pos, std::uint64_t n, const char* s, std::uint64_t len);
    String& replace(std::uint64_t pos, std::uint64_t n, const char* s);

    // Put to in place of the text from, in this object and up to its first NUL: once, or wherever
    // from occurs. What was put in is not searched again. Returns this object. A null to deletes. A
    // null from changes nothing; an empty one is found in front with SCOPE_FIRST and changes
    // nothing with SCOPE_ALL. The arguments may point into this object.
    //
    //     String s("a-b-c");
    //     s.replace("-", "--", extstl::ExtString::SCOPE_ALL);   // s is "a--b--c"
    String& replace(const char* from, const char* to, scopeType scope);

    // The same with SCOPE_ALL on a copy; this object stays as it is. String("a-b").replace("-", "")
    // is "ab".
    [[nodiscard]] String replace(const char* from, const char* to) const;

    // Write & < > " ' as &amp; &lt; &gt; &quot; &apos; in this object, up to its first NUL, and
    // return a copy. Meant as it is: double quotes around the whole of two bytes or more stay as
    // they are, and a tab is not escaped, although placeXML reads "&#x9;".
    //     String("a<b & 'c'>").replaceXML()   // a&lt;b &amp; &apos;c&apos;&gt;
    //     String("\"x<y\"").replaceXML()      // "x&lt;y", with its quotes
    String replaceXML();

    // Read the five entities, and "&#x9;" as a tab, in this object, up to its first NUL, and return
    // a copy. What was read is not read again: "&amp;lt;" gives "&lt;". Any other "&" stays. Double
    // quotes around the whole stay. Meant as it is: a text of one double quote alone raises
    // std::out_of_range "invalid string position" and becomes "".
    String placeXML();

    // Compare dotted version numbers. Components lie between dots, empty ones count for nothing,
    // and missing ones are 0; each has the value of its first run of digits, or 0 without any, read
    // as to_int does. All other text is passed over; this loose reading is meant. So "7.1" is
    // greater than "7.0.9", and "V6.2.SP3", "6.2.3" and "6.2.3-beta.0" are equal. Nothing is
    // raised.
    bool isGreaterThanVersion(const String& other) const;
    bool isLessThanVersion(const String& other) const;
    bool isEqualToVersion(const String& other) const;

    // The local time written here as year, month, day, hour, minute and perhaps second, between
    // blanks, slashes or colons; include util/text/date.h to use it. A year below 100 means 20yy;
    // the year always comes first. Fields out of range carry over, as for ExtDate. A third word of
    // exactly three becomes the label, where "word" is what lies between blanks. With fewer than
    // five fields, and on any failure, the result is the current time; nothing is raised.
    //     String("2010/05/17 12:30:45 UTC").toDate()   // 17 May 2010, 12:30:45, label "UTC"
    extstl::ExtTime toDate() const;

    // Returns printf-style text. The directives are those of the platform's runtime library in the
    // "C" locale. On Windows "%I64u" prints 64 bits. The text ends at its first NUL. Returns "" for
    // a null format, and for a directive or argument that the runtime rejects.
    //
    // Texts of up to 1023 bytes are made without a lock. All longer texts share one buffer behind
    // one lock, so threads wait for each other. The buffer grows to the longest text seen. It is
    // never freed, not even at unload. Raises std::bad_alloc when out of memory and for a text of
    // INT_MAX bytes or more; the buffer is unchanged then, and the next call works.
    //
    //     String::format("%s-%03d", "disk", 7)   // "disk-007"
    static String format(const char* fmt, ...) UTIL_PRINTF_FORMAT(1, 2);

    // The same for an argument list. The caller calls va_end on `args`.
    static String va_format(const char* fmt, va_list args);

    // The NUL-terminated view with its ASCII letters mapped; this object stays as it is.
    String to_lower() const;
    String to_upper() const;

    // A copy without the leading and trailing bytes that occur in set. A NUL byte counts as a
    // member of every set; this is meant. String("xxax").trim("x") is "a".
    String trim(const char* set) const;

    // Returns a 32-bit hash of the stored bytes. It never changes between releases, so it may be
    // stored. It is no defence against chosen keys: anybody can make texts that share a hash. By
    // design, the bytes after the last whole group of four are sign-extended.
    // "" gives 0, "abcd" gives 0x646362E1, "\xFF" gives 0xFFFFFFDF.
    unsigned int hash() const;

    // True when every byte before the first NUL is below 0x80; the empty string is ASCII.
    bool isAscii() const;

    // True when any stored byte, read as a signed number, is below 32: 0x00 to 0x1F and every byte
    // from 0x80 up, but not 0x7F. This reading is meant.
    bool hasUnprintable() const;

    // The fields between separators; every byte of separators separates on its own. The empty
    // string gives no field; empty separators give the whole string as one field.
    // With skipEmpty, only fields that are not empty:
    //     String(" a  b ").split(" ", true)    // {"a", "b"}
    // Without it, one field before, between and after separators, empty or not:
    //     String(" a  b ").split(" ", false)   // {"", "a", "", "b", ""}
    // Meant as it is: a text of nothing but separators raises std::bad_alloc unless skipEmpty.
    std::vector<String> split(const String& separators, bool skipEmpty) const;

    // The pieces between occurrences of the whole text tag. A leading tag gives an empty first
    // piece, adjacent tags an empty piece between them, a trailing tag gives none; the difference
    // is meant. The empty string gives no piece; an empty tag gives the text as one piece.
    //     String("x--y----z--").split_by_tag("--")   // {"x", "y", "", "z"}
    std::vector<String> split_by_tag(const String& tag) const;

    // Normalise white space in this object, up to its first NUL, and return a copy: a white-space
    // or control byte is dropped at the start and after white space, and becomes a blank
    // elsewhere. Bytes from 0x80 up are ordinary. "  a \t b  " becomes "a b ", and "a\x01 b"
    // becomes "a  b", since 0x01 is a control byte but not white space.
    String squeeze_spaces();
};

namespace util {

// Two texts of which one is a String (or derives from it) and the other that or any of the
// standard's: const char*, std::string, std::string_view.
template <typename T>
inline constexpr bool is_string = std::is_base_of_v<String, T>;
template <typename T>
inline constexpr bool is_text =
    is_string<T> || std::is_null_pointer_v<T> || std::is_convertible_v<const T&, std::string_view>;
template <typename A, typename B>
using if_texts =
    std::enable_if_t<(is_string<A> && is_text<B>) || (is_text<A> && is_string<B>), int>;

// A String and a number of any kind but char, which is a text of one byte.
template <typename S, typename N>
using if_text_and_number = std::enable_if_t<
    is_string<S> && (std::is_arithmetic_v<N> || std::is_enum_v<N>)&&!std::is_same_v<N, char>, int>;

// The bytes to compare: of a C string those before its NUL, and none of a null one.
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

// Comparison by contents, over the full stored length and with bytes taken as unsigned; never by
// pointer. A null C string compares like "". (A single character is compared by the members above,
// which see the first byte only.)
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
#if defined(__cpp_lib_three_way_comparison)
// The same by contents, for C++20.
template <typename A, typename B, util::if_texts<A, B> = 0>
std::strong_ordering operator<=>(const A& a, const B& b) {
    return util::view_of(a) <=> util::view_of(b);
}
#endif

// The other way round for a character; a number is no text to compare with.
inline int operator==(char c, const String& s) {
    return s == c;
}
inline int operator!=(char c, const String& s) {
    return s != c;
}
bool operator==(const String&, int) = delete;
bool operator!=(const String&, int) = delete;
bool operator==(int, const String&) = delete;
bool operator!=(int, const String&) = delete;

// a's every byte, then b appended as += does: String("a") + "b" is "ab".
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

// Adding a number is spelled with String(n): "s + 1" could as well mean the character 1.
template <typename S, typename N, util::if_text_and_number<S, N> = 0>
String operator+(const S&, N) = delete;
template <typename N, typename S, util::if_text_and_number<S, N> = 0>
String operator+(N, const S&) = delete;

// Writes every stored byte, padded to the stream's width.
UTIL_API std::ostream& operator<<(std::ostream& out, const String& s);

namespace std {

// Strings as keys of the unordered containers, hashed by the standard library over every stored
// byte, as comparison sees them. Not String::hash(), for which anybody can choose keys that
// collide.
template <>
struct hash<String> {
    size_t operator()(const String& s) const noexcept { return hash<string_view>()(s.view()); }
};

}  // namespace std

#endif
