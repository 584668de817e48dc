// What the table functions ask the server, and what they make of its answers.

#include "tests/module/database_session.h"

namespace tessary::testing {

namespace {

class CursorTest : public DatabaseTest {
protected:
    static Variant record(int counter) {
        return arrayOf({variantFromString(L"ID"), variantFromLong(counter), variantFromString(L"s_NOTE"),
                        variantFromString(L" x ")});
    }
    static std::string shown(int counter) {
        return "((\"ID\" . " + std::to_string(counter) + ") (\"s_NOTE\" . \" x \"))";
    }
};

constexpr const char* tooFew = "\nToo few arguments passed.\n; error: ADS request error";
constexpr const char* wrongType = "\nWrong type of arguments passed.\n; error: ADS request error";

TEST_F(CursorTest, withoutADatabaseNothingIsWrongAndNothingIsWritable) {
    EXPECT_EQ((Lines{"nil", "nil", "nil", "nil", "nil", "T"}),
              runLisp({"(ts_table)", "(ts_seek)", "(ts_append_withindex)", "(ts_current_table)",
                       "(ts_delete_table)", "(ts_readonly)"}));
    EXPECT_TRUE(server.calls().empty());
}

TEST_F(CursorTest, tablesAreOpenedByNameAndIndex) {
    server.answerFlag("SelectTable", VARIANT_TRUE);
    EXPECT_EQ(
        (Lines{"\"Layers\"", "\"Layers\"", "\"Layers\"", tooFew, wrongType, wrongType}),
        runConnected({"(ts_table \"Layers\")", "(ts_table \"Layers\" \"ixLayer\")", "(ts_table \"Layers\" 5)",
                      "(ts_table)", "(ts_table 1)", "(ts_table nil \"ixLayer\")"}));
    EXPECT_EQ((Lines{"1.SelectTable Layers ", "1.SelectTable Layers ixLayer", "1.SelectTable Layers "}),
              callsWhenConnected());
}

TEST_F(CursorTest, closingIsNilAndLooksForAnErrorOnlyWhenItSucceeded) {
    server.when("1.CurrentIndex", [&] { server.setError(3078, L"Stale."); });
    server.answerFlag("CloseTable", VARIANT_TRUE);
    server.answerFlag("CloseTable", VARIANT_FALSE);
    server.answerFlag("CloseAllTables", VARIANT_FALSE);
    EXPECT_EQ((Lines{"\nTessary Error: Stale.nil", "nil", "nil", "\nTessary Error: Stale.nil"}),
              runConnected(
                  {"(ts_close_table)", "(ts_close_table)", "(ts_closeall_tables)", "(ts_closeall_tables)"}));
}

TEST_F(CursorTest, recordsComeAsPairs) {
    for (const char* method : {"MoveFirst", "MoveLast", "GetRecord", "Skip"}) {
        server.answerValue(method, record(7));
    }
    EXPECT_EQ((Lines{shown(7), shown(7), shown(7), shown(7), "nil", "nil", "nil"}),
              runConnected({"(ts_top)", "(ts_bottom)", "(ts_getrec)", "(ts_skip)", "(ts_skip -2)",
                            "(ts_skip \"x\")", "(ts_skip 2.9)"}));
    EXPECT_EQ(
        (Lines{"1.MoveFirst", "1.MoveLast", "1.GetRecord", "1.Skip 1", "1.Skip -2", "1.Skip 1", "1.Skip 2"}),
        callsWhenConnected());
}

TEST_F(CursorTest, keysAreOneValueAPointOrUpToTen) {
    EXPECT_EQ(
        (Lines{"nil", "nil", "nil", "nil", "nil", "nil", "nil", tooFew, wrongType, wrongType, wrongType}),
        runConnected({"(ts_seek 1)", "(ts_seek T)", "(ts_seek nil)", "(ts_seek '(1.0 2.0))",
                      "(ts_seek '(1.0 2.0 3.0) 4)", "(ts_seek '(1 \"A\"))",
                      "(ts_seek 1 nil 2.5 4 5 6 7 8 9 10 11)", "(ts_seek)", "(ts_seek '((1)))",
                      "(ts_seek '(1 . 2))", "(ts_seek (namedobjdict))"}));
    EXPECT_EQ((Lines{"1.Seek 1", "1.Seek bool:-1", "1.Seek2 real:1 real:2", "1.Seek3 real:1 real:2 real:3",
                     "1.SeekKeys 1 'A' empty empty empty empty empty empty empty empty 2",
                     "1.SeekKeys 1 empty real:2.5 4 5 6 7 8 9 10 10"}),
              callsWhenConnected());
}

TEST_F(CursorTest, fieldsTravelAsNamesAndValues) {
    server.answerValue("Append", record(1));
    EXPECT_EQ((Lines{shown(1), "nil", "nil", "nil", "nil", "nil", "nil"}),
              runConnected({"(ts_append '((\"A\" . 1) (\"B\" . \"x\") (\"C\") (\"D\" . T)))",
                            "(ts_append 5 '(\"A\" . 1.5))", "(ts_append)", "(ts_append '((1 . 2)))",
                            "(ts_append (list (cons \"A\" '(1.0 2.0))))", "(ts_replace)",
                            "(ts_replace '(\"A\" . nil))"}));
    EXPECT_EQ((Lines{"1.Append [ 'A' 1 'B' 'x' 'C' null 'D' bool:-1 ] 0", "1.Append [ 'A' real:1.5 ] -1",
                     "1.Replace [ 'A' null ]"}),
              callsWhenConnected());
}

TEST_F(CursorTest, failuresAreReportedOnceAndTheEndOfATableIsNone) {
    server.when("1.CurrentIndex", [&] {
        for (const char* method : {"MoveFirst", "Skip", "DeleteRecord", "Count", "TableExists"}) {
            server.answerFlag(method, VARIANT_FALSE);
        }
        server.setError(3021, L"No current record.");
    });
    server.when("1.DeleteRecord", [&] { server.setError(3043, L"Disk."); });
    server.when("1.Count", [&] { server.setError(0, L""); });
    EXPECT_EQ((Lines{"nil", "nil", "\"(3021) No current record.\"",
                     "\nA disk or network error occurred while trying to access the database.Try the command "
                     "again. If it continues to not work, try restarting AutoCAD. If that does not fix the "
                     "error, try restarting your computer.nil",
                     "nil", "nil", "\"(3043) Disk.\"", "\"\"", "\"\""}),
              runConnected({"(ts_top)", "(ts_skip)", "(ts_lastError)", "(ts_delete)", "(ts_count)",
                            "(ts_exist \"T\")", "(ts_lastError)", "(ts_resetLastError)", "(ts_lastError)"}));
}

TEST_F(CursorTest, answersAreTextsTruthAndNumbers) {
    server.answerText("CurrentTable", L"Layers");
    server.answerFlag("TableExists?", VARIANT_FALSE);
    server.answerFlag("IsReadOnly", VARIANT_FALSE);
    server.answerValue("Count", variantFromLong(70000));
    server.answerValue("Count", variantFromLong(-3));
    EXPECT_EQ((Lines{"\"Layers\"", "\"\"", "nil", "T", wrongType, "nil", "T", "70000.0", "-3", "T"}),
              runConnected({"(ts_current_table)", "(ts_current_table)", "(ts_exist \"a\")",
                            "(ts_exist \"b\")", "(ts_exist)", "(ts_readonly)", "(ts_readonly)", "(ts_count)",
                            "(ts_count)", "(ts_delete)"}));
}

// --- ts_append_withindex ---

TEST_F(CursorTest, recordsAreAddedUntilTheCounterIsTheIndex) {
    server.answerValue("MoveLast", record(3));
    server.answerValue("Append", record(4));
    server.answerValue("Append", record(5));
    EXPECT_EQ((Lines{shown(5)}), runConnected({"(ts_append_withindex 5 '(\"A\" . 1))"}));
    EXPECT_EQ((Lines{"1.MoveLast", "1.Append [ 'A' 1 ] 0", "1.DeleteRecord", "1.Append [ 'A' 1 ] 0"}),
              callsWhenConnected());
}

TEST_F(CursorTest, indexThatIsGoneAddsNothing) {
    server.answerValue("MoveLast", record(7));
    server.answerFlag("MoveLast", VARIANT_TRUE);
    server.answerFlag("MoveLast", VARIANT_FALSE);
    server.answerValue("Append", record(9));
    const char* const noMatch = "\"error - unable to match index\"";
    EXPECT_EQ((Lines{noMatch, noMatch, wrongType, wrongType, "nil"}),
              runConnected({"(ts_append_withindex 5 '(\"A\" . 1))", "(ts_append_withindex 8 '(\"A\" . 1))",
                            "(ts_append_withindex)", "(ts_append_withindex '(\"A\" . 1))",
                            "(ts_append_withindex 5)"}));
    EXPECT_EQ((Lines{"1.MoveLast", "1.MoveLast", "1.Append [ 'A' 1 ] 0", "1.DeleteRecord"}),
              callsWhenConnected());
}

TEST_F(CursorTest, counterThatCannotGoOnEndsTheLoop) {
    server.when("1.CurrentIndex", [&] { server.setError(3022, L"Duplicate."); });
    server.answerFlag("Append", VARIANT_FALSE);
    server.answerFlag("DeleteRecord", VARIANT_FALSE);
    for (const int counter : {0, 2, 2, 2}) {
        server.answerValue("Append", record(counter));
    }
    EXPECT_EQ((Lines{"\nTessary Error: Duplicate.nil", "\"error - failed to delete record\"",
                     "\"error - unable to match index\""}),
              runConnected({"(ts_append_withindex 5 '(\"A\" . 1))", "(ts_append_withindex 5 '(\"A\" . 1))",
                            "(ts_append_withindex 5 '(\"A\" . 1))"}));
}

}  // namespace

}  // namespace tessary::testing
