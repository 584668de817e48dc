#include <windows.h>

#include <gtest/gtest.h>

#include "host/text/outlines.h"
#include "host/text/text_codes.h"

using namespace drafthost::text;

namespace {

const TextFont kArial{L"arial.ttf", {}, false, false};

// Width that the platform gives for the text, in heights of capitals: extent and the outline of H at a size
// where one pixel is less than a thousandth of the height.
double platformWidth(const wchar_t* face, std::wstring_view text) {
    constexpr int kSize = 4096;
    const HDC dc = CreateCompatibleDC(nullptr);
    const HFONT font =
        CreateFontW(-kSize, 0, 0, 0, FW_NORMAL, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_TT_ONLY_PRECIS,
                    CLIP_DEFAULT_PRECIS, PROOF_QUALITY, DEFAULT_PITCH, face);
    const HGDIOBJ previous = SelectObject(dc, font);
    SIZE extent{};
    GetTextExtentPoint32W(dc, text.data(), static_cast<int>(text.size()), &extent);
    GLYPHMETRICS capital{};
    const MAT2 identity = {{0, 1}, {0, 0}, {0, 0}, {0, 1}};
    GetGlyphOutlineW(dc, L'H', GGO_METRICS | GGO_UNHINTED, &capital, 0, nullptr, &identity);
    SelectObject(dc, previous);
    DeleteObject(font);
    DeleteDC(dc);
    return static_cast<double>(extent.cx) / capital.gmptGlyphOrigin.y;
}

double signedArea(const Contour& contour) {
    double twice = 0;
    for (std::size_t i = 0; i < contour.size(); ++i) {
        const AcGePoint2d& a = contour[i];
        const AcGePoint2d& b = contour[(i + 1) % contour.size()];
        twice += a.x * b.y - b.x * a.y;
    }
    return twice / 2;
}

}  // namespace

TEST(TextOutlines, TrueTypeWidthsAgreeWithThePlatform) {
    constexpr std::wstring_view kSample = L"Supply air 1250 m3/h, VAV-12 \u00C4\u00F6";
    const struct {
        const wchar_t* family;
        const wchar_t* file;
    } faces[] = {{L"Arial", L"arial.ttf"}, {L"Courier New", L"cour.ttf"}, {L"Times New Roman", L"times.ttf"}};
    for (const auto& face : faces) {
        SCOPED_TRACE(face.file);
        const double expected = platformWidth(face.family, kSample);
        const FontRef font = resolveFont(TextFont{face.file, {}, false, false});
        ASSERT_FALSE(isStrokeFont(font));
        EXPECT_NEAR(measureRun(font, kSample, 1).advance, expected, 0.002 * expected);
        EXPECT_EQ(font, resolveFont(TextFont{{}, face.family, false, false}));
    }
}

TEST(TextOutlines, CapitalsAreAsHighAsTheTextSize) {
    for (const TextFont& wanted :
         {kArial, TextFont{L"cour.ttf", {}, true, false}, TextFont{L"txt", {}, false, false}}) {
        const RunMeasure measure = measureRun(resolveFont(wanted), L"HEIT", 2.5);
        EXPECT_NEAR(measure.ink.maxY, 2.5, 1e-9) << wanted.file.size();
        EXPECT_NEAR(measure.ink.minY, 0, 1e-9);
    }
}

TEST(TextOutlines, RunsScaleSlantAndTrackTogetherWithTheirMeasures) {
    const FontRef font = resolveFont(kArial);
    const double plain = measureRun(font, L"Hxg", 1).advance;
    EXPECT_NEAR(measureRun(font, L"Hxg", 3, 0.5).advance, 1.5 * plain, 1e-9);
    EXPECT_NEAR(measureRun(font, L"Hxg", 1, 1, 0, 2).advance, 2 * plain, 1e-9);
    const double parts = measureRun(font, L"H", 1).advance + measureRun(font, L"xg", 1).advance;
    EXPECT_NEAR(plain, parts, 1e-12);

    const double slant = 0.3;
    const GlyphRun run = layoutRun(font, L"H", 1, 1, slant);
    EXPECT_NEAR(run.ink.maxX, measureRun(font, L"H", 1).ink.maxX + std::tan(slant), 1e-6);
    EXPECT_NEAR(run.advance, measureRun(font, L"H", 1).advance, 1e-12);
    const RunMeasure measured = measureRun(font, L"Hxg", 1.7, 0.8);
    const GlyphRun drawn = layoutRun(font, L"Hxg", 1.7, 0.8);
    EXPECT_NEAR(drawn.ink.maxX, measured.ink.maxX, 1e-9);
    EXPECT_NEAR(drawn.ink.minY, measured.ink.minY, 1e-9);
}

// An O is a ring: two contours that run opposite ways, so that both fill rules leave its middle empty.
TEST(TextOutlines, FilledLettersKeepTheirHoles) {
    const GlyphRun run = layoutRun(resolveFont(kArial), L"O", 1);
    ASSERT_EQ(run.glyphs.size(), 1u);
    EXPECT_TRUE(run.glyphs[0].filled);
    ASSERT_EQ(run.glyphs[0].contours.size(), 2u);
    const double outer = signedArea(run.glyphs[0].contours[0]), inner = signedArea(run.glyphs[0].contours[1]);
    EXPECT_LT(outer * inner, 0);
    EXPECT_GT(std::max(std::abs(outer), std::abs(inner)), 0.7);
}

TEST(TextOutlines, ShapeFilesAndUnknownNamesUseTheStrokeFont) {
    for (const wchar_t* file : {L"", L"txt", L"simplex.shx", L"C:\\fonts\\romans.SHX", L"nonsense"}) {
        EXPECT_EQ(resolveFont(TextFont{file, {}, false, false}), strokeFont());
    }
    EXPECT_FALSE(layoutRun(strokeFont(), L"A", 1).glyphs[0].filled);
    // A face that is not installed is replaced by one that draws.
    EXPECT_GT(measureRun(resolveFont(TextFont{L"notinstalled.ttf", {}, false, false}), L"A", 1).ink.maxY,
              0.5);
}

TEST(TextOutlines, StrokeFontBorrowsTheLettersOfOtherScripts) {
    const GlyphRun cyrillic = layoutRun(strokeFont(), L"\u0416\u0418", 2);
    ASSERT_EQ(cyrillic.glyphs.size(), 2u);
    EXPECT_TRUE(cyrillic.glyphs[0].filled);
    EXPECT_NEAR(cyrillic.ink.maxY, 2.0, 0.05) << "capitals of both fonts are equally high";
    EXPECT_NE(layoutRun(strokeFont(), L"\u0416", 1).advance, layoutRun(strokeFont(), L"\u0406", 1).advance);
}

TEST(TextOutlines, StrokeFontDrawsEveryPrintableCharacter) {
    const double box = measureRun(strokeFont(), L"\x7F", 1).advance;  // not in the font: a box
    const GlyphRun missing = layoutRun(strokeFont(), L"\x7F", 1);
    EXPECT_EQ(missing.glyphs.at(0).contours.size(), 1u);
    EXPECT_GT(box, 0.5);
    for (wchar_t letter = L'!'; letter < 0x180; ++letter) {
        const bool isPrintable = letter <= L'~' || (letter > 0xA0 && letter <= 0xFF);
        if (!isPrintable) {
            continue;
        }
        const GlyphRun run = layoutRun(strokeFont(), std::wstring(1, letter), 1);
        ASSERT_FALSE(run.glyphs.empty()) << std::hex << static_cast<int>(letter);
        const Contour& first = run.glyphs[0].contours[0];
        const bool isBox = run.glyphs[0].contours.size() == 1 && first.size() == 5 && run.advance == box &&
                           first[2].x == first[1].x && first[2].y == 1 && letter != L'0';
        EXPECT_FALSE(isBox) << std::hex << static_cast<int>(letter);
        EXPECT_GE(run.ink.minX, -0.1) << std::hex << static_cast<int>(letter);
        EXPECT_LT(run.ink.maxX, run.advance + 0.05) << std::hex << static_cast<int>(letter);
    }
    EXPECT_GT(measureRun(strokeFont(), L"\u00C9", 1).ink.maxY, 1.1);
    EXPECT_EQ(measureRun(strokeFont(), L"0", 1).advance, measureRun(strokeFont(), L"7", 1).advance);
}

TEST(TextOutlines, BackwardAndUpsideDownRunsAreMirrored) {
    AcGiTextStyle style;
    style.fontFile = L"arial.ttf";
    style.textSize = 2;
    const GlyphRun plain = layoutRun(style, L"Ag");
    style.backward = true;
    const GlyphRun backward = layoutRun(style, L"Ag");
    EXPECT_DOUBLE_EQ(backward.advance, -plain.advance);
    EXPECT_DOUBLE_EQ(backward.ink.minX, -plain.ink.maxX);
    style.backward = false;
    style.upsideDown = true;
    EXPECT_DOUBLE_EQ(layoutRun(style, L"Ag").ink.maxY, -plain.ink.minY);
}

TEST(TextCodes, SingleLineCodes) {
    const auto plain = [](std::wstring_view text) {
        std::wstring joined;
        for (const LineRun& run : parseLineCodes(text)) {
            joined += run.text;
        }
        return joined;
    };
    EXPECT_EQ(plain(L"90%%d %%P0.1 %%c50"), L"90\u00B0 \u00B10.1 \u230050");
    EXPECT_EQ(plain(L"100%%% 5%"), L"100% 5%");
    EXPECT_EQ(plain(L"%%065%%066 %%7"), L"AB %%7");
    EXPECT_EQ(plain(L"\\U+00E9\\U+zz \\M+1E0D1x"), L"\u00E9\\U+zz x");
    EXPECT_EQ(plain(L"%%q %% %"), L"%%q %% %");

    const std::vector<LineRun> runs = parseLineCodes(L"a%%ub%%oc%%ud");
    ASSERT_EQ(runs.size(), 4u);
    EXPECT_FALSE(runs[0].underlined);
    EXPECT_TRUE(runs[1].underlined && !runs[1].overlined);
    EXPECT_TRUE(runs[2].underlined && runs[2].overlined);
    EXPECT_TRUE(!runs[3].underlined && runs[3].overlined);
}
