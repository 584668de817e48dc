// The functions of the language, as tables of what is typed and what is shown.

#include "tests/host/lisp_session.h"

namespace drafthost::lisp::testing {
namespace {

TEST(LispFunctions, Arithmetic) {
    expectShown({
        {"(list (+) (-) (*) (/))", "(0 0 0 0)"},
        {"(+ 1 2 3.5)", "6.5"},
        {"(- 5)", "-5"},
        {"(- 10 1 2)", "7"},
        {"(* 2 3 4)", "24"},
        {"(/ 7 2)", "3"},
        {"(/ -7 2)", "-3"},
        {"(/ 7 2.0)", "3.5"},
        {"(/ 100 2 5)", "10"},
        {"(+ 2147483647 1)", "-2147483648"},
        {"(* 65536 65536)", "0"},
        {"(1+ 2147483647)", "-2147483648"},
        {"(/ -2147483648 -1)", "-2147483648"},
        {"(list (1+ 1.5) (1- 1))", "(2.5 0)"},
        {"(list (rem 7 3) (rem -7 3) (rem 7.5 2))", "(1 -1 1.5)"},
        {"(list (max 1 3 2) (max 1 2.5) (min 4 2.0 3) (abs -3) (abs -2.5))", "(3 2.5 2.0 3 2.5)"},
        {"(list (gcd 12 18) (logand 12 10) (logior 12 10) (~ 5) (lsh 1 4) (lsh -1 -28) (lsh 1 40))",
         "(6 8 14 -6 16 15 0)"},
        {"(list (boole 1 12 10) (boole 6 12 10) (boole 7 12 10) (boole 8 12 10))", "(8 6 14 -15)"},
        {"(list (fix 3.9) (fix -3.9) (fix 3e10) (float 3))", "(3 -3 3.0e+10 3.0)"},
        {"(list (expt 2 10) (expt 2 40) (expt 2.0 0.5) (expt 2 -1))", "(1024 1.09951e+12 1.41421 0.5)"},
        {"(list (sqrt 4) (exp 0) (log 1) (sin 0) (cos 0) (atan 1) (atan 1 -1))",
         "(2.0 1.0 0.0 0.0 1.0 0.785398 2.35619)"},
        {"(list (zerop 0) (zerop 0.0) (zerop 1) (minusp -1) (numberp 1.5) (numberp \"1\"))",
         "(T T nil T T nil)"},
    });
}

TEST(LispFunctions, Comparison) {
    expectShown({
        {"(list (= 1 1.0) (= 1 1 2) (= \"a\" \"a\") (= 'a 'a) (= nil nil) (= 1 \"1\"))", "(T nil T T T nil)"},
        {"(list (/= 1 2 1) (/= 1 1) (/= 1 2 2))", "(T nil nil)"},
        {"(list (< 1 2 3) (< 1 3 2) (<= 1 1 2) (> \"b\" \"a\") (>= 2 2.0))", "(T nil T T T)"},
        {"(list (eq 'a 'A) (eq 1 1) (eq \"a\" \"a\") (eq '(1) '(1)))", "(T T nil nil)"},
        {"(list (equal '(1 (2 . \"x\")) '(1 (2 . \"x\"))) (equal 1 1.0) (equal 1.0 1.01) (equal 1.0 1.01 "
         "0.1))",
         "(T T nil T)"},
        {"(equal '(1 2.0) '(1 2.05) 0.1)", "T"},
        {"(list (not nil) (null 0))", "(T nil)"},
    });
}

TEST(LispFunctions, Lists) {
    expectShown({
        {"(list (car nil) (cdr nil) (cadr '(1 2)) (cddr '(1 2 3)) (caddr '(1 2 3)) (cadddr '(1 2 3 4)))",
         "(nil nil 2 (3) 3 4)"},
        {"(list (caar '((1) 2)) (cdar '((1 2))) (cadar '((1 2))) (cadadr '(1 (2 3))) (cdr '(1 . 2)))",
         "(1 (2) 2 3 2)"},
        {"(append '(1) nil '(2 3) '(4))", "(1 2 3 4)"},
        {"(list (append) (append nil) (append '(1 2)))", "(nil nil (1 2))"},
        {"(list (reverse '(1 2 3)) (length '(1 2)) (nth 1 '(a b)) (nth 5 '(a)) (last '(1 2)))",
         "((3 2 1) 2 B nil 2)"},
        {"(list (member 2.0 '(1 2 3)) (member 9 '(1)) (assoc \"b\" '((\"a\" . 1) (\"b\" . 2))))",
         "((2 3) nil (\"b\" . 2))"},
        {"(list (subst 'x 1 '(1 2 1)) (subst '(8 . 1) '(8 . 0) '((8 . 0))))", "((X 2 X) ((8 . 1)))"},
        {"(list (vl-list* 1 2 '(3)) (vl-list* 1 2) (vl-list-length '(1 . 2)) (vl-position 'b '(a b)))",
         "((1 2 3) (1 . 2) nil 1)"},
        {"(vl-remove 1 '(1 2 1 3))", "(2 3)"},
        {"(list (listp nil) (listp '(1)) (atom nil) (atom '(1)) (vl-consp nil) (vl-consp '(1 . 2)))",
         "(T T T nil nil T)"},
        {"(acad_strlsort '(\"b\" \"a\" \"C\"))", "(\"C\" \"a\" \"b\")"},
    });
}

TEST(LispFunctions, Mapping) {
    expectShown({
        {"(mapcar '+ '(1 2 3) '(10 20 30))", "(11 22 33)"},
        {"(mapcar 'strcat nil)", "nil"},
        {"(apply '+ '(1 2 3))", "6"},
        {"(vl-sort '(3 1 2 1) '<)", "(1 2 3)"},
        {"(vl-sort '(3.0 1.0 1.0) '<)", "(1.0 1.0 3.0)"},
        {"(vl-sort '(\"b\" \"a\" \"a\") '<)", "(\"a\" \"a\" \"b\")"},
        {"(vl-sort-i '(3 1 2 1) '<)", "(1 3 2 0)"},
        {"(length (vl-sort '(5 3 9 1 7 2) '(lambda (a b) t)))", "6"},
        {"(vl-sort '((b . 2) (a . 2) (c . 1)) '(lambda (x y) (< (cdr x) (cdr y))))",
         "((C . 1) (B . 2) (A . 2))"},
        {"(list (vl-some 'minusp '(1 -2)) (vl-every 'numberp '(1 2)) (vl-every '< '(1 2) '(2 2)) (vl-every "
         "'car nil))",
         "(T T nil T)"},
        {"(list (vl-member-if 'minusp '(1 -2 3)) (vl-remove-if 'minusp '(1 -2 3)) (vl-remove-if-not 'minusp "
         "'(1 -2)))",
         "((-2 3) (1 3) (-2))"},
    });
}

TEST(LispFunctions, Strings) {
    expectShown({
        {"(list (strcat) (strcat \"a\" \"b\") (strlen) (strlen \"ab\" \"c\"))", "(\"\" \"ab\" 0 3)"},
        {"(list (substr \"hello\" 2) (substr \"hello\" 2 3) (substr \"hello\" 9) (substr \"hello\" 5 9))",
         "(\"ello\" \"ell\" \"\" \"o\")"},
        {"(list (strcase \"aBc\") (strcase \"aBc\" t) (ascii \"A\") (ascii \"\") (chr 65))",
         "(\"ABC\" \"abc\" 65 0 \"A\")"},
        {"(list (vl-string->list \"AB\") (vl-list->string '(65 66)) (vl-string-elt \"AB\" 1))",
         "((65 66) \"AB\" 66)"},
        {"(list (vl-string-search \"l\" \"hello\") (vl-string-search \"l\" \"hello\" 4) (vl-string-position "
         "108 \"hello\" 0 t))",
         "(2 nil 3)"},
        {"(list (vl-string-subst \"L\" \"l\" \"hello\") (vl-string-translate \"el\" \"ip\" \"hello\"))",
         "(\"heLlo\" \"hippo\")"},
        {"(list (vl-string-trim \" \" \"  a b \") (vl-string-left-trim \"ab\" \"abc\") (vl-string-right-trim "
         "\"x\" \"xx\"))",
         "(\"a b\" \"c\" \"\")"},
        {"(list (vl-string-mismatch \"abc\" \"abd\") (vl-string-mismatch \"ABC\" \"abd\" 0 0 t))", "(2 2)"},
        {"(list (read \"(a b)\") (read \"\") (read \"12 13\"))", "((A B) nil 12)"},
        {"(list (vl-prin1-to-string '(\"a\" 1)) (vl-princ-to-string '(\"a\" 1)))",
         "(\"(\\\"a\\\" 1)\" \"(a 1)\")"},
        {"(strcase \"\xC3\xA9\")", "\"\xC3\x89\""},
    });
}

TEST(LispFunctions, Wildcards) {
    const Case cases[] = {
        {"\"Name\" \"N*\"", "T"},   {"\"Name\" \"???,N*\"", "T"}, {"\"Name\" \"~*m*\"", "nil"},
        {"\"Name\" \"~*x*\"", "T"}, {"\"a1\" \"@#\"", "T"},       {"\"a-\" \"@.\"", "T"},
        {"\"b\" \"[a-c]\"", "T"},   {"\"d\" \"[~a-c]\"", "T"},    {"\"a,b\" \"a`,b\"", "T"},
        {"\"*\" \"`*\"", "T"},      {"\"x\" \"`*\"", "nil"},      {"\"\" \"*\"", "T"},
        {"\"abc\" \"a*c*\"", "T"},  {"\"abc\" \"*b\"", "nil"},    {"\"-\" \"[a-]\"", "T"},
        {"\"x,y\" \"[,]\"", "nil"}, {"\"name\" \"N*\"", "nil"},
    };
    for (const auto& [input, shown] : cases) {
        Session session;
        EXPECT_EQ(session.type("(wcmatch " + std::string(input) + ")"), shown) << input;
    }
    Session session;
    session.type(
        "(repeat 15 (setq p (strcat (if p p \"\") \"*a\") s (strcat (if s s \"\") \"aaaaaaaaaa\")))");
    EXPECT_EQ(session.type("(wcmatch s (strcat p \"b\"))"), "nil") << "and not in exponential time";
}

TEST(LispFunctions, Conversion) {
    expectShown({
        {"(list (atoi \"12abc\") (atoi \"-3.9\") (atoi \"x\") (atof \"1.5e2x\") (atof \"\") (itoa -5))",
         "(12 -3 0 150.0 0.0 \"-5\")"},
        {"(list (rtos 3.14159) (rtos 3.14159 2 2) (rtos -0.00001 2 2) (rtos 17.5 1 3))",
         "(\"3.1416\" \"3.14\" \"0.00\" \"1.750E+01\")"},
        {"(list (rtos 17.5 3 2) (rtos 17.5 4 2) (rtos 17.5 5 2) (rtos 0.5 4 2) (rtos 24 4 2) (rtos 12.5 4 "
         "1))",
         "(\"1'-5.50\\\"\" \"1'-5 1/2\\\"\" \"17 1/2\" \"1/2\\\"\" \"2'\" \"1'-0 1/2\\\"\")"},
        {"(list (rtos 11.99 4 2) (rtos -6 4 2) (rtos 0 4 2) (rtos 11.999 3 1))",
         "(\"1'\" \"-6\\\"\" \"0\\\"\" \"1'\")"},
        {"(list (angtos pi) (angtos (/ pi 4) 0 2) (angtos (/ pi 4) 1 4) (angtos 0.785398 2 4) (angtos 1 3 "
         "3))",
         "(\"180\" \"45.00\" \"45d0'0\\\"\" \"50.0000g\" \"1.000r\")"},
        {"(list (angtos (/ pi 4) 4 0) (angtos (/ pi 2) 4 0) (angtos pi 4 0) (angtos (* pi 1.75) 4 2))",
         "(\"N 45d E\" \"N\" \"W\" \"S 45d0' E\")"},
        {"(angtos (- (/ pi 2)))", "\"270\""},
        {"(list (distof \"17.5\") (distof \"1'-5 1/2\\\"\" 4) (distof \"1'5.5\\\"\" 3) (distof \"17 1/2\" 5) "
         "(distof \"-1'\" 4) (distof \"x\"))",
         "(17.5 17.5 17.5 17.5 -12.0 nil)"},
        {"(list (angtof \"45.0\" 0) (angtof \"45d30'\" 1) (angtof \"50g\" 2) (angtof \"N 45d E\" 4) (angtof "
         "\"q\"))",
         "(0.785398 0.794125 0.785398 0.785398 nil)"},
    });
}

TEST(LispFunctions, NumberFormatFollowsDrawingVariables) {
    Session session;
    session.interpreter.setVariableReader([](std::wstring_view name) -> std::optional<int> {
        return name == L"LUNITS"   ? 2
               : name == L"LUPREC" ? 3
               : name == L"DIMZIN" ? 12
               : name == L"AUPREC" ? 1
                                   : 0;
    });
    EXPECT_EQ(session.type("(list (rtos 0.5) (rtos 2.0) (rtos 1.2346) (angtos pi))"),
              "(\".5\" \"2\" \"1.235\" \"180\")");
}

TEST(LispFunctions, Geometry) {
    expectShown({
        {"(list (distance '(0 0) '(3 4)) (distance '(0 0 0) '(1 2 2)) (distance '(0 0) '(3 4 5)))",
         "(5.0 3.0 5.0)"},
        {"(list (angle '(0 0) '(0 -1)) (angle '(1 1) '(1 1)))", "(4.71239 0.0)"},
        {"(list (polar '(1 1) 0 2) (equal (polar '(0 0 5) (/ pi 2) 2) '(0 2 5) 1e-9))", "((3.0 1.0) T)"},
        {"(inters '(0 0) '(2 2) '(0 2) '(2 0))", "(1.0 1.0)"},
        {"(inters '(0 0) '(1 1) '(0 4) '(4 0))", "nil"},
        {"(inters '(0 0) '(1 1) '(0 4) '(4 0) nil)", "(2.0 2.0)"},
        {"(inters '(0 0) '(1 1) '(0 1) '(1 2) nil)", "nil"},
        {"(inters '(0 0 0) '(2 2 2) '(0 2 1) '(2 0 1))", "(1.0 1.0 1.0)"},
        {"(inters '(0 0 0) '(2 2 0) '(0 2 1) '(2 0 1))", "nil"},
    });
}

TEST(LispFunctions, Symbols) {
    expectShown({
        {"(list (set 'a 5) a (boundp 'a) (boundp 'b) (vl-symbol-name 'abc) (vl-symbol-value 'a))",
         "(5 5 T nil \"ABC\" 5)"},
        {"(mapcar 'type (list 1 1.0 \"s\" 'a '(1) nil car (lambda ())))",
         "(INT REAL STR SYM LIST nil SUBR USUBR)"},
        {"(atoms-family 1 '(\"car\" \"no-such\"))", "(\"CAR\" nil)"},
        {"(eval (list '+ 1 2))", "3"},
        {"(eval 'pi)", "3.14159"},
        {"(list (vl-symbolp 'a) (vl-symbolp nil) (vl-symbolp 5))", "(T nil nil)"},
    });
}

TEST(LispFunctions, Printing) {
    expectShown({
        {"(progn (princ \"a\\n\") (prin1 \"a\\n\") (print 'x) (terpri) (prompt \"p\") (princ))",
         "a\n\"a\\n\"\nX \np"},
        {"(write-line \"x\")", "x\n\"x\""},
        {"(write-char 65)", "A65"},
    });
}

}  // namespace
}  // namespace drafthost::lisp::testing
