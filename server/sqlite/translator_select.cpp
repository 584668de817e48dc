#include "server/sqlite/functions.h"
#include "server/sqlite/translator_state.h"

#include <algorithm>
#include <utility>

namespace tessary::server::translation {

namespace {

const sql::Literal* literalOf(const sql::ExpressionPtr& expression) {
    return std::get_if<sql::Literal>(&expression->node);
}

Text numberText(std::size_t number) {
    return textOf(static_cast<double>(number));
}

std::string resultName(std::size_t column) {
    return "c" + std::to_string(column + 1);
}

// Fields of several tables that share their name are told apart by their table's.
void qualifyEqualNames(std::vector<ResultField>& fields) {
    std::vector<bool> qualified(fields.size());
    for (std::size_t i = 0; i < fields.size(); ++i) {
        for (std::size_t other = 0; other < fields.size(); ++other) {
            if (!fields[i].table.empty() && !fields[other].table.empty() &&
                !sameName(fields[i].table, fields[other].table) &&
                sameName(fields[i].name, fields[other].name))
                qualified[i] = true;
        }
    }
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (qualified[i])
            fields[i].name = fields[i].table + u"." + fields[i].name;
    }
}

std::size_t resultPlace(const Value& value, std::size_t columns) {
    const auto* place = std::get_if<std::int32_t>(&value);
    if (!place || *place < 1 || static_cast<std::size_t>(*place) > columns)
        fail(ErrorCode::syntax, u"ORDER BY '" + textOf(value) +
                                    u"' is no place of a result column; there are " + numberText(columns) +
                                    u".");
    return static_cast<std::size_t>(*place);
}

// For GROUP BY and ORDER BY, where a bare whole number would be the place of a column.
std::string ordering(const Piece& piece) {
    if (piece.form != Form::column && piece.type.kind == Kind::whole)
        return call("coalesce", {piece.sql, "NULL"});
    return withCollation(piece);
}

bool isWholeNumber(const sql::Literal* literal) {
    return literal && std::holds_alternative<std::int32_t>(literal->value);
}

}  // namespace

TranslatedSelect Translator::select(const sql::Select& select, const Scope* outer) {
    spend();
    const Replaced deeper(depth_, depth_ + 1);
    const Replaced allowed(aggregates_, true);
    return select.unions.empty() ? single(select, outer) : unionOf(select, outer);
}

TranslatedSelect Translator::single(const sql::Select& select, const Scope* outer) {
    Scope scope{{}, outer, nullptr};
    const Replaced closed(closed_, select.topPercent ? &std::as_const(scope) : closed_);
    const std::string from = select.from ? " FROM " + source(*select.from, scope) : std::string();
    const std::string where = filter(select.where, scope);
    scope.aliases = &select;

    Grouping grouping{&scope, grouping_, {}, {}, false};
    const Replaced grouped(grouping_, &grouping);
    const std::vector<std::string> terms = groups(select, scope);
    TranslatedSelect result;
    std::vector<std::string> columns;
    items(select, scope, columns, result.fields);
    result.sql = std::string("SELECT ") + (select.distinct ? "DISTINCT " : "") + joined(columns, ", ") +
                 from + where + (terms.empty() ? "" : " GROUP BY " + joined(terms, ", "));
    if (select.having)
        result.sql += " HAVING " + condition(*select.having, scope);
    if (select.unions.empty())
        result.sql += order(select, scope, columns.size());
    if (!grouping.loose.empty() && (!terms.empty() || grouping.aggregates))
        fail(ErrorCode::notGrouped, u"The field '" + grouping.loose.front() +
                                        u"' stands neither in GROUP BY nor in an aggregate function such as "
                                        u"Count, Sum or First.");
    result.sql = limited(std::move(result.sql), select);
    qualifyEqualNames(result.fields);
    return result;
}

void Translator::items(const sql::Select& select, const Scope& scope, std::vector<std::string>& columns,
                       std::vector<ResultField>& fields) {
    const auto add = [&](const std::string& sql, ResultField field) {
        columns.push_back(sql + " AS " + resultName(columns.size()));
        fields.push_back(std::move(field));
    };
    for (const sql::SelectItem& item : select.items) {
        if (item.expression) {
            aliases_.push_back(item.expression.get());
            const Piece piece = value(*item.expression, scope);
            aliases_.pop_back();
            const auto* name = std::get_if<sql::Name>(&item.expression->node);
            const FoundField found = name ? scope.find(*name) : FoundField{};
            ResultField field{item.alias, piece.type, true, {}};
            if (field.name.empty() && found.field) {
                field.name = found.field->name;
                field.table = found.table->name;
            } else if (field.name.empty()) {
                field.name = u"Expr" + numberText(1000 + columns.size());
            }
            add(withCollation(piece), std::move(field));
            continue;
        }
        if (!item.qualifier.empty() && !scope.table(item.qualifier))
            fail(ErrorCode::tableNotFound, u"The table '" + item.qualifier + u"' is not in the FROM clause.");
        if (scope.tables.empty())
            fail(ErrorCode::syntax, u"SELECT * needs a FROM clause.");
        for (const SourceTable& table : scope.tables) {
            if (!item.qualifier.empty() && !sameName(table.name, item.qualifier))
                continue;
            for (const SourceField& field : table.fields) {
                const std::string column = table.alias + "." + field.column;
                grouping_->loose.push_back(field.name);
                grouping_->settle(column, grouping_->loose.size() - 1);
                add(withCollation({column, field.type, Form::column, field.collated, nullptr}),
                    {field.name, field.type, true, table.name});
            }
        }
    }
}

std::string Translator::filter(const sql::ExpressionPtr& where, const Scope& scope) {
    if (!where)
        return {};
    const Replaced none(aggregates_, false);
    return " WHERE " + condition(*where, scope);
}

// The terms of GROUP BY.
std::vector<std::string> Translator::groups(const sql::Select& select, const Scope& scope) {
    std::vector<std::string> terms;
    const Replaced none(aggregates_, false);
    const Replaced closed(closed_, &scope);
    for (const sql::ExpressionPtr& expression : select.groupBy) {
        const Piece piece = value(*expression, scope);
        terms.push_back(ordering(piece));
        grouping_->groups.push_back(piece.sql);
    }
    grouping_->loose.clear();
    return terms;
}

std::string Translator::order(const sql::Select& select, const Scope& scope, std::size_t columns) {
    std::vector<std::string> terms;
    for (const sql::OrderItem& item : select.orderBy) {
        const sql::Literal* literal = literalOf(item.expression);
        std::string term;
        if (isWholeNumber(literal)) {
            term = std::to_string(resultPlace(literal->value, columns));
        } else {
            const Piece piece = value(*item.expression, scope);
            if (piece.form == Form::literal)
                continue;
            term = ordering(piece);
        }
        terms.push_back(term + (item.descending ? " DESC" : ""));
    }
    return terms.empty() ? std::string() : " ORDER BY " + joined(terms, ", ");
}

// Records that are equal in ORDER BY with the last one are not added to the n.
std::string Translator::limited(std::string sql, const sql::Select& select) const {
    if (!select.top)
        return sql;
    const std::int64_t top = *select.top;
    if (top < 0 || (select.topPercent && top > 100))
        fail(ErrorCode::syntax, u"The number of TOP is out of range.");
    std::string limit = std::to_string(top);
    if (select.topPercent)
        limit = "(SELECT (count(*) * " + limit + " + 99) / 100 FROM (" + sql + "))";
    return sql + " LIMIT " + limit;
}

TranslatedSelect Translator::unionOf(const sql::Select& select, const Scope* outer) {
    const auto part = [](TranslatedSelect translated, const sql::Select& member) {
        if (member.top || (!member.orderBy.empty()) || !member.unions.empty())
            translated.sql = "SELECT * FROM (" + translated.sql + ")";
        return translated;
    };
    TranslatedSelect result = single(select, outer);
    if (select.top)
        result.sql = "SELECT * FROM (" + result.sql + ")";
    for (const sql::Select::Following& following : select.unions) {
        const TranslatedSelect next = part(this->select(*following.select, outer), *following.select);
        if (next.fields.size() != result.fields.size())
            fail(ErrorCode::syntax, u"The selects of a UNION have different numbers of fields: " +
                                        numberText(result.fields.size()) + u" and " +
                                        numberText(next.fields.size()) + u".");
        for (std::size_t i = 0; i < result.fields.size(); ++i)
            result.fields[i].type = merged(result.fields[i].type, next.fields[i].type);
        result.sql += (following.all ? " UNION ALL " : " UNION ") + next.sql;
    }
    result.sql += unionOrder(select, result.fields);
    return result;
}

std::string Translator::unionOrder(const sql::Select& select, const std::vector<ResultField>& fields) {
    std::vector<std::string> terms;
    for (const sql::OrderItem& item : select.orderBy) {
        std::size_t place = 0;
        if (const sql::Literal* literal = literalOf(item.expression)) {
            place = resultPlace(literal->value, fields.size());
        } else if (const auto* name = std::get_if<sql::Name>(&item.expression->node)) {
            const auto found = std::ranges::find_if(
                fields, [&](const ResultField& field) { return sameName(field.name, name->name); });
            if (found != fields.end())
                place = static_cast<std::size_t>(found - fields.begin()) + 1;
        }
        if (place == 0)
            fail(ErrorCode::syntax, u"ORDER BY of a UNION names fields of its first select.");
        terms.push_back(std::to_string(place) + (item.descending ? " DESC" : ""));
    }
    return terms.empty() ? std::string() : " ORDER BY " + joined(terms, ", ");
}

}  // namespace tessary::server::translation
