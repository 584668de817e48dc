// The contract that every source of answers keeps, and what is special about each.

#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "host/editor/answers_file.h"
#include "host/editor/command_line.h"
#include "host/editor/key_names.h"
#include "host/editor/terminal_input.h"

using namespace drafthost::editor;

namespace {

InputRequest pointRequest() {
    InputRequest request;
    request.kind = InputRequest::Kind::Point;
    return request;
}

// A source that will give two answers, and what it reports.
struct Fixture {
    std::vector<std::wstring> warnings, failures;
    std::string shown;
    CommandLine commandLine{[this](std::string_view bytes) { shown += bytes; }};
    std::vector<std::string> typed;
    std::size_t typedCount = 0;
    LineReader lines{[this]() -> std::optional<std::string> {
        return typedCount < typed.size() ? std::optional(typed[typedCount++]) : std::nullopt;
    }};

    std::unique_ptr<InputSource> scripted(const std::wstring& text) {
        AnswersFileError problem;
        auto answers = parseAnswers(text, L"a.answers", problem);
        EXPECT_EQ(problem.line, 0);
        return std::make_unique<ScriptedDrafter>(
            std::move(answers), L"a.answers",
            [this](const std::wstring& warning) { warnings.push_back(warning); },
            [this](const std::wstring& reason) { failures.push_back(reason); });
    }
    std::unique_ptr<InputSource> terminal(std::vector<std::string> given) {
        typed = std::move(given);
        return std::make_unique<TerminalInput>(lines, commandLine, false);
    }
    std::unique_ptr<InputSource> empty() {
        return std::make_unique<EmptySource>(
            [this](const std::wstring& warning) { warnings.push_back(warning); });
    }
};

struct SourceCase {
    const char* name;
    std::function<std::unique_ptr<InputSource>(Fixture&)> make;
    std::size_t answers;
};

class InputSourceContract : public testing::TestWithParam<SourceCase> {};

TEST_P(InputSourceContract, GivesItsAnswersInOrderAndThenIsExhaustedForGood) {
    Fixture fixture;
    const auto source = GetParam().make(fixture);
    for (std::size_t i = 0; i < GetParam().answers; ++i) {
        EXPECT_NE(source->next(pointRequest()).kind, Answer::Kind::Exhausted) << i;
    }
    for (int again = 0; again < 3; ++again) {
        EXPECT_EQ(source->next(pointRequest()).kind, Answer::Kind::Exhausted);
        EXPECT_EQ(source->nextForBox({L"Title", L"Text", {L"Yes", L"No"}}).kind, Answer::Kind::Exhausted);
    }
    EXPECT_LE(fixture.warnings.size(), 1u);
}

TEST_P(InputSourceContract, NeverShowsAnythingByItselfWhileAsked) {
    Fixture fixture;
    const auto source = GetParam().make(fixture);
    source->next(pointRequest());
    fixture.commandLine.flush();
    EXPECT_EQ(fixture.shown, "");
}

INSTANTIATE_TEST_SUITE_P(
    Sources, InputSourceContract,
    testing::Values(SourceCase{"Scripted", [](Fixture& f) { return f.scripted(L"point 1 2\nenter\n"); }, 2},
                    SourceCase{"Terminal",
                               [](Fixture& f) {
                                   return f.terminal({"1,2", "yes"});
                               },
                               2},
                    SourceCase{"Empty", [](Fixture& f) { return f.empty(); }, 0}),
    [](const auto& instance) { return instance.param.name; });

TEST(ScriptedDrafter, NamesLineAndWhatWasWaitedForWhenAnActionDoesNotFit) {
    Fixture fixture;
    const auto source = fixture.scripted(L"# first\n\npoint 1 2\n");
    InputRequest request;
    request.kind = InputRequest::Kind::Integer;
    const Answer answer = source->next(request);
    EXPECT_FALSE(source->refuse(answer, describe(request), L"Requires an integer value."));
    ASSERT_EQ(fixture.failures.size(), 1u);
    EXPECT_EQ(fixture.failures[0], L"a.answers line 3: the action \"point\" does not fit: the host waits for "
                                   L"an integer (Requires an integer value.)");
}

TEST(ScriptedDrafter, SaysThatNoDialogIsWaitingForADialogAction) {
    Fixture fixture;
    const auto source = fixture.scripted(L"type #1001 abc\n");
    source->refuse(source->next(pointRequest()), L"a point", L"");
    ASSERT_EQ(fixture.failures.size(), 1u);
    EXPECT_NE(fixture.failures[0].find(L"no dialog is waiting"), std::wstring::npos);
}

struct BadLine {
    const wchar_t* line;
    const wchar_t* message;
};
class UnusableAnswer : public testing::TestWithParam<BadLine> {};

TEST_P(UnusableAnswer, IsReportedWithItsLine) {
    AnswersFileError problem;
    parseAnswers(std::wstring(L"enter\n") + GetParam().line + L"\n", L"a", problem);
    EXPECT_EQ(problem.line, 2);
    EXPECT_EQ(problem.message, GetParam().message);
}

INSTANTIATE_TEST_SUITE_P(
    Lines, UnusableAnswer,
    testing::Values(BadLine{L"pont 1 2", L"there is no action \"pont\""},
                    BadLine{L"point 1", L"the action is written: point X Y [Z]"},
                    BadLine{L"point 1 2 3 4", L"the action is written: point X Y [Z]"},
                    BadLine{L"point 1 x", L"the action is written: point X Y [Z]"},
                    BadLine{L"int 1.5", L"the action is written: int NUMBER"},
                    BadLine{L"real nan", L"the action is written: real NUMBER"},
                    BadLine{L"keyword", L"the action is written: keyword NAME"},
                    BadLine{L"press #x", L"the action is written: press TEXT or press #ID"},
                    BadLine{L"check #5 maybe", L"the action is written: check #ID on or check #ID off"},
                    BadLine{L"cell #5 1", L"the action is written: cell #ID ROW COLUMN TEXT"},
                    BadLine{L"double #5 1 2 x", L"the action is written: double #ID ROW COLUMN"},
                    BadLine{L"show list", L"the action is written: show #ID, or show"},
                    BadLine{L"key Kontrol+A",
                            L"the action is written: key NAME, a key like Tab or Control+Left"},
                    BadLine{L"key F25", L"the action is written: key NAME, a key like Tab or Control+Left"},
                    BadLine{L"screenshot", L"the action is written: screenshot FILE"},
                    BadLine{L"resize 10 0", L"the action is written: resize WIDTH HEIGHT"},
                    BadLine{L"enter now", L"the action is written: enter"}));

TEST(AnswersFile, ReadsEveryActionWithItsValues) {
    AnswersFileError problem;
    const auto actions =
        parseAnswers(L"\xFEFFpoint 1 2 3\r\n  angle 90\nstring a  b # c \nwindow 0 0 4 5\npress #12\n"
                     L"cell #7 2 3 x y\ncheck #8 off\ncell #7 2 3\ndouble #9 4 5\nkey Control+Left\n"
                     L"screenshot a b.png\nresize 300 200\n",
                     L"a", problem);
    ASSERT_EQ(problem.line, 0) << "line " << problem.line;
    ASSERT_EQ(actions.size(), 12u);
    EXPECT_EQ(actions[0].dimension, 3);
    EXPECT_EQ(actions[0].point.z, 3);
    EXPECT_NEAR(actions[1].number, 1.5707963, 1e-6);
    EXPECT_EQ(actions[2].text, L"a  b # c");
    EXPECT_EQ(actions[3].second.y, 5);
    EXPECT_EQ(actions[4].control, 12);
    EXPECT_EQ(actions[5].column, 3);
    EXPECT_EQ(actions[5].text, L"x y");
    EXPECT_FALSE(actions[6].on);
    EXPECT_EQ(actions[6].origin, L"a line 7");
    EXPECT_EQ(actions[7].text, L"");
    EXPECT_EQ(actions[8].column, 5);
    EXPECT_EQ(actions[9].text, L"Control+Left");
    EXPECT_EQ(actions[10].text, L"a b.png");
    EXPECT_EQ(actions[11].height, 200);
}

TEST(KeyNames, AreReadWithTheirModifiers) {
    const auto key = parseKey(L"control+Shift+left");
    ASSERT_TRUE(key);
    EXPECT_EQ(key->virtualKey, 37u);
    EXPECT_TRUE(key->control && key->shift && key->extended);
    EXPECT_FALSE(key->alt);
    EXPECT_EQ(parseKey(L"F12")->virtualKey, 123u);
    EXPECT_EQ(parseKey(L"a")->virtualKey, 65u);
    for (const wchar_t* const name : {L"", L"+", L"Control+", L"F0", L"F1x", L"ab", L"Left+Control"})
        EXPECT_FALSE(parseKey(name)) << name;
}

TEST(TerminalInput, AsksForAButtonOfABoxWithSeveralAndClosesOneWithASingleButton) {
    Fixture fixture;
    const auto source = fixture.terminal({"No"});
    const Answer single = source->nextForBox({L"Note", L"Saved.", {L"OK"}});
    EXPECT_EQ(single.kind, Answer::Kind::Press);
    EXPECT_EQ(single.text, L"OK");
    const Answer chosen = source->nextForBox({L"Save", L"Replace it?", {L"Yes", L"No"}});
    EXPECT_EQ(chosen.text, L"No");
    EXPECT_EQ(fixture.shown, "Note: Saved.\nSave: Replace it? [Yes/No]: ");
}

TEST(CommandLine, KeepsACharacterThatComesInTwoHalvesWhole) {
    std::string shown;
    CommandLine line([&](std::string_view bytes) { shown += bytes; });
    line.write(L"\xD83D");
    line.flush();
    line.write(L"\xDE00!");
    line.flush();
    EXPECT_EQ(shown, "\xF0\x9F\x98\x80!");
}

}  // namespace
