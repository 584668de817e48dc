// Texts, numbers and dates as the database server compares, converts and prints them.

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "server/values/error.h"
#include "server/values/value.h"

namespace tessary::server {
namespace {

std::string utf8(TextView text) {
    return toUtf8(text);
}

std::string shown(const Value& value) {
    static constexpr const char* kinds[] = {"null", "yesno", "long", "number", "date", "text"};
    return std::string(kinds[value.index()]) + " " + utf8(textOf(value));
}

// The converted value, or "#" and the number of the error.
std::string converted(FieldType type, const Value& value) {
    try {
        return shown(convertTo(type, value, u"QTY"));
    } catch (const DatabaseError& error) {
        EXPECT_NE(error.text().find(u"QTY"), Text::npos);
        EXPECT_TRUE(error.text().ends_with(u'.'));
        return "#" + std::to_string(static_cast<int>(error.code()));
    }
}

std::string dateIn(TextView text) {
    Date date;
    return parseDate(text, date) ? utf8(textOf(date)) : "none";
}

std::string numberIn(TextView text) {
    double number = 0;
    return parseNumber(text, number) ? utf8(textOf(number)) : "none";
}

// ---- Texts

TEST(ServerText, everyCharacterGoesToUtf8AndBack) {
    Text all;
    for (char32_t point = 1; point < 0x110000; ++point) {
        if (point >= 0xD800 && point < 0xE000)
            continue;
        if (point >= 0x10000)
            all += static_cast<char16_t>(0xD800 + ((point - 0x10000) >> 10));
        all += static_cast<char16_t>(point >= 0x10000 ? 0xDC00 + (point & 0x3FF) : point);
    }
    EXPECT_TRUE(toText(toUtf8(all)) == all);
    EXPECT_EQ(toUtf8(u"A\u00E9\u20AC\U0001F600"), "A\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80");
}

TEST(ServerText, whatIsNotWellFormedIsReplaced) {
    EXPECT_TRUE(toText("a\xFFz") == u"a\uFFFDz");
    EXPECT_TRUE(toText("\xE2\x82z") == u"\uFFFDz") << "a sequence cut short is one mistake";
    EXPECT_TRUE(toText("\xF0\x9F") == u"\uFFFD") << "at the end";
    EXPECT_TRUE(toText("\xC0\x80") == u"\uFFFD\uFFFD") << "overlong";
    EXPECT_TRUE(toText("\xED\xA0\x80") == u"\uFFFD\uFFFD\uFFFD") << "a surrogate";
    EXPECT_TRUE(toText("\xF4\x90\x80\x80") == u"\uFFFD\uFFFD\uFFFD\uFFFD") << "above 10FFFF";
    EXPECT_EQ(toUtf8(Text{u'a', char16_t{0xD800}, u'b', char16_t{0xDC00}}), "a\xEF\xBF\xBD"
                                                                            "b\xEF\xBF\xBD");
}

TEST(ServerText, namesAndOrderDoNotDependOnCase) {
    EXPECT_TRUE(sameName(u"tblLayer", u"TBLLAYER"));
    EXPECT_TRUE(sameName(u"Ma\u00DFe \u00C4\u0416\u03A3", u"MA\u1E9EE \u00E4\u0436\u03C2"));
    EXPECT_FALSE(sameName(u"stra\u00DFe", u"strasse"));
    EXPECT_FALSE(sameName(u"ab", u"abc"));
    EXPECT_FALSE(sameName(u"\u0130", u"i")) << "the dotted capital is a letter of its own";
    EXPECT_LT(compareText(u"a", u"B"), 0);
    EXPECT_GT(compareText(u"b", u"A"), 0);
    EXPECT_LT(compareText(u"ab", u"ABC"), 0);
    EXPECT_LT(compareText(u"", u"a"), 0);
    EXPECT_LT(compareText(u"Zz", u"\u00C0"), 0) << "by code, not by alphabet";
}

// An order that is not consistent makes an index lose records.
TEST(ServerText, orderIsConsistentOverAllCharacters) {
    for (unsigned unit = 0; unit < 0x10000; ++unit) {
        const Text one(1, static_cast<char16_t>(unit));
        ASSERT_TRUE(folded(folded(one)) == folded(one)) << unit;
        ASSERT_EQ(compareText(one, folded(one)), 0) << unit;
    }
    EXPECT_TRUE(folded(u"\u0100\u0101\u0102\u0139\uFF3A\u2C2F\u13F8\uABBF") ==
                u"\u0101\u0101\u0103\u013A\uFF5A\u2C5F\u13F0\u13EF");
}

// ---- Numbers

TEST(ServerNumber, isReadWholeOrNotAtAll) {
    EXPECT_EQ(numberIn(u" 12.50 "), "12.5");
    EXPECT_EQ(numberIn(u"+.5"), "0.5");
    EXPECT_EQ(numberIn(u"-1e3"), "-1000");
    EXPECT_EQ(numberIn(u"5."), "5");
    for (TextView text : {u"", u" ", u"12a", u"1,5", u"0x10", u"inf", u"nan", u"1e999", u"+-1", u"--1",
                          u"1 2", u"e5", u".", u"\uFF11"})
        EXPECT_EQ(numberIn(text), "none") << utf8(text);
}

TEST(ServerNumber, textReadsBackToTheSameNumber) {
    EXPECT_EQ(shown(100000.0), "number 100000");
    EXPECT_EQ(shown(-0.0), "number 0");
    EXPECT_EQ(shown(0.1), "number 0.1");
    EXPECT_EQ(shown(1e15), "number 1E+15");
    EXPECT_EQ(shown(123456789012345.5), "number 123456789012345.5");
    EXPECT_EQ(shown(0.000001), "number 1E-06");
    std::mt19937_64 random(1);
    for (int round = 0; round < 20000; ++round) {
        double number;
        const std::uint64_t bits = random();
        std::memcpy(&number, &bits, sizeof number);
        if (round % 2 == 0)
            number = static_cast<double>(static_cast<std::int64_t>(bits) >> (bits % 50)) / 1000;
        double read = 0;
        if (!std::isfinite(number) || std::fpclassify(number) == FP_SUBNORMAL)
            continue;
        ASSERT_TRUE(parseNumber(textOf(number), read)) << number;
        ASSERT_EQ(read, number);
    }
}

TEST(ServerNumber, decimalSignDoesNotDependOnTheLocale) {
    ASSERT_TRUE(std::setlocale(LC_ALL, "German") || std::setlocale(LC_ALL, "de_DE.UTF-8"))
        << "no locale with a decimal comma";
    EXPECT_EQ(numberIn(u"1.5"), "1.5");
    EXPECT_EQ(dateIn(u"13:45"), "1:45:00 PM");
    std::setlocale(LC_ALL, "C");
}

// ---- Conversion

TEST(ServerConversion, wholeNumbersRoundToTheEvenNeighbourWithinTheirRange) {
    EXPECT_EQ(converted(FieldType::longInteger, 2.5), "long 2");
    EXPECT_EQ(converted(FieldType::longInteger, 3.5), "long 4");
    EXPECT_EQ(converted(FieldType::longInteger, -2.5), "long -2");
    EXPECT_EQ(converted(FieldType::longInteger, Text(u" 7.6 ")), "long 8");
    EXPECT_EQ(converted(FieldType::longInteger, true), "long -1");
    EXPECT_EQ(converted(FieldType::longInteger, 2147483647.4), "long 2147483647");
    EXPECT_EQ(converted(FieldType::longInteger, 2147483648.0), "#3421");
    EXPECT_EQ(converted(FieldType::integer, 32768), "#3421");
    EXPECT_EQ(converted(FieldType::integer, -32768), "long -32768");
    EXPECT_EQ(converted(FieldType::byte, 255.4), "long 255");
    EXPECT_EQ(converted(FieldType::byte, -1), "#3421");
    EXPECT_EQ(converted(FieldType::longInteger, Text(u"")), "#3421");
    EXPECT_EQ(converted(FieldType::longInteger, Text(u"many")), "#3421");
    EXPECT_EQ(converted(FieldType::longInteger, std::numeric_limits<double>::quiet_NaN()), "#3421");
}

TEST(ServerConversion, numbersKeepWhatTheirTypeHolds) {
    EXPECT_EQ(converted(FieldType::currency, 0.03125), "number 0.0312");
    EXPECT_EQ(converted(FieldType::currency, Text(u"12.34567")), "number 12.3457");
    EXPECT_EQ(converted(FieldType::currency, 1e15), "#3421");
    EXPECT_EQ(converted(FieldType::single, 0.1), "number 0.10000000149011612");
    EXPECT_EQ(converted(FieldType::single, 1e39), "#3421");
    EXPECT_EQ(converted(FieldType::number, Text(u"1e300")), "number 1E+300");
    EXPECT_EQ(converted(FieldType::number, std::numeric_limits<double>::infinity()), "#3421");
}

TEST(ServerConversion, textsYesNoDatesAndNull) {
    EXPECT_EQ(converted(FieldType::yesNo, Text(u"Yes")), "yesno -1");
    EXPECT_EQ(converted(FieldType::yesNo, Text(u"OFF")), "yesno 0");
    EXPECT_EQ(converted(FieldType::yesNo, 0.5), "yesno -1");
    EXPECT_EQ(converted(FieldType::yesNo, Text(u"maybe")), "#3421");
    EXPECT_EQ(converted(FieldType::text, 12.5), "text 12.5");
    EXPECT_EQ(converted(FieldType::memo, true), "text -1");
    EXPECT_EQ(converted(FieldType::text, dateOf({2010, 7, 4, 13, 5, 0})), "text 7/4/2010 1:05:00 PM");
    EXPECT_EQ(converted(FieldType::dateTime, 40363.5), "date 7/4/2010 12:00:00 PM");
    EXPECT_EQ(converted(FieldType::dateTime, Text(u"2010-02-30")), "#3421");
    EXPECT_EQ(converted(FieldType::dateTime, Text(u"")), "#3421");
    EXPECT_EQ(converted(FieldType::dateTime, 1e9), "#3421");
    for (int type = 0; type <= static_cast<int>(FieldType::memo); ++type)
        EXPECT_EQ(converted(static_cast<FieldType>(type), Null{}), "null ");
}

TEST(ServerConversion, aLongValueDoesNotFillTheErrorText) {
    try {
        convertTo(FieldType::longInteger, Text(100000, u'x'), u"QTY");
        FAIL();
    } catch (const DatabaseError& error) {
        EXPECT_LT(error.text().size(), 200u);
    }
}

// ---- Dates

TEST(ServerDate, isReadInTheUsualForms) {
    for (TextView text : {u"7/4/2010", u"07/04/10", u"2010-07-04", u"2010/7/4", u"4 Jul 2010", u"4-JUL-2010",
                          u"July 4, 2010", u"4.7.2010", u" 7-4-2010 "})
        EXPECT_EQ(dateIn(text), "7/4/2010") << utf8(text);
    for (TextView text :
         {u"7/4/2010 13:45", u"2010-07-04T13:45:00", u"1:45 PM 7/4/2010", u"4 Jul 2010, 1:45:00pm"})
        EXPECT_EQ(dateIn(text), "7/4/2010 1:45:00 PM") << utf8(text);
    EXPECT_EQ(dateIn(u"13/7/2010"), "7/13/2010");
    EXPECT_EQ(dateIn(u"1/1/29"), "1/1/2029");
    EXPECT_EQ(dateIn(u"1/1/30"), "1/1/1930");
    EXPECT_EQ(dateIn(u"2/29/2000"), "2/29/2000");
    EXPECT_EQ(dateIn(u"12 AM"), "12/30/1899");
    EXPECT_EQ(dateIn(u"12:30 am"), "12:30:00 AM");
    EXPECT_EQ(dateIn(u"12:00 PM"), "12:00:00 PM");
}

TEST(ServerDate, whatIsNoneIsRefused) {
    for (TextView text : {u"",
                          u"7",
                          u"7/4",
                          u"2/29/2001",
                          u"13/13/2010",
                          u"0/1/2010",
                          u"1/0/2010",
                          u"24:00",
                          u"1:60",
                          u"1:00:60",
                          u"13 PM",
                          u"0:30 AM",
                          u"7/4/2010 7/4/2010",
                          u"1:00 2:00",
                          u"7/4/2010 x",
                          u"7-4/2010",
                          u"4 Juy 2010",
                          u"Ju 4 2010",
                          u"1:2:3:4",
                          u"7/4/99999",
                          u"1/1/0050",
                          u"99999999999999999999",
                          u"7/4/2010 13:45Z",
                          u"-1/2/2010",
                          u"12.5",
                          u"PM",
                          u":",
                          u"7:"})
        EXPECT_EQ(dateIn(text), "none") << utf8(text);
    EXPECT_EQ(dateIn(Text(100000, u'1')), "none");
}

TEST(ServerDate, everyDayAndTimeIsTakenApartAndPutTogether) {
    std::mt19937 random(2);
    std::uniform_int_distribution<int> days(-657434, 2958465), seconds(0, 86399);
    for (int round = 0; round < 50000; ++round) {
        const int day = days(random), second = seconds(random);
        const Date date{day + (day < 0 ? -second : second) / 86400.0};
        const DateParts parts = partsOf(date);
        ASSERT_EQ(parts.hour * 3600 + parts.minute * 60 + parts.second, second) << date.days;
        if (day != 0 || second == 0) {
            ASSERT_EQ(dateOf(parts).days, date.days);
        }
        Date read;
        ASSERT_TRUE(parseDate(textOf(date), read)) << utf8(textOf(date));
        ASSERT_EQ(read, date) << utf8(textOf(date));
    }
}

TEST(ServerDate, partsOutOfRangeRunOver) {
    EXPECT_EQ(shown(dateOf({2010, 13, 1, 0, 0, 0})), "date 1/1/2011");
    EXPECT_EQ(shown(dateOf({2010, 0, 1, 0, 0, 0})), "date 12/1/2009");
    EXPECT_EQ(shown(dateOf({2010, 3, 0, 0, 0, 0})), "date 2/28/2010");
    EXPECT_EQ(shown(dateOf({2010, 1, 1, -1, 0, 0})), "date 12/31/2009 11:00:00 PM");
    EXPECT_EQ(shown(dateOf({2010, 12, 31, 23, 59, 60})), "date 1/1/2011");
    EXPECT_EQ(dateOf({1899, 12, 29, 6, 0, 0}).days, -1.25);
    EXPECT_EQ(shown(Date{2.9999999}), "date 1/2/1900") << "rounding to the second carries into the day";
}

TEST(ServerDate, numbersOutsideTheCalendarDoNoHarm) {
    const int huge = std::numeric_limits<int>::max();
    EXPECT_EQ(converted(FieldType::dateTime, dateOf({huge, huge, huge, huge, huge, huge})), "#3421");
    EXPECT_EQ(converted(FieldType::dateTime, dateOf({-huge, -huge, -huge, -huge, -huge, -huge})), "#3421");
    for (double days : {std::numeric_limits<double>::quiet_NaN(), 1e300, -1e300})
        EXPECT_GE(partsOf(Date{days}).month, 1);
}

}  // namespace
}  // namespace tessary::server
