// Database files: made, opened, shared, damaged, repaired, linked.

#include "tests/server/engine_fixture.h"

#include "server/sqlite/sqlite_database.h"

#include <cstring>

namespace tessary::server {

namespace {

class EngineFiles : public EngineTest {
protected:
    void write(const char* name, std::string_view content) {
        std::ofstream stream(folder / name, std::ios::binary);
        stream.write(content.data(), static_cast<std::streamsize>(content.size()));
    }
    std::string read(const Text& name) {
        std::ifstream stream(std::filesystem::path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    int openError(const char* name) {
        return errorOf([&] { engine->open(file(name), OpenMode::readWrite); });
    }
    std::size_t filesInFolder() {
        return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder), {}));
    }
    // Two tables with a relation, a query and `count` records each.
    void fill(int count) {
        createAndOpen();
        run(u"CREATE TABLE Layer (ix COUNTER PRIMARY KEY, sName TEXT(40), dValue DOUBLE)");
        run(u"CREATE INDEX byName ON Layer (sName)");
        run(u"CREATE TABLE LayerKey (ix COUNTER PRIMARY KEY, layer LONG CONSTRAINT R REFERENCES Layer (ix), "
            u"s MEMO)");
        database->createQuery({u"Names", u"SELECT sName FROM Layer"});
        std::vector<FieldValue> layer = {{u"sName", Null{}}}, key = {{u"layer", Null{}}, {u"s", Null{}}};
        for (int i = 1; i <= count; ++i) {
            layer[0].value = u"layer number " + toText(std::to_string(i));
            order(u"Layer")->insert(layer);
            key[0].value = i;
            key[1].value = Text(100, u'x');
            order(u"LayerKey")->insert(key);
        }
    }
};

TEST_F(EngineFiles, OpenTellsWhatIsWrong) {
    EXPECT_EQ(openError("none.qn"), 3024);
    EXPECT_EQ(openError("no/none.qn"), 3044);
    std::filesystem::create_directory(folder / "dir.qn");
    EXPECT_EQ(openError("dir.qn"), 3051);
    write("empty.qn", "");
    EXPECT_EQ(openError("empty.qn"), 3343);
    write("text.qn", std::string(5000, 'a'));
    EXPECT_EQ(openError("text.qn"), 3343);
    sqlite3* foreign = nullptr;
    sqlite3_open(toUtf8(file("foreign.qn")).c_str(), &foreign);
    sqlite3_exec(foreign, "CREATE TABLE t(a)", nullptr, nullptr, nullptr);
    sqlite3_close(foreign);
    EXPECT_EQ(openError("foreign.qn"), 3343);
}

TEST_F(EngineFiles, CreateNeverReplacesAFile) {
    write("plan.qn", "precious");
    EXPECT_EQ(errorOf([&] { engine->create(path); }), 3204);
    EXPECT_EQ(read(path), "precious");
    EXPECT_EQ(errorOf([&] { engine->create(file("no/plan.qn")); }), 3044);
    EXPECT_EQ(filesInFolder(), 1u);
    engine->create(file("Zeichnung Ü.qn"));
    EXPECT_EQ(filesInFolder(), 2u);
    EXPECT_TRUE(open(file("Zeichnung Ü.qn"))->isAlive());
}

TEST_F(EngineFiles, TheJournalOfADeletedDatabaseDoesNotSpoilTheNextOne) {
    fill(50);
    database.reset();
    {
        Connection killed(path, Connection::Access::readWrite);
        killed.execute("PRAGMA cache_size=2; BEGIN; UPDATE LayerKey SET s='changed'");
        std::filesystem::copy_file(folder / "plan.qn-journal", folder / "left");
    }
    std::filesystem::rename(folder / "left", folder / "next.qn-journal");
    engine->compact(path, file("next.qn"));
    EXPECT_FALSE(std::filesystem::exists(folder / "next.qn-journal"));
    database = open(file("next.qn"));
    EXPECT_EQ(order(u"LayerKey")->count(), 50);
}

TEST_F(EngineFiles, AChangeThatAKilledProgramLeftHalfDoneIsUndone) {
    fill(50);
    database.reset();
    {
        Connection killed(path, Connection::Access::readWrite);
        killed.execute("PRAGMA cache_size=2; BEGIN; UPDATE LayerKey SET s=s || 'changed'");
        std::filesystem::copy_file(folder / "plan.qn-journal", folder / "next.qn-journal");
        std::filesystem::copy_file(folder / "plan.qn", folder / "next.qn");
    }
    database = open(file("next.qn"));
    EXPECT_EQ(run(u"SELECT ix FROM LayerKey WHERE s LIKE '*changed'"), 0);
    EXPECT_EQ(order(u"LayerKey")->count(), 50);
}

TEST_F(EngineFiles, ReadOnlyMeansReadOnly) {
    fill(2);
    database = open(OpenMode::readOnly);
    EXPECT_TRUE(database->isReadOnly());
    EXPECT_EQ(along(*order(u"Layer"), 0), "1 2");
    EXPECT_EQ(errorOf([&] { order(u"Layer")->insert({}); }), 3027);
    EXPECT_EQ(errorOf([&] { run(u"DELETE FROM LayerKey"); }), 3027);
    EXPECT_EQ(errorOf([&] { run(u"CREATE TABLE T (a LONG)"); }), 3027);
    EXPECT_EQ(run(u"SELECT * FROM Layer"), 2);
}

TEST_F(EngineFiles, AnotherUsersLockIsWaitedForAndThenReported) {
    fill(1);
    Connection other(path, Connection::Access::readWrite);
    other.execute("BEGIN EXCLUSIVE");
    dynamic_cast<SqliteDatabase&>(*database).setPatience(std::chrono::milliseconds(20));
    EXPECT_EQ(errorOf([&] { order(u"Layer"); }), 3218);
    other.execute("COMMIT");
    auto layers = order(u"Layer");
    other.execute("BEGIN IMMEDIATE");
    EXPECT_EQ(layers->count(), 1);
    EXPECT_EQ(errorOf([&] { layers->insert({}); }), 3218);
    other.execute("COMMIT");
    EXPECT_EQ(layers->insert({}).values[0], Value(2));
}

// Saving many records into a locked file would stand still for minutes.
TEST_F(EngineFiles, AfterAWaitInVainTheNextOnesAreShort) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds patience(400);
    fill(1);
    auto layers = order(u"Layer");
    dynamic_cast<SqliteDatabase&>(*database).setPatience(patience);
    Connection other(path, Connection::Access::readWrite);
    other.execute("BEGIN IMMEDIATE");
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(errorOf([&] { layers->insert({}); }), 3218);
    const Clock::time_point first = Clock::now();
    for (int time = 0; time < 5; ++time)
        EXPECT_EQ(errorOf([&] { layers->insert({}); }), 3218);
    const Clock::time_point all = Clock::now();
    EXPECT_GE(first - start, patience);
    EXPECT_LT(all - first, 5 * patience / 2);
    other.execute("COMMIT");
    EXPECT_EQ(layers->insert({}).values[0], Value(2));
}

// Lists that are written back unchanged would wait for another writer once for each row.
TEST_F(EngineFiles, ARecordThatHoldsTheValuesAlreadyIsNotWritten) {
    fill(1);
    auto layers = order(u"Layer");
    const Record record = *layers->first();
    const std::vector<FieldValue> same = {{u"sName", Text(u"layer number 1")}, {u"dValue", Null{}}};
    const std::vector<FieldValue> otherCase = {{u"sName", Text(u"Layer number 1")}};
    Connection other(path, Connection::Access::readWrite);
    dynamic_cast<SqliteDatabase&>(*database).setPatience(std::chrono::milliseconds(20));
    other.execute("BEGIN IMMEDIATE");
    EXPECT_EQ(layers->update(record.position, same).values, record.values);
    EXPECT_EQ(errorOf([&] { layers->update(record.position, otherCase); }), 3218);
    other.execute("COMMIT");
    EXPECT_EQ(layers->update(record.position, otherCase).values[1], Value(Text(u"Layer number 1")));
    EXPECT_EQ(layers->first()->values[1], Value(Text(u"Layer number 1")));
    database = open(OpenMode::readOnly);
    EXPECT_EQ(errorOf([&] { order(u"Layer")->update(record.position, otherCase); }), 3027);
    database = open(OpenMode::readWrite);
    run(u"DELETE FROM LayerKey");
    run(u"DELETE FROM Layer");
    EXPECT_EQ(errorOf([&] { order(u"Layer")->update(record.position, otherCase); }), 3167);
}

TEST_F(EngineFiles, LongChangeTellsWhoMakesIt) {
    fill(1);
    const Text note = path + u"-writer";
    Connection writer(path, Connection::Access::readWrite);
    writer.setNoteDelay(std::chrono::milliseconds(0));
    {
        const Transaction change(writer, Transaction::Kind::write);
        EXPECT_EQ(read(note), "");
        writer.number("WITH RECURSIVE n(i) AS (VALUES (1) UNION ALL SELECT i + 1 FROM n WHERE i < 200000) "
                      "SELECT count(*) FROM n");
        const char* name = std::getenv("COMPUTERNAME");
        EXPECT_EQ(read(note), name ? name : "");
#ifdef _WIN32
        // Only here a file that is open cannot be removed, which tells the note of a living writer.
        dynamic_cast<SqliteDatabase&>(*database).setPatience(std::chrono::milliseconds(20));
        try {
            run(u"DELETE FROM LayerKey");
            ADD_FAILURE() << "the lock was not seen";
        } catch (const DatabaseError& error) {
            EXPECT_NE(error.text().find(toText(name ? name : "?")), Text::npos) << toUtf8(error.text());
        }
#endif
    }
    EXPECT_FALSE(std::filesystem::exists(note));
    // What a killed program has left names nobody.
    write("plan.qn-writer", "ELSEWHERE");
    EXPECT_EQ(writingComputer(path), u"");
    EXPECT_EQ(run(u"DELETE FROM LayerKey"), 1);
}

TEST_F(EngineFiles, NoLockStaysBetweenCalls) {
    fill(3);
    Connection other(path, Connection::Access::readWrite);
    other.setPatience(std::chrono::milliseconds(1));
    const auto othersCanWrite = [&] { other.execute("BEGIN EXCLUSIVE; COMMIT"); };
    auto layers = order(u"Layer", u"byName");
    const Record record = *layers->first();
    othersCanWrite();
    layers->after(record.position);
    layers->seek(std::vector<Value>{u"nothing"});
    othersCanWrite();
    layers->update(record.position, {});
    EXPECT_NE(errorOf([&] { layers->erase(record.position); }), 0);
    othersCanWrite();
    EXPECT_NE(errorOf([&] { run(u"SELECT 1/0 FROM Layer"); }), 0);
    run(u"SELECT * FROM Layer");
    database->tableNames();
    othersCanWrite();
}

TEST_F(EngineFiles, CompactingKeepsEverything) {
    fill(200);
    run(u"DELETE FROM LayerKey WHERE ix > 50");
    EXPECT_EQ(errorOf([&] { engine->compact(file("none.qn"), file("b.qn")); }), 3024);
    EXPECT_EQ(errorOf([&] { engine->compact(path, path); }), 3204);
    engine->compact(path, file("b.qn"));  // while it is open
    EXPECT_EQ(filesInFolder(), 2u);
    EXPECT_LT(read(file("b.qn")).size(), read(path).size());
    database = open(file("b.qn"));
    EXPECT_EQ(order(u"Layer", u"byName")->count(), 200);
    EXPECT_EQ(database->queries().size(), 1u);
    EXPECT_EQ(errorOf([&] { run(u"DELETE FROM Layer"); }), 3200);
    const std::vector<FieldValue> fields = {{u"layer", 7}};
    EXPECT_EQ(order(u"LayerKey")->insert(fields).values[0], Value(201));
}

// Whatever page is gone: the engine says so, and a repair makes a database that opens, with the records of
// the other pages in it.
TEST_F(EngineFiles, ADatabaseWithoutOneOfItsPagesIsRepaired) {
    fill(120);
    database.reset();
    const std::string whole = read(path);
    std::size_t pageSize = 0;
    {
        Connection connection(path, Connection::Access::readOnly);
        pageSize = static_cast<std::size_t>(connection.number("PRAGMA page_size"));
    }
    std::int64_t most = 0;
    int repaired = 0;
    for (std::size_t at = pageSize; at < whole.size(); at += pageSize) {
        std::string damaged = whole;
        std::memset(damaged.data() + at, 0, pageSize);
        write("damaged.qn", damaged);
        std::filesystem::remove(folder / "repaired.qn");
        const OpenResult result = engine->open(file("damaged.qn"), OpenMode::readWrite);
        EXPECT_EQ(result.database == nullptr, !result.problem.empty());
        Text text;
        const int code = errorOf([&] { engine->compact(file("damaged.qn"), file("repaired.qn")); }, &text);
        EXPECT_EQ(code, result.database == nullptr ? 3049 : 0) << "page at " << at << toUtf8(text);
        if (result.database == nullptr)
            ++repaired;
        database = open(file("repaired.qn"));
        ASSERT_TRUE(database != nullptr) << "page at " << at;
        std::int64_t records = 0;
        for (const Text& table : database->tableNames()) {
            Text ignored;
            records += database->openOrder(table, u"", ignored)->count();
        }
        most = std::max(most, records);
        database.reset();
    }
    EXPECT_EQ(most, 240);
    EXPECT_GT(repaired, 5);
}

TEST_F(EngineFiles, AHalfFileNeedsRepair) {
    fill(120);
    database.reset();
    const std::string whole = read(path);
    for (const std::size_t part : {whole.size() - 1, whole.size() / 2, std::size_t{5000}, std::size_t{4096},
                                   std::size_t{90}, std::size_t{100}, std::size_t{20}}) {
        write("half.qn", whole.substr(0, part));
        OpenResult result;
        EXPECT_EQ(errorOf([&] { result = engine->open(file("half.qn"), OpenMode::readWrite); }), 0) << part;
        EXPECT_TRUE(result.database == nullptr) << part;
        std::filesystem::remove(folder / "repaired.qn");
        const int code = errorOf([&] { engine->compact(file("half.qn"), file("repaired.qn")); });
        EXPECT_EQ(code, part > 4000 ? 3049 : 3343) << part;
        if (code == 3049) {
            EXPECT_TRUE(open(file("repaired.qn")) != nullptr) << part;
        } else {
            EXPECT_FALSE(std::filesystem::exists(folder / "repaired.qn")) << part;
        }
    }
}

TEST_F(EngineFiles, LostRecordsAreCounted) {
    fill(300);
    database.reset();
    std::string content = read(path);
    const std::string needle = "layer number 150";
    std::string wide;
    for (const char c : needle)
        wide += {c, '\0'};
    const std::size_t at = content.find(wide) / 4096 * 4096;
    std::memset(content.data() + at, 0, 4096);
    write("plan.qn", content);
    Text text;
    EXPECT_EQ(errorOf([&] { engine->compact(path, file("repaired.qn")); }, &text), 3049);
    EXPECT_NE(text.find(u"of 300 could be read"), Text::npos) << toUtf8(text);
    database = open(file("repaired.qn"));
    const std::int64_t left = order(u"Layer", u"byName")->count();
    EXPECT_GT(left, 100);
    EXPECT_LT(left, 300);
    EXPECT_EQ(order(u"Layer")->insert({}).values[0], Value(301));
}

TEST_F(EngineFiles, LinkedTablesWorkAsIfTheyWereHere) {
    fill(3);
    database.reset();
    engine->create(file("here.qn"));
    database = open(file("here.qn"));
    run(u"CREATE TABLE Own (a LONG)");
    database->linkTable({u"Far", u"plan.qn", u"Layer"});
    database->linkTable({u"FarKey", path, u"LayerKey"});
    EXPECT_EQ(errorOf([&] { database->linkTable({u"OWN", u"plan.qn", u"Layer"}); }), 3010);
    EXPECT_EQ(errorOf([&] { database->linkTable({u"Bad", u"plan.qn", u"Nothing"}); }), 3078);
    EXPECT_EQ(database->tableNames(), (std::vector<Text>{u"Far", u"FarKey", u"Own"}));
    EXPECT_EQ(along(*order(u"Far", u"byName"), 0), "1 2 3");
    const std::vector<FieldValue> fields = {{u"sName", u"a"}};
    EXPECT_EQ(order(u"Far")->insert(fields).values[0], Value(4));
    EXPECT_EQ(run(u"SELECT * FROM Far INNER JOIN FarKey ON Far.ix = FarKey.layer"), 3);
    EXPECT_EQ(run(u"UPDATE Far SET dValue = 5 WHERE ix = 4"), 1);
    EXPECT_EQ(errorOf([&] { run(u"DELETE FROM Far"); }), 3200);
    EXPECT_EQ(errorOf([&] { database->createIndex(u"Far", {u"i", {{u"sName"}}}); }), 3027);
    EXPECT_EQ(run(u"INSERT INTO Own SELECT ix FROM Far"), 4);
    {
        auto far = open();
        Text name;
        EXPECT_EQ(far->openOrder(u"Layer", u"byName", name)->first()->values[2], Value(5.0));
    }
    database = open(file("here.qn"));
    std::filesystem::rename(folder / "plan.qn", folder / "away.qn");
    Text text;
    EXPECT_EQ(errorOf([&] { run(u"SELECT * FROM Far"); }, &text), 3024);
    EXPECT_NE(text.find(u"plan.qn"), Text::npos);
    EXPECT_EQ(errorOf([&] { order(u"Far"); }), 3024);
    EXPECT_EQ(run(u"SELECT * FROM Own"), 4);
    EXPECT_TRUE(database->hasTable(u"Far"));
    database->dropTable(u"Far", false);
    EXPECT_FALSE(database->hasTable(u"Far"));
    EXPECT_TRUE(std::filesystem::exists(folder / "away.qn"));
}

TEST_F(EngineFiles, TextFilesAreReadAsTables) {
    createAndOpen();
    write("parts.csv",
          "\xEF\xBB\xBFName,Size,Part.No,,Name\r\n\"duct, \"\"round\"\"\",4.5,007,x,\r\nbend,-2,\"8\",\n\n");
    database->linkTable({u"Parts", u"parts.csv", u""});
    const TableDefinition table = database->table(u"parts");
    std::string fields;
    for (const FieldDefinition& definition : table.fields)
        fields += toUtf8(definition.name + u":" + typeName(definition.type)) + " ";
    EXPECT_EQ(fields, "Name:TEXT Size:DOUBLE Part_No:TEXT Field4:TEXT Name2:TEXT ");
    EXPECT_EQ(along(*order(u"Parts"), 0), "duct, \"round\" bend");
    EXPECT_EQ(along(*order(u"Parts"), 4), "- -");
    EXPECT_EQ(run(u"SELECT * FROM Parts WHERE Size > 0"), 1);
    EXPECT_EQ(errorOf([&] { order(u"Parts")->insert({}); }), 3027);
    EXPECT_EQ(errorOf([&] { run(u"DELETE FROM Parts"); }), 3027);
    auto parts = order(u"Parts");
    write("parts.csv", "Name\na longer file with other fields\nb\nc\n");
    EXPECT_EQ(run(u"SELECT * FROM Parts"), 3);
    EXPECT_EQ(errorOf([&] { parts->first(); }), 3219);
    write("empty.csv", "");
    EXPECT_EQ(errorOf([&] { database->linkTable({u"E", u"empty.csv", u""}); }), 3264);
    EXPECT_EQ(errorOf([&] { database->linkTable({u"N", u"none.csv", u""}); }), 3024);
}

}  // namespace

}  // namespace tessary::server
