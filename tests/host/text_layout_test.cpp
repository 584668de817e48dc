#include <gtest/gtest.h>

#include <chrono>
#include <random>

#include "host/text/mtext_layout.h"

using namespace drafthost::text;

namespace {

constexpr double kHeight = 2.5;
constexpr double kPitch = kHeight * kLinePitch;

MTextSpec specOf(std::wstring_view contents, double width = 0, int attachment = 1) {
    MTextSpec spec;
    spec.contents = contents;
    spec.format.height = kHeight;
    spec.font.file = L"arial.ttf";
    spec.width = width;
    spec.attachment = attachment;
    return spec;
}

MTextLayout layout(std::wstring_view contents, double width = 0, int attachment = 1) {
    return layoutMText(specOf(contents, width, attachment));
}

double widthOf(std::wstring_view text, double height = kHeight) {
    return measureRun(resolveFont(TextFont{L"arial.ttf", {}, false, false}), text, height).advance;
}

// Lines as their texts.
std::vector<std::wstring> linesOf(const MTextLayout& laid) {
    std::vector<std::wstring> lines;
    for (const MTextLine& line : laid.lines) {
        std::wstring& text = lines.emplace_back();
        for (std::size_t i = line.firstPiece; i < line.firstPiece + line.pieceCount; ++i) {
            text += laid.pieces[i].text;
        }
    }
    return lines;
}

std::wstring allText(const MTextLayout& laid) {
    std::wstring text;
    for (const std::wstring& line : linesOf(laid)) {
        text += (text.empty() ? L"" : L"|") + line;
    }
    return text;
}

const MTextFormat& lastFormat(const MTextLayout& laid) {
    return laid.formats[laid.pieces.back().format];
}

}  // namespace

TEST(MTextLayout, HeightIsOneTextHeightAndAPitchForEachFurtherLine) {
    EXPECT_DOUBLE_EQ(layout(L"").actualHeight, 0);
    EXPECT_DOUBLE_EQ(layout(L"one").actualHeight, kHeight);
    EXPECT_DOUBLE_EQ(layout(L"one\\Ptwo").actualHeight, kHeight + kPitch);
    EXPECT_DOUBLE_EQ(layout(L"\\P\\P").actualHeight, kHeight + 2 * kPitch);
    EXPECT_DOUBLE_EQ(layout(L"one\\P{\\H2x;two}").actualHeight, kHeight + 2 * kPitch);

    MTextSpec spec = specOf(L"one\\P{\\H2x;two}");
    spec.exactSpacing = true;
    EXPECT_DOUBLE_EQ(layoutMText(spec).actualHeight, kHeight + kPitch);
    spec.spacingFactor = 2;
    EXPECT_DOUBLE_EQ(layoutMText(spec).actualHeight, kHeight + 2 * kPitch);
}

TEST(MTextLayout, BreaksAtBlanksAndLeavesThemOutThere) {
    const double width = widthOf(L"aa bb") + 0.01;
    const MTextLayout laid = layout(L"aa bb   cc dd ee", width);
    EXPECT_EQ(allText(laid), L"aa bb|cc dd|ee");
    EXPECT_NEAR(laid.actualWidth, widthOf(L"cc dd"), widthOf(L"aa bb"));
    EXPECT_NEAR(laid.lines[0].right - laid.lines[0].left, widthOf(L"aa bb"), 1e-9);
    // A text exactly as wide as the width stays whole.
    EXPECT_EQ(layout(L"aa bb", widthOf(L"aa bb")).lines.size(), 1u);
    EXPECT_EQ(layout(L"aa bb", widthOf(L"aa bb") * 0.999).lines.size(), 2u);
    EXPECT_EQ(layout(L"aa bb cc", 0).lines.size(), 1u);
}

TEST(MTextLayout, LongWordsOverhangAndStayWhole) {
    const MTextLayout laid = layout(L"a Donaudampfschiff b", widthOf(L"Donau"));
    EXPECT_EQ(allText(laid), L"a|Donaudampfschiff|b");
    EXPECT_NEAR(laid.actualWidth, widthOf(L"Donaudampfschiff"), 1e-9);
    // A change of look within a word is no place to break it; a hard blank neither.
    EXPECT_EQ(layout(L"a Donau{\\Ldampf}schiff", widthOf(L"Donau")).lines.size(), 2u);
    EXPECT_EQ(layout(L"aaa\\~bbb\\~ccc", widthOf(L"aaa")).lines.size(), 1u);
}

TEST(MTextLayout, BlanksAtTheEndsOfAParagraphCount) {
    const double word = widthOf(L"word"), blank = widthOf(L" ");
    EXPECT_NEAR(layout(L" word").actualWidth, word + blank, 1e-9);
    EXPECT_NEAR(layout(L"word  ").actualWidth, word + 2 * blank, 1e-9);
    EXPECT_NEAR(layout(L"word ", word).actualWidth, word + blank, 1e-9);
    EXPECT_EQ(layout(L"word ", word).lines.size(), 1u);
}

TEST(MTextLayout, AttachmentPointPlacesTheBox) {
    const double width = widthOf(L"HH");
    const double height = kHeight + kPitch;
    for (int attachment = 1; attachment <= 9; ++attachment) {
        SCOPED_TRACE(attachment);
        const MTextLayout laid = layout(L"HH\\PHH", 0, attachment);
        const double left = -0.5 * ((attachment - 1) % 3) * width;
        const double top = 0.5 * ((attachment - 1) / 3) * height;
        EXPECT_NEAR(laid.extents.minX, left, 1e-9);
        EXPECT_NEAR(laid.extents.maxX, left + width, 1e-9);
        EXPECT_NEAR(laid.extents.maxY, top, 1e-9);
        EXPECT_NEAR(laid.extents.minY, top - height, 1e-9);
    }
    // The lines follow the attachment's column inside a reference width.
    const double reference = 3 * width;
    EXPECT_NEAR(layout(L"HH", reference, 2).lines[0].left, -width / 2, 1e-9);
    EXPECT_NEAR(layout(L"HH", reference, 3).lines[0].left, -width, 1e-9);
    EXPECT_NEAR(layout(L"HH", reference, 3).boxLeft, -reference, 1e-9);
}

TEST(MTextLayout, AscentAndDescentFollowTheInk) {
    EXPECT_DOUBLE_EQ(layout(L"HOS").ascent, kHeight);  // the round letters' overshoot is left out
    EXPECT_DOUBLE_EQ(layout(L"HOS").descent, 0);
    EXPECT_GT(layout(L"\u00C9").ascent, 1.15 * kHeight);
    EXPECT_DOUBLE_EQ(layout(L"a{\\H2x;H}").ascent, 2 * kHeight);
    EXPECT_GT(layout(L"HOS\\Ppg").descent, 0.2 * kHeight);
    EXPECT_DOUBLE_EQ(layout(L"pg\\PHOS").descent, 0);
    EXPECT_DOUBLE_EQ(layout(L"").ascent, 0);
}

TEST(MTextCodes, CharactersAndBreaks) {
    const struct {
        const wchar_t* contents;
        const wchar_t* text;
    } cases[] = {
        {L"a\\Pb\\Xc\\Nd\ne^Jf", L"a|b|c|d|e|f"},
        {L"\\\\ \\{x\\}", L"\\ {x}"},
        {L"a\\~b", L"a\u00A0b"},
        {L"\\U+00B0 %%d %%p%%c", L"\u00B0 \u00B0 \u00B1\u2300"},
        {L"50%% 5% %%%", L"50%% 5% %"},
        {L"x^ 2 ^3 ^", L"x^2 ^3 ^"},
        {L"\\M+1E0D1a", L"a"},
        {L"{a{b}c", L"abc"},
        {L"a}}b", L"ab"},
        {L"\\za\\", L"a"},
        {L"\\fArial|b1|i0|c0|p34;a\\Ftxt.shx;b", L"ab"},
        {L"\\fnoend\\Pb", L"noend|b"},
        {L"\\H2.5;a\\H.7x;b\\W0.8;c\\Q15;d\\T2;e\\A1;f\\C1;g\\c255;h", L"abcdefgh"},
        {L"\\C1a", L"a"},
        {L"\\pi1,l2;a", L"a"},
        {L"\\S1/2;", L"12"},
        {L"\\S1\\/2#3;", L"1/23"},
        {L"\\Snoend", L"noend"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(allText(layout(each.contents)), each.text)
            << std::string(each.contents, each.contents + std::wcslen(each.contents));
    }
}

TEST(MTextCodes, FormatsReachFromTheirCodeToTheEndOfTheBraces) {
    const MTextLayout laid = layout(L"a{\\H2x;\\C3;\\Lb}c");
    ASSERT_EQ(laid.pieces.size(), 3u);
    EXPECT_DOUBLE_EQ(laid.pieces[1].height, 2 * kHeight);
    EXPECT_EQ(laid.formats[laid.pieces[1].format].color, 3);
    EXPECT_DOUBLE_EQ(laid.pieces[2].height, kHeight);
    EXPECT_EQ(laid.formats[laid.pieces[2].format].color, MTextFormat::kOwnColor);
    ASSERT_EQ(laid.rules.size(), 1u);
    EXPECT_NEAR(laid.rules[0].end.x - laid.rules[0].start.x, widthOf(L"b", 2 * kHeight), 1e-9);

    EXPECT_DOUBLE_EQ(lastFormat(layout(L"\\H5;\\H2x;a")).height, 10);
    EXPECT_DOUBLE_EQ(lastFormat(layout(L"\\H-1;a")).height, kHeight);
    EXPECT_EQ(lastFormat(layout(L"\\c16711680;a")).trueColor, 0x0000FF);
    EXPECT_DOUBLE_EQ(lastFormat(layout(L"\\W0.5;a")).widthFactor, 0.5);
    EXPECT_NEAR(layout(L"\\W0.5;abc").actualWidth, widthOf(L"abc") / 2, 1e-9);
    EXPECT_NEAR(layout(L"\\T2;abc").actualWidth, widthOf(L"abc") * 2, 1e-9);
    const MTextLayout fonts = layout(L"a\\fTimes New Roman|b1|i1;b");
    EXPECT_EQ(fonts.fonts[lastFormat(fonts).font], (TextFont{{}, L"Times New Roman", true, true}));
}

TEST(MTextCodes, ParagraphsIndentAlignAndTab) {
    const MTextLayout indented = layout(L"\\pi2,l1;aa aa", widthOf(L"aa") + 4 * kHeight);
    ASSERT_EQ(indented.lines.size(), 2u);
    EXPECT_NEAR(indented.lines[0].left, 3 * kHeight, 1e-9);
    EXPECT_NEAR(indented.lines[1].left, kHeight, 1e-9);

    const double width = 50;
    EXPECT_NEAR(layout(L"\\pqr;aa", width).lines[0].right, width, 1e-9);
    EXPECT_NEAR(layout(L"\\pxqc;aa", width).lines[0].left, (width - widthOf(L"aa")) / 2, 1e-9);
    const double narrow = widthOf(L"aa bb") + 1;
    const MTextLayout justified = layout(L"\\pqj;aa bb cc", narrow);
    EXPECT_NEAR(justified.lines[0].right, narrow, 1e-9);
    EXPECT_NEAR(justified.lines[1].right, widthOf(L"cc"), 1e-9);

    EXPECT_NEAR(layout(L"a\tb^Ic").pieces.back().start.x, 2 * kTabDistance * kHeight, 1e-9);
    EXPECT_NEAR(layout(L"\\pt3,6;^I^Ia").pieces.back().start.x, 6 * kHeight, 1e-9);
}

TEST(MTextCodes, StacksStandOverEachOther) {
    const MTextLayout fraction = layout(L"\\S1/22;");
    ASSERT_EQ(fraction.pieces.size(), 2u);
    EXPECT_GT(fraction.pieces[0].start.y, fraction.pieces[1].start.y + kHeight);
    EXPECT_NEAR(fraction.actualWidth, widthOf(L"22"), 1e-9);
    ASSERT_EQ(fraction.rules.size(), 1u);
    EXPECT_TRUE(fraction.rules[0].isFraction);
    EXPECT_TRUE(layout(L"\\S1^2;").rules.empty());
    const MTextLayout diagonal = layout(L"\\S1#2;");
    EXPECT_GT(diagonal.actualWidth, widthOf(L"12"));
    EXPECT_GT(diagonal.rules.at(0).end.x, diagonal.rules.at(0).start.x);
}

TEST(MTextCodes, HeightsInCodesScale) {
    EXPECT_EQ(scaleHeightCodes(L"a{\\H2.5;b}\\H2x;\\\\H3;", 2), L"a{\\H5.00000000;b}\\H2x;\\\\H3;");
    EXPECT_EQ(scaleHeightCodes(L"\\H", 2), L"\\H");
}

// Any text is laid out without a fault, and in time that grows with its length.
TEST(MTextCodes, HostileTexts) {
    std::mt19937 random(20240);
    constexpr std::wstring_view kUnits = L"\\\\\\{}{};^%|HWQTACcfFSpPXLl~ aib01.x-,/#U+\tMq\xD800\xDC00\n";
    for (int round = 0; round < 3000; ++round) {
        std::wstring contents(random() % 40, L'\0');
        for (wchar_t& unit : contents) {
            unit = kUnits[random() % kUnits.size()];
        }
        const MTextLayout laid = layout(contents, round % 3 == 0 ? 5 : 0, static_cast<int>(1 + round % 9));
        ASSERT_TRUE(std::isfinite(laid.actualWidth) && std::isfinite(laid.actualHeight));
        ASSERT_GE(laid.actualHeight, 0);
    }
}

TEST(MTextCodes, MegabyteTextsTakeTimeInProportion) {
    const auto seconds = [](std::wstring_view unit, std::size_t length) {
        std::wstring contents;
        while (contents.size() < length) {
            contents += unit;
        }
        const auto start = std::chrono::steady_clock::now();
        const MTextLayout laid = layout(contents, 100);
        EXPECT_TRUE(std::isfinite(laid.actualHeight));
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    };
    seconds(L"x", 1000);
    for (const wchar_t* unit : {L"x", L"{", L"\\S", L"\\f", L"\\pt1,2,3;", L"\\H2x;a ", L"{\\L}", L"   ",
                                L"^I", L"%%", L"\\fA|b1;a\\fB;b", L"word "}) {
        SCOPED_TRACE(std::string(unit, unit + std::wcslen(unit)));
        constexpr std::size_t kShort = 125000;
        const double small = std::max(seconds(unit, kShort), 0.005);
        // Eight times the text; quadratic work would take 64 times as long.
        EXPECT_LT(seconds(unit, 8 * kShort), 30 * small);
    }
}
