#include "module/binding/number_format.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

namespace tessary::testing {

namespace {

// __extension__: the standard has no 128-bit integers.
__extension__ using Wide = unsigned __int128;

// The number with that many decimals, ties away from zero, by whole-number arithmetic on the exact binary
// value. Good for magnitudes below 2^30 whose last binary digit counts at least 2^-60.
std::wstring roundedExactly(double value, int decimals) {
    int exponent = 0;
    const auto digits = static_cast<std::uint64_t>(std::ldexp(std::frexp(std::fabs(value), &exponent), 53));
    Wide scaled = digits;
    for (int i = 0; i < decimals; ++i) {
        scaled *= 10;
    }
    const int fractionBits = 53 - exponent;
    const Wide half = Wide{1} << (fractionBits - 1);
    auto rest = static_cast<std::uint64_t>((scaled + half) >> fractionBits);
    std::wstring text;
    for (int i = 0; i <= decimals || rest; ++i) {
        if (i == decimals && decimals > 0) {
            text.insert(0, 1, L'.');
        }
        text.insert(0, 1, static_cast<wchar_t>(L'0' + rest % 10));
        rest /= 10;
    }
    const bool isZero = text.find_first_not_of(L"0.") == std::wstring::npos;
    return value < 0 && !isZero ? L"-" + text : text;
}

TEST(FormatFixed, roundsHalfAwayFromZeroOnTheBinaryValue) {
    const struct {
        double value;
        int decimals;
        const wchar_t* text;
    } rows[] = {
        {1.005, 2, L"1.00"},
        {0.125, 2, L"0.13"},
        {-0.125, 2, L"-0.13"},
        {2.5, 0, L"3"},
        {0.5, 0, L"1"},
        {1.5, 0, L"2"},
        {9.9996, 3, L"10.000"},
        {12.5, 3, L"12.500"},
        {0.0006, 3, L"0.001"},
        {0.05, 1, L"0.1"},
        {1e22, 1, L"10000000000000000000000.0"},
        {123.0, -2, L"123"},
        {1.0 / 3, 12, L"0.3333333333"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, formatFixed(row.value, row.decimals, false)) << row.value;
    }
}

TEST(FormatFixed, agreesWithWholeNumberArithmetic) {
    std::mt19937_64 random(20100);
    std::uniform_real_distribution<double> exponents(-20, 29);
    std::uniform_int_distribution<int> places(0, 7);
    for (int i = 0; i < 20000; ++i) {
        double value = std::exp2(exponents(random)) * (i % 2 ? 1 : -1);
        // Coarse values are often ties, and the last binary digit must not be too small for the other
        // formulation.
        const double grain = i % 3 ? 4096.0 : 1099511627776.0;
        value = std::round(value * grain) / grain;
        const int decimals = places(random);
        if (value != 0.0) {
            ASSERT_EQ(roundedExactly(value, decimals), formatFixed(value, decimals, false))
                << value << " " << decimals;
        }
    }
}

TEST(FormatFixed, trimmingDropsZerosAndALonePoint) {
    EXPECT_EQ(L"12.5", formatFixed(12.5, 3, true));
    EXPECT_EQ(L"12", formatFixed(12, 3, true));
    EXPECT_EQ(L"100", formatFixed(100, 0, true));
    EXPECT_EQ(L"-0.5", formatFixed(-0.5, 4, true));
    EXPECT_EQ(L"0", formatFixed(0, 3, true));
    EXPECT_EQ(L"0", formatFixed(-0.0, 3, true));
}

TEST(FormatFixed, whatShowsOnlyZerosHasNoSignAndKeepsThem) {
    EXPECT_EQ(L"0.000", formatFixed(-0.0004, 3, false));
    EXPECT_EQ(L"0.000", formatFixed(0.0004, 3, true));
    EXPECT_EQ(L"0", formatFixed(-0.4, 0, false));
    EXPECT_EQ(L"0.0000000000", formatFixed(5e-324, 99, false));
}

TEST(FormatFixed, extremesHaveAText) {
    const std::wstring largest = formatFixed(-std::numeric_limits<double>::max(), 10, false);
    EXPECT_EQ(1u + 309u + 11u, largest.size());
    EXPECT_EQ(L"1.#QNAN", formatFixed(std::numeric_limits<double>::quiet_NaN(), 2, false));
    EXPECT_EQ(L"-1.#INF", formatFixed(-HUGE_VAL, 2, true));
    EXPECT_EQ(L"1.#INF", formatFixedWithThousands(HUGE_VAL, 2));
}

TEST(FormatFixedWithThousands, commasEveryThreeDigits) {
    const struct {
        double value;
        const wchar_t* text;
    } rows[] = {
        {0, L"0"},
        {999, L"999"},
        {1000, L"1,000"},
        {-999, L"-999"},
        {-1000, L"-1,000"},
        {123456, L"123,456"},
        {1234567.5, L"1,234,567.5"},
        {-123456.25, L"-123,456.25"},
        {999.999, L"1,000"},
        {0.25, L"0.25"},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(row.text, formatFixedWithThousands(row.value, 2)) << row.value;
    }
}

}  // namespace

}  // namespace tessary::testing
