// How a drawing gets its connection to a database, keeps it and loses it.

#include "tests/module/database_session.h"

namespace tessary::testing {

namespace {

class ConnectTest : public DatabaseTest {
protected:
    static constexpr const char* connectOther = "(ts_connect \"C:/windows/system.ini\")";
    static constexpr const char* openFirst = ".OpenDatabase C:/windows/win.ini 0 0";
    static constexpr const char* openOther = ".OpenDatabase C:/windows/system.ini 0 0";
    static std::string numbered(int number, const char* call) { return std::to_string(number) + call; }
};

TEST_F(ConnectTest, firstConnectionOpensTheFileForWriting) {
    EXPECT_EQ((Lines{"T", "\"C:/windows/win.ini\""}), runLisp({connect, "(ts_mdb)"}));
    EXPECT_EQ((Lines{"1.OpenDatabase C:/windows/win.ini 0 0", "1.DatabasePath", "1.CloseDatabase"}),
              server.calls());
    EXPECT_EQ("S.Start", server.allCalls().front());
    EXPECT_EQ("S.Stop", server.allCalls().back());
    EXPECT_EQ(0, server.objectCount());
}

TEST_F(ConnectTest, sameDatabaseInTheSameModeIsKept) {
    EXPECT_EQ((Lines{"T"}), runConnected({"(ts_connect \"WIN.INI\")"}));
    EXPECT_EQ((Lines{"1.DatabasePath", "1.DatabasePath", "1.IsWritable"}), callsWhenConnected());
}

TEST_F(ConnectTest, otherModeClosesAndOpensOnANewObject) {
    EXPECT_EQ((Lines{"T", "T"}), runConnected({"(ts_connect \"C:\\\\Windows\\\\win.ini\" \"r\")",
                                               "(ts_connect \"C:/windows/win.ini\" \"W\")"}));
    EXPECT_EQ((Lines{"1.DatabasePath", "1.DatabasePath", "1.IsWritable", "1.CloseDatabase",
                     "2.OpenDatabase C:\\Windows\\win.ini 0 -1", "2.DatabasePath", "2.DatabasePath",
                     "2.IsWritable", "2.CloseDatabase", "3.OpenDatabase C:/windows/win.ini 0 -1"}),
              callsWhenConnected());
}

TEST_F(ConnectTest, goingBackToAnEarlierDatabaseOpensItAnew) {
    // The second database leaves the first one's connection open; the third call adopts it and, as it was not
    // current when the call began, closes it.
    EXPECT_EQ((Lines{"T", "T", "\"C:/windows/win.ini\""}), runConnected({connectOther, connect, "(ts_mdb)"}));
    EXPECT_EQ((Lines{"1.DatabasePath", "1.DatabasePath", "1.DatabasePath",
                     "2.OpenDatabase C:/windows/system.ini 0 0", "2.DatabasePath", "2.DatabasePath",
                     "2.DatabasePath", "1.DatabasePath", "1.CloseDatabase",
                     "3.OpenDatabase C:/windows/win.ini 0 0", "3.DatabasePath", "3.CloseDatabase"}),
              callsWhenConnected());
}

TEST_F(ConnectTest, closingTheLastDrawingClosesEveryDatabase) {
    runLisp({connect, connectOther});
    const Lines calls = server.calls();
    const auto closings = [&](const std::string& call) {
        return std::count(calls.begin(), calls.end(), call);
    };
    EXPECT_EQ(1, closings("1.CloseDatabase"));
    EXPECT_EQ(1, closings("2.CloseDatabase"));
    EXPECT_EQ(0, server.objectCount());
}

TEST_F(ConnectTest, databaseIsFoundOnTheSupportPathByItsWholePath) {
    EXPECT_EQ((Lines{"T", "T", "nil", "nil"}),
              runLisp({"(ts_connect \"win.ini\")", "(ts_connect \"WIN.INI\")",
                       "(ts_connect \"no such file.mdb\")", "(ts_connect \"\")"},
                      {L"C:\\users", L"C:\\windows"}));
    EXPECT_EQ("1.OpenDatabase C:\\windows\\win.ini 0 0", server.calls().front());
}

TEST_F(ConnectTest, relativePathsReachTheServerWhole) {
    wchar_t folder[MAX_PATH] = L"";
    GetCurrentDirectoryW(MAX_PATH, folder);
    SetCurrentDirectoryW(L"C:\\windows");
    runLisp(
        {"(ts_connect \"win.ini\")", "(ts_create_db \"..\\\\a.mdb\")", "(ts_compact \"a\" \"system32\")"});
    SetCurrentDirectoryW(folder);
    EXPECT_EQ((Lines{"1.OpenDatabase C:\\windows\\win.ini 0 0", "2.CreateDatabase C:\\a.mdb",
                     "3.Compact C:\\windows\\a C:\\windows\\system32", "1.CloseDatabase"}),
              server.calls());
}

TEST_F(ConnectTest, argumentsAreAPathAModeAndAFlag) {
    const std::string wrongType = "\nWrong type of arguments passed.\n; error: ADS request error";
    EXPECT_EQ((Lines{wrongType, wrongType, "T"}),
              runLisp({"(ts_connect)", "(ts_connect 1)", "(ts_connect \"C:/windows/win.ini\" nil T)"}));
    EXPECT_EQ("1.OpenDatabase C:/windows/win.ini 0 0", server.calls().front());
}

TEST_F(ConnectTest, failedOpeningTellsWhy) {
    server.setError(3051, L"It is in use.");
    for (int i = 0; i < 2; ++i) {
        server.answerText("OpenDatabase", L"");
    }
    EXPECT_EQ(
        (Lines{"\nTessary Error: It is in use.nil", "\"(3051) It is in use.\"",
               "\nTessary Error: It is in use.\n; error: ADS request error", "nil"}),
        runLisp({connect, "(ts_lastError)", "(ts_connect \"C:/windows/win.ini\" \"w\" T)", "(ts_mdb)"}));
}

TEST_F(ConnectTest, damagedDatabaseIsRepairedOnceByTheProductsProgram) {
    const char* const program =
        "(defun compactDatabase (path target how) (print (list path target how)) answer)";
    server.answerText("OpenDatabase", L"*REPAIR*");
    EXPECT_EQ((Lines{"COMPACTDATABASE", "T", "\n(\"C:/windows/win.ini\" nil \"Repair\") T",
                     "\"C:/windows/win.ini\""}),
              runLisp({program, "(setq answer T)", connect, "(ts_mdb)"}));
    EXPECT_EQ((Lines{"1.OpenDatabase C:/windows/win.ini 0 0", "1.CloseDatabase",
                     "1.OpenDatabase C:/windows/win.ini 0 0", "1.DatabasePath", "1.CloseDatabase"}),
              server.calls());
}

TEST_F(ConnectTest, repairThatDoesNotHelpReportsTheServersError) {
    server.setError(3343, L"Damaged.");
    for (const wchar_t* status : {L"*REPAIR*", L"*REPAIR*", L"*REPAIR*", L"*REPAIR*"}) {
        server.answerText("OpenDatabase", status);
    }
    EXPECT_EQ((Lines{"\nTessary Error: Damaged.nil", "COMPACTDATABASE", "\nTessary Error: Damaged.nil",
                     "COMPACTDATABASE", "\nTessary Error: Damaged.nil"}),
              runLisp({connect, "(defun compactDatabase (a b c) nil)", connect,
                       "(defun compactDatabase (a b c) T)", connect}));
}

TEST_F(ConnectTest, noServerGivesNilEverywhere) {
    server.refuseObjects();
    EXPECT_EQ((Lines{"nil", "nil", "nil", "nil", "0", "nil", "T", "\"\""}),
              runLisp({connect, "(ts_mdb)", "(ts_create_db \"a\")", "(ts_compact \"a\" \"b\")",
                       "(ts_getVersion)", "(ts_sql \"x\")", "(ts_readonly)", "(ts_lastError)"}));
    EXPECT_TRUE(server.allCalls().empty());
}

// The first object that the module asks for is the service, when it is loaded.
TEST_F(ConnectTest, serverThatIsJustEndingIsAskedForOnceMore) {
    server.failCall("CreateInstance", REGDB_E_CLASSNOTREG);
    runLisp({"T"});
    EXPECT_EQ("S.Start", server.allCalls().front());
}

TEST_F(ConnectTest, serverThatRefusesIsAskedOnce) {
    server.failCall("CreateInstance", E_ACCESSDENIED);
    runLisp({"T"});
    EXPECT_TRUE(server.allCalls().empty());
}

TEST_F(ConnectTest, closedDatabaseIsStillAsked) {
    EXPECT_EQ((Lines{"nil", "\nTessary Error: No database.nil"}), [&] {
        server.when("1.CurrentIndex", [&] { server.setError(3420, L"No database."); });
        return runConnected({"(ts_close_db)", "(ts_mdb)"});
    }());
    // The check before ts_mdb finds the database closed and closes it again.
    EXPECT_EQ((Lines{"1.CloseDatabase", "1.CloseDatabase", "1.DatabasePath", "1.IsErrorPending", "1.GetError",
                     "1.CloseDatabase"}),
              callsWhenConnected());
}

TEST_F(ConnectTest, deadConnectionIsForgotten) {
    server.when("1.CurrentIndex", [&] {
        for (int i = 0; i < 2; ++i) {
            server.answerFlag("IsAlive", VARIANT_FALSE);
        }
    });
    EXPECT_EQ((Lines{"nil", "nil", "T"}), runConnected({"(ts_mdb)", "(ts_top)", connect}));
    EXPECT_EQ((Lines{"2.OpenDatabase C:/windows/win.ini 0 0"}), callsWhenConnected());
}

TEST_F(ConnectTest, failingCallReachesTheHostWithTheDrawingUnlocked) {
    server.when("1.CurrentIndex", [&] { server.failCall("MoveFirst", RPC_E_DISCONNECTED); });
    const Lines printed = runConnected({"(ts_top)", "(ts_top)"});
    ASSERT_EQ(2u, printed.size());
    EXPECT_TRUE(printed[0].starts_with("\nError\n; error: external function ts_top failed: ")) << printed[0];
    EXPECT_EQ("nil", printed[1]);
}

TEST_F(ConnectTest, serverThatIsGoneFailsOneCallAndCanBeConnectedAnew) {
    server.when("2.CurrentIndex", [&] { server.die(); });
    const Lines printed =
        runLisp({connect, connectOther, "(ts_current_index)", "(ts_mdb)", "(ts_mdb)", connect, "(ts_mdb)"});
    ASSERT_EQ(7u, printed.size());
    EXPECT_TRUE(printed[2].starts_with("\nError\n; error: ")) << printed[2];
    EXPECT_TRUE(printed[3].starts_with("; error: external function ts_mdb failed: ")) << printed[3];
    EXPECT_EQ((Lines{"nil", "T", "\"C:/windows/win.ini\""}), Lines(printed.begin() + 4, printed.end()));
}

TEST_F(ConnectTest, serviceThatRefusesTheModuleStopsItsLoading) {
    server.failCall("Start", E_ACCESSDENIED);

    EXPECT_TRUE(runLisp({"(ts_mdb)"}, {}, 1).empty());

    EXPECT_EQ(0, server.objectCount());
}

TEST_F(ConnectTest, serviceThatCannotBeStoppedIsReleasedAllTheSame) {
    server.failCall("Stop", RPC_E_DISCONNECTED);

    EXPECT_EQ((Lines{"T", "\"C:/windows/win.ini\""}), runLisp({connect, "(ts_mdb)"}));

    EXPECT_EQ("S.Stop", server.allCalls().back());
    EXPECT_EQ(0, server.objectCount());
}

}  // namespace

}  // namespace tessary::testing
