// Wyes and takeoffs: what the solid class is asked for.

#include "tests/module/duct_fittings.h"

namespace tessary::testing {

namespace {

class DuctWyes : public DuctFittings {
protected:
    static std::string runs(const std::string& size1, const std::string& size2,
                            const std::string& shape1 = "RC") {
        return run("0 0 0", "100 0 0", "20 10") + run("100 0 0", "100 90 0", size1, shape1) +
               run("100 0 0", "100 -90 0", size2);
    }
};

TEST_F(DuctWyes, lengthsAreDistancesToTheWyesOwnEnds) {
    recorder.movedPoints = {{80, 0, 0}, {100, 15, 0}, {100, -16, 0}, {100, 0, 0}};
    EXPECT_EQ(R"(((("en1" . DRAWN) ("en2") ("en3") ("dHeadLength" . 20.0) ("dTailLength1" . 15.0) )"
              R"(("dTailLength2" . 16.0)) 1))",
              fitting("drawTripleWye", "nil 3 T 0.75 " + runs("20 10", "12 10")));
    // A branch of the main's height keeps its width.
    EXPECT_EQ(takeCalls(),
              (Lines{"wye? (0 0 0) box 20x10 " + alongX + " > (100 90 0) 20x10 " + alongY +
                         " > (100 -90 0) 12x10 [x(0 -1 0) y(1 0 0)] 1 3",
                     "wye (80 0 0) box 20x10 > (100 15 0) 20x10 > (100 -16 0) 12x10 at (100 0 0) arrays "
                     "123456 flags 3"}));
}

TEST_F(DuctWyes, branchesOfOtherSizesGetTransitions) {
    recorder.movedPoints = {{80, 0, 0}, {100, 15, 0}, {100, -16, 0}};
    const std::string result = fitting("drawTripleWye", "nil 0 nil 0 " + runs("20 6", "12 8"));
    EXPECT_NE(std::string::npos, result.find(R"(("en2" . DRAWN) ("en3" . DRAWN))")) << result;
    const Lines calls = takeCalls();
    // The first one's width is the main's, so that only its height is forced; of the second both are.
    EXPECT_NE(std::string::npos, calls.at(1).find("> (100 15 0) 20x10 > (100 -16 0) 20x10 ")) << calls.at(1);
    // 2 and 4 over the tangent of 15 degrees.
    EXPECT_EQ("add (100 15 0) box 20x10 " + alongY + " > (100 22.4641 0) box 20x6 [same] flags 0",
              calls.at(2));
    EXPECT_EQ("add (100 -16 0) box 20x10 [x(0 -1 0) y(1 0 0)] > (100 -30.9282 0) box 12x8 [same] flags 0",
              calls.at(3));
    // A refused transition does not keep the wye from being drawn.
    recorder.refusals["add"] = -1;
    EXPECT_EQ(result, fitting("drawTripleWye", "nil 0 nil 0 " + runs("20 6", "12 8")));
}

TEST_F(DuctWyes, branchOfAnotherShapeTakesTheMainsSize) {
    recorder.movedPoints = {{80, 0, 0}, {100, 15, 0}, {100, -16, 0}};
    const std::string result = fitting("drawTripleWye", "nil 0 nil 0 " + runs("12 10", "12 10", "RD"));
    EXPECT_NE(std::string::npos, result.find(R"(("en2" . DRAWN) ("en3"))")) << result;
    const Lines calls = takeCalls();
    EXPECT_NE(std::string::npos, calls.at(1).find("> (100 15 0) 20x10 > (100 -16 0) 12x10 ")) << calls.at(1);
    // 4 over the tangent is 14.9282, more than half of 20.
    EXPECT_EQ("add (100 15 0) box 20x10 " + alongY + " > (100 29.9282 0) round 12x10 [same] flags 0",
              calls.at(2));
}

TEST_F(DuctWyes, refusalLeavesNothing) {
    for (const char* const step : {"wye?", "wye"}) {
        recorder.refusals = {{step, -1}};
        expectNothing(fitting("drawTripleWye", "nil 0 nil 0 " + runs("20 6", "12 8")));
    }
}

class DuctTakeoffs : public DuctFittings {
protected:
    static std::string runs(const std::string& branch, const std::string& onward = "20 10") {
        return run("0 0 0", "100 0 0", "20 10") + run("100 0 0", "200 0 0", onward) + branch;
    }
    static std::string result(const std::string& second, const std::string& head, const std::string& tail1,
                              const std::string& tail2, const std::string& tail3, int count = 1) {
        return R"(((("en1" . DRAWN) ("en2")" + second + R"() ("dHeadLength" . )" + head +
               R"() ("dTailLength1" . )" + tail1 + R"() ("dTailLength2" . )" + tail2 +
               R"() ("dTailLength3" . )" + tail3 + ")) " + std::to_string(count) + ")";
    }
};

// Half of the branch's width, 4, and the collar of 3 on both sides; half of the main's width, 10, and the
// collar on the branch.
TEST_F(DuctTakeoffs, branchAtARightAngle) {
    EXPECT_EQ(result("", "7.0", "7.0", "13.0", "0.0"),
              fitting("drawTripleTakeoff", "nil 1 T 0.5 " + runs(run("100 0 0", "100 50 0", "8 6"))));
    EXPECT_EQ(takeCalls(),
              (Lines{"add (93 0 0) box 20x10 " + alongX + " > (107 0 0) box 20x10 [same] flags 1",
                     "add (100 0 0) box 7.99x6 " + alongY + " > (100 13 0) box 7.99x6 [same] flags 1",
                     "slice (93 0 0) (93 1 0) (93 0 1) keep (107 0 0)",
                     "slice (107 0 0) (107 1 0) (107 0 1) keep (93 0 0)", "takeoff"}));
}

// The branch starts 10 off the main's axis and 5 before its end: the body begins on the axis all the same.
TEST_F(DuctTakeoffs, branchThatStartsElsewhere) {
    EXPECT_EQ(result("", "12.0", "2.0", "3.0", "0.0"),
              fitting("drawTripleTakeoff", "nil 0 nil 0 " + runs(run("95 10 0", "95 50 0", "8 10", "OO"))));
    const Lines calls = takeCalls();
    EXPECT_EQ("add (88 0 0) box 20x10 " + alongX + " > (102 0 0) box 20x10 [same] flags 0", calls.at(0));
    // As tall as the main: a thousandth lower.
    EXPECT_EQ("add (95 0 0) round 7.99x9.999 " + alongY + " > (95 13 0) round 7.99x9.999 [same] flags 0",
              calls.at(1));
}

// At 45 degrees: a = 10, b = 4 sqrt 2 = 5.65685, so the opening reaches from 4.34315 behind the axis to
// 15.65685. Before it counts as 0, the second branch's. c = 4 + 10 sqrt 2 = 18.1421.
TEST_F(DuctTakeoffs, slantingBranch) {
    EXPECT_EQ(result("", "3.0", "18.6569", "21.1421", "0.0"),
              fitting("drawTripleTakeoff", "nil 0 nil 0 " + runs(run("100 0 0", "150 50 0", "8 6"))));
    EXPECT_EQ(
        "add (100 0 0) box 7.99x6 [x(0.707107 0.707107 0) y(-0.707107 0.707107 0)] > (114.95 14.9497 0) "
        "box 7.99x6 [same] flags 0",
        takeCalls().at(1));
}

// Straight up: the opening is as long as the branch's height and as deep as the main's.
TEST_F(DuctTakeoffs, branchThroughTheTop) {
    EXPECT_EQ(result("", "6.0", "6.0", "8.0", "0.0"),
              fitting("drawTripleTakeoff", "nil 0 nil 0 " + runs(run("100 0 0", "100 0 50", "8 6"))));
    // Rising at 30 degrees across a main whose diagonal rises at 26.6: through the top too. The branch's
    // width lies along the main: 4 + 3; and 5 + 3 along the branch.
    EXPECT_EQ(result("", "7.0", "7.0", "8.0", "0.0"),
              fitting("drawTripleTakeoff",
                      "nil 0 nil 0 " + runs(run("100 0 0", "100 (* 50 (cos (/ pi 6))) 25", "8 6"))));
    EXPECT_EQ(result("", "7.0", "7.0", "8.0", "0.0"),
              fitting("drawTripleTakeoff",
                      "nil 0 nil 0 " + runs(run("100 0 0", "100 (* 50 (cos (/ pi 6))) -25", "8 6"))));
    // At 25 degrees it leaves through the side.
    EXPECT_EQ(result("", "7.0", "7.0", "13.0", "0.0"),
              fitting("drawTripleTakeoff", "nil 0 nil 0 " + runs(run("100 0 0",
                                                                     "100 (* 50 (cos (* pi (/ 25 180.0)))) "
                                                                     "(* 50 (sin (* pi (/ 25 180.0))))",
                                                                     "8 6"))));
}

// The second one starts 10 before the main's end. Only the last body is cut to the main's length.
TEST_F(DuctTakeoffs, secondBranch) {
    const std::string branches = run("100 0 0", "100 50 0", "8 6") + run("90 0 0", "90 -50 0", "6 6");
    EXPECT_EQ(result("", "17.0", "7.0", "13.0", "13.0"),
              fitting("drawTripleTakeoff", "nil 0 nil 0 " + runs(branches)));
    const Lines calls = takeCalls();
    EXPECT_EQ("add (83 0 0) box 20x10 " + alongX + " > (107 0 0) box 20x10 [same] flags 0", calls.at(0));
    EXPECT_EQ("add (90 0 0) box 5.99x6 [x(0 -1 0) y(1 0 0)] > (90 -13 0) box 5.99x6 [same] flags 0",
              calls.at(2));
    EXPECT_EQ(6u, calls.size());
    // Behind the end: the main reaches on as far.
    EXPECT_EQ(result("", "7.0", "17.0", "13.0", "13.0"),
              fitting("drawTripleTakeoff", "nil 0 nil 0 " + runs(run("100 0 0", "100 50 0", "8 6") +
                                                                 run("110 0 0", "110 -50 0", "6 6"))));
}

TEST_F(DuctTakeoffs, unreadableOrEmptySecondBranchIsNone) {
    const std::string branch = run("100 0 0", "100 50 0", "8 6");
    for (const std::string& second :
         {run("90 0 0", "90 -50 0", "0 6"), std::string("(list 90 0 0 90 -50 0 0 0 0 6 6 nil)"),
          std::string("\"none\"")}) {
        EXPECT_EQ(result("", "7.0", "7.0", "13.0", "0.0"),
                  fitting("drawTripleTakeoff", "nil 0 nil 0 " + runs(branch + second)));
    }
}

// The difference of 4 takes 7.4641; it counts for the main that goes on.
TEST_F(DuctTakeoffs, anotherSizeBehindIsReachedByATransition) {
    const std::string arguments = "nil 0 nil 0 " + runs(run("100 0 0", "100 50 0", "8 6"), "16 10");
    EXPECT_EQ(result(" . DRAWN", "7.0", "14.4641", "13.0", "0.0", 2),
              fitting("drawTripleTakeoff", arguments));
    EXPECT_EQ("add (107 0 0) box 20x10 " + alongX + " > (114.464 0 0) box 16x10 [same] flags 0",
              takeCalls().back());
}

TEST_F(DuctTakeoffs, refusalOfAnyBodyLeavesNothing) {
    const std::string arguments =
        "nil 0 nil 0 " + runs(run("100 0 0", "100 50 0", "8 6") + run("90 0 0", "90 -50 0", "6 6"), "16 10");
    for (int step = 1; step <= 4; ++step) {
        recorder.refuseAt = {"add", step};
        expectNothing(fitting("drawTripleTakeoff", arguments));
    }
    recorder.refuseAt = {};
    recorder.refusals = {{"slice", -1}};
    EXPECT_EQ(result(" . DRAWN", "17.0", "14.4641", "13.0", "13.0", 2),
              fitting("drawTripleTakeoff", arguments));
}

// Also one along a direction in which rounding leaves the angle a little off zero.
TEST_F(DuctTakeoffs, parallelBranchIsNone) {
    expectNothing(fitting("drawTripleTakeoff", "nil 0 nil 0 " + runs(run("100 5 0", "150 5 0", "8 6"))));
    expectNothing(fitting("drawTripleTakeoff", "nil 0 nil 0 " + runs(run("100 5 0", "50 5 0", "8 6"))));
    const std::string skew = run("0 0 0", "71 13 29", "20 10") + run("71 13 29", "142 26 58", "20 10") +
                             run("71 13 29", "92.3 16.9 37.7", "8 6");
    expectNothing(fitting("drawTripleTakeoff", "nil 0 nil 0 " + skew));
    expectNothing(fitting("drawTripleTakeoff", "nil 0 nil 0 " + runs(run("100 0 0", "100 50 0", "8 6") +
                                                                     run("100 5 0", "150 5 0", "8 6"))));
    EXPECT_TRUE(takeCalls().empty());
}

}  // namespace

}  // namespace tessary::testing
