#include "util/host/error_message.h"

#include <gtest/gtest.h>

#include <cstring>
#include <cwchar>
#include <string>

#include "support/import_patch.h"

namespace {

String message_of(DWORD code) {
    String text = "before";
    SetLastError(code);
    UTIL_FormatMessage(text);
    EXPECT_EQ(GetLastError(), code);
    return text;
}

TEST(ErrorMessageTest, IsTheSystemsTextForTheLastError) {
    for (const DWORD code : {DWORD(ERROR_SUCCESS), DWORD(ERROR_ACCESS_DENIED)}) {
        char expected[1000] = "";
        FormatMessageA(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, code,
                       0x400, expected, sizeof expected, nullptr);
        EXPECT_EQ(message_of(code), expected);
    }
    EXPECT_EQ(message_of(0x2FEDCBA9), "") << "no such code";
}

int held;

DWORD WINAPI foreign_message(DWORD flags, LPCVOID, DWORD, DWORD language, LPWSTR buffer, DWORD,
                             va_list*) {
    EXPECT_EQ(flags, 0x1300u) << "allocate, from system, ignore inserts";
    EXPECT_EQ(language, 0x400u);
    const wchar_t words[] = L"\u00E4\U0001F600\u65E5\u65E5\u65E5\u20AC\u20AC%1\r\n";
    *reinterpret_cast<void**>(buffer) =
        std::memcpy(LocalAlloc(0, sizeof words), words, sizeof words);
    ++held;
    return static_cast<DWORD>(std::wcslen(words));
}
HLOCAL WINAPI counted_free(HLOCAL block) {
    --held;
    SetLastError(88);
    return LocalFree(block);
}

TEST(ErrorMessageTest, GivesUtf8AndTheSystemsBlockBack) {
    util_test::ImportPatch format("FormatMessageW", foreign_message),
        release("LocalFree", counted_free);
    EXPECT_EQ(message_of(5),
              "\xC3\xA4\xF0\x9F\x98\x80\xE6\x97\xA5\xE6\x97\xA5\xE6\x97\xA5\xE2\x82\xAC\xE2\x82\xAC"
              "%1\r\n");
    EXPECT_EQ(held, 0);
}

}  // namespace
