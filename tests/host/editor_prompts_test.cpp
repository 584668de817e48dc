// What prompts make of answers: keywords, typed texts, excluded values, and asking again.

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

#include "host/editor/prompts.h"
#include "host/editor/terminal_input.h"
#include "host/editor/typed_text.h"

using namespace drafthost::editor;
using Kind = InputRequest::Kind;

namespace {

// A drafter at a terminal who types the given lines.
class PromptTest : public testing::Test, public PromptSurroundings {
protected:
    InputResult ask(Kind kind, std::vector<std::string> typed) {
        typed_ = std::move(typed);
        next_ = 0;
        shown_.clear();
        InputRequest request;
        request.kind = kind;
        request.prompt = L"? ";
        const InputResult result = prompts_.ask(request);
        commandLine_.flush();
        return result;
    }

    InputSource& source() override { return terminal_; }
    CommandLine& commandLine() override { return commandLine_; }
    bool stopped() const override { return stopped_; }
    AcGeMatrix3d worldToUcs() const override { return AcGeMatrix3d::translation({-100, 0, 0}); }
    double angleBase() const override { return std::numbers::pi / 2; }
    LengthUnits lengthUnits() const override { return units_; }
    std::optional<Answer> evaluateTyped(const std::wstring& text) override {
        if (text == L"!real") {
            Answer answer = Answer::of(Answer::Kind::Real);
            answer.number = 45;
            return answer;
        }
        if (text != L"!p")
            return std::nullopt;
        return Answer::ofPoint(Answer::Kind::Point, {7, 8, 9});
    }

    LengthUnits units_ = LengthUnits::Decimal;
    bool stopped_ = false;
    std::vector<std::string> typed_;
    std::size_t next_ = 0;
    std::string shown_;
    CommandLine commandLine_{[this](std::string_view bytes) { shown_ += bytes; }};
    LineReader lines_{[this]() -> std::optional<std::string> {
        return next_ < typed_.size() ? std::optional(typed_[next_++]) : std::nullopt;
    }};
    TerminalInput terminal_{lines_, commandLine_, true};
    Prompts prompts_{*this};
};

TEST_F(PromptTest, AsksAgainUntilTheTypedTextFits) {
    const InputResult result = ask(Kind::Integer, {"abc", "1.5", "40000", "12"});
    EXPECT_EQ(result.status, RTNORM);
    EXPECT_EQ(result.integer, 12);
    EXPECT_EQ(shown_, "? abc\nRequires an integer value.\n? 1.5\nRequires an integer value.\n? 40000\n"
                      "Requires an integer between -32768 and 32767.\n? 12\n");
}

TEST_F(PromptTest, ExcludesWhatInitGetForbidsOnceOnly) {
    prompts_.initGet(RSG_NONULL | RSG_NOZERO | RSG_NONEG, L"");
    EXPECT_EQ(ask(Kind::Real, {"", "0", "-1", "2"}).number, 2);
    EXPECT_EQ(ask(Kind::Real, {"-1"}).number, -1);
    EXPECT_EQ(ask(Kind::Real, {""}).status, RTNONE);
}

TEST_F(PromptTest, AnEndedInputCancelsWhereAnEmptyResponseIsForbidden) {
    prompts_.initGet(RSG_NONULL, L"Yes No");
    EXPECT_EQ(ask(Kind::Keyword, {}).status, RTCAN);
}

TEST_F(PromptTest, TakesKeywordsByTheirCapitalsAndKeepsThemForTheCaller) {
    prompts_.initGet(0, L"Yes eXit LType,LT");
    const InputResult result = ask(Kind::Point, {"x"});
    EXPECT_EQ(result.status, RTKWORD);
    EXPECT_EQ(result.text, L"eXit");
    EXPECT_EQ(prompts_.lastInput(), L"eXit");
    prompts_.initGet(0, L"Yes eXit LType,LT");
    EXPECT_EQ(ask(Kind::Keyword, {"q", "lt"}).text, L"LType");
    EXPECT_EQ(shown_, "? q\nInvalid option keyword.\n? lt\n");
}

TEST_F(PromptTest, ArbitraryTextPassesOnlyWhenAskedFor) {
    prompts_.initGet(RSG_OTHER, L"");
    const InputResult result = ask(Kind::Point, {"somewhere"});
    EXPECT_EQ(result.status, RTKWORD);
    EXPECT_EQ(prompts_.lastInput(), L"somewhere");
    EXPECT_EQ(ask(Kind::Point, {"somewhere", "1,2"}).status, RTNORM);
}

TEST_F(PromptTest, RelativePointsStartAtTheLastOne) {
    ask(Kind::Point, {"10,20,5"});
    const AcGePoint3d relative = ask(Kind::Point, {"@1,2"}).point;
    EXPECT_TRUE(relative.isEqualTo({11, 22, 5}));
    const AcGePoint3d polar = ask(Kind::Point, {"@2<90"}).point;
    EXPECT_TRUE(polar.isEqualTo({11, 24, 5}, {1e-9, 1e-9}));
    EXPECT_TRUE(ask(Kind::Point, {"*101,2"}).point.isEqualTo({1, 2, 0}));
    EXPECT_TRUE(ask(Kind::Point, {"!p"}).point.isEqualTo({7, 8, 9}));
}

TEST_F(PromptTest, DistancesAndAnglesCanBeShownByTwoPoints) {
    EXPECT_DOUBLE_EQ(ask(Kind::Distance, {"1,1", "4,5"}).number, 5);
    EXPECT_NEAR(ask(Kind::Angle, {"0,0", "0,3"}).number, std::numbers::pi / 2, 1e-12);
    EXPECT_NEAR(ask(Kind::Angle, {"90"}).number, std::numbers::pi / 2, 1e-12);
    EXPECT_NEAR(ask(Kind::Orientation, {"90"}).number, std::numbers::pi, 1e-12);
}

TEST_F(PromptTest, NumbersOfExpressionsAreDegreesWhereAnAngleIsWaitedFor) {
    EXPECT_NEAR(ask(Kind::Angle, {"!real"}).number, std::numbers::pi / 4, 1e-12);
    EXPECT_DOUBLE_EQ(ask(Kind::Distance, {"!real"}).number, 45);
    EXPECT_DOUBLE_EQ(ask(Kind::Distance, {"!p", "0,0"}).number, std::hypot(7, 8, 9));
}

TEST_F(PromptTest, FractionsAreLengthsAndFeetOnlyInTheirUnits) {
    EXPECT_DOUBLE_EQ(ask(Kind::Real, {"1/0", "-1/2"}).number, -0.5);
    EXPECT_TRUE(ask(Kind::Point, {"1/2,2-1/4"}).point.isEqualTo({0.5, 2.25, 0}));
    EXPECT_DOUBLE_EQ(ask(Kind::Distance, {"1'6-1/2\"", "7"}).number, 7);
    units_ = LengthUnits::FeetAndInches;
    EXPECT_DOUBLE_EQ(ask(Kind::Distance, {"1'6-1/2\""}).number, 18.5);
    EXPECT_TRUE(ask(Kind::Point, {"1',6\""}).point.isEqualTo({12, 6, 0}));
    EXPECT_TRUE(ask(Kind::Point, {"@1'<180"}).point.isEqualTo({0, 6, 0}, {1e-9, 1e-9}));
}

TEST_F(PromptTest, AKeywordPromptWithoutKeywordsDoesNotWaitForWhatCannotCome) {
    EXPECT_EQ(ask(Kind::Keyword, {"anything"}).status, RTERROR);
    EXPECT_EQ(shown_, "");
    EXPECT_EQ(ask(Kind::Integer, {"5"}).integer, 5);
}

TEST_F(PromptTest, EscEndsEveryKindOfPromptAndItsInitGet) {
    for (const Kind kind :
         {Kind::Point, Kind::Corner, Kind::Distance, Kind::Angle, Kind::Orientation, Kind::Integer,
          Kind::Real, Kind::Text, Kind::Keyword, Kind::Entity, Kind::Selection}) {
        prompts_.initGet(RSG_NONULL | RSG_NOZERO, L"Yes No");
        EXPECT_EQ(ask(kind, {"\x1b"}).status, RTCAN);
        EXPECT_EQ(shown_.substr(shown_.size() - 9), "*Cancel*\n");
        if (kind != Kind::Text) {
            EXPECT_EQ(ask(Kind::Integer, {"0"}).status, RTNORM) << "initget outlived its prompt";
        }
    }
    EXPECT_EQ(ask(Kind::Angle, {"0,0", "\x1b"}).status, RTCAN);
}

TEST_F(PromptTest, NothingIsAskedAfterAnInterrupt) {
    stopped_ = true;
    prompts_.initGet(0, L"Yes No");
    EXPECT_EQ(ask(Kind::Keyword, {"Yes"}).status, RTCAN);
    EXPECT_EQ(next_, 0u) << "an answer was taken";
    stopped_ = false;
    EXPECT_EQ(ask(Kind::Point, {"Yes", "1,2"}).status, RTNORM) << "the keywords outlived the interrupt";
}

TEST_F(PromptTest, ABlankEndsATextUnlessBlanksBelongToIt) {
    EXPECT_EQ(ask(Kind::Text, {"one two"}).text, L"one");
    typed_ = {"one two"};
    next_ = 0;
    InputRequest request;
    request.kind = Kind::Text;
    request.allowBlanks = true;
    EXPECT_EQ(prompts_.ask(request).text, L"one two");
}

TEST(Keywords, LanguageIndependentNamesFollowTheUnderscore) {
    const Keywords keywords(L"Oui Non _Yes No");
    EXPECT_EQ(keywords.match(L"o"), L"Yes");
    EXPECT_EQ(keywords.match(L"non"), L"No");
    EXPECT_EQ(keywords.match(L"_No"), L"No");
    EXPECT_EQ(keywords.match(L"z"), std::nullopt);
}

struct TypedAngle {
    const wchar_t* text;
    std::optional<double> degrees;
};
class TypedAngles : public testing::TestWithParam<TypedAngle> {};

TEST_P(TypedAngles, AreUnderstoodInAllTheirUnits) {
    const auto radians = typedAngle(GetParam().text);
    ASSERT_EQ(radians.has_value(), GetParam().degrees.has_value());
    if (radians) {
        EXPECT_NEAR(*radians * 180 / std::numbers::pi, *GetParam().degrees, 1e-9);
    }
}

INSTANTIATE_TEST_SUITE_P(Texts, TypedAngles,
                         testing::Values(TypedAngle{L"45", 45}, TypedAngle{L"100g", 90},
                                         TypedAngle{L"10d30'36\"", 10.51}, TypedAngle{L"-10d30'", -10.5},
                                         TypedAngle{L"10d", 10}, TypedAngle{L"1x", std::nullopt},
                                         TypedAngle{L"", std::nullopt}, TypedAngle{L"10d30", std::nullopt}));

TEST(TypedPoint, RefusesWhatIsNoPoint) {
    for (const wchar_t* text : {L"1", L"1,", L",1", L"1,2,3,4", L"1<x", L"@,", L"0x10,1", L"inf,1", L"1 2"}) {
        EXPECT_FALSE(typedPoint(text, {}, {}))
            << std::string(text, text + std::char_traits<wchar_t>::length(text));
    }
}

}  // namespace
