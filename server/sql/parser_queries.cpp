#include "server/sql/parser_queries.h"

#include "server/sql/parser_expressions.h"
#include "server/sql/parser_sources.h"

#include <algorithm>
#include <utility>

namespace tessary::server::sql {

namespace {

// What a select takes of the parser's recursion, in levels of an expression.
constexpr int selectLevels = 4;

bool beginsItem(ParserContext& context, std::size_t ahead) {
    const Token& token = context.peek(ahead);
    if (token.kind == TokenKind::symbol) {
        return TextView(u"*(?-+").find(token.text) != TextView::npos;
    }
    return token.kind == TokenKind::constant || context.atName(ahead) || context.atWord(u"not", ahead) ||
           context.atWord(u"null", ahead) || context.atWord(u"exists", ahead);
}

// PERCENT, unless it is the first item's name.
bool acceptPercent(ParserContext& context) {
    const bool found = context.atWord(u"percent") && beginsItem(context, 1);
    if (found) {
        context.take();
    }
    return found;
}

void parseTop(ParserContext& context, Select& select) {
    if (!context.atWord(u"top") || context.peek(1).kind != TokenKind::constant) {
        return;
    }
    context.take();
    const auto* const count = std::get_if<std::int32_t>(&context.peek().value);
    if (!count) {
        context.fail(u"a whole number is expected behind TOP");
    }
    select.top = *count;
    context.take();
    select.topPercent = acceptPercent(context);
    if (select.topPercent && select.top > 100) {
        context.fail(u"TOP takes at most 100 percent");
    }
}

SelectItem parseItem(ParserContext& context) {
    SelectItem item;
    if (context.acceptSymbol(u"*")) {
        return item;
    }
    const bool qualified = context.atName() && (context.atSymbol(u".", 1) || context.atSymbol(u"!", 1));
    if (qualified && context.atSymbol(u"*", 2)) {
        item.qualifier = context.takeName();
        context.take();
        context.take();
        return item;
    }
    item.expression = parseExpression(context);
    if (context.acceptWord(u"as")) {
        item.alias = context.takeName();
    }
    return item;
}

std::vector<OrderItem> parseOrder(ParserContext& context) {
    std::vector<OrderItem> order;
    do {
        OrderItem item;
        item.expression = parseExpression(context);
        item.descending = context.acceptWord(u"desc");
        if (!item.descending) {
            context.acceptWord(u"asc");
        }
        order.push_back(std::move(item));
    } while (context.acceptSymbol(u","));
    return order;
}

// DISTINCTROW removes rows made of the same records. Without the records' identity in the result that cannot
// differ from ALL but in joins of which one table alone is shown, where it is taken as ALL too.
void parseQuantifier(ParserContext& context, Select& select) {
    select.distinct = context.acceptWord(u"distinct");
    if (!select.distinct && !context.acceptWord(u"all")) {
        context.acceptWord(u"distinctrow");
    }
    parseTop(context, select);
}

// Without the ORDER BY behind it.
SelectPtr parsePlainSelect(ParserContext& context) {
    context.expectWord(u"select");
    auto select = std::make_unique<Select>();
    parseQuantifier(context, *select);
    do {
        select->items.push_back(parseItem(context));
    } while (context.acceptSymbol(u","));
    if (context.acceptWord(u"into")) {
        select->into = context.takeName();
    }
    if (context.acceptWord(u"from")) {
        select->from = parseSources(context);
    }
    if (context.acceptWord(u"where")) {
        select->where = parseExpression(context);
    }
    if (context.acceptWord(u"group")) {
        context.expectWord(u"by");
        select->groupBy = parseExpressions(context);
    }
    if (context.acceptWord(u"having")) {
        select->having = parseExpression(context);
    }
    return select;
}

// A select in parentheses that has an order or unions of its own becomes the source of a plain one, so that
// it can be a member of a union.
SelectPtr asMember(ParserContext& context, SelectPtr select) {
    if (select->orderBy.empty() && select->unions.empty()) {
        return select;
    }
    auto outer = std::make_unique<Select>();
    outer->items.emplace_back();
    outer->from = std::make_unique<Source>(Source{SelectSource{std::move(select), {}}});
    context.raiseTallest(context.tallest + 2);
    return outer;
}

SelectPtr parseMember(ParserContext& context) {
    if (!context.atSymbol(u"(")) {
        return parsePlainSelect(context);
    }
    context.take();
    SelectPtr select = parseSelect(context);
    context.expectSymbol(u")");
    return select;
}

void parseUnions(ParserContext& context, Select& first) {
    while (context.acceptWord(u"union")) {
        Select::Following following;
        following.all = context.acceptWord(u"all");
        following.select = asMember(context, parseMember(context));
        if (!following.select->into.empty()) {
            context.fail(u"a member of a union cannot make a table");
        }
        first.unions.push_back(std::move(following));
    }
}

// The access rights of the query's owner have no meaning here.
void skipOwnerAccess(ParserContext& context) {
    if (context.atWord(u"with") && context.atWord(u"owneraccess", 1)) {
        context.take();
        context.take();
        context.expectWord(u"option");
    }
}

// The fields behind INSERT INTO t, where each may be qualified by the table.
std::vector<Text> parseInsertFields(ParserContext& context, const Text& table) {
    std::vector<Text> fields;
    do {
        Name field = parseFieldReference(context);
        if (!field.qualifier.empty() && !sameName(field.qualifier, table)) {
            context.fail(u"the field before it belongs to another table");
        }
        fields.push_back(std::move(field.name));
    } while (context.acceptSymbol(u","));
    context.expectSymbol(u")");
    return fields;
}

void parseRow(ParserContext& context, Insert& insert) {
    context.expectSymbol(u"(");
    std::vector<ExpressionPtr> row = parseExpressions(context);
    if (!insert.fields.empty() && row.size() != insert.fields.size()) {
        context.fail(ErrorCode::syntaxInInsert,
                     row.size() < insert.fields.size()
                         ? TextView(u"the row has fewer values than there are fields")
                         : u"the row has more values than there are fields");
    }
    context.expectSymbol(u")");
    insert.rows.push_back(std::move(row));
}

// The unions and the order behind a select.
SelectPtr parseFollowing(ParserContext& context, SelectPtr select) {
    if (context.atWord(u"union") || context.atWord(u"order")) {
        select = asMember(context, std::move(select));
    }
    parseUnions(context, *select);
    if (context.acceptWord(u"order")) {
        context.expectWord(u"by");
        select->orderBy = parseOrder(context);
    }
    skipOwnerAccess(context);
    return select;
}

// Of a select for which `tallest` was begun anew.
NestedSelect nestedIn(ParserContext& context, SelectPtr select, int tallestBefore) {
    if (!select->into.empty()) {
        context.fail(u"a select inside another statement cannot make a table");
    }
    const int height = context.tallest + 1;
    context.tallest = std::max(tallestBefore, height);
    return {std::move(select), height};
}

}  // namespace

SelectPtr parseSelect(ParserContext& context) {
    const Nesting nesting(context, selectLevels);
    return parseFollowing(context, parseMember(context));
}

NestedSelect parseNestedSelect(ParserContext& context) {
    const int tallestBefore = std::exchange(context.tallest, 0);
    return nestedIn(context, parseSelect(context), tallestBefore);
}

NestedSelect parseUnionOf(ParserContext& context, SelectPtr first, int height) {
    const int tallestBefore = std::exchange(context.tallest, height);
    return nestedIn(context, parseFollowing(context, std::move(first)), tallestBefore);
}

Insert parseInsert(ParserContext& context) {
    context.expectWord(u"insert");
    context.expectWord(u"into");
    Insert insert;
    insert.table = context.takeName();
    if (context.atSymbol(u"(") && !context.atWord(u"select", 1)) {
        context.take();
        insert.fields = parseInsertFields(context, insert.table);
    }
    if (context.atWord(u"select") || context.atSymbol(u"(")) {
        insert.select = parseNestedSelect(context).select;
        return insert;
    }
    if (!context.acceptWord(u"values")) {
        context.fail(u"VALUES or SELECT is expected");
    }
    do {
        parseRow(context, insert);
    } while (context.acceptSymbol(u","));
    return insert;
}

Update parseUpdate(ParserContext& context) {
    context.expectWord(u"update");
    context.acceptWord(u"distinctrow");
    Update update;
    update.target = parseSources(context);
    context.expectWord(u"set");
    do {
        Assignment assignment;
        assignment.field = parseFieldReference(context);
        context.expectSymbol(u"=");
        assignment.value = parseExpression(context);
        update.assignments.push_back(std::move(assignment));
    } while (context.acceptSymbol(u","));
    if (context.acceptWord(u"where")) {
        update.where = parseExpression(context);
    }
    return update;
}

Delete parseDelete(ParserContext& context) {
    context.expectWord(u"delete");
    context.acceptWord(u"distinctrow");
    Delete statement;
    if (!context.acceptSymbol(u"*") && context.atName()) {
        statement.table = context.takeName();
        if (context.acceptSymbol(u".")) {
            context.expectSymbol(u"*");
        }
    }
    context.expectWord(u"from");
    statement.from = parseSources(context);
    if (context.acceptWord(u"where")) {
        statement.where = parseExpression(context);
    }
    return statement;
}

}  // namespace tessary::server::sql
