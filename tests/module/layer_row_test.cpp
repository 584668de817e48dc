#include "module/standards/layer_row.h"

#include <gtest/gtest.h>

namespace tessary::testing {

namespace {

TEST(LayerRow, LineweightsAreHundredthsAndLoseTheirLastZeros) {
    EXPECT_EQ(lineweightText(std::nullopt), L"Default");
    EXPECT_EQ(lineweightText(L""), L"Default");
    EXPECT_EQ(lineweightText(L"25"), L"0.25 mm");
    EXPECT_EQ(lineweightText(L"50"), L"0.5 mm");
    EXPECT_EQ(lineweightText(L"100"), L"1 mm");
    EXPECT_EQ(lineweightText(L"0"), L"0 mm");
    EXPECT_EQ(lineweightText(L"thick"), L"0 mm");
    EXPECT_EQ(lineweightText(L"-3 or so"), L"-0.03 mm");
}

TEST(LayerRow, LineweightsAreReadFromTheNumberInFront) {
    EXPECT_EQ(lineweightDigits(L"Default"), std::nullopt);
    EXPECT_EQ(lineweightDigits(L""), std::nullopt);
    EXPECT_EQ(lineweightDigits(L"2.11 mm"), L"211");
    EXPECT_EQ(lineweightDigits(L"0.00 mm"), L"0");
    EXPECT_EQ(lineweightDigits(L"0.5 mm"), L"50");
    EXPECT_EQ(lineweightDigits(L"default"), L"0");
    EXPECT_EQ(lineweightDigits(L"0.129"), L"12");
}

TEST(LayerRow, ColorsAreBroughtIntoTheirRange) {
    EXPECT_EQ(layerColor(L""), 1);
    EXPECT_EQ(layerColor(L"0"), 1);
    EXPECT_EQ(layerColor(L"256"), 255);
    EXPECT_EQ(layerColor(L"99999999999999999999"), 255);
    EXPECT_EQ(layerColor(L"-99999999999999999999"), 1);
    EXPECT_EQ(layerColor(L" 42nd"), 42);
}

}  // namespace

}  // namespace tessary::testing
