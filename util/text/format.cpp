// All printf-style formatting of the library: one growing buffer behind one lock.
#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>

#include "util/internal/kept_errors.h"
#include "util/text/byte_string.h"
#include "util/text/plain_format.h"

namespace {

constexpr int truncated = -1;

#ifdef _WIN32
// The host program may set a locale; the library's texts do not follow it. To be called under the
// lock; asked for again when there was no memory for it.
_locale_t c_locale() {
    static _locale_t locale;
    if (!locale) locale = _create_locale(LC_ALL, "C");
    return locale;
}
#endif

// One bounded format into buffer. Returns the length, `truncated` when the text and its NUL did not
// fit, or (some runtimes) the length needed. errno is set only when the format is rejected.
int format_bounded(char* buffer, std::size_t size, const char* fmt, va_list args) {
#ifdef _WIN32
    return _vsnprintf_s_l(buffer, size, _TRUNCATE, fmt, c_locale(), args);
#else
    const int length = std::vsnprintf(buffer, size, fmt, args);
    return length >= 0 && static_cast<std::size_t>(length) >= size ? truncated : length;
#endif
}

// The length that fmt needs, or -1 when the runtime cannot tell.
int needed_length(const char* fmt, va_list args) {
#ifdef _WIN32
    return _vscprintf_l(fmt, c_locale(), args);
#else
    return std::vsnprintf(nullptr, 0, fmt, args);
#endif
}

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

class FormatBuffer {
  public:
    // The decimal text of a number, for which the buffer always has room.
    template <typename Number>
    std::string_view decimal(Number value) {
        if (!m_buffer) resize(m_size);
        char* const begin = m_buffer.get();
        char* const end = std::to_chars(begin, begin + m_size, value).ptr;
        return {begin, static_cast<std::size_t>(end - begin)};
    }

    // The text up to its first NUL; "" when the runtime rejects the format. A failed allocation
    // leaves the buffer as it was, so the next call works.
    String format(const char* fmt, va_list args) {
        if (!m_buffer) resize(m_size);
        for (;;) {
            Arguments copy(args);
            const auto text = util::format_plainly(m_buffer.get(), m_size, fmt, copy.list());
            if (!text) return format_by_runtime(fmt, args);
            if (text->length < m_size) return String(m_buffer.get(), text->visible);
            grow_beyond(text->length);
        }
    }

  private:
    static constexpr std::size_t first_step = 1024;
    static constexpr std::size_t small_limit = 4 * first_step;
    static constexpr std::size_t middle_limit = 20 * first_step;
    static constexpr std::size_t large_increment = 100 * first_step;

    String format_by_runtime(const char* fmt, va_list args) {
        const util::KeptErrors kept;
        errno = 0;
        int length = format_once(fmt, args);
        if (length != truncated && static_cast<std::size_t>(length) > m_size) {
            resize((static_cast<std::size_t>(length) / m_step + 1) * m_step);
            length = format_once(fmt, args);
        } else if (length == truncated && errno == 0) {
            Arguments copy(args);
            const int needed = needed_length(fmt, copy.list());
            if (needed < 0) throw std::bad_alloc();  // more than an int can count
            while (length == truncated && errno == 0) {
                grow_beyond(static_cast<std::size_t>(needed));
                length = format_once(fmt, args);
            }
        }
        return length == truncated && errno != 0 ? String() : String(m_buffer.get());
    }

    int format_once(const char* fmt, va_list args) {
        Arguments copy(args);
        return format_bounded(m_buffer.get(), m_size, fmt, copy.list());
    }

    // One step of growth at least, and as many as a text of the given length needs: 1024, 4096,
    // 8192, ... 20480, 24576, 126976, ... The sizes between are passed over without a format each,
    // which would make long texts quadratic.
    void grow_beyond(std::size_t needed) {
        constexpr std::size_t most = INT_MAX;  // as the runtime counts
        if (needed >= most) throw std::bad_alloc();
        std::size_t step = m_step;
        std::size_t size = m_size;
        do {
            if (size < small_limit) {
                step *= 3;
            } else if (size <= middle_limit) {
                step = small_limit;
            } else {
                step = large_increment;
            }
            size += step;
        } while (size <= needed);
        resize(std::min(size, most));
        m_step = step;
    }

    void resize(std::size_t size) {
        // Without the padding a result may come to lie a multiple of 4096 and a few bytes behind
        // the buffer, where processors take every load of the copy to depend on its last stores.
#ifdef UTIL_SANITIZED
        constexpr std::size_t padding = 0;  // which would hide a step beyond the end
#else
        constexpr std::size_t padding = 64;
#endif
        m_buffer.reset(new char[size + padding]);
        m_size = size;
    }

    std::unique_ptr<char[]> m_buffer;
    std::size_t m_size = first_step;
    std::size_t m_step = first_step;
};

std::mutex format_lock;

// The one buffer and the lock on it. The last error is put back at the end, since a lock that has
// to be waited for makes calls of its own.
class LockedBuffer {
  public:
    LockedBuffer() : m_lock(taken(format_lock)) {
        if (!buffer) buffer = new FormatBuffer;
    }
    FormatBuffer* operator->() const { return buffer; }

  private:
    // Waiting may want memory, too, and reports the lack of it in a way of its own.
    static std::unique_lock<std::mutex> taken(std::mutex& mutex) {
        try {
            return std::unique_lock<std::mutex>(mutex);
        } catch (const std::system_error&) {
            throw std::bad_alloc();
        }
    }

    // Never destroyed: other objects of static storage may format while the library unloads.
    inline static FormatBuffer* buffer;

    const util::KeptLastError m_kept;
    const std::unique_lock<std::mutex> m_lock;
};

template <typename Number>
void assign_decimal(std::string& text, Number value) {
    text = LockedBuffer()->decimal(value);
}

}  // namespace

String::String(int v) {
    assign_decimal(m_text, v);
}
String::String(unsigned int v) {
    assign_decimal(m_text, v);
}
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
    return LockedBuffer()->format(fmt, args);
}
