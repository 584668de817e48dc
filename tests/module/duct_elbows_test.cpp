// Elbows: what the solid class is asked for.

#include "tests/module/duct_fittings.h"

namespace tessary::testing {

namespace {

class DuctElbows : public DuctFittings {
protected:
    // Along X, then along Y.
    static std::string runs(const std::string& size1, const std::string& size2,
                            const std::string& shape1 = "RC", const std::string& shape2 = "RC") {
        return run("0 0 0", "100 0 0", size1, shape1) + run("100 0 0", "100 100 0", size2, shape2);
    }
};

TEST_F(DuctElbows, lengthsAreMeasuredToTheElbowsOwnEnds) {
    recorder.movedPoints = {{85, 0, 0}, {100, 12, 0}};
    EXPECT_EQ(R"(((("en1" . DRAWN) ("en2") ("dHeadLength" . 15.0) ("dTailLength" . 12.0)) 1))",
              fitting("drawTripleElbow", "nil 2 nil 15 " + runs("10 8", "10 8")));
    EXPECT_EQ(takeCalls(), Lines{"radius (0 0 0) box 10x8 " + alongX + " > (100 100 0) 10x8 " + alongY +
                                 " walls 0 0 ratio 1.5 1 flags 2 1"});
}

// The transition begins at the elbow's end with the first run's size; its length is in no result.
TEST_F(DuctElbows, anotherSizeOrShapeIsReachedByATransitionBehindIt) {
    recorder.movedPoints = {{85, 0, 0}, {100, 12, 0}};
    const std::string result =
        R"(((("en1" . DRAWN) ("en2" . DRAWN) ("dHeadLength" . 15.0) ("dTailLength" . 12.0)) 2))";
    EXPECT_EQ(result, fitting("drawTripleElbow", "nil 2 nil 15 " + runs("10 8", "16 8")));
    Lines calls = takeCalls();
    EXPECT_EQ("radius (0 0 0) box 10x8 " + alongX + " > (100 100 0) 10x8 " + alongY +
                  " walls 0 0 ratio 1.5 1 flags 2 1",
              calls.at(0));
    EXPECT_EQ("add (100 12 0) box 10x8 " + alongY + " > (100 23.1962 0) box 16x8 [same] flags 2",
              calls.at(1));
    // Of one size and another shape: as long as half of the larger size.
    EXPECT_EQ(result, fitting("drawTripleElbow", "nil 2 nil 15 " + runs("10 8", "10 8", "RC", "OO")));
    EXPECT_EQ("add (100 12 0) box 10x8 " + alongY + " > (100 17 0) round 10x8 [same] flags 2",
              takeCalls().at(1));
    recorder.refusals["add"] = -1;
    EXPECT_EQ(result, fitting("drawTripleElbow", "nil 2 nil 15 " + runs("10 8", "16 8")));
}

TEST_F(DuctElbows, tightRadiusIsWidenedAndNoneIsTheUsualOne) {
    const std::vector<std::pair<std::string, std::string>> ratios = {
        {"0", "1.5"}, {"5", "0.501"}, {"0.1", "0.501"}, {"5.1", "0.51"}, {"-5", "-0.5"}};
    for (const auto& [radius, ratio] : ratios) {
        fitting("drawTripleElbow", "nil 0 nil " + radius + runs("10 8", "10 8"));
        const Lines calls = takeCalls();
        EXPECT_NE(std::string::npos, calls.at(0).find(" ratio " + ratio + " ")) << calls.at(0);
    }
}

TEST_F(DuctElbows, flatTrayTakesTheEndsOfTheRoundOne) {
    recorder.movedPoints = {{85, 0, 0}, {100, 12, 0}};
    EXPECT_EQ(R"(((("en1" . DRAWN) ("en2") ("dHeadLength" . 15.0) ("dTailLength" . 12.0)) 1))",
              fitting("drawTripleElbow", "nil 2 \"CABLETRAY\" 0 " + runs("10 8", "10 8")));
    EXPECT_EQ(takeCalls(), (Lines{"radius (0 0 0) box 10x8 " + alongX + " > (100 100 0) 10x8 " + alongY +
                                      " walls 0 0 ratio 1.5 1 flags 2 0",
                                  "clear", "tray (85 0 0) 10x8 > (100 12 0) ratio 1.5 flags 2"}));
    recorder.refusals["tray"] = -1;
    expectNothing(fitting("drawTripleElbow", "nil 2 \"CABLETRAY\" 0 " + runs("10 8", "10 8")));
}

TEST_F(DuctElbows, trayThatRisesIsARoundElbow) {
    const std::string rising = run("0 0 0", "100 0 0", "10 8") + run("100 0 0", "100 100 1", "10 8");
    const std::string offset = run("0 0 0", "100 0 0", "10 8") + run("100 0 1", "100 100 1", "10 8");
    for (const std::string& uneven : {rising, offset}) {
        fitting("drawTripleElbow", "nil 0 \"CABLETRAY\" 0 " + uneven);
        const Lines calls = takeCalls();
        EXPECT_EQ(1u, calls.size());
        EXPECT_TRUE(calls.at(0).ends_with(" flags 0 1")) << calls.at(0);
    }
}

TEST_F(DuctElbows, anotherTextIsPassedOver) {
    fitting("drawTripleElbow", "nil 0 \"DUCT\" T 0 " + runs("10 8", "10 8"));
    fitting("drawTripleElbow", "nil 0 \"cabletray\" nil 0 " + runs("10 8", "10 8"));
    const Lines calls = takeCalls();
    EXPECT_EQ("square?", calls.at(0).substr(0, 7));
    EXPECT_EQ("square", calls.at(1).substr(0, 6));
    EXPECT_EQ("radius", calls.at(2).substr(0, 6));
}

TEST_F(DuctElbows, roundElbowThatIsRefusedLeavesNothing) {
    recorder.refusals["radius"] = -1;
    expectNothing(fitting("drawTripleElbow", "nil 0 nil 0 " + runs("10 8", "16 8")));
}

// Each trial changes less of the second run's size than the next one.
TEST_F(DuctElbows, squareElbowTriesFourSizes) {
    const std::vector<std::string> ends = {"16x6", "10x6", "16x8", "10x8"};
    for (int refused = 0; refused < 4; ++refused) {
        recorder.refusals["square?"] = refused;
        recorder.movedPoints = {{92, 0, 0}, {100, 9, 0}};
        const std::string result = fitting("drawTripleElbow", "nil 4 T 0 " + runs("10 8", "16 6"));
        const Lines calls = takeCalls();
        ASSERT_EQ(refused + (refused == 0 ? 2u : 3u), calls.size());
        for (std::size_t i = 0; i <= static_cast<std::size_t>(refused); ++i) {
            EXPECT_EQ("square? (0 0 0) box 10x8 " + alongX + " > (100 100 0) " + ends[i] + " " + alongY +
                          " 1 3",
                      calls[i]);
        }
        const auto last = static_cast<std::size_t>(refused);
        EXPECT_EQ("square (92 0 0) box 10x8 > (100 9 0) " + ends[last] + " arrays 123 flags 4",
                  calls[last + 1]);
        if (refused == 0) {
            EXPECT_EQ(R"(((("en1" . DRAWN) ("en2") ("dHeadLength" . 8.0) ("dTailLength" . 9.0)) 1))", result);
        } else {
            EXPECT_TRUE(calls.back().starts_with("add (100 9 0) box " + ends[last] + " ")) << calls.back();
            EXPECT_NE(std::string::npos, calls.back().find(" box 16x6 [same] flags 4"));
        }
    }
    recorder.refusals["square?"] = -1;
    expectNothing(fitting("drawTripleElbow", "nil 4 T 0 " + runs("10 8", "16 6")));
    recorder.refusals = {{"square", -1}};
    expectNothing(fitting("drawTripleElbow", "nil 4 T 0 " + runs("10 8", "16 6")));
}

// The first run leans out of the vertical by 0.5 in 100, so that its width lies across the plane of the bend
// while the second run's lies in it.
TEST_F(DuctElbows, sectionThatStandsAQuarterTurnOffIsTurned) {
    const std::string turned = run("0 0 0", "0.5 0 100", "12 8") + run("0.5 0 100", "0.5 100 100", "8 12");
    const std::string result = fitting("drawTripleElbow", "nil 0 T 0 " + turned);
    EXPECT_NE(std::string::npos, result.find("(\"en2\")")) << result;
    const Lines calls = takeCalls();
    EXPECT_EQ("square? (0 0 0) box 12x8 [x(0.00499994 0 0.999988) y(0 1 0)] > (0.5 100 100) 12x8 [x(0 1 0) "
              "y(-0.00499994 0 -0.999988)] 1 3",
              calls.at(0));
}

// Up, by a run that leans forward a little: its own frame runs the other way across.
TEST_F(DuctElbows, frameThatOnlyPointsTheOtherWayIsReplacedWithoutATurn) {
    fitting("drawTripleElbow",
            "nil 0 T 0 " + run("0 0 0", "100 0 0", "12 8") + run("100 0 0", "99.5 0 100", "8 6"));
    EXPECT_EQ("square? (0 0 0) box 12x8 " + alongX +
                  " > (99.5 0 100) 8x6 [x(-0.00499994 0 0.999988) "
                  "y(0 1 0)] 1 3",
              takeCalls().at(0));
}

// A round run's section is the same all round: its frame is laid into the plane of the bend, so that a
// following box is turned with it.
TEST_F(DuctElbows, roundRunsFrameFollowsTheBend) {
    fitting("drawTripleElbow", "nil 0 nil 0 " + runs("12 12", "8 6", "OO", "RC"));
    const Lines calls = takeCalls();
    EXPECT_EQ(
        "radius (0 0 0) round 12x12 [x(1 0 0) y(0 0 1)] > (100 100 0) 12x12 [x(0 1 0) y(0 0 1)] walls 0 "
        "0 ratio 1.5 1 flags 0 1",
        calls.at(0));
    EXPECT_NE(std::string::npos, calls.at(1).find(" box 6x8 ")) << calls.at(1);
    // An oval keeps its own.
    fitting("drawTripleElbow", "nil 0 nil 0 " + runs("12 10", "8 6", "OO", "RC"));
    EXPECT_EQ("radius (0 0 0) round 12x10 " + alongX, takeCalls().at(0).substr(0, 46));
}

}  // namespace

}  // namespace tessary::testing
