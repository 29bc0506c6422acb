#include "util/portable/utf8.h"

#include <gtest/gtest.h>

#include "support/import_patch.h"
// after the platform's header
#include <comdef.h>

#include <cwchar>
#include <new>
#include <string>

#include "util/portable/utf8_files.h"

using util_test::ImportPatch;

namespace {

std::wstring text_of(const _bstr_t& wide) {
    return wide.length() ? std::wstring(wide, wide.length()) : L"";
}

TEST(Utf8Test, ConvertsBothWaysAtAnyLength) {
    std::string long_utf8;
    std::wstring long_wide;
    for (int i = 0; i < 20000; ++i) {
        long_utf8 += "\xE8\xA4\x87";
        long_wide += L'\x8907';
    }
    const struct {
        std::string utf8;
        std::wstring wide;
    } cases[] = {
        {"", L""},
        {"abc", L"abc"},
        {"caf\xC3\xA9", L"caf\u00E9"},
        {"\xE8\xA4\x87\xE8\xA3\xBD", L"\u8907\u88FD"},
        {"a\xF0\x9F\x98\x80z", L"a\xD83D\xDE00z"},
        {"\xEF\xBF\xBF", L"\xFFFF"},
        {long_utf8, long_wide},
    };
    for (const auto& c : cases) {
        _bstr_t wide(L"before");
        EXPECT_TRUE(UTIL_Utf8ToWideChar(c.utf8.c_str(), &wide));
        EXPECT_EQ(text_of(wide), c.wide);
        EXPECT_NE(wide.copy(false), nullptr) << "an empty text is a text";
        String utf8 = "before";
        EXPECT_TRUE(UTIL_WideCharToUtf8(c.wide.c_str(), &utf8));
        EXPECT_EQ(utf8, c.utf8);
    }
}

TEST(Utf8Test, InvalidTextTurnsIntoReplacementCharacters) {
    _bstr_t wide;
    EXPECT_TRUE(UTIL_Utf8ToWideChar("a\xFFz", &wide));
    EXPECT_EQ(text_of(wide), L"a\uFFFDz");
    EXPECT_TRUE(UTIL_Utf8ToWideChar("a\xE9", &wide));
    EXPECT_EQ(text_of(wide), L"a\uFFFD") << "the platform writes no NUL behind this one";
    String utf8;
    EXPECT_TRUE(UTIL_WideCharToUtf8(L"a\xD83Dz", &utf8));
    EXPECT_EQ(utf8, "a\xEF\xBF\xBDz");
}

TEST(Utf8Test, AnsiTextIsComposedAndLacksWhatThePageLacks) {
    ASSERT_EQ(GetACP(), 1252u) << "the cases are written for this page";
    const struct {
        const char* utf8;
        const char* ansi;
    } cases[] = {
        {"", ""},
        {"abc", "abc"},
        {"caf\xC3\xA9", "caf\xE9"},
        {"cafe\xCC\x81", "caf\xE9"},  // an e and a combining accent
        {"\xE2\x82\xAC", "\x80"},
        {"a\xE8\xA4\x87z", "a?z"},
    };
    for (const auto& c : cases) {
        String direct = "before";
        String through_wide = "before";
        _bstr_t wide;
        ASSERT_TRUE(UTIL_Utf8ToWideChar(c.utf8, &wide));
        EXPECT_TRUE(UTIL_WcharToMultiByte(wide, &through_wide));
        EXPECT_TRUE(UTIL_Utf8ToMultiByte(c.utf8, &direct));
        EXPECT_EQ(through_wide, c.ansi);
        EXPECT_EQ(direct, c.ansi);
    }
}

// Each platform call in turn may fail: the first asks for the size, the second converts.
int calls_left;
using ToNarrow = int WINAPI(UINT, DWORD, LPCWCH, int, LPSTR, int, LPCCH, LPBOOL);
using ToWide = int WINAPI(UINT, DWORD, LPCCH, int, LPWSTR, int);
ToNarrow* real_to_narrow;
ToWide* real_to_wide;

int WINAPI failing_to_narrow(UINT page, DWORD flags, LPCWCH text, int size, LPSTR out, int room,
                             LPCCH replacement, LPBOOL replaced) {
    if (calls_left-- == 0) return 0;
    return real_to_narrow(page, flags, text, size, out, room, replacement, replaced);
}
int WINAPI failing_to_wide(UINT page, DWORD flags, LPCCH text, int size, LPWSTR out, int room) {
    return calls_left-- == 0 ? 0 : real_to_wide(page, flags, text, size, out, room);
}
void* no_block(size_t, size_t) {
    return nullptr;
}

// Expects each of the four to fail, with that many calls of the platform's granted to each, and to
// leave its output as documented.
void expect_failures(const wchar_t* wide, const char* utf8, int calls) {
    String emptied = "before";
    String kept = "before";
    _bstr_t emptied_wide(L"before");
    calls_left = calls;
    EXPECT_FALSE(UTIL_WideCharToUtf8(wide, &emptied)) << calls;
    EXPECT_EQ(emptied, "");
    calls_left = calls;
    EXPECT_FALSE(UTIL_WcharToMultiByte(wide, &kept)) << calls;
    calls_left = calls;
    EXPECT_FALSE(UTIL_Utf8ToWideChar(utf8, &emptied_wide)) << calls;
    EXPECT_EQ(emptied_wide.length(), 0u);
    for (int step : {0, 2}) {
        calls_left = calls + step;
        EXPECT_FALSE(UTIL_Utf8ToMultiByte(utf8, &kept)) << calls << " in step " << step;
    }
    EXPECT_EQ(kept, "before");
}

TEST(ConversionFailureTest, NullPointersFailingCallsAndNoMemory) {
    expect_failures(nullptr, nullptr, 0);
    EXPECT_FALSE(UTIL_WideCharToUtf8(L"a", nullptr));
    EXPECT_FALSE(UTIL_WcharToMultiByte(L"a", nullptr));
    EXPECT_FALSE(UTIL_Utf8ToWideChar("a", nullptr));
    EXPECT_FALSE(UTIL_Utf8ToMultiByte("a", nullptr));
    ImportPatch narrow("WideCharToMultiByte", failing_to_narrow);
    ImportPatch wide("MultiByteToWideChar", failing_to_wide);
    real_to_narrow = narrow.original<ToNarrow>();
    real_to_wide = wide.original<ToWide>();
    for (int calls : {0, 1})
        expect_failures(L"text", "text", calls);
    ImportPatch memory("calloc", no_block);
    expect_failures(L"text", "text", 100);
}

BSTR WINAPI no_string(const OLECHAR*) {
    return nullptr;
}
void* failing_new(size_t) {
    throw std::bad_alloc();
}

HRESULT raised_by(void (*call)()) {
    try {
        call();
        return S_OK;
    } catch (const _com_error& error) {
        return error.Error();
    }
}

TEST(ConversionFailureTest, NoMemoryForTheWideStringRaises) {
    const auto convert = [] {
        _bstr_t wide;
        UTIL_Utf8ToWideChar("text", &wide);
    };
    const auto use = [] { UTF8_access("C:\\", 0); };
    for (void (*call)() : {+convert, +use}) {
        EXPECT_EQ(raised_by(call), S_OK);
        {
            ImportPatch patch("SysAllocString", no_string);
            EXPECT_EQ(raised_by(call), HRESULT(0x8007000E));
        }
        ImportPatch patch("_Znwy", failing_new);
        EXPECT_EQ(raised_by(call), HRESULT(0x8007000E)) << "the holder of the string";
    }
}

}  // namespace
