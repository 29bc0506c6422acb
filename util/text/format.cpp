// All printf-style formatting of the library: one growing buffer behind one lock.
#include <cerrno>
#include <clocale>
#include <cstdarg>
#include <cstdio>
#include <memory>
#include <mutex>
#include <new>

#include "util/internal/kept_errors.h"
#include "util/text/byte_string.h"

namespace {

constexpr int truncated = -1;

// One bounded format into buffer. Returns the length, `truncated` when the text and its NUL did not
// fit, or (some runtimes) the length needed. errno is set only when the format is rejected.
int format_bounded(char* buffer, std::size_t size, const char* fmt, va_list args) {
#ifdef _WIN32
    // The host program may set a locale; the library's texts do not follow it.
    static const _locale_t c_locale = _create_locale(LC_ALL, "C");
    return _vsnprintf_s_l(buffer, size, _TRUNCATE, fmt, c_locale, args);
#else
    const int length = std::vsnprintf(buffer, size, fmt, args);
    return length >= 0 && static_cast<std::size_t>(length) >= size ? truncated : length;
#endif
}

// The length that fmt needs, or -1 when the runtime cannot tell.
int needed_length(const char* fmt, va_list args) {
#ifdef _WIN32
    return _vscprintf(fmt, args);
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
    // The buffer's text up to its NUL; "" when the runtime rejects the format. A failed allocation
    // leaves the buffer as it was, so the next call works.
    String format(const char* fmt, va_list args) {
        if (!m_buffer) resize(m_size);
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
                grow_beyond(needed);
                length = format_once(fmt, args);
            }
        }
        return length == truncated && errno != 0 ? String() : String(m_buffer.get());
    }

  private:
    static constexpr std::size_t first_step = 1024;
    static constexpr std::size_t small_limit = 4 * first_step;
    static constexpr std::size_t middle_limit = 20 * first_step;
    static constexpr std::size_t large_increment = 100 * first_step;

    int format_once(const char* fmt, va_list args) {
        Arguments copy(args);
        return format_bounded(m_buffer.get(), m_size, fmt, copy.list());
    }

    // One step of growth at least, and as many as a text of the given length needs: 1024, 4096,
    // 8192, ... 20480, 24576, 126976, ... The sizes between are passed over without a format each,
    // which would make long texts quadratic.
    void grow_beyond(int needed) {
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
        } while (size <= static_cast<std::size_t>(needed));
        resize(size);
        m_step = step;
    }

    void resize(std::size_t size) {
        m_buffer.reset(new char[size]);
        m_size = size;
    }

    std::unique_ptr<char[]> m_buffer;
    std::size_t m_size = first_step;
    std::size_t m_step = first_step;
};

std::mutex format_lock;
// Never destroyed: other objects of static storage may format while the library unloads.
FormatBuffer* format_buffer;

}  // namespace

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
    const std::lock_guard<std::mutex> lock(format_lock);
    if (!format_buffer) format_buffer = new FormatBuffer;
    return format_buffer->format(fmt, args);
}
