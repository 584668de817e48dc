// Arguments of the functions for duct runs: missing, of another type, loose, too many.

#include "tests/module/duct_fittings.h"

namespace tessary::testing {

namespace {

const std::string wrongType = "\nWrong type of arguments passed.\n; error: ADS request error";

const std::string runA = run("0 0 0", "100 0 0", "20 10");
const std::string runB = run("100 0 0", "200 0 0", "16 10");
const std::string runC = run("100 0 0", "100 90 0", "8 6");

// What must be there. One more value behind it is ignored.
struct Function {
    std::string name;
    Lines arguments;
};

const std::vector<Function> functions = {
    {"getTripleCoord", {runA}},
    {"drawTripleCenter", {"nil", "0", runA}},
    {"drawTripleTransition", {"nil", "0", runA, runB}},
    {"drawTripleElbow", {"nil", "0", "nil", "0", runA, runC}},
    {"drawTripleElbow", {"nil", "0", "\"CABLETRAY\"", "0", runA, runC}},
    {"drawTripleElbow", {"nil", "0", "\"\"", "T", "0", runA, runC}},
    {"drawTripleSkin", {"1"}},
    {"drawTripleWye", {"nil", "0", "nil", "0", runA, runB, runC}},
    {"drawTripleTakeoff", {"nil", "0", "nil", "0", runA, runB, runC}},
    {"drawHanger", {"nil", "'(0.0 0.0 0.0)", "0", "20", "10", "nil", "1", "2", "50", "0"}},
};

std::string call(const Function& function, const Lines& arguments) {
    std::string line = "(qn_qn-" + function.name;
    for (const std::string& argument : arguments) {
        line += " " + argument;
    }
    return line + ")";
}

class DuctArguments : public DuctFittings {
protected:
    static void expectWrongType(const Lines& calls) {
        const Lines printed = runLisp(calls);
        ASSERT_EQ(calls.size(), printed.size());
        for (std::size_t i = 0; i < calls.size(); ++i) {
            EXPECT_EQ(wrongType, printed[i]) << calls[i];
        }
    }
};

TEST_F(DuctArguments, everyMissingOneIsToldAndNothingIsBuilt) {
    Lines calls;
    for (const Function& function : functions) {
        for (std::size_t count = 0; count < function.arguments.size(); ++count) {
            calls.push_back(
                call(function, Lines(function.arguments.begin(),
                                     function.arguments.begin() + static_cast<std::ptrdiff_t>(count))));
        }
    }
    expectWrongType(calls);
    EXPECT_TRUE(recorder.calls.empty());
}

// A list of a text is no argument of any kind.
TEST_F(DuctArguments, everyOneOfAnotherTypeIsToldAndNothingIsBuilt) {
    Lines calls;
    for (const Function& function : functions) {
        for (std::size_t place = 0; place < function.arguments.size(); ++place) {
            Lines arguments = function.arguments;
            arguments[place] = "'(\"x\")";
            calls.push_back(call(function, arguments));
        }
    }
    expectWrongType(calls);
    EXPECT_TRUE(recorder.calls.empty());
}

TEST_F(DuctArguments, oneTooManyIsIgnored) {
    Lines calls;
    for (const Function& function : functions) {
        Lines arguments = function.arguments;
        arguments.push_back("\"surplus\"");
        calls.push_back(call(function, arguments));
    }
    for (const std::string& printed : runLisp(calls)) {
        EXPECT_EQ(std::string::npos, printed.find("error")) << printed;
        EXPECT_NE("nil", printed);
    }
}

// The values of a run: three texts among numbers.
TEST_F(DuctArguments, everyValueOfARunIsChecked) {
    const Lines values = {"0", "0", "0",      "100", "0", "0",    "0",    "0", "0",
                          "9", "9", "\"RC\"", "0",   "0", "\"\"", "\"\"", "0", "1"};
    Lines calls;
    for (std::size_t place = 0; place < values.size(); ++place) {
        for (const std::string other : {"nil", values[place] == "0" || values[place] == "1" ? "\"\"" : "T"}) {
            Lines changed = values;
            changed[place] = other;
            std::string list = "(list";
            for (const std::string& value : changed) {
                list += " " + value;
            }
            calls.push_back("(qn_qn-getTripleCoord " + list + "))");
        }
        std::string shorter = "(list";
        for (std::size_t i = 0; i < place; ++i) {
            shorter += " " + values[i];
        }
        calls.push_back("(qn_qn-getTripleCoord " + shorter + "))");
    }
    expectWrongType(calls);
}

TEST_F(DuctArguments, runsMayStandWithoutTheirParentheses) {
    const std::string loose = "0 0 0 100 0 0 0 0 0 20 10 \"RC\" 0 0 \"\" \"\" 0 1";
    const std::string looseSecond = "100.0 0.0 0.0 100.0 90.0 0.0 0 0 0 20 10 \"RC\" 0 0 \"\" \"\" 0 1";
    const Lines printed =
        runLisp({"(qn_qn-getTripleCoord " + loose + ")",
                 "(car (caddr (qn_qn-drawTripleElbow nil 0 nil 0 " + loose + " " + looseSecond + ")))"});
    EXPECT_EQ("((1.0 0.0 0.0) (0.0 1.0 0.0) (0.0 0.0 1.0))", printed.at(0));
    EXPECT_EQ("\"dHeadLength\"", printed.at(1));
}

// A nineteenth value stands where the next run is looked for.
TEST_F(DuctArguments, listOfMoreValuesHidesWhatFollows) {
    std::string longer = runA;
    longer.back() = ' ';
    longer += "7)";
    expectWrongType({"(qn_qn-drawTripleTransition nil 0 " + longer + runB + ")"});
    EXPECT_EQ(
        "((0.0 0.0 1.0) (0.0 -1.0 0.0) (1.0 0.0 0.0))",
        runLisp({"(qn_qn-getTripleCoord (append " + run("0 0 0", "0 0 9", "1 1") + " '(7)) " + runA + ")"})
            .at(0));
}

TEST_F(DuctArguments, solidsAreToldFromOtherEntities) {
    const std::string badData = "\nBad data passed .\n; error: ADS request error";
    const Lines printed = runLisp({
        "(setq a (qn_qn-drawTripleCenter nil 0 " + runA + "))",
        "(setq line (entmakex '((0 . \"LINE\") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0))))",
        "(setq gone (entmakex '((0 . \"LINE\") (10 0.0 0.0 0.0) (11 1.0 0.0 0.0))))",
        "(entdel gone)",
        "(qn_qn-tripleUnion)",
        "(qn_qn-tripleUnion a)",
        "(qn_qn-tripleUnion a 1)",
        "(qn_qn-tripleUnion 1 a)",
        "(qn_qn-tripleUnion (list a a))",
        "(qn_qn-tripleUnion a line)",
        "(qn_qn-tripleUnion line a)",
        "(qn_qn-tripleUnion a a)",
        "(qn_qn-tripleUnion a gone)",
        "(qn_qn-explodeSolid 1)",
        "(qn_qn-explodeSolid (list a))",
        "(qn_qn-explodeSolid line)",
        "(qn_qn-explodeSolid gone)",
        "(qn_qn-explodeSolid)",
        "(qn_qn-explodeSolid a 1)",
        "(sslength (ssget \"X\"))",
    });
    Lines wanted(9, wrongType);
    wanted.insert(wanted.end(), {wrongType, wrongType, badData, badData, "nil", "nil", "2"});
    EXPECT_EQ(wanted, Lines(printed.begin() + 4, printed.end()));
}

}  // namespace

}  // namespace tessary::testing
