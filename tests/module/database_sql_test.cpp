// Statements, queries and schema: what reaches the server, and the routes of a failing statement.

#include "tests/module/database_session.h"

namespace tessary::testing {

namespace {

class SqlTest : public DatabaseTest {
protected:
    static Variant rows() {
        const Variant marker = variantFromString(L"*NewRecord*");
        return arrayOf({marker, variantFromString(L"A"), variantFromLong(1), marker, variantFromString(L"A"),
                        Variant::null()});
    }
    void failStatements(int count) {
        for (int i = 0; i < count; ++i) {
            server.answerFlag("RunSql", VARIANT_FALSE);
        }
    }
};

constexpr const char* tooFew = "\nToo few arguments passed.\n; error: ADS request error";
constexpr const char* wrongType = "\nWrong type of arguments passed.\n; error: ADS request error";
constexpr const char* badData = "\nBad data passed .\n; error: ADS request error";
constexpr const char* box = "Quarnel: Database connection error.\nClose and reopen AutoCAD.\n\nIf you are "
                            "getting this error frequently, "
                            "press \"Yes\" to send an error report to Quarnel Support. [Yes/No]: ";

TEST_F(SqlTest, recordsComeAsListsOfPairs) {
    server.answerValue("RunSql", rows());
    server.answerValue("RunQuery", rows());
    EXPECT_EQ(
        (Lines{"(((\"A\" . 1)) ((\"A\")))", "nil", "nil", "nil", "(((\"A\" . 1)) ((\"A\")))", "nil", "nil"}),
        runConnected({"(ts_sql \"select\")", "(ts_sql \"select\" 7)", "(ts_sql-nil \"select\")",
                      "(ts_sql-error \"select\")", "(ts_query \"Q\" 1 \"x\")", "(ts_query \"Q\")",
                      "(ts_query \"Q\" '(1.0 2.0))"}));
    EXPECT_EQ((Lines{"1.RunSql select", "1.RunSql select", "1.RunSql select", "1.RunSql select",
                     "1.RunQuery Q [ 1 'x' ]", "1.RunQuery Q [ ]"}),
              callsWhenConnected());
}

TEST_F(SqlTest, failedStatementIsTriedAgainOnTheReopenedDatabase) {
    failStatements(1);
    server.answerFlag("IsWritable", VARIANT_FALSE);
    server.answerValue("RunSql", Variant());
    server.answerValue("RunSql", rows());
    EXPECT_EQ((Lines{"(((\"A\" . 1)) ((\"A\")))"}), runConnected({"(ts_sql-error \"select\")"}));
    EXPECT_EQ((Lines{"1.RunSql select", "1.DatabasePath", "1.IsWritable", "1.CloseDatabase",
                     "1.OpenDatabase C:/windows/win.ini 0 -1", "1.RunSql select"}),
              callsWhenConnected());
}

TEST_F(SqlTest, databaseTheServerForgotIsOpenedAsItWas) {
    server.when("1.CurrentIndex", [&] {
        server.answerText("DatabasePath", L"");
        server.answerText("OpenDatabase", L"*REPAIR*");
        server.setError(3343, L"Damaged.");
    });
    failStatements(1);
    EXPECT_EQ((Lines{std::string("\nTessary Error: Damaged.") + badData}),
              runConnected({"(ts_sql \"select\")"}));
    EXPECT_EQ((Lines{"1.RunSql select", "1.DatabasePath", "1.OpenDatabase C:/windows/win.ini 0 0",
                     "1.IsErrorPending", "1.GetError", "1.CloseDatabase"}),
              callsWhenConnected());
}

TEST_F(SqlTest, quietModesShowNoBox) {
    failStatements(8);
    server.when("1.CurrentIndex", [&] {
        server.answerText("DatabasePath", L"a.mdb");
        server.answerText("DatabasePath", L"a.mdb");
        server.answerText("OpenDatabase", L"a.mdb");
        server.answerText("OpenDatabase", L"a.mdb");
        server.answerText("OpenDatabase", L"");
        server.answerText("OpenDatabase", L"");
    });
    EXPECT_EQ(
        (Lines{"nil", "\"*ERROR*\"", "nil", "\"*ERROR*\""}),
        runConnected({"(ts_sql-nil \"x\")", "(ts_sql-error \"x\")", "(ts_sql \"x\" 1)", "(ts_sql \"x\" 2)"}));
}

TEST_F(SqlTest, drafterIsAskedOnceAndTheStatementIsPrintedAsAFormat) {
    server.when("1.CurrentIndex", [&] { server.setError(3075, L"Syntax."); });
    failStatements(4);
    EXPECT_EQ((Lines{std::string(box) + "\nQuery 2: like 'q'\nTessary Error: Syntax." + badData,
                     std::string(box) + "nil"}),
              runConnected({"(ts_sql \"like '%q%'\")", "Yes", "(ts_sql \"x\")", "No"}));
}

TEST_F(SqlTest, lostConnectionAsksWithoutARetry) {
    failStatements(3);
    // Closed meanwhile, so that neither the server nor the module knows a path.
    server.when("1.CurrentIndex", [&] {
        for (int i = 0; i < 4; ++i) {
            server.answerText("DatabasePath", L"");
        }
    });
    EXPECT_EQ((Lines{"nil", "\"*ERROR*\"", "nil", std::string(box) + "\nQuery 1: x" + badData}),
              runConnected(
                  {"(ts_close_db)", "(ts_sql-error \"x\")", "(ts_sql-nil \"x\")", "(ts_sql \"x\")", "Yes"}));
    const Lines calls = callsWhenConnected();
    EXPECT_EQ(calls.end(), std::find(calls.begin(), calls.end(), "1.OpenDatabase C:/windows/win.ini 0 0"));
}

TEST_F(SqlTest, argumentsOfStatementFunctions) {
    server.answerValue("RunCommand", variantFromLong(70000));
    server.answerFlag("LinkTable?", VARIANT_FALSE);
    server.answerFlag("LinkTable?", VARIANT_TRUE);
    server.answerFlag("LinkTable?", 1);
    EXPECT_EQ((Lines{tooFew, wrongType, wrongType, wrongType, tooFew, wrongType, "70000.0", "0", wrongType,
                     wrongType, "T", tooFew, wrongType, "nil", "T", "nil"}),
              runConnected({"(ts_sql)", "(ts_sql 1)", "(ts_sql-nil)", "(ts_sql-error 1)", "(ts_command)",
                            "(ts_command nil)", "(ts_command \"update\")", "(ts_command \"update\")",
                            "(ts_query)", "(ts_create_query \"Q\")", "(ts_create_query \"Q\" \"select\")",
                            "(ts_link_table \"a\" \"b\")", "(ts_link_table \"a\" 1 \"b\")",
                            "(ts_link_table \"a\" \"b\" \"c\")", "(ts_link_table \"a\" \"b\" 5)",
                            "(ts_link_table \"a\" \"b\" \"c\")"}));
}

TEST_F(SqlTest, definitionsTravelFlatWithMarkers) {
    EXPECT_EQ((Lines{"\"Parts\"", "\"T\"", "\"T\"", "nil", wrongType}),
              runConnected({"(ts_create_table \"Parts\" '((\"NAME\" . \"TEXT\") (\"QTY\" . \"LONG\")))",
                            "(ts_create_table \"T\")", "(ts_modify_table \"T\" \"DROP\" 1)",
                            "(ts_create_table \"T\" '(1.0 2.0))", "(ts_create_table '(\"T\"))"}));
    EXPECT_EQ(
        (Lines{"1.CreateTable Parts [ '*RTLB*' '*RTLB*' 'NAME' '*RTDOTE*' 'TEXT' '*RTLE*' '*RTLB*' 'QTY' "
               "'*RTDOTE*' 'LONG' '*RTLE*' '*RTLE*' ]",
               "1.CreateTable T [ ]", "1.ModifyTable T [ 'DROP' 1 ]"}),
        callsWhenConnected());
}

TEST_F(SqlTest, schemaAnswersAndArguments) {
    server.answerValue("Structure", arrayOf({variantFromString(L"A"), variantFromString(L"LONG")}));
    server.answerValue("ListTables", arrayOf({variantFromString(L"T1"), variantFromString(L"T2")}));
    server.answerFlag("RelationExists?", 1);
    server.answerFlag("DeleteTable", VARIANT_FALSE);
    server.answerFlag("DeleteTable", VARIANT_TRUE);
    EXPECT_EQ(
        (Lines{"((\"A\" . \"LONG\"))", "(\"T1\" \"T2\")", "nil", "T", wrongType, wrongType, "nil", "nil",
               tooFew, wrongType, "\"new\"", wrongType, "T", wrongType, "nil", "T", "nil", "T", wrongType}),
        runConnected({"(ts_structure)", "(ts_list_tables)", "(ts_list_indexes)",
                      "(ts_create_index \"T\" \"IX\" nil T)", "(ts_create_index \"T\" \"IX\" nil)",
                      "(ts_create_index \"T\" \"IX\" '(1) T)", "(ts_delete_table \"T\" T)",
                      "(ts_delete_table \"T\")", "(ts_delete_table)", "(ts_delete_table 5)",
                      "(ts_rename_table \"old\" \"new\")", "(ts_rename_table \"old\")",
                      "(ts_field_required \"T\" \"F\")", "(ts_field_required \"T\")",
                      "(ts_relationExists \"R\")", "(ts_relationExists \"R\")", "(ts_attributes \"F\")",
                      "(ts_relationDelete \"T\" \"R\")", "(ts_relationDelete \"T\")"}));
    EXPECT_EQ((Lines{"1.Structure", "1.ListTables", "1.ListIndexes", "1.CreateIndex T IX 0 -1",
                     "1.DeleteTable T -1", "1.IsErrorPending", "1.DeleteTable T 0", "1.RenameTable old new",
                     "1.FieldRequired T F", "1.RelationExists R", "1.RelationExists R", "1.Attributes F",
                     "1.DeleteRelation T R"}),
              callsWhenConnected());
}

TEST_F(SqlTest, compactingAnswersOkOrTheErrorsNumber) {
    server.answerFlag("Compact", VARIANT_TRUE);
    server.answerFlag("Compact", VARIANT_FALSE);
    server.answerFlag("Compact", VARIANT_FALSE);
    server.when("2.Compact C:/a C:/b", [&] { server.setError(3204, L"It exists."); });
    server.when("3.Compact C:/a C:/b", [&] { server.setError(3204, L"It exists."); });
    const Lines printed = runLisp({"(ts_compact \"C:/a\" \"C:/b\")", "(ts_compact \"C:/a\" \"C:/b\" nil)",
                                   "(ts_compact \"C:/a\" \"C:/b\")", "(ts_lastError)", "(ts_compact \"a\")",
                                   "(ts_compact \"a\" 1)"});
    ASSERT_EQ(6u, printed.size());
    EXPECT_EQ("\"OK\"", printed[0]);
    EXPECT_EQ("\nTessary Error: It exists.3204", printed[1]);
    wchar_t computer[15] = L"";
    DWORD size = 15;
    const bool isShown = GetComputerNameW(computer, &size) != 0;
    const std::wstring name = computer;
    const std::string shownBox = "\nDatabase Error: It exists.\n(Your computer name is " +
                                 std::string(name.begin(), name.end()) + ".)\n";
    EXPECT_EQ("\nTessary Error: It exists." + (isShown ? shownBox : std::string()) + "3204", printed[2]);
    EXPECT_EQ("\"(3204) It exists.\"", printed[3]);
    EXPECT_EQ(tooFew, printed[4]);
    EXPECT_EQ(wrongType, printed[5]);
}

TEST_F(SqlTest, failedCreationReadsTheErrorOfTheCurrentConnection) {
    server.answerFlag("CreateDatabase", VARIANT_FALSE);
    server.answerFlag("CreateDatabase", VARIANT_FALSE);
    server.setError(3204, L"It exists.");
    EXPECT_EQ((Lines{"nil", "T", "\nTessary Error: It exists.nil", "T", "64", wrongType}),
              runLisp({"(ts_create_db \"C:/a.mdb\")", connect, "(ts_create_db \"C:/a.mdb\")",
                       "(ts_create_db \"C:/b.mdb\")", "(ts_getVersion)", "(ts_create_db)"}));
    EXPECT_EQ((Lines{"1.CreateDatabase C:/a.mdb", "2.OpenDatabase C:/windows/win.ini 0 0",
                     "3.CreateDatabase C:/a.mdb", "2.IsErrorPending", "2.GetError",
                     "4.CreateDatabase C:/b.mdb", "5.Version", "2.CloseDatabase"}),
              server.calls());
}

}  // namespace

}  // namespace tessary::testing
