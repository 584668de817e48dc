// Straight bodies, transitions, skins and hangers: what the solid class is asked for.

#include "tests/module/duct_fittings.h"

namespace tessary::testing {

namespace {

class DuctBodies : public DuctFittings {};

TEST_F(DuctBodies, straightBodyHasTheOuterSizeAndIsCutBack) {
    // 10 + 2 * 1 + 2 * 0.5 = 13 wide, 14 - 3 = 11 high: of the negative height the absolute value counts.
    // Its right top edge is drawn.
    EXPECT_EQ("<Entity name: ", runLisp({"(qn_qn-drawTripleCenter nil 5 (list 0 0 0 100.0 0 0 0 2.0 3 10 -14 "
                                         "\"Rd\" 1 0.5 \"r\" \"t\" 0 0))"})
                                    .at(0)
                                    .substr(0, 14));
    EXPECT_EQ(takeCalls(), Lines{"add (2 -6.5 -5.5) round 13x11 [x(1 0 0) y(0 1 0)] > (97 -6.5 -5.5) round "
                                 "13x11 [same] flags 5"});
}

// Of a run along X, 20 wide and 10 high: where the centre of the body lies.
TEST_F(DuctBodies, justificationMovesTheCentreAlongTheSection) {
    struct Case {
        const char* values;  // horizontal, vertical, raised, raise
        const char* center;
    };
    const std::vector<Case> cases = {
        {R"("" "" 0 1)", "(0 0 0)"},     {R"("r" "" 0 1)", "(0 -10 0)"}, {R"("l" "" 0 1)", "(0 10 0)"},
        {R"("R" "T" 1 1)", "(0 0 0)"},   {R"("c" "m" 1 1)", "(0 0 0)"},  {R"("" "t" 1 1)", "(0 0 -5)"},
        {R"("" "b" 1 1)", "(0 0 5)"},    {R"("" "h" 0 1)", "(0 0 5)"},   {R"("" "h" 1 2.5)", "(0 0 7.5)"},
        {R"("" "h" -1 -5)", "(0 0 0)"},  {R"("" "H" 1 1)", "(0 0 0)"},   {R"("l" "t" 0 1)", "(0 10 -5)"},
        {R"("rr" "b " 0 1)", "(0 0 0)"},
    };
    for (const Case& one : cases) {
        runLisp({std::string("(qn_qn-drawTripleCenter nil 0 (list 0 0 0 9 0 0 0 0 0 20 10 \"RC\" 0 0 ") +
                 one.values + "))"});
        const Lines calls = takeCalls();
        ASSERT_EQ(1u, calls.size()) << one.values;
        EXPECT_TRUE(calls[0].starts_with(std::string("add ") + one.center + " ")) << one.values << calls[0];
    }
    // The axes are the run's own: along Y, left is towards -X.
    runLisp({R"((qn_qn-drawTripleCenter nil 0 (list 0 0 0 0 9 0 0 0 0 20 10 "RC" 0 0 "l" "b" 0 1)))"});
    EXPECT_EQ("add (-10 0 5) ", takeCalls().at(0).substr(0, 14));
}

TEST_F(DuctBodies, setbacksMayLengthenTheBodyOrTurnItRound) {
    const auto body = [&](const std::string& length, const std::string& setbacks) {
        runLisp({"(qn_qn-drawTripleCenter nil 0 (list 0 0 0 " + length + " 0 0 0 " + setbacks +
                 " 2 2 \"RC\" 0 0 \"\" \"\" 0 1))"});
        const Lines calls = takeCalls();
        return calls.empty() ? "" : calls.at(0);
    };
    EXPECT_EQ("add (-1 0 0) box 2x2 " + alongX + " > (11 0 0) box 2x2 [same] flags 0", body("10", "-1 -1"));
    EXPECT_EQ("add (7 0 0) box 2x2 " + alongX + " > (4 0 0) box 2x2 [same] flags 0", body("10", "7 6"));
    EXPECT_EQ("", body("10", "5 5"));
    EXPECT_EQ("", body("10", "4 5.991"));
    EXPECT_EQ("add (4 0 0) ", body("10", "4 5.98").substr(0, 12));
    EXPECT_EQ("", body("0.009", "-5 -5"));
    EXPECT_EQ("add (-5 0 0) ", body("0.011", "-5 -5").substr(0, 13));
}

// What the LISP function returns counts only when it is a point in space.
TEST_F(DuctBodies, drawnPointsAreConvertedByLisp) {
    const std::string draw =
        "(qn_qn-drawTripleCenter T 0 (list 0 0 0 9 0 0 -3 0 0 2 2 \"RC\" 0 0 \"\" \"b\" 0 1))";
    const std::vector<std::pair<std::string, std::string>> cases = {
        {"(defun convert_rp_dp (point code) (list (car point) (float code) 7.0))", "(0 -3 8)"},
        {"(defun convert_rp_dp (point code) (list (car point) 5.0))", "(0 0 1)"},
        {"(defun convert_rp_dp (point code) '(1 2 3))", "(0 0 1)"},
        {"(defun convert_rp_dp (point code) nil)", "(0 0 1)"},
        {"(defun convert_rp_dp (point code) (exit))", "(0 0 1)"},
        {"(defun convert_rp_dp (point) point)", "(0 0 1)"},
        {"(setq convert_rp_dp nil)", "(0 0 1)"},
    };
    for (const auto& [definition, center] : cases) {
        runLisp({definition, draw});
        const Lines calls = takeCalls();
        ASSERT_EQ(1u, calls.size()) << definition;
        EXPECT_TRUE(calls[0].starts_with("add " + center + " ")) << definition << calls[0];
    }
    EXPECT_EQ("0",
              runLisp({"(setq calls 0)", "(defun convert_rp_dp (point code) (setq calls (1+ calls)) point)",
                       "(qn_qn-drawTripleCenter nil 0 " + run("0 0 0", "9 0 0", "2 2") + ")", "(+ 0 calls)"})
                  .at(3));
}

// The frame is that of the converted points; whether the run is vertical is seen by the drawn ones.
TEST_F(DuctBodies, convertedRunKeepsWhetherItIsVertical) {
    const Lines printed = runLisp({"(defun convert_rp_dp (point code) (list (caddr point) 0.0 (car point)))",
                                   "(qn_qn-getTripleCoord " + run("0 0 0", "0 0 9", "2 2") + ")",
                                   "(qn_qn-getTripleCoord " + run("0 0 0", "9 0 0", "2 2") + ")"});
    // Along X with the third axis along X: no axis is left for the width.
    EXPECT_EQ("((1.0 0.0 0.0) (0.0 0.0 0.0) (1.0 0.0 0.0))", printed.at(1));
    // Along Z, with the width where a plan angle of zero puts it.
    EXPECT_EQ("((0.0 0.0 1.0) (1.7949e-09 1.0 ", printed.at(2).substr(0, 31));
}

TEST_F(DuctBodies, refusedStraightBodyLeavesNothing) {
    recorder.refusals["add"] = -1;
    const Lines printed =
        runLisp({"(qn_qn-drawTripleCenter nil 0 " + run("0 0 0", "9 0 0", "1 1") + ")", R"((ssget "X"))"});
    EXPECT_EQ(printed, (Lines{"nil", "nil"}));
    EXPECT_EQ(1u, takeCalls().size());
    EXPECT_EQ(0, recorder.living);
}

TEST_F(DuctBodies, transitionRunsFromTheFirstEndToBehindTheSecondStart) {
    const std::string runs = run("0 0 0", "50 0 0", "10 8", "rd") + run("50 0 0", "50 90 0", "16 8", "Rd");
    // By the test for transitions "Rd" is a box: half of the larger difference, 3, over the tangent of 15
    // degrees is 11.1962, which is more than half of 10.
    const std::string result = R"(((("en1" . DRAWN) ("dHeadLength" . 0.0) ("dTailLength" . 11.1962)) 1))";
    EXPECT_EQ(result, fitting("drawTripleTransition", "nil 1 " + runs));
    EXPECT_EQ(takeCalls(),
              Lines{"add (50 0 0) round 10x8 [x(1 0 0) y(0 1 0)] > (50 11.1962 0) box 16x8 [x(0 1 0) "
                    "y(-1 0 0)] flags 1"});
    // Also when the solid refuses it: what is drawn is an empty solid.
    recorder.refusals["add"] = -1;
    EXPECT_EQ(result, fitting("drawTripleTransition", "nil 1 " + runs));
}

TEST_F(DuctBodies, skinTakesThePointsUpToTheFirstOtherValue) {
    const std::string drawn = R"(((("en" . DRAWN)) 1))";
    EXPECT_EQ(drawn,
              fitting("drawTripleSkin", R"(0.5 '((0.0 0.0) (4.0 0.0 1.0) (4.0 3.0 2.0) "x" (9.0 9.0)))"));
    EXPECT_EQ(drawn, fitting("drawTripleSkin", "-1 '(0.0 0.0) '(4.0 0.0) 1.0 2.0 3.0"));
    EXPECT_EQ(drawn, fitting("drawTripleSkin", "2"));
    EXPECT_EQ(takeCalls(),
              (Lines{"skin (0 0 0) (4 0 1) (4 3 2) 0.5", "skin (0 0 0) (4 0 0) (1 2 3) -1", "skin 2"}));
    recorder.refusals["skin"] = -1;
    expectNothing(fitting("drawTripleSkin", "2 '((0.0 0.0))"));
}

TEST_F(DuctBodies, refusedUnionErasesNothing) {
    const std::string draw = "(qn_qn-drawTripleCenter nil 0 " + run("0 0 0", "9 0 0", "1 1") + ")";
    const Lines lines = {"(setq a " + draw + " b " + draw + ")", "(qn_qn-tripleUnion a b)",
                         R"((sslength (ssget "X")))", "(qn_qn-tripleUnion a b)", R"((sslength (ssget "X")))"};
    recorder.refusals["union"] = 1;
    const Lines printed = runLisp(lines);
    EXPECT_EQ(Lines(printed.begin() + 1, printed.end()), (Lines{"nil", "2", "nil", "1"}));
}

class DuctHangers : public DuctFittings {
protected:
    // Of a duct along X, 20 x 10, at z = 100; rods of 0.5, a bar or band of 2.
    static std::string trapeze(const std::string& elevation) {
        return "nil '(50.0 7.0 100.0) 0 20 10 nil 0.5 2 " + elevation + " 3";
    }
};

const std::string drawnHanger = R"(((("hanger" . DRAWN)) 1))";
const std::string bar = "add (49.5 7 94) box 22x2 [x(1 0 0) y(0 1 0)] > (50.5 7 94) box 22x2 [same] flags 3";
const std::string upward = " [x(0 0 1) y(-1 0 0)]";

TEST_F(DuctHangers, trapezeHangsOnTwoRods) {
    EXPECT_EQ(drawnHanger, fitting("drawHanger", trapeze("150")));
    EXPECT_EQ(
        takeCalls(),
        (Lines{"add (50 -3.5 95) round 0.5x0.5" + upward + " > (50 -3.5 150) round 0.5x0.5 [same] flags 3",
               "add (50 17.5 95) round 0.5x0.5" + upward + " > (50 17.5 150) round 0.5x0.5 [same] flags 3",
               bar, "hanger"}));
}

// The second rod starts at the top of the bar in either direction.
TEST_F(DuctHangers, trapezeStandsOnTwoRods) {
    EXPECT_EQ(drawnHanger, fitting("drawHanger", trapeze("0")));
    EXPECT_EQ(
        takeCalls(),
        (Lines{"add (50 -3.5 93) round 0.5x0.5 [x(0 0 -1) y(1 0 0)] > (50 -3.5 0) round 0.5x0.5 [same] "
               "flags 3",
               "add (50 17.5 95) round 0.5x0.5" + upward + " > (50 17.5 0) round 0.5x0.5 [same] flags 3", bar,
               "hanger"}));
}

TEST_F(DuctHangers, barAloneWhenTheRodsWouldEndAtIt) {
    EXPECT_EQ(drawnHanger, fitting("drawHanger", trapeze("93")));
    EXPECT_EQ(drawnHanger, fitting("drawHanger", trapeze("95")));
    EXPECT_EQ(takeCalls(), (Lines{bar, "hanger", bar, "hanger"}));
}

TEST_F(DuctHangers, frameTurnsWithTheDuct) {
    EXPECT_EQ(drawnHanger, fitting("drawHanger", "nil '(50.0 7.0 100.0) (/ pi 2) 20 10 nil 0.5 2 93 0"));
    EXPECT_EQ("add (50 6.5 94) box 22x2 " + alongY + " > (50 7.5 94) box 22x2 [same] flags 0",
              takeCalls().at(0));
}

TEST_F(DuctHangers, bandIsCutOutLast) {
    EXPECT_EQ(drawnHanger, fitting("drawHanger", "T 50.0 7.0 100.0 0 12 8 T 1.5 0.25 150 4"));
    EXPECT_EQ(drawnHanger, fitting("drawHanger", "T 50.0 7.0 100.0 0 12 8 nil 1.5 0.25 100 4"));
    const std::string frame = " [x(1 0 0) y(0 1 0)]";
    EXPECT_EQ(
        takeCalls(),
        (Lines{"add (49.25 7 100) box 12.5x8.5" + frame + " > (50.75 7 100) box 12.5x8.5 [same] flags 4",
               "add (50 7 104) round 1.5x1.5" + upward + " > (50 7 150) round 1.5x1.5 [same] flags 4",
               "subtract (49.25 7 100) box 12.05x8.05" + frame +
                   " > (50.75 7 100) box 12.05x8.05 [same] flags 4",
               "hanger",
               "add (49.25 7 100) round 12.5x8.5" + frame + " > (50.75 7 100) round 12.5x8.5 [same] flags 4",
               "add (50 7 96) round 1.5x1.5 [x(0 0 -1) y(1 0 0)] > (50 7 100) round 1.5x1.5 [same] flags 4",
               "subtract (49.25 7 100) round 12.05x8.05" + frame +
                   " > (50.75 7 100) round 12.05x8.05 [same] flags 4",
               "hanger"}));
    // The rod ends where it would begin.
    fitting("drawHanger", "T 50.0 7.0 100.0 0 12 8 T 1.5 0.25 96 4");
    fitting("drawHanger", "T 50.0 7.0 100.0 0 12 8 T 1.5 0.25 104 4");
    EXPECT_EQ(6u, takeCalls().size());
}

TEST_F(DuctHangers, refusalOfAnyBodyLeavesNothing) {
    for (int step = 1; step <= 3; ++step) {
        recorder.refuseAt = {"add", step};
        expectNothing(fitting("drawHanger", trapeze("150")));
    }
    for (int step = 1; step <= 2; ++step) {
        recorder.refuseAt = {"add", step};
        expectNothing(fitting("drawHanger", "T 50.0 7.0 100.0 0 12 8 T 1.5 0.25 150 4"));
    }
    recorder.refuseAt = {"subtract", 1};
    expectNothing(fitting("drawHanger", "T 50.0 7.0 100.0 0 12 8 T 1.5 0.25 150 4"));
}

}  // namespace

}  // namespace tessary::testing
