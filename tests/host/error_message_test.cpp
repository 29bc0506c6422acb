#include "util/host/error_message.h"

#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>

#include "support/import_patch.h"

namespace {

String message_of(DWORD code) {
    String text = "before";
    SetLastError(code);
    UTIL_FormatMessage(text);
    EXPECT_EQ(GetLastError(), code);
    return text;
}

DWORD WINAPI foreign_message(DWORD flags, LPCVOID, DWORD code, DWORD language, LPWSTR buffer, DWORD,
                             va_list*) {
    EXPECT_EQ(flags, 0x1300u) << "allocate, from system, ignore inserts";
    EXPECT_TRUE(code == 5 && language == 0x400);
    const wchar_t words[] = L"\u00E4\U0001F600\u65E5\u65E5\u65E5\u20AC%1\r\n";
    *reinterpret_cast<void**>(buffer) =
        std::memcpy(LocalAlloc(0, sizeof words), words, sizeof words);
    return static_cast<DWORD>(std::wcslen(words));
}
HLOCAL WINAPI disturbing_free(HLOCAL block) {
    SetLastError(88);
    return LocalFree(block);
}

TEST(ErrorMessageTest, IsTheSystemsTextInUtf8) {
    EXPECT_EQ(message_of(ERROR_ACCESS_DENIED).view().substr(0, 6), "Access");
    EXPECT_EQ(message_of(0x2FEDCBA9), "") << "no such code";
    const util_test::ImportPatch format("FormatMessageW", foreign_message),
        release("LocalFree", disturbing_free);
    EXPECT_EQ(message_of(5),
              "\xC3\xA4\xF0\x9F\x98\x80\xE6\x97\xA5\xE6\x97\xA5\xE6\x97\xA5\xE2\x82\xAC%1\r\n");
}

}  // namespace
