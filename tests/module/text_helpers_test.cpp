#include "module/drawing/text_helpers.h"

#include "module/binding/variant.h"

#include <gtest/gtest.h>

#include <limits>

namespace tessary::testing {

namespace {

VARIANT variantOf(VARTYPE type) {
    VARIANT value;
    VariantInit(&value);
    value.vt = type;
    return value;
}

TEST(SqlQuote, quotesAreDoubledAndTheEmptyTextIsABlank) {
    EXPECT_EQ(L"'O''Brien'", sqlQuote(L"O'Brien"));
    EXPECT_EQ(L"' '", sqlQuote(L""));
    EXPECT_EQ(L"''''", sqlQuote(L"'"));
    EXPECT_EQ(L"' '", sqlQuote(L" "));
}

TEST(VariantToText, everyTypeHasItsForm) {
    VARIANT value = variantOf(VT_I2);
    value.iVal = -12;
    EXPECT_EQ(L"-12", variantToText(value, 2));
    EXPECT_EQ(L"70000", variantToText(variantFromLong(70000).get(), 2));
    EXPECT_EQ(L"1,234.57", variantToText(Variant::fromReal(1234.567).get(), 2));
    EXPECT_EQ(L"two words", variantToText(variantFromString(L" two words\n").get(), 2));
    EXPECT_EQ(L"-1", variantToText(Variant::fromBool(true).get(), 2));
    EXPECT_EQ(L"0", variantToText(Variant::fromBool(false).get(), 2));
    EXPECT_EQ(L"", variantToText(variantOf(VT_NULL), 2));
    EXPECT_EQ(L"", variantToText(variantOf(VT_UNKNOWN), 2));
}

TEST(VariantToInt, fractionsAreDroppedAndOtherTypesAreZero) {
    EXPECT_EQ(-2, variantToInt(Variant::fromReal(-2.9).get()));
    EXPECT_EQ(-1, variantToInt(Variant::fromBool(true).get()));
    EXPECT_EQ(0, variantToInt(variantFromString(L"12").get()));
    EXPECT_EQ(std::numeric_limits<int>::min(), variantToInt(Variant::fromReal(1e300).get()));
    EXPECT_EQ(L"", variantToIntText(variantOf(VT_NULL)));
    EXPECT_EQ(L"0", variantToIntText(variantOf(VT_EMPTY)));
}

TEST(VariantToRealText, integersAndRealsAlike) {
    EXPECT_EQ(L"3.50", variantToRealText(Variant::fromReal(3.5).get(), 2, false));
    EXPECT_EQ(L"3.5", variantToRealText(Variant::fromReal(3.5).get(), 2, true));
    EXPECT_EQ(L"7.00", variantToRealText(variantFromLong(7).get(), 2, false));
    EXPECT_EQ(L"", variantToRealText(variantOf(VT_NULL), 2, false));
}

}  // namespace

}  // namespace tessary::testing
