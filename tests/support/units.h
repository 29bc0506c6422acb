#ifndef UTIL_TESTS_SUPPORT_UNITS_H
#define UTIL_TESTS_SUPPORT_UNITS_H

#include <cstdio>
#include <string>

namespace util_test {

// UTF-16 as a word of a case file: what is not ASCII is <D83D>.
inline std::string shown(const std::wstring& units) {
    std::string result;
    for (const wchar_t unit : units) {
        char text[8];
        std::snprintf(text, sizeof text, unit < 0x80 ? "%lc" : "<%04X>", unit);
        result += text;
    }
    return result;
}
inline std::wstring units_of(const std::string& word) {
    std::wstring result;
    for (std::size_t i = 0; i < word.size(); ++i) {
        result += word[i] == '<' ? wchar_t(std::stoi(word.substr(i + 1, 4), nullptr, 16)) : word[i];
        if (word[i] == '<') i += 5;
    }
    return result;
}

}  // namespace util_test

#endif
