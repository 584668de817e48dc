#include "server/sql/syntax.h"

#include "server/values/error.h"
#include "tests/server/sql_text.h"

#include <gtest/gtest.h>

namespace tessary::server::sql {
namespace {

std::string read(TextView statement) {
    try {
        return written(parse(statement));
    } catch (const DatabaseError& error) {
        return std::to_string(static_cast<int>(error.code())) + " " + toUtf8(error.text());
    }
}

// The expression as it is understood, with all its parentheses.
std::string expression(TextView text) {
    const std::string statement = read(u"select " + Text(text));
    return statement.starts_with("select ") ? statement.substr(7) : statement;
}

const Value& constant(const Statement& statement) {
    const Select& select = *std::get<SelectPtr>(statement.node);
    return std::get<Literal>(select.items.front().expression->node).value;
}

TEST(SqlExpressions, bindInTheOrderOfTheDialect) {
    EXPECT_EQ(expression(u"-2^2"), "(-(2 ^ 2))");
    EXPECT_EQ(expression(u"2^-3*4"), "((2 ^ (-3)) * 4)");
    EXPECT_EQ(expression(u"2^3^2"), "((2 ^ 3) ^ 2)");
    EXPECT_EQ(expression(u"-a*b"), "((-[a]) * [b])");
    EXPECT_EQ(expression(u"a*b\\c/d"), "(([a] * [b]) \\ ([c] / [d]))");
    EXPECT_EQ(expression(u"a mod b\\c+d"), "(([a] mod ([b] \\ [c])) + [d])");
    EXPECT_EQ(expression(u"a+b & c-d"), "(([a] + [b]) & ([c] - [d]))");
    EXPECT_EQ(expression(u"a & b = c"), "(([a] & [b]) = [c])");
    EXPECT_EQ(expression(u"not a = b and c"), "((not ([a] = [b])) and [c])");
    EXPECT_EQ(expression(u"a or b and not c xor d eqv e imp f"),
              "(((([a] or ([b] and (not [c]))) xor [d]) eqv [e]) imp [f])");
    EXPECT_EQ(expression(u"a - b - c"), "(([a] - [b]) - [c])");
    EXPECT_EQ(expression(u"a = not b and c"), "(([a] = (not [b])) and [c])");
}

TEST(SqlExpressions, compareWithWords) {
    EXPECT_EQ(expression(u"a between 1 and 2 and b"), "(([a] between 1 and 2) and [b])");
    EXPECT_EQ(expression(u"a not between 1+1 and 2 & 3"), "([a] not between (1 + 1) and (2 & 3))");
    EXPECT_EQ(expression(u"not a in (1, 'x', null)"), "(not ([a] in (1, 'x', null)))");
    EXPECT_EQ(expression(u"a NOT IN (SELECT b FROM t)"), "([a] not in (select [b] from [t]))");
    EXPECT_EQ(expression(u"a in ((select b from t))"), "([a] in (select [b] from [t]))");
    EXPECT_EQ(expression(u"a like 'x*' & b or c not like d"),
              "(([a] like ('x*' & [b])) or ([c] not like [d]))");
    EXPECT_EQ(expression(u"a+1 is not null = b is null"), "(((([a] + 1) is not null) = [b]) is null)");
    EXPECT_EQ(expression(u"a >= all (select b from t) and Any = some (select 1)"),
              "(([a] >= all (select [b] from [t])) and ([Any] = any (select 1)))");
    EXPECT_EQ(expression(u"a = any(b)"), "([a] = any([b]))");
    EXPECT_EQ(expression(u"not exists (select * from t) and (select max(x) from u) > 3"),
              "((not exists (select * from [t])) and ((select max([x]) from [u]) > 3))");
}

TEST(SqlExpressions, callFunctions) {
    EXPECT_EQ(expression(u"count(*), Count(distinct a), now(), left$(s, 2), iif(a, b, c)"),
              "count(*), Count(distinct [a]), now(), left([s], 2), iif([a], [b], [c])");
    EXPECT_EQ(expression(u"left(right(name, 3), 2)"), "left(right([name], 3), 2)");
}

TEST(SqlExpressions, minusSignsAreNoComment) {
    EXPECT_EQ(expression(u"5--3"), "(5 - (-3))");
    EXPECT_EQ(read(u"update t set a = b --1 where c = 2"),
              "update [t] set [a] = ([b] - (-1)) where ([c] = 2)");
    EXPECT_EQ(expression(u"5 /* - */ + /**/ 3"), "(5 + 3)");
}

TEST(SqlExpressions, numberPlaceholdersInTheirOrder) {
    const Statement statement = parse(u"insert into t values (?, ? + ?)");
    EXPECT_EQ(statement.placeholders, 3);
    const auto& row = std::get<Insert>(statement.node).rows.front();
    EXPECT_EQ(std::get<Placeholder>(row[0]->node).number, 0);
    EXPECT_EQ(std::get<Placeholder>(std::get<Binary>(row[1]->node).right->node).number, 2);
}

TEST(SqlNames, areReadInEveryForm) {
    EXPECT_EQ(
        expression(u"t.a, t!b, [my table].[a field], `x`.y, [t.a], [select], t.order, Größe, _1"),
        "[t].[a], [t].[b], [my table].[a field], [x].[y], [t.a], [select], [t].[order], [Gr\xC3\xB6\xC3\x9F"
        "e], [_1]");
    EXPECT_EQ(expression(u"name, date, text, type, value, key, level, [Enter name], `a]b`"),
              "[name], [date], [text], [type], [value], [key], [level], [Enter name], `a]b`");
    EXPECT_EQ(expression(u"[yes], yes.a, a.yes, left, top, percent"),
              "[yes], [yes].[a], [a].[yes], [left], [top], [percent]");
}

TEST(SqlConstants, keepTheirTypes) {
    EXPECT_EQ(constant(parse(u"select 2147483647")), Value(2147483647));
    EXPECT_EQ(constant(parse(u"select 2147483648")), Value(2147483648.0));
    EXPECT_EQ(constant(parse(u"select 1.0")), Value(1.0));
    EXPECT_EQ(constant(parse(u"select .5e-1")), Value(0.05));
    EXPECT_EQ(constant(parse(u"select &HFF")), Value(255));
    EXPECT_EQ(constant(parse(u"select &hFFFFFFFF")), Value(-1));
    EXPECT_EQ(constant(parse(u"select &O17")), Value(15));
    EXPECT_EQ(constant(parse(u"select \"a\"\"b'c\"")), Value(u"a\"b'c"));
    EXPECT_EQ(constant(parse(u"select 'it''s \"x\"'")), Value(u"it's \"x\""));
    EXPECT_EQ(constant(parse(u"select ''")), Value(u""));
    EXPECT_EQ(expression(u"Yes, off, TRUE, Null"), "true, false, true, null");
}

TEST(SqlConstants, readDatesInEveryForm) {
    const Value noon = dateOf({2010, 7, 4, 12, 0, 0});
    EXPECT_EQ(constant(parse(u"select #7/4/2010 12:00#")), noon);
    EXPECT_EQ(constant(parse(u"select #2010-07-04 12:00:00#")), noon);
    EXPECT_EQ(constant(parse(u"select # 7/4/2010 12:00:00 PM #")), noon);
    EXPECT_EQ(constant(parse(u"select #12:00#")), Value(Date{0.5}));
}

TEST(SqlSelect, readsAllItsParts) {
    EXPECT_EQ(
        read(
            u"SELECT DISTINCT TOP 5 t.*, *, a AS b INTO u FROM t WHERE a>1 GROUP BY a, b+1 HAVING count(*)>1 "
            u"ORDER BY 1 DESC, a ASC;"),
        "select distinct top 5 [t].*, *, [a] as [b] into [u] from [t] where ([a] > 1) group by [a], ([b] + "
        "1) "
        "having (count(*) > 1) order by 1 desc, [a]");
    EXPECT_EQ(read(u"select all a from t with owneraccess option"), "select [a] from [t]");
    EXPECT_EQ(read(u"select distinctrow a from t"), "select [a] from [t]");
}

TEST(SqlSelect, tellsTopAndPercentFromFieldsOfThoseNames) {
    EXPECT_EQ(read(u"select top 10 percent a from t"), "select top 10 percent [a] from [t]");
    EXPECT_EQ(read(u"select top 50 percent null"), "select top 50 percent null");
    EXPECT_EQ(read(u"select top 50 percent -3"), "select top 50 percent (-3)");
    EXPECT_EQ(read(u"select top 50 percent * from t"), "select top 50 percent * from [t]");
    EXPECT_EQ(read(u"select top 5 percent from t"), "select top 5 [percent] from [t]");
    EXPECT_EQ(read(u"select top 5 percent, a from t"), "select top 5 [percent], [a] from [t]");
    EXPECT_EQ(read(u"select top, a from t"), "select [top], [a] from [t]");
    EXPECT_EQ(read(u"select top 101 percent a from t"),
              "3075 Syntax error at 'a' (character 24): TOP takes at most 100 percent.");
}

TEST(SqlSelect, joinsInAnyParentheses) {
    EXPECT_EQ(read(u"select * from a inner join b on a.x=b.x left outer join c as d on b.y=d.y"),
              "select * from (([a] inner join [b] on ([a].[x] = [b].[x])) left join [c] as [d] on ([b].[y] = "
              "[d].[y]))");
    EXPECT_EQ(read(u"select * from ((a x right join (b) on p=q) join (c join d on 1=1) on (r)), e"),
              "select * from ((([a] as [x] right join [b] on ([p] = [q])) inner join ([c] inner join [d] on "
              "(1 = 1)) "
              "on [r]), [e])");
    EXPECT_EQ(read(u"select * from a join b join c on 1 on 2"),
              "select * from ([a] inner join ([b] inner join [c] on 1) on 2)");
    EXPECT_EQ(read(u"select * from (select a from t) as u, (select 1) v, ((select 2)) w, (t) as z"),
              "select * from ((((select [a] from [t]) as [u], (select 1) as [v]), (select 2) as [w]), [t] "
              "as [z])");
}

TEST(SqlSelect, unitesWithOneOrderForAll) {
    EXPECT_EQ(read(u"select a from t union all select b from u union (select c from v) order by a"),
              "select [a] from [t] union all select [b] from [u] union select [c] from [v] order by [a]");
    EXPECT_EQ(read(u"(select top 1 a from t order by a) union select 2"),
              "select * from (select top 1 [a] from [t] order by [a]) union select 2");
    EXPECT_EQ(read(u"select 1 union (select 2 union all select 2)"),
              "select 1 union select * from (select 2 union all select 2)");
}

TEST(SqlChanges, readTheirForms) {
    EXPECT_EQ(read(u"insert into t (a, [b c], t.d) values (1, 'x', null), (?, -1, now())"),
              "insert into [t] ([a], [b c], [d]) values (1, 'x', null), (?, (-1), now())");
    EXPECT_EQ(read(u"insert into t select * from u"), "insert into [t] select * from [u]");
    EXPECT_EQ(read(u"insert into t (a) (select b from u)"), "insert into [t] ([a]) select [b] from [u]");
    EXPECT_EQ(
        read(u"update a inner join b on a.i=b.i set a.x=b.y+1, z='q' where b.k is null"),
        "update ([a] inner join [b] on ([a].[i] = [b].[i])) set [a].[x] = ([b].[y] + 1), [z] = 'q' where "
        "([b].[k] is null)");
    EXPECT_EQ(read(u"delete from t"), "delete from [t]");
    EXPECT_EQ(read(u"delete * from t where a"), "delete from [t] where [a]");
    EXPECT_EQ(read(u"delete t.* from t, u where t.a=u.a"),
              "delete [t].* from ([t], [u]) where ([t].[a] = [u].[a])");
    EXPECT_EQ(read(u"exec q 1, 'a', -3;"), "execute [q] 1, 'a', (-3)");
    EXPECT_EQ(read(u"execute [my query]"), "execute [my query]");
    EXPECT_EQ(
        read(u"parameters [the key] text(20), n long; select * from t where k=[the key] and m>n"),
        "parameters [the key] TEXT, [n] LONG; select * from [t] where (([k] = [the key]) and ([m] > [n]))");
}

TEST(SqlChanges, countTheValuesOfARow) {
    EXPECT_EQ(read(u"insert into t (a, b) values (1)"),
              "3134 Syntax error at ')' (character 31): the row has fewer values than there are fields.");
    EXPECT_EQ(read(u"insert into t (a) values (1), (1, 2)"),
              "3134 Syntax error at ')' (character 36): the row has more values than there are fields.");
}

TEST(SqlErrors, nameTheWordAndItsPlace) {
    const std::pair<TextView, const char*> cases[] = {
        {u"select a b c from t",
         "3075 Syntax error at 'b' (character 10): an operator or a comma is missing in front of it."},
        {u"select a, from t",
         "3075 Syntax error at 'from' (character 11): this word is a name only in brackets."},
        {u"select * from t where", "3075 Syntax error at the end of the statement: a value is missing."},
        {u"select (1 + 2", "3075 Syntax error at the end of the statement: \")\" is expected."},
        {u"select * from t where a = 'x",
         "3075 Syntax error at ''x' (character 27): the text has no closing quote."},
        {u"select [a from t",
         "3075 Syntax error at '[a from t' (character 8): the name has no closing bracket."},
        {u"select `a", "3075 Syntax error at '`a' (character 8): the name has no closing backquote."},
        {u"select #1/1/2010", "3075 Syntax error at '#1/1/2010' (character 8): the date has no closing #."},
        {u"select #next week#", "3075 Syntax error at '#next week#' (character 8): this is not a date."},
        {u"select a /* b", "3075 Syntax error at '/*' (character 10): the comment has no end."},
        {u"select a @ b", "3075 Syntax error at '@' (character 10): this character has no meaning here."},
        {u"select \u201Ca\u201D",
         "3075 Syntax error at '\xE2\x80\x9C' (character 8): this character has no meaning here."},
        {u"select []", "3075 Syntax error at '[]' (character 8): the name is empty."},
        {u"select 1e999", "3075 Syntax error at '1e999' (character 8): the number is out of range."},
        {u"select a.b.c",
         "3075 Syntax error at '.' (character 11): a name has at most two parts, table and field."},
        {u"select a in () from t", "3075 Syntax error at ')' (character 14): a value is missing."},
        {u"select 1; select 2",
         "3075 Syntax error at 'select' (character 11): nothing may follow the semicolon."},
        {u"select a from t)", "3075 Syntax error at ')' (character 16): this does not belong here."},
        {u"select * from t group a", "3075 Syntax error at 'a' (character 23): BY is expected."},
        {u"select (select a into b from t)",
         "3075 Syntax error at ')' (character 31): a select inside another statement cannot make a table."},
        {u"frobnicate t",
         "3075 Syntax error at 'frobnicate' (character 1): a statement begins with SELECT, INSERT, "
         "UPDATE, DELETE, CREATE, ALTER, DROP or EXECUTE."},
        {u"", "3075 The statement is empty."},
        {u" \n;", "3075 The statement is empty."},
        {u"/* nothing */", "3075 The statement is empty."},
        {u"parameters p wibble; select 1",
         "3259 Syntax error at 'wibble' (character 14): there is no field type of that name."},
        {u"create table t (a wibble)",
         "3259 Syntax error at 'wibble' (character 19): there is no field type of that name."},
        {u"create tabel t (a long)",
         "3290 Syntax error at 'tabel' (character 8): TABLE, INDEX, VIEW or PROCEDURE is expected."},
    };
    for (const auto& [statement, message] : cases) {
        EXPECT_EQ(read(statement), message);
    }
}

}  // namespace
}  // namespace tessary::server::sql
