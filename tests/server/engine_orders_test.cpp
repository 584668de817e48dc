// Records in the order of an index: steps, seeks, changes while somebody walks.

#include "tests/server/engine_fixture.h"

#include "server/sqlite/catalog.h"
#include "server/sqlite/key_ranges.h"
#include "server/sqlite/table_sql.h"

#include <random>
#include <set>

namespace tessary::server {

namespace {

class EngineOrders : public EngineTest {
protected:
    EngineOrders() {
        createAndOpen();
        TableDefinition table;
        table.name = u"Part";
        table.fields = {counter(u"ixPart"), field(u"sName", FieldType::text, 20),
                        field(u"iSize", FieldType::longInteger), field(u"bUsed", FieldType::yesNo)};
        table.indexes = {{u"PrimaryKey", {{u"ixPart"}}, true, true},
                         {u"sName", {{u"sName"}}},
                         {u"NameSize", {{u"sName"}, {u"iSize", true}}}};
        database->createTable(table);
    }

    void add(Value name, Value size) {
        const std::vector<FieldValue> fields = {{u"sName", name}, {u"iSize", size}};
        order(u"Part")->insert(fields);
    }
    void addSome() {
        add(u"duct", 4);
        add(u"Bend", 2);
        add(Null{}, 3);
        add(u"bend", Null{});
        add(u"bend", 9);
        add(u"elbow", 1);
        add(Null{}, Null{});
    }
};

TEST_F(EngineOrders, GoesAlongIndexesWithNullsFirstAndDescendingFields) {
    addSome();
    EXPECT_EQ(along(*order(u"Part"), 0), "1 2 3 4 5 6 7");
    EXPECT_EQ(along(*order(u"Part", u"sName"), 0), "3 7 2 4 5 1 6");
    EXPECT_EQ(along(*order(u"Part", u"sName"), 0, true), "6 1 5 4 2 7 3");
    EXPECT_EQ(along(*order(u"Part", u"namesize"), 0), "3 7 5 2 4 1 6");
    EXPECT_EQ(along(*order(u"Part", u"namesize"), 0, true), "6 1 4 2 5 7 3");
}

TEST_F(EngineOrders, SkipsManyRecordsAtOnce) {
    addSome();
    auto names = order(u"Part", u"NameSize");
    const auto first = names->first();
    EXPECT_EQ(names->after(first->position, 4)->values[0], Value(4));
    EXPECT_EQ(names->last(2)->values[0], Value(4));
    EXPECT_EQ(names->before(names->last()->position, 6)->values[0], Value(3));
    EXPECT_FALSE(names->after(first->position, 7));
    EXPECT_FALSE(names->first(7));
    for (int i = 0; i < 100; ++i)
        add(u"elbow", 100 + i);
    EXPECT_EQ(names->first(6 + 50)->values[2], Value(149));
    EXPECT_EQ(names->last(50)->values[2], Value(149));
    EXPECT_EQ(names->after(names->first()->position, 105)->values[2], Value(100));
    EXPECT_FALSE(names->after(first->position, 107));
    EXPECT_EQ(order(u"Part")->before(order(u"Part")->last()->position, 100)->values[0], Value(7));
}

TEST_F(EngineOrders, SeeksByTheBeginningOfTheKeyAndConvertsTheValues) {
    addSome();
    auto names = order(u"Part", u"NameSize");
    const std::vector<Value> bend = {u"BEND"}, bendTwo = {u"bend", u"2"}, nothing = {Null{}},
                             missing = {u"cap"};
    EXPECT_EQ(names->seek(bend)->values[0], Value(5));
    EXPECT_EQ(names->seek(bendTwo)->values[0], Value(2));
    EXPECT_EQ(names->seek(nothing)->values[0], Value(3));
    EXPECT_FALSE(names->seek(missing));
    const Position between = names->positionOf(missing);
    EXPECT_EQ(names->after(between)->values[0], Value(1));
    EXPECT_EQ(names->before(between)->values[0], Value(4));
    const std::vector<Value> wrong = {u"bend", u"much"}, tooMany = {u"a", 1, 1};
    EXPECT_EQ(errorOf([&] { names->seek(wrong); }), 3421);
    EXPECT_EQ(errorOf([&] { names->seek(tooMany); }), 3001);

    auto numbers = order(u"Part");
    const std::vector<Value> four = {4.2}, ninety = {90};
    EXPECT_EQ(numbers->seek(four)->values[0], Value(4));
    EXPECT_FALSE(numbers->seek(ninety));
    EXPECT_EQ(numbers->before(numbers->positionOf(ninety))->values[0], Value(7));
    EXPECT_FALSE(numbers->after(numbers->positionOf(ninety)));
}

TEST_F(EngineOrders, GoesOnFromDeletedAndMovedRecords) {
    addSome();
    auto names = order(u"Part", u"sName");
    const std::vector<Value> bend = {u"bend"};
    auto record = names->seek(bend);
    record = names->after(record->position);
    ASSERT_EQ(record->values[0], Value(4));
    order(u"Part")->erase(record->position);
    EXPECT_FALSE(names->at(record->position));
    EXPECT_EQ(errorOf([&] { names->erase(record->position); }), 3167);
    EXPECT_EQ(names->after(record->position)->values[0], Value(5));
    EXPECT_EQ(names->before(record->position)->values[0], Value(2));

    const std::vector<FieldValue> change = {{u"sName", u"zeta"}, {u"bUsed", true}};
    const Record moved = names->update(names->seek(bend)->position, change);
    EXPECT_EQ(moved.values[0], Value(2));
    EXPECT_EQ(moved.values[3], Value(true));
    EXPECT_EQ(names->last()->values[0], Value(2));
    EXPECT_EQ(names->before(moved.position)->values[0], Value(6));
}

TEST_F(EngineOrders, SeesWhatAnotherUserChangesBetweenTwoSteps) {
    for (int i = 0; i < 26; ++i)
        add(Text(1, static_cast<char16_t>(u'A' + i)), i);
    auto names = order(u"Part", u"sName");
    auto record = names->first();
    for (int i = 0; i < 9; ++i)
        record = names->after(record->position);  // so that records have been read ahead
    auto other = open();
    Text ignored;
    auto others = other->openOrder(u"Part", u"sName", ignored);
    const std::vector<FieldValue> change = {{u"iSize", 1000}};
    others->update(others->after(record->position)->position, change);
    others->erase(others->after(record->position, 2)->position);
    record = names->after(record->position);
    EXPECT_EQ(record->values[2], Value(1000));
    EXPECT_EQ(names->after(record->position)->values[2], Value(12));
}

TEST_F(EngineOrders, AutonumbersAreNeverUsedAgain) {
    addSome();
    auto parts = order(u"Part");
    parts->erase(parts->last()->position);
    add(u"cap", 1);
    EXPECT_EQ(parts->last()->values[0], Value(8));
    const std::vector<FieldValue> explicitNumber = {{u"ixPart", 20}};
    EXPECT_EQ(parts->insert(explicitNumber).position.row, 20);
    parts->erase(parts->last()->position);
    const std::vector<FieldChange> changes = {changedTo(field(u"dLength", FieldType::number))};
    database->modifyTable(u"Part", changes);
    database.reset();
    engine->compact(path, file("small.qn"));
    database = open(file("small.qn"));
    EXPECT_EQ(order(u"Part")->insert({}).values[0], Value(21));
}

TEST_F(EngineOrders, RefusesWhatTheFieldsDoNotHold) {
    TableDefinition table;
    table.name = u"Key";
    table.fields = {field(u"sKey", FieldType::text, 4, true), field(u"iByte", FieldType::byte),
                    field(u"sNote", FieldType::memo)};
    table.fields[1].defaultValue = Value(7);
    table.fields[2].defaultValue = Value(u"it's a \"note\"");
    table.indexes = {{u"sKey", {{u"sKey"}}, true}};
    database->createTable(table);
    auto keys = order(u"Key", u"sKey");
    Text text;
    const auto insertKey = [&](std::vector<FieldValue> fields) {
        return errorOf([&] { keys->insert(fields); }, &text);
    };
    EXPECT_EQ(insertKey({{u"iByte", 1}}), 3314);
    EXPECT_NE(text.find(u"sKey"), Text::npos);
    EXPECT_EQ(insertKey({{u"sKey", u"abcde"}}), 3163);
    EXPECT_NE(text.find(u"sKey"), Text::npos);
    EXPECT_EQ(insertKey({{u"sKey", u"a"}, {u"iByte", 256}}), 3421);
    EXPECT_EQ(insertKey({{u"sKee", u"a"}}), 3265);
    EXPECT_EQ(insertKey({{u"sKey", u""}}), 0);
    EXPECT_EQ(insertKey({{u"sKey", u"a"}}), 0);
    EXPECT_EQ(insertKey({{u"SKEY", u"A"}}), 3022);
    EXPECT_NE(text.find(u"'Key'"), Text::npos) << toUtf8(text);
    EXPECT_EQ(keys->count(), 2);
    EXPECT_EQ(keys->last()->values[1], Value(7));
    EXPECT_EQ(keys->last()->values[2], Value(u"it's a \"note\""));
    EXPECT_EQ(errorOf([&] { keys->update(keys->positionOf(std::vector<Value>{u"q"}), {}); }), 3021);
    EXPECT_EQ(errorOf([&] { order(u"Key")->seek(std::vector<Value>{u"q"}); }), 3019);
    const std::vector<FieldValue> number = {{u"ixPart", 5}};
    addSome();
    EXPECT_EQ(errorOf([&] { order(u"Part")->update(order(u"Part")->first()->position, number); }), 3027);
}

TEST_F(EngineOrders, TellsThatTheDefinitionHasChanged) {
    addSome();
    auto names = order(u"Part", u"sName");
    const auto record = names->first();
    auto other = open();
    other->dropIndex(u"Part", u"sName");
    EXPECT_EQ(errorOf([&] { names->after(record->position); }), 3219);
    names = order(u"Part", u"NameSize");
    names->first();
    const std::vector<FieldChange> changes = {changedTo(field(u"dLength", FieldType::number))};
    database->modifyTable(u"Part", changes);
    EXPECT_EQ(errorOf([&] { names->first(); }), 3219);
    EXPECT_EQ(errorOf([&] { names->insert({}); }), 3219);
    names = order(u"Part");
    names->first();
    other->createTable({u"Other", {field(u"a", FieldType::memo)}, {}});
    EXPECT_EQ(names->first()->values.size(), 5u);
    other->dropTable(u"Part", false);
    EXPECT_EQ(errorOf([&] { names->first(); }), 3219);
}

// Every range of every mix of directions and nulls must be walked in the index, without sorting and without
// passing over records that do not belong to it.
TEST_F(EngineOrders, EveryStepUsesTheIndex) {
    Connection connection(path, Connection::Access::readOnly);
    Catalog catalog(connection, "main");
    const TableEntryPtr entry = *catalog.definitions().table(u"Part");
    for (const IndexDefinition& index : entry->definition.indexes) {
        const OrderShape shape =
            orderShape(entry->definition, "main.\"Part\"", &index, physicalIndexName(entry->id, index.name));
        for (const bool backward : {false, true})
            for (const int nulls : {0, 1, 2, 3}) {
                Position position{
                    {nulls & 1 ? Value(Null{}) : Value(u"a"), nulls & 2 ? Value(Null{}) : Value(1)}, 5};
                position.key.resize(index.fields.size());
                if (shape.rowKey)
                    position.key = {5};
                for (const KeyRange& range : rangesFrom(shape, position, backward)) {
                    Prepared plan =
                        connection.prepare("EXPLAIN QUERY PLAN " + rangeSql(shape, range, shape.selected));
                    std::string text;
                    while (plan.step())
                        text += toUtf8(plan.text(3)) + ";";
                    EXPECT_NE(text.find("SEARCH"), text.npos)
                        << rangeSql(shape, range, shape.selected) << "\n"
                        << text;
                    EXPECT_EQ(text.find("TEMP B-TREE"), text.npos)
                        << rangeSql(shape, range, shape.selected) << "\n"
                        << text;
                }
            }
    }
}

// Random changes and walks, compared with a sorted set.
TEST_F(EngineOrders, AgreesWithASortedSet) {
    std::mt19937 random(7);
    struct Row {
        Value name, size;
        std::int64_t number;
    };
    const auto compare = [](const Value& left, const Value& right) {
        if (isNull(left) || isNull(right))
            return static_cast<int>(isNull(right)) - static_cast<int>(isNull(left));
        if (const Text* text = std::get_if<Text>(&left))
            return compareText(*text, std::get<Text>(right));
        return std::get<std::int32_t>(left) < std::get<std::int32_t>(right)   ? -1
               : std::get<std::int32_t>(left) > std::get<std::int32_t>(right) ? 1
                                                                              : 0;
    };
    const auto before = [&](const Row& left, const Row& right) {
        if (const int order = compare(left.name, right.name))
            return order < 0;
        if (const int order = compare(left.size, right.size))
            return order > 0;
        return left.number < right.number;
    };
    std::set<Row, decltype(before)> model(before);
    const auto pick = [&](int below) { return static_cast<int>(random() % static_cast<unsigned>(below)); };
    const auto someName = [&]() -> Value {
        const int which = pick(6);
        return which == 0 ? Value(Null{})
                          : Value(Text(1, static_cast<char16_t>((which & 1 ? u'a' : u'A') + pick(4))));
    };
    const auto someSize = [&]() -> Value { return pick(5) == 0 ? Value(Null{}) : Value(pick(4)); };

    auto names = order(u"Part", u"NameSize");
    for (int round = 0; round < 600; ++round) {
        const int action = pick(10);
        if (action < 4 || model.size() < 5) {
            const std::vector<FieldValue> fields = {{u"sName", someName()}, {u"iSize", someSize()}};
            const Record record = names->insert(fields);
            model.insert({fields[0].value, fields[1].value, record.position.row});
            continue;
        }
        const auto row = std::next(model.begin(), pick(static_cast<int>(model.size())));
        const Position position{{row->name, row->size}, row->number};
        if (action == 4) {
            names->erase(position);
            model.erase(row);
        } else if (action == 5) {
            Row changed{someName(), row->size, row->number};
            const std::vector<FieldValue> fields = {{u"sName", changed.name}};
            EXPECT_EQ(names->update(position, fields).position.row, changed.number);
            model.erase(row);
            model.insert(changed);
        } else if (action < 8) {
            auto expected = row;
            auto record = names->at(position);
            for (int steps = pick(20); steps > 0 && record; --steps) {
                ASSERT_EQ(record->position.row, expected->number);
                record = names->after(record->position);
                ASSERT_EQ(record.has_value(), ++expected != model.end());
            }
        } else {
            const int count = 1 + pick(5);
            const auto record = names->before(position, count);
            const auto place = std::distance(model.begin(), row);
            ASSERT_EQ(record.has_value(), place >= count);
            if (record) {
                EXPECT_EQ(record->position.row, std::prev(row, count)->number);
            }
        }
    }
    EXPECT_EQ(names->count(), static_cast<std::int64_t>(model.size()));
}

}  // namespace

}  // namespace tessary::server
