// A client's session: the current table, the place in it, and errors that wait to be asked for.

#include "tests/server/engine_fixture.h"

#include "server/session/session.h"

namespace tessary::server {

namespace {

constexpr int noRecord = 3021;
constexpr int deleted = 3167;
constexpr int noTable = 3420;

class SessionTest : public EngineTest {
protected:
    SessionTest() {
        engine->create(path);
        session.attempt([this] {
            Text problem;
            session.open(path, OpenMode::readWrite, problem);
            TableDefinition parts;
            parts.name = u"Part";
            parts.fields = {counter(u"ixPart"), field(u"sName", FieldType::text, 20)};
            parts.indexes = {{u"PrimaryKey", {{u"ixPart"}}, true, true}, {u"byName", {{u"sName"}}}};
            session.database().createTable(parts);
            TableDefinition notes;
            notes.name = u"Note";
            notes.fields = {field(u"sText", FieldType::text)};
            session.database().createTable(notes);
        });
        EXPECT_EQ(session.pending().code, 0) << toUtf8(session.pending().text);
    }

    template <class Work>
    int errorAfter(Work work) {
        session.attempt(work);
        return session.pending().code;
    }
    int select(const char16_t* table, const char16_t* index = u"") {
        return errorAfter([&] { session.selectTable(table, index); });
    }
    // The name of the record that the operation returns, or its error.
    template <class Move>
    std::string name(Move move) {
        std::string found;
        session.attempt([&] {
            const TableRecord record = move();
            found = toUtf8(textOf(record.values.at(record.definition->fields.size() - 1)));
        });
        return session.pending().code == 0 ? found : std::to_string(session.pending().code);
    }
    std::string first() {
        return name([&] { return session.moveFirst(); });
    }
    std::string last() {
        return name([&] { return session.moveLast(); });
    }
    std::string skip(int count = 1) {
        return name([&] { return session.skip(count); });
    }
    std::string read() {
        return name([&] { return session.read(); });
    }
    std::string seek(Value key) {
        return name([&] { return session.seek({&key, 1}); });
    }
    std::string append(const char16_t* text, bool stay = false) {
        const std::vector<FieldValue> fields{{u"sName", Text(text)}};
        return name([&] { return session.append(fields, stay); });
    }
    std::string rename(const char16_t* text) {
        const std::vector<FieldValue> fields{{u"sName", Text(text)}};
        return name([&] { return session.replace(fields); });
    }
    int erase() {
        return errorAfter([&] { session.erase(); });
    }
    void addParts() {
        select(u"Part");
        for (const char16_t* text : {u"elbow", u"bend", u"duct", u"cap"})
            append(text);
        session.closeTable();
    }
    std::string ends() const {
        return std::string(session.isAtBeginning() ? "beginning " : "") + (session.isAtEnd() ? "end" : "");
    }

    std::unique_ptr<Engine> owned = makeSqliteEngine();
    Session session{std::shared_ptr<Engine>(std::move(owned))};
};

TEST_F(SessionTest, OpeningATableStandsOnItsFirstRecord) {
    addParts();
    EXPECT_EQ(select(u"part"), 0);
    EXPECT_EQ(read(), "elbow");
    EXPECT_EQ(session.currentTable(), u"Part");
    EXPECT_EQ(session.currentIndex(), u"PrimaryKey");
    EXPECT_EQ(ends(), "");
}

TEST_F(SessionTest, EmptyTableIsAtBothEnds) {
    EXPECT_EQ(ends(), "beginning end");
    select(u"Part");
    EXPECT_EQ(ends(), "beginning end");
    EXPECT_EQ(first(), "3021");
    EXPECT_EQ(skip(), "3021");
    EXPECT_EQ(read(), "3021");
    EXPECT_EQ(erase(), noRecord);
    EXPECT_EQ(ends(), "beginning end");
    append(u"bend", true);
    EXPECT_EQ(ends(), "beginning ");
    EXPECT_EQ(skip(), "bend");
}

TEST_F(SessionTest, MovingPastAnEndStaysThereUntilTheOtherDirection) {
    addParts();
    select(u"Part", u"byName");
    EXPECT_EQ(last(), "elbow");
    EXPECT_EQ(skip(), "3021");
    EXPECT_EQ(ends(), "end");
    EXPECT_EQ(skip(), "3021");
    EXPECT_EQ(skip(0), "3021");
    EXPECT_EQ(skip(-1), "elbow");
    EXPECT_EQ(skip(-3), "bend");
    EXPECT_EQ(skip(-1), "3021");
    EXPECT_EQ(ends(), "beginning ");
    EXPECT_EQ(skip(2), "cap");
    EXPECT_EQ(skip(5), "3021");
    EXPECT_EQ(skip(-4), "bend");
    EXPECT_EQ(skip(0), "bend");
}

TEST_F(SessionTest, EmptyIndexNameKeepsOrderAndPlaceAcrossOtherTables) {
    addParts();
    select(u"Part", u"byName");
    EXPECT_EQ(skip(), "cap");
    EXPECT_EQ(select(u"Note"), 0);
    EXPECT_EQ(session.currentTable(), u"Note");
    EXPECT_EQ(select(u"Part"), 0);
    EXPECT_EQ(session.currentIndex(), u"byName");
    EXPECT_EQ(skip(), "duct");
    EXPECT_EQ(select(u"Part", u"byName"), 0);
    EXPECT_EQ(read(), "bend");
}

TEST_F(SessionTest, FailedSelectionChangesNothing) {
    addParts();
    select(u"Part", u"byName");
    EXPECT_EQ(skip(), "cap");
    EXPECT_NE(select(u"Part", u"ixNone"), 0);
    EXPECT_NE(session.pending().text.find(u"ixNone"), Text::npos);
    EXPECT_EQ(select(u"Nowhere"), 3078);
    EXPECT_NE(session.pending().text.find(u"Nowhere"), Text::npos);
    EXPECT_EQ(session.currentTable(), u"Part");
    EXPECT_EQ(session.currentIndex(), u"byName");
    EXPECT_EQ(read(), "cap");
}

TEST_F(SessionTest, DeletedRecordKeepsItsPlace) {
    addParts();
    select(u"Part", u"byName");
    EXPECT_EQ(skip(), "cap");
    EXPECT_EQ(erase(), 0);
    EXPECT_EQ(read(), "3167");
    EXPECT_EQ(erase(), deleted);
    EXPECT_EQ(rename(u"x"), "3167");
    EXPECT_EQ(ends(), "");
    EXPECT_EQ(skip(), "duct");
    EXPECT_EQ(skip(-1), "bend");
}

TEST_F(SessionTest, RecordDeletedBySomebodyElseIsNoticed) {
    addParts();
    select(u"Part", u"byName");
    EXPECT_EQ(skip(), "cap");
    database = open();
    run(u"DELETE FROM Part WHERE sName = 'cap'");
    EXPECT_EQ(read(), "3167");
    EXPECT_EQ(skip(), "duct");
}

TEST_F(SessionTest, FailedSeekStandsBetweenRecords) {
    addParts();
    select(u"Part", u"byName");
    EXPECT_EQ(seek(Text(u"DUCT")), "duct");
    EXPECT_EQ(seek(Text(u"cc")), "3021");
    EXPECT_EQ(ends(), "");
    EXPECT_EQ(read(), "3021");
    EXPECT_EQ(skip(), "duct");
    EXPECT_EQ(seek(Text(u"cc")), "3021");
    EXPECT_EQ(skip(-1), "cap");
    EXPECT_EQ(seek(Text(u"zz")), "3021");
    EXPECT_EQ(skip(), "3021");
    EXPECT_EQ(skip(-1), "elbow");
}

TEST_F(SessionTest, SeekNeedsAnIndexAndAKeyOfItsLength) {
    addParts();
    select(u"Note");
    EXPECT_EQ(seek(Text(u"x")), "3019");
    select(u"Part", u"byName");
    EXPECT_EQ(errorAfter([&] { session.seek({}); }), 3001);
    const std::vector<Value> two{Text(u"bend"), std::int32_t(1)};
    EXPECT_EQ(errorAfter([&] { session.seek(two); }), 3001);
    EXPECT_EQ(read(), "bend");
}

TEST_F(SessionTest, NewRecordIsCurrentUnlessTheOldOneStays) {
    addParts();
    select(u"Part", u"byName");
    EXPECT_EQ(append(u"bow"), "bow");
    EXPECT_EQ(read(), "bow");
    EXPECT_EQ(append(u"air", true), "air");
    EXPECT_EQ(read(), "bow");
    EXPECT_EQ(skip(-2), "air");
    EXPECT_EQ(rename(u"zone"), "zone");
    EXPECT_EQ(skip(), "3021");
}

TEST_F(SessionTest, FailedAppendLeavesThePlace) {
    addParts();
    select(u"Part", u"byName");
    EXPECT_EQ(skip(), "cap");
    const std::vector<FieldValue> fields{{u"sNone", Text(u"x")}};
    EXPECT_NE(errorAfter([&] { session.append(fields, false); }), 0);
    EXPECT_NE(session.pending().text.find(u"sNone"), Text::npos);
    EXPECT_EQ(read(), "cap");
}

TEST_F(SessionTest, PendingErrorLastsUntilTheNextOperation) {
    select(u"Part");
    EXPECT_EQ(first(), "3021");
    EXPECT_EQ(session.pending().code, noRecord);
    EXPECT_EQ(session.pending().code, noRecord);
    EXPECT_EQ(select(u"Part"), 0);
    EXPECT_EQ(session.pending().text, u"");
}

TEST_F(SessionTest, WithoutTableOrDatabaseEverythingSaysSo) {
    EXPECT_EQ(first(), "3420");
    EXPECT_EQ(errorAfter([&] { session.closeTable(); }), noTable);
    EXPECT_EQ(errorAfter([&] { session.structure(); }), noTable);
    select(u"Part");
    session.closeTable();
    EXPECT_EQ(first(), "3420");
    EXPECT_EQ(session.currentTable(), u"");
    select(u"Part");
    session.close();
    EXPECT_EQ(first(), "3420");
    EXPECT_EQ(select(u"Part"), noTable);
    EXPECT_EQ(errorAfter([&] { session.run(u"SELECT * FROM Part", nullptr); }), noTable);
    EXPECT_TRUE(session.isAlive());
    EXPECT_TRUE(session.isReadOnly());
    EXPECT_EQ(session.path(), u"");
}

TEST_F(SessionTest, ChangedDefinitionKeepsThePlaceWhereTheIndexIsTheSame) {
    addParts();
    select(u"Part", u"byName");
    EXPECT_EQ(skip(), "cap");
    database = open();
    run(u"ALTER TABLE Part ADD COLUMN iSize LONG");
    EXPECT_EQ(errorAfter([&] {
                  const TableRecord record = session.read();
                  EXPECT_EQ(record.definition->fields.size(), 3u);
                  EXPECT_EQ(record.values.size(), 3u);
                  EXPECT_EQ(record.values[1], Value(Text(u"cap")));
              }),
              0);
    run(u"DROP INDEX byName ON Part");
    EXPECT_EQ(errorAfter([&] { session.read(); }), noRecord);
    EXPECT_EQ(ends(), "beginning ");
    EXPECT_EQ(session.currentIndex(), u"PrimaryKey");
    EXPECT_EQ(errorAfter([&] { EXPECT_EQ(session.skip(2).values[1], Value(Text(u"bend"))); }), 0);
}

TEST_F(SessionTest, TableThatIsRenamedOrDeletedWhileOpen) {
    addParts();
    select(u"Part", u"byName");
    EXPECT_EQ(skip(), "cap");
    EXPECT_EQ(errorAfter([&] { session.renameTable(u"part", u"Piece"); }), 0);
    EXPECT_EQ(session.currentTable(), u"Piece");
    EXPECT_EQ(read(), "cap");
    EXPECT_EQ(errorAfter([&] { session.dropTable(u"Piece", false); }), 0);
    EXPECT_EQ(session.currentTable(), u"");
    EXPECT_EQ(first(), "3420");
    database = open();
    select(u"Note");
    run(u"DROP TABLE Note");
    EXPECT_EQ(first(), "3078");
    EXPECT_EQ(select(u"Note"), 3078);
}

TEST_F(SessionTest, AttributesOfAFieldOfTheCurrentOrANamedTable) {
    EXPECT_EQ(errorAfter([&] { session.attributes(u"sName"); }), noTable);
    EXPECT_EQ(errorAfter([&] { EXPECT_FALSE(session.attributes(u"Part.sName").empty()); }), 0);
    select(u"Part");
    EXPECT_EQ(errorAfter([&] { EXPECT_EQ(session.attributes(u"sName"), session.attributes(u"PART.sname")); }),
              0);
    EXPECT_EQ(errorAfter([&] { session.attributes(u"sNone"); }), 3265);
    EXPECT_EQ(errorAfter([&] { session.attributes(u"Nowhere.sName"); }), 3078);
    EXPECT_EQ(errorAfter([&] { session.isRequired(u"Part", u"sNone"); }), 3265);
}

TEST_F(SessionTest, RelationIsDeletedThroughEitherOfItsTables) {
    select(u"Part");
    const auto relate = [&] {
        session.run(u"CREATE TABLE Use (ixPart LONG, CONSTRAINT PartUse FOREIGN KEY (ixPart) REFERENCES Part "
                    u"(ixPart))",
                    nullptr);
    };
    EXPECT_EQ(errorAfter(relate), 0) << toUtf8(session.pending().text);
    EXPECT_EQ(errorAfter([&] { EXPECT_TRUE(session.hasRelation(u"partuse")); }), 0);
    EXPECT_EQ(errorAfter([&] { session.dropRelation(u"Note", u"PartUse"); }), 3265);
    EXPECT_EQ(errorAfter([&] { session.dropRelation(u"Part", u"PartUse"); }), 0);
    EXPECT_EQ(errorAfter([&] { EXPECT_FALSE(session.hasRelation(u"PartUse")); }), 0);
    EXPECT_EQ(errorAfter([&] { session.dropTable(u"Use", false); }), 0);
    EXPECT_EQ(errorAfter(relate), 0);
    EXPECT_EQ(errorAfter([&] { session.dropRelation(u"Use", u"PartUse"); }), 0);
}

TEST_F(SessionTest, OpeningClosesWhatWasOpenAlsoWhenItFails) {
    addParts();
    select(u"Part");
    Text problem;
    EXPECT_EQ(errorAfter([&] { session.open(file("none.qn"), OpenMode::readWrite, problem); }), 3024);
    EXPECT_FALSE(session.isOpen());
    EXPECT_EQ(session.currentTable(), u"");
}

}  // namespace

}  // namespace tessary::server
