#include "server/sql/parser_sources.h"

#include "server/sql/parser_expressions.h"
#include "server/sql/parser_queries.h"

#include <algorithm>
#include <utility>

namespace tessary::server::sql {

namespace {

// A source with the number of levels of its tree; the conditions of its joins are among them.
struct SourceTree {
    SourcePtr source;
    int height = 0;
};

// What follows a source and so cannot be its alias without AS.
constexpr TextView followers[] = {u"left", u"right", u"cross", u"with"};

SourceTree makeSource(ParserContext& context, Source source, int below) {
    context.raiseTallest(below + 1);
    return {std::make_unique<Source>(std::move(source)), below + 1};
}

// Empty: none.
Text parseAlias(ParserContext& context) {
    if (context.acceptWord(u"as")) {
        return context.takeName();
    }
    const bool follower = std::ranges::any_of(followers, [&](TextView word) { return context.atWord(word); });
    return context.atName() && !follower ? context.takeName() : Text();
}

bool atJoin(ParserContext& context) {
    if (context.atWord(u"left") || context.atWord(u"right")) {
        return context.atWord(u"join", 1) || context.atWord(u"outer", 1);
    }
    return context.atWord(u"inner") || context.atWord(u"join");
}

SourceTree parseCommaList(ParserContext& context);

// The alias of a select or a table may stand inside or behind the parentheses.
void parseOuterAlias(ParserContext& context, Source& source) {
    if (auto* const select = std::get_if<SelectSource>(&source.node); select && select->alias.empty()) {
        select->alias = parseAlias(context);
    } else if (auto* const table = std::get_if<TableSource>(&source.node); table && table->alias.empty()) {
        table->alias = parseAlias(context);
    }
}

SourceTree parseParenthesized(ParserContext& context) {
    context.take();
    SourceTree inner;
    if (context.atWord(u"select")) {
        NestedSelect nested = parseNestedSelect(context);
        inner = makeSource(context, {SelectSource{std::move(nested.select), {}}}, nested.height);
    } else {
        inner = parseCommaList(context);
        if (auto* const first = std::get_if<SelectSource>(&inner.source->node);
            first && context.atWord(u"union")) {
            NestedSelect nested = parseUnionOf(context, std::move(first->select), inner.height);
            inner = makeSource(context, {SelectSource{std::move(nested.select), {}}}, nested.height);
        }
    }
    context.expectSymbol(u")");
    parseOuterAlias(context, *inner.source);
    return inner;
}

SourceTree parseTable(ParserContext& context) {
    TableSource table;
    table.table = context.takeName();
    if (context.atSymbol(u".") || context.atSymbol(u"!")) {
        context.fail(u"tables of other databases must be linked first");
    }
    table.alias = parseAlias(context);
    return makeSource(context, {std::move(table)}, 0);
}

SourceTree parseSingle(ParserContext& context) {
    const Nesting nesting(context);
    return context.atSymbol(u"(") ? parseParenthesized(context) : parseTable(context);
}

JoinKind parseJoinKind(ParserContext& context) {
    JoinKind kind = JoinKind::inner;
    if (context.acceptWord(u"left")) {
        kind = JoinKind::left;
    } else if (context.acceptWord(u"right")) {
        kind = JoinKind::right;
    } else {
        context.acceptWord(u"inner");
    }
    if (kind != JoinKind::inner) {
        context.acceptWord(u"outer");
    }
    context.expectWord(u"join");
    return kind;
}

// The height of the condition is not known here; the tallest tree made for it is no lower.
SourceTree parseJoin(ParserContext& context, SourceTree left) {
    const Nesting nesting(context);
    Join join{parseJoinKind(context), std::move(left.source), nullptr, nullptr};
    SourceTree right = parseSingle(context);
    while (atJoin(context)) {
        right = parseJoin(context, std::move(right));
    }
    context.expectWord(u"on");
    const int tallestBefore = std::exchange(context.tallest, 0);
    join.right = std::move(right.source);
    join.condition = parseExpression(context);
    const int below = std::max({left.height, right.height, context.tallest});
    context.tallest = std::max(context.tallest, tallestBefore);
    return makeSource(context, {std::move(join)}, below);
}

SourceTree parseJoins(ParserContext& context) {
    SourceTree source = parseSingle(context);
    while (atJoin(context)) {
        source = parseJoin(context, std::move(source));
    }
    return source;
}

SourceTree parseCommaList(ParserContext& context) {
    SourceTree source = parseJoins(context);
    while (context.acceptSymbol(u",")) {
        SourceTree right = parseJoins(context);
        const int below = std::max(source.height, right.height);
        source = makeSource(
            context, {Join{JoinKind::cross, std::move(source.source), std::move(right.source), nullptr}},
            below);
    }
    return source;
}

}  // namespace

SourcePtr parseSources(ParserContext& context) {
    return parseCommaList(context).source;
}

}  // namespace tessary::server::sql
