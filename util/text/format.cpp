// All printf-style formatting of the library. Texts that fit the first size of the shared buffer
// are made on the stack, without the lock. Longer texts go through the shared buffer.
#include <algorithm>
#include <atomic>
#include <cerrno>
#include <charconv>
#include <climits>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <utility>

#include "util/internal/kept_errors.h"
#include "util/internal/lock.h"
#include "util/text/byte_string.h"
#include "util/text/common_format.h"
#include "util/text/find_text.h"

namespace {

using util::FormattedLength;
using util::unknown_length;

constexpr std::size_t first_size = 1024;  // of the shared buffer

// A copy of an argument list, ended on every path.
class Arguments {
  public:
    explicit Arguments(va_list source) { va_copy(m_list, source); }
    ~Arguments() { va_end(m_list); }
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;

    va_list& list() { return m_list; }

  private:
    va_list m_list;
};

#ifdef _WIN32

// The "C" locale, whatever locale the host program sets. Freed at unload. A destructor of another
// module may still format after that, which creates a new one.
class CLocale {
  public:
    constexpr CLocale() = default;
    ~CLocale() { free(m_locale.exchange(nullptr)); }
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;

    // Leaves errno unchanged. Raises std::bad_alloc; the next call tries again.
    _locale_t get() {
        _locale_t locale = m_locale;
        if (locale) return locale;
        const util::KeptErrors kept;
        const _locale_t created = _create_locale(LC_ALL, "C");
        if (!created) throw std::bad_alloc();  // a null locale means the host program's
        if (m_locale.compare_exchange_strong(locale, created)) return created;
        free(created);  // another thread was first
        return locale;
    }

  private:
    static void free(_locale_t locale) {
        if (locale) _free_locale(locale);
    }

    std::atomic<_locale_t> m_locale{nullptr};
};

CLocale c_locale;

// Returns -1 if the text and its NUL do not fit. Returns -1 and sets errno if the runtime rejects
// the format.
int format_bounded(char* space, std::size_t size, const char* fmt, va_list args) {
    return _vsnprintf_s_l(space, size, _TRUNCATE, fmt, c_locale.get(), args);
}

int count(const char* fmt, va_list args) {
    return _vscprintf_l(fmt, c_locale.get(), args);
}

#else

int format_bounded(char* space, std::size_t size, const char* fmt, va_list args) {
    const int length = std::vsnprintf(space, size, fmt, args);
    if (length < 0 && errno == EOVERFLOW) errno = 0;
    return length >= 0 && static_cast<std::size_t>(length) >= size ? -1 : length;
}

int count(const char* fmt, va_list args) {
    const int length = std::vsnprintf(nullptr, 0, fmt, args);
    if (length < 0 && errno == EOVERFLOW) errno = 0;
    return length;
}

#endif

// Formats by the runtime. Returns nothing if it rejects the format. The length of a text that does
// not fit is unknown, except that some runtimes report it. Changes errno.
std::optional<FormattedLength> format_by_runtime(char* space, std::size_t size, const char* fmt,
                                                 va_list args) {
    errno = 0;
    const int length = format_bounded(space, size, fmt, args);
    if (length < 0) {
        if (errno != 0) return {};
        return FormattedLength{unknown_length, 0};
    }
    const auto reported = static_cast<std::size_t>(length);
    return FormattedLength{reported, reported < size ? util::text_length(space) : 0};
}

// Returns the length of a text that did not fit first_size; nothing if the runtime rejects the
// format. Changes errno. The runtime's count wraps for texts beyond INT_MAX, so it may be wrong.
std::optional<FormattedLength> count_by_runtime(const char* fmt, va_list args) {
    errno = 0;
    const int length = count(fmt, args);
    if (length < 0 && errno != 0) return {};
    if (length < int{first_size}) throw std::bad_alloc();
    return FormattedLength{static_cast<std::size_t>(length), 0};
}

// Grows to the longest text seen: 1024 bytes, 4096, 8192, ... 20480, 24576, 126976, ... It is never
// freed, as programs are promised, and has no destructor: other modules may format while the
// library unloads.
class SharedBuffer {
  public:
    using Formatter = std::optional<FormattedLength>(char*, std::size_t, const char*, va_list);

    // Makes a text of `length`, or of any length that fits the buffer as it is. Sets `fits` to
    // whether the text fitted. The buffer is unchanged if it did not.
    String format(std::size_t length, bool reported, Formatter* formatter, const char* fmt,
                  va_list args, bool& fits) {
        const std::lock_guard<util::Lock> guard(m_lock);
        Size size = m_size;
        std::unique_ptr<char[]> larger;
        if (length != unknown_length && length >= size.bytes) {
            size = reported ? size.above_reported(length) : size.above(length);
            larger = allocated(size.bytes);
        }
        char* const space = larger ? larger.get() : m_space;
        fits = false;
        if (!space) return String();
        Arguments copy(args);
        const auto made = formatter(space, size.bytes, fmt, copy.list());
        fits = !made || made->length < size.bytes;
        if (!made || !fits) return String();
        if (larger) {
            delete[] m_space;
            m_space = larger.release();
            m_size = size;
        }
        return String(space, made->visible);
    }

  private:
    struct Size {
        std::size_t bytes = first_size;
        std::size_t step = first_size;

        // One step of growth at least, and as many as the length needs. The sizes between are
        // skipped without a format each, which would make long texts quadratic.
        Size above(std::size_t length) const {
            constexpr std::size_t small_limit = 4 * first_size;
            constexpr std::size_t middle_limit = 20 * first_size;
            constexpr std::size_t large_increment = 100 * first_size;
            constexpr std::size_t most = INT_MAX;  // as the runtime counts
            if (length >= most) throw std::bad_alloc();
            Size size = *this;
            do {
                if (size.bytes < small_limit) {
                    size.step *= 3;
                } else {
                    size.step = size.bytes <= middle_limit ? small_limit : large_increment;
                }
                size.bytes += size.step;
            } while (size.bytes <= length);
            size.bytes = std::min(size.bytes, most);
            return size;
        }
        // The next whole step, for a length that the formatter has reported instead of -1.
        Size above_reported(std::size_t length) const { return {(length / step + 1) * step, step}; }
    };

    static std::unique_ptr<char[]> allocated(std::size_t size) {
        // 4 KiB aliasing: without padding, the result may begin a multiple of 4096 and some bytes
        // after the buffer. Then every load of the copy waits for its last stores.
#ifdef UTIL_SANITIZED
        constexpr std::size_t padding = 0;  // padding would hide a write beyond the end
#else
        constexpr std::size_t padding = 64;
#endif
        return std::unique_ptr<char[]>(new char[size + padding]);
    }

    util::Lock m_lock;
    char* m_space = nullptr;
    Size m_size;
};

SharedBuffer shared_buffer;

// Makes a text that did not fit the stack buffer. `made` is the result of that attempt.
String format_long(FormattedLength made, SharedBuffer::Formatter* formatter, const char* fmt,
                   va_list args) {
    const bool by_runtime = formatter == format_by_runtime;
    const bool reported = by_runtime && made.length != unknown_length;
    bool fits = false;
    if (!reported) {
        String text = shared_buffer.format(unknown_length, false, formatter, fmt, args, fits);
        if (fits) return text;
        Arguments copy(args);
        const auto counted = by_runtime ? count_by_runtime(fmt, copy.list())
                                        : util::format_common(nullptr, 0, fmt, copy.list());
        if (!counted) return text;
        made = *counted;
    }
    String text = shared_buffer.format(made.length, reported, formatter, fmt, args, fits);
    if (!fits) throw std::bad_alloc();  // longer than the runtime counted
    return text;
}

// As std::to_string. Writes the digits into the result, without a call or a copy, which makes
// String(int) at least 1.5 times as fast (format_bench).
template <typename Number>
std::string decimal(Number v) {
    constexpr std::string_view longest = "-2147483648";  // which a std::string holds in itself
    std::string text(longest.data(), longest.size());
    const char* const end = std::to_chars(text.data(), text.data() + text.size(), v).ptr;
    text.erase(static_cast<std::size_t>(end - text.data()));
    return text;
}

}  // namespace

String::String(int v) : ExtString([=] { return decimal(v); }, made) {}
String::String(unsigned int v) : ExtString([=] { return decimal(v); }, made) {}
#ifdef _WIN32
String::String(unsigned long v) : String(static_cast<unsigned int>(v)) {}
#endif
String::String(double v) : String(format("%f", v)) {}

String String::format(const char* fmt, ...) {
    va_list args;
    va_start(args, fmt);
    struct End {
        va_list& list;
        ~End() { va_end(list); }
    } const end{args};
    return va_format(fmt, args);  // cppcheck-suppress va_end_missing; End does it on every path
}

String String::va_format(const char* fmt, va_list args) {
    if (!fmt) return String();
    // The first attempt uses up `args`, not the copy. The copy reads wider words than the caller
    // has just written, so a processor waits for those stores: 5 ns of 30 (format_bench).
    Arguments copy(args);
    char space[first_size];
    const auto simple = util::format_common(space, first_size, fmt, args);
    if (simple && simple->length < first_size) return String(space, simple->visible);
    if (simple) return format_long(*simple, util::format_common, fmt, copy.list());
    const util::KeptErrors kept;
    Arguments again(copy.list());
    const auto made = format_by_runtime(space, first_size, fmt, again.list());
    if (!made) return String();
    if (made->length < first_size) return String(space, made->visible);
    return format_long(*made, format_by_runtime, fmt, copy.list());
}
