#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "host/exchange/dxf_input.h"
#include "host/exchange/dxf_numbers.h"
#include "host/exchange/dxf_structure.h"
#include "host/exchange/text_encoding.h"

using namespace drafthost;
using namespace drafthost::exchange;

namespace {

std::wstring decoded(std::string_view bytes, TextEncoding encoding) {
    bool damaged = false;
    return decodeText(bytes, encoding, damaged);
}

std::vector<DxfTag> tagsOf(std::string_view bytes) {
    bool endMark = false;
    return readTags(bytes, endMark);
}

std::string problemOf(std::string_view bytes) {
    try {
        bool endMark = false;
        const auto tags = readTags(bytes, endMark);
        const DxfStructure structure = structureOf(tags);
        DxfInput input(TextEncoding::Utf8);
        for (const DxfRecord& record : structure.entities)
            input.groups(record.tags);
    } catch (const DxfError& error) {
        return std::to_string(error.line()) + ": " + error.what();
    }
    return "";
}

std::string written(double value) {
    std::string bytes;
    appendReal(bytes, value);
    return bytes;
}

}  // namespace

TEST(ExchangeText, RealsReadBackExactlyAndAlwaysHaveAPoint) {
    EXPECT_EQ(written(0.1), "0.1");
    EXPECT_EQ(written(1), "1.0");
    EXPECT_EQ(written(-250), "-250.0");
    EXPECT_EQ(written(1e22), "1.0E+22");
    for (const double value :
         {1.0 / 3, 6.02e23, 5e-324, std::numeric_limits<double>::max(), -0.0, 123456789.123456789}) {
        const auto back = parseReal(written(value));
        ASSERT_TRUE(back) << value;
        EXPECT_EQ(*back, value);
        EXPECT_EQ(std::signbit(*back), std::signbit(value));
    }
}

TEST(ExchangeText, NumbersThatCannotBeAreRefused) {
    for (const char* text : {"", " ", "abc", "1e999", "-1e999", "nan", "inf", "1,5", "1.5x", "+-1", "0x10"})
        EXPECT_FALSE(parseReal(text)) << text;
    EXPECT_EQ(parseReal(" +1.5 "), 1.5);
    EXPECT_EQ(parseReal("1e-999"), 0.0);
    EXPECT_EQ(parseInteger("  7.0"), 7);
    EXPECT_FALSE(parseInteger("7.5"));
    EXPECT_FALSE(parseInteger("99999999999999999999"));
    EXPECT_FALSE(parseHandle("12345678901234567"));
    EXPECT_FALSE(parseHandle("XYZ"));
    EXPECT_FALSE(parseBinary("ABC"));
}

TEST(ExchangeText, EveryEncodingTurnsTextsBackIntoTheSameBytes) {
    EXPECT_EQ(decoded("\x80 \xE4", TextEncoding::Windows1252), L"\u20AC \u00E4");
    EXPECT_EQ(decoded("\xC3\xA4", TextEncoding::Utf8), L"\u00E4");
    std::string allBytes;
    for (int byte = 1; byte < 256; ++byte)
        if (byte >= 0x20 && byte != '^')
            allBytes += static_cast<char>(byte);
    for (const TextEncoding encoding : {TextEncoding::Windows1252, TextEncoding::Latin1})
        EXPECT_EQ(encodeText(decoded(allBytes, encoding), encoding), allBytes);
}

TEST(ExchangeText, CharactersOutsideTheEncodingAndControlsAreEscaped) {
    EXPECT_EQ(decoded("\\U+2205100 \\U+ZZZZ", TextEncoding::Windows1252), L"\u2205"
                                                                          L"100 \\U+ZZZZ");
    const std::wstring text = L"\u2205 \U0001F600 ^ \n\t";
    for (const TextEncoding encoding :
         {TextEncoding::Utf8, TextEncoding::Windows1252, TextEncoding::Latin1}) {
        const std::string bytes = encodeText(text, encoding);
        EXPECT_EQ(bytes.find('\n'), std::string::npos);
        EXPECT_EQ(decoded(bytes, encoding), text);
    }
}

TEST(ExchangeText, TextThatIsNotUtf8InAUtf8FileIsReadByCodePage) {
    for (const char* bytes :
         {"\xE4", "\xC3", "\xC0\x80", "\xED\xA0\x80", "\xF5\x80\x80\x80", "\xF0\x80\x80\x80"}) {
        bool damaged = false;
        EXPECT_FALSE(decodeText(bytes, TextEncoding::Utf8, damaged).empty());
        EXPECT_TRUE(damaged) << bytes;
    }
}

TEST(ExchangeText, VersionAndCodePageGiveTheEncoding) {
    EXPECT_EQ(encodingOf("AC1021", "ANSI_1252"), TextEncoding::Utf8);
    EXPECT_EQ(encodingOf("AC1032", ""), TextEncoding::Utf8);
    EXPECT_EQ(encodingOf("AC1015", "ansi_1252"), TextEncoding::Windows1252);
    EXPECT_EQ(encodingOf("", ""), TextEncoding::Windows1252);
    EXPECT_EQ(encodingOf("AC1009", "ANSI_1251"), TextEncoding::Latin1);
}

TEST(ExchangeText, LineEndsByteOrderMarkAndCommentsMakeNoDifference) {
    for (const char* file :
         {"0\nSECTION\n2\nHEADER\n0\nENDSEC\n0\nEOF\n",
          "0\r\nSECTION\r\n2\r\nHEADER\r\n0\r\nENDSEC\r\n0\r\nEOF",
          "\xEF\xBB\xBF  0\nSECTION\n999\nremark\n  2\nHEADER\n  0\nENDSEC\n  0\nEOF\n\n\n",
          "0\rSECTION\r2\rHEADER\r0\rENDSEC\r0\rEOF\r"}) {
        bool endMark = false;
        const auto tags = readTags(file, endMark);
        EXPECT_TRUE(endMark);
        ASSERT_EQ(tags.size(), 3u);
        EXPECT_EQ(tags[1].text, "HEADER");
    }
}

TEST(ExchangeText, ProblemsNameTheirLine) {
    EXPECT_EQ(problemOf("0\nSECTION\n2\nENTITIES\n0\nCIRCLE\n40\nabc\n0\nENDSEC\n0\nEOF\n"),
              "8: group 40: real number expected, found \"abc\"");
    EXPECT_EQ(problemOf("0\nSECTION\n2\nENTITIES\nLINE\n"), "5: group code expected, found \"LINE\"");
    EXPECT_EQ(problemOf("0\nSECTION\n2\nENTITIES\n0\nLINE\n62\n70000\n0\nENDSEC\n"),
              "8: group 62: whole number expected, found \"70000\"");
    EXPECT_EQ(problemOf("0\nSECTION\n2\nENTITIES\n0\nLINE\n8"), "7: the file ends inside group 8");
    EXPECT_EQ(problemOf("0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n"),
              "7: the file ends inside section \"ENTITIES\": ENDSEC is missing");
    EXPECT_EQ(problemOf("0\nLINE\n"), "1: SECTION expected, found group 0 \"LINE\"");
    EXPECT_EQ(problemOf("99999999999\nX\n").substr(0, 2), "1:");
}

TEST(ExchangeText, CoordinatesJoinOnlyWhenTheyFollowEachOther) {
    DxfInput input(TextEncoding::Utf8);
    const auto tags = tagsOf("10\n1\n20\n2\n30\n3\n10\n4\n20\n5\n11\n6\n21\n7\n38\n8\n10\n9\n");
    const auto groups = input.groups(tags);
    ASSERT_EQ(groups.size(), 5u);
    EXPECT_EQ(std::get<AcGePoint3d>(groups[0].value).z, 3);
    EXPECT_EQ(std::get<AcGePoint2d>(groups[1].value).y, 5);
    EXPECT_EQ(std::get<AcGePoint2d>(groups[2].value).x, 6);
    EXPECT_EQ(std::get<double>(groups[3].value), 8);
    EXPECT_EQ(std::get<double>(groups[4].value), 9);
}
