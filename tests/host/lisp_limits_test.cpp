// Recursion, cancelling and memory.

#include "tests/host/lisp_session.h"

#include <chrono>
#include <thread>

namespace drafthost::lisp::testing {
namespace {

constexpr const char* hardError = "; hard error occurred *** internal stack limit reached (simulated)";

TEST(LispLimits, RecursionOfUserFunctions) {
    Session session;
    EXPECT_EQ(session.type("(defun f (n) (if (= n 0) 0 (1+ (f (1- n))))) (f 15000)"), "F\n15000");
    EXPECT_EQ(session.type("(f -1)"), hardError);
    EXPECT_EQ(session.type("(f 100)"), "100") << "the evaluator is usable afterwards";
}

TEST(LispLimits, RecursionThroughBuiltinFunctions) {
    Session session;
    session.type(
        "(defun f (x) (mapcar 'f (list x))) (defun g (x) (apply 'g (list x))) (defun h () (eval '(h)))");
    EXPECT_EQ(session.type("(f 1)"), hardError);
    EXPECT_EQ(session.type("(g 1)"), hardError);
    EXPECT_EQ(session.type("(h)"), hardError);
    EXPECT_EQ(session.type("(vl-catch-all-error-p (vl-catch-all-apply 'g '(1)))"), "T");
    EXPECT_EQ(session.type("(mapcar '1+ '(1 2))"), "(2 3)");
}

TEST(LispLimits, ErrorHandlerRunsAfterHardError) {
    Session session;
    EXPECT_EQ(
        session.type(
            "(defun f () (1+ (f))) (defun *error* (m) (princ (strlen (strcat \"!\" (substr m 1 4))))) (f)"),
        "F\n*ERROR*\n5");
}

TEST(LispLimits, DeeplyNestedProgramIsAnErrorNotACrash) {
    Session session;
    const int depth = 100'000;
    std::string text;
    for (int level = 0; level < depth; ++level) {
        text += "(+ 1 ";
    }
    text += "1" + std::string(depth, ')');
    EXPECT_EQ(session.type(text), hardError);
    EXPECT_EQ(session.type("(+ 1 1)"), "2");
}

TEST(LispLimits, LocalVariablesAreRestoredAfterHardError) {
    Session session;
    session.type("(setq a 'global) (defun f (a) (1+ (f a)))");
    EXPECT_EQ(session.type("(f 1)"), hardError);
    EXPECT_EQ(session.type("a"), "GLOBAL");
}

// Ends each of these endless evaluations from another thread.
TEST(LispLimits, CancelEndsEndlessEvaluation) {
    Session session;
    session.type("(defun f () (g)) (defun g () (vl-every '(lambda (x) t) '(1)) (repeat 2 (g)))");
    session.type("(setq a nil b nil) (progn (repeat 60 (setq a (list a a) b (list b b))) nil)");
    for (const char* endless : {"(while t)", "(while t (setq a a))", "(repeat 2000000000 1)", "(equal a b)",
                                "(while t (vl-catch-all-apply 'car '(5)))"}) {
        const std::jthread canceller([&](const std::stop_token& stop) {
            while (!stop.stop_requested()) {
                std::this_thread::sleep_for(std::chrono::milliseconds(5));
                session.interpreter.requestCancel();
            }
        });
        EXPECT_EQ(session.type(endless), "; error: Function cancelled") << endless;
    }
    EXPECT_EQ(session.type("(+ 1 1)"), "2");
}

TEST(LispLimits, LateCancelDoesNotHitTheNextEvaluation) {
    Session session;
    session.interpreter.requestCancel();
    EXPECT_EQ(session.type("(progn (repeat 10 1) 'fine)"), "FINE");
}

TEST(LispLimits, StringsAreBounded) {
    Limits limits;
    limits.stringLength = 1000;
    Session session(limits);
    EXPECT_EQ(session.type("(setq s \"abc\") (repeat 20 (setq s (strcat s s)))"),
              "\"abc\"\n; error: string too long");
    EXPECT_EQ(session.type(
                  "(setq a 1) (progn (repeat 60 (setq a (list a a))) nil) (strlen (vl-prin1-to-string a))"),
              "1\nnil\n; error: string too long");
}

// Programs that hold values in every place the collector has to know of, collecting at each safe point.
TEST(LispLimits, CollectingAtEverySafePointChangesNothing) {
    const char* const programs[] = {
        "(defun f (n) (if (< n 1) nil (cons (strcat \"x\" (itoa n)) (f (1- n))))) (f 20)",
        "(mapcar '(lambda (s / u) (setq u (strcat s s)) (repeat 2 (setq u (strcat u \"!\"))) u) (list \"a\" "
        "\"b\"))",
        "(foreach s (list (strcat \"p\" \"q\") (strcat \"r\")) (setq all (cons (strcat s s) all)))",
        "(vl-sort (mapcar 'itoa '(5 3 8 1)) '(lambda (a b) (repeat 2 (strcat a b)) (< a b)))",
        "(progn (setq g (list 'lambda '(x) '(strcat x \"-\"))) (mapcar g (list (chr 65) (chr 66))))",
        "(defun h (a / b) (setq b (list a)) (defun h (a) (list a a)) (repeat 3 (strcat \"g\" \"c\")) (list a "
        "b)) (list (h 1) (h 2))",
        "(vl-catch-all-error-message (vl-catch-all-apply '(lambda (x) (repeat 3 (strcat x x)) (car x)) (list "
        "(strcat \"a\" \"b\"))))",
        "(apply 'append (mapcar '(lambda (x) (repeat 2 (list x)) (list x (eval (list 'strcat x \"1\")))) "
        "'(\"a\" \"b\")))",
        "(vl-remove-if '(lambda (x) (repeat 2 (strcat x \"\")) (= x \"b\")) (mapcar 'chr '(97 98 99)))",
    };
    for (const char* program : programs) {
        Session plain;
        Session stressed;
        stressed.interpreter.setCollectAtEverySafePoint(true);
        EXPECT_EQ(stressed.type(program), plain.type(program)) << program;
        EXPECT_GT(stressed.interpreter.statistics().collections, 1u) << program;
    }
}

TEST(LispLimits, GarbageIsReused) {
    Session session;
    session.type("(setq i 0) (while (< i 3000000) (setq l (list i i i) s (strcat \"a\" \"b\") i (1+ i)))");
    const AllocationStatistics statistics = session.interpreter.statistics();
    EXPECT_GE(statistics.pairs, 9'000'000u);
    EXPECT_GT(statistics.collections, 5u);
    EXPECT_LT(statistics.heapBytes, 64u * 1024 * 1024);
}

TEST(LispLimits, CollectorReleasesSelectionSets) {
    struct Set final : SelectionSetBase {
        int number() const override { return 0x1f; }
    };
    Session session;
    const std::weak_ptr<SelectionSetBase> watched = [&] {
        auto set = std::make_shared<Set>();
        session.interpreter.setSymbolValue(L"SS", session.interpreter.selectionSet(set));
        return set;
    }();
    EXPECT_EQ(session.type("(setq l (list ss)) (type ss)"), "(<Selection set: 1f>)\nPICKSET");
    session.interpreter.collect();
    EXPECT_FALSE(watched.expired());
    session.type("(setq ss nil l nil)");
    session.interpreter.collect();
    EXPECT_TRUE(watched.expired());
}

}  // namespace
}  // namespace drafthost::lisp::testing
