#pragma once

// Calling the functions for duct runs with a solid class that writes down what it is asked for.

#include "tests/module/lisp_session.h"
#include "tests/module/recording_solid.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace tessary::testing {

using Lines = std::vector<std::string>;

// A run in the drawing plane or elsewhere: from x y z to x y z, width and height, shape, without the rest.
inline std::string run(const std::string& start, const std::string& end, const std::string& size,
                       const std::string& shape = "RC") {
    return "(list " + start + " " + end + " 0 0 0 " + size + " \"" + shape + "\" 0 0 \"\" \"\" 0 1)";
}

// Entities of a result are shown as DRAWN; the number of entities in the drawing stands behind it.
inline const Lines definitions = {
    "(defun shown (r) (mapcar '(lambda (a) (if (= 'ENAME (type (cdr a))) (cons (car a) 'DRAWN) a)) r))",
    R"((defun drawn (/ s) (if (setq s (ssget "X")) (sslength s) 0)))",
    "(defun fitting (result) (list (shown result) (drawn)))",
};
inline const std::string noFitting = "(nil 0)";

class DuctFittings : public ::testing::Test {
protected:
    // The function is called with the arguments; what is printed.
    static std::string fitting(const std::string& function, const std::string& arguments) {
        Lines typed = definitions;
        typed.push_back("(fitting (qn_qn-" + function + " " + arguments + "))");
        const Lines printed = runLisp(typed);
        return printed.size() == typed.size() ? printed.back() : "";
    }
    // The calls since the last time that this was asked.
    Lines takeCalls() { return std::exchange(recorder.calls, {}); }
    // Nothing is drawn and nothing is left.
    void expectNothing(const std::string& printed) {
        EXPECT_EQ(noFitting, printed);
        EXPECT_EQ(0, recorder.living);
    }

    SolidRecorder recorder;
};

// Frames as they are written down, of horizontal runs.
inline const std::string alongX = "[x(1 0 0) y(0 1 0)]";
inline const std::string alongY = "[x(0 1 0) y(-1 0 0)]";

}  // namespace tessary::testing
