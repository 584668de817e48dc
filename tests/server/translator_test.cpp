// Statements of the dialect, from their text to the records that SQLite gives.

#include "tests/server/translator_fixture.h"

namespace tessary::server {

TEST_F(TranslatorTest, TypesOfFieldsComeOutOfResults) {
    EXPECT_EQ(run("SELECT * FROM tblLayer WHERE ixLayer = 1"), "1 'Walls' yes 1 0.5 #7/4/2010# '25' null");
    EXPECT_EQ(run("SELECT tMade + 1, iColor * 2, bPlot, iColor > 1, IIf(bPlot, tMade, Null) FROM tblLayer "
                  "WHERE ixLayer = 2"),
              "#7/6/2010 1:45:00 PM# 4 no yes null");
    EXPECT_EQ(
        run("SELECT q.d, q.b FROM (SELECT tMade AS d, bPlot AS b FROM tblLayer WHERE ixLayer = 1) AS q"),
        "#7/4/2010# yes");
    EXPECT_EQ(run("SELECT Min(tMade), Max(sName), Count(*), Min(bPlot), Avg(iColor) FROM tblLayer"),
              "#7/4/2010# 'Walls' 3 yes 11");
}

TEST_F(TranslatorTest, ResultColumnsAreNamedAsTheDialectDoes) {
    EXPECT_EQ(columns("SELECT SNAME, iColor + 1, Count(*) AS n, 5 FROM tblLayer GROUP BY sName, iColor"),
              "sName,Expr1001,n,Expr1003");
    EXPECT_EQ(columns("SELECT l.ixLayer, k.ixLayer, sKey FROM tblLayer AS l INNER JOIN tblLayerKey AS k ON "
                      "l.ixLayer = k.ixLayer"),
              "l.ixLayer,k.ixLayer,sKey");
    EXPECT_EQ(
        columns(
            "SELECT k.*, sName FROM tblLayer INNER JOIN tblLayerKey AS k ON tblLayer.ixLayer = k.ixLayer"),
        "ixLayerKey,ixLayer,sKey,sName");
}

TEST_F(TranslatorTest, NamesThatAreNoFieldsAreParameters) {
    EXPECT_EQ(parameters("SELECT [second], sName FROM tblLayer WHERE iColor = [Third] AND sName = [FIRST] OR "
                         "bPlot = [third]"),
              "second,Third,FIRST");
    EXPECT_EQ(parameters("PARAMETERS b LONG, a TEXT; SELECT a, c FROM tblLayer WHERE iColor = b"), "b,a,c");
    EXPECT_EQ(parameters("SELECT x.sName, tblLayer.none FROM tblLayer"), "x.sName,tblLayer.none");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE iColor = ? AND sName = ?", {2, Text(u"DOORS")}),
              "'doors'");
    EXPECT_EQ(run("PARAMETERS c LONG; SELECT sName FROM tblLayer WHERE iColor = c", {Text(u"2")}), "'doors'");
    EXPECT_EQ(
        run("PARAMETERS c LONG; SELECT sName FROM tblLayer WHERE iColor = c", {Text(u"two")}).substr(0, 5),
        "#3421");
}

TEST_F(TranslatorTest, AmbiguousNamesAndUnknownTablesAreErrors) {
    EXPECT_EQ(run("SELECT ixLayer FROM tblLayer, tblLayerKey"),
              "#3079 The field 'ixLayer' could refer to more than one table of the statement.");
    EXPECT_EQ(run("SELECT * FROM tblNone"), "#3078 There is no table or query 'tblNone'.");
    EXPECT_EQ(run("SELECT x.* FROM tblLayer").substr(0, 5), "#3078");
    EXPECT_EQ(run("SELECT frobnicate(1)"), "#3085 Undefined function 'frobnicate' in expression.");
    EXPECT_EQ(run("SELECT Left('a')").substr(0, 5), "#3075");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE Count(*) > 1").substr(0, 5), "#3075");
}

TEST_F(TranslatorTest, TextsCompareWithoutCase) {
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE 'walls' = sName"), "'Walls'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE sName & '' = 'WALLS'"), "'Walls'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE UCase(sName) IN ('x', 'ducts')"), "'DUCTS'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE sName & 'x' BETWEEN 'a' AND 'DZ' ORDER BY sName & ''"),
              "'doors'\n'DUCTS'");
    EXPECT_EQ(value("'abc' = 'ABC', 'a' < 'B', ? = 'ABC'", {Text(u"abc")}), "yes yes yes");
    EXPECT_EQ(run("SELECT DISTINCT Left(sKey & 'x', 4) FROM tblLayerKey WHERE ixLayer = 1"), "'wall'");
    EXPECT_EQ(run("SELECT Count(*) FROM tblLayerKey GROUP BY Left(sKey, 4) ORDER BY 1 DESC"), "2\n1\n1");
    EXPECT_EQ(run("SELECT 'A' FROM tblLayer UNION SELECT 'a' FROM tblLayer").size(), 3u);
    EXPECT_EQ(run("SELECT sName FROM tblLayer ORDER BY sName DESC"), "'Walls'\n'DUCTS'\n'doors'");
    EXPECT_EQ(run("SELECT Max(sKey & '') FROM tblLayerKey"), "'WALL2'");
    EXPECT_EQ(run("SELECT k FROM (SELECT sKey & '' AS k FROM tblLayerKey) AS q INNER JOIN tblLayer ON q.k & "
                  "'s' = tblLayer.sName"),
              "'wall'\n'door'");
}

TEST_F(TranslatorTest, ValuesCompareAcrossTypes) {
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE bPlot = 1"), "'Walls'\n'DUCTS'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE bPlot <> True"), "'doors'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE bPlot = ?", {1}), "'Walls'\n'DUCTS'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE NOT bPlot"), "'doors'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE iColor IN ('2', 30.0)"), "'doors'\n'DUCTS'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE sLineweight = 25"), "'Walls'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE sLineweight = ?", {25.0}), "'Walls'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE tMade = '7/4/2010'"), "'Walls'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE tMade > #7/4/2010 23:00#"), "'doors'");
    EXPECT_EQ(
        run("SELECT sName FROM tblLayer WHERE tMade BETWEEN ? AND ?", {Date{40363}, Text(u"2010-07-04")}),
        "'Walls'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE iColor = 'red'").substr(0, 5), "#3464");
}

TEST_F(TranslatorTest, OperatorsGiveWhatTheDialectGives) {
    EXPECT_EQ(value("7 \\ 2, -7 \\ 2, 2.5 \\ 1, 7 Mod 4, -7 Mod 4, 1 / 4, 2 ^ 10"), "3 -3 2 3 -3 0.25 1024");
    EXPECT_EQ(value("1 / 0"), "#3058 Division by zero.");
    EXPECT_EQ(value("5 Mod 0.4"), "#3058 Division by zero.");
    EXPECT_EQ(value("'a' & Null & 1 & 2.5 & #7/4/2010# & True"), "'a12.57/4/2010-1'");
    EXPECT_EQ(value("'a' + 'b', 'a' + Null, '1' + 2, 1 + '2.5'"), "'ab' null 3 3.5");
    EXPECT_EQ(value("'a' + 1").substr(0, 5), "#3464");
    EXPECT_EQ(value("True Xor False, 5 Eqv 3, True Imp False, Null Imp True, Not 0, 3 And 4, Null And False"),
              "yes yes no yes yes yes no");
    EXPECT_EQ(value("-2 ^ 2, 2147483647 + 1, 2147483647 * 2147483647 * 4"),
              "-4 2147483648 1.8446744056529682E+19");
    EXPECT_EQ(value("Null = Null, Null Is Null, 3 BETWEEN 1 AND 3, 3 NOT IN (1, 2)"), "null yes yes yes");
}

TEST_F(TranslatorTest, LikeKnowsItsPatterns) {
    EXPECT_EQ(value("'Wall-12' LIKE 'w*-##', 'abc' LIKE 'a?c', 'abc' LIKE '[!A-C]*', 'b' LIKE '[a-c]', 'a]' "
                    "LIKE '[a]]'"),
              "yes yes no yes yes");
    EXPECT_EQ(value("'a*b' LIKE 'a[*]b', 'axb' LIKE 'a[*]b', '' LIKE '*', '' LIKE '?', 'a-c' LIKE 'a[x-]c', "
                    "Null LIKE '*'"),
              "yes no yes no yes null");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE sName NOT LIKE 'd*'"), "'Walls'");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE sName LIKE ? & '*'", {Text(u"DO")}), "'doors'");
    EXPECT_EQ(run("SELECT sKey FROM tblLayer AS l, tblLayerKey AS k WHERE sKey LIKE Left(sName, 4) & '*' AND "
                  "l.ixLayer < 3"),
              "'wall'\n'WALL2'\n'door'");
    EXPECT_EQ(value("'a' LIKE '[a'").substr(0, 5), "#3075");
    // Ends at once, although there are more ways to deal out the text than could be tried.
    const std::string text(20000, 'a');
    EXPECT_EQ(value("'" + text + "' LIKE '*a*a*a*a*a*a*a*a*a*a*a*a*a*b'"), "no");
}

TEST_F(TranslatorTest, JoinsAndSubqueries) {
    EXPECT_EQ(run("SELECT sName, sKey FROM tblLayer LEFT JOIN tblLayerKey ON tblLayer.ixLayer = "
                  "tblLayerKey.ixLayer ORDER BY sKey"),
              "'DUCTS' null\n'doors' 'door'\n'Walls' 'wall'\n'Walls' 'WALL2'");
    EXPECT_EQ(run("SELECT sName, sKey FROM tblLayer RIGHT JOIN tblLayerKey ON tblLayer.ixLayer = "
                  "tblLayerKey.ixLayer WHERE sName IS NULL"),
              "null 'lost'");
    EXPECT_EQ(run("SELECT a.sKey, b.sKey, sName FROM tblLayerKey AS a LEFT JOIN (tblLayerKey AS b INNER JOIN "
                  "tblLayer AS l "
                  "ON b.ixLayer = l.ixLayer) ON a.ixLayerKey = b.ixLayerKey WHERE a.ixLayer > 1"),
              "'door' 'door' 'doors'\n'lost' null null");
    EXPECT_EQ(run("SELECT sName, (SELECT Count(*) FROM tblLayerKey WHERE ixLayer = tblLayer.ixLayer) FROM "
                  "tblLayer"),
              "'Walls' 2\n'doors' 1\n'DUCTS' 0");
    EXPECT_EQ(run("SELECT sName FROM tblLayer AS l WHERE NOT EXISTS (SELECT * FROM tblLayerKey WHERE "
                  "tblLayerKey.ixLayer = l.ixLayer)"),
              "'DUCTS'");
    EXPECT_EQ(run("SELECT sKey FROM tblLayerKey WHERE ixLayer NOT IN (SELECT ixLayer FROM tblLayer)"),
              "'lost'");
    EXPECT_EQ(run("SELECT sKey FROM tblLayerKey WHERE sKey & 's' IN (SELECT UCase(sName) FROM tblLayer)"),
              "'wall'\n'door'");
    EXPECT_EQ(run("SELECT sKey FROM tblLayerKey WHERE ixLayer IN (SELECT ixLayer, sName FROM tblLayer)")
                  .substr(0, 5),
              "#3075");
}

TEST_F(TranslatorTest, GroupsAndAggregates) {
    EXPECT_EQ(run("SELECT ixLayer, Count(*) AS n FROM tblLayerKey GROUP BY ixLayer HAVING Count(*) > 1"),
              "1 2");
    EXPECT_EQ(run("SELECT bPlot, Sum(iColor), First(sName), Last(sName) FROM tblLayer GROUP BY bPlot ORDER "
                  "BY bPlot"),
              "yes 31 'Walls' 'DUCTS'\nno 2 'doors' 'doors'");
    EXPECT_EQ(run("SELECT Var(iColor), VarP(iColor), StDevP(dWidth - dWidth), StDev(iColor) FROM tblLayer "
                  "WHERE iColor < 3"),
              "0.5 0.25 0 0.7071067811865476");
    EXPECT_EQ(run("SELECT Sum(iColor), StDev(iColor), VarP(iColor), First(sName), Count(iColor) FROM "
                  "tblLayer WHERE iColor > 99"),
              "null null null null 0");
    EXPECT_EQ(run("SELECT Sum(Max(iColor)) FROM tblLayer").substr(0, 5), "#3075");
    EXPECT_EQ(run("SELECT Year(tMade) AS y, Count(*) FROM tblLayer GROUP BY Year(tMade) ORDER BY y"),
              "null 1\n2010 2");
    EXPECT_EQ(run("SELECT 1 + 1, Count(*) FROM tblLayer GROUP BY 2"), "2 3");
}

TEST_F(TranslatorTest, FieldsBesideAggregatesMustBeGrouped) {
    for (const char* statement :
         {"SELECT sName, Count(*) FROM tblLayer", "SELECT sName FROM tblLayer GROUP BY iColor",
          "SELECT * FROM tblLayer GROUP BY sName",
          "SELECT bPlot FROM tblLayer GROUP BY bPlot HAVING dWidth > 1",
          "SELECT bPlot FROM tblLayer GROUP BY bPlot ORDER BY sName",
          "SELECT sName FROM tblLayer ORDER BY Max(iColor)",
          "SELECT iColor + 2 FROM tblLayer GROUP BY iColor + 1",
          "SELECT bPlot, (SELECT Count(*) FROM tblLayerKey AS k WHERE k.ixLayer = l.ixLayer) FROM tblLayer "
          "AS l GROUP BY "
          "bPlot"})
        EXPECT_EQ(run(statement).substr(0, 5), "#3122") << statement;
    EXPECT_EQ(run("SELECT iColor + 1 AS c, iColor * 2, Count(*) FROM tblLayer GROUP BY iColor, iColor + 1 "
                  "HAVING iColor "
                  "> 1 ORDER BY iColor + 1 DESC"),
              "31 60 1\n3 4 1");
    EXPECT_EQ(
        run("SELECT IIf(iColor > 1, 'many', 'one') AS n, Sum(iColor) FROM tblLayer GROUP BY IIf(iColor > 1, "
            "'many', 'one') ORDER BY n"),
        "'many' 32\n'one' 1");
    EXPECT_EQ(run("SELECT Count(*), iColor > 1 FROM tblLayer GROUP BY iColor > 1 HAVING iColor > 1"),
              "2 yes");
    EXPECT_EQ(run("SELECT ixLayer, (SELECT sName FROM tblLayer AS l WHERE l.ixLayer = k.ixLayer) FROM "
                  "tblLayerKey AS k "
                  "GROUP BY ixLayer HAVING ixLayer < 3"),
              "1 'Walls'\n2 'doors'");
}

TEST_F(TranslatorTest, AggregatesOverOuterFieldsBelongToTheirOwnSelect) {
    EXPECT_EQ(run("SELECT sName, (SELECT Sum(l.iColor) FROM tblLayerKey) AS t, (SELECT Count(l.tMade) FROM "
                  "tblLayerKey) "
                  "FROM tblLayer AS l"),
              "'Walls' 4 4\n'doors' 8 4\n'DUCTS' 120 0");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE 100 < (SELECT Sum(tblLayer.iColor) FROM tblLayerKey)"),
              "'DUCTS'");
    EXPECT_EQ(run("SELECT sName, (SELECT Sum(iColor)) FROM tblLayer").substr(0, 5), "#3075");
}

TEST_F(TranslatorTest, AllAnyAndSomeCompareWithEveryValue) {
    const std::string layers = "SELECT sName FROM tblLayer WHERE ";
    EXPECT_EQ(run(layers + "iColor >= ALL (SELECT iColor FROM tblLayer)"), "'DUCTS'");
    EXPECT_EQ(run(layers + "iColor > ANY (SELECT ixLayer FROM tblLayerKey)"), "'doors'\n'DUCTS'");
    EXPECT_EQ(run(layers + "sName = SOME (SELECT 'DOORS' FROM tblLayerKey)"), "'doors'");
    EXPECT_EQ(
        run(layers +
            "ixLayer <> ALL (SELECT k.ixLayer FROM tblLayerKey AS k WHERE k.sKey LIKE '*' & sName & '*')"),
        run(layers +
            "NOT ixLayer = ANY (SELECT k.ixLayer FROM tblLayerKey AS k WHERE k.sKey LIKE '*' & sName & "
            "'*')"));
    // Of no values all are greater and none is; a null leaves it open.
    EXPECT_EQ(
        value("1 > ALL (SELECT 2 FROM tblLayer WHERE False), 1 > ANY (SELECT 0 FROM tblLayer WHERE False), "
              "1 = ANY (SELECT tMade FROM tblLayer WHERE tMade Is Null), 5 > ALL (SELECT iColor FROM "
              "tblLayer)"),
        "yes no null no");
    EXPECT_EQ(run(layers + "iColor > ALL (SELECT ixLayer, sKey FROM tblLayerKey)").substr(0, 5), "#3075");
    EXPECT_EQ(run("SELECT Max(iColor) > ALL (SELECT 1) FROM tblLayer").substr(0, 5), "#3075");
}

TEST_F(TranslatorTest, OrderTopAndUnion) {
    EXPECT_EQ(run("SELECT TOP 2 sName FROM tblLayer ORDER BY iColor DESC"), "'DUCTS'\n'doors'");
    EXPECT_EQ(run("SELECT n FROM ((SELECT 1 AS n) UNION (SELECT 2) UNION ALL SELECT 2 ORDER BY n DESC) AS u"),
              "2\n2\n1");
    EXPECT_EQ(run("SELECT Count(*) FROM ((SELECT sName FROM tblLayer) UNION SELECT sKey FROM tblLayerKey) AS "
                  "u INNER JOIN "
                  "tblLayer ON u.sName = tblLayer.sName"),
              "3");
    EXPECT_EQ(run("SELECT TOP 40 PERCENT sName FROM tblLayer ORDER BY iColor"), "'Walls'\n'doors'");
    EXPECT_EQ(run("SELECT sName AS n, iColor FROM tblLayer ORDER BY 2 DESC, n"),
              "'DUCTS' 30\n'doors' 2\n'Walls' 1");
    EXPECT_EQ(run("SELECT sName FROM tblLayer ORDER BY 2").substr(0, 5), "#3075");
    EXPECT_EQ(run("SELECT sName FROM tblLayer UNION SELECT sKey FROM tblLayerKey ORDER BY sName DESC")
                  .substr(0, 15),
              "'Walls'\n'WALL2'");
    EXPECT_EQ(run("SELECT TOP 1 sName FROM tblLayer UNION ALL SELECT TOP 1 sKey FROM tblLayerKey"),
              "'Walls'\n'wall'");
    EXPECT_EQ(run("SELECT tMade FROM tblLayer WHERE ixLayer = 1 UNION SELECT tMade + 1 FROM tblLayer WHERE "
                  "ixLayer = 1"),
              "#7/4/2010#\n#7/5/2010#");
    EXPECT_EQ(run("SELECT sName FROM tblLayer UNION SELECT ixLayer, sKey FROM tblLayerKey").substr(0, 5),
              "#3075");
    EXPECT_EQ(run("SELECT iColor + 1 AS a, a * 2 AS b FROM tblLayer WHERE ixLayer = 1"), "2 4");
    EXPECT_EQ(parameters("SELECT UCase(a) AS a FROM tblLayer"), "a");
}

TEST_F(TranslatorTest, StoredQueriesAreSources) {
    schema_.queries = {
        {u"qryPlot", u"SELECT ixLayer, sName, tMade FROM tblLayer WHERE bPlot = [wanted];"},
        {u"qryOuter", u"PARAMETERS least LONG; SELECT sName, tMade FROM qryPlot WHERE ixLayer >= least"},
        {u"qryLoop", u"SELECT * FROM qryLoop2"},
        {u"qryLoop2", u"SELECT * FROM qryLoop"},
        {u"qryChange", u"DELETE FROM tblLayer"}};
    EXPECT_EQ(parameters("SELECT * FROM qryOuter WHERE sName = own"), "own,least,wanted");
    EXPECT_EQ(run("SELECT q.sName, tMade FROM qryOuter AS q ORDER BY tMade DESC", {Text(u"1"), true}),
              "'Walls' #7/4/2010#\n'DUCTS' null");
    EXPECT_EQ(run("SELECT * FROM qryLoop").substr(0, 5), "#3360");
    EXPECT_EQ(run("SELECT * FROM qryChange").substr(0, 5), "#3219");
    EXPECT_EQ(run("UPDATE qryPlot SET sName = 'x'").substr(0, 5), "#3073");
    EXPECT_EQ(run("INSERT INTO qryPlot (sName) VALUES ('x')").substr(0, 5), "#3073");
    EXPECT_EQ(run("DELETE FROM qryPlot").substr(0, 5), "#3073");
    // Each query doubles the one before it.
    schema_.queries = {{u"q0", u"SELECT sName FROM tblLayer"}};
    for (int i = 1; i < 40; ++i) {
        const Text before = u"q" + textOf(i - 1);
        schema_.queries.push_back(
            {u"q" + textOf(i), u"SELECT a.sName FROM " + before + u" AS a, " + before + u" AS b"});
    }
    EXPECT_EQ(run("SELECT * FROM q39").substr(0, 5), "#3360");
}

TEST_F(TranslatorTest, ChangesConvertToTheTypeOfTheField) {
    EXPECT_EQ(run("INSERT INTO tblLayer (sName, bPlot, iColor, tMade) VALUES (12, 'yes', '7.5', '7/4/2010')"),
              "1");
    EXPECT_EQ(run("SELECT sName, bPlot, iColor, tMade FROM tblLayer WHERE ixLayer = 4"),
              "'12' yes 8 #7/4/2010#");
    EXPECT_EQ(run("INSERT INTO tblLayer (iColor) VALUES ('red')").substr(0, 5), "#3421");
    EXPECT_EQ(run("INSERT INTO tblLayer (ixLayer, iColor) VALUES (50, ?)", {Text(u"red")}).substr(0, 5),
              "#3421");
    EXPECT_NE(run("INSERT INTO tblLayer (ixLayer, iColor) VALUES (50, ?)", {Text(u"red")}).find("iColor"),
              std::string::npos);
    EXPECT_EQ(run("INSERT INTO tblLayer (ixLayer, sName) SELECT ixLayer + 100, tMade FROM tblLayer WHERE "
                  "tMade IS NOT NULL"),
              "3");
    EXPECT_EQ(run("SELECT sName FROM tblLayer WHERE ixLayer = 102"), "'7/5/2010 1:45:00 PM'");
    EXPECT_EQ(run("INSERT INTO tblLayer (sName, none) VALUES ('a', 1)").substr(0, 5), "#3265");
    EXPECT_EQ(run("INSERT INTO tblLayer (sName, iColor) VALUES ('a')").substr(0, 5), "#3134");
    EXPECT_EQ(run("INSERT INTO tblLayer (sName, SNAME) VALUES ('a', 'b')").substr(0, 5), "#3134");
}

TEST_F(TranslatorTest, UpdatesAndDeletesOfJoins) {
    EXPECT_EQ(
        run("UPDATE tblLayer SET iColor = iColor + 1, dWidth = iColor, sNote = sName & '!' WHERE bPlot"),
        "2");
    EXPECT_EQ(run("SELECT iColor, dWidth, sNote FROM tblLayer"), "2 1 'Walls!'\n2 1.25 null\n31 30 'DUCTS!'");
    EXPECT_EQ(run("UPDATE tblLayer AS l INNER JOIN tblLayerKey AS k ON l.ixLayer = k.ixLayer SET k.sKey = "
                  "l.sName & k.ixLayerKey, "
                  "k.ixLayer = k.ixLayer + 10 WHERE l.sName LIKE 'w*'"),
              "2");
    EXPECT_EQ(run("SELECT ixLayer, sKey FROM tblLayerKey"), "11 'Walls1'\n11 'Walls2'\n2 'door'\n99 'lost'");
    EXPECT_EQ(run("UPDATE tblLayerKey AS k LEFT JOIN tblLayer AS l ON l.ixLayer = k.ixLayer SET k.ixLayer = "
                  "Null WHERE l.ixLayer IS NULL"),
              "3");
    EXPECT_EQ(run("UPDATE tblLayer AS l INNER JOIN tblLayerKey AS k ON l.ixLayer = k.ixLayer SET sName = "
                  "'a', sKey = 'b'")
                  .substr(0, 5),
              "#3073");
    EXPECT_EQ(run("UPDATE tblLayer SET none = 1").substr(0, 5), "#3265");
    EXPECT_EQ(run("DELETE tblLayerKey.* FROM tblLayer INNER JOIN tblLayerKey ON tblLayer.ixLayer = "
                  "tblLayerKey.ixLayer"),
              "1");
    EXPECT_EQ(run("DELETE * FROM tblLayer INNER JOIN tblLayerKey ON tblLayer.ixLayer = tblLayerKey.ixLayer")
                  .substr(0, 5),
              "#3073");
    EXPECT_EQ(run("DELETE FROM tblLayerKey AS k WHERE k.ixLayerKey > 3"), "1");
    EXPECT_EQ(run("SELECT ixLayerKey FROM tblLayerKey"), "1\n2");
}

TEST_F(TranslatorTest, NamesAndTextsCannotLeaveTheirQuotes) {
    EXPECT_EQ(run("INSERT INTO [odd \"name\"] (rowid, [select]) VALUES ('it''s \"x\"', 3)"), "1");
    EXPECT_EQ(run("SELECT rowid, [SELECT] FROM [odd \"name\"]"), "'it's \"x\"' 3");
    EXPECT_EQ(run("UPDATE [odd \"name\"] AS o, tblLayer AS l SET [select] = l.iColor WHERE l.ixLayer = 2 AND "
                  "o.rowid LIKE 'it*'"),
              "1");
    EXPECT_EQ(run("SELECT [select] FROM [odd \"name\"]"), "2");
    EXPECT_EQ(run("DELETE o.* FROM [odd \"name\"] AS o, tblLayer AS l WHERE l.iColor = o.[select]"), "1");
    sql::Select select;
    select.items.push_back({std::make_unique<sql::Expression>(), {}, u"text"});
    for (const Text& text : {Text(u"a\0b\x01"
                                  u"0\x02",
                                  6),
                             Text(u"\xD800'\xDC00\xDC00", 4), Text(u"'); DROP TABLE x; --")}) {
        select.items[0].expression->node = sql::Literal{text};
        const Translation translation = translateSelect(select, {}, schema_);
        sqlite3_stmt* statement = nullptr;
        ASSERT_EQ(sqlite3_prepare_v2(connection_, translation.sql.c_str(), -1, &statement, nullptr),
                  SQLITE_OK);
        ASSERT_EQ(sqlite3_step(statement), SQLITE_ROW);
        const auto* units = static_cast<const char16_t*>(sqlite3_column_text16(statement, 0));
        EXPECT_EQ(Text(units, static_cast<std::size_t>(sqlite3_column_bytes16(statement, 0)) / 2), text);
        sqlite3_finalize(statement);
    }
}

TEST_F(TranslatorTest, LargeStatements) {
    std::string condition = "ixLayer = 1";
    for (int i = 0; i < 3000; ++i)
        condition += " OR ixLayer = " + std::to_string(i + 2);
    EXPECT_EQ(run("SELECT Count(*) FROM tblLayer WHERE " + condition).substr(0, 100), "3");
    const std::string longText(10'000'000, 'x');
    EXPECT_EQ(run("UPDATE tblLayer SET sNote = '" + longText + "' WHERE ixLayer = 1"), "1");
    EXPECT_EQ(run("SELECT Len(sNote) FROM tblLayer WHERE ixLayer = 1"), "10000000");
    std::string chain = "1";
    for (int i = 0; i < 3000; ++i)
        chain += " - 1";
    EXPECT_EQ(value(chain).substr(0, 5), "#3360");
    std::string nested = "1";
    for (int i = 0; i < 40; ++i)
        nested = "IIf(True, " + nested + ", 0)";
    EXPECT_EQ(value(nested).substr(0, 100), "1");
}

TEST_F(TranslatorTest, ComparisonsWithFieldsUseTheirIndexes) {
    for (const char* field : {"sName", "iColor", "tMade", "bPlot"})
        execute(std::string("CREATE INDEX ") + field + " ON tblLayer (" + field + ")");
    for (const char* condition :
         {"sName = 'a'", "'a' = sName", "sName = ?", "sName & '' = 'a' And iColor = ?", "iColor = '5'",
          "bPlot = True", "bPlot = ?", "tMade > #7/4/2010#", "tMade < ?", "sName IN ('a', 'b')",
          "sName BETWEEN 'a' AND ?", "ixLayer = ?", "sName = (SELECT Max(sKey) FROM tblLayerKey)",
          "sName IN (SELECT UCase(sKey) FROM tblLayerKey)"}) {
        const Translation translation = translate(std::string("SELECT * FROM tblLayer WHERE ") + condition);
        sqlite3_stmt* plan = nullptr;
        ASSERT_EQ(sqlite3_prepare_v2(connection_, ("EXPLAIN QUERY PLAN " + translation.sql).c_str(), -1,
                                     &plan, nullptr),
                  SQLITE_OK);
        ASSERT_EQ(sqlite3_step(plan), SQLITE_ROW);
        const std::string step = reinterpret_cast<const char*>(sqlite3_column_text(plan, 3));
        EXPECT_EQ(step.substr(0, 6), "SEARCH") << condition << ": " << step;
        sqlite3_finalize(plan);
    }
}

TEST_F(TranslatorTest, AliasesAreKnownOnlyInTheirOwnSelect) {
    EXPECT_EQ(parameters("SELECT iColor AS a, (SELECT Count(*) FROM tblLayerKey WHERE ixLayer = a) FROM "
                         "tblLayer WHERE a = 1"),
              "a");
    EXPECT_EQ(run("SELECT bPlot AS b, Sum(iColor) AS s FROM tblLayer GROUP BY bPlot HAVING s > 5 ORDER BY s"),
              "yes 31");
}

TEST_F(TranslatorTest, OuterFieldsWhereSqliteHasNoneAreErrors) {
    EXPECT_EQ(run("SELECT sName, (SELECT TOP 50 PERCENT sKey FROM tblLayerKey AS k WHERE k.ixLayer = "
                  "l.ixLayer) FROM tblLayer AS l")
                  .substr(0, 5),
              "#3075");
    EXPECT_EQ(run("SELECT (SELECT Count(*) FROM tblLayerKey AS k GROUP BY l.iColor) FROM tblLayer AS l")
                  .substr(0, 5),
              "#3075");
    EXPECT_EQ(run("SELECT (SELECT Count(*) FROM tblLayerKey AS k WHERE k.ixLayer = l.ixLayer GROUP BY "
                  "k.ixLayer) FROM tblLayer AS l"),
              "2\n1\nnull");
}

TEST_F(TranslatorTest, SelectIntoTellsTheFieldsOfItsTable) {
    run("SELECT l.sName, l.ixLayer, k.ixLayer, tMade + 1 AS d, iColor > 1 AS b, 'x' & iColor AS t, sNote, "
        "Sum(iColor) AS n, iColor * 2 AS m INTO tblNew FROM tblLayer AS l, tblLayerKey AS k "
        "GROUP BY l.sName, l.ixLayer, k.ixLayer, tMade, iColor, sNote");
    std::string fields;
    for (const FieldDefinition& field : into_.fields)
        fields += toUtf8(field.name) + " " + toUtf8(typeName(field.type)) + " " + std::to_string(field.size) +
                  (field.autonumber ? " auto\n" : "\n");
    EXPECT_EQ(toUtf8(into_.name), "tblNew");
    EXPECT_EQ(
        fields,
        "sName TEXT 50\nl_ixLayer LONG 0\nk_ixLayer LONG 0\nd DATETIME 0\nb YESNO 0\nt TEXT 0\nsNote MEMO 0\n"
        "n DOUBLE 0\nm DOUBLE 0\n");
    EXPECT_EQ(run("SELECT sName AS a, iColor AS A INTO tblNew FROM tblLayer").substr(0, 5), "#3191");
}

}  // namespace tessary::server
