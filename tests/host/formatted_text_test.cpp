#include "host/editor/formatted_text.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace drafthost::editor {

namespace {

std::wstring print(const wchar_t* format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const std::wstring text = formatted(format, arguments);
    va_end(arguments);
    return text;
}

TEST(FormattedText, directivesPrintTheirArguments) {
    EXPECT_EQ(L"", print(L""));
    EXPECT_EQ(L"wide \x3A9 too", print(L"%s %ls", L"wide \x3A9", L"too"));
    EXPECT_EQ(L"a wide, b narrow, c narrow", print(L"a %s, b %S, c %hs", L"wide", "narrow", "narrow"));
    EXPECT_EQ(L"[   7] [7   ] [0007] [2a] [-5] [4000000000]",
              print(L"[%4d] [%-4i] [%04d] [%x] [%ld] [%u]", 7, 7, 7, 42, -5L, 4000000000u));
    EXPECT_EQ(L"[  2.50] [1e+010] [x] [1234567890123]",
              print(L"[%*.*f] [%g] [%c] [%I64d]", 6, 2, 2.5, 1e10, L'x', std::int64_t{1234567890123}));
    EXPECT_EQ(L"[tex] [  text] 100%", print(L"[%.3s] [%6s] 100%%", L"text", L"text"));
    const std::wstring longText(100000, L'a');
    EXPECT_EQ(longText + L"|", print(L"%s|", longText.c_str()));
}

TEST(FormattedText, textsThatCannotBeReadDoNoHarm) {
    EXPECT_EQ(L"(null) (null) (null)", print(L"%s %s %S", static_cast<const wchar_t*>(nullptr),
                                             std::uintptr_t{0x10}, std::uintptr_t{7}));
    EXPECT_EQ(L"(null)", print(L"%s", ~std::uintptr_t{0} - 1));
}

TEST(FormattedText, percentSignsOfStatementsPrintWithoutArguments) {
    EXPECT_EQ(L"100", print(L"100%"));
    EXPECT_EQ(L"LIKE 'q", print(L"LIKE '%q"));
    int count = 5;
    EXPECT_EQ(L"LIKE 'ew' 5", print(L"LIKE '%new' %d", &count, count));
    EXPECT_EQ(5, count);
    std::wstring many;
    for (int i = 0; i < 300000; ++i)
        many += L"%s %n %*d";
    EXPECT_FALSE(print(many.c_str()).empty());
}

TEST(FormattedText, hugeWidthsStayAsTheyAreWritten) {
    EXPECT_EQ(L"%1999999999d", print(L"%1999999999d", 1));
}

}  // namespace

}  // namespace drafthost::editor
