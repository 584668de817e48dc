// Tables, indexes, relations and queries: made, changed, refused.

#include "tests/server/engine_fixture.h"

namespace tessary::server {

namespace {

FieldChange drop(const char16_t* name) {
    return {FieldChange::Kind::remove, field(name, FieldType::text), {}, false};
}
FieldChange rename(const char16_t* name, const char16_t* to) {
    return {FieldChange::Kind::rename, field(name, FieldType::text), to, false};
}

class EngineTables : public EngineTest {
protected:
    EngineTables() {
        createAndOpen();
        database->createTable({u"tblLayer",
                               {counter(u"ixLayer"), field(u"sName", FieldType::text, 30, true),
                                field(u"iColor", FieldType::longInteger)},
                               {{u"ixLayer", {{u"ixLayer"}}, true, true}, {u"sName", {{u"sName"}}, true}}});
        database->createTable({u"tblLayerKey",
                               {counter(u"ixLayerKey"), field(u"ixLayer", FieldType::longInteger),
                                field(u"sKey", FieldType::text, 30)},
                               {{u"ixLayerKey", {{u"ixLayerKey"}}, true, true}}});
    }
    void relate(bool cascade) {
        database->createRelation(
            {u"LayerOfKey", u"tblLayer", {u"ixLayer"}, u"tblLayerKey", {u"ixLayer"}, cascade, cascade});
    }
    Record addLayer(Value name, Value color = Null{}) {
        const std::vector<FieldValue> fields = {{u"sName", name}, {u"iColor", color}};
        return order(u"tblLayer")->insert(fields);
    }
    Record addKey(Value layer, Value key = u"k") {
        const std::vector<FieldValue> fields = {{u"ixLayer", layer}, {u"sKey", key}};
        return order(u"tblLayerKey")->insert(fields);
    }
    void change(const char16_t* table, std::vector<FieldChange> changes) {
        database->modifyTable(table, changes);
    }
};

TEST_F(EngineTables, KeepsDefinitionsAsTheyWereGiven) {
    TableDefinition given;
    given.name = u"sqlite_odd Ünïcode";
    given.fields = {field(u"rowid", FieldType::dateTime), field(u"oid", FieldType::currency),
                    field(u"_rowid_", FieldType::single), field(u"order", FieldType::integer),
                    field(u"a\"b", FieldType::text, 12, true)};
    given.fields[0].defaultValue = Date{40000.25};
    given.fields[4].defaultValue = Value(u"x'y");
    given.indexes = {{u"sName", {{u"order", true}, {u"rowid"}}, true}, {u"ÄÖ", {{u"a\"b"}}}};
    database->createTable(given);
    database.reset();
    database = open();
    EXPECT_TRUE(database->hasTable(u"SQLITE_ODD üNÏCODE"));
    const TableDefinition stored = database->table(u"sqlite_odd ünïcode");
    EXPECT_EQ(stored.name, given.name);
    EXPECT_EQ(stored.fields, given.fields);
    EXPECT_EQ(stored.indexes, given.indexes);
    EXPECT_EQ(database->tableNames(),
              (std::vector<Text>{u"sqlite_odd Ünïcode", u"tblLayer", u"tblLayerKey"}));
    const Record record = order(u"sqlite_odd ünïcode", u"sName")->insert({});
    EXPECT_EQ(record.values[0], Value(Date{40000.25}));
    EXPECT_EQ(order(u"sqlite_odd ünïcode", u"äö")->first()->values[4], Value(u"x'y"));
}

TEST_F(EngineTables, RefusesDefinitionsThatMakeNoSense) {
    const auto create = [&](TableDefinition table) { return errorOf([&] { database->createTable(table); }); };
    const FieldDefinition a = field(u"a", FieldType::text);
    EXPECT_EQ(create({u"TBLLAYER", {a}, {}}), 3010);
    EXPECT_EQ(create({u"T!x", {a}, {}}), 3125);
    EXPECT_EQ(create({u"T", {a, field(u"A", FieldType::memo)}, {}}), 3191);
    EXPECT_EQ(create({u"T", {counter(u"a"), counter(u"b")}, {}}), 3291);
    EXPECT_EQ(create({u"T", {a}, {{u"i", {{u"b"}}}}}), 3799);
    EXPECT_EQ(create({u"T", {a}, {{u"i", {{u"a"}}}, {u"I", {{u"a"}}}}}), 3284);
    EXPECT_EQ(create({u"T", std::vector<FieldDefinition>(256, a), {}}), 3190);
    EXPECT_EQ(errorOf([&] { database->table(u"T"); }), 3078);
    EXPECT_EQ(errorOf([&] { database->dropIndex(u"tblLayer", u"none"); }), 3015);
    EXPECT_EQ(errorOf([&] { order(u"tblLayer", u"none"); }), 3015);
    EXPECT_EQ(database->tableNames().size(), 2u);
}

TEST_F(EngineTables, ChangesFieldsAndConvertsTheirValues) {
    addLayer(u"12", 5);
    addLayer(u"3.5", 300);
    change(u"tblLayer",
           {changedTo(field(u"sName", FieldType::number)), changedTo(field(u"iColor", FieldType::text, 3)),
            rename(u"iColor", u"sColor"), changedTo(field(u"dNew", FieldType::dateTime))});
    const TableDefinition table = database->table(u"tblLayer");
    EXPECT_EQ(table.fields[2].name, u"sColor");
    auto names = order(u"tblLayer", u"sName");
    EXPECT_EQ(along(*names, 1), "3.5 12");
    EXPECT_EQ(names->first()->values[2], Value(u"300"));
    const std::vector<FieldValue> another = {{u"sName", 1}};
    EXPECT_EQ(names->insert(another).values[0], Value(3));  // numbers go on
}

TEST_F(EngineTables, AChangeThatLosesValuesIsRefusedAndLeavesAllAsItWas) {
    addLayer(u"long name", 5);
    addLayer(u"x");
    Text text;
    const auto refused = [&](FieldChange one) {
        return errorOf(
            [&] {
                change(u"tblLayer", {changedTo(field(u"dNew", FieldType::number)), one});
            },
            &text);
    };
    EXPECT_EQ(refused(changedTo(field(u"sName", FieldType::longInteger))), 3421);
    EXPECT_NE(text.find(u"sName"), Text::npos);
    EXPECT_EQ(refused(changedTo(field(u"sName", FieldType::text, 3))), 3163);
    EXPECT_EQ(refused(changedTo(field(u"iColor", FieldType::longInteger, 0, true))), 3314);
    EXPECT_EQ(refused(changedTo(field(u"iNew", FieldType::longInteger, 0, true))), 3314);
    EXPECT_EQ(refused(drop(u"sName")), 3281);
    EXPECT_EQ(refused(drop(u"none")), 3265);
    EXPECT_EQ(refused(rename(u"sName", u"IXLAYER")), 3191);
    EXPECT_EQ(database->table(u"tblLayer").fields.size(), 3u);
    EXPECT_EQ(along(*order(u"tblLayer"), 1), "long name x");
    change(u"tblLayer", {drop(u"iColor")});
    EXPECT_EQ(order(u"tblLayer")->first()->values.size(), 2u);
}

TEST_F(EngineTables, AddsAndRemovesIndexes) {
    addLayer(u"a", 1);
    addLayer(u"b", 1);
    addLayer(u"c");
    addLayer(u"d");
    EXPECT_EQ(errorOf([&] { database->createIndex(u"tblLayer", {u"iColor", {{u"iColor"}}, true}); }), 3022);
    EXPECT_EQ(database->table(u"tblLayer").indexes.size(), 2u);
    database->createIndex(u"tblLayer", {u"iColor", {{u"icolor", true}}});
    EXPECT_EQ(along(*order(u"tblLayer", u"iColor"), 1), "a b c d");
    EXPECT_EQ(errorOf([&] { database->createIndex(u"tblLayer", {u"ICOLOR", {{u"sName"}}}); }), 3284);
    EXPECT_EQ(errorOf([&] { database->createIndex(u"tblLayer", {u"p", {{u"sName"}}, true, true}); }), 3284);
    database->dropIndex(u"tblLayer", u"ixLayer");
    EXPECT_EQ(errorOf([&] {
                  database->createIndex(u"tblLayer", {u"p", {{u"iColor"}, {u"sName"}}, true, true});
              }),
              3314);
    database->createIndex(u"tblLayer", {u"p", {{u"sName"}}, true, true});
    Text name;
    database->openOrder(u"tblLayer", u"", name);
    EXPECT_EQ(name, u"p");
    database->createIndex(u"tblLayerKey", {u"iColor", {{u"sKey"}}});  // names are each table's own
}

TEST_F(EngineTables, RelationsAreKept) {
    EXPECT_EQ(errorOf([&] {
                  database->createRelation(
                      {u"R", u"tblLayerKey", {u"sKey"}, u"tblLayer", {u"sName"}, false, false});
              }),
              3609);
    addLayer(u"a");
    addKey(1);
    addKey(Null{});
    const Record wrong = addKey(7);
    EXPECT_EQ(errorOf([&] { relate(false); }), 3201);
    EXPECT_TRUE(database->relations().empty());
    order(u"tblLayerKey")->erase(wrong.position);
    relate(false);
    Text text;
    EXPECT_EQ(errorOf([&] { relate(false); }), 3012);
    EXPECT_EQ(errorOf([&] { addKey(7); }, &text), 3201);
    EXPECT_NE(text.find(u"'tblLayer'"), Text::npos) << toUtf8(text);
    EXPECT_EQ(errorOf([&] { order(u"tblLayer")->erase(order(u"tblLayer")->first()->position); }, &text),
              3200);
    EXPECT_NE(text.find(u"'tblLayerKey'"), Text::npos) << toUtf8(text);
    const std::vector<FieldValue> toNothing = {{u"ixLayer", 9}};
    EXPECT_EQ(
        errorOf([&] { order(u"tblLayerKey")->update(order(u"tblLayerKey")->first()->position, toNothing); }),
        3201);
    EXPECT_EQ(run(u"DELETE FROM tblLayerKey WHERE ixLayer IS NULL"), 1);
    EXPECT_EQ(errorOf([&] { run(u"DELETE FROM tblLayer"); }), 3200);
    EXPECT_EQ(errorOf([&] { database->dropTable(u"tblLayer", false); }), 3281);
    EXPECT_EQ(errorOf([&] { change(u"tblLayerKey", {drop(u"ixLayer")}); }), 3281);

    // Neither a change of the tables nor a new name loosens it.
    change(u"tblLayer", {changedTo(field(u"dNew", FieldType::number)), rename(u"ixLayer", u"ixId")});
    database->renameTable(u"tblLayer", u"TBLlayer");
    database->renameTable(u"tblLayer", u"Layer");
    change(u"tblLayerKey", {rename(u"ixLayer", u"layer")});
    EXPECT_EQ(errorOf([&] { run(u"DELETE FROM Layer"); }), 3200);
    EXPECT_EQ(database->relations()[0].table, u"Layer");
    EXPECT_EQ(database->relations()[0].fields[0], u"ixId");
    EXPECT_EQ(database->relations()[0].foreignFields[0], u"layer");
    database->dropTable(u"Layer", true);
    EXPECT_TRUE(database->relations().empty());
    EXPECT_EQ(run(u"UPDATE tblLayerKey SET layer = 99"), 1);
}

TEST_F(EngineTables, CascadesReachAllRelatedRecords) {
    database->createTable(
        {u"Note", {field(u"sLayer", FieldType::text, 30), field(u"sText", FieldType::memo)}, {}});
    database->createRelation({u"NoteOfLayer", u"tblLayer", {u"sName"}, u"Note", {u"sLayer"}, true, true});
    relate(true);
    addLayer(u"a");
    addLayer(u"b");
    addKey(1);
    addKey(2);
    const std::vector<FieldValue> note = {{u"sLayer", u"A"}};  // case does not matter
    order(u"Note")->insert(note);
    const std::vector<FieldValue> newName = {{u"sName", u"c"}};
    order(u"tblLayer")->update(order(u"tblLayer")->first()->position, newName);
    EXPECT_EQ(along(*order(u"Note"), 0), "c");
    order(u"tblLayer")->erase(order(u"tblLayer")->first()->position);
    EXPECT_EQ(order(u"Note")->count(), 0);
    EXPECT_EQ(along(*order(u"tblLayerKey"), 1), "2");
    database->dropRelation(u"LayerOfKey");
    EXPECT_EQ(errorOf([&] { database->dropRelation(u"LayerOfKey"); }), 3265);
    EXPECT_EQ(addKey(77).values[1], Value(77));
}

class Rows : public RowSink {
public:
    void columns(std::span<const Text> names) override {
        for (const Text& name : names)
            text += toUtf8(name) + " ";
    }
    void row(std::span<const Cell> cells) override {
        text += "|";
        for (const Cell& cell : cells) {
            switch (cell.kind) {
                case Cell::Kind::null: text += " -"; break;
                case Cell::Kind::yesNo: text += cell.integer != 0 ? " yes" : " no"; break;
                case Cell::Kind::longInteger: text += " " + std::to_string(cell.integer); break;
                case Cell::Kind::number: text += " n" + std::to_string(cell.number).substr(0, 4); break;
                case Cell::Kind::date: text += " d" + std::to_string(cell.number).substr(0, 8); break;
                case Cell::Kind::text: text += " '" + toUtf8(cell.text) + "'"; break;
            }
        }
    }
    std::string text;
};

TEST_F(EngineTables, StatementsOfAllKindsRun) {
    const auto rows = [&](const char16_t* statement, std::vector<Value> parameters = {}) {
        Rows sink;
        database->run(sql::parse(statement), parameters, &sink);
        return sink.text;
    };
    EXPECT_EQ(
        run(u"CREATE TABLE T (id COUNTER PRIMARY KEY, s TEXT(10) NOT NULL, b YESNO, d DATETIME, x DOUBLE)"),
        0);
    EXPECT_EQ(run(u"INSERT INTO T (s, b, d, x) VALUES ('one', True, #7/4/2010#, 1)"), 1);
    EXPECT_EQ(run(u"INSERT INTO T (s) SELECT s & '!' FROM T"), 1);
    EXPECT_EQ(rows(u"SELECT * FROM T WHERE s LIKE 'ONE*'"),
              "id s b d x | 1 'one' yes d40363.00 n1.00| 2 'one!' no - -");
    EXPECT_EQ(run(u"UPDATE T SET x = [new] WHERE id = 2", {5}), 1);
    Text text;
    EXPECT_EQ(errorOf([&] { run(u"UPDATE T SET x = [new] WHERE id = 2"); }, &text), 3061);
    EXPECT_NE(text.find(u"new"), Text::npos);
    EXPECT_EQ(errorOf([&] { run(u"UPDATE T SET s = Null"); }), 3314);
    EXPECT_EQ(errorOf([&] { run(u"INSERT INTO T (id, s) VALUES (1, 'a')"); }), 3022);
    EXPECT_EQ(errorOf([&] { run(u"UPDATE T SET s = 'more than ten characters'"); }), 3163);
    EXPECT_EQ(errorOf([&] { run(u"SELECT * FROM Nowhere"); }), 3078);

    EXPECT_EQ(run(u"SELECT id, s, d INTO Copy FROM T"), 2);
    EXPECT_EQ(errorOf([&] { run(u"SELECT id INTO Copy FROM T"); }), 3010);
    EXPECT_EQ(database->table(u"Copy").fields[2].type, FieldType::dateTime);
    EXPECT_EQ(rows(u"SELECT s FROM Copy ORDER BY id DESC"), "s | 'one!'| 'one'");

    run(u"CREATE PROCEDURE ById (n LONG) AS SELECT s FROM T WHERE id = n");
    EXPECT_EQ(errorOf([&] { database->createQuery({u"byid", u"SELECT 1"}); }), 3012);
    EXPECT_EQ(rows(u"EXECUTE ById 2"), "s | 'one!'");
    Rows sink;
    const std::vector<Value> one = {u"1"};
    EXPECT_EQ(database->runQuery(u"BYID", one, &sink), 1);
    EXPECT_EQ(sink.text, "s | 'one'");
    EXPECT_EQ(errorOf([&] { database->runQuery(u"ById", {}, &sink); }), 3061);
    database->createQuery({u"Circle", u"EXECUTE Circle"});
    EXPECT_EQ(errorOf([&] { run(u"EXECUTE Circle"); }), 3360);
    run(u"DROP PROCEDURE ById");
    EXPECT_EQ(errorOf([&] { database->runQuery(u"ById", one, &sink); }), 3265);

    run(u"CREATE TABLE C (t LONG CONSTRAINT CT REFERENCES T (id))");
    EXPECT_EQ(errorOf([&] { run(u"INSERT INTO C VALUES (5)"); }), 3201);
    EXPECT_EQ(errorOf([&] { run(u"UPDATE T SET id = 50 WHERE id = 2"); }), 3027);
    run(u"ALTER TABLE C DROP CONSTRAINT CT");
    EXPECT_EQ(run(u"INSERT INTO C VALUES (5)"), 1);
    run(u"CREATE TABLE F (x SINGLE, s TEXT(20), b YESNO)");
    run(u"INSERT INTO F (x, b) VALUES (0.1, Yes), (16777216, No)");
    run(u"UPDATE F SET s = x");
    EXPECT_EQ(rows(u"SELECT s, x & '' AS t, Abs(b) AS a FROM F"),
              "s t a | '0.1' '0.1' 1| '16777220' '16777220' 0");
    // Without fields the primary key is meant.
    run(u"CREATE TABLE K (a LONG, b LONG, CONSTRAINT pk PRIMARY KEY (b, a))");
    run(u"CREATE TABLE L (x LONG, y LONG, CONSTRAINT LK FOREIGN KEY (x, y) REFERENCES K)");
    run(u"INSERT INTO K VALUES (1, 2)");
    EXPECT_EQ(run(u"INSERT INTO L VALUES (2, 1)"), 1);
    EXPECT_EQ(errorOf([&] { run(u"INSERT INTO L VALUES (1, 2)"); }), 3201);
    EXPECT_EQ(errorOf([&] { run(u"CREATE TABLE M (x LONG REFERENCES L)"); }), 3290);
    EXPECT_EQ(errorOf([&] { run(u"CREATE TABLE M (x LONG REFERENCES K)"); }), 3290);
    // All of a statement or nothing: the second relation cannot be made.
    EXPECT_EQ(errorOf([&] { run(u"CREATE TABLE D (a LONG REFERENCES T (id), b TEXT REFERENCES T (s))"); }),
              3609);
    EXPECT_FALSE(database->hasTable(u"D"));
    EXPECT_EQ(run(u"DELETE FROM T WHERE id > 0"), 2);
    run(u"DROP TABLE T");
    EXPECT_FALSE(database->hasTable(u"T"));
}

TEST_F(EngineTables, TableGetsItsFieldsLater) {
    database->createTable({u"Parts", {}, {}});
    EXPECT_EQ(database->table(u"Parts").fields.size(), 0u);
    EXPECT_EQ(order(u"Parts")->insert({}).values.size(), 0u);
    EXPECT_EQ(order(u"Parts")->first()->values.size(), 0u);
    EXPECT_NE(errorOf([&] { run(u"SELECT * FROM Parts"); }), 0);
    FieldChange change;
    change.field = {u"Size", FieldType::longInteger, 0, false, false, Value{7}};
    database->modifyTable(u"Parts", {{change}});
    EXPECT_EQ(run(u"SELECT * FROM Parts WHERE Size = 7"), 1);
}

TEST_F(EngineTables, YesNoFieldAlwaysHasAValue) {
    run(u"CREATE TABLE Door (s TEXT(10), bOpen YESNO, bFire YESNO DEFAULT Yes)");
    EXPECT_EQ(order(u"Door")->insert({{{u"s", Text(u"a")}}}).values,
              (std::vector<Value>{Text(u"a"), false, true}));
    EXPECT_EQ(order(u"Door")->insert({{{u"bOpen", Null{}}}}).values,
              (std::vector<Value>{Null{}, false, true}));
    run(u"INSERT INTO Door (s) VALUES ('b')");
    run(u"INSERT INTO Door VALUES ('c', Null, Null)");
    run(u"UPDATE Door SET bOpen = Null WHERE s = 'a'");
    EXPECT_EQ(run(u"SELECT * FROM Door WHERE NOT bOpen AND bFire"), 4);
    run(u"ALTER TABLE Door ADD bGlass YESNO");
    EXPECT_EQ(run(u"SELECT * FROM Door WHERE bGlass = False"), 4);
}

}  // namespace

}  // namespace tessary::server
