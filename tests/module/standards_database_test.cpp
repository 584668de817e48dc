// How the customization commands open and close their database.

#include "module/standards/standards_database.h"

#include "tests/module/database_session.h"
#include "tests/module/value_lists.h"

#include <comdef.h>

#include <stdexcept>

namespace tessary::testing {

namespace {

class StandardsDatabases : public DatabaseTest {
protected:
    ~StandardsDatabases() override { setCurrentConnection(nullptr, L"", 0); }
    // A command that opens no dialog, since its database cannot be opened.
    static constexpr const char* command = "(qn_qn-customizeLayers \"C:/std.qn\")";
};

TEST_F(StandardsDatabases, pathIsTheArgumentOrThatOfTheCurrentConnection) {
    const ValueList named = makeList(RTSTR, L"C:/a.qn", RTSHORT, 5);
    ArgCursor cursor = named.get();
    StandardsPath path = readStandardsPath(cursor);
    EXPECT_EQ(L"C:/a.qn", path.path);
    EXPECT_TRUE(path.given);
    EXPECT_EQ(RTSHORT, cursor->restype);

    path = readStandardsPath(cursor);
    EXPECT_EQ(L"", path.path);
    EXPECT_FALSE(path.given);
    EXPECT_EQ(RTSHORT, cursor->restype);
    EXPECT_TRUE(server.allCalls().empty());

    const ConnectionPointer current = createConnection();
    openDatabase(*current, L"C:/own.qn", 0);
    setCurrentConnection(current, L"C:/own.qn", 0);
    cursor = nullptr;
    path = readStandardsPath(cursor);
    EXPECT_EQ(L"C:/own.qn", path.path);
    EXPECT_FALSE(path.given);
}

TEST_F(StandardsDatabases, onlyWholePathsReachTheServerAsGiven) {
    ConnectionPointer connection = createConnection();
    server.answerFlag("OpenForCustomization?", VARIANT_FALSE);
    EXPECT_TRUE(openForCustomization(connection, L"C:/Jobs/a 100%.qn"));
    server.answerFlag("OpenForCustomization?", VARIANT_FALSE);
    EXPECT_TRUE(openForCustomization(connection, L"a.qn"));
    EXPECT_EQ("1.OpenForCustomization C:/Jobs/a 100%.qn", server.calls().front());
    EXPECT_TRUE(server.calls().back().starts_with("1.OpenForCustomization Z:\\"));
    EXPECT_TRUE(server.calls().back().ends_with("\\a.qn"));
}

TEST_F(StandardsDatabases, databaseThatCannotBeOpenedIsReportedAndReleased) {
    server.answerFlag("OpenForCustomization", VARIANT_FALSE);
    server.answerFlag("OpenForCustomization", VARIANT_FALSE);
    server.answerFlag("OpenForCustomization", VARIANT_FALSE);
    server.answerFlag("OpenForCustomization", VARIANT_FALSE);
    server.when("1.OpenForCustomization C:/std.qn", [&] { server.setError(3343, L"Not a database: 50%s."); });
    server.when("2.OpenForCustomization C:/std.qn", [&] { server.setError(3043, L"Disk."); });
    server.when("3.OpenForCustomization C:/std.qn", [&] { server.setError(3021, L"No record."); });
    server.when("4.OpenForCustomization C:/std.qn", [&] { server.setError(0, L""); });
    EXPECT_EQ((Lines{"\nDatabase Error: Not a database: 50%s.nil",
                     "\nA disk or network error occurred while trying to access the database.Try the command "
                     "again. If it continues to not work, try restarting AutoCAD. If that does not fix the "
                     "error, try restarting your computer.nil",
                     "nil", "nil", "\"(3021) No record.\""}),
              runLisp({command, command, command, command, "(ts_lastError)"}));
    EXPECT_EQ(0, server.objectCount());
    EXPECT_EQ((Lines{"1.OpenForCustomization C:/std.qn", "1.IsErrorPending", "1.GetError"}),
              (Lines{server.calls()[0], server.calls()[1], server.calls()[2]}));
}

TEST_F(StandardsDatabases, databaseThatCanOnlyBeReadIsNotShown) {
    server.answerFlag("OpenForCustomization?", VARIANT_TRUE);
    EXPECT_EQ((Lines{"Quarnel: Database is read-only. Cannot be viewed at this time.\nnil"}),
              runLisp({command}));
    EXPECT_EQ((Lines{"1.OpenForCustomization C:/std.qn"}), server.calls());
    EXPECT_EQ(0, server.objectCount());
}

TEST_F(StandardsDatabases, withoutAServerNothingHappens) {
    server.refuseObjects();
    EXPECT_EQ((Lines{"nil", "nil"}), runLisp({command, "(qn_qn-customizeLayers)"}));
    EXPECT_TRUE(server.calls().empty());
}

TEST_F(StandardsDatabases, failingCallReachesTheProgramAndLeavesNothingOpen) {
    server.failCall("OpenForCustomization", E_FAIL);
    const Lines printed = runLisp({command});
    ASSERT_EQ(1u, printed.size());
    EXPECT_TRUE(printed.front().starts_with("\nError")) << printed.front();
    EXPECT_EQ(0, server.objectCount());
}

TEST_F(StandardsDatabases, databaseIsOpenAsLongAsTheDialog) {
    const StandardsDatabase database = {createConnection(), true};
    bool ran = false;
    runStandardsDialog(database, nullptr, [&](const StandardsDatabase& shown, HWND parent) {
        ran = shown.connection.get() == database.connection.get() && shown.pathGiven && !parent;
        EXPECT_TRUE(server.calls().empty());
    });
    EXPECT_TRUE(ran);
    EXPECT_EQ((Lines{"1.CloseDatabase"}), server.calls());
}

TEST_F(StandardsDatabases, dialogThatFailsLeavesTheDatabaseClosed) {
    const StandardsDatabase database = {createConnection(), true};
    const auto fails = [](const StandardsDatabase&, HWND) { throw std::runtime_error("dialog"); };
    EXPECT_THROW(runStandardsDialog(database, nullptr, fails), std::runtime_error);
    EXPECT_EQ((Lines{"1.CloseDatabase"}), server.calls());
    // With the server gone, the dialog's own failure is still the one that counts.
    server.die();
    EXPECT_THROW(runStandardsDialog(database, nullptr, fails), std::runtime_error);
    EXPECT_THROW(runStandardsDialog(database, nullptr, [](const StandardsDatabase&, HWND) {}), _com_error);
}

}  // namespace

}  // namespace tessary::testing
