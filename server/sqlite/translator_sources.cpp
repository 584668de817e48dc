#include "server/sqlite/translator_state.h"

#include <algorithm>

namespace tessary::server::translation {

namespace {

const sql::Join* joinOf(const sql::Source& source) {
    return std::get_if<sql::Join>(&source.node);
}

}  // namespace

std::string Translator::source(const sql::Source& source, Scope& scope) {
    spend();
    const Replaced deeper(depth_, depth_ + 1);
    if (const auto* node = std::get_if<sql::TableSource>(&source.node))
        return table(*node, scope);
    if (const auto* node = std::get_if<sql::SelectSource>(&source.node))
        return derived(select(*node->select, scope.outer), node->alias, scope);
    return join(std::get<sql::Join>(source.node), scope);
}

std::string Translator::table(const sql::TableSource& node, Scope& scope) {
    const Text& name = node.alias.empty() ? node.table : node.alias;
    if (const TableDefinition* definition = schema_.table(node.table)) {
        scope.tables.push_back(tableOf(*definition, name));
        return scope.tables.back().sqliteName + " AS " + scope.tables.back().alias;
    }
    const QueryDefinition* query = schema_.query(node.table);
    if (!query)
        fail(ErrorCode::tableNotFound, u"There is no table or query '" + node.table + u"'.");
    return storedQuery(*query, name, scope);
}

SourceTable Translator::tableOf(const TableDefinition& definition, const Text& name) {
    SourceTable table{
        name, "t" + std::to_string(++tables_), {}, &definition, schema_.sqliteName(definition.name)};
    for (const FieldDefinition& field : definition.fields) {
        const Type type = typeOf(field.type, field.size);
        table.fields.push_back({field.name, type, quotedName(field.name), type.kind == Kind::text});
    }
    return table;
}

std::string Translator::storedQuery(const QueryDefinition& query, const Text& name, Scope& scope) {
    if (std::ranges::any_of(queries_, [&](const Text& outer) { return sameName(outer, query.name); }))
        fail(ErrorCode::tooComplex, u"The query '" + query.name + u"' refers to itself.");
    const sql::Statement statement = sql::parse(query.statement);
    const auto* inner = std::get_if<sql::SelectPtr>(&statement.node);
    if (!inner || !(*inner)->into.empty())
        fail(ErrorCode::invalidOperation,
             u"The query '" + query.name + u"' changes records and cannot be read from.");
    constexpr int costOfQuery = 500;
    spend(costOfQuery);
    queries_.push_back(query.name);
    const Replaced frame(frame_, frames_++);
    const Replaced aliases(aliases_, {});
    parameters_.declare(frame_, statement.parameters);
    // The syntax tree ends with this function; no piece that refers to it leaves.
    std::string sql = derived(select(**inner, nullptr), name, scope);
    queries_.pop_back();
    return sql;
}

std::string Translator::derived(const TranslatedSelect& select, const Text& name, Scope& scope) {
    SourceTable table{name, "t" + std::to_string(++tables_), {}, nullptr, {}};
    for (std::size_t i = 0; i < select.fields.size(); ++i)
        table.fields.push_back(
            {select.fields[i].name, select.fields[i].type, "c" + std::to_string(i + 1), false});
    scope.tables.push_back(std::move(table));
    return "(" + select.sql + ") AS " + scope.tables.back().alias;
}

std::string Translator::join(const sql::Join& node, Scope& scope) {
    const std::size_t first = scope.tables.size();
    const std::string left = source(*node.left, scope);
    std::string right = source(*node.right, scope);
    if (joinOf(*node.right))
        right = "(" + right + ")";
    const std::string_view kind = node.kind == sql::JoinKind::left    ? " LEFT JOIN "
                                  : node.kind == sql::JoinKind::right ? " RIGHT JOIN "
                                                                      : " JOIN ";
    std::string sql = left + std::string(kind) + right;
    if (!node.condition)
        return sql;
    // A condition knows the tables that it joins and no others of the statement.
    const Scope joined{{scope.tables.begin() + static_cast<std::ptrdiff_t>(first), scope.tables.end()},
                       scope.outer,
                       nullptr};
    const Replaced none(aggregates_, false);
    return sql + " ON " + condition(*node.condition, joined);
}

}  // namespace tessary::server::translation
