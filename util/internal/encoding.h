// The only place where text changes encoding.
//
// Narrow texts are UTF-8 everywhere in the library. Wide calls of the platform take UTF-16. ANSI
// calls take and return bytes of a code page, so their texts are converted right at the call.
//
// Three kinds of conversion:
// - UTF-8 and UTF-16: as the platform does it. Invalid UTF-8 and lone surrogates become U+FFFD.
// - A code page and UTF-8: exact, or it fails. A text that became another one ("?" for a character
//   that the page lacks, "A" for a fullwidth A) could name another file or run another program.
// - Words that only people read: as well as the page allows.
//
// Any thread may call these functions. They change the last error. Those that return a Conversion
// raise nothing, and need no memory for texts of up to 259 UTF-16 units. The others raise
// std::bad_alloc.
#ifndef UTIL_INTERNAL_ENCODING_H
#define UTIL_INTERNAL_ENCODING_H

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>

namespace util {

// The code page that an ANSI call uses: the process's ANSI page, or the page of the platform's file
// calls. The latter is the OEM page after SetFileApisToOEM.
enum class Page { ansi, files };

// refused: null, more units than an int counts, or a text that the conversion does not allow.
enum class Conversion { done, refused, no_memory };

// Room for a converted text. The room is cleared at the end of its scope: texts may be passwords.
template <typename Unit>
class TextBuffer {
  public:
    TextBuffer() = default;
    ~TextBuffer();
    TextBuffer(const TextBuffer&) = delete;
    TextBuffer& operator=(const TextBuffer&) = delete;

    // Zeroed room for `size` units and a NUL after them, in place of the room before. Null when
    // out of memory.
    Unit* make_room(std::size_t size) noexcept;

    const Unit* c_str() const { return m_text; }
    std::basic_string_view<Unit> view() const { return m_text; }  // up to the first NUL

  private:
    void clear() noexcept;

    // 259 UTF-16 units, their NUL, and one that a conversion may ask for besides. A unit takes
    // three bytes of UTF-8 at most.
    static constexpr std::size_t usual_size = (sizeof(Unit) == 1 ? 3 : 1) * std::size_t{261};
    Unit m_usual[usual_size + 1] = {};
    std::unique_ptr<Unit[]> m_long;
    Unit* m_text = m_usual;
    std::size_t m_size = 0;
};
extern template class TextBuffer<char>;
extern template class TextBuffer<wchar_t>;
using NarrowText = TextBuffer<char>;
using WideText = TextBuffer<wchar_t>;

// --- UTF-8 and UTF-16 ---

// After a failure the contents of `out` are unspecified.
Conversion utf8_to_wide(const char* utf8, WideText& out) noexcept;
Conversion utf8_to_wide(const char* utf8, std::size_t length, WideText& out) noexcept;
Conversion wide_to_utf8(const wchar_t* wide, NarrowText& out) noexcept;

// Converts a found file's name, of at most 259 units, into `out`, which has room for 778 bytes.
// Returns false, with the contents of `out` unspecified, when the platform refuses the conversion.
// ASCII names are copied without asking the platform: the conversion costs time in a listing.
bool name_to_utf8(const wchar_t* name, char* out) noexcept;

// "" when the platform refuses the conversion.
std::string wide_to_utf8(const wchar_t* wide);

// A path, not null, for the platform's wide calls. A refused one counts as out of memory.
std::wstring wide_path(const char* utf8);

// --- texts for ANSI calls and from them ---

// Whether an ANSI call can take that many bytes. Its lengths have 16 bits: of a longer text it
// would use the beginning, or read beyond the end.
constexpr bool fits_ansi_call(std::size_t bytes) {
    return bytes <= 32766;
}

// Converts a text for an ANSI call. Returns false, with `out` unchanged, for null, for invalid
// UTF-8, for a character that the page cannot hold exactly, and for a text that does not fit an
// ANSI call. The caller reports what its contract says, mostly a missing path. With page 1252:
//     utf8_to_ansi("\xC3\xA9", out)       // true, `out` is "\xE9"
//     utf8_to_ansi("\xE2\x86\x92", out)   // false: the page has no arrow
bool utf8_to_ansi(const char* utf8, std::string& out, Page page = Page::ansi);

// Converts the text that an ANSI call returned. `twin` is what the call's wide form returned, ""
// when it failed. Neither may be null.
//
// The platform replaces characters that the page lacks by similar ones (best fit). So when the
// platform's own conversion of `twin` gives `ansi`, the result is `twin`. Otherwise `twin` is
// another text, or none, and the result is `ansi`. Fails, with `out` unchanged, when the result
// does not convert exactly. With page 1252:
//     ansi_to_utf8("C:\\A", L"C:\\\uFF21", out)   // true, `out` is "C:\\\xEF\xBC\xA1"
//     ansi_to_utf8("C:\\A", L"", out)             // true, `out` is "C:\\A"
bool ansi_to_utf8(const char* ansi, const wchar_t* twin, std::string& out, Page page = Page::ansi);
Conversion ansi_to_utf8(const char* ansi, const wchar_t* twin, Page page, NarrowText& out) noexcept;

// Converts words for people from the ANSI page. Bytes that mean nothing there become the
// platform's replacement character.
std::string words_to_utf8(const char* ansi);

// The conversion that UTIL_WcharToMultiByte promises: to the ANSI page, with combining characters
// composed and characters that the page lacks replaced.
Conversion wide_to_similar_ansi(const wchar_t* wide, NarrowText& out) noexcept;

}  // namespace util

#endif
