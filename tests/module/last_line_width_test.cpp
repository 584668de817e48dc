#include "module/drawing/last_line_width.h"

#include "module/binding/value_list.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace tessary::testing {

namespace {

// The measurement one character at a time, as it was first written down.
std::wstring lastLineByCharacters(AcDbMText& text, std::wstring rest) {
    for (std::size_t at = rest.find(L"\\P"); at != std::wstring::npos; at = rest.find(L"\\P")) {
        rest.erase(0, at + 2);
    }
    text.setContents(rest.c_str());
    const double height = text.actualHeight();
    const double lineHeight = text.textHeight();
    std::wstring line;
    bool done = 2 * lineHeight > height;
    if (done) {
        line = rest;
    }
    while (!done && !rest.empty()) {
        if (rest.back() == L' ') {
            line.insert(0, 1, L' ');
            rest.pop_back();
        } else {
            for (;;) {
                const wchar_t last = rest.back();
                if (rest.size() == 1) {
                    line.insert(0, 1, last);
                    done = true;
                    break;
                }
                if (last == L' ') {
                    break;
                }
                line.insert(0, 1, last);
                rest.pop_back();
            }
        }
        if (!done) {
            text.setContents(rest.c_str());
            done = height >= text.actualHeight() + lineHeight;
        }
    }
    return line;
}

double widthByCharacters(AcDbMText& text) {
    const std::wstring contents = takeHostText(text.contents());
    text.setContents(lastLineByCharacters(text, contents).c_str());
    const double width = text.actualWidth();
    text.setContents(contents.c_str());
    return width;
}

std::wstring randomText(std::mt19937& random, int words) {
    std::wstring text;
    for (int i = 0; i < words; ++i) {
        text.append(1 + random() % 9, static_cast<wchar_t>(L'a' + random() % 26));
        text.append(random() % 8 ? 1 : random() % 4, L' ');
        text += random() % 15 ? L"" : L"\\P";
    }
    return text;
}

TEST(LastLineWidth, agreesWithTakingSingleCharacters) {
    std::mt19937 random(114);
    AcDbMText text;
    ASSERT_EQ(Acad::eOk, text.setTextHeight(2.5));
    for (int i = 0; i < 200; ++i) {
        const std::wstring contents = randomText(random, i % 50);
        text.setContents(contents.c_str());
        text.setWidth(static_cast<double>(random() % 80));
        EXPECT_EQ(widthByCharacters(text), measureLastLineWidth(text)) << "text " << i;
        EXPECT_EQ(contents, takeHostText(text.contents()));
    }
}

// More words in one line than are tried one by one.
TEST(LastLineWidth, agreesForLinesOfManyWords) {
    std::mt19937 random(115);
    AcDbMText text;
    ASSERT_EQ(Acad::eOk, text.setTextHeight(1));
    for (int i = 0; i < 20; ++i) {
        std::wstring contents;
        for (int word = 0; word < 600; ++word) {
            contents += std::wstring(1 + random() % 3, L'i') + L" ";
        }
        text.setContents(contents.c_str());
        text.setWidth(60 + static_cast<double>(random() % 200));
        EXPECT_EQ(widthByCharacters(text), measureLastLineWidth(text)) << "text " << i;
    }
}

TEST(LastLineWidth, textOfOneLineIsMeasuredWhole) {
    AcDbMText text;
    ASSERT_EQ(Acad::eOk, text.setTextHeight(1));
    text.setContents(L"one line");
    EXPECT_EQ(text.actualWidth(), measureLastLineWidth(text));
    EXPECT_GT(text.actualWidth(), 0.0);
    text.setContents(L"");
    EXPECT_EQ(0.0, measureLastLineWidth(text));
}

// A tall letter makes one line as high as two: every word is taken before the rest is lower, and laying out
// so long a text once for each would take an hour.
TEST(LastLineWidth, hugeParagraphEnds) {
    std::wstring contents = L"{\\H3;A} ";
    while (contents.size() < 200'000) {
        contents += L"duct ";
    }
    AcDbMText text;
    ASSERT_EQ(Acad::eOk, text.setTextHeight(1));
    text.setContents(contents.c_str());
    EXPECT_GT(measureLastLineWidth(text), 0.0);
}

}  // namespace

}  // namespace tessary::testing
