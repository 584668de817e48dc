// Special forms, variables, functions and errors.

#include "tests/host/lisp_session.h"

namespace drafthost::lisp::testing {
namespace {

TEST(LispLanguage, SpecialForms) {
    expectShown({
        {"(and)", "T"},
        {"(and 1 2)", "T"},
        {"(and 1 nil (car 5))", "nil"},
        {"(or)", "nil"},
        {"(or nil 7)", "T"},
        {"(or nil (and 1 nil))", "nil"},
        {"(if nil 1)", "nil"},
        {"(if (or nil (< 1 2)) 'yes 'no)", "YES"},
        {"(if (not (and (= 1 1) (/= 1 1))) 'yes 'no)", "YES"},
        {"(if (or (> 1 2) (null nil)) 'yes 'no)", "YES"},
        {"(cond ((= 1 2) 'a) ((+ 2 3)) (t 'b))", "5"},
        {"(cond (nil 1))", "nil"},
        {"(cond ((= 1 1)))", "T"},
        {"(cond (t 1 2 3))", "3"},
        {"(progn)", "nil"},
        {"(progn 1 2)", "2"},
        {"(setq)", "nil"},
        {"(progn (setq a 1 b (1+ a)) (list a b))", "(1 2)"},
        {"(progn (setq i 0) (while (< i 5) (setq i (1+ i)) (* i i)))", "25"},
        {"(while nil 1)", "nil"},
        {"(repeat 3 (setq n (cons 'x n)))", "(X X X)"},
        {"(repeat 0 1)", "nil"},
        {"(repeat -1 1)", "nil"},
        {"(progn (setq x 'outer) (list (foreach x '(1 2 3) (* x 10)) x))", "(30 OUTER)"},
        {"(foreach x nil 1)", "nil"},
        {"(foreach a '(1 2) (foreach b '(x y) (setq r (cons (cons a b) r))))",
         "((2 . Y) (2 . X) (1 . Y) (1 . X))"},
        {"'(quote a)", "(QUOTE A)"},
        {"''a", "(QUOTE A)"},
        {"((lambda (x y) (- x y)) 5 3)", "2"},
        {"((if t '+ '-) 5 3)", "8"},
        {"(mapcar (function (lambda (x) (* x x))) '(1 2 3))", "(1 4 9)"},
        {"(apply 'and '(1 nil))", "nil"},
        {"(apply 'setq '(q 5)) q", "5\n5"},
    });
}

TEST(LispLanguage, Functions) {
    expectShown({
        {"(defun f (a / b) (setq b (* a 2)) b) (f 21) b", "F\n42\nnil"},
        {"(defun f (/ a) a) (setq a 5) (f) a", "F\n5\nnil\n5"},
        {"(defun f (x) (g)) (defun g () x) (f 9)", "F\nG\n9"},
        {"(defun f () (defun f () 2) 1) (f) (f)", "F\n1\n2"},
        {"(defun f ()) (f)", "F\nnil"},
        {"(defun f (x / x) x) (f 1)", "F\nnil"},
        {"(defun-q f (x) (* x 2)) (f 4) f", "F\n8\n((X) (* X 2))"},
        {"(setq f '((x) (+ x 1))) (f 4)", "((X) (+ X 1))\n5"},
        {"(setq f (list 'lambda '(x) '(+ x 1))) (mapcar f '(1 2))", "(LAMBDA (X) (+ X 1))\n(2 3)"},
        {"(mapcar '(lambda (x y) (list x y)) '(1 2 3) '(a b))", "((1 A) (2 B))"},
        {"(defun + (a b) (* a b)) (+ 3 4)", "+\n12"},
    });
}

// Redefining a function that was compiled into an instruction of its own must reach code compiled before.
TEST(LispLanguage, RedefinedArithmeticReachesCompiledCode) {
    Session session;
    session.type("(defun f (a) (if (< a 3) (+ a 2) (car '(x))))");
    EXPECT_EQ(session.type("(list (f 1) (f 5))"), "(3 X)");
    session.type("(setq plus + + - less < < > first car car cadr)");
    EXPECT_EQ(session.type("(list (f 1) (f 5))"), "(nil 3)");
    session.type("(setq + plus < less car first)");
    EXPECT_EQ(session.type("(list (f 1) (f 5))"), "(3 X)");
    EXPECT_EQ(session.type("(defun < (a b) nil) (f 1)"), "<\nX");
}

TEST(LispLanguage, ErrorTexts) {
    expectShown({
        {"(+ nil 1)", "; error: bad argument type: numberp: nil"},
        {"(+ 1 \"a\")", "; error: bad argument type: numberp: \"a\""},
        {"(strlen 5)", "; error: bad argument type: stringp 5"},
        {"(car 5)", "; error: bad argument type: consp 5"},
        {"(length 5)", "; error: bad argument type: listp 5"},
        {"(length '(1 . 2))", "; error: bad list: (1 . 2)"},
        {"(itoa 1.5)", "; error: bad argument type: fixnump: 1.5"},
        {"(set 5 1)", "; error: bad argument type: symbolp 5"},
        {"(distance nil nil)", "; error: bad argument type: 2D/3D point: nil"},
        {"(close 5)", "; error: bad argument type: streamp 5"},
        {"(substr \"abc\" 0)", "; error: bad argument value: positive 0"},
        {"(< nil 1)", "; error: bad argument type for compare: nil 1"},
        {"(/ 1 0)", "; error: divide by zero"},
        {"(/ 1.0 0)", "; error: divide by zero"},
        {"(rem 5 0)", "; error: divide by zero"},
        {"(foo 1)", "; error: no function definition: FOO"},
        {"(mapcar 'foo '(1))", "; error: no function definition: FOO"},
        {"(setq foo 5) (foo)", "5\n; error: bad function: 5"},
        {"(5 1)", "; error: bad function: 5"},
        {"(car)", "; error: too few arguments"},
        {"(car nil nil)", "; error: too many arguments"},
        {"(defun f (a) a) (f)", "F\n; error: too few arguments"},
        {"(defun f (a) a) (f 1 2)", "F\n; error: too many arguments"},
        {"(defun f (5) a)", "; error: bad element in arglist: 5"},
        {"(setq a)", "; error: syntax error"},
        {"(if)", "; error: too few arguments"},
        {"(if 1 2 3 4)", "; error: too many arguments"},
        {"(foreach 5 nil 1)", "; error: bad argument type: symbolp 5"},
        {"(foreach a 5 1)", "; error: bad argument type: listp 5"},
        {"(repeat 1.5 1)", "; error: bad argument type: fixnump: 1.5"},
        {"(assoc 1 '(1))", "; error: bad association list: (1)"},
        {"(sqrt -1)", "; error: function undefined for argument: -1"},
        {"(exit)", "; error: quit / exit abort"},
        {"(load \"no such file\")", "; error: LOAD failed: \"no such file\""},
        {"(vl-exit-with-error \"stop\")", "; error: stop"},
    });
}

// An error in the definition of a form matters only when the form is reached.
TEST(LispLanguage, MalformedFormRaisesWhenReached) {
    Session session;
    EXPECT_EQ(session.type("(defun f (x) (if x (setq 5 1) 'fine)) (f nil) (f t)"),
              "F\nFINE\n; error: syntax error");
}

TEST(LispLanguage, ErrorHandlerSeesLocalVariables) {
    Session session;
    session.type("(defun f (/ *error* kept) (defun *error* (text) (princ (list text kept))) (setq kept 5) "
                 "(car kept))");
    EXPECT_EQ(session.type("(f)"), "(bad argument type: consp 5 5)");
    EXPECT_EQ(session.type("(list kept *error*)"), "(nil nil)");
    EXPECT_EQ(session.type("(defun *error* (text) (princ (strcase text))) (exit)"),
              "*ERROR*\nQUIT / EXIT ABORT");
}

TEST(LispLanguage, ErrorInsideErrorHandler) {
    Session session;
    EXPECT_EQ(
        session.type("(defun *error* (text) (car 5)) (foo)"),
        "*ERROR*\n; error: An error has occurred inside the *error* function: bad argument type: consp 5");
    EXPECT_EQ(session.type("(setq *error* nil) (+ 1 1)"), "nil\n2");
}

TEST(LispLanguage, CatchAllRestoresBindings) {
    expectShown({
        {"(setq x 1) (defun f (x) (car x)) (vl-catch-all-error-p (vl-catch-all-apply 'f '(5))) x",
         "1\nF\nT\n1"},
        {"(vl-catch-all-error-message (vl-catch-all-apply 'car '(5)))", "\"bad argument type: consp 5\""},
        {"(vl-catch-all-apply '+ '(1 2))", "3"},
        {"(setq x 1) (foreach x '(7) (vl-catch-all-apply '(lambda (x) (exit)) '(2)) (princ x)) x",
         "1\n77\n1"},
        {"(vl-catch-all-apply '/ '(1 0))", "#<%catch-all-apply-error%>"},
    });
}

// The text an error leaves behind begins on a line of its own.
TEST(LispLanguage, ErrorStartsNewLine) {
    Session session;
    EXPECT_EQ(session.type("(progn (princ \"working\") (car 5))"),
              "working\n; error: bad argument type: consp 5");
}

TEST(LispLanguage, PrincWithoutArgumentsShowsEmptyLine) {
    Session session;
    EXPECT_EQ(session.type("(princ) 5"), "\n5");
}

TEST(LispLanguage, ExternalFunctions) {
    Session session;
    session.interpreter.defineExternal(L"twice", 7, [](Interpreter&, Arguments arguments) {
        return Value::integer(2 * arguments.integer(0));
    });
    EXPECT_EQ(session.type("(twice 4) (type twice) (mapcar 'twice '(1 2))"), "8\nEXRXSUBR\n(2 4)");
    EXPECT_EQ(session.interpreter.externalIdentifier(session.interpreter.symbolValue(L"TWICE")), 7);
    EXPECT_TRUE(session.interpreter.undefineExternal(L"TWICE"));
    EXPECT_EQ(session.type("(twice 4)"), "; error: no function definition: TWICE");
    EXPECT_FALSE(session.interpreter.undefineExternal(L"car"));
}

TEST(LispLanguage, EntityNamesAreEqWhenTheirWordsAre) {
    Session session;
    Interpreter& interpreter = session.interpreter;
    interpreter.setSymbolValue(L"a", interpreter.entityName(0x1f, 2));
    interpreter.setSymbolValue(L"b", interpreter.entityName(0x1f, 2));
    interpreter.setSymbolValue(L"c", interpreter.entityName(0x1f, 3));
    EXPECT_EQ(session.type("(list (eq a b) (equal a c) (type a) a)"), "(T nil ENAME <Entity name: 1f>)");
}

// Every documented function refuses a number of arguments outside its bounds, and none crashes on nil.
TEST(LispLanguage, BuiltinTablesAreConsistent) {
    Session session;
    for (const BuiltinDefinition& row : session.interpreter.builtins()) {
        const std::wstring_view documentation = row.documentation;
        EXPECT_TRUE(documentation.starts_with(L"(" + std::wstring(row.name))) << toUtf8(row.name);
        EXPECT_TRUE(row.maximumArguments == anyNumber || row.maximumArguments >= row.minimumArguments);
        const Value function = session.interpreter.findFunction(row.name);
        ASSERT_TRUE(function.isFunction()) << toUtf8(row.name);
        if (row.maximumArguments != anyNumber) {
            const std::vector<Value> tooMany(static_cast<std::size_t>(row.maximumArguments) + 1);
            const auto result = session.interpreter.protectedCall(function, tooMany);
            EXPECT_EQ(result.succeeded ? L"" : result.error->message(), L"too many arguments")
                << toUtf8(row.name);
        }
        if (row.minimumArguments > 0) {
            const std::vector<Value> tooFew(static_cast<std::size_t>(row.minimumArguments) - 1);
            const auto result = session.interpreter.protectedCall(function, tooFew);
            EXPECT_EQ(result.succeeded ? L"" : result.error->message(), L"too few arguments")
                << toUtf8(row.name);
        }
    }
}

}  // namespace
}  // namespace drafthost::lisp::testing
