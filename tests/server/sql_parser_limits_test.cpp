// Statements that are long or deep: they are read in time that grows with their length, or refused, and never
// exhaust the stack.

#include "server/sql/syntax.h"

#include "server/values/error.h"
#include "tests/server/sql_text.h"

#include <gtest/gtest.h>

#include <optional>

namespace tessary::server::sql {
namespace {

Text repeated(TextView piece, std::size_t count) {
    Text text;
    for (std::size_t i = 0; i < count; ++i) {
        text += piece;
    }
    return text;
}

std::optional<ErrorCode> failure(const Text& statement) {
    try {
        parse(statement);
        return std::nullopt;
    } catch (const DatabaseError& error) {
        return error.code();
    }
}

int height(const Expression& expression) {
    const auto* const binary = std::get_if<Binary>(&expression.node);
    return binary ? 1 + std::max(height(*binary->left), height(*binary->right)) : 1;
}

TEST(SqlLimits, longChainsAreLowTrees) {
    for (const TextView operation : {u" and b", u" or b", u" & b"}) {
        const Statement statement = parse(u"select a" + repeated(operation, 100'000));
        EXPECT_LE(height(*std::get<SelectPtr>(statement.node)->items.front().expression), 18)
            << toUtf8(operation);
    }
    EXPECT_EQ(written(parse(u"select a and b and c and d and e")),
              "select ((([a] and [b]) and [c]) and ([d] and [e]))");
}

TEST(SqlLimits, longChainsOfOtherOperatorsAreRefused) {
    EXPECT_EQ(failure(u"select 1" + repeated(u"+1", tallestTree - 1)), std::nullopt);
    EXPECT_EQ(failure(u"select 1" + repeated(u"+1", tallestTree)), ErrorCode::tooComplex);
    EXPECT_EQ(failure(u"select a" + repeated(u" is null", 10'000)), ErrorCode::tooComplex);
    EXPECT_EQ(failure(u"select * from t" + repeated(u", t", 10'000)), ErrorCode::tooComplex);
    EXPECT_EQ(failure(u"select * from t" + repeated(u" join t on 1", 10'000)), ErrorCode::tooComplex);
}

// Each level alone would pass, but their sum makes a tree of many thousand levels.
TEST(SqlLimits, chainsInsideEachOtherCountTogether) {
    EXPECT_EQ(failure(u"select " + repeated(u"(", 50) + u"1" + repeated(repeated(u"+1", 100) + u")", 50)),
              ErrorCode::tooComplex);
    Text nested = u"select 1";
    for (int level = 0; level < 10; ++level) {
        nested = u"select (" + nested + u")" + repeated(u"+1", 100);
    }
    EXPECT_EQ(failure(nested), ErrorCode::tooComplex);
}

TEST(SqlLimits, deepNestingIsRefusedWithoutExhaustingTheStack) {
    struct Case {
        TextView prefix, open, middle, close;
        std::size_t accepted;
    };
    const Case cases[] = {
        {u"select ", u"(", u"1", u")", 100},
        {u"select ", u"-", u"1", u"", 100},
        {u"select ", u"not ", u"1", u"", 100},
        {u"select ", u"f(", u"1", u")", 100},
        {u"select ", u"a in (", u"1", u")", 60},
        {u"select ", u"iif(a = ", u"1", u", 2, 3)", 60},
        {u"select ", u"(select ", u"1", u")", 20},
        {u"select * from ", u"(", u"t", u")", 100},
        {u"select * from ", u"(select * from ", u"t", u")", 20},
        {u"select * from ", u"(", u"t", u" inner join u on a = b)", 60},
        {u"select * from t ", u"join t ", u"", u"on 1 ", 60},
        {u"", u"(", u"select 1", u")", 20},
    };
    for (const Case& row : cases) {
        const auto nested = [&](std::size_t levels) {
            return Text(row.prefix) + repeated(row.open, levels) + Text(row.middle) +
                   repeated(row.close, levels);
        };
        EXPECT_EQ(failure(nested(row.accepted)), std::nullopt) << toUtf8(row.open);
        EXPECT_EQ(failure(nested(100'000)), ErrorCode::tooComplex) << toUtf8(row.open);
    }
}

TEST(SqlLimits, longTextsAndListsAreRead) {
    const Text text(10'000'000, u'x');
    const Statement constant = parse(u"select '" + text + u"'");
    EXPECT_EQ(std::get<Literal>(std::get<SelectPtr>(constant.node)->items.front().expression->node).value,
              Value(text));
    const Statement list = parse(u"select * from t where a in (0" + repeated(u", 1", 100'000) + u")");
    EXPECT_EQ(std::get<InList>(std::get<SelectPtr>(list.node)->where->node).items.size(), 100'001U);
    const Statement rows = parse(u"insert into t values (0)" + repeated(u", (1, 'x')", 100'000));
    EXPECT_EQ(std::get<Insert>(rows.node).rows.size(), 100'001U);
    const Statement members = parse(u"select 1" + repeated(u" union all select 2", 10'000));
    EXPECT_EQ(std::get<SelectPtr>(members.node)->unions.size(), 10'000U);
}

TEST(SqlLimits, longWordsAreCutInMessages) {
    try {
        parse(u"select 'a' '" + Text(1'000'000, u'x') + u"'");
        FAIL() << "two texts without an operator were accepted";
    } catch (const DatabaseError& error) {
        EXPECT_LT(error.text().size(), 200U);
    }
}

}  // namespace
}  // namespace tessary::server::sql
