// Reading program text, printing values, and input at the prompt.

#include "tests/host/lisp_session.h"

namespace drafthost::lisp::testing {
namespace {

TEST(LispReader, Atoms) {
    expectShown({
        {"foo", "nil"},
        {"'FooBar", "FOOBAR"},
        {"nil", "nil"},
        {"'nil", "nil"},
        {"t", "T"},
        {"12", "12"},
        {"-12", "-12"},
        {"+12", "12"},
        {"2147483647", "2147483647"},
        {"2147483648", "2.14748e+09"},
        {"1.", "1.0"},
        {"1e3", "1000.0"},
        {"-1.5e-7", "-1.5e-07"},
        {"1e999", "1.#INF"},
        {"'1+", "1+"},
        {"'-", "-"},
        {"'a.b", "A.B"},
        {"'a;comment\n", "A"},
        {"'(a;comment\nb)", "(A B)"},
        {"'(a ;| (((\n \" |; b)", "(A B)"},
        {"'(1 . 2)", "(1 . 2)"},
        {"'(1 . (2 3))", "(1 2 3)"},
        {"'(1 2 . 3)", "(1 2 . 3)"},
        {"'()", "nil"},
        {"'(a'b)", "(A (QUOTE B))"},
        {"\"a\\tb\\n\\\"\\\\\"", "\"a\\tb\\n\\\"\\\\\""},
        {"\"\\101\\e\\U+00e9\"", "\"A\\e\xC3\xA9\""},
        {"(strlen \"C:\\temp\")", "6"},
        {"(ascii \"\xE2\x82\xAC\")", "8364"},
    });
}

TEST(LispReader, Reals) {
    expectShown({
        {"1.0", "1.0"},
        {"(/ 1.0 3)", "0.333333"},
        {"1000000.0", "1.0e+06"},
        {"123456.0", "123456.0"},
        {"1234567.0", "1.23457e+06"},
        {"0.0001", "0.0001"},
        {"0.00001", "1.0e-05"},
        {"(- 0.5)", "-0.5"},
        {"pi", "3.14159"},
        {"1e100", "1.0e+100"},
    });
}

TEST(LispReader, MalformedText) {
    expectShown({
        {"(a (b)", "; error: malformed list on input"},
        {"1)", "1\n; error: extra right paren on input"},
        {"\"abc", "; error: malformed string on input"},
        {"\"abc\\", "; error: malformed string on input"},
        {"'(. a)", "; error: misplaced dot on input"},
        {"'(a . b c)", "; error: misplaced dot on input"},
        {"'(a . )", "; error: misplaced dot on input"},
        {".5", "; error: misplaced dot on input"},
        {"(a ')", "; error: syntax error"},
        {"'", "; error: syntax error"},
        {";| open", "; error: malformed list on input"},
    });
}

TEST(LispReader, ErrorsNameFileAndLine) {
    Session session;
    EXPECT_EQ(session.load("(setq a 1)\n\n(defun f ()\n  (list 1\n"),
              "; error: malformed list on input\n; in program.lsp, line 3\n");
    EXPECT_EQ(session.type("a"), "1") << "forms before the error were evaluated";
    EXPECT_EQ(session.load("\n;| two\nlines |;\n\"a\nb\"\n)"),
              "; error: extra right paren on input\n; in program.lsp, line 6\n");
    EXPECT_EQ(session.load("(princ 1)\n(princ \"open\n"),
              "1\n; error: malformed string on input\n; in program.lsp, line 2\n");
}

TEST(LispReader, SkipsByteOrderMark) {
    Session session;
    EXPECT_EQ(session.load("\xEF\xBB\xBF(princ \"ok\")"), "ok");
}

TEST(LispReader, PrintsObjectsByKind) {
    Session session;
    const std::string shown = session.type("(list car 'x (lambda ()) (vl-catch-all-apply 'exit))");
    EXPECT_TRUE(shown.starts_with("(#<SUBR @")) << shown;
    EXPECT_NE(shown.find(" CAR> X #<USUBR @"), std::string::npos) << shown;
    EXPECT_NE(shown.find(" -lambda-> #<%catch-all-apply-error%>)"), std::string::npos) << shown;
}

TEST(LispReader, KnowsWhetherInputIsComplete) {
    const auto complete = [](std::wstring_view text) {
        return Interpreter::inputState(text) == InputState::complete;
    };
    EXPECT_TRUE(complete(L""));
    EXPECT_TRUE(complete(L"(a (b) \")\" ; (\n)"));
    EXPECT_TRUE(complete(L"a)"));
    EXPECT_TRUE(complete(L"(a \"\\\"\")"));
    EXPECT_FALSE(complete(L"(a (b)"));
    EXPECT_FALSE(complete(L"(a ; )"));
    EXPECT_FALSE(complete(L"\"abc"));
    EXPECT_FALSE(complete(L"\"abc\\\""));
    EXPECT_FALSE(complete(L"(a) ;| still open"));
}

// Depth of data is bounded by memory only, not by the native stack.
TEST(LispReader, DeeplyNestedDataIsReadPrintedAndCompared) {
    Session session;
    const int depth = 200'000;
    const std::string nested = std::string(depth, '(') + std::string(depth, ')');
    EXPECT_EQ(session.type("(setq a '" + nested + ")").size(), 2u * depth + 1);
    EXPECT_EQ(session.type("(progn (setq b '" + nested + ") (gc) (list (equal a b) (equal a (cdr b))))"),
              "(T nil)");
}

}  // namespace
}  // namespace drafthost::lisp::testing
