#include "output.h"

#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <iterator>

// The library does not set a console's encoding, so the platform is called. Declared here to keep
// <windows.h> and its macros out.
extern "C" __declspec(dllimport) unsigned int __stdcall GetConsoleOutputCP();
extern "C" __declspec(dllimport) int __stdcall SetConsoleOutputCP(unsigned int page);

namespace {

constexpr unsigned int utf8_page = 65001;

bool is_terminal(std::FILE* stream) {
    return _isatty(_fileno(stream)) != 0;
}

// Writes the line in one piece: a console cannot put a character together from single bytes.
void put_line(std::FILE* stream, const String& line) {
    const bool on_terminal = is_terminal(stream);
    std::fputs((on_terminal ? visible(line) : line) + String::eol, stream);
    if (stream == stderr || on_terminal) std::fflush(stream);
}

}  // namespace

Output::Output() : m_console_page(GetConsoleOutputCP()) {
    SetConsoleOutputCP(utf8_page);
    for (std::FILE* stream : {stdout, stderr}) {
        // Lines end in a line feed everywhere, in files as well.
        _setmode(_fileno(stream), _O_BINARY);
        std::setvbuf(stream, nullptr, _IOFBF, std::size_t{32} * 1024);
    }
}

Output::~Output() {
    std::fflush(stdout);
    if (m_console_page != 0) SetConsoleOutputCP(m_console_page);
}

void print(const String& line) {
    put_line(stdout, line);
}
void warn(const String& message) {
    std::fflush(stdout);
    put_line(stderr, "agent: " + message);
}

String visible(const String& text) {
    String shown;
    for (const char* at = text; *at != '\0'; ++at) {
        const auto byte = static_cast<unsigned char>(*at);
        const auto next = static_cast<unsigned char>(at[1]);
        // U+0080 to U+009F are control characters as well. In UTF-8 they are C2 and the number.
        const bool is_wide_control = byte == 0xC2 && next >= 0x80 && next <= 0x9F;
        if (byte < 0x20 || byte == 0x7F) {
            shown += String::format("\\x%02X", byte);
        } else if (is_wide_control) {
            shown += String::format("\\u%04X", next);
            ++at;
        } else {
            shown += *at;
        }
    }
    return shown;
}

String size_text(double bytes) {
    const char* const units[] = {"B", "KB", "MB", "GB", "TB", "PB", "EB"};
    const char* const* unit = units;
    constexpr double rounds_up = 1023.95;  // would print as "1024.0"
    for (; bytes >= rounds_up && unit != std::end(units) - 1; ++unit)
        bytes /= 1024;
    return String::format(unit == units ? "%.0f %s" : "%.1f %s", bytes, *unit);
}

String date_text(std::int64_t time) {
    constexpr int length = 19;  // "2010 03 07 14:05:09"
    char text[length + 1];
    return ksl_ctime(&time, text, sizeof text) == length ? String(text) : String(length, ' ');
}

Progress::Progress() : m_on_terminal(is_terminal(stdout)) {}

Progress::~Progress() {
    if (!m_on_terminal) return;
    std::printf("\r%40s\r", "");
    std::fflush(stdout);
}

void Progress::show(std::uint64_t entries) {
    if (!m_on_terminal) return;
    const auto now = std::chrono::steady_clock::now();
    if (now < m_next) return;
    m_next = now + std::chrono::milliseconds(100);
    std::printf("\r%s entries", std::to_string(entries).c_str());
    std::fflush(stdout);
}
