// The functions of the dialect, through statements.

#include "tests/server/translator_fixture.h"

namespace tessary::server {

using FunctionsTest = TranslatorTest;

TEST_F(FunctionsTest, PartsOfTexts) {
    EXPECT_EQ(value("Left('abc', 2), Left('abc', 9), Right('abc', 2), Right('abc', 0), Mid('abcd', 2), "
                    "Mid('abcd', 2, 2), Mid('a', 9)"),
              "'ab' 'abc' 'bc' '' 'bcd' 'bc' ''");
    EXPECT_EQ(value("LEFT$('abc', 1), Len('abc'), Len(''), Len(Null), Len(#7/4/2010#)"), "'a' 3 0 null 8");
    EXPECT_EQ(value("Left('a', -1)").substr(0, 5), "#3001");
    EXPECT_EQ(value("Mid('a', 0)").substr(0, 5), "#3001");
    EXPECT_EQ(value("Trim('  a b '), LTrim('  a '), RTrim(' a  '), Trim('   ')"), "'a b' 'a ' ' a' ''");
    EXPECT_EQ(value("StrReverse('abc'), Space(2) & 'x', String(3, 'ab'), String(2, 65)"),
              "'cba' '  x' 'aaa' 'AA'");
    EXPECT_EQ(value("String(2000000000, 'a')").substr(0, 5), "#3001");
    EXPECT_EQ(value("Left('abc')"), "#3075 Wrong number of arguments (1) used with function 'Left'.");
}

TEST_F(FunctionsTest, SearchInTexts) {
    EXPECT_EQ(value("InStr('abcABC', 'C'), InStr(4, 'abcABC', 'a'), InStr(1, 'abcABC', 'C', 0), InStr('a', "
                    "'b'), InStr('abc', ''), InStr(9, 'a', 'a')"),
              "3 4 6 0 1 0");
    EXPECT_EQ(value("InStrRev('abcabc', 'B'), InStrRev('abcabc', 'b', 4), InStrRev('abc', 'x'), "
                    "InStrRev('a', 'abc')"),
              "5 2 0 0");
    EXPECT_EQ(value("Replace('aAbA', 'a', 'xy'), Replace('aAbA', 'a', '', 1, -1, 0), Replace('aaa', 'a', "
                    "'b', 2, 1), Replace('a', '', 'x')"),
              "'xyxybxy' 'AbA' 'ba' 'a'");
    EXPECT_EQ(value("StrComp('a', 'B'), StrComp('a', 'A'), StrComp('a', 'A', 0), StrComp(Null, 'a')"),
              "-1 0 1 null");
}

TEST_F(FunctionsTest, CharactersAndCase) {
    EXPECT_EQ(value("UCase('stra\xC3\x9F"
                    "e \xC3\xA4\xC2\xB5'), LCase('\xC3\x84"
                    "BC'), Chr(65), Asc('a'), Asc(Chr(8364))"),
              "'STRA\xC3\x9F"
              "E \xC3\x84\xC2\xB5' '\xC3\xA4"
              "bc' 'A' 97 8364");
    EXPECT_EQ(value("Asc('')").substr(0, 5), "#3001");
    EXPECT_EQ(value("Chr(70000)").substr(0, 5), "#3001");
    EXPECT_EQ(value("Len(Chr(0) & 'a')"), "2");
}

TEST_F(FunctionsTest, Numbers) {
    EXPECT_EQ(value("Val('&HFF'), Val('&o17x'), Val('&Hxyz'), Val('&'), Hex(255), Hex(-1), Oct(8.4)"),
              "255 15 0 0 'FF' 'FFFFFFFF' '10'");
    EXPECT_EQ(value("Abs(-3), Abs(-2.5), Sgn(-2), Sgn(0), Int(-2.5), Fix(-2.5), Int(3)"),
              "3 2.5 -1 0 -3 -2 3");
    EXPECT_EQ(value("Round(0.5), Round(1.5), Round(2.345, 2), Round(-2.5), Round(1E300, 5), Round(7, 2)"),
              "0 2 2.34 -2 1E+300 7");
    EXPECT_EQ(value("Sqr(16), Exp(0), Log(1), Sin(0), Cos(0), Tan(0), Atn(1) * 4"),
              "4 1 0 0 1 0 3.141592653589793");
    EXPECT_EQ(value("Sqr(-1)").substr(0, 5), "#3058");
    EXPECT_EQ(value("Log(0)").substr(0, 5), "#3058");
    EXPECT_EQ(value("10 ^ 400").substr(0, 5), "#3058");
    EXPECT_EQ(value("Abs('x')").substr(0, 5), "#3464");
    EXPECT_EQ(value("Rnd() >= 0 And Rnd(1) < 1"), "yes");
}

TEST_F(FunctionsTest, Conversions) {
    EXPECT_EQ(run("SELECT Abs(bPlot), Int(tMade), Fix(tMade), Int(dWidth) FROM tblLayer WHERE iColor = 2"),
              "0 #7/5/2010# #7/5/2010# 1");
    // Texts of numbers show the digits that are certain.
    EXPECT_EQ(
        value(
            "0.1 + 0.2 & '', CStr(1 / 3), Len(0.7 + 0.1), Left(100 * 1.1, 9), 1E300 & '', 123456789012 & ''"),
        "'0.3' '0.333333333333333' 3 '110' '1E+300' '123456789012'");
    EXPECT_EQ(value("CInt('2.5'), CInt(3.5), CLng(-2.5), CDbl('1e3'), CSng(0.1), CCur(1.23456), CBool(5), "
                    "CBool('False'), CByte(255)"),
              "2 4 -2 1000 0.10000000149011612 1.2346 yes no 255");
    EXPECT_EQ(value("CInt(40000)").substr(0, 5), "#3421");
    EXPECT_EQ(value("CLng('x')").substr(0, 5), "#3464");
    EXPECT_EQ(value("CStr(2.50), CStr(#7/4/2010 1:30 PM#), CStr(True), Str(5), Str(-5.5)"),
              "'2.5' '7/4/2010 1:30:00 PM' '-1' ' 5' '-5.5'");
    EXPECT_EQ(value("Val('12abc'), Val(' 1 2 .5e'), Val('1e2x'), Val('x'), Val('-3-4'), Val('')"),
              "12 12.5 100 0 -3 0");
    EXPECT_EQ(
        value("CDate('2010-07-04') + 1, CDate(40363.5), DateValue('7/4/2010 13:00'), TimeValue('13:00')"),
        "#7/5/2010# #7/4/2010 12:00:00 PM# #7/4/2010# #1:00:00 PM#");
    EXPECT_EQ(value("CDate('soon')").substr(0, 5), "#3464");
    EXPECT_EQ(value("IsNumeric('1.5'), IsNumeric('a'), IsNumeric(Null), IsDate('7/4/2010'), IsDate(5), "
                    "IsDate(#7/4/2010#), IsNull(Null)"),
              "yes no no yes no yes yes");
}

TEST_F(FunctionsTest, Choices) {
    EXPECT_EQ(value("Nz(Null, #7/4/2010#), Nz(#7/4/2010#, 'none'), IIf(True, #7/4/2010#, 'none'), "
                    "Switch(False, 'a', True, "
                    "#7/4/2010#), Choose(2, 'a', #7/4/2010#), Nz(Null, 'x') & Nz(Null)"),
              "#7/4/2010# '7/4/2010' '7/4/2010' '7/4/2010' '7/4/2010' 'x'");
    EXPECT_EQ(value("IIf(1 > 2, 'a', 'b'), IIf(Null, 1, 2), Nz(Null, 'x'), Nz(Null), Nz(5, 1), Choose(2, "
                    "'a', 'b'), Choose(9, 'a', 'b')"),
              "'b' 2 'x' '' 5 'b' null");
    EXPECT_EQ(value("Switch(False, 1, 3 > 2, 2), Switch(False, 1)"), "2 null");
    EXPECT_EQ(value("Switch(True, 1, 2)").substr(0, 5), "#3075");
    EXPECT_EQ(run("SELECT Nz(iColor, 0), Nz(tMade) FROM tblLayer WHERE ixLayer = 3"), "30 #12/30/1899#");
    // What is not chosen is not computed.
    EXPECT_EQ(value("IIf(True, 1, 1 / 0)"), "1");
}

TEST_F(FunctionsTest, DatesAndTheirParts) {
    EXPECT_EQ(value("Year(#7/4/2010#), Month('7/4/2010'), Day(40363), Hour(#13:45:30#), Minute(#13:45:30#), "
                    "Second(#13:45:30#), Weekday(#7/4/2010#), Weekday(#7/4/2010#, 2)"),
              "2010 7 4 13 45 30 1 7");
    EXPECT_EQ(
        value("DateSerial(2010, 14, 0), DateSerial(29, 1, 1), DateSerial(30, 1, 1), TimeSerial(13, 75, 0)"),
        "#1/31/2011# #1/1/2029# #1/1/1930# #2:15:00 PM#");
    EXPECT_EQ(value("DateSerial(9999, 13, 1)").substr(0, 5), "#3001");
    EXPECT_EQ(value("DateSerial(2010, 99999999, 1)").substr(0, 5), "#3001");
    EXPECT_EQ(value("DatePart('q', #7/4/2010#), DatePart('y', #2/1/2010#), DatePart('ww', #1/3/2010#), "
                    "DatePart('ww', #1/3/2010#, 2, 2), DatePart('w', #7/4/2010#)"),
              "3 32 2 53 1");
    EXPECT_EQ(value("DateValue(Now()) = Date(), Now() - Date() - Time() < 0.001, Date() > #1/1/2020#"),
              "yes yes yes");
    EXPECT_EQ(value("Year(Null), Year('never')").substr(0, 5), "#3464");
}

TEST_F(FunctionsTest, DistancesOfDates) {
    EXPECT_EQ(value("DateAdd('m', 1, #1/31/2011#), DateAdd('yyyy', -1, #2/29/2012#), DateAdd('q', 1, "
                    "#11/30/2010#), DateAdd('ww', 2, #7/4/2010 6:00#)"),
              "#2/28/2011# #2/28/2011# #2/28/2011# #7/18/2010 6:00:00 AM#");
    EXPECT_EQ(
        value("DateAdd('h', -1, #7/4/2010#), DateAdd('s', 90, #23:59:00#), DateAdd('d', -1, #1/1/1900 "
              "6:00#), DateAdd('n', -30, #12/30/1899#)"),
        "#7/3/2010 11:00:00 PM# #12/31/1899 12:00:30 AM# #12/31/1899 6:00:00 AM# #12/29/1899 11:30:00 PM#");
    EXPECT_EQ(value("DateAdd('yyyy', 99999, #1/1/2010#)").substr(0, 5), "#3001");
    EXPECT_EQ(value("DateAdd('x', 1, #1/1/2010#)").substr(0, 5), "#3001");
    EXPECT_EQ(value("DateDiff('yyyy', #12/31/2009#, #1/1/2010#), DateDiff('m', #1/31/2010#, #2/1/2010#), "
                    "DateDiff('d', #7/4/2010 23:00#, #7/5/2010 1:00#), "
                    "DateDiff('h', #7/4/2010 23:59#, #7/5/2010 0:01#), DateDiff('ww', #7/3/2010#, "
                    "#7/4/2010#), DateDiff('w', #7/1/2010#, #7/14/2010#), "
                    "DateDiff('s', #7/5/2010#, #7/4/2010#)"),
              "1 1 1 1 1 1 -86400");
}

TEST_F(FunctionsTest, FormatOfNumbers) {
    EXPECT_EQ(value("Format(1234.5, '0.00'), Format(1234567.891, '#,##0.00'), Format(0.125, '0%'), "
                    "Format(12, '00000'), Format(0.5, '#.##'), Format(5, '#.##')"),
              "'1234.50' '1,234,567.89' '13%' '00012' '.5' '5.'");
    EXPECT_EQ(
        value("Format(1234.5, 'Fixed'), Format(1234.5, 'standard'), Format(0.5, 'Percent'), Format(-1234.5, "
              "'Currency'), Format(12345, 'Scientific'), Format(True, 'Yes/No'), Format(0, 'On/Off')"),
        "'1234.50' '1,234.50' '50.00%' '($1,234.50)' '1.23E+04' 'Yes' 'Off'");
    EXPECT_EQ(value("Format(2.675, '0.00'), Format(999.995, '0.00'), Format(-0.001, '0.00'), Format(-2, "
                    "'0;(0);zero'), Format(0, '0;(0);zero'), Format(0.00012, '0.0E-0')"),
              "'2.68' '1000.00' '0.00' '(2)' 'zero' '1.2E-4'");
    EXPECT_EQ(value("Format(1234567, '#,##0,'), Format(5, '\"no. \"0'), Format(1234, '000-00'), Format(7, "
                    "'\\x0'), Format(1E300, '0') = '1' & String(300, '0')"),
              "'1,235' 'no. 5' '012-34' 'x7' yes");
    EXPECT_EQ(value("Format(0, '#'), Format(0, '#.#'), Format(0, '0.0#'), Format(1234567, ',0'), Format(12, "
                    "''), Format(Null, '0'), Format('12.5', '0'), Format('abc', '0'), Format('abc', '>')"),
              "'' '.' '0.0' '1234567' '12' '' '13' 'abc' 'ABC'");
}

TEST_F(FunctionsTest, FormatOfDates) {
    EXPECT_EQ(value("MonthName(1), MonthName(12, True), WeekdayName(1), WeekdayName(7, True, 2), "
                    "WeekdayName(2, False, 0)"),
              "'January' 'Dec' 'Sunday' 'Sun' 'Monday'");
    EXPECT_EQ(value("MonthName(13)").substr(0, 5), "#3001");
    EXPECT_EQ(value("WeekdayName(1, False, 8)").substr(0, 5), "#3001");
    EXPECT_EQ(value("Format(#7/4/2010 15:05:09#, 'yyyy-mm-dd hh:nn:ss'), Format(#7/4/2010#, 'd mmm yy'), "
                    "Format(#7/4/2010#, 'dddd, mmmm d'), Format(#7/4/2010 15:05#, 'h:mm am/pm')"),
              "'2010-07-04 15:05:09' '4 Jul 10' 'Sunday, July 4' '3:05 pm'");
    EXPECT_EQ(value("Format(#7/4/2010 15:05#, 'Short Date'), Format(#7/4/2010#, 'Medium Date'), "
                    "Format(#7/4/2010 15:05#, 'Long Time'), Format(#7/4/2010 15:05#, 'short time'), "
                    "Format(#7/4/2010#), Format(40363, 'yyyy'), Format('7/4/2010', 'ddd')"),
              "'7/4/2010' '04-Jul-10' '3:05:00 PM' '15:05' '7/4/2010' '2010' 'Sun'");
    EXPECT_EQ(value("Format(#7/4/2010#, 'q \"of\" yyyy \\d y w ww'), Format(#7/4/2010#, '0.0')"),
              "'3 of 2010 d 185 1 28' '40363.0'");
    EXPECT_EQ(run("SELECT Format(tMade, 'yyyymmdd') FROM tblLayer WHERE ixLayer < 4"),
              "'20100704'\n'20100705'\n''");
}

TEST_F(FunctionsTest, CollationOrdersTextsAtOddAddresses) {
    // A number of one byte in front puts the following text at an odd place in its record.
    execute("CREATE TABLE odd (a INTEGER, s TEXT COLLATE TESSARY_TEXT, UNIQUE (a, s))");
    const std::string common(200, 'x');
    for (const char* end : {"b", "A", "aB", ""})
        execute("INSERT INTO odd VALUES (5, '" + common + end + "')");
    sqlite3_stmt* statement = nullptr;
    sqlite3_prepare_v2(connection_,
                       "SELECT group_concat(substr(s, 201), '<') FROM (SELECT s FROM odd ORDER BY a, s)", -1,
                       &statement, nullptr);
    ASSERT_EQ(sqlite3_step(statement), SQLITE_ROW);
    EXPECT_STREQ(reinterpret_cast<const char*>(sqlite3_column_text(statement, 0)), "<A<aB<b");
    sqlite3_finalize(statement);
    EXPECT_EQ(sqlite3_exec(connection_, ("INSERT INTO odd VALUES (5, '" + common + "AB')").c_str(), nullptr,
                           nullptr, nullptr),
              SQLITE_CONSTRAINT);
}

}  // namespace tessary::server
