#include "server/sql/syntax.h"

#include "server/values/error.h"

#include <gtest/gtest.h>

namespace tessary::server::sql {
namespace {

template <typename Node>
Node read(TextView statement) {
    return std::get<Node>(parse(statement).node);
}

std::string failure(TextView statement) {
    try {
        parse(statement);
        return "none";
    } catch (const DatabaseError& error) {
        return std::to_string(static_cast<int>(error.code())) + " " + toUtf8(error.text());
    }
}

// "name(field, field desc) unique primary"
Text described(const IndexDefinition& index) {
    Text text = index.name + u"(";
    for (const IndexField& field : index.fields) {
        text += (text.back() == u'(' ? u"" : u", ") + field.name + (field.descending ? u" desc" : u"");
    }
    return text + u")" + (index.unique ? u" unique" : u"") + (index.primary ? u" primary" : u"");
}

// "name: table(field) <- table(field) update delete"
Text described(const RelationDefinition& relation) {
    const auto list = [](const std::vector<Text>& names) {
        Text text;
        for (const Text& name : names) {
            text += (text.empty() ? u"" : u", ") + name;
        }
        return u"(" + text + u")";
    };
    return relation.name + u": " + relation.table + list(relation.fields) + u" <- " + relation.foreignTable +
           list(relation.foreignFields) + (relation.cascadeUpdate ? u" update" : u"") +
           (relation.cascadeDelete ? u" delete" : u"");
}

TEST(SqlCreateTable, readsFieldsAndTheirConstraints) {
    const auto table = read<CreateTable>(
        u"create table tblLayerKey (ixLayerKey counter(1, 1) constraint pk primary key, "
        u"ixLayer long not null references tblLayer (ixLayer) on delete cascade, sKey text(50) unique, "
        u"bPlot yesno default yes, iColor int default -7, d double precision null, m memo with compression, "
        u"[key] varchar default \"a\"\"b\", t datetime default #2010-07-04#, c char(3) default null, x "
        u"text)");
    const TableDefinition& definition = table.definition;
    EXPECT_EQ(definition.name, u"tblLayerKey");
    ASSERT_EQ(definition.fields.size(), 11U);
    const auto field = [&](std::size_t i) { return definition.fields[i]; };
    EXPECT_EQ(field(0), (FieldDefinition{u"ixLayerKey", FieldType::longInteger, 0, false, true, {}}));
    EXPECT_EQ(field(1), (FieldDefinition{u"ixLayer", FieldType::longInteger, 0, true, false, {}}));
    EXPECT_EQ(field(2), (FieldDefinition{u"sKey", FieldType::text, 50, false, false, {}}));
    EXPECT_EQ(field(3), (FieldDefinition{u"bPlot", FieldType::yesNo, 0, false, false, true}));
    EXPECT_EQ(field(4), (FieldDefinition{u"iColor", FieldType::longInteger, 0, false, false, -7}));
    EXPECT_EQ(field(5), (FieldDefinition{u"d", FieldType::number, 0, false, false, {}}));
    EXPECT_EQ(field(6), (FieldDefinition{u"m", FieldType::memo, 0, false, false, {}}));
    EXPECT_EQ(field(7), (FieldDefinition{u"key", FieldType::text, 0, false, false, u"a\"b"}));
    EXPECT_EQ(field(8).defaultValue, Value(dateOf({2010, 7, 4, 0, 0, 0})));
    EXPECT_EQ(field(9), (FieldDefinition{u"c", FieldType::text, 3, false, false, {}}));
    ASSERT_EQ(definition.indexes.size(), 2U);
    EXPECT_EQ(described(definition.indexes[0]), u"pk(ixLayerKey) unique primary");
    EXPECT_EQ(described(definition.indexes[1]), u"sKey(sKey) unique");
    ASSERT_EQ(table.relations.size(), 1U);
    EXPECT_EQ(described(table.relations[0]),
              u"tblLayerKey_ixLayer: tblLayer(ixLayer) <- tblLayerKey(ixLayer) delete");
}

TEST(SqlCreateTable, readsConstraintsOfTheTable) {
    const auto table = read<CreateTable>(
        u"create table t (a long, b long, primary long, constraint [my key] primary key (a, b desc), unique "
        u"(b), "
        u"constraint r foreign key (a, b) references u (c, d) on update cascade on delete no action)");
    EXPECT_EQ(table.definition.fields.size(), 3U);
    ASSERT_EQ(table.definition.indexes.size(), 2U);
    EXPECT_EQ(described(table.definition.indexes[0]), u"my key(a, b desc) unique primary");
    EXPECT_EQ(described(table.definition.indexes[1]), u"b(b) unique");
    ASSERT_EQ(table.relations.size(), 1U);
    EXPECT_EQ(described(table.relations[0]), u"r: u(c, d) <- t(a, b) update");
}

TEST(SqlCreateTable, refusesWhatItCannotKeep) {
    EXPECT_EQ(failure(u"create table t (a text(256))"),
              "3290 Syntax error at '256' (character 24): the size of a text is one number from 1 to 255.");
    EXPECT_EQ(failure(u"create table t (a text(0))").substr(0, 4), "3290");
    EXPECT_EQ(failure(u"create table t (a long default now())"),
              "3290 Syntax error at 'now' (character 32): a constant is expected.");
    EXPECT_EQ(failure(u"create table t (a long default 'x')").substr(0, 4), "3421");
    EXPECT_EQ(failure(u"create table t (a text(2) default 'xyz')").substr(0, 4), "3163");
    EXPECT_EQ(
        failure(u"create table t (a long references u (b) on delete set null)"),
        "3290 Syntax error at 'set' (character 51): references can only be kept by CASCADE or NO ACTION.");
    EXPECT_EQ(failure(u"create table t (a long, foreign key (a) references u (b, c))").substr(0, 4), "3290");
    EXPECT_EQ(failure(u"create table t (a long, check (a > 1))"),
              "3290 Syntax error at 'check' (character 25): PRIMARY KEY, UNIQUE or FOREIGN KEY is expected.");
    EXPECT_EQ(failure(u"create table [a.b] (a long)").substr(0, 4), "3125");
    EXPECT_EQ(failure(u"create table t (a long").substr(0, 4), "3290");
    EXPECT_EQ(failure(u"create table t ()").substr(0, 4), "3290");
    EXPECT_EQ(failure(u"create index i on t (a,b,c,d,e,f,g,h,i,j,k)").substr(0, 4), "3290");
    EXPECT_EQ(failure(u"create index i on t (a,b,c,d,e,f,g,h,i,j)"), "none");
}

TEST(SqlCreateIndex, readsItsOptions) {
    const auto index =
        read<CreateIndex>(u"create unique index [i j] on t (a, b desc, c asc) with disallow null");
    EXPECT_EQ(index.table, u"t");
    EXPECT_EQ(described(index.index), u"i j(a, b desc, c) unique");
    EXPECT_TRUE(index.disallowNull);
    EXPECT_EQ(described(read<CreateIndex>(u"create index i on t (a) with primary").index),
              u"i(a) unique primary");
    EXPECT_TRUE(read<CreateIndex>(u"create index i on t (a) with ignore null;").ignoreNull);
    EXPECT_FALSE(read<CreateIndex>(u"create index i on t (a)").index.unique);
}

TEST(SqlAlterTable, readsEveryChange) {
    const auto alter =
        read<AlterTable>(u"alter table t add column a text(5) not null, b long unique, alter c double, drop "
                         u"column d, e, rename "
                         u"column f to g, add constraint k primary key (a), drop constraint old");
    using Kind = FieldChange::Kind;
    std::vector<std::pair<Kind, Text>> changes;
    for (const FieldChange& change : alter.changes) {
        changes.emplace_back(change.kind,
                             change.field.name + (change.newName.empty() ? u"" : u">") + change.newName);
    }
    const std::vector<std::pair<Kind, Text>> expected = {{Kind::addOrAlter, u"a"}, {Kind::addOrAlter, u"b"},
                                                         {Kind::addOrAlter, u"c"}, {Kind::remove, u"d"},
                                                         {Kind::remove, u"e"},     {Kind::rename, u"f>g"}};
    EXPECT_EQ(changes, expected);
    EXPECT_TRUE(alter.changes[0].field.required);
    ASSERT_EQ(alter.indexes.size(), 2U);
    EXPECT_EQ(described(alter.indexes[0]), u"b(b) unique");
    EXPECT_EQ(described(alter.indexes[1]), u"k(a) unique primary");
    EXPECT_EQ(alter.droppedConstraints, std::vector<Text>{u"old"});
    EXPECT_EQ(failure(u"alter table t a long").substr(0, 4), "3290");
    const auto related = read<AlterTable>(u"alter table t add constraint r foreign key (a) references u (b)");
    EXPECT_EQ(described(related.relations.at(0)), u"r: u(b) <- t(a)");
}

TEST(SqlDrop, namesWhatIsDropped) {
    EXPECT_EQ(read<DropTable>(u"drop table [a b]").table, u"a b");
    EXPECT_EQ(read<DropIndex>(u"drop index i on t").table, u"t");
    EXPECT_EQ(read<DropQuery>(u"drop view v").name, u"v");
    EXPECT_EQ(read<DropQuery>(u"drop procedure p;").name, u"p");
    EXPECT_EQ(failure(u"drop index i"), "3290 Syntax error at the end of the statement: ON is expected.");
}

TEST(SqlStoredQueries, keepTheirStatementAsWritten) {
    EXPECT_EQ(read<CreateQuery>(u"create view v as SELECT  a  FROM t ;").query.statement,
              u"SELECT  a  FROM t");
    const auto query =
        read<CreateQuery>(u"create procedure p (k Text(20), n Long) as delete from t where a=k").query;
    EXPECT_EQ(query.name, u"p");
    EXPECT_EQ(query.statement, u"PARAMETERS k Text(20), n Long; delete from t where a=k");
    EXPECT_EQ(parse(query.statement).parameters.size(), 2U);
    EXPECT_EQ(parse(u"create proc p as insert into t values (?)").placeholders, 0);
    EXPECT_EQ(failure(u"create view v as select a b"),
              "3075 Syntax error at 'b' (character 27): an operator or a comma is missing in front of it.");
    EXPECT_EQ(failure(u"create view v as select a into b from c").substr(0, 4), "3075");
    EXPECT_EQ(failure(u"create procedure p as drop table t").substr(0, 4), "3075");
}

}  // namespace
}  // namespace tessary::server::sql
